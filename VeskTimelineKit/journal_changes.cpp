#include "journal_changes_p.h"
#include "undo_contents_p.h"

#include <VeskTimelineKit/standard_timeline_model.h>

#include <limits>

namespace VeskTimeline::Kit {

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
        onTouched();
    });
    connect(model, &QAbstractItemModel::modelReset, this, [this] {
        restart();
        Q_EMIT modelReset();
    });
}

void JournalChanges::restart()
{
    cancelTaking();
    m_items.clear();
    m_places.clear();
    m_details.clear();
    m_known.clear();
    m_takenItems.clear();
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
    onTouched();
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
    onTouched();
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

// What is taken down already may be another state than what follows.
void JournalChanges::onTouched()
{
    m_hasBegunAnew = isTaking();
    m_taking.reset();
    Q_EMIT touched();
}

void JournalChanges::beginTaking(Extent extent)
{
    cancelTaking();
    m_extent = extent;
}

bool JournalChanges::advanceTaking(int count)
{
    if (!m_model)
        return true;
    if (!m_taking && m_extent == Extent::Everything)
        m_taking = std::make_unique<EverythingTaking>(*m_model);
    else if (!m_taking)
        m_taking = std::make_unique<TouchedItemsTaking>(*m_model, m_takenItems = m_items.ids());
    return m_taking->advance(count);
}

JournalDelta JournalChanges::finishTaking()
{
    // Half of what a model was is nothing that was.
    if (!m_model)
        m_taking.reset();
    while (!advanceTaking(std::numeric_limits<int>::max())) {
    }
    JournalDelta delta = m_taking ? std::move(*m_taking).delta() : JournalDelta();
    if (m_model && m_extent == Extent::Touched)
        takeTracks(delta);
    if (m_extent == Extent::Everything)
        restart();
    cancelTaking();
    m_items.clear();
    m_places.clear();
    m_details.clear();
    return delta;
}

void JournalChanges::cancelTaking()
{
    m_extent.reset();
    m_taking.reset();
    m_hasBegunAnew = false;
}

void JournalChanges::takeTracks(JournalDelta& delta)
{
    for (const int id : sortedIds(m_places)) {
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
    for (const int id : sortedIds(m_details)) {
        const Track* const track = existing(id);
        if (!track)
            continue;
        const Known before = m_known.value(id);
        const Known now = detailsOf(*track);
        if (!m_places.contains(id) && (!before.isTold || now.name != before.name || now.color != before.color))
            delta.tracks.push_back({id, -1, 0, now.name, now.color});
        if (!before.isTold || now.copies != before.copies)
            delta.copies.push_back({id, sortedIds(now.copies)});
        m_known.insert(id, now);
    }
}

void JournalChanges::putBack(const JournalDelta& delta)
{
    m_items.insert(m_takenItems);
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

} // namespace VeskTimeline::Kit
