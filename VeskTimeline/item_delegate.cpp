#include "failure_log_p.h"
#include "row_painter_p.h"

#include <VeskTimeline/item_delegate.h>
#include <VeskTimeline/timeline_model.h>
#include <VeskTimeline/timeline_view.h>
#include <VeskTimeline/timeline_view_drag_handler.h>
#include <VeskTimeline/timeline_view_track_handler.h>

#include <QPainter>
#include <QPushButton>

namespace VeskTimeline {

namespace {

constexpr int rowWidthHint = 100;
constexpr int rowHeight = 50;

} // namespace

ItemDelegate::ItemDelegate(TimelineView* view)
    : QStyledItemDelegate(view),
      m_view(view),
      m_pushButton(new QPushButton(nullptr)),
      m_pushButtonPressed(new QPushButton(nullptr)),
      m_rowPainter(std::make_unique<RowPainter>(*view))
{
    m_pushButtonPressed->setDown(true);
}

ItemDelegate::~ItemDelegate()
{
    m_pushButton->deleteLater();
    m_pushButtonPressed->deleteLater();
    m_pushButton = nullptr;
    m_pushButtonPressed = nullptr;
}

QSize ItemDelegate::sizeHint(const QStyleOptionViewItem& /*option*/, const QModelIndex& /*index*/) const
{
    return {rowWidthHint, rowHeight};
}

void ItemDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    if (index.column() == 0) {
        paintNameCell(painter, option, index);
        return;
    }
    try {
        paintTimeCell(painter, option, index);
    } catch (...) {
        VESK_LOG(m_view->logger(), Hox::Error) << "ItemDelegate::paint -> CATCH";
    }
}

// Qt's painting code is not made for exceptions: one that passed it would leave its painter at work on the view for
// ever.
void ItemDelegate::paintNameCell(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    painter->save();
    try {
        QStyledItemDelegate::paint(painter, option, index);
        paintTrackButtons(painter, option, index);
    } catch (...) {
        logCaughtException(m_view->logger(), Q_FUNC_INFO);
    }
    painter->restore();
}

void ItemDelegate::paintTimeCell(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    const TimelineModel* const model = m_view->timelineModel();
    if (!model)
        return;
    const Track* const track = model->track(index.data(Qt::DisplayRole).toInt());
    painter->save();
    painter->setClipping(true);
    painter->setClipRect(option.rect);
    m_rowPainter->paint(painter, option, index, *track);
    painter->restore();
}

void ItemDelegate::paintButton(QPainter* painter, QPushButton* button, const QString& text, const QRect& square) const
{
    button->setGeometry(0, 0, square.width(), square.height());
    button->setText(text);
    button->setEnabled(m_view->timelineModel()->isEditable());
    // A button that is disabled comes up, and would stay so when it is enabled again.
    button->setDown(button == m_pushButtonPressed && button->isEnabled());
    painter->drawPixmap(square.topLeft(), button->grab());
}

void ItemDelegate::paintTrackButtons(QPainter* painter, const QStyleOptionViewItem& option,
                                     const QModelIndex& index) const
{
    const TimelineModel* const model = m_view->timelineModel();
    const TimelineViewTrackHandler* const handler = m_view->trackHandler();
    if (!model)
        return;
    try {
        const Track* const track = model->track(index.data(Qt::UserRole).toInt());
        const int size = option.rect.height() / 2;
        const int left = option.rect.right() - size;
        if (track->hasInsertButton()) {
            const bool isPressed = handler && handler->isInsertButtonPressed(index);
            paintButton(painter, isPressed ? m_pushButtonPressed : m_pushButton, QStringLiteral("+"),
                        QRect(left, option.rect.top(), size, size));
        }
        if (track->hasRemoveButton()) {
            const bool isPressed = handler && handler->isRemoveButtonPressed(index);
            paintButton(painter, isPressed ? m_pushButtonPressed : m_pushButton, QStringLiteral("-"),
                        QRect(left, option.rect.center().y(), size, size));
        }
    } catch (...) {
        // A row whose track has gone has no buttons.
    }
}

void ItemDelegate::paintDragItems(QPainter* painter) const
{
    const TimelineViewDragHandler* const dragHandler = m_view->dragHandler();
    if (!dragHandler || !m_view->timelineModel() || !m_view->header())
        return;
    painter->save();
    painter->setClipRect(QRect(QPoint(m_view->header()->sectionPosition(1), 0),
                               QPoint(m_view->geometry().right(), m_view->geometry().bottom())));
    try {
        const QPoint delta(dragHandler->deltaX(), dragHandler->deltaY());
        const QVector<int> ids = dragHandler->dragItemIds();
        for (const int id : ids) {
            if (!paintDragItem(painter, id, delta))
                break;
        }
    } catch (...) {
        // An item that has gone ends the painting of the others, too.
    }
    painter->restore();
}

// False where the painting of dragged items ends.
bool ItemDelegate::paintDragItem(QPainter* painter, int itemId, const QPoint& delta) const
{
    const Item* const item = std::as_const(*m_view->timelineModel()).item(itemId);
    const qint64 end = item->startTime() + item->duration();
    if (end < m_view->currentTime())
        return true;
    if (item->startTime() > m_view->endTime())
        return false;

    const QModelIndex cell = m_view->indexOfTrackRow(item->parentTrackId(), 1);
    const QRect row = m_view->visualRect(cell);
    // A row inside a collapsed one has no place to show its items at.
    if (!row.isValid())
        return true;
    const int left = m_view->toPixel(item->startTime()) + delta.x();
    const int right = m_view->toPixel(end) + delta.x();
    QStyleOptionViewItem option;
    option.rect = QRect(left, row.top() + delta.y(), right - left - 1, row.bottom() - row.top());
    item->paint(painter, option, cell, m_view->isItemSelected(itemId));
    return true;
}

} // namespace VeskTimeline
