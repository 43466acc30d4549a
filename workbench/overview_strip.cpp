#include "overview_strip.h"

#include "navigation.h"
#include "ruler_time.h"

#include <VeskTimeline/timeline_header_view.h>
#include <VeskTimeline/timeline_view.h>
#include <VeskTimeline/timeline_widget.h>

#include <QHelpEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QToolTip>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

namespace Workbench {

using namespace VeskTimeline;
using namespace VeskTimeline::Kit;

namespace {

constexpr double narrowestFrame = 7;
constexpr double edgeReach = 5;
// A frame narrower than this is all middle.
constexpr double narrowestWithEdges = 28;
constexpr int wheelNotch = 120;

} // namespace

OverviewStrip::OverviewStrip(Navigation* navigation, QWidget* parent)
    : QWidget(parent), m_navigation(navigation), m_density(navigation)
{
    setObjectName(QStringLiteral("overviewStrip"));
    setAccessibleName(tr("Overview of the document"));
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    connect(&m_density, &OverviewDensity::changed, this, &OverviewStrip::refresh);
    connect(navigation, &Navigation::documentSpanChanged, this, &OverviewStrip::refresh);
    connect(navigation, &Navigation::windowChanged, this, &OverviewStrip::showWindow);
    if (const TimelineHeaderView* const header = navigation->widget()->header()) {
        const auto repaint = qOverload<>(&QWidget::update);
        connect(header, &TimelineHeaderView::indicatorTimeChanged, this, repaint);
        connect(header, &TimelineHeaderView::indicatorVisibilityChanged, this, repaint);
        connect(header, &TimelineHeaderView::liveIndicatorTimeChanged, this, repaint);
        connect(header, &TimelineHeaderView::liveIndicatorVisibilityChanged, this, repaint);
    }
    describe();
}

QSize OverviewStrip::sizeHint() const
{
    constexpr int chart = 30;
    constexpr int width = 400;
    return {width, chart + fontMetrics().height() + 2};
}

QSize OverviewStrip::minimumSizeHint() const
{
    constexpr int width = 60;
    return {width, sizeHint().height()};
}

int OverviewStrip::chartHeight() const
{
    return height() - fontMetrics().height() - 2;
}

double OverviewStrip::toPixel(qint64 time) const
{
    const TimeSpan span = m_navigation->overviewSpan();
    return static_cast<double>(time - span.start) / static_cast<double>(span.end - span.start) * width();
}

qint64 OverviewStrip::toTime(double x) const
{
    const TimeSpan span = m_navigation->overviewSpan();
    return span.start + std::llround(x / std::max(1, width()) * static_cast<double>(span.end - span.start));
}

QRectF OverviewStrip::windowFrame() const
{
    const TimeSpan window = m_navigation->window();
    const double left = std::clamp<double>(toPixel(window.start), 0, width());
    const double right = std::clamp<double>(toPixel(window.end), 0, width());
    const double wide = std::min<double>(std::max(right - left, narrowestFrame), width());
    const double start = std::clamp((left + right - wide) / 2, 0.0, width() - wide);
    return {start, 0, wide, static_cast<double>(chartHeight())};
}

OverviewStrip::Grip OverviewStrip::gripAt(double x) const
{
    const QRectF frame = windowFrame();
    if (frame.width() >= narrowestWithEdges) {
        if (std::abs(x - frame.left()) <= edgeReach)
            return Grip::StartEdge;
        if (std::abs(x - frame.right()) <= edgeReach)
            return Grip::EndEdge;
    }
    return frame.left() <= x && x <= frame.right() ? Grip::Frame : Grip::None;
}

void OverviewStrip::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton)
        return;
    const double x = event->position().x();
    m_windowBefore = m_navigation->window();
    m_grip = gripAt(x);
    if (m_grip == Grip::None) {
        m_navigation->scrollCentreTo(meantAt(toTime(x)));
        m_grip = Grip::Frame;
    }
    const qint64 held = m_grip == Grip::EndEdge ? m_navigation->window().end : m_navigation->window().start;
    m_grab = x - toPixel(held);
    if (m_grip == Grip::Frame)
        setCursor(Qt::ClosedHandCursor);
}

void OverviewStrip::mouseMoveEvent(QMouseEvent* event)
{
    const double x = event->position().x();
    if (m_grip == Grip::Frame)
        dragTo(x);
    else if (m_grip != Grip::None)
        dragEdgeTo(x);
    if (m_grip != Grip::None) {
        const TimeSpan window = m_navigation->window();
        QToolTip::showText(event->globalPosition().toPoint(),
                           tr("%1 – %2").arg(rulerTimeText(window.start), rulerTimeText(window.end)), this);
        return;
    }
    const Grip grip = gripAt(x);
    if (grip == Grip::None)
        setCursor(Qt::PointingHandCursor);
    else
        setCursor(grip == Grip::Frame ? Qt::OpenHandCursor : Qt::SizeHorCursor);
}

void OverviewStrip::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton)
        endDrag();
}

