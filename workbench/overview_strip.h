#pragma once

#include "overview_density.h"
#include "overview_ticks.h"

#include <QPixmap>
#include <QWidget>

#include <optional>

namespace Workbench {

class Navigation;

/// Shows a document from end to end: how many items there are where, dates, the indicator, and as a frame the window
/// that the timeline shows.
///
/// A click brings the window to its place; the frame can be dragged, and where it is wide enough its edges too, which
/// zooms. The wheel scrolls and, with Control, zooms; a double click shows the start at the widest zoom. Keys: arrows
/// scroll, Page Up and Page Down by a window, Home and End to the ends, plus and minus zoom, Escape takes a drag back.
/// Where a pixel stands for many windows, as when decades lie between the items of a document, clicks and drags find
/// the items that are a few pixels away. A window outside the document is told by an arrow at that end.
class OverviewStrip : public QWidget
{
    Q_OBJECT

public:
    /// @param navigation not owned
    explicit OverviewStrip(Navigation* navigation, QWidget* parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

    /// x of a time and time at an x, not clamped to the strip.
    double toPixel(qint64 time) const;
    qint64 toTime(double x) const;
    /// Where the window's frame is; no narrower than can be taken hold of, and within the strip.
    QRectF windowFrame() const;
    const OverviewDensity& density() const { return m_density; }

public Q_SLOTS:
    /// Paints all anew; to be called when the zone that the ruler shows has changed, which announces itself to nobody.
    void refresh();

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    enum class Grip { None, Frame, StartEdge, EndEdge };
    /// What a press at an x takes hold of.
    Grip gripAt(double x) const;
    void dragTo(double x);
    qint64 meantAt(qint64 time) const;
    void dragEdgeTo(double x);
    void endDrag();
    void takeDragBack();
    void showWindow();
    void describe();
    int chartHeight() const;

    void paintPicture(QPainter* painter);
    void paintDensity(QPainter* painter) const;
    void paintTicks(QPainter* painter) const;
    void paintWindow(QPainter* painter) const;
    void paintIndicator(QPainter* painter) const;

    Navigation* m_navigation;
    OverviewDensity m_density;
    /// What a document that is left alone looks like; null: to be painted anew.
    QPixmap m_picture;
    Grip m_grip = Grip::None;
    /// From the frame's left edge, or from the edge that is dragged, to where it was taken hold of.
    double m_grab = 0;
    VeskTimeline::Kit::TimeSpan m_windowBefore;
    int m_wheelRest = 0;
};

} // namespace Workbench
