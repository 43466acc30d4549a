#include "item_placement.h"

#include <VeskTimeline/timeline_model.h>

#include <algorithm>
#include <array>

namespace Workbench {

using namespace VeskTimeline;

namespace {

constexpr qint64 second = 1000;
constexpr qint64 minute = 60 * second;
constexpr qint64 hour = 60 * minute;
constexpr std::array<qint64, 13> roundDurations{second,     5 * second,  15 * second, 30 * second, minute,
                                                5 * minute, 15 * minute, 30 * minute, hour,        2 * hour,
                                                6 * hour,   12 * hour,   24 * hour};

} // namespace

qint64 roundDuration(qint64 windowWidth)
{
    const auto longer = std::upper_bound(roundDurations.begin(), roundDurations.end(), windowWidth / 10);
    return longer == roundDurations.begin() ? roundDurations.front() : *(longer - 1);
}

qint64 roundStart(const TimelineModel& model, qint64 time, qint64 windowWidth)
{
    // Of a window this many parts are just told apart by eye.
    constexpr qint64 parts = 20;
    if (!model.isSnapEnabled())
        return time;
    const qint64 step = std::max(model.snapStep(), 1);
    const qint64 unit = roundDuration(windowWidth / parts);
    // A step that does not go into the unit, such as 7 s, has a grid of its own.
    const qint64 grid = unit % step == 0 ? unit : step;
    const qint64 remainder = time % grid;
    return time - (remainder < 0 ? remainder + grid : remainder);
}

Kit::TimeSpan placeForItem(const TimelineModel& model, const Track& track, qint64 time, qint64 windowWidth)
{
    const qint64 duration = roundDuration(windowWidth);
    const qint64 start = roundStart(model, time, windowWidth);
    Kit::TimeSpan place{start, start + std::max<qint64>(duration, model.minimumDuration())};
    for (const ItemPtr& item : track.items()) {
        if (item->duration() < 0)
            continue;
        const qint64 end = item->startTime() + item->duration();
        if (end <= time)
            place.start = std::max(place.start, end);
        else if (item->startTime() > time)
            place.end = std::min(place.end, item->startTime());
        if (item->startTime() >= place.end)
            break;
    }
    // On top of another item there is no free place to be cut to.
    return place.end > place.start ? place : Kit::TimeSpan{start, start + duration};
}

} // namespace Workbench
