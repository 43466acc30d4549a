#pragma once

// Internal to the kit; not installed.

#include "shared_texts_p.h"

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
    bool isTimeNoNumber = false; ///< it has one, of another kind; time is nothing then
    std::optional<double> duration;
    QString process;
    QString thread;
    QString asyncId; ///< with what it is local to; empty: none
    QMap<QString, QString> attributes;
    /// Of metadata: what args says for the name, and the sort index.
    QString metadataName;
    std::optional<double> metadataIndex;
};

/// @param texts of the whole trace @throws QString the reason why the value is no event
TraceEvent traceEventOf(const simdjson::dom::element& value, SharedTexts& texts);

} // namespace VeskTimeline::Kit
