#include "snap_suspender.h"

#include <VeskTimeline/timeline_model.h>
#include <VeskTimeline/timeline_view.h>

#include <QCoreApplication>
#include <QDropEvent>
#include <QKeyEvent>
#include <QMouseEvent>

namespace Workbench {

using namespace VeskTimeline;

SnapSuspender::SnapSuspender(TimelineModel* model, TimelineView* view)
    : QObject(view), m_model(model), m_viewport(view->viewport())
{
    // Keys go to whatever has the focus.
    QCoreApplication::instance()->installEventFilter(this);
}

void SnapSuspender::update()
{
    const bool isWanted = m_isHeld && m_isShift;
    if (!m_model || isWanted == m_isSuspending || (isWanted && !m_model->isSnapEnabled()))
        return;
    m_isSuspending = isWanted;
    m_model->setSnapEnabled(!isWanted);
    if (m_viewport)
        m_viewport->update();
}

void SnapSuspender::filterMouse(QEvent* event)
{
    switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseMove: {
        const auto* const mouse = static_cast<QMouseEvent*>(event);
        m_isHeld = mouse->buttons().testFlag(Qt::LeftButton);
        m_isShift = mouse->modifiers().testFlag(Qt::ShiftModifier);
        update();
        break;
    }
    case QEvent::DragMove:
        m_isHeld = true;
        m_isShift = static_cast<QDropEvent*>(event)->modifiers().testFlag(Qt::ShiftModifier);
        update();
        break;
    case QEvent::MouseButtonRelease:
    case QEvent::Drop:
        // The view still has to place the items.
        m_isHeld = false;
        QMetaObject::invokeMethod(this, &SnapSuspender::update, Qt::QueuedConnection);
        break;
    case QEvent::DragLeave:
        m_isHeld = false;
        update();
        break;
    default:
        break;
    }
}

void SnapSuspender::filterKey(QEvent* event)
{
    if (static_cast<QKeyEvent*>(event)->key() != Qt::Key_Shift)
        return;
    m_isShift = event->type() == QEvent::KeyPress;
    update();
}

bool SnapSuspender::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::KeyPress || event->type() == QEvent::KeyRelease)
        filterKey(event);
    else if (watched == m_viewport)
        filterMouse(event);
    return QObject::eventFilter(watched, event);
}

} // namespace Workbench
