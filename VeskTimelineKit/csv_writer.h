#pragma once

#include <VeskTimelineKit/document.h>
#include <VeskTimelineKit/write_options.h>

#include <QByteArray>

namespace VeskTimeline::Kit {

/// The document as readCsv() reads it: columns track, label, start, end, color and editable, description if there is
/// any, and one for each attribute, in the order of their names; UTF-8, lines ended by LF, times as formatTime() writes
/// them. A track without items is a line of its own. The document's warnings are not part of it.
VESKTIMELINEKIT_EXPORT QByteArray csvText(const Document& document);

/// Writes csvText() to a file, packed with gzip under a name that ends in .gz; whole or not at all: a file that was
/// there before stays as it was when writing fails. There is a warning for each kind of thing that CSV cannot say, with
/// the number of them: colours of tracks, attributes without a value, names that are empty or have blanks around them,
/// times outside the years 1 to 9999 among them.
VESKTIMELINEKIT_EXPORT WriteResult writeCsv(const Document& document, const QString& fileName,
                                            const WriteOptions& options = {});

} // namespace VeskTimeline::Kit
