#pragma once

#include <VeskTimelineKit/document.h>
#include <VeskTimelineKit/write_options.h>

#include <QByteArray>

namespace VeskTimeline::Kit {

/// The document as readCsv() reads it: columns track, label, start, end, color and editable, UTF-8, lines ended by LF,
/// times as formatTime() writes them. Tracks without items anywhere below them have no line and are lost, and so are
/// warnings.
VESKTIMELINEKIT_EXPORT QByteArray csvText(const Document& document);

/// Writes csvText() to a file, whole or not at all: a file that was there before stays as it was when writing fails.
VESKTIMELINEKIT_EXPORT WriteResult writeCsv(const Document& document, const QString& fileName,
                                            const WriteOptions& options = {});

} // namespace VeskTimeline::Kit
