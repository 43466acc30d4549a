#pragma once

// Internal to the kit; not installed.

#include "ics_time_p.h"

#include <VeskTimelineKit/document.h>
#include <VeskTimelineKit/warnings.h>

#include <QByteArrayList>

namespace VeskTimeline::Kit {

/// One entry of an RDATE.
struct IcsRecurrenceDate
{
    IcsTime start;
    std::optional<IcsTime> end;          ///< of a period with an end
    std::optional<IcsDuration> duration; ///< of a period with a duration
};

/// What a VEVENT says of its times other than by rules.
struct IcsEventTimes
{
    int line = 0;
    IcsTime start;
    std::optional<IcsTime> end;
    std::optional<IcsDuration> duration;
    std::vector<IcsRecurrenceDate> dates;
    std::optional<IcsTime> recurrenceId;
    QByteArray uid; ///< of what is neither a series nor part of one it may be left out
};

/// A VEVENT: an item whose times still have to be told from clocks, and when it recurs.
struct IcsEvent : IcsEventTimes
{
    DocumentItem item;                ///< start and duration are not set
    QString category;                 ///< the first; empty for none
    QStringList path;                 ///< when the event itself names its track; empty otherwise
    std::optional<qint64> exactStart; ///< in milliseconds, when it is no whole second
    std::optional<qint64> exactDuration;
    bool isOpenEnded = false;
    QByteArrayList rules; ///< values of RRULE that can be read
    std::vector<IcsTime> exceptions;

    bool isRecurring() const { return !rules.isEmpty() || !dates.empty(); }
};

/// @param lines of the VEVENT between its BEGIN and END, without those of components in it
/// @param number of the line where it begins
/// @param warnings for what is left out
/// @return nothing when it has no start that can be read
std::optional<IcsEvent> parseIcsEvent(const std::vector<IcsLine>& lines, int number, WarningList& warnings);

/// A text of the file for a message: on one line, and no longer than a message should be.
QString quotedIcs(const QByteArray& text);

/// A colour by name or as "#RRGGBB" or "#RRGGBBAA"; invalid for anything else.
QColor parseIcsColor(const QByteArray& value);

} // namespace VeskTimeline::Kit
