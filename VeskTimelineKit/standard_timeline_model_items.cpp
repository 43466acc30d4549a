#include "id_table_p.h"
#include "standard_timeline_model_p.h"

#include <algorithm>
#include <limits>

namespace VeskTimeline::Kit {

int StandardTimelineModel::addItem(int trackId, const DocumentItem& item)
{
    return addItems(trackId, {item}).first();
}

QVector<int> StandardTimelineModel::addItems(int trackId, const std::vector<DocumentItem>& items)
{
    QVector<int> ids;
    Items added = makeItems(*track(trackId), items, &ids);
    StepScope scope(*d, StepKind::Add);
    putNewItems(trackId, std::move(added));
    return ids;
}

// The places of items that are put among others, behind those that start at the same time.
std::vector<int> StandardTimelineModel::positionsBehind(const Items& own, const std::vector<const Item*>& items)
{
    std::vector<int> positions;
    positions.reserve(items.size());
    const auto startsLater = [](qint64 time, const ItemPtr& other) { return time < other->startTime(); };
    // Where many come in, the place of each is soon after that of the one before.
    constexpr std::size_t few = 16;
    const bool isSearched = items.size() * few < own.size();
    auto behind = own.begin();
    qint64 last = std::numeric_limits<qint64>::min();
    for (const Item* const item : items) {
        const qint64 start = item->startTime();
        if (isSearched || start < last)
            behind = std::upper_bound(own.begin(), own.end(), start, startsLater);
        else
            behind = std::find_if(behind, own.end(), [&](const ItemPtr& other) { return startsLater(start, other); });
        last = start;
        positions.push_back(static_cast<int>(behind - own.begin()) + static_cast<int>(positions.size()));
    }
    return positions;
}

// Behind the items that start at the same time, and themselves in the order given. `items` is sorted.
void StandardTimelineModel::putNewItems(int trackId, Items&& items)
{
    if (items.empty())
        return;
    std::vector<const Item*> added;
    added.reserve(items.size());
    for (const ItemPtr& item : items) {
        added.push_back(item.get());
        d->step->noteItem(*item);
    }
    Positions positions = positionsBehind(track(trackId)->items(), added);
    d->perform(std::make_unique<ItemsChange>(trackId, std::move(positions), std::move(items)));
}

void StandardTimelineModel::removeItem(int itemId)
{
    performBatchBefore(StepKind::Delete, itemId);
    if (deferRemoval(*item(itemId)))
        return;
    StepScope scope(*d, StepKind::Delete);
    scope.joinGesture();
    removeFromModel({itemId});
}

void StandardTimelineModel::removeItems(const QVector<int>& itemIds)
{
    for (const int id : itemIds)
        item(id);
    StepScope scope(*d, StepKind::Delete);
    removeFromModel(itemIds);
}

// Ascending. Looking each one up would be slow where many start at the same time.
std::vector<int> StandardTimelineModel::positionsOf(int trackId, const QVector<int>& itemIds) const
{
    if (itemIds.size() == 1)
        return {d->contents.positionOf(*item(itemIds.first()))};
    const IdTable wanted(itemIds);
    std::vector<int> positions;
    positions.reserve(static_cast<std::size_t>(itemIds.size()));
    int position = 0;
    for (const ItemPtr& own : track(trackId)->items()) {
        if (wanted.contains(own->id()))
            positions.push_back(position);
        ++position;
    }
    return positions;
}

void StandardTimelineModel::removeFromModel(const QVector<int>& itemIds)
{
    for (const auto& [trackId, ids] : itemsByTrack(*this, itemIds)) {
        dropCopies(*track(trackId), QSet<int>(ids.begin(), ids.end()), nullptr);
        for (const int id : ids)
            d->step->noteItem(*item(id));
        d->perform(std::make_unique<ItemsChange>(trackId, positionsOf(trackId, ids)));
    }
}

bool StandardTimelineModel::isRecorded(const Track& track, const Item& item) const
{
    const auto found = m_itemCache.find(item.id());
    return !d->isUnrecorded && found != m_itemCache.end() && found->second == &item &&
           track.id() == item.parentTrackId();
}

void StandardTimelineModel::setItemStartTime(Track& track, Item& item, qint64 time)
{
    if (d->isUnrecorded) {
        d->contents.setStartInOrder(track, item, time);
        return;
    }
    performBatchBefore(StepKind::Move, item.id());
    if (!isRecorded(track, item)) {
        TimelineModel::setItemStartTime(track, item, time);
        return;
    }
    if (deferMove(item, {item.id(), track.id(), time, item.duration(),
                         time == item.startTime() ? Side::WhereItIs : Side::Behind}))
        return;
    StepScope scope(*d, StepKind::Move);
    scope.joinGesture();
    recordItem(item, [&] { d->contents.setTimes(item, time, item.duration()); });
}

void StandardTimelineModel::setItemDuration(Track& track, Item& item, int duration)
{
    if (!isRecorded(track, item)) {
        TimelineModel::setItemDuration(track, item, duration);
        return;
    }
    StepScope scope(*d, StepKind::Resize);
    scope.joinGesture();
    recordItem(item, [&] { item._setDuration(std::max(duration, minimumDuration())); });
}

// What the library does, which would go through both tracks for each item.
void StandardTimelineModel::moveInOrder(LabelledItem& item, int trackId, qint64 time)
{
    Track& to = *track(trackId);
    to.addItem(d->contents.takeItem(item.parentTrackId(), d->contents.positionOf(item)));
    setItemStartTime(to, item, time);
    item.setIds(item.id(), trackId);
}

// The start time is written through the virtual operation.
void StandardTimelineModel::moveUnrecorded(int itemId, int trackId, qint64 time)
{
    const bool wasUnrecorded = std::exchange(d->isUnrecorded, true);
    try {
        if (auto* const labelled = dynamic_cast<LabelledItem*>(item(itemId)))
            moveInOrder(*labelled, trackId, time);
        else
            TimelineModel::moveItemToTrack(itemId, trackId, time);
    } catch (...) {
        d->isUnrecorded = wasUnrecorded;
        throw;
    }
    d->isUnrecorded = wasUnrecorded;
}

void StandardTimelineModel::moveItemToTrack(int itemId, int trackId, qint64 time)
{
    performBatchBefore(StepKind::Move, itemId);
    Item* const moved = item(itemId);
    const Track* const from = track(moved->parentTrackId());
    const Track* const to = track(trackId);
    // As moveInOrder() would leave it.
    const Side side = time > moved->startTime() ? Side::Before : Side::Behind;
    if (deferMove(*moved, {itemId, trackId, time, moved->duration(), side}))
        return;
    StepScope scope(*d, StepKind::Move);
    scope.joinGesture();
    dropCopies(*from, {itemId}, to);
    recordItem(*moved, [&] {
        moveUnrecorded(itemId, trackId, time);
        const auto* const labelled = dynamic_cast<const LabelledItem*>(moved);
        if (labelled && !labelled->hasOwnColor())
            moved->setColor(ModelContents::colorOf(*to));
    });
}

} // namespace VeskTimeline::Kit
