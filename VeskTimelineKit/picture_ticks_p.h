#pragma once

// Internal to the kit; not installed.

#include <VeskTimeline/timeline_header_view.h>
#include <VeskTimelineKit/document.h>
#include <VeskTimelineKit/vesktimelinekit_export.h>

#include <QFontMetrics>

#include <optional>

namespace VeskTimeline::Kit {

/// Ticks for a stretch of time of any length, labelled as far apart as the labels can be read.
///
/// A stretch that is as long as a zoom factor has the ticks that the factor has, if there is room for them. Otherwise
/// they stand at the intervals of the factors or, where these are too close, at whole days, weeks, months or years of
/// the zone that the format shows.
/// @param range not empty
/// @param width of the stretch in pixels, above 0
/// @param format without: times of day at intervals below a day, with the date at midnight when the stretch is longer
/// than a day; dates otherwise
/// @return a scale with the application's palette
VESKTIMELINEKIT_EXPORT RulerScale pictureScale(const TimeSpan& range, int width, const QFontMetrics& metrics,
                                               std::optional<DateTime::Format> format);

} // namespace VeskTimeline::Kit
