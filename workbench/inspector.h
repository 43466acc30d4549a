#pragma once

#include "selection_summary.h"

#include <QPointer>
#include <QWidget>

class QCheckBox;
class QFormLayout;
class QLabel;
class QTimer;
class QToolButton;

namespace VeskTimeline {
class TimelineView;
class Track;
namespace Kit {
struct ItemTimes;
class StandardTimelineModel;
} // namespace Kit
} // namespace VeskTimeline

namespace Workbench {

class AttributeTable;
class ColorMenu;
class EditField;
class TrackBox;

/// Shows what the selected items say, and changes it: each edit is one step of the model's undo stack, for however many
/// items. Where the items differ a field says so; what is then entered holds for all of them.
///
/// A long item that is shown in pieces counts as one. It follows the selection, undo, and drags while they last. What
/// is being typed when the selection changes is taken for the items that were selected if it can be read, and dropped
/// otherwise. Locked items can be edited here; that they are locked only keeps the mouse off them.
class Inspector : public QWidget
{
    Q_OBJECT

public:
    /// @param view one that shows the model
    Inspector(VeskTimeline::Kit::StandardTimelineModel* model, VeskTimeline::TimelineView* view,
              QWidget* parent = nullptr);
    ~Inspector() override;

    /// The items shown, of a long item one piece.
    const QList<int>& itemIds() const { return m_summary.ids; }
    /// Gives the keyboard to the label, with all of it selected.
    void editLabel();
    /// Takes what is being typed, if it can be read, and drops it otherwise; for before the document is saved or left.
    void commitPending() { leaveFields(); }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    void createFields();
    void createColorButton();
    void createAttributes();
    void follow();
    void scheduleRefresh();
    void scheduleTracks();
    void refresh();
    void leaveFields();
    void showSummary(bool isOther);
    void showTimes(qint64 offset);
    void showColor();
    void showTracks();
    void addTracksBelow(const VeskTimeline::Track& parent, int level);
    void followDrag();

    template <typename Body>
    QString edit(const Body& body);
    QString setStart(const QString& text);
    QString setEnd(const QString& text);
    QString setDuration(const QString& text);
    template <typename Change>
    QString retime(const Change& change);
    void setTrack(int row);
    void setLocked();

    QPointer<VeskTimeline::Kit::StandardTimelineModel> m_model;
    QPointer<VeskTimeline::TimelineView> m_view;
    QTimer* m_refreshTimer;
    QTimer* m_dragTimer;
    SelectionSummary m_summary;
    bool m_areTracksStale = true;
    bool m_showsDrag = false;

    QLabel* m_title;
    QWidget* m_form;
    EditField* m_label = nullptr;
    EditField* m_start = nullptr;
    EditField* m_end = nullptr;
    EditField* m_duration = nullptr;
    EditField* m_description = nullptr;
    QToolButton* m_color = nullptr;
    ColorMenu* m_colorMenu = nullptr;
    TrackBox* m_track = nullptr;
    QCheckBox* m_locked = nullptr;
    AttributeTable* m_attributes = nullptr;
};

} // namespace Workbench
