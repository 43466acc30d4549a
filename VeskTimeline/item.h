#pragma once

#include <VeskTimeline/vesktimeline_export.h>

#include <QColor>
#include <QString>

#include <functional>
#include <memory>
#include <vector>

class QModelIndex;
class QPainter;
class QStyleOptionViewItem;

namespace VeskTimeline {

/// Tells the time index of the track that holds an item when the item's times change behind the track's back. Of no use
/// to applications.
class VESKTIMELINE_EXPORT ItemIndexMark
{
public:
    ItemIndexMark() = default;
    /// A copy of an item is in no track.
    ItemIndexMark(const ItemIndexMark& /*other*/) noexcept {}
    /// An item that is assigned to stays in its track, with other times.
    ItemIndexMark& operator=(const ItemIndexMark& /*other*/) noexcept
    {
        noteChange();
        return *this;
    }
    ~ItemIndexMark() { noteChange(); }

    void noteChange() const noexcept
    {
        if (m_slot != 0)
            countChange(m_slot);
    }

private:
    static void countChange(quint16 slot) noexcept;

    /// The counter that the index watches; 0 for an item that is in none.
    quint16 m_slot = 0;

    friend class ItemIndex;
};

/// One timed entry on the timeline: a bar with a start time, a duration and a colour.
///
/// Times are milliseconds since the Unix epoch (UTC), durations milliseconds. A duration of -1 makes the item
/// open-ended: it has a start and no end. Applications change the times of items that are in a model through
/// TimelineModel::setItemStartTime() and TimelineModel::setItemDuration(), so that the order of the track's items and
/// the notifications stay right; the setters of this class only store.
///
/// An item is owned by the Track that holds it. Subclass it to paint items differently.
class VESKTIMELINE_EXPORT Item
{
public:
    /// What views may rely on in paint(), to leave out calls that change nothing of the picture.
    enum class Culling : quint8 {
        None,    ///< nothing: it is called for each item of a row that is painted, wherever the item lies
        Outside, ///< it paints nothing of an item that is over before the window or begins behind it
        Bar,     ///< it is Item::paint() or paints the same: where bars cover one another, or there are many, it is not
                 ///< even called for those that are seen
        Covered, ///< as Outside; and for an item with a duration above 0 it paints a bar, with drawRect() and pens as
                 ///< wide as those of Item::paint(), filled with color(), and nothing outside of it. The bars of a row
                 ///< are all as high; they fill the columns of the rectangle, but are three pixels wide where that is
                 ///< narrower, except at the row's edges. It is not called for bars that later ones cover
    };

    /// MIME type that marks a drag of items inside one view; its payload is empty.
    static const QString mimetype;
    /// Outline colour of selected items, RGB 0x43B0E0.
    static const QColor s_highlightColor;

    /// An editable item at the epoch with zero duration and an invalid colour.
    Item() = default;
    /// An item that belongs to no model yet: id and parent track id are -1.
    /// @param startTime milliseconds since the epoch, UTC
    /// @param duration milliseconds; -1 for an open-ended item
    Item(qint64 startTime, int duration, const QColor& color, bool isEditable);
    Item(const Item& other) = default;
    Item& operator=(const Item& other) = default;
    Item(Item&& other) = default;
    virtual ~Item();

    /// Draws the item into `option.rect`: a rectangle filled with color() and outlined in black, 1 pixel wide, or, when
    /// selected, in s_highlightColor, 5 pixels wide. The painter comes back in the state it was handed over in.
    /// @param index the time cell of the row painted, in the view's model
    virtual void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index,
                       bool isSelected) const;

    /// For items of this very class Culling::Bar. For subclasses what they have set, Culling::None as long as they have
    /// not.
    Culling culling() const;

    /// Unique within the model; -1 until the model adds the item.
    int id() const { return m_id; }
    /// Id of the owning track; -1 until the model adds the item.
    int parentTrackId() const { return m_parentTrackId; }
    QColor color() const { return m_color; }
    /// Milliseconds since the epoch, UTC.
    qint64 startTime() const { return m_startTime; }
    /// Milliseconds; -1 for an open-ended item.
    int duration() const { return m_duration; }
    /// Whether the user may move or resize the item.
    bool isEditable() const { return m_isEditable; }

    void setColor(const QColor& color) { m_color = color; }
    /// Stores the time; for items that are in no model.
    void setStartTime(qint64 startTime) { _setStartTime(startTime); }
    /// Stores the duration; for items that are in no model.
    void setDuration(int duration) { _setDuration(duration); }
    void setEditable(bool isEditable) { m_isEditable = isEditable; }

    /// Raw setter for the model, which keeps the order of the track's items itself.
    void _setStartTime(qint64 startTime)
    {
        m_startTime = startTime;
        m_indexMark.noteChange();
    }
    /// Raw setter for the model, which keeps the order of the track's items itself.
    void _setDuration(int duration)
    {
        m_duration = duration;
        m_indexMark.noteChange();
    }

protected:
    /// For subclasses, in their constructors, to say how paint() behaves.
    void setCulling(Culling culling)
    {
        m_culling = culling;
        m_indexMark.noteChange();
    }

    QColor m_color;
    /// Changed through _setStartTime() only while a track holds the item.
    qint64 m_startTime = 0;
    /// Changed through _setDuration() only while a track holds the item.
    int m_duration = 0;
    bool m_isEditable = true;

private:
    // Here they take up no room that would not be lost anyway.
    Culling m_culling = Culling::None;
    ItemIndexMark m_indexMark;

protected:
    int m_id = -1;
    int m_parentTrackId = -1;

    friend class ItemIndex;
    friend class TimelineModel;
    friend class Track;
};

/// Owns an item.
using ItemPtr = std::unique_ptr<Item>;
/// Owning list of items, kept in the order of their start times.
using Items = std::vector<ItemPtr>;
/// Names an owned item without owning it; valid as long as the list that holds the ItemPtr is not changed.
using ItemPtrRef = std::reference_wrapper<const ItemPtr>;
using ItemPtrRefs = std::vector<ItemPtrRef>;
/// As ItemPtrRef, to an item that may be changed.
using ItemPtrNCVRef = std::reference_wrapper<ItemPtr>;
using ItemPtrNCVRefs = std::vector<ItemPtrNCVRef>;

} // namespace VeskTimeline
