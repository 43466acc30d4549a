#pragma once

#include <VeskTimeline/timeline_model.h>
#include <VeskTimelineKit/document.h>
#include <VeskTimelineKit/labelled_item.h>
#include <VeskTimelineKit/prepared_document.h>
#include <VeskTimelineKit/vesktimelinekit_export.h>

#include <optional>

class QUndoStack;

namespace VeskTimeline::Kit {

class ModelContents;
enum class StepKind;
class StepScope;
struct ItemTarget;
struct StandardTimelineModelPrivate;

/// When an item is.
struct ItemTimes
{
    int itemId = -1;
    qint64 start = 0;    ///< milliseconds since the epoch, UTC
    qint64 duration = 0; ///< milliseconds, not negative, or DocumentItem::openEnded

    /// The start of an open-ended item.
    qint64 end() const { return start + (duration > 0 ? duration : 0); }
};

/// A timeline model that is ready for use: filled from a Document, with labelled items, with rows that can be inserted
/// and removed by their buttons, and with undo for everything that changes its contents.
///
/// All items are LabelledItems. Items without a colour of their own show that of their track. For use on the GUI
/// thread only.
///
/// Undo. Each operation is one step of undoStack(), except that setItemStartTime(), setItemDuration(),
/// moveItemToTrack() and removeItem(), which views call once for each item, are grouped: those of one kind that happen
/// before the event loop is reached again, or until the next press, release or drop, become one step, and so do the
/// writes of a resize until the edge is let go. finishGesture() ends a group by hand. Undo brings back the very same
/// items and tracks, under their ids, in their order. The clipboard and the settings are not part of it.
///
/// Signals. Tracks: the standard row signals. Items: itemsAdded(), itemsRemoved() and itemsChanged(), once for each
/// operation, undo or redo, and then dataChanged() once for each row that shows one of them. A reset stands for all.
///
/// Items that last longer than one bar can (see DocumentItem::longestBar) are shown in consecutive pieces, their labels
/// ending in "(1/3)". What such a piece says is changed for all pieces; views can remove, but not move or resize one.
/// document() joins them again.
///
/// Operations with ids throw a `QString` for an unknown one, before anything has changed.
class VESKTIMELINEKIT_EXPORT StandardTimelineModel : public TimelineModel
{
    Q_OBJECT

public:
    /// What the policy hooks say to items of one track that overlap. A TimelineView does not let its user move items
    /// onto others in either case.
    enum OverlapPolicy { AllowOverlaps, RefuseOverlaps };

    /// For the parameters see TimelineModel.
    explicit StandardTimelineModel(TimelineView* view = nullptr, QObject* parent = nullptr);
    ~StandardTimelineModel() override;

    /// Owned by the model. Emptied by setDocument() and clear().
    QUndoStack* undoStack() const;

    /// Replaces all tracks and items, in one model reset; ids start again: tracks from 1 and items from 0, in the order
    /// of the document's tracks and, within a track, by start time, equal ones as they are listed. Times are taken as
    /// they are, whether snapping is on or not. Every track gets both buttons. The clipboard, which is for the tracks
    /// that were, is emptied, and so is the undo stack.
    void setDocument(const Document& document);
    /// The same in a moment, however many items there are. What was there is destroyed on another thread.
    void setDocument(PreparedDocument&& document);
    /// Adds a document's tracks and items, in one step; a track whose path is there already is used. Times are taken as
    /// they are.
    void addDocument(const Document& document);
    /// The same with less to do here.
    void addDocument(PreparedDocument&& document);
    /// What the model holds, tracks from top to bottom. Of siblings with the same name all but the first are given
    /// another one, with a warning, since a document tells tracks by their paths.
    Document document() const;
    /// As TimelineModel::clear(), and empties the undo stack.
    void clear();

    /// All tracks of the tree, without the root.
    int trackCount() const;
    /// All items of the tree; each piece of a long one counts.
    int itemCount() const;
    /// All items as a document has them: the pieces of a long one are one. Costs what span() costs.
    int documentItemCount() const;
    bool hasItem(int itemId) const;
    /// Of all items; nothing when there is none. Costs no more than a look at each track, and at the items of those
    /// that have changed since it was asked for.
    std::optional<TimeSpan> span() const;

