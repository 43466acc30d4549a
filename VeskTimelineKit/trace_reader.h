#pragma once

#include <VeskTimelineKit/document.h>
#include <VeskTimelineKit/read_options.h>
#include <VeskTimelineKit/result.h>

class QIODevice;

namespace VeskTimeline::Kit {

/// Reads a trace in the Trace Event Format, as an array of events or as an object that has them in `traceEvents`;
/// packed with gzip or not.
///
/// | phase           | becomes                                                                                   |
/// |-----------------|-------------------------------------------------------------------------------------------|
/// | X               | an item                                                                                   |
/// | B, E            | an item for each pair; in each thread an end closes what began last                       |
/// | b, e; S, F      | an item for each pair of the same category, id and name; in the process if the id is local |
/// | I, i, R; n, T, p | a marker                                                                                 |
/// | M               | names and order of processes and threads                                                  |
///
/// Other phases are left out, with a warning. The items of a process and a thread are on a track below that of the
/// process, those nested in others on tracks below it, one for each depth; asynchronous ones are by category instead of
/// thread. No two items of a track overlap. What never ends is open-ended. All that an event says besides becomes
/// attributes, what it has in `args` under names that start with "args.".
///
/// One millisecond of the trace is ReadOptions::stretch milliseconds of the axis, cut to whole ones, and there is a
/// warning that says so. When even the first event were after the year 9999, times count from that event.
///
/// Records that are no events are left out, with warnings, and so is what a text that ends too early lacks. A text that
/// is no JSON, or has no events at all though it has records, is refused.
/// @param fileName for the messages; @param device open for reading
VESKTIMELINEKIT_EXPORT Result<Document> readTrace(QIODevice& device, const QString& fileName,
                                                  const ReadOptions& options = {});

/// As above, from a file.
VESKTIMELINEKIT_EXPORT Result<Document> readTrace(const QString& fileName, const ReadOptions& options);

} // namespace VeskTimeline::Kit
