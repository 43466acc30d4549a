#include "load_files.h"

namespace Workbench {

using namespace VeskTimeline::Kit;

ReadDocuments loadFiles(const QStringList& fileNames, const DocumentFormat* format, const ReadOptions& options)
{
    std::vector<FileToRead> files;
    for (const QString& fileName : fileNames)
        files.push_back({fileName, format, options});
    return readDocuments(files, [&options](double share, const QString& /*fileName*/) {
        return !options.progress || options.progress(share);
    });
}

} // namespace Workbench
