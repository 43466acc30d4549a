#include "item_end_p.h"
#include "item_index_p.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <functional>

namespace VeskTimeline {

namespace {

// Indexes that share a counter find nothing wrong more often than needed. Atomic, since items may be destroyed on any
// thread.
constexpr quint16 slotCount = 4096;
std::array<std::atomic<quint32>, slotCount> changeCounts;
std::atomic<quint16> lastSlot;
std::atomic<quint64> lastVersion;

// Slot 0 stands for none.
quint16 nextSlot()
{
    return static_cast<quint16>(1 + lastSlot++ % (slotCount - 1));
}

bool startsEarlier(const ItemPtr& item, qint64 time)
{
    return item->startTime() < time;
}

bool startsLater(qint64 time, const ItemPtr& item)
{
    return time < item->startTime();
}

} // namespace

void ItemIndexMark::countChange(quint16 slot) noexcept
{
    changeCounts[slot].fetch_add(1, std::memory_order_relaxed);
}

ItemIndex::ItemIndex() : m_slot(nextSlot()), m_version(++lastVersion)
{
}

quint32 ItemIndex::changeCount() const
{
    return changeCounts[m_slot].load(std::memory_order_relaxed);
}

bool ItemIndex::matches(const Items& items) const
{
    return m_place == items.data() && m_size == items.size() && m_changeCount == changeCount();
}

void ItemIndex::build(const Items& items)
{
    m_changeCount = changeCount();
    m_version = ++lastVersion;
    m_place = items.data();
    m_size = items.size();
    m_isResting = false;
    m_movedTimes = 0;
    m_starts.resize(items.size());
    m_ends.resize(items.size());
    m_ids.resize(items.size());
    m_summarisedItems = 0;
    m_isOrdered = true;
    m_cullings = 0;
    qint64 before = std::numeric_limits<qint64>::min();
    for (std::size_t position = 0; position < items.size(); ++position) {
        Item& item = *items[position];
        item.m_indexMark.m_slot = m_slot;
        m_starts[position] = item.startTime();
        m_ends[position] = endTimeOf(item);
        m_ids[position] = item.id();
        m_isOrdered = m_isOrdered && before <= item.startTime() && item.duration() >= openEnded;
        m_cullings |= bitOf(item.culling());
        before = item.startTime();
    }
}

std::size_t ItemIndex::firstFrom(qint64 time) const
{
    return static_cast<std::size_t>(std::lower_bound(m_starts.begin(), m_starts.end(), time) - m_starts.begin());
}

std::size_t ItemIndex::firstBehind(qint64 time) const
{
    return static_cast<std::size_t>(std::upper_bound(m_starts.begin(), m_starts.end(), time) - m_starts.begin());
}

std::size_t ItemIndex::firstReaching(qint64 time, std::size_t position, std::size_t end) const
{
    if (m_summarisedItems < std::min(end, size()))
        summarise();
    while (position < end) {
        // The largest block that starts here and ends too early is skipped as a whole.
        std::size_t skipped = m_ends[position] < time ? 1 : 0;
        std::size_t width = fanOut;
        for (const Times& latest : m_latestEnds) {
            if (skipped == 0 || position % width != 0 || latest[position / width] >= time)
                break;
            skipped = width;
            width *= fanOut;
        }
        if (skipped == 0)
            return position;
        position += skipped;
    }
    return end;
}

qint64 ItemIndex::latestEndInBlock(std::size_t position) const
{
    if (m_summarisedItems < size())
        summarise();
    return m_latestEnds.front()[position / fanOut];
}

std::size_t ItemIndex::positionBehind(const Items& items, qint64 startTime) const
{
    if (!m_isResting)
        return firstBehind(startTime);
    return static_cast<std::size_t>(std::upper_bound(items.begin(), items.end(), startTime, startsLater) -
                                    items.begin());
}

std::size_t ItemIndex::positionOf(const Items& items, const Item& item) const
{
    const qint64 start = item.startTime();
    const auto first = m_isResting ? std::lower_bound(items.begin(), items.end(), start, startsEarlier)
                                   : items.begin() + static_cast<std::ptrdiff_t>(firstFrom(start));
    for (auto own = first; own != items.end() && (*own)->startTime() == start; ++own) {
        if (own->get() == &item)
            return static_cast<std::size_t>(own - items.begin());
    }
    return size();
}

std::size_t ItemIndex::positionAfterMove(const Items& items, std::size_t position, qint64 startTime) const
{
    const qint64 before = items[position]->startTime();
    // Unchanged times keep their places among equals.
    if (startTime == before)
        return position;
    const auto target = [&](const auto& starts, const auto& isEarlier, const auto& isLater) {
        const auto here = starts.begin() + static_cast<std::ptrdiff_t>(position);
        const auto found = startTime > before ? std::lower_bound(here + 1, starts.end(), startTime, isEarlier) - 1
                                              : std::upper_bound(starts.begin(), here, startTime, isLater);
        return static_cast<std::size_t>(found - starts.begin());
    };
    return m_isResting ? target(items, startsEarlier, startsLater) : target(m_starts, std::less<>(), std::less<>());
}

// Counts what a change moves in the arrays; false when the index is at rest. Building it anew, for which the items
// themselves are looked at, costs about as much as moving all of it so many times.
bool ItemIndex::isKept(std::size_t movedTimes)
{
    constexpr std::size_t mostMoves = 16;
    m_version = ++lastVersion;
    m_movedTimes += movedTimes;
    m_isResting = m_isResting || m_movedTimes > mostMoves * m_size;
    return !m_isResting;
}

void ItemIndex::noteInsertion(const Items& items, std::size_t position)
{
    Item& item = *items[position];
    item.m_indexMark.m_slot = m_slot;
    m_place = items.data();
    m_size = items.size();
    m_isOrdered = m_isOrdered && item.duration() >= openEnded;
    m_cullings |= bitOf(item.culling());
    if (!isKept(m_size - position))
        return;
    m_starts.insert(m_starts.begin() + static_cast<std::ptrdiff_t>(position), item.startTime());
    m_ends.insert(m_ends.begin() + static_cast<std::ptrdiff_t>(position), endTimeOf(item));
    m_ids.insert(m_ids.begin() + static_cast<std::ptrdiff_t>(position), item.id());
    m_summarisedItems = std::min(m_summarisedItems, position);
    Q_ASSERT(isRight(items));
}

void ItemIndex::noteRemoval(const Items& items, std::size_t position, Item& removed)
{
    removed.m_indexMark.m_slot = 0;
    m_size = items.size();
    if (!isKept(m_size - position))
        return;
    m_starts.erase(m_starts.begin() + static_cast<std::ptrdiff_t>(position));
    m_ends.erase(m_ends.begin() + static_cast<std::ptrdiff_t>(position));
    m_ids.erase(m_ids.begin() + static_cast<std::ptrdiff_t>(position));
    m_summarisedItems = std::min(m_summarisedItems, position);
    Q_ASSERT(isRight(items));
}

void ItemIndex::noteMove(const Items& items, std::size_t from, std::size_t to)
{
    if (!isKept(std::max(from, to) - std::min(from, to)))
        return;
    const auto move = [from, to](auto& values, auto value) {
        const auto at = [&values](std::size_t position) {
            return values.begin() + static_cast<std::ptrdiff_t>(position);
        };
        if (from < to)
            std::move(at(from + 1), at(to + 1), at(from));
        else
            std::move_backward(at(to), at(from), at(from + 1));
        values[to] = value;
    };
    move(m_starts, items[to]->startTime());
    move(m_ends, endTimeOf(*items[to]));
    move(m_ids, items[to]->id());
    noteChange(std::min(from, to), std::max(from, to));
    Q_ASSERT(isRight(items));
}

void ItemIndex::noteDuration(const Items& items, std::size_t position)
{
    m_isOrdered = m_isOrdered && items[position]->duration() >= openEnded;
    if (!isKept(0))
        return;
    m_ends[position] = endTimeOf(*items[position]);
    noteChange(position, position);
    Q_ASSERT(isRight(items));
}

void ItemIndex::noteChange(std::size_t first, std::size_t last)
{
    if (last < m_summarisedItems)
        summarise(first, last);
    else
        m_summarisedItems = std::min(m_summarisedItems, first);
}

// What has been summarised stays; the blocks that go on behind it are made anew.
void ItemIndex::summarise() const
{
    std::size_t level = 0;
    for (std::size_t blocks = (size() + fanOut - 1) / fanOut; blocks > 0; ++level) {
        if (m_latestEnds.size() == level)
            m_latestEnds.emplace_back();
        m_latestEnds[level].resize(blocks);
        blocks = blocks > fanOut ? (blocks + fanOut - 1) / fanOut : 0;
    }
    m_latestEnds.resize(level);
    summarise(m_summarisedItems, size() - 1);
    m_summarisedItems = size();
}

void ItemIndex::summarise(std::size_t first, std::size_t last) const
{
    for (std::size_t level = 0; level < m_latestEnds.size(); ++level) {
        first /= fanOut;
        last /= fanOut;
        summariseBlocks(level, first, last);
    }
}

void ItemIndex::summariseBlocks(std::size_t level, std::size_t first, std::size_t last) const
{
    const Times& below = level == 0 ? m_ends : m_latestEnds[level - 1];
    for (std::size_t block = first; block <= last; ++block) {
        const auto begin = below.begin() + static_cast<std::ptrdiff_t>(block * fanOut);
        const auto end = below.begin() + static_cast<std::ptrdiff_t>(std::min((block + 1) * fanOut, below.size()));
        m_latestEnds[level][block] = *std::max_element(begin, end);
    }
}

// Looks at everything and so at no more than some lists: this is for debug builds.
bool ItemIndex::isRight(const Items& items) const
{
    constexpr std::size_t mostItems = 1000;
    if (items.size() > mostItems)
        return m_starts.size() == items.size() && m_place == items.data();
    for (std::size_t position = 0; position < items.size(); ++position) {
        if (m_starts[position] != items[position]->startTime() || m_ends[position] != endTimeOf(*items[position]) ||
            m_ids[position] != items[position]->id())
            return false;
        if (position > 0 && m_starts[position] < m_starts[position - 1])
            return false;
    }
    return m_starts.size() == items.size() && m_ends.size() == items.size() && m_place == items.data();
}

} // namespace VeskTimeline
