#include "x11/pointer.h"

#include <QApplication>
#include <QCursor>
#include <QMouseEvent>
#include <QScreen>
#include <QTest>
#include <QWidget>

namespace {

constexpr int patience = 5000;
constexpr int pollInterval = 5;
constexpr int wheelUp = 4;
constexpr int wheelDown = 5;

QString buttonNumber(Qt::MouseButton button)
{
    switch (button) {
    case Qt::LeftButton:
        return QStringLiteral("1");
    case Qt::MiddleButton:
        return QStringLiteral("2");
    default:
        return QStringLiteral("3");
    }
}

bool always()
{
    return true;
}

QStringList nothing()
{
    return {};
}

QStringList moveCommand(const QPoint& pos)
{
    return {QStringLiteral("mousemove"), QString::number(pos.x()), QString::number(pos.y())};
}

QString described(const QWidget* widget, const QPoint& pos)
{
    return QStringLiteral("%1 (%2, %3)")
        .arg(QString::fromLatin1(widget->metaObject()->className()))
        .arg(pos.x())
        .arg(pos.y());
}

} // namespace

Pointer::Press Pointer::s_lastPress;
QPoint Pointer::s_lastPosition;

Pointer::Pointer()
{
    m_timer.setInterval(pollInterval);
    connect(&m_timer, &QTimer::timeout, this, &Pointer::tick);
    m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
}

Pointer::~Pointer()
{
    m_process.waitForFinished();
}

Pointer& Pointer::add(Step step)
{
    m_steps.push_back(std::move(step));
    return *this;
}

Pointer& Pointer::moveTo(const QWidget* widget, const QPoint& pos)
{
    m_lastWidget = widget;
    m_lastPos = pos;
    // Qt drops a motion that ends where the last one it knows of has ended, even when the mouse has been elsewhere
    // since then. It comes by way of the pixel beside it.
    addMove(widget, pos,
            [](const QPoint& target) { return s_lastPosition == target ? target + QPoint(1, 0) : QCursor::pos(); });
    return addMove(widget, pos, [](const QPoint& target) { return target; });
}

Pointer& Pointer::addMove(const QWidget* widget, const QPoint& pos, QPoint (*destination)(const QPoint& target))
{
    const auto begin = [this, widget, pos, destination]() -> QStringList {
        const QPoint target = widget->mapToGlobal(pos);
        m_target = QCursor::pos() == target ? target : destination(target);
        // The server reports no motion to where the mouse is already.
        if (QCursor::pos() != m_target)
            return moveCommand(m_target);
        m_received.position = m_target;
        return {};
    };
    return add({QStringLiteral("move to ") + described(widget, pos), always, begin,
                [this] { return m_received.position == m_target; }});
}

Pointer& Pointer::moveAway()
{
    const auto begin = [this] {
        m_target = QGuiApplication::primaryScreen()->geometry().bottomRight();
        return moveCommand(m_target);
    };
    return add({QStringLiteral("move away"), always, begin, [this] { return QCursor::pos() == m_target; }});
}

bool Pointer::wouldBeDoubleClick(Qt::MouseButton button) const
{
    constexpr int reach = 10;
    return s_lastPress.button == button && (QCursor::pos() - s_lastPress.pos).manhattanLength() <= reach &&
           s_lastPress.time.elapsed() <= QApplication::doubleClickInterval() * 5 / 4;
}

QStringList Pointer::beginPress(Qt::MouseButton button, QStringList arguments)
{
    s_lastPress.button = button;
    s_lastPress.pos = QCursor::pos();
    s_lastPress.time.start();
    return arguments << buttonNumber(button);
}

Pointer& Pointer::press(Qt::MouseButton button)
{
    return add({QStringLiteral("press"), [this, button] { return !wouldBeDoubleClick(button); },
                [this, button] { return beginPress(button, {QStringLiteral("mousedown")}); },
                [button] { return QGuiApplication::mouseButtons().testFlag(button); }});
}

Pointer& Pointer::release(Qt::MouseButton button)
{
    return add({QStringLiteral("release"), always,
                [button] {
                    return QStringList{QStringLiteral("mouseup"), buttonNumber(button)};
                },
                [button] { return !QGuiApplication::mouseButtons().testFlag(button); }});
}

Pointer& Pointer::click(Qt::MouseButton button)
{
    return press(button).release(button);
}

Pointer& Pointer::doubleClick()
{
    const QStringList twice = {QStringLiteral("click"), QStringLiteral("--repeat"), QStringLiteral("2"),
                               QStringLiteral("--delay"), QStringLiteral("20")};
    return add({QStringLiteral("double click"), [this] { return !wouldBeDoubleClick(Qt::LeftButton); },
                [this, twice] { return beginPress(Qt::LeftButton, twice); },
                [this] { return m_received.doubleClicks == 1 && QGuiApplication::mouseButtons() == Qt::NoButton; }});
}

Pointer& Pointer::glideTo(const QPoint& pos)
{
    constexpr int steps = 4;
    const QPoint from = m_lastPos;
    for (int i = 1; i <= steps; ++i)
        moveTo(m_lastWidget, from + (pos - from) * i / steps);
    return *this;
}

Pointer& Pointer::drag(const QWidget* widget, const QPoint& from, const QPoint& to)
{
    return moveTo(widget, from).press().glideTo(to).release();
}

Pointer& Pointer::wheel(int notches)
{
    const int count = qAbs(notches);
    const QStringList command = {QStringLiteral("click"), QStringLiteral("--repeat"),
                                 QString::number(count),  QStringLiteral("--delay"),
                                 QStringLiteral("5"),     QString::number(notches > 0 ? wheelUp : wheelDown)};
    return add({QStringLiteral("turn the wheel"), always, [command] { return command; },
                [this, count] { return m_received.wheels == count; }});
}

