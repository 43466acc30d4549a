#include "json_record_reader_p.h"
#include "kit_tr_p.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace VeskTimeline::Kit {

namespace {

constexpr qsizetype chunkSize = 128 * 1024;
constexpr qsizetype largestRecord = 12 * 1024 * 1024;
constexpr std::size_t deepestNesting = 1000;
constexpr std::size_t mostSkippedNames = 20;
constexpr int endOfText = -1;

bool isBlank(int c)
{
    return c == ' ' || c == '\n' || c == '\r' || c == '\t';
}

bool endsScalar(int c)
{
    return c == endOfText || isBlank(c) || std::strchr(",:[]{}\"", c) != nullptr;
}

// What a character means for where an object ends.
enum class Meaning : unsigned char { None, Quote, Opening, Closing, LineFeed };

constexpr std::array<Meaning, 256> meanings = [] {
    std::array<Meaning, 256> result{};
    result['"'] = Meaning::Quote;
    result['{'] = result['['] = Meaning::Opening;
    result['}'] = result[']'] = Meaning::Closing;
    result['\n'] = Meaning::LineFeed;
    return result;
}();

struct ObjectEnd
{
    const char* at = nullptr; ///< behind the bracket that closes it; null: not found
    int lineFeeds = 0;
};

// Of the string behind a quote: behind the quote that closes it; null when it does not end.
const char* endOfString(const char* at, const char* end, int& lineFeeds)
{
    for (; at != end; ++at) {
        if (*at == '"')
            return at + 1;
        if (*at == '\\' && ++at == end)
            return nullptr;
        lineFeeds += *at == '\n' ? 1 : 0;
    }
    return nullptr;
}

// Not found either where brackets do not match, or are nested deeper than most.
ObjectEnd endOfObject(const char* at, const char* end)
{
    std::array<char, 64> closers{};
    std::size_t depth = 0;
    ObjectEnd found;
    while (at && at != end) {
        const char c = *at++;
        switch (meanings[static_cast<unsigned char>(c)]) {
        case Meaning::None:
            break;
        case Meaning::LineFeed:
            ++found.lineFeeds;
            break;
        case Meaning::Quote:
            at = endOfString(at, end, found.lineFeeds);
            break;
        case Meaning::Opening:
            if (depth == closers.size())
                return {};
            closers[depth++] = c == '{' ? '}' : ']';
            break;
        case Meaning::Closing:
            if (closers[--depth] != c)
                return {};
            if (depth > 0)
                break;
            found.at = at;
            return found;
        }
    }
    return {};
}

} // namespace

JsonRecordReader::JsonRecordReader(QIODevice& device, ReadProgress& progress, IsWanted isWanted)
    : m_device(device), m_progress(progress), m_isWanted(std::move(isWanted))
{
}

bool JsonRecordReader::next()
{
    if (m_place == Place::Start)
        start();
    while (m_place != Place::End) {
        if (m_place == Place::Array ? nextElement() : nextMember())
            return true;
    }
    return false;
}

void JsonRecordReader::start()
{
    if (GzipReader::isGzip(m_device.peek(2)))
        m_gzip.emplace(m_device);
    if (peek() == 0xEF && m_chunk.startsWith("\xEF\xBB\xBF"))
        m_position = 3;
    const int first = peekAfterBlanks();
    if (first == endOfText)
        refuse(Tr::tr("the file is empty"));
    if (first == 0 || first == 0xFE || first == 0xFF)
        refuse(Tr::tr("the text is not UTF-8"));
    if (first != '{' && first != '[')
        refuse(Tr::tr("the text is not JSON: it starts with neither { nor ["));
    take();
    m_hasOuterObject = first == '{';
    m_isInArray = !m_hasOuterObject;
    m_place = m_hasOuterObject ? Place::Outermost : Place::Array;
}

bool JsonRecordReader::nextElement()
{
    const Ending openEnding = m_hasOuterObject ? Ending::Truncated : Ending::OpenArray;
    if (!m_isFirst && peekAfterBlanks() == ',')
        take();
    else if (!m_isFirst && peekAfterBlanks() != ']' && peekAfterBlanks() != endOfText)
        refuse(Tr::tr("a comma is missing after an element"));
    m_isFirst = false;

    const int c = peekAfterBlanks();
    if (c == endOfText) {
        end(openEnding);
        return false;
    }
    if (c != ']')
        return readRecord();
    take();
    m_isInArray = false;
    m_place = Place::Outermost;
    if (!m_hasOuterObject)
        expectNothingMore();
    return false;
}

bool JsonRecordReader::nextMember()
{
    const int c = peekAfterBlanks();
    if (c == '}') {
        take();
        expectNothingMore();
        return false;
    }
    if (!m_isFirst && c != endOfText && c != ',')
        refuse(Tr::tr("a comma is missing after a member"));
    if (!m_isFirst && c == ',')
        take();
    m_isFirst = false;

    QByteArray name;
    if (!readMemberName(name)) {
        end(Ending::Truncated);
        return false;
    }
    if (!m_isWanted(name)) {
        if (m_skipped.size() < mostSkippedNames &&
            std::find(m_skipped.begin(), m_skipped.end(), name) == m_skipped.end())
            m_skipped.push_back(name);
        if (!readValue(nullptr))
            end(Ending::Truncated);
        return false;
    }
    m_member = name;
    if (peekAfterBlanks() != '[')
        return readRecord();
    take();
    m_isInArray = true;
    m_isFirst = true;
    m_place = Place::Array;
    return false;
}

