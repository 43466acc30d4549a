#pragma once

#include <VeskTimelineKit/document.h>

#include <QString>

#include <optional>

namespace Workbench {

/// START..END as it is said on the command line: each a date, which is its midnight UTC, an ISO 8601 time with its
/// zone, or milliseconds since 1970. Nothing for any other text, and when the end is not after the start.
std::optional<VeskTimeline::Kit::TimeSpan> spanArgument(const QString& text);

} // namespace Workbench
