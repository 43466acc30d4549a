#pragma once

// Internal to the kit; not installed.

#include <VeskTimelineKit/document.h>
#include <VeskTimelineKit/labelled_item.h>

namespace VeskTimeline::Kit {

/// One bar that a model makes of an item of a document: of the whole item, or of a piece of a long one.
struct DocumentBar
{
    std::size_t item = 0; ///< position in the track's items
    qint64 start = 0;
    int duration = 0;
    ItemPiece piece = {};
    std::size_t position = 0; ///< among the bars in the order of the track's items
};

/// The bars of a track in the order in which a model holds them and numbers them: by start time, and otherwise as the
/// items are.
/// @param nextWhole counted up for each item that comes in pieces
std::vector<DocumentBar> barsOf(const std::vector<DocumentItem>& items, int& nextWhole);

} // namespace VeskTimeline::Kit
