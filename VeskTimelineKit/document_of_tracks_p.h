#pragma once

// Internal to the kit; not installed.

#include <VeskTimeline/track.h>
#include <VeskTimelineKit/document.h>

#include <functional>

namespace VeskTimeline::Kit {

/// Where in a document an item of a model has gone.
struct DocumentPlace
{
    std::size_t track = 0; ///< position of the track
    std::size_t item = 0;  ///< position among the track's items
    int piece = 0;         ///< how many pieces of the same item are before it
};

using PlaceSink = std::function<void(const Item& item, const DocumentPlace& place)>;

/// An item as a document has it; its colour only if it is its own.
DocumentItem documentItemOf(const Item& item);

/// The tracks below a root as a document, see StandardTimelineModel::document().
/// @param sink told of every item, unless it is empty
Document documentOfTracks(const Track& root, const PlaceSink& sink = {});

} // namespace VeskTimeline::Kit
