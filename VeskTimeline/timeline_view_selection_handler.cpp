#include "failure_log_p.h"
#include "item_changes_p.h"
#include "modifiers_p.h"
#include "track_cell_p.h"

#include <VeskTimeline/item_delegate.h>
#include <VeskTimeline/timeline_model.h>
#include <VeskTimeline/timeline_view.h>
#include <VeskTimeline/timeline_view_selection_handler.h>

#include <QDebug>
#include <QKeyEvent>
#include <QMouseEvent>

#include <algorithm>

namespace VeskTimeline {

TimelineViewSelectHandler::TimelineViewSelectHandler(TimelineView* view) : m_view(view)
{
}

TimelineViewSelectHandler::~TimelineViewSelectHandler() = default;

void TimelineViewSelectHandler::clear()
{
    m_selectedItemId = -1;
    m_isRubberBandActive = false;
    m_rubberBand.setSize(QSize(0, 0));
}

bool TimelineViewSelectHandler::isActive() const
{
    return QGuiApplication::keyboardModifiers().testFlag(Qt::ControlModifier) || m_isRubberBandActive ||
           m_selectedItemId != -1;
}

bool TimelineViewSelectHandler::isRubberBandActive() const
{
    return m_isRubberBandActive;
}

// The item under a point of the time column; null outside the rows. Throws for a row's empty space.
const Item* TimelineViewSelectHandler::findItemAt(const QPoint& pos) const
{
    const QModelIndex index = m_view->indexAt(pos);
    if (!isTimeCell(index) || !m_view->timelineModel())
        return nullptr;
    return m_view->timelineModel()->track(trackIdOfCell(index))->itemAt(m_view->toTime(pos.x()));
}

void TimelineViewSelectHandler::startRubberBand(const QPoint& pos)
{
    m_rubberBand = QRect(pos, QSize(0, 0));
    m_isRubberBandActive = true;
}

void TimelineViewSelectHandler::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton && event->button() != Qt::RightButton)
        return;
    const QModelIndex index = m_view->indexAt(event->position().toPoint());
    if (!index.isValid())
        pressOutsideRows(*event);
    else if (index.column() == 0)
        qWarning().noquote() << "clicked on row with actuator" << index.data(Qt::DisplayRole).toString();
    else
        pressInRow(*event);
}

void TimelineViewSelectHandler::pressOutsideRows(const QMouseEvent& event)
{
    qWarning("TimelineViewSelectHandler::mousePressEvent: index invalid");
    if (event.button() == Qt::RightButton || isControlHeld(event))
        return;
    const QPoint pos = event.position().toPoint();
    m_view->clearSelectedItems();
    if (m_view->isCursorWithinRangeX(pos.x()))
        startRubberBand(pos);
}

void TimelineViewSelectHandler::pressInRow(const QMouseEvent& event)
{
    const QPoint pos = event.position().toPoint();
    const bool isLeft = event.button() == Qt::LeftButton;
    try {
        const Item* const item = findItemAt(pos);
        if (item && isLeft)
            m_selectedItemId = item->id();
        return;
    } catch (...) {
        // Empty space of the row.
    }
    if (isControlHeld(event))
        return;
    if (!isLeft) {
        Q_EMIT m_view->customContextMenuRequested(pos);
        return;
    }
    m_view->clearSelectedItems();
    startRubberBand(pos);
}

void TimelineViewSelectHandler::mouseMoveEvent(QMouseEvent* event)
{
    if (!m_isRubberBandActive) {
        m_selectedItemId = -1;
        return;
    }
    m_view->setCursor(Qt::CrossCursor);
    const QPoint pos = event->position().toPoint();
    m_rubberBand.setHeight(pos.y() - m_rubberBand.top());
    if (m_view->isCursorWithinRangeX(pos.x()))
        m_rubberBand.setWidth(pos.x() - m_rubberBand.left());
    m_view->viewport()->update();
}

void TimelineViewSelectHandler::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton)
        return;
    if (m_isRubberBandActive) {
        finishRubberBand(Q_FUNC_INFO);
        return;
    }
    int releasedItemId = -1;
    try {
        if (const Item* const item = findItemAt(event->position().toPoint()))
            releasedItemId = item->id();
    } catch (...) {
        // Empty space of a row: no click.
    }
    if (releasedItemId != -1 && releasedItemId == m_selectedItemId)
        click(releasedItemId, isControlHeld(*event));
    m_selectedItemId = -1;
}

void TimelineViewSelectHandler::finishRubberBand(const char* signature)
{
    try {
        const QVector<int> ids = getItemsWithinRubberBand();
        m_view->selectItems(ids, true);
    } catch (...) {
        logCaughtException(m_view->logger(), signature);
    }
    m_isRubberBandActive = false;
    m_rubberBand.setSize(QSize(0, 0));
    m_view->setCursor(Qt::ArrowCursor);
}

void TimelineViewSelectHandler::click(int itemId, bool isToggle)
{
    const bool isSelected = m_view->isItemSelected(itemId);
    if (isToggle) {
        if (isSelected)
            m_view->unselectItem(itemId);
        else
            m_view->selectItem(itemId, false);
        return;
    }
    const bool isOnlySelected = isSelected && m_view->selectedItemIds().size() < 2;
    if (isOnlySelected)
        m_view->unselectItem(itemId);
    else
        m_view->selectItem(itemId, true);
}

