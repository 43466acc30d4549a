#pragma once

#include <QDateTime>
#include <QString>

namespace Workbench {

/// Hours that the zone which the ruler shows is ahead of UTC.
int rulerOffsetHours();

/// A point in time, milliseconds since the epoch, in the zone that the ruler shows.
QDateTime rulerDateTime(qint64 time);

/// Down to what a point in time is written.
enum class TimePrecision { Minutes, Seconds, Milliseconds };

/// What a pixel of a ruler can tell apart. @param millisecondsPerPixel more than 0
TimePrecision precisionOf(double millisecondsPerPixel);

/// "1972-12-07 05:33Z": as rulerTimeText(qint64), with what is finer left out.
QString rulerTimeText(qint64 time, TimePrecision precision);

/// "1972-12-07 05:33:00Z": in the zone that the ruler shows, whose letter stands behind it; milliseconds only where
/// there are any.
QString rulerTimeText(qint64 time);

} // namespace Workbench
