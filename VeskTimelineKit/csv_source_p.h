#pragma once

// Internal to the kit; not installed.

#include "gzip_reader_p.h"

#include <QByteArray>

#include <memory>

class QIODevice;

namespace VeskTimeline::Kit {

/// The bytes of a text file, block by block, unpacked where they are packed. The beginning can be looked at before.
/// All operations throw the reason, a QString, when packed data is broken or refused.
class CsvSource
{
public:
    /// @param device open for reading; must outlive this object
    explicit CsvSource(QIODevice& device);

    /// The beginning, as far as it is worth looking at.
    const QByteArray& head() const { return m_head; }
    /// Whether the head is all there is.
    bool isHeadAll() const { return m_isHeadAll; }

    /// The next block, the head first; empty at the end.
    QByteArray nextBlock();
    /// Starts again. @return false where that is not possible, as with a pipe
    bool restart();
    /// What of the file is read, from 0 to 1.
    double share() const;

private:
    void begin();
    QByteArray read(qsizetype size);

    QIODevice& m_device;
    qint64 m_size = 0;
    std::unique_ptr<GzipReader> m_gzip;
    QByteArray m_head;
    bool m_isHeadAll = false;
    bool m_isHeadTaken = false;
};

} // namespace VeskTimeline::Kit