void TimelineViewSelectHandler::mouseDoubleClickEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton)
        return;
    m_view->clearSelectedItems();
    try {
        if (const Item* const item = findItemAt(event->position().toPoint()))
            Q_EMIT m_view->itemActivated(item->id());
    } catch (...) {
        logCaughtException(m_view->logger(), Q_FUNC_INFO, Hox::Debug);
    }
}

void TimelineViewSelectHandler::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape) {
        m_selectedItemId = -1;
        m_view->clearSelectedItems();
    } else if (event->key() == Qt::Key_Delete) {
        removeSelectedItems(Q_FUNC_INFO);
    } else if (isControlHeld(*event)) {
        try {
            controlKeyPress(event);
        } catch (...) {
            logCaughtException(m_view->logger(), Q_FUNC_INFO);
        }
    } else {
        leaveUnknownKey(event);
    }
}

// One that cannot be removed keeps no other from it.
void TimelineViewSelectHandler::removeItem(int id, const char* signature)
{
    try {
        m_view->timelineModel()->removeItem(id);
    } catch (...) {
        logCaughtException(m_view->logger(), signature);
    }
}

void TimelineViewSelectHandler::removeSelectedItems(const char* signature)
{
    if (!m_view->hasSelectedItems() || !m_view->timelineModel())
        return;
    const QList<int> ids = m_view->selectedItemIds();
    try {
        ItemChanges changes(*m_view->timelineModel(), ids.size(), m_view->logger());
        for (const int id : ids)
            removeItem(id, signature);
        changes.finish();
    } catch (...) {
        logCaughtException(m_view->logger(), signature);
    }
    m_view->clearSelectedItems();
    m_selectedItemId = -1;
}

void TimelineViewSelectHandler::controlKeyPress(QKeyEvent* event)
{
    TimelineModel* const model = m_view->timelineModel();
    if (!model)
        return;
    // A copy: the model's operations may be overridden to change the selection.
    const QList<int> ids = m_view->selectedItemIds();
    switch (event->key()) {
    case Qt::Key_A:
        m_view->selectAllItems();
        m_selectedItemId = -1;
        break;
    case Qt::Key_C:
        if (!ids.isEmpty())
            model->copyToClipboard(ids);
        break;
    case Qt::Key_X:
        if (!ids.isEmpty()) {
            model->cutToClipboard(ids);
            m_view->clearSelectedItems();
        }
        break;
    case Qt::Key_V:
        if (!model->isClipboardEmpty())
            paste();
        break;
    default:
        leaveUnknownKey(event);
    }
}

// Left and Right are the drag handler's; a key that nobody here knows is left to the widgets around the view.
void TimelineViewSelectHandler::leaveUnknownKey(QKeyEvent* event)
{
    if (event->key() != Qt::Key_Left && event->key() != Qt::Key_Right)
        event->ignore();
}

void TimelineViewSelectHandler::paste()
{
    qint64 time = m_view->currentTime();
    const TimelineHeaderView* const header = m_view->header();
    if (header && header->isIndicatorVisible() && header->indicatorTime() != -1)
        time = header->indicatorTime();
    m_view->timelineModel()->pasteFromClipboard(time);
}

QVector<int> TimelineViewSelectHandler::getItemsWithinRubberBand() const
{
    const QPoint topLeft(std::min(m_rubberBand.left(), m_rubberBand.right()),
                         std::min(m_rubberBand.top(), m_rubberBand.bottom()));
    const QPoint bottomRight(std::max(m_rubberBand.left(), m_rubberBand.right()),
                             std::max(m_rubberBand.top(), m_rubberBand.bottom()));
    const qint64 start = m_view->toTime(topLeft.x());
    const qint64 end = m_view->toTime(bottomRight.x());
    const QAbstractItemDelegate* const delegate = m_view->QAbstractItemView::itemDelegate();
    if (start == end || !delegate)
        return {};

    const int rowHeight = std::max(1, delegate->sizeHint(QStyleOptionViewItem(), QModelIndex()).height());
    QVector<int> ids;
    for (int y = topLeft.y(); y <= bottomRight.y(); y += rowHeight)
        appendRowItems(QPoint(topLeft.x(), y), start, end, &ids);
    if (topLeft.y() + rowHeight > bottomRight.y())
        appendRowItems(bottomRight, start, end, &ids);
    return ids;
}

void TimelineViewSelectHandler::appendRowItems(const QPoint& pos, qint64 start, qint64 end, QVector<int>* ids) const
{
    const QModelIndex index = m_view->indexAt(pos);
    if (!index.isValid() || !m_view->timelineModel())
        return;
    try {
        const Track* const track = m_view->timelineModel()->track(index.data(Qt::DisplayRole).toInt());
        ids->append(track->itemIdsBetween(start, end, false, false, false, false, 0));
    } catch (const QString& text) {
        VESK_LOG(m_view->logger(), Hox::Error) << text;
    }
}

} // namespace VeskTimeline
