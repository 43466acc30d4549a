#pragma once

#include <VeskTimelineKit/document.h>
#include <VeskTimelineKit/result.h>

#include <QList>
#include <QStringList>

namespace VeskTimeline::Kit {
struct DocumentFormat;
}

namespace Workbench {

/// What loading some files comes to.
struct LoadedFiles
{
    VeskTimeline::Kit::Document document;         ///< of all files, when none was refused
    QList<VeskTimeline::Kit::FileError> refusals; ///< one for each refused file
};

/// Reads the files, in order, into one document; tracks of the same path become one.
/// @param format the format of all of them; null: each file's by its suffix
LoadedFiles loadFiles(const QStringList& fileNames, const VeskTimeline::Kit::DocumentFormat* format = nullptr);

} // namespace Workbench
