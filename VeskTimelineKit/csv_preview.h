#pragma once

#include <VeskTimelineKit/csv_options.h>
#include <VeskTimelineKit/document.h>
#include <VeskTimelineKit/result.h>

#include <QList>
#include <QStringList>

namespace VeskTimeline::Kit {

/// One record of a preview and what becomes of it.
struct CsvPreviewRecord
{
    int line = 0; ///< where it starts, counted from 1
    QStringList fields;
    std::optional<DocumentItem> item; ///< what it is read as; nothing when it is skipped or refused
    QStringList trackPath;
    QString problem; ///< why it is skipped or refused; null when it is not
};

/// How the beginning of a file would be read: for a person who looks whether that is what was meant.
struct CsvPreview
{
    QStringList header; ///< the names of the columns
    /// What was asked for with all that was detected filled in: every optional has a value, `columns` every field that
    /// a column was found for.
    CsvOptions options;
    QStringList guesses; ///< what was detected and not asked for, in sentences, as in the document's warnings behind
                         ///< the file name
    QList<CsvPreviewRecord> records;
    /// Why the file as a whole cannot be read like this (as for a missing column for the start); null when it can.
    QString problem;
};

/// Reads no more of the file than is needed. @return an error only when there is nothing to show: no such file, binary
/// data.
/// @param mostRecords so many are shown
VESKTIMELINEKIT_EXPORT Result<CsvPreview> previewCsv(const QString& fileName, const CsvOptions& options = {},
                                                     int mostRecords = 50);

} // namespace VeskTimeline::Kit
