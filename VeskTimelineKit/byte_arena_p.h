#pragma once

// Internal to the kit; not installed.

#include <QHashFunctions>

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace VeskTimeline::Kit {

/// Memory that is given out piece by piece and freed as a whole: for millions of small pieces, each of which would
/// take more to allocate than it is long.
class ByteArena
{
public:
    /// Room that stays where it is as long as this object is there.
    char* allocate(std::size_t size)
    {
        if (size > m_left) {
            const std::size_t blockSize = std::max(size, standardBlock);
            m_blocks.push_back(std::make_unique<char[]>(blockSize));
            m_next = m_blocks.back().get();
            m_left = blockSize;
        }
        char* const result = m_next;
        m_next += size;
        m_left -= size;
        return result;
    }

    std::string_view copy(std::string_view text)
    {
        if (text.empty())
            return {};
        char* const target = allocate(text.size());
        std::memcpy(target, text.data(), text.size());
        return {target, text.size()};
    }

private:
    static constexpr std::size_t standardBlock = std::size_t(256) * 1024;

    std::vector<std::unique_ptr<char[]>> m_blocks;
    char* m_next = nullptr;
    std::size_t m_left = 0;
};

/// Finds what was stored under a text, exactly; a text is held once, and there are few bytes besides.
template <typename Value>
class ByteTextMap
{
public:
    /// Null when there is none. Valid until the next insert().
    const Value* find(std::string_view text) const
    {
        const auto found = m_values.find(text);
        return found == m_values.end() ? nullptr : &found->second;
    }
    /// @param text that is not there yet
    void insert(std::string_view text, const Value& value) { m_values.emplace(m_texts.copy(text), value); }

private:
    // A seed that differs from run to run: no file can be made so that all its texts meet in one bucket.
    struct Hash
    {
        std::size_t operator()(std::string_view text) const noexcept
        {
            const auto seed = static_cast<std::size_t>(QHashSeed::globalSeed());
            // Of few bytes it takes many times as long as of some more.
            std::array<char, 24> padded{};
            if (text.size() >= padded.size())
                return qHashBits(text.data(), text.size(), seed);
            std::copy(text.begin(), text.end(), padded.begin());
            return qHashBits(padded.data(), padded.size(), seed) + text.size();
        }
    };

    ByteArena m_texts;
    std::unordered_map<std::string_view, Value, Hash> m_values;
};

} // namespace VeskTimeline::Kit
