#pragma once

// Internal to the library; not installed.

#include "bar_row_p.h"
#include "id_set_p.h"
#include "view_axis_p.h"

#include <VeskTimeline/track.h>

#include <QStyleOptionViewItem>

#include <utility>
#include <vector>

class QModelIndex;
class QPainter;

namespace VeskTimeline {

class ItemIndex;
class TimelineView;

/// Paints the items of one row of a view: the track's own ones in order, over them the copy items in their order.
///
/// The picture is the one that comes out when each item's paint() is called in turn. That is what is done where an item
/// of the row may paint anything anywhere, see Item::Culling, or where the painter is not one whose pixels are known,
/// see BarRow. Otherwise the items are looked at from the last one painted to the first, as far as there is something
/// left to be seen, and the track's index tells which to look at.
///
/// Items outside the window are not without a trace: a bar is cut to its row by moving its edges, so each of them
/// leaves an outline at the row's edge. Which one is seen depends only on the order and on what is selected, so that
/// hardly more than the last one needs to be looked at.
///
/// Of items of Item::Culling::Covered those are painted by themselves, in their order, that are not wholly covered by
/// later ones of the same kind: what else is in the row does not matter for that.
class RowPainter
{
public:
    explicit RowPainter(const TimelineView& view) : m_view(view) {}

    /// @param option its rectangle is the row's time cell, to which the painter is clipped. The state of the painter is
    /// not kept.
    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index, const Track& track);

private:
    struct Row
    {
        QPainter* painter;
        const QStyleOptionViewItem& option;
        const QModelIndex& index;
        const Track& track;
    };
    enum class Side { Left, Right };
    /// Positions in the track's list, the last one excluded.
    struct Positions
    {
        std::size_t begin;
        std::size_t end;
    };

    void readView(const QRect& cell);
    bool canCull(const Row& row) const;
    bool findCopyItems(const Track& track);
    void paintAll(const Row& row) const;
    void paintItem(const Row& row, const Item& item, QStyleOptionViewItem* option) const;
    void paintSeen(const Row& row);

    bool hasIndexForWindow(const ItemIndex* index) const;
    void lookAtWindow(const Track& track, const ItemIndex& index);
    void lookInside(const Items& items, const ItemIndex& index, Positions inside);
    void lookBefore(const Track& track, const ItemIndex& index, std::size_t end);
    void lookOutside(const Track& track, const ItemIndex& index, Positions outside, Side side);
    std::size_t firstHidden(const ItemIndex& index, Positions positions) const;
    void findSelected(const Track& track, const ItemIndex& index);
    bool mayBeSelected(Positions positions) const;
    bool isSelectedAt(const ItemIndex& index, std::size_t position) const;
    std::size_t lastSelected(const ItemIndex& index, Positions positions) const;
    void look(const Item& item);
    void lookAtBar(const Item& item);
    void lookAtCovered(const Items& items, const ItemIndex& index, Positions inside);
    void lookAtCovered(const Item& item);

    bool isDragged(const Item& item) const { return m_draggedIds && m_draggedIds->contains(item.id()); }
    Bar barAt(qint64 startTime, qint64 endTime, bool isSelected) const;
    Bar barAt(const ItemIndex& index, std::size_t position, bool isSelected) const;
    Bar markAt(Side side, bool isSelected) const;
    bool isInside(const Item& item) const;
    std::pair<int, int> columnsOf(qint64 startTime, qint64 endTime) const;
    bool isCovered(std::pair<int, int> columns, bool isSelected) const;

    const TimelineView& m_view;
    ViewAxis m_axis;
    QRect m_cell;
    bool m_hasSelection = false;
    IdsOfList m_dragIds;
    /// Null when dragged items are painted at their places.
    const IdSet* m_draggedIds = nullptr;
    std::vector<const Item*> m_copyItems;
    std::vector<std::size_t> m_reaching;
    std::vector<std::size_t> m_selectedPositions;
    bool m_isSelectionKnown = false;
    BarRow m_bars;
    /// What is covered by items of Item::Culling::Covered, and what by the selected ones among them, which are higher.
    BarRow m_covers;
    BarRow m_selectedCovers;
    /// Of the latest of these. One with the same columns has the same shape, corners included.
    std::pair<int, int> m_latestCover = {0, -1};
    bool m_isLatestCoverSelected = false;
    /// From the last one painted to the first.
    std::vector<const Item*> m_seen;
    /// Whether all that is seen are bars of one opaque colour.
    bool m_isAllBars = true;
};

} // namespace VeskTimeline
