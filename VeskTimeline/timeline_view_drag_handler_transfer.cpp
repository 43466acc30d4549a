#include "failure_log_p.h"
#include "item_changes_p.h"
#include "landing_tracks_p.h"

#include <VeskTimeline/item.h>
#include <VeskTimeline/timeline_header_view.h>
#include <VeskTimeline/timeline_model.h>
#include <VeskTimeline/timeline_view.h>
#include <VeskTimeline/timeline_view_drag_handler.h>

#include <QDrag>
#include <QDragEnterEvent>
#include <QDragLeaveEvent>
#include <QDragMoveEvent>
#include <QDropEvent>
#include <QMimeData>

namespace VeskTimeline {

void TimelineViewDragHandler::startDragAndDrop()
{
    auto* const marker = new QMimeData;
    marker->setData(Item::mimetype, QByteArray());
    // Qt destroys the drag, and the data with it, when it is over.
    auto* const drag = new QDrag(m_view);
    drag->setMimeData(marker);
    drag->exec(Qt::MoveAction);
}

bool TimelineViewDragHandler::isOwnDrag(const QObject* source) const
{
    return isModelEditable() && source == m_view && !m_dragItemIds.isEmpty();
}

void TimelineViewDragHandler::dragEnterEvent(QDragEnterEvent* event)
{
    if (isOwnDrag(event->source()) && m_dragStartIndex.isValid() && event->mimeData()->hasFormat(Item::mimetype))
        event->acceptProposedAction();
    else
        event->ignore();
}

void TimelineViewDragHandler::dragMoveEvent(QDragMoveEvent* event)
{
    if (!isOwnDrag(event->source()) || !m_dragStartIndex.isValid()) {
        event->ignore();
        return;
    }
    if (!event->mimeData()->hasFormat(Item::mimetype))
        return;

    const QPoint pos = event->position().toPoint();
    m_dragPos = pos;
    try {
        if (TimelineHeaderView* const header = m_view->header())
            header->setHoverPosition(pos.x());
        event->setAccepted(canDragItemsTo(pos));
    } catch (...) {
        event->ignore();
        logCaughtException(m_view->logger(), Q_FUNC_INFO);
    }
    m_view->viewport()->update();
}

void TimelineViewDragHandler::dragLeaveEvent(QDragLeaveEvent* /*event*/)
{
    m_dragPos = QPoint();
}

void TimelineViewDragHandler::dropEvent(QDropEvent* event)
{
    if (!isOwnDrag(event->source())) {
        event->ignore();
        return;
    }
    if (!event->mimeData()->hasFormat(Item::mimetype))
        return;
    try {
        if (canDragItemsTo(event->position().toPoint()))
            dropItems();
    } catch (...) {
        logCaughtException(m_view->logger(), Q_FUNC_INFO);
    }
    clear();
    event->acceptProposedAction();
}

void TimelineViewDragHandler::dropItems()
{
    TimelineModel* const model = m_view->timelineModel();
    const qint64 dt = deltaTime();
    LandingTracks landingTrackOf(m_view, [this](const Item& item) { return dragItemTrackId(item); });
    const QVector<int> ids = m_dragItemIds;
    ItemChanges changes(*model, ids.size(), m_view->logger());
    for (const int id : ids) {
        const Item* const item = model->item(id);
        model->moveItemToTrack(id, landingTrackOf(*item), item->startTime() + dt);
    }
    changes.finish();
}

} // namespace VeskTimeline
