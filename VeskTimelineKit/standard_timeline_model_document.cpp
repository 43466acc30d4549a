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
    d->batch = {};
    d->gesture.finish();
    d->stack.clear();
    const std::unique_ptr<ModelTree> tree = std::move(document.m_tree);
    beginResetModel();
    m_clipboard.clear();
    std::swap(m_rootTrack.tracks(), tree->tracks);
    std::swap(m_itemCache, tree->itemCache);
    std::swap(m_trackCache, tree->trackCache);
    std::swap(d->extents, tree->extents);
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

const Track* StandardTimelineModel::childNamed(const Track& parent, const QString& name)
{
    const auto found = std::find_if(parent.tracks().begin(), parent.tracks().end(),
                                    [&name](const TrackPtr& child) { return child->text() == name; });
    return found != parent.tracks().end() ? found->get() : nullptr;
}

void StandardTimelineModel::addDocument(const Document& document)
{
    addDocument(PreparedDocument(document));
}

void StandardTimelineModel::addDocument(PreparedDocument&& document)
{
    Q_ASSERT(document.m_tree);
    const std::unique_ptr<ModelTree> tree = std::move(document.m_tree);
    // Parents come before their children.
    QHash<int, int> newIds{{m_rootTrack.id(), m_rootTrack.id()}};
    int newTracks = 0;
    for (const auto& [id, added] : tree->trackCache) {
        const auto parent = m_trackCache.find(newIds.value(added->parentId()));
        const Track* const same = parent != m_trackCache.end() ? childNamed(*parent->second, added->text()) : nullptr;
        newIds.insert(id, same ? same->id() : nextFreeTrackId());
        newTracks += same ? 0 : 1;
    }
    const QString text = newTracks == 1 ? tr("Add track") : tr("Add %n tracks", nullptr, newTracks);
    StepScope scope(*d, newTracks > 0 ? StepKind::Other : StepKind::Add, text);
    const NewNumbers numbers{newIds, std::exchange(m_currentItemId, m_currentItemId + tree->nextItemId),
                             std::exchange(d->nextWhole, d->nextWhole + tree->nextWhole)};
    addTree(std::move(tree->tracks), numbers);
    if (tree->itemCache.size() >= manyItems)
        disposeInBackground(std::move(*tree));
}

// A track that is in no model yet, and its items, which may come to be on another track of the same id.
void StandardTimelineModel::renumber(Track& added, const NewNumbers& numbers)
{
    auto& standard = dynamic_cast<StandardTrack&>(added);
    standard.setIds(numbers.trackIds.value(added.id()), numbers.trackIds.value(added.parentId()));
    const Track* const existing = ModelContents::findTrack(*this, added.id());
    const QColor color = ModelContents::colorOf(existing ? *existing : added);
    for (const ItemPtr& item : added.items()) {
        auto& labelled = dynamic_cast<LabelledItem&>(*item);
        labelled.setIds(numbers.firstItemId + item->id(), added.id());
        if (!labelled.hasOwnColor())
            labelled.setColor(color);
        ItemPiece piece = labelled.piece();
        if (!piece.isPiece())
            continue;
        piece.whole += numbers.firstWhole;
        labelled.setPiece(piece);
    }
}

void StandardTimelineModel::renumberSubtree(Track& added, const NewNumbers& numbers)
{
    renumber(added, numbers);
    for (const TrackPtr& child : added.tracks())
        renumberSubtree(*child, numbers);
}

// What is new goes in as a whole, with all that is below.
void StandardTimelineModel::addTree(Tracks&& tracks, const NewNumbers& numbers)
{
    for (TrackPtr& added : tracks) {
        if (ModelContents::findTrack(*this, numbers.trackIds.value(added->id()))) {
            renumber(*added, numbers);
            putNewItems(added->id(), std::move(added->items()));
            addTree(std::move(added->tracks()), numbers);
            continue;
        }
        renumberSubtree(*added, numbers);
        const TrackPlace place{added->parentId(), track(added->parentId())->trackCount()};
        d->perform(std::make_unique<TrackChange>(place, std::move(added)));
    }
}

Document StandardTimelineModel::document() const
{
    return documentOfTracks(m_rootTrack);
}

} // namespace VeskTimeline::Kit
