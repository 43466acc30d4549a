#pragma once

// Internal to the library; not installed.

#include <QList>
#include <QSet>

#include <algorithm>
#include <vector>

namespace VeskTimeline {

/// A set of ids that is asked for every item in sight.
///
/// Models count ids from 0, so that a bit for each is a few kilobytes, which the processor keeps at hand: an id costs a
/// bit test. Ids that no model reaches, negative ones among them, go into a hash set.
class IdSet
{
public:
    IdSet() = default;
    explicit IdSet(const QList<int>& ids)
    {
        for (const int id : ids)
            insert(id);
    }

    /// Whether an id is one of those that get a place of their own, from 0 on.
    static constexpr bool isDense(int id) { return 0 <= id && id < denseCount; }

    bool contains(int id) const
    {
        if (!isDense(id))
            return m_others.contains(id);
        const std::size_t word = wordOf(id);
        return word < m_words.size() && (m_words[word] & bitOf(id)) != 0;
    }
    /// False for an id that is in the set already.
    bool insert(int id)
    {
        if (contains(id))
            return false;
        if (isDense(id)) {
            if (wordOf(id) >= m_words.size())
                m_words.resize(std::max(wordOf(id) + 1, 2 * m_words.size()));
            m_words[wordOf(id)] |= bitOf(id);
        } else {
            m_others.insert(id);
        }
        return true;
    }
    /// False for an id that is not in the set.
    bool remove(int id)
    {
        if (!contains(id))
            return false;
        if (isDense(id))
            m_words[wordOf(id)] &= ~bitOf(id);
        else
            m_others.remove(id);
        return true;
    }
    void clear()
    {
        m_words.clear();
        m_others.clear();
    }

private:
    static constexpr int denseCount = 1 << 24;
    static constexpr int wordBits = 64;

    static std::size_t wordOf(int id) { return static_cast<std::size_t>(id) / wordBits; }
    static quint64 bitOf(int id) { return quint64{1} << (static_cast<unsigned>(id) % wordBits); }

    std::vector<quint64> m_words;
    QSet<int> m_others;
};

/// The ids of a list that others may change, as a set: made anew when the list is another than the time before.
///
/// Keeps a copy that shares the list's memory. Whoever changes the list after that has to give it memory of its own, so
/// that comparing addresses tells.
class IdsOfList
{
public:
    /// Whether it is the list of the time before.
    bool holds(const QList<int>& ids) const
    {
        return ids.constData() == m_ids.constData() && ids.size() == m_ids.size();
    }
    const IdSet& of(const QList<int>& ids)
    {
        if (!holds(ids)) {
            m_ids = ids;
            m_set = IdSet(ids);
        }
        return m_set;
    }

private:
    QList<int> m_ids;
    IdSet m_set;
};

} // namespace VeskTimeline
