#include "gzip_writer_p.h"
#include "kit_tr_p.h"

#include <algorithm>
#include <limits>

namespace VeskTimeline::Kit {

namespace {

constexpr qsizetype outputSize = 64 * 1024;
// zlib's largest window, and its mark for the gzip format.
constexpr int gzipWindowBits = 15 + 16;
constexpr int memoryLevel = 8;
// Well below what the reader refuses.
constexpr uLong alwaysPacked = 8 * 1024 * 1024;
constexpr uLong mostGrowth = 50;

} // namespace

GzipWriter::GzipWriter(QIODevice& target) : m_target(target), m_output(outputSize, Qt::Uninitialized)
{
    if (deflateInit2(&m_stream, Z_DEFAULT_COMPRESSION, Z_DEFLATED, gzipWindowBits, memoryLevel, Z_DEFAULT_STRATEGY) !=
        Z_OK)
        throw Tr::tr("there is not enough memory to pack it");
    QIODevice::open(QIODevice::WriteOnly | QIODevice::Unbuffered);
}

GzipWriter::~GzipWriter()
{
    deflateEnd(&m_stream);
}

qint64 GzipWriter::readData(char* /*data*/, qint64 /*size*/)
{
    return -1;
}

qint64 GzipWriter::writeData(const char* data, qint64 size)
{
    const qint64 taken = std::min<qint64>(size, std::numeric_limits<uInt>::max());
    // zlib only reads it.
    m_stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(data));
    m_stream.avail_in = static_cast<uInt>(taken);
    pack(Z_NO_FLUSH);
    if (!m_packsLess && m_stream.total_in > alwaysPacked && m_stream.total_in / mostGrowth > m_stream.total_out)
        packLess();
    return taken;
}

void GzipWriter::finish()
{
    pack(Z_FINISH);
}

void GzipWriter::pack(int flush)
{
    do {
        m_stream.next_out = reinterpret_cast<Bytef*>(m_output.data());
        m_stream.avail_out = static_cast<uInt>(m_output.size());
        deflate(&m_stream, flush);
        passOn();
    } while (m_stream.avail_out == 0);
}

// Without looking for what comes again, eight times is the most.
void GzipWriter::packLess()
{
    m_packsLess = true;
    int status = Z_OK;
    do {
        m_stream.next_out = reinterpret_cast<Bytef*>(m_output.data());
        m_stream.avail_out = static_cast<uInt>(m_output.size());
        status = deflateParams(&m_stream, Z_DEFAULT_COMPRESSION, Z_HUFFMAN_ONLY);
        passOn();
    } while (status == Z_BUF_ERROR);
}

void GzipWriter::passOn()
{
    m_target.write(m_output.constData(), m_output.size() - static_cast<qsizetype>(m_stream.avail_out));
}

} // namespace VeskTimeline::Kit
