#include "csv_record_reader_p.h"
#include "kit_tr_p.h"

#include <QStringDecoder>

#include <algorithm>
#include <new>
#include <utility>

namespace VeskTimeline::Kit {

namespace {

// For the same reason as csvLongestField.
constexpr qsizetype longestLine = 16 * 1024 * 1024;

bool isUtf8(const QByteArray& text)
{
    if (std::all_of(text.begin(), text.end(), [](char c) { return (c & 0x80) == 0; }))
        return true;
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString decoded = decoder.decode(text);
    Q_UNUSED(decoded)
    return !decoder.hasError();
}

bool isBlank(const QByteArray& line)
{
    return line.trimmed().isEmpty();
}

// Position of the first line end character at or behind a position; the text's size for none.
qsizetype lineEnd(const QByteArray& text, qsizetype from)
{
    const auto isLineEnd = [](char c) { return c == '\n' || c == '\r'; };
    return std::find_if(text.begin() + from, text.end(), isLineEnd) - text.begin();
}

} // namespace

CsvRecordReader::CsvRecordReader(NextBlock nextBlock, char delimiter, const QString& encodingName)
    : m_nextBlock(std::move(nextBlock)), m_encodingName(encodingName)
{
    if (csv_init(&m_parser, CSV_STRICT | CSV_STRICT_FINI) != 0)
        throw std::bad_alloc();
    csv_set_delim(&m_parser, static_cast<unsigned char>(delimiter));
}

CsvRecordReader::~CsvRecordReader()
{
    csv_free(&m_parser);
}

bool CsvRecordReader::refuse(int line, const QString& reason)
{
    m_errorLine = line;
    m_errorReason = reason;
    return false;
}

void CsvRecordReader::onField(void* text, std::size_t size, void* self)
{
    auto* const reader = static_cast<CsvRecordReader*>(self);
    const QString field = QString::fromUtf8(static_cast<const char*>(text), static_cast<qsizetype>(size));
    reader->m_hasLongField = reader->m_hasLongField || field.size() > csvLongestField;
    reader->m_fields.append(field);
}

void CsvRecordReader::onRecordEnd(int /*terminator*/, void* self)
{
    static_cast<CsvRecordReader*>(self)->m_hasRecord = true;
}

bool CsvRecordReader::hasMore()
{
    if (m_position == m_block.size()) {
        m_block = m_nextBlock();
        m_position = 0;
    }
    return m_position < m_block.size();
}

// With its end. Nothing at the end of the text; of a line that is too long only the beginning.
std::optional<QByteArray> CsvRecordReader::nextLine()
{
    QByteArray line;
    while (hasMore() && line.size() <= longestLine) {
        const qsizetype end = lineEnd(m_block, m_position);
        if (end == m_block.size()) {
            line += m_block.mid(m_position);
            m_position = end;
            continue;
        }
        line += m_block.mid(m_position, end + 1 - m_position);
        m_position = end + 1;
        if (line.endsWith('\r') && hasMore() && m_block.at(m_position) == '\n')
            line += m_block.at(m_position++);
        break;
    }
    if (line.isEmpty())
        return std::nullopt;
    ++m_line;
    return line;
}

bool CsvRecordReader::acceptLine(const QByteArray& line)
{
    if (line.contains('\0'))
        return refuse(m_line, Tr::tr("binary data, not text"));
    if (line.size() > longestLine)
        return refuse(m_line, Tr::tr("the line is too long"));
    m_hasEncodingError = !isUtf8(line);
    return !m_hasEncodingError || refuse(m_line, Tr::tr("not %1 text").arg(m_encodingName));
}

bool CsvRecordReader::parseLine(const QByteArray& line)
{
    if (!m_isInRecord) {
        m_recordLine = m_line;
        m_recordSize = 0;
        m_fields.clear();
    }
    m_recordSize += line.size();
    // What follows a quote that is never closed is all one field.
    if (m_recordSize > longestLine)
        return refuse(m_recordLine, Tr::tr("the record is too long"));
    m_hasRecord = false;
    const auto size = static_cast<std::size_t>(line.size());
    if (csv_parse(&m_parser, line.constData(), size, onField, onRecordEnd, this) != size)
        return refuse(m_line, Tr::tr("misplaced quote"));
    if (m_hasLongField)
        return refuse(m_recordLine, Tr::tr("a field has more than %1 characters").arg(csvLongestField));
    m_isInRecord = !m_hasRecord && (m_isInRecord || !isBlank(line));
    return true;
}

bool CsvRecordReader::finish()
{
    m_isFinished = true;
    m_hasRecord = false;
    if (csv_fini(&m_parser, onField, onRecordEnd, this) != 0)
        return refuse(m_recordLine, Tr::tr("unterminated quote"));
    if (m_hasLongField)
        return refuse(m_recordLine, Tr::tr("a field has more than %1 characters").arg(csvLongestField));
    return m_hasRecord;
}

bool CsvRecordReader::next()
{
    while (!m_isFinished) {
        const std::optional<QByteArray> line = nextLine();
        if (!line)
            return finish();
        if (!acceptLine(*line) || !parseLine(*line)) {
            m_isFinished = true;
            return false;
        }
        if (m_hasRecord)
            return true;
    }
    return false;
}

} // namespace VeskTimeline::Kit
