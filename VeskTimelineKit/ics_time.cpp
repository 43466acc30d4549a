#include "ics_time_p.h"
#include "time_limits_p.h"

#include <QDate>
#include <QDateTime>

namespace VeskTimeline::Kit {

namespace {

QDateTime utcDateTime(qint64 utc)
{
    return QDateTime::fromMSecsSinceEpoch(utc, Qt::UTC);
}

} // namespace

qint64 IcsTime::date() const
{
    const qint64 remainder = local % msecsPerDay;
    return local - (remainder < 0 ? remainder + msecsPerDay : remainder);
}

std::optional<IcsTime> parseIcsTime(const QByteArray& value, const QByteArray& zone)
{
    const icaltimetype parsed = icaltime_from_string(value.trimmed().constData());
    if (!existsIcalTime(parsed))
        return std::nullopt;
    const bool isDate = parsed.is_date != 0;
    const bool isUtc = icaltime_is_utc(parsed) != 0;
    const IcsTime time{fromIcalTime(parsed), isDate, isUtc, isDate || isUtc ? QByteArray() : zone};
    return isWithinTimeLimits(time.local) ? std::optional(time) : std::nullopt;
}

QByteArray icsTimeText(qint64 utc)
{
    return utcDateTime(utc).toString(QStringLiteral("yyyyMMdd'T'HHmmss'Z'")).toLatin1();
}

QByteArray icsDateText(qint64 utc)
{
    return utcDateTime(utc).toString(QStringLiteral("yyyyMMdd")).toLatin1();
}

std::optional<IcsDuration> parseIcsDuration(const QByteArray& value)
{
    const icaldurationtype parsed = icaldurationtype_from_string(value.trimmed().constData());
    if (icaldurationtype_is_bad_duration(parsed))
        return std::nullopt;
    const qint64 sign = parsed.is_neg ? -1 : 1;
    const qint64 days = qint64(parsed.weeks) * 7 + parsed.days;
    const qint64 seconds = qint64(parsed.hours) * 3600 + qint64(parsed.minutes) * 60 + parsed.seconds;
    const qint64 longest = (latestTime - earliestTime) / 1000;
    if (days > longest / 86400 || seconds > longest)
        return std::nullopt;
    return IcsDuration{sign * days, sign * seconds * 1000};
}

bool existsIcalTime(const icaltimetype& time)
{
    // A leap second is there in the format, and becomes the first second of the next minute.
    return time.year >= 1 && time.year <= 9999 && QDate::isValid(time.year, time.month, time.day) && time.hour >= 0 &&
           time.hour <= 23 && time.minute >= 0 && time.minute <= 59 && time.second >= 0 && time.second <= 60;
}

icaltimetype toIcalTime(qint64 local, bool isDate)
{
    const QDateTime dateTime = utcDateTime(local);
    icaltimetype time = icaltime_null_time();
    time.year = dateTime.date().year();
    time.month = dateTime.date().month();
    time.day = dateTime.date().day();
    time.is_date = isDate ? 1 : 0;
    if (!isDate) {
        time.hour = dateTime.time().hour();
        time.minute = dateTime.time().minute();
        time.second = dateTime.time().second();
    }
    return time;
}

qint64 fromIcalTime(const icaltimetype& time)
{
    const qint64 days = QDate(time.year, time.month, time.day).toJulianDay() - QDate(1970, 1, 1).toJulianDay();
    if (time.is_date)
        return days * msecsPerDay;
    return days * msecsPerDay + (time.hour * 3600 + time.minute * 60 + time.second) * 1000;
}

} // namespace VeskTimeline::Kit
