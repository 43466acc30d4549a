#pragma once

#include <VeskTimelineKit/csv_options.h>
#include <VeskTimelineKit/document.h>

#include <functional>
#include <optional>

namespace VeskTimeline::Kit {

/// What the one who has a file read may say about it. Every reader takes what concerns it.
struct ReadOptions
{
    /// Called now and then while a file is read, on the thread that reads, with the share done, from 0 to 1. Returning
    /// false cancels: the reader then gives up with the reason cancelledReason(). May be empty.
    std::function<bool(double share)> progress;
    /// Traces: milliseconds of the axis for one millisecond of the trace.
    double stretch = 1000.0;
    /// Calendars: occurrences of recurring events are made within this span; without, from the first event to two years
    /// after the last one that has a date.
    std::optional<TimeSpan> expand;
    /// Comma-separated values: what is said about the file; the rest is detected.
    CsvOptions csv;
};

/// The reason of a file error when reading was cancelled, translated.
VESKTIMELINEKIT_EXPORT QString cancelledReason();

} // namespace VeskTimeline::Kit
