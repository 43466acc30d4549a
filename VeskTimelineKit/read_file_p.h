#pragma once

// Internal to the kit; not installed.

#include "kit_tr_p.h"

#include <VeskTimelineKit/result.h>

#include <QFile>
#include <QFileInfo>

#include <utility>

namespace VeskTimeline::Kit {

/// Why a file is not even opened; null when it may be. A pipe that lies about in a folder would keep the program
/// waiting for somebody to write into it; the system's own, like standard input, have a writer.
inline QString unreadableReason(const QString& fileName)
{
    const QFileInfo info(fileName);
    if (info.isDir())
        return Tr::tr("is a directory");
    const bool isOfSystem =
        fileName.startsWith(QStringLiteral("/dev/")) || fileName.startsWith(QStringLiteral("/proc/"));
    return info.exists() && !info.isFile() && !isOfSystem ? Tr::tr("is not a regular file") : QString();
}

/// Opens the file, has it read and watches for what any file can suffer from.
/// @param read (QIODevice&) to a Result, which is what comes back
template <typename Read>
auto readFile(const QString& fileName, Read read) -> decltype(read(std::declval<QIODevice&>()))
{
    if (fileName.isEmpty())
        return FileError{fileName, 0, Tr::tr("no file name")};
    if (const QString reason = unreadableReason(fileName); !reason.isNull())
        return FileError{fileName, 0, reason};
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        return FileError{fileName, 0, file.errorString()};
    auto result = read(file);
    // A read that fails looks like the end of the text.
    if (file.error() != QFileDevice::NoError)
        return FileError{fileName, 0, file.errorString()};
    return result;
}

} // namespace VeskTimeline::Kit
