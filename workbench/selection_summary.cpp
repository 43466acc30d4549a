#include "selection_summary.h"

#include <VeskTimelineKit/labelled_item.h>
#include <VeskTimelineKit/standard_timeline_model.h>

#include <algorithm>

namespace Workbench {

using namespace VeskTimeline;
using namespace VeskTimeline::Kit;

namespace {

ItemTimes timesOf(const StandardTimelineModel& model, const LabelledItem& item)
{
    if (item.piece().isPiece())
        return model.itemTimes(item.id());
    return {item.id(), item.startTime(), item.duration()};
}

void addItem(SelectionSummary& summary, const StandardTimelineModel& model, const LabelledItem& item)
{
    const ItemTimes times = timesOf(model, item);
    summary.label.add(item.plainLabel());
    summary.description.add(item.description());
    summary.start.add(times.start);
    summary.end.add(times.duration < 0 ? SelectionSummary::openEnd : times.end());
    summary.duration.add(times.duration);
    summary.color.add(item.hasOwnColor() ? item.color() : QColor());
    summary.shownColor.add(item.color());
    summary.trackId.add(item.parentTrackId());
    summary.isLocked.add(!item.isEditable());
    for (auto entry = item.attributes().begin(); entry != item.attributes().end(); ++entry)
        summary.attributes[entry.key()].add(entry.value());
}

} // namespace

QList<int> knownItems(const StandardTimelineModel& model, const QList<int>& itemIds)
{
    QList<int> known;
    std::copy_if(itemIds.begin(), itemIds.end(), std::back_inserter(known),
                 [&model](int id) { return model.hasItem(id); });
    return known;
}

SelectionSummary summarise(const StandardTimelineModel& model, const QList<int>& itemIds)
{
    SelectionSummary summary;
    summary.ids = model.withoutFurtherPieces(knownItems(model, itemIds));
    for (const int id : std::as_const(summary.ids)) {
        if (const auto* const item = dynamic_cast<const LabelledItem*>(model.item(id)))
            addItem(summary, model, *item);
    }
    for (Common<QString>& values : summary.attributes) {
        if (values.count() != summary.ids.size())
            values.setMixed();
    }
    return summary;
}

} // namespace Workbench
