#pragma once

// Internal to the kit; not installed.

#include "csv_moment_p.h"
#include "csv_zone_p.h"

#include <VeskTimelineKit/csv_options.h>

#include <QHash>

namespace VeskTimeline::Kit {

/// A point in time or a duration that was read.
struct CsvTime
{
    qint64 msecs = 0; ///< since the epoch, UTC, or the duration
    bool isCut = false;
    bool isTooFar = false; ///< outside the years 1 to 9999
};

/// Reads the times of a file in the way that its options say.
class CsvTimeReader
{
public:
    /// What happened to times on the way.
    struct Counts
    {
        int withoutZone = 0;
        int twice = 0;   ///< that the clocks of the zone showed twice
        int leftOut = 0; ///< that they never showed
    };

    /// @param options with everything that was detected
    explicit CsvTimeReader(const CsvOptions& options);

    /// Nothing for what is no time as the options have it.
    std::optional<CsvTime> time(const QString& text);
    /// A number, or hours, minutes and seconds with colons.
    std::optional<CsvTime> duration(const QString& text) const;

    bool isZoneKnown() const { return m_zone.isValid(); }
    /// The pattern that times have to match; null for none.
    const QString& pattern() const { return m_options.dateFormat; }
    const Counts& counts() const { return m_counts; }

private:
    std::optional<CsvTime> number(const QString& text) const;
    std::optional<CsvTime> patternTime(const QString& text);
    std::optional<CsvTime> momentTime(const CsvMoment& moment, QDate date);
    QDate patternDate(const QString& text);
    CsvTime instant(qint64 local, bool isCut, std::optional<qint64> offset);

    CsvOptions m_options;
    QChar m_decimalPoint;
    CsvTimeUnit m_unit;
    std::optional<CsvDateOrder> m_order; ///< nothing: the pattern is for Qt to read
    bool m_isCompact = false;
    bool m_isDatePattern = false;
    bool m_isZonePattern = false;
    QHash<QString, QDate> m_dates; // read by the pattern lately
    CsvZone m_zone;
    Counts m_counts;
};

/// The order that a pattern of a date in numbers stands for, as "d.M.yyyy" does; nothing for any other pattern.
std::optional<CsvDateOrder> csvDateOrder(const QString& pattern);

} // namespace VeskTimeline::Kit
