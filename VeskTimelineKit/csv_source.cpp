#include "csv_source_p.h"
#include "kit_tr_p.h"

#include <QIODevice>

#include <algorithm>

namespace VeskTimeline::Kit {

namespace {

constexpr qsizetype headSize = 256 * 1024;
constexpr qsizetype blockSize = 64 * 1024;

} // namespace

CsvSource::CsvSource(QIODevice& device) : m_device(device)
{
    begin();
}

void CsvSource::begin()
{
    // Files are asked by a call of the system each time.
    m_size = m_device.size();
    m_gzip.reset();
    if (GzipReader::isGzip(m_device.peek(2)))
        m_gzip = std::make_unique<GzipReader>(m_device);
    m_head = read(headSize);
    m_isHeadAll = m_head.size() < headSize;
    m_isHeadTaken = false;
}

// Less than that only at the end.
QByteArray CsvSource::read(qsizetype size)
{
    QByteArray bytes(size, Qt::Uninitialized);
    qsizetype count = 0;
    while (count < size) {
        const qint64 more = m_gzip ? m_gzip->read(bytes.data() + count, size - count)
                                   : m_device.read(bytes.data() + count, size - count);
        if (more <= 0)
            break;
        count += more;
    }
    if (m_gzip && m_gzip->isCutOff())
        throw Tr::tr("the packed data ends before its end");
    bytes.truncate(count);
    return bytes;
}

QByteArray CsvSource::nextBlock()
{
    if (!m_isHeadTaken) {
        m_isHeadTaken = true;
        return m_head;
    }
    return m_isHeadAll ? QByteArray() : read(blockSize);
}

bool CsvSource::restart()
{
    if (m_device.isSequential() || !m_device.seek(0))
        return false;
    begin();
    return true;
}

double CsvSource::share() const
{
    return std::min(1.0, static_cast<double>(m_device.pos()) / static_cast<double>(std::max<qint64>(m_size, 1)));
}

} // namespace VeskTimeline::Kit
