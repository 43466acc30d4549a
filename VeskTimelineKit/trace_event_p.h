#pragma once

// Internal to the kit; not installed.

#include "trace_payload_p.h"

#include <QString>

#include <array>
#include <optional>
#include <simdjson.h>

namespace VeskTimeline::Kit {

/// One event of a trace as its record says it; times in microseconds. Texts are UTF-8 and good until the next event.
struct TraceEvent
{
    char phase = 0;
    std::string_view name;
    std::optional<double> time;
    bool isTimeNoNumber = false; ///< it has one, of another kind; time is nothing then
    std::optional<double> duration;
    std::string_view process;
    std::string_view thread;
    std::string_view category;
    std::string_view asyncId; ///< with what it is local to; empty: none, and of all that are not asynchronous
    /// Of metadata: what args says for the name, and the sort index.
    QString metadataName;
    std::optional<double> metadataIndex;
};

/// Takes the records of events apart.
class TraceEventReader
{
public:
    /// @throws QString the reason why the value is no event
    const TraceEvent& read(const simdjson::dom::element& value);
    /// Of the event that was read last: all that it says besides.
    const TraceAttributes& attributes() const { return m_attributes; }

    /// Whether the partners of such events are told by an id.
    static bool isAsync(char phase) { return std::string_view("bneSTpF").find(phase) != std::string_view::npos; }

private:
    using Value = simdjson::dom::element;
    enum Buffer { Name, Process, Thread, Category, Other, BufferCount };

    void readMember(std::string_view name, const Value& value);
    void readAttribute(std::string_view name, const Value& value);
    void readArguments(const Value& value);
    void readAsyncId();
    void appendToAsyncId(const Value& value);
    void readMetadata(const simdjson::dom::object& members);
    std::string_view text(const Value& value, Buffer buffer);

    TraceEvent m_event;
    TraceAttributes m_attributes;
    std::optional<Value> m_phase;
    std::optional<Value> m_id;
    std::optional<Value> m_id2;
    std::optional<Value> m_scope;
    std::string m_asyncId;
    std::array<std::string, BufferCount> m_buffers; ///< texts of what is no text in the record
};

} // namespace VeskTimeline::Kit
