#include "standard_timeline_model_p.h"

#include <algorithm>

namespace VeskTimeline::Kit {

namespace {

// Of a name, in the text of an undo step.
QString shortName(const QString& name)
{
    constexpr qsizetype longest = 40;
    const QString line = name.first(std::min(name.size(), 2 * longest)).simplified();
    return line.size() <= longest ? line : line.first(longest) + QChar(0x2026);
}

bool isSelfOrAbove(const Track& track, const Track& other)
{
    return &track == &other || track.hasTrack(other.id(), true);
}

} // namespace

int StandardTimelineModel::addTrack(const QString& name, int parentTrackId)
{
    return insertTrack(parentTrackId, -1, name);
}

int StandardTimelineModel::insertTrack(int parentTrackId, int row, const QString& name)
{
    track(parentTrackId);
    StepScope scope(*d, StepKind::Other, tr("Add track “%1”").arg(shortName(name)));
    return addNewTrack(parentTrackId, row, name, QColor());
}

int StandardTimelineModel::addNewTrack(int parentTrackId, int row, const QString& name, const QColor& color)
{
    const int count = track(parentTrackId)->trackCount();
    const TrackPlace place{parentTrackId, row < 0 || row > count ? count : row};
    const int id = nextFreeTrackId();
    d->perform(std::make_unique<TrackChange>(
        place, std::make_unique<StandardTrack>(TrackDetails{name, color}, id, parentTrackId)));
    return id;
}

void StandardTimelineModel::moveTrack(int trackId, int parentTrackId, int row)
{
    const Track* const moved = track(trackId);
    const Track* const newParent = track(parentTrackId);
    if (isSelfOrAbove(*moved, *newParent))
        throw QStringLiteral("moveTrack: track %1 cannot be moved below track %2").arg(trackId).arg(parentTrackId);
    if (!dynamic_cast<const StandardTrack*>(moved))
        throw QStringLiteral("moveTrack: track %1 is not of this model").arg(trackId);

    const TrackPlace from = d->contents.placeOf(*moved);
    const int last = newParent->trackCount() - (from.parentId == parentTrackId ? 1 : 0);
    const TrackPlace to{parentTrackId, row < 0 || row > last ? last : row};
    if (from.parentId == to.parentId && from.row == to.row)
        return;
    StepScope scope(*d, StepKind::Other, tr("Move track “%1”").arg(shortName(moved->text())));
    const QVector<int> itemIds = moved->itemIds(true, false);
    dropCopies(*track(from.parentId), QSet<int>(itemIds.begin(), itemIds.end()), newParent);
    d->perform(std::make_unique<TrackMove>(trackId, from, to));
}

void StandardTimelineModel::renameTrack(int trackId, const QString& name)
{
    if (!dynamic_cast<const StandardTrack*>(track(trackId)))
        throw QStringLiteral("renameTrack: track %1 is not of this model").arg(trackId);
    TrackDetails details = d->contents.trackDetails(trackId);
    if (details.text == name)
        return;
    StepScope scope(*d, StepKind::Other, tr("Rename track “%1”").arg(shortName(details.text)));
    details.text = name;
    d->perform(std::make_unique<TrackDetailsChange>(trackId, details));
}

QColor StandardTimelineModel::colorOfTrack(int trackId) const
{
    return ModelContents::colorOf(*track(trackId));
}

void StandardTimelineModel::setTrackColor(int trackId, const QColor& color)
{
    if (!dynamic_cast<const StandardTrack*>(track(trackId)))
        throw QStringLiteral("setTrackColor: track %1 is not of this model").arg(trackId);
    TrackDetails details = d->contents.trackDetails(trackId);
    if (details.color == color)
        return;
    StepScope scope(*d, StepKind::Other, tr("Change colour of track “%1”").arg(shortName(details.text)));
    details.color = color;
    d->perform(std::make_unique<TrackDetailsChange>(trackId, details));
}

void StandardTimelineModel::removeTrack(int trackId)
{
    const Track* const removed = track(trackId);
    if (removed == rootTrack()) {
        TimelineModel::removeTrack(trackId);
        return;
    }
    StepScope scope(*d, StepKind::Other, tr("Delete track “%1”").arg(shortName(removed->text())));
    const QVector<int> itemIds = removed->itemIds(true, false);
    dropCopies(*track(removed->parentId()), QSet<int>(itemIds.begin(), itemIds.end()), nullptr);
    d->perform(std::make_unique<TrackChange>(d->contents.placeOf(*removed)));
}

void StandardTimelineModel::setCopyItemIds(int trackId, const QSet<int>& itemIds)
{
    const Track* const changed = track(trackId);
    for (const int id : itemIds) {
        if (!isSelfOrAbove(*changed, *track(item(id)->parentTrackId())))
            throw QStringLiteral("setCopyItemIds: item %1 is not below track %2").arg(id).arg(trackId);
    }
    if (changed->copyItemIds() == itemIds)
        return;
    StepScope scope(*d, StepKind::Other, tr("Change copies on track “%1”").arg(shortName(changed->text())));
    d->perform(std::make_unique<CopyItemsChange>(trackId, itemIds));
}

// Ids of items that leave a track must not stay behind on those above it: looking them up there would fail.
void StandardTimelineModel::dropCopies(const Track& from, const QSet<int>& itemIds, const Track* stillBelow)
{
    for (const Track* above = &from;; above = track(above->parentId())) {
        const bool isKept = stillBelow && isSelfOrAbove(*above, *stillBelow);
        if (!isKept && above->copyItemIds().intersects(itemIds)) {
            QSet<int> others = above->copyItemIds();
            d->perform(std::make_unique<CopyItemsChange>(above->id(), others.subtract(itemIds)));
        }
        if (above == rootTrack())
            return;
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
    insertTrack(parentId, index.row() + 1, newTrackName(*track(parentId)));
}

void StandardTimelineModel::onRemoveTrack(const QModelIndex& index)
{
    if (index.isValid())
        removeTrack(trackOfIndex(index)->id());
}

} // namespace VeskTimeline::Kit
