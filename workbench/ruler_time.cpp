#include "ruler_time.h"

#include <hoxtools/dtg.h>

namespace Workbench {

int rulerOffsetHours()
{
    return DTG::timezone2Hours(DTG::timezone());
}

QDateTime rulerDateTime(qint64 time)
{
    constexpr int secondsPerHour = 3600;
    return QDateTime::fromMSecsSinceEpoch(time, Qt::OffsetFromUTC, rulerOffsetHours() * secondsPerHour);
}

TimePrecision precisionOf(double millisecondsPerPixel)
{
    constexpr double second = 1000;
    constexpr double minute = 60 * second;
    if (millisecondsPerPixel >= minute)
        return TimePrecision::Minutes;
    return millisecondsPerPixel >= second ? TimePrecision::Seconds : TimePrecision::Milliseconds;
}

QString rulerTimeText(qint64 time, TimePrecision precision)
{
    QString pattern = QStringLiteral("yyyy-MM-dd HH:mm");
    if (precision != TimePrecision::Minutes)
        pattern += QStringLiteral(":ss");
    if (precision == TimePrecision::Milliseconds)
        pattern += QStringLiteral(".zzz");
    return rulerDateTime(time).toString(pattern) + QLatin1Char(DTG::timezone());
}

QString rulerTimeText(qint64 time)
{
    const bool isWhole = rulerDateTime(time).time().msec() == 0;
    return rulerTimeText(time, isWhole ? TimePrecision::Seconds : TimePrecision::Milliseconds);
}

} // namespace Workbench
