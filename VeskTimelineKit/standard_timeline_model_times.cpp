#include "standard_timeline_model_p.h"

#include <algorithm>

namespace VeskTimeline::Kit {

// The item itself when it is no piece.
QVector<int> StandardTimelineModel::piecesOf(int itemId) const
{
    const LabelledItem* const labelled = labelledItem(itemId);
    if (!labelled || !labelled->piece().isPiece())
        return {itemId};
    QVector<int> ids;
    for (const ItemPtr& other : track(labelled->parentTrackId())->items()) {
        const auto* const piece = dynamic_cast<const LabelledItem*>(other.get());
        if (piece && piece->piece().whole == labelled->piece().whole)
            ids.append(piece->id());
    }
    return ids;
}

ItemTimes StandardTimelineModel::itemTimes(int itemId) const
{
    const QVector<int> pieces = piecesOf(itemId);
    const Item* const first = item(pieces.first());
    ItemTimes times{itemId, first->startTime(), first->duration()};
    for (const int id : pieces.sliced(1))
        times.duration += item(id)->duration();
    return times;
}

// Without the later ones of pieces that belong together, unless they are told apart by their tracks.
QVector<int> StandardTimelineModel::withoutFurtherPieces(const QVector<int>& itemIds) const
{
    QVector<int> kept;
    QSet<int> known;
    QSet<int> wholes;
    for (const int id : itemIds) {
        const LabelledItem* const labelled = labelledItem(id);
        const int whole = labelled ? labelled->piece().whole : -1;
        if (known.contains(id) || wholes.contains(whole))
            continue;
        known.insert(id);
        if (whole >= 0)
            wholes.insert(whole);
        kept.append(id);
    }
    return kept;
}

QVector<int> StandardTimelineModel::retimeOne(const ItemTimes& times)
{
    Item* const retimed = item(times.itemId);
    const qint64 length = std::max<qint64>(times.duration, DocumentItem::openEnded);
    const ItemState state = d->contents.itemState(times.itemId);
    if (length <= DocumentItem::longestBar && !state.details.piece.isPiece()) {
        recordItem(*retimed, [&] { d->contents.setTimes(*retimed, times.start, static_cast<int>(length)); });
        return {times.itemId};
    }
    const ItemTimes before = itemTimes(times.itemId);
    const QVector<int> pieces = piecesOf(times.itemId);
    if (before.start == times.start && before.duration == length)
        return pieces;
    const DocumentItem whole{state.details.label,
                             times.start,
                             length,
                             state.details.color,
                             state.details.isEditable,
                             state.details.description,
                             state.details.attributes};
    QVector<int> ids;
    removeFromModel(pieces);
    putNewItems(state.trackId, makeItems(*track(state.trackId), {whole}, &ids));
    return ids;
}

void StandardTimelineModel::retimeItem(int itemId, qint64 start, qint64 duration)
{
    retimeItems({{itemId, start, duration}});
}

QVector<int> StandardTimelineModel::retimeItems(const QVector<ItemTimes>& times)
{
    bool isResized = false;
    QVector<int> ids;
    for (const ItemTimes& one : times) {
        isResized |= itemTimes(one.itemId).duration != std::max<qint64>(one.duration, DocumentItem::openEnded);
        ids.append(one.itemId);
    }
    const QVector<int> separate = withoutFurtherPieces(ids);
    const QSet<int> taken(separate.begin(), separate.end());
    // Named here: a long item's new pieces are no items that were resized.
    const auto count = static_cast<int>(separate.size());
    const QString resize = count == 1 ? tr("Resize item") : tr("Resize %n items", nullptr, count);
    const QString move = count == 1 ? tr("Move item") : tr("Move %n items", nullptr, count);
    StepScope scope(*d, StepKind::Other, isResized ? resize : move);
    QVector<int> result;
    for (const ItemTimes& one : times) {
        if (taken.contains(one.itemId))
            result.append(retimeOne(one));
    }
    return result;
}

// Items without a colour of their own show that of the track.
void StandardTimelineModel::settle(Item& item, const Track& track)
{
    auto& labelled = dynamic_cast<LabelledItem&>(item);
    labelled.setIds(item.id(), track.id());
    if (!labelled.hasOwnColor())
        item.setColor(ModelContents::colorOf(track));
}

void StandardTimelineModel::moveItemsToTrack(const QVector<int>& itemIds, int trackId)
{
    const Track& target = *track(trackId);
    QVector<int> ids;
    QVector<int> foreign;
    for (const int id : withoutFurtherPieces(itemIds)) {
        for (const int piece : piecesOf(id))
            (labelledItem(piece) ? ids : foreign).append(piece);
    }
    StepScope scope(*d, StepKind::Move);
    for (const auto& [fromId, group] : itemsByTrack(*this, ids)) {
        if (fromId == trackId)
            continue;
        dropCopies(*track(fromId), QSet<int>(group.begin(), group.end()), &target);
        Positions from = positionsOf(fromId, group);
        std::vector<const Item*> moved;
        moved.reserve(from.size());
        for (const int position : from)
            moved.push_back(track(fromId)->items()[static_cast<std::size_t>(position)].get());
        for (const Item* const item : moved)
            d->step->noteItem(item->id());
        Positions to = positionsBehind(target.items(), moved);
        d->perform(std::make_unique<ItemsMove>(fromId, std::move(from), trackId, std::move(to)));
    }
    // A subclass may have put items of another kind in.
    for (const int id : std::as_const(foreign)) {
        if (item(id)->parentTrackId() != trackId)
            moveItemToTrack(id, trackId, item(id)->startTime());
    }
}

} // namespace VeskTimeline::Kit
