#pragma once

// Internal to the kit; not installed.

#include <QByteArray>
#include <QIODevice>

#include <zlib.h>

namespace VeskTimeline::Kit {

/// Packs what is written to it in the gzip format, onto another device. It never packs so tightly that GzipReader
/// would refuse to read it.
///
/// Errors of the other device show there.
class GzipWriter : public QIODevice
{
public:
    /// @param target open for writing; must outlive this object. @throws QString the reason when there is no memory
    explicit GzipWriter(QIODevice& target);
    ~GzipWriter() override;
    Q_DISABLE_COPY_MOVE(GzipWriter)

    /// Writes what has been held back, and the end. Nothing may be written after it.
    void finish();
    bool isSequential() const override { return true; }

protected:
    qint64 readData(char* data, qint64 size) override;
    qint64 writeData(const char* data, qint64 size) override;

private:
    void pack(int flush);
    void packLess();
    void passOn();

    QIODevice& m_target;
    QByteArray m_output;
    z_stream m_stream{};
    bool m_packsLess = false;
};

} // namespace VeskTimeline::Kit
