#pragma once

// Internal to the library; not installed.

#include <VeskTimeline/item.h>

#include <cstring>

namespace VeskTimeline {

// Inserting into and erasing from a long list of owning pointers is a matter of moving its rest. Done element by
// element each pointer moved is emptied and each one written to is checked for something to destroy, which costs
// several times the plain copy; so the rest is moved as bytes here, and the pointer left double is then emptied.
static_assert(sizeof(ItemPtr) == sizeof(void*), "an owning pointer is nothing but the pointer");

/// Moves `count` pointers from one position of the list to another; all of the target but what overlaps is empty.
inline void relocateItems(Items& items, std::size_t from, std::size_t to, std::size_t count)
{
    // NOLINTNEXTLINE(bugprone-undefined-memory-manipulation): what is copied over is empty, what stays double released
    std::memmove(static_cast<void*>(items.data() + to), static_cast<const void*>(items.data() + from),
                 count * sizeof(ItemPtr));
}

/// Inserts the item before a position, from 0 to the size. @return the item
inline Item* insertItemAt(Items& items, std::size_t position, ItemPtr&& item)
{
    const std::size_t behind = items.size() - position;
    items.emplace_back();
    relocateItems(items, position, position + 1, behind);
    static_cast<void>(items[position].release());
    items[position] = std::move(item);
    return items[position].get();
}

/// Takes the item at a position out of the list.
inline ItemPtr takeItemAt(Items& items, std::size_t position)
{
    ItemPtr taken = std::move(items[position]);
    relocateItems(items, position + 1, position, items.size() - position - 1);
    static_cast<void>(items.back().release());
    items.pop_back();
    return taken;
}

/// Moves the item at a position to another one; those between move by one.
inline void moveItemWithin(Items& items, std::size_t from, std::size_t to)
{
    ItemPtr moved = std::move(items[from]);
    if (from < to)
        relocateItems(items, from + 1, from, to - from);
    else
        relocateItems(items, to, to + 1, from - to);
    static_cast<void>(items[to].release());
    items[to] = std::move(moved);
}

} // namespace VeskTimeline
