#include "document_bars_p.h"
#include "document_of_tracks_p.h"
#include "standard_timeline_model_p.h"

#include <algorithm>

namespace VeskTimeline::Kit {

std::unique_ptr<LabelledItem> StandardTimelineModel::makeItem(const Track& track, const DocumentItem& source)
{
    const QColor color = source.color.isValid() ? source.color : ModelContents::colorOf(track);
    const auto duration = static_cast<int>(std::max<qint64>(source.duration, DocumentItem::openEnded));
    auto item = std::make_unique<LabelledItem>(source.label, source.start, duration, color, source.isEditable);
    item->setHasOwnColor(source.color.isValid());
    item->setDescription(source.description);
    item->setAttributes(source.attributes);
    return item;
}

// Sorted by start time, with ids in that order; `ids`, if not null, gets them in the order of the sources.
Items StandardTimelineModel::makeItems(const Track& track, const std::vector<DocumentItem>& sources, QVector<int>* ids)
{
    const std::vector<DocumentBar> bars = barsOf(sources, d->nextWhole);
    Items items;
    items.reserve(bars.size());
    if (ids)
        ids->resize(static_cast<qsizetype>(bars.size()));
    for (const DocumentBar& bar : bars) {
        auto item = makeItem(track, sources[bar.item]);
        item->_setStartTime(bar.start);
        item->_setDuration(bar.duration);
        item->setPiece(bar.piece);
        const int id = nextFreeItemId();
        item->setIds(id, track.id());
        if (ids)
            (*ids)[static_cast<qsizetype>(bar.position)] = id;
        items.push_back(std::move(item));
    }
    return items;
}

void StandardTimelineModel::setDocument(const Document& document)
{
    d->gesture.finish();
    d->stack.clear();
    beginResetModel();
    TimelineModel::clear();
    m_clipboard.clear();
    d->nextWhole = 0;
    QHash<QStringList, Track*> tracks;
    for (const DocumentTrack& source : document.tracks()) {
        const QStringList parentPath = source.path.first(source.path.size() - 1);
        Track* const parentTrack = parentPath.isEmpty() ? rootTrack() : tracks.value(parentPath);
        auto added = std::make_unique<StandardTrack>(TrackDetails{source.path.last(), source.color}, nextFreeTrackId(),
                                                     parentTrack->id());
        Track* const track = added.get();
        parentTrack->tracks().push_back(std::move(added));
        m_trackCache[track->id()] = track;
        tracks.insert(source.path, track);
        track->items() = makeItems(*track, source.items, nullptr);
        for (const ItemPtr& item : track->items())
            m_itemCache[item->id()] = item.get();
    }
    endResetModel();
}

int StandardTimelineModel::childNamed(int parentTrackId, const QString& name, const QColor& color)
{
    const Tracks& children = track(parentTrackId)->tracks();
    const auto found = std::find_if(children.begin(), children.end(),
                                    [&name](const TrackPtr& child) { return child->text() == name; });
    return found != children.end() ? (*found)->id() : addNewTrack(parentTrackId, -1, name, color);
}

void StandardTimelineModel::addDocument(const Document& document)
{
    StepScope scope(*d, StepKind::Other, tr("Add %n tracks", nullptr, static_cast<int>(document.tracks().size())));
    QHash<QStringList, int> trackIds{{QStringList(), m_rootTrack.id()}};
    for (const DocumentTrack& source : document.tracks()) {
        const int parentId = trackIds.value(source.path.first(source.path.size() - 1));
        const int trackId = childNamed(parentId, source.path.last(), source.color);
        trackIds.insert(source.path, trackId);
        putNewItems(trackId, makeItems(*track(trackId), source.items, nullptr));
    }
}

Document StandardTimelineModel::document() const
{
    return documentOfTracks(m_rootTrack);
}

} // namespace VeskTimeline::Kit
