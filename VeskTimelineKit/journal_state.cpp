#include "document_bars_p.h"
#include "document_of_tracks_p.h"
#include "journal_state_p.h"
#include "kit_tr_p.h"
#include "standard_timeline_model_track_p.h"

#include <algorithm>
#include <map>

namespace VeskTimeline::Kit {

namespace {

constexpr int rootId = 0;
// Moving a part of a list is cheaper than going through all of it, as long as it is not done too often.
constexpr std::size_t fewPlaces = 32;

template <typename List>
auto at(List& list, int position)
{
    return list.begin() + std::clamp<std::ptrdiff_t>(position, 0, static_cast<std::ptrdiff_t>(list.size()));
}

std::unique_ptr<LabelledItem> makeItem(JournalItem&& source)
{
    DocumentItem& content = source.content;
    auto item = std::make_unique<LabelledItem>(content.label, content.start, static_cast<int>(content.duration),
                                               content.color, content.isEditable);
    item->setHasOwnColor(content.color.isValid());
    item->setDescription(content.description);
    item->setAttributes(content.attributes);
    item->setPiece(source.piece);
    return item;
}

} // namespace

JournalState::JournalState()
{
    m_tracks[rootId];
}

JournalState::~JournalState() = default;

// Who names a track that is not there refers to a record that has been lost.
JournalState::TrackNode& JournalState::node(int trackId)
{
    const auto found = m_tracks.find(trackId);
    if (found != m_tracks.end())
        return found->second;
    TrackNode& made = m_tracks[trackId];
    made.name = Tr::tr("Recovered");
    made.parentId = rootId;
    m_tracks[rootId].children.push_back(trackId);
    return made;
}

// What is in its new place must not be in the way of what is put there: everything goes out before anything comes in.
void JournalState::apply(JournalDelta&& delta)
{
    detachItems(delta);
    for (const JournalTrack& track : delta.tracks) {
        if (track.parentId >= 0)
            detachTrack(track.id);
    }
    for (const int id : delta.removedTracks)
        detachTrack(id);
    for (const int id : delta.removedTracks)
        destroySubtree(id);
    attachTracks(std::move(delta.tracks));
    putItems(std::move(delta.items));
    for (const JournalCopies& copies : delta.copies)
        node(copies.trackId).copies = copies.itemIds;
}

void JournalState::detachItems(const JournalDelta& delta)
{
    std::map<int, QSet<int>> byTrack;
    const auto note = [&](int id) {
        const auto found = m_items.find(id);
        if (found != m_items.end())
            byTrack[found->second.trackId].insert(id);
    };
    for (const JournalItem& item : delta.items)
        note(item.id);
    for (const int id : delta.removedItems)
        note(id);
    for (const auto& [trackId, ids] : byTrack)
        detachItemsOf(trackId, ids);
    for (const auto& [trackId, ids] : byTrack) {
        for (const int id : ids)
            m_items.erase(id);
    }
}

void JournalState::detachItemsOf(int trackId, const QSet<int>& itemIds)
{
    std::vector<int>& list = node(trackId).items;
    if (static_cast<std::size_t>(itemIds.size()) > fewPlaces) {
        list.erase(std::remove_if(list.begin(), list.end(), [&itemIds](int id) { return itemIds.contains(id); }),
                   list.end());
        return;
    }
    for (const int id : itemIds) {
        const qint64 start = m_items.at(id).item->startTime();
        const auto first = std::lower_bound(list.begin(), list.end(), start, [this](int other, qint64 time) {
            return m_items.at(other).item->startTime() < time;
        });
        auto found = std::find(first, list.end(), id);
        if (found == list.end())
            found = std::find(list.begin(), first, id);
        list.erase(found);
    }
}

void JournalState::detachTrack(int trackId)
{
    const auto found = m_tracks.find(trackId);
    if (found == m_tracks.end() || found->second.parentId < 0)
        return;
    std::vector<int>& siblings = node(found->second.parentId).children;
    siblings.erase(std::remove(siblings.begin(), siblings.end(), trackId), siblings.end());
    found->second.parentId = -1;
}

void JournalState::destroySubtree(int trackId)
{
    const auto found = m_tracks.find(trackId);
    if (trackId == rootId || found == m_tracks.end())
        return;
    const TrackNode removed = std::move(found->second);
    m_tracks.erase(found);
    for (const int id : removed.items)
        m_items.erase(id);
    for (const int id : removed.children)
        destroySubtree(id);
}

bool JournalState::isBelow(int trackId, int otherId) const
{
    for (auto found = m_tracks.find(trackId); found != m_tracks.end(); found = m_tracks.find(found->second.parentId)) {
        if (found->first == otherId)
            return true;
    }
    return false;
}

void JournalState::attachTracks(std::vector<JournalTrack>&& tracks)
{
    // In ascending order each row is, when its track is put there, what it will be in the end.
    std::stable_sort(tracks.begin(), tracks.end(), [](const JournalTrack& left, const JournalTrack& right) {
        return std::pair(left.parentId, left.row) < std::pair(right.parentId, right.row);
    });
    for (const JournalTrack& track : tracks) {
        if (track.id == rootId)
            continue;
        TrackNode& own = track.parentId < 0 ? node(track.id) : m_tracks[track.id];
        own.name = track.name;
        own.color = track.color;
    }
    for (const JournalTrack& track : tracks) {
        if (track.id == rootId || track.parentId < 0)
            continue;
        detachTrack(track.id);
        const int parentId = isBelow(track.parentId, track.id) ? rootId : track.parentId;
        std::vector<int>& siblings = node(parentId).children;
        siblings.insert(at(siblings, track.row), track.id);
        m_tracks[track.id].parentId = parentId;
    }
}

void JournalState::putItems(std::vector<JournalItem>&& items)
{
    std::map<int, std::vector<std::pair<int, int>>> byTrack;
    for (JournalItem& item : items) {
        const int id = item.id;
        ItemNode& own = m_items[id];
        if (own.item)
            continue;
        byTrack[item.trackId].emplace_back(item.position, id);
        own.trackId = item.trackId;
        own.item = makeItem(std::move(item));
    }
    for (auto& [trackId, places] : byTrack) {
        std::stable_sort(places.begin(), places.end(),
                         [](const auto& left, const auto& right) { return left.first < right.first; });
        putTrackItems(trackId, places);
    }
}

void JournalState::putTrackItems(int trackId, const std::vector<std::pair<int, int>>& places)
{
    std::vector<int>& list = node(trackId).items;
    if (places.size() <= fewPlaces || places.back().first == JournalItem::last) {
        for (const auto& [position, id] : places)
            list.insert(position == JournalItem::last ? list.end() : at(list, position), id);
        return;
    }
    std::vector<int> merged;
    merged.reserve(list.size() + places.size());
    auto next = places.begin();
    for (const int id : list) {
        for (; next != places.end() && next->first <= static_cast<std::ptrdiff_t>(merged.size()); ++next)
            merged.push_back(next->second);
        merged.push_back(id);
    }
    for (; next != places.end(); ++next)
        merged.push_back(next->second);
    list = std::move(merged);
}

void JournalState::forEachRecord(const std::function<void(const QByteArray& json)>& use) const
{
    recordSubtree(rootId, 0, use);
}

void JournalState::recordSubtree(int trackId, int row, const std::function<void(const QByteArray& json)>& use) const
{
    const TrackNode& track = m_tracks.at(trackId);
    if (trackId != rootId)
        use(trackRecord({trackId, track.parentId, row, track.name, track.color}));
    for (const int id : track.items) {
        const LabelledItem& item = *m_items.at(id).item;
        use(itemRecord({id, trackId, JournalItem::last, item.piece(), documentItemOf(item)}));
    }
    if (!track.copies.isEmpty())
        use(copiesRecord({trackId, track.copies}));
    int childRow = 0;
    for (const int id : track.children)
        recordSubtree(id, childRow++, use);
}

void JournalState::build(Track& target, int trackId, int level)
{
    TrackNode& source = m_tracks.at(trackId);
    // No user makes such a tree, and what goes through it calls itself for each level.
    constexpr int deepest = 1000;
    if (level > deepest)
        source.children.clear();
    target.items().reserve(source.items.size());
    for (const int id : source.items) {
        ItemPtr item = std::move(m_items.at(id).item);
        if (const auto place = m_places.find(id); place != m_places.end())
            place->second.first = item.get();
        target.items().push_back(std::move(item));
    }
    for (const int id : source.children) {
        const TrackNode& child = m_tracks.at(id);
        target.tracks().push_back(
            std::make_unique<StandardTrack>(TrackDetails{child.name, child.color}, id, target.id()));
        build(*target.tracks().back(), id, level + 1);
    }
}

namespace {

/// Which id setDocument() will give to what was in a certain place.
class NewIds
{
public:
    explicit NewIds(const Document& document)
    {
        int firstId = 0;
        int nextWhole = 0;
        for (std::size_t track = 0; track < document.tracks().size(); ++track) {
            for (const DocumentBar& bar : barsOf(document.tracks()[track].items, nextWhole))
                m_ids.emplace(std::tuple(track, bar.item, std::max(bar.piece.number - 1, 0)), firstId++);
        }
    }

