#include "json_record_p.h"
#include "kit_tr_p.h"
#include "trace_event_p.h"

namespace VeskTimeline::Kit {

using namespace simdjson;

namespace {

constexpr std::string_view argumentPrefix = "args.";

// The first of several members of a name counts.
void keepFirst(std::optional<dom::element>& kept, const dom::element& value)
{
    if (!kept)
        kept = value;
}

// With its length: whatever is in it, what follows cannot be taken for a part of it.
void appendPart(std::string& key, std::string_view text)
{
    const auto size = static_cast<std::uint32_t>(text.size());
    key.append(reinterpret_cast<const char*>(&size), sizeof size).append(text);
}

} // namespace

// Strings as they are, everything else as compact JSON.
std::string_view TraceEventReader::text(const Value& value, Buffer buffer)
{
    std::string_view string;
    if (value.get(string) == SUCCESS)
        return string;
    m_buffers[buffer] = jsonValueUtf8(value);
    return m_buffers[buffer];
}

void TraceEventReader::readAttribute(std::string_view name, const Value& value)
{
    m_attributes.append({}, name, text(value, Other));
}

void TraceEventReader::readArguments(const Value& value)
{
    dom::object arguments;
    if (value.get(arguments) != SUCCESS)
        return readAttribute("args", value);
    for (const dom::key_value_pair& argument : arguments)
        m_attributes.append(argumentPrefix, argument.key, text(argument.value, Other));
}

void TraceEventReader::readMember(std::string_view name, const Value& value)
{
    if (name == "ph")
        return keepFirst(m_phase, value);
    if (name == "name") {
        m_event.name = text(value, Name);
        return;
    }
    if (name == "ts") {
        m_event.time = jsonNumber(value);
        m_event.isTimeNoNumber = !m_event.time;
        return;
    }
    if (name == "dur") {
        m_event.duration = jsonNumber(value);
        return;
    }
    if (name == "pid") {
        m_event.process = text(value, Process);
        return;
    }
    if (name == "tid") {
        m_event.thread = text(value, Thread);
        return;
    }
    if (name == "args")
        return readArguments(value);
    if (name == "cat") {
        m_event.category = text(value, Category);
        return m_attributes.append({}, name, m_event.category);
    }
    if (name == "id")
        keepFirst(m_id, value);
    else if (name == "id2")
        keepFirst(m_id2, value);
    else if (name == "scope")
        keepFirst(m_scope, value);
    readAttribute(name, value);
}

void TraceEventReader::appendToAsyncId(const Value& value)
{
    appendPart(m_asyncId, text(value, Other));
}

void TraceEventReader::readAsyncId()
{
    Value id;
    m_asyncId.clear();
    if (m_id2 && (*m_id2)["local"].get(id) == SUCCESS) {
        m_asyncId = 'l';
        appendPart(m_asyncId, m_event.process);
        appendToAsyncId(id);
    } else if ((m_id2 && (*m_id2)["global"].get(id) == SUCCESS) || m_id) {
        if (!m_id2 || (*m_id2)["global"].get(id) != SUCCESS)
            id = *m_id;
        m_asyncId = 'g';
        if (m_scope)
            appendToAsyncId(*m_scope);
        else
            appendPart(m_asyncId, {});
        appendToAsyncId(id);
    }
    m_event.asyncId = m_asyncId;
}

void TraceEventReader::readMetadata(const dom::object& members)
{
    Value value;
    if (members["args"]["name"].get(value) == SUCCESS)
        m_event.metadataName = jsonValueText(value);
    if (members["args"]["sort_index"].get(value) == SUCCESS)
        m_event.metadataIndex = jsonNumber(value);
}

const TraceEvent& TraceEventReader::read(const Value& value)
{
    dom::object members;
    if (value.get(members) != SUCCESS)
        throw Tr::tr("it is no object");
    m_event = {};
    m_attributes.clear();
    m_phase.reset();
    m_id.reset();
    m_id2.reset();
    m_scope.reset();
    for (const dom::key_value_pair& member : members)
        readMember(member.key, member.value);

    std::string_view phase;
    if (!m_phase || m_phase->get(phase) != SUCCESS || phase.size() != 1)
        throw Tr::tr("it has no phase");
    m_event.phase = phase.front();
    if (isAsync(m_event.phase))
        readAsyncId();
    if (m_event.phase == 'M')
        readMetadata(members);
    return m_event;
}

} // namespace VeskTimeline::Kit
