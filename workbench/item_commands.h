#pragma once

#include "row_handlers.h"
#include "view_commands.h"

#include <QPointer>

#include <memory>

class QMenu;

namespace Workbench {

class ColorMenu;
class TrackCommands;

/// The commands on items, for menus, and what the mouse asks for in the rows: double clicks on an empty place add an
/// item, and a right press shows the commands that belong there.
///
/// Shortcuts do what the view's keys do. Each command is one step of the model's undo stack.
class ItemCommands : public ViewCommands
{
    Q_OBJECT

public:
    /// Takes over the view's selection and track handlers until it is destroyed.
    ItemCommands(VeskTimeline::Kit::StandardTimelineModel* model, VeskTimeline::TimelineView* view,
                 QObject* parent = nullptr);
    ~ItemCommands() override;

    void addClipboardActions(QMenu* menu);
    void addItemActions(QMenu* menu);
    TrackCommands* tracks() const { return m_tracks; }

    /// Adds an item to a track, selects it and asks for its label. @return its id; -1 for an unknown track
    int addItemAt(int trackId, qint64 time);

public Q_SLOTS:
    void cut();
    void copy();
    void paste();
    void removeSelected();
    /// Copies of the selected items, behind all of them on their tracks.
    void duplicate();
    /// At the indicator, if it is in the window, otherwise in the middle; in the current track, or in a new one.
    void addItem();
    /// As a right press there does. @param pos in the view's viewport
    void showContextMenu(const QPoint& pos);

Q_SIGNALS:
    /// Whoever shows labels for editing should let the user type this one's.
    void labelEditRequested(int itemId);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void afterAttempt() override { updateActions(); }

private:
    void createActions();
    void pressKey(int key);
    void setLocked(bool isLocked);
    void setColor(const QColor& color);
    void updateActions();
    void activateItem(int itemId);
    QPoint keyboardMenuPos() const;

    RowRequests m_requests;
    std::unique_ptr<RowSelectHandler> m_selectHandler;
    std::unique_ptr<RowTrackHandler> m_trackHandler;
    VeskTimeline::TimelineViewSelectHandler* m_formerSelectHandler;
    VeskTimeline::TimelineViewTrackHandler* m_formerTrackHandler;
    TrackCommands* m_tracks;
    QPointer<QMenu> m_contextMenu;

    QAction* m_cut = nullptr;
    QAction* m_copy = nullptr;
    QAction* m_paste = nullptr;
    QAction* m_delete = nullptr;
    QAction* m_selectAll = nullptr;
    QAction* m_duplicate = nullptr;
    QAction* m_addItem = nullptr;
    QAction* m_lock = nullptr;
    QAction* m_unlock = nullptr;
    ColorMenu* m_colorMenu;
};

} // namespace Workbench
