#include "item_end_p.h"
#include "item_index_p.h"
#include "row_painter_p.h"

#include <VeskTimeline/timeline_model.h>
#include <VeskTimeline/timeline_view.h>

#include <algorithm>
#include <limits>

namespace VeskTimeline {

namespace {

// Nothing of an item that is so many pixels away from the row is seen, but for the mark at the row's edge.
constexpr int outOfSight = 16;
// An open-ended item is painted as if it ended so many milliseconds before it starts.
constexpr qint64 justBefore = -openEnded;
// Of bars of Item::Culling::Covered.
constexpr int leastWidth = 3;

bool isOpenEndedAt(const ItemIndex& index, std::size_t position)
{
    return index.endAt(position) == std::numeric_limits<qint64>::max();
}

} // namespace

Bar RowPainter::barAt(qint64 startTime, qint64 endTime, bool isSelected) const
{
    const int left = std::max(m_axis.toPixel(startTime), m_cell.left());
    const int right = std::min(m_axis.toPixel(endTime), m_cell.right());
    const auto clamped = [this](int x) {
        return std::clamp(x, m_cell.left() - outOfSight, m_cell.right() + outOfSight);
    };
    // An item that ends left of where it begins is painted with its sides exchanged.
    return {clamped(std::min(left, right)), clamped(std::max(left, right)), isSelected};
}

// What a bar outside the window leaves of itself.
Bar RowPainter::markAt(Side side, bool isSelected) const
{
    return side == Side::Left ? Bar{m_cell.left() - outOfSight, m_cell.left(), isSelected}
                              : Bar{m_cell.right(), m_cell.right() + outOfSight, isSelected};
}

bool RowPainter::isInside(const Item& item) const
{
    return m_axis.toPixel(item.startTime()) <= m_cell.right() + outOfSight &&
           (item.duration() < 0 || m_axis.toPixel(item.startTime() + item.duration()) >= m_cell.left() - outOfSight);
}

void RowPainter::look(const Item& item)
{
    if (isDragged(item))
        return;
    if (item.culling() == Item::Culling::Bar) {
        lookAtBar(item);
    } else if (isInside(item)) {
        if (item.culling() == Item::Culling::Covered && item.duration() > 0)
            lookAtCovered(item);
        else
            m_seen.push_back(&item);
        m_isAllBars = false;
    }
}

void RowPainter::lookAtBar(const Item& item)
{
    const Bar bar =
        barAt(item.startTime(), item.startTime() + item.duration(), m_hasSelection && m_view.isItemSelected(item.id()));
    if (m_bars.isHidden(bar))
        return;
    m_seen.push_back(&item);
    // Colours need not be plain numbers; those that do not show are not asked for.
    if (!m_bars.hasInside(bar)) {
        m_bars.addOutline(bar);
        return;
    }
    const QColor color = item.color();
    if (color.alpha() == 255)
        m_bars.add(bar, color.rgba64().premultiplied().toArgb32());
    else
        m_bars.addOutline(bar);
    m_isAllBars = m_isAllBars && color.alpha() == 255;
}

// The columns that such an item may reach, the first and the last one.
std::pair<int, int> RowPainter::columnsOf(qint64 startTime, qint64 endTime) const
{
    const int left = std::max(m_axis.toPixel(startTime), m_cell.left());
    const int right = std::min(m_axis.toPixel(endTime), m_cell.right()) - 1;
    return {left, std::max(left + leastWidth - 1, right)};
}

bool RowPainter::isCovered(std::pair<int, int> columns, bool isSelected) const
{
    if (columns == m_latestCover && (m_isLatestCoverSelected || !isSelected))
        return true;
    return (isSelected ? m_selectedCovers : m_covers).isHidden({columns.first, columns.second, isSelected});
}

void RowPainter::lookAtCovered(const Item& item)
{
    const bool isSelected = m_hasSelection && m_view.isItemSelected(item.id());
    const auto columns = columnsOf(item.startTime(), item.startTime() + item.duration());
    if (isCovered(columns, isSelected))
        return;
    m_seen.push_back(&item);
    // At the row's edges a bar is as narrow as what is left of it.
    const bool isNarrow = columns.second < columns.first + leastWidth;
    const bool isCut = columns.first <= m_cell.left() || columns.second + 2 >= m_cell.right();
    if ((isNarrow && isCut) || item.color().alpha() != 255)
        return;
    m_latestCover = columns;
    m_isLatestCoverSelected = isSelected;
    // The corners of the outline are not filled.
    const Bar inner{columns.first + 1, columns.second - 1, false};
    m_covers.addOutline(inner);
    if (isSelected)
        m_selectedCovers.addOutline(inner);
}

// As lookInside() for a row without bars.
void RowPainter::lookAtCovered(const Items& items, const ItemIndex& index, Positions inside)
{
    for (std::size_t position = inside.end; position > inside.begin; --position) {
        const qint64 start = index.startAt(position - 1);
        const qint64 end = index.endAt(position - 1);
        // Items lie scattered in memory: the times suffice for most.
        const bool isBar = start < end && !isOpenEndedAt(index, position - 1);
        if (isBar && isCovered(columnsOf(start, end), isSelectedAt(index, position - 1)))
            continue;
        look(*items[position - 1]);
    }
}

// Times and pixels have to go the same way, which they do not around the time that stands for none.
bool RowPainter::hasIndexForWindow(const ItemIndex* index) const
{
    return index && m_cell.left() >= 0 && m_axis.isUsable() && m_axis.toTime(m_cell.left() - 2 * outOfSight) > 0;
}

void RowPainter::lookAtWindow(const Track& track, const ItemIndex& index)
{
    const Items& items = track.items();
    const std::size_t behind = index.firstBehind(m_axis.toTime(m_cell.right() + 2 * outOfSight));
    const std::size_t inside = std::min(index.firstFrom(m_axis.toTime(m_cell.left() - 2 * outOfSight)), behind);
    findSelected(track, index);
    lookOutside(track, index, {behind, items.size()}, Side::Right);
    lookInside(items, index, {inside, behind});
    lookBefore(track, index, inside);
}

// The positions are gone through from the end. What lies in columns that are taken is passed over, a block of the index
// at once or as much of it as begins in the column of the item at hand, without going to the items themselves.
void RowPainter::lookInside(const Items& items, const ItemIndex& index, Positions inside)
{
    const bool hasBars = index.has(Item::Culling::Bar);
    const bool hasCovered = index.has(Item::Culling::Covered);
    if (hasCovered && !hasBars) {
        lookAtCovered(items, index, inside);
        return;
    }
    // Bars hide bars only.
    if (hasCovered || index.has(Item::Culling::Outside)) {
        for (std::size_t position = inside.end; position > inside.begin; --position)
            look(*items[position - 1]);
        return;
    }
    bool wasHidden = true;
    for (std::size_t position = inside.end; position > inside.begin;) {
        const std::size_t first = std::max(ItemIndex::blockBegin(position - 1), inside.begin);
        if (wasHidden) {
            const std::size_t seen = firstHidden(index, {first, position});
            if (seen < position) {
                position = seen;
                continue;
            }
        }
        --position;
        const Bar bar = barAt(index, position, isSelectedAt(index, position));
        wasHidden = m_bars.isHidden(bar);
        if (wasHidden)
            continue;
        // Items lie scattered in memory: of one that shows nothing but its outline the times suffice.
        const bool isKnown = !m_draggedIds && !isOpenEndedAt(index, position);
        if (isKnown && !m_bars.hasInside(bar)) {
            m_seen.push_back(items[position].get());
            m_bars.addOutline(bar);
        } else {
            look(*items[position]);
        }
    }
}

// Of positions in one block, the first of those at their end that are hidden for certain; the end for none.
std::size_t RowPainter::firstHidden(const ItemIndex& index, Positions positions) const
{
    const qint64 latestEnd = index.latestEndInBlock(positions.begin);
    const bool isSelected = mayBeSelected(positions);
    if (m_bars.isHidden(barAt(index.startAt(positions.begin) - justBefore, latestEnd, isSelected)))
        return positions.begin;
    const int column = m_axis.toPixel(index.startAt(positions.end - 1) - justBefore);
    if (!m_bars.isHidden(barAt(index.startAt(positions.end - 1) - justBefore, latestEnd, isSelected)))
        return positions.end;
    while (positions.begin < positions.end) {
        const std::size_t middle = (positions.begin + positions.end) / 2;
        if (m_axis.toPixel(index.startAt(middle) - justBefore) < column)
            positions.begin = middle + 1;
        else
            positions.end = middle;
    }
    return positions.begin;
}

// A bar whose item is not looked at: as far as it can reach.
Bar RowPainter::barAt(const ItemIndex& index, std::size_t position, bool isSelected) const
{
    const qint64 start = index.startAt(position);
    return isOpenEndedAt(index, position) ? barAt(start - justBefore, start, isSelected)
                                          : barAt(start, index.endAt(position), isSelected);
}

// Items that begin before the window: those that last into it, and between them those that do not.
void RowPainter::lookBefore(const Track& track, const ItemIndex& index, std::size_t end)
{
    const qint64 from = m_axis.toTime(m_cell.left() - outOfSight);
    m_reaching.clear();
    for (std::size_t position = index.firstReaching(from, 0, end); position < end;
         position = index.firstReaching(from, position + 1, end))
        m_reaching.push_back(position);
    while (!m_reaching.empty()) {
        lookOutside(track, index, {m_reaching.back() + 1, end}, Side::Left);
        end = m_reaching.back();
        look(*track.items()[end]);
        m_reaching.pop_back();
    }
    lookOutside(track, index, {0, end}, Side::Left);
}

void RowPainter::lookOutside(const Track& track, const ItemIndex& index, Positions outside, Side side)
{
    if (!index.has(Item::Culling::Bar))
        return;
    std::size_t position = outside.end;
    while (position > outside.begin && !m_bars.isHidden(markAt(side, m_hasSelection))) {
        // Once an outline is there, only the wider one of a selected item reaches beyond it.
        if (m_bars.isHidden(markAt(side, false))) {
            position = lastSelected(index, {outside.begin, position});
            if (position == outside.begin)
                return;
        }
        --position;
        look(*track.items()[position]);
    }
}

} // namespace VeskTimeline
