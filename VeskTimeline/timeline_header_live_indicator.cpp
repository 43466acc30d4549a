// The live indicator: the time cursor that a timer advances.

#include <VeskTimeline/timeline_header_view.h>
#include <VeskTimeline/timeline_view.h>

#include <QDebug>
#include <QTimer>

#include <algorithm>
#include <typeinfo>
#include <utility>

namespace VeskTimeline {

namespace {

constexpr int noTime = -1;
constexpr int noPosition = -1;
// By how much a stroke may reach beyond its coordinates: half a pixel, more where a screen's scale factor is no whole
// number.
constexpr int strokeMargin = 2;

} // namespace

void TimelineHeaderView::setLiveIndicatorScalingFactor(double factor)
{
    if (factor <= 0.0 || factor == m_liveIndicatorScalingFactor)
        return;
    m_liveIndicatorScalingFactor = factor;
    repaintRuler();
}

void TimelineHeaderView::setLiveIndicatorColor(const QColor& color)
{
    m_hasOwnLiveIndicatorColor = true;
    if (m_liveIndicatorColor == color)
        return;
    m_liveIndicatorColor = color;
    repaintRuler();
}

void TimelineHeaderView::setLiveIndicatorTime(qint64 time)
{
    time = snapped(time);
    if (time == m_liveIndicatorTime)
        return;
    const qint64 timeBefore = std::exchange(m_liveIndicatorTime, time);
    // Nobody but the ruler knows of the step, so it has the line through the rows moved, too.
    if (m_isLiveIndicatorVisible && m_timelineView) {
        repaintLiveIndicatorInRuler(timeBefore, time);
        repaintLiveIndicatorInRows(timeBefore, time);
    } else {
        repaintRuler();
        repaintView();
    }
    Q_EMIT liveIndicatorTimeChanged(time);
}

// A step of the live indicator comes up to fifty times a second and changes two narrow strips: repainting these costs
// next to nothing however much there is to see. Positions of a window or a column width that has changed since the last
// repaint may be wrong, but then all is to be repainted anyway.
void TimelineHeaderView::repaintLiveIndicatorInRuler(qint64 from, qint64 to)
{
    // A ruler of another kind may show the time anywhere. And a picture that the screen's scale factor scales comes out
    // otherwise when only parts of it are painted.
    const bool arePicturesScaled = m_isLimitsVisible && !isScaledByWholeNumber();
    if (arePicturesScaled || typeid(*this) != typeid(TimelineHeaderView)) {
        repaintRuler();
        return;
    }
    for (const qint64 time : {from, to})
        viewport()->update(indicatorStrip(time, m_liveIndicatorScalingFactor));
}

void TimelineHeaderView::repaintLiveIndicatorInRows(qint64 from, qint64 to)
{
    const qint64 start = m_timelineView->currentTime();
    const qint64 end = start + m_timelineView->zoomFactor();
    const auto lineAt = [&](qint64 time) { return time < start || time > end ? noPosition : toPixel(time); };
    const int lineBefore = lineAt(from);
    const int line = lineAt(to);
    if (line == lineBefore)
        return;
    QWidget* const rows = m_timelineView->viewport();
    for (const int x : {lineBefore, line}) {
        if (x == noPosition)
            continue;
        const int left = std::max(x - strokeMargin, timeColumnLeft());
        rows->update(left, 0, x + strokeMargin + 1 - left, rows->height());
    }
}

void TimelineHeaderView::setLiveIndicatorVisible(bool isVisible)
{
    if (m_isLiveIndicatorVisible == isVisible)
        return;
    m_isLiveIndicatorVisible = isVisible;
    repaintRuler();
    repaintView();
    Q_EMIT liveIndicatorVisibilityChanged(isVisible);
}

void TimelineHeaderView::startLiveTimer(qint64 startTime, int interval)
{
    if (interval <= 0) {
        qCritical() << Q_FUNC_INFO << "invalid time interval:" << interval;
        return;
    }
    if (m_liveTimer->isActive()) {
        qWarning() << Q_FUNC_INFO << "timer is already active - restarting";
        m_liveTimer->stop();
    }
    if (startTime < 0 && m_timelineView)
        startTime = m_timelineView->currentTime();
    m_liveTimerInterval = interval;
    setLiveIndicatorTime(startTime);
    setLiveIndicatorVisible(true);
    m_liveTimer->setSingleShot(false);
    m_liveTimer->start(interval);
}

void TimelineHeaderView::onLiveTimeout()
{
    setLiveIndicatorTime(m_liveIndicatorTime + m_liveTimerInterval);
}

void TimelineHeaderView::stopLiveTimer()
{
    if (!m_liveTimer->isActive())
        return;
    qDebug() << Q_FUNC_INFO;
    m_liveTimer->stop();
    m_liveIndicatorTime = noTime;
    setLiveIndicatorVisible(false);
}

} // namespace VeskTimeline
