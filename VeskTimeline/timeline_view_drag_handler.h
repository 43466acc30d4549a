#pragma once

#include <VeskTimeline/vesktimeline_export.h>

#include <QModelIndex>
#include <QPoint>
#include <QVector>

#include <memory>

class QDragEnterEvent;
class QDragLeaveEvent;
class QDragMoveEvent;
class QDropEvent;
class QKeyEvent;
class QMouseEvent;

namespace VeskTimeline {

class IdSet;
class IdsOfList;
class Item;
class RoomForItems;
class TimelineView;

/// Moves items in time, with the mouse or the arrow keys, and to other tracks.
///
/// States: idle; pressed, once the left button is down on an item; active, once the mouse has travelled
/// QApplication::startDragDistance(). Over the track of the press a move ends with the release; over another track it
/// becomes a drag and drop inside the view, whose data is only a marker (Item::mimetype): everything about the moved
/// items is this handler's state. Nothing changes in the model before the release or the drop. Until then the delegate
/// paints the items displaced by deltaX() and deltaY().
///
/// Failed look-ups are logged to "Timeline.TimelineView", at Debug for a press on empty space, otherwise at Error; no
/// event operation throws. deltaX(), deltaTime(), canDragItemsTo() and canMoveItemsTo() throw a `QString` when an item
/// that is being dragged has gone. Positions are in viewport coordinates, times milliseconds since the epoch. Every
/// operation calls the others through their virtual slots, so that a subclass changes the rules by overriding one of
/// them.
class VESKTIMELINE_EXPORT TimelineViewDragHandler
{
public:
    /// @param view the view served; not owned
    explicit TimelineViewDragHandler(TimelineView* view);
    TimelineViewDragHandler(const TimelineViewDragHandler&) = delete;
    TimelineViewDragHandler& operator=(const TimelineViewDragHandler&) = delete;
    virtual ~TimelineViewDragHandler();

    /// Accepts a drag of this view's own items.
    virtual void dragEnterEvent(QDragEnterEvent* event);
    /// Follows the drag; accepted where canDragItemsTo() allows a drop.
    virtual void dragMoveEvent(QDragMoveEvent* event);
    virtual void dragLeaveEvent(QDragLeaveEvent* event);
    /// Moves the items to their tracks with TimelineModel::moveItemToTrack(). A drop that is not allowed is accepted
    /// and changes nothing. A failure stops the moving; what was moved before stays moved.
    virtual void dropEvent(QDropEvent* event);
    /// Follows the mouse; abandons the move unless the left button, and no other, is held.
    virtual void mouseMoveEvent(QMouseEvent* event);
    /// Left button on an item: takes the selection, or just the item when it is not selected. One that is not editable
    /// keeps the whole group where it is.
    virtual void mousePressEvent(QMouseEvent* event);
    /// Ends a move over the track it began on. Emits TimelineView::currentItemTimeChanged(), then calls
    /// TimelineModel::setItemStartTime() for each item, when canMoveItemsTo() allows it.
    virtual void mouseReleaseEvent(QMouseEvent* event);
    /// While the model is editable and items are selected: Left and Right move these by ten snap steps, with Control by
    /// one; Escape abandons a move.
    virtual void keyPressEvent(QKeyEvent* event);
    /// Whether items have been dragged far enough to be moved.
    virtual bool isActive() const;
    /// Displacement of the dragged items in pixels; while snapping is on, that of deltaTime().
    virtual int deltaX() const;
    /// Displacement of the dragged items in pixels, from row to row; free below the last one.
    virtual int deltaY() const;
    /// The time by which the items move: that between press and latest position; while snapping is on, cut to the grid
    /// and then pulled onto the nearest edge, within the tolerance, of any item that is not dragged.
    virtual qint64 deltaTime() const;

    const QVector<int>& dragItemIds() const { return m_dragItemIds; }
    /// Whether dragItemIds() holds the id; does not search the list.
    bool isItemDragged(int id) const;
    const QModelIndex& dragStartIndex() const { return m_dragStartIndex; }
    qint64 dragStartTime() const { return m_dragStartTime; }
    const QPoint& dragStartPos() const { return m_dragStartPos; }
    const QPoint& dragPos() const { return m_dragPos; }

protected:
    /// Whether the items may be dropped at a position, on any track.
    virtual bool canDragItemsTo(const QPoint& pos) const;
    /// Whether the items may be moved to a position on the track where the move began.
    virtual bool canMoveItemsTo(const QPoint& pos) const;
    /// Moves items by dt < 0 milliseconds, all by the same. Where that is not possible, one snap step less is tried,
    /// and so on.
    virtual void moveItemsLeft(const QVector<int>& ids, int dt);
    /// Moves items by dt > 0 milliseconds, otherwise as moveItemsLeft().
    virtual void moveItemsRight(const QVector<int>& ids, int dt);

    /// The track that an item would land on: as many rows away from its own as the pointer is from the press; 0 for
    /// none.
    int dragItemTrackId(const Item& item) const;
    /// Back to idle; resets the view's cursor.
    void clear();

    TimelineView* m_view;
    QVector<int> m_dragItemIds;
    QModelIndex m_dragStartIndex;
    qint64 m_dragStartTime = -1;
    QPoint m_dragStartPos;
    QPoint m_dragPos;
    /// Reserved for painting a snap line.
    int m_snapLinePos = -1;

private:
    bool isModelEditable() const;
    bool hasGesture() const;
    bool isOwnDrag(const QObject* source) const;
    int trackIdUnder(const QPoint& pos) const;
    int dragStartTrackId() const;
    QModelIndex dragStartRow() const;
    void resetGesture();
    void takeItemUnder(const QPoint& pos);
    void followMouse(const QPoint& pos);
    void startDragAndDrop();
    void moveItemsTo(const QPoint& pos);
    void dropItems();
    const IdSet& dragItemIdSet() const;
    qint64 snappedToEdges(qint64 dt) const;
    bool canShiftItems(const QVector<int>& ids, int dt) const;
    void shiftItems(const QVector<int>& ids, int dt);

    int m_dragStartTrackId = -1;
    std::unique_ptr<IdsOfList> m_dragItemIdSet;
    /// What is known of the tracks while a gesture asks for room again and again.
    std::unique_ptr<RoomForItems> m_room;

    friend class TimelineView;
};

} // namespace VeskTimeline
