#pragma once

#include <VeskTimelineKit/document.h>
#include <VeskTimelineKit/read_options.h>
#include <VeskTimelineKit/result.h>

#include <optional>
#include <vector>

namespace VeskTimeline::Kit {

/// A kind of file that the kit reads or writes.
struct DocumentFormat
{
    QString name;         ///< lower case, e.g. "csv"
    QString description;  ///< for the user, translated
    QStringList suffixes; ///< of file names, without dot, lower case
    Result<Document> (*read)(const QString& fileName, const ReadOptions& options) = nullptr;
    /// Null for a format that is only read.
    std::optional<FileError> (*write)(const Document& document, const QString& fileName) = nullptr;
};

/// All formats. The first is the one that files are taken for when nothing says otherwise.
VESKTIMELINEKIT_EXPORT const std::vector<DocumentFormat>& documentFormats();
/// The format of that name, letter case aside; null for none.
VESKTIMELINEKIT_EXPORT const DocumentFormat* documentFormatByName(const QString& name);
/// The format of the file name's suffix, letter case aside; null for none.
VESKTIMELINEKIT_EXPORT const DocumentFormat* documentFormatBySuffix(const QString& fileName);

} // namespace VeskTimeline::Kit
