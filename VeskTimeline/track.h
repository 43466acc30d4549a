#pragma once

#include <VeskTimeline/item.h>

#include <QHash>
#include <QSet>
#include <QVariant>
#include <QVector>

namespace VeskTimeline {

class ItemIndex;
class Track;
struct ItemInterval;

/// Owns a track and with it the whole subtree.
using TrackPtr = std::unique_ptr<Track>;
/// Owning list of tracks in row order.
using Tracks = std::vector<TrackPtr>;

/// One row of the timeline and a node of the track tree: owns its items and its child tracks.
///
/// The items are kept in ascending order of their start times. Besides its own items a track may show *copy items*:
/// items owned by tracks of its own subtree (or by itself), recorded by id only, so that a summary row can display what
/// its child rows hold. Copy item ids own nothing; an id whose item has gone stays until removeCopyItem() or
/// clearCopyItemIds() and is skipped, with a line on standard error, whenever the copy items are needed as objects.
///
/// Ids are given out by TimelineModel, never here. Look-ups that find nothing throw a `QString` that says what was not
/// found (parentOf() and rowOfTrack(): the C string "not found"); a pointer that is returned is never null and not
/// owned by the caller. Not supported: copying a track.
class VESKTIMELINE_EXPORT Track
{
public:
    explicit Track(const QString& text);
    /// The number is reserved and has no effect.
    Track(const QString& text, int reserved);
    Track(const Track& other) = delete;
    Track& operator=(const Track& other) = delete;
    Track(Track&& other) noexcept;
    virtual ~Track();

    /// The row's label. Override it to compute the label.
    virtual QString text() const;

    /// Unique within the model; -1 until the model adds the track.
    int id() const { return m_id; }
    /// Id of the parent track; -1 for none.
    int parentId() const { return m_parentId; }
    /// The same as parentId().
    int parent() const { return m_parentId; }

    /// Free data of the application, never interpreted by the library.
    const QVariant& userData() const { return m_userData; }
    void setUserData(const QVariant& userData) { m_userData = userData; }

    /// Whether the row shows a button that asks the model to insert a track.
    bool hasInsertButton() const { return m_hasInsertButton; }
    void setInsertButton(bool hasButton) { m_hasInsertButton = hasButton; }
    /// Whether the row shows a button that asks the model to remove the track.
    bool hasRemoveButton() const { return m_hasRemoveButton; }
    void setRemoveButton(bool hasButton) { m_hasRemoveButton = hasButton; }

    /// The own items in ascending order of start time.
    const Items& items() const { return m_items; }
    /// For changing the list, keeping its order. Whoever asks for it has the queries check the whole list once, so
    /// those who only read use the other form; and whoever keeps the reference calls this again for each later change.
    Items& items()
    {
        m_isIndexStale = true;
        return m_items;
    }
    /// The child tracks in row order.
    const Tracks& tracks() const { return m_childrenTracks; }
    Tracks& tracks() { return m_childrenTracks; }
    int itemCount() const { return static_cast<int>(m_items.size()); }
    bool hasItems() const { return !m_items.empty(); }
    int trackCount() const { return static_cast<int>(m_childrenTracks.size()); }
    bool hasTracks() const { return !m_childrenTracks.empty(); }

    const QSet<int>& copyItemIds() const { return m_copyItemIds; }
    bool hasCopyItems() const { return !m_copyItemIds.isEmpty(); }
    void addCopyItemId(int id) { m_copyItemIds.insert(id); }
    void addCopyItemIds(const QSet<int>& ids) { m_copyItemIds.unite(ids); }
    /// Empties the set of this track only.
    void clearCopyItemIds() { m_copyItemIds.clear(); }
    /// Removes the id from this track and from all tracks of its subtree; an absent id is no error.
    void removeCopyItem(int id);
    /// The first copy item, in the set's order, whose interval contains the time, both ends included.
    /// @throws QString "Track: can't find copy item at %1"
    const Item* copyItemAt(qint64 time) const;

