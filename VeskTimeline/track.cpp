#include "item_index_p.h"

#include <VeskTimeline/track.h>

#include <algorithm>
#include <cstdio>

namespace VeskTimeline {

namespace {

QString lookupFailed()
{
    return QStringLiteral("lookup failed!");
}

template <typename References>
QVector<int> idsOf(const References& references)
{
    QVector<int> ids;
    ids.reserve(static_cast<qsizetype>(references.size()));
    for (const ItemPtr& item : references)
        ids.append(item->id());
    return ids;
}

} // namespace

Track::Track(const QString& text) : m_text(text)
{
}

Track::Track(const QString& text, int /*reserved*/) : Track(text)
{
}

Track::Track(Track&& other) noexcept = default;

Track::~Track() = default;

QString Track::text() const
{
    return m_text;
}

void Track::removeCopyItem(int id)
{
    m_copyItemIds.remove(id);
    for (const TrackPtr& child : m_childrenTracks)
        child->removeCopyItem(id);
}

Tracks::const_iterator Track::findChild(int id) const
{
    return std::find_if(m_childrenTracks.begin(), m_childrenTracks.end(),
                        [id](const TrackPtr& child) { return child->id() == id; });
}

void Track::removeTrack(int id)
{
    const auto found = findChild(id);
    if (found == m_childrenTracks.end())
        throw QStringLiteral("removeTrack: track %1 not found on track %2").arg(id).arg(m_id);
    m_childrenTracks.erase(found);
}

const Track* Track::findTrack(int id) const
{
    const auto child = findChild(id);
    if (child != m_childrenTracks.end())
        return child->get();
    for (const TrackPtr& subtree : m_childrenTracks) {
        if (const Track* found = subtree->findTrack(id))
            return found;
    }
    return nullptr;
}

Track* Track::track(int id)
{
    if (const Track* found = findTrack(id))
        return const_cast<Track*>(found);
    throw QStringLiteral("Track: track with id %1 not found").arg(id);
}

const Track* Track::track(int id) const
{
    if (const Track* found = findTrack(id))
        return found;
    throw lookupFailed();
}

bool Track::hasTrack(int id, bool recursive) const
{
    return recursive ? findTrack(id) != nullptr : findChild(id) != m_childrenTracks.end();
}

const Track* Track::parentOf(int id) const
{
    for (const TrackPtr& child : m_childrenTracks) {
        if (child->hasTrack(id, false))
            return child.get();
        if (child->hasTrack(id, true))
            return child->parentOf(id);
    }
    throw "not found";
}

int Track::rowOfTrack(int id) const
{
    const auto found = findChild(id);
    if (found == m_childrenTracks.end())
        throw "not found";
    return static_cast<int>(found - m_childrenTracks.begin());
}

Track* Track::trackAt(int row)
{
    return m_childrenTracks.at(static_cast<Tracks::size_type>(row)).get();
}

const Track* Track::trackAt(int row) const
{
    return m_childrenTracks.at(static_cast<Tracks::size_type>(row)).get();
}

const ItemPtr* Track::findItem(int id) const
{
    const auto own = findOwnItem(id);
    if (own != m_items.end())
        return &*own;
    for (const TrackPtr& subtree : m_childrenTracks) {
        if (const ItemPtr* found = subtree->findItem(id))
            return found;
    }
    return nullptr;
}

Item* Track::item(int id)
{
    if (const ItemPtr* found = findItem(id))
        return found->get();
    throw lookupFailed();
}

const Item* Track::item(int id) const
{
    if (const ItemPtr* found = findItem(id))
        return found->get();
    throw lookupFailed();
}

ItemPtrRef Track::_item(int id) const
{
    if (const ItemPtr* found = findItem(id))
        return std::cref(*found);
    throw QStringLiteral("_item: item with id %1 not found!").arg(id);
}

ItemPtrNCVRef Track::_itemNCV(int id)
{
    if (const ItemPtr* found = findItem(id))
        return std::ref(const_cast<ItemPtr&>(*found));
    throw lookupFailed();
}

ItemPtrRefs Track::_items(bool recursive) const
{
    ItemPtrRefs references(m_items.begin(), m_items.end());
    for (const CopyItem& copy : findCopyItems()) {
        if (copy.item)
            references.push_back(std::cref(*copy.item));
        else
            sayCopyItemIsMissing(copy.id);
    }
    if (recursive) {
        for (const TrackPtr& child : m_childrenTracks) {
            const ItemPtrRefs below = child->_items(true);
            references.insert(references.end(), below.begin(), below.end());
        }
    }
    return references;
}

ItemPtrNCVRefs Track::_itemsNCV(bool recursive)
{
    ItemPtrNCVRefs references(m_items.begin(), m_items.end());
    if (recursive) {
        for (const TrackPtr& child : m_childrenTracks) {
            const ItemPtrNCVRefs below = child->_itemsNCV(true);
            references.insert(references.end(), below.begin(), below.end());
        }
    }
    return references;
}

ItemPtrRefs Track::_copyItems() const
{
    ItemPtrRefs references;
    references.reserve(static_cast<ItemPtrRefs::size_type>(m_copyItemIds.size()));
    for (const CopyItem& copy : findCopyItems()) {
        if (copy.item)
            references.push_back(std::cref(*copy.item));
        else
            std::fprintf(stderr, "Track::_copyItems: cannot find item for item id %d\n", copy.id);
    }
    return references;
}

QVector<int> Track::_itemIds(bool recursive) const
{
    QVector<int> ids = idsOf(m_items);
    if (recursive) {
        for (const TrackPtr& child : m_childrenTracks)
            ids.append(child->_itemIds(true));
    }
    return ids;
}

QVector<int> Track::itemIds(bool recursive, bool sorted) const
{
    if (!sorted || !recursive)
        return _itemIds(recursive);
    ItemPtrRefs references = _items(true);
    sort(references);
    return transformItemPtrsToIds(references);
}

QVector<int> Track::transformItemPtrsToIds(const Items& items)
{
    return idsOf(items);
}

QVector<int> Track::transformItemPtrsToIds(const ItemPtrRefs& items)
{
    return idsOf(items);
}

void Track::printTrackIds(bool withItems, int level) const
{
    std::fprintf(stderr, "%*c Track %16.16s ", level * 2, '>', qPrintable(text()));
    if (withItems) {
        std::fputs(" ( ", stderr);
        for (const ItemPtr& item : m_items)
            std::fprintf(stderr, "%d ", item->id());
        std::fputs(")", stderr);
    }
    std::fputs("\n", stderr);
    // The level of the children is 0 at any depth; what it decides is whether they list their items.
    for (const TrackPtr& child : m_childrenTracks)
        child->printTrackIds(level + 1 != 0, 0);
}

} // namespace VeskTimeline
