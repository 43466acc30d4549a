#pragma once

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QTest>
#include <QTreeView>
#include <QWheelEvent>

/// Input as the platform sends it: to the widget under the pointer, with the buttons that are down.
namespace Input {

inline void mouse(QWidget* target, QEvent::Type type, const QPoint& pos, Qt::MouseButton button,
                  Qt::MouseButtons buttons, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
    QMouseEvent event(type, pos, target->mapToGlobal(pos), button, buttons, modifiers);
    QApplication::sendEvent(target, &event);
}

inline void press(QAbstractScrollArea* view, const QPoint& pos, Qt::MouseButton button = Qt::LeftButton,
                  Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
    mouse(view->viewport(), QEvent::MouseButtonPress, pos, button, button, modifiers);
}

inline void move(QAbstractScrollArea* view, const QPoint& pos, Qt::MouseButtons buttons = Qt::NoButton,
                 Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
    mouse(view->viewport(), QEvent::MouseMove, pos, Qt::NoButton, buttons, modifiers);
}

inline void release(QAbstractScrollArea* view, const QPoint& pos, Qt::MouseButton button = Qt::LeftButton,
                    Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
    mouse(view->viewport(), QEvent::MouseButtonRelease, pos, button, Qt::NoButton, modifiers);
}

inline void click(QAbstractScrollArea* view, const QPoint& pos, Qt::MouseButton button = Qt::LeftButton,
                  Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
    press(view, pos, button, modifiers);
    release(view, pos, button, modifiers);
}

/// Presses, moves beyond the start-drag distance and on to the end, releases.
inline void drag(QAbstractScrollArea* view, const QPoint& from, const QPoint& to,
                 Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
    press(view, from, Qt::LeftButton, modifiers);
    move(view, from + (to - from) / 2, Qt::LeftButton, modifiers);
    move(view, to, Qt::LeftButton, modifiers);
    release(view, to, Qt::LeftButton, modifiers);
}

inline void doubleClick(QAbstractScrollArea* view, const QPoint& pos, Qt::MouseButton button = Qt::LeftButton)
{
    click(view, pos, button);
    mouse(view->viewport(), QEvent::MouseButtonDblClick, pos, button, button);
    release(view, pos, button);
}

inline void wheel(QAbstractScrollArea* view, const QPoint& pos, int angleDeltaY)
{
    QWidget* const target = view->viewport();
    QWheelEvent event(pos, target->mapToGlobal(pos), QPoint(), QPoint(0, angleDeltaY), Qt::NoButton, Qt::NoModifier,
                      Qt::NoScrollPhase, false);
    QApplication::sendEvent(target, &event);
}

inline void key(QWidget* target, int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
    QKeyEvent event(QEvent::KeyPress, key, modifiers);
    QApplication::sendEvent(target, &event);
}

} // namespace Input
