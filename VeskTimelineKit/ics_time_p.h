#pragma once

// Internal to the kit; not installed.

#include "ics_line_p.h"

#include <libical/ical.h>
#include <optional>

namespace VeskTimeline::Kit {

/// What DTSTART, RDATE and the like say: the date and time of day that a wall clock shows, and where the clock hangs.
struct IcsTime
{
    qint64 local = 0; ///< the clock's date and time, as milliseconds since 1970-01-01 00:00 on the same clock
    bool isDate = false;
    bool isUtc = false;
    QByteArray zone; ///< TZID; empty for a floating time

    qint64 date() const; ///< local, at midnight
};

constexpr qint64 msecsPerDay = 86'400'000;

/// Reads a DATE or DATE-TIME; nothing when it is none, or does not exist, or lies outside the years 1 to 9999.
/// @param zone the TZID that stands with it
std::optional<IcsTime> parseIcsTime(const QByteArray& value, const QByteArray& zone);

/// "19700101T000000Z"; only for times of the years 1 to 9999. Fractions of a second are cut.
QByteArray icsTimeText(qint64 utc);
/// "19700101"
QByteArray icsDateText(qint64 utc);

/// How long something lasts: days on the calendar, which changes of a clock make longer or shorter, and exact time.
struct IcsDuration
{
    qint64 days = 0;
    qint64 msecs = 0;
};

/// Nothing when it is no duration, or one beyond all times.
std::optional<IcsDuration> parseIcsDuration(const QByteArray& value);

/// Whether that date and time of day are there, in the years 1 to 9999.
bool existsIcalTime(const icaltimetype& time);
/// For libical, without a zone.
icaltimetype toIcalTime(qint64 local, bool isDate);
/// Only for times that exist.
qint64 fromIcalTime(const icaltimetype& time);

} // namespace VeskTimeline::Kit
