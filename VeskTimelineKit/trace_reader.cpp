#include "kit_tr_p.h"
#include "quoted_text_p.h"
#include "read_file_p.h"
#include "trace_builder_p.h"

#include <VeskTimelineKit/trace_reader.h>

#include <QLocale>

namespace VeskTimeline::Kit {

namespace {

// Of the work, by time; the rest is matching and laying out.
constexpr double readingShare = 0.8;

void warnOfStretch(WarningList& warnings, double stretch)
{
    if (stretch != 1.0)
        warnings.add(0,
                     Tr::tr("times are stretched by %1: one microsecond of the trace is %2 ms of the axis")
                         .arg(QLocale::c().toString(stretch, 'g', 6), QLocale::c().toString(stretch / 1000.0, 'g', 6)));
}

void warnOfEnding(WarningList& warnings, const JsonRecordReader& reader)
{
    if (reader.ending() == JsonRecordReader::Ending::Truncated)
        warnings.add(0, Tr::tr("the text ends before its end; what is complete has been read"));
    for (const QByteArray& member : reader.skippedMembers())
        warnings.add(0, Tr::tr("the member %1 is left out").arg(quotedText(QString::fromUtf8(member))));
}

} // namespace

Result<Document> readTrace(QIODevice& device, const QString& fileName, const ReadOptions& options)
{
    constexpr char eventsName[] = "traceEvents";
    bool hasEvents = false;
    ReadProgress progress(options);
    progress.setPart(0.0, readingShare);
    JsonRecordReader reader(device, progress, [&](const QByteArray& member) {
        hasEvents = hasEvents || member == eventsName;
        return member == eventsName;
    });
    TraceDocumentBuilder builder(fileName);
    warnOfStretch(builder.remarks(), options.stretch);
    try {
        while (reader.next()) {
            hasEvents = true;
            builder.readRecord(reader);
        }
        if (!hasEvents && reader.hasOuterObject())
            return FileError{fileName, 0, Tr::tr("not a trace: it has no traceEvents")};
        if (const QString reason = builder.refusal(); !reason.isNull())
            return FileError{fileName, 0,
                             Tr::tr("not a trace: none of its records is an event; the last: %1").arg(reason)};
        warnOfEnding(builder.remarks(), reader);
        progress.setPart(readingShare, 1.0);
        return builder.takeDocument(options.stretch, progress);
    } catch (const QString& reason) {
        return FileError{fileName, reader.line(), reason};
    } catch (const ReadCancelled&) {
        return FileError{fileName, 0, cancelledReason()};
    }
}

Result<Document> readTrace(const QString& fileName, const ReadOptions& options)
{
    return readFile(fileName, [&](QIODevice& device) { return readTrace(device, fileName, options); });
}

} // namespace VeskTimeline::Kit
