#include "item_index_p.h"
#include "room_for_items_p.h"
#include "track_items_p.h"

#include <algorithm>
#include <limits>

namespace VeskTimeline {

RoomForItems& RoomForItems::of(const QList<int>& movedIds)
{
    if (!m_movedIds || !m_ids.holds(movedIds)) {
        m_others.clear();
        m_lastTrack = nullptr;
        m_movedIds = &m_ids.of(movedIds);
    }
    return *this;
}

RoomForItems::Others& RoomForItems::othersOn(const Track& track)
{
    if (m_lastTrack != &track) {
        m_lastTrack = &track;
        m_lastOthers = &m_others[&track];
    }
    return *m_lastOthers;
}

bool RoomForItems::isThere(const Track& track, const Item& item, qint64 start)
{
    const qint64 end = shiftedTime(start, item.duration());
    Others& others = othersOn(track);
    const ItemIndex* const index = ItemIndex::of(track);
    // Copy items are not among the track's own, and an interval without an end is not between two times.
    const bool isPlain = index && !track.hasCopyItems() && start <= end && end < std::numeric_limits<qint64>::max();
    if (isPlain && others.version == index->version()) {
        const auto behind = std::lower_bound(others.starts.begin(), others.starts.end(), end) - others.starts.begin();
        return behind == 0 || others.latestEnds[static_cast<std::size_t>(behind) - 1] <= start;
    }

    const bool isTaken = isAnyItemBetween(
        track, {start, end, true},
        [&](int id) {
            const bool isMoved = m_movedIds->contains(id);
            others.passed += isMoved ? 1 : 0;
            return isMoved;
        },
        false);
    // As many as taking down looks at: neither way costs more than twice the other.
    if (isPlain && others.passed > index->size())
        takeDown(track, others);
    return !isTaken;
}

void RoomForItems::takeDown(const Track& track, Others& others) const
{
    const ItemIndex& index = *ItemIndex::of(track);
    others.passed = 0;
    others.version = index.version();
    others.starts.clear();
    others.latestEnds.clear();
    std::size_t position = 0;
    for (const ItemPtr& item : track.items()) {
        if (!m_movedIds->contains(item->id())) {
            const qint64 before = others.latestEnds.empty() ? index.endAt(position) : others.latestEnds.back();
            others.starts.push_back(index.startAt(position));
            others.latestEnds.push_back(std::max(before, index.endAt(position)));
        }
        ++position;
    }
}

} // namespace VeskTimeline
