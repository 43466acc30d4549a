#include "failure_log_p.h"
#include "track_places_p.h"

#include <VeskTimeline/timeline_model.h>

#include <algorithm>
#include <numeric>
#include <stdexcept>

namespace VeskTimeline {

namespace {

enum Column { NameColumn = 0, TimeColumn = 1, ColumnCount = 2 };

int trackIdOf(const QModelIndex& index)
{
    return static_cast<int>(index.internalId());
}

quintptr internalIdOf(int trackId)
{
    return static_cast<quintptr>(trackId);
}

template <typename Cache>
auto* cached(const Cache& cache, int id)
{
    const auto found = cache.find(id);
    return found == cache.end() ? nullptr : found->second;
}

} // namespace

TimelineModel::TimelineModel(TimelineView* view, QObject* parent)
    : QAbstractItemModel(parent),
      m_logger(Hox::HoxLoggerBootstrap::getHoxRootLogger().logger(QStringLiteral("Timeline.TimelineModel"))),
      m_view(view),
      m_rootTrack(QString()),
      m_currentTrackId(0),
      m_currentItemId(0),
      m_isEditable(true),
      m_isSnapEnabled(false),
      m_snapStep(500),
      m_snapTol(1000),
      m_minItemDuration(0),
      m_itemCaching(true),
      m_trackCaching(true),
      m_places(std::make_unique<TrackPlaces>())
{
    m_rootTrack.m_id = nextFreeTrackId();
    m_trackCache[m_rootTrack.id()] = &m_rootTrack;
    connect(this, &QAbstractItemModel::rowsInserted, this, &TimelineModel::noteInsertedRows);
}

TimelineModel::~TimelineModel() = default;

void TimelineModel::clear()
{
    m_trackCache.clear();
    m_itemCache.clear();
    m_places->clear();
    m_rootTrack.tracks().clear();
    m_rootTrack.clearItems();
    m_rootTrack.clearCopyItemIds();
    m_currentTrackId = 1;
    m_currentItemId = 0;
    m_trackCache[m_rootTrack.id()] = &m_rootTrack;
}

void TimelineModel::clearItems()
{
    clearItemsOfCachedTracks(m_rootTrack);
    m_itemCache.clear();
}

void TimelineModel::clearItemsOfCachedTracks(Track& subtree)
{
    // From the tree, not from the cache, whose entries of a removed track's descendants point at destroyed tracks.
    if (cached(m_trackCache, subtree.id()))
        subtree.clearItems();
    for (const TrackPtr& child : subtree.tracks())
        clearItemsOfCachedTracks(*child);
}

Track* TimelineModel::track(int id)
{
    if (!m_trackCaching)
        return id == m_rootTrack.id() ? &m_rootTrack : m_rootTrack.track(id);
    if (Track* const found = cached(m_trackCache, id))
        return found;
    throw QStringLiteral("Model: track with id %1 not found in cache").arg(id);
}

const Track* TimelineModel::track(int id) const
{
    if (!m_trackCaching)
        return id == m_rootTrack.id() ? &m_rootTrack : m_rootTrack.track(id);
    if (const Track* const found = cached(m_trackCache, id))
        return found;
    throw QStringLiteral("Model: const track with id %1 not found in cache").arg(id);
}

Item* TimelineModel::item(int id)
{
    if (!m_itemCaching)
        return m_rootTrack.item(id);
    if (Item* const found = cached(m_itemCache, id))
        return found;
    throw QStringLiteral("Model: item with id %1 not found in cache").arg(id);
}

const Item* TimelineModel::item(int id) const
{
    if (!m_itemCaching)
        return m_rootTrack._item(id).get().get();
    if (const Item* const found = cached(m_itemCache, id))
        return found;
    throw QStringLiteral("Model: const item with id %1 not found in cache").arg(id);
}

QVector<int> TimelineModel::itemIds() const
{
    if (!m_itemCaching)
        return m_rootTrack.itemIds(true, false);
    QVector<int> ids;
    if (m_itemCache.empty())
        return ids;
    // As many as there can be from the first to the last: then they are known without going from node to node.
    const qint64 first = m_itemCache.begin()->first;
    const qint64 last = m_itemCache.rbegin()->first;
    if (last - first + 1 == static_cast<qint64>(m_itemCache.size())) {
        ids.resize(static_cast<qsizetype>(m_itemCache.size()));
        std::iota(ids.begin(), ids.end(), static_cast<int>(first));
        return ids;
    }
    ids.reserve(static_cast<qsizetype>(m_itemCache.size()));
    for (const auto& entry : m_itemCache)
        ids.append(entry.first);
    return ids;
}

const Track* TimelineModel::parentOfTrackId(int trackId) const
{
    if (!m_trackCaching && m_rootTrack.hasTrack(trackId, false))
        return &m_rootTrack;
    const Track* const child = track(trackId);
    return child->parentId() == m_rootTrack.id() ? &m_rootTrack : track(child->parentId());
}

int TimelineModel::rowOfTrackId(int trackId) const
{
    const Track* const parentTrack = track(track(trackId)->parentId());
    if (!parentTrack->hasItems())
        throw "parent doesn't have items";
    return rowIn(*parentTrack, trackId);
}

// As Track::rowOfTrack(), which goes through the rows.
int TimelineModel::rowIn(const Track& parentTrack, int trackId) const
{
    const int row = m_places->rowOf(parentTrack, trackId);
    return row >= 0 ? row : parentTrack.rowOfTrack(trackId);
}

void TimelineModel::noteInsertedRows(const QModelIndex& parent, int first, int last)
{
    if (!parent.isValid()) {
        m_places->learn(m_rootTrack, first, last);
        return;
    }
    const TrackPlaces::Path path = m_places->pathTo(m_rootTrack, trackIdOf(parent));
    if (!path.isEmpty())
        m_places->learn(*path.last().track, first, last);
}

const Track* TimelineModel::trackOfIndex(const QModelIndex& index) const
{
    if (!index.isValid())
        throw QStringLiteral("trackOfIndex: index is invalid!");
    try {
        return track(trackIdOf(index));
    } catch (const QString& text) {
        throw QStringLiteral("trackOfIndex: cannot find track by internal id %1: %2")
            .arg(QString::number(trackIdOf(index)), text);
    }
}

QModelIndex TimelineModel::indexOf(int trackId) const
{
    return indexOfTrack(trackId);
}

QModelIndex TimelineModel::index(int row, int column, const QModelIndex& parent) const
{
    if (!hasIndex(row, column, parent))
        return {};

    const Track* parentTrack = &m_rootTrack;
    if (parent.isValid()) {
        try {
            parentTrack = track(trackIdOf(parent));
        } catch (...) {
            VESK_LOG(m_logger, Hox::Debug) << Q_FUNC_INFO << " cannot get parent track " << textOfCaughtException();
            return {};
        }
    }

    try {
        return createIndex(row, column, internalIdOf(parentTrack->trackAt(row)->id()));
    } catch (...) {
        VESK_LOG(m_logger, Hox::Debug) << Q_FUNC_INFO << " cannot get child track " << textOfCaughtException();
        return {};
    }
}

QModelIndex TimelineModel::parent(const QModelIndex& index) const
{
    if (!index.isValid())
        return {};

    const Track* parentTrack = nullptr;
    try {
        parentTrack = parentOfTrackId(trackIdOf(index));
    } catch (...) {
        VESK_LOG(m_logger, Hox::Debug) << Q_FUNC_INFO << " cannot get parent of track with id " << trackIdOf(index);
        return {};
    }
    if (parentTrack == &m_rootTrack)
        return {};

    const Track* grandparentTrack = nullptr;
    try {
        grandparentTrack = track(parentTrack->parentId());
    } catch (...) {
        VESK_LOG(m_logger, Hox::Debug) << Q_FUNC_INFO << " super parent not found for super parent id "
                                       << parentTrack->parentId() << " - " << textOfCaughtException();
        return {};
    }

    try {
        return createIndex(rowIn(*grandparentTrack, parentTrack->id()), NameColumn, internalIdOf(parentTrack->id()));
    } catch (...) {
        VESK_LOG(m_logger, Hox::Debug) << Q_FUNC_INFO << " row of track for parent not found for parent id "
                                       << parentTrack->id() << " - " << textOfCaughtException();
        return {};
    }
}

int TimelineModel::rowCount(const QModelIndex& parent) const
{
    if (parent.column() > NameColumn)
        return 0;
    if (!parent.isValid())
        return m_rootTrack.trackCount();
    try {
        return track(trackIdOf(parent))->trackCount();
    } catch (...) {
        return 0;
    }
}

int TimelineModel::columnCount(const QModelIndex& /*parent*/) const
{
    return ColumnCount;
}

QString TimelineModel::nameOf(const Track& track) const
{
    try {
        const QString text = track.text();
        return text.isEmpty() ? tr("[unknown]") : text;
    } catch (...) {
        // A text that an application computes may fail; nothing is thrown at the view that asks for it.
        logCaughtException(m_logger, Q_FUNC_INFO);
        return tr("[unknown]");
    }
}

QVariant TimelineModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.column() >= ColumnCount || (role != Qt::DisplayRole && role != Qt::UserRole))
        return {};
    const Track* rowTrack = nullptr;
    try {
        rowTrack = trackOfIndex(index);
    } catch (const QString&) {
        Q_ASSERT(false);
        return {};
    }
    if (index.column() == TimeColumn)
        return role == Qt::DisplayRole ? QVariant(rowTrack->id()) : rowTrack->userData();
    return role == Qt::UserRole ? QVariant(rowTrack->id()) : nameOf(*rowTrack);
}

