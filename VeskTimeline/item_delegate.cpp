#include "failure_log_p.h"
#include "ghost_painter_p.h"
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
    const QRect timeColumn(QPoint(m_view->header()->sectionPosition(1), 0), m_view->geometry().bottomRight());
    painter->save();
    painter->setClipRect(timeColumn);
    try {
        GhostPainter(*m_view).paint(painter, timeColumn);
    } catch (...) {
        // An item that cannot be painted ends the painting of the others, too.
    }
    painter->restore();
}

} // namespace VeskTimeline
