#include <VeskTimeline/timeline_utils.h>
#include <hoxtools/dtg.h>

#include <QApplication>
#include <QDateTime>

#include <algorithm>
#include <array>
#include <iterator>

namespace VeskTimeline {

namespace {

struct ZoomStep
{
    Zoom::Factor factor;
    const char* shortLabel;
    const char* longLabel;
    int majorInterval;
    int mediumInterval;
    int minorInterval;
};

constexpr std::array<ZoomStep, 15> zoomSteps{{
    {Zoom::FifteenSeconds, QT_TRANSLATE_NOOP("QApplication", "15 sec"), QT_TRANSLATE_NOOP("QApplication", "15 Seconds"),
     3000, -1, 1000},
    {Zoom::ThirtySeconds, QT_TRANSLATE_NOOP("QApplication", "30 sec"), QT_TRANSLATE_NOOP("QApplication", "30 Seconds"),
     5000, -1, 1000},
    {Zoom::SixtySeconds, QT_TRANSLATE_NOOP("QApplication", "1 min"), QT_TRANSLATE_NOOP("QApplication", "1 Minute"),
     10000, 5000, 1000},
    {Zoom::TwoMinutes, QT_TRANSLATE_NOOP("QApplication", "2 min"), QT_TRANSLATE_NOOP("QApplication", "2 Minutes"),
     15000, 6000, 3000},
    {Zoom::ThreeMinutes, QT_TRANSLATE_NOOP("QApplication", "3 min"), QT_TRANSLATE_NOOP("QApplication", "3 Minutes"),
     30000, 10000, 5000},
    {Zoom::FiveMinutes, QT_TRANSLATE_NOOP("QApplication", "5 min"), QT_TRANSLATE_NOOP("QApplication", "5 Minutes"),
     60000, 15000, 5000},
    {Zoom::TenMinutes, QT_TRANSLATE_NOOP("QApplication", "10 min"), QT_TRANSLATE_NOOP("QApplication", "10 Minutes"),
     60000, 20000, 10000},
    {Zoom::FifteenMinutes, QT_TRANSLATE_NOOP("QApplication", "15 min"), QT_TRANSLATE_NOOP("QApplication", "15 Minutes"),
     180000, 60000, 20000},
    {Zoom::ThirtyMinutes, QT_TRANSLATE_NOOP("QApplication", "30 min"), QT_TRANSLATE_NOOP("QApplication", "30 Minutes"),
     300000, 100000, 25000},
    {Zoom::SixtyMinutes, QT_TRANSLATE_NOOP("QApplication", "1 h"), QT_TRANSLATE_NOOP("QApplication", "1 Hour"), 600000,
     150000, 50000},
    {Zoom::TwoHours, QT_TRANSLATE_NOOP("QApplication", "2 h"), QT_TRANSLATE_NOOP("QApplication", "2 Hours"), 900000,
     300000, 60000},
    {Zoom::FourHours, QT_TRANSLATE_NOOP("QApplication", "4 h"), QT_TRANSLATE_NOOP("QApplication", "4 Hours"), 1800000,
     600000, 150000},
    {Zoom::EightHours, QT_TRANSLATE_NOOP("QApplication", "8 h"), QT_TRANSLATE_NOOP("QApplication", "8 Hours"), 3600000,
     900000, 300000},
    {Zoom::TwelveHours, QT_TRANSLATE_NOOP("QApplication", "12 h"), QT_TRANSLATE_NOOP("QApplication", "12 Hours"),
     5400000, 1800000, 600000},
    {Zoom::OneDay, QT_TRANSLATE_NOOP("QApplication", "1 d"), QT_TRANSLATE_NOOP("QApplication", "1 Day"), 7200000,
     2400000, 800000},
}};

constexpr ZoomStep invalidStep{
    Zoom::Factor{}, QT_TRANSLATE_NOOP("QApplication", "N/A"), QT_TRANSLATE_NOOP("QApplication", "Unknown"), -1, -1, -1};

auto findStep(Zoom::Factor factor)
{
    return std::find_if(zoomSteps.begin(), zoomSteps.end(),
                        [factor](const ZoomStep& step) { return step.factor == factor; });
}

const ZoomStep& stepOf(Zoom::Factor factor)
{
    const auto* const found = findStep(factor);
    return found == zoomSteps.end() ? invalidStep : *found;
}

constexpr int secondsPerHour = 3600;

// The wall clock of the process's military time zone, written as if it were UTC.
QString zoneTime(qint64 msecs, const QString& pattern)
{
    const int offset = ::DTG::timezone2Hours(::DTG::timezone()) * secondsPerHour;
    return QDateTime::fromMSecsSinceEpoch(msecs).toUTC().addSecs(offset).toString(pattern);
}

} // namespace

namespace Zoom {

int numberOfZoomFactors()
{
    return static_cast<int>(zoomSteps.size());
}

Factor increment(Factor factor)
{
    const auto* const found = findStep(factor);
    const bool hasLarger = found != zoomSteps.end() && std::next(found) != zoomSteps.end();
    return hasLarger ? std::next(found)->factor : factor;
}

Factor decrement(Factor factor)
{
    const auto* const found = findStep(factor);
    const bool hasSmaller = found != zoomSteps.end() && found != zoomSteps.begin();
    return hasSmaller ? std::prev(found)->factor : factor;
}

Factor ceil(int msecs)
{
    const auto* const found = std::find_if(zoomSteps.begin(), zoomSteps.end(),
                                           [msecs](const ZoomStep& step) { return step.factor >= msecs; });
    return found == zoomSteps.end() ? OneDay : found->factor;
}

Factor floor(int msecs)
{
    const auto found = std::find_if(zoomSteps.rbegin(), zoomSteps.rend(),
                                    [msecs](const ZoomStep& step) { return step.factor <= msecs; });
    return found == zoomSteps.rend() ? FifteenSeconds : found->factor;
}

QList<Factor> availableZoomFactors(Factor min, Factor max)
{
    if (min > max)
        return {};
    QList<Factor> factors;
    factors.reserve(numberOfZoomFactors());
    factors.append(min);
    for (Factor factor = min; factor != max;) {
        factor = increment(factor);
        // The largest factor has no larger one and is not offered: a whole day leaves nothing to choose.
        if (increment(factor) <= factor)
            break;
        factors.append(factor);
    }
    return factors;
}

QString toString(Factor factor, bool isShort)
{
    const ZoomStep& step = stepOf(factor);
    return QCoreApplication::translate("QApplication", isShort ? step.shortLabel : step.longLabel);
}

QString toShortString(Factor factor)
{
    return toString(factor, true);
}

int majorInterval(Factor factor)
{
    return stepOf(factor).majorInterval;
}

int mediumInterval(Factor factor)
{
    return stepOf(factor).mediumInterval;
}

int minorInterval(Factor factor)
{
    return stepOf(factor).minorInterval;
}

} // namespace Zoom

namespace DateTime {

int numberOfDateTimeFormats()
{
    return 6;
}

QString toString(qint64 msecs, Format format)
{
    switch (format) {
    case DTG:
        return ::DTG::toStringMSec(msecs, ::DTG::Full);
    case ISODate:
        return QDateTime::fromMSecsSinceEpoch(msecs).toString(Qt::ISODate);
    case Standard:
        return QDateTime::fromMSecsSinceEpoch(msecs).toString(QStringLiteral("dd.MM.yyyy hh:mm:ss"));
    case DTGShort:
        return zoneTime(msecs, QStringLiteral("hhmmss ")) + QLatin1Char(::DTG::timezone());
    case DTGVeryShort:
        return zoneTime(msecs, QStringLiteral("hhmm"));
    case TimeOnly:
        return QTime::fromMSecsSinceStartOfDay(static_cast<int>(msecs)).toString(Qt::TextDate);
    }
    return {};
}

} // namespace DateTime

} // namespace VeskTimeline
