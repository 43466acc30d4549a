#pragma once

#include <VeskTimelineKit/document.h>

#include <QFontMetrics>
#include <QList>
#include <QLocale>
#include <QString>

namespace Workbench {

/// A labelled mark of an overview strip.
struct OverviewTick
{
    qint64 time = 0; ///< milliseconds since the epoch
    QString label;
};

/// The marks of a span at the closest spacing, from millennia down to seconds, at which their labels do not touch.
///
/// Marks stand at round times in the zone that the ruler shows. A label says what distinguishes it from its
/// neighbours, and where a larger unit begins, that: "06:00", "8 Dec", "1973".
/// @param width pixels for the whole span
QList<OverviewTick> overviewTicks(const VeskTimeline::Kit::TimeSpan& span, int width, const QFontMetrics& metrics,
                                  const QLocale& locale);

} // namespace Workbench
