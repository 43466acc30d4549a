#include "item_changes_p.h"
#include "track_places_p.h"

#include <VeskTimeline/timeline_model.h>

#include <algorithm>
#include <limits>

namespace VeskTimeline {

void TimelineModel::copyToClipboard(const QVector<int>& itemIds)
{
    m_clipboard.clear();
    m_clipboard.reserve(static_cast<Items::size_type>(itemIds.size()));
    qint64 earliest = std::numeric_limits<qint64>::max();
    for (const int id : itemIds) {
        const Item* const source = item(id);
        auto copy = std::make_unique<Item>(source->startTime(), source->duration(), source->color(), true);
        copy->m_parentTrackId = source->parentTrackId();
        m_clipboard.push_back(std::move(copy));
        earliest = std::min(earliest, source->startTime());
    }
    for (const ItemPtr& copy : m_clipboard)
        copy->_setStartTime(copy->startTime() - earliest);
}

void TimelineModel::cutToClipboard(const QVector<int>& itemIds)
{
    copyToClipboard(itemIds);
    ItemChanges changes(*this, itemIds.size(), m_logger);
    for (const int id : itemIds)
        removeItem(id);
    changes.finish();
}

void TimelineModel::forgetDestroyedTrack(int trackId)
{
    // A removed track leaves the ids of its descendants in the cache, pointing at destroyed tracks.
    if (trackId != m_rootTrack.id() && m_places->pathTo(m_rootTrack, trackId).isEmpty() &&
        !m_rootTrack.hasTrack(trackId, true))
        m_trackCache.erase(trackId);
}

void TimelineModel::pasteCopy(ItemPtr& copy, qint64 time)
{
    const int trackId = copy->parentTrackId();
    forgetDestroyedTrack(trackId);

    const Item original = *copy;
    copy->_setStartTime(original.startTime() + time);
    try {
        addItem(trackId, std::move(copy), false);
    } catch (...) {
        if (copy)
            *copy = original;
        throw;
    }
}

void TimelineModel::pasteFromClipboard(qint64 time)
{
    const qint64 base = snapTime(time);
    // Taken off first: each paste is announced, and whoever hears of it may copy something else.
    Items copies = std::move(m_clipboard);
    m_clipboard.clear();
    try {
        for (ItemPtr& copy : copies)
            pasteCopy(copy, base);
    } catch (...) {
        const auto isPasted = [](const ItemPtr& copy) { return !copy; };
        copies.erase(std::remove_if(copies.begin(), copies.end(), isPasted), copies.end());
        if (m_clipboard.empty())
            m_clipboard = std::move(copies);
        throw;
    }
}

} // namespace VeskTimeline
