#include "model_tree_p.h"
#include "standard_timeline_model_p.h"

#include <VeskTimelineKit/labelled_item.h>

#include <algorithm>
#include <array>

namespace VeskTimeline::Kit {

namespace {

constexpr std::array<QRgb, 12> trackColors{0xFF4C78A8, 0xFFF58518, 0xFF54A24B, 0xFFE45756, 0xFF72B7B2, 0xFFEECA3B,
                                           0xFFB279A2, 0xFFFF9DA6, 0xFF9D755D, 0xFF8CB369, 0xFF5E6AD2, 0xFFBAB0AC};

} // namespace

StandardTimelineModel::StandardTimelineModel(TimelineView* view, QObject* parent)
    : TimelineModel(view, parent), d(std::make_unique<StandardTimelineModelPrivate>(*this, view))
{
}

StandardTimelineModel::~StandardTimelineModel() = default;

QUndoStack* StandardTimelineModel::undoStack() const
{
    return &d->stack;
}

void StandardTimelineModel::finishGesture()
{
    d->gesture.finish();
}

void StandardTimelineModel::clear()
{
    d->batch = {};
    d->gesture.finish();
    d->stack.clear();
    d->extents.clear();
    TimelineModel::clear();
}

QColor StandardTimelineModel::trackColor(int position)
{
    return QColor::fromRgb(trackColors[static_cast<std::size_t>(position) % trackColors.size()]);
}

int StandardTimelineModel::trackCount() const
{
    // The cache holds the root, too.
    return static_cast<int>(m_trackCache.size()) - 1;
}

int StandardTimelineModel::itemCount() const
{
    return static_cast<int>(m_itemCache.size());
}

bool StandardTimelineModel::hasItem(int itemId) const
{
    return m_itemCache.find(itemId) != m_itemCache.end();
}

template <typename Take>
void StandardTimelineModel::forEachExtent(const Take& take) const
{
    for (const auto& [id, track] : m_trackCache) {
        if (!track->hasItems())
            continue;
        auto known = d->extents.constFind(id);
        if (known == d->extents.cend())
            known = d->extents.insert(id, extentOf(track->items()));
        take(*known);
    }
}

int StandardTimelineModel::documentItemCount() const
{
    int count = 0;
    forEachExtent([&count](const TrackExtent& extent) { count += extent.documentItems; });
    return count;
}

std::optional<TimeSpan> StandardTimelineModel::span() const
{
    std::optional<TimeSpan> span;
    forEachExtent([&span](const TrackExtent& extent) {
        if (!span)
            span = extent.span;
        span->start = std::min(span->start, extent.span.start);
        span->end = std::max(span->end, extent.span.end);
    });
    return span;
}

const LabelledItem* StandardTimelineModel::labelledItem(int itemId) const
{
    return dynamic_cast<const LabelledItem*>(item(itemId));
}

QString StandardTimelineModel::itemLabel(int itemId) const
{
    const LabelledItem* const labelled = labelledItem(itemId);
    return labelled ? labelled->label() : QString();
}

QString StandardTimelineModel::itemDescription(int itemId) const
{
    const LabelledItem* const labelled = labelledItem(itemId);
    return labelled ? labelled->description() : QString();
}

QMap<QString, QString> StandardTimelineModel::itemAttributes(int itemId) const
{
    const LabelledItem* const labelled = labelledItem(itemId);
    return labelled ? labelled->attributes() : QMap<QString, QString>();
}

QString StandardTimelineModel::itemToolTip(int itemId, const TimeFormatter& formatter) const
{
    const LabelledItem* const labelled = labelledItem(itemId);
    if (!labelled)
        return {};
    std::optional<TimeSpan> whole;
    if (labelled->piece().isPiece()) {
        const ItemTimes times = itemTimes(itemId);
        whole = TimeSpan{times.start, times.end()};
    }
    return labelled->toolTip(track(labelled->parentTrackId())->text(), formatter, whole);
}

StandardTimelineModel::OverlapPolicy StandardTimelineModel::overlapPolicy() const
{
    return d->overlapPolicy;
}

void StandardTimelineModel::setOverlapPolicy(OverlapPolicy policy)
{
    d->overlapPolicy = policy;
}

bool StandardTimelineModel::isFree(int trackId, qint64 start, int duration, const QVector<int>& ignoredIds) const
{
    return d->overlapPolicy == AllowOverlaps ||
           !track(trackId)->isItemsBetween(start, start + duration, ignoredIds, true, false, false);
}

bool StandardTimelineModel::canDropItem(const Item& item, int trackId, qint64 start) const
{
    const auto* const labelled = dynamic_cast<const LabelledItem*>(&item);
    if (labelled && labelled->piece().isPiece())
        return false;
    const bool movesAlong = d->view && d->view->isItemSelected(item.id());
    return isFree(trackId, start, item.duration(), movesAlong ? d->view->selectedItemIds() : QVector<int>{item.id()});
}

bool StandardTimelineModel::canMoveItem(const Item& item, qint64 start) const
{
    return canDropItem(item, item.parentTrackId(), start);
}

bool StandardTimelineModel::canResizeItem(const Item& item, qint64 start, int duration) const
{
    const auto* const labelled = dynamic_cast<const LabelledItem*>(&item);
    return !(labelled && labelled->piece().isPiece()) && duration >= minimumDuration() &&
           isFree(item.parentTrackId(), start, duration, {item.id()});
}

} // namespace VeskTimeline::Kit
