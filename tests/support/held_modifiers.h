#pragma once

#include <QTest>
#include <QWidget>
#include <QWindow>

/// Holds modifier keys down while it lives: pressed at the widget's window, the way the platform reports keys, so that
/// whoever asks the application for the keyboard's state is told of them.
class HeldModifiers
{
public:
    HeldModifiers(QWindow* window, Qt::KeyboardModifiers modifiers) : m_window(window)
    {
        QTest::keyPress(m_window, Qt::Key_Control, modifiers);
    }
    HeldModifiers(const QWidget* widget, Qt::KeyboardModifiers modifiers)
        : HeldModifiers(widget->window()->windowHandle(), modifiers)
    {
    }
    HeldModifiers(const HeldModifiers&) = delete;
    HeldModifiers& operator=(const HeldModifiers&) = delete;
    ~HeldModifiers() { QTest::keyRelease(m_window, Qt::Key_Control, Qt::NoModifier); }

private:
    QWindow* m_window;
};
