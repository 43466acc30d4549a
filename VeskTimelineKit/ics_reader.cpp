#include "ics_calendar_p.h"
#include "ics_expander_p.h"
#include "ics_line_reader_p.h"
#include "kit_tr_p.h"
#include "read_file_p.h"
#include "time_limits_p.h"

#include <VeskTimelineKit/ics_reader.h>
#include <VeskTimelineKit/time_text.h>

#include <QDateTime>
#include <QFile>
#include <QFileInfo>

#include <algorithm>

namespace VeskTimeline::Kit {

namespace {

constexpr double shareOfReading = 0.6;

/// Makes a document of calendars.
class IcsDocumentBuilder
{
public:
    IcsDocumentBuilder(const QString& fileName, const std::vector<std::unique_ptr<IcsCalendar>>& calendars,
                       const ReadOptions& options, WarningList& warnings, ReadProgress& progress)
        : m_fileName(fileName), m_calendars(calendars), m_options(options), m_warnings(warnings), m_progress(progress)
    {
    }

    Document build();

private:
    /// Of a series: the calendar's name, as calendars of one name are one, and the UID.
    using SeriesKey = std::pair<const QString&, const QByteArray&>;

    /// An event that stands for an occurrence of a series.
    struct Replacement
    {
        const IcsCalendar* calendar;
        QByteArray uid; ///< refers to the event
        IcsPackedEvent event;

        SeriesKey series() const { return {calendar->name, uid}; }
    };

    void nameCalendars();
    void noteEvents();
    void noteZone(const IcsEventTimes& event, const IcsZones& zones, QSet<QByteArray>& unknown);
    void noteDates(const IcsEventTimes& event, const IcsZones& zones);
    void noteTime(qint64 start, qint64 end);
    TimeSpan span() const;
    void addTracks(const IcsCalendar& calendar);
    void addEvent(IcsEvent& event, const IcsCalendar& calendar, IcsExpander& expander);
    void addSingle(IcsEvent& event, const IcsCalendar& calendar);
    void addReplaced(const IcsEvent& event, const IcsCalendar& calendar, IcsExceptions& exceptions);
    void addSeries(const IcsEvent& event, const IcsCalendar& calendar, IcsExpander& expander);
    void noteCuts(const IcsEvent& event, const IcsExpander::Cuts& cuts);
    DocumentTrack* trackOf(const IcsEvent& event, const IcsCalendar& calendar);

