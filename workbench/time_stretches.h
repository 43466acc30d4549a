#pragma once

#include <VeskTimelineKit/document.h>

namespace Workbench {

/// Cuts a span of time into stretches that a timeline view can hold: its range is an int of milliseconds, 24.8 days.
///
/// The span is widened to whole seconds first, since the view pans by seconds. A span that fits is one stretch; a
/// longer one is cut every 24 days, the last stretch being the rest.
class TimeStretches
{
public:
    static constexpr qint64 maximumLength = qint64(24) * 24 * 60 * 60 * 1000;

    explicit TimeStretches(const VeskTimeline::Kit::TimeSpan& span);

    /// At least 1.
    int count() const;
    /// @param index from 0 to count() - 1
    VeskTimeline::Kit::TimeSpan at(int index) const;
    /// The stretch that a time lies in: of two that it touches the later one, and of times outside the first or last.
    int indexOf(qint64 time) const;

private:
    VeskTimeline::Kit::TimeSpan m_span;
};

} // namespace Workbench
