#include <VeskTimelineKit/time_text.h>

#include <QDateTime>
#include <QRegularExpression>

namespace VeskTimeline::Kit {

namespace {

constexpr qint64 msecsPerSecond = 1000;
constexpr qint64 msecsPerMinute = 60 * msecsPerSecond;
constexpr qint64 msecsPerHour = 60 * msecsPerMinute;

const QRegularExpression& isoPattern()
{
    static const QRegularExpression pattern(
        QStringLiteral("^(?<year>[0-9]{4})-(?<month>[0-9]{2})-(?<day>[0-9]{2})[Tt ]"
                       "(?<hour>[0-9]{2}):(?<minute>[0-9]{2})(?::(?<second>[0-9]{2})(?:[.,](?<fraction>[0-9]+))?)?"
                       "(?:[Zz]|(?<sign>[+-])(?<zoneHour>[0-9]{2})(?::?(?<zoneMinute>[0-9]{2}))?)$"));
    return pattern;
}

const QRegularExpression& numberPattern()
{
    static const QRegularExpression pattern(QStringLiteral("^[+-]?[0-9]+$"));
    return pattern;
}

// Milliseconds since midnight; nothing for a time of day that does not exist. The end of a day may be written 24:00.
std::optional<qint64> timeOfDay(int hour, int minute, int second)
{
    if (hour > 24 || minute > 59 || second > 59 || (hour == 24 && (minute > 0 || second > 0)))
        return std::nullopt;
    return hour * msecsPerHour + minute * msecsPerMinute + second * msecsPerSecond;
}

// The zone's offset from UTC; nothing for one that cannot be.
std::optional<qint64> zoneOffset(const QRegularExpressionMatch& match)
{
    const int hour = match.captured(u"zoneHour").toInt();
    const int minute = match.captured(u"zoneMinute").toInt();
    if (hour > 23 || minute > 59)
        return std::nullopt;
    const qint64 offset = hour * msecsPerHour + minute * msecsPerMinute;
    return match.captured(u"sign") == u"-" ? -offset : offset;
}

std::optional<ParsedTime> parseIso(const QRegularExpressionMatch& match)
{
    const auto number = [&match](const char16_t* name) { return match.captured(QStringView(name)).toInt(); };
    const QDate date(number(u"year"), number(u"month"), number(u"day"));
    const auto dayTime = timeOfDay(number(u"hour"), number(u"minute"), number(u"second"));
    const auto offset = zoneOffset(match);
    const QString fraction = match.captured(u"fraction");
    const int msecs = fraction.leftJustified(3, u'0').left(3).toInt();
    const bool isPastMidnight = number(u"hour") == 24 && fraction.count(u'0') != fraction.size();
    if (!date.isValid() || !dayTime || !offset || isPastMidnight)
        return std::nullopt;

    ParsedTime parsed;
    parsed.time = QDateTime(date, QTime(0, 0), Qt::UTC).toMSecsSinceEpoch() + *dayTime + msecs - *offset;
    const QString rest = fraction.mid(3);
    parsed.isCut = rest.count(u'0') != rest.size();
    return parsed;
}

} // namespace

std::optional<ParsedTime> parseTime(const QString& text)
{
    if (numberPattern().match(text).hasMatch()) {
        bool isInRange = false;
        const qint64 time = text.toLongLong(&isInRange);
        if (!isInRange || time > farthestTime || time < -farthestTime)
            return std::nullopt;
        return ParsedTime{time, false};
    }
    const QRegularExpressionMatch match = isoPattern().match(text);
    return match.hasMatch() ? parseIso(match) : std::nullopt;
}

QString formatTime(qint64 time)
{
    const QDateTime utc = QDateTime::fromMSecsSinceEpoch(time, Qt::UTC);
    const int year = utc.date().year();
    if (!utc.isValid() || year < 1 || year > 9999)
        return QString::number(time);
    return utc.toString(utc.time().msec() == 0 ? Qt::ISODate : Qt::ISODateWithMs);
}

} // namespace VeskTimeline::Kit
