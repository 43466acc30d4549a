#include <VeskTimeline/timeline_model.h>
#include <VeskTimeline/timeline_view.h>
#include <VeskTimelineKit/labelled_item.h>
#include <VeskTimelineKit/labelled_item_tool_tips.h>

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
    const Track* const track = std::as_const(*m_view->timelineModel()).track(index.data(Qt::DisplayRole).toInt());
    // The item painted last is the one that is seen.
    const auto found = std::find_if(track->items().rbegin(), track->items().rend(),
                                    [this, &pos](const ItemPtr& item) { return isHit(*item, pos); });
    if (found == track->items().rend())
        return {};
    const auto* const labelled = dynamic_cast<const LabelledItem*>(found->get());
    return labelled ? labelled->toolTip(track->text(), m_formatter) : QString();
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
        // The row's track has just gone.
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
