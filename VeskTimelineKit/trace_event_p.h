#pragma once

// Internal to the kit; not installed.

#include <QMap>
#include <QString>

#include <optional>
#include <simdjson.h>

namespace VeskTimeline::Kit {

/// One event of a trace as its record says it; times in microseconds.
struct TraceEvent
{
    char phase = 0;
    QString name;
    std::optional<double> time;
    std::optional<double> duration;
    QString process;
    QString thread;
    QString asyncId; ///< with what it is local to; empty: none
    QMap<QString, QString> attributes;
    /// Of metadata: what args says for the name, and the sort index.
    QString metadataName;
    std::optional<double> metadataIndex;
};

/// @throws QString the reason why the value is no event
TraceEvent traceEventOf(const simdjson::dom::element& value);

} // namespace VeskTimeline::Kit
