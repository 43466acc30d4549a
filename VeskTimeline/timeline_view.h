#pragma once

#include <VeskTimeline/timeline_header_view.h>
#include <VeskTimeline/timeline_utils.h>

#include <QList>
#include <QMetaObject>
#include <QPoint>
#include <QString>
#include <QTreeView>

#include <memory>

class IHoxLogger;
class QAbstractProxyModel;

namespace VeskTimeline {

class ItemDelegate;
class OrderedIds;
class TimelineModel;
class TimelineViewDragHandler;
class TimelineViewResizeHandler;
class TimelineViewSelectHandler;
class TimelineViewTrackHandler;

/// Shows the tracks of a TimelineModel as rows over a horizontal time axis, and lets the user edit their items.
///
/// Column 0 holds the track names, column 1 is the time axis. The scrollable range runs from startTime() to endTime();
/// of it the view shows a window that begins at currentTime() and is zoomFactor() milliseconds wide. Times are
/// milliseconds since the epoch, -1 stands for none.
///
/// The view creates its header and its four handlers, which turn input into edits. Before it is of use the application
/// sets a model (setModel()), an ItemDelegate (setItemDelegate()) and the range. Neither models nor delegate are owned.
/// Replaced handlers are not destroyed, and the view's own live as long as the process.
///
/// Selection is the view's own list of item ids; Qt's selection is switched off. Another model starts with none. For
/// use on the GUI thread only.
class VESKTIMELINE_EXPORT TimelineView : public QTreeView
{
    Q_OBJECT

public:
    explicit TimelineView(QWidget* parent = nullptr);
    ~TimelineView() override;

    /// Shows a TimelineModel, directly or behind a QAbstractProxyModel. Any other model stops the process, after a
    /// warning.
    void setModel(QAbstractItemModel* model) override;
    /// Shows a proxy over a TimelineModel, which becomes model(); timelineModel() stays what it was.
    /// @throws QString "source model cannot be cast to TimelineModel", with nothing changed
    void setProxyModel(QAbstractProxyModel* proxy);
    /// Replaces the header and deletes the one before. One that is no TimelineHeaderView is shown, but leaves header()
    /// null, with an error in the log: the view then knows no positions. Null does the same, and the header before
    /// stays.
    void setHeader(QHeaderView* header);
    /// @param delegate an ItemDelegate; not owned
    void setItemDelegate(QAbstractItemDelegate* delegate);

    TimelineHeaderView* header() const { return m_header; }
    /// The model as it was set; null before.
    QAbstractItemModel* model() const { return m_model; }
    TimelineModel* timelineModel() const { return m_timelineModel; }
    QAbstractProxyModel* proxyModel() const { return m_proxyModel; }
    ItemDelegate* itemDelegate() const { return m_delegate; }

    Zoom::Factor zoomFactor() const { return m_zoomFactor; }
    /// Clamped to minimumZoomFactor() and upperZoomFactor(). On a change emits zoomChanged() and, when the window would
    /// otherwise pass the end of the range, currentTimeChanged().
    void setZoomFactor(Zoom::Factor factor);
    /// Smallest zoom factor and shortest range; default 15 s. Setting it, as setting the largest, emits what
    /// setZoomFactor() emits when the zoom factor has to follow.
    Zoom::Factor minimumZoomFactor() const { return m_minZoomFactor; }
    void setMinimumZoomFactor(Zoom::Factor factor);
    /// Largest zoom factor that the application allows; default one day.
    Zoom::Factor maximumZoomFactor() const { return m_maxZoomFactor; }
    void setMaximumZoomFactor(Zoom::Factor factor);
    /// Largest zoom factor that range and maximumZoomFactor() allow.
    Zoom::Factor upperZoomFactor() const { return m_upperZoomFactor; }

    qint64 startTime() const { return m_startTime; }
    /// Moves the range; its length stays. A negative time is refused. Emits rangeChanged(), before it
    /// currentTimeChanged() when the window had to follow.
    void setStartTime(qint64 time);
    /// Left edge of the window.
    qint64 currentTime() const { return m_currentTime; }
    /// Clamped so that the window stays in the range. Emits currentTimeChanged() on a change.
    void setCurrentTime(qint64 time);
    qint64 endTime() const { return m_startTime + m_duration; }
    /// At least minimumZoomFactor() after the start. Emits as setDuration().
    void setEndTime(qint64 time);
    /// Length of the range in milliseconds.
    int duration() const { return m_duration; }
    /// At least minimumZoomFactor(). Emits rangeChanged(), then zoomChanged() and currentTimeChanged() where they
    /// follow.
    void setDuration(int duration);
    /// Sets start and length at once; bounds in the wrong order are swapped. The length must fit an int and is at least
    /// minimumZoomFactor(). Moves the
    /// window into the range without a signal and leaves the zoom factor alone. Emits rangeChanged().
    void setRange(qint64 start, qint64 end);

    /// Whether the cursor text is drawn beside the mouse while the hover marker shows; default false.
    bool isCursorTextVisible() const { return m_isCursorTextVisible; }
    void setCursorTextVisible(bool isVisible);
    void setCursorText(const QString& text);

