#pragma once

#include <VeskTimelineKit/document.h>
#include <VeskTimelineKit/write_options.h>

#include <QByteArray>
#include <QDateTime>

#include <variant>

namespace VeskTimeline::Kit {

/// Writes the document as iCalendar (RFC 5545), whole or not at all: a file that was there before stays as it was when
/// writing fails.
///
/// Each track of the top level is a calendar of its own, with the items of the tracks below it as events of a category.
/// Times are in UTC; an item is written as an all-day event when its attribute "DTSTART;VALUE" is "DATE" and it runs
/// from midnight to midnight. Attributes that are named as properties of events become these, see readIcs() for the
/// names, and all others properties of our own. readIcs() reads tracks, items and colours back as they were; of tracks
/// of the top level whose children are listed after other tracks of the top level the order changes.
/// Warnings are lost.
/// A time outside the years 1 to 9999 is a reason not to write.
VESKTIMELINEKIT_EXPORT WriteResult writeIcs(const Document& document, const QString& fileName,
                                            const WriteOptions& options = {});

/// What writeIcs() writes, or a reason, translated.
/// @param stamp when the events are said to be written, DTSTAMP
VESKTIMELINEKIT_EXPORT std::variant<QByteArray, QString> icsText(const Document& document, const QDateTime& stamp);

} // namespace VeskTimeline::Kit