    /// Inserts an item behind all items that start at the same time or earlier. Sets no ids.
    /// @return the item, owned by the track
    Item* addItem(ItemPtr&& item);
    /// As addItem(), without the pointer.
    void addItemPtr(ItemPtr&& item);
    /// Destroys an own item. @throws QString "removeItem: item %1 not found"
    void removeItem(int id);
    /// Hands an own item over to the caller. @throws QString "Track::takeItem: item with id %1 not found"
    ItemPtr takeItem(int id);
    /// Destroys all own items; child tracks keep theirs.
    void clearItems();
    /// Destroys a direct child. @throws QString "removeTrack: track %1 not found on track %2"
    void removeTrack(int id);

    /// Depth-first search below this track, the direct children first.
    /// @throws QString "Track: track with id %1 not found"
    Track* track(int id);
    /// @throws QString "lookup failed!"
    const Track* track(int id) const;
    /// Whether a direct child or, when `recursive`, any descendant has the id.
    bool hasTrack(int id, bool recursive) const;
    /// The parent of a descendant that is not a direct child: this operation never returns the track that it is called
    /// on.
    /// @throws the C string "not found"
    const Track* parentOf(int id) const;
    /// Row, from 0, of a direct child. @throws the C string "not found"
    int rowOfTrack(int id) const;
    /// The direct child in a row. @throws std::out_of_range
    Track* trackAt(int row);
    const Track* trackAt(int row) const;

    /// Depth-first search: own items in order, then each child's subtree in row order.
    /// @throws QString "lookup failed!"
    Item* item(int id);
    const Item* item(int id) const;
    /// As item(). @throws QString "_item: item with id %1 not found!"
    ItemPtrRef _item(int id) const;
    /// As item(). @throws QString "lookup failed!"
    ItemPtrNCVRef _itemNCV(int id);

    /// The first own item whose interval contains the time, both ends included; never an open-ended one.
    /// @throws QString "lookup failed!"
    Item* itemAt(qint64 time);
    const Item* itemAt(qint64 time) const;
    /// The own item just before the one with that id.
    /// @throws QString "Track::previous: previous item for id %1 not found"
    Item* previous(int id);
    const Item* previous(int id) const;
    /// The own item just after the one with that id. @throws QString "lookup failed!"
    Item* next(int id);
    const Item* next(int id) const;

    /// Own items in order, then the copy items in the set's order, then, when `recursive`, the same of each child.
    ItemPtrRefs _items(bool recursive) const;
    /// Own items in order, then, when `recursive`, the same of each child; no copy items.
    ItemPtrNCVRefs _itemsNCV(bool recursive);
    /// The copy items in the set's order.
    ItemPtrRefs _copyItems() const;
    /// Ids of own items in order, then, when `recursive`, those of each child.
    QVector<int> _itemIds(bool recursive) const;
    /// Ids of own items in order. When `recursive`: unsorted, the subtree's in pre-order without copy items; sorted,
    /// those of _items(true) by start time, so that the item of a copy item id can be named twice.
    QVector<int> itemIds(bool recursive, bool sorted) const;

    /// Sorts the own items by start time.
    void sort();
    /// Sort by ascending start time; the order of items that start at the same time is not defined.
    static void sort(Items& items);
    static void sort(ItemPtrRefs& items);
    static void sort(ItemPtrNCVRefs& items);
    /// The ids of the items, in order.
    static QVector<int> transformItemPtrsToIds(const Items& items);
    static QVector<int> transformItemPtrsToIds(const ItemPtrRefs& items);

