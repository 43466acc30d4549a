#include "failure_log_p.h"
#include "id_set_p.h"
#include "item_changes_p.h"
#include "landing_tracks_p.h"
#include "modifiers_p.h"
#include "room_for_items_p.h"
#include "snap_candidates_p.h"
#include "time_grid_p.h"
#include "track_cell_p.h"

#include <VeskTimeline/timeline_model.h>
#include <VeskTimeline/timeline_view.h>
#include <VeskTimeline/timeline_view_drag_handler.h>

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <optional>

namespace VeskTimeline {

namespace {

// The offset that puts a dragged item, now shown from `start`, onto an edge of another item nearby: its start onto the
// other's end or, where that is not near, its end onto the other's start.
std::optional<qint64> offsetOntoEdge(const Item& dragged, qint64 start, const Item& other, qint64 tolerance)
{
    const auto isNear = [tolerance](qint64 edge, qint64 otherEdge) {
        return edge - tolerance < otherEdge && otherEdge < edge + tolerance;
    };
    const qint64 otherEnd = other.startTime() + other.duration();
    if (isNear(start, otherEnd))
        return otherEnd - dragged.startTime();
    if (isNear(start + dragged.duration(), other.startTime()))
        return other.startTime() - (dragged.startTime() + dragged.duration());
    return std::nullopt;
}

} // namespace

TimelineViewDragHandler::TimelineViewDragHandler(TimelineView* view)
    : m_view(view), m_dragItemIdSet(std::make_unique<IdsOfList>()), m_room(std::make_unique<RoomForItems>())
{
}

TimelineViewDragHandler::~TimelineViewDragHandler() = default;

bool TimelineViewDragHandler::isModelEditable() const
{
    return m_view->timelineModel() && m_view->timelineModel()->isEditable();
}

bool TimelineViewDragHandler::hasGesture() const
{
    return !m_dragItemIds.isEmpty() && m_dragStartIndex.isValid();
}

const IdSet& TimelineViewDragHandler::dragItemIdSet() const
{
    return m_dragItemIdSet->of(m_dragItemIds);
}

bool TimelineViewDragHandler::isItemDragged(int id) const
{
    return !m_dragItemIds.isEmpty() && dragItemIdSet().contains(id);
}

int TimelineViewDragHandler::trackIdUnder(const QPoint& pos) const
{
    return trackIdOfCell(m_view->indexAt(pos));
}

// Remembered at the press: the row may move, or be gone, before the gesture is, and an index of a row that has gone
// must not be read.
int TimelineViewDragHandler::dragStartTrackId() const
{
    return m_dragStartTrackId != -1 ? m_dragStartTrackId : trackIdOfCell(m_dragStartIndex);
}

QModelIndex TimelineViewDragHandler::dragStartRow() const
{
    return m_dragStartTrackId != -1 ? m_view->indexOfTrackRow(m_dragStartTrackId, 1) : m_dragStartIndex;
}

void TimelineViewDragHandler::resetGesture()
{
    m_dragItemIds.clear();
    m_dragItemIdSet->of(m_dragItemIds);
    m_room->of(m_dragItemIds);
    m_dragStartIndex = QModelIndex();
    m_dragStartTrackId = -1;
    m_dragStartTime = -1;
    m_dragStartPos = QPoint();
    m_dragPos = QPoint();
}

void TimelineViewDragHandler::clear()
{
    resetGesture();
    m_view->setCursor(Qt::ArrowCursor);
    m_view->viewport()->update();
}

bool TimelineViewDragHandler::isActive() const
{
    return !m_dragItemIds.isEmpty() &&
           (m_dragPos - m_dragStartPos).manhattanLength() >= QApplication::startDragDistance();
}

int TimelineViewDragHandler::deltaX() const
{
    const TimelineModel* const model = m_view->timelineModel();
    if (!model || !model->isSnapEnabled())
        return m_dragPos.x() - m_dragStartPos.x();
    // A group that may not be moved has no start, and stays where it is.
    if (m_dragStartTime == -1)
        return 0;
    return m_view->toPixel(m_dragStartTime + deltaTime()) - m_view->toPixel(m_dragStartTime);
}

int TimelineViewDragHandler::deltaY() const
{
    const QModelIndex index = m_view->indexAt(m_dragPos);
    if (!index.isValid())
        return m_dragPos.y() - m_dragStartPos.y();
    const QModelIndex startRow = dragStartRow();
    if (!startRow.isValid())
        return 0;
    return m_view->visualRect(index).top() - m_view->visualRect(startRow).top();
}

qint64 TimelineViewDragHandler::deltaTime() const
{
    const TimelineModel* const model = m_view->timelineModel();
    if (!model)
        return 0;
    if (!model->isSnapEnabled())
        return m_view->toTime(m_dragPos.x()) - m_view->toTime(m_dragStartPos.x());
    return snappedToEdges(truncatedToGrid(m_view->toTime(m_dragPos.x()) - m_dragStartTime, model->snapStep()));
}

qint64 TimelineViewDragHandler::snappedToEdges(qint64 dt) const
{
    const TimelineModel* const model = m_view->timelineModel();
    const qint64 tolerance = model->snapTolerance();
    const IdSet& draggedIds = dragItemIdSet();
    const SnapCandidates candidates(
        *model, [&](int id) { return draggedIds.contains(id); }, [] { throw; });
    qint64 best = 2 * tolerance;
    for (const int draggedId : m_dragItemIds) {
        const Item* const dragged = model->item(draggedId);
        // Only an offset within the tolerance of this one, and nearer than the best, can take its place.
        const TimeWindow offsets{std::max(dt - tolerance, -best) + 1, std::min(dt + tolerance, best) - 1};
        if (offsets.isEmpty())
            continue;
        const qint64 start = dragged->startTime() + dt;
        const TimeWindow starts = offsets.shifted(dragged->startTime() + dragged->duration());
        for (const Item* const other : candidates.find(starts, offsets.shifted(dragged->startTime()))) {
            const std::optional<qint64> offset = offsetOntoEdge(*dragged, start, *other, tolerance);
            if (offset && std::abs(*offset) < best) {
                dt = *offset;
                best = std::abs(dt);
            }
        }
    }
    return dt;
}

int TimelineViewDragHandler::dragItemTrackId(const Item& item) const
{
    const QPoint down(0, deltaY());
    if (trackIdUnder(m_dragStartPos + down) == dragStartTrackId())
        return item.parentTrackId();
    const QRect row = m_view->visualRect(m_view->indexOfTrackRow(item.parentTrackId(), 0));
    if (!row.isValid())
        return 0;
    return trackIdOfCell(m_view->indexAt(row.center() + down));
}

void TimelineViewDragHandler::mousePressEvent(QMouseEvent* event)
{
    if (!isModelEditable() || event->button() != Qt::LeftButton)
        return;
    // Whatever this press finds, nothing of an earlier click may move with it.
    resetGesture();
    try {
        takeItemUnder(event->position().toPoint());
    } catch (...) {
        logCaughtException(m_view->logger(), Q_FUNC_INFO, Hox::Debug);
    }
}

void TimelineViewDragHandler::takeItemUnder(const QPoint& pos)
{
    const QModelIndex index = m_view->indexAt(pos);
    if (!isTimeCell(index))
        return;
    TimelineModel* const model = m_view->timelineModel();
    const int trackId = trackIdOfCell(index);
    const qint64 time = m_view->toTime(pos.x());
    const Item* const pressed = model->track(trackId)->itemAt(time);

    m_dragItemIds = m_view->selectedItemIds();
    if (!m_view->isItemSelected(pressed->id()))
        m_dragItemIds = {pressed->id()};
    const auto isFixed = [model](int id) { return !model->item(id)->isEditable(); };
    if (std::any_of(m_dragItemIds.begin(), m_dragItemIds.end(), isFixed))
        return;

    m_dragStartIndex = index;
    m_dragStartTrackId = trackId;
    m_dragStartTime = time;
    m_dragStartPos = pos;
    m_dragPos = pos;
    m_view->setCursor(Qt::ClosedHandCursor);
}

void TimelineViewDragHandler::mouseMoveEvent(QMouseEvent* event)
{
    if (!isModelEditable())
        return;
    if (event->buttons() != Qt::LeftButton) {
        clear();
        return;
    }
    try {
        followMouse(event->position().toPoint());
    } catch (...) {
        logCaughtException(m_view->logger(), Q_FUNC_INFO);
    }
}

void TimelineViewDragHandler::followMouse(const QPoint& pos)
{
    if (!hasGesture() || (pos - m_dragStartPos).manhattanLength() < QApplication::startDragDistance())
        return;
    const QModelIndex index = m_view->indexAt(pos);
    if (!isTimeCell(index)) {
        m_view->setCursor(Qt::ForbiddenCursor);
        return;
    }
    m_dragPos = pos;
    m_view->setCursor(canDragItemsTo(m_dragPos) ? Qt::ClosedHandCursor : Qt::ForbiddenCursor);
    m_view->viewport()->update();
    if (trackIdOfCell(index) != dragStartTrackId())
        startDragAndDrop();
}

void TimelineViewDragHandler::mouseReleaseEvent(QMouseEvent* event)
{
    if (!isModelEditable() || event->button() != Qt::LeftButton || !hasGesture())
        return;
    const QPoint pos = event->position().toPoint();
    const QModelIndex index = m_view->indexAt(pos);
    if (!isTimeCell(index) || trackIdOfCell(index) != dragStartTrackId())
        return;
    try {
        moveItemsTo(pos);
    } catch (...) {
        logCaughtException(m_view->logger(), Q_FUNC_INFO);
    }
    clear();
}

void TimelineViewDragHandler::moveItemsTo(const QPoint& pos)
{
    m_dragPos = pos;
    if (m_dragPos.x() == m_dragStartPos.x() || !canMoveItemsTo(m_dragPos))
        return;
    Q_EMIT m_view->currentItemTimeChanged();
    TimelineModel* const model = m_view->timelineModel();
    const qint64 dt = deltaTime();
    const QVector<int> ids = m_dragItemIds;
    ItemChanges changes(*model, ids.size(), m_view->logger());
    for (const int id : ids) {
        Item* const item = model->item(id);
        model->setItemStartTime(*item, item->startTime() + dt);
    }
    changes.finish();
}

bool TimelineViewDragHandler::canMoveItemsTo(const QPoint& pos) const
{
    const QModelIndex index = m_view->indexAt(pos);
    if (!isModelEditable() || !hasGesture() || !isTimeCell(index) || trackIdOfCell(index) != dragStartTrackId())
        return false;
    const TimelineModel* const model = m_view->timelineModel();
    const qint64 dt = deltaTime();
    return std::all_of(m_dragItemIds.begin(), m_dragItemIds.end(), [&](int id) {
        const Item* const item = model->item(id);
        const qint64 start = item->startTime() + dt;
        return model->canMoveItem(*item, start) &&
               m_room->of(m_dragItemIds).isThere(*model->track(item->parentTrackId()), *item, start);
    });
}

bool TimelineViewDragHandler::canDragItemsTo(const QPoint& pos) const
{
    const QModelIndex index = m_view->indexAt(pos);
    if (!isModelEditable() || !hasGesture() || !isTimeCell(index))
        return false;
    if (trackIdOfCell(index) == dragStartTrackId())
        return canMoveItemsTo(pos);

    const TimelineModel* const model = m_view->timelineModel();
    const qint64 dt = deltaTime();
    LandingTracks landingTrackOf(m_view, [this](const Item& item) { return dragItemTrackId(item); });
    return std::all_of(m_dragItemIds.begin(), m_dragItemIds.end(), [&](int id) {
        const Item* const item = model->item(id);
        const int trackId = landingTrackOf(*item);
        if (trackId == 0)
            return false;
        const Track* const target = model->track(trackId);
        const qint64 start = item->startTime() + dt;
        return model->canDropItem(*item, target->id(), start) &&
               m_room->of(m_dragItemIds).isThere(*target, *item, start);
    });
}

void TimelineViewDragHandler::keyPressEvent(QKeyEvent* event)
{
    if (!isModelEditable() || !m_view->hasSelectedItems())
        return;
    if (event->key() == Qt::Key_Escape) {
        clear();
        return;
    }
    const int snapStep = m_view->timelineModel()->snapStep();
    // Without a grid there is no step to move by.
    if (snapStep <= 0)
        return;
    const qint64 steps = isControlHeld(*event) ? 1 : 10;
    const auto dt = static_cast<int>(std::min<qint64>(steps * snapStep, std::numeric_limits<int>::max()));
    const QVector<int> ids = m_view->selectedItemIds();
    if (event->key() == Qt::Key_Left)
        moveItemsLeft(ids, -dt);
    else if (event->key() == Qt::Key_Right)
        moveItemsRight(ids, dt);
    m_room->of({});
}

bool TimelineViewDragHandler::canShiftItems(const QVector<int>& ids, int dt) const
{
    const TimelineModel* const model = m_view->timelineModel();
    return std::all_of(ids.begin(), ids.end(), [&](int id) {
        const Item* const item = model->item(id);
        const Track* const track = model->track(item->parentTrackId());
        const qint64 start = item->startTime() + dt;
        return m_room->of(ids).isThere(*track, *item, start) && model->canMoveItem(*item, start);
    });
}

void TimelineViewDragHandler::shiftItems(const QVector<int>& ids, int dt)
{
    TimelineModel* const model = m_view->timelineModel();
    ItemChanges changes(*model, ids.size(), m_view->logger());
    for (const int id : ids) {
        Item* const item = model->item(id);
        model->setItemStartTime(*item, item->startTime() + dt);
    }
    changes.finish();
}

void TimelineViewDragHandler::moveItemsLeft(const QVector<int>& ids, int dt)
{
    Q_ASSERT(dt < 0);
    try {
        const int snapStep = m_view->timelineModel()->snapStep();
        if (canShiftItems(ids, dt))
            shiftItems(ids, dt);
        else if (snapStep > 0 && dt < -snapStep)
            moveItemsLeft(ids, dt + snapStep);
    } catch (...) {
        logCaughtException(m_view->logger(), Q_FUNC_INFO);
    }
}

void TimelineViewDragHandler::moveItemsRight(const QVector<int>& ids, int dt)
{
    Q_ASSERT(dt > 0);
    try {
        const int snapStep = m_view->timelineModel()->snapStep();
        if (canShiftItems(ids, dt))
            shiftItems(ids, dt);
        else if (snapStep > 0 && dt > snapStep)
            moveItemsRight(ids, dt - snapStep);
    } catch (...) {
        logCaughtException(m_view->logger(), Q_FUNC_INFO);
    }
}

} // namespace VeskTimeline
