#pragma once

// Internal to the library; not installed.

#include <VeskTimeline/track.h>

#include <QHash>
#include <QVarLengthArray>

namespace VeskTimeline {

/// Where the tracks of a tree stand: the parent and the row of each, as last seen.
///
/// A place is only a hint, looked at in the tree before it is believed, so that a tree that was changed in whatever way
/// gives right answers, if late: what is not where it was is looked for around there, then among all siblings, then in
/// the whole tree, and all that is passed on the way is remembered. The ids of a tree are all different.
class TrackPlaces
{
public:
    struct Step
    {
        const Track* track;
        int row;
    };
    using Path = QVarLengthArray<Step, 8>;

    /// The way from a top-level track down to the one with the id; empty when it is not in the tree below `root`, and
    /// for negative ids, which tracks have that were not given one.
    Path pathTo(const Track& root, int trackId);
    /// Row of a direct child; -1 when there is none with the id.
    int rowOf(const Track& parent, int trackId);
    /// Sees children that have come in at these rows.
    void learn(const Track& parent, int first, int last);
    void clear() { m_places.clear(); }

private:
    struct Place
    {
        int parentId;
        int row;
    };

    Path rememberedPath(const Track& root, int trackId);
    void learnAll(const Track& parent);

    QHash<int, Place> m_places;
};

} // namespace VeskTimeline
