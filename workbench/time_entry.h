#pragma once

#include <VeskTimelineKit/document.h>

#include <QString>

#include <optional>

namespace Workbench {

/// What a text that names a point in time is read against. Times are milliseconds since the epoch.
struct TimeEntryContext
{
    qint64 now = 0;
    qint64 here = 0; ///< what "+3d" counts from and a time of day without a date belongs to
    std::optional<VeskTimeline::Kit::TimeSpan> document = {}; ///< from the first item's start to the last one's end
    int offsetHours = 0;                                      ///< of times without a zone, ahead of UTC
};

/// A point in time as somebody typed it, or why it is none.
struct TimeEntry
{
    qint64 time = 0;
    bool isWholeDay = false; ///< the text names a day, month or year, no time of day
    QString error;           ///< a sentence for the user; empty when there is a time

    bool isOk() const { return error.isEmpty(); }
};

/// Reads a point in time in the years 1 to 9999. Upper and lower case do not matter.
///
/// Understood are: "now", "today", "tomorrow", "yesterday"; "first" and "last" for the document's ends; distances such
/// as "+3d", "-2h 30min", "+1y" (ms, s, min or m, h, d, w, mo, y); dates "1972", "1972-12", "1972-12-07", "7.12.1972",
/// "7 Dec 1972", "Dec 7 1972"; a time of day "5:33", "05:33:00.250" alone or behind a date, after a blank or a T;
/// behind that a zone: "Z", "+02:00", "-0730". A date in digits with slashes is refused, as countries disagree about
/// it.
TimeEntry parseTimeEntry(const QString& text, const TimeEntryContext& context);

} // namespace Workbench
