#pragma once

#include <QKeyEvent>
#include <QTest>
#include <QWindow>

/// Keyboard modifiers held down, as the platform knows it, for as long as this lives.
class HeldModifiers
{
public:
    HeldModifiers(QWindow* window, Qt::KeyboardModifiers modifiers) : m_window(window)
    {
        QTest::keyPress(m_window, Qt::Key_Control, modifiers);
    }
    HeldModifiers(const HeldModifiers&) = delete;
    HeldModifiers& operator=(const HeldModifiers&) = delete;
    ~HeldModifiers() { QTest::keyRelease(m_window, Qt::Key_Control, Qt::NoModifier); }

private:
    QWindow* m_window;
};
