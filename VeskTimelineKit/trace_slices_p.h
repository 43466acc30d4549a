#pragma once

// Internal to the kit; not installed.

#include "trace_payload_p.h"

#include <VeskTimelineKit/warnings.h>

#include <limits>
#include <vector>

namespace VeskTimeline::Kit {

class ReadProgress;

/// What becomes an item; times in microseconds.
struct TraceSlice
{
    static constexpr double noEnd = std::numeric_limits<double>::infinity();

    double start = 0.0;
    double end = 0.0;
    TracePayload payload;
    TracePayload endPayload = {}; ///< of the event that ended it, if that was another one
};

/// A beginning or an end that is to be matched.
struct TraceMark
{
    double time = 0.0;
    TracePayload payload;
    std::uint32_t series = 0; ///< among whose marks the partner is
    int line = 0;
    int number = 0; ///< of the event in the file, from 1
    bool isBegin = false;
};

/// Brings marks together by their series, the lowest first, and leaves them in their order otherwise.
void sortBySeries(std::vector<TraceMark>& marks, std::size_t seriesCount);

/// Matches ends with beginnings: by time, and of the same time in their order, each end closes what began last. What
/// never ends is open-ended, with a warning; what never began is left out, with a warning.
/// @param begin,end the marks of one series; sorted by time afterwards
/// @param slices gets what became of them
/// @throws ReadCancelled
void matchTraceMarks(std::vector<TraceMark>::iterator begin, std::vector<TraceMark>::iterator end,
                     std::vector<TraceSlice>& slices, WarningList& warnings, ReadProgress& progress);

/// All that the events say that a slice was made of.
QMap<QString, QString> attributesOf(const TraceSlice& slice, SharedTexts& texts);

} // namespace VeskTimeline::Kit
