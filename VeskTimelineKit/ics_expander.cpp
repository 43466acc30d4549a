#include "ics_expander_p.h"
#include "time_limits_p.h"

#include <QElapsedTimer>

#include <algorithm>
#include <memory>

namespace VeskTimeline::Kit {

namespace {

// A rule can be written that never comes true, and libical looks for its first time until the year 2582, second by
// second if need be. These bound what one rule and all rules of a file may take.
constexpr qint64 mostSteps = 300'000;
constexpr qint64 mostEffort = 2'000; // milliseconds

/// libical expands rules up to the end of the year 2582.
constexpr qint64 endOfRules = 19'344'441'600'000;

struct FreeIterator
{
    void operator()(icalrecur_iterator* iterator) const { icalrecur_iterator_free(iterator); }
};
using IteratorPtr = std::unique_ptr<icalrecur_iterator, FreeIterator>;

// The last time that may be looked at.
qint64 lastStep(const icalrecurrencetype& rule, qint64 start)
{
    qint64 unit = msecsPerDay;
    if (rule.freq == ICAL_HOURLY_RECURRENCE)
        unit = 3'600'000;
    else if (rule.freq == ICAL_MINUTELY_RECURRENCE)
        unit = 60'000;
    else if (rule.freq == ICAL_SECONDLY_RECURRENCE)
        unit = 1'000;
    return std::min(latestTime - msecsPerDay, start + unit * rule.interval * mostSteps);
}

bool hasUntil(const icalrecurrencetype& rule)
{
    return icaltime_is_null_time(rule.until) == 0;
}

} // namespace

void IcsExceptions::add(const IcsTime& exception, const IcsTime& series, const IcsZones& zones)
{
    if (exception.isDate || series.isDate)
        dates.insert(exception.date());
    else
        instants.insert(zones.toUtc(exception));
}

qint64 icsDurationAt(const IcsEventTimes& event, const IcsTime& start, const IcsZones& zones)
{
    if (event.end)
        return zones.toUtc(*event.end) - zones.toUtc(event.start);
    if (!event.duration)
        return start.isDate ? msecsPerDay : 0;
    IcsTime end = start;
    end.local += event.duration->days * msecsPerDay;
    return zones.toUtc(end) + event.duration->msecs - zones.toUtc(start);
}

std::vector<IcsOccurrence> IcsExpander::expand(const IcsEvent& event, const IcsZones& zones,
                                               const IcsExceptions& exceptions, ReadProgress& progress)
{
    m_event = &event;
    m_zones = &zones;
    m_exceptions = &exceptions;
    m_cuts = {};
    m_found.clear();

    add(event.start, zones.toUtc(event.start), icsDurationAt(event, event.start, zones));
    for (const IcsRecurrenceDate& date : event.dates)
        addDate(date);
    // With no room left for the start there is none for what a rule tells.
    const bool isFull = m_left == 0 && m_cuts.isByNumber;
    for (const QByteArray& rule : event.rules) {
        if (!isFull)
            addRule(rule, progress);
    }

    std::vector<IcsOccurrence> occurrences;
    occurrences.reserve(m_found.size());
    for (const auto& [start, duration] : m_found)
        occurrences.push_back({start, duration});
    m_left -= static_cast<int>(m_found.size());
    return occurrences;
}

void IcsExpander::addDate(const IcsRecurrenceDate& date)
{
    const qint64 utc = m_zones->toUtc(date.start);
    IcsTime start = m_event->start;
    start.local = m_zones->toLocal(utc, start);
    qint64 duration = icsDurationAt(*m_event, start, *m_zones);
    if (date.end)
        duration = m_zones->toUtc(*date.end) - utc;
    else if (date.duration)
        duration = date.duration->days * msecsPerDay + date.duration->msecs;
    add(start, utc, std::max<qint64>(duration, 0));
}

void IcsExpander::addRule(const QByteArray& text, ReadProgress& progress)
{
    if (m_effort > mostEffort) {
        m_cuts.isByEffort = true;
        return;
    }
    QElapsedTimer timer;
    timer.start();
    const icalrecurrencetype rule = icalrecurrencetype_from_string(text.constData());
    icalrecurrencetype bounded = rule;
    const qint64 lastTried = lastStep(rule, m_event->start.local);
    // The end that the rule itself names is a matter of zones, for isOver() to tell; a day more is always enough.
    const qint64 until = hasUntil(rule) ? fromIcalTime(rule.until) + 2 * msecsPerDay : lastTried;
    bounded.until = toIcalTime(std::min(until, lastTried), m_event->start.isDate);
    const IteratorPtr iterator(
        icalrecur_iterator_new(bounded, toIcalTime(m_event->start.local, m_event->start.isDate)));
    // There is none for a rule that never comes true.
    if (iterator)
        followRule(iterator.get(), rule, lastTried, progress);
    else if (m_event->start.local >= endOfRules)
        m_cuts.isByEffort = true;
    m_effort += timer.elapsed();
}

void IcsExpander::followRule(icalrecur_iterator* iterator, const icalrecurrencetype& rule, qint64 lastTried,
                             ReadProgress& progress)
{
    // The start counts, also when the rule does not tell it.
    int count = 1;
    IcsTime start = m_event->start;
    for (;;) {
        const icaltimetype next = icalrecur_iterator_next(iterator);
        if (icaltime_is_null_time(next))
            break;
        progress.reportSometimes(1.0);
        start.local = fromIcalTime(next);
        count += start.local == m_event->start.local ? 0 : 1;
        const qint64 utc = m_zones->toUtc(start);
        if (isOver(rule, start, utc) || (rule.count > 0 && count > rule.count))
            return;
        if (!add(start, utc, icsDurationAt(*m_event, start, *m_zones)))
            return;
    }
    const bool hasEnd = rule.count > 0 ? count >= rule.count : hasUntil(rule) && fromIcalTime(rule.until) <= lastTried;
    const qint64 end = std::min(lastTried, endOfRules);
    m_cuts.isByEffort = m_cuts.isByEffort || (!hasEnd && end < m_span.end);
}

bool IcsExpander::isOver(const icalrecurrencetype& rule, const IcsTime& start, qint64 utc) const
{
    if (!hasUntil(rule))
        return false;
    const qint64 until = fromIcalTime(rule.until);
    if (rule.until.is_date)
        return start.date() > until;
    return (icaltime_is_utc(rule.until) ? utc : start.local) > until;
}

bool IcsExpander::isExcluded(const IcsTime& start, qint64 utc) const
{
    return m_exceptions->instants.contains(utc) || m_exceptions->dates.contains(start.date());
}

// False when the ones after it need not be tried.
bool IcsExpander::add(const IcsTime& start, qint64 utc, qint64 duration)
{
    if (utc >= m_span.end || !isWithinTimeLimits(utc + duration)) {
        m_cuts.isAfterSpan = true;
        return false;
    }
    if (isExcluded(start, utc))
        return true;
    if (utc < m_span.start) {
        m_cuts.isBeforeSpan = true;
        return true;
    }
    if (static_cast<int>(m_found.size()) >= m_left && m_found.find(utc) == m_found.end()) {
        m_cuts.isByNumber = true;
        return false;
    }
    m_found.emplace(utc, duration);
    return true;
}

} // namespace VeskTimeline::Kit
