#include "item_lists_p.h"

#include <algorithm>
#include <iterator>

namespace VeskTimeline::Kit {

void takeFrom(Items& items, const std::vector<int>& positions, Items& taken)
{
    Items kept;
    kept.reserve(items.size());
    auto next = positions.begin();
    int position = 0;
    for (ItemPtr& item : items) {
        const bool isTaken = next != positions.end() && *next == position++;
        (isTaken ? taken : kept).push_back(std::move(item));
        if (isTaken)
            ++next;
    }
    items = std::move(kept);
}

void putInto(Items& own, const std::vector<int>& positions, Items&& items)
{
    Items merged;
    merged.reserve(own.size() + items.size());
    std::size_t next = 0;
    for (ItemPtr& item : own) {
        while (next < items.size() && static_cast<std::size_t>(positions[next]) == merged.size())
            merged.push_back(std::move(items[next++]));
        merged.push_back(std::move(item));
    }
    std::move(items.begin() + static_cast<std::ptrdiff_t>(next), items.end(), std::back_inserter(merged));
    own = std::move(merged);
}

} // namespace VeskTimeline::Kit
