#pragma once

#include <VeskTimeline/timeline_view_selection_handler.h>
#include <VeskTimeline/timeline_view_track_handler.h>

#include <functional>

namespace Workbench {

/// What a press or double click in the rows asks for, besides what the view does itself.
struct RowRequests
{
    std::function<void(int trackId)> rowPressed;
    std::function<void(int trackId, qint64 time)> emptyPlaceActivated;
    std::function<void(int trackId)> nameActivated;
    std::function<void()> removeItems;
};

/// Deletes a selection in one go, reports double clicks on empty places of a row, and leaves the request for a context
/// menu to the view, which makes it for any right press.
class RowSelectHandler : public VeskTimeline::TimelineViewSelectHandler
{
public:
    RowSelectHandler(VeskTimeline::TimelineView* view, const RowRequests& requests);

    void mousePressEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    const RowRequests& m_requests;
};

/// Reports presses on track names, and double clicks beside their buttons.
class RowTrackHandler : public VeskTimeline::TimelineViewTrackHandler
{
public:
    RowTrackHandler(VeskTimeline::TimelineView* view, const RowRequests& requests);

    void mousePressEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;

private:
    const RowRequests& m_requests;
};

} // namespace Workbench