    /// Whether an item lies in an interval. All times in milliseconds.
    /// @param end not before `start`; `start` - 1 stands for an interval without end
    /// @param strict an item that only touches the interval with an edge is not in it
    /// @param complete the item must lie wholly inside; otherwise any overlap suffices
    /// @param minimumDuration in an interval with an end, the item counts as lasting at least so long
    static bool isItemBetween(const Item& item, qint64 start, qint64 end, bool strict, bool complete,
                              qint64 minimumDuration);
    /// Ids of the items in an interval, see isItemBetween().
    ///
    /// Sorted: of _items(recursive), copy items included, by start time. Not sorted: of the own items in order, then,
    /// when `recursive`, each child's, which are then tested with their own durations, and come sorted and with copy
    /// items when `minimumDuration` is not 0.
    QVector<int> itemIdsBetween(qint64 start, qint64 end, bool strict, bool complete, bool recursive, bool sorted,
                                qint64 minimumDuration = 0) const;
    /// Ids of this track's copy items and, when `recursive`, of those of its direct children, that lie in an interval.
    /// They are tested with their own durations whatever `minimumDuration`.
    QVector<int> copyItemIdsBetween(qint64 start, qint64 end, bool strict, bool complete, bool recursive, bool sorted,
                                    qint64 minimumDuration = 0) const;
    /// Whether any own or copy item, or, when `recursive`, any of the subtree, lies in an interval; the ids in
    /// `ignoreIds` do not count. @throws QString "lookup failed!" for a copy item id without item
    bool isItemsBetween(qint64 start, qint64 end, const QVector<int>& ignoreIds, bool strict, bool complete,
                        bool recursive, qint64 minimumDuration = 0) const;
    bool isItemsBetween(qint64 start, qint64 end, int ignoreId, bool strict, bool complete, bool recursive,
                        qint64 minimumDuration = 0) const;

    /// Writes the ids of this track and its children to standard error, for debugging.
    /// @param withItems whether this track lists its items; children list theirs unless `level` is -1
    /// @param level the line's head is indented by twice the level; children are always printed at level 0
    void printTrackIds(bool withItems, int level) const;

protected:
    QString m_text;
    QVariant m_userData;
    int m_id = -1;
    Tracks m_childrenTracks;
    Items m_items;
    int m_parentId = -1;
    bool m_hasInsertButton = false;
    bool m_hasRemoveButton = false;
    QSet<int> m_copyItemIds;

private:
    /// A copy item; null where it is missing.
    struct CopyItem
    {
        int id;
        const ItemPtr* item;
    };

    Items::const_iterator findOwnItem(int id) const;
    Tracks::const_iterator findChild(int id) const;
    const Track* findTrack(int id) const;
    const ItemPtr* findItem(int id) const;
    std::vector<CopyItem> findCopyItems() const;
    void findCopyItemsBelow(QHash<int, const ItemPtr*>& wanted, qsizetype& missing) const;
    static void sayCopyItemIsMissing(int id);
    void appendItemsBetween(ItemPtrRefs& found, const ItemInterval& interval, bool recursive) const;
    bool isCopyItemBetween(const ItemInterval& interval, const std::function<bool(int)>& isIgnored) const;
    bool isAnyBetween(const ItemInterval& interval, const std::function<bool(int)>& isIgnored, bool recursive) const;

    const ItemIndex* index() const;
    ItemIndex* currentIndex() const;
    ItemIndex* indexForChange() const;
    ItemPtr takeItemAtPosition(std::size_t position);
    ItemPtr takeOwnItem(const Item& item);
    void setItemStartTime(Item& item, qint64 time);
    void setItemDuration(Item& item, int duration);

    /// Made when a query first needs it; null before.
    mutable std::unique_ptr<ItemIndex> m_index;
    /// The list may have changed in any way since it was indexed.
    mutable bool m_isIndexStale = false;

    friend class ItemIndex;
    friend class TimelineModel;
    friend bool isAnyItemBetween(const Track& track, const ItemInterval& interval,
                                 const std::function<bool(int)>& isIgnored, bool recursive);
};

} // namespace VeskTimeline
