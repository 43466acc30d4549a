#include "ics_event_p.h"
#include "ics_zones_p.h"
#include "kit_tr_p.h"

#include <QDateTime>

#include <algorithm>
#include <iterator>

namespace VeskTimeline::Kit {

namespace {

struct FreeComponent
{
    void operator()(icalcomponent* component) const { icalcomponent_free(component); }
};
using ComponentPtr = std::unique_ptr<icalcomponent, FreeComponent>;

ComponentPtr parseComponent(const QByteArrayList& lines)
{
    ComponentPtr component;
    icalparser* parser = icalparser_new();
    for (QByteArray line : lines) {
        if (icalcomponent* done = icalparser_add_line(parser, line.data()))
            component.reset(done);
    }
    component = component ? std::move(component) : ComponentPtr(icalparser_clean(parser));
    icalparser_free(parser);
    return component;
}

template <std::size_t size>
qint64 countOf(const short (&values)[size])
{
    return std::find(std::begin(values), std::end(values), short(ICAL_RECURRENCE_ARRAY_MAX)) - std::begin(values);
}

qint64 changesOfYear(const icalrecurrencetype& rule)
{
    constexpr qint64 weeksOfMonth = 5;
    constexpr qint64 weeksOfYear = 53;
    const bool isEveryWeek = countOf(rule.by_day) > 0 && countOf(rule.by_month_day) == 0 &&
                             icalrecurrencetype_day_position(rule.by_day[0]) == 0;
    if (isEveryWeek)
        return countOf(rule.by_month) > 0 ? weeksOfMonth : weeksOfYear;
    return std::max<qint64>(countOf(rule.by_month_day), 1);
}

constexpr int lastYearOfRules = 2582;

// libical writes all changes down that a rule tells: a clock that changes every second would have it busy for ever.
// Nothing for a rule that no clock needs.
std::optional<qint64> changesOf(const icalrecurrencetype& rule, int firstYear)
{
    const bool isSeldom = rule.freq == ICAL_YEARLY_RECURRENCE && countOf(rule.by_month) <= 1 &&
                          countOf(rule.by_day) <= 1 && countOf(rule.by_year_day) == 0 &&
                          countOf(rule.by_week_no) == 0 && countOf(rule.by_hour) == 0 && countOf(rule.by_minute) == 0 &&
                          countOf(rule.by_second) == 0;
    if (!isSeldom)
        return std::nullopt;
    const int lastYear =
        icaltime_is_null_time(rule.until) ? lastYearOfRules : std::min(rule.until.year, lastYearOfRules);
    return std::max(0, lastYear - firstYear + 1) * changesOfYear(rule);
}

// Nothing when there is a rule that no clock needs, or no STANDARD and no DAYLIGHT.
std::optional<qint64> changesOf(icalcomponent* zone)
{
    qint64 changes = 0;
    bool hasObservance = false;
    for (icalcomponent* observance = icalcomponent_get_first_component(zone, ICAL_ANY_COMPONENT); observance;
         observance = icalcomponent_get_next_component(zone, ICAL_ANY_COMPONENT)) {
        hasObservance = true;
        const int firstYear = icalcomponent_get_dtstart(observance).year;
        for (icalproperty* property = icalcomponent_get_first_property(observance, ICAL_RRULE_PROPERTY); property;
             property = icalcomponent_get_next_property(observance, ICAL_RRULE_PROPERTY)) {
            const auto ofRule = changesOf(icalproperty_get_rrule(property), firstYear);
            if (!ofRule)
                return std::nullopt;
            changes += *ofRule;
        }
    }
    return hasObservance ? std::optional(changes) : std::nullopt;
}

void freeZone(icaltimezone* zone)
{
    icaltimezone_free(zone, 1);
}

// Names such as "/example.org/20050126_1/Europe/Berlin" end in one of the well-known ones.
QTimeZone wellKnownZone(const QByteArray& id)
{
    // Longer than any of them. Of a text of millions of slashes each part would be looked for otherwise.
    constexpr qsizetype longestName = 100;
    QByteArray name = id;
    if (name.size() > longestName) {
        const qsizetype firstSlash = name.indexOf('/', name.size() - longestName - 1);
        if (firstSlash < 0)
            return {};
        name = name.mid(firstSlash + 1);
    }
    for (;;) {
        // A zone made of any word would be valid: it is taken for the name of one without an offset.
        if (QTimeZone::isTimeZoneIdAvailable(name))
            return QTimeZone(name);
        if (const QByteArray iana = QTimeZone::windowsIdToDefaultIanaId(name); !iana.isEmpty())
            return QTimeZone(iana);
        const qsizetype slash = name.indexOf('/');
        if (slash < 0)
            return {};
        name.remove(0, slash + 1);
    }
}

// Begins then. libical knows no changes after the year 2582.
constexpr qint64 lastKnownYear = 16'725'225'600'000; // 2500

// The calendar repeats every 400 years to the weekday.
qint64 withinKnownYears(qint64 utc)
{
    constexpr qint64 cycle = 146'097 * msecsPerDay;
    return utc <= lastKnownYear ? utc : utc - (utc - lastKnownYear + cycle - 1) / cycle * cycle;
}

} // namespace

qint64 IcsZones::Zone::offsetAt(qint64 utc) const
{
    if (!isKnown())
        return 0;
    if (!described)
        return qint64(named.offsetFromUtc(QDateTime::fromMSecsSinceEpoch(utc, Qt::UTC))) * 1000;
    icaltimetype time = toIcalTime(withinKnownYears(utc), false);
    int isDaylight = 0;
    return qint64(icaltimezone_get_utc_offset_of_utc_time(described.get(), &time, &isDaylight)) * 1000;
}

QString IcsZones::add(const QByteArrayList& lines, qint64& changesLeft)
{
    // A line takes as much memory as a change of a clock, about.
    const auto lineCount = static_cast<qint64>(lines.size());
    if (lineCount > changesLeft)
        return Tr::tr("the time zone is left out: those of the file are too long for clocks");
    ComponentPtr component = parseComponent(lines);
    if (!component || icalcomponent_isa(component.get()) != ICAL_VTIMEZONE_COMPONENT)
        return Tr::tr("the time zone cannot be read and is left out");
    const icalproperty* id = icalcomponent_get_first_property(component.get(), ICAL_TZID_PROPERTY);
    const QByteArray zoneId = id ? QByteArray(icalproperty_get_tzid(id)) : QByteArray();
    if (zoneId.isEmpty())
        return Tr::tr("the time zone has no TZID and is left out");
    const auto changes = changesOf(component.get());
    if (!changes || *changes > changesLeft)
        return Tr::tr("the time zone %1 tells no clock that can be followed and is left out").arg(quotedIcs(zoneId));
    changesLeft -= std::max(*changes, lineCount);
    const std::shared_ptr<icaltimezone> zone(icaltimezone_new(), freeZone);
    if (!icaltimezone_set_component(zone.get(), component.get()))
        return Tr::tr("the time zone cannot be read and is left out");
    // From here on it belongs to the zone.
    static_cast<void>(component.release());
    const Zone added{zone, {}};
    // With the last year first libical makes the list of changes once, and not again every few years.
    static_cast<void>(added.offsetAt(lastKnownYear));
    m_zones.insert(zoneId, added);
    return {};
}

const IcsZones::Zone& IcsZones::zone(const QByteArray& zoneId) const
{
    // Several times as many as there are. To look for each takes a while.
    constexpr qsizetype mostZones = 10'000;
    static const Zone unknown;
    auto found = m_zones.find(zoneId);
    if (found == m_zones.end() && m_zones.size() >= mostZones)
        return unknown;
    if (found == m_zones.end())
        found = m_zones.insert(zoneId, {nullptr, wellKnownZone(zoneId)});
    return *found;
}

qint64 IcsZones::toUtc(const IcsTime& time) const
{
    if (time.isDate || time.isUtc || time.zone.isEmpty())
        return time.local;
    const Zone& clock = zone(time.zone);
    const qint64 before = clock.offsetAt(time.local - msecsPerDay);
    const qint64 after = clock.offsetAt(time.local + msecsPerDay);
    if (before == after || clock.offsetAt(time.local - before) == before)
        return time.local - before;
    const qint64 utc = time.local - after;
    return clock.offsetAt(utc) == after ? utc : time.local - before;
}

qint64 IcsZones::toLocal(qint64 utc, const IcsTime& like) const
{
    const bool hasOffset = !like.isDate && !like.isUtc && !like.zone.isEmpty();
    return hasOffset ? utc + zone(like.zone).offsetAt(utc) : utc;
}

} // namespace VeskTimeline::Kit
