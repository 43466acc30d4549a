#include "standard_timeline_model_p.h"

#include <algorithm>
#include <map>

namespace VeskTimeline::Kit {

namespace {

std::map<int, QVector<int>> byTrack(const TimelineModel& model, const QSet<int>& itemIds)
{
    std::map<int, QVector<int>> groups;
    for (const int id : itemIds)
        groups[model.item(id)->parentTrackId()].append(id);
    return groups;
}

} // namespace

int StandardTimelineModel::addItem(int trackId, const DocumentItem& item)
{
    return addItems(trackId, {item}).first();
}

QVector<int> StandardTimelineModel::addItems(int trackId, const std::vector<DocumentItem>& items)
{
    QVector<int> ids;
    Items added = makeItems(*track(trackId), items, &ids);
    StepScope scope(*d, StepKind::Add);
    putNewItems(trackId, std::move(added));
    return ids;
}

// Behind the items that start at the same time, and themselves in the order given. `items` is sorted.
void StandardTimelineModel::putNewItems(int trackId, Items&& items)
{
    if (items.empty())
        return;
    const Items& own = track(trackId)->items();
    Positions positions;
    positions.reserve(items.size());
    for (const ItemPtr& item : items) {
        const auto behind =
            std::upper_bound(own.begin(), own.end(), item->startTime(),
                             [](qint64 time, const ItemPtr& other) { return time < other->startTime(); });
        positions.push_back(static_cast<int>(behind - own.begin()) + static_cast<int>(positions.size()));
        d->step->noteItem(item->id());
    }
    d->perform(std::make_unique<ItemsChange>(trackId, std::move(positions), std::move(items)));
}

void StandardTimelineModel::removeItem(int itemId)
{
    item(itemId);
    StepScope scope(*d, StepKind::Delete);
    scope.joinGesture();
    removeFromModel({itemId});
}

void StandardTimelineModel::removeItems(const QVector<int>& itemIds)
{
    for (const int id : itemIds)
        item(id);
    StepScope scope(*d, StepKind::Delete);
    removeFromModel(itemIds);
}

void StandardTimelineModel::removeFromModel(const QVector<int>& itemIds)
{
    for (const auto& [trackId, ids] : byTrack(*this, QSet<int>(itemIds.begin(), itemIds.end()))) {
        dropCopies(*track(trackId), QSet<int>(ids.begin(), ids.end()), nullptr);
        Positions positions;
        for (const int id : ids) {
            positions.push_back(d->contents.positionOf(*item(id)));
            d->step->noteItem(id);
        }
        std::sort(positions.begin(), positions.end());
        d->perform(std::make_unique<ItemsChange>(trackId, std::move(positions)));
    }
}

template <typename Body>
void StandardTimelineModel::recordItem(Item& item, const Body& body)
{
    ItemState before = d->contents.itemState(item.id());
    body();
    if (d->contents.itemState(item.id()) == before)
        return;
    d->contents.noteChanged(item, before.trackId);
    d->record(std::make_unique<ItemChange>(item.id(), std::move(before)));
}

bool StandardTimelineModel::isRecorded(const Track& track, const Item& item) const
{
    const auto found = m_itemCache.find(item.id());
    return !d->isUnrecorded && found != m_itemCache.end() && found->second == &item &&
           track.id() == item.parentTrackId();
}

void StandardTimelineModel::setItemStartTime(Track& track, Item& item, qint64 time)
{
    if (!isRecorded(track, item)) {
        TimelineModel::setItemStartTime(track, item, time);
        return;
    }
    StepScope scope(*d, StepKind::Move);
    scope.joinGesture();
    recordItem(item, [&] { TimelineModel::setItemStartTime(track, item, time); });
}

void StandardTimelineModel::setItemDuration(Track& track, Item& item, int duration)
{
    if (!isRecorded(track, item)) {
        TimelineModel::setItemDuration(track, item, duration);
        return;
    }
    StepScope scope(*d, StepKind::Resize);
    scope.joinGesture();
    recordItem(item, [&] { TimelineModel::setItemDuration(track, item, duration); });
}

// The library's own operation, which writes the start time through the virtual one.
void StandardTimelineModel::moveUnrecorded(int itemId, int trackId, qint64 time)
{
    const bool wasUnrecorded = std::exchange(d->isUnrecorded, true);
    try {
        TimelineModel::moveItemToTrack(itemId, trackId, time);
    } catch (...) {
        d->isUnrecorded = wasUnrecorded;
        throw;
    }
    d->isUnrecorded = wasUnrecorded;
}

void StandardTimelineModel::moveItemToTrack(int itemId, int trackId, qint64 time)
{
    Item* const moved = item(itemId);
    const Track* const from = track(moved->parentTrackId());
    const Track* const to = track(trackId);
    StepScope scope(*d, StepKind::Move);
    scope.joinGesture();
    dropCopies(*from, {itemId}, to);
    recordItem(*moved, [&] {
        moveUnrecorded(itemId, trackId, time);
        const auto* const labelled = dynamic_cast<const LabelledItem*>(moved);
        if (labelled && !labelled->hasOwnColor())
            moved->setColor(ModelContents::colorOf(*to));
    });
}

void StandardTimelineModel::retimeItem(int itemId, qint64 start, qint64 duration)
{
    Item* const retimed = item(itemId);
    ItemState state = d->contents.itemState(itemId);
    const bool isResized = duration != state.duration;
    const qint64 length = std::max<qint64>(duration, DocumentItem::openEnded);
    if (length <= DocumentItem::longestBar && !state.details.piece.isPiece()) {
        StepScope scope(*d, isResized ? StepKind::Resize : StepKind::Move);
        recordItem(*retimed, [&] {
            retimed->_setStartTime(start);
            retimed->_setDuration(static_cast<int>(length));
            track(state.trackId)->sort();
        });
        return;
    }
    const DocumentItem whole{state.details.label,
                             start,
                             length,
                             state.details.color,
                             state.details.isEditable,
                             state.details.description,
                             state.details.attributes};
    StepScope scope(*d, StepKind::Other, tr("Resize item"));
    removeFromModel(piecesOf(itemId));
    putNewItems(state.trackId, makeItems(*track(state.trackId), {whole}, nullptr));
}

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

template <typename Body>
void StandardTimelineModel::changeDetails(StepKind kind, const QVector<int>& itemIds, const Body& body)
{
    QVector<int> ids;
    for (const int id : itemIds)
        ids.append(piecesOf(id));
    StepScope scope(*d, kind);
    for (const int id : std::as_const(ids)) {
        const ItemState before = d->contents.itemState(id);
        ItemState after = before;
        body(after.details);
        if (!(after == before))
            d->perform(std::make_unique<ItemChange>(id, std::move(after)));
    }
}

void StandardTimelineModel::setItemLabel(int itemId, const QString& label)
{
    item(itemId);
    changeDetails(StepKind::Rename, {itemId}, [&label](ItemDetails& details) { details.label = label; });
}

void StandardTimelineModel::setItemDescription(int itemId, const QString& description)
{
    item(itemId);
    changeDetails(StepKind::Describe, {itemId},
                  [&description](ItemDetails& details) { details.description = description; });
}

void StandardTimelineModel::setItemAttributes(int itemId, const QMap<QString, QString>& attributes)
{
    item(itemId);
    changeDetails(StepKind::Describe, {itemId},
                  [&attributes](ItemDetails& details) { details.attributes = attributes; });
}

void StandardTimelineModel::setItemsColor(const QVector<int>& itemIds, const QColor& color)
{
    for (const int id : itemIds)
        item(id);
    changeDetails(StepKind::Recolour, itemIds, [&color](ItemDetails& details) { details.color = color; });
}

void StandardTimelineModel::setItemsLocked(const QVector<int>& itemIds, bool isLocked)
{
    for (const int id : itemIds)
        item(id);
    changeDetails(isLocked ? StepKind::Lock : StepKind::Unlock, itemIds,
                  [isLocked](ItemDetails& details) { details.isEditable = !isLocked; });
}

} // namespace VeskTimeline::Kit
