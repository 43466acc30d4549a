#pragma once

// Internal to the library; not installed.

#include <QGuiApplication>
#include <QInputEvent>

namespace VeskTimeline {

/// Whether Control is held. The event says so, and so does the keyboard; where events are made by a program only one
/// may.
inline bool isControlHeld(const QInputEvent& event)
{
    return (event.modifiers() | QGuiApplication::keyboardModifiers()).testFlag(Qt::ControlModifier);
}

/// Whether the keyboard, asked at this moment, holds Control and nothing else: the gesture that zooms with the wheel.
inline bool isExactlyControlHeld()
{
    return QGuiApplication::queryKeyboardModifiers() == Qt::ControlModifier;
}

} // namespace VeskTimeline
