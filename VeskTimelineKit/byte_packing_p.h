#pragma once

// Internal to the kit; not installed.

#include "byte_arena_p.h"
#include "shared_texts_p.h"

#include <QByteArray>

namespace VeskTimeline::Kit {

/// Puts values one behind the other, each in no more bytes than it needs. What it puts a PackedBytes reads.
class BytePacker
{
public:
    void clear() { m_bytes.clear(); }
    void put(quint64 number)
    {
        for (; number >= continued; number >>= bitsOfByte)
            m_bytes += static_cast<char>(number | continued);
        m_bytes += static_cast<char>(number);
    }
    /// Small numbers take few bytes, whatever their sign.
    void putSigned(qint64 number)
    {
        const auto bits = static_cast<quint64>(number) << 1;
        put(number < 0 ? ~bits : bits);
    }
    void putBytes(std::string_view bytes)
    {
        put(bytes.size());
        m_bytes += bytes;
    }
    void putBytes(const QByteArray& bytes)
    {
        putBytes(std::string_view(bytes.constData(), static_cast<std::size_t>(bytes.size())));
    }
    /// Two texts are put as the same bytes only if they are the same.
    void putText(const QString& text)
    {
        // As UTF-8 half a surrogate, and a mark of the byte order in front, would not be what they were.
        const bool isWide = !text.isValidUtf16() || text.startsWith(QChar::ByteOrderMark);
        const QByteArray bytes = isWide ? QByteArray::fromRawData(reinterpret_cast<const char*>(text.constData()),
                                                                  text.size() * static_cast<qsizetype>(sizeof(QChar)))
                                        : text.toUtf8();
        put(static_cast<quint64>(bytes.size()) << 1 | (isWide ? 1U : 0U));
        m_bytes.append(bytes.constData(), static_cast<std::size_t>(bytes.size()));
    }
    const std::string& bytes() const { return m_bytes; }

    static constexpr quint64 continued = 0x80;
    static constexpr unsigned int bitsOfByte = 7;

private:
    std::string m_bytes;
};

/// Takes out what a BytePacker has put, in the same order.
class PackedBytes
{
public:
    explicit PackedBytes(const char* at) : m_at(at) {}

    quint64 number()
    {
        quint64 number = 0;
        unsigned int shift = 0;
        for (;; shift += BytePacker::bitsOfByte) {
            const auto byte = static_cast<unsigned char>(*m_at++);
            number |= (byte & (BytePacker::continued - 1)) << shift;
            if (byte < BytePacker::continued)
                return number;
        }
    }
    qint64 signedNumber()
    {
        const quint64 bits = number();
        return static_cast<qint64>((bits & 1U) != 0 ? ~(bits >> 1) : bits >> 1);
    }
    /// Valid as long as what it was packed into.
    std::string_view bytes() { return take(static_cast<std::size_t>(number())); }
    QString text(SharedTexts& texts)
    {
        const quint64 head = number();
        const std::string_view bytes = take(static_cast<std::size_t>(head >> 1));
        if ((head & 1U) == 0)
            return texts.shared(bytes);
        QString text(static_cast<qsizetype>(bytes.size() / sizeof(QChar)), Qt::Uninitialized);
        std::memcpy(text.data(), bytes.data(), bytes.size());
        return text;
    }

    /// Of a text, instead of the text.
    std::string_view bytesOfText()
    {
        const char* const start = m_at;
        const auto size = static_cast<std::size_t>(number() >> 1);
        static_cast<void>(take(size));
        return {start, static_cast<std::size_t>(m_at - start)};
    }

private:
    std::string_view take(std::size_t size)
    {
        const std::string_view bytes(m_at, size);
        m_at += size;
        return bytes;
    }

    const char* m_at;
};

} // namespace VeskTimeline::Kit
