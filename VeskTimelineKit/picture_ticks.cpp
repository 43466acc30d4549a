#include "picture_ticks_p.h"

#include <hoxtools/dtg.h>

#include <QDate>
#include <QDateTime>

#include <algorithm>
#include <cmath>
#include <vector>

namespace VeskTimeline::Kit {

namespace {

constexpr qint64 msecsPerHour = 3'600'000;
constexpr qint64 msecsPerDay = 24 * msecsPerHour;
// The epoch was a Thursday.
constexpr qint64 firstMonday = 4 * msecsPerDay;

/// Distance of ticks: so many milliseconds from `origin` on, or so many calendar months. 0 for none.
struct Interval
{
    qint64 msecs = 0;
    int months = 0;
    qint64 origin = 0;

    bool isNone() const { return msecs == 0 && months == 0; }
    // A month of the shortest kind: what fits there fits everywhere.
    double shortest() const
    {
        constexpr int daysOfFebruary = 28;
        return msecs > 0 ? static_cast<double>(msecs) : static_cast<double>(months * daysOfFebruary * msecsPerDay);
    }
};

struct Step
{
    Interval major;
    Interval medium;
    Interval minor;

    bool isBelowDay() const { return major.months == 0 && major.msecs < msecsPerDay; }
};

Interval every(qint64 msecs)
{
    return {std::max<qint64>(msecs, 0), 0, 0};
}

Interval everyMonths(int months)
{
    return {0, months, 0};
}

Step stepOf(Zoom::Factor factor)
{
    return {every(Zoom::majorInterval(factor)), every(Zoom::mediumInterval(factor)),
            every(Zoom::minorInterval(factor))};
}

std::vector<Step> makeSteps()
{
    std::vector<Step> steps;
    for (Zoom::Factor factor = Zoom::FifteenSeconds;; factor = Zoom::increment(factor)) {
        steps.push_back(stepOf(factor));
        if (factor == Zoom::OneDay)
            break;
    }
    steps.push_back({every(3 * msecsPerHour), every(msecsPerHour), every(msecsPerHour / 2)});
    steps.push_back({every(6 * msecsPerHour), every(2 * msecsPerHour), every(msecsPerHour)});
    steps.push_back({every(12 * msecsPerHour), every(6 * msecsPerHour), every(2 * msecsPerHour)});
    steps.push_back({every(msecsPerDay), every(12 * msecsPerHour), every(6 * msecsPerHour)});
    steps.push_back({{7 * msecsPerDay, 0, firstMonday}, {}, every(msecsPerDay)});
    steps.push_back({everyMonths(1), {}, every(msecsPerDay)});
    steps.push_back({everyMonths(3), everyMonths(1), {}});
    constexpr int year = 12;
    steps.push_back({everyMonths(year), everyMonths(3), everyMonths(1)});
    steps.push_back({everyMonths(2 * year), everyMonths(year), everyMonths(3)});
    for (int years = 5; years <= 5000; years *= 10) {
        steps.push_back({everyMonths(years * year), everyMonths(years * year / 5), {}});
        steps.push_back({everyMonths(2 * years * year), everyMonths(years * year), everyMonths(years * year / 5)});
        steps.push_back({everyMonths(4 * years * year), everyMonths(2 * years * year), everyMonths(years * year)});
    }
    return steps;
}

/// Writes times as the ruler does.
class Labels
{
public:
    Labels(const TimeSpan& range, std::optional<DateTime::Format> format) : m_range(range), m_format(format) {}

    // What the wall clock of the format's zone is ahead of UTC.
    qint64 zoneOffset() const
    {
        constexpr qint64 msecsPerSecond = 1000;
        if (m_format == DateTime::ISODate || m_format == DateTime::Standard)
            return QDateTime::fromMSecsSinceEpoch(m_range.start).offsetFromUtc() * msecsPerSecond;
        return ::DTG::timezone2Hours(::DTG::timezone()) * msecsPerHour;
    }

    QString label(qint64 time, const Step& step) const
    {
        if (m_format)
            return DateTime::toString(time, *m_format);
        const bool isMidnight = (time + zoneOffset()) % msecsPerDay == 0;
        if (!step.isBelowDay() || (isMidnight && isLongerThanDay()))
            return dateOf(time).toString(Qt::ISODate);
        constexpr qint64 minute = 60'000;
        return DateTime::toString(time, step.major.msecs % minute != 0 ? DateTime::DTGShort : DateTime::DTGVeryShort);
    }

    // The widest label of a step; digits are about as wide as each other.
    int width(const Step& step, const QFontMetrics& metrics) const
    {
        const qint64 midnight = m_range.start - (m_range.start + zoneOffset()) % msecsPerDay;
        return std::max({metrics.horizontalAdvance(label(midnight + 1, step)),
                         metrics.horizontalAdvance(label(midnight, step)),
                         metrics.horizontalAdvance(label(m_range.end, step))});
    }

private:
    bool isLongerThanDay() const { return m_range.end - m_range.start > msecsPerDay; }
    QDate dateOf(qint64 time) const { return QDateTime::fromMSecsSinceEpoch(time + zoneOffset(), Qt::UTC).date(); }

