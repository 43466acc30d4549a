#pragma once

#include "view_commands.h"

#include <QPointer>

class QMenu;

namespace Workbench {

class ColorMenu;
class TrackNameEditor;

/// The commands on the current track: the one last pressed, otherwise that of the first selected item, otherwise the
/// first one. Each is one step of the model's undo stack.
class TrackCommands : public ViewCommands
{
    Q_OBJECT

public:
    TrackCommands(VeskTimeline::Kit::StandardTimelineModel* model, VeskTimeline::TimelineView* view,
                  QObject* parent = nullptr);

    /// For menus, which say which track is meant.
    void addActions(QMenu* menu);

    /// 0 when there is no track.
    int current() const;
    /// @param trackId 0 is passed over
    void setCurrent(int trackId);
    /// Lets the user type the name in place.
    void rename(int trackId);
    /// Takes the name that is being typed; for before the document is saved or left.
    void commitPending();

public Q_SLOTS:
    /// Below the current track, beside it; its name is then typed in place.
    void addTrack();
    void addTrackInside();
    void renameCurrent();
    /// Asks first.
    void removeCurrent();
    void moveUp();
    void moveDown();
    /// Into the track above it.
    void moveIn();
    /// Out of its parent, below it.
    void moveOut();

private:
    struct Place
    {
        int parentId = 0;
        int row = 0;
        int siblings = 0;
    };
    Place placeOf(int trackId) const;
    void insert(int parentId, int row);
    void moveTo(int trackId, int parentId, int row);
    void setColor(const QColor& color);
    void updateActions();

    ColorMenu* m_colorMenu;
    QPointer<TrackNameEditor> m_nameEditor;
    int m_current = 0;
    QAction* m_title;
    QAction* m_add;
    QAction* m_addInside;
    QAction* m_rename;
    QAction* m_remove;
    QAction* m_up;
    QAction* m_down;
    QAction* m_in;
    QAction* m_out;
};

} // namespace Workbench
