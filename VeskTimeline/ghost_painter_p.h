#pragma once

// Internal to the library; not installed.

#include <VeskTimeline/item.h>

#include <QModelIndex>
#include <QRect>

#include <vector>

class QPainter;

namespace VeskTimeline {

class TimelineView;

/// Paints the items of a view that are being dragged, displaced by the drag, over the rows.
///
/// The picture is the one that comes out when the paint() of each is called, in the order of the drag list. Left out
/// are bars that are out of sight and those on which a later one of the same look lies pixel on pixel.
class GhostPainter
{
public:
    explicit GhostPainter(const TimelineView& view) : m_view(view) {}

    /// Paints up to the first item that starts behind the view's range, or that has gone. Throws what the items throw.
    /// @param clip what the painter is clipped to
    void paint(QPainter* painter, const QRect& clip);

private:
    struct Row
    {
        QModelIndex cell;
        QRect rect;
    };
    struct Ghost
    {
        const Item* item;
        std::size_t row;
        QRect rect;
        bool isSelected;
    };

    void collect();
    std::size_t rowOf(int trackId);
    void removeUnseen(const QRect& clip);
    bool isInSight(const Ghost& ghost, const QRect& clip) const;
    bool isHidden(const Ghost& ghost, const QRect& clip);

    const TimelineView& m_view;
    std::vector<Row> m_rows;
    std::vector<Ghost> m_ghosts;
    /// For each row, look and column, where one of the bars that begin there ends.
    std::vector<int> m_rightEnds;
};

} // namespace VeskTimeline
