#pragma once

// Internal to the kit; not installed.

#include "csv_columns_p.h"
#include "csv_encoding_p.h"
#include "csv_record_reader_p.h"
#include "csv_source_p.h"

namespace VeskTimeline::Kit {

/// How a file is going to be read: what is said about it, and the rest found out from its beginning.
struct CsvPlan
{
    CsvOptions options; ///< all filled in
    CsvCode code;
    CsvColumns columns;
    CsvSample sample;
    bool hasDelimiterLine = false; ///< in front of the header: "sep=;"
    QStringList guesses;
    QString problem;     ///< why it cannot be read; null when it can
    int problemLine = 0; ///< 0 for none

    bool isOwnWay() const { return columns.isOwnWay(); }
};

/// @throws QString the reason when packed data is broken
CsvPlan makeCsvPlan(const CsvSource& source, const CsvOptions& said);

/// The records of the source from its beginning, the header first.
CsvRecordReader csvRecords(CsvSource& source, const CsvPlan& plan);

} // namespace VeskTimeline::Kit
