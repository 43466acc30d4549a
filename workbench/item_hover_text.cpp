#include "item_hover_text.h"

#include <VeskTimeline/timeline_model.h>
#include <VeskTimeline/timeline_view.h>
#include <VeskTimelineKit/labelled_item.h>
#include <VeskTimelineKit/time_text.h>

#include <QMouseEvent>

namespace Workbench {

using namespace VeskTimeline;

namespace {

// How far beside an item without duration the mouse may be.
constexpr int markerReach = 4;

QString timesOf(const Item& item)
{
    const QString start = Kit::formatTime(item.startTime());
    if (item.duration() == 0)
        return start;
    const QString end = item.duration() < 0 ? QString() : Kit::formatTime(item.startTime() + item.duration());
    return QStringLiteral("%1 – %2").arg(start, end);
}

} // namespace

ItemHoverText::ItemHoverText(TimelineView* view) : QObject(view), m_view(view)
{
    view->setCursorTextVisible(true);
    view->viewport()->installEventFilter(this);
}

bool ItemHoverText::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::MouseMove) {
        const QString text = textAt(static_cast<QMouseEvent*>(event)->position().toPoint());
        if (text != m_text)
            m_view->setCursorText(text);
        m_text = text;
    }
    return QObject::eventFilter(watched, event);
}

QString ItemHoverText::textAt(const QPoint& pos) const
{
    const auto* const item = dynamic_cast<const Kit::LabelledItem*>(itemAt(pos));
    if (!item)
        return {};
    return QStringLiteral("%1 (%2)").arg(item->label().simplified(), timesOf(*item));
}

const Item* ItemHoverText::itemAt(const QPoint& pos) const
{
    const QModelIndex index = m_view->indexAt(pos);
    if (index.column() != 1 || !m_view->timelineModel())
        return nullptr;
    const Track* const track = std::as_const(*m_view->timelineModel()).track(index.data(Qt::DisplayRole).toInt());
    // The item painted last is the one that is seen.
    const auto found = std::find_if(track->items().rbegin(), track->items().rend(),
                                    [this, &pos](const ItemPtr& item) { return isHit(*item, pos); });
    return found == track->items().rend() ? nullptr : found->get();
}

bool ItemHoverText::isHit(const Item& item, const QPoint& pos) const
{
    const int left = m_view->toPixel(item.startTime());
    const int right = item.duration() < 0 ? m_view->width() : m_view->toPixel(item.startTime() + item.duration());
    const int reach = right - left < markerReach ? markerReach : 0;
    return left - reach <= pos.x() && pos.x() <= right + reach;
}

} // namespace Workbench
