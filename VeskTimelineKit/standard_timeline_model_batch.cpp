#include "standard_timeline_model_p.h"

namespace VeskTimeline::Kit {

void StandardTimelineModel::beginItemChanges(int count)
{
    if (d->batchDepth++ == 0)
        d->isBatching = count > fewItems;
}

void StandardTimelineModel::endItemChanges()
{
    if (d->batchDepth == 0 || --d->batchDepth > 0)
        return;
    d->isBatching = false;
    performBatch();
}

// What is asked of an item may depend on what has been asked of it before.
void StandardTimelineModel::performBatchBefore(StepKind kind, int itemId)
{
    if (d->isBatching && (d->batch.kind != kind || d->batch.itemIds.contains(itemId)))
        performBatch();
}

// @return false: it has to be done at once
bool StandardTimelineModel::defer(StepKind kind, const Item& item)
{
    if (!d->isBatching || d->isUnrecorded || d->step || !dynamic_cast<const LabelledItem*>(&item))
        return false;
    d->batch.kind = kind;
    d->batch.itemIds.insert(item.id());
    return true;
}

bool StandardTimelineModel::deferRemoval(const Item& item)
{
    if (!defer(StepKind::Delete, item))
        return false;
    d->batch.removed.append(item.id());
    return true;
}

bool StandardTimelineModel::deferMove(const Item& item, const ItemTarget& target)
{
    if (!defer(StepKind::Move, item))
        return false;
    d->batch.targets.push_back(target);
    d->batch.trackIds.insert(item.parentTrackId());
    if (item.parentTrackId() != target.trackId)
        d->batch.transfers[{item.parentTrackId(), target.trackId}].insert(item.id());
    return true;
}

void StandardTimelineModel::performBatch()
{
    if (d->batch.itemIds.isEmpty())
        return;
    const ItemBatch batch = std::exchange(d->batch, {});
    StepScope scope(*d, batch.kind);
    scope.joinGesture();
    if (batch.kind == StepKind::Delete) {
        removeFromModel(batch.removed);
        return;
    }
    for (const auto& [tracks, itemIds] : batch.transfers)
        dropCopies(*track(tracks.first), itemIds, track(tracks.second));
    rearrange(batch.trackIds, batch.targets);
}

void StandardTimelineModel::rearrange(const QSet<int>& trackIds, const std::vector<ItemTarget>& targets)
{
    Rearranged done = d->contents.rearrange(trackIds, targets);
    if (done.changed.isEmpty())
        return;
    for (const int id : std::as_const(done.changed))
        d->step->noteItem(*item(id));
    d->step->add(std::make_unique<ItemsPlacement>(std::move(done.trackIds), std::move(done.former)));
}

} // namespace VeskTimeline::Kit
