#include "csv_number_p.h"
#include "csv_time_guess_p.h"
#include "csv_time_p.h"
#include "kit_tr_p.h"
#include "quoted_text_p.h"

#include <algorithm>

namespace VeskTimeline::Kit {

namespace {

bool isNumber(const QString& text)
{
    return isCsvNumber(text, u'.') || isCsvNumber(text, u',');
}

bool hasFraction(const QString& text, QChar decimalPoint)
{
    return text.contains(decimalPoint) && isCsvNumber(text, decimalPoint);
}

bool isCompactDate(const QString& text)
{
    constexpr int firstYear = 1900;
    constexpr int lastYear = 2100;
    const QDate date = text.size() == 8 ? QDate::fromString(text, QStringLiteral("yyyyMMdd")) : QDate();
    return date.isValid() && date.year() >= firstYear && date.year() <= lastYear;
}

QString unitName(CsvTimeUnit unit)
{
    switch (unit) {
    case CsvTimeUnit::Seconds:
        return Tr::tr("seconds");
    case CsvTimeUnit::Milliseconds:
        return Tr::tr("milliseconds");
    case CsvTimeUnit::Microseconds:
        return Tr::tr("microseconds");
    case CsvTimeUnit::Nanoseconds:
        break;
    }
    return Tr::tr("nanoseconds");
}

/// Looks at the times of a sample.
class TimeGuess
{
public:
    TimeGuess(const CsvColumns& columns, const CsvSample& sample, CsvOptions& options, QStringList& guesses)
        : m_columns(columns),
          m_sample(sample),
          m_options(options),
          m_guesses(guesses),
          m_starts(values(CsvField::Start)),
          m_ends(values(CsvField::End)),
          m_durations(values(CsvField::Duration))
    {
    }

    QString find()
    {
        guessDecimalPoint();
        guessDateFormat();
        guessUnit();
        CsvTimeReader reader(m_options);
        if (!reader.isZoneKnown())
            return Tr::tr("there is no time zone %1").arg(quotedText(QString::fromUtf8(m_options.timeZone)));
        for (const QString& text : m_starts + m_ends)
            reader.time(text);
        if (m_options.timeZone.isEmpty() && reader.counts().withoutZone > 0)
            m_guesses.append(Tr::tr("times without a zone are taken as UTC"));
        if (m_options.timeZone.isEmpty())
            m_options.timeZone = "UTC";
        return {};
    }

private:
    QStringList values(CsvField field) const
    {
        QStringList values;
        for (const QStringList& record : m_sample.records) {
            const QString text = csvFieldText(record, m_columns.columns(field)).value_or(QString());
            if (!text.isEmpty())
                values.append(text);
        }
        return values;
    }

    void guessDecimalPoint()
    {
        if (m_options.decimalPoint)
            return;
        const QStringList texts = m_starts + m_ends + m_durations;
        const auto has = [&texts](QChar point) {
            return std::any_of(texts.begin(), texts.end(),
                               [point](const QString& text) { return hasFraction(text, point); });
        };
        m_options.decimalPoint = has(u',') && !has(u'.') ? u',' : u'.';
        if (m_options.decimalPoint == u',')
            m_guesses.append(Tr::tr("the comma in numbers is taken for a decimal point"));
    }

    void guessUnit()
    {
        if (m_options.timeUnit)
            return;
        const bool areDates = m_options.dateFormat == QStringLiteral("yyyyMMdd");
        const QStringList times = areDates ? QStringList() : m_starts + m_ends;
        const bool hasNumbers = std::any_of(times.begin(), times.end(), isNumber) ||
                                std::any_of(m_durations.begin(), m_durations.end(), isNumber);
        m_options.timeUnit = unitByName();
        if (!m_options.timeUnit)
            m_options.timeUnit = areDates ? CsvTimeUnit::Milliseconds : unitBySize();
        const bool isOwn = m_columns.isOwnWay() && m_options.timeUnit == CsvTimeUnit::Milliseconds;
        if (hasNumbers && !isOwn)
            m_guesses.append(Tr::tr("plain numbers are taken for %1").arg(unitName(*m_options.timeUnit)));
    }

    std::optional<CsvTimeUnit> unitByName() const
    {
        for (const CsvField field : {CsvField::Start, CsvField::End, CsvField::Duration}) {
            for (const qsizetype column : m_columns.columns(field)) {
                const auto unit = CsvName(m_sample.header.at(column)).unit;
                if (unit && m_sample.content(column) == CsvContent::Number)
                    return unit;
            }
        }
        return std::nullopt;
    }

    // Numbers that are points in time of these decades have sizes that do not overlap.
    CsvTimeUnit unitBySize() const
    {
        constexpr double leastSeconds = 5e8;
        constexpr double leastMilliseconds = 2e10;
        constexpr double leastMicroseconds = 1e14;
        constexpr double leastNanoseconds = 1e17;
        double least = leastNanoseconds * 10;
        double most = 0.0;
        bool hasFractions = false;
        for (const QString& text : m_starts) {
            if (!isCsvNumber(text, *m_options.decimalPoint))
                return CsvTimeUnit::Milliseconds;
            const double number = QString(text).replace(*m_options.decimalPoint, u'.').toDouble();
            least = std::min(least, number);
            most = std::max(most, number);
            hasFractions = hasFractions || hasFraction(text, *m_options.decimalPoint);
        }
        for (const QString& text : m_ends)
            hasFractions = hasFractions || hasFraction(text, *m_options.decimalPoint);
        if (least >= leastNanoseconds && most > 0.0)
            return CsvTimeUnit::Nanoseconds;
        if (least >= leastMicroseconds && most < leastNanoseconds)
            return CsvTimeUnit::Microseconds;
        if (least >= leastSeconds && most < leastMilliseconds)
            return CsvTimeUnit::Seconds;
        // An axis of milliseconds has no place for fractions of them.
        return hasFractions && most < leastMilliseconds ? CsvTimeUnit::Seconds : CsvTimeUnit::Milliseconds;
    }

