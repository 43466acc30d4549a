#include "track_items_p.h"

#include <algorithm>

namespace VeskTimeline {

namespace {

bool isWithoutEnd(qint64 start, qint64 end)
{
    // Wraps instead of overflowing for intervals longer than 63 bits can say.
    return static_cast<quint64>(end) - static_cast<quint64>(start) == static_cast<quint64>(-1);
}

bool isItemAfter(const Item& item, qint64 start, bool strict, bool complete)
{
    if (complete)
        return strict ? start < item.startTime() : start <= item.startTime();
    if (item.duration() == openEnded)
        return true;
    const qint64 end = shiftedTime(item.startTime(), item.duration());
    return strict ? start < end : start <= end;
}

bool isIn(const Item& item, const ItemInterval& in)
{
    return Track::isItemBetween(item, in.start, in.end, in.strict, in.complete, in.minimumDuration);
}

// Holds at least what is in the interval.
ItemWindow windowOf(const ItemInterval& in)
{
    using Limits = std::numeric_limits<qint64>;
    if (isWithoutEnd(in.start, in.end))
        return {in.start, Limits::max(), 0, in.complete};
    // Not an interval that a query may ask for: each item is to be asked about, and asserts that.
    if (in.end < in.start)
        return {Limits::min(), Limits::max()};
    return {in.start, in.end, std::max<qint64>(in.minimumDuration, 0), in.complete};
}

void removeItemsOutside(ItemPtrRefs& items, const ItemInterval& in)
{
    items.erase(std::remove_if(items.begin(), items.end(), [&in](const ItemPtr& item) { return !isIn(*item, in); }),
                items.end());
}

} // namespace

std::function<bool(int)> isOneOf(const QVector<int>& ids)
{
    // Most are asked about few ids, for which going through the list beats making a set of it.
    constexpr int few = 16;
    return [&ids, set = QSet<int>(), asked = 0](int id) mutable {
        if (asked < few) {
            ++asked;
            return ids.contains(id);
        }
        if (set.isEmpty())
            set = QSet<int>(ids.begin(), ids.end());
        return set.contains(id);
    };
}

void appendOwnIdsBetween(QVector<int>& ids, const Track& track, const ItemInterval& interval)
{
    findItemInWindow(track, windowOf(interval), [&](const ItemPtr& item) {
        if (isIn(*item, interval))
            ids.append(item->id());
        return false;
    });
}

bool isAnyOwnItemBetween(const Track& track, const ItemInterval& interval, const std::function<bool(int)>& isIgnored)
{
    return findItemInWindow(track, windowOf(interval),
                            [&](const ItemPtr& item) { return isIn(*item, interval) && !isIgnored(item->id()); });
}

bool isAnyItemBetween(const Track& track, const ItemInterval& interval, const std::function<bool(int)>& isIgnored,
                      bool recursive)
{
    return track.isAnyBetween(interval, isIgnored, recursive);
}

bool Track::isItemBetween(const Item& item, qint64 start, qint64 end, bool strict, bool complete,
                          qint64 minimumDuration)
{
    if (isWithoutEnd(start, end))
        return isItemAfter(item, start, strict, complete);

    const qint64 itemStart = item.startTime();
    if (item.duration() == openEnded) {
        if (complete)
            return false;
        return strict ? itemStart < end : itemStart <= end;
    }

    if (end != std::numeric_limits<qint64>::max())
        Q_ASSERT(end + 1 > start);
    const qint64 itemEnd = shiftedTime(itemStart, std::max<qint64>(item.duration(), minimumDuration));
    if (complete)
        return strict ? itemStart > start && itemEnd < end : itemStart >= start && itemEnd <= end;
    return strict ? itemEnd > start && itemStart < end : itemEnd >= start && itemStart <= end;
}

void Track::appendItemsBetween(ItemPtrRefs& found, const ItemInterval& interval, bool recursive) const
{
    findItemInWindow(*this, windowOf(interval), [&](const ItemPtr& item) {
        if (isIn(*item, interval))
            found.push_back(std::cref(item));
        return false;
    });
    for (const CopyItem& copy : findCopyItems()) {
        if (!copy.item)
            sayCopyItemIsMissing(copy.id);
        else if (isIn(**copy.item, interval))
            found.push_back(std::cref(*copy.item));
    }
    if (!recursive)
        return;
    for (const TrackPtr& child : m_childrenTracks)
        child->appendItemsBetween(found, interval, true);
}

QVector<int> Track::itemIdsBetween(qint64 start, qint64 end, bool strict, bool complete, bool recursive, bool sorted,
                                   qint64 minimumDuration) const
{
    const ItemInterval interval{start, end, strict, complete, minimumDuration};
    if (sorted) {
        ItemPtrRefs references;
        appendItemsBetween(references, interval, recursive);
        sort(references);
        return transformItemPtrsToIds(references);
    }

    QVector<int> ids;
    appendOwnIdsBetween(ids, *this, interval);
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
    removeItemsOutside(references, {start, end, strict, complete, 0});
    if (sorted)
        sort(references);
    return transformItemPtrsToIds(references);
}

bool Track::isCopyItemBetween(const ItemInterval& interval, const std::function<bool(int)>& isIgnored) const
{
    const std::vector<CopyItem> copies = findCopyItems();
    return std::any_of(copies.begin(), copies.end(), [&](const CopyItem& copy) {
        if (!copy.item)
            throw QStringLiteral("lookup failed!");
        return isIn(**copy.item, interval) && !isIgnored(copy.id);
    });
}

bool Track::isAnyBetween(const ItemInterval& interval, const std::function<bool(int)>& isIgnored, bool recursive) const
{
    if (isAnyOwnItemBetween(*this, interval, isIgnored) || isCopyItemBetween(interval, isIgnored))
        return true;
    return recursive && std::any_of(m_childrenTracks.begin(), m_childrenTracks.end(), [&](const TrackPtr& child) {
               return child->isAnyBetween(interval, isIgnored, true);
           });
}

bool Track::isItemsBetween(qint64 start, qint64 end, const QVector<int>& ignoreIds, bool strict, bool complete,
                           bool recursive, qint64 minimumDuration) const
{
    return isAnyBetween({start, end, strict, complete, minimumDuration}, isOneOf(ignoreIds), recursive);
}

bool Track::isItemsBetween(qint64 start, qint64 end, int ignoreId, bool strict, bool complete, bool recursive,
                           qint64 minimumDuration) const
{
    return isItemsBetween(start, end, QVector<int>{ignoreId}, strict, complete, recursive, minimumDuration);
}

} // namespace VeskTimeline
