#pragma once

#include <VeskTimeline/track.h>

#include <QAbstractItemModel>

#include <map>

class IHoxLogger;

namespace VeskTimeline {

class SnapCandidates;
class TimelineView;
class TrackPlaces;

/// Owns the track tree and shows it to Qt's views: one row per track, two columns. Subclass it to fill it.
///
/// Column 0 is the track's name, column 1 its time area. Items are not rows; views reach them through the item
/// operations. Every valid index carries the id of its row's track as internal id; the root track has no index, the
/// invalid index stands for it.
///
/// | column | Qt::DisplayRole                       | Qt::UserRole     |
/// |--------|---------------------------------------|------------------|
/// | 0      | the track's text, or "[unknown]"      | the track id     |
/// | 1      | the track id                          | the user data    |
///
/// Track ids and item ids are counted separately, tracks from 1 (the root is 0), items from 0, and are never used twice
/// before clear(). Look-ups by id go through two caches, which whoever adds or removes tracks keeps in step with the
/// tree: insertTrack() and the editing operations do.
///
/// Look-ups that find nothing throw a `QString` with the reason; the functions that Qt's views call catch it, log it at
/// Debug to "Timeline.TimelineModel" and answer with an invalid index or 0. Pointers that look-ups return are never
/// null and stay owned by the model.
///
/// Of the editing operations only addItem() emits a signal; whoever calls the others repaints or notifies. For use on
/// the GUI thread only.
class VESKTIMELINE_EXPORT TimelineModel : public QAbstractItemModel
{
    Q_OBJECT

public:
    /// @param view asked whether an item is being dragged; not owned, may be null. It is only asked, and forgotten
    /// when it is destroyed while it shows the model
    explicit TimelineModel(TimelineView* view = nullptr, QObject* parent = nullptr);
    ~TimelineModel() override;

    /// Destroys all tracks but the root and all items, and starts both id counters again. Settings and clipboard stay.
    /// Emits nothing: the caller resets the views.
    void clear();

    Track* rootTrack() { return &m_rootTrack; }
    const Track* rootTrack() const { return &m_rootTrack; }

    /// The track with that id, the root included.
    /// @throws QString "Model: track with id %1 not found in cache"; without caching, what Track::track() throws
    Track* track(int id);
    /// @throws QString "Model: const track with id %1 not found in cache"; without caching, what Track::track() throws
    const Track* track(int id) const;
    /// The item with that id.
    /// @throws QString "Model: item with id %1 not found in cache"; without caching, what Track::item() throws
    Item* item(int id);
    /// @throws QString "Model: const item with id %1 not found in cache"; without caching, what Track::_item() throws
    const Item* item(int id) const;
    /// All item ids in ascending order; without caching in pre-order of the tree.
    QVector<int> itemIds() const;
    /// The parent of a track; the root for a top-level track. @throws QString as track()
    const Track* parentOfTrackId(int trackId) const;

    using QObject::parent;
    QModelIndex index(int row, int column, const QModelIndex& parent = QModelIndex()) const override;
    QModelIndex parent(const QModelIndex& index) const override;
    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

    /// Index of a track's row in column 0; invalid when there is none.
    QModelIndex indexOfTrack(int trackId) const;
    /// As indexOfTrack(), searching `idx` and the rows below it; an invalid `idx` stands for the root.
    QModelIndex indexOfTrackFromIndex(const QModelIndex& idx, int trackId) const;
    /// As indexOfTrack(). @throws QString "indexOfTrackSafe: index for trackId %1 ('%2') not found "
    QModelIndex indexOfTrackSafe(int trackId) const;
    /// As indexOfTrackFromIndex(). @throws QString "indexOfTrackFromIndexSafe: index for trackId %1 not found"
    QModelIndex indexOfTrackFromIndexSafe(const QModelIndex& idx, int trackId) const;

    /// Queries over the root's items, see Track::isItemBetween() for the interval and the flags.
    QVector<int> itemIdsBetween(qint64 start, qint64 end, bool strict, bool complete, bool recursive,
                                bool sorted) const;
    /// Copy items of the root and of the top-level tracks.
    QVector<int> copyItemIdsBetween(qint64 start, qint64 end, bool strict, bool complete, bool sorted) const;
    bool isItemsBetween(qint64 start, qint64 end, const QVector<int>& ignoreIds, bool strict, bool complete,
                        bool recursive) const;
    bool isItemsBetween(qint64 start, qint64 end, int ignoreId, bool strict, bool complete, bool recursive) const;

