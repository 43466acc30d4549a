#pragma once

#include <QByteArray>

#include <zlib.h>

/// A chunk, so many times over, as a gzip file holds it.
inline QByteArray gzipped(const QByteArray& chunk, int times = 1)
{
    constexpr int gzipFormat = 16;
    z_stream stream = {};
    if (deflateInit2(&stream, Z_BEST_COMPRESSION, Z_DEFLATED, MAX_WBITS + gzipFormat, MAX_MEM_LEVEL,
                     Z_DEFAULT_STRATEGY) != Z_OK)
        qFatal("deflateInit2");
    QByteArray packed;
    QByteArray part(1 << 16, '\0');
    QByteArray input = chunk;
    for (int i = 0; i < times; ++i) {
        stream.next_in = reinterpret_cast<Bytef*>(input.data());
        stream.avail_in = static_cast<uInt>(input.size());
        const int flush = i + 1 == times ? Z_FINISH : Z_NO_FLUSH;
        do {
            stream.next_out = reinterpret_cast<Bytef*>(part.data());
            stream.avail_out = static_cast<uInt>(part.size());
            deflate(&stream, flush);
            packed.append(part.constData(), part.size() - static_cast<qsizetype>(stream.avail_out));
        } while (stream.avail_out == 0);
    }
    deflateEnd(&stream);
    return packed;
}
