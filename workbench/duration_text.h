#pragma once

#include <QString>

#include <optional>

namespace Workbench {

/// Reads a duration in milliseconds: "1d 2:03:04.5", "2:03" (hours and minutes), "90s", "1h 30min", "250 ms", or "open"
/// for DocumentItem::openEnded.
/// @return nothing for other text, for a number without unit, and for more than 10,000 years
std::optional<qint64> parseDuration(const QString& text);

/// As parseDuration() reads it back: "1d 2:03:04.5", "open" for a negative one.
QString formatDuration(qint64 duration);

/// Reads a point in time as Kit::parseTime() does, and also one without a zone, which is taken as UTC, and a date
/// alone.
/// @return nothing for other text and for times outside the years 1 to 9999
std::optional<qint64> parseUtcTime(const QString& text);

/// Whether the time lies in the years 1 to 9999.
bool isWithinCalendar(qint64 time);

} // namespace Workbench