Qt::ItemFlags TimelineModel::flags(const QModelIndex& index) const
{
    return index.isValid() ? QAbstractItemModel::flags(index) : Qt::NoItemFlags;
}

QModelIndex TimelineModel::indexOfTrack(int trackId) const
{
    return indexOfTrackFromIndex(QModelIndex(), trackId);
}

QModelIndex TimelineModel::indexOfTrackFromIndex(const QModelIndex& idx, int trackId) const
{
    if (trackIdOf(idx) == trackId)
        return idx;
    const TrackPlaces::Path path = m_places->pathTo(m_rootTrack, trackId);
    auto step = path.begin();
    if (idx.isValid()) {
        const auto isHere = [&idx](const TrackPlaces::Step& above) { return above.track->id() == trackIdOf(idx); };
        step = std::find_if(path.begin(), path.end(), isHere);
        step += step == path.end() ? 0 : 1;
    }
    QModelIndex found = idx;
    for (; step != path.end(); ++step) {
        found = index(step->row, NameColumn, found);
        if (!found.isValid())
            break;
    }
    // What is not in the tree may still be among the rows of a subclass.
    return found.isValid() && trackIdOf(found) == trackId ? found : searchRowsBelow(idx, trackId);
}

QModelIndex TimelineModel::searchRowsBelow(const QModelIndex& idx, int trackId) const
{
    const int rows = rowCount(idx);
    for (int row = 0; row < rows; ++row) {
        const QModelIndex child = index(row, NameColumn, idx);
        // An invalid index stands for the root: searching below it would start all over again.
        if (!child.isValid())
            continue;
        const QModelIndex found = trackIdOf(child) == trackId ? child : searchRowsBelow(child, trackId);
        if (found.isValid())
            return found;
    }
    return {};
}

QModelIndex TimelineModel::indexOfTrackSafe(int trackId) const
{
    const QModelIndex found = indexOfTrack(trackId);
    if (found.isValid())
        return found;

    QString name = QStringLiteral("(unknown)");
    try {
        name = track(trackId)->text();
    } catch (const QString&) {
        // The message says so.
    }
    throw QStringLiteral("indexOfTrackSafe: index for trackId %1 ('%2') not found ")
        .arg(QString::number(trackId), name);
}

QModelIndex TimelineModel::indexOfTrackFromIndexSafe(const QModelIndex& idx, int trackId) const
{
    const QModelIndex found = indexOfTrackFromIndex(idx, trackId);
    if (found.isValid())
        return found;
    throw QStringLiteral("indexOfTrackFromIndexSafe: index for trackId %1 not found").arg(trackId);
}

void TimelineModel::onInsertTrack(const QModelIndex& /*index*/)
{
}

void TimelineModel::onRemoveTrack(const QModelIndex& /*index*/)
{
}

} // namespace VeskTimeline
