#include "csv_number_p.h"
#include "csv_time_p.h"
#include "time_limits_p.h"

#include <QDateTime>
#include <QLocale>
#include <QRegularExpression>

#include <algorithm>

namespace VeskTimeline::Kit {

namespace {

constexpr qint64 msecsPerDay = 24 * 60 * 60 * 1000;
constexpr qint64 julianDayOfEpoch = 2440588;

qint64 midnight(QDate date)
{
    return (date.toJulianDay() - julianDayOfEpoch) * msecsPerDay;
}

// Whether a pattern has one of the letters outside quotes, where they stand for something.
bool hasPart(const QString& pattern, QStringView letters)
{
    bool isQuoted = false;
    for (const QChar c : pattern) {
        if (c == u'\'')
            isQuoted = !isQuoted;
        else if (!isQuoted && letters.contains(c))
            return true;
    }
    return false;
}

// Nothing for a text that does not match. Local time has the offset 0 from UTC.
QDateTime dateTimeOf(const QString& text, const QString& pattern, bool hasZone)
{
    if (hasZone) {
        // The abbreviations of the machine's own zone mean something else on the next machine, and those of others are
        // taken for UTC.
        static const QList<QByteArray> zones = QTimeZone::availableTimeZoneIds();
        const QDateTime time = QLocale::c().toDateTime(text, pattern);
        const bool isUnknown = time.timeSpec() == Qt::TimeZone && !zones.contains(time.timeZone().id());
        return time.timeSpec() == Qt::LocalTime || isUnknown ? QDateTime() : time;
    }
    // A time without a zone would be taken for one of the machine's, which may never have been on its clocks.
    return QLocale::c().toDateTime(QStringLiteral("+00:00 ") + text, QStringLiteral("t ") + pattern);
}

} // namespace

std::optional<CsvDateOrder> csvDateOrder(const QString& pattern)
{
    static const QRegularExpression dayFirst(QStringLiteral("^dd?([-./])MM?\\1yy(?:yy)?$"));
    static const QRegularExpression monthFirst(QStringLiteral("^MM?([-./])dd?\\1yy(?:yy)?$"));
    static const QRegularExpression yearFirst(QStringLiteral("^yyyy([-./])MM?\\1dd?$"));
    if (dayFirst.match(pattern).hasMatch())
        return CsvDateOrder::DayFirst;
    if (monthFirst.match(pattern).hasMatch())
        return CsvDateOrder::MonthFirst;
    if (pattern.isEmpty() || yearFirst.match(pattern).hasMatch())
        return CsvDateOrder::YearFirst;
    return std::nullopt;
}

CsvTimeReader::CsvTimeReader(const CsvOptions& options)
    : m_options(options),
      m_decimalPoint(options.decimalPoint.value_or(u'.')),
      m_unit(options.timeUnit.value_or(CsvTimeUnit::Milliseconds)),
      m_order(csvDateOrder(options.dateFormat)),
      m_isCompact(options.dateFormat == QStringLiteral("yyyyMMdd")),
      m_isDatePattern(!hasPart(options.dateFormat, u"hHmszaApPt")),
      m_isZonePattern(hasPart(options.dateFormat, u"t")),
      m_zone(options.timeZone)
{
    if (m_isCompact)
        m_order = CsvDateOrder::YearFirst;
}

std::optional<CsvTime> CsvTimeReader::number(const QString& text) const
{
    const std::optional<CsvMsecs> number = csvMsecs(QStringView(text).trimmed(), m_unit, m_decimalPoint);
    if (!number)
        return std::nullopt;
    return CsvTime{number->msecs, number->isCut, number->isTooFar || !isWithinTimeLimits(number->msecs)};
}

std::optional<CsvTime> CsvTimeReader::time(const QString& text)
{
    if (!m_order)
        return patternTime(text);
    if (!m_isCompact) {
        if (const std::optional<CsvIsoTime> iso = scanCsvIsoTime(text))
            return instant(iso->local, false, iso->zoneOffset);
        if (const std::optional<CsvTime> plain = number(text))
            return plain;
    }
    const std::optional<CsvMoment> moment = scanCsvMoment(text);
    if (!moment || !moment->date)
        return std::nullopt;
    return momentTime(*moment, csvDate(*moment->date, *m_order));
}

std::optional<CsvTime> CsvTimeReader::momentTime(const CsvMoment& moment, QDate date)
{
    if (!date.isValid())
        return std::nullopt;
    return instant(midnight(date) + moment.timeOfDay.value_or(0), moment.isCut, moment.zoneOffset);
}

CsvTime CsvTimeReader::instant(qint64 local, bool isCut, std::optional<qint64> offset)
{
    CsvTime time{local, isCut, false};
    if (offset) {
        time.msecs -= *offset;
    } else {
        const CsvZone::Instant utc = m_zone.toUtc(local);
        time.msecs = utc.time;
        ++m_counts.withoutZone;
        m_counts.twice += utc.kind == CsvZone::Kind::Twice ? 1 : 0;
        m_counts.leftOut += utc.kind == CsvZone::Kind::LeftOut ? 1 : 0;
    }
    time.isTooFar = !isWithinTimeLimits(time.msecs);
    return time;
}

QDate CsvTimeReader::patternDate(const QString& text)
{
    // Days come again and again, and reading them by a pattern takes long.
    constexpr qsizetype mostKept = 4096;
    if (const auto known = m_dates.constFind(text); known != m_dates.cend())
        return *known;
    if (m_dates.size() >= mostKept)
        m_dates.clear();
    return *m_dates.insert(text, QLocale::c().toDate(text, m_options.dateFormat));
}

std::optional<CsvTime> CsvTimeReader::patternTime(const QString& text)
{
    const QString trimmed = text.trimmed();
    if (!m_isDatePattern) {
        const QDateTime time = dateTimeOf(trimmed, m_options.dateFormat, m_isZonePattern);
        if (!time.isValid())
            return std::nullopt;
        return instant(time.toMSecsSinceEpoch(), false, m_isZonePattern ? std::optional<qint64>(0) : std::nullopt);
    }
    if (const QDate date = patternDate(trimmed); date.isValid())
        return momentTime({}, date);
    // Behind a date there may be a time of day, in any way of writing it.
    for (qsizetype blank = trimmed.indexOf(u' '); blank > 0; blank = trimmed.indexOf(u' ', blank + 1)) {
        const std::optional<CsvMoment> moment = scanCsvMoment(QStringLiteral("2000-01-01 ") + trimmed.mid(blank + 1));
        const QDate date = moment ? patternDate(trimmed.left(blank)) : QDate();
        if (date.isValid())
            return momentTime(*moment, date);
    }
    return std::nullopt;
}

std::optional<CsvTime> CsvTimeReader::duration(const QString& text) const
{
    if (const std::optional<CsvTime> plain = number(text))
        return plain;
    static const QRegularExpression pattern(
        QStringLiteral("^([0-9]{1,7}):([0-5][0-9])(?::([0-5][0-9])(?:[.,]([0-9]+))?)?$"));
    const QRegularExpressionMatch match = pattern.match(text.trimmed());
    if (!match.hasMatch())
        return std::nullopt;
    const qint64 seconds =
        (match.captured(1).toLongLong() * 60 + match.captured(2).toLongLong()) * 60 + match.captured(3).toLongLong();
    const QString fraction = match.captured(4);
    const QString rest = fraction.mid(3);
    return CsvTime{seconds * 1000 + fraction.leftJustified(3, u'0').left(3).toLongLong(),
                   rest.count(u'0') != rest.size(), false};
}

} // namespace VeskTimeline::Kit
