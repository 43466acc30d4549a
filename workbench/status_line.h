#pragma once

#include <QPoint>
#include <QPointer>
#include <QTimer>
#include <QWidget>

class QModelIndex;

namespace VeskTimeline {
class TimelineView;
class TimelineWidget;
namespace Kit {
class StandardTimelineModel;
}
} // namespace VeskTimeline

namespace Workbench {

class ElidedLabel;
class Navigation;
class ViewSettings;

/// Says what the mouse is on, what is selected and what the document holds. Times are in the ruler's zone.
///
/// Everything is brought up to date once for each turn of the event loop, and only what can have changed: the pointer
/// costs a look at its row, the selection one at the selected items, the document none at its items.
class StatusLine : public QWidget
{
    Q_OBJECT

public:
    /// @param navigation of the timeline that is described; neither is owned
    StatusLine(Navigation* navigation, ViewSettings* settings, QWidget* parent = nullptr);

    /// "1972-12-07 05:33Z, Crew/Commander": time, as fine as the zoom is, and track; empty beside the timeline.
    QString pointerText() const;
    /// "3 selected, 1:30:00 in total, 1972-12-07 05:33:00Z – …": empty when nothing is selected.
    QString selectionText() const;
    /// "9 tracks, 105 items, 1972-12-07 05:33:00Z – …"
    QString contentText() const;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    enum Part { Pointer = 1, Selection = 2, Content = 4, Everything = 7 };

    void follow();
    void schedule(int parts);
    void showStale();
    /// @param pos in the viewport; nothing: the mouse has left
    void setPointer(const QPoint* pos, bool isOverRuler);
    QString pointedTime() const;
    QString pointedTrack() const;

    VeskTimeline::TimelineWidget* m_timeline;
    VeskTimeline::TimelineView* m_view;
    const QObject* m_rows; ///< compared only: events still come while the view is being destroyed
    QPointer<VeskTimeline::Kit::StandardTimelineModel> m_model;
    Navigation* m_navigation;
    ViewSettings* m_settings;
    ElidedLabel* m_pointer;
    ElidedLabel* m_selection;
    ElidedLabel* m_content;
    QTimer m_timer;
    int m_stale = 0;
    QPoint m_pos;
    bool m_isPointed = false;
    bool m_isOverRuler = false;
};

} // namespace Workbench