    TimeSpan m_range;
    std::optional<DateTime::Format> m_format;
};

qint64 floorDivided(qint64 number, qint64 divisor)
{
    return number / divisor - (number % divisor < 0 ? 1 : 0);
}

// In ascending order, both ends of the range included.
std::vector<qint64> timesAt(const Interval& interval, const TimeSpan& range, qint64 zoneOffset)
{
    std::vector<qint64> times;
    if (interval.msecs > 0) {
        const qint64 shift = interval.msecs >= msecsPerDay ? interval.origin - zoneOffset : interval.origin;
        const qint64 first = -floorDivided(-(range.start - shift), interval.msecs);
        for (qint64 time = first * interval.msecs + shift; time <= range.end; time += interval.msecs)
            times.push_back(time);
        return times;
    }
    if (interval.months == 0)
        return times;
    constexpr int monthsPerYear = 12;
    const QDate start = QDateTime::fromMSecsSinceEpoch(range.start + zoneOffset, Qt::UTC).date();
    const qint64 startMonth = qint64(start.year()) * monthsPerYear + start.month() - 1;
    for (qint64 month = floorDivided(startMonth, interval.months) * interval.months;; month += interval.months) {
        const QDate day(static_cast<int>(floorDivided(month, monthsPerYear)),
                        static_cast<int>(month - floorDivided(month, monthsPerYear) * monthsPerYear) + 1, 1);
        // Calendars have no year 0.
        const qint64 time =
            day.isValid() ? QDateTime(day, QTime(0, 0), Qt::UTC).toMSecsSinceEpoch() - zoneOffset : range.start - 1;
        if (time > range.end)
            return times;
        if (time >= range.start)
            times.push_back(time);
    }
}

bool holds(const Ticks& ticks, qint64 time)
{
    const auto found = std::lower_bound(ticks.begin(), ticks.end(), time,
                                        [](const Tick& tick, qint64 wanted) { return tick.time < wanted; });
    return found != ticks.end() && found->time == time;
}

class Chooser
{
public:
    Chooser(const TimeSpan& range, int width, const QFontMetrics& metrics, const Labels& labels)
        : m_pixelsPerMsec(width / static_cast<double>(range.end - range.start)), m_metrics(metrics), m_labels(labels)
    {
    }

    Step choose(qint64 length) const
    {
        const Zoom::Factor factor = length <= Zoom::OneDay ? Zoom::ceil(static_cast<int>(length)) : Zoom::Factor(0);
        constexpr int leastGap = 4;
        if (factor == length && fits(stepOf(factor), leastGap))
            return stepOf(factor);

        constexpr int gap = 16;
        static const std::vector<Step> steps = makeSteps();
        const auto found =
            std::find_if(steps.begin(), steps.end(), [this](const Step& step) { return fits(step, gap); });
        return withoutCrowded(found == steps.end() ? steps.back() : *found);
    }

private:
    bool fits(const Step& step, int gap) const
    {
        return step.major.shortest() * m_pixelsPerMsec >= m_labels.width(step, m_metrics) + gap;
    }

    // Ticks that would run into a grey band say nothing.
    Step withoutCrowded(Step step) const
    {
        constexpr double closest = 4.0;
        if (step.minor.shortest() * m_pixelsPerMsec < closest)
            step.minor = {};
        if (step.medium.shortest() * m_pixelsPerMsec < closest)
            step.medium = {};
        return step;
    }

    double m_pixelsPerMsec;
    const QFontMetrics& m_metrics;
    const Labels& m_labels;
};

// On screen a cut label can be moved into sight, on a picture it says something wrong.
void dropCutLabels(RulerScale& scale, int width, const QFontMetrics& metrics)
{
    for (Tick& tick : scale.majorTicks) {
        const double position =
            static_cast<double>(tick.time - scale.start) * width / static_cast<double>(scale.length);
        const double room = 2 * std::min(position, width - position);
        if (room < metrics.horizontalAdvance(tick.label))
            tick.label.clear();
    }
}

} // namespace

RulerScale pictureScale(const TimeSpan& range, int width, const QFontMetrics& metrics,
                        std::optional<DateTime::Format> format)
{
    RulerScale scale;
    scale.start = range.start;
    scale.length = range.end - range.start;

    const Labels labels(range, format);
    const Step step = Chooser(range, width, metrics, labels).choose(scale.length);
    const qint64 zoneOffset = labels.zoneOffset();
    for (const qint64 time : timesAt(step.major, range, zoneOffset))
        scale.majorTicks.append(Tick(-1, time, labels.label(time, step)));
    if (scale.length != Zoom::ceil(static_cast<int>(std::min<qint64>(scale.length, Zoom::OneDay))))
        dropCutLabels(scale, width, metrics);
    for (const qint64 time : timesAt(step.medium, range, zoneOffset)) {
        if (!holds(scale.majorTicks, time))
            scale.mediumTicks.append(Tick(time));
    }
    for (const qint64 time : timesAt(step.minor, range, zoneOffset)) {
        if (!holds(scale.majorTicks, time) && !holds(scale.mediumTicks, time))
            scale.minorTicks.append(Tick(time));
    }
    return scale;
}

} // namespace VeskTimeline::Kit
