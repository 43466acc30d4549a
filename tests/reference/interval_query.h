#pragma once

#include <QVector>

#include <algorithm>
#include <map>
#include <optional>

/// The interval queries, step by step on plain values: slow, obvious, and sharing nothing with the library.
namespace Reference {

struct PlainItem
{
    int id;
    qint64 start;
    int duration;
};

struct PlainTrack
{
    int id = 0;
    /// In the track's order.
    std::vector<PlainItem> items;
    /// In the order in which the track names them.
    QVector<int> copyIds;
    std::vector<PlainTrack> children;
};

struct Interval
{
    qint64 start;
    qint64 end;
    bool strict;
    bool complete;
};

inline bool isInWithoutEnd(const PlainItem& item, const Interval& in)
{
    const qint64 s = item.start;
    if (item.duration == -1 && !in.complete)
        return true;
    if (item.duration == -1 && in.strict)
        return in.start < s;
    if (item.duration == -1)
        return in.start <= s;
    if (in.complete && in.strict)
        return in.start < s;
    if (in.complete)
        return in.start <= s;
    if (in.strict)
        return in.start < s + item.duration;
    return in.start <= s + item.duration;
}

inline bool isIn(const PlainItem& item, const Interval& in, qint64 minimumDuration)
{
    if (in.end - in.start == -1)
        return isInWithoutEnd(item, in);
    const qint64 s = item.start;
    if (item.duration == -1 && in.complete)
        return false;
    if (item.duration == -1)
        return in.strict ? s < in.end : s <= in.end;
    const qint64 length = item.duration > minimumDuration ? item.duration : minimumDuration;
    const qint64 e = s + length;
    if (!in.strict && in.complete)
        return s >= in.start && e <= in.end;
    if (!in.strict)
        return e < in.start ? false : s <= in.end;
    if (in.complete)
        return s > in.start && e < in.end;
    if (e <= in.start)
        return false;
    if (s >= in.end)
        return false;
    return true;
}

inline std::optional<PlainItem> find(const PlainTrack& track, int id)
{
    for (const PlainItem& item : track.items) {
        if (item.id == id)
            return item;
    }
    for (const PlainTrack& child : track.children) {
        if (const auto found = find(child, id))
            return found;
    }
    return std::nullopt;
}

inline std::vector<PlainItem> copyItems(const PlainTrack& track)
{
    std::vector<PlainItem> items;
    for (const int id : track.copyIds) {
        if (const auto found = find(track, id))
            items.push_back(*found);
    }
    return items;
}

inline std::vector<PlainItem> allItems(const PlainTrack& track, bool recursive)
{
    std::vector<PlainItem> items = track.items;
    for (const PlainItem& copy : copyItems(track))
        items.push_back(copy);
    if (recursive) {
        for (const PlainTrack& child : track.children) {
            for (const PlainItem& below : allItems(child, true))
                items.push_back(below);
        }
    }
    return items;
}

inline std::vector<PlainItem> filtered(const std::vector<PlainItem>& items, const Interval& in, qint64 minimumDuration)
{
    std::vector<PlainItem> inside;
    for (const PlainItem& item : items) {
        if (isIn(item, in, minimumDuration))
            inside.push_back(item);
    }
    return inside;
}

inline QVector<int> ids(std::vector<PlainItem> items, bool sorted)
{
    if (sorted) {
        // Items that start together come in no defined order; callers compare with unique start times.
        std::sort(items.begin(), items.end(), [](const PlainItem& l, const PlainItem& r) { return l.start < r.start; });
    }
    QVector<int> list;
    for (const PlainItem& item : items)
        list.append(item.id);
    return list;
}

inline QVector<int> itemIdsBetween(const PlainTrack& track, const Interval& in, bool recursive, bool sorted,
                                   qint64 minimumDuration)
{
    if (sorted)
        return ids(filtered(allItems(track, recursive), in, minimumDuration), true);
    QVector<int> list = ids(filtered(track.items, in, minimumDuration), false);
    if (recursive) {
        for (const PlainTrack& child : track.children)
            list += itemIdsBetween(child, in, true, minimumDuration != 0, 0);
    }
    return list;
}

inline QVector<int> copyItemIdsBetween(const PlainTrack& track, const Interval& in, bool recursive, bool sorted)
{
    std::vector<PlainItem> items = copyItems(track);
    if (recursive) {
        for (const PlainTrack& child : track.children) {
            for (const PlainItem& copy : copyItems(child))
                items.push_back(copy);
        }
    }
    return ids(filtered(items, in, 0), sorted);
}

/// Nothing stands for the failure of a copy item id that has no item.
inline std::optional<bool> isItemsBetween(const PlainTrack& track, const Interval& in, const QVector<int>& ignoreIds,
                                          bool recursive, qint64 minimumDuration)
{
    for (const PlainItem& item : track.items) {
        if (!ignoreIds.contains(item.id) && isIn(item, in, minimumDuration))
            return true;
    }
    for (const int id : track.copyIds) {
        const auto found = find(track, id);
        if (!found)
            return std::nullopt;
        if (!ignoreIds.contains(found->id) && isIn(*found, in, minimumDuration))
            return true;
    }
    if (!recursive)
        return false;
    for (const PlainTrack& child : track.children) {
        const std::optional<bool> below = isItemsBetween(child, in, ignoreIds, true, minimumDuration);
        if (!below || *below)
            return below;
    }
    return false;
}

/// The model's variants: `itemsById` stands for its look-up.
using ItemsById = std::map<int, PlainItem>;

inline QVector<int> sortedByStart(QVector<int> list, const ItemsById& itemsById)
{
    std::sort(list.begin(), list.end(),
              [&](int left, int right) { return itemsById.at(left).start < itemsById.at(right).start; });
    return list;
}

inline QVector<int> modelItemIdsBetween(const PlainTrack& track, const ItemsById& itemsById, const Interval& in,
                                        bool recursive, bool sorted, qint64 minimumDuration)
{
    QVector<int> list = ids(filtered(track.items, in, minimumDuration), false);
    if (recursive) {
        for (const PlainTrack& child : track.children)
            list += modelItemIdsBetween(child, itemsById, in, true, false, minimumDuration);
    }
    return sorted ? sortedByStart(list, itemsById) : list;
}

inline QVector<int> modelCopyItemIdsBetween(const PlainTrack& track, const ItemsById& itemsById, const Interval& in,
                                            bool recursive, bool sorted, qint64 minimumDuration)
{
    QVector<int> list;
    for (const int id : track.copyIds) {
        if (isIn(itemsById.at(id), in, minimumDuration))
            list.append(id);
    }
    if (recursive) {
        for (const PlainTrack& child : track.children)
            list += modelCopyItemIdsBetween(child, itemsById, in, true, false, minimumDuration);
    }
    QVector<int> collapsed;
    for (const int id : list) {
        if (collapsed.isEmpty() || collapsed.last() != id)
            collapsed.append(id);
    }
    return sorted ? sortedByStart(collapsed, itemsById) : collapsed;
}

inline bool modelIsItemsBetween(const PlainTrack& track, const Interval& in, const QVector<int>& ignoreIds,
                                bool recursive, qint64 minimumDuration)
{
    for (const PlainItem& item : track.items) {
        if (!ignoreIds.contains(item.id) && isIn(item, in, minimumDuration))
            return true;
    }
    if (!recursive)
        return false;
    for (const PlainTrack& child : track.children) {
        if (modelIsItemsBetween(child, in, ignoreIds, true, minimumDuration))
            return true;
    }
    return false;
}

} // namespace Reference
