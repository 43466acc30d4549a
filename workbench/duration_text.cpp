#include "duration_text.h"

#include <VeskTimelineKit/document.h>
#include <VeskTimelineKit/time_text.h>

#include <QCoreApplication>
#include <QRegularExpression>

#include <cmath>

namespace Workbench {

namespace {

constexpr qint64 second = 1000;
constexpr qint64 minute = 60 * second;
constexpr qint64 hour = 60 * minute;
constexpr qint64 day = 24 * hour;
constexpr qint64 longest = 10'000 * 366 * day;

constexpr qint64 earliest = -62'135'596'800'000;
constexpr qint64 latest = 253'402'300'799'999;

qint64 unitOf(const QString& name)
{
    if (name == u"d")
        return day;
    if (name == u"h")
        return hour;
    if (name == u"min" || name == u"m")
        return minute;
    return name == u"ms" ? 1 : second;
}

// "1d 3h 2.5s": what has been read is taken off the text.
std::optional<double> takeParts(QString& text)
{
    static const QRegularExpression part(QStringLiteral("^([0-9]+(?:[.,][0-9]+)?)\\s*(d|h|min|ms|m|s)(?![a-z])\\s*"));
    std::optional<double> sum;
    for (auto match = part.match(text); match.hasMatch(); match = part.match(text)) {
        const double number = match.captured(1).replace(u',', u'.').toDouble();
        sum = sum.value_or(0) + number * static_cast<double>(unitOf(match.captured(2)));
        text.remove(0, match.capturedLength());
    }
    return sum;
}

// "2:03", "2:03:04.5"
std::optional<double> parseClock(const QString& text)
{
    static const QRegularExpression clock(
        QStringLiteral("^([0-9]{1,9}):([0-5][0-9])(?::([0-5][0-9](?:[.,][0-9]+)?))?$"));
    const QRegularExpressionMatch match = clock.match(text);
    if (!match.hasMatch())
        return std::nullopt;
    const double seconds = match.captured(3).replace(u',', u'.').toDouble();
    return match.captured(1).toDouble() * hour + match.captured(2).toDouble() * minute + seconds * second;
}

} // namespace

std::optional<qint64> parseDuration(const QString& text)
{
    QString rest = text.trimmed().toLower();
    if (rest == u"open" || rest == QCoreApplication::translate("Workbench", "open").toLower())
        return VeskTimeline::Kit::DocumentItem::openEnded;
    std::optional<double> sum = takeParts(rest);
    if (!rest.isEmpty()) {
        const std::optional<double> clock = parseClock(rest);
        if (!clock)
            return std::nullopt;
        sum = sum.value_or(0) + *clock;
    }
    if (!sum || *sum > static_cast<double>(longest))
        return std::nullopt;
    return std::llround(*sum);
}

QString formatDuration(qint64 duration)
{
    if (duration < 0)
        return QCoreApplication::translate("Workbench", "open");
    const auto twoDigits = [](qint64 number) { return QStringLiteral("%1").arg(number, 2, 10, QLatin1Char('0')); };
    QString text = duration >= day ? QStringLiteral("%1d ").arg(duration / day) : QString();
    text += QStringLiteral("%1:%2:%3")
                .arg(duration % day / hour)
                .arg(twoDigits(duration % hour / minute), twoDigits(duration % minute / second));
    const qint64 rest = duration % second;
    if (rest == 0)
        return text;
    QString fraction = QStringLiteral("%1").arg(rest, 3, 10, QLatin1Char('0'));
    while (fraction.endsWith(u'0'))
        fraction.chop(1);
    return text + u'.' + fraction;
}

bool isWithinCalendar(qint64 time)
{
    return time >= earliest && time <= latest;
}

std::optional<qint64> parseUtcTime(const QString& text)
{
    const QString trimmed = text.trimmed();
    for (const char* const zone : {"", "Z", "T00:00Z"}) {
        const auto parsed = VeskTimeline::Kit::parseTime(trimmed + QLatin1String(zone));
        if (parsed)
            return isWithinCalendar(parsed->time) ? std::optional(parsed->time) : std::nullopt;
    }
    return std::nullopt;
}

} // namespace Workbench
