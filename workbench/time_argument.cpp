#include "time_argument.h"

#include <VeskTimelineKit/time_text.h>

#include <QStringList>

namespace Workbench {

using namespace VeskTimeline::Kit;

namespace {

// A date alone is its midnight, UTC.
std::optional<qint64> timeOf(const QString& text)
{
    const std::optional<ParsedTime> time = parseTime(text);
    const std::optional<ParsedTime> midnight = time ? time : parseTime(text + QStringLiteral("T00:00Z"));
    return midnight ? std::optional<qint64>(midnight->time) : std::nullopt;
}

} // namespace

std::optional<TimeSpan> spanArgument(const QString& text)
{
    const QStringList ends = text.split(QStringLiteral(".."));
    if (ends.size() != 2)
        return std::nullopt;
    const std::optional<qint64> start = timeOf(ends.first());
    const std::optional<qint64> end = timeOf(ends.last());
    if (!start || !end || *start >= *end)
        return std::nullopt;
    return TimeSpan{*start, *end};
}

} // namespace Workbench
