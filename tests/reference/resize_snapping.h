#pragma once

#include <QtGlobal>

#include <cstdlib>
#include <optional>
#include <vector>

/// Plain reference for the time that the held edge of an item takes.
namespace Reference {

enum class Edge { Start, End };

struct Span
{
    int id;
    qint64 start;
    int duration;
    qint64 end() const { return start + duration; }
};

struct Neighbours
{
    std::optional<Span> previous;
    std::optional<Span> next;
};

inline qint64 localEdgeTime(Edge edge, qint64 t, const Span& item, const Neighbours& neighbours, int minimumDuration)
{
    if (edge == Edge::End) {
        if (t <= item.start)
            return item.start + minimumDuration;
        if (!neighbours.next)
            return t;
        return t < neighbours.next->start ? t : neighbours.next->start;
    }
    if (t >= item.end())
        return item.end() - minimumDuration;
    if (!neighbours.previous)
        return t;
    return t > neighbours.previous->end() ? t : neighbours.previous->end();
}

struct Snapping
{
    int step;
    int tolerance;
    int minimumDuration;
    qint64 viewStart;
    qint64 viewEnd;
};

/// @param items all items, in the order in which the model lists them
inline qint64 globalEdgeTime(Edge edge, qint64 t, const Span& item, const Neighbours& neighbours,
                             const std::vector<Span>& items, const Snapping& snapping)
{
    const qint64 snapped = (t / snapping.step) * snapping.step;
    const qint64 lower = neighbours.previous ? neighbours.previous->end() : snapping.viewStart;
    const qint64 upper = neighbours.next ? neighbours.next->start : snapping.viewEnd;
    const int tol = snapping.tolerance;
    qint64 result = snapped;
    int best = 2 * tol;
    for (const Span& o : items) {
        if (o.id == item.id)
            continue;
        qint64 candidate = 0;
        if (result - tol < o.start && o.start < result + tol)
            candidate = o.start;
        else if (result - tol < o.end() && o.end() < result + tol)
            candidate = o.end();
        else
            continue;
        if (std::llabs(candidate - snapped) >= best)
            continue;
        if (edge == Edge::Start && candidate >= item.end())
            continue;
        if (edge == Edge::End && candidate <= item.start)
            continue;
        result = candidate;
        best = static_cast<int>(candidate - snapped);
    }
    if (edge == Edge::Start && item.end() <= result)
        return item.end() - snapping.minimumDuration;
    if (edge == Edge::End && item.start >= result)
        return item.start + snapping.minimumDuration;
    if (result < lower)
        result = lower;
    if (result > upper)
        result = upper;
    return result;
}

} // namespace Reference
