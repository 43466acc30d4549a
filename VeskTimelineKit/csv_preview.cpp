#include "csv_item_reader_p.h"
#include "kit_tr_p.h"
#include "quoted_text_p.h"
#include "read_file_p.h"

#include <VeskTimelineKit/csv_preview.h>

namespace VeskTimeline::Kit {

namespace {

CsvPreviewRecord previewRecord(const CsvRecordReader& records, CsvItemReader& items)
{
    CsvPreviewRecord record;
    record.line = records.recordLine();
    record.fields = records.fields();
    try {
        if (std::optional<CsvItemReader::Entry> entry = items.read(record.fields)) {
            record.item = std::move(entry->item);
            record.trackPath = entry->path;
        }
    } catch (const CsvItemReader::LeftOut& leftOut) {
        record.problem = leftOut.reason;
    } catch (const QString& reason) {
        record.problem = reason;
    }
    return record;
}

Result<CsvPreview> makePreview(CsvSource& source, const QString& fileName, const CsvOptions& options, int mostRecords)
{
    const CsvPlan plan = makeCsvPlan(source, options);
    CsvPreview preview{plan.sample.header, plan.options, plan.guesses, {}, plan.problem};
    const QString defaultTrack = csvDefaultTrack(fileName);
    const bool isReadable = plan.problem.isNull();
    if (isReadable && !plan.columns.has(CsvField::Track) && !plan.columns.isDenied(CsvField::Track))
        preview.guesses.append(
            Tr::tr("there is no column for tracks: all items are in the track %1").arg(quotedText(defaultTrack)));
    if (plan.sample.header.isEmpty())
        return FileError{fileName, plan.problemLine, plan.problem};
    CsvItemReader items(plan, defaultTrack);
    CsvRecordReader records = csvRecords(source, plan);
    for (int skipped = plan.hasDelimiterLine ? 2 : 1; skipped > 0; --skipped)
        records.next();
    while (preview.records.size() < mostRecords && records.next()) {
        if (isReadable)
            preview.records.append(previewRecord(records, items));
        else
            preview.records.append({records.recordLine(), records.fields(), {}, {}, {}});
    }
    if (preview.problem.isNull() && preview.records.size() < mostRecords)
        preview.problem = records.errorReason();
    return preview;
}

} // namespace

Result<CsvPreview> previewCsv(const QString& fileName, const CsvOptions& options, int mostRecords)
{
    return readFile(fileName, [&](QIODevice& device) -> Result<CsvPreview> {
        try {
            CsvSource source(device);
            return makePreview(source, fileName, options, mostRecords);
        } catch (const QString& reason) {
            return FileError{fileName, 0, reason};
        }
    });
}

} // namespace VeskTimeline::Kit
