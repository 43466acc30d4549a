#pragma once

#include <VeskTimelineKit/vesktimelinekit_export.h>

#include <QString>

#include <optional>

namespace VeskTimeline::Kit {

/// Points in time farther from the epoch than this, in milliseconds (100 million days), are refused.
constexpr qint64 farthestTime = 8'640'000'000'000'000;

/// A point in time that was read from text.
struct ParsedTime
{
    qint64 time = 0;    ///< milliseconds since the epoch, UTC
    bool isCut = false; ///< the text had fractions of a millisecond, which were dropped
};

/// Reads a point in time: milliseconds since the epoch as a whole number, or ISO 8601, the years 0001 to 9999, with a
/// zone: "1972-12-07T05:33:00Z", "2015-03-02 08:15-10:00". Seconds and their fraction may be left out; a blank may
/// stand for the T.
/// @return nothing for any other text, a date or time of day that does not exist, and a time beyond farthestTime
VESKTIMELINEKIT_EXPORT std::optional<ParsedTime> parseTime(const QString& text);

/// ISO 8601 in UTC, milliseconds only where there are any; outside the years 0001 to 9999 milliseconds since the
/// epoch. parseTime() reads it back.
VESKTIMELINEKIT_EXPORT QString formatTime(qint64 time);

} // namespace VeskTimeline::Kit
