#pragma once

// Internal to the kit; not installed.

namespace VeskTimeline::Kit::IcsNames {

// Properties of our own, for what iCalendar has no words for. They are described at readIcs().
constexpr char ownPrefix[] = "X-VESKTIMELINE-";
constexpr char attribute[] = "X-VESKTIMELINE-ATTRIBUTE";
constexpr char text[] = "X-VESKTIMELINE-TEXT";
constexpr char track[] = "X-VESKTIMELINE-TRACK";
constexpr char color[] = "X-VESKTIMELINE-COLOR";
constexpr char start[] = "X-VESKTIMELINE-START";
constexpr char duration[] = "X-VESKTIMELINE-DURATION";
constexpr char locked[] = "X-VESKTIMELINE-LOCKED";
constexpr char openEnded[] = "X-VESKTIMELINE-OPEN-ENDED";
constexpr char uid[] = "X-VESKTIMELINE-UID";
constexpr char generated[] = "X-VESKTIMELINE-GENERATED";

} // namespace VeskTimeline::Kit::IcsNames
