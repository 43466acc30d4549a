#pragma once

// Internal to the kit; not installed.

#include "undo_contents_p.h"

namespace VeskTimeline::Kit {

/// One change of a model's contents that can be taken back and made again. It holds the side of the change that the
/// model is not at; both ways are the same swap.
class Change
{
public:
    Change() = default;
    Change(const Change&) = delete;
    Change& operator=(const Change&) = delete;
    virtual ~Change();

    virtual void swap(ModelContents& contents) = 0;
    /// The item whose state is all that this changes; -1 for other changes.
    virtual int changedItem() const { return -1; }
    virtual bool isOfOneItem() const { return changedItem() != -1; }
    /// Takes over what has been changed right after this, when both concern the very same. @return false: it cannot
    virtual bool absorb(const Change& /*later*/) { return false; }
    /// Whether the model would be the same on the other side.
    virtual bool isNothing(const ModelContents& /*contents*/) const { return false; }
};

class ItemChange : public Change
{
public:
    ItemChange(int itemId, ItemState other) : m_itemId(itemId), m_other(std::move(other)) {}

    void swap(ModelContents& contents) override;
    int changedItem() const override { return m_itemId; }
    bool isNothing(const ModelContents& contents) const override { return contents.itemState(m_itemId) == m_other; }

private:
    int m_itemId;
    ItemState m_other;
};

/// What several items say.
class ItemDetailsChange : public Change
{
public:
    /// @param others what they do not say, by item id
    explicit ItemDetailsChange(std::vector<std::pair<int, ItemDetails>> others) : m_others(std::move(others)) {}

    void swap(ModelContents& contents) override;

private:
    std::vector<std::pair<int, ItemDetails>> m_others;
};

/// Items of one track that are there on one side only; while they are not, the change owns them.
class ItemsChange : public Change
{
public:
    /// @param items empty for items that are in the model
    ItemsChange(int trackId, Positions positions, Items items = {})
        : m_trackId(trackId), m_positions(std::move(positions)), m_items(std::move(items))
    {
    }
    ~ItemsChange() override;

    void swap(ModelContents& contents) override;
    bool isOfOneItem() const override { return m_positions.size() == 1; }

private:
    int m_trackId;
    Positions m_positions;
    Items m_items;
};

/// Items that are on one of two tracks.
class ItemsMove : public Change
{
public:
    /// @param otherTrackId where they are not; the positions are those that they have, or would have, on each
    ItemsMove(int trackId, Positions positions, int otherTrackId, Positions otherPositions)
        : m_trackId(trackId),
          m_positions(std::move(positions)),
          m_otherTrackId(otherTrackId),
          m_otherPositions(std::move(otherPositions))
    {
    }

    void swap(ModelContents& contents) override;

private:
    int m_trackId;
    Positions m_positions;
    int m_otherTrackId;
    Positions m_otherPositions;
};

/// Many items that are elsewhere, or at other times, on the other side.
class ItemsPlacement : public Change
{
public:
    /// @param others as ModelContents::placeItems() takes them
    ItemsPlacement(QSet<int> trackIds, std::vector<ItemPlace> others)
        : m_trackIds(std::move(trackIds)), m_others(std::move(others))
    {
    }

    void swap(ModelContents& contents) override;
    /// A key that is held moves the same items again and again.
    bool absorb(const Change& later) override;

private:
    QVector<int> itemIds() const;

    QSet<int> m_trackIds; ///< where the items are
    std::vector<ItemPlace> m_others;
};

/// A track, with all that is in it, that is there on one side only; while it is not, the change owns it.
class TrackChange : public Change
{
public:
    /// @param track null for one that is in the model
    explicit TrackChange(const TrackPlace& place, TrackPtr track = {}) : m_place(place), m_track(std::move(track)) {}
    ~TrackChange() override;

    void swap(ModelContents& contents) override;

private:
    TrackPlace m_place;
    TrackPtr m_track;
};

class TrackMove : public Change
{
public:
    TrackMove(int trackId, const TrackPlace& from, const TrackPlace& other)
        : m_trackId(trackId), m_here(from), m_other(other)
    {
    }

    void swap(ModelContents& contents) override;

private:
    int m_trackId;
    TrackPlace m_here;
    TrackPlace m_other;
};

class TrackDetailsChange : public Change
{
public:
    TrackDetailsChange(int trackId, TrackDetails other) : m_trackId(trackId), m_other(std::move(other)) {}

    void swap(ModelContents& contents) override;

private:
    int m_trackId;
    TrackDetails m_other;
};

class CopyItemsChange : public Change
{
public:
    CopyItemsChange(int trackId, QSet<int> other) : m_trackId(trackId), m_other(std::move(other)) {}

    void swap(ModelContents& contents) override;

private:
    int m_trackId;
    QSet<int> m_other;
};

} // namespace VeskTimeline::Kit
