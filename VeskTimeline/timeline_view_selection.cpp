#include "ordered_ids_p.h"

#include <VeskTimeline/timeline_model.h>
#include <VeskTimeline/timeline_view.h>

namespace VeskTimeline {

const QList<int>& TimelineView::selectedItemIds() const
{
    return m_selectedItemIds->list();
}

bool TimelineView::isItemSelected(int id) const
{
    return m_selectedItemIds->contains(id);
}

void TimelineView::announceSelection()
{
    Q_EMIT selectedItemsChanged(m_selectedItemIds->list());
    viewport()->update();
}

void TimelineView::clearSelectedItems()
{
    m_selectedItemIds->clear();
    announceSelection();
}

void TimelineView::selectAllItems()
{
    if (!m_model || !m_timelineModel)
        return;
    m_selectedItemIds->assign(m_timelineModel->itemIds());
    announceSelection();
}

void TimelineView::selectItem(int id, bool clear)
{
    if (clear)
        m_selectedItemIds->clear();
    if (m_selectedItemIds->append(id))
        announceSelection();
}

void TimelineView::selectItems(const QList<int>& ids, bool clear)
{
    // NOLINTNEXTLINE(performance-unnecessary-copy-initialization): the argument may be the selection, cleared below.
    const QList<int> added = ids;
    if (clear)
        m_selectedItemIds->clear();
    for (const int id : added)
        m_selectedItemIds->append(id);
    announceSelection();
}

void TimelineView::unselectItem(int id)
{
    if (m_selectedItemIds->remove(id))
        announceSelection();
}

} // namespace VeskTimeline
