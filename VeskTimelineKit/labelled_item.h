#pragma once

#include <VeskTimeline/item.h>
#include <VeskTimelineKit/vesktimelinekit_export.h>

class QRect;

namespace VeskTimeline::Kit {

/// An item with a text, which it paints inside its bar, shortened to the room there is, in black or white, whichever
/// is easier to read on the item's colour.
///
/// However short an item is, there is something to see: an item without duration, and one whose bar would be narrower
/// than its marker, shows as a diamond on a line at its start. An open-ended item reaches to the right end of the
/// painter's clip. Nothing is painted of items that lie wholly outside the cell.
class VESKTIMELINEKIT_EXPORT LabelledItem : public Item
{
public:
    /// @param label may have several lines, which are shown as one
    /// For the others see Item.
    LabelledItem(const QString& label, qint64 startTime, int duration, const QColor& color, bool isEditable);

    const QString& label() const { return m_label; }
    /// For an item in a model, StandardTimelineModel::setItemLabel() tells the views.
    void setLabel(const QString& label) { m_label = label; }

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index,
               bool isSelected) const override;

    /// Black or white, whichever contrasts more with the background.
    static QColor readableTextColor(const QColor& background);

private:
    friend class StandardTimelineModel;

    void setIds(int id, int parentTrackId);
    void paintBar(QPainter* painter, const QRect& bar, bool isSelected) const;
    void paintMarker(QPainter* painter, const QRect& bar, bool isSelected) const;
    void paintLabel(QPainter* painter, const QStyleOptionViewItem& option, const QRect& bar) const;

    QString m_label;
};

} // namespace VeskTimeline::Kit
