#pragma once

#include <VeskTimelineKit/document.h>

namespace VeskTimeline {
class TimelineModel;
class Track;
} // namespace VeskTimeline

namespace Workbench {

/// How long a new item is where a window of that width is shown: about a tenth of it, a round time.
/// @param windowWidth milliseconds, positive
qint64 roundDuration(qint64 windowWidth);

/// The times of a new item around a place of a track: of roundDuration(), and where there is room for it cut to the
/// free place between the items beside it. While snapping is on the start is cut to the snap step, or to a round time
/// that is a multiple of it where the window is too wide to tell single steps apart.
/// @param windowWidth milliseconds, positive
VeskTimeline::Kit::TimeSpan placeForItem(const VeskTimeline::TimelineModel& model, const VeskTimeline::Track& track,
                                         qint64 time, qint64 windowWidth);

} // namespace Workbench