    const QString& m_fileName;
    const std::vector<std::unique_ptr<IcsCalendar>>& m_calendars;
    const ReadOptions& m_options;
    WarningList& m_warnings;
    ReadProgress& m_progress;
    Document m_document;
    IcsEventUnpacker m_unpacker;
    std::vector<Replacement> m_replacements; ///< sorted by series
    std::optional<TimeSpan> m_dates;
    int m_floating = 0; ///< events without a zone
    int m_firstFloating = 0;
    int m_tracksLeftOut = 0;
    int m_itemsLeftOut = 0;
};

Document IcsDocumentBuilder::build()
{
    nameCalendars();
    noteEvents();
    IcsExpander expander(span());
    std::size_t done = 0;
    for (const auto& calendar : m_calendars) {
        addTracks(*calendar);
        for (const IcsPackedEvent packed : calendar->events) {
            IcsEvent event = m_unpacker.event(packed);
            addEvent(event, *calendar, expander);
            m_progress.reportSometimes(shareOfReading);
        }
        m_progress.report(shareOfReading + (1.0 - shareOfReading) * static_cast<double>(++done) /
                                               static_cast<double>(m_calendars.size()));
    }
    if (m_tracksLeftOut > 0)
        m_warnings.add(0, Tr::tr("tracks left out because there would be too many: %1").arg(m_tracksLeftOut));
    if (m_itemsLeftOut > 0)
        m_warnings.add(0, Tr::tr("items left out because there would be too many tracks: %1").arg(m_itemsLeftOut));
    return std::move(m_document);
}

void IcsDocumentBuilder::nameCalendars()
{
    QSet<QString> names;
    for (const auto& calendar : m_calendars) {
        if (!calendar->tracks.empty())
            calendar->name = calendar->tracks.front().path.first();
        names.insert(calendar->name);
    }
    const QString base = QFileInfo(m_fileName).completeBaseName();
    int number = 0;
    for (const auto& calendar : m_calendars) {
        if (!calendar->name.isEmpty() || !calendar->tracks.empty())
            continue;
        do {
            ++number;
            calendar->name = number == 1 ? base : QStringLiteral("%1 (%2)").arg(base).arg(number);
        } while (names.contains(calendar->name));
    }
}

// What has to be known of all events before the first of them becomes an item.
void IcsDocumentBuilder::noteEvents()
{
    for (const auto& calendar : m_calendars) {
        QSet<QByteArray> unknown;
        for (const IcsPackedEvent packed : calendar->events) {
            const IcsEventTimes event = m_unpacker.times(packed);
            noteZone(event, calendar->zones, unknown);
            noteDates(event, calendar->zones);
            if (event.recurrenceId && !event.uid.isEmpty())
                m_replacements.push_back({calendar.get(), event.uid, packed});
            m_progress.reportSometimes(shareOfReading);
        }
    }
    std::sort(m_replacements.begin(), m_replacements.end(),
              [](const Replacement& a, const Replacement& b) { return a.series() < b.series(); });
    if (m_floating > 0)
        m_warnings.add(m_firstFloating, Tr::tr("events without a time zone are taken as UTC: %1").arg(m_floating));
}

// Says which times are told without a clock that is known.
void IcsDocumentBuilder::noteZone(const IcsEventTimes& event, const IcsZones& zones, QSet<QByteArray>& unknown)
{
    const IcsTime& start = event.start;
    if (!start.isDate && !start.isUtc && start.zone.isEmpty() && ++m_floating == 1)
        m_firstFloating = event.line;
    if (start.zone.isEmpty() || unknown.contains(start.zone) || zones.knows(start.zone))
        return;
    unknown.insert(start.zone);
    m_warnings.addMade(event.line, [&start] {
        return Tr::tr("the time zone %1 is not known; its times are taken as UTC").arg(quotedIcs(start.zone));
    });
}

void IcsDocumentBuilder::noteDates(const IcsEventTimes& event, const IcsZones& zones)
{
    const qint64 start = zones.toUtc(event.start);
    noteTime(start, start + std::max<qint64>(0, icsDurationAt(event, event.start, zones)));
    for (const IcsRecurrenceDate& date : event.dates) {
        const qint64 dateStart = zones.toUtc(date.start);
        noteTime(dateStart, date.end ? zones.toUtc(*date.end) : dateStart);
    }
}

void IcsDocumentBuilder::noteTime(qint64 start, qint64 end)
{
    if (!isWithinTimeLimits(start) || !isWithinTimeLimits(end))
        return;
    if (!m_dates)
        m_dates = TimeSpan{start, end};
    m_dates->start = std::min(m_dates->start, start);
    m_dates->end = std::max(m_dates->end, end);
}

TimeSpan IcsDocumentBuilder::span() const
{
    if (m_options.expand)
        return *m_options.expand;
    if (!m_dates)
        return {};
    constexpr int years = 2;
    const qint64 end = QDateTime::fromMSecsSinceEpoch(m_dates->end, Qt::UTC).addYears(years).toMSecsSinceEpoch();
    // What starts exactly two years later is in.
    return {m_dates->start, std::min(end, latestTime) + 1};
}

void IcsDocumentBuilder::addTracks(const IcsCalendar& calendar)
{
    if (!calendar.hasTrack && calendar.events.empty())
        return;
    const auto add = [this](const QStringList& path, const QColor& color) {
        DocumentTrack* const track = m_document.trackWithinLimit(path);
        if (!track)
            ++m_tracksLeftOut;
        else if (color.isValid())
            track->color = color;
    };
    add({calendar.name}, calendar.color);
    for (const IcsTrack& track : calendar.tracks)
        add(track.path, track.color);
}

// Null where there would be too many tracks.
DocumentTrack* IcsDocumentBuilder::trackOf(const IcsEvent& event, const IcsCalendar& calendar)
{
    QStringList path = event.path;
    if (path.isEmpty())
        path.append(calendar.name);
    if (event.path.isEmpty() && !event.category.isEmpty())
        path.append(event.category);
    return m_document.trackWithinLimit(path);
}

void IcsDocumentBuilder::addEvent(IcsEvent& event, const IcsCalendar& calendar, IcsExpander& expander)
{
    if (icsDurationAt(event, event.start, calendar.zones) < 0) {
        m_warnings.add(event.line, Tr::tr("the event ends before it starts and is taken without a length"));
        event.end = event.start;
        event.duration.reset();
    }
    if (event.isRecurring() && !event.recurrenceId)
        addSeries(event, calendar, expander);
    else
        addSingle(event, calendar);
}

void IcsDocumentBuilder::addSingle(IcsEvent& event, const IcsCalendar& calendar)
{
    DocumentItem item = std::move(event.item);
    item.start = calendar.zones.toUtc(event.start);
    item.duration = icsDurationAt(event, event.start, calendar.zones);
    // Another program that moves the event leaves the exact time as it was: it must not win then.
    constexpr qint64 second = 1'000;
    const bool isExact = event.exactStart && *event.exactStart >= item.start && *event.exactStart < item.start + second;
    if (event.exactDuration && qAbs(*event.exactDuration - item.duration) < second && (isExact || !event.exactStart))
        item.duration = std::max<qint64>(*event.exactDuration, 0);
    if (isExact)
        item.start = *event.exactStart;
    if (!isWithinTimeLimits(item.start) || !isWithinTimeLimits(item.end())) {
        m_warnings.add(event.line, Tr::tr("the event is outside the years 1 to 9999 and is left out"));
        return;
    }
    const auto& expand = m_options.expand;
    if (event.recurrenceId && expand && (item.start < expand->start || item.start >= expand->end)) {
        m_warnings.add(event.line, Tr::tr("the occurrence is outside the span that is read and is left out"));
        return;
    }
    if (event.isOpenEnded)
        item.duration = DocumentItem::openEnded;
    if (DocumentTrack* const track = trackOf(event, calendar))
        track->items.push_back(std::move(item));
    else
        ++m_itemsLeftOut;
}

// Other events stand for these occurrences.
void IcsDocumentBuilder::addReplaced(const IcsEvent& event, const IcsCalendar& calendar, IcsExceptions& exceptions)
{
    const Replacement series{&calendar, event.uid, IcsPackedEvent(nullptr)};
    const auto [begin, end] =
        std::equal_range(m_replacements.begin(), m_replacements.end(), series,
                         [](const Replacement& a, const Replacement& b) { return a.series() < b.series(); });
    for (auto replacement = begin; replacement != end; ++replacement)
        exceptions.add(*m_unpacker.times(replacement->event).recurrenceId, event.start, calendar.zones);
}

void IcsDocumentBuilder::addSeries(const IcsEvent& event, const IcsCalendar& calendar, IcsExpander& expander)
{
    IcsExceptions exceptions;
    for (const IcsTime& exception : event.exceptions)
        exceptions.add(exception, event.start, calendar.zones);
    if (!event.uid.isEmpty())
        addReplaced(event, calendar, exceptions);
    const std::vector<IcsOccurrence> occurrences = expander.expand(event, calendar.zones, exceptions, m_progress);
    noteCuts(event, expander.cuts());
    DocumentTrack* const track = trackOf(event, calendar);
    if (!track) {
        m_itemsLeftOut += static_cast<int>(occurrences.size());
        return;
    }
    for (const IcsOccurrence& occurrence : occurrences) {
        // What is text in it is shared by all.
        DocumentItem item = event.item;
        item.start = occurrence.start;
        item.duration = occurrence.duration;
        track->items.push_back(std::move(item));
    }
}

void IcsDocumentBuilder::noteCuts(const IcsEvent& event, const IcsExpander::Cuts& cuts)
{
    if (cuts.isBeforeSpan)
        m_warnings.addMade(
            event.line, [this] { return Tr::tr("occurrences before %1 are left out").arg(formatTime(span().start)); });
    if (cuts.isAfterSpan)
        m_warnings.addMade(
            event.line, [this] { return Tr::tr("occurrences after %1 are left out").arg(formatTime(span().end - 1)); });
    if (cuts.isByNumber)
        m_warnings.addMade(event.line, [] {
            return Tr::tr("more than %1 occurrences; the rest are left out").arg(IcsExpander::mostOccurrences);
        });
    if (cuts.isByEffort)
        m_warnings.add(event.line, Tr::tr("the recurrence cannot be followed to its end; the rest are left out"));
}

void noteRepairs(const IcsLineReader& reader, WarningList& warnings)
{
    if (const auto& repair = reader.droppedControls(); repair.count > 0)
        warnings.add(repair.firstLine,
                     Tr::tr("lines with control characters, which are dropped: %1").arg(repair.count));
    if (const auto& repair = reader.decodedAsLatin1(); repair.count > 0)
        warnings.add(repair.firstLine, Tr::tr("lines that are not UTF-8, taken as ISO 8859-1: %1").arg(repair.count));
}

Result<Document> readCalendars(QIODevice& device, const QString& fileName, const ReadOptions& options)
{
    ReadProgress progress(options);
    progress.report(0.0);
    WarningList warnings(fileName);
    IcsLineReader reader(device);
    IcsCalendarParser parser(warnings);
    while (reader.next()) {
        if (const QString reason = parser.takeLine(reader.number(), reader.text()); !reason.isEmpty())
            return FileError{fileName, reader.number(), reason};
        progress.report(shareOfReading * reader.share());
    }
    if (reader.isTooLong())
        return FileError{fileName, reader.number(), Tr::tr("the line is too long")};
    parser.finish();
    noteRepairs(reader, warnings);
    if (parser.calendars().empty())
        return FileError{fileName, 0, Tr::tr("no calendar in it: there is no BEGIN:VCALENDAR")};

    Document document = IcsDocumentBuilder(fileName, parser.calendars(), options, warnings, progress).build();
    warnings.addTo(document);
    return document;
}

} // namespace

Result<Document> readIcs(QIODevice& device, const QString& fileName, const ReadOptions& options)
{
    // Otherwise an error in the file could end the program.
    icalerror_set_errors_are_fatal(0);
    try {
        return readCalendars(device, fileName, options);
    } catch (const ReadCancelled&) {
        return FileError{fileName, 0, cancelledReason()};
    }
}

Result<Document> readIcs(const QString& fileName, const ReadOptions& options)
{
    return readFile(fileName, [&](QIODevice& device) { return readIcs(device, fileName, options); });
}

} // namespace VeskTimeline::Kit
