#include "row_handlers.h"

#include <VeskTimeline/timeline_model.h>
#include <VeskTimeline/timeline_view.h>

#include <QKeyEvent>
#include <QMouseEvent>

namespace Workbench {

using namespace VeskTimeline;

namespace {

// 0 beside the rows.
int trackIdAt(const TimelineView& view, const QPoint& pos)
{
    return view.indexAt(pos).siblingAtColumn(1).data(Qt::DisplayRole).toInt();
}

bool isItemAt(const TimelineView& view, int trackId, const QPoint& pos)
{
    try {
        view.timelineModel()->track(trackId)->itemAt(view.toTime(pos.x()));
        return true;
    } catch (const QString&) {
        return false;
    }
}

} // namespace

RowSelectHandler::RowSelectHandler(TimelineView* view, const RowRequests& requests)
    : TimelineViewSelectHandler(view), m_requests(requests)
{
}

void RowSelectHandler::mousePressEvent(QMouseEvent* event)
{
    m_requests.rowPressed(trackIdAt(*m_view, event->position().toPoint()));
    if (event->button() != Qt::RightButton)
        TimelineViewSelectHandler::mousePressEvent(event);
}

void RowSelectHandler::mouseDoubleClickEvent(QMouseEvent* event)
{
    const QPoint pos = event->position().toPoint();
    const QModelIndex index = m_view->indexAt(pos);
    const bool isTimeCell = index.isValid() && index.column() == 1;
    const int trackId = trackIdAt(*m_view, pos);
    const TimelineModel* const model = m_view->timelineModel();
    if (event->button() != Qt::LeftButton || !isTimeCell || !model || isItemAt(*m_view, trackId, pos)) {
        TimelineViewSelectHandler::mouseDoubleClickEvent(event);
        return;
    }
    m_view->clearSelectedItems();
    if (model->isEditable())
        m_requests.emptyPlaceActivated(trackId, m_view->toTime(pos.x()));
}

void RowSelectHandler::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Delete)
        m_requests.removeItems();
    else
        TimelineViewSelectHandler::keyPressEvent(event);
}

RowTrackHandler::RowTrackHandler(TimelineView* view, const RowRequests& requests)
    : TimelineViewTrackHandler(view), m_requests(requests)
{
}

void RowTrackHandler::mousePressEvent(QMouseEvent* event)
{
    m_requests.rowPressed(trackIdAt(*m_view, event->position().toPoint()));
    TimelineViewTrackHandler::mousePressEvent(event);
}

void RowTrackHandler::mouseDoubleClickEvent(QMouseEvent* event)
{
    TimelineViewTrackHandler::mouseDoubleClickEvent(event);
    const QPoint pos = event->position().toPoint();
    const QModelIndex index = m_view->indexAt(pos);
    if (event->button() != Qt::LeftButton || !index.isValid() || index.column() != 0)
        return;
    // The buttons are squares of half the cell's height at its right end.
    const QRect cell = m_view->visualRect(index);
    if (pos.x() < cell.right() - cell.height() / 2)
        m_requests.nameActivated(trackIdAt(*m_view, pos));
}

} // namespace Workbench
