#pragma once

// Internal to the kit; not installed.

#include <QCoreApplication>

namespace VeskTimeline::Kit {

/// Translates the texts of free functions.
struct Tr
{
    Q_DECLARE_TR_FUNCTIONS(VeskTimelineKit)
};

} // namespace VeskTimeline::Kit
