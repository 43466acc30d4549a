#include "item_relocation_p.h"
#include "track_items_p.h"

#include <VeskTimeline/track.h>

#include <algorithm>
#include <cstdio>

namespace VeskTimeline {

namespace {

// Open-ended items contain no time.
bool contains(const Item& item, qint64 time)
{
    return item.startTime() <= time && shiftedTime(item.startTime(), item.duration()) >= time;
}

// A sort that keeps equals in place is one of the results that an unstable sort may give, and the one that surprises
// nobody; most calls find the list in order already.
template <typename References>
void sortByStartTime(References& references)
{
    const auto startsEarlier = [](const ItemPtr& left, const ItemPtr& right) {
        return left->startTime() < right->startTime();
    };
    if (!std::is_sorted(references.begin(), references.end(), startsEarlier))
        std::stable_sort(references.begin(), references.end(), startsEarlier);
}

} // namespace

const ItemIndex* Track::index() const
{
    if (m_items.size() < ItemIndex::leastItems)
        return nullptr;
    if (!m_index)
        m_index = std::make_unique<ItemIndex>();
    if (m_isIndexStale || m_index->isResting() || !m_index->matches(m_items)) {
        m_index->build(m_items);
        m_isIndexStale = false;
    }
    m_index->noteQuestion();
    return m_index->isOrdered() ? m_index.get() : nullptr;
}

// The index if there is one that can be kept up to date; otherwise the next query brings it up to date.
ItemIndex* Track::currentIndex() const
{
    if (m_index && !m_isIndexStale && m_index->matches(m_items) && m_index->isOrdered())
        return m_index.get();
    m_isIndexStale = true;
    return nullptr;
}

// The index for finding the place of a change; null where going through the list is the way to go.
ItemIndex* Track::indexForChange() const
{
    if (ItemIndex* const current = currentIndex())
        return current;
    return index() ? m_index.get() : nullptr;
}

Item* Track::addItem(ItemPtr&& item)
{
    ItemIndex* const current = currentIndex();
    const auto startsLater = [](qint64 time, const ItemPtr& other) { return time < other->startTime(); };
    const std::size_t position =
        current
            ? current->positionBehind(m_items, item->startTime())
            : static_cast<std::size_t>(
                  std::upper_bound(m_items.begin(), m_items.end(), item->startTime(), startsLater) - m_items.begin());
    Item* const added = insertItemAt(m_items, position, std::move(item));
    if (current)
        current->noteInsertion(m_items, position);
    return added;
}

void Track::addItemPtr(ItemPtr&& item)
{
    addItem(std::move(item));
}

ItemPtr Track::takeItemAtPosition(std::size_t position)
{
    ItemIndex* const current = currentIndex();
    ItemPtr taken = VeskTimeline::takeItemAt(m_items, position);
    if (current)
        current->noteRemoval(m_items, position, *taken);
    return taken;
}

// Null when the item is on another track.
ItemPtr Track::takeOwnItem(const Item& item)
{
    const ItemIndex* const ordered = indexForChange();
    const std::size_t position =
        ordered ? ordered->positionOf(m_items, item)
                : static_cast<std::size_t>(std::find_if(m_items.begin(), m_items.end(),
                                                        [&item](const ItemPtr& own) { return own.get() == &item; }) -
                                           m_items.begin());
    return position < m_items.size() ? takeItemAtPosition(position) : nullptr;
}

Items::const_iterator Track::findOwnItem(int id) const
{
    return std::find_if(m_items.begin(), m_items.end(), [id](const ItemPtr& item) { return item->id() == id; });
}

void Track::removeItem(int id)
{
    const auto found = findOwnItem(id);
    if (found == m_items.end())
        throw QStringLiteral("removeItem: item %1 not found").arg(id);
    takeItemAtPosition(static_cast<std::size_t>(found - m_items.begin()));
}

ItemPtr Track::takeItem(int id)
{
    const auto found = findOwnItem(id);
    if (found == m_items.end())
        throw QStringLiteral("Track::takeItem: item with id %1 not found").arg(id);
    return takeItemAtPosition(static_cast<std::size_t>(found - m_items.begin()));
}

void Track::clearItems()
{
    m_index.reset();
    m_items.clear();
}

void Track::setItemStartTime(Item& item, qint64 time)
{
    const ItemIndex* const ordered = indexForChange();
    const std::size_t from = ordered ? ordered->positionOf(m_items, item) : m_items.size();
    if (from == m_items.size()) {
        item._setStartTime(time);
        sort();
        return;
    }
    const std::size_t to = ordered->positionAfterMove(m_items, from, time);
    item.m_startTime = time;
    moveItemWithin(m_items, from, to);
    m_index->noteMove(m_items, from, to);
}

void Track::setItemDuration(Item& item, int duration)
{
    const ItemIndex* const ordered = indexForChange();
    const std::size_t position = ordered ? ordered->positionOf(m_items, item) : m_items.size();
    if (position == m_items.size()) {
        item._setDuration(duration);
        sort();
        return;
    }
    item.m_duration = duration;
    m_index->noteDuration(m_items, position);
}

Item* Track::itemAt(qint64 time)
{
    return const_cast<Item*>(std::as_const(*this).itemAt(time));
}

const Item* Track::itemAt(qint64 time) const
{
    const ItemPtr* const found =
        findItemInWindow(*this, {time, time}, [time](const ItemPtr& item) { return contains(*item, time); });
    if (!found)
        throw QStringLiteral("lookup failed!");
    return found->get();
}

const Item* Track::copyItemAt(qint64 time) const
{
    for (const ItemPtr& item : _copyItems()) {
        if (contains(*item, time))
            return item.get();
    }
    throw QStringLiteral("Track: can't find copy item at %1").arg(time);
}

Item* Track::previous(int id)
{
    return const_cast<Item*>(std::as_const(*this).previous(id));
}

const Item* Track::previous(int id) const
{
    const auto found = findOwnItem(id);
    if (found == m_items.end() || found == m_items.begin())
        throw QStringLiteral("Track::previous: previous item for id %1 not found").arg(id);
    return std::prev(found)->get();
}

Item* Track::next(int id)
{
    return const_cast<Item*>(std::as_const(*this).next(id));
}

const Item* Track::next(int id) const
{
    const auto found = findOwnItem(id);
    if (found == m_items.end() || std::next(found) == m_items.end())
        throw QStringLiteral("lookup failed!");
    return std::next(found)->get();
}

void Track::sort()
{
    if (!currentIndex())
        sort(m_items);
}

void Track::sort(Items& items)
{
    sortByStartTime(items);
}

void Track::sort(ItemPtrRefs& items)
{
    sortByStartTime(items);
}

void Track::sort(ItemPtrNCVRefs& items)
{
    sortByStartTime(items);
}

} // namespace VeskTimeline
