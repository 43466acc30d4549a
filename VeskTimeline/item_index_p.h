#pragma once

// Internal to the library; not installed.

#include <VeskTimeline/track.h>

#include <vector>

namespace VeskTimeline {

/// The times of a track's items, for finding those of a stretch of time without looking at all of them.
///
/// Start and end times, and the ids, stand in flat arrays, position by position as in the track's list, so that a
/// search follows no pointers. The starts are searched by halving. The ends are in no order; above them stand the
/// latest end of each `fanOut` items, of each `fanOut` of these blocks, and so on, so that the next item that lasts
/// until a time is found by skipping blocks. An open-ended item lasts for ever.
///
/// Invariant, while matches() and not at rest: starts, ends and ids are those of the items. isOrdered() says whether
/// the starts ascend and no item ends before it starts; without that only going through the list answers a question,
/// and only isOrdered(), matches() and build() may be called.
///
/// The track changes the list through itself and tells the index, which then costs no more than the change of the list
/// does. What happens behind its back is found out by matches(): another size or place of the list, a change of the
/// times of an item, and the destruction of one, which the item's ItemIndexMark counts. That leaves whoever keeps a
/// reference to the list and exchanges or reorders items through it; Track::items() asks for being called again.
///
/// Many changes in a row, as of a large selection, would each move the rest of the flat arrays, too, and nobody looks
/// at these in between. So after a while the index rests: it only keeps knowing that the list is in order, which is
/// enough for finding an item's position in the list itself, and is built anew for the next question.
class VESKTIMELINE_EXPORT ItemIndex
{
public:
    /// Lists that are shorter have no index: going through them is as quick.
    static constexpr std::size_t leastItems = 64;

    /// The track's index, made or brought up to date; null where going through the list is the way to go.
    static const ItemIndex* of(const Track& track) { return track.index(); }

    ItemIndex();

    /// Whether nothing has happened to the list since it was indexed.
    bool matches(const Items& items) const;
    bool isOrdered() const { return m_isOrdered; }
    /// Whether only positions in the list may be asked for.
    bool isResting() const { return m_isResting; }
    /// Someone looks at the times: changes are no longer in a row.
    void noteQuestion() { m_movedTimes = 0; }
    /// Indexes the list anew.
    void build(const Items& items);

    /// Another one after each change and in each index, never 0.
    quint64 version() const { return m_version; }
    std::size_t size() const { return m_size; }
    /// The first position whose item starts at the time or later; size() for none.
    std::size_t firstFrom(qint64 time) const;
    /// The first position whose item starts after the time; size() for none.
    std::size_t firstBehind(qint64 time) const;
    /// The first position from `position` to before `end` whose item ends at the time or later; `end` for none.
    std::size_t firstReaching(qint64 time, std::size_t position, std::size_t end) const;
    /// Times of the item at a position; the last time there is for an open-ended one.
    qint64 startAt(std::size_t position) const { return m_starts[position]; }
    qint64 endAt(std::size_t position) const { return m_ends[position]; }
    int idAt(std::size_t position) const { return m_ids[position]; }
    /// The first position of the block of items that a position lies in, and the latest end among these.
    static std::size_t blockBegin(std::size_t position) { return position / fanOut * fanOut; }
    qint64 latestEndInBlock(std::size_t position) const;
    /// Whether any of the items may be of that kind. One that has been removed may still count.
    bool has(Item::Culling culling) const { return (m_cullings & bitOf(culling)) != 0; }

    // These are answered by a resting index, too.

    /// The position behind the items that start at the time or earlier.
    std::size_t positionBehind(const Items& items, qint64 startTime) const;
    /// The item's position; size() when it is not in the list.
    std::size_t positionOf(const Items& items, const Item& item) const;
    /// Where the item at a position stands after it got another start time and the list was sorted, equals kept in
    /// place.
    std::size_t positionAfterMove(const Items& items, std::size_t position, qint64 startTime) const;

    // To be called after the list was changed in the same way.

    void noteInsertion(const Items& items, std::size_t position);
    void noteRemoval(const Items& items, std::size_t position, Item& removed);
    void noteMove(const Items& items, std::size_t from, std::size_t to);
    void noteDuration(const Items& items, std::size_t position);

private:
    using Times = std::vector<qint64>;

    static constexpr std::size_t fanOut = 32;

    static unsigned bitOf(Item::Culling culling) { return 1U << static_cast<unsigned>(culling); }

    quint32 changeCount() const;
    void summarise() const;
    void summarise(std::size_t first, std::size_t last) const;
    void summariseBlocks(std::size_t level, std::size_t first, std::size_t last) const;
    void noteChange(std::size_t first, std::size_t last);
    bool isKept(std::size_t movedTimes);
    bool isRight(const Items& items) const;

    Times m_starts;
    Times m_ends;
    std::vector<int> m_ids;
    /// Latest ends: of `fanOut` items each, of `fanOut` of these each, and so on.
    mutable std::vector<Times> m_latestEnds;
    /// The latest ends count for the items before this position; those of later ones are made when they are needed.
    mutable std::size_t m_summarisedItems = 0;
    const ItemPtr* m_place = nullptr;
    std::size_t m_size = 0;
    /// How many times have been moved in the arrays since someone looked at them.
    std::size_t m_movedTimes = 0;
    bool m_isResting = false;
    /// Names the counter of what happens to the items behind the track's back; others may use it too.
    quint16 m_slot;
    quint32 m_changeCount = 0;
    quint64 m_version;
    bool m_isOrdered = true;
    unsigned m_cullings = 0;
};

} // namespace VeskTimeline
