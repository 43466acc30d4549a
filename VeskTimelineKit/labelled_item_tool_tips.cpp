#include <VeskTimeline/timeline_model.h>
#include <VeskTimeline/timeline_view.h>
#include <VeskTimelineKit/labelled_item.h>
#include <VeskTimelineKit/labelled_item_tool_tips.h>
#include <VeskTimelineKit/standard_timeline_model.h>

#include <QHelpEvent>
#include <QToolTip>

#include <algorithm>

namespace VeskTimeline::Kit {

namespace {

// How far beside the line of an item without duration its marker reaches.
constexpr int markerReach = 5;

} // namespace

LabelledItemToolTips::LabelledItemToolTips(TimelineView* view) : QObject(view), m_view(view)
{
    view->viewport()->installEventFilter(this);
}

bool LabelledItemToolTips::isHit(const Item& item, const QPoint& pos) const
{
    const int left = m_view->toPixel(item.startTime());
    const bool isOpen = item.duration() < 0;
    const int right = isOpen ? m_view->viewport()->width() : m_view->toPixel(item.startTime() + item.duration());
    const int reach = right - left < markerReach ? markerReach : 0;
    return left - reach <= pos.x() && pos.x() <= right + reach;
}

QString LabelledItemToolTips::textAt(const QPoint& pos) const
{
    const QModelIndex index = m_view->indexAt(pos);
    if (index.column() != 1 || !m_view->timelineModel())
        return {};
    const TimelineModel& model = std::as_const(*m_view->timelineModel());
    const Item* const item = itemAt(*model.track(index.data(Qt::DisplayRole).toInt()), pos);
    const auto* const labelled = dynamic_cast<const LabelledItem*>(item);
    if (!labelled)
        return {};
    const auto* const standard = qobject_cast<const StandardTimelineModel*>(&model);
    return standard ? standard->itemToolTip(item->id(), m_formatter)
                    : labelled->toolTip(model.track(item->parentTrackId())->text(), m_formatter);
}

// The one painted last is the one that is seen: copies lie over the track's own items.
const Item* LabelledItemToolTips::itemAt(const Track& track, const QPoint& pos) const
{
    const Item* found = nullptr;
    for (const int id : track.copyItemIds()) {
        const Item* const copy = std::as_const(*m_view->timelineModel()).item(id);
        if (isHit(*copy, pos))
            found = copy;
    }
    if (found)
        return found;
    const auto own = std::find_if(track.items().rbegin(), track.items().rend(),
                                  [this, &pos](const ItemPtr& item) { return isHit(*item, pos); });
    return own != track.items().rend() ? own->get() : nullptr;
}

bool LabelledItemToolTips::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() != QEvent::ToolTip)
        return QObject::eventFilter(watched, event);
    const auto* const help = static_cast<QHelpEvent*>(event);
    QString text;
    try {
        text = textAt(help->pos());
    } catch (const QString&) {
        // The row's track, or an item of it, has just gone.
    }
    // Over the track column the model has its say.
    if (text.isEmpty() && m_view->indexAt(help->pos()).column() != 1)
        return QObject::eventFilter(watched, event);
    if (text.isEmpty())
        QToolTip::hideText();
    else
        QToolTip::showText(help->globalPos(), text, m_view->viewport());
    return true;
}

} // namespace VeskTimeline::Kit
