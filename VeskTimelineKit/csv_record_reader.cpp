#include "csv_record_reader_p.h"
#include "kit_tr_p.h"

#include <algorithm>
#include <new>
#include <string_view>
#include <utility>

namespace VeskTimeline::Kit {

namespace {

// For the same reason as csvLongestField.
constexpr qsizetype longestLine = 16 * 1024 * 1024;

// Most fields are of ASCII, and most that nobody keeps, such as times, can lie where those of the record before were.
void assignUtf8(QString& target, std::string_view text)
{
    const auto size = static_cast<qsizetype>(text.size());
    unsigned char all = 0;
    for (const char c : text)
        all |= static_cast<unsigned char>(c);
    constexpr unsigned char lastAscii = 0x7F;
    if (all > lastAscii) {
        target = QString::fromUtf8(text.data(), size);
        return;
    }
    // What is kept must not bring the room of a longer text with it.
    constexpr qsizetype mostRoom = 64;
    if (target.isDetached() && target.capacity() >= size && target.capacity() <= mostRoom)
        target.resize(size);
    else
        target = QString(size, Qt::Uninitialized);
    std::transform(text.begin(), text.end(), target.begin(), [](char c) { return QLatin1Char(c); });
}

bool isBlank(const QByteArray& line)
{
    return line.trimmed().isEmpty();
}

} // namespace

CsvRecordReader::CsvRecordReader(NextBlock nextBlock, char delimiter, const QString& encodingName)
    : m_nextBlock(std::move(nextBlock)), m_encodingName(encodingName)
{
    if (csv_init(&m_parser, CSV_STRICT | CSV_STRICT_FINI) != 0)
        throw std::bad_alloc();
    csv_set_delim(&m_parser, static_cast<unsigned char>(delimiter));
    // By so much the parser's room for a record grows; by its own 128 bytes a long field would be copied very often.
    constexpr std::size_t growth = 256 * 1024;
    csv_set_blk_size(&m_parser, growth);
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
    QStringList& fields = reader->m_fields;
    if (reader->m_fieldCount == fields.size())
        fields.append(QString());
    QString& field = fields[reader->m_fieldCount++];
    assignUtf8(field, {static_cast<const char*>(text), size});
    reader->m_hasLongField = reader->m_hasLongField || field.size() > csvLongestField;
}

void CsvRecordReader::onRecordEnd(int /*terminator*/, void* self)
{
    auto* const reader = static_cast<CsvRecordReader*>(self);
    reader->m_hasRecord = true;
    if (reader->m_fields.size() > reader->m_fieldCount)
        reader->m_fields.resize(reader->m_fieldCount);
}

bool CsvRecordReader::hasMore()
{
    if (m_position == m_block.size()) {
        m_block = m_nextBlock();
        m_position = 0;
        m_nextLineFeed = -1;
    }
    return m_position < m_block.size();
}

// Position of the next character that ends a line; the block's size for none.
qsizetype CsvRecordReader::lineEnd()
{
    // Of text with other line ends, the whole block would be searched for each line again.
    if (m_nextLineFeed < m_position) {
        const qsizetype found = m_block.indexOf('\n', m_position);
        m_nextLineFeed = found < 0 ? m_block.size() : found;
    }
    const QByteArrayView line = QByteArrayView(m_block).sliced(m_position, m_nextLineFeed - m_position);
    const qsizetype end = line.indexOf('\r');
    return end < 0 ? m_nextLineFeed : m_position + end;
}

// Empty where the line may go on in the next block.
QByteArray CsvRecordReader::lineInBlock()
{
    const qsizetype start = m_position;
    const qsizetype end = lineEnd();
    const bool isLast = end + 1 >= m_block.size();
    if (isLast && (end == m_block.size() || m_block.at(end) == '\r'))
        return {};
    m_position = end + 1;
    if (m_block.at(end) == '\r' && m_block.at(m_position) == '\n')
        ++m_position;
    return QByteArray::fromRawData(m_block.constData() + start, m_position - start);
}

// With its end, good until the next call. Nothing at the end of the text; of a line that is too long only the
// beginning.
std::optional<QByteArray> CsvRecordReader::nextLine()
{
    QByteArray line;
    if (hasMore())
        line = lineInBlock();
    const bool isWhole = !line.isEmpty();
    while (!isWhole && hasMore() && line.size() <= longestLine) {
        const qsizetype end = lineEnd();
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
    m_hasEncodingError = !line.isValidUtf8();
    return !m_hasEncodingError || refuse(m_line, Tr::tr("not %1 text").arg(m_encodingName));
}

bool CsvRecordReader::parseLine(const QByteArray& line)
{
    if (!m_isInRecord) {
        m_recordLine = m_line;
        m_recordSize = 0;
        m_fieldCount = 0;
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
