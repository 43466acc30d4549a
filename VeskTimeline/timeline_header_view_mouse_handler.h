#pragma once

#include <VeskTimeline/vesktimeline_export.h>

#include <QPoint>
#include <Qt>

class QMouseEvent;
class QWheelEvent;

namespace VeskTimeline {

class TimelineHeaderView;

/// Mouse and wheel on the ruler: drags and places the indicator, moves the hover marker, resizes the track column by
/// its right border, changes the ruler's format with the right button, zooms and scrolls with the wheel.
///
/// Positions are in the ruler's coordinates. Cursor shapes are set on the ruler's TimelineView; without one only the
/// right button has an effect.
class VESKTIMELINE_EXPORT TimelineHeaderViewMouseHandler
{
public:
    /// @param header the ruler served; not owned
    explicit TimelineHeaderViewMouseHandler(TimelineHeaderView* header);
    TimelineHeaderViewMouseHandler(const TimelineHeaderViewMouseHandler&) = delete;
    TimelineHeaderViewMouseHandler& operator=(const TimelineHeaderViewMouseHandler&) = delete;
    virtual ~TimelineHeaderViewMouseHandler();

    /// Left: grabs the indicator, if visible and not locked, or the border of the track column.
    virtual void mousePressEvent(QMouseEvent* event);
    /// Moves the hover marker, and what the left button holds: the indicator, snapped while snapping is on, or the
    /// border of the track column, up to half of the ruler.
    virtual void mouseMoveEvent(QMouseEvent* event);
    /// Left, without a move: places the indicator unless locked. Right: next format of the ruler.
    virtual void mouseReleaseEvent(QMouseEvent* event);
    /// With exactly Control: zooms the view; otherwise scrolls it by one labelled tick.
    virtual void wheelEvent(QWheelEvent* event);

    /// Whether the indicator is being dragged or the track column resized; the view then leaves the mouse to this
    /// handler.
    bool isBusy() const { return m_isIndicatorSelected || m_isResizingSection; }
    bool isIndicatorSelected() const { return m_isIndicatorSelected; }

private:
    bool isMouseWithinRangeX(int x) const;
    bool isMouseWithinRangeY(int y) const;
    bool isMouseOverIndicator(const QPoint& pos) const;
    bool isIndicatorMovableAt(const QPoint& pos) const;
    bool isOverColumnBorder(int x) const;
    void updateColumnResize(const QPoint& pos);
    void releaseLeftButton(const QPoint& pos);
    void releaseRightButton();
    void setViewCursor(Qt::CursorShape shape);

    TimelineHeaderView* m_header;
    QPoint m_lastPos;
    bool m_isLeftButtonPressed = false;
    bool m_isRightButtonPressed = false;
    bool m_hasMouseMovedLeft = false;
    bool m_hasMouseMovedRight = false;
    bool m_isIndicatorSelected = false;
    bool m_isResizingSection = false;
};

} // namespace VeskTimeline
