#pragma once

#include <VeskTimeline/timeline_header_view.h>
#include <VeskTimeline/timeline_utils.h>

#include <algorithm>

/// The ruler's arithmetic in its plainest form, to compare the library with.
namespace Reference {

/// What the ruler reads: its view's window and its own geometry.
struct RulerScale
{
    qint64 currentTime = -1;
    VeskTimeline::Zoom::Factor zoomFactor = VeskTimeline::Zoom::ThirtyMinutes;
    int duration = -1;
    int left = 0;
    int width = 0;
    VeskTimeline::DateTime::Format format = VeskTimeline::DateTime::DTG;
};

inline int toPixel(const RulerScale& scale, qint64 time)
{
    if (time == -1)
        return -1;
    const double ratio = static_cast<double>(time - scale.currentTime) / static_cast<double>(scale.zoomFactor);
    return static_cast<int>(scale.left + (scale.width - scale.left) * ratio);
}

inline qint64 toTime(const RulerScale& scale, int x)
{
    const double share = static_cast<double>(x - scale.left) / static_cast<double>(scale.width - scale.left);
    return static_cast<qint64>(static_cast<double>(scale.currentTime) + share * static_cast<double>(scale.zoomFactor));
}

inline bool holds(const VeskTimeline::Ticks& ticks, qint64 time)
{
    return std::any_of(ticks.begin(), ticks.end(),
                       [time](const VeskTimeline::Tick& tick) { return tick.time == time; });
}

struct TickLists
{
    VeskTimeline::Ticks major;
    VeskTimeline::Ticks medium;
    VeskTimeline::Ticks minor;
};

inline VeskTimeline::Ticks everyTick(const RulerScale& scale, int interval)
{
    VeskTimeline::Ticks ticks;
    if (scale.duration < 1 || interval == -1)
        return ticks;
    qint64 time = scale.currentTime;
    const qint64 remainder = time % interval;
    if (remainder != 0)
        time += interval - remainder;
    const qint64 end = scale.currentTime + scale.zoomFactor;
    while (time <= end) {
        ticks.append({toPixel(scale, time), time, VeskTimeline::DateTime::toString(time, scale.format)});
        time += interval;
    }
    return ticks;
}

inline TickLists ticks(const RulerScale& scale)
{
    namespace Zoom = VeskTimeline::Zoom;
    TickLists lists;
    lists.major = everyTick(scale, Zoom::majorInterval(scale.zoomFactor));
    for (const VeskTimeline::Tick& tick : everyTick(scale, Zoom::mediumInterval(scale.zoomFactor))) {
        if (!holds(lists.major, tick.time))
            lists.medium.append(tick);
    }
    for (const VeskTimeline::Tick& tick : everyTick(scale, Zoom::minorInterval(scale.zoomFactor))) {
        if (!holds(lists.major, tick.time) && !holds(lists.medium, tick.time))
            lists.minor.append(tick);
    }
    return lists;
}

} // namespace Reference
