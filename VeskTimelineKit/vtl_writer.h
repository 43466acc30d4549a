#pragma once

#include <VeskTimelineKit/document.h>
#include <VeskTimelineKit/write_options.h>

#include <QByteArray>

namespace VeskTimeline::Kit {

/// The document in the native format, UTF-8, with one track or item a line. readVtl() reads the same document back;
/// only its warnings are not part of it, and half a surrogate pair becomes a replacement character.
VESKTIMELINEKIT_EXPORT QByteArray vtlText(const Document& document);

/// Writes vtlText() to a file, in place of what is there: wholly or, with an error, not at all.
/// Nothing is lost, so there are never warnings.
VESKTIMELINEKIT_EXPORT WriteResult writeVtl(const Document& document, const QString& fileName,
                                            const WriteOptions& options = {});

} // namespace VeskTimeline::Kit
