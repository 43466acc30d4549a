#pragma once

// Internal to the kit; not installed.

#include <VeskTimelineKit/csv_options.h>

#include <QStringView>

#include <optional>

namespace VeskTimeline::Kit {

/// Whether the text is a decimal number: digits, a sign before them, a fraction behind them.
bool isCsvNumber(QStringView text, QChar decimalPoint);

/// A number in milliseconds.
struct CsvMsecs
{
    qint64 msecs = 0;
    bool isCut = false;    ///< there were fractions of a millisecond; the number is the next lower whole one
    bool isTooFar = false; ///< it is beyond all times that there are
};

/// Nothing for what is no number. Every digit counts: no floating point number is in between.
std::optional<CsvMsecs> csvMsecs(QStringView text, CsvTimeUnit unit, QChar decimalPoint);

} // namespace VeskTimeline::Kit
