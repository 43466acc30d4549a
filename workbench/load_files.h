#pragma once

#include <VeskTimelineKit/document.h>
#include <VeskTimelineKit/read_options.h>
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
    double stretch = 1.0; ///< what times are stretched by, if there is a file that this applies to; for the title
};

/// Reads the files, in order, into one document; tracks of the same path become one.
/// @param format the format of all of them; null: each file's by its suffix and content
/// @param options its progress is that of all files together
LoadedFiles loadFiles(const QStringList& fileNames, const VeskTimeline::Kit::DocumentFormat* format = nullptr,
                      const VeskTimeline::Kit::ReadOptions& options = {});

} // namespace Workbench
