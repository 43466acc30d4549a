#pragma once

// Internal to the library; not installed.

#include "id_set_p.h"

#include <VeskTimeline/track.h>

#include <unordered_map>

namespace VeskTimeline {

/// Answers for one after the other of the items that are moved together whether its track has room for it, those moved
/// with it apart.
///
/// Where many items overlap, a stretch of time is full of items that move along, each of which would have to be passed
/// over for each of the others. After a while of that the times of the track's other items are taken down, once: their
/// starts and, for each of them, the latest end of all up to it, so that a stretch of time is free when those that
/// start before its end have all ended. That holds until the track's list changes, and so through all the steps in
/// which a nudge backs off.
class RoomForItems
{
public:
    /// Begins with items moved together; keeps what it knows when these are the same as before.
    RoomForItems& of(const QList<int>& movedIds);

    /// Whether the track has room for the item shown from `start`. @throws QString as Track::isItemsBetween()
    bool isThere(const Track& track, const Item& item, qint64 start);

private:
    /// Of one track.
    struct Others
    {
        /// How many items that move along have been passed over.
        std::size_t passed = 0;
        /// The version of the track's index that the times are those of; 0 for none.
        quint64 version = 0;
        std::vector<qint64> starts;
        std::vector<qint64> latestEnds;
    };

    Others& othersOn(const Track& track);
    void takeDown(const Track& track, Others& others) const;

    IdsOfList m_ids;
    const IdSet* m_movedIds = nullptr;
    std::unordered_map<const Track*, Others> m_others;
    const Track* m_lastTrack = nullptr;
    Others* m_lastOthers = nullptr;
};

} // namespace VeskTimeline
