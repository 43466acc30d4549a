#pragma once

// Internal to the kit; not installed.

#include "csv_columns_p.h"

namespace VeskTimeline::Kit {

/// Finds out how the times of a file are written, from its beginning, and fills in what the options leave open.
/// @param guesses gets a sentence for the user about each thing that was found out, except what is the kit's own way
/// @return why the times cannot be read; null when they can
QString guessCsvTimes(const CsvColumns& columns, const CsvSample& sample, CsvOptions& options, QStringList& guesses);

/// The fields of a record that make up one, joined by blanks; nothing when the record is too short for all of them.
std::optional<QString> csvFieldText(const QStringList& record, const QList<qsizetype>& columns);

} // namespace VeskTimeline::Kit
