#include "time_pixel_mapping_p.h"

#include <VeskTimeline/timeline_header_view.h>
#include <VeskTimeline/timeline_header_view_mouse_handler.h>
#include <VeskTimeline/timeline_model.h>
#include <VeskTimeline/timeline_view.h>

#include <QApplication>
#include <QEvent>
#include <QPalette>
#include <QTimer>

#include <algorithm>
#include <cmath>

namespace VeskTimeline {

namespace {

constexpr int noTime = -1;
constexpr int noPosition = -1;
constexpr int plainHeight = 50;
constexpr int heightWithLimits = 70;
constexpr int minimumColumnWidth = 200;

bool hasTickAt(const Ticks& ticks, qint64 time)
{
    const auto found = std::lower_bound(ticks.begin(), ticks.end(), time,
                                        [](const Tick& tick, qint64 wanted) { return tick.time < wanted; });
    return found != ticks.end() && found->time == time;
}

/// Hands a view's new palette on to its header, which as a widget with a style sheet is passed over otherwise.
class PaletteForwarder : public QObject
{
public:
    PaletteForwarder(QWidget* view, QWidget* header) : QObject(header), m_header(header)
    {
        view->installEventFilter(this);
    }

    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::PaletteChange)
            QCoreApplication::sendEvent(m_header, event);
        return QObject::eventFilter(watched, event);
    }

private:
    QWidget* m_header;
};

} // namespace

TimelineHeaderView::TimelineHeaderView(QWidget* parent)
    : QHeaderView(Qt::Horizontal, parent),
      m_mouseHandler(new TimelineHeaderViewMouseHandler(this)),
      m_timelineView(qobject_cast<TimelineView*>(parent)),
      m_dateTimeFormat(DateTime::DTG),
      m_isDateTimeFormatChangable(true),
      m_indicatorScalingFactor(0.5),
      m_indicatorTime(noTime),
      m_isIndicatorVisible(true),
      m_isIndicatorLocked(false),
      m_liveIndicatorScalingFactor(0.5),
      m_liveIndicatorTime(noTime),
      m_isLiveIndicatorVisible(false),
      m_liveTimer(nullptr),
      m_liveTimerInterval(1000),
      m_hoverTime(noTime),
      m_hoverPosition(noPosition),
      m_isHoverVisible(true),
      m_isHoverTimeVisible(true),
      m_hoverDateTimeFormat(DateTime::DTG),
      m_isLimitsVisible(false),
      m_limitsDateTimeFormat(DateTime::DTG),
      m_minLimitIndicator(getMinLimitIndicator()),
      m_maxLimitIndicator(getMaxLimitIndicator()),
      m_limitIndicatorColor(QApplication::palette().color(QPalette::Text))
{
    takeOverPalette();

    if (m_timelineView) {
        new PaletteForwarder(m_timelineView, this);
        connect(m_timelineView, &TimelineView::currentTimeChanged, this, &TimelineHeaderView::onUpdateTicks);
        connect(m_timelineView, &TimelineView::rangeChanged, this, &TimelineHeaderView::onUpdateTicks);
        connect(m_timelineView, &TimelineView::zoomChanged, this, &TimelineHeaderView::onUpdateTicks);
    } else {
        qWarning("WARNING: main functionalities are inoperable without a TimelineView as parent.");
    }

    setStretchLastSection(true);
    setMinimumSectionSize(minimumColumnWidth);
    setFixedHeight(plainHeight);
    connect(this, &QHeaderView::sectionResized, this, &TimelineHeaderView::onUpdateTicks);

    m_liveTimer = new QTimer(this);
    connect(m_liveTimer, &QTimer::timeout, this, &TimelineHeaderView::onLiveTimeout);
}

TimelineHeaderView::~TimelineHeaderView()
{
    delete m_mouseHandler;
}

void TimelineHeaderView::takeOverPalette()
{
    const QPalette palette = QApplication::palette();
    const QColor background = palette.color(QPalette::Inactive, QPalette::Highlight);
    const QString sheet = QStringLiteral("QTreeView { background-color: %1 }").arg(background.name());
    // Setting one can announce a palette in its turn.
    if (sheet != styleSheet())
        setStyleSheet(sheet);
    if (!m_hasOwnLiveIndicatorColor)
        m_liveIndicatorColor = palette.color(QPalette::Link);
}

void TimelineHeaderView::setParent(QWidget* /*parent*/)
{
    qWarning("WARNING: setting parent after construction is not allowed.");
}

QColor TimelineHeaderView::backgroundColor()
{
    return QApplication::palette().color(QPalette::Base);
}

QColor TimelineHeaderView::highlightColor()
{
    return {0x43, 0xB0, 0xE0};
}

