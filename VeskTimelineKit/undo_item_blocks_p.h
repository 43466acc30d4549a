#pragma once

// Internal to the kit; not installed.

#include <VeskTimeline/track.h>

#include <QHash>

#include <memory>
#include <vector>

namespace VeskTimeline::Kit {

/// The items of a track while many of them are taken out and put in one by one: each such change costs about the
/// square root of what it does in a plain list.
class ItemBlocks
{
public:
    explicit ItemBlocks(Items&& items);

    /// All of them in their order.
    Items items() &&;
    int positionOf(const Item& item) const;
    /// Behind all items that do not start later. The others are sorted.
    int positionBehind(qint64 start) const;
    ItemPtr take(int position);
    /// @param position where the item will be; past the end: last
    void put(int position, ItemPtr&& item);

private:
    struct Place
    {
        std::size_t block = 0;
        int position = 0; ///< in the block
    };

    Place placeOf(int position) const;
    void split(std::size_t block);

    std::vector<std::unique_ptr<Items>> m_blocks;
    QHash<const Item*, const Items*> m_blockOf;
};

} // namespace VeskTimeline::Kit