    /// Adds a track below all children of the parent. @return its id
    int addTrack(const QString& name, int parentTrackId = 0);
    /// Adds a track. @param row among the parent's children; -1 or past the end: last. @return its id
    int insertTrack(int parentTrackId, int row, const QString& name);
    /// Moves a track with all that is in it. Copy items of tracks that it is no longer below are dropped.
    /// @param row the one that it has afterwards; -1 or past the end: last
    /// @throws QString also for the root and when the new parent is the track itself or below it
    void moveTrack(int trackId, int parentTrackId, int row);
    /// @throws QString also for the root
    void renameTrack(int trackId, const QString& name);
    /// The colour of the track's items that have none of their own.
    QColor colorOfTrack(int trackId) const;
    /// @param color invalid: the default. @throws QString also for the root
    void setTrackColor(int trackId, const QColor& color);
    /// Removes a track with its subtree and all their items, emitting the row-removal signals. Not for the root.
    void removeTrack(int trackId) override;
    /// Replaces the ids of the items that the track shows as copies, see Track.
    /// @throws QString also for an item that is on no track below it
    void setCopyItemIds(int trackId, const QSet<int>& itemIds);

    /// Adds an item; its times are taken as they are. @return its id, for a long item that of its first piece
    int addItem(int trackId, const DocumentItem& item);
    /// Adds items behind those that start at the same time, sorted once. @return their ids in the order of the list,
    /// for a long item those of all its pieces
    QVector<int> addItems(int trackId, const std::vector<DocumentItem>& items);
    /// An id that is there twice counts once.
    void removeItems(const QVector<int>& itemIds);
    /// Sets start and duration as they are. A long item, which any piece stands for, is put together again under new
    /// ids.
    /// @param duration milliseconds, not negative, or DocumentItem::openEnded
    void retimeItem(int itemId, qint64 start, qint64 duration);
    /// Sets the times of several items, as retimeItem(), in one step; one that is listed twice counts once, as listed
    /// first. @return their ids afterwards
    QVector<int> retimeItems(const QVector<ItemTimes>& times);
    /// Moves items to a track, at the times they have, in one step.
    void moveItemsToTrack(const QVector<int>& itemIds, int trackId);
    /// Of a long item, which any piece stands for, the times of the whole.
    ItemTimes itemTimes(int itemId) const;
    /// An item as a document has it; of a long one, which any piece stands for, the whole.
    DocumentItem documentItem(int itemId) const;
    /// Each item once, and of a long item only the piece that comes first in the list.
    QVector<int> withoutFurtherPieces(const QVector<int>& itemIds) const;

    /// The text of an item, as it is shown.
    QString itemLabel(int itemId) const;
    void setItemLabel(int itemId, const QString& label) { setItemsLabel({itemId}, label); }
    /// In one step, as all operations on several items.
    void setItemsLabel(const QVector<int>& itemIds, const QString& label);
    QString itemDescription(int itemId) const;
    void setItemDescription(int itemId, const QString& description) { setItemsDescription({itemId}, description); }
    void setItemsDescription(const QVector<int>& itemIds, const QString& description);
    QMap<QString, QString> itemAttributes(int itemId) const;
    void setItemAttributes(int itemId, const QMap<QString, QString>& attributes);
    /// Adds an attribute or replaces its value.
    void setItemsAttribute(const QVector<int>& itemIds, const QString& name, const QString& value);
    void removeItemsAttribute(const QVector<int>& itemIds, const QString& name);
    /// Items without the attribute stay as they are.
    /// @throws QString, with nothing changed, when one has an attribute of the new name, too
    void renameItemsAttribute(const QVector<int>& itemIds, const QString& name, const QString& newName);
    /// @param color invalid: that of the track
    void setItemColor(int itemId, const QColor& color) { setItemsColor({itemId}, color); }
    void setItemsColor(const QVector<int>& itemIds, const QColor& color);
    /// A locked item is not editable: the user cannot move or resize it with the mouse.
    void setItemLocked(int itemId, bool isLocked) { setItemsLocked({itemId}, isLocked); }
    void setItemsLocked(const QVector<int>& itemIds, bool isLocked);
    /// See LabelledItem::toolTip(). For the piece of a long item it says when the whole is.
    QString itemToolTip(int itemId, const TimeFormatter& formatter = {}) const;

    OverlapPolicy overlapPolicy() const;
    void setOverlapPolicy(OverlapPolicy policy);

    using TimelineModel::setItemDuration;
    using TimelineModel::setItemStartTime;
    void setItemStartTime(Track& track, Item& item, qint64 time) override;
    void setItemDuration(Track& track, Item& item, int duration) override;
    /// Copy items of tracks that the item is no longer below are dropped.
    void moveItemToTrack(int itemId, int trackId, qint64 time) override;
    /// Removes an item, also from the copy items of the tracks above it.
    void removeItem(int itemId) override;

    /// Announces calls of setItemStartTime(), moveItemToTrack() and removeItem() for many items, as a gesture on a
    /// large selection makes them. Until endItemChanges() they are checked, but what they ask is put off; any other
    /// operation brings it up first. It comes out as without this, with one signal for all, in a fraction of the time;
    /// only that moveItemToTrack() does not call setItemStartTime() meanwhile. Such pairs may be nested.
    /// @param count about how many calls; few are made at once
    void beginItemChanges(int count) override;
    /// Makes the changes that have been put off.
    /// @throws QString, with nothing changed, when items have gone behind the model's back meanwhile
    void endItemChanges() override;

