#pragma once

// Internal to the kit; not installed.

#include "trace_event_p.h"

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
    QString label;
    QMap<QString, QString> attributes;
};

/// A beginning or an end that is to be matched.
struct TraceMark
{
    bool isBegin = false;
    double time = 0.0;
    QString name;
    QMap<QString, QString> attributes;
    int line = 0;
    int number = 0; ///< of the event in the file, from 1
};

/// Matches ends with beginnings: by time, and of the same time in their order, each end closes what began last. What
/// never ends is open-ended, with a warning; what never began is left out, with a warning.
/// @throws ReadCancelled
std::vector<TraceSlice> matchTraceMarks(std::vector<TraceMark> marks, WarningList& warnings, ReadProgress& progress);

} // namespace VeskTimeline::Kit
