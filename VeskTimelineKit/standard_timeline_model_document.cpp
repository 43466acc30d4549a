#include "background_disposal_p.h"
#include "document_of_tracks_p.h"
#include "item_maker_p.h"
#include "model_tree_p.h"
#include "standard_timeline_model_p.h"

#include <algorithm>

namespace VeskTimeline::Kit {

Items StandardTimelineModel::makeItems(const Track& track, const std::vector<DocumentItem>& sources, QVector<int>* ids)
{
    return ItemMaker(m_currentItemId, d->nextWhole).make(track, sources, ids);
}

void StandardTimelineModel::setDocument(const Document& document)
{
    setDocument(PreparedDocument(document));
}

void StandardTimelineModel::setDocument(PreparedDocument&& document)
{
    Q_ASSERT(document.m_tree);
    d->gesture.finish();
    d->stack.clear();
    const std::unique_ptr<ModelTree> tree = std::move(document.m_tree);
    beginResetModel();
    m_clipboard.clear();
    std::swap(m_rootTrack.tracks(), tree->tracks);
    std::swap(m_itemCache, tree->itemCache);
    std::swap(m_trackCache, tree->trackCache);
    std::swap(d->spans, tree->spans);
    m_trackCache[m_rootTrack.id()] = &m_rootTrack;
    m_currentTrackId = tree->nextTrackId;
    m_currentItemId = tree->nextItemId;
    d->nextWhole = tree->nextWhole;
    // The root is the library's to fill; documents leave it empty.
    m_rootTrack.clearItems();
    m_rootTrack.clearCopyItemIds();
    endResetModel();
    if (tree->itemCache.size() >= manyItems)
        disposeInBackground(std::move(*tree));
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
