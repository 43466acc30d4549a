#pragma once

// Internal to the kit; not installed.

namespace VeskTimeline::Kit {

/// What tells the native format from other JSON, see docs/native-format.md.
constexpr char vtlFormatMark[] = "vesk-timeline";
/// The version that is written, and the newest that is read.
constexpr int vtlVersion = 1;

} // namespace VeskTimeline::Kit
