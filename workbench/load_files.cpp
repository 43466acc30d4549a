#include "load_files.h"

#include <VeskTimelineKit/document_format.h>

namespace Workbench {

using namespace VeskTimeline::Kit;

namespace {

const DocumentFormat& formatOf(const QString& fileName)
{
    const DocumentFormat* const format = documentFormatBySuffix(fileName);
    return format ? *format : documentFormats().front();
}

} // namespace

LoadedFiles loadFiles(const QStringList& fileNames, const DocumentFormat* format)
{
    LoadedFiles loaded;
    for (const QString& fileName : fileNames) {
        const Result<Document> result = (format ? *format : formatOf(fileName)).read(fileName, {});
        if (result)
            loaded.document.merge(result.value());
        else
            loaded.refusals.append(result.error());
    }
    if (!loaded.refusals.isEmpty())
        loaded.document = Document();
    return loaded;
}

} // namespace Workbench
