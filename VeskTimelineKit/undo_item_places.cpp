// Changes of many items at once: what would be a step through a list for each is one pass through the lists for all.

#include "id_table_p.h"
#include "item_lists_p.h"
#include "standard_timeline_model_p.h"
#include "undo_contents_p.h"

#include <algorithm>
#include <tuple>

namespace VeskTimeline::Kit {

namespace {

// Calls body(first, last) for each run of elements that are on the same track.
template <typename List, typename TrackOf, typename Body>
void forEachTrack(const List& list, const TrackOf& trackOf, const Body& body)
{
    for (auto first = list.begin(); first != list.end();) {
        const int trackId = trackOf(*first);
        const auto last =
            std::find_if(first, list.end(), [&](const auto& element) { return trackOf(element) != trackId; });
        body(first, last);
        first = last;
    }
}

} // namespace

struct ModelContents::PlacedItem
{
    ItemPlace place;
    Item* item = nullptr;
};

namespace {

template <typename Wanted>
IdTable slotsOf(const std::vector<Wanted>& wanted)
{
    QVector<int> ids;
    ids.reserve(static_cast<qsizetype>(wanted.size()));
    for (const Wanted& one : wanted)
        ids.append(one.itemId);
    return IdTable(ids);
}

} // namespace

template <typename Wanted>
std::vector<ModelContents::PlacedItem> ModelContents::findPlaced(const QSet<int>& trackIds,
                                                                 const std::vector<Wanted>& wanted) const
{
    const IdTable slots = slotsOf(wanted);
    std::vector<int> ordered(trackIds.begin(), trackIds.end());
    std::sort(ordered.begin(), ordered.end());
    std::vector<PlacedItem> found;
    found.reserve(wanted.size());
    for (const int trackId : ordered) {
        int position = 0;
        for (const ItemPtr& item : m_model.track(trackId)->items()) {
            if (slots.contains(item->id()))
                found.push_back({{item->id(), trackId, position, item->startTime(), item->duration()}, item.get()});
            ++position;
        }
    }
    if (found.size() != wanted.size())
        throw QStringLiteral("%1 items are not where they were").arg(wanted.size() - found.size());
    return found;
}

void ModelContents::settleAt(Item& item, const Track& track, qint64 start, int duration)
{
    item._setStartTime(start);
    item._setDuration(duration);
    StandardTimelineModel::settle(item, track);
}

// Positions, which are the costly part, tell only where all else is as it was.
QVector<int> ModelContents::changedOf(const std::vector<PlacedItem>& former) const
{
    QVector<int> changed;
    changed.reserve(static_cast<qsizetype>(former.size()));
    std::vector<ItemPlace> unsure;
    QSet<int> trackIds;
    for (const auto& [place, item] : former) {
        if (place.trackId != item->parentTrackId() || place.start != item->startTime() ||
            place.duration != item->duration()) {
            changed.append(place.itemId);
            continue;
        }
        unsure.push_back(place);
        trackIds.insert(place.trackId);
    }
    if (unsure.empty())
        return changed;
    const std::vector<PlacedItem> now = findPlaced(trackIds, unsure);
    const IdTable slots = slotsOf(unsure);
    for (const PlacedItem& placed : now) {
        const auto slot = static_cast<std::size_t>(slots.of(placed.place.itemId));
        if (!(placed.place == unsure[slot]))
            changed.append(placed.place.itemId);
    }
    return changed;
}

void ModelContents::noteMoved(const QVector<int>& itemIds, const QSet<int>& trackIds)
{
    for (const int id : itemIds) {
        if (m_added.isEmpty() || !m_added.contains(id))
            m_changed.insert(id);
    }
    for (const int trackId : trackIds)
        touch(*m_model.track(trackId));
}

// While items are in no track, nothing may be thrown.
template <typename Wanted>
QSet<int> ModelContents::tracksOf(const std::vector<Wanted>& wanted) const
{
    QSet<int> trackIds;
    for (const Wanted& one : wanted)
        trackIds.insert(one.trackId);
    for (const int trackId : std::as_const(trackIds))
        m_model.track(trackId);
    return trackIds;
}

Rearranged ModelContents::rearrange(const QSet<int>& trackIds, const std::vector<ItemTarget>& targets)
{
    settle();
    const QSet<int> targetIds = tracksOf(targets);
    const std::vector<PlacedItem> former = findPlaced(trackIds, targets);
    const IdTable slots = slotsOf(targets);
    Items moved(targets.size());
    const auto slotOf = [&slots](const PlacedItem& placed) {
        return static_cast<std::size_t>(slots.of(placed.place.itemId));
    };
    forEachTrack(
        former, [](const PlacedItem& placed) { return placed.place.trackId; },
        [&](auto first, auto last) {
            Track& track = *m_model.track(first->place.trackId);
            Positions positions;
            for (auto placed = first; placed != last; ++placed) {
                if (targets[slotOf(*placed)].side != Side::WhereItIs)
                    positions.push_back(placed->place.position);
            }
            Items taken;
            taken.reserve(positions.size());
            takeFrom(track.items(), positions, taken);
            for (ItemPtr& item : taken)
                moved[static_cast<std::size_t>(slots.of(item->id()))] = std::move(item);
        });
    for (const PlacedItem& placed : former) {
        const ItemTarget& target = targets[slotOf(placed)];
        settleAt(*placed.item, *m_model.track(target.trackId), target.start, target.duration);
    }
    mergeMoved(targets, std::move(moved));
    Rearranged done{{}, targetIds, changedOf(former)};
    done.former.reserve(former.size());
    for (const PlacedItem& placed : former)
        done.former.push_back(placed.place);
    if (!done.changed.isEmpty())
        noteMoved(done.changed, trackIds + targetIds);
    return done;
}

// Of those that start together, what came before others last stands first, and what came behind them last stands last.
void ModelContents::mergeMoved(const std::vector<ItemTarget>& targets, Items&& moved)
{
    struct Arrival
    {
        int trackId;
        qint64 start;
        qint64 rank; ///< that of the items that are there is 0
        std::size_t slot;
    };
    std::vector<Arrival> arrivals;
    arrivals.reserve(targets.size());
    for (std::size_t i = 0; i < targets.size(); ++i) {
        const auto turn = static_cast<qint64>(i) + 1;
        if (targets[i].side != Side::WhereItIs)
            arrivals.push_back(
                {targets[i].trackId, targets[i].start, targets[i].side == Side::Behind ? turn : -turn, i});
    }
    std::sort(arrivals.begin(), arrivals.end(), [](const Arrival& left, const Arrival& right) {
        return std::tie(left.trackId, left.start, left.rank) < std::tie(right.trackId, right.start, right.rank);
    });
    forEachTrack(
        arrivals, [](const Arrival& arrival) { return arrival.trackId; },
        [&](auto first, auto last) {
            Items& own = m_model.track(first->trackId)->items();
            Items merged;
            merged.reserve(own.size() + static_cast<std::size_t>(last - first));
            for (ItemPtr& item : own) {
                while (first != last &&
                       std::make_pair(first->start, first->rank) < std::make_pair(item->startTime(), qint64{0}))
                    merged.push_back(std::move(moved[first++->slot]));
                merged.push_back(std::move(item));
            }
            for (; first != last; ++first)
                merged.push_back(std::move(moved[first->slot]));
            own = std::move(merged);
        });
}

std::vector<ItemPlace> ModelContents::placeItems(const QSet<int>& trackIds, const std::vector<ItemPlace>& places)
{
    const bool isMany = m_isMany;
    settle();
    const QSet<int> touched = tracksOf(places) + trackIds;
    const std::vector<PlacedItem> former = findPlaced(trackIds, places);
    const IdTable slots = slotsOf(places);
    Items moved(places.size());
    forEachTrack(
        former, [](const PlacedItem& placed) { return placed.place.trackId; },
        [&](auto first, auto last) {
            Positions positions;
            for (auto placed = first; placed != last; ++placed)
                positions.push_back(placed->place.position);
            Items taken;
            taken.reserve(positions.size());
            takeFrom(m_model.track(first->place.trackId)->items(), positions, taken);
            for (ItemPtr& item : taken)
                moved[static_cast<std::size_t>(slots.of(item->id()))] = std::move(item);
        });
    auto next = moved.begin();
    forEachTrack(
        places, [](const ItemPlace& place) { return place.trackId; },
        [&](auto first, auto last) {
            Track& track = *m_model.track(first->trackId);
            Positions positions;
            const auto begin = next;
            for (auto place = first; place != last; ++place, ++next) {
                positions.push_back(place->position);
                settleAt(**next, track, place->start, place->duration);
            }
            putInto(track.items(), positions, {std::make_move_iterator(begin), std::make_move_iterator(next)});
        });
    std::vector<ItemPlace> here;
    here.reserve(former.size());
    for (const PlacedItem& placed : former)
        here.push_back(placed.place);
    noteMoved(changedOf(former), touched);
    m_isMany = isMany;
    return here;
}

} // namespace VeskTimeline::Kit
