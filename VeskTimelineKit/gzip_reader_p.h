#pragma once

// Internal to the kit; not installed.

#include <QByteArray>
#include <QString>

#include <zlib.h>

class QIODevice;

namespace VeskTimeline::Kit {

/// Unpacks gzip data piece by piece. What swells far more than real recordings do is refused: it is made to fill the
/// memory.
class GzipReader
{
public:
    /// @param device open for reading, at the start of the data; must outlive this object
    explicit GzipReader(QIODevice& device);
    ~GzipReader();
    Q_DISABLE_COPY_MOVE(GzipReader)

    /// Whether data that begins like this is gzip data.
    static bool isGzip(const QByteArray& head) { return head.startsWith("\x1f\x8b"); }

    /// Up to so many bytes. @return how many there were, 0 at the end
    /// @throws QString the reason when the data is broken or refused
    qint64 read(char* target, qint64 size);

    /// Whether the packed data stopped before its end.
    bool isCutOff() const { return m_isCutOff; }

private:
    bool refill();
    bool startNextMember();
    void checkGrowth() const;

    QIODevice& m_device;
    QByteArray m_input;
    z_stream m_stream{};
    qint64 m_packed = 0;
    qint64 m_unpacked = 0;
    bool m_isAtEnd = false;
    bool m_isCutOff = false;
};

} // namespace VeskTimeline::Kit
