#pragma once

#include <QGuiApplication>
#include <QTest>
#include <QWidget>
#include <QWindow>

/// Holds modifier keys down while it lives: pressed at the widget's window, the way the platform reports keys, so that
/// whoever asks the application for the keyboard's state is told of them.
class HeldModifiers
{
public:
    HeldModifiers(QWidget* widget, Qt::KeyboardModifiers modifiers) : m_window(widget->window()->windowHandle())
    {
        QTest::keyPress(m_window, Qt::Key_Control, modifiers);
    }
    HeldModifiers(const HeldModifiers&) = delete;
    HeldModifiers& operator=(const HeldModifiers&) = delete;
    ~HeldModifiers() { QTest::keyRelease(m_window, Qt::Key_Control, Qt::NoModifier); }

private:
    QWindow* m_window;
};
