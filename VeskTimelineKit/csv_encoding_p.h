#pragma once

// Internal to the kit; not installed.

#include <VeskTimelineKit/csv_options.h>

#include <QByteArray>

namespace VeskTimeline::Kit {

/// How exactly the bytes of a text stand for characters.
struct CsvCode
{
    CsvEncoding encoding = CsvEncoding::Utf8;
    bool isBigEndian = false; ///< of UTF-16
    int markSize = 0;         ///< bytes of the byte order mark
    bool isGuessed = false;   ///< not said, no mark, and other than UTF-8

    /// For the user, translated.
    QString name() const;
};

/// @param head the beginning of a text; its last character may be cut
/// @param said what the user says it is
CsvCode detectCsvCode(const QByteArray& head, std::optional<CsvEncoding> said);

/// Makes UTF-8 of a text, block by block. What the encoding does not allow becomes bytes that UTF-8 does not allow, so
/// that it is found on its line.
class CsvDecoder
{
public:
    explicit CsvDecoder(const CsvCode& code) : m_code(code), m_markLeft(code.markSize) {}

    /// @param block empty at the end of the text
    QByteArray toUtf8(QByteArray block);

private:
    QByteArray fromUtf16(const QByteArray& block);

    CsvCode m_code;
    int m_markLeft;
    QByteArray m_rest; // of a character of UTF-16
};

} // namespace VeskTimeline::Kit