qint64 TimelineHeaderView::windowStart() const
{
    return m_ownScale ? m_ownScale->start : m_timelineView->currentTime();
}

qint64 TimelineHeaderView::windowLength() const
{
    return m_ownScale ? m_ownScale->length : qint64(m_timelineView->zoomFactor());
}

void TimelineHeaderView::setOwnScale(const RulerScale& scale)
{
    m_ownScale = scale;
    onUpdateTicks();
}

void TimelineHeaderView::placeOwnTicks()
{
    const auto place = [this](Ticks& target, const Ticks& ticks) {
        target = ticks;
        for (Tick& tick : target)
            tick.pos = toPixel(tick.time);
    };
    place(m_majorTicks, m_ownScale->majorTicks);
    place(m_mediumTicks, m_ownScale->mediumTicks);
    place(m_minorTicks, m_ownScale->minorTicks);
}

int TimelineHeaderView::toPixel(qint64 time) const
{
    if (time == noTime || !m_timelineView)
        return noPosition;
    const int left = sectionPosition(1);
    return TimePixelMapping{windowStart(), windowLength(), left, geometry().width()}.toPixel(time);
}

qint64 TimelineHeaderView::toTime(int x) const
{
    if (!m_timelineView)
        return noTime;
    const int left = sectionPosition(1);
    return TimePixelMapping{windowStart(), windowLength(), left, geometry().width()}.toTime(x);
}

template <typename IsTaken>
Ticks TimelineHeaderView::ticksAt(int interval, IsTaken isTaken) const
{
    if (m_timelineView->duration() < 1 || interval == -1)
        return {};

    // Asking for a position lets Qt carry out section resizes it has put off, and those compute the ticks again: it
    // happens here, before anything depends on the answer, and the list is local so that no tick can get in twice.
    sectionPosition(1);

    const qint64 end = m_timelineView->currentTime() + m_timelineView->zoomFactor();
    qint64 time = m_timelineView->currentTime();
    if (const qint64 remainder = time % interval; remainder != 0)
        time += interval - remainder;

    Ticks ticks;
    for (; time <= end; time += interval) {
        if (!isTaken(time))
            ticks.append(Tick(toPixel(time), time, DateTime::toString(time, m_dateTimeFormat)));
    }
    return ticks;
}

void TimelineHeaderView::updateMajorTicks()
{
    m_majorTicks = ticksAt(Zoom::majorInterval(m_timelineView->zoomFactor()), [](qint64) { return false; });
}

void TimelineHeaderView::updateMediumTicks()
{
    m_mediumTicks = ticksAt(Zoom::mediumInterval(m_timelineView->zoomFactor()),
                            [this](qint64 time) { return hasTickAt(m_majorTicks, time); });
}

void TimelineHeaderView::updateMinorTicks()
{
    m_minorTicks = ticksAt(Zoom::minorInterval(m_timelineView->zoomFactor()), [this](qint64 time) {
        return hasTickAt(m_majorTicks, time) || hasTickAt(m_mediumTicks, time);
    });
}

void TimelineHeaderView::onUpdateTicks()
{
    if (!m_timelineView)
        return;
    if (m_ownScale) {
        placeOwnTicks();
    } else {
        updateMajorTicks();
        updateMediumTicks();
        updateMinorTicks();
    }
    if (m_isIndicatorVisible)
        setIndicatorTime(m_indicatorTime);
    if (m_isLiveIndicatorVisible)
        setLiveIndicatorTime(m_liveIndicatorTime);
    repaintTimeColumn();
    Q_EMIT ticksChanged(m_majorTicks);
}

void TimelineHeaderView::setDateTimeFormat(DateTime::Format format)
{
    if (!m_isDateTimeFormatChangable)
        return;
    m_dateTimeFormat = format;
    for (Ticks* ticks : {&m_majorTicks, &m_mediumTicks, &m_minorTicks}) {
        for (Tick& tick : *ticks)
            tick.label = DateTime::toString(tick.time, format);
    }
    repaintTimeColumn();
}

void TimelineHeaderView::setTrackLabel(const QString& label)
{
    if (m_trackLabel == label)
        return;
    m_trackLabel = label;
    updateSection(0);
}

void TimelineHeaderView::setIndicatorScalingFactor(double factor)
{
    if (factor <= 0.0 || factor == m_indicatorScalingFactor)
        return;
    m_indicatorScalingFactor = factor;
    repaintRuler();
}

qint64 TimelineHeaderView::snapped(qint64 time) const
{
    const TimelineModel* const model = m_timelineView ? m_timelineView->timelineModel() : nullptr;
    return time != noTime && model ? model->snapTime(time) : time;
}

