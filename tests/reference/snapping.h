#pragma once

#include <QtGlobal>

/// Snapping told by what it means: the grid line nearest to the time on the side of the epoch.
namespace Reference {

inline qint64 snapped(qint64 time, qint64 step)
{
    const qint64 distance = time < 0 ? -time : time;
    qint64 beyond = distance;
    while (beyond >= step)
        beyond -= step;
    const qint64 onGrid = distance - beyond;
    return time < 0 ? -onGrid : onGrid;
}

} // namespace Reference
