#pragma once

// Internal to the library; not installed.

#include "id_set_p.h"
#include "track_items_p.h"

#include <limits>

namespace VeskTimeline {

/// As Track::isItemsBetween(), strict, neither complete nor recursive, with the ignored ids as a set.
/// @throws QString "lookup failed!" for a copy item id without item
inline bool isOccupied(const Track& track, qint64 start, qint64 end, const IdSet& ignoredIds)
{
    const auto isInTheWay = [&](const Item& item) {
        return !ignoredIds.contains(item.id()) && Track::isItemBetween(item, start, end, true, false, 0);
    };
    // The end of a moved item without end is one millisecond before its start.
    const bool isWithoutEnd = end == start - 1;
    bool isFound = false;
    visitItemsTouching(track, start, isWithoutEnd ? std::numeric_limits<qint64>::max() : end,
                       [&](const Item& item) { isFound = isFound || isInTheWay(item); });
    if (isFound)
        return true;
    const QSet<int>& copyItemIds = track.copyItemIds();
    return std::any_of(copyItemIds.begin(), copyItemIds.end(), [&](int id) { return isInTheWay(*track.item(id)); });
}

} // namespace VeskTimeline
