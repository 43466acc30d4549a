#pragma once

#include <VeskTimeline/timeline_header_view.h>
#include <VeskTimeline/timeline_model.h>
#include <VeskTimeline/timeline_view.h>

#include <QPainter>
#include <QPushButton>

#include <algorithm>

/// What a view paints over its empty rows, step by step and without regard to speed, to compare the view with.
namespace Reference {

/// What only the handlers know.
struct Gestures
{
    QVector<int> dragItemIds;
    QPoint dragDelta;
    bool isRubberBandActive = false;
    QRect rubberBand;
    QPoint mouse;
    QString cursorText;
    QModelIndex pressedInsertButton;
    QModelIndex pressedRemoveButton;
};

inline const QColor highlight{0x43, 0xB0, 0xE0};

class Painting
{
public:
    Painting(const VeskTimeline::TimelineView& view, VeskTimeline::TimelineModel& model, const Gestures& gestures)
        : m_view(view), m_model(model), m_gestures(gestures)
    {
        m_pressedButton.setDown(true);
    }

    /// Onto a picture of the viewport that has the rows with their names, but no buttons and no items.
    void paint(QPainter& painter)
    {
        painter.setFont(m_view.viewport()->font());
        for (const VeskTimeline::TrackPtr& track : m_model.rootTrack()->tracks())
            paintRow(painter, *track);
        paintGhosts(painter);
        paintRubberBand(painter);
        paintLines(painter);
    }

private:
    bool isSelected(int itemId) const { return m_view.selectedItemIds().indexOf(itemId) != -1; }

    void paintRow(QPainter& painter, const VeskTimeline::Track& track)
    {
        const QModelIndex name = m_view.indexOfTrackRow(track.id(), 0);
        const QRect nameRect = m_view.visualRect(name);
        if (!nameRect.isValid())
            return;
        const int size = nameRect.height() / 2;
        const int left = nameRect.right() - size;
        if (track.hasInsertButton())
            paintButton(painter, name == m_gestures.pressedInsertButton, "+", QPoint(left, nameRect.top()), size);
        if (track.hasRemoveButton())
            paintButton(painter, name == m_gestures.pressedRemoveButton, "-", QPoint(left, nameRect.center().y()),
                        size);
        paintItems(painter, m_view.visualRect(name.siblingAtColumn(1)), track);
        for (const VeskTimeline::TrackPtr& child : track.tracks())
            paintRow(painter, *child);
    }

    void paintButton(QPainter& painter, bool isPressed, const char* text, const QPoint& topLeft, int size)
    {
        QPushButton& button = isPressed ? m_pressedButton : m_button;
        button.setGeometry(0, 0, size, size);
        button.setText(QString::fromLatin1(text));
        button.setEnabled(m_model.isEditable());
        painter.drawPixmap(topLeft, button.grab());
    }

    void paintItems(QPainter& painter, const QRect& cell, const VeskTimeline::Track& track)
    {
        painter.save();
        painter.setClipRect(cell);
        for (const VeskTimeline::ItemPtr& item : track.items())
            paintInCell(painter, cell, *item);
        for (const int id : track.copyItemIds()) {
            const VeskTimeline::Item* item = nullptr;
            try {
                item = m_model.item(id);
            } catch (const QString&) {
                continue;
            }
            paintInCell(painter, cell, *item);
        }
        painter.restore();
    }

    void paintInCell(QPainter& painter, const QRect& cell, const VeskTimeline::Item& item)
    {
        if (m_model.isEditable() && m_gestures.dragItemIds.indexOf(item.id()) != -1)
            return;
        QRect rect = cell;
        rect.setLeft(std::max(m_view.toPixel(item.startTime()), cell.left()));
        rect.setRight(std::min(m_view.toPixel(item.startTime() + item.duration()), cell.right()) - 1);
        paintItem(painter, rect, item.color(), isSelected(item.id()));
    }

