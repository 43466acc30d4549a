#pragma once

#include <VeskTimeline/timeline_utils.h>

#include <QStringList>

#include <algorithm>

/// The view's window over its range in its plainest form, setter by setter, to compare the library with.
namespace Reference {

struct ViewWindow
{
    int zoomFactor = 1'800'000;
    int upperZoomFactor = 86'400'000;
    int minimumZoomFactor = 15'000;
    int maximumZoomFactor = 86'400'000;
    qint64 startTime = -1;
    qint64 currentTime = -1;
    int duration = -1;
    /// The signals so far, as "name argument...".
    QStringList emitted;

    qint64 endTime() const { return startTime + static_cast<qint64>(duration); }

    void setZoomFactor(int f)
    {
        if (f == zoomFactor)
            return;
        if (f < minimumZoomFactor) {
            setZoomFactor(minimumZoomFactor);
            return;
        }
        // A minimum above the upper bound is what remains when both bounds have been tried.
        if (f > upperZoomFactor && f != minimumZoomFactor) {
            setZoomFactor(upperZoomFactor);
            return;
        }
        zoomFactor = f;
        emitted.append(QStringLiteral("zoomChanged %1").arg(f));
        if (currentTime + zoomFactor <= endTime())
            return;
        setCurrentTime(endTime() - zoomFactor);
    }

    void setMinimumZoomFactor(int f)
    {
        if (f == minimumZoomFactor)
            return;
        minimumZoomFactor = f;
        if (zoomFactor < f)
            setZoomFactor(f);
    }

    void setMaximumZoomFactor(int f)
    {
        if (f == maximumZoomFactor)
            return;
        maximumZoomFactor = f;
        if (upperZoomFactor > f)
            upperZoomFactor = f;
        if (zoomFactor > f)
            setZoomFactor(f);
    }

    void setStartTime(qint64 t)
    {
        if (t == startTime || t < 0)
            return;
        startTime = t;
        if (currentTime < startTime)
            setCurrentTime(startTime);
        if (duration > 0 && currentTime > endTime() - zoomFactor)
            setCurrentTime(std::max(endTime() - zoomFactor, startTime));
        emitRangeChanged();
    }

    void setCurrentTime(qint64 t)
    {
        if (t == currentTime)
            return;
        if (t < startTime)
            t = startTime;
        if (duration > 0 && t > endTime() - zoomFactor)
            t = std::max(endTime() - zoomFactor, startTime);
        if (t != currentTime) {
            currentTime = t;
            emitted.append(QStringLiteral("currentTimeChanged %1").arg(t));
        }
    }

    void setDuration(int d)
    {
        if (d == duration)
            return;
        if (d <= minimumZoomFactor)
            d = minimumZoomFactor;
        duration = d;
        emitRangeChanged();
        updateUpperZoomFactor();
        if (d < zoomFactor)
            setZoomFactor(upperZoomFactor);
        if (currentTime > endTime())
            setCurrentTime(endTime() - zoomFactor);
    }

    void setEndTime(qint64 e)
    {
        if (e == startTime + duration)
            return;
        if (e - startTime < minimumZoomFactor)
            e = startTime + minimumZoomFactor;
        setDuration(static_cast<int>(e - startTime));
    }

    void setRange(qint64 start, qint64 end)
    {
        if (start == startTime && end - start == duration)
            return;
        qint64 length = 0;
        if (start <= end) {
            startTime = start;
            length = end - start;
        } else {
            startTime = end;
            length = start - end;
        }
        duration = static_cast<int>(std::max(length, static_cast<qint64>(minimumZoomFactor)));
        if (currentTime < startTime)
            currentTime = startTime;
        if (duration > 0 && currentTime > endTime() - zoomFactor)
            currentTime = std::max(endTime() - zoomFactor, startTime);
        updateUpperZoomFactor();
        emitRangeChanged();
    }

private:
    void updateUpperZoomFactor()
    {
        upperZoomFactor = std::min<int>(VeskTimeline::Zoom::floor(duration), maximumZoomFactor);
    }
    void emitRangeChanged() { emitted.append(QStringLiteral("rangeChanged %1 %2").arg(startTime).arg(endTime())); }
};

} // namespace Reference
