#include "csv_item_reader_p.h"
#include "csv_names_p.h"
#include "csv_time_guess_p.h"
#include "kit_tr_p.h"
#include "quoted_text_p.h"
#include "time_limits_p.h"

#include <VeskTimelineKit/track_path.h>

#include <QFileInfo>

#include <algorithm>

namespace VeskTimeline::Kit {

namespace {

constexpr qsizetype deepestPath = 100;

bool areAllEmpty(const QStringList& fields, qsizetype from = 0)
{
    return std::all_of(fields.begin() + std::min(from, fields.size()), fields.end(),
                       [](const QString& field) { return field.isEmpty(); });
}

// Nothing for what is neither true nor false.
std::optional<bool> boolOf(const QString& text)
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
    return std::nullopt;
}

} // namespace

QString csvDefaultTrack(const QString& fileName)
{
    const QString name = QFileInfo(fileName).completeBaseName();
    const QString base = name.endsWith(QStringLiteral(".csv"), Qt::CaseInsensitive) ? name.chopped(4) : name;
    return base.trimmed().isEmpty() ? Tr::tr("Items") : base.trimmed();
}

CsvItemReader::CsvItemReader(const CsvPlan& plan, const QString& defaultTrack)
    : m_plan(plan), m_defaultTrack(defaultTrack), m_times(plan.options)
{
    for (const CsvField field : csvFields())
        m_fields[static_cast<std::size_t>(field)].columns = plan.columns.columns(field);
}

std::optional<CsvItemReader::Entry> CsvItemReader::read(const QStringList& record)
{
    if (areAllEmpty(record))
        return std::nullopt;
    const qsizetype columnCount = m_plan.sample.header.size();
    if (!areAllEmpty(record, columnCount))
        throw Tr::tr("%1 fields, but the header names %2").arg(record.size()).arg(columnCount);

    Entry entry;
    entry.path = readPath(record);
    if (namesTrackOnly(record))
        return entry;
    DocumentItem& item = entry.item.emplace();
    if (!columns(CsvField::Label).isEmpty())
        item.label = required(record, CsvField::Label);
    const QString& startText = required(record, CsvField::Start);
    item.start = checked(m_times.time(startText), CsvField::Start, startText).msecs;
    item.duration = readDuration(record, item.start);
    item.description = optional(record, CsvField::Description);
    readColor(record, entry);
    readEditable(record, entry);
    readAttributes(record, item);
    return entry;
}

// The kit's writer says in this way that a track has no items.
bool CsvItemReader::namesTrackOnly(const QStringList& record) const
{
    if (!m_plan.columns.hasTrackPaths() || record.size() < m_plan.sample.header.size())
        return false;
    const qsizetype track = m_plan.columns.columns(CsvField::Track).first();
    for (qsizetype column = 0; column < record.size(); ++column) {
        if (column != track && !record.at(column).isEmpty())
            return false;
    }
    return true;
}

// Null where the record has no such field, or ends before it.
const QString* CsvItemReader::text(const QStringList& record, CsvField field)
{
    Field& wanted = m_fields[static_cast<std::size_t>(field)];
    if (wanted.columns.size() == 1) {
        const qsizetype column = wanted.columns.first();
        return column < record.size() ? &record.at(column) : nullptr;
    }
    const std::optional<QString> joined = csvFieldText(record, wanted.columns);
    wanted.joined = joined.value_or(QString());
    return joined ? &wanted.joined : nullptr;
}

const QString& CsvItemReader::required(const QStringList& record, CsvField field)
{
    if (!text(record, field) && (m_plan.isOwnWay() || field == CsvField::Start))
        throw Tr::tr("the line ends before its field \"%1\"").arg(csvFieldName(field));
    return optional(record, field);
}

const QString& CsvItemReader::optional(const QStringList& record, CsvField field)
{
    static const QString nothing;
    const QString* const found = text(record, field);
    return found ? *found : nothing;
}

QStringList CsvItemReader::readPath(const QStringList& record)
{
    if (!m_plan.columns.has(CsvField::Track))
        return {m_defaultTrack};
    if (m_plan.columns.hasTrackPaths())
        return readOwnPath(required(record, CsvField::Track));
    QStringList path;
    for (const qsizetype column : m_plan.columns.columns(CsvField::Track)) {
        const QString name = column < record.size() ? record.at(column).trimmed() : QString();
        path.append(name.isEmpty() ? Tr::tr("(no %1)").arg(m_plan.sample.header.at(column).simplified()) : name);
    }
    return path;
}

