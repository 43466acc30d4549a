#include "time_stretches.h"

#include <algorithm>
#include <limits>

namespace Workbench {

namespace {

constexpr qint64 second = 1000;

qint64 floorToSecond(qint64 time)
{
    const qint64 remainder = time % second;
    return time - (remainder < 0 ? remainder + second : remainder);
}

} // namespace

TimeStretches::TimeStretches(const VeskTimeline::Kit::TimeSpan& span)
    : m_span{floorToSecond(span.start), -floorToSecond(-span.end)}
{
}

int TimeStretches::count() const
{
    const qint64 length = m_span.end - m_span.start;
    if (length <= std::numeric_limits<int>::max())
        return 1;
    return static_cast<int>((length + maximumLength - 1) / maximumLength);
}

VeskTimeline::Kit::TimeSpan TimeStretches::at(int index) const
{
    if (count() == 1)
        return m_span;
    const qint64 start = m_span.start + index * maximumLength;
    return {start, std::min(start + maximumLength, m_span.end)};
}

int TimeStretches::indexOf(qint64 time) const
{
    const qint64 index = (std::max(time, m_span.start) - m_span.start) / maximumLength;
    return static_cast<int>(std::min<qint64>(index, count() - 1));
}

} // namespace Workbench
