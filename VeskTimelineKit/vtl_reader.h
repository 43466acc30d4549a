#pragma once

#include <VeskTimelineKit/document.h>
#include <VeskTimelineKit/read_options.h>
#include <VeskTimelineKit/result.h>

class QIODevice;

namespace VeskTimeline::Kit {

/// Reads the native format, which holds everything that a Document does; it is described in docs/native-format.md.
///
/// The text is refused as a whole when it is not of this format or of a newer version, ends too early, or has a broken
/// list of tracks, to which the items refer. A broken item is left out, with a warning; so is one outside the years 1
/// to 9999.
/// @param fileName for the messages; @param device open for reading
VESKTIMELINEKIT_EXPORT Result<Document> readVtl(QIODevice& device, const QString& fileName,
                                                const ReadOptions& options = {});

/// As above, from a file.
VESKTIMELINEKIT_EXPORT Result<Document> readVtl(const QString& fileName, const ReadOptions& options);

} // namespace VeskTimeline::Kit