QStringList CsvItemReader::readOwnPath(const QString& text)
{
    if (!m_lastPath.isEmpty() && text == m_lastPathText)
        return m_lastPath;
    const QStringList path = splitTrackPath(text);
    if (path.contains(QString()))
        throw path.size() == 1 ? Tr::tr("the track has no name")
                               : Tr::tr("a track in the path %1 has no name").arg(quotedText(text));
    if (path.size() > deepestPath)
        throw Tr::tr("the track is more than %1 levels deep").arg(deepestPath);
    m_lastPathText = text;
    m_lastPath = path;
    return path;
}

QString CsvItemReader::badTime(CsvField field, const QString& text) const
{
    if (!m_times.pattern().isEmpty())
        return Tr::tr("bad %1 %2: not a time as %3").arg(csvFieldName(field), quotedText(text), m_times.pattern());
    return Tr::tr("bad %1 %2: neither an ISO 8601 time with its zone nor milliseconds since 1970")
        .arg(csvFieldName(field), quotedText(text));
}

CsvTime CsvItemReader::checked(const std::optional<CsvTime>& time, CsvField field, const QString& text)
{
    if (!time)
        throw badTime(field, text);
    if (time->isTooFar)
        throw LeftOut{Tr::tr("the %1 %2 is outside the years 1 to 9999").arg(csvFieldName(field), quotedText(text))};
    m_cutTimes += time->isCut ? 1 : 0;
    return *time;
}

qint64 CsvItemReader::readDuration(const QStringList& record, qint64 start)
{
    if (columns(CsvField::End).isEmpty() && columns(CsvField::Duration).isEmpty())
        return 0;
    const QString* const endText = text(record, CsvField::End);
    const QString* const durationText = text(record, CsvField::Duration);
    if (!endText && !durationText && m_plan.isOwnWay())
        throw Tr::tr("the line ends before its end");

    const bool hasEnd = endText && !endText->isEmpty();
    const bool hasDuration = durationText && !durationText->isEmpty();
    if (!hasEnd && !hasDuration)
        return DocumentItem::openEnded;

    const qint64 end = hasEnd ? checked(m_times.time(*endText), CsvField::End, *endText).msecs : 0;
    qint64 duration = end - start;
    if (hasDuration) {
        const std::optional<CsvTime> parsed = m_times.duration(*durationText);
        const bool mustBeWhole = m_plan.isOwnWay() && m_plan.options.timeUnit == CsvTimeUnit::Milliseconds;
        if (!parsed || (mustBeWhole && parsed->isCut))
            throw Tr::tr("bad duration %1: not a whole number of milliseconds").arg(quotedText(*durationText));
        duration = checked(parsed, CsvField::Duration, *durationText).msecs;
    }
    if (duration < 0)
        throw hasDuration ? Tr::tr("the duration is negative") : Tr::tr("the end is before the start");
    if (hasEnd && end - start != duration)
        throw Tr::tr("end and duration contradict each other");
    if (duration > latestTime - start)
        throw LeftOut{Tr::tr("the end is outside the years 1 to 9999")};
    return duration;
}

void CsvItemReader::readColor(const QStringList& record, Entry& entry)
{
    const QString& name = optional(record, CsvField::Color);
    if (name.isEmpty())
        return;
    const QColor color = QColor::fromString(name);
    if (color.isValid()) {
        entry.item->color = color;
        return;
    }
    if (m_plan.isOwnWay())
        throw Tr::tr("bad color %1").arg(quotedText(name));
    entry.remarks += Tr::tr("the color %1 is left out: there is no such color").arg(quotedText(name));
}

void CsvItemReader::readEditable(const QStringList& record, Entry& entry)
{
    const QString& word = optional(record, CsvField::Editable);
    if (word.isEmpty())
        return;
    const std::optional<bool> isEditable = boolOf(word);
    if (!isEditable && m_plan.isOwnWay())
        throw Tr::tr("bad editable %1: neither true nor false").arg(quotedText(word));
    if (!isEditable)
        entry.remarks += Tr::tr("%1 is left out: it is neither true nor false").arg(quotedText(word));
    entry.item->isEditable = isEditable.value_or(true);
}

void CsvItemReader::readAttributes(const QStringList& record, DocumentItem& item) const
{
    for (const CsvColumns::Attribute& attribute : m_plan.columns.attributes()) {
        if (attribute.column < record.size() && !record.at(attribute.column).isEmpty())
            item.attributes.insert(attribute.name, record.at(attribute.column));
    }
}

} // namespace VeskTimeline::Kit
