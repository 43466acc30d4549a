#include "row_painter_p.h"

#include <VeskTimeline/timeline_model.h>
#include <VeskTimeline/timeline_view.h>
#include <VeskTimeline/timeline_view_drag_handler.h>

#include <QPainter>

#include <algorithm>
#include <cstdio>
#include <typeinfo>

namespace VeskTimeline {

namespace {

constexpr qint64 noTime = -1;

bool isPlain(const Item& item)
{
    return typeid(item) == typeid(Item);
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
    m_bars.begin(m_cell, *painter);
    m_seen.clear();
    m_isAllBars = true;
    // What is painted last hides the others, so it is looked at first.
    std::for_each(m_copyItems.rbegin(), m_copyItems.rend(), [this](const Item* item) { look(*item); });
    std::for_each(track.items().rbegin(), track.items().rend(), [this](const ItemPtr& item) { look(*item); });
    paintSeen(row);
}

void RowPainter::readView(const QRect& cell)
{
    m_cell = cell;
    const TimelineViewDragHandler* const dragHandler = m_view.dragHandler();
    m_draggedIds.clear();
    // A dragged item is shown where it would land, see ItemDelegate::paintDragItems().
    if (dragHandler && m_view.timelineModel()->isEditable())
        m_draggedIds = QSet<int>(dragHandler->dragItemIds().begin(), dragHandler->dragItemIds().end());
    if (const TimelineHeaderView* const header = m_view.header())
        m_mapping = {header->windowStart(), header->windowLength(), header->sectionPosition(1),
                     header->geometry().width()};
}

bool RowPainter::canCull(const Row& row) const
{
    constexpr int leastHeight = 16;
    if (!m_view.header() || m_cell.height() < leastHeight || m_cell.isEmpty() || !BarRow::isSuitable(*row.painter))
        return false;
    return std::all_of(row.track.items().begin(), row.track.items().end(),
                       [](const ItemPtr& item) { return isPlain(*item); });
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
        if (!isPlain(*m_copyItems.back()))
            return false;
    }
    for (const int id : missingIds)
        reportMissingCopy(id);
    return true;
}

void RowPainter::paintAll(const Row& row) const
{
    for (const ItemPtr& item : row.track.items())
        paintItem(row, *item);
    for (const int id : row.track.copyItemIds()) {
        try {
            paintItem(row, *std::as_const(*m_view.timelineModel()).item(id));
        } catch (...) {
            reportMissingCopy(id);
        }
    }
}

void RowPainter::paintItem(const Row& row, const Item& item) const
{
    if (m_draggedIds.contains(item.id()))
        return;
    QStyleOptionViewItem option(row.option);
    option.rect.setLeft(std::max(m_view.toPixel(item.startTime()), m_cell.left()));
    option.rect.setRight(std::min(m_view.toPixel(item.startTime() + item.duration()), m_cell.right()) - 1);
    item.paint(row.painter, option, row.index, m_view.isItemSelected(item.id()));
}

// As TimelineHeaderView::toPixel().
int RowPainter::toPixel(qint64 time) const
{
    return time == noTime ? -1 : m_mapping.toPixel(time);
}

void RowPainter::look(const Item& item)
{
    if (m_draggedIds.contains(item.id()))
        return;
    const int left = std::max(toPixel(item.startTime()), m_cell.left());
    const int right = std::min(toPixel(item.startTime() + item.duration()), m_cell.right());
    // The outlines of far away edges are out of sight, wherever they lie.
    constexpr int outOfSight = 16;
    const auto clamped = [this](int x) {
        return std::clamp(x, m_cell.left() - outOfSight, m_cell.right() + outOfSight);
    };
    // An item that ends left of where it begins is painted with its sides exchanged.
    const Bar bar{clamped(std::min(left, right)), clamped(std::max(left, right)), m_view.isItemSelected(item.id())};
    if (m_bars.isHidden(bar))
        return;
    m_seen.push_back(&item);
    const QColor color = item.color();
    if (color.alpha() == 255)
        m_bars.add(bar, color.rgba64().premultiplied().toArgb32());
    else
        m_isAllBars = false;
}

void RowPainter::paintSeen(const Row& row)
{
    if (m_isAllBars) {
        m_bars.paint(row.painter);
        return;
    }
    std::for_each(m_seen.rbegin(), m_seen.rend(), [this, &row](const Item* item) { paintItem(row, *item); });
}

} // namespace VeskTimeline
