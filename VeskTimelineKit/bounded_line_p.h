#pragma once

// Internal to the kit; not installed.

#include <QByteArray>
#include <QIODevice>

#include <algorithm>

namespace VeskTimeline::Kit {

/// The next line with its end, or as much of it as fits into `longest` bytes with a null behind. QIODevice::readLine()
/// alone makes room for the longest line at each call, which takes far longer than reading a short one.
inline QByteArray readBoundedLine(QIODevice& device, qsizetype longest)
{
    constexpr qsizetype pieceSize = 4096;
    QByteArray line;
    while (line.size() < longest - 1 && !line.endsWith('\n')) {
        const QByteArray piece = device.readLine(std::min(pieceSize, longest - line.size()));
        if (piece.isEmpty())
            break;
        line += piece;
    }
    return line;
}

} // namespace VeskTimeline::Kit
