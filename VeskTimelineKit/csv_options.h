#pragma once

#include <VeskTimelineKit/vesktimelinekit_export.h>

#include <QByteArray>
#include <QChar>
#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>

#include <optional>

namespace VeskTimeline::Kit {

/// What a column of comma-separated values can be for an item.
enum class CsvField { Track, Label, Start, End, Duration, Color, Editable, Description };

/// All fields, those first that matter most to a reader of a list of them.
VESKTIMELINEKIT_EXPORT const QList<CsvField>& csvFields();
/// The field's name as a column of the kit's own, as "start".
VESKTIMELINEKIT_EXPORT QString csvFieldName(CsvField field);

/// Whether fields can be separated by it: characters of ASCII that are no letters, digits, quotes or control
/// characters, and the tab.
VESKTIMELINEKIT_EXPORT bool isCsvDelimiter(QChar c);

/// Whether times can be in that zone: an IANA id, or an offset as "UTC+02:00".
VESKTIMELINEKIT_EXPORT bool isCsvTimeZone(const QByteArray& id);

/// How the bytes of a text file stand for characters. A byte order mark counts more than what is said.
enum class CsvEncoding { Utf8, Utf16, Windows1252, Latin1 };

/// What plain numbers in columns of times and durations count.
enum class CsvTimeUnit { Seconds, Milliseconds, Microseconds, Nanoseconds };

/// How a file of comma-separated values is to be understood. What is not set is detected.
struct CsvOptions
{
    /// The names of the columns, as the header line has them, that make up each field. Fields that are not here are
    /// detected; an empty list says that no column is that field, so that none is looked for. Several columns: of
    /// Track, the levels of its path from the top; of all others, joined by blanks (a column of dates and one of times
    /// of day make a start).
    QMap<CsvField, QStringList> columns = {};
    std::optional<QChar> delimiter = {};
    std::optional<QChar> decimalPoint = {}; ///< of numbers and of fractions of seconds: '.' or ','
    std::optional<CsvEncoding> encoding = {};
    std::optional<CsvTimeUnit> timeUnit = {};
    /// A pattern as QDateTime::fromString() takes it; null: detect. Behind a date alone there may be a time of day, in
    /// any way of writing it, and of day, month and year as numbers each may have one digit or two.
    QString dateFormat = {};
    QByteArray timeZone = {}; ///< IANA id of times that are written without a zone; null: UTC

    friend bool operator==(const CsvOptions& left, const CsvOptions& right)
    {
        return left.columns == right.columns && left.delimiter == right.delimiter &&
               left.decimalPoint == right.decimalPoint && left.encoding == right.encoding &&
               left.timeUnit == right.timeUnit && left.dateFormat == right.dateFormat &&
               left.timeZone == right.timeZone;
    }
};

} // namespace VeskTimeline::Kit
