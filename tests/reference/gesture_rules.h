#pragma once

#include "reference/edge_snapping.h"
#include "reference/interval_query.h"

#include <VeskTimeline/timeline_model.h>

/// Plain reference for the rules of moving items, told by loops over all items and lists. The model is only asked for
/// its items and its policies, and told the changes.
namespace Reference {

using VeskTimeline::Item;
using VeskTimeline::TimelineModel;
using VeskTimeline::Track;

inline PlainItem plain(const Item& item)
{
    return {item.id(), item.startTime(), item.duration()};
}

inline std::vector<DragItem> itemsInOrder(const TimelineModel& model)
{
    std::vector<DragItem> items;
    for (const int id : model.itemIds()) {
        const Item* const item = model.item(id);
        items.push_back({id, item->startTime(), item->duration()});
    }
    return items;
}

inline bool isInTheWay(const Item& other, const Item& moved, qint64 dt, const QVector<int>& movedIds)
{
    const qint64 start = moved.startTime() + dt;
    return !movedIds.contains(other.id()) && isIn(plain(other), {start, start + moved.duration(), true, false}, 0);
}

inline bool isOccupied(const Track& track, const Item& moved, qint64 dt, const QVector<int>& movedIds)
{
    for (const VeskTimeline::ItemPtr& own : track.items()) {
        if (isInTheWay(*own, moved, dt, movedIds))
            return true;
    }
    for (const int id : track.copyItemIds()) {
        if (isInTheWay(*track.item(id), moved, dt, movedIds))
            return true;
    }
    return false;
}

/// Within the tracks that the items are on: the policy first, then the place.
inline bool canMove(const TimelineModel& model, const QVector<int>& ids, qint64 dt)
{
    for (const int id : ids) {
        const Item* const item = model.item(id);
        if (!model.canMoveItem(*item, item->startTime() + dt))
            return false;
        if (isOccupied(*model.track(item->parentTrackId()), *item, dt, ids))
            return false;
    }
    return true;
}

/// Onto other tracks. @param targetOf the track that an item lands on, 0 for none
template <typename TargetOf>
bool canDrop(const TimelineModel& model, const QVector<int>& ids, qint64 dt, const TargetOf& targetOf)
{
    for (const int id : ids) {
        const Item* const item = model.item(id);
        const int target = targetOf(*item);
        if (target == 0 || !model.canDropItem(*item, target, item->startTime() + dt))
            return false;
        if (isOccupied(*model.track(target), *item, dt, ids))
            return false;
    }
    return true;
}

inline void move(TimelineModel& model, const QVector<int>& ids, qint64 dt)
{
    for (const int id : ids)
        model.setItemStartTime(*model.item(id), model.item(id)->startTime() + dt);
}

/// By keys: the place first, then the policy; by one step less each time that it is refused.
inline void nudge(TimelineModel& model, const QVector<int>& ids, int dt)
{
    const int step = dt < 0 ? -model.snapStep() : model.snapStep();
    for (; dt != 0; dt -= step) {
        bool isFree = true;
        for (const int id : ids) {
            const Item* const item = model.item(id);
            isFree = !isOccupied(*model.track(item->parentTrackId()), *item, dt, ids) &&
                     model.canMoveItem(*item, item->startTime() + dt);
            if (!isFree)
                break;
        }
        if (isFree) {
            move(model, ids, dt);
            return;
        }
    }
}

} // namespace Reference
