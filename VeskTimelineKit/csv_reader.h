#pragma once

#include <VeskTimelineKit/document.h>
#include <VeskTimelineKit/read_options.h>
#include <VeskTimelineKit/result.h>

class QIODevice;

namespace VeskTimeline::Kit {

/// Reads a timeline from comma-separated values with a header line that names the columns, plain or packed with gzip.
///
/// | column              | content                                                                                |
/// |---------------------|----------------------------------------------------------------------------------------|
/// | `track`             | the track's name, or its path, see splitTrackPath(); a record with nothing else in it  |
/// |                     | is a track without items                                                               |
/// | `label`             | the item's text; may be empty                                                          |
/// | `start`             | a point in time, see parseTime()                                                       |
/// | `end`, `duration`   | one of them or both: a point in time, a whole number of milliseconds; empty: open-ended |
/// | `color`             | optional: "#RRGGBB" or a colour name; empty: none                                      |
/// | `editable`          | optional: true or false, yes or no, 1 or 0; empty: true                                |
/// | `description`       | optional: the item's description                                                       |
///
/// Other columns are attributes of the items, empty fields aside; a backslash in front of a column's name is not part
/// of it, and what is behind is an attribute even if it is one of the names above.
///
/// Files that are written in other ways are read too: ReadOptions::csv says in which, and what it leaves open is found
/// out from the beginning of the file. Each such finding is a warning of the document. Of local times that the clocks
/// showed twice the first is taken; one that they left out when they were put forward is moved by as much.
///
/// Blank lines, and records whose fields are all empty, are skipped. Records may be short of their last fields; empty
/// fields past the last column do not count. A record with times outside the years 1 to 9999 is left out with a
/// warning.
///
/// Items of a track that overlap stay in it; a warning has their number.
///
/// A file that has the names above for its columns is refused as a whole, with the line and the reason, for anything
/// else that is wrong in it, also an end before its start. One that has other names for them is refused only for what
/// makes the rest meaningless; records that are wrong are left out with a warning each.
/// @param fileName for the messages, and for the name of the track of a file without tracks
/// @param device open for reading
VESKTIMELINEKIT_EXPORT Result<Document> readCsv(QIODevice& device, const QString& fileName,
                                                const ReadOptions& options = {});

/// As above, from a file.
VESKTIMELINEKIT_EXPORT Result<Document> readCsv(const QString& fileName, const ReadOptions& options = {});

} // namespace VeskTimeline::Kit
