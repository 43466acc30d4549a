#pragma once

// Internal to the kit; not installed.

#include "ics_event_p.h"
#include "ics_zones_p.h"
#include "read_progress_p.h"

#include <map>

namespace VeskTimeline::Kit {

/// One time that an event takes place.
struct IcsOccurrence
{
    qint64 start = 0; ///< milliseconds since the epoch, UTC
    qint64 duration = 0;
};

/// Occurrences of a series that are not there: those that EXDATE names and those that an event of their own replaces.
struct IcsExceptions
{
    QSet<qint64> instants; ///< UTC
    QSet<qint64> dates;    ///< on the clock of the series; as IcsTime::date()

    /// @param series the start of the series
    void add(const IcsTime& exception, const IcsTime& series, const IcsZones& zones);
};

/// How long an event lasts that starts at another time than it says.
qint64 icsDurationAt(const IcsEventTimes& event, const IcsTime& start, const IcsZones& zones);

/// Makes the occurrences of recurring events, up to a number and an effort for all of them together.
class IcsExpander
{
public:
    static constexpr int mostOccurrences = 100'000;

    /// Why there are less occurrences than the event tells.
    struct Cuts
    {
        bool isBeforeSpan = false; ///< some start before the span
        bool isAfterSpan = false;  ///< some start after it
        bool isByNumber = false;
        bool isByEffort = false; ///< the rule would have kept the reader busy for ever
    };

    /// @param span occurrences start in it, its end excluded
    explicit IcsExpander(TimeSpan span) : m_span(span) {}

    /// In the order of time.
    std::vector<IcsOccurrence> expand(const IcsEvent& event, const IcsZones& zones, const IcsExceptions& exceptions,
                                      ReadProgress& progress);
    /// Of the last event that was expanded.
    const Cuts& cuts() const { return m_cuts; }

private:
    void addRule(const QByteArray& text, ReadProgress& progress);
    void followRule(icalrecur_iterator* iterator, const icalrecurrencetype& rule, qint64 lastTried,
                    ReadProgress& progress);
    void addDate(const IcsRecurrenceDate& date);
    bool add(const IcsTime& start, qint64 utc, qint64 duration);
    bool isOver(const icalrecurrencetype& rule, const IcsTime& start, qint64 utc) const;
    bool isExcluded(const IcsTime& start, qint64 utc) const;

    TimeSpan m_span;
    int m_left = mostOccurrences;
    qint64 m_effort = 0; ///< milliseconds
    Cuts m_cuts;
    std::map<qint64, qint64> m_found; ///< durations by start
    const IcsEvent* m_event = nullptr;
    const IcsZones* m_zones = nullptr;
    const IcsExceptions* m_exceptions = nullptr;
};

} // namespace VeskTimeline::Kit
