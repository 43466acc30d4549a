#include "gzip_reader_p.h"
#include "kit_tr_p.h"
#include "vtl_format_p.h"

#include <VeskTimelineKit/csv_reader.h>
#include <VeskTimelineKit/csv_writer.h>
#include <VeskTimelineKit/document_format.h>
#include <VeskTimelineKit/ics_reader.h>
#include <VeskTimelineKit/ics_writer.h>
#include <VeskTimelineKit/ninja_log_reader.h>
#include <VeskTimelineKit/trace_reader.h>
#include <VeskTimelineKit/vtl_reader.h>
#include <VeskTimelineKit/vtl_writer.h>

#include <QBuffer>
#include <QFile>
#include <QFileInfo>

#include <algorithm>

namespace VeskTimeline::Kit {

namespace {

using Formats = std::vector<const DocumentFormat*>;

constexpr qint64 headSize = 4096;

QByteArray withoutMarkAndBlanks(const QByteArray& head)
{
    return head.mid(head.startsWith("\xEF\xBB\xBF") ? 3 : 0).trimmed();
}

bool isVtl(const QByteArray& head)
{
    return withoutMarkAndBlanks(head).startsWith('{') && head.contains(QByteArray("\"") + vtlFormatMark + "\"") &&
           head.contains("\"format\"");
}

bool isIcs(const QByteArray& head)
{
    return withoutMarkAndBlanks(head).toUpper().startsWith("BEGIN:VCALENDAR");
}

// What is packed, as far as it can be unpacked.
QByteArray unpackedHead(QByteArray head)
{
    QBuffer buffer(&head);
    buffer.open(QIODevice::ReadOnly);
    QByteArray text(headSize, '\0');
    try {
        GzipReader reader(buffer);
        text.truncate(reader.read(text.data(), text.size()));
    } catch (const QString&) {
        return {};
    }
    return text;
}

bool isJson(const QByteArray& head)
{
    const QByteArray text = withoutMarkAndBlanks(head);
    return text.startsWith('[') || text.startsWith('{');
}

bool isTrace(const QByteArray& head)
{
    if (!GzipReader::isGzip(head))
        return isJson(head);
    const QByteArray text = unpackedHead(head);
    return text.isEmpty() || isJson(text);
}

// Plain text of this kind cannot be told; but of what is read packed all else is JSON.
bool isCsv(const QByteArray& head)
{
    return GzipReader::isGzip(head) && !isTrace(head);
}

bool isNinjaLog(const QByteArray& head)
{
    return head.startsWith("# ninja log");
}

Formats formatsWithSuffix(const QString& fileName)
{
    const QString name = QFileInfo(fileName).fileName().toLower();
    qsizetype longest = 0;
    Formats found;
    for (const DocumentFormat& format : documentFormats()) {
        for (const QString& suffix : format.suffixes) {
            if (suffix.size() < longest || !name.endsWith(u'.' + suffix))
                continue;
            if (suffix.size() > longest)
                found.clear();
            longest = suffix.size();
            found.push_back(&format);
        }
    }
    return found;
}

// Empty for anything but a regular file: what is read of a pipe would be missing later.
QByteArray headOf(const QString& fileName)
{
    QFile file(fileName);
    if (!QFileInfo(fileName).isFile() || !file.open(QIODevice::ReadOnly))
        return {};
    return file.read(headSize);
}

std::vector<DocumentFormat> makeFormats()
{
    // The native format stands before others that share a suffix with it: what is saved under that is native.
    return {{QStringLiteral("csv"),
             Tr::tr("Comma-separated values"),
             {QStringLiteral("csv"), QStringLiteral("csv.gz")},
             readCsv,
             writeCsv,
             isCsv},
            {QStringLiteral("vtl"),
             Tr::tr("VeskTimeline document"),
             {QStringLiteral("vtl.json"), QStringLiteral("json")},
             readVtl,
             writeVtl,
             isVtl},
            {QStringLiteral("ics"), Tr::tr("iCalendar"), {QStringLiteral("ics")}, readIcs, writeIcs, isIcs},
            {QStringLiteral("trace"),
             Tr::tr("Trace events"),
             {QStringLiteral("json"), QStringLiteral("json.gz")},
             readTrace,
             nullptr,
             isTrace,
             true},
            {QStringLiteral("ninja"),
             Tr::tr("Ninja build log"),
             {QStringLiteral("ninja_log")},
             readNinjaLog,
             nullptr,
             isNinjaLog}};
}

} // namespace

QString cancelledReason()
{
    return Tr::tr("reading was cancelled");
}

QString writingCancelledReason()
{
    return Tr::tr("writing was cancelled");
}

const std::vector<DocumentFormat>& documentFormats()
{
    static const std::vector<DocumentFormat> formats = makeFormats();
    return formats;
}

const DocumentFormat* documentFormatByName(const QString& name)
{
    const std::vector<DocumentFormat>& formats = documentFormats();
    const auto found = std::find_if(formats.begin(), formats.end(), [&name](const DocumentFormat& format) {
        return name.compare(format.name, Qt::CaseInsensitive) == 0;
    });
    return found == formats.end() ? nullptr : &*found;
}

const DocumentFormat* documentFormatBySuffix(const QString& fileName)
{
    const Formats found = formatsWithSuffix(fileName);
    return found.empty() ? nullptr : found.front();
}

const DocumentFormat& documentFormatOf(const QString& fileName)
{
    Formats candidates = formatsWithSuffix(fileName);
    if (candidates.size() == 1)
        return *candidates.front();
    if (candidates.empty()) {
        for (const DocumentFormat& format : documentFormats())
            candidates.push_back(&format);
    }
    const QByteArray head = headOf(fileName);
    const auto found = std::find_if(candidates.begin(), candidates.end(), [&head](const DocumentFormat* format) {
        return format->isContent && format->isContent(head);
    });
    return found == candidates.end() ? *candidates.front() : **found;
}

} // namespace VeskTimeline::Kit
