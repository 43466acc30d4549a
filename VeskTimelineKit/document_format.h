#pragma once

#include <VeskTimelineKit/document.h>
#include <VeskTimelineKit/read_options.h>
#include <VeskTimelineKit/result.h>
#include <VeskTimelineKit/write_options.h>

#include <vector>

namespace VeskTimeline::Kit {

/// A kind of file that the kit reads or writes.
struct DocumentFormat
{
    QString name;         ///< lower case, e.g. "csv"
    QString description;  ///< for the user, translated
    QStringList suffixes; ///< of file names, without the first dot, lower case; formats may share one
    Result<Document> (*read)(const QString& fileName, const ReadOptions& options) = nullptr;
    /// Null for a format that is only read.
    WriteResult (*write)(const Document& document, const QString& fileName, const WriteOptions& options) = nullptr;
    /// Whether a file that begins with these bytes looks like one of the format. Null where that cannot be told.
    bool (*isContent)(const QByteArray& head) = nullptr;
    bool isStretched = false; ///< whether ReadOptions::stretch applies
};

/// All formats. The first is the one that files are taken for when nothing says otherwise.
VESKTIMELINEKIT_EXPORT const std::vector<DocumentFormat>& documentFormats();
/// The format of that name, letter case aside; null for none.
VESKTIMELINEKIT_EXPORT const DocumentFormat* documentFormatByName(const QString& name);
/// The format of the file name's suffix, letter case aside; null for none. Of several suffixes that fit the longest
/// counts, of several formats that share it the first.
VESKTIMELINEKIT_EXPORT const DocumentFormat* documentFormatBySuffix(const QString& fileName);
/// The format to read the file as: by its suffix and, where there is none or formats share it, by how the file begins.
/// If that tells nothing, or the file cannot be read, it is the first of the formats in question.
VESKTIMELINEKIT_EXPORT const DocumentFormat& documentFormatOf(const QString& fileName);

} // namespace VeskTimeline::Kit
