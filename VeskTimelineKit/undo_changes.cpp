#include "background_disposal_p.h"
#include "undo_changes_p.h"

#include <algorithm>

namespace VeskTimeline::Kit {

Change::~Change() = default;

void ItemChange::swap(ModelContents& contents)
{
    ItemState here = contents.itemState(m_itemId);
    contents.setItemState(m_itemId, m_other);
    m_other = std::move(here);
}

void ItemDetailsChange::swap(ModelContents& contents)
{
    for (auto& [itemId, details] : m_others)
        details = contents.swapItemDetails(itemId, details);
}

// Forgetting a step must not hold the window up that may have deleted a million items.
ItemsChange::~ItemsChange()
{
    if (m_items.size() >= manyItems)
        disposeInBackground(std::move(m_items));
}

void ItemsChange::swap(ModelContents& contents)
{
    if (m_items.empty())
        m_items = contents.takeItems(m_trackId, m_positions);
    else
        contents.putItems(m_trackId, m_positions, std::exchange(m_items, {}));
}

void ItemsMove::swap(ModelContents& contents)
{
    contents.moveItems(m_trackId, m_positions, m_otherTrackId, m_otherPositions);
    std::swap(m_trackId, m_otherTrackId);
    std::swap(m_positions, m_otherPositions);
}

TrackChange::~TrackChange()
{
    if (m_track && (m_track->hasTracks() || m_track->items().size() >= manyItems))
        disposeInBackground(std::move(m_track));
}

void TrackChange::swap(ModelContents& contents)
{
    if (m_track)
        contents.putTrack(m_place, std::move(m_track));
    else
        m_track = contents.takeTrack(m_place);
}

void TrackMove::swap(ModelContents& contents)
{
    contents.moveTrack(m_trackId, m_other);
    std::swap(m_here, m_other);
}

void ItemsPlacement::swap(ModelContents& contents)
{
    std::vector<ItemPlace> here = contents.placeItems(m_trackIds, m_others);
    m_trackIds.clear();
    for (const ItemPlace& place : m_others)
        m_trackIds.insert(place.trackId);
    m_others = std::move(here);
}

QVector<int> ItemsPlacement::itemIds() const
{
    QVector<int> ids;
    ids.reserve(static_cast<qsizetype>(m_others.size()));
    for (const ItemPlace& place : m_others)
        ids.append(place.itemId);
    std::sort(ids.begin(), ids.end());
    return ids;
}

bool ItemsPlacement::absorb(const Change& later)
{
    const auto* const other = dynamic_cast<const ItemsPlacement*>(&later);
    if (!other || other->m_others.size() != m_others.size() || other->itemIds() != itemIds())
        return false;
    m_trackIds = other->m_trackIds;
    return true;
}

void TrackDetailsChange::swap(ModelContents& contents)
{
    TrackDetails here = contents.trackDetails(m_trackId);
    contents.setTrackDetails(m_trackId, m_other);
    m_other = std::move(here);
}

void CopyItemsChange::swap(ModelContents& contents)
{
    QSet<int> here = contents.copyItemIds(m_trackId);
    contents.setCopyItemIds(m_trackId, m_other);
    m_other = std::move(here);
}

} // namespace VeskTimeline::Kit
