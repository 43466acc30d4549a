#pragma once

#include <QElapsedTimer>
#include <QEventLoop>
#include <QObject>
#include <QPoint>
#include <QProcess>
#include <QStringList>
#include <QTimer>
#include <QWidget>

#include <deque>
#include <functional>

/// The user's hand on the mouse and keyboard of an X server, so that tests get their input the whole way: from the
/// server through the window manager and Qt's platform plugin to the widget.
///
/// Actions are queued and done by play(), in order, each by a run of xdotool and each only after the application has
/// received what the one before sent. They go on while an event handler blocks in an event loop of its own, as a drag
/// and drop does; expect() and then() look at the application from inside it.
class Pointer : public QObject
{
public:
    Pointer();
    Pointer(const Pointer&) = delete;
    Pointer& operator=(const Pointer&) = delete;
    ~Pointer() override;

    /// @param pos in the widget's coordinates; mapped when the action is done, not when it is queued. The server
    /// reports no motion to where the mouse is already.
    Pointer& moveTo(const QWidget* widget, const QPoint& pos);
    /// To the middle of the widget as it is now.
    Pointer& moveTo(const QWidget* widget) { return moveTo(widget, widget->rect().center()); }
    /// Goes to the last corner of the screen, where there is no window.
    Pointer& moveAway();
    /// Never makes a double click of two actions: waits until the time for it is over.
    Pointer& press(Qt::MouseButton button = Qt::LeftButton);
    Pointer& release(Qt::MouseButton button = Qt::LeftButton);
    Pointer& click(Qt::MouseButton button = Qt::LeftButton);
    Pointer& doubleClick();
    /// Goes from the last moveTo() to another point of the same widget in several steps; presses and releases nothing.
    Pointer& glideTo(const QPoint& pos);
    /// Presses, glides, releases.
    Pointer& drag(const QWidget* widget, const QPoint& from, const QPoint& to);
    /// @param notches away from the user when positive
    Pointer& wheel(int notches);
    /// Presses and releases a key, named as in X, with or without modifiers: "Delete", "ctrl+a".
    Pointer& key(const QString& name);
    /// Presses and releases a key that is a shortcut where it is pressed, so that no window receives it as a key.
    Pointer& shortcut(const QString& name);
    /// Types a text of ASCII characters.
    Pointer& type(const QString& text);
    Pointer& keyDown(const QString& name);
    Pointer& keyUp(const QString& name);
    /// Waits until a condition holds; play() fails when it never does.
    Pointer& expect(const QString& condition, std::function<bool()> holds);
    /// Does something between two actions. It must not run an event loop.
    Pointer& then(std::function<void()> action);

    /// Does what is queued; a drag and drop must end within. When something does not happen, lets go of everything,
    /// drops the rest and returns false.
    bool play();
    /// What did not happen.
    QString error() const { return m_error; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    struct Step
    {
        QString name;
        /// Whether it is time to begin.
        std::function<bool()> isReady;
        /// Begins, and returns the arguments for xdotool; none when there is nothing to send.
        std::function<QStringList()> begin;
        /// Whether the application has received it.
        std::function<bool()> isDone;
    };
    struct Received
    {
        QPoint position;
        int doubleClicks = 0;
        int wheels = 0;
        int keyPresses = 0;
        int keyReleases = 0;
        int shortcutOverrides = 0;
    };

    struct Press
    {
        Qt::MouseButton button = Qt::NoButton;
        QPoint pos;
        QElapsedTimer time;
    };

    Pointer& add(Step step);
    Pointer& addMove(const QWidget* widget, const QPoint& pos, QPoint (*destination)(const QPoint& target));
    void tick();
    void beginStep();
    void fail(const QString& reason);
    QStringList beginPress(Qt::MouseButton button, QStringList arguments);
    bool wouldBeDoubleClick(Qt::MouseButton button) const;

    std::deque<Step> m_steps;
    bool m_isStepBegun = false;
    QElapsedTimer m_stepTime;
    QTimer m_timer;
    QEventLoop m_loop;
    QProcess m_process;
    QString m_error;
    Received m_received;
    QPoint m_target;
    /// There is one mouse, however many hands take it in turn.
    static Press s_lastPress;
    static QPoint s_lastPosition;
    const QWidget* m_lastWidget = nullptr;
    QPoint m_lastPos;
};

/// Does what is queued, or ends the test function with what did not happen.
#define PLAY(actions)                                                                                                  \
    do {                                                                                                               \
        Pointer& played = (actions);                                                                                   \
        const bool isPlayed = played.play();                                                                           \
        QVERIFY2(isPlayed, qPrintable(played.error()));                                                                \
    } while (false)
