#pragma once

#include <QObject>
#include <QPoint>

namespace VeskTimeline {
class Item;
class TimelineView;
} // namespace VeskTimeline

namespace Workbench {

/// Shows beside the mouse which item it is on: label, start and end.
class ItemHoverText : public QObject
{
    Q_OBJECT

public:
    /// @param view shows a StandardTimelineModel; becomes the parent
    explicit ItemHoverText(VeskTimeline::TimelineView* view);

    /// The text for a point of the viewport; empty where there is no item.
    QString textAt(const QPoint& pos) const;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    const VeskTimeline::Item* itemAt(const QPoint& pos) const;
    bool isHit(const VeskTimeline::Item& item, const QPoint& pos) const;

    VeskTimeline::TimelineView* m_view;
    QString m_text;
};

} // namespace Workbench
