#pragma once

#include "gesture_fixture.h"

#include <VeskTimeline/timeline_view_drag_handler.h>

#include <QDragEnterEvent>

#include <functional>
#include <optional>

/// A drag handler whose state can be seen and set, and whose rules can be replaced one by one.
class ProbeDragHandler : public VeskTimeline::TimelineViewDragHandler
{
public:
    using Base = VeskTimeline::TimelineViewDragHandler;
    using Base::Base;
    using Base::clear;
    using Base::dragItemTrackId;
    using Base::m_dragItemIds;
    using Base::m_dragPos;
    using Base::m_dragStartIndex;
    using Base::m_dragStartPos;
    using Base::m_dragStartTime;
    using Base::m_snapLinePos;

    std::function<bool(const QPoint&)> canDrag;
    std::function<bool(const QPoint&)> canMove;
    std::optional<qint64> fixedDeltaTime;
    std::optional<int> fixedDeltaY;
    /// Calls of the virtual rules, in order.
    mutable QStringList calls;
    bool isNudgeReplaced = false;
    /// Drag events and whether they were accepted, in order; repeated moves with the same answer once.
    QStringList transfers;

    bool canDragItemsTo(const QPoint& pos) const override
    {
        calls.append(QStringLiteral("canDrag"));
        return canDrag ? canDrag(pos) : Base::canDragItemsTo(pos);
    }
    bool canMoveItemsTo(const QPoint& pos) const override
    {
        calls.append(QStringLiteral("canMove"));
        return canMove ? canMove(pos) : Base::canMoveItemsTo(pos);
    }
    qint64 deltaTime() const override
    {
        calls.append(QStringLiteral("deltaTime"));
        return fixedDeltaTime ? *fixedDeltaTime : Base::deltaTime();
    }
    int deltaY() const override { return fixedDeltaY ? *fixedDeltaY : Base::deltaY(); }
    void moveItemsLeft(const QVector<int>& ids, int dt) override
    {
        calls.append(QStringLiteral("left %1").arg(dt));
        if (!isNudgeReplaced)
            Base::moveItemsLeft(ids, dt);
    }
    void moveItemsRight(const QVector<int>& ids, int dt) override
    {
        calls.append(QStringLiteral("right %1").arg(dt));
        if (!isNudgeReplaced)
            Base::moveItemsRight(ids, dt);
    }

    void dragEnterEvent(QDragEnterEvent* event) override
    {
        Base::dragEnterEvent(event);
        noteTransfer(QStringLiteral("enter"), *event);
    }
    void dragMoveEvent(QDragMoveEvent* event) override
    {
        Base::dragMoveEvent(event);
        noteTransfer(QStringLiteral("move"), *event);
    }
    void dragLeaveEvent(QDragLeaveEvent* event) override
    {
        Base::dragLeaveEvent(event);
        transfers.append(QStringLiteral("leave"));
    }
    void dropEvent(QDropEvent* event) override
    {
        Base::dropEvent(event);
        noteTransfer(QStringLiteral("drop"), *event);
    }

    bool isIdle() const
    {
        return dragItemIds().isEmpty() && !dragStartIndex().isValid() && dragStartTime() == -1 &&
               dragStartPos().isNull() && dragPos().isNull();
    }

private:
    void noteTransfer(const QString& name, const QDropEvent& event)
    {
        const QString entry = name + (event.isAccepted() ? QStringLiteral(" accepted") : QStringLiteral(" ignored"));
        if (transfers.isEmpty() || transfers.last() != entry)
            transfers.append(entry);
    }
};

struct DragFixture : GestureFixture
{
    ProbeDragHandler handler{&view};

    DragFixture() { view.setDragHandler(&handler); }
    DragFixture(const DragFixture&) = delete;
    DragFixture& operator=(const DragFixture&) = delete;
    ~DragFixture() { view.setDragHandler(nullptr); }
};

/// Signature of one of the handler's operations, as log lines begin.
inline QString dragSignature(const QString& operation)
{
    return QStringLiteral("virtual void VeskTimeline::TimelineViewDragHandler::") + operation;
}
