#pragma once

#include <VeskTimeline/vesktimeline_export.h>

#include <QList>
#include <QString>

namespace VeskTimeline {

/// The time spans that a view can show across its width.
namespace Zoom {

/// The value is the visible span in milliseconds. Any other integer may be cast into a factor; it is then an invalid
/// one, which the functions below accept and answer as they say.
enum Factor : int {
    FifteenSeconds = 15000,
    ThirtySeconds = 30000,
    SixtySeconds = 60000,
    TwoMinutes = 120000,
    ThreeMinutes = 180000,
    FiveMinutes = 300000,
    TenMinutes = 600000,
    FifteenMinutes = 900000,
    ThirtyMinutes = 1800000,
    SixtyMinutes = 3600000,
    TwoHours = 7200000,
    FourHours = 14400000,
    EightHours = 28800000,
    TwelveHours = 43200000,
    OneDay = 86400000
};

VESKTIMELINE_EXPORT int numberOfZoomFactors();
/// The next larger factor; OneDay and invalid factors are returned unchanged.
VESKTIMELINE_EXPORT Factor increment(Factor factor);
/// The next smaller factor; FifteenSeconds and invalid factors are returned unchanged.
VESKTIMELINE_EXPORT Factor decrement(Factor factor);
/// The smallest factor whose span is at least so many milliseconds; OneDay when there is none.
VESKTIMELINE_EXPORT Factor ceil(int msecs);
/// The largest factor whose span is at most so many milliseconds; FifteenSeconds when there is none.
VESKTIMELINE_EXPORT Factor floor(int msecs);
/// The factors from `min` to `max` in ascending order, without OneDay unless it is `min`: it is not offered for choice.
/// Empty when `min` is above `max`.
VESKTIMELINE_EXPORT QList<Factor> availableZoomFactors(Factor min, Factor max);
/// Translated label, e.g. "15 Seconds", or, when `isShort`, "15 sec"; "Unknown" and "N/A" for an invalid factor.
VESKTIMELINE_EXPORT QString toString(Factor factor, bool isShort);
VESKTIMELINE_EXPORT QString toShortString(Factor factor);
/// Spacing of the labelled ruler ticks in milliseconds; -1 for none.
VESKTIMELINE_EXPORT int majorInterval(Factor factor);
/// Spacing of the ruler's middle ticks in milliseconds; -1 for none, also at the two smallest factors.
VESKTIMELINE_EXPORT int mediumInterval(Factor factor);
/// Spacing of the ruler's smallest ticks in milliseconds; -1 for none.
VESKTIMELINE_EXPORT int minorInterval(Factor factor);

} // namespace Zoom

/// The ways in which a point in time is written.
namespace DateTime {

/// Any integer may be cast into a format; one that is not listed formats to a null text.
enum Format : int {
    DTG = 0,          ///< full date-time group in the process's military time zone, e.g. "20134501Z NOV 26"
    ISODate = 1,      ///< ISO 8601 in local time
    Standard = 2,     ///< "dd.MM.yyyy hh:mm:ss" in local time
    DTGShort = 3,     ///< "hhmmss Z" in the process's military time zone
    DTGVeryShort = 4, ///< "hhmm" in the process's military time zone
    TimeOnly = 5      ///< time of day, for durations and offsets within a day, not for points in time
};

VESKTIMELINE_EXPORT int numberOfDateTimeFormats();
/// @param msecs milliseconds since the Unix epoch; for TimeOnly milliseconds since midnight
VESKTIMELINE_EXPORT QString toString(qint64 msecs, Format format);

} // namespace DateTime

} // namespace VeskTimeline