    int idOf(const DocumentPlace& place) const
    {
        const auto found = m_ids.find(std::tuple(place.track, place.item, place.piece));
        // Pieces that make a whole short enough for one bar come back as one.
        return found != m_ids.end() ? found->second : m_ids.at(std::tuple(place.track, place.item, 0));
    }

private:
    std::map<std::tuple<std::size_t, std::size_t, int>, int> m_ids;
};

} // namespace

Document JournalState::takeDocument(QMap<int, QSet<int>>& copies)
{
    for (const auto& [trackId, track] : m_tracks) {
        for (const int id : track.copies)
            m_places.emplace(id, std::pair(nullptr, DocumentPlace()));
    }
    Track root{QString()};
    build(root, rootId, 0);
    std::unordered_map<const Item*, DocumentPlace*> wanted;
    for (auto& [id, place] : m_places) {
        if (place.first)
            wanted.emplace(place.first, &place.second);
    }
    const PlaceSink sink = [&wanted](const Item& item, const DocumentPlace& place) {
        if (const auto found = wanted.find(&item); found != wanted.end())
            *found->second = place;
    };
    Document document = documentOfTracks(root, wanted.empty() ? PlaceSink() : sink);
    if (!wanted.empty())
        copies = newCopies(document);
    return document;
}

QMap<int, QSet<int>> JournalState::newCopies(const Document& document) const
{
    QMap<int, QSet<int>> copies;
    const NewIds newIds(document);
    // Both go through the tree in the same order.
    int newTrackId = rootId;
    const std::function<void(int)> addCopies = [&](int trackId) {
        const TrackNode& track = m_tracks.at(trackId);
        QSet<int> ids;
        for (const int id : track.copies) {
            const auto& [item, place] = m_places.at(id);
            const int itemTrackId = item ? m_items.at(id).trackId : rootId;
            // Items of the root are in no document. Of a damaged journal, tracks may have lost their places.
            if (itemTrackId != rootId && isBelow(itemTrackId, trackId))
                ids.insert(newIds.idOf(place));
        }
        if (!ids.isEmpty())
            copies.insert(newTrackId, ids);
        for (const int id : track.children) {
            ++newTrackId;
            addCopies(id);
        }
    };
    addCopies(rootId);
    return copies;
}

} // namespace VeskTimeline::Kit
