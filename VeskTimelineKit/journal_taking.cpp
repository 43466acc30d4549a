#include "document_of_tracks_p.h"
#include "journal_taking_p.h"
#include "undo_contents_p.h"

#include <VeskTimelineKit/standard_timeline_model.h>

#include <algorithm>

namespace VeskTimeline::Kit {

namespace {

JournalItem journalItem(const Item& item, int trackId, int position)
{
    const auto* const labelled = dynamic_cast<const LabelledItem*>(&item);
    return {item.id(), trackId, position, labelled ? labelled->piece() : ItemPiece(), documentItemOf(item)};
}

} // namespace

QVector<int> sortedIds(const QSet<int>& ids)
{
    QVector<int> list(ids.begin(), ids.end());
    std::sort(list.begin(), list.end());
    return list;
}

TouchedItemsTaking::TouchedItemsTaking(const StandardTimelineModel& model, const QVector<int>& itemIds)
    : m_model(model), m_itemIds(itemIds), m_wanted(itemIds), m_latest(m_startsByTrack.end())
{
    m_delta.items.reserve(static_cast<std::size_t>(itemIds.size()));
}

bool TouchedItemsTaking::advance(int count)
{
    for (; count > 0 && m_found < m_itemIds.size(); --count)
        findNext();
    for (; count > 0 && !m_startsByTrack.empty(); --count)
        takeNext();
    return m_found == m_itemIds.size() && m_startsByTrack.empty();
}

void TouchedItemsTaking::findNext()
{
    const int id = m_itemIds[m_found++];
    const Item* const item = ModelContents::findItem(m_model, id);
    if (!item) {
        m_delta.removedItems.append(id);
        return;
    }
    // Those of a track come in runs.
    if (m_latest == m_startsByTrack.end() || m_latest->first != item->parentTrackId())
        m_latest = m_startsByTrack.try_emplace(item->parentTrackId()).first;
    m_latest->second.push_back(item->startTime());
}

void TouchedItemsTaking::enterTrack()
{
    // Then looking at all takes less time than sorting.
    constexpr std::size_t most = 8;
    auto& [trackId, starts] = *m_startsByTrack.begin();
    m_track = m_model.track(trackId);
    m_start = 0;
    m_item = 0;
    m_looksAtAll = starts.size() * most >= m_track->items().size();
    if (m_looksAtAll)
        return;
    std::sort(starts.begin(), starts.end());
    starts.erase(std::unique(starts.begin(), starts.end()), starts.end());
}

// To the next item that has to be looked at, which may be the one that comes next anyway.
bool TouchedItemsTaking::seek(const Items& items)
{
    if (m_looksAtAll)
        return m_item < items.size();
    const auto startsEarlier = [](const ItemPtr& item, qint64 time) { return item->startTime() < time; };
    const std::vector<qint64>& starts = m_startsByTrack.begin()->second;
    for (; m_start < starts.size(); ++m_start) {
        const qint64 start = starts[m_start];
        const auto from = items.begin() + static_cast<std::ptrdiff_t>(m_item);
        if (from != items.end() && (*from)->startTime() < start)
            m_item =
                static_cast<std::size_t>(std::lower_bound(from, items.end(), start, startsEarlier) - items.begin());
        if (m_item < items.size() && items[m_item]->startTime() == start)
            return true;
    }
    return false;
}

void TouchedItemsTaking::takeNext()
{
    if (!m_track)
        enterTrack();
    const Items& items = m_track->items();
    if (!seek(items)) {
        m_startsByTrack.erase(m_startsByTrack.begin());
        m_track = nullptr;
        return;
    }
    const Item& item = *items[m_item];
    if (m_wanted.contains(item.id()))
        m_delta.items.push_back(journalItem(item, m_track->id(), static_cast<int>(m_item)));
    ++m_item;
}

EverythingTaking::EverythingTaking(const StandardTimelineModel& model)
{
    addSubtree(*model.rootTrack(), 0);
    std::size_t count = 0;
    for (const Track* const track : m_tracks)
        count += track->items().size();
    m_delta.items.reserve(count);
}

void EverythingTaking::addSubtree(const Track& track, int row)
{
    const auto* const standard = dynamic_cast<const StandardTrack*>(&track);
    if (track.parentId() >= 0)
        m_delta.tracks.push_back(
            {track.id(), track.parentId(), row, track.text(), standard ? standard->details().color : QColor()});
    if (!track.items().empty())
        m_tracks.push_back(&track);
    if (!track.copyItemIds().isEmpty())
        m_delta.copies.push_back({track.id(), sortedIds(track.copyItemIds())});
    int childRow = 0;
    for (const TrackPtr& child : track.tracks())
        addSubtree(*child, childRow++);
}

bool EverythingTaking::advance(int count)
{
    for (; count > 0 && m_track < m_tracks.size(); --count) {
        const Track& track = *m_tracks[m_track];
        m_delta.items.push_back(journalItem(*track.items()[m_item], track.id(), JournalItem::last));
        if (++m_item < track.items().size())
            continue;
        ++m_track;
        m_item = 0;
    }
    return m_track == m_tracks.size();
}

} // namespace VeskTimeline::Kit
