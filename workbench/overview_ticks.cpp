#include "overview_ticks.h"

#include "ruler_time.h"

#include <algorithm>
#include <optional>

namespace Workbench {

using VeskTimeline::Kit::TimeSpan;

namespace {

constexpr qint64 second = 1000;
constexpr qint64 minute = 60 * second;
constexpr qint64 hour = 60 * minute;
constexpr qint64 day = 24 * hour;

enum class Unit { Second, Minute, Hour, Day, Month, Year };

struct Spacing
{
    Unit unit;
    int count;
    qint64 shortest; // milliseconds between two marks
};

constexpr Spacing spacings[] = {
    {Unit::Second, 1, second},
    {Unit::Second, 5, 5 * second},
    {Unit::Second, 15, 15 * second},
    {Unit::Second, 30, 30 * second},
    {Unit::Minute, 1, minute},
    {Unit::Minute, 5, 5 * minute},
    {Unit::Minute, 15, 15 * minute},
    {Unit::Minute, 30, 30 * minute},
    {Unit::Hour, 1, hour},
    {Unit::Hour, 3, 3 * hour},
    {Unit::Hour, 6, 6 * hour},
    {Unit::Hour, 12, 12 * hour},
    {Unit::Day, 1, day},
    {Unit::Day, 2, 2 * day},
    {Unit::Day, 5, 4 * day},
    {Unit::Day, 10, 9 * day},
    {Unit::Month, 1, 28 * day},
    {Unit::Month, 3, 90 * day},
    {Unit::Month, 6, 181 * day},
    {Unit::Year, 1, 365 * day},
    {Unit::Year, 2, 2 * 365 * day},
    {Unit::Year, 5, 5 * 365 * day},
    {Unit::Year, 10, 10 * 365 * day},
    {Unit::Year, 20, 20 * 365 * day},
    {Unit::Year, 50, 50 * 365 * day},
    {Unit::Year, 100, 100 * 365 * day},
    {Unit::Year, 200, 200 * 365 * day},
    {Unit::Year, 500, 500 * 365 * day},
    {Unit::Year, 1000, 1000 * 365 * day},
    {Unit::Year, 2000, 2000 * 365 * day},
};

QString labelOf(const QDateTime& time, Unit unit, const QLocale& locale)
{
    if (unit == Unit::Year || (unit >= Unit::Day && time.date().dayOfYear() == 1))
        return QString::number(time.date().year());
    if (unit == Unit::Month)
        return locale.toString(time.date(), QStringLiteral("MMM yyyy"));
    if (unit == Unit::Day || time.time() == QTime(0, 0))
        return locale.toString(time.date(), QStringLiteral("d MMM"));
    return time.toString(unit == Unit::Second ? QStringLiteral("HH:mm:ss") : QStringLiteral("HH:mm"));
}

// As wide as the labels of a unit become.
int widestLabel(const TimeSpan& span, Unit unit, const QFontMetrics& metrics, const QLocale& locale)
{
    int widest = 0;
    const int year = rulerDateTime(span.end).date().year();
    for (int month = 1; month <= 12; ++month) {
        // Not midnight, and digits that are wide in any font.
        const QDateTime time(QDate(std::clamp(year, 1, 9999), month, 28), QTime(20, 48, 48));
        widest = std::max(widest, metrics.horizontalAdvance(labelOf(time, unit, locale)));
        if (unit < Unit::Day)
            widest = std::max(widest, metrics.horizontalAdvance(labelOf(time, Unit::Day, locale)));
    }
    return widest;
}

Spacing spacingFor(const TimeSpan& span, int width, const QFontMetrics& metrics, const QLocale& locale)
{
    const double perPixel = static_cast<double>(span.end - span.start) / std::max(1, width);
    const int gap = metrics.horizontalAdvance(QStringLiteral("000"));
    std::optional<Unit> measured;
    int needed = 0;
    for (const Spacing& spacing : spacings) {
        if (measured != spacing.unit) {
            measured = spacing.unit;
            needed = widestLabel(span, spacing.unit, metrics, locale) + gap;
        }
        if (static_cast<double>(spacing.shortest) >= needed * perPixel)
            return spacing;
    }
    return *std::rbegin(spacings);
}

QDateTime atMidnight(const QDateTime& zone, const QDate& date)
{
    return {date, QTime(0, 0), Qt::OffsetFromUTC, zone.offsetFromUtc()};
}

// The 1st, and then the days that the count divides, as people would name them: 1, 5, 10, 15, … 25. One that comes too
// close to the next 1st is left out.
QDate nextDay(const QDate& date, int count)
{
    if (count == 1)
        return date.addDays(1);
    // The 2nd is too close to the 1st.
    const int first = count == 2 ? 2 * count : count;
    const int next = date.day() == 1 ? first : date.day() + count;
    if (next + count > date.daysInMonth() + 1)
        return QDate(date.year(), date.month(), 1).addMonths(1);
    return {date.year(), date.month(), next};
}

QDateTime firstMark(const QDateTime& start, const Spacing& spacing)
{
    const QDate date = start.date();
    if (spacing.unit == Unit::Year) {
        const int year = date.year() - date.year() % spacing.count;
        // There is no year 0.
        return atMidnight(start, QDate(std::max(year, 1), 1, 1));
    }
    if (spacing.unit == Unit::Month)
        return atMidnight(start, QDate(date.year(), date.month() - (date.month() - 1) % spacing.count, 1));
    if (spacing.unit == Unit::Day)
        return atMidnight(start, spacing.count == 1 ? date : QDate(date.year(), date.month(), 1));
    const qint64 sinceMidnight = start.time().msecsSinceStartOfDay();
    return atMidnight(start, date).addMSecs(sinceMidnight - sinceMidnight % spacing.shortest);
}

QDateTime nextMark(const QDateTime& mark, const Spacing& spacing)
{
    if (spacing.unit == Unit::Year) {
        const int year = mark.date().year();
        return atMidnight(mark, QDate(year - year % spacing.count + spacing.count, 1, 1));
    }
    if (spacing.unit == Unit::Month)
        return atMidnight(mark, mark.date().addMonths(spacing.count));
    if (spacing.unit == Unit::Day)
        return atMidnight(mark, nextDay(mark.date(), spacing.count));
    return mark.addMSecs(spacing.shortest);
}

} // namespace

QList<OverviewTick> overviewTicks(const TimeSpan& span, int width, const QFontMetrics& metrics, const QLocale& locale)
{
    QList<OverviewTick> ticks;
    if (span.end <= span.start || width <= 0)
        return ticks;
    const Spacing spacing = spacingFor(span, width, metrics, locale);
    for (QDateTime mark = firstMark(rulerDateTime(span.start), spacing); mark.isValid();
         mark = nextMark(mark, spacing)) {
        const qint64 time = mark.toMSecsSinceEpoch();
        if (time > span.end)
            break;
        if (time >= span.start)
            ticks.append({time, labelOf(mark, spacing.unit, locale)});
    }
    return ticks;
}

} // namespace Workbench
