#pragma once

// Internal to the library; not installed.

#include <VeskTimeline/track.h>

namespace VeskTimeline {

/// Calls `visit(const Item&)`, in the list's order, for the track's own items that touch the closed interval from
/// `from` to `to`: those that start no later than `to` and end, at start plus duration, no earlier than `from`. An
/// open-ended item, whose duration is -1, goes on for ever. May visit others that come between these.
///
/// The visitor changes neither the list nor the times.
template <typename Visit>
void visitItemsTouching(const Track& track, qint64 from, qint64 to, const Visit& visit)
{
    for (const ItemPtr& item : track.items()) {
        const bool isEndless = item->duration() == -1;
        if (item->startTime() <= to && (isEndless || item->startTime() + item->duration() >= from))
            visit(*item);
    }
}

} // namespace VeskTimeline
