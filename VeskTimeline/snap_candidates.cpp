#include "snap_candidates_p.h"
#include "track_items_p.h"

#include <VeskTimeline/timeline_model.h>

#include <algorithm>

namespace VeskTimeline {

namespace {

template <typename Visit>
void visitTracks(const Track& track, const Visit& visit)
{
    visit(track);
    for (const TrackPtr& child : track.tracks())
        visitTracks(*child, visit);
}

// Both in one where they are close or the items have to come in the order of their list; otherwise each of the two. To
// visit some items in between costs less than another search of each track.
std::vector<TimeWindow> joined(const TimeWindow& one, const TimeWindow& other, bool isInOrder)
{
    constexpr qint64 widthsApart = 32;
    const TimeWindow both{std::min(one.from, other.from), std::max(one.to, other.to)};
    const bool isClose = both.to - both.from <= widthsApart * (one.to - one.from + 1);
    return isInOrder || isClose ? std::vector<TimeWindow>{both} : std::vector<TimeWindow>{one, other};
}

} // namespace

SnapCandidates::SnapCandidates(const TimelineModel& model, IdTest isLeftOut, LostHandler onLost)
    : m_model(model),
      m_isLeftOut(std::move(isLeftOut)),
      m_onLost(std::move(onLost)),
      m_asksAll(namesMoreThanTracksHold())
{
    if (m_asksAll)
        m_all = lookUpAll();
}

bool SnapCandidates::namesMoreThanTracksHold() const
{
    if (!m_model.m_itemCaching)
        return false;
    std::size_t held = 0;
    visitTracks(*m_model.rootTrack(), [&](const Track& track) { held += track.items().size(); });
    return m_model.m_itemCache.size() > held;
}

const Item* SnapCandidates::lookUp(int id) const
{
    try {
        return m_model.item(id);
    } catch (const QString&) {
        m_onLost();
        return nullptr;
    }
}

std::vector<const Item*> SnapCandidates::lookUpAll() const
{
    std::vector<const Item*> all;
    const QVector<int> ids = m_model.itemIds();
    for (const int id : ids) {
        const Item* const item = m_isLeftOut(id) ? nullptr : lookUp(id);
        if (item)
            all.push_back(item);
    }
    return all;
}

// Items that were put into a track behind the model's back are not.
bool SnapCandidates::isNamed(const Item& item) const
{
    if (m_isLeftOut(item.id()))
        return false;
    return (!m_model.m_itemCaching || m_model.m_itemCache.count(item.id()) != 0) && lookUp(item.id()) == &item;
}

std::vector<const Item*> SnapCandidates::find(const TimeWindow& starts, const TimeWindow& ends) const
{
    if (m_asksAll)
        return m_all;
    if (starts.isEmpty() && ends.isEmpty())
        return {};

    // Without the cache the ids come in the tree's order, which is the one in which items are visited.
    const bool isOrderedById = m_model.m_itemCaching;
    const std::vector<TimeWindow> windows = joined(starts, ends, !isOrderedById);
    std::vector<const Item*> found;
    const auto takeByEdges = [&](const ItemPtr& item) {
        if (starts.contains(item->startTime()) || ends.contains(item->startTime() + item->duration()))
            found.push_back(item.get());
        return false;
    };
    visitTracks(*m_model.rootTrack(), [&](const Track& track) {
        // To snapping, an item without end ends one millisecond before it starts.
        for (const TimeWindow& window : windows)
            findItemInWindow(track, {window.from, window.to + 1}, takeByEdges);
    });

    if (isOrderedById)
        std::sort(found.begin(), found.end(), [](auto* left, auto* right) { return left->id() < right->id(); });
    found.erase(std::unique(found.begin(), found.end()), found.end());
    const auto isUnknown = [this](const Item* item) { return !isNamed(*item); };
    found.erase(std::remove_if(found.begin(), found.end(), isUnknown), found.end());
    return found;
}

} // namespace VeskTimeline
