#include "kit_tr_p.h"

#include <VeskTimelineKit/csv_reader.h>
#include <VeskTimelineKit/csv_writer.h>
#include <VeskTimelineKit/document_format.h>

#include <QFileInfo>

#include <algorithm>

namespace VeskTimeline::Kit {

namespace {

template <typename Predicate>
const DocumentFormat* findFormat(Predicate predicate)
{
    const std::vector<DocumentFormat>& formats = documentFormats();
    const auto found = std::find_if(formats.begin(), formats.end(), predicate);
    return found == formats.end() ? nullptr : &*found;
}

Result<Document> readCsvFile(const QString& fileName, const ReadOptions& /*options*/)
{
    return readCsv(fileName);
}

} // namespace

QString cancelledReason()
{
    return Tr::tr("reading was cancelled");
}

const std::vector<DocumentFormat>& documentFormats()
{
    static const std::vector<DocumentFormat> formats{
        {QStringLiteral("csv"), Tr::tr("Comma-separated values"), {QStringLiteral("csv")}, readCsvFile, writeCsv}};
    return formats;
}

const DocumentFormat* documentFormatByName(const QString& name)
{
    return findFormat(
        [&name](const DocumentFormat& format) { return name.compare(format.name, Qt::CaseInsensitive) == 0; });
}

const DocumentFormat* documentFormatBySuffix(const QString& fileName)
{
    const QString suffix = QFileInfo(fileName).suffix().toLower();
    return findFormat([&suffix](const DocumentFormat& format) { return format.suffixes.contains(suffix); });
}

} // namespace VeskTimeline::Kit