    /// Not for pieces of a long item nor against the overlap policy. Other items of the view's selection do not count,
    /// since they move along.
    bool canDropItem(const Item& item, int trackId, qint64 start) const override;
    bool canMoveItem(const Item& item, qint64 start) const override;
    /// Not for pieces of a long item, for a duration below minimumDuration(), nor against the overlap policy, for
    /// which all other items count, selected ones, too.
    bool canResizeItem(const Item& item, qint64 start, int duration) const override;

    /// See TimelineModel; the copies keep their labels, descriptions, attributes and colours.
    void copyToClipboard(const QVector<int>& itemIds) override;
    void cutToClipboard(const QVector<int>& itemIds) override;
    /// @throws QString also when an item would overlap another against the policy; then nothing changes
    void pasteFromClipboard(qint64 time) override;

    /// The colour of items that have none, by the position of their track, from 0. The colours repeat.
    static QColor trackColor(int position);

public Q_SLOTS:
    /// Inserts an empty track with both buttons right below the row, under the same parent, with a name that none of
    /// its siblings has. Does nothing for an invalid index.
    void onInsertTrack(const QModelIndex& index) override;
    /// Removes the row's track, see removeTrack(). Does nothing for an invalid index.
    void onRemoveTrack(const QModelIndex& index) override;
    /// What is done next becomes a step of its own.
    void finishGesture();

Q_SIGNALS:
    /// @param itemIds ascending; so with the other two
    void itemsAdded(const QVector<int>& itemIds);
    void itemsRemoved(const QVector<int>& itemIds);
    /// Times, track or anything that the items say.
    void itemsChanged(const QVector<int>& itemIds);

private:
    friend class ModelContents;
    friend class StepScope;

    Items makeItems(const Track& track, const std::vector<DocumentItem>& sources, QVector<int>* ids);
    void putNewItems(int trackId, Items&& items);
    int addNewTrack(int parentTrackId, int row, const QString& name, const QColor& color);
    struct NewNumbers;
    void addTree(Tracks&& tracks, const NewNumbers& numbers);
    void renumber(Track& added, const NewNumbers& numbers);
    void renumberSubtree(Track& added, const NewNumbers& numbers);
    static const Track* childNamed(const Track& parent, const QString& name);

    void performBatchBefore(StepKind kind, int itemId);
    bool defer(StepKind kind, const Item& item);
    bool deferRemoval(const Item& item);
    bool deferMove(const Item& item, const ItemTarget& target);
    void performBatch();
    void rearrange(const QSet<int>& trackIds, const std::vector<ItemTarget>& targets);
    void removeFromModel(const QVector<int>& itemIds);
    void dropCopies(const Track& from, const QSet<int>& itemIds, const Track* stillBelow);
    std::vector<int> positionsOf(int trackId, const QVector<int>& itemIds) const;
    static std::vector<int> positionsBehind(const Items& own, const std::vector<const Item*>& items);
    static void settle(Item& item, const Track& track);
    bool isBar(const ItemTimes& times) const;
    void retimeBars(const QVector<ItemTimes>& times);
    QHash<int, QVector<int>> retimeWholes(const QVector<ItemTimes>& times);
    QVector<int> piecesOf(int itemId) const { return piecesOfEach({itemId}).value(itemId); }
    QHash<int, QVector<int>> piecesOfEach(const QVector<int>& itemIds) const;
    bool arePieces(const QVector<int>& itemIds) const;
    QVector<int> withAllPieces(const QVector<int>& itemIds) const;
    ItemTimes timesOf(int itemId, const QVector<int>& pieces) const;
    template <typename Take>
    void forEachExtent(const Take& take) const;
    template <typename Body>
    void changeDetails(StepKind kind, const QVector<int>& itemIds, const Body& body);
    template <typename Body>
    void recordItem(Item& item, const Body& body);
    bool isRecorded(const Track& track, const Item& item) const;
    void moveUnrecorded(int itemId, int trackId, qint64 time);
    void moveInOrder(LabelledItem& item, int trackId, qint64 time);
    void labelCopies(const QVector<int>& itemIds);
    void recordPasted(int firstNewId);
    std::map<int, Items> takePasted(qint64 time);

    bool isFree(int trackId, qint64 start, int duration, const QVector<int>& ignoredIds) const;
    void refuseOverlapsOfPaste(qint64 time) const;
    const LabelledItem* labelledItem(int itemId) const;
    static QString newTrackName(const Track& parent);

    std::unique_ptr<StandardTimelineModelPrivate> d;
};

} // namespace VeskTimeline::Kit
