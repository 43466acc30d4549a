#pragma once

// Internal to the kit; not installed.

#include "ics_time_p.h"

#include <QHash>
#include <QSet>
#include <QTimeZone>

#include <memory>

namespace VeskTimeline::Kit {

/// The time zones of one calendar: those that its VTIMEZONE components describe, and then the well-known ones by name.
class IcsZones
{
public:
    /// What a zone was found as.
    struct Zone
    {
        std::shared_ptr<icaltimezone> described; ///< may be null
        QTimeZone named;                         ///< when there is no description; invalid for an unknown zone

        bool isKnown() const { return described || named.isValid(); }
        /// Of UTC, in milliseconds.
        qint64 offsetAt(qint64 utc) const;
    };

    /// Takes the description over.
    /// @param lines of the VTIMEZONE, unfolded, BEGIN and END included
    /// @param changesLeft how many changes of clocks the file may still tell; what the zone tells, or the number of its
    /// lines if there are more, is taken off
    /// @return why there is no zone in it, translated; empty on success
    QString add(const QByteArrayList& lines, qint64& changesLeft);

    /// Whether times of that zone can be told.
    bool knows(const QByteArray& zoneId) const { return zone(zoneId).isKnown(); }
    /// Milliseconds since the epoch. Dates, floating times and those of an unknown zone are taken as UTC. A time that a
    /// clock skips is told by the offset before it; of a time that it shows twice it is the first.
    qint64 toUtc(const IcsTime& time) const;
    /// What the clock of the time's zone shows then, as IcsTime::local.
    qint64 toLocal(qint64 utc, const IcsTime& like) const;

private:
    const Zone& zone(const QByteArray& zoneId) const;

    mutable QHash<QByteArray, Zone> m_zones;
};

} // namespace VeskTimeline::Kit