    /// Whether the user may edit items at all; default true.
    bool isEditable() const { return m_isEditable; }
    void setEditable(bool isEditable) { m_isEditable = isEditable; }
    /// Whether times snap to the grid of snapStep(); default false.
    bool isSnapEnabled() const { return m_isSnapEnabled; }
    void setSnapEnabled(bool isEnabled) { m_isSnapEnabled = isEnabled; }
    /// Grid in milliseconds; default 500. A step of 0 means no grid.
    int snapStep() const { return m_snapStep; }
    void setSnapStep(int step) { m_snapStep = step; }
    /// Distance in milliseconds within which gestures pull an edge onto another item's edge; default 1000.
    int snapTolerance() const { return m_snapTol; }
    void setSnapTolerance(int tolerance) { m_snapTol = tolerance; }
    /// Least duration, in milliseconds, that setItemDuration() gives; default 0.
    int minimumDuration() const { return m_minItemDuration; }
    /// A negative duration counts as 0, with a warning in the log. While snapping is on, one that is no multiple of
    /// 1000 ms is stored with a warning, since addItem() then cuts times to whole seconds.
    void setMinimumDuration(int duration);
    /// While snapping is on, the time cut to the grid, towards the epoch; otherwise the time itself.
    qint64 snapTime(qint64 time) const;

    bool isClipboardEmpty() const { return m_clipboard.empty(); }

    /// Sets the start time, unchecked and unsnapped, and sorts the track's items. All changes of a start time end here.
    virtual void setItemStartTime(Track& track, Item& item, qint64 time);
    /// Calls the first form. @throws QString when the item's track is unknown
    virtual void setItemStartTime(Item& item, qint64 time);
    /// Calls the second form. @throws QString when the item is unknown
    virtual void setItemStartTime(int itemId, qint64 time);
    /// Sets the duration, at least minimumDuration(), and sorts the track's items. All changes of a duration end here.
    virtual void setItemDuration(Track& track, Item& item, int duration);
    /// Calls the first form. @throws QString when the item's track is unknown
    virtual void setItemDuration(Item& item, int duration);
    /// Calls the second form. @throws QString when the item is unknown
    virtual void setItemDuration(int itemId, int duration);
    /// Moves the item to another track and, through setItemStartTime(), to a time. Should that throw, the item stands
    /// on the new track already, under the old one's id. @throws QString for an unknown id, with nothing changed
    virtual void moveItemToTrack(int itemId, int trackId, qint64 time);
    /// Destroys an item. @throws QString when the item is unknown
    virtual void removeItem(int itemId);
    /// Destroys a track with its subtree and all their items. Not for the root. The row signals are the caller's.
    /// The ids of the track's descendants must not be looked up again: their cache entries stay.
    /// @throws QString when the track or its parent is unknown
    virtual void removeTrack(int trackId);

    /// Policy: may the item be dropped onto the track with this start time. Here always true.
    virtual bool canDropItem(const Item& item, int trackId, qint64 start) const;
    /// Policy: may the item be moved to this start time. Here always true.
    virtual bool canMoveItem(const Item& item, qint64 start) const;
    /// Policy: may the item take this start time and duration. Here always true.
    virtual bool canResizeItem(const Item& item, qint64 start, int duration) const;
    /// Whether the view's drag handler is moving the item; false without view or drag handler.
    virtual bool isItemDragged(int itemId) const;

    /// Puts copies of the items on the model's own clipboard, replacing what it held. Start times are kept relative to
    /// the earliest. @throws QString for an unknown id; the clipboard then holds the copies made before
    virtual void copyToClipboard(const QVector<int>& itemIds);
    /// Copies the items, then removes them, announced by beginItemChanges(). @throws QString for an unknown id
    virtual void cutToClipboard(const QVector<int>& itemIds);
    /// Adds the clipboard's items to the tracks they came from, the earliest at `time`, snapped while snapping is on,
    /// and empties the clipboard. The items get new ids. Emits dataChanged() for each.
    /// @throws QString when a track has gone; the items before are pasted, the others stay on the clipboard
    virtual void pasteFromClipboard(qint64 time);

public Q_SLOTS:
    /// Hook for the insert button of a track row. Does nothing here; a subclass inserts a track below the row.
    virtual void onInsertTrack(const QModelIndex& index);
    /// Hook for the remove button of a track row, called when the user has confirmed. Does nothing here.
    virtual void onRemoveTrack(const QModelIndex& index);

public:
    /// Announces that about `count` calls of setItemStartTime(), moveItemToTrack() or removeItem() follow, as a gesture
    /// on a large selection and cutToClipboard() make them. Does nothing here. A subclass may put off what is asked of
    /// it and make it in one pass when endItemChanges() is called, or when anything is asked whose answer depends on
    /// it. Such pairs may be nested; only the outermost counts then.
    virtual void beginItemChanges(int count);
    /// The changes announced have been asked for, or an exception has ended them: called once for each
    /// beginItemChanges() that has not thrown. Does nothing here.
    virtual void endItemChanges();

protected:
    int nextFreeTrackId() { return m_currentTrackId++; }
    int nextFreeItemId() { return m_currentItemId++; }