bool JsonRecordReader::readMemberName(QByteArray& name)
{
    const int c = peekAfterBlanks();
    if (c == endOfText)
        return false;
    if (c != '"')
        refuse(Tr::tr("the name of a member is missing"));
    QByteArray text;
    if (!readString(&text) || peekAfterBlanks() == endOfText)
        return false;
    if (peekAfterBlanks() != ':')
        refuse(Tr::tr("a colon is missing after the name of a member"));
    take();
    name = text.mid(1, text.size() - 2);
    return true;
}

bool JsonRecordReader::readRecord()
{
    peekAfterBlanks();
    m_recordLine = m_line;
    m_text.resize(0);
    if (takeObjectInChunk() || readValue(&m_text))
        return true;
    end(Ending::Truncated);
    return false;
}

// Nearly all records are objects of some hundred bytes that lie in the chunk as a whole, and are good: they are found
// in one go. False for any other, of which nothing is taken then.
bool JsonRecordReader::takeObjectInChunk()
{
    if (peek() != '{')
        return false;
    const char* const begin = m_chunk.constData() + m_position;
    const ObjectEnd end = endOfObject(begin, m_chunk.constData() + m_chunk.size());
    if (!end.at)
        return false;
    m_text.append(begin, end.at - begin);
    m_position += end.at - begin;
    m_line += end.lineFeeds;
    return true;
}

// False when the text ends within the value.
bool JsonRecordReader::readValue(QByteArray* target)
{
    QByteArray closers;
    do {
        const int c = peekAfterBlanks();
        if (c == endOfText)
            return false;
        if (c == '"') {
            if (!readString(target))
                return false;
            continue;
        }
        if (!endsScalar(c)) {
            readScalar(target);
            continue;
        }
        if (c == '{' || c == '[') {
            if (static_cast<std::size_t>(closers.size()) >= deepestNesting)
                refuse(Tr::tr("brackets are nested more than %1 levels deep").arg(deepestNesting));
            closers.append(c == '{' ? '}' : ']');
        } else if (closers.isEmpty()) {
            refuse(Tr::tr("a value is missing"));
        } else if (c == '}' || c == ']') {
            if (c != closers.back())
                refuse(Tr::tr("brackets do not match"));
            closers.chop(1);
        }
        append(target, static_cast<char>(c));
        take();
    } while (!closers.isEmpty());
    return true;
}

bool JsonRecordReader::readString(QByteArray* target)
{
    takeRun(target, 1); // the quote that opens the string
    while (peek() != endOfText) {
        // Most of a record is within strings: they are taken in runs.
        const char* const begin = m_chunk.constData() + m_position;
        const char* const end = m_chunk.constData() + m_chunk.size();
        const char* at = begin;
        while (at != end && *at != '"' && *at != '\\')
            ++at;
        takeRun(target, at - begin);
        const int c = peek();
        if (c != '"' && c != '\\')
            continue;
        takeRun(target, 1);
        if (c == '"')
            return true;
        if (peek() != endOfText)
            takeRun(target, 1); // what is escaped
    }
    return false;
}

// @param size within the chunk
void JsonRecordReader::takeRun(QByteArray* target, qsizetype size)
{
    const char* const begin = m_chunk.constData() + m_position;
    if (target && target->size() + size > largestRecord)
        refuse(Tr::tr("a record is longer than %1 bytes").arg(largestRecord));
    if (target)
        target->append(begin, size);
    m_line += static_cast<int>(std::count(begin, begin + size, '\n'));
    m_position += size;
}

void JsonRecordReader::readScalar(QByteArray* target)
{
    for (int c = peek(); !endsScalar(c); c = peek()) {
        append(target, static_cast<char>(c));
        take();
    }
    // Blanks are passed over, but two scalars must not become one.
    append(target, ' ');
}

void JsonRecordReader::append(QByteArray* target, char c)
{
    if (!target)
        return;
    if (target->size() >= largestRecord)
        refuse(Tr::tr("a record is longer than %1 bytes").arg(largestRecord));
    target->append(c);
}

void JsonRecordReader::end(Ending ending)
{
    m_place = Place::End;
    m_ending = m_gzip && m_gzip->isCutOff() ? Ending::Truncated : ending;
    if (m_ending == Ending::Truncated)
        m_recordLine = m_gzip ? 0 : m_line; // lines of what is unpacked say nothing about the packed data
}

void JsonRecordReader::expectNothingMore()
{
    if (peekAfterBlanks() != endOfText)
        refuse(Tr::tr("there is more text after the end of the JSON text"));
    end(Ending::Complete);
}

void JsonRecordReader::refuse(const QString& reason)
{
    m_recordLine = m_line;
    throw reason;
}

int JsonRecordReader::peek()
{
    if (m_position == m_chunk.size() && !refill())
        return endOfText;
    return static_cast<unsigned char>(m_chunk.at(m_position));
}

int JsonRecordReader::peekAfterBlanks()
{
    while (isBlank(peek()))
        take();
    return peek();
}

bool JsonRecordReader::refill()
{
    const qint64 size = m_device.isSequential() ? 0 : m_device.size();
    m_progress.report(size > 0 ? static_cast<double>(m_device.pos()) / static_cast<double>(size) : 0.0);
    m_chunk.resize(chunkSize);
    m_position = 0;
    m_chunk.resize(std::max<qint64>(0, readChunk()));
    return !m_chunk.isEmpty();
}

qint64 JsonRecordReader::readChunk()
{
    try {
        return m_gzip ? m_gzip->read(m_chunk.data(), chunkSize) : m_device.read(m_chunk.data(), chunkSize);
    } catch (const QString&) {
        m_recordLine = 0; // lines of what is unpacked say nothing about the packed data
        throw;
    }
}

} // namespace VeskTimeline::Kit
