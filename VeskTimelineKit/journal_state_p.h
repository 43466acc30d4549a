#pragma once

// Internal to the kit; not installed.

#include "document_of_tracks_p.h"
#include "journal_records_p.h"

#include <QMap>
#include <QSet>

#include <functional>
#include <memory>
#include <unordered_map>

namespace VeskTimeline::Kit {

/// What a model held, put together again from the records of a journal.
///
/// Records that make no sense, as those of a damaged journal, do no harm: places are as near as possible to those that
/// are wanted, and an item without a track gets one.
class JournalState
{
public:
    JournalState();
    ~JournalState();
    Q_DISABLE_COPY_MOVE(JournalState)

    /// Makes a change.
    void apply(JournalDelta&& delta);

    /// Calls a function with each record that makes this state out of nothing, in order.
    void forEachRecord(const std::function<void(const QByteArray& json)>& use) const;

    /// The document, as StandardTimelineModel::document(); nothing is left here.
    /// @param copies set to the copy items of the tracks that have any, by the ids that
    /// StandardTimelineModel::setDocument() gives to tracks and items
    Document takeDocument(QMap<int, QSet<int>>& copies);

private:
    struct TrackNode
    {
        QString name;
        QColor color;
        int parentId = -1; ///< -1: in nobody's list
        std::vector<int> children;
        std::vector<int> items;
        QVector<int> copies;
    };
    struct ItemNode
    {
        std::unique_ptr<LabelledItem> item;
        int trackId = -1; ///< -1: in no track's list
    };

    TrackNode& node(int trackId);
    void detachItems(const JournalDelta& delta);
    void detachItemsOf(int trackId, const QSet<int>& itemIds);
    void detachTrack(int trackId);
    void destroySubtree(int trackId);
    void attachTracks(std::vector<JournalTrack>&& tracks);
    bool isBelow(int trackId, int otherId) const;
    void putItems(std::vector<JournalItem>&& items);
    void putTrackItems(int trackId, const std::vector<std::pair<int, int>>& places);
    void recordSubtree(int trackId, int row, const std::function<void(const QByteArray& json)>& use) const;
    void build(Track& target, int trackId, int level);
    QMap<int, QSet<int>> newCopies(const Document& document) const;

    std::unordered_map<int, TrackNode> m_tracks;
    std::unordered_map<int, ItemNode> m_items;
    /// Of the items that are copied somewhere, once the document is made.
    std::unordered_map<int, std::pair<const Item*, DocumentPlace>> m_places;
};

} // namespace VeskTimeline::Kit
