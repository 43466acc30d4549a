#include "document_of_tracks_p.h"
#include "standard_timeline_model_p.h"

#include <algorithm>
#include <iterator>

namespace VeskTimeline::Kit {

// Of an item that is no piece, the item itself. Goes once through each track that has pieces among them.
QHash<int, QVector<int>> StandardTimelineModel::piecesOfEach(const QVector<int>& itemIds) const
{
    std::map<int, QHash<int, QVector<int>>> wholes;
    for (const int id : itemIds) {
        const LabelledItem* const labelled = labelledItem(id);
        if (labelled && labelled->piece().isPiece())
            wholes[labelled->parentTrackId()];
    }
    for (auto& [trackId, byWhole] : wholes) {
        for (const ItemPtr& other : track(trackId)->items()) {
            const auto* const piece = dynamic_cast<const LabelledItem*>(other.get());
            if (piece && piece->piece().isPiece())
                byWhole[piece->piece().whole].append(piece->id());
        }
    }
    QHash<int, QVector<int>> pieces;
    pieces.reserve(itemIds.size());
    for (const int id : itemIds) {
        const LabelledItem* const labelled = labelledItem(id);
        const bool isPiece = labelled && labelled->piece().isPiece();
        pieces.insert(id,
                      isPiece ? wholes[labelled->parentTrackId()].value(labelled->piece().whole) : QVector<int>{id});
    }
    return pieces;
}

bool StandardTimelineModel::arePieces(const QVector<int>& itemIds) const
{
    return std::any_of(itemIds.begin(), itemIds.end(), [this](int id) {
        const LabelledItem* const labelled = labelledItem(id);
        return labelled && labelled->piece().isPiece();
    });
}

QVector<int> StandardTimelineModel::withAllPieces(const QVector<int>& itemIds) const
{
    if (!arePieces(itemIds))
        return itemIds;
    const QHash<int, QVector<int>> pieces = piecesOfEach(itemIds);
    QVector<int> all;
    all.reserve(itemIds.size());
    for (const int id : itemIds)
        all += pieces.value(id);
    return all;
}

ItemTimes StandardTimelineModel::timesOf(int itemId, const QVector<int>& pieces) const
{
    const Item* const first = item(pieces.first());
    ItemTimes times{itemId, first->startTime(), first->duration()};
    for (const int id : pieces.sliced(1))
        times.duration += item(id)->duration();
    return times;
}

ItemTimes StandardTimelineModel::itemTimes(int itemId) const
{
    return timesOf(itemId, piecesOf(itemId));
}

DocumentItem StandardTimelineModel::documentItem(int itemId) const
{
    const ItemTimes times = itemTimes(itemId);
    DocumentItem result = documentItemOf(*item(itemId));
    result.start = times.start;
    result.duration = times.duration;
    return result;
}

// Without the later ones of pieces that belong together, unless they are told apart by their tracks.
QVector<int> StandardTimelineModel::withoutFurtherPieces(const QVector<int>& itemIds) const
{
    QVector<int> kept;
    kept.reserve(itemIds.size());
    QSet<int> known;
    known.reserve(itemIds.size());
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

// What neither comes in pieces nor will.
bool StandardTimelineModel::isBar(const ItemTimes& times) const
{
    const LabelledItem* const labelled = labelledItem(times.itemId);
    return times.duration <= DocumentItem::longestBar && !(labelled && labelled->piece().isPiece());
}

void StandardTimelineModel::retimeBars(const QVector<ItemTimes>& times)
{
    QSet<int> trackIds;
    std::vector<ItemTarget> targets;
    for (const ItemTimes& one : times) {
        Item& retimed = *item(one.itemId);
        const auto length = static_cast<int>(std::max<qint64>(one.duration, DocumentItem::openEnded));
        if (times.size() <= fewItems || !labelledItem(one.itemId)) {
            recordItem(retimed, [&] { d->contents.setTimes(retimed, one.start, length); });
        } else if (one.start != retimed.startTime() || length != retimed.duration()) {
            const Side side = one.start == retimed.startTime() ? Side::WhereItIs : Side::Behind;
            targets.push_back({one.itemId, retimed.parentTrackId(), one.start, length, side});
            trackIds.insert(retimed.parentTrackId());
        }
    }
    if (!targets.empty())
        rearrange(trackIds, targets);
}

// @return the ids afterwards, by those that stood for them
QHash<int, QVector<int>> StandardTimelineModel::retimeWholes(const QVector<ItemTimes>& times)
{
    QVector<int> wholeIds;
    for (const ItemTimes& one : times)
        wholeIds.append(one.itemId);
    QHash<int, QVector<int>> ids = piecesOfEach(wholeIds);
    QVector<int> removed;
    std::map<int, std::vector<std::pair<int, DocumentItem>>> added;
    for (const ItemTimes& one : times) {
        const qint64 length = std::max<qint64>(one.duration, DocumentItem::openEnded);
        const QVector<int>& pieces = ids[one.itemId];
        const ItemTimes before = timesOf(one.itemId, pieces);
        if (before.start == one.start && before.duration == length)
            continue;
        DocumentItem whole = documentItemOf(*item(one.itemId));
        whole.start = one.start;
        whole.duration = length;
        added[item(one.itemId)->parentTrackId()].emplace_back(one.itemId, std::move(whole));
        removed += pieces;
    }
    removeFromModel(removed);
    for (const auto& [trackId, wholes] : added) {
        Items items;
        for (const auto& [id, whole] : wholes) {
            QVector<int> newIds;
            Items pieces = makeItems(*track(trackId), {whole}, &newIds);
            std::move(pieces.begin(), pieces.end(), std::back_inserter(items));
            ids[id] = newIds;
        }
        std::stable_sort(items.begin(), items.end(), [](const ItemPtr& left, const ItemPtr& right) {
            return left->startTime() < right->startTime();
        });
        putNewItems(trackId, std::move(items));
    }
    return ids;
}

void StandardTimelineModel::retimeItem(int itemId, qint64 start, qint64 duration)
{
    retimeItems({{itemId, start, duration}});
}

QVector<int> StandardTimelineModel::retimeItems(const QVector<ItemTimes>& times)
{
    QVector<int> ids;
    for (const ItemTimes& one : times)
        ids.append(one.itemId);
    const bool hasPieces = arePieces(ids);
    const QHash<int, QVector<int>> pieces = hasPieces ? piecesOfEach(ids) : QHash<int, QVector<int>>();
    const bool isResized = std::any_of(times.begin(), times.end(), [&](const ItemTimes& one) {
        const qint64 length = std::max<qint64>(one.duration, DocumentItem::openEnded);
        const qint64 before =
            hasPieces ? timesOf(one.itemId, pieces.value(one.itemId)).duration : item(one.itemId)->duration();
        return before != length;
    });
    const QVector<int> separate = withoutFurtherPieces(ids);
    QSet<int> left(separate.begin(), separate.end());
    // Named here: a long item's new pieces are no items that were resized.
    const auto count = static_cast<int>(separate.size());
    const QString resize = count == 1 ? tr("Resize item") : tr("Resize %n items", nullptr, count);
    const QString move = count == 1 ? tr("Move item") : tr("Move %n items", nullptr, count);
    StepScope scope(*d, StepKind::Other, isResized ? resize : move);
    QVector<ItemTimes> bars;
    QVector<ItemTimes> wholes;
    for (const ItemTimes& one : times) {
        if (left.remove(one.itemId))
            (isBar(one) ? bars : wholes).append(one);
    }
    retimeBars(bars);
    if (wholes.isEmpty())
        return separate;
    const QHash<int, QVector<int>> newIds = retimeWholes(wholes);
    QVector<int> result;
    for (const int id : separate)
        result += newIds.value(id, {id});
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
    for (const int id : withAllPieces(withoutFurtherPieces(itemIds)))
        (labelledItem(id) ? ids : foreign).append(id);
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
            d->step->noteItem(*item);
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
