#include "failure_log_p.h"

#include <VeskTimeline/timeline_model.h>
#include <VeskTimeline/timeline_view.h>
#include <VeskTimeline/timeline_view_track_handler.h>
#include <VeskWidgets/vesk_message_dialog_new.h>

#include <QAbstractProxyModel>
#include <QCoreApplication>
#include <QMouseEvent>
#include <QPersistentModelIndex>

namespace VeskTimeline {

namespace {

// The picture of a button is a square; the cell's last pixel column, right of it, belongs to the button too.
bool hitsButton(const QRect& cell, int top, const QPoint& pos)
{
    const int size = cell.height() / 2;
    return QRect(cell.right() - size, top, size + 1, size).contains(pos);
}

// The model knows its own indexes only, not those of a proxy over it.
QModelIndex modelIndexOf(const QModelIndex& index, const TimelineModel* model)
{
    const auto* const proxy = qobject_cast<const QAbstractProxyModel*>(index.model());
    return proxy && proxy->sourceModel() == model ? proxy->mapToSource(index) : index;
}

} // namespace

TimelineViewTrackHandler::TimelineViewTrackHandler(TimelineView* view) : m_view(view)
{
}

TimelineViewTrackHandler::~TimelineViewTrackHandler() = default;

void TimelineViewTrackHandler::mousePressEvent(QMouseEvent* event)
{
    const QPoint pos = event->position().toPoint();
    if (event->button() == Qt::RightButton) {
        Q_EMIT m_view->customContextMenuRequested(pos);
        return;
    }
    if (event->button() != Qt::LeftButton)
        return;
    const QModelIndex index = m_view->indexAt(pos);
    const TimelineModel* const model = m_view->timelineModel();
    if (!index.isValid() || index.column() != 0 || !model || !model->isEditable())
        return;
    try {
        pressButtonOf(index, pos);
    } catch (...) {
        // A row whose track has gone has no buttons.
    }
}

void TimelineViewTrackHandler::pressButtonOf(const QModelIndex& index, const QPoint& pos)
{
    TimelineModel* const model = m_view->timelineModel();
    const Track* const track = model->track(index.data(Qt::UserRole).toInt());
    const QRect cell = m_view->visualRect(index);
    if (track->hasInsertButton() && hitsButton(cell, cell.top(), pos)) {
        m_pressedInsertButtonIndex = index;
        m_view->viewport()->update();
        model->onInsertTrack(modelIndexOf(index, model));
    } else if (track->hasRemoveButton() && hitsButton(cell, cell.center().y(), pos)) {
        m_pressedRemoveButtonIndex = index;
        m_view->viewport()->update();
        askToRemove(index);
    }
}

void TimelineViewTrackHandler::askToRemove(const QModelIndex& index)
{
    using VeskWidgets::Button;
    const QString question = QCoreApplication::translate(
        "VeskTimeline", "Do you really want to remove this filter track and all of its contents?");
    // Shows and destroys itself.
    auto* const dialog =
        new VeskWidgets::VeskMessageDialogNew(m_view, QString(), question, VeskWidgets::Behaviour::Question,
                                              VeskWidgets::Buttons(Button::Yes) | Button::No, {}, true);
    // An open dialog may keep the release of the mouse from the view.
    QObject::connect(dialog, &QDialog::finished, m_view, [this] {
        m_pressedRemoveButtonIndex = QModelIndex();
        m_view->viewport()->update();
    });
    const QPersistentModelIndex row(index);
    QObject::connect(dialog, &VeskWidgets::VeskMessageDialogNew::yes, m_view, [this, row] { removeTrack(row); });
}

void TimelineViewTrackHandler::removeTrack(const QModelIndex& index)
{
    TimelineModel* const model = m_view->timelineModel();
    // The row may have gone while the question stood.
    if (!model || !index.isValid())
        return;
    try {
        model->onRemoveTrack(modelIndexOf(index, model));
    } catch (...) {
        logCaughtException(m_view->logger(), Q_FUNC_INFO);
    }
}

void TimelineViewTrackHandler::mouseReleaseEvent(QMouseEvent* /*event*/)
{
    m_pressedInsertButtonIndex = QModelIndex();
    m_pressedRemoveButtonIndex = QModelIndex();
}

void TimelineViewTrackHandler::mouseDoubleClickEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton)
        return;
    const QModelIndex index = m_view->indexAt(event->position().toPoint());
    if (index.isValid() && index.column() == 0)
        Q_EMIT m_view->trackActivated(index.data(Qt::DisplayRole).toInt());
}

} // namespace VeskTimeline
