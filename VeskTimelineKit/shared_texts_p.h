#pragma once

// Internal to the kit; not installed.

#include <QHashFunctions>
#include <QString>

#include <algorithm>
#include <array>
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
        const std::size_t hash = qHashBits(text.data(), text.size());
        Ways& ways = m_sets[hash % setCount];
        for (std::size_t way = 0; way < ways.size(); ++way) {
            if (ways[way].hash != hash || ways[way].key != text)
                continue;
            // So that the one that has not come for the longest time is at the end.
            if (way > 0)
                std::swap(ways[way], ways[way - 1]);
            return ways[way > 0 ? way - 1 : 0].text;
        }
        std::rotate(ways.begin(), ways.end() - 1, ways.end());
        ways.front().hash = hash;
        ways.front().key = text;
        ways.front().text = QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
        return ways.front().text;
    }

private:
    struct Entry
    {
        std::size_t hash = 0;
        std::string key;
        QString text;
    };
    static constexpr std::size_t setCount = 2048;
    using Ways = std::array<Entry, 4>;

    std::vector<Ways> m_sets = std::vector<Ways>(setCount);
};

} // namespace VeskTimeline::Kit