    /// Adds a track as child of another, with a new id, emitting the row-insertion signals.
    /// @param row position among the parent's children; -1 or past the end: last
    /// @return the track, owned by the model
    /// @throws QString, with nothing changed, for an unknown parent and for a track that has items or children already
    Track* insertTrack(int parentTrackId, int row, TrackPtr&& track);

    /// Adds an item to a track under a new id, cut to whole seconds while snapping is on, and emits dataChanged() for
    /// the track's row. The flag has no effect.
    /// @return the new id
    /// @throws QString for an unknown track; the id is used up, the item stays the caller's
    int addItem(int parentTrackId, ItemPtr&& itemPtr, bool forceTheCompilerToUseMe);
    /// Destroys the items of every track in the cache; the tracks stay. Emits nothing.
    void clearItems();

    /// Row of a track among the children of its parent, which must hold items of its own.
    /// @throws the C string "parent doesn't have items" or "not found"; QString for an unknown track
    int rowOfTrackId(int trackId) const;
    /// The track of an index's row. @throws QString "trackOfIndex: ..." for an invalid index or unknown track
    const Track* trackOfIndex(const QModelIndex& index) const;
    /// The same as indexOfTrack().
    QModelIndex indexOf(int trackId) const;

    /// Queries over a track that look items up by id through item(), and so through the item cache, where they have
    /// only an id. Copy items do not count.
    QVector<int> _itemIdsBetween(Track& t, qint64 start, qint64 end, bool strict, bool complete, bool recursive,
                                 bool sorted, qint64 minimumDuration) const;
    /// Copy items of the track and, when `recursive`, of its whole subtree; equal neighbours are reported once.
    QVector<int> _copyItemIdsBetween(Track& t, qint64 start, qint64 end, bool strict, bool complete, bool recursive,
                                     bool sorted, qint64 minimumDuration) const;
    bool _isItemsBetween(const Track& t, qint64 start, qint64 end, const QVector<int>& ignoreIds, bool strict,
                         bool complete, bool recursive, qint64 minimumDuration) const;
    bool _isItemsBetween(const Track& t, qint64 start, qint64 end, int ignoreId, bool strict, bool complete,
                         bool recursive, qint64 minimumDuration) const;

    IHoxLogger& m_logger;
    TimelineView* m_view;
    Track m_rootTrack;
    int m_currentTrackId;
    int m_currentItemId;
    bool m_isEditable;
    bool m_isSnapEnabled;
    int m_snapStep;
    int m_snapTol;
    int m_minItemDuration;
    bool m_itemCaching;
    bool m_trackCaching;
    /// All tracks by id, the root included; not owned.
    std::map<int, Track*> m_trackCache;
    /// All items by id; not owned.
    std::map<int, Item*> m_itemCache;
    /// Copies of items, their start times relative to the earliest.
    Items m_clipboard;

private:
    QString nameOf(const Track& track) const;
    QModelIndex searchRowsBelow(const QModelIndex& idx, int trackId) const;
    int rowIn(const Track& parentTrack, int trackId) const;
    void noteInsertedRows(const QModelIndex& parent, int first, int last);
    void clearItemsOfCachedTracks(Track& subtree);
    void sortByStartTime(QVector<int>& ids) const;
    void forgetDestroyedTrack(int trackId);
    void pasteCopy(ItemPtr& copy, qint64 time);

    /// Where the tracks stand, so that looking for one is no walk of the rows.
    std::unique_ptr<TrackPlaces> m_places;

    friend class SnapCandidates;
    friend class TimelineView;
};

inline Track* TimelineModel::insertTrack(int parentTrackId, int row, TrackPtr&& track)
{
    Track* const parentTrack = this->track(parentTrackId);
    if (!track)
        throw QStringLiteral("insertTrack: there is no track to insert on track %1").arg(parentTrackId);
    if (track->hasItems() || track->hasTracks())
        throw QStringLiteral("insertTrack: a track to insert on track %1 must be empty").arg(parentTrackId);

    const int count = parentTrack->trackCount();
    const int position = row < 0 || row > count ? count : row;
    beginInsertRows(indexOfTrack(parentTrackId), position, position);
    track->m_id = nextFreeTrackId();
    track->m_parentId = parentTrackId;
    Tracks& siblings = parentTrack->tracks();
    Track* const inserted = siblings.insert(siblings.begin() + position, std::move(track))->get();
    m_trackCache[inserted->id()] = inserted;
    endInsertRows();
    return inserted;
}

} // namespace VeskTimeline
