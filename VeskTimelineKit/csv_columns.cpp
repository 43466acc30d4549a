#include "csv_columns_p.h"
#include "csv_moment_p.h"
#include "csv_number_p.h"
#include "kit_tr_p.h"
#include "quoted_text_p.h"

#include <algorithm>

namespace VeskTimeline::Kit {

namespace {

constexpr QChar escape = u'\\';

CsvContent contentOf(const QString& text)
{
    if (isCsvNumber(text.trimmed(), u'.') || isCsvNumber(text.trimmed(), u','))
        return CsvContent::Number;
    const std::optional<CsvMoment> moment = scanCsvMoment(text);
    if (!moment)
        return CsvContent::Text;
    if (!moment->date)
        return CsvContent::TimeOfDay;
    return moment->timeOfDay ? CsvContent::DateTime : CsvContent::Date;
}

bool isTime(CsvContent content)
{
    return content == CsvContent::Date || content == CsvContent::DateTime;
}

} // namespace

QStringList CsvSample::values(qsizetype column) const
{
    QStringList values;
    for (const QStringList& record : records) {
        if (column < record.size() && !record.at(column).isEmpty())
            values.append(record.at(column));
    }
    return values;
}

CsvContent CsvSample::content(qsizetype column) const
{
    CsvContent content = CsvContent::Empty;
    for (const QString& value : values(column)) {
        const CsvContent one = contentOf(value);
        if (content != CsvContent::Empty && one != content)
            content = isTime(one) && isTime(content) ? CsvContent::DateTime : CsvContent::Text;
        else
            content = one;
        if (content == CsvContent::Text)
            break;
    }
    return content;
}

const QList<qsizetype>& CsvColumns::columns(CsvField field) const
{
    static const QList<qsizetype> none;
    const auto found = m_columns.constFind(field);
    return found == m_columns.cend() ? none : *found;
}

QMap<CsvField, QStringList> CsvColumns::names() const
{
    QMap<CsvField, QStringList> found;
    for (auto field = m_columns.cbegin(); field != m_columns.cend(); ++field) {
        for (const qsizetype column : *field)
            found[field.key()].append(m_sample.header.at(column));
    }
    for (const CsvField field : m_denied)
        found.insert(field, {});
    return found;
}

QString CsvColumns::find(const CsvSample& sample, const QMap<CsvField, QStringList>& said)
{
    constexpr qsizetype mostColumns = 10'000;
    m_sample = sample;
    if (m_sample.header.size() > mostColumns)
        return Tr::tr("more than %1 columns").arg(mostColumns);
    for (qsizetype column = 0; column < m_sample.header.size(); ++column) {
        m_names.emplace_back(m_sample.header.at(column));
        m_contents.push_back(m_sample.content(column));
    }
    if (const QString reason = takeSaid(said); !reason.isEmpty())
        return reason;
    if (const QString reason = takeOwnNames(said); !reason.isEmpty())
        return reason;
    takeSynonyms();
    takeTimesByContent();
    completeMoment(CsvField::Start);
    completeMoment(CsvField::End);
    checkOwnWay();
    if (const QString reason = missing(); !reason.isEmpty())
        return reason;
    takeLabelByContent();
    noteGuesses(said);
    nameAttributes();
    return {};
}

bool CsvColumns::hasLength() const
{
    return has(CsvField::End) || has(CsvField::Duration);
}

bool CsvColumns::isUsed(qsizetype column) const
{
    return std::any_of(m_columns.begin(), m_columns.end(),
                       [column](const QList<qsizetype>& columns) { return columns.contains(column); });
}

// What is escaped is an attribute, whatever its name.
bool CsvColumns::isFree(qsizetype column) const
{
    return !m_sample.header.at(column).startsWith(escape) && !isUsed(column);
}

bool CsvColumns::isOwnName(qsizetype column, CsvField field) const
{
    return m_sample.header.at(column).simplified().compare(csvFieldName(field), Qt::CaseInsensitive) == 0;
}

QString CsvColumns::takeSaid(const QMap<CsvField, QStringList>& said)
{
    for (auto field = said.cbegin(); field != said.cend(); ++field) {
        if (field->isEmpty())
            m_denied.insert(field.key());
        for (const QString& wanted : *field) {
            qsizetype column = m_sample.header.indexOf(wanted);
            for (qsizetype i = 0; column < 0 && i < m_sample.header.size(); ++i) {
                if (m_sample.header.at(i).simplified().compare(wanted.simplified(), Qt::CaseInsensitive) == 0)
                    column = i;
            }
            if (column < 0)
                return Tr::tr("there is no column %1").arg(quotedText(wanted));
            m_columns[field.key()].append(column);
        }
    }
    return {};
}

QString CsvColumns::takeOwnNames(const QMap<CsvField, QStringList>& said)
{
    for (const CsvField field : csvFields()) {
        // Where one says how long items are, the other is not meant.
        const bool isOtherSaid = (field == CsvField::End && !said.value(CsvField::Duration).isEmpty()) ||
                                 (field == CsvField::Duration && !said.value(CsvField::End).isEmpty());
        if (isSettled(field) || isOtherSaid)
            continue;
        for (qsizetype column = 0; column < m_sample.header.size(); ++column) {
            if (!isOwnName(column, field) || !isFree(column))
                continue;
            if (has(field))
                return Tr::tr("column \"%1\" is there twice").arg(csvFieldName(field));
            m_columns[field] = {column};
        }
    }
    return {};
}

void CsvColumns::takeSynonyms()
{
    takeSynonym(CsvField::Start);
    if (!hasLength()) {
        takeSynonym(CsvField::End);
        if (!has(CsvField::End))
            takeSynonym(CsvField::Duration);
    }
    for (const CsvField field : {CsvField::Track, CsvField::Label, CsvField::Color})
        takeSynonym(field);
}

void CsvColumns::takeSynonym(CsvField field)
{
    if (isSettled(field))
        return;
    for (const QString& synonym : csvSynonyms(field)) {
        for (qsizetype column = 0; column < m_sample.header.size(); ++column) {
            if (isFree(column) && name(column).core == synonym) {
                m_columns[field] = {column};
                return;
            }
        }
    }
    // "Date", "time" and "timestamp" say nothing but what they are; that is enough for a start.
    for (qsizetype column = 0; field == CsvField::Start && column < m_sample.header.size(); ++column) {
        const bool isMoment = content(column) != CsvContent::Text && content(column) != CsvContent::TimeOfDay;
        if (isFree(column) && name(column).isGeneral && isMoment) {
            m_columns[field] = {column};
            return;
        }
    }
}

// The first two columns that hold nothing but dates.
void CsvColumns::takeTimesByContent()
{
    const bool needsEnd = !hasLength() && !isDenied(CsvField::End);
    for (qsizetype column = 0; column < m_sample.header.size() && !isSettled(CsvField::Start); ++column) {
        if (isFree(column) && isTime(content(column)) && !isTime(contentOf(m_sample.header.at(column))))
            m_columns[CsvField::Start] = {column};
        if (!has(CsvField::Start) || !needsEnd)
            continue;
        for (qsizetype end = column + 1; end < m_sample.header.size() && !has(CsvField::End); ++end) {
            if (isFree(end) && isTime(content(end)))
                m_columns[CsvField::End] = {end};
        }
    }
}

qsizetype CsvColumns::findDateFor(qsizetype column) const
{
    const QString core = name(column).core;
    qsizetype general = -1;
    for (qsizetype i = 0; i < m_sample.header.size(); ++i) {
        if (i == column || content(i) != CsvContent::Date)
            continue;
        if (name(i).core == core)
            return i;
        if (general < 0 && name(i).isOfDate && name(i).isGeneral)
            general = i;
    }
    return general;
}

qsizetype CsvColumns::findTimeFor(CsvField field, qsizetype column) const
{
    const QString core = name(column).core;
    for (qsizetype i = 0; i < m_sample.header.size(); ++i) {
        if (i == column || !isFree(i) || content(i) != CsvContent::TimeOfDay)
            continue;
        if (name(i).core == core || (field == CsvField::Start && name(i).isGeneral && name(i).isOfTime))
            return i;
    }
    return -1;
}

// A column of dates may have one of times of day beside it, and the other way round.
void CsvColumns::completeMoment(CsvField field)
{
    if (columns(field).size() != 1)
        return;
    const qsizetype column = columns(field).first();
    if (content(column) == CsvContent::TimeOfDay) {
        qsizetype date = findDateFor(column);
        if (date < 0 && field == CsvField::End && columns(CsvField::Start).size() == 2)
            date = columns(CsvField::Start).first();
        if (date >= 0)
            m_columns[field] = {date, column};
    } else if (content(column) == CsvContent::Date) {
        if (const qsizetype time = findTimeFor(field, column); time >= 0)
            m_columns[field] = {column, time};
    }
}

void CsvColumns::checkOwnWay()
{
    m_isOwnWay = true;
    for (auto field = m_columns.cbegin(); field != m_columns.cend(); ++field)
        m_isOwnWay = m_isOwnWay && field->size() == 1 && isOwnName(field->first(), field.key());
    m_hasTrackPaths =
        columns(CsvField::Track).size() == 1 && isOwnName(columns(CsvField::Track).first(), CsvField::Track);
}

QString CsvColumns::missing() const
{
    QStringList missing;
    if (!has(CsvField::Start))
        missing.append(Tr::tr("column \"%1\" is missing").arg(csvFieldName(CsvField::Start)));
    // A file that has other words for the start may be one of events that take no time; so is one of which it is said.
    const bool isOfPoints = isDenied(CsvField::End) || isDenied(CsvField::Duration);
    if (!hasLength() && !isOfPoints && (m_isOwnWay || !has(CsvField::Start)))
        missing.append(Tr::tr("column \"%1\" or \"%2\" is missing")
                           .arg(csvFieldName(CsvField::End), csvFieldName(CsvField::Duration)));
    return missing.join(QStringLiteral(", "));
}

void CsvColumns::takeLabelByContent()
{
    if (isSettled(CsvField::Label))
        return;
    for (const bool isByName : {true, false}) {
        for (qsizetype column = 0; column < m_sample.header.size(); ++column) {
            const bool isNamed = name(column).endsWithName;
            if (!isFree(column) || content(column) != CsvContent::Text || (isByName && !isNamed))
                continue;
            if (isOwnName(column, CsvField::Description))
                continue;
            m_columns[CsvField::Label] = {column};
            return;
        }
    }
}

void CsvColumns::noteGuesses(const QMap<CsvField, QStringList>& said)
{
    const QMap<CsvField, QStringList> found = names();
    for (const CsvField field : csvFields()) {
        const QStringList columnNames = found.value(field);
        const bool isOwn = columnNames.size() == 1 && isOwnName(columns(field).first(), field);
        if (said.contains(field) || columnNames.isEmpty() || isOwn)
            continue;
        QStringList quotedNames;
        for (const QString& columnName : columnNames)
            quotedNames.append(quotedText(columnName));
        m_guesses.append(
            Tr::tr("%1 is taken from column %2").arg(csvFieldName(field), quotedNames.join(QStringLiteral(" + "))));
    }
    if (!hasLength() && !isDenied(CsvField::End))
        m_guesses.append(Tr::tr("there is no column for the end: all items are points in time"));
    if (!isSettled(CsvField::Label))
        m_guesses.append(Tr::tr("there is no column for labels: they are empty"));
}

void CsvColumns::nameAttributes()
{
    QSet<QString> used;
    for (qsizetype column = 0; column < m_sample.header.size(); ++column) {
        if (isUsed(column))
            continue;
        const bool isEscaped = m_sample.header.at(column).startsWith(escape);
        // Without a name there is mostly nothing in the column either.
        QString text = m_sample.header.at(column).mid(isEscaped ? 1 : 0);
        if (text.isEmpty() && !isEscaped)
            text = Tr::tr("column %1").arg(column + 1);
        QString unique = text;
        for (int number = 2; used.contains(unique); ++number)
            unique = QStringLiteral("%1 (%2)").arg(text).arg(number);
        if (unique != text)
            m_guesses.append(Tr::tr("column %1 is there more than once; one is called %2")
                                 .arg(quotedText(text), quotedText(unique)));
        used.insert(unique);
        m_attributes.push_back({column, unique});
    }
}

} // namespace VeskTimeline::Kit
