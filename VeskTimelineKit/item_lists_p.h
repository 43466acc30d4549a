#pragma once

// Internal to the kit; not installed.

#include <VeskTimeline/track.h>

#include <vector>

namespace VeskTimeline::Kit {

/// Appends the items at these positions to `taken`. @param positions ascending
void takeFrom(Items& items, const std::vector<int>& positions, Items& taken);
/// Puts items where they will stand then. @param positions ascending, one for each item; past the end: last
void putInto(Items& own, const std::vector<int>& positions, Items&& items);

} // namespace VeskTimeline::Kit
