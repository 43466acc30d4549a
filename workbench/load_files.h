#pragma once

#include <VeskTimelineKit/read_documents.h>

#include <QStringList>

namespace Workbench {

/// Reads the files, in order, into one document, on the calling thread; see readDocuments().
/// @param format the format of all of them; null: each file's by its suffix and content
/// @param options for all of them; their progress is that of all files together
VeskTimeline::Kit::ReadDocuments loadFiles(const QStringList& fileNames,
                                           const VeskTimeline::Kit::DocumentFormat* format = nullptr,
                                           const VeskTimeline::Kit::ReadOptions& options = {});

} // namespace Workbench
