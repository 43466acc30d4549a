#pragma once

// Internal to the kit; not installed.

#include "id_set_p.h"
#include "standard_timeline_model_track_p.h"
#include "undo_item_blocks_p.h"

#include <VeskTimelineKit/labelled_item.h>

#include <QSet>

#include <map>

namespace VeskTimeline::Kit {

class StandardTimelineModel;

/// What an item says, apart from its times.
struct ItemDetails
{
    QString label = {};
    QString description = {};
    QMap<QString, QString> attributes = {};
    QColor color = {}; ///< invalid: that of the track
    bool isEditable = true;
    ItemPiece piece = {};

    friend bool operator==(const ItemDetails& left, const ItemDetails& right)
    {
        return left.label == right.label && left.description == right.description &&
               left.attributes == right.attributes && left.color == right.color &&
               left.isEditable == right.isEditable && left.piece == right.piece;
    }
};

/// All that can change about an item. The position among the items of its track tells the order of those that start at
/// the same time.
struct ItemState
{
    int trackId = 0;
    int position = 0;
    qint64 start = 0;
    int duration = 0;
    ItemDetails details = {};

    friend bool operator==(const ItemState& left, const ItemState& right)
    {
        return left.trackId == right.trackId && left.position == right.position && left.start == right.start &&
               left.duration == right.duration && left.details == right.details;
    }
};

struct TrackPlace
{
    int parentId = 0;
    int row = 0;
};

using Positions = std::vector<int>;

/// Where an item stands, and when it is.
struct ItemPlace
{
    int itemId = -1;
    int trackId = 0;
    int position = 0;
    qint64 start = 0;
    int duration = 0;

    friend bool operator==(const ItemPlace& left, const ItemPlace& right)
    {
        return left.itemId == right.itemId && left.trackId == right.trackId && left.position == right.position &&
               left.start == right.start && left.duration == right.duration;
    }
};

/// On which side of the items that start at the same time an item comes to stand; Where it is: nothing but its
/// duration changes.
enum class Side { WhereItIs, Before, Behind };

/// Where an item is to be, and when.
struct ItemTarget
{
    int itemId = -1;
    int trackId = 0;
    qint64 start = 0;
    int duration = 0;
    Side side = Side::Behind;
};

/// What ModelContents::rearrange() has done.
struct Rearranged
{
    std::vector<ItemPlace> former; ///< where all items were, by track and position
    QSet<int> trackIds;            ///< where they are now
    QVector<int> changed;          ///< ids of the items that are not as they were
};

/// Reads and changes what a model holds, keeping its caches in step, for the commands of its undo stack. Nothing is
/// recorded here.
///
/// Row signals go out at once; what happens to items is collected until announce(). Unknown ids throw as in the model.
class ModelContents
{
public:
    explicit ModelContents(StandardTimelineModel& model) : m_model(model) {}

    /// Null when there is none; look-ups that throw cost too much where many may fail.
    static const Item* findItem(const StandardTimelineModel& model, int itemId);
    static const Track* findTrack(const StandardTimelineModel& model, int trackId);

    /// For many changes that follow each other, as those of one step: they cost far less then. In between nobody may
    /// look at the items of a track but through this object; announce() and settle() end it, and so does any change of
    /// the track tree.
    void beginMany() { m_isMany = true; }
    /// Puts the items back in their tracks.
    void settle();

    ItemState itemState(int itemId) const;
    void setItemState(int itemId, const ItemState& state);
    static ItemDetails itemDetails(const Item& item);
    /// What an item says, and nothing else of it. @return what it said before
    ItemDetails swapItemDetails(int itemId, const ItemDetails& details);
    /// Sets the times and puts the item where it then belongs, behind those that start at the same time.
    void setTimes(Item& item, qint64 start, int duration);
    /// As TimelineModel::setItemStartTime(), for a track that is in order and without going through all of it.
    void setStartInOrder(Track& track, Item& item, qint64 start);
    int positionOf(const Item& item) const;
    /// Takes an item out of its track, and no more: the model goes on knowing it.
    ItemPtr takeItem(int trackId, int position);

