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

Kit::TimeSpan placeForItem(const TimelineModel& model, const Track& track, qint64 time, qint64 duration)
{
    const qint64 start = model.snapTime(time);
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
