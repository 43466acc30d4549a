#pragma once

#include "support/view_fixture.h"

#include <VeskTimeline/timeline_view_drag_handler.h>
#include <VeskTimeline/timeline_view_resize_handler.h>
#include <VeskTimeline/timeline_view_selection_handler.h>
#include <VeskTimeline/timeline_view_track_handler.h>

#include <QDragEnterEvent>
#include <QKeyEvent>
#include <QMouseEvent>

#include <functional>

/// What the handlers were given, in order.
class CallList
{
public:
    void add(const char* name, const QEvent* event)
    {
        m_names.append(QLatin1String(name));
        m_events.append(event);
        if (onCall)
            onCall();
    }
    void clear()
    {
        m_names.clear();
        m_events.clear();
    }
    const QStringList& names() const { return m_names; }
    bool allGot(const QEvent* event) const { return m_events.count(event) == m_events.size(); }

    /// Called at every call, to throw from within one.
    std::function<void()> onCall;

private:
    QStringList m_names;
    QList<const QEvent*> m_events;
};

class RecordingTrackHandler : public VeskTimeline::TimelineViewTrackHandler
{
public:
    RecordingTrackHandler(VeskTimeline::TimelineView* view, CallList& calls)
        : TimelineViewTrackHandler(view), m_calls(calls)
    {
    }
    void mouseDoubleClickEvent(QMouseEvent* event) override { m_calls.add("track.doubleClick", event); }
    void mousePressEvent(QMouseEvent* event) override { m_calls.add("track.press", event); }
    void mouseReleaseEvent(QMouseEvent* event) override { m_calls.add("track.release", event); }

private:
    CallList& m_calls;
};

class RecordingResizeHandler : public VeskTimeline::TimelineViewResizeHandler
{
public:
    RecordingResizeHandler(VeskTimeline::TimelineView* view, CallList& calls)
        : TimelineViewResizeHandler(view), m_calls(calls)
    {
    }
    void mouseMoveEvent(QMouseEvent* event) override { m_calls.add("resize.move", event); }
    void mousePressEvent(QMouseEvent* event) override { m_calls.add("resize.press", event); }
    void mouseReleaseEvent(QMouseEvent* event) override { m_calls.add("resize.release", event); }
    bool isActive() const override { return active; }

    bool active = false;

private:
    CallList& m_calls;
};

class RecordingSelectHandler : public VeskTimeline::TimelineViewSelectHandler
{
public:
    RecordingSelectHandler(VeskTimeline::TimelineView* view, CallList& calls)
        : TimelineViewSelectHandler(view), m_calls(calls)
    {
    }
    void mouseDoubleClickEvent(QMouseEvent* event) override { m_calls.add("select.doubleClick", event); }
    void mouseMoveEvent(QMouseEvent* event) override { m_calls.add("select.move", event); }
    void mousePressEvent(QMouseEvent* event) override { m_calls.add("select.press", event); }
    void mouseReleaseEvent(QMouseEvent* event) override { m_calls.add("select.release", event); }
    void keyPressEvent(QKeyEvent* event) override { m_calls.add("select.key", event); }
    bool isActive() const override { return active; }
    bool isRubberBandActive() const override { return rubberBandActive; }

    void setRubberBand(const QRect& band) { m_rubberBand = band; }

    bool active = false;
    bool rubberBandActive = false;

private:
    CallList& m_calls;
};

class RecordingDragHandler : public VeskTimeline::TimelineViewDragHandler
{
public:
    RecordingDragHandler(VeskTimeline::TimelineView* view, CallList& calls)
        : TimelineViewDragHandler(view), m_calls(calls)
    {
    }
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override { m_calls.add("drag.move", event); }
    void mousePressEvent(QMouseEvent* event) override
    {
        m_calls.add("drag.press", event);
        active = active || becomesActiveAtPress;
    }
    void mouseReleaseEvent(QMouseEvent* event) override { m_calls.add("drag.release", event); }
    void keyPressEvent(QKeyEvent* event) override { m_calls.add("drag.key", event); }
    bool isActive() const override { return active; }
    int deltaX() const override { return delta.x(); }
    int deltaY() const override { return delta.y(); }

    void setDragItemIds(const QVector<int>& ids) { m_dragItemIds = ids; }

    bool active = false;
    bool becomesActiveAtPress = false;
    QPoint delta;

private:
    CallList& m_calls;
};

inline void RecordingDragHandler::dragEnterEvent(QDragEnterEvent* event)
{
    m_calls.add("drag.enter", event);
}

inline void RecordingDragHandler::dragMoveEvent(QDragMoveEvent* event)
{
    m_calls.add("drag.dragMove", event);
}

inline void RecordingDragHandler::dragLeaveEvent(QDragLeaveEvent* event)
{
    m_calls.add("drag.leave", event);
}

inline void RecordingDragHandler::dropEvent(QDropEvent* event)
{
    m_calls.add("drag.drop", event);
}

/// The view's event handlers, to hand them an event without Qt's copying it on the way.
class OpenView : public VeskTimeline::TimelineView
{
public:
    using TimelineView::dragEnterEvent;
    using TimelineView::dragLeaveEvent;
    using TimelineView::dragMoveEvent;
    using TimelineView::dropEvent;
    using TimelineView::keyPressEvent;
    using TimelineView::mouseDoubleClickEvent;
    using TimelineView::mouseMoveEvent;
    using TimelineView::mousePressEvent;
    using TimelineView::mouseReleaseEvent;
    using TimelineView::wheelEvent;
};

/// Recording handlers in place of a view's own, for as long as this lives.
struct RecordingHandlers
{
    explicit RecordingHandlers(VeskTimeline::TimelineView& recordedView)
        : view(recordedView),
          track(&recordedView, calls),
          resize(&recordedView, calls),
          select(&recordedView, calls),
          drag(&recordedView, calls)
    {
        view.setTrackHandler(&track);
        view.setResizeHandler(&resize);
        view.setSelectHandler(&select);
        view.setDragHandler(&drag);
    }
    RecordingHandlers(const RecordingHandlers&) = delete;
    RecordingHandlers& operator=(const RecordingHandlers&) = delete;
    ~RecordingHandlers() { removeAll(); }

    void removeAll()
    {
        view.setTrackHandler(nullptr);
        view.setResizeHandler(nullptr);
        view.setSelectHandler(nullptr);
        view.setDragHandler(nullptr);
    }

    VeskTimeline::TimelineView& view;
    CallList calls;
    RecordingTrackHandler track;
    RecordingResizeHandler resize;
    RecordingSelectHandler select;
    RecordingDragHandler drag;
};
