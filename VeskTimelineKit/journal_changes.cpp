#include "document_of_tracks_p.h"
#include "id_table_p.h"
#include "journal_changes_p.h"
#include "undo_contents_p.h"

#include <VeskTimelineKit/standard_timeline_model.h>

#include <algorithm>
#include <map>

namespace VeskTimeline::Kit {

namespace {

JournalItem journalItem(const Item& item, int trackId, int position)
{
    const auto* const labelled = dynamic_cast<const LabelledItem*>(&item);
    return {item.id(), trackId, position, labelled ? labelled->piece() : ItemPiece(), documentItemOf(item)};
}

QVector<int> sorted(const QSet<int>& ids)
{
    QVector<int> list(ids.begin(), ids.end());
    std::sort(list.begin(), list.end());
    return list;
}

} // namespace

JournalChanges::JournalChanges(StandardTimelineModel& model, QObject* parent) : QObject(parent), m_model(&model)
{
    connectModel();
    restart();
}

void JournalChanges::connectModel()
{
    StandardTimelineModel* const model = m_model;
    connect(model, &StandardTimelineModel::itemsAdded, this, &JournalChanges::touchItems);
    connect(model, &StandardTimelineModel::itemsRemoved, this, &JournalChanges::touchItems);
    connect(model, &StandardTimelineModel::itemsChanged, this, &JournalChanges::touchItems);
    connect(model, &QAbstractItemModel::rowsInserted, this,
            [this](const QModelIndex& parent, int first, int last) { touchRows(parent, first, last, true); });
    // Afterwards nobody knows their ids.
    connect(model, &QAbstractItemModel::rowsAboutToBeRemoved, this,
            [this](const QModelIndex& parent, int first, int last) { touchRows(parent, first, last, false); });
    connect(model, &QAbstractItemModel::rowsAboutToBeMoved, this,
            [this](const QModelIndex& parent, int first, int last) { touchRows(parent, first, last, false); });
    connect(model, &QAbstractItemModel::dataChanged, this, [this](const QModelIndex& first, const QModelIndex& last) {
        for (int row = first.row(); row <= last.row(); ++row)
            m_details.insert(static_cast<int>(first.siblingAtRow(row).internalId()));
        Q_EMIT touched();
    });
    connect(model, &QAbstractItemModel::modelReset, this, [this] {
        restart();
        Q_EMIT modelReset();
    });
}

void JournalChanges::restart()
{
    m_items.clear();
    m_places.clear();
    m_details.clear();
    m_known.clear();
    if (m_model)
        rememberSubtree(*std::as_const(*m_model).rootTrack());
}

bool JournalChanges::isEmpty() const
{
    return m_items.isEmpty() && m_places.isEmpty() && m_details.isEmpty();
}

void JournalChanges::touchItems(const QVector<int>& itemIds)
{
    m_items.insert(itemIds);
    Q_EMIT touched();
}

void JournalChanges::touchRows(const QModelIndex& parent, int first, int last, bool withSubtree)
{
    for (int row = first; row <= last; ++row) {
        const auto trackId = static_cast<int>(m_model->index(row, 0, parent).internalId());
        m_places.insert(trackId);
        const Track* const track = withSubtree ? existing(trackId) : nullptr;
        if (track)
            touchSubtree(*track);
    }
    Q_EMIT touched();
}

void JournalChanges::touchSubtree(const Track& track)
{
    m_places.insert(track.id());
    // Whatever is known of a track of that id, whoever reads the journal has lost it with the track.
    m_known.remove(track.id());
    m_details.insert(track.id());
    for (const TrackPtr& child : track.tracks())
        touchSubtree(*child);
}

void JournalChanges::rememberSubtree(const Track& track)
{
    m_known.insert(track.id(), detailsOf(track));
    for (const TrackPtr& child : track.tracks())
        rememberSubtree(*child);
}

const Track* JournalChanges::existing(int trackId) const
{
    return m_model ? ModelContents::findTrack(*m_model, trackId) : nullptr;
}

JournalChanges::Known JournalChanges::detailsOf(const Track& track)
{
    const auto* const standard = dynamic_cast<const StandardTrack*>(&track);
    return {track.text(), standard ? standard->details().color : QColor(), track.copyItemIds(), true};
}

JournalTrack JournalChanges::placed(const Track& track) const
{
    const Known details = detailsOf(track);
    const Track& parent = *std::as_const(*m_model).track(track.parentId());
    return {track.id(), parent.id(), parent.rowOfTrack(track.id()), details.name, details.color};
}

JournalDelta JournalChanges::take()
{
    JournalDelta delta;
    if (!m_model)
        return delta;
    takeTracks(delta);
    takeItems(delta);
    m_items.clear();
    m_places.clear();
    m_details.clear();
    return delta;
}

void JournalChanges::takeTracks(JournalDelta& delta)
{
    for (const int id : sorted(m_places)) {
        const Track* const track = existing(id);
        if (track) {
            delta.tracks.push_back(placed(*track));
        } else {
            delta.removedTracks.append(id);
            m_known.remove(id);
        }
    }
    // The root has no row whose data could change.
    m_details.insert(std::as_const(*m_model).rootTrack()->id());
    for (const int id : sorted(m_details)) {
        const Track* const track = existing(id);
        if (!track)
            continue;
        const Known before = m_known.value(id);
        const Known now = detailsOf(*track);
        if (!m_places.contains(id) && (!before.isTold || now.name != before.name || now.color != before.color))
            delta.tracks.push_back({id, -1, 0, now.name, now.color});
        if (!before.isTold || now.copies != before.copies)
            delta.copies.push_back({id, sorted(now.copies)});
        m_known.insert(id, now);
    }
}

void JournalChanges::takeItems(JournalDelta& delta)
{
    const QVector<int> itemIds = m_items.ids();
    const IdTable wanted(itemIds);
    std::map<int, std::vector<qint64>> startsByTrack;
    for (const int id : itemIds) {
        if (const Item* const item = ModelContents::findItem(*m_model, id))
            startsByTrack[item->parentTrackId()].push_back(item->startTime());
        else
            delta.removedItems.append(id);
    }
    delta.items.reserve(static_cast<std::size_t>(itemIds.size() - delta.removedItems.size()));
    for (auto& [trackId, starts] : startsByTrack)
        addTrackItems(*std::as_const(*m_model).track(trackId), std::move(starts), wanted, delta);
}

// Looks at the items that start together with one of them, and at no others.
void JournalChanges::addTrackItems(const Track& track, std::vector<qint64> starts, const IdTable& wanted,
                                   JournalDelta& delta)
{
    const auto startsEarlier = [](const ItemPtr& item, qint64 time) { return item->startTime() < time; };
    if (!std::is_sorted(starts.begin(), starts.end()))
        std::sort(starts.begin(), starts.end());
    starts.erase(std::unique(starts.begin(), starts.end()), starts.end());

    const Items& items = track.items();
    auto item = items.begin();
    for (const qint64 start : starts) {
        // The next one is more often than not the one wanted.
        if (item != items.end() && (*item)->startTime() < start)
            item = std::lower_bound(item, items.end(), start, startsEarlier);
        for (; item != items.end() && (*item)->startTime() == start; ++item) {
            if (wanted.contains((*item)->id()))
                delta.items.push_back(journalItem(**item, track.id(), static_cast<int>(item - items.begin())));
        }
    }
}

void JournalChanges::putBack(const JournalDelta& delta)
{
    for (const int id : delta.removedItems)
        m_items.insert(id);
    for (const JournalItem& item : delta.items)
        m_items.insert(item.id);
    for (const int id : delta.removedTracks)
        m_places.insert(id);
    for (const JournalTrack& track : delta.tracks) {
        if (track.parentId >= 0)
            m_places.insert(track.id);
        m_details.insert(track.id);
        m_known[track.id].isTold = false;
    }
    for (const JournalCopies& copies : delta.copies) {
        m_details.insert(copies.trackId);
        m_known[copies.trackId].isTold = false;
    }
}

JournalDelta JournalChanges::everything() const
{
    JournalDelta delta;
    if (m_model)
        addSubtree(*std::as_const(*m_model).rootTrack(), 0, delta);
    return delta;
}

void JournalChanges::addSubtree(const Track& track, int row, JournalDelta& delta) const
{
    const Known details = detailsOf(track);
    if (track.parentId() >= 0)
        delta.tracks.push_back({track.id(), track.parentId(), row, details.name, details.color});
    for (const ItemPtr& item : track.items())
        delta.items.push_back(journalItem(*item, track.id(), JournalItem::last));
    if (!details.copies.isEmpty())
        delta.copies.push_back({track.id(), sorted(details.copies)});
    int childRow = 0;
    for (const TrackPtr& child : track.tracks())
        addSubtree(*child, childRow++, delta);
}

} // namespace VeskTimeline::Kit
