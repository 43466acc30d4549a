#pragma once

// Internal to the kit; not installed.

#include "byte_arena_p.h"
#include "shared_texts_p.h"

#include <QMap>

#include <cstdint>
#include <string>

namespace VeskTimeline::Kit {

/// Attributes, one behind the other as UTF-8 with their lengths: a tenth of what a map of QStrings takes, and most
/// events of a large trace become no item of their own, or none at all.
class TraceAttributes
{
public:
    void clear() { m_bytes.clear(); }
    void append(std::string_view nameStart, std::string_view nameRest, std::string_view value)
    {
        const std::size_t before = m_bytes.size();
        m_bytes.resize(before + 2 * sizeof(std::uint32_t) + nameStart.size() + nameRest.size() + value.size());
        char* at = m_bytes.data() + before;
        at = put(putSize(at, nameStart.size() + nameRest.size()), nameStart);
        put(putSize(put(at, nameRest), value.size()), value);
    }
    const std::string& bytes() const { return m_bytes; }

private:
    // No text of a record is longer than the record, and that is limited.
    static char* putSize(char* at, std::size_t size)
    {
        const auto stored = static_cast<std::uint32_t>(size);
        std::memcpy(at, &stored, sizeof stored);
        return at + sizeof stored;
    }
    static char* put(char* at, std::string_view text) { return std::copy(text.begin(), text.end(), at); }

    std::string m_bytes;
};

/// The name and the attributes of an event, kept in an arena.
class TracePayload
{
public:
    TracePayload() = default;
    TracePayload(ByteArena& arena, std::string_view name, const TraceAttributes& attributes);

    bool isNull() const { return !m_data; }
    /// Of one that is not null; so are attributes().
    std::string_view name() const { return {m_data + headSize, sizeAt(m_data)}; }
    /// Of attributes of the same name the last counts.
    QMap<QString, QString> attributes(SharedTexts& texts) const;

private:
    static constexpr std::size_t headSize = 2 * sizeof(std::uint32_t);

    static std::uint32_t sizeAt(const char* at)
    {
        std::uint32_t size = 0;
        std::memcpy(&size, at, sizeof size);
        return size;
    }

    const char* m_data = nullptr; ///< the sizes of both parts, the name, the attributes
};

} // namespace VeskTimeline::Kit
