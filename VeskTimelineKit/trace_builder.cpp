#include "kit_tr_p.h"
#include "quoted_text_p.h"
#include "trace_builder_p.h"

#include <algorithm>

namespace VeskTimeline::Kit {

namespace {

bool isOneOf(char phase, std::string_view phases)
{
    return phases.find(phase) != std::string_view::npos;
}

QString phaseName(char phase)
{
    if (phase == 'C')
        return Tr::tr("counters");
    if (isOneOf(phase, "stf"))
        return Tr::tr("flow events");
    if (isOneOf(phase, "NOD"))
        return Tr::tr("object events");
    if (phase == 'P')
        return Tr::tr("samples");
    if (isOneOf(phase, "Vv"))
        return Tr::tr("memory dumps");
    return Tr::tr("events of the phase %1").arg(quotedText(QString(QLatin1Char(phase))));
}

} // namespace

void TraceDocumentBuilder::readRecord(JsonRecordReader& reader)
{
    ++m_records;
    m_line = reader.line();
    const std::optional<simdjson::dom::element> value = m_parser.parse(reader.text());
    if (m_parser.wasMended())
        m_warnings.add(m_line, Tr::tr("event %1: bytes that are not UTF-8 are replaced").arg(m_records));
    try {
        if (!value)
            throw m_parser.errorReason();
        addEvent(m_reader.read(*value));
        ++m_events;
    } catch (const QString& reason) {
        m_lastReason = reason;
        m_warnings.add(m_line, Tr::tr("event %1 is left out: %2").arg(m_records).arg(reason));
    }
}

void TraceDocumentBuilder::addEvent(const TraceEvent& event)
{
    if (event.phase == 'M')
        return addMetadata(event);
    if (!isOneOf(event.phase, "XBEIiRbneSTpF"))
        return leaveOutPhase(event.phase);
    if (!event.time)
        throw event.isTimeNoNumber ? Tr::tr("its time is no number") : Tr::tr("it has no time");
    if (TraceEventReader::isAsync(event.phase))
        return addAsync(event);

    const std::optional<std::size_t> group = groupOf(event, TraceGroup::Kind::Thread, event.thread);
    if (!group)
        return;
    if (event.phase == 'X')
        addComplete(*group, event);
    else if (isOneOf(event.phase, "BE"))
        addPart(*group, event);
    else
        addSlice(*group, event, *event.time);
}

std::optional<std::size_t> TraceDocumentBuilder::groupOf(const TraceEvent& event, TraceGroup::Kind kind,
                                                         std::string_view id)
{
    const std::optional<std::size_t> group = m_layout.groupIndex(event.process, kind, id);
    // An end is no item of its own.
    if (!group && !isOneOf(event.phase, "EeF"))
        m_layout.leaveOutItem();
    return group;
}

void TraceDocumentBuilder::addComplete(std::size_t group, const TraceEvent& event)
{
    if (event.duration && *event.duration < 0.0)
        throw Tr::tr("its duration is negative");
    if (!event.duration)
        m_warnings.addMade(m_line, [this, &event] {
            return Tr::tr("event %1: %2 has no duration and is left open-ended")
                .arg(m_records)
                .arg(quotedText(jsonText(event.name)));
        });
    addSlice(group, event, event.duration ? *event.time + *event.duration : TraceSlice::noEnd);
}

void TraceDocumentBuilder::addPart(std::size_t group, const TraceEvent& event)
{
    std::optional<std::uint32_t>& series = m_layout.group(group).series;
    if (!series)
        series = newSeries(group);
    addMark(*series, event, event.phase == 'B');
}

void TraceDocumentBuilder::addAsync(const TraceEvent& event)
{
    const std::optional<std::size_t> group = groupOf(event, TraceGroup::Kind::Async, event.category);
    if (!group)
        return;
    if (isOneOf(event.phase, "beSF"))
        addMark(asyncSeries(*group, event), event, isOneOf(event.phase, "bS"));
    else
        addSlice(*group, event, *event.time);
}

// Partners may be in different processes; they are shown in that of the first.
std::uint32_t TraceDocumentBuilder::asyncSeries(std::size_t group, const TraceEvent& event)
{
    m_seriesKey = isOneOf(event.phase, "be") ? 'n' : 'a';
    // With their lengths: whatever is in one, what follows cannot be taken for a part of it.
    for (const std::string_view part : {event.category, event.asyncId, event.name}) {
        const std::size_t size = part.size();
        m_seriesKey.append(reinterpret_cast<const char*>(&size), sizeof size).append(part);
    }
    if (const std::uint32_t* const known = m_asyncSeries.find(m_seriesKey))
        return *known;
    m_asyncSeries.insert(m_seriesKey, newSeries(group));
    return static_cast<std::uint32_t>(m_groupsOfSeries.size() - 1);
}

std::uint32_t TraceDocumentBuilder::newSeries(std::size_t group)
{
    m_groupsOfSeries.push_back(group);
    return static_cast<std::uint32_t>(m_groupsOfSeries.size() - 1);
}

void TraceDocumentBuilder::addSlice(std::size_t group, const TraceEvent& event, double end)
{
    m_layout.group(group).slices.push_back({*event.time, end, payload(event)});
}

void TraceDocumentBuilder::addMark(std::uint32_t series, const TraceEvent& event, bool isBegin)
{
    m_marks.push_back({*event.time, payload(event), series, m_line, m_records, isBegin});
}

void TraceDocumentBuilder::addMetadata(const TraceEvent& event)
{
    const auto describe = [&event](auto& described, bool isName) {
        if (isName)
            described.name = event.metadataName;
        else
            described.sortIndex = event.metadataIndex.value_or(0.0);
    };
    if (event.name == "process_name" || event.name == "process_sort_index") {
        if (TraceProcess* const process = m_layout.process(event.process))
            return describe(*process, event.name == "process_name");
    } else if (event.name == "thread_name" || event.name == "thread_sort_index") {
        if (const auto group = m_layout.groupIndex(event.process, TraceGroup::Kind::Thread, event.thread))
            return describe(m_layout.group(*group), event.name == "thread_name");
    }
    leaveOut(Tr::tr("metadata %1").arg(quotedText(jsonText(event.name))));
}

int& TraceDocumentBuilder::leaveOut(const QString& what)
{
    constexpr int mostKinds = 50;
    const bool isKnown = m_leftOut.contains(what) || m_leftOut.size() < mostKinds;
    return ++m_leftOut[isKnown ? what : Tr::tr("events of other kinds")];
}

void TraceDocumentBuilder::leaveOutPhase(char phase)
{
    int*& count = m_leftOutOfPhase[static_cast<unsigned char>(phase)];
    if (count)
        ++*count;
    else
        count = &leaveOut(phaseName(phase));
}

void TraceDocumentBuilder::remarkOnLeftOut()
{
    for (auto kind = m_leftOut.cbegin(); kind != m_leftOut.cend(); ++kind)
        m_remarks.add(0, kind.value() == 1 ? Tr::tr("left out: %1, 1 time").arg(kind.key())
                                           : Tr::tr("left out: %1, %2 times").arg(kind.key()).arg(kind.value()));
}

void TraceDocumentBuilder::matchMarks(ReadProgress& progress)
{
    // From here on it is only in the way, and may be large.
    m_asyncSeries = {};
    sortBySeries(m_marks, m_groupsOfSeries.size());
    for (auto begin = m_marks.begin(); begin != m_marks.end();) {
        const std::uint32_t series = begin->series;
        const auto end =
            std::find_if(begin, m_marks.end(), [series](const TraceMark& mark) { return mark.series != series; });
        matchTraceMarks(begin, end, m_layout.group(m_groupsOfSeries[series]).slices, m_warnings, progress);
        begin = end;
    }
    m_marks = {};
}

Document TraceDocumentBuilder::takeDocument(double stretch, ReadProgress& progress)
{
    matchMarks(progress);
    remarkOnLeftOut();
    constexpr double microsecondsPerMillisecond = 1000.0;
    SharedTexts texts;
    Document document = m_layout.takeDocument(stretch / microsecondsPerMillisecond, texts, m_remarks, progress);
    m_remarks.addTo(document);
    m_warnings.addTo(document);
    return document;
}

} // namespace VeskTimeline::Kit
