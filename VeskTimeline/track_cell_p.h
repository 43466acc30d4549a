#pragma once

// Internal to the library; not installed.

#include <QModelIndex>

namespace VeskTimeline {

/// Whether a view index names a row's time column, where items are.
inline bool isTimeCell(const QModelIndex& index)
{
    return index.isValid() && index.column() != 0;
}

/// The track id of a view index' row, which its time cell shows; 0, the root's, for none.
inline int trackIdOfCell(const QModelIndex& index)
{
    return index.siblingAtColumn(1).data(Qt::DisplayRole).toInt();
}

} // namespace VeskTimeline