    static void paintItem(QPainter& painter, const QRect& rect, const QColor& color, bool isSelected)
    {
        QPen pen(isSelected ? highlight : QColor(0, 0, 0));
        pen.setWidthF(isSelected ? 5.0 : 1.0);
        pen.setCapStyle(Qt::SquareCap);
        pen.setJoinStyle(Qt::BevelJoin);
        painter.save();
        painter.setPen(pen);
        painter.setBrush(color);
        painter.drawRect(rect);
        painter.restore();
    }

    void paintGhosts(QPainter& painter)
    {
        painter.save();
        painter.setClipRect(QRect(QPoint(m_view.header()->sectionPosition(1), 0), m_view.geometry().bottomRight()));
        for (const int id : m_gestures.dragItemIds) {
            const VeskTimeline::Item* const item = m_model.item(id);
            const qint64 end = item->startTime() + item->duration();
            if (end < m_view.currentTime())
                continue;
            if (item->startTime() > m_view.endTime())
                break;
            const QRect row = m_view.visualRect(m_view.indexOfTrackRow(item->parentTrackId(), 1));
            const int x1 = m_view.toPixel(item->startTime()) + m_gestures.dragDelta.x();
            const int x2 = m_view.toPixel(end) + m_gestures.dragDelta.x();
            const int y1 = row.top() + m_gestures.dragDelta.y();
            const int y2 = row.bottom() + m_gestures.dragDelta.y();
            paintItem(painter, QRect(x1, y1, x2 - x1 - 1, y2 - y1), item->color(), isSelected(id));
        }
        painter.restore();
    }

    void paintRubberBand(QPainter& painter)
    {
        if (!m_gestures.isRubberBandActive)
            return;
        const QRect& band = m_gestures.rubberBand;
        QColor fill = highlight;
        fill.setAlpha(100);
        painter.setPen(highlight);
        painter.setBrush(fill);
        // A band that went left or up has a negative size; it looks like the one that went the other way.
        painter.drawRect(std::min(band.x(), band.x() + band.width()), std::min(band.y(), band.y() + band.height()),
                         std::abs(band.width()), std::abs(band.height()));
    }

    void paintLine(QPainter& painter, int x, const QColor& color)
    {
        painter.setPen(color);
        painter.drawLine(x, 0, x, m_view.geometry().bottom());
    }

    void paintLines(QPainter& painter)
    {
        const VeskTimeline::TimelineHeaderView* const header = m_view.header();
        const int indicator = header->indicatorPosition();
        if (header->isIndicatorVisible() && indicator != -1 && indicator >= header->sectionPosition(1))
            paintLine(painter, indicator, highlight);
        if (header->isHoverVisible() && header->hoverPosition() != -1) {
            paintLine(painter, header->hoverPosition(), highlight);
            if (m_view.isCursorTextVisible() && !m_gestures.cursorText.isEmpty())
                paintCursorText(painter);
        }
        const qint64 live = header->liveIndicatorTime();
        const bool isLiveInWindow = m_view.currentTime() <= live && live <= m_view.currentTime() + m_view.zoomFactor();
        if (header->isLiveIndicatorVisible() && live != -1 && isLiveInWindow)
            paintLine(painter, header->toPixel(live), header->liveIndicatorColor());
    }

    void paintCursorText(QPainter& painter)
    {
        const int width = painter.fontMetrics().horizontalAdvance(m_gestures.cursorText);
        const QRect box(m_gestures.mouse.x(), m_gestures.mouse.y() - 22, width + 2, 22);
        painter.setBrush(VeskTimeline::TimelineHeaderView::backgroundColor());
        painter.drawRect(box);
        painter.drawText(QRect(box.x() + 1, box.y() + 1, box.width() - 2, 20), Qt::AlignCenter, m_gestures.cursorText);
    }

    const VeskTimeline::TimelineView& m_view;
    VeskTimeline::TimelineModel& m_model;
    const Gestures m_gestures;
    QPushButton m_button;
    QPushButton m_pressedButton;
};

} // namespace Reference
