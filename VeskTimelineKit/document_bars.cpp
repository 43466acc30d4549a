#include "document_bars_p.h"

#include <algorithm>

namespace VeskTimeline::Kit {

namespace {

// Whole seconds, so that pieces still meet where times are cut to them.
constexpr qint64 pieceLength = DocumentItem::longestBar / 1000 * 1000;

void addPieces(std::vector<DocumentBar>& bars, std::size_t position, const DocumentItem& item, int whole)
{
    const auto count = static_cast<int>((item.duration - 1) / pieceLength + 1);
    qint64 start = item.start;
    for (int number = 1; number <= count; ++number) {
        const qint64 duration = std::min(pieceLength, item.end() - start);
        bars.push_back({position, start, static_cast<int>(duration), {whole, number, count}, bars.size()});
        start += duration;
    }
}

} // namespace

std::vector<DocumentBar> barsOf(const std::vector<DocumentItem>& items, int& nextWhole)
{
    std::vector<DocumentBar> bars;
    bars.reserve(items.size());
    for (std::size_t i = 0; i < items.size(); ++i) {
        const DocumentItem& item = items[i];
        if (item.duration > DocumentItem::longestBar)
            addPieces(bars, i, item, nextWhole++);
        else
            bars.push_back({i,
                            item.start,
                            static_cast<int>(std::max<qint64>(item.duration, DocumentItem::openEnded)),
                            {},
                            bars.size()});
    }
    const auto startsEarlier = [](const DocumentBar& left, const DocumentBar& right) {
        return left.start < right.start;
    };
    if (!std::is_sorted(bars.begin(), bars.end(), startsEarlier))
        std::stable_sort(bars.begin(), bars.end(), startsEarlier);
    return bars;
}

} // namespace VeskTimeline::Kit
