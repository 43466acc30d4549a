#include "undo_item_blocks_p.h"

#include <algorithm>
#include <iterator>

namespace VeskTimeline::Kit {

namespace {

constexpr std::size_t blockSize = 512;

int sizeOf(const Items& block)
{
    return static_cast<int>(block.size());
}

} // namespace

ItemBlocks::ItemBlocks(Items&& items)
{
    m_blockOf.reserve(static_cast<qsizetype>(items.size()));
    // Never without a block: what comes in needs a place.
    std::size_t next = 0;
    do {
        const std::size_t end = std::min(next + blockSize, items.size());
        auto block = std::make_unique<Items>();
        block->reserve(2 * blockSize);
        for (; next < end; ++next) {
            m_blockOf.insert(items[next].get(), block.get());
            block->push_back(std::move(items[next]));
        }
        m_blocks.push_back(std::move(block));
    } while (next < items.size());
}

Items ItemBlocks::items() &&
{
    Items all;
    all.reserve(static_cast<std::size_t>(m_blockOf.size()));
    for (const std::unique_ptr<Items>& block : m_blocks)
        std::move(block->begin(), block->end(), std::back_inserter(all));
    return all;
}

int ItemBlocks::positionOf(const Item& item) const
{
    const Items* const wanted = m_blockOf.value(&item);
    int before = 0;
    for (const std::unique_ptr<Items>& block : m_blocks) {
        if (block.get() != wanted) {
            before += sizeOf(*block);
            continue;
        }
        const auto found =
            std::find_if(block->begin(), block->end(), [&item](const ItemPtr& other) { return other.get() == &item; });
        return before + static_cast<int>(found - block->begin());
    }
    return before;
}

int ItemBlocks::positionBehind(qint64 start) const
{
    int before = 0;
    for (const std::unique_ptr<Items>& block : m_blocks) {
        if (!block->empty() && block->back()->startTime() > start) {
            const auto behind =
                std::upper_bound(block->begin(), block->end(), start,
                                 [](qint64 time, const ItemPtr& other) { return time < other->startTime(); });
            return before + static_cast<int>(behind - block->begin());
        }
        before += sizeOf(*block);
    }
    return before;
}

// Past the end: behind the last item of the last block.
ItemBlocks::Place ItemBlocks::placeOf(int position) const
{
    Place place{0, std::max(position, 0)};
    while (place.block + 1 < m_blocks.size() && place.position >= sizeOf(*m_blocks[place.block]))
        place.position -= sizeOf(*m_blocks[place.block++]);
    place.position = std::min(place.position, sizeOf(*m_blocks[place.block]));
    return place;
}

ItemPtr ItemBlocks::take(int position)
{
    const Place place = placeOf(position);
    Items& block = *m_blocks[place.block];
    const auto found = block.begin() + place.position;
    ItemPtr item = std::move(*found);
    block.erase(found);
    m_blockOf.remove(item.get());
    if (block.empty() && m_blocks.size() > 1)
        m_blocks.erase(m_blocks.begin() + static_cast<std::ptrdiff_t>(place.block));
    return item;
}

void ItemBlocks::put(int position, ItemPtr&& item)
{
    const Place place = placeOf(position);
    Items& block = *m_blocks[place.block];
    m_blockOf.insert(item.get(), &block);
    block.insert(block.begin() + place.position, std::move(item));
    if (block.size() >= 2 * blockSize)
        split(place.block);
}

void ItemBlocks::split(std::size_t block)
{
    Items& first = *m_blocks[block];
    const auto middle = first.begin() + static_cast<std::ptrdiff_t>(first.size() / 2);
    auto second = std::make_unique<Items>();
    second->reserve(2 * blockSize);
    std::move(middle, first.end(), std::back_inserter(*second));
    first.erase(middle, first.end());
    for (const ItemPtr& item : *second)
        m_blockOf[item.get()] = second.get();
    m_blocks.insert(m_blocks.begin() + static_cast<std::ptrdiff_t>(block) + 1, std::move(second));
}

} // namespace VeskTimeline::Kit
