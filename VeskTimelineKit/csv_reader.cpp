#include "csv_columns_p.h"
#include "csv_record_reader_p.h"
#include "kit_tr_p.h"

#include <VeskTimelineKit/csv_reader.h>
#include <VeskTimelineKit/time_text.h>
#include <VeskTimelineKit/track_path.h>

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <limits>

namespace VeskTimeline::Kit {

namespace {

constexpr qsizetype deepestPath = 100;

bool areAllEmpty(const QStringList& fields, qsizetype from = 0)
{
    return std::all_of(fields.begin() + std::min(from, fields.size()), fields.end(),
                       [](const QString& field) { return field.isEmpty(); });
}

// A field's text for a message: on one line, and no longer than a message should be.
QString quoted(const QString& field)
{
    constexpr qsizetype longest = 40;
    QString text = field.simplified();
    if (text.size() > longest)
        text = text.first(longest) + u'…';
    return u'"' + text + u'"';
}

/// Makes a document of records. The operations that take a record apart throw the reason, a QString, to refuse it.
class CsvDocumentBuilder
{
public:
    void readHeader(const QStringList& record)
    {
        if (const QString reason = m_columns.setHeader(record); !reason.isEmpty())
            throw reason;
    }
    void readRecord(const QStringList& record);
    Document takeDocument(const QString& fileName);

private:
    QString required(const QStringList& record, CsvColumns::Name name) const;
    QStringList readPath(const QStringList& record) const;
    qint64 readTime(const QString& text, CsvColumns::Name name);
    int readDuration(const QStringList& record, qint64 start);
    static QColor readColor(const QString& text);
    static bool readEditable(const QString& text);

