#pragma once

// Internal to the kit; not installed.

#include <VeskTimeline/track.h>
#include <VeskTimelineKit/document.h>
#include <VeskTimelineKit/read_options.h>

#include <QHash>

#include <map>

namespace VeskTimeline::Kit {

/// What a track's own items come to.
struct TrackExtent
{
    TimeSpan span;
    int documentItems = 0; ///< all pieces of a long item are one
};

/// What a model holds below its root, with the look-ups that go with it.
struct ModelTree
{
    Tracks tracks;
    std::map<int, Track*> trackCache; ///< without the root
    std::map<int, Item*> itemCache;
    QHash<int, TrackExtent> extents; ///< by track id, of the tracks that have items
    int nextTrackId = 1;
    int nextItemId = 0;
    int nextWhole = 0;
};

/// @param options their progress is told
/// @throws ReadCancelled
std::unique_ptr<ModelTree> makeTree(const Document& document, const ReadOptions& options);

/// @param items a track's own, which there must be
TrackExtent extentOf(const Items& items);

} // namespace VeskTimeline::Kit
