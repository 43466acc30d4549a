#pragma once

// Internal to the kit; not installed.

#include <QVector>

#include <algorithm>
#include <vector>

namespace VeskTimeline::Kit {

/// Where ids are in a list. A table from the least to the greatest, since each item of whole tracks is asked for.
class IdTable
{
public:
    /// @param ids each once
    explicit IdTable(const QVector<int>& ids)
    {
        if (ids.isEmpty())
            return;
        const auto [least, greatest] = std::minmax_element(ids.begin(), ids.end());
        m_first = *least;
        m_slots.assign(static_cast<std::size_t>(qint64{*greatest} - m_first) + 1, -1);
        for (int i = 0; i < static_cast<int>(ids.size()); ++i)
            m_slots[static_cast<std::size_t>(qint64{ids[i]} - m_first)] = i;
    }

    bool contains(int id) const { return of(id) != -1; }
    /// -1 for an id that is not in the list.
    int of(int id) const
    {
        const auto at = static_cast<std::size_t>(qint64{id} - m_first);
        return at < m_slots.size() ? m_slots[at] : -1;
    }

private:
    int m_first = 0;
    std::vector<int> m_slots;
};

} // namespace VeskTimeline::Kit
