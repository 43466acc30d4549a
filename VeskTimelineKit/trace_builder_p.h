#pragma once

// Internal to the kit; not installed.

#include "json_record_p.h"
#include "json_record_reader_p.h"
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
    /// The beginnings and ends among which partners are sought.
    struct Series
    {
        std::size_t group = 0;
        std::vector<TraceMark> marks;
    };

    void addEvent(TraceEvent event);
    void addMetadata(const TraceEvent& event);
    std::optional<std::size_t> groupOf(const TraceEvent& event, TraceGroup::Kind kind, const QString& id);
    void addSlice(std::size_t group, TraceEvent event, double end);
    void addMark(const QString& seriesKey, std::size_t group, bool isBegin, TraceEvent event);
    void addComplete(std::size_t group, TraceEvent event);
    void addAsync(TraceEvent event);
    void leaveOut(const QString& what);
    void remarkOnLeftOut();

    JsonRecordParser m_parser;
    SharedTexts m_texts;
    TraceLayout m_layout;
    WarningList m_remarks;
    WarningList m_warnings;
    QHash<QString, std::size_t> m_seriesIndexes;
    std::vector<Series> m_series;
    QMap<QString, int> m_leftOut; // with their number
    QString m_lastReason;
    int m_records = 0;
    int m_events = 0;
    int m_line = 0;
};

} // namespace VeskTimeline::Kit
