#pragma once

#include <QVector>

#include <algorithm>
#include <limits>
#include <vector>

/// What a track's list of items holds after each operation, and what is found in it, by going through all of it.
namespace Reference {

struct ListedItem
{
    int id;
    qint64 start;
    int duration;
};

class ItemList
{
public:
    std::vector<ListedItem> items;

    bool isSorted() const
    {
        for (std::size_t i = 1; i < items.size(); ++i) {
            if (items[i].start < items[i - 1].start)
                return false;
        }
        return true;
    }

    void add(const ListedItem& added)
    {
        std::size_t position = 0;
        while (position < items.size() && items[position].start <= added.start)
            ++position;
        items.insert(items.begin() + static_cast<std::ptrdiff_t>(position), added);
    }

    ListedItem take(int id)
    {
        const ListedItem taken = at(id);
        items.erase(std::find_if(items.begin(), items.end(), [id](const ListedItem& item) { return item.id == id; }));
        return taken;
    }

    ListedItem& at(int id)
    {
        return *std::find_if(items.begin(), items.end(), [id](const ListedItem& item) { return item.id == id; });
    }

    /// Equals keep their order.
    void sort()
    {
        for (std::size_t i = 1; i < items.size(); ++i) {
            for (std::size_t j = i; j > 0 && items[j].start < items[j - 1].start; --j)
                std::swap(items[j], items[j - 1]);
        }
    }

    void setStart(int id, qint64 start)
    {
        at(id).start = start;
        sort();
    }

    void setDuration(int id, int duration)
    {
        at(id).duration = duration;
        sort();
    }
};

__extension__ using Wide = __int128;

/// An item's end; times beyond the last one there is do not exist.
inline qint64 plainEnd(qint64 start, qint64 duration)
{
    const Wide end = static_cast<Wide>(start) + duration;
    constexpr Wide most = std::numeric_limits<qint64>::max();
    constexpr Wide least = std::numeric_limits<qint64>::min();
    return static_cast<qint64>(std::max(least, std::min(most, end)));
}

inline QVector<int> idsTouching(const ItemList& list, qint64 from, qint64 to)
{
    QVector<int> ids;
    for (const ListedItem& item : list.items) {
        const bool lastsUntil = item.duration == -1 || plainEnd(item.start, item.duration) >= from;
        if (item.start <= to && lastsUntil)
            ids.append(item.id);
    }
    return ids;
}

/// -1 for none.
inline int idAt(const ItemList& list, qint64 time)
{
    for (const ListedItem& item : list.items) {
        if (item.start <= time && plainEnd(item.start, item.duration) >= time)
            return item.id;
    }
    return -1;
}

} // namespace Reference
