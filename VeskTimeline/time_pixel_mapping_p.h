#pragma once

// Internal to the library; not installed.

#include <QtGlobal>

#include <algorithm>
#include <cmath>

namespace VeskTimeline {

/// The time axis: which x shows which time. Not clamped to the visible window.
struct TimePixelMapping
{
    qint64 currentTime; ///< time at `left`, milliseconds since the epoch
    qint64 span;        ///< milliseconds between `left` and `right`
    int left;
    int right;

    /// Positions that an int cannot hold twice over come out as this far to either side, so that sums and differences
    /// of two positions never overflow. At such a distance the picture is the same.
    static constexpr int farAway = (1 << 30) - 1;

    int toPixel(qint64 time) const
    {
        const double ratio = (static_cast<double>(time) - static_cast<double>(currentTime)) / static_cast<double>(span);
        const double pixel = left + (right - left) * ratio;
        return static_cast<int>(std::clamp<double>(pixel, -farAway, farAway));
    }

    /// On an axis without width every x shows the time at its left edge.
    qint64 toTime(int x) const
    {
        if (right == left)
            return currentTime;
        const double share = (static_cast<double>(x) - left) / (right - left);
        return static_cast<qint64>(static_cast<double>(currentTime) + share * static_cast<double>(span));
    }
};

} // namespace VeskTimeline
