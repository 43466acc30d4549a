#include "track_places_p.h"

#include <algorithm>

namespace VeskTimeline {

namespace {

bool isAt(const Track& parent, int row, int trackId)
{
    return row >= 0 && row < parent.trackCount() && parent.trackAt(row)->id() == trackId;
}

} // namespace

void TrackPlaces::learn(const Track& parent, int first, int last)
{
    for (int row = std::max(first, 0); row <= last && row < parent.trackCount(); ++row)
        m_places.insert(parent.trackAt(row)->id(), {parent.id(), row});
}

void TrackPlaces::learnAll(const Track& parent)
{
    learn(parent, 0, parent.trackCount() - 1);
    for (const TrackPtr& child : parent.tracks())
        learnAll(*child);
}

int TrackPlaces::rowOf(const Track& parent, int trackId)
{
    const auto known = m_places.constFind(trackId);
    if (known != m_places.constEnd() && known->parentId == parent.id()) {
        // A few siblings have come or gone before it.
        constexpr int near = 4;
        const int hint = known->row;
        for (int distance = 0; distance <= near; ++distance) {
            for (const int row : {hint - distance, hint + distance}) {
                if (!isAt(parent, row, trackId))
                    continue;
                if (row != hint)
                    learn(parent, row, row);
                return row;
            }
        }
    }
    learn(parent, 0, parent.trackCount() - 1);
    const Place place = m_places.value(trackId, {-1, -1});
    return place.parentId == parent.id() && isAt(parent, place.row, trackId) ? place.row : -1;
}

TrackPlaces::Path TrackPlaces::rememberedPath(const Track& root, int trackId)
{
    if (trackId < 0)
        return {};
    QVarLengthArray<int, 8> ids;
    for (int id = trackId; id != root.id(); id = m_places.value(id).parentId) {
        // More steps than tracks: remembered at different times, places may go round in a circle.
        if (!m_places.contains(id) || ids.size() > m_places.size())
            return {};
        ids.append(id);
    }
    Path path;
    const Track* parent = &root;
    for (auto id = ids.rbegin(); id != ids.rend(); ++id) {
        const int row = rowOf(*parent, *id);
        if (row < 0)
            return {};
        parent = parent->trackAt(row);
        path.append({parent, row});
    }
    return path;
}

TrackPlaces::Path TrackPlaces::pathTo(const Track& root, int trackId)
{
    const Path path = rememberedPath(root, trackId);
    if (!path.isEmpty() || trackId < 0 || trackId == root.id())
        return path;
    m_places.clear();
    learnAll(root);
    return rememberedPath(root, trackId);
}

} // namespace VeskTimeline
