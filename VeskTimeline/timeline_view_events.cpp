#include "edge_grip_p.h"
#include "failure_log_p.h"
#include "modifiers_p.h"

#include <VeskTimeline/item_delegate.h>
#include <VeskTimeline/timeline_header_view_mouse_handler.h>
#include <VeskTimeline/timeline_model.h>
#include <VeskTimeline/timeline_view.h>
#include <VeskTimeline/timeline_view_drag_handler.h>
#include <VeskTimeline/timeline_view_resize_handler.h>
#include <VeskTimeline/timeline_view_selection_handler.h>
#include <VeskTimeline/timeline_view_track_handler.h>

#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>

namespace VeskTimeline {

namespace {

// Nothing may be thrown through Qt's event loop, whatever an application's model or handler does.
template <typename Body>
void guarded(IHoxLogger& logger, const char* signature, const Body& body)
{
    try {
        body();
    } catch (...) {
        logCaughtException(logger, signature);
    }
}

} // namespace

bool TimelineView::isEditable() const
{
    return m_timelineModel && m_timelineModel->isEditable();
}

bool TimelineView::isHeaderBusy() const
{
    return m_header && m_header->mouseHandler()->isBusy();
}

Qt::CursorShape TimelineView::cursorShape() const
{
    return cursor().shape();
}

void TimelineView::mousePressEvent(QMouseEvent* event)
{
    guarded(m_logger, Q_FUNC_INFO, [&] { routePress(event); });
}

void TimelineView::mouseReleaseEvent(QMouseEvent* event)
{
    guarded(m_logger, Q_FUNC_INFO, [&] { routeRelease(event); });
}

void TimelineView::mouseMoveEvent(QMouseEvent* event)
{
    guarded(m_logger, Q_FUNC_INFO, [&] { routeMove(event); });
}

void TimelineView::keyPressEvent(QKeyEvent* event)
{
    guarded(m_logger, Q_FUNC_INFO, [&] { routeKey(event); });
}

void TimelineView::mouseDoubleClickEvent(QMouseEvent* event)
{
    guarded(m_logger, Q_FUNC_INFO, [&] {
        if (m_trackHandler)
            m_trackHandler->mouseDoubleClickEvent(event);
        if (m_selectHandler)
            m_selectHandler->mouseDoubleClickEvent(event);
    });
}

void TimelineView::routePress(QMouseEvent* event)
{
    if (!m_model || !m_timelineModel)
        return;
    if (isHeaderBusy()) {
        m_header->mouseHandler()->mousePressEvent(event);
        return;
    }

    const QPoint pos = event->position().toPoint();
    if (indexAt(pos).column() == 0) {
        QTreeView::mousePressEvent(event);
        if (m_trackHandler)
            m_trackHandler->mousePressEvent(event);
        return;
    }

    if (m_resizeHandler && isEditable() && cursorShape() == Qt::SizeHorCursor) {
        m_resizeHandler->mousePressEvent(event);
        return;
    }
    if (m_selectHandler)
        m_selectHandler->mousePressEvent(event);
    if (isEditable() && m_dragHandler) {
        m_dragHandler->mousePressEvent(event);
        if (m_dragHandler->isActive())
            return;
    }
    if (event->button() == Qt::RightButton)
        Q_EMIT customContextMenuRequested(pos);
}

void TimelineView::updateHover(const QPoint& pos)
{
    m_header->setHoverPosition(isCursorWithinRange(pos) ? pos.x() : -1);
}

void TimelineView::routeMove(QMouseEvent* event)
{
    const QPoint pos = event->position().toPoint();
    // The text beside the mouse moves along, also where nothing else changes.
    if (m_isCursorTextVisible && pos != m_cursorPosition)
        viewport()->update();
    m_cursorPosition = pos;
    // The hover marker has the rows laid out anew, and a proxy may make its indexes anew with them.
    const QPersistentModelIndex index = indexAt(pos);

    if (m_header) {
        updateHover(pos);
        if (isHeaderBusy()) {
            m_header->mouseHandler()->mouseMoveEvent(event);
            return;
        }
        if (cursorShape() == Qt::SizeHorCursor && (!m_resizeHandler || !m_resizeHandler->isActive()))
            setCursor(Qt::ArrowCursor);
    }
    if (!m_model || !m_timelineModel || continueGesture(event))
        return;

    if (m_selectHandler)
        m_selectHandler->mouseMoveEvent(event);
    if (!index.isValid() || index.column() == 0) {
        if (isEditable() && m_resizeHandler && !m_resizeHandler->isActive())
            setCursor(Qt::ArrowCursor);
        event->ignore();
        return;
    }
    if (isEditable())
        updateEdgeCursor(index, pos.x());
}

// A move or a resize that is under way is told by its cursor.
bool TimelineView::continueGesture(QMouseEvent* event)
{
    if (!isEditable())
        return false;
    const Qt::CursorShape shape = cursorShape();
    const bool isMoving = shape == Qt::ClosedHandCursor || shape == Qt::ForbiddenCursor;
    if (m_dragHandler && isMoving && (!m_dragHandler->dragItemIds().isEmpty() || hasSelectedItems())) {
        m_dragHandler->mouseMoveEvent(event);
        return true;
    }
    if (m_resizeHandler && shape == Qt::SizeHorCursor && m_resizeHandler->isActive()) {
        m_resizeHandler->mouseMoveEvent(event);
        return true;
    }
    return false;
}

void TimelineView::updateEdgeCursor(const QModelIndex& index, int x)
{
    setCursor(isOverEdge(index, x) ? Qt::SizeHorCursor : Qt::ArrowCursor);
}

bool TimelineView::isOverEdge(const QModelIndex& index, int x) const
{
    try {
        const Track* const track = m_timelineModel->track(index.data(Qt::DisplayRole).toInt());
        const Item* const item = track->itemAt(toTime(x));
        return EdgeGrip{toPixel(item->startTime()), toPixel(item->startTime() + item->duration())}.holds(x);
    } catch (...) {
        // Empty space, like a track that has gone, has no edges.
        return false;
    }
}

void TimelineView::routeRelease(QMouseEvent* event)
{
    if (!m_model || !m_timelineModel)
        return;
    if (isHeaderBusy()) {
        m_header->mouseHandler()->mouseReleaseEvent(event);
        return;
    }
    if (m_trackHandler)
        m_trackHandler->mouseReleaseEvent(event);
    if (isEditable() && m_dragHandler && m_dragHandler->isActive())
        m_dragHandler->mouseReleaseEvent(event);
    else if (isEditable() && m_resizeHandler && m_resizeHandler->isActive())
        m_resizeHandler->mouseReleaseEvent(event);
    else if (m_selectHandler && (m_selectHandler->isActive() || !isEditable()))
        m_selectHandler->mouseReleaseEvent(event);
    viewport()->update();
}

void TimelineView::routeKey(QKeyEvent* event)
{
    if (!m_model || !m_timelineModel)
        return;
    if (isEditable()) {
        if (m_resizeHandler && m_resizeHandler->isActive())
            return;
        if (m_dragHandler)
            m_dragHandler->keyPressEvent(event);
    }
    if (m_selectHandler)
        m_selectHandler->keyPressEvent(event);
    viewport()->update();
}

bool TimelineView::isOverHeader(const QPointF& pos) const
{
    return m_header && viewport()->mapTo(this, pos.toPoint()).y() <= m_header->geometry().bottom();
}

void TimelineView::wheelEvent(QWheelEvent* event)
{
    guarded(m_logger, Q_FUNC_INFO, [&] {
        if (isOverHeader(event->position()))
            m_header->wheelEvent(event);
        else if (isExactlyControlHeld())
            setZoomFactor(event->angleDelta().y() < 0 ? Zoom::increment(m_zoomFactor) : Zoom::decrement(m_zoomFactor));
        else
            QAbstractScrollArea::wheelEvent(event);
    });
}

void TimelineView::dragEnterEvent(QDragEnterEvent* event)
{
    guarded(m_logger, Q_FUNC_INFO, [&] {
        if (m_dragHandler)
            m_dragHandler->dragEnterEvent(event);
    });
}

void TimelineView::dragMoveEvent(QDragMoveEvent* event)
{
    guarded(m_logger, Q_FUNC_INFO, [&] {
        if (m_dragHandler)
            m_dragHandler->dragMoveEvent(event);
    });
}

void TimelineView::dragLeaveEvent(QDragLeaveEvent* event)
{
    guarded(m_logger, Q_FUNC_INFO, [&] {
        if (m_dragHandler)
            m_dragHandler->dragLeaveEvent(event);
    });
}

void TimelineView::dropEvent(QDropEvent* event)
{
    guarded(m_logger, Q_FUNC_INFO, [&] {
        if (m_dragHandler)
            m_dragHandler->dropEvent(event);
    });
}

void TimelineView::paintEvent(QPaintEvent* event)
{
    guarded(m_logger, Q_FUNC_INFO, [&] {
        // The tree view paints with a painter of its own, and a widget takes one at a time.
        QTreeView::paintEvent(event);
        QPainter painter(viewport());
        painter.save();
        if (const auto* const delegate = qobject_cast<ItemDelegate*>(QTreeView::itemDelegate());
            delegate && m_dragHandler)
            delegate->paintDragItems(&painter);
        painter.restore();
        painter.save();
        painter.setClipping(true);
        paintOverlays(&painter);
        painter.restore();
    });
}

void TimelineView::paintOverlays(QPainter* painter)
{
    if (m_selectHandler && m_selectHandler->isRubberBandActive())
        paintRubberBand(painter);
    if (!m_header)
        return;

    const int indicator = m_header->indicatorPosition();
    if (m_header->isIndicatorVisible() && indicator != -1 && indicator >= m_header->sectionPosition(1))
        paintVerticalLine(painter, indicator, TimelineHeaderView::highlightColor());

    if (m_header->isHoverVisible() && m_header->hoverPosition() != -1) {
        paintVerticalLine(painter, m_header->hoverPosition(), TimelineHeaderView::highlightColor());
        if (m_isCursorTextVisible && !m_cursorText.isEmpty())
            paintCursorText(painter);
    }

    const qint64 liveTime = m_header->liveIndicatorTime();
    if (m_header->isLiveIndicatorVisible() && liveTime != -1 && m_currentTime <= liveTime &&
        liveTime <= m_currentTime + m_zoomFactor)
        paintVerticalLine(painter, m_header->liveIndicatorPosition(), m_header->liveIndicatorColor());
}

void TimelineView::paintRubberBand(QPainter* painter)
{
    constexpr int translucent = 100;
    QColor fill = TimelineHeaderView::highlightColor();
    painter->setPen(fill);
    fill.setAlpha(translucent);
    painter->setBrush(fill);
    painter->drawRect(m_selectHandler->rubberBand());
}

void TimelineView::paintVerticalLine(QPainter* painter, int x, const QColor& color)
{
    painter->setPen(color);
    painter->drawLine(x, 0, x, geometry().bottom());
}

void TimelineView::paintCursorText(QPainter* painter)
{
    constexpr int boxHeight = 22;
    constexpr int border = 1;
    const int textWidth = painter->fontMetrics().horizontalAdvance(m_cursorText);
    const QRect box(m_cursorPosition.x(), m_cursorPosition.y() - boxHeight, textWidth + 2 * border, boxHeight);
    painter->setBrush(TimelineHeaderView::backgroundColor());
    painter->drawRect(box);
    painter->drawText(box.adjusted(border, border, -border, -border), Qt::AlignCenter, m_cursorText);
}

} // namespace VeskTimeline