    CsvColumns m_columns;
    Document m_document;
    int m_cutTimes = 0;
};

void CsvDocumentBuilder::readRecord(const QStringList& record)
{
    if (areAllEmpty(record))
        return;
    if (!areAllEmpty(record, m_columns.count()))
        throw Tr::tr("%1 fields, but the header names %2").arg(record.size()).arg(m_columns.count());

    const QStringList path = readPath(record);
    DocumentItem item;
    item.label = required(record, CsvColumns::Label);
    item.start = readTime(required(record, CsvColumns::Start), CsvColumns::Start);
    item.duration = readDuration(record, item.start);
    item.color = readColor(m_columns.field(record, CsvColumns::Color).value_or(QString()));
    item.isEditable = readEditable(m_columns.field(record, CsvColumns::Editable).value_or(QString()));
    m_document.track(path).items.push_back(std::move(item));
}

QString CsvDocumentBuilder::required(const QStringList& record, CsvColumns::Name name) const
{
    const auto field = m_columns.field(record, name);
    if (!field)
        throw Tr::tr("the line ends before its field \"%1\"").arg(CsvColumns::text(name));
    return *field;
}

QStringList CsvDocumentBuilder::readPath(const QStringList& record) const
{
    const QString text = required(record, CsvColumns::Track);
    const QStringList path = splitTrackPath(text);
    if (path.contains(QString()))
        throw path.size() == 1 ? Tr::tr("the track has no name")
                               : Tr::tr("a track in the path %1 has no name").arg(quoted(text));
    if (path.size() > deepestPath)
        throw Tr::tr("the track is more than %1 levels deep").arg(deepestPath);
    return path;
}

qint64 CsvDocumentBuilder::readTime(const QString& text, CsvColumns::Name name)
{
    const auto parsed = parseTime(text);
    if (!parsed)
        throw Tr::tr("bad %1 %2: neither an ISO 8601 time with its zone nor milliseconds since 1970")
            .arg(CsvColumns::text(name), quoted(text));
    m_cutTimes += parsed->isCut ? 1 : 0;
    return parsed->time;
}

int CsvDocumentBuilder::readDuration(const QStringList& record, qint64 start)
{
    const auto endText = m_columns.field(record, CsvColumns::End);
    const auto durationText = m_columns.field(record, CsvColumns::Duration);
    if (!endText && !durationText)
        throw Tr::tr("the line ends before its end");

    const bool hasEnd = endText && !endText->isEmpty();
    const bool hasDuration = durationText && !durationText->isEmpty();
    if (!hasEnd && !hasDuration)
        return DocumentItem::openEnded;

    bool isNumber = true;
    const qint64 end = hasEnd ? readTime(*endText, CsvColumns::End) : 0;
    const qint64 duration = hasDuration ? durationText->toLongLong(&isNumber) : end - start;
    if (!isNumber)
        throw Tr::tr("bad duration %1: not a whole number of milliseconds").arg(quoted(*durationText));
    if (duration < 0)
        throw hasDuration ? Tr::tr("the duration is negative") : Tr::tr("the end is before the start");
    if (duration > std::numeric_limits<int>::max())
        throw Tr::tr("the item lasts %1 ms; more than %2 ms (24.8 days) are not possible")
            .arg(duration)
            .arg(std::numeric_limits<int>::max());
    if (hasEnd && end - start != duration)
        throw Tr::tr("end and duration contradict each other");
    return static_cast<int>(duration);
}

QColor CsvDocumentBuilder::readColor(const QString& text)
{
    if (text.isEmpty())
        return {};
    if (!QColor::isValidColorName(text))
        throw Tr::tr("bad color %1").arg(quoted(text));
    return QColor::fromString(text);
}

bool CsvDocumentBuilder::readEditable(const QString& text)
{
    const auto isOneOf = [&text](std::initializer_list<const char16_t*> words) {
        return std::any_of(words.begin(), words.end(), [&text](const char16_t* word) {
            return text.compare(QStringView(word), Qt::CaseInsensitive) == 0;
        });
    };
    if (isOneOf({u"", u"true", u"yes", u"1"}))
        return true;
    if (isOneOf({u"false", u"no", u"0"}))
        return false;
    throw Tr::tr("bad editable %1: neither true nor false").arg(quoted(text));
}

Document CsvDocumentBuilder::takeDocument(const QString& fileName)
{
    for (const QString& name : m_columns.unknownNames()) {
        const QString text = name.isEmpty() ? Tr::tr("a column without a name is left out")
                                            : Tr::tr("column %1 is left out").arg(quoted(name));
        m_document.addWarning(FileError{fileName, 0, text}.text());
    }
    if (m_cutTimes > 0)
        m_document.addWarning(
            FileError{fileName, 0, Tr::tr("times cut to whole milliseconds: %1").arg(m_cutTimes)}.text());
    return std::move(m_document);
}

} // namespace

Result<Document> readCsv(QIODevice& device, const QString& fileName)
{
    CsvRecordReader reader(device);
    CsvDocumentBuilder builder;
    try {
        const bool hasHeader = reader.next();
        if (hasHeader)
            builder.readHeader(reader.fields());
        while (reader.next())
            builder.readRecord(reader.fields());
        if (!reader.errorReason().isNull())
            return FileError{fileName, reader.errorLine(), reader.errorReason()};
        if (!hasHeader)
            return FileError{fileName, 0, Tr::tr("the file is empty")};
    } catch (const QString& reason) {
        return FileError{fileName, reader.recordLine(), reason};
    }
    return builder.takeDocument(fileName);
}

Result<Document> readCsv(const QString& fileName)
{
    if (fileName.isEmpty())
        return FileError{fileName, 0, Tr::tr("no file name")};
    if (QFileInfo(fileName).isDir())
        return FileError{fileName, 0, Tr::tr("is a directory")};
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        return FileError{fileName, 0, file.errorString()};
    Result<Document> result = readCsv(file, fileName);
    // A read that fails looks like the end of the text.
    if (file.error() != QFileDevice::NoError)
        return FileError{fileName, 0, file.errorString()};
    return result;
}

} // namespace VeskTimeline::Kit
