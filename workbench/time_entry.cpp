#include "time_entry.h"

#include "navigation.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QLocale>
#include <QRegularExpression>

#include <limits>

namespace Workbench {

namespace {

constexpr qint64 second = 1000;
constexpr qint64 minute = 60 * second;
constexpr qint64 hour = 60 * minute;
constexpr qint64 day = 24 * hour;
constexpr int secondsPerHour = 3600;

QString tr(const char* text)
{
    return QCoreApplication::translate("Workbench::TimeEntry", text);
}

TimeEntry failure(const QString& reason)
{
    TimeEntry entry;
    entry.error = reason;
    return entry;
}

TimeEntry checked(qint64 time, bool isWholeDay = false)
{
    if (time < Navigation::earliest || time > Navigation::latest)
        return failure(tr("That is outside the years 1 to 9999."));
    TimeEntry entry;
    entry.time = time;
    entry.isWholeDay = isWholeDay;
    return entry;
}

QRegularExpression pattern(const char* text)
{
    return QRegularExpression(QRegularExpression::anchoredPattern(QString::fromLatin1(text)),
                              QRegularExpression::CaseInsensitiveOption);
}

QDateTime atOffset(qint64 time, int seconds)
{
    return QDateTime::fromMSecsSinceEpoch(time, Qt::OffsetFromUTC, seconds);
}

qint64 startOfDay(qint64 time, int offsetHours)
{
    QDateTime local = atOffset(time, offsetHours * secondsPerHour);
    local.setTime(QTime(0, 0));
    return local.toMSecsSinceEpoch();
}

// A distance is added in the order of its units, as it is written.
std::optional<TimeEntry> parseDistance(const QString& text, const TimeEntryContext& context)
{
    static const QRegularExpression whole = pattern("([+-])\\s*((?:\\d+\\s*[a-z]+\\s*)+)");
    static const QRegularExpression part(QStringLiteral("(\\d+)\\s*([a-z]+)"),
                                         QRegularExpression::CaseInsensitiveOption);
    const QRegularExpressionMatch match = whole.match(text);
    if (!match.hasMatch()) {
        if (text.startsWith(u'+'))
            return failure(tr("A distance looks like this: +3d, +2h 30min."));
        return std::nullopt;
    }
    const int sign = match.captured(1) == u"-" ? -1 : 1;
    QDateTime time = atOffset(context.here, context.offsetHours * secondsPerHour);
    for (auto parts = part.globalMatch(match.captured(2)); parts.hasNext();) {
        const QRegularExpressionMatch one = parts.next();
        bool isNumber = false;
        const int count = sign * one.captured(1).toInt(&isNumber);
        if (!isNumber)
            return failure(tr("“%1” is too far.").arg(one.captured(0)));
        const QString unit = one.captured(2).toLower();
        if (unit == u"ms")
            time = time.addMSecs(count);
        else if (unit == u"s" || unit == u"sec")
            time = time.addMSecs(count * second);
        else if (unit == u"m" || unit == u"min")
            time = time.addMSecs(count * minute);
        else if (unit == u"h")
            time = time.addMSecs(count * hour);
        else if (unit == u"d" || unit == u"day" || unit == u"days")
            time = time.addDays(count);
        else if (unit == u"w" || unit == u"week" || unit == u"weeks")
            time = time.addDays(qint64(7) * count);
        else if (unit == u"mo" || unit == u"month" || unit == u"months")
            time = time.addMonths(count);
        else if (unit == u"y" || unit == u"year" || unit == u"years")
            time = time.addYears(count);
        else
            return failure(tr("“%1” is no unit of time; there are ms, s, min, h, d, w, mo and y.").arg(unit));
        if (!time.isValid())
            return failure(tr("That is outside the years 1 to 9999."));
    }
    return checked(time.toMSecsSinceEpoch());
}

std::optional<TimeEntry> parseWord(const QString& text, const TimeEntryContext& context)
{
    const QString word = text.toLower();
    const qint64 today = startOfDay(context.now, context.offsetHours);
    if (word == u"now" || word == tr("now"))
        return checked(context.now);
    if (word == u"today" || word == tr("today"))
        return checked(today, true);
    if (word == u"tomorrow" || word == tr("tomorrow"))
        return checked(today + day, true);
    if (word == u"yesterday" || word == tr("yesterday"))
        return checked(today - day, true);
    const bool isFirst = word == u"first" || word == tr("first");
    if (!isFirst && word != u"last" && word != tr("last"))
        return std::nullopt;
    if (!context.document)
        return failure(tr("There are no items."));
    return checked(isFirst ? context.document->start : context.document->end);
}

// 1 to 12; 0 for none. English names always, and those of the user's language.
int monthOf(const QString& name)
{
    const QString wanted = name.toLower();
    for (const QLocale& locale : {QLocale::c(), QLocale()}) {
        for (int month = 1; month <= 12; ++month) {
            for (const auto format : {QLocale::LongFormat, QLocale::ShortFormat}) {
                QString known = locale.monthName(month, format).toLower();
                known.remove(u'.');
                if (known == wanted)
                    return month;
            }
        }
    }
    return 0;
}

struct DateParts
{
    int year = 0;
    int month = 1;
    int dayOfMonth = 1;
};

TimeEntry refusedDate(const DateParts& parts)
{
    if (parts.year < 1 || parts.year > 9999)
        return failure(tr("There are the years 1 to 9999, not %1.").arg(parts.year));
    if (parts.month < 1 || parts.month > 12)
        return failure(tr("There is no month %1.").arg(parts.month));
    const QString month = QLocale().standaloneMonthName(parts.month);
    return failure(tr("%1 %2 has no day %3.").arg(month).arg(parts.year).arg(parts.dayOfMonth));
}

// Nothing when the text has not the form of a date. Whether the date exists is another question.
std::optional<DateParts> parseDate(const QString& text, QString* unknownMonth)
{
    static const QRegularExpression iso = pattern("(\\d{1,5})(?:-(\\d{1,2})(?:-(\\d{1,2}))?)?");
    static const QRegularExpression dotted = pattern("(\\d{1,2})\\.\\s*(\\d{1,2})\\.\\s*(\\d{1,5})");
    static const QRegularExpression dayFirst = pattern("(\\d{1,2})\\.?\\s*([^\\W\\d_]{3,})\\.?,?\\s*(\\d{1,5})");
    static const QRegularExpression monthFirst =
        pattern("([^\\W\\d_]{3,})\\.?\\s*(?:(\\d{1,2})(?:st|nd|rd|th)?\\s*[\\s,]\\s*)?(\\d{1,5})");
    if (const auto match = iso.match(text); match.hasMatch()) {
        const QString month = match.captured(2);
        const QString dayOfMonth = match.captured(3);
        return DateParts{match.captured(1).toInt(), month.isEmpty() ? 1 : month.toInt(),
                         dayOfMonth.isEmpty() ? 1 : dayOfMonth.toInt()};
    }
    if (const auto match = dotted.match(text); match.hasMatch())
        return DateParts{match.captured(3).toInt(), match.captured(2).toInt(), match.captured(1).toInt()};
    if (const auto match = dayFirst.match(text); match.hasMatch()) {
        const int month = monthOf(match.captured(2));
        if (month == 0)
            *unknownMonth = match.captured(2);
        return DateParts{match.captured(3).toInt(), month, match.captured(1).toInt()};
    }
    if (const auto match = monthFirst.match(text); match.hasMatch()) {
        const int month = monthOf(match.captured(1));
        if (month == 0)
            *unknownMonth = match.captured(1);
        const QString dayOfMonth = match.captured(2);
        return DateParts{match.captured(3).toInt(), month, dayOfMonth.isEmpty() ? 1 : dayOfMonth.toInt()};
    }
    return std::nullopt;
}

struct Clock
{
    qint64 sinceMidnight = 0;
    std::optional<int> offsetSeconds; ///< of the zone, if there is one
};

std::optional<Clock> parseClock(const QRegularExpressionMatch& match, QString* error)
{
    const int hours = match.captured(QStringLiteral("h")).toInt();
    const int minutes = match.captured(QStringLiteral("m")).toInt();
    const int seconds = match.captured(QStringLiteral("s")).toInt();
    const bool isEndOfDay = hours == 24 && minutes == 0 && seconds == 0;
    if (hours > 23 && !isEndOfDay)
        *error = tr("There is no hour %1.").arg(hours);
    else if (minutes > 59)
        *error = tr("There is no minute %1.").arg(minutes);
    else if (seconds > 59)
        *error = tr("There is no second %1.").arg(seconds);
    const QString fraction = match.captured(QStringLiteral("f")).leftJustified(3, u'0').left(3);
    Clock clock{hours * hour + minutes * minute + seconds * second + fraction.toInt(), {}};
    const QString zone = match.captured(QStringLiteral("zone")).toUpper().remove(u':');
    if (zone == u"Z" || zone == u"UTC")
        clock.offsetSeconds = 0;
    else if (!zone.isEmpty()) {
        const int zoneHours = zone.mid(1, 2).toInt();
        const int zoneMinutes = zone.mid(3, 2).toInt();
        if (zoneHours > 14 || zoneMinutes > 59)
            *error = tr("There is no zone %1.").arg(zone);
        const int ahead = zoneHours * secondsPerHour + zoneMinutes * 60;
        clock.offsetSeconds = zone.startsWith(u'-') ? -ahead : ahead;
    }
    if (!error->isEmpty())
        return std::nullopt;
    return clock;
}

TimeEntry parseDateAndClock(const QString& text, const TimeEntryContext& context)
{
    static const QRegularExpression clockAtEnd(
        QStringLiteral("^(?:(?<date>.*?)(?:\\s+|(?<=\\d)T))?"
                       "(?<h>\\d{1,2}):(?<m>\\d{1,2})(?::(?<s>\\d{1,2})(?:[.,](?<f>\\d+))?)?"
                       "\\s*(?<zone>Z|UTC|[+-]\\d{2}(?::?\\d{2})?)?$"),
        QRegularExpression::CaseInsensitiveOption);
    const QRegularExpressionMatch match = clockAtEnd.match(text);
    std::optional<Clock> clock;
    QString dateText = text;
    if (match.hasMatch()) {
        QString error;
        clock = parseClock(match, &error);
        if (!clock)
            return failure(error);
        dateText = match.captured(QStringLiteral("date")).trimmed();
        if (dateText.endsWith(u','))
            dateText.chop(1);
    }
    const int offset = clock && clock->offsetSeconds ? *clock->offsetSeconds : context.offsetHours * secondsPerHour;
    const qint64 sinceMidnight = clock ? clock->sinceMidnight : 0;
    if (clock && dateText.isEmpty()) {
        QDateTime here = atOffset(context.here, offset);
        here.setTime(QTime(0, 0));
        return checked(here.toMSecsSinceEpoch() + sinceMidnight);
    }
    QString unknownMonth;
    const std::optional<DateParts> parts = parseDate(dateText, &unknownMonth);
    if (!unknownMonth.isEmpty())
        return failure(tr("“%1” is no month.").arg(unknownMonth));
    if (!parts)
        return failure(tr("“%1” is no date. Write 1972-12-07 05:33, 7 Dec 1972, now or +3d.").arg(dateText));
    const QDate date(parts->year, parts->month, parts->dayOfMonth);
    if (!date.isValid() || parts->year < 1 || parts->year > 9999)
        return refusedDate(*parts);
    const QDateTime midnight(date, QTime(0, 0), Qt::OffsetFromUTC, offset);
    return checked(midnight.toMSecsSinceEpoch() + sinceMidnight, !clock);
}

} // namespace

TimeEntry parseTimeEntry(const QString& text, const TimeEntryContext& context)
{
    const QString plain = text.simplified();
    if (plain.isEmpty())
        return failure(tr("Write a date, a time or both."));
    if (const auto word = parseWord(plain, context))
        return *word;
    if (const auto distance = parseDistance(plain, context))
        return *distance;
    static const QRegularExpression slashes(QStringLiteral("\\d+/\\d+/\\d+"));
    if (plain.contains(slashes))
        return failure(tr("Day or month first? Write the date as 1972-12-07 or 7 Dec 1972."));
    return parseDateAndClock(plain, context);
}

} // namespace Workbench
