#pragma once

#include "reference/snapping.h"

#include <QVector>

#include <algorithm>
#include <limits>
#include <map>
#include <vector>

/// What a model holds after each operation, kept in flat tables: no order of items, no pointers, no caches.
namespace Reference {

struct TreeItem
{
    int track;
    qint64 start;
    int duration;
};

class TrackTree
{
public:
    using ItemsById = std::map<int, TreeItem>;

    const ItemsById& items() const { return m_items; }
    /// Track ids, the root's included, with the ids of their children in row order.
    const std::map<int, std::vector<int>>& tracks() const { return m_children; }
    int nextTrackId() const { return m_nextTrackId; }
    int nextItemId() const { return m_nextItemId; }
    bool isSnapping = false;
    int snapStep = 500;
    int minimumDuration = 0;

    void insertTrack(int parent, int row)
    {
        std::vector<int>& siblings = m_children[parent];
        const bool isLast = row == -1 || row > static_cast<int>(siblings.size());
        siblings.insert(isLast ? siblings.end() : siblings.begin() + row, m_nextTrackId);
        m_children[m_nextTrackId] = {};
        ++m_nextTrackId;
    }

    void removeTrack(int id)
    {
        for (auto& [parent, children] : m_children)
            children.erase(std::remove(children.begin(), children.end(), id), children.end());
        forgetSubtree(id);
    }

    void addItem(int track, qint64 start, int duration)
    {
        if (isSnapping)
            m_items[m_nextItemId] = {track, snapped(start, 1000), static_cast<int>(snapped(duration, 1000))};
        else
            m_items[m_nextItemId] = {track, start, duration};
        ++m_nextItemId;
    }

    void removeItem(int id) { m_items.erase(id); }
    void setStart(int id, qint64 start) { m_items.at(id).start = start; }
    void setDuration(int id, int duration)
    {
        m_items.at(id).duration = duration < minimumDuration ? minimumDuration : duration;
    }
    void move(int id, int track, qint64 start)
    {
        m_items.at(id).track = track;
        m_items.at(id).start = start;
    }

    void copy(const QVector<int>& ids)
    {
        m_clipboard.clear();
        for (const int id : ids)
            m_clipboard.push_back(m_items.at(id));
    }

    void paste(qint64 time)
    {
        qint64 earliest = std::numeric_limits<qint64>::max();
        for (const TreeItem& copied : m_clipboard)
            earliest = copied.start < earliest ? copied.start : earliest;
        const qint64 base = isSnapping ? snapped(time, snapStep) : time;
        for (const TreeItem& copied : m_clipboard)
            addItem(copied.track, base + copied.start - earliest, copied.duration);
        m_clipboard.clear();
    }

    bool canPaste() const
    {
        return std::all_of(m_clipboard.begin(), m_clipboard.end(),
                           [this](const TreeItem& copied) { return m_children.count(copied.track) == 1; });
    }

    void clearItems() { m_items.clear(); }

    void clear()
    {
        m_items.clear();
        m_children = {{0, {}}};
        m_nextTrackId = 1;
        m_nextItemId = 0;
    }

private:
    void forgetSubtree(int id)
    {
        for (const int child : m_children.at(id))
            forgetSubtree(child);
        m_children.erase(id);
        for (auto item = m_items.begin(); item != m_items.end();)
            item = item->second.track == id ? m_items.erase(item) : std::next(item);
    }

    std::map<int, std::vector<int>> m_children{{0, {}}};
    ItemsById m_items;
    std::vector<TreeItem> m_clipboard;
    int m_nextTrackId = 1;
    int m_nextItemId = 0;
};

} // namespace Reference
