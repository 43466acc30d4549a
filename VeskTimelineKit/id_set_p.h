#pragma once

// Internal to the kit; not installed.

#include <QSet>
#include <QVector>

#include <algorithm>
#include <iterator>
#include <map>

namespace VeskTimeline::Kit {

/// A set of ids that mostly come in ascending runs, as those of the items of a track do, be it the tracks from the last
/// to the first. Runs are kept as lists, which cost a fraction of a hash, into which goes only what falls inside one.
class IdSet
{
    using Runs = std::map<int, QVector<int>>; ///< by their first ids; each ends before the next one begins

    /// The last one that begins at the id or before; end() when there is none.
    template <typename AnyRuns>
    static auto runOf(AnyRuns& runs, int id)
    {
        const auto behind = runs.upper_bound(id);
        return behind == runs.begin() ? runs.end() : std::prev(behind);
    }
    bool isBeforeNext(Runs::const_iterator run, int id) const
    {
        const auto next = std::next(run);
        return next == m_runs.end() || id < next->first;
    }

public:
    IdSet() = default;
    IdSet(const IdSet&) = delete;
    IdSet& operator=(const IdSet&) = delete;
    // The nodes of the map stay where they are. What has been moved from may only be assigned to.
    IdSet(IdSet&&) = default;
    IdSet& operator=(IdSet&&) = default;
    ~IdSet() = default;

    bool isEmpty() const { return m_size == 0; }
    int size() const { return m_size; }
    bool contains(int id) const
    {
        const auto run = runOf(m_runs, id);
        return (run != m_runs.end() && std::binary_search(run->second.begin(), run->second.end(), id)) ||
               m_others.contains(id);
    }

    void insert(int id)
    {
        if (!m_others.isEmpty() && m_others.contains(id))
            return;
        auto run = m_latest;
        if (m_runs.empty() || id <= run->second.constLast() || !isBeforeNext(run, id))
            run = runOf(m_runs, id);
        if (run == m_runs.end())
            run = m_runs.emplace(id, QVector<int>()).first;
        m_latest = run;
        QVector<int>& ids = run->second;
        if (ids.isEmpty() || ids.constLast() < id)
            ids.append(id);
        else if (!std::binary_search(ids.cbegin(), ids.cend(), id))
            m_others.insert(id);
        else
            return;
        ++m_size;
    }
    /// @param ids ascending
    void insert(const QVector<int>& ids)
    {
        if (!isEmpty() || ids.isEmpty()) {
            for (const int id : ids)
                insert(id);
            return;
        }
        m_latest = m_runs.emplace(ids.constFirst(), ids).first;
        m_size = static_cast<int>(ids.size());
    }
    /// @return whether it was there
    bool remove(int id)
    {
        const auto run = runOf(m_runs, id);
        if (run != m_runs.end() && std::binary_search(run->second.cbegin(), run->second.cend(), id)) {
            // Where one is removed, others will be, too.
            m_others.unite(QSet<int>(run->second.cbegin(), run->second.cend()));
            m_runs.erase(run);
            m_latest = m_runs.begin();
        }
        if (!m_others.remove(id))
            return false;
        --m_size;
        return true;
    }
    void clear() { *this = {}; }

    /// Ascending.
    QVector<int> ids() const
    {
        if (m_others.isEmpty() && m_runs.size() == 1)
            return m_runs.begin()->second;
        QVector<int> all;
        all.reserve(m_size);
        for (const auto& [first, run] : m_runs)
            all += run;
        if (m_others.isEmpty())
            return all;
        std::copy(m_others.begin(), m_others.end(), std::back_inserter(all));
        std::sort(all.begin(), all.end());
        return all;
    }

private:
    Runs m_runs;
    Runs::iterator m_latest; ///< while there is one
    QSet<int> m_others;
    int m_size = 0;
};

} // namespace VeskTimeline::Kit
