#include "trace_payload_p.h"

#include <map>

namespace VeskTimeline::Kit {

TracePayload::TracePayload(ByteArena& arena, std::string_view name, const TraceAttributes& attributes)
{
    const std::string& bytes = attributes.bytes();
    char* const data = arena.allocate(headSize + name.size() + bytes.size());
    const auto nameSize = static_cast<std::uint32_t>(name.size());
    const auto attributesSize = static_cast<std::uint32_t>(bytes.size());
    std::memcpy(data, &nameSize, sizeof nameSize);
    std::memcpy(data + sizeof nameSize, &attributesSize, sizeof attributesSize);
    std::copy(name.begin(), name.end(), data + headSize);
    std::copy(bytes.begin(), bytes.end(), data + headSize + name.size());
    m_data = data;
}

QMap<QString, QString> TracePayload::attributes(SharedTexts& texts) const
{
    const char* at = m_data + headSize + sizeAt(m_data);
    const char* const end = at + sizeAt(m_data + sizeof(std::uint32_t));
    if (at == end)
        return {};
    const auto next = [&at, &texts] {
        const std::uint32_t size = sizeAt(at);
        const std::string_view text(at + sizeof size, size);
        at += sizeof size + size;
        return texts.shared(text);
    };
    // Mostly they come in the order of their names.
    std::map<QString, QString> attributes;
    while (at != end) {
        QString name = next();
        attributes.insert_or_assign(attributes.end(), std::move(name), next());
    }
    return QMap<QString, QString>(std::move(attributes));
}

} // namespace VeskTimeline::Kit
