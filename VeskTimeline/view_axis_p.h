#pragma once

// Internal to the library; not installed.

#include "time_pixel_mapping_p.h"

#include <VeskTimeline/timeline_header_view.h>

namespace VeskTimeline {

/// The time axis of a view as it is now, for asking it often: TimelineHeaderView::toPixel() without looking up anew
/// where columns and window are.
class ViewAxis
{
public:
    ViewAxis() = default;
    /// @param header null for a view without one
    explicit ViewAxis(const TimelineHeaderView* header)
    {
        if (!header)
            return;
        m_hasPixels = true;
        m_mapping = {header->windowStart(), header->windowLength(), header->sectionPosition(1),
                     header->geometry().width()};
    }

    /// Whether there are pixels and times, one growing with the other.
    bool isUsable() const { return m_mapping.right > m_mapping.left && m_mapping.span > 0; }

    int toPixel(qint64 time) const { return time == noTime || !m_hasPixels ? noPosition : m_mapping.toPixel(time); }
    qint64 toTime(int x) const { return m_mapping.toTime(x); }

private:
    static constexpr qint64 noTime = -1;
    static constexpr int noPosition = -1;

    bool m_hasPixels = false;
    TimePixelMapping m_mapping{0, 0, 0, 0};
};

} // namespace VeskTimeline
