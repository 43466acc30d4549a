#include <VeskTimeline/track.h>

#include <algorithm>
#include <limits>

namespace VeskTimeline {

namespace {

bool isWithoutEnd(qint64 start, qint64 end)
{
    // Wraps instead of overflowing for intervals longer than 63 bits can say.
    return static_cast<quint64>(end) - static_cast<quint64>(start) == static_cast<quint64>(-1);
}

bool isItemAfter(const Item& item, qint64 start, bool strict, bool complete)
{
    constexpr int openEnded = -1;
    if (complete)
        return strict ? start < item.startTime() : start <= item.startTime();
    if (item.duration() == openEnded)
        return true;
    const qint64 end = item.startTime() + item.duration();
    return strict ? start < end : start <= end;
}

void removeItemsOutside(ItemPtrRefs& items, qint64 start, qint64 end, bool strict, bool complete,
                        qint64 minimumDuration)
{
    items.erase(std::remove_if(items.begin(), items.end(),
                               [&](const ItemPtr& item) {
                                   return !Track::isItemBetween(*item, start, end, strict, complete, minimumDuration);
                               }),
                items.end());
}

} // namespace

bool Track::isItemBetween(const Item& item, qint64 start, qint64 end, bool strict, bool complete,
                          qint64 minimumDuration)
{
    if (isWithoutEnd(start, end))
        return isItemAfter(item, start, strict, complete);

    const qint64 itemStart = item.startTime();
    if (item.duration() == -1) {
        if (complete)
            return false;
        return strict ? itemStart < end : itemStart <= end;
    }

    if (end != std::numeric_limits<qint64>::max())
        Q_ASSERT(end + 1 > start);
    const qint64 itemEnd = itemStart + std::max<qint64>(item.duration(), minimumDuration);
    if (complete)
        return strict ? itemStart > start && itemEnd < end : itemStart >= start && itemEnd <= end;
    return strict ? itemEnd > start && itemStart < end : itemEnd >= start && itemStart <= end;
}

QVector<int> Track::itemIdsBetween(qint64 start, qint64 end, bool strict, bool complete, bool recursive, bool sorted,
                                   qint64 minimumDuration) const
{
    if (sorted) {
        ItemPtrRefs references = _items(recursive);
        removeItemsOutside(references, start, end, strict, complete, minimumDuration);
        sort(references);
        return transformItemPtrsToIds(references);
    }

    QVector<int> ids;
    ids.reserve(static_cast<qsizetype>(m_items.size()));
    for (const ItemPtr& item : m_items) {
        if (isItemBetween(*item, start, end, strict, complete, minimumDuration))
            ids.append(item->id());
    }
    if (recursive) {
        // The children's items count with their own durations; a minimum duration only makes their lists sorted.
        const bool sortChildren = minimumDuration != 0;
        for (const TrackPtr& child : m_childrenTracks)
            ids.append(child->itemIdsBetween(start, end, strict, complete, true, sortChildren, 0));
    }
    return ids;
}

QVector<int> Track::copyItemIdsBetween(qint64 start, qint64 end, bool strict, bool complete, bool recursive,
                                       bool sorted, qint64 /*minimumDuration*/) const
{
    ItemPtrRefs references = _copyItems();
    if (recursive) {
        for (const TrackPtr& child : m_childrenTracks) {
            const ItemPtrRefs below = child->_copyItems();
            references.insert(references.end(), below.begin(), below.end());
        }
    }
    removeItemsOutside(references, start, end, strict, complete, 0);
    if (sorted)
        sort(references);
    return transformItemPtrsToIds(references);
}

bool Track::isOwnItemBetween(qint64 start, qint64 end, const QVector<int>& ignoreIds, bool strict, bool complete,
                             qint64 minimumDuration) const
{
    return std::any_of(m_items.begin(), m_items.end(), [&](const ItemPtr& item) {
        return isItemBetween(*item, start, end, strict, complete, minimumDuration) && !ignoreIds.contains(item->id());
    });
}

bool Track::isCopyItemBetween(qint64 start, qint64 end, const QVector<int>& ignoreIds, bool strict, bool complete,
                              qint64 minimumDuration) const
{
    return std::any_of(m_copyItemIds.begin(), m_copyItemIds.end(), [&](int id) {
        const Item* copy = item(id);
        return !ignoreIds.contains(copy->id()) && isItemBetween(*copy, start, end, strict, complete, minimumDuration);
    });
}

bool Track::isItemsBetween(qint64 start, qint64 end, const QVector<int>& ignoreIds, bool strict, bool complete,
                           bool recursive, qint64 minimumDuration) const
{
    if (isOwnItemBetween(start, end, ignoreIds, strict, complete, minimumDuration) ||
        isCopyItemBetween(start, end, ignoreIds, strict, complete, minimumDuration))
        return true;
    if (!recursive)
        return false;
    return std::any_of(m_childrenTracks.begin(), m_childrenTracks.end(), [&](const TrackPtr& child) {
        return child->isItemsBetween(start, end, ignoreIds, strict, complete, true, minimumDuration);
    });
}

bool Track::isItemsBetween(qint64 start, qint64 end, int ignoreId, bool strict, bool complete, bool recursive,
                           qint64 minimumDuration) const
{
    return isItemsBetween(start, end, QVector<int>{ignoreId}, strict, complete, recursive, minimumDuration);
}

} // namespace VeskTimeline
