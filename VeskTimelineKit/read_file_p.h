#pragma once

// Internal to the kit; not installed.

#include "kit_tr_p.h"

#include <VeskTimelineKit/document.h>
#include <VeskTimelineKit/result.h>

#include <QFile>
#include <QFileInfo>

namespace VeskTimeline::Kit {

/// Opens the file, has it read and watches for what any file can suffer from.
/// @param read (QIODevice&) to a Result<Document>
template <typename Read>
Result<Document> readFile(const QString& fileName, Read read)
{
    if (fileName.isEmpty())
        return FileError{fileName, 0, Tr::tr("no file name")};
    if (QFileInfo(fileName).isDir())
        return FileError{fileName, 0, Tr::tr("is a directory")};
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        return FileError{fileName, 0, file.errorString()};
    Result<Document> result = read(file);
    // A read that fails looks like the end of the text.
    if (file.error() != QFileDevice::NoError)
        return FileError{fileName, 0, file.errorString()};
    return result;
}

} // namespace VeskTimeline::Kit
