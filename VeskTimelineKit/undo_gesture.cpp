#include "undo_gesture_p.h"

#include <VeskTimeline/timeline_view_resize_handler.h>

#include <QCoreApplication>
#include <QGuiApplication>
#include <QKeyEvent>

namespace VeskTimeline::Kit {

UndoGesture::UndoGesture(TimelineView* view) : m_view(view)
{
    if (QCoreApplication* const application = QCoreApplication::instance())
        application->installEventFilter(this);
    if (view)
        connect(view, &TimelineView::currentItemTimeChanged, this, &UndoGesture::finish);
}

int UndoGesture::join(bool isResize)
{
    m_isResize |= isResize;
    if (!m_isWaiting)
        QMetaObject::invokeMethod(this, &UndoGesture::reachEventLoop, Qt::QueuedConnection);
    m_isWaiting = true;
    return m_serial;
}

void UndoGesture::finish()
{
    m_serial = ++m_lastSerial;
    m_isResize = false;
}

bool UndoGesture::isHeld() const
{
    if (m_view && m_view->resizeHandler() && m_view->resizeHandler()->isActive())
        return true;
    return QGuiApplication::mouseButtons().testFlag(Qt::LeftButton);
}

void UndoGesture::reachEventLoop()
{
    m_isWaiting = false;
    if (!m_isResize || !isHeld())
        finish();
}

bool UndoGesture::eventFilter(QObject* watched, QEvent* event)
{
    switch (event->type()) {
    case QEvent::KeyPress:
        finish();
        if (static_cast<QKeyEvent*>(event)->isAutoRepeat() && m_keySerial != 0)
            m_serial = m_keySerial;
        m_keySerial = m_serial;
        break;
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::Drop:
    case QEvent::TouchBegin:
        finish();
        break;
    default:
        break;
    }
    return QObject::eventFilter(watched, event);
}

} // namespace VeskTimeline::Kit
