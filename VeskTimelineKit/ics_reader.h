#pragma once

#include <VeskTimelineKit/document.h>
#include <VeskTimelineKit/read_options.h>
#include <VeskTimelineKit/result.h>

class QIODevice;

namespace VeskTimeline::Kit {

/// Reads the events of iCalendar (RFC 5545), also of several calendars one after the other.
///
/// **Tracks.** Each calendar is a track, named by X-WR-CALNAME or NAME, or else by the file's base name, with a number
/// behind it for the second one and so on. Calendars of one name are one track. Events that have CATEGORIES are in a
/// track below it of the name of the first one. The calendar's colour is its track's.
///
/// **Times.** Items carry instants: a time with a TZID is told by the VTIMEZONE of its calendar, or else by the
/// well-known zone of that name. Floating times, and those of unknown zones, are taken as UTC, with a warning.
/// An all-day event runs from midnight to midnight, UTC, and has the attribute "DTSTART;VALUE" "DATE".
///
/// **Items.** SUMMARY is the label, DESCRIPTION the description, COLOR the colour. All other properties are
/// attributes: a second one of a name is "NAME#2", and so on, and a parameter is "NAME;PARAMETER". CATEGORIES is an
/// attribute when there is more than the one that the track is named by.
///
/// **Recurrence.** RRULE, RDATE and EXDATE become one item for each occurrence, events with a RECURRENCE-ID replace
/// the one that they name. The occurrences are those that start within ReadOptions::expand, or without it from the
/// first event to two years after the last date of the file, and 100,000 at most. A warning says which event is cut.
///
/// **Left out,** with a warning: other components than VEVENT, alarms among them, EXRULE, properties of calendars that
/// have no place here, values that cannot be read, and times outside the years 1 to 9999. Lines that are not UTF-8 are
/// taken as ISO 8859-1, and control characters dropped.
///
/// **Own properties,** which writeIcs() writes where iCalendar has no words: X-VESKTIMELINE-TRACK (the path as a JSON
/// list), -START and -DURATION (milliseconds), -OPEN-ENDED, -LOCKED, -COLOR (exact), -UID (what the item has,
/// where several have the same), -ATTRIBUTE and -TEXT (JSON lists of name and value), -GENERATED (names of properties
/// that the item does not have).
///
/// The file is refused when there is no calendar in it, when components are nested more than 100 deep, and for a line
/// of 32 MiB or more.
/// @param fileName for the messages and names; @param device open for reading
VESKTIMELINEKIT_EXPORT Result<Document> readIcs(QIODevice& device, const QString& fileName,
                                                const ReadOptions& options = {});

/// As above, from a file.
VESKTIMELINEKIT_EXPORT Result<Document> readIcs(const QString& fileName, const ReadOptions& options);

} // namespace VeskTimeline::Kit
