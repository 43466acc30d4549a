#include "modifiers_p.h"

#include <VeskTimeline/timeline_header_view.h>
#include <VeskTimeline/timeline_header_view_mouse_handler.h>
#include <VeskTimeline/timeline_view.h>

#include <QMouseEvent>
#include <QWheelEvent>

#include <algorithm>

namespace VeskTimeline {

namespace {

// Width of the grip left of the border between track column and time column.
constexpr int borderGrip = 9;

} // namespace

TimelineHeaderViewMouseHandler::TimelineHeaderViewMouseHandler(TimelineHeaderView* header) : m_header(header)
{
}

TimelineHeaderViewMouseHandler::~TimelineHeaderViewMouseHandler() = default;

bool TimelineHeaderViewMouseHandler::isMouseWithinRangeX(int x) const
{
    return m_header->sectionPosition(1) < x && x < m_header->geometry().right();
}

bool TimelineHeaderViewMouseHandler::isMouseWithinRangeY(int y) const
{
    return m_header->geometry().top() < y && y < m_header->geometry().bottom();
}

bool TimelineHeaderViewMouseHandler::isMouseOverIndicator(const QPoint& pos) const
{
    const int half = m_header->height() / 4;
    const int indicator = m_header->indicatorPosition();
    const QRect ruler = m_header->geometry();
    return indicator - half <= pos.x() && pos.x() <= indicator + half && ruler.center().y() <= pos.y() &&
           pos.y() < ruler.bottom();
}

bool TimelineHeaderViewMouseHandler::isIndicatorMovableAt(const QPoint& pos) const
{
    return isMouseOverIndicator(pos) && m_header->isIndicatorVisible() && !m_header->indicatorLocked();
}

bool TimelineHeaderViewMouseHandler::isOverColumnBorder(int x) const
{
    const int border = m_header->sectionPosition(1);
    return border - borderGrip <= x && x < border;
}

void TimelineHeaderViewMouseHandler::setViewCursor(Qt::CursorShape shape)
{
    m_header->m_timelineView->setCursor(shape);
}

void TimelineHeaderViewMouseHandler::mousePressEvent(QMouseEvent* event)
{
    if (!m_header->m_timelineView)
        return;
    const QPoint pos = event->position().toPoint();
    if (event->button() == Qt::LeftButton) {
        m_lastPos = pos;
        m_isLeftButtonPressed = true;
        if (isIndicatorMovableAt(pos)) {
            setViewCursor(Qt::ClosedHandCursor);
            m_isIndicatorSelected = true;
        } else if (m_header->m_timelineView->cursor().shape() == Qt::SplitHCursor) {
            m_isResizingSection = true;
        }
    } else if (event->button() == Qt::RightButton) {
        m_isRightButtonPressed = true;
    }
}

void TimelineHeaderViewMouseHandler::updateColumnResize(const QPoint& pos)
{
    if (m_isResizingSection)
        m_header->resizeSection(0, std::min(pos.x(), m_header->width() / 2));
    else if (isOverColumnBorder(pos.x()))
        setViewCursor(Qt::SplitHCursor);
    else if (pos.y() <= m_header->geometry().bottom())
        setViewCursor(Qt::ArrowCursor);
}

void TimelineHeaderViewMouseHandler::mouseMoveEvent(QMouseEvent* event)
{
    if (!m_header->m_timelineView)
        return;
    const QPoint pos = event->position().toPoint();
    m_hasMouseMovedLeft = m_hasMouseMovedLeft || m_isLeftButtonPressed;
    m_hasMouseMovedRight = m_hasMouseMovedRight || m_isRightButtonPressed;

    updateColumnResize(pos);

    const bool isWithinTimeColumn = isMouseWithinRangeX(pos.x());
    if (!isWithinTimeColumn && !m_isLeftButtonPressed) {
        m_header->setHoverPosition(-1);
        return;
    }
    if (isWithinTimeColumn)
        m_header->setHoverPosition(pos.x());

    if (!m_isLeftButtonPressed) {
        if (isIndicatorMovableAt(pos))
            setViewCursor(Qt::OpenHandCursor);
        else if (pos.y() <= m_header->geometry().bottom())
            setViewCursor(Qt::ArrowCursor);
        return;
    }
    if (!m_isIndicatorSelected || m_header->indicatorLocked())
        return;
    setViewCursor(Qt::ClosedHandCursor);
    if (isWithinTimeColumn)
        m_header->setIndicatorPosition(pos.x());
}

void TimelineHeaderViewMouseHandler::releaseLeftButton(const QPoint& pos)
{
    if (!m_hasMouseMovedLeft && isMouseWithinRangeX(pos.x()) && !m_header->indicatorLocked())
        m_header->setIndicatorPosition(pos.x());
    setViewCursor(isMouseOverIndicator(pos) ? Qt::OpenHandCursor : Qt::ArrowCursor);
    m_lastPos = QPoint();
    m_isIndicatorSelected = false;
    m_isResizingSection = false;
    m_isLeftButtonPressed = false;
    m_hasMouseMovedLeft = false;
}

void TimelineHeaderViewMouseHandler::releaseRightButton()
{
    const int next = (m_header->dateTimeFormat() + 1) % DateTime::numberOfDateTimeFormats();
    m_header->setDateTimeFormat(static_cast<DateTime::Format>(next));
    m_isRightButtonPressed = false;
    m_hasMouseMovedRight = false;
}

void TimelineHeaderViewMouseHandler::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton && m_header->m_timelineView)
        releaseLeftButton(event->position().toPoint());
    else if (event->button() == Qt::RightButton)
        releaseRightButton();
}

void TimelineHeaderViewMouseHandler::wheelEvent(QWheelEvent* event)
{
    TimelineView* const view = m_header->m_timelineView;
    if (!view)
        return;
    const Zoom::Factor zoom = view->zoomFactor();
    const int delta = event->angleDelta().y();
    if (isExactlyControlHeld()) {
        view->setZoomFactor(delta < 0 ? Zoom::increment(zoom) : Zoom::decrement(zoom));
        return;
    }
    const int step = Zoom::majorInterval(zoom);
    view->setCurrentTime(view->currentTime() + (delta < 1 ? step : -step));
}

} // namespace VeskTimeline
