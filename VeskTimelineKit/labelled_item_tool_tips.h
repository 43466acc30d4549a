#pragma once

#include <VeskTimelineKit/labelled_item.h>
#include <VeskTimelineKit/vesktimelinekit_export.h>

#include <QObject>

class QPoint;

namespace VeskTimeline {
class Item;
class TimelineView;
class Track;
} // namespace VeskTimeline

namespace VeskTimeline::Kit {

/// Shows the tool tips of the LabelledItems of a view, copies on the tracks above among them, whatever model of ours it
/// has.
class VESKTIMELINEKIT_EXPORT LabelledItemToolTips : public QObject
{
    Q_OBJECT

public:
    /// @param view becomes the parent
    explicit LabelledItemToolTips(TimelineView* view);

    /// How times are written. @param formatter none, the default: formatTime()
    void setTimeFormatter(const TimeFormatter& formatter) { m_formatter = formatter; }

    /// The tool tip for a point of the view's viewport; empty where there is no such item.
    QString textAt(const QPoint& pos) const;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    const Item* itemAt(const Track& track, const QPoint& pos) const;
    bool isHit(const Item& item, const QPoint& pos) const;

    TimelineView* m_view;
    TimeFormatter m_formatter;
};

} // namespace VeskTimeline::Kit
