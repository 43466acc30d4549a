#include "bar_row_p.h"
#include "ghost_painter_p.h"
#include "view_axis_p.h"

#include <VeskTimeline/timeline_model.h>
#include <VeskTimeline/timeline_view.h>
#include <VeskTimeline/timeline_view_drag_handler.h>

#include <QHash>
#include <QPainter>
#include <QStyleOptionViewItem>

#include <algorithm>
#include <limits>

namespace VeskTimeline {

namespace {

// How far beside its rectangle an item may paint, and more.
constexpr int reachOutside = 16;

bool isOpaqueBar(const Item& item)
{
    return item.culling() == Item::Culling::Bar && item.color().alpha() == 255;
}

} // namespace

void GhostPainter::paint(QPainter* painter, const QRect& clip)
{
    collect();
    if (BarRow::isSuitable(*painter))
        removeUnseen(clip);
    for (const Ghost& ghost : m_ghosts) {
        QStyleOptionViewItem option;
        option.rect = ghost.rect;
        ghost.item->paint(painter, option, m_rows[ghost.row].cell, ghost.isSelected);
    }
}

void GhostPainter::collect()
{
    m_ghosts.clear();
    m_rows.clear();
    const TimelineViewDragHandler& handler = *m_view.dragHandler();
    const TimelineModel& model = *m_view.timelineModel();
    const ViewAxis axis(m_view.header());
    const QPoint delta(handler.deltaX(), handler.deltaY());
    QHash<int, std::size_t> rows;
    try {
        for (const int id : handler.dragItemIds()) {
            const Item& item = *model.item(id);
            const qint64 end = item.startTime() + item.duration();
            if (end < m_view.currentTime())
                continue;
            if (item.startTime() > m_view.endTime())
                return;
            auto row = rows.constFind(item.parentTrackId());
            if (row == rows.constEnd())
                row = rows.insert(item.parentTrackId(), rowOf(item.parentTrackId()));
            const QRect& rect = m_rows[*row].rect;
            // A row inside a collapsed one has no place to show its items at.
            if (!rect.isValid())
                continue;
            const int left = axis.toPixel(item.startTime()) + delta.x();
            const int right = axis.toPixel(end) + delta.x();
            m_ghosts.push_back({&item, *row,
                                QRect(left, rect.top() + delta.y(), right - left - 1, rect.bottom() - rect.top()),
                                m_view.isItemSelected(id)});
        }
    } catch (...) {
        // An item that has gone ends the painting of those behind it, too.
    }
}

std::size_t GhostPainter::rowOf(int trackId)
{
    const QModelIndex cell = m_view.indexOfTrackRow(trackId, 1);
    m_rows.push_back({cell, m_view.visualRect(cell)});
    return m_rows.size() - 1;
}

void GhostPainter::removeUnseen(const QRect& clip)
{
    const auto behindSeen =
        std::remove_if(m_ghosts.begin(), m_ghosts.end(), [&](const Ghost& ghost) { return !isInSight(ghost, clip); });
    m_ghosts.erase(behindSeen, m_ghosts.end());
    m_rightEnds.assign(2 * m_rows.size() * static_cast<std::size_t>(clip.width()), std::numeric_limits<int>::min());
    // From the last one on: what is painted later hides.
    const auto firstSeen =
        std::remove_if(m_ghosts.rbegin(), m_ghosts.rend(), [&](const Ghost& ghost) { return isHidden(ghost, clip); });
    m_ghosts.erase(m_ghosts.begin(), firstSeen.base());
}

bool GhostPainter::isInSight(const Ghost& ghost, const QRect& clip) const
{
    const Item::Culling culling = ghost.item->culling();
    const bool isOpenEnded = ghost.item->duration() < 0;
    if (culling == Item::Culling::None || (culling == Item::Culling::Outside && isOpenEnded))
        return true;
    const QRect reached = ghost.rect.normalized().adjusted(-reachOutside, -reachOutside, reachOutside, reachOutside);
    return reached.intersects(clip);
}

bool GhostPainter::isHidden(const Ghost& ghost, const QRect& clip)
{
    if (ghost.item->culling() != Item::Culling::Bar)
        return false;
    const int left = ghost.rect.left();
    const int right = left + ghost.rect.width();
    if (left < clip.left() || left > clip.right())
        return false;
    const std::size_t look = 2 * ghost.row + (ghost.isSelected ? 1 : 0);
    // The corners of outlines differ with the length and the direction, so that only the same rectangle hides wholly.
    int& other =
        m_rightEnds[look * static_cast<std::size_t>(clip.width()) + static_cast<std::size_t>(left - clip.left())];
    if (other == right)
        return true;
    if (isOpaqueBar(*ghost.item))
        other = right;
    return false;
}

} // namespace VeskTimeline
