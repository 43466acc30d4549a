#pragma once

// Internal to the library; not installed.

namespace VeskTimeline {

/// Where an item, painted from x1 to x2, can be taken by an edge. Cursor and press ask the same question.
struct EdgeGrip
{
    int x1;
    int x2;

    /// Narrower items, and those of just this width, cannot be resized with the mouse.
    static constexpr int widestWithoutGrip = 14;
    /// Width of the grip inside each edge.
    static constexpr int width = 5;

    bool holds(int x) const { return x2 - x1 > widestWithoutGrip && !isInner(x); }
    /// For an x that the grip holds: the end edge, not the start edge.
    bool isEnd(int x) const { return x > x1 + width; }

private:
    bool isInner(int x) const { return x1 + width < x && x < x2 - width; }
};

} // namespace VeskTimeline
