#pragma once

#include <VeskTimelineKit/document.h>
#include <VeskTimelineKit/result.h>

#include <QByteArray>

#include <optional>

namespace VeskTimeline::Kit {

/// The document in the native format, UTF-8, with one track or item a line. readVtl() reads the same document back;
/// only its warnings are not part of it, and half a surrogate pair becomes a replacement character.
VESKTIMELINEKIT_EXPORT QByteArray vtlText(const Document& document);

/// Writes vtlText() to a file, in place of what is there: wholly or, with an error, not at all.
VESKTIMELINEKIT_EXPORT std::optional<FileError> writeVtl(const Document& document, const QString& fileName);

} // namespace VeskTimeline::Kit
