#pragma once

#include <VeskTimelineKit/document.h>
#include <VeskTimelineKit/read_options.h>
#include <VeskTimelineKit/result.h>

#include <QList>

#include <functional>
#include <vector>

namespace VeskTimeline::Kit {

struct DocumentFormat;

/// A file to be read, and how.
struct FileToRead
{
    QString fileName;
    const DocumentFormat* format = nullptr; ///< null: by its suffix and content
    ReadOptions options = {};               ///< without progress
    /// Of the top-level track that it is put below; empty: the file's own, where there are several files.
    QString trackName = {};
};

/// What reading some files comes to.
struct ReadDocuments
{
    Document document;         ///< of all files; empty when one was refused
    QList<FileError> refusals; ///< one for each refused file
    double stretch = 1.0;      ///< what times are stretched by, if there is a file that this applies to
};

/// Told now and then how much of all files is done, from 0 to 1, and which one is being read. Returning false cancels:
/// the file is then refused with cancelledReason(), and the files behind it are left out.
using FilesProgress = std::function<bool(double share, const QString& fileName)>;

/// Reads files, in order, into one document, on the calling thread. One file is the document as it is; of several each
/// gets a top-level track of its own, named like the file, with a number behind the name where files share it.
/// @param progress may be empty
VESKTIMELINEKIT_EXPORT ReadDocuments readDocuments(const std::vector<FileToRead>& files,
                                                   const FilesProgress& progress = {});

} // namespace VeskTimeline::Kit