    void guessDateFormat()
    {
        if (!m_options.dateFormat.isEmpty())
            return;
        const QStringList texts = m_starts + m_ends;
        if (!m_options.timeUnit && !texts.isEmpty() && std::all_of(texts.begin(), texts.end(), isCompactDate)) {
            m_options.dateFormat = QStringLiteral("yyyyMMdd");
            m_guesses.append(Tr::tr("times are read as dates written %1").arg(m_options.dateFormat));
            return;
        }
        for (const QString& text : texts) {
            if (const std::optional<CsvMoment> moment = scanCsvMoment(text); moment && moment->date)
                weigh(*moment);
        }
        if (m_unclear > 0)
            setOrder();
    }

    void weigh(const CsvMoment& moment)
    {
        constexpr int months = 12;
        const CsvWrittenDate& date = *moment.date;
        if (date.isClear() || date.separator.isNull())
            return;
        ++m_unclear;
        m_separator = date.separator;
        m_hasLongYears = m_hasLongYears || date.digits[2] == 4;
        m_isTwelveHours = m_isTwelveHours || moment.isTwelveHours;
        m_overTwelveFirst += date.numbers[0] > months ? 1 : 0;
        m_overTwelveSecond += date.numbers[1] > months ? 1 : 0;
    }

    QString pattern(CsvDateOrder order) const
    {
        const QString year = m_hasLongYears ? QStringLiteral("yyyy") : QStringLiteral("yy");
        const QStringList parts = order == CsvDateOrder::DayFirst
                                      ? QStringList{QStringLiteral("d"), QStringLiteral("M"), year}
                                      : QStringList{QStringLiteral("M"), QStringLiteral("d"), year};
        return parts.join(m_separator);
    }

    void setOrder()
    {
        using Order = CsvDateOrder;
        const bool isClear = m_overTwelveFirst != m_overTwelveSecond || m_separator == u'.';
        Order order = m_overTwelveFirst > m_overTwelveSecond ? Order::DayFirst : Order::MonthFirst;
        if (m_separator == u'.' && m_overTwelveSecond == 0)
            order = Order::DayFirst;
        if (!isClear)
            order = likelierOrder();
        m_options.dateFormat = pattern(order);
        if (isClear) {
            m_guesses.append(Tr::tr("dates are read as %1").arg(m_options.dateFormat));
            return;
        }
        const QString other = pattern(order == Order::DayFirst ? Order::MonthFirst : Order::DayFirst);
        m_guesses.append(Tr::tr("dates are read as %1, which nothing in the file says; %2 is possible as well")
                             .arg(m_options.dateFormat, other));
    }

    // Records mostly come in the order of time, and no end is before its start.
    int faults(CsvDateOrder order) const
    {
        CsvOptions options = m_options;
        options.dateFormat = pattern(order);
        CsvTimeReader reader(options);
        int faults = 0;
        std::optional<qint64> last;
        for (const QStringList& record : m_sample.records) {
            const auto timeOf = [&](CsvField field) {
                return reader.time(csvFieldText(record, m_columns.columns(field)).value_or(QString()));
            };
            const std::optional<CsvTime> start = timeOf(CsvField::Start);
            const std::optional<CsvTime> end = timeOf(CsvField::End);
            if (!start)
                continue;
            faults += (last && start->msecs < *last) ? 1 : 0;
            faults += (end && end->msecs < start->msecs) ? 1 : 0;
            last = start->msecs;
        }
        return faults;
    }

    CsvDateOrder likelierOrder() const
    {
        const int faultsOfDayFirst = faults(CsvDateOrder::DayFirst);
        const int faultsOfMonthFirst = faults(CsvDateOrder::MonthFirst);
        if (faultsOfDayFirst != faultsOfMonthFirst)
            return faultsOfDayFirst < faultsOfMonthFirst ? CsvDateOrder::DayFirst : CsvDateOrder::MonthFirst;
        // Where slashes and twelve hours are in use, the month mostly comes first.
        return m_separator == u'/' || m_isTwelveHours ? CsvDateOrder::MonthFirst : CsvDateOrder::DayFirst;
    }

    const CsvColumns& m_columns;
    const CsvSample& m_sample;
    CsvOptions& m_options;
    QStringList& m_guesses;
    QStringList m_starts;
    QStringList m_ends;
    QStringList m_durations;
    int m_unclear = 0;
    int m_overTwelveFirst = 0;
    int m_overTwelveSecond = 0;
    QChar m_separator;
    bool m_hasLongYears = false;
    bool m_isTwelveHours = false;
};

} // namespace

std::optional<QString> csvFieldText(const QStringList& record, const QList<qsizetype>& columns)
{
    if (columns.isEmpty())
        return std::nullopt;
    if (columns.size() == 1)
        return columns.first() < record.size() ? std::optional(record.at(columns.first())) : std::nullopt;
    QStringList parts;
    bool isThere = false;
    for (const qsizetype column : columns) {
        isThere = isThere || column < record.size();
        if (column < record.size() && !record.at(column).isEmpty())
            parts.append(record.at(column));
    }
    return isThere ? std::optional(parts.join(u' ')) : std::nullopt;
}

QString guessCsvTimes(const CsvColumns& columns, const CsvSample& sample, CsvOptions& options, QStringList& guesses)
{
    return TimeGuess(columns, sample, options, guesses).find();
}

} // namespace VeskTimeline::Kit
