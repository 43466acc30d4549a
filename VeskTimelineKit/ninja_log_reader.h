#pragma once

#include <VeskTimelineKit/document.h>
#include <VeskTimelineKit/read_options.h>
#include <VeskTimelineKit/result.h>

class QIODevice;

namespace VeskTimeline::Kit {

/// Reads the log of a build by Ninja, versions 4 to 7. Every build step is an item; the outputs that have start, end
/// and command in common are those of one step, its label is the first of them, its description lists them all, its
/// attributes are `command` or, from version 5 on, `command hash`, and `modified`: when the output was written, in the
/// log's own unit.
///
/// Times are those of the log, from the epoch on. The steps are on as few tracks as keeps those that ran at the same
/// time apart. A log is written as steps end, so where an end is before the one above it a new build begins; the builds
/// follow each other without a gap, each with tracks of its own below one of the build. A build makes each output once;
/// one that goes on later than the build before it and makes none of the same outputs cannot be told from it. A log
/// whose lines are in no order, as one that was written anew, is taken for one build, with a warning.
///
/// Lines that say something else are left out, with a warning. A text without the log's first line, or of an older
/// version, is refused; a newer version is read as if it were the newest that is known, with a warning.
/// @param fileName for the messages; @param device open for reading
VESKTIMELINEKIT_EXPORT Result<Document> readNinjaLog(QIODevice& device, const QString& fileName,
                                                     const ReadOptions& options = {});

/// As above, from a file.
VESKTIMELINEKIT_EXPORT Result<Document> readNinjaLog(const QString& fileName, const ReadOptions& options);

} // namespace VeskTimeline::Kit
