#pragma once

#include <VeskTimeline/item.h>
#include <VeskTimelineKit/document.h>
#include <VeskTimelineKit/vesktimelinekit_export.h>

#include <QMap>

#include <functional>
#include <optional>

class QRect;

namespace VeskTimeline::Kit {

/// Says which piece of an item it is that lasts longer than one bar can.
struct ItemPiece
{
    int whole = -1; ///< the same for all pieces of one item; -1: the item is no piece
    int number = 0; ///< counted from 1
    int count = 0;  ///< of pieces in the whole item

    bool isPiece() const { return whole >= 0; }
    friend bool operator==(const ItemPiece& left, const ItemPiece& right)
    {
        return left.whole == right.whole && left.number == right.number && left.count == right.count;
    }
};

/// Writes a point in time, milliseconds since the epoch, for the user.
using TimeFormatter = std::function<QString(qint64)>;

/// An item with a text, which it paints inside its bar, shortened to the room there is, in black or white, whichever
/// is easier to read on the item's colour.
///
/// However short an item is, there is something to see: one without duration shows as a diamond on a line at its start,
/// one that lasts for a while as a bar of three pixels at least; the edges of one with nearly the colour of the row, or
/// none at all, stand out from it. An open-ended item reaches to the right end of the painter's clip, where an arrow
/// says that it goes on. What is left of a bar at the edge of the cell stays a bar, however narrow. Nothing is painted
/// of items that lie wholly outside the cell.
class VESKTIMELINEKIT_EXPORT LabelledItem : public Item
{
public:
    /// @param label may have several lines, which are shown as one
    /// For the others see Item.
    LabelledItem(const QString& label, qint64 startTime, int duration, const QColor& color, bool isEditable);

    /// What is shown: the plain label, with "(2/3)" behind it for the second piece of three.
    QString label() const;
    /// For an item in a model, StandardTimelineModel::setItemLabel() tells the views; so with the setters below.
    void setLabel(const QString& label) { m_label = label; }
    const QString& plainLabel() const { return m_label; }

    const QString& description() const { return m_description; }
    void setDescription(const QString& description) { m_description = description; }
    /// Free, by name; never interpreted.
    const QMap<QString, QString>& attributes() const { return m_attributes; }
    void setAttributes(const QMap<QString, QString>& attributes) { m_attributes = attributes; }

    /// Whether the colour is the item's own, which is the default, or that of its track.
    bool hasOwnColor() const { return m_hasOwnColor; }
    void setHasOwnColor(bool hasOwnColor) { m_hasOwnColor = hasOwnColor; }

    const ItemPiece& piece() const { return m_piece; }
    void setPiece(const ItemPiece& piece) { m_piece = piece; }

    /// Label, start, end, duration, track and description, as rich text in which nothing of them is taken for mark-up.
    /// Long texts are cut.
    /// @param formatter none: formatTime()
    /// @param whole for the piece of a long item: when that is, which is said then; none: the item's own times
    QString toolTip(const QString& trackName, const TimeFormatter& formatter = {},
                    const std::optional<TimeSpan>& whole = {}) const;

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index,
               bool isSelected) const override;

    /// Black or white, whichever contrasts more with the background.
    static QColor readableTextColor(const QColor& background);

private:
    friend class ItemMaker;
    friend class StandardTimelineModel;

    void setIds(int id, int parentTrackId);
    QString pieceText() const;
    // `seen` is what the colour behind the item makes of the item's.
    void paintBar(QPainter* painter, const QRect& bar, const QColor& edge, bool isSelected) const;
    void paintMarker(QPainter* painter, const QRect& bar, const QColor& line, const QColor& edge,
                     bool isSelected) const;
    static void paintArrow(QPainter* painter, const QRect& bar, const QColor& seen);
    void paintLabel(QPainter* painter, const QRect& bar, const QColor& seen) const;

    QString m_label;
    QString m_description;
    QMap<QString, QString> m_attributes;
    ItemPiece m_piece;
    bool m_hasOwnColor = true;
};

} // namespace VeskTimeline::Kit
