#pragma once

#include <VeskTimeline/vesktimeline_export.h>

#include <QRect>
#include <QVector>

class QKeyEvent;
class QMouseEvent;

namespace VeskTimeline {

class Item;
class TimelineView;

/// Turns clicks, double clicks, rubber bands and keys into changes of the view's selection, into activation and
/// context-menu requests, and into deleting and clipboard operations on the model.
///
/// Mouse: click selects one item, or unselects it when it was the only one; Control-click adds or removes one; a drag
/// from empty space selects what the rubber band covers. Shift has no meaning. Keys: Escape, Delete, and with Control
/// A, C, X, V.
///
/// Failures are logged to "Timeline.TimelineView"; no event operation throws.
class VESKTIMELINE_EXPORT TimelineViewSelectHandler
{
public:
    /// @param view the view served; not owned
    explicit TimelineViewSelectHandler(TimelineView* view);
    TimelineViewSelectHandler(const TimelineViewSelectHandler&) = delete;
    TimelineViewSelectHandler& operator=(const TimelineViewSelectHandler&) = delete;
    virtual ~TimelineViewSelectHandler();

    /// Left button: clears the selection; emits TimelineView::itemActivated() on an item.
    virtual void mouseDoubleClickEvent(QMouseEvent* event);
    /// Follows a rubber band; without one, gives up the pending click.
    virtual void mouseMoveEvent(QMouseEvent* event);
    /// Left button: remembers the item pressed, or starts a rubber band. Right button on empty space of a row: emits
    /// the view's customContextMenuRequested().
    virtual void mousePressEvent(QMouseEvent* event);
    /// Left button: selects what the rubber band covers, or carries out the pending click.
    virtual void mouseReleaseEvent(QMouseEvent* event);
    virtual void keyPressEvent(QKeyEvent* event);
    /// Whether Control is held, a rubber band is active, or a click is pending.
    virtual bool isActive() const;
    virtual bool isRubberBandActive() const;

    /// In viewport coordinates, from the press; the size is negative where the mouse went left or up.
    const QRect& rubberBand() const { return m_rubberBand; }

protected:
    /// Gives up a pending click and a rubber band; for a gesture whose model has gone.
    void clear();

    /// Ids of the items that the rubber band covers, row by row; may hold an id twice.
    virtual QVector<int> getItemsWithinRubberBand() const;

    TimelineView* m_view;
    int m_selectedItemId = -1;
    QRect m_rubberBand;
    bool m_isRubberBandActive = false;

private:
    const Item* findItemAt(const QPoint& pos) const;
    void pressOutsideRows(const QMouseEvent& event);
    void pressInRow(const QMouseEvent& event);
    void startRubberBand(const QPoint& pos);
    void finishRubberBand(const char* signature);
    void click(int itemId, bool isToggle);
    void removeSelectedItems(const char* signature);
    void removeItem(int id, const char* signature);
    void controlKeyPress(QKeyEvent* event);
    static void leaveUnknownKey(QKeyEvent* event);
    void paste();
    void appendRowItems(const QPoint& pos, qint64 start, qint64 end, QVector<int>* ids) const;

    friend class TimelineView;
};

} // namespace VeskTimeline
