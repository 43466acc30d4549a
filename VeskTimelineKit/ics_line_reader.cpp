#include "bounded_line_p.h"
#include "ics_line_reader_p.h"

#include <QIODevice>
#include <QString>

#include <algorithm>

namespace VeskTimeline::Kit {

namespace {

// More than any description; a file that is one endless line must not fill the memory.
constexpr qsizetype longestLine = 32 * 1024 * 1024;

bool isControl(char c)
{
    return (static_cast<unsigned char>(c) < 0x20 && c != '\t') || c == 0x7f;
}

bool isContinuation(const QByteArray& line)
{
    return line.startsWith(' ') || line.startsWith('\t');
}

void note(IcsLineReader::Repair& repair, int line)
{
    if (repair.count == 0)
        repair.firstLine = line;
    ++repair.count;
}

} // namespace

IcsLineReader::IcsLineReader(QIODevice& device) : m_device(device), m_size(device.size())
{
    readAhead();
}

void IcsLineReader::readAhead()
{
    m_ahead = readBoundedLine(m_device, longestLine + 1);
    m_hasAhead = !m_ahead.isEmpty();
    m_done += m_ahead.size();
    m_isAheadTooLong = m_ahead.size() >= longestLine;
    ++m_aheadNumber;
    while (m_ahead.endsWith('\n') || m_ahead.endsWith('\r'))
        m_ahead.chop(1);
    // Also where files were put together, one after the other.
    if (m_ahead.startsWith("\xef\xbb\xbf"))
        m_ahead.remove(0, 3);
}

bool IcsLineReader::next()
{
    while (m_hasAhead && m_ahead.trimmed().isEmpty())
        readAhead();
    m_number = m_aheadNumber;
    m_isTooLong = m_isAheadTooLong;
    if (!m_hasAhead || m_isTooLong)
        return false;
    m_text = std::move(m_ahead);
    readAhead();
    while (m_hasAhead && isContinuation(m_ahead) && !m_isAheadTooLong) {
        m_text.append(m_ahead.constData() + 1, m_ahead.size() - 1);
        readAhead();
        m_isTooLong = m_text.size() >= longestLine;
        if (m_isTooLong)
            return false;
    }
    repair();
    return true;
}

void IcsLineReader::repair()
{
    if (const auto end = std::remove_if(m_text.begin(), m_text.end(), isControl); end != m_text.end()) {
        m_text.truncate(end - m_text.begin());
        note(m_droppedControls, m_number);
    }
    if (QString::fromUtf8(m_text).toUtf8() != m_text) {
        m_text = QString::fromLatin1(m_text).toUtf8();
        note(m_decodedAsLatin1, m_number);
    }
}

double IcsLineReader::share() const
{
    return m_size > 0 ? std::min(1.0, static_cast<double>(m_done) / static_cast<double>(m_size)) : 0.0;
}

} // namespace VeskTimeline::Kit
