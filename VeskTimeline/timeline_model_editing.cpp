#include "failure_log_p.h"
#include "time_grid_p.h"

#include <VeskTimeline/timeline_model.h>
#include <VeskTimeline/timeline_view.h>
#include <VeskTimeline/timeline_view_drag_handler.h>

namespace VeskTimeline {

namespace {

// New items are cut to whole seconds, whatever the snap step.
constexpr int wholeSecond = 1000;

} // namespace

void TimelineModel::setMinimumDuration(int duration)
{
    if (duration < 0) {
        VESK_LOG(m_logger, Hox::Warning) << Q_FUNC_INFO
                                         << " negative duration is not possible -> setting minimum duration to 0";
        duration = 0;
    }
    if (m_isSnapEnabled && duration % wholeSecond != 0) {
        VESK_LOG(m_logger, Hox::Warning)
            << Q_FUNC_INFO
            << " Snapping to 1000ms enabled, yet minimum duration is not a multiple of 1000ms: " << duration;
    }
    m_minItemDuration = duration;
}

qint64 TimelineModel::snapTime(qint64 time) const
{
    return m_isSnapEnabled ? truncatedToGrid(time, m_snapStep) : time;
}

int TimelineModel::addItem(int parentTrackId, ItemPtr&& itemPtr, bool /*forceTheCompilerToUseMe*/)
{
    const int id = nextFreeItemId();
    itemPtr->m_id = id;
    itemPtr->m_parentTrackId = parentTrackId;
    if (m_isSnapEnabled) {
        itemPtr->_setStartTime(truncatedToGrid(itemPtr->startTime(), wholeSecond));
        itemPtr->_setDuration(itemPtr->duration() - itemPtr->duration() % wholeSecond);
    }
    Item* const added = track(parentTrackId)->addItem(std::move(itemPtr));
    m_itemCache.insert_or_assign(m_itemCache.end(), id, added);

    const QModelIndex row = indexOfTrack(parentTrackId);
    Q_EMIT dataChanged(row, row);
    return id;
}

void TimelineModel::removeItem(int itemId)
{
    const Item* const removed = item(itemId);
    Track* const owner = track(removed->parentTrackId());
    if (!owner->takeOwnItem(*removed))
        owner->removeItem(itemId);
    if (m_itemCache.erase(itemId) == 0)
        Q_ASSERT(false);
}

void TimelineModel::removeTrack(int trackId)
{
    if (trackId == m_rootTrack.id())
        Q_ASSERT(false);

    Track* const removed = track(trackId);
    Track* const parentTrack = track(removed->parentId());
    for (const int itemId : removed->itemIds(true, false)) {
        if (m_itemCache.erase(itemId) == 0)
            Q_ASSERT(false);
    }
    parentTrack->removeTrack(trackId);
    if (m_trackCache.erase(trackId) == 0)
        Q_ASSERT(false);
}

void TimelineModel::moveItemToTrack(int itemId, int trackId, qint64 time)
{
    Item* const moved = item(itemId);
    Track* const from = track(moved->parentTrackId());
    Track* const to = track(trackId);
    ItemPtr taken = from->takeOwnItem(*moved);
    to->addItem(taken ? std::move(taken) : from->takeItem(itemId));
    setItemStartTime(*to, *moved, time);
    moved->m_parentTrackId = trackId;
}

void TimelineModel::setItemStartTime(Track& track, Item& item, qint64 time)
{
    track.setItemStartTime(item, time);
}

void TimelineModel::setItemStartTime(Item& item, qint64 time)
{
    setItemStartTime(*track(item.parentTrackId()), item, time);
}

void TimelineModel::setItemStartTime(int itemId, qint64 time)
{
    setItemStartTime(*item(itemId), time);
}

void TimelineModel::setItemDuration(Track& track, Item& item, int duration)
{
    track.setItemDuration(item, std::max(duration, m_minItemDuration));
}

void TimelineModel::setItemDuration(Item& item, int duration)
{
    setItemDuration(*track(item.parentTrackId()), item, duration);
}

void TimelineModel::setItemDuration(int itemId, int duration)
{
    setItemDuration(*item(itemId), duration);
}

void TimelineModel::beginItemChanges(int /*count*/)
{
}

void TimelineModel::endItemChanges()
{
}

bool TimelineModel::canDropItem(const Item& /*item*/, int /*trackId*/, qint64 /*start*/) const
{
    return true;
}

bool TimelineModel::canMoveItem(const Item& /*item*/, qint64 /*start*/) const
{
    return true;
}

bool TimelineModel::canResizeItem(const Item& /*item*/, qint64 /*start*/, int /*duration*/) const
{
    return true;
}

bool TimelineModel::isItemDragged(int itemId) const
{
    return m_view && m_view->dragHandler() && m_view->dragHandler()->isItemDragged(itemId);
}

} // namespace VeskTimeline
