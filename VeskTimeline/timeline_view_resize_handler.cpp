#include "edge_grip_p.h"
#include "failure_log_p.h"
#include "item_index_p.h"
#include "snap_candidates_p.h"
#include "time_grid_p.h"
#include "track_cell_p.h"

#include <VeskTimeline/timeline_model.h>
#include <VeskTimeline/timeline_view.h>
#include <VeskTimeline/timeline_view_resize_handler.h>

#include <QMouseEvent>

#include <algorithm>
#include <cstdlib>

namespace VeskTimeline {

namespace {

qint64 endOf(const Item& item)
{
    return item.startTime() + item.duration();
}

// Where the item stands in a long list; the list's size when that is not known.
std::size_t positionOf(const Track& track, const Item* item)
{
    const ItemIndex* const index = ItemIndex::of(track);
    return index && item ? index->positionOf(track.items(), *item) : track.items().size();
}

// As Track::previous() and Track::next(), which go through the list.

const Item& previousOf(const Track& track, const Item* item, int itemId)
{
    const std::size_t position = positionOf(track, item);
    return position > 0 && position < track.items().size() ? *track.items()[position - 1] : *track.previous(itemId);
}

const Item& nextOf(const Track& track, const Item* item, int itemId)
{
    const std::size_t position = positionOf(track, item) + 1;
    return position < track.items().size() ? *track.items()[position] : *track.next(itemId);
}

} // namespace

TimelineViewResizeHandler::TimelineViewResizeHandler(TimelineView* view) : m_view(view)
{
}

TimelineViewResizeHandler::~TimelineViewResizeHandler() = default;

bool TimelineViewResizeHandler::isModelEditable() const
{
    return m_view->timelineModel() && m_view->timelineModel()->isEditable();
}

bool TimelineViewResizeHandler::holdsEdge() const
{
    return m_currentItemId != -1 && m_resizePos != eNone;
}

bool TimelineViewResizeHandler::isActive() const
{
    return m_currentTrackId != -1 && holdsEdge();
}

void TimelineViewResizeHandler::mousePressEvent(QMouseEvent* event)
{
    if (!isModelEditable() || event->button() != Qt::LeftButton)
        return;
    try {
        takeEdgeUnder(event->position().toPoint());
    } catch (...) {
        logCaughtException(m_view->logger(), Q_FUNC_INFO);
    }
}

void TimelineViewResizeHandler::takeEdgeUnder(const QPoint& pos)
{
    const QModelIndex index = m_view->indexAt(pos);
    if (!isTimeCell(index))
        return;
    const Track* const track = m_view->timelineModel()->track(trackIdOfCell(index));
    const Item* const item = track->itemAt(m_view->toTime(pos.x()));
    if (!item->isEditable())
        return;

    const EdgeGrip grip{m_view->toPixel(item->startTime()), m_view->toPixel(endOf(*item))};
    if (!grip.holds(pos.x())) {
        m_resizePos = eNone;
        return;
    }
    m_resizePos = grip.isEnd(pos.x()) ? eEnd : eStart;
    m_currentTrackId = track->id();
    m_currentItemId = item->id();
}

void TimelineViewResizeHandler::mouseMoveEvent(QMouseEvent* event)
{
    if (!isModelEditable() || !isActive())
        return;
    try {
        resizeTo(event->position().toPoint());
    } catch (...) {
        mouseReleaseEvent(event);
        // The event is a move, no release of the left button; the resize is over all the same.
        if (isActive())
            finish();
        m_view->viewport()->update();
    }
}

void TimelineViewResizeHandler::resizeTo(const QPoint& pos)
{
    TimelineModel* const model = m_view->timelineModel();
    if (!model->item(m_currentItemId)->isEditable())
        return;
    const QModelIndex index = m_view->indexAt(pos);
    if (!isTimeCell(index))
        return;
    Track* const track = model->track(trackIdOfCell(index));
    if (track->id() != m_currentTrackId)
        return;

    const qint64 time = model->isSnapEnabled() ? globalSnapTime(pos.x()) : localSnapTime(pos.x());
    Item* const item = model->item(m_currentItemId);
    if (m_resizePos == eEnd)
        resizeEnd(*track, *item, time);
    else
        resizeStart(*track, *item, time);
}

void TimelineViewResizeHandler::resizeEnd(Track& track, Item& item, qint64 time)
{
    TimelineModel* const model = m_view->timelineModel();
    const auto duration = static_cast<int>(time - item.startTime());
    if (duration == item.duration() || !model->canResizeItem(item, item.startTime(), duration))
        return;
    model->setItemDuration(track, item, duration);
    m_view->viewport()->update();
}

void TimelineViewResizeHandler::resizeStart(Track& track, Item& item, qint64 time)
{
    TimelineModel* const model = m_view->timelineModel();
    const auto duration = static_cast<int>(endOf(item) - time);
    if (time == item.startTime() || !model->canResizeItem(item, time, duration))
        return;
    // The duration first: so the end stays where it is for whoever watches the two writes.
    model->setItemDuration(track, item, duration);
    m_view->viewport()->update();
    model->setItemStartTime(track, item, time);
    m_view->viewport()->update();
}

void TimelineViewResizeHandler::mouseReleaseEvent(QMouseEvent* event)
{
    if (isModelEditable() && event->button() == Qt::LeftButton)
        finish();
}

void TimelineViewResizeHandler::finish()
{
    Q_EMIT m_view->currentItemTimeChanged();
    m_view->setCursor(Qt::ArrowCursor);
    clear();
}

void TimelineViewResizeHandler::clear()
{
    m_currentTrackId = -1;
    m_currentItemId = -1;
    m_resizePos = eNone;
}

qint64 TimelineViewResizeHandler::localSnapTime(int x) const
{
    const qint64 time = m_view->toTime(x);
    if (!holdsEdge())
        return time;
    const TimelineModel* const model = m_view->timelineModel();
    const Track* const track = model->track(m_currentTrackId);
    const Item* const item = model->item(m_currentItemId);
    try {
        return m_resizePos == eEnd ? localEndTime(*track, *item, time) : localStartTime(*track, *item, time);
    } catch (const QString&) {
        // No neighbour bounds the edge.
        logCaughtException(m_view->logger(), Q_FUNC_INFO);
        return time;
    }
}

qint64 TimelineViewResizeHandler::localEndTime(const Track& track, const Item& item, qint64 time) const
{
    if (time <= item.startTime())
        return item.startTime() + m_view->timelineModel()->minimumDuration();
    return std::min(time, nextOf(track, &item, item.id()).startTime());
}

qint64 TimelineViewResizeHandler::localStartTime(const Track& track, const Item& item, qint64 time) const
{
    if (time >= endOf(item))
        return endOf(item) - m_view->timelineModel()->minimumDuration();
    return std::max(time, endOf(previousOf(track, &item, item.id())));
}

const Item* TimelineViewResizeHandler::findHeldItem() const
{
    try {
        return std::as_const(*m_view->timelineModel()).item(m_currentItemId);
    } catch (const QString&) {
        return nullptr;
    }
}

TimelineViewResizeHandler::Bounds TimelineViewResizeHandler::neighbourBounds(const Track& track,
                                                                             const char* signature) const
{
    Bounds bounds{m_view->startTime(), m_view->endTime()};
    const Item* const item = findHeldItem();
    try {
        bounds.lower = endOf(previousOf(track, item, m_currentItemId));
    } catch (const QString&) {
        logCaughtException(m_view->logger(), signature, Hox::Debug);
    }
    try {
        bounds.upper = nextOf(track, item, m_currentItemId).startTime();
    } catch (const QString&) {
        logCaughtException(m_view->logger(), signature, Hox::Debug);
    }
    return bounds;
}

qint64 TimelineViewResizeHandler::globalSnapTime(int x) const
{
    const TimelineModel* const model = m_view->timelineModel();
    if (!model)
        return m_view->toTime(x);
    const qint64 gridTime = truncatedToGrid(m_view->toTime(x), model->snapStep());
    if (!holdsEdge())
        return gridTime;

    const Bounds bounds = neighbourBounds(*model->track(m_currentTrackId), Q_FUNC_INFO);
    const Item* const item = model->item(m_currentItemId);
    const qint64 time = snappedToEdges(*item, gridTime, Q_FUNC_INFO);
    if (isBeyondOtherEdge(*item, time)) {
        const int minimum = model->minimumDuration();
        return m_resizePos == eStart ? endOf(*item) - minimum : item->startTime() + minimum;
    }
    return std::min(std::max(time, bounds.lower), bounds.upper);
}

bool TimelineViewResizeHandler::isBeyondOtherEdge(const Item& item, qint64 time) const
{
    return m_resizePos == eStart ? time >= endOf(item) : time <= item.startTime();
}

// The edge of another item that lies within the tolerance of a time, its start before its end.
bool TimelineViewResizeHandler::snapCandidate(const Item& other, qint64 time, qint64* candidate) const
{
    const qint64 tolerance = m_view->timelineModel()->snapTolerance();
    for (const qint64 edge : {other.startTime(), endOf(other)}) {
        if (time - tolerance < edge && edge < time + tolerance) {
            *candidate = edge;
            return true;
        }
    }
    return false;
}

qint64 TimelineViewResizeHandler::snappedToEdges(const Item& item, qint64 gridTime, const char* signature) const
{
    const TimelineModel* const model = m_view->timelineModel();
    const SnapCandidates candidates(
        *model, [this](int id) { return id == m_currentItemId; },
        [&] { logCaughtException(m_view->logger(), signature); });
    qint64 result = gridTime;
    int best = 2 * model->snapTolerance();
    // Whatever the result has moved to, an edge farther from the grid line than this is never taken.
    const TimeWindow edges{gridTime - best + 1, gridTime + best - 1};
    for (const Item* const other : candidates.find(edges, edges)) {
        qint64 candidate = 0;
        if (!snapCandidate(*other, result, &candidate) || std::abs(candidate - gridTime) >= best ||
            isBeyondOtherEdge(item, candidate))
            continue;
        result = candidate;
        // Signed on purpose: an edge before the grid line is final, one behind it may still be replaced by a nearer.
        best = static_cast<int>(candidate - gridTime);
    }
    return result;
}

} // namespace VeskTimeline
