#pragma once

// Internal to the library; not installed.

#include <QtGlobal>

namespace VeskTimeline {

/// The time cut to a multiple of the step, towards zero. A step of 0 stands for no grid.
inline qint64 truncatedToGrid(qint64 time, qint64 step)
{
    return step == 0 ? time : time / step * step;
}

} // namespace VeskTimeline