    /// Takes items out of the model. @param positions in the track, ascending
    Items takeItems(int trackId, const Positions& positions);
    /// Puts items where they will stand then. @param positions ascending, one for each item
    void putItems(int trackId, const Positions& positions, Items&& items);

    /// Takes items of this model's own kind from one track to another. @param positions there, as for both above
    void moveItems(int fromId, const Positions& fromPositions, int toId, const Positions& toPositions);

    /// Does to many items of this model's own kind, each once, what setTimes() and moves to other tracks do one by one,
    /// and goes through their tracks once. Items that come to stand on the same side of others follow each other as
    /// they would one by one.
    /// @param trackIds where the items are
    /// @throws QString, with nothing changed, when an item is not there
    Rearranged rearrange(const QSet<int>& trackIds, const std::vector<ItemTarget>& targets);
    /// Puts items of this model's own kind where they stood among the others of their tracks, whose order is still the
    /// same.
    /// @param places by track and position; otherwise as rearrange()
    /// @return where the items have been until now, likewise
    std::vector<ItemPlace> placeItems(const QSet<int>& trackIds, const std::vector<ItemPlace>& places);

    TrackPlace placeOf(const Track& track) const;
    TrackPtr takeTrack(const TrackPlace& place);
    void putTrack(const TrackPlace& place, TrackPtr&& track);
    /// @param place where the track stands afterwards
    void moveTrack(int trackId, const TrackPlace& place);

    TrackDetails trackDetails(int trackId) const;
    void setTrackDetails(int trackId, const TrackDetails& details);

    QSet<int> copyItemIds(int trackId) const;
    void setCopyItemIds(int trackId, const QSet<int>& ids);

    static QColor colorOf(const Track& track);

    void noteAdded(const Item& item);
    /// @param formerTrackId the track that the item was on before, which may be the one it is on
    void noteChanged(const Item& item, int formerTrackId);
    /// Emits what has been collected.
    void announce();

private:
    struct PlacedItem;

    ItemBlocks* blocksOf(int trackId) const;
    int positionIn(const Items& items, const Item& item) const;
    void putItem(int trackId, int position, ItemPtr&& item);
    void moveToTrack(Item& item, int trackId, const ItemState& state);
    QModelIndex rowOf(const Track& track) const;
    /// Enters items into the look-up, too. @param items at least one
    void noteAdded(const Items& items, const Track& track);
    void noteRemoved(int itemId);
    /// Takes items out of the look-up, too.
    void noteRemoved(const Items& items);
    void touch(const Track& track);
    template <typename Wanted>
    std::vector<PlacedItem> findPlaced(const QSet<int>& trackIds, const std::vector<Wanted>& wanted) const;
    template <typename Wanted>
    QSet<int> tracksOf(const std::vector<Wanted>& wanted) const;
    void mergeMoved(const std::vector<ItemTarget>& targets, Items&& moved);
    QVector<int> changedOf(const std::vector<PlacedItem>& former) const;
    void noteMoved(const QVector<int>& itemIds, const QSet<int>& trackIds);
    static void settleAt(Item& item, const Track& track, qint64 start, int duration);
    void applyDetails(Item& item, const ItemDetails& details, const Track& track);
    void enterSubtree(Track& track);
    void leaveSubtree(Track& track);

    StandardTimelineModel& m_model;
    bool m_isMany = false;
    /// By track id; the tracks themselves are empty meanwhile.
    mutable std::map<int, ItemBlocks> m_blocks;
    /// Where an item was found last: the next one that is looked for is mostly beside it.
    mutable int m_lastPosition = 0;
    IdSet m_added;
    IdSet m_removed;
    IdSet m_changed;
    QSet<int> m_touchedTracks;
};

} // namespace VeskTimeline::Kit
