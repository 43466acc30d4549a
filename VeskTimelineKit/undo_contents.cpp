#include "item_lists_p.h"
#include "standard_timeline_model_p.h"
#include "undo_contents_p.h"

#include <algorithm>
#include <iterator>
#include <limits>

namespace VeskTimeline::Kit {

namespace {

QVector<int> sorted(const QSet<int>& ids)
{
    QVector<int> list(ids.begin(), ids.end());
    std::sort(list.begin(), list.end());
    return list;
}

template <typename List>
auto at(List& list, int position)
{
    return list.begin() + std::clamp(position, 0, static_cast<int>(list.size()));
}

// Only what lies between is touched: most items move past few others.
void moveWithin(Items& items, int from, int to)
{
    const auto here = at(items, from);
    const auto there = at(items, std::min(to, static_cast<int>(items.size()) - 1));
    if (here == there)
        return;
    // A rotation would swap, which costs twice as much.
    ItemPtr moved = std::move(*here);
    if (there < here)
        std::move_backward(there, here, here + 1);
    else
        std::move(here + 1, there + 1, here);
    *there = std::move(moved);
}

} // namespace

const Item* ModelContents::findItem(const StandardTimelineModel& model, int itemId)
{
    const auto found = model.m_itemCache.find(itemId);
    return found != model.m_itemCache.end() ? found->second : nullptr;
}

const Track* ModelContents::findTrack(const StandardTimelineModel& model, int trackId)
{
    const auto found = model.m_trackCache.find(trackId);
    return found != model.m_trackCache.end() ? found->second : nullptr;
}

// Null where changes go to the track at once.
ItemBlocks* ModelContents::blocksOf(int trackId) const
{
    if (!m_isMany)
        return nullptr;
    const auto found = m_blocks.find(trackId);
    if (found != m_blocks.end())
        return &found->second;
    return &m_blocks.emplace(trackId, ItemBlocks(std::move(m_model.track(trackId)->items()))).first->second;
}

void ModelContents::settle()
{
    m_isMany = false;
    for (auto& [trackId, blocks] : std::exchange(m_blocks, {}))
        m_model.track(trackId)->items() = std::move(blocks).items();
}

int ModelContents::positionOf(const Item& item) const
{
    if (const ItemBlocks* const blocks = blocksOf(item.parentTrackId()))
        return blocks->positionOf(item);
    return positionIn(m_model.track(item.parentTrackId())->items(), item);
}

int ModelContents::positionIn(const Items& items, const Item& item) const
{
    const auto isSame = [&item](const ItemPtr& other) { return other.get() == &item; };
    for (int position = std::max(m_lastPosition - 1, 0); position <= m_lastPosition + 1; ++position) {
        if (static_cast<std::size_t>(position) < items.size() && isSame(items[static_cast<std::size_t>(position)]))
            return m_lastPosition = position;
    }
    const auto first = std::lower_bound(items.begin(), items.end(), item.startTime(),
                                        [](const ItemPtr& other, qint64 time) { return other->startTime() < time; });
    auto found = std::find_if(first, items.end(), isSame);
    if (found == items.end())
        found = std::find_if(items.begin(), first, isSame);
    return m_lastPosition = static_cast<int>(found - items.begin());
}

ItemDetails ModelContents::itemDetails(const Item& item)
{
    ItemDetails details;
    details.color = item.color();
    details.isEditable = item.isEditable();
    if (const auto* const labelled = dynamic_cast<const LabelledItem*>(&item)) {
        details.label = labelled->plainLabel();
        details.description = labelled->description();
        details.attributes = labelled->attributes();
        details.piece = labelled->piece();
        if (!labelled->hasOwnColor())
            details.color = QColor();
    }
    return details;
}

ItemState ModelContents::itemState(int itemId) const
{
    const Item& item = *std::as_const(m_model).item(itemId);
    return {item.parentTrackId(), positionOf(item), item.startTime(), item.duration(), itemDetails(item)};
}

ItemDetails ModelContents::swapItemDetails(int itemId, const ItemDetails& details)
{
    Item& item = *m_model.item(itemId);
    ItemDetails before = itemDetails(item);
    applyDetails(item, details, *m_model.track(item.parentTrackId()));
    noteChanged(item, item.parentTrackId());
    return before;
}

void ModelContents::applyDetails(Item& item, const ItemDetails& details, const Track& track)
{
    item.setColor(details.color.isValid() ? details.color : colorOf(track));
    item.setEditable(details.isEditable);
    if (auto* const labelled = dynamic_cast<LabelledItem*>(&item)) {
        labelled->setLabel(details.label);
        labelled->setDescription(details.description);
        labelled->setAttributes(details.attributes);
        labelled->setPiece(details.piece);
        labelled->setHasOwnColor(details.color.isValid());
    }
}

void ModelContents::setItemState(int itemId, const ItemState& state)
{
    Item& item = *m_model.item(itemId);
    const int formerTrackId = item.parentTrackId();
    if (formerTrackId != state.trackId) {
        moveToTrack(item, state.trackId, state);
    } else if (ItemBlocks* const blocks = blocksOf(state.trackId)) {
        blocks->put(state.position, blocks->take(blocks->positionOf(item)));
    } else {
        moveWithin(m_model.track(state.trackId)->items(), positionOf(item), state.position);
    }
    item._setStartTime(state.start);
    item._setDuration(state.duration);
    applyDetails(item, state.details, *m_model.track(state.trackId));
    noteChanged(item, formerTrackId);
}

// Only the library can tell an item of another kind what track it is on.
void ModelContents::moveToTrack(Item& item, int trackId, const ItemState& state)
{
    auto* const labelled = dynamic_cast<LabelledItem*>(&item);
    if (!labelled) {
        const bool isMany = m_isMany;
        settle();
        m_model.moveUnrecorded(item.id(), trackId, state.start);
        moveWithin(m_model.track(trackId)->items(), positionOf(item), state.position);
        m_isMany = isMany;
        return;
    }
    ItemPtr taken = takeItem(item.parentTrackId(), positionOf(item));
    StandardTimelineModel::settle(*taken, *m_model.track(trackId));
    putItem(trackId, state.position, std::move(taken));
}

ItemPtr ModelContents::takeItem(int trackId, int position)
{
    if (ItemBlocks* const blocks = blocksOf(trackId))
        return blocks->take(position);
    Items& items = m_model.track(trackId)->items();
    const auto found = items.begin() + position;
    ItemPtr taken = std::move(*found);
    items.erase(found);
    return taken;
}

void ModelContents::putItem(int trackId, int position, ItemPtr&& item)
{
    if (ItemBlocks* const blocks = blocksOf(trackId)) {
        blocks->put(position, std::move(item));
        return;
    }
    Items& items = m_model.track(trackId)->items();
    items.insert(at(items, position), std::move(item));
}

void ModelContents::setTimes(Item& item, qint64 start, int duration)
{
    item._setDuration(duration);
    if (start == item.startTime())
        return;
    if (ItemBlocks* const blocks = blocksOf(item.parentTrackId())) {
        ItemPtr taken = blocks->take(blocks->positionOf(item));
        item._setStartTime(start);
        blocks->put(blocks->positionBehind(start), std::move(taken));
        return;
    }
    Items& items = m_model.track(item.parentTrackId())->items();
    const int from = positionOf(item);
    const auto startsLater = [](qint64 time, const ItemPtr& other) { return time < other->startTime(); };
    const auto here = items.begin() + from;
    // The others are in order on either side.
    const auto to = start > item.startTime() ? std::upper_bound(here + 1, items.end(), start, startsLater) - 1
                                             : std::upper_bound(items.begin(), here, start, startsLater);
    item._setStartTime(start);
    m_lastPosition = static_cast<int>(to - items.begin());
    moveWithin(items, from, m_lastPosition);
}

// A sort that keeps equals in place leaves the item on the side that it comes from.
void ModelContents::setStartInOrder(Track& track, Item& item, qint64 start)
{
    if (start == item.startTime())
        return;
    Items& items = track.items();
    const int from = positionIn(items, item);
    const auto startsLater = [](qint64 time, const ItemPtr& other) { return time < other->startTime(); };
    const auto startsEarlier = [](const ItemPtr& other, qint64 time) { return other->startTime() < time; };
    const auto here = items.begin() + from;
    const auto to = start > item.startTime() ? std::lower_bound(here + 1, items.end(), start, startsEarlier) - 1
                                             : std::upper_bound(items.begin(), here, start, startsLater);
    item._setStartTime(start);
    m_lastPosition = static_cast<int>(to - items.begin());
    moveWithin(items, from, m_lastPosition);
}

Items ModelContents::takeItems(int trackId, const Positions& positions)
{
    Track& track = *m_model.track(trackId);
    Items taken;
    taken.reserve(positions.size());
    if (m_isMany || positions.size() == 1) {
        // From the end: each is where it was until its turn.
        for (auto position = positions.rbegin(); position != positions.rend(); ++position)
            taken.push_back(takeItem(trackId, *position));
        std::reverse(taken.begin(), taken.end());
    } else {
        takeFrom(track.items(), positions, taken);
    }
    noteRemoved(taken);
    touch(track);
    return taken;
}

void ModelContents::putItems(int trackId, const Positions& positions, Items&& items)
{
    noteAdded(items, *m_model.track(trackId));
    if (!m_isMany && items.size() > 1) {
        putInto(m_model.track(trackId)->items(), positions, std::move(items));
        return;
    }
    for (std::size_t i = 0; i < items.size(); ++i)
        putItem(trackId, positions[i], std::move(items[i]));
}

void ModelContents::moveItems(int fromId, const Positions& fromPositions, int toId, const Positions& toPositions)
{
    const Track& to = *m_model.track(toId);
    Items items = takeItems(fromId, fromPositions);
    for (const ItemPtr& item : items)
        StandardTimelineModel::settle(*item, to);
    putItems(toId, toPositions, std::move(items));
}

QModelIndex ModelContents::rowOf(const Track& track) const
{
    if (&track == std::as_const(m_model).rootTrack())
        return {};
    return m_model.createIndex(placeOf(track).row, 0, static_cast<quintptr>(track.id()));
}

TrackPlace ModelContents::placeOf(const Track& track) const
{
    return {track.parentId(), m_model.track(track.parentId())->rowOfTrack(track.id())};
}

void ModelContents::enterSubtree(Track& track)
{
    m_model.m_trackCache[track.id()] = &track;
    if (track.hasItems())
        noteAdded(track.items(), track);
    for (const TrackPtr& child : track.tracks())
        enterSubtree(*child);
}

void ModelContents::leaveSubtree(Track& track)
{
    for (const TrackPtr& child : track.tracks())
        leaveSubtree(*child);
    noteRemoved(track.items());
    m_model.m_trackCache.erase(track.id());
    m_model.d->extents.remove(track.id());
}

TrackPtr ModelContents::takeTrack(const TrackPlace& place)
{
    settle();
    Track& parent = *m_model.track(place.parentId);
    Tracks& siblings = parent.tracks();
    m_model.beginRemoveRows(rowOf(parent), place.row, place.row);
    const auto found = siblings.begin() + place.row;
    TrackPtr taken = std::move(*found);
    siblings.erase(found);
    leaveSubtree(*taken);
    m_model.endRemoveRows();
    return taken;
}

void ModelContents::putTrack(const TrackPlace& place, TrackPtr&& track)
{
    settle();
    Track& parent = *m_model.track(place.parentId);
    Tracks& siblings = parent.tracks();
    m_model.beginInsertRows(rowOf(parent), place.row, place.row);
    Track& added = **siblings.insert(at(siblings, place.row), std::move(track));
    enterSubtree(added);
    m_model.endInsertRows();
}

void ModelContents::moveTrack(int trackId, const TrackPlace& place)
{
    settle();
    auto& track = dynamic_cast<StandardTrack&>(*m_model.track(trackId));
    const TrackPlace from = placeOf(track);
    Track& oldParent = *m_model.track(from.parentId);
    Track& newParent = *m_model.track(place.parentId);
    // Qt wants the row in front of which the moved one is put, counted while it is still at its old place.
    const bool isDown = &oldParent == &newParent && place.row > from.row;
    if (!m_model.beginMoveRows(rowOf(oldParent), from.row, from.row, rowOf(newParent), place.row + (isDown ? 1 : 0)))
        return;
    const auto found = oldParent.tracks().begin() + from.row;
    TrackPtr taken = std::move(*found);
    oldParent.tracks().erase(found);
    track.setParentId(newParent.id());
    newParent.tracks().insert(at(newParent.tracks(), place.row), std::move(taken));
    m_model.endMoveRows();
}

TrackDetails ModelContents::trackDetails(int trackId) const
{
    const Track& track = *std::as_const(m_model).track(trackId);
    const QString text = track.text();
    const auto* const standard = dynamic_cast<const StandardTrack*>(&track);
    return standard ? standard->details() : TrackDetails{text, {}};
}

void ModelContents::setTrackDetails(int trackId, const TrackDetails& details)
{
    settle();
    auto& track = dynamic_cast<StandardTrack&>(*m_model.track(trackId));
    const bool isRecoloured = track.details().color != details.color;
    track.setDetails(details);
    touch(track);
    for (const ItemPtr& item : track.items()) {
        const auto* const labelled = dynamic_cast<const LabelledItem*>(item.get());
        if (!isRecoloured || !labelled || labelled->hasOwnColor())
            continue;
        item->setColor(colorOf(track));
        noteChanged(*item, trackId);
    }
}

QSet<int> ModelContents::copyItemIds(int trackId) const
{
    return std::as_const(m_model).track(trackId)->copyItemIds();
}

void ModelContents::setCopyItemIds(int trackId, const QSet<int>& ids)
{
    Track& track = *m_model.track(trackId);
    track.clearCopyItemIds();
    track.addCopyItemIds(ids);
    touch(track);
}

QColor ModelContents::colorOf(const Track& track)
{
    const auto* const standard = dynamic_cast<const StandardTrack*>(&track);
    if (standard && standard->details().color.isValid())
        return standard->details().color;
    // The first track has the id 1.
    return StandardTimelineModel::trackColor(std::max(track.id() - 1, 0));
}

void ModelContents::noteAdded(const Item& item)
{
    if (!m_removed.remove(item.id()))
        m_added.insert(item.id());
    else
        m_changed.insert(item.id());
    touch(*m_model.track(item.parentTrackId()));
}

// New items have the ids that follow, so that each is beside the one before. What stands behind such a run stays there:
// to look for it anew each time, from the end of the cache to its top and back, takes longer than all else.
void ModelContents::noteAdded(const Items& items, const Track& track)
{
    auto& cache = m_model.m_itemCache;
    auto next = cache.lower_bound(items.front()->id());
    int last = std::numeric_limits<int>::min();
    for (const ItemPtr& item : items) {
        const bool isBetween = item->id() > last && (next == cache.end() || item->id() < next->first);
        const auto here = cache.insert_or_assign(next, item->id(), item.get());
        if (!isBetween)
            next = std::next(here);
        last = item->id();
        if (m_removed.isEmpty() || !m_removed.remove(item->id()))
            m_added.insert(item->id());
        else
            m_changed.insert(item->id());
    }
    touch(track);
}

// Most are beside the one before.
void ModelContents::noteRemoved(const Items& items)
{
    auto& cache = m_model.m_itemCache;
    auto next = cache.end();
    for (const ItemPtr& item : items) {
        if (next == cache.end() || next->first != item->id())
            next = cache.find(item->id());
        if (next != cache.end())
            next = cache.erase(next);
        noteRemoved(item->id());
    }
}

void ModelContents::noteRemoved(int itemId)
{
    if (!m_changed.isEmpty())
        m_changed.remove(itemId);
    if (m_added.isEmpty() || !m_added.remove(itemId))
        m_removed.insert(itemId);
}

void ModelContents::noteChanged(const Item& item, int formerTrackId)
{
    touch(*m_model.track(formerTrackId));
    if (!m_added.contains(item.id()))
        m_changed.insert(item.id());
    touch(*m_model.track(item.parentTrackId()));
}

// The tracks above may show the track's items as copies.
void ModelContents::touch(const Track& track)
{
    m_touchedTracks.insert(track.id());
    m_model.d->extents.remove(track.id());
    for (const Track* above = &track; above->parentId() >= 0;) {
        above = m_model.track(above->parentId());
        if (above->hasCopyItems())
            m_touchedTracks.insert(above->id());
    }
}

void ModelContents::announce()
{
    settle();
    const QVector<int> removed = std::exchange(m_removed, {}).ids();
    const QVector<int> added = std::exchange(m_added, {}).ids();
    const QVector<int> changed = std::exchange(m_changed, {}).ids();
    const QVector<int> touched = sorted(std::exchange(m_touchedTracks, {}));
    if (!removed.isEmpty())
        Q_EMIT m_model.itemsRemoved(removed);
    if (!added.isEmpty())
        Q_EMIT m_model.itemsAdded(added);
    if (!changed.isEmpty())
        Q_EMIT m_model.itemsChanged(changed);
    for (const int trackId : touched) {
        const auto found = m_model.m_trackCache.find(trackId);
        if (found == m_model.m_trackCache.end())
            continue;
        const QModelIndex row = rowOf(*found->second);
        if (row.isValid())
            Q_EMIT m_model.dataChanged(row, row.siblingAtColumn(1));
    }
}

} // namespace VeskTimeline::Kit