Pointer& Pointer::key(const QString& name)
{
    const auto count = static_cast<int>(name.count(u'+')) + 1;
    // The last release may find the window gone that the press has closed.
    const int releases = count - 1;
    return add(
        {QStringLiteral("key ") + name, [] { return QGuiApplication::focusWindow() != nullptr; },
         [name] {
             return QStringList{QStringLiteral("key"), name};
         },
         [this, count, releases] { return m_received.keyPresses >= count && m_received.keyReleases >= releases; }});
}

Pointer& Pointer::shortcut(const QString& name)
{
    // The application is asked about the key; where a shortcut takes it, that is the last to be seen of the press.
    return add({QStringLiteral("shortcut ") + name, [] { return QGuiApplication::focusWindow() != nullptr; },
                [name] {
                    return QStringList{QStringLiteral("key"), name};
                },
                [this] {
                    return m_received.shortcutOverrides > 0 &&
                           QGuiApplication::queryKeyboardModifiers() == Qt::NoModifier;
                }});
}

Pointer& Pointer::type(const QString& text)
{
    const QStringList command = {QStringLiteral("type"), QStringLiteral("--delay"), QStringLiteral("2"),
                                 QStringLiteral("--"), text};
    return add({QStringLiteral("type ") + text, [] { return QGuiApplication::focusWindow() != nullptr; },
                [command] { return command; },
                [this, text] { return m_received.keyPresses >= static_cast<int>(text.size()); }});
}

Pointer& Pointer::keyDown(const QString& name)
{
    return add({QStringLiteral("key down ") + name, [] { return QGuiApplication::focusWindow() != nullptr; },
                [name] {
                    return QStringList{QStringLiteral("keydown"), name};
                },
                [this] { return m_received.keyPresses == 1; }});
}

Pointer& Pointer::keyUp(const QString& name)
{
    return add({QStringLiteral("key up ") + name, always,
                [name] {
                    return QStringList{QStringLiteral("keyup"), name};
                },
                [this] { return m_received.keyReleases == 1; }});
}

Pointer& Pointer::expect(const QString& condition, std::function<bool()> holds)
{
    return add({condition, always, nothing, std::move(holds)});
}

Pointer& Pointer::then(std::function<void()> action)
{
    const auto begin = [action = std::move(action)]() -> QStringList {
        action();
        return {};
    };
    return add({QStringLiteral("action"), always, begin, always});
}

bool Pointer::play()
{
    m_error.clear();
    m_isStepBegun = false;
    m_stepTime.start();
    m_timer.start();
    if (!m_steps.empty())
        m_loop.exec();
    m_timer.stop();
    return m_error.isEmpty();
}

void Pointer::beginStep()
{
    // Whoever filters last sees first: a drag and drop takes the events of the mouse for itself.
    qApp->removeEventFilter(this);
    qApp->installEventFilter(this);
    m_received = Received();
    const QStringList arguments = m_steps.front().begin();
    if (!arguments.isEmpty())
        m_process.start(QStringLiteral("xdotool"), arguments);
    m_isStepBegun = true;
}

void Pointer::tick()
{
    while (!m_steps.empty()) {
        const Step& step = m_steps.front();
        if (m_stepTime.elapsed() > patience) {
            fail(step.name);
            return;
        }
        if (!m_isStepBegun && step.isReady())
            beginStep();
        if (!m_isStepBegun || m_process.state() != QProcess::NotRunning || !step.isDone())
            return;
        m_steps.pop_front();
        m_isStepBegun = false;
        m_stepTime.start();
    }
    m_loop.quit();
    if (m_stepTime.elapsed() > patience)
        fail(QStringLiteral("return of the event handler; the actions end in the middle of a drag and drop"));
}

void Pointer::fail(const QString& reason)
{
    if (m_error.isEmpty())
        m_error = QStringLiteral("did not happen: ") + reason;
    m_process.kill();
    m_process.waitForFinished();
    // Escape ends a drag and drop; nobody else is to find a button or a key held.
    QProcess::execute(QStringLiteral("xdotool"),
                      {QStringLiteral("key"), QStringLiteral("Escape"), QStringLiteral("mouseup"), QStringLiteral("1"),
                       QStringLiteral("mouseup"), QStringLiteral("3"), QStringLiteral("keyup"), QStringLiteral("ctrl"),
                       QStringLiteral("keyup"), QStringLiteral("shift")});
    m_steps.clear();
    m_stepTime.start();
    m_loop.quit();
}

bool Pointer::eventFilter(QObject* watched, QEvent* event)
{
    // Sent to the widget that has the keyboard.
    if (event->type() == QEvent::ShortcutOverride) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        const bool isModifier = key >= Qt::Key_Shift && key <= Qt::Key_Alt;
        m_received.shortcutOverrides += isModifier ? 0 : 1;
    }
    // Windows receive first what the server sends; widgets get it from them.
    if (!watched->isWindowType())
        return false;
    switch (event->type()) {
    case QEvent::MouseMove:
        m_received.position = static_cast<QMouseEvent*>(event)->globalPosition().toPoint();
        s_lastPosition = m_received.position;
        break;
    case QEvent::MouseButtonDblClick:
        ++m_received.doubleClicks;
        break;
    case QEvent::Wheel:
        ++m_received.wheels;
        break;
    case QEvent::KeyPress:
        ++m_received.keyPresses;
        break;
    case QEvent::KeyRelease:
        ++m_received.keyReleases;
        break;
    default:
        break;
    }
    return false;
}
