#pragma once

// Internal to the kit; not installed.

#include "json_record_p.h"
#include "json_record_reader_p.h"
#include "trace_event_p.h"
#include "trace_layout_p.h"

namespace VeskTimeline::Kit {

/// Makes a document of the records of a trace.
class TraceDocumentBuilder
{
public:
    explicit TraceDocumentBuilder(const QString& fileName) : m_remarks(fileName), m_warnings(fileName) {}

    void readRecord(JsonRecordReader& reader);
    /// Of the file as a whole. They are kept apart from those of single events, which may be too many to keep.
    WarningList& remarks() { return m_remarks; }
    /// When no record was an event: why the last was none. Null otherwise.
    QString refusal() const { return m_events > 0 ? QString() : m_lastReason; }
    /// @param stretch see ReadOptions
    /// @throws ReadCancelled
    Document takeDocument(double stretch, ReadProgress& progress);

private:
    void addEvent(const TraceEvent& event);
    void addMetadata(const TraceEvent& event);
    std::optional<std::size_t> groupOf(const TraceEvent& event, TraceGroup::Kind kind, std::string_view id);
    void addSlice(std::size_t group, const TraceEvent& event, double end);
    void addMark(std::uint32_t series, const TraceEvent& event, bool isBegin);
    void addComplete(std::size_t group, const TraceEvent& event);
    void addPart(std::size_t group, const TraceEvent& event);
    void addAsync(const TraceEvent& event);
    std::uint32_t asyncSeries(std::size_t group, const TraceEvent& event);
    std::uint32_t newSeries(std::size_t group);
    TracePayload payload(const TraceEvent& event) { return {m_payloads, event.name, m_reader.attributes()}; }
    void matchMarks(ReadProgress& progress);
    int& leaveOut(const QString& what);
    void leaveOutPhase(char phase);
    void remarkOnLeftOut();

    JsonRecordParser m_parser;
    TraceEventReader m_reader;
    ByteArena m_payloads;
    TraceLayout m_layout;
    WarningList m_remarks;
    WarningList m_warnings;
    // A series is of beginnings and ends among which partners are sought.
    std::vector<std::size_t> m_groupsOfSeries;
    ByteTextMap<std::uint32_t> m_asyncSeries;
    std::string m_seriesKey;
    std::vector<TraceMark> m_marks;
    QMap<QString, int> m_leftOut;             // with their number
    std::array<int*, 256> m_leftOutOfPhase{}; // in it, of those that have come
    QString m_lastReason;
    int m_records = 0;
    int m_events = 0;
    int m_line = 0;
};

} // namespace VeskTimeline::Kit
