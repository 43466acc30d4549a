#pragma once

// Internal to the library; not installed.

#include <VeskTimeline/item.h>

#include <limits>

namespace VeskTimeline {

/// Duration of an item that has a start and no end.
constexpr int openEnded = -1;

/// `time` + `span`, both in milliseconds, that stays at the first or last time there is instead of overflowing.
constexpr qint64 shiftedTime(qint64 time, qint64 span)
{
    using Limits = std::numeric_limits<qint64>;
    if (span > 0 && time > Limits::max() - span)
        return Limits::max();
    if (span < 0 && time < Limits::min() - span)
        return Limits::min();
    return time + span;
}

/// When an item ends, the last time there is for an open-ended item.
inline qint64 endTimeOf(const Item& item)
{
    return item.duration() == openEnded ? std::numeric_limits<qint64>::max()
                                        : shiftedTime(item.startTime(), item.duration());
}

} // namespace VeskTimeline