void TimelineHeaderView::setIndicatorTime(qint64 time)
{
    time = snapped(time);
    if (time == m_indicatorTime)
        return;
    m_indicatorTime = time;
    repaintRuler();
    Q_EMIT indicatorTimeChanged(time);
}

void TimelineHeaderView::setIndicatorVisible(bool isVisible)
{
    if (m_isIndicatorVisible == isVisible)
        return;
    m_isIndicatorVisible = isVisible;
    repaintRuler();
    repaintView();
    Q_EMIT indicatorVisibilityChanged(isVisible);
}

void TimelineHeaderView::setHoverTime(qint64 time)
{
    if (!m_isHoverVisible || !m_timelineView)
        return;
    const qint64 left = m_timelineView->currentTime();
    if (time < left || time > left + m_timelineView->zoomFactor())
        time = noTime;
    m_hoverTime = time;
    m_hoverPosition = toPixel(time);
    repaintTimeColumn();
    Q_EMIT hoverPositionChanged(m_hoverPosition);
}

void TimelineHeaderView::setHoverPosition(int x)
{
    if (!m_isHoverVisible || !m_timelineView)
        return;
    const qint64 time = toTime(x);
    if (x == m_hoverPosition && time == m_hoverTime)
        return;
    m_hoverPosition = x;
    m_hoverTime = time;
    repaintTimeColumn();
    Q_EMIT hoverPositionChanged(x);
}

void TimelineHeaderView::setHoverVisible(bool isVisible)
{
    if (m_isHoverVisible == isVisible)
        return;
    m_isHoverVisible = isVisible;
    repaintTimeColumn();
    repaintView();
    Q_EMIT hoverVisibilityChanged(isVisible);
}

void TimelineHeaderView::setHoverTimeVisible(bool isVisible)
{
    if (m_isHoverTimeVisible == isVisible)
        return;
    m_isHoverTimeVisible = isVisible;
    repaintTimeColumn();
    repaintView();
}

void TimelineHeaderView::setHoverDateTimeFormat(DateTime::Format format)
{
    if (m_hoverDateTimeFormat == format)
        return;
    m_hoverDateTimeFormat = format;
    repaintTimeColumn();
    repaintView();
}

void TimelineHeaderView::setLimitsVisible(bool isVisible)
{
    if (m_isLimitsVisible == isVisible)
        return;
    m_isLimitsVisible = isVisible;
    setFixedHeight(isVisible ? heightWithLimits : plainHeight);
    // The tree view makes room for its header only when told.
    Q_EMIT geometriesChanged();
    repaintRuler();
}

void TimelineHeaderView::setLimitsDateTimeFormat(DateTime::Format format)
{
    if (m_limitsDateTimeFormat == format)
        return;
    m_limitsDateTimeFormat = format;
    repaintRuler();
}

void TimelineHeaderView::mousePressEvent(QMouseEvent* event)
{
    m_mouseHandler->mousePressEvent(event);
}

void TimelineHeaderView::mouseMoveEvent(QMouseEvent* event)
{
    m_mouseHandler->mouseMoveEvent(event);
}

void TimelineHeaderView::mouseReleaseEvent(QMouseEvent* event)
{
    m_mouseHandler->mouseReleaseEvent(event);
}

void TimelineHeaderView::wheelEvent(QWheelEvent* event)
{
    m_mouseHandler->wheelEvent(event);
}

bool TimelineHeaderView::viewportEvent(QEvent* event)
{
    // The base class would hand the wheel on to the rows, which take its position for one of theirs: it is passed over.
    if (event->type() == QEvent::Wheel)
        return QAbstractScrollArea::viewportEvent(event); // NOLINT(bugprone-parent-virtual-call): passes the base over
    return QHeaderView::viewportEvent(event);
}

void TimelineHeaderView::changeEvent(QEvent* event)
{
    QHeaderView::changeEvent(event);
    if (event->type() != QEvent::PaletteChange)
        return;
    takeOverPalette();
    repaintRuler();
    repaintView();
}

void TimelineHeaderView::repaintRuler()
{
    viewport()->update();
}

bool TimelineHeaderView::isScaledByWholeNumber() const
{
    const qreal scale = devicePixelRatioF();
    return scale == std::floor(scale);
}

// At other scale factors the two columns can meet within a pixel, which then holds some of both.
int TimelineHeaderView::timeColumnLeft() const
{
    return sectionPosition(1) - (isScaledByWholeNumber() ? 0 : 1);
}

void TimelineHeaderView::repaintTimeColumn()
{
    const int left = timeColumnLeft();
    viewport()->update(left, 0, viewport()->width() - left, viewport()->height());
}

void TimelineHeaderView::repaintView()
{
    if (m_timelineView)
        m_timelineView->viewport()->update();
}

} // namespace VeskTimeline
