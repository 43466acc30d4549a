#pragma once

// Internal to the kit; not installed.

#include <QString>

#include <algorithm>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

namespace VeskTimeline::Kit {

/// Makes QStrings of UTF-8 texts, and of texts that come again and again the same one each time: the names of
/// attributes and the few values of most of them would take more time and memory than all the rest of a large file.
///
/// Of fixed size: what has not come for long makes room for what comes.
class SharedTexts
{
public:
    QString shared(std::string_view text)
    {
        // What is rather long is hardly worth the search.
        constexpr std::size_t longest = 200;
        if (text.size() > longest || text.empty())
            return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
        const std::size_t hash = hashOf(text);
        Entry* const set = &m_entries[hash % setCount * ways];
        for (Entry* entry = set; entry != set + ways; ++entry) {
            if (entry->hash == hash && entry->key == text)
                return entry->text;
        }
        Entry& oldest = set[m_next++ % ways];
        oldest.hash = hash;
        oldest.key = text;
        oldest.text = QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
        return oldest.text;
    }

private:
    struct Entry
    {
        std::size_t hash = 0;
        std::string key;
        QString text;
    };
    static constexpr std::size_t setCount = 2048;
    static constexpr std::size_t ways = 4;

    // Collisions only cost the sharing of some texts, so that a hash will do that takes no longer than the comparison.
    static std::size_t hashOf(std::string_view text)
    {
        constexpr quint64 factor = 0x9E3779B97F4A7C15;
        quint64 hash = text.size() * factor;
        while (!text.empty()) {
            quint64 word = 0;
            const std::size_t size = std::min(text.size(), sizeof word);
            std::memcpy(&word, text.data(), size);
            hash = (hash ^ word) * factor;
            hash ^= hash >> 32;
            text.remove_prefix(size);
        }
        return static_cast<std::size_t>(hash);
    }

    std::vector<Entry> m_entries = std::vector<Entry>(setCount * ways);
    std::size_t m_next = 0;
};

} // namespace VeskTimeline::Kit
