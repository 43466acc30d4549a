#pragma once

#include <VeskTimelineKit/document.h>
#include <VeskTimelineKit/result.h>

class QIODevice;

namespace VeskTimeline::Kit {

/// Reads a timeline from comma-separated values, UTF-8, with a header line that names the columns.
///
/// | column              | content                                                                                |
/// |---------------------|----------------------------------------------------------------------------------------|
/// | `track`             | the track's name, or its path, see splitTrackPath()                                    |
/// | `label`             | the item's text; may be empty                                                          |
/// | `start`             | a point in time, see parseTime()                                                       |
/// | `end`, `duration`   | one of them or both: a point in time, a whole number of milliseconds; empty: open-ended |
/// | `color`             | optional: "#RRGGBB" or a colour name; empty: none                                      |
/// | `editable`          | optional: true or false, yes or no, 1 or 0; empty: true                                |
///
/// Other columns are left out, with a warning. Blank lines, and records whose fields are all empty, are skipped. A
/// record may be short of optional fields at its end; empty fields past the last column do not count.
///
/// The text is refused as a whole, with the line and the reason, for anything else: so also for an end before its
/// start and an item of more than 2147483647 ms.
/// @param fileName for the messages; @param device open for reading
VESKTIMELINEKIT_EXPORT Result<Document> readCsv(QIODevice& device, const QString& fileName);

/// As above, from a file.
VESKTIMELINEKIT_EXPORT Result<Document> readCsv(const QString& fileName);

} // namespace VeskTimeline::Kit
