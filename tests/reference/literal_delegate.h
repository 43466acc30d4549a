#pragma once

#include <VeskTimeline/item_delegate.h>
#include <VeskTimeline/timeline_model.h>
#include <VeskTimeline/timeline_view.h>
#include <VeskTimeline/timeline_view_drag_handler.h>

#include <QPainter>
#include <QStyleOptionViewItem>

#include <algorithm>
#include <cstdio>

/// Paints the items of a view as it is described: each of them, in order, without a thought of what can be seen.
namespace Reference {

class LiteralDelegate : public VeskTimeline::ItemDelegate
{
public:
    using ItemDelegate::ItemDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override
    {
        if (index.column() == 0) {
            ItemDelegate::paint(painter, option, index);
            return;
        }
        const VeskTimeline::TimelineModel& model = *m_view->timelineModel();
        const VeskTimeline::Track& track = *model.track(index.data(Qt::DisplayRole).toInt());
        painter->save();
        painter->setClipping(true);
        painter->setClipRect(option.rect);
        for (const VeskTimeline::ItemPtr& item : track.items())
            paintInCell(painter, option, index, *item);
        for (const int id : track.copyItemIds()) {
            try {
                paintInCell(painter, option, index, *model.item(id));
            } catch (const QString&) {
                std::fprintf(stderr, "ItemDelegate::paint: cannot find item copy of %d\n", id);
            }
        }
        painter->restore();
    }

    void paintDragItems(QPainter* painter) const override
    {
        const VeskTimeline::TimelineViewDragHandler* const handler = m_view->dragHandler();
        painter->save();
        painter->setClipRect(QRect(QPoint(m_view->header()->sectionPosition(1), 0), m_view->geometry().bottomRight()));
        try {
            for (const int id : handler->dragItemIds()) {
                const VeskTimeline::Item* const item = std::as_const(*m_view->timelineModel()).item(id);
                const qint64 end = item->startTime() + item->duration();
                if (end < m_view->currentTime())
                    continue;
                if (item->startTime() > m_view->endTime())
                    break;
                paintGhost(painter, *item);
            }
        } catch (const QString&) {
            // The rest is left out.
        }
        painter->restore();
    }

private:
    void paintInCell(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index,
                     const VeskTimeline::Item& item) const
    {
        if (m_view->timelineModel()->isEditable() && m_view->dragHandler() &&
            m_view->dragHandler()->dragItemIds().contains(item.id()))
            return;
        QStyleOptionViewItem copy(option);
        copy.rect.setLeft(std::max(m_view->toPixel(item.startTime()), option.rect.left()));
        copy.rect.setRight(std::min(m_view->toPixel(item.startTime() + item.duration()), option.rect.right()) - 1);
        item.paint(painter, copy, index, m_view->isItemSelected(item.id()));
    }

    void paintGhost(QPainter* painter, const VeskTimeline::Item& item) const
    {
        const QModelIndex cell = m_view->indexOfTrackRow(item.parentTrackId(), 1);
        const QRect row = m_view->visualRect(cell);
        if (!row.isValid())
            return;
        const int dx = m_view->dragHandler()->deltaX();
        const int dy = m_view->dragHandler()->deltaY();
        const int x1 = m_view->toPixel(item.startTime()) + dx;
        const int x2 = m_view->toPixel(item.startTime() + item.duration()) + dx;
        QStyleOptionViewItem option;
        option.rect = QRect(x1, row.top() + dy, x2 - x1 - 1, row.bottom() - row.top());
        item.paint(painter, option, cell, m_view->isItemSelected(item.id()));
    }
};

} // namespace Reference
