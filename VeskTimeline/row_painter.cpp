#include "item_index_p.h"
#include "row_painter_p.h"

#include <VeskTimeline/timeline_model.h>
#include <VeskTimeline/timeline_view.h>
#include <VeskTimeline/timeline_view_drag_handler.h>

#include <QPainter>

#include <algorithm>
#include <cstdio>

namespace VeskTimeline {

namespace {

bool canCullItem(const Item& item)
{
    return item.culling() != Item::Culling::None;
}

void reportMissingCopy(int id)
{
    std::fprintf(stderr, "ItemDelegate::paint: cannot find item copy of %d\n", id);
}

} // namespace

void RowPainter::paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index,
                       const Track& track)
{
    const Row row{painter, option, index, track};
    readView(option.rect);
    if (!canCull(row) || !findCopyItems(track)) {
        paintAll(row);
        return;
    }
    for (BarRow* const bars : {&m_bars, &m_covers, &m_selectedCovers})
        bars->begin(m_cell, *painter);
    m_latestCover = {0, -1};
    m_seen.clear();
    m_isAllBars = true;
    // What is painted last hides the others, so it is looked at first.
    std::for_each(m_copyItems.rbegin(), m_copyItems.rend(), [this](const Item* item) { look(*item); });
    if (const ItemIndex* const times = ItemIndex::of(track); hasIndexForWindow(times))
        lookAtWindow(track, *times);
    else
        std::for_each(track.items().rbegin(), track.items().rend(), [this](const ItemPtr& item) { look(*item); });
    paintSeen(row);
}

void RowPainter::readView(const QRect& cell)
{
    m_cell = cell;
    const TimelineViewDragHandler* const dragHandler = m_view.dragHandler();
    // A dragged item is shown where it would land, see ItemDelegate::paintDragItems().
    const bool isDragging =
        dragHandler && !dragHandler->dragItemIds().isEmpty() && m_view.timelineModel()->isEditable();
    m_draggedIds = isDragging ? &m_dragIds.of(dragHandler->dragItemIds()) : nullptr;
    m_hasSelection = m_view.hasSelectedItems();
    m_axis = ViewAxis(m_view.header());
}

bool RowPainter::canCull(const Row& row) const
{
    constexpr int leastHeight = 16;
    if (!m_view.header() || m_cell.height() < leastHeight || m_cell.isEmpty() || !BarRow::isSuitable(*row.painter))
        return false;
    if (const ItemIndex* const index = ItemIndex::of(row.track))
        return !index->has(Item::Culling::None);
    const Items& items = row.track.items();
    return std::all_of(items.begin(), items.end(), [](const ItemPtr& item) { return canCullItem(*item); });
}

// False when one of them is to be painted by itself.
bool RowPainter::findCopyItems(const Track& track)
{
    m_copyItems.clear();
    std::vector<int> missingIds;
    const TimelineModel& model = *m_view.timelineModel();
    for (const int id : track.copyItemIds()) {
        try {
            m_copyItems.push_back(model.item(id));
        } catch (...) {
            missingIds.push_back(id);
            continue;
        }
        if (!canCullItem(*m_copyItems.back()))
            return false;
    }
    for (const int id : missingIds)
        reportMissingCopy(id);
    return true;
}

void RowPainter::paintAll(const Row& row) const
{
    QStyleOptionViewItem option(row.option);
    for (const ItemPtr& item : row.track.items())
        paintItem(row, *item, &option);
    for (const int id : row.track.copyItemIds()) {
        try {
            paintItem(row, *std::as_const(*m_view.timelineModel()).item(id), &option);
        } catch (...) {
            reportMissingCopy(id);
        }
    }
}

// Copying options takes longer than painting a bar, so that `option` is one for all items.
void RowPainter::paintItem(const Row& row, const Item& item, QStyleOptionViewItem* option) const
{
    if (isDragged(item))
        return;
    option->rect = m_cell;
    option->rect.setLeft(std::max(m_axis.toPixel(item.startTime()), m_cell.left()));
    option->rect.setRight(std::min(m_axis.toPixel(item.startTime() + item.duration()), m_cell.right()) - 1);
    item.paint(row.painter, *option, row.index, m_hasSelection && m_view.isItemSelected(item.id()));
}

void RowPainter::paintSeen(const Row& row)
{
    if (m_isAllBars) {
        m_bars.paint(row.painter);
        return;
    }
    QStyleOptionViewItem option(row.option);
    std::for_each(m_seen.rbegin(), m_seen.rend(),
                  [this, &row, &option](const Item* item) { paintItem(row, *item, &option); });
}

} // namespace VeskTimeline
