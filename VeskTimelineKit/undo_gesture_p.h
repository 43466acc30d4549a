#pragma once

// Internal to the kit; not installed.

#include <VeskTimeline/timeline_view.h>

#include <QPointer>

namespace VeskTimeline::Kit {

/// Tells which of the model's changes belong to one gesture of the user.
///
/// A view writes a gesture to the model call by call and does not say where it begins or ends. What happens until the
/// event loop is reached again, or until the next press, release or drop if that is earlier, is one gesture. Two last
/// longer: a resize writes at every move of the mouse, until the edge is let go, and a key that is held repeats.
class UndoGesture : public QObject
{
public:
    explicit UndoGesture(TimelineView* view);

    /// The number of the gesture under way, never 0.
    int join(bool isResize);
    /// What comes next is another gesture.
    void finish();
    /// Whether the edge of an item is being held.
    bool isHeld() const;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void reachEventLoop();

    QPointer<TimelineView> m_view;
    int m_lastSerial = 1;
    int m_serial = 1;
    int m_keySerial = 0;
    bool m_isResize = false;
    bool m_isWaiting = false;
};

} // namespace VeskTimeline::Kit
