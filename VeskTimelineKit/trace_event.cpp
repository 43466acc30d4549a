#include "json_record_p.h"
#include "kit_tr_p.h"
#include "trace_event_p.h"

namespace VeskTimeline::Kit {

using namespace simdjson;

namespace {

// What two ids that are the same text, but not of the same thing, are told apart by.
constexpr QChar separator(0x1F);

QString asyncIdOf(const TraceEvent& event, const dom::object& members)
{
    dom::element id;
    if (members["id2"]["local"].get(id) == SUCCESS)
        return QStringLiteral("local") + separator + event.process + separator + jsonValueText(id);
    if (members["id2"]["global"].get(id) != SUCCESS && members["id"].get(id) != SUCCESS)
        return {};
    dom::element scope;
    const QString scopeText = members["scope"].get(scope) == SUCCESS ? jsonValueText(scope) : QString();
    return QStringLiteral("global") + separator + scopeText + separator + jsonValueText(id);
}

void readArguments(TraceEvent& event, const dom::element& value, SharedTexts& texts)
{
    dom::object arguments;
    if (value.get(arguments) != SUCCESS) {
        event.attributes.insert(QStringLiteral("args"), jsonValueText(value));
        return;
    }
    for (const dom::key_value_pair& argument : arguments)
        event.attributes.insert(texts.shared(QStringLiteral("args.") + jsonText(argument.key)),
                                texts.shared(jsonValueText(argument.value)));
}

void readMetadata(TraceEvent& event, const dom::object& members)
{
    dom::element value;
    if (members["args"]["name"].get(value) == SUCCESS)
        event.metadataName = jsonValueText(value);
    if (members["args"]["sort_index"].get(value) == SUCCESS)
        event.metadataIndex = jsonNumber(value);
}

void readTime(TraceEvent& event, const dom::element& value)
{
    event.time = jsonNumber(value);
    event.isTimeNoNumber = !event.time;
}

void readMember(TraceEvent& event, std::string_view name, const dom::element& value, SharedTexts& texts)
{
    if (name == "ph")
        return;
    if (name == "name")
        event.name = texts.shared(jsonValueText(value));
    else if (name == "ts")
        readTime(event, value);
    else if (name == "dur")
        event.duration = jsonNumber(value);
    else if (name == "pid")
        event.process = jsonValueText(value);
    else if (name == "tid")
        event.thread = jsonValueText(value);
    else if (name == "args")
        readArguments(event, value, texts);
    else
        event.attributes.insert(texts.shared(jsonText(name)), texts.shared(jsonValueText(value)));
}

} // namespace

TraceEvent traceEventOf(const dom::element& value, SharedTexts& texts)
{
    dom::object members;
    if (value.get(members) != SUCCESS)
        throw Tr::tr("it is no object");
    std::string_view phase;
    if (members["ph"].get(phase) != SUCCESS || phase.size() != 1)
        throw Tr::tr("it has no phase");

    TraceEvent event;
    event.phase = phase.front();
    for (const dom::key_value_pair& member : members)
        readMember(event, member.key, member.value, texts);
    event.asyncId = asyncIdOf(event, members);
    if (event.phase == 'M')
        readMetadata(event, members);
    return event;
}

} // namespace VeskTimeline::Kit
