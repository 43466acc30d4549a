#pragma once

// Internal to the library; not installed.

#include "bar_row_p.h"
#include "time_pixel_mapping_p.h"

#include <VeskTimeline/track.h>

#include <QSet>
#include <QStyleOptionViewItem>

#include <vector>

class QModelIndex;
class QPainter;

namespace VeskTimeline {

class TimelineView;

/// Paints the items of one row of a view: the track's own ones in order, over them the copy items in their order.
///
/// The picture is the one that comes out when each item's paint() is called in turn. That is what is done where an item
/// of the row may paint anything anywhere, see Item::Culling, or where the painter is not one whose pixels are known,
/// see BarRow. Otherwise only those items are looked at that can be seen.
class RowPainter
{
public:
    explicit RowPainter(const TimelineView& view) : m_view(view) {}

    /// @param option its rectangle is the row's time cell, to which the painter is clipped. The state of the painter is
    /// not kept.
    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index, const Track& track);

private:
    struct Seen
    {
        const Item* item;
        Bar bar;
    };
    struct Row
    {
        QPainter* painter;
        const QStyleOptionViewItem& option;
        const QModelIndex& index;
        const Track& track;
    };

    void readView(const QRect& cell);
    bool findCopyItems(const Track& track);
    bool canCull(const Row& row) const;
    void paintAll(const Row& row) const;
    void paintItem(const Row& row, const Item& item) const;
    int toPixel(qint64 time) const;
    void look(const Item& item);
    void paintSeen(const Row& row);

    const TimelineView& m_view;
    TimePixelMapping m_mapping{0, 1, 0, 0};
    QRect m_cell;
    QSet<int> m_draggedIds;
    std::vector<const Item*> m_copyItems;
    BarRow m_bars;
    /// From the last one painted to the first.
    std::vector<const Item*> m_seen;
    /// Whether all that is seen are bars of one opaque colour.
    bool m_isAllBars = true;
};

} // namespace VeskTimeline
