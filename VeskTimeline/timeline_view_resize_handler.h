#pragma once

#include <VeskTimeline/vesktimeline_export.h>

#include <QtGlobal>

class QMouseEvent;
class QPoint;

namespace VeskTimeline {

class Item;
class Track;
class TimelineView;

/// Changes start or end of one item by its edges.
///
/// Unlike a move, a resize writes to the model at every move of the mouse, through TimelineModel::setItemDuration() and
/// TimelineModel::setItemStartTime(), and repaints the view after each write. TimelineModel::canResizeItem() may refuse
/// a size; the item then keeps its last one. Edges can be taken within 5 pixels inside an item that is wider than 14
/// pixels.
///
/// Failed look-ups are logged to "Timeline.TimelineView"; no event operation throws.
/// localSnapTime() and globalSnapTime() throw a `QString` when the item held, or its track, has gone.
class VESKTIMELINE_EXPORT TimelineViewResizeHandler
{
public:
    /// The edge that is held.
    enum ResizePosition { eNone = 0, eStart = 1, eEnd = 2 };

    /// @param view the view served; not owned
    explicit TimelineViewResizeHandler(TimelineView* view);
    TimelineViewResizeHandler(const TimelineViewResizeHandler&) = delete;
    TimelineViewResizeHandler& operator=(const TimelineViewResizeHandler&) = delete;
    virtual ~TimelineViewResizeHandler();

    /// Resizes while the mouse is over the item's row. A failure ends the resize.
    virtual void mouseMoveEvent(QMouseEvent* event);
    /// Left button: takes the edge under the mouse.
    virtual void mousePressEvent(QMouseEvent* event);
    /// Left button, while the model is editable: ends the resize. Emits TimelineView::currentItemTimeChanged(), whether
    /// there was one or not.
    virtual void mouseReleaseEvent(QMouseEvent* event);
    /// Whether an edge is held.
    virtual bool isActive() const;
    /// Time for the held edge at x while snapping is off: that under the mouse, bounded by the neighbours on the track;
    /// where the edge would pass the item's other one, the minimum duration from that.
    virtual qint64 localSnapTime(int x) const;
    /// Time for the held edge at x while snapping is on: on the grid, or on an edge of another item of any track within
    /// the tolerance, bounded by the neighbours and the view's range.
    virtual qint64 globalSnapTime(int x) const;

protected:
    /// Back to idle without a signal; for a gesture whose model has gone.
    void clear();

    TimelineView* m_view;
    int m_currentTrackId = -1;
    int m_currentItemId = -1;
    ResizePosition m_resizePos = eNone;

private:
    struct Bounds
    {
        qint64 lower;
        qint64 upper;
    };

    bool isModelEditable() const;
    bool holdsEdge() const;
    void takeEdgeUnder(const QPoint& pos);
    void resizeTo(const QPoint& pos);
    void resizeEnd(Track& track, Item& item, qint64 time);
    void resizeStart(Track& track, Item& item, qint64 time);
    void finish();
    qint64 localEndTime(const Track& track, const Item& item, qint64 time) const;
    qint64 localStartTime(const Track& track, const Item& item, qint64 time) const;
    const Item* findHeldItem() const;
    Bounds neighbourBounds(const Track& track, const char* signature) const;
    bool snapCandidate(const Item& other, qint64 time, qint64* candidate) const;
    bool isBeyondOtherEdge(const Item& item, qint64 time) const;
    qint64 snappedToEdges(const Item& item, qint64 gridTime, const char* signature) const;

    friend class TimelineView;
};

} // namespace VeskTimeline
