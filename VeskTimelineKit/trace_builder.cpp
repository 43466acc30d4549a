#include "kit_tr_p.h"
#include "quoted_text_p.h"
#include "trace_builder_p.h"

namespace VeskTimeline::Kit {

namespace {

constexpr QChar separator(0x1F);

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
        addEvent(traceEventOf(*value, m_texts));
        ++m_events;
    } catch (const QString& reason) {
        m_lastReason = reason;
        m_warnings.add(m_line, Tr::tr("event %1 is left out: %2").arg(m_records).arg(reason));
    }
}

void TraceDocumentBuilder::addEvent(TraceEvent event)
{
    if (event.phase == 'M')
        return addMetadata(event);
    if (!isOneOf(event.phase, "XBEIiRbneSTpF"))
        return leaveOut(phaseName(event.phase));
    if (!event.time)
        throw event.isTimeNoNumber ? Tr::tr("its time is no number") : Tr::tr("it has no time");
    if (isOneOf(event.phase, "bneSTpF"))
        return addAsync(std::move(event));

    const std::optional<std::size_t> found = groupOf(event, TraceGroup::Kind::Thread, event.thread);
    if (!found)
        return;
    const std::size_t group = *found;
    const double time = *event.time;
    const bool isBegin = event.phase == 'B';
    if (event.phase == 'X')
        addComplete(group, std::move(event));
    else if (isOneOf(event.phase, "BE"))
        addMark(QStringLiteral("thread %1").arg(group), group, isBegin, std::move(event));
    else
        addSlice(group, std::move(event), time);
}

std::optional<std::size_t> TraceDocumentBuilder::groupOf(const TraceEvent& event, TraceGroup::Kind kind,
                                                         const QString& id)
{
    const std::optional<std::size_t> group = m_layout.groupIndex(event.process, kind, id);
    // An end is no item of its own.
    if (!group && !isOneOf(event.phase, "EeF"))
        m_layout.leaveOutItem();
    return group;
}

void TraceDocumentBuilder::addComplete(std::size_t group, TraceEvent event)
{
    if (event.duration && *event.duration < 0.0)
        throw Tr::tr("its duration is negative");
    if (!event.duration)
        m_warnings.add(
            m_line,
            Tr::tr("event %1: %2 has no duration and is left open-ended").arg(m_records).arg(quotedText(event.name)));
    const double end = event.duration ? *event.time + *event.duration : TraceSlice::noEnd;
    addSlice(group, std::move(event), end);
}

void TraceDocumentBuilder::addAsync(TraceEvent event)
{
    const QString category = event.attributes.value(QStringLiteral("cat"));
    const std::optional<std::size_t> found = groupOf(event, TraceGroup::Kind::Async, category);
    if (!found)
        return;
    const std::size_t group = *found;
    if (!isOneOf(event.phase, "beSF")) {
        const double time = *event.time;
        return addSlice(group, std::move(event), time);
    }
    const QString kind = isOneOf(event.phase, "be") ? QStringLiteral("nestable") : QStringLiteral("async");
    const QString key = QStringList{kind, category, event.asyncId, event.name}.join(separator);
    const bool isBegin = isOneOf(event.phase, "bS");
    addMark(key, group, isBegin, std::move(event));
}

void TraceDocumentBuilder::addSlice(std::size_t group, TraceEvent event, double end)
{
    m_layout.group(group).slices.push_back({*event.time, end, std::move(event.name), std::move(event.attributes)});
}

void TraceDocumentBuilder::addMark(const QString& seriesKey, std::size_t group, bool isBegin, TraceEvent event)
{
    auto found = m_seriesIndexes.constFind(seriesKey);
    if (found == m_seriesIndexes.cend()) {
        found = m_seriesIndexes.insert(seriesKey, m_series.size());
        m_series.push_back({group, {}});
    }
    m_series[*found].marks.push_back(
        {isBegin, *event.time, std::move(event.name), std::move(event.attributes), m_line, m_records});
}

void TraceDocumentBuilder::addMetadata(const TraceEvent& event)
{
    const auto describe = [&event](auto& described, bool isName) {
        if (isName)
            described.name = event.metadataName;
        else
            described.sortIndex = event.metadataIndex.value_or(0.0);
    };
    if (event.name == u"process_name" || event.name == u"process_sort_index") {
        if (TraceProcess* const process = m_layout.process(event.process))
            return describe(*process, event.name == u"process_name");
    } else if (event.name == u"thread_name" || event.name == u"thread_sort_index") {
        if (const auto group = m_layout.groupIndex(event.process, TraceGroup::Kind::Thread, event.thread))
            return describe(m_layout.group(*group), event.name == u"thread_name");
    }
    leaveOut(Tr::tr("metadata %1").arg(quotedText(event.name)));
}

void TraceDocumentBuilder::leaveOut(const QString& what)
{
    constexpr int mostKinds = 50;
    const bool isKnown = m_leftOut.contains(what) || m_leftOut.size() < mostKinds;
    ++m_leftOut[isKnown ? what : Tr::tr("events of other kinds")];
}

void TraceDocumentBuilder::remarkOnLeftOut()
{
    for (auto kind = m_leftOut.cbegin(); kind != m_leftOut.cend(); ++kind)
        m_remarks.add(0, kind.value() == 1 ? Tr::tr("left out: %1, 1 time").arg(kind.key())
                                           : Tr::tr("left out: %1, %2 times").arg(kind.key()).arg(kind.value()));
}

Document TraceDocumentBuilder::takeDocument(double stretch, ReadProgress& progress)
{
    // From here on it is only in the way, and may be large.
    m_seriesIndexes = {};
    for (Series& series : m_series) {
        std::vector<TraceSlice> matched = matchTraceMarks(std::move(series.marks), m_warnings, progress);
        std::vector<TraceSlice>& slices = m_layout.group(series.group).slices;
        std::move(matched.begin(), matched.end(), std::back_inserter(slices));
    }
    remarkOnLeftOut();
    constexpr double microsecondsPerMillisecond = 1000.0;
    Document document = m_layout.takeDocument(stretch / microsecondsPerMillisecond, m_remarks, progress);
    m_remarks.addTo(document);
    m_warnings.addTo(document);
    return document;
}

} // namespace VeskTimeline::Kit
