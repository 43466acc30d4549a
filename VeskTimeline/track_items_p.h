#pragma once

// Internal to the library; not installed.

#include "item_end_p.h"
#include "item_index_p.h"

#include <VeskTimeline/track.h>

#include <algorithm>

namespace VeskTimeline {

/// What an interval query asks about, see Track::isItemBetween().
struct ItemInterval
{
    qint64 start = 0;
    qint64 end = 0;
    bool strict = false;
    bool complete = false;
    qint64 minimumDuration = 0;
};

/// A stretch of time, both ends included, that items are looked for in.
struct ItemWindow
{
    qint64 from = 0;
    qint64 to = 0;
    /// An item lasts at least so long, in milliseconds from 0.
    qint64 minimumDuration = 0;
    /// Only items that start in the window, not those that last into it.
    bool startsInside = false;
};

/// The first of the track's own items, in the list's order, that is in the window and for which
/// `isWanted(const ItemPtr&)` holds; null for none. Without an index `isWanted` is asked about items outside the window
/// too.
///
/// Costs a logarithm for each run of items between those in the window, and one call for each of these. `isWanted`
/// changes neither the list nor the times.
template <typename IsWanted>
const ItemPtr* findItemInWindow(const Track& track, const ItemWindow& window, const IsWanted& isWanted)
{
    const Items& items = track.items();
    const ItemIndex* const index = ItemIndex::of(track);
    if (!index) {
        const auto found = std::find_if(items.begin(), items.end(), isWanted);
        return found != items.end() ? &*found : nullptr;
    }

    const std::size_t end = index->firstBehind(window.to);
    const qint64 certain = window.startsInside ? window.from : shiftedTime(window.from, -window.minimumDuration);
    const std::size_t inside = std::min(index->firstFrom(certain), end);
    std::size_t position = window.startsInside ? inside : index->firstReaching(window.from, 0, inside);
    while (position < end) {
        if (isWanted(items[position]))
            return &items[position];
        ++position;
        if (position < inside)
            position = index->firstReaching(window.from, position, inside);
    }
    return nullptr;
}

/// Calls `visit(const Item&)`, in the list's order, for the track's own items that touch the closed interval from
/// `from` to `to`: those that start no later than `to` and end, at start plus duration, no earlier than `from`. An
/// open-ended item, whose duration is -1, goes on for ever.
///
/// The visitor changes neither the list nor the times.
template <typename Visit>
void visitItemsTouching(const Track& track, qint64 from, qint64 to, const Visit& visit)
{
    findItemInWindow(track, {from, to}, [&](const ItemPtr& item) {
        if (item->startTime() <= to && endTimeOf(*item) >= from)
            visit(std::as_const(*item));
        return false;
    });
}

/// As Track::isItemsBetween(), for any number of ids to be ignored: `isIgnored` is asked about the ids of items in the
/// interval. @throws QString as Track::isItemsBetween()
bool isAnyItemBetween(const Track& track, const ItemInterval& interval, const std::function<bool(int)>& isIgnored,
                      bool recursive);

/// Adds to the list, in order, the ids of the track's own items in the interval.
void appendOwnIdsBetween(QVector<int>& ids, const Track& track, const ItemInterval& interval);

/// Whether any own item that is not ignored is in the interval.
bool isAnyOwnItemBetween(const Track& track, const ItemInterval& interval, const std::function<bool(int)>& isIgnored);

/// Tells whether an id is one of a list, which has to outlive this. Asked often it gets quick also for a long list.
std::function<bool(int)> isOneOf(const QVector<int>& ids);

} // namespace VeskTimeline
