#include "free_name_p.h"
#include "kit_tr_p.h"

#include <VeskTimelineKit/document_format.h>
#include <VeskTimelineKit/read_documents.h>

#include <QFileInfo>

#include <new>

namespace VeskTimeline::Kit {

namespace {

// A file that needs more memory than there is is refused like any other that cannot be read.
Result<Document> readOne(const DocumentFormat& format, const QString& fileName, const ReadOptions& options)
{
    try {
        return format.read(fileName, options);
    } catch (const std::bad_alloc&) {
        return FileError{fileName, 0, Tr::tr("there is not enough memory for it")};
    }
}

} // namespace

ReadDocuments readDocuments(const std::vector<FileToRead>& files, const FilesProgress& progress)
{
    ReadDocuments read;
    QSet<QString> names;
    bool isCancelled = false;
    for (std::size_t i = 0; i < files.size() && !isCancelled; ++i) {
        const FileToRead& file = files[i];
        ReadOptions options = file.options;
        options.progress = [&, i](double share) {
            const double done = (static_cast<double>(i) + share) / static_cast<double>(files.size());
            isCancelled = progress && !progress(done, file.fileName);
            return !isCancelled;
        };
        const DocumentFormat& format = file.format ? *file.format : documentFormatOf(file.fileName);
        Result<Document> result = readOne(format, file.fileName, options);
        if (format.isStretched)
            read.stretch = options.stretch;
        if (!result) {
            read.refusals.append(result.error());
            continue;
        }
        Document& document = result.value();
        for (const QString& warning : document.longItemWarnings())
            document.addWarning(FileError{file.fileName, 0, warning}.text());
        const bool isWhole = files.size() == 1 && file.trackName.isEmpty();
        if (isWhole) {
            read.document = std::move(document);
            continue;
        }
        const QString name = file.trackName.isEmpty() ? QFileInfo(file.fileName).fileName() : file.trackName;
        const QString free = freeName(name, names);
        names.insert(free);
        read.document.addBelow(free, std::move(document));
    }
    if (!read.refusals.isEmpty())
        read.document = Document();
    return read;
}

} // namespace VeskTimeline::Kit
