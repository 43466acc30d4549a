#pragma once

#include <QtGlobal>

#include <algorithm>
#include <cstdlib>
#include <vector>

/// Plain reference for the time by which dragged items move while snapping is on: one loop in one function, no
/// look-ups.
namespace Reference {

struct DragItem
{
    int id;
    qint64 start;
    int duration;
};

/// @param raw unsnapped offset in milliseconds
/// @param items all items, in the order in which the model lists them
/// @param draggedIds in the order of the drag
inline qint64 snappedDelta(qint64 raw, int step, int tolerance, const std::vector<DragItem>& items,
                           const std::vector<int>& draggedIds)
{
    const auto isDragged = [&](int id) {
        return std::find(draggedIds.begin(), draggedIds.end(), id) != draggedIds.end();
    };
    qint64 dt = (raw / step) * step;
    qint64 best = 2 * static_cast<qint64>(tolerance);
    for (const int draggedId : draggedIds) {
        DragItem d{};
        for (const DragItem& item : items) {
            if (item.id == draggedId)
                d = item;
        }
        const qint64 s = d.start + dt;
        const qint64 e = s + d.duration;
        for (const DragItem& o : items) {
            if (isDragged(o.id))
                continue;
            const qint64 otherEnd = o.start + o.duration;
            qint64 candidate = 0;
            if (s - tolerance < otherEnd && otherEnd < s + tolerance)
                candidate = otherEnd - d.start;
            else if (e - tolerance < o.start && o.start < e + tolerance)
                candidate = o.start - (d.start + d.duration);
            else
                continue;
            if (std::llabs(candidate) < best) {
                dt = candidate;
                best = std::llabs(candidate);
            }
        }
    }
    return dt;
}

} // namespace Reference
