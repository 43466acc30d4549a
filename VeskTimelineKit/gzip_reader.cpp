#include "gzip_reader_p.h"
#include "kit_tr_p.h"

#include <QIODevice>

#include <algorithm>
#include <limits>

namespace VeskTimeline::Kit {

namespace {

constexpr qsizetype inputSize = 64 * 1024;
// zlib's largest window, and its mark for the gzip format.
constexpr int gzipWindowBits = 15 + 16;

} // namespace

GzipReader::GzipReader(QIODevice& device) : m_device(device)
{
    if (inflateInit2(&m_stream, gzipWindowBits) != Z_OK)
        throw Tr::tr("there is not enough memory to unpack it");
}

GzipReader::~GzipReader()
{
    inflateEnd(&m_stream);
}

qint64 GzipReader::read(char* target, qint64 size)
{
    const uInt wanted = static_cast<uInt>(std::min<qint64>(size, std::numeric_limits<uInt>::max()));
    m_stream.next_out = reinterpret_cast<Bytef*>(target);
    m_stream.avail_out = wanted;
    while (!m_isAtEnd && m_stream.avail_out > 0) {
        if (m_stream.avail_in == 0 && !refill()) {
            m_isAtEnd = true;
            m_isCutOff = true;
            break;
        }
        const int status = inflate(&m_stream, Z_NO_FLUSH);
        if (status == Z_STREAM_END)
            m_isAtEnd = !startNextMember();
        else if (status != Z_OK)
            throw Tr::tr("the packed data is broken");
    }
    m_unpacked += wanted - m_stream.avail_out;
    checkGrowth();
    return wanted - m_stream.avail_out;
}

bool GzipReader::refill()
{
    m_input = m_device.read(inputSize);
    m_packed += m_input.size();
    m_stream.next_in = reinterpret_cast<Bytef*>(m_input.data());
    m_stream.avail_in = static_cast<uInt>(m_input.size());
    return !m_input.isEmpty();
}

// Packed files may be strung together; the result is that of their contents.
bool GzipReader::startNextMember()
{
    if (m_stream.avail_in == 0 && !refill())
        return false;
    if (inflateReset(&m_stream) != Z_OK)
        throw Tr::tr("the packed data is broken");
    return true;
}

void GzipReader::checkGrowth() const
{
    // Real traces shrink to a tenth or a thirtieth.
    constexpr qint64 alwaysAllowed = 16 * 1024 * 1024;
    constexpr qint64 mostGrowth = 100;
    if (m_unpacked > alwaysAllowed && m_unpacked / mostGrowth > m_packed)
        throw Tr::tr("the packed data swells to more than %1 times its size").arg(mostGrowth);
}

} // namespace VeskTimeline::Kit
