#pragma once

// Internal to the kit; not installed.

#include <VeskTimelineKit/csv_options.h>

#include <QList>
#include <QStringList>

namespace VeskTimeline::Kit {

/// Names of columns that others use for a field, in words as CsvName has them, those that say most first.
QStringList csvSynonyms(CsvField field);

/// The name of a column, taken apart.
struct CsvName
{
    explicit CsvName(const QString& name);

    QString core;          ///< lower case, without what says how the content is written: "Start_Date (UTC)" is "start"
    bool isOfDate = false; ///< a word of it says that there are dates
    bool isOfTime = false; ///< a word of it says that there are times of day
    std::optional<CsvTimeUnit> unit = {}; ///< that a word of it says
    bool isGeneral = false;               ///< nothing but such words, as "Date" and "timestamp_ms"
    bool endsWithName = false;            ///< as "codename" and "event title"
};

} // namespace VeskTimeline::Kit