    /// Selected items in the order in which they were selected, each once.
    const QList<int>& selectedItemIds() const;
    bool hasSelectedItems() const { return !selectedItemIds().isEmpty(); }
    bool isItemSelected(int id) const;
    /// Emits selectedItemsChanged() even when nothing was selected.
    void clearSelectedItems();
    /// Selects all items of the model, in its order; nothing without a model.
    void selectAllItems();
    /// Adds an item, or, with `clear`, makes it the selection. Without `clear` a selected item is left alone, without
    /// signal.
    void selectItem(int id, bool clear);
    /// Adds items, or, with `clear`, makes them the selection. Always emits selectedItemsChanged().
    void selectItems(const QList<int>& ids, bool clear);
    /// Emits selectedItemsChanged() only when the item was selected.
    void unselectItem(int id);

    /// x of a time, as TimelineHeaderView::toPixel(); -1 without header.
    int toPixel(qint64 time) const;
    /// Time at an x, as TimelineHeaderView::toTime(); -1 without header.
    qint64 toTime(int x) const;
    /// Milliseconds from the left edge of the time column to an x, over the view's whole width; -1 without header.
    qint64 toDuration(int px) const;
    /// Whole widths of the time column from startTime() to `d`, in pixels; -1 without header.
    int fromDuration(qint64 d) const;
    bool isCursorWithinRange(const QPoint& pos) const;
    /// Whether x lies in the time column, its edges excluded; false without header.
    bool isCursorWithinRangeX(int x) const;
    /// Whether y lies in the view, its edges excluded.
    bool isCursorWithinRangeY(int y) const;

    TimelineViewDragHandler* dragHandler() const { return m_dragHandler; }
    TimelineViewResizeHandler* resizeHandler() const { return m_resizeHandler; }
    TimelineViewSelectHandler* selectHandler() const { return m_selectHandler; }
    TimelineViewTrackHandler* trackHandler() const { return m_trackHandler; }
    /// Handlers may be null: their gestures are then off. The view does not own what is set here.
    void setDragHandler(TimelineViewDragHandler* handler) { m_dragHandler = handler; }
    void setResizeHandler(TimelineViewResizeHandler* handler) { m_resizeHandler = handler; }
    void setSelectHandler(TimelineViewSelectHandler* handler) { m_selectHandler = handler; }
    void setTrackHandler(TimelineViewTrackHandler* handler) { m_trackHandler = handler; }

    /// Index of a track's row in the model that the view shows, through the proxy if there is one; invalid for a track
    /// that is not shown.
    QModelIndex indexOfTrackRow(int trackId, int column) const;
    /// "Timeline.TimelineView"
    IHoxLogger& logger() const { return m_logger; }

Q_SIGNALS:
    void rangeChanged(qint64 start, qint64 end);
    void currentTimeChanged(qint64 time);
    void zoomChanged(VeskTimeline::Zoom::Factor factor);
    /// A track's name was double-clicked. Carries the name as a number, 0 for one that is none.
    void trackActivated(int trackId);
    void selectedItemsChanged(const QList<int>& ids);
    /// An item was double-clicked.
    void itemActivated(int itemId);
    /// The left button was released over a move or a resize. A move is in the model only after this signal; drops and
    /// moves by keys come without.
    void currentItemTimeChanged();

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void connectHeader();
    void forgetWhenDestroyed(QObject* object);
    void leaveTimelineModel();
    void announceSelection();
    void moveWindowIntoRange();

    bool isEditable() const;
    bool isHeaderBusy() const;
    Qt::CursorShape cursorShape() const;
    void routePress(QMouseEvent* event);
    void routeMove(QMouseEvent* event);
    void routeRelease(QMouseEvent* event);
    bool continueGesture(QMouseEvent* event);
    void updateHover(const QPoint& pos);
    void updateEdgeCursor(const QModelIndex& index, int x);
    bool isOverEdge(const QModelIndex& index, int x) const;
    void routeKey(QKeyEvent* event);
    bool isOverHeader(const QPointF& pos) const;
    void paintOverlays(QPainter* painter);
    void paintRubberBand(QPainter* painter);
    void paintVerticalLine(QPainter* painter, int x, const QColor& color);
    void paintCursorText(QPainter* painter);

    IHoxLogger& m_logger;
    TimelineHeaderView* m_header;
    TimelineModel* m_timelineModel;
    QAbstractItemModel* m_model;
    QAbstractProxyModel* m_proxyModel;
    ItemDelegate* m_delegate;
    TimelineViewDragHandler* m_dragHandler;
    TimelineViewResizeHandler* m_resizeHandler;
    TimelineViewSelectHandler* m_selectHandler;
    TimelineViewTrackHandler* m_trackHandler;
    Zoom::Factor m_zoomFactor;
    Zoom::Factor m_upperZoomFactor;
    Zoom::Factor m_minZoomFactor;
    Zoom::Factor m_maxZoomFactor;
    qint64 m_startTime;
    qint64 m_currentTime;
    int m_duration;
    bool m_isCursorTextVisible;
    QString m_cursorText;
    QPoint m_cursorPosition;
    std::unique_ptr<OrderedIds> m_selectedItemIds;
    QList<QMetaObject::Connection> m_lifetimeConnections;
};

} // namespace VeskTimeline
