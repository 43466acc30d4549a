#pragma once

// Internal to the kit; not installed.

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <csv.h>
#include <functional>
#include <optional>

namespace VeskTimeline::Kit {

/// Characters that a field may have. What is longer is no text that anybody wrote; it must not fill the memory.
constexpr qsizetype csvLongestField = 1'000'000;

/// Takes a CSV text apart into records, strictly, and knows on which line each of them starts.
///
/// Takes line ends LF, CR LF and CR. Blanks around fields that are not quoted are dropped, blank lines skipped.
class CsvRecordReader
{
public:
    /// A block of UTF-8 text, of any size; empty at the end.
    using NextBlock = std::function<QByteArray()>;

    /// @param delimiter between fields; ASCII
    /// @param encodingName of the file, for messages about characters that are none
    CsvRecordReader(NextBlock nextBlock, char delimiter, const QString& encodingName);
    CsvRecordReader(const CsvRecordReader&) = delete;
    CsvRecordReader& operator=(const CsvRecordReader&) = delete;
    ~CsvRecordReader();

    /// Goes on to the next record. False at the end of the text and when the text is refused.
    bool next();
    const QStringList& fields() const { return m_fields; }
    /// The line on which the record starts, from 1.
    int recordLine() const { return m_recordLine; }

    /// Why the text is refused; null while it is not.
    const QString& errorReason() const { return m_errorReason; }
    /// The line that errorReason() is about; 0 for none.
    int errorLine() const { return m_errorLine; }
    /// Whether it is refused for bytes that the encoding does not allow.
    bool hasEncodingError() const { return m_hasEncodingError; }

private:
    static void onField(void* text, std::size_t size, void* self);
    static void onRecordEnd(int terminator, void* self);

    bool hasMore();
    qsizetype lineEnd();
    QByteArray lineInBlock();
    std::optional<QByteArray> nextLine();
    bool acceptLine(const QByteArray& line);
    bool parseLine(const QByteArray& line);
    bool finish();
    bool refuse(int line, const QString& reason);

    NextBlock m_nextBlock;
    QString m_encodingName;
    csv_parser m_parser;
    QByteArray m_block;
    qsizetype m_position = 0;
    qsizetype m_nextLineFeed = -1; // in the block, at or behind the position; before it: not looked for yet
    QStringList m_fields;          // with those of the record before behind m_fieldCount, until the record ends
    qsizetype m_fieldCount = 0;
    int m_line = 0;
    int m_recordLine = 0;
    bool m_isInRecord = false;
    bool m_hasRecord = false;
    bool m_isFinished = false;
    bool m_hasLongField = false;
    bool m_hasEncodingError = false;
    qsizetype m_recordSize = 0;
    QString m_errorReason;
    int m_errorLine = 0;
};

} // namespace VeskTimeline::Kit
