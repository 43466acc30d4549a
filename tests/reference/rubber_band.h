#pragma once

#include <QRect>

#include <functional>
#include <utility>
#include <vector>

/// Plain reference for the items that a rubber band covers, over rows of one height from y 0 down.
namespace Reference {

struct BandItem
{
    int id;
    qint64 start;
    /// -1 for an item without end.
    int duration;
};

using BandRow = std::vector<BandItem>;

inline std::vector<int> itemsWithinBand(const QRect& band, const std::vector<BandRow>& rows, int rowHeight,
                                        const std::function<qint64(int)>& toTime)
{
    int x1 = band.left();
    int x2 = band.left() + band.width() - 1;
    int y1 = band.top();
    int y2 = band.top() + band.height() - 1;
    if (x1 > x2)
        std::swap(x1, x2);
    if (y1 > y2)
        std::swap(y1, y2);
    const qint64 t1 = toTime(x1);
    const qint64 t2 = toTime(x2);
    std::vector<int> ids;
    if (t1 == t2)
        return ids;
    const auto appendRowAt = [&](int y) {
        if (y < 0 || y >= rowHeight * static_cast<int>(rows.size()))
            return;
        for (const BandItem& item : rows[static_cast<std::size_t>(y / rowHeight)]) {
            const bool endsBefore = item.duration != -1 && item.start + item.duration < t1;
            if (!endsBefore && item.start <= t2)
                ids.push_back(item.id);
        }
    };
    for (int y = y1; y <= y2; y += rowHeight)
        appendRowAt(y);
    if (y1 + rowHeight > y2)
        appendRowAt(y2);
    return ids;
}

} // namespace Reference
