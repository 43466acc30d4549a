#include <VeskTimelineKit/labelled_item.h>
#include <VeskTimelineKit/standard_timeline_model.h>

#include <algorithm>
#include <array>

namespace VeskTimeline::Kit {

namespace {

constexpr std::array<QRgb, 12> trackColors{0xFF4C78A8, 0xFFF58518, 0xFF54A24B, 0xFFE45756, 0xFF72B7B2, 0xFFEECA3B,
                                           0xFFB279A2, 0xFFFF9DA6, 0xFF9D755D, 0xFF8CB369, 0xFF5E6AD2, 0xFFBAB0AC};

/// A track that is told its place when it is made, since a model that is being reset inserts no rows.
class PlacedTrack : public Track
{
public:
    PlacedTrack(const QString& text, int id, int parentId) : Track(text)
    {
        m_id = id;
        m_parentId = parentId;
        m_hasInsertButton = true;
        m_hasRemoveButton = true;
    }
};

} // namespace

StandardTimelineModel::StandardTimelineModel(TimelineView* view, QObject* parent) : TimelineModel(view, parent)
{
}

StandardTimelineModel::~StandardTimelineModel() = default;

QColor StandardTimelineModel::trackColor(int position)
{
    return QColor::fromRgb(trackColors[static_cast<std::size_t>(position) % trackColors.size()]);
}

void StandardTimelineModel::setDocument(const Document& document)
{
    beginResetModel();
    clear();
    m_clipboard.clear();
    addTracks(document);
    endResetModel();
}

void StandardTimelineModel::addTracks(const Document& document)
{
    QHash<QStringList, Track*> tracks;
    int position = 0;
    for (const DocumentTrack& source : document.tracks()) {
        const QStringList parentPath = source.path.first(source.path.size() - 1);
        Track* const parentTrack = parentPath.isEmpty() ? rootTrack() : tracks.value(parentPath);
        auto added = std::make_unique<PlacedTrack>(source.path.last(), nextFreeTrackId(), parentTrack->id());
        Track* const track = added.get();
        parentTrack->tracks().push_back(std::move(added));
        m_trackCache[track->id()] = track;
        tracks.insert(source.path, track);
        addItems(*track, source.items, trackColor(position++));
    }
}

void StandardTimelineModel::addItems(Track& track, const std::vector<DocumentItem>& items, const QColor& defaultColor)
{
    std::vector<const DocumentItem*> sorted;
    sorted.reserve(items.size());
    for (const DocumentItem& item : items)
        sorted.push_back(&item);
    std::stable_sort(sorted.begin(), sorted.end(),
                     [](const DocumentItem* a, const DocumentItem* b) { return a->start < b->start; });

    track.items().reserve(items.size());
    for (const DocumentItem* const source : sorted) {
        auto item =
            std::make_unique<LabelledItem>(source->label, source->start, static_cast<int>(source->duration),
                                           source->color.isValid() ? source->color : defaultColor, source->isEditable);
        item->setIds(nextFreeItemId(), track.id());
        m_itemCache[item->id()] = item.get();
        track.items().push_back(std::move(item));
    }
}

int StandardTimelineModel::trackCount() const
{
    // The cache holds the root, too.
    return static_cast<int>(m_trackCache.size()) - 1;
}

QString StandardTimelineModel::itemLabel(int itemId) const
{
    const auto* const labelled = dynamic_cast<const LabelledItem*>(item(itemId));
    return labelled ? labelled->label() : QString();
}

void StandardTimelineModel::setItemLabel(int itemId, const QString& label)
{
    auto* const labelled = dynamic_cast<LabelledItem*>(item(itemId));
    if (!labelled || labelled->label() == label)
        return;
    labelled->setLabel(label);
    const QModelIndex row = indexOfTrack(labelled->parentTrackId());
    Q_EMIT dataChanged(row, row.siblingAtColumn(1));
}

void StandardTimelineModel::forgetSubtree(const Track& track)
{
    for (const TrackPtr& child : track.tracks()) {
        forgetSubtree(*child);
        m_trackCache.erase(child->id());
    }
    for (const ItemPtr& item : track.items())
        m_rootTrack.removeCopyItem(item->id());
}

void StandardTimelineModel::removeTrack(int trackId)
{
    const Track* const removed = track(trackId);
    if (removed == rootTrack()) {
        TimelineModel::removeTrack(trackId);
        return;
    }
    const int row = track(removed->parentId())->rowOfTrack(trackId);
    beginRemoveRows(indexOfTrack(removed->parentId()), row, row);
    forgetSubtree(*removed);
    TimelineModel::removeTrack(trackId);
    endRemoveRows();
}

void StandardTimelineModel::copyToClipboard(const QVector<int>& itemIds)
{
    TimelineModel::copyToClipboard(itemIds);
    for (std::size_t i = 0; i < m_clipboard.size(); ++i) {
        const Item& copy = *m_clipboard[i];
        auto labelled =
            std::make_unique<LabelledItem>(itemLabel(itemIds.at(static_cast<qsizetype>(i))), copy.startTime(),
                                           copy.duration(), copy.color(), copy.isEditable());
        labelled->setIds(copy.id(), copy.parentTrackId());
        m_clipboard[i] = std::move(labelled);
    }
}

QString StandardTimelineModel::newTrackName(const Track& parent)
{
    const auto isTaken = [&parent](const QString& name) {
        return std::any_of(parent.tracks().begin(), parent.tracks().end(),
                           [&name](const TrackPtr& sibling) { return sibling->text() == name; });
    };
    QString name = tr("New track");
    for (int number = 2; isTaken(name); ++number)
        name = tr("New track %1").arg(number);
    return name;
}

void StandardTimelineModel::onInsertTrack(const QModelIndex& index)
{
    if (!index.isValid())
        return;
    const int parentId = trackOfIndex(index)->parentId();
    auto added = std::make_unique<Track>(newTrackName(*track(parentId)));
    added->setInsertButton(true);
    added->setRemoveButton(true);
    insertTrack(parentId, index.row() + 1, std::move(added));
}

void StandardTimelineModel::onRemoveTrack(const QModelIndex& index)
{
    if (index.isValid())
        removeTrack(trackOfIndex(index)->id());
}

} // namespace VeskTimeline::Kit
