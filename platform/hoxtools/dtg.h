#pragma once

#include <hoxtools/hoxtools_export.h>

#include <QString>

/// Date-time groups: points in time as texts in one of the lettered time zones. All functions may be called from any
/// thread.
namespace DTG {

/// Short is day, time and zone ("20134501Z"); Full adds month and year ("20134501Z NOV 26").
enum DisplayFormat { Short = 0, Full = 1 };

/// The letter of the zone that this process shows times in; 'Z' until setTimezone() sets another.
HOXTOOLS_EXPORT char timezone();

/// Makes @p zone the zone of the whole process. Letters are 'A' to 'Z' without 'J'; anything else, lower case
/// included, is refused: the zone stays and false is returned.
HOXTOOLS_EXPORT bool setTimezone(char zone);

/// The offset of @p zone from UTC in hours, positive to the east: A..I are 1..9, K..M 10..12, N..Y -1..-12 and Z 0.
/// @p ok, when given, is set to whether @p zone is such a letter; if it is not, the offset is 0.
HOXTOOLS_EXPORT int timezone2Hours(char zone, bool* ok = nullptr);

/// The date-time group of @p msecs, milliseconds since the Unix epoch (UTC), in the zone timezone(): two-digit day,
/// hours, minutes, seconds and the zone letter, in the format Full followed by the month as three upper-case English
/// letters and the two-digit year. Parts of a second are dropped. The locale does not matter. A time that is out of
/// QDateTime's range gives a null text.
HOXTOOLS_EXPORT QString toStringMSec(qint64 msecs, DisplayFormat format);

} // namespace DTG
