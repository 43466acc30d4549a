#pragma once

// Internal to the kit; not installed.

#include <QtGlobal>

namespace VeskTimeline::Kit {

/// The times that files may have: the years 0001 to 9999, in milliseconds since the epoch.
constexpr qint64 earliestTime = -62'135'596'800'000;
constexpr qint64 latestTime = 253'402'300'799'999;

constexpr bool isWithinTimeLimits(qint64 time)
{
    return time >= earliestTime && time <= latestTime;
}

} // namespace VeskTimeline::Kit
