#include <VeskTimeline/track.h>

#include <cstdio>

namespace VeskTimeline {

void Track::sayCopyItemIsMissing(int id)
{
    // As the look-up of the item says it.
    const QString text = QStringLiteral("_item: item with id %1 not found!").arg(id);
    std::fprintf(stderr, "cannot add item ptr ref from copy item with copy item id %d: %s\n", id, qPrintable(text));
}

// In the set's order. The subtree is gone through once for all of them.
std::vector<Track::CopyItem> Track::findCopyItems() const
{
    std::vector<CopyItem> copies;
    copies.reserve(static_cast<std::size_t>(m_copyItemIds.size()));
    QHash<int, const ItemPtr*> wanted;
    wanted.reserve(m_copyItemIds.size());
    for (const int id : m_copyItemIds)
        wanted.insert(id, nullptr);
    qsizetype missing = wanted.size();
    findCopyItemsBelow(wanted, missing);
    for (const int id : m_copyItemIds)
        copies.push_back({id, wanted.value(id)});
    return copies;
}

void Track::findCopyItemsBelow(QHash<int, const ItemPtr*>& wanted, qsizetype& missing) const
{
    for (auto item = m_items.begin(); item != m_items.end() && missing > 0; ++item) {
        const auto entry = wanted.find((*item)->id());
        if (entry == wanted.end() || *entry)
            continue;
        *entry = &*item;
        --missing;
    }
    for (auto child = m_childrenTracks.begin(); child != m_childrenTracks.end() && missing > 0; ++child)
        (*child)->findCopyItemsBelow(wanted, missing);
}

} // namespace VeskTimeline
