#include "item_index_p.h"
#include "row_painter_p.h"

#include <VeskTimeline/timeline_model.h>
#include <VeskTimeline/timeline_view.h>

#include <algorithm>
#include <iterator>

namespace VeskTimeline {

// When but a few items are selected, it is known where in the track they are.
void RowPainter::findSelected(const Track& track, const ItemIndex& index)
{
    constexpr int few = 256;
    const QList<int>& ids = m_view.selectedItemIds();
    m_selectedPositions.clear();
    m_isSelectionKnown = ids.size() <= few;
    if (!m_isSelectionKnown)
        return;
    for (const int id : ids) {
        try {
            const Item& item = *std::as_const(*m_view.timelineModel()).item(id);
            if (item.parentTrackId() == track.id())
                m_selectedPositions.push_back(index.positionOf(track.items(), item));
        } catch (...) {
            // A selected item that has gone is nowhere.
        }
    }
    std::sort(m_selectedPositions.begin(), m_selectedPositions.end());
}

bool RowPainter::isSelectedAt(const ItemIndex& index, std::size_t position) const
{
    return m_isSelectionKnown ? mayBeSelected({position, position + 1}) : m_view.isItemSelected(index.idAt(position));
}

bool RowPainter::mayBeSelected(Positions positions) const
{
    if (!m_isSelectionKnown)
        return true;
    const auto first = std::lower_bound(m_selectedPositions.begin(), m_selectedPositions.end(), positions.begin);
    return first != m_selectedPositions.end() && *first < positions.end;
}

// The position behind the last one that holds a selected item; the begin for none.
std::size_t RowPainter::lastSelected(const ItemIndex& index, Positions positions) const
{
    if (m_isSelectionKnown) {
        const auto behind = std::lower_bound(m_selectedPositions.begin(), m_selectedPositions.end(), positions.end);
        const bool isFound = behind != m_selectedPositions.begin() && *std::prev(behind) >= positions.begin;
        return isFound ? *std::prev(behind) + 1 : positions.begin;
    }
    // Where many are selected, one of them will be near.
    while (positions.end > positions.begin && !m_view.isItemSelected(index.idAt(positions.end - 1)))
        --positions.end;
    return positions.end;
}

} // namespace VeskTimeline
