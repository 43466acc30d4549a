#pragma once

#include <VeskTimelineKit/csv_options.h>

#include <QJsonObject>

#include <optional>

namespace Workbench {

/// The options that are set, by names.
QJsonObject toJson(const VeskTimeline::Kit::CsvOptions& options);

/// Nothing when any part of it is not what toJson() writes: half of what somebody chose is not what they chose.
std::optional<VeskTimeline::Kit::CsvOptions> csvOptionsFromJson(const QJsonObject& object);

} // namespace Workbench