// The presses of a double click have moved the window already.
void OverviewStrip::mouseDoubleClickEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton)
        m_navigation->fit();
}

void OverviewStrip::endDrag()
{
    m_grip = Grip::None;
    setCursor(Qt::PointingHandCursor);
    QToolTip::hideText();
}

void OverviewStrip::takeDragBack()
{
    endDrag();
    m_navigation->setWindow(m_windowBefore.start, static_cast<Zoom::Factor>(m_windowBefore.end - m_windowBefore.start));
}

void OverviewStrip::dragTo(double x)
{
    const TimeSpan window = m_navigation->window();
    m_navigation->scrollCentreTo(meantAt(toTime(x - m_grab) + (window.end - window.start) / 2));
}

// Where a pixel stands for many windows, nobody can point at an item so well that it is seen.
qint64 OverviewStrip::meantAt(qint64 time) const
{
    constexpr int many = 4;
    constexpr double reach = 3;
    const TimeSpan window = m_navigation->window();
    if (toTime(1) - toTime(0) < many * (window.end - window.start))
        return time;
    return m_navigation->closestToItems(time, toTime(reach) - toTime(0)).value_or(time);
}

// The view has steps of zoom: the one that comes closest to where the edge is drawn, as a ratio.
void OverviewStrip::dragEdgeTo(double x)
{
    const TimeSpan window = m_navigation->window();
    const bool isStart = m_grip == Grip::StartEdge;
    const qint64 edge = toTime(x - m_grab);
    const qint64 wanted = std::clamp<qint64>(isStart ? window.end - edge : edge - window.start, 1, Zoom::OneDay);
    const Zoom::Factor below = Zoom::floor(static_cast<int>(wanted));
    const Zoom::Factor above = Zoom::ceil(static_cast<int>(wanted));
    const bool isCloserAbove = double(wanted) * double(wanted) > double(below) * double(above);
    const TimelineWidget* const widget = m_navigation->widget();
    const Zoom::Factor widest = std::max(widget->minimumZoomFactor(), widget->view()->upperZoomFactor());
    const Zoom::Factor factor = std::clamp(isCloserAbove ? above : below, widget->minimumZoomFactor(), widest);
    m_navigation->setWindow(isStart ? window.end - factor : window.start, factor);
}

void OverviewStrip::wheelEvent(QWheelEvent* event)
{
    const QPoint delta = event->angleDelta();
    m_wheelRest += std::abs(delta.x()) > std::abs(delta.y()) ? delta.x() : delta.y();
    const int notches = m_wheelRest / wheelNotch;
    m_wheelRest -= notches * wheelNotch;
    event->accept();
    if (notches == 0)
        return;
    if (event->modifiers().testFlag(Qt::ControlModifier)) {
        for (int i = 0; i < std::abs(notches); ++i)
            m_navigation->zoomBy(notches > 0 ? 1 : -1);
        return;
    }
    const TimeSpan window = m_navigation->window();
    m_navigation->scrollTo(window.start - notches * (window.end - window.start) / 2);
}

void OverviewStrip::keyPressEvent(QKeyEvent* event)
{
    const TimeSpan window = m_navigation->window();
    const qint64 length = window.end - window.start;
    constexpr int keySteps = 10;
    switch (event->key()) {
    case Qt::Key_Left:
        m_navigation->scrollTo(window.start - length / keySteps);
        return;
    case Qt::Key_Right:
        m_navigation->scrollTo(window.start + length / keySteps);
        return;
    case Qt::Key_PageUp:
        m_navigation->scrollTo(window.start - length);
        return;
    case Qt::Key_PageDown:
        m_navigation->scrollTo(window.start + length);
        return;
    case Qt::Key_Home:
        m_navigation->scrollTo(m_navigation->overviewSpan().start);
        return;
    case Qt::Key_End:
        m_navigation->scrollTo(m_navigation->overviewSpan().end - length);
        return;
    case Qt::Key_Plus:
        m_navigation->zoomBy(1);
        return;
    case Qt::Key_Minus:
        m_navigation->zoomBy(-1);
        return;
    case Qt::Key_Escape:
        if (m_grip != Grip::None) {
            takeDragBack();
            return;
        }
        break;
    default:
        break;
    }
    QWidget::keyPressEvent(event);
}

bool OverviewStrip::event(QEvent* event)
{
    if (event->type() == QEvent::ToolTip) {
        const auto* const help = static_cast<QHelpEvent*>(event);
        QToolTip::showText(help->globalPos(), rulerTimeText(toTime(help->pos().x())), this);
        return true;
    }
    return QWidget::event(event);
}

void OverviewStrip::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    refresh();
}

void OverviewStrip::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    refresh();
}

void OverviewStrip::refresh()
{
    m_picture = QPixmap();
    describe();
    update();
}

void OverviewStrip::showWindow()
{
    describe();
    update();
}

void OverviewStrip::describe()
{
    const TimeSpan window = m_navigation->window();
    setAccessibleDescription(tr("Shown: %1 – %2").arg(rulerTimeText(window.start), rulerTimeText(window.end)));
}

} // namespace Workbench
