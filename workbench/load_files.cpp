#include "load_files.h"

#include <VeskTimelineKit/document_format.h>

namespace Workbench {

using namespace VeskTimeline::Kit;

namespace {

// The options for one of several files: it has its part in their progress.
ReadOptions partOf(const ReadOptions& options, qsizetype index, qsizetype count)
{
    ReadOptions part = options;
    if (options.progress)
        part.progress = [&options, index, count](double share) {
            return options.progress((static_cast<double>(index) + share) / static_cast<double>(count));
        };
    return part;
}

} // namespace

LoadedFiles loadFiles(const QStringList& fileNames, const DocumentFormat* format, const ReadOptions& options)
{
    LoadedFiles loaded;
    for (qsizetype i = 0; i < fileNames.size(); ++i) {
        const QString& fileName = fileNames.at(i);
        const DocumentFormat& fileFormat = format ? *format : documentFormatOf(fileName);
        const Result<Document> result = fileFormat.read(fileName, partOf(options, i, fileNames.size()));
        if (fileFormat.isStretched)
            loaded.stretch = options.stretch;
        if (result) {
            loaded.document.merge(result.value());
            for (const QString& warning : result.value().longItemWarnings())
                loaded.document.addWarning(warning);
        } else
            loaded.refusals.append(result.error());
    }
    if (!loaded.refusals.isEmpty())
        loaded.document = Document();
    return loaded;
}

} // namespace Workbench
