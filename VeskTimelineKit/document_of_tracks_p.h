#pragma once

// Internal to the kit; not installed.

#include <VeskTimeline/track.h>
#include <VeskTimelineKit/document.h>
#include <VeskTimelineKit/labelled_item.h>

#include <QSet>

#include <functional>

namespace VeskTimeline::Kit {

/// Where in a document an item of a model has gone.
struct DocumentPlace
{
    std::size_t track = 0; ///< position of the track
    std::size_t item = 0;  ///< position among the track's items
    int piece = 0;         ///< how many pieces of the same item are before it
};

using PlaceSink = std::function<void(const Item& item, const DocumentPlace& place)>;

/// The items of a track as a document has them: pieces that follow each other without a gap are one item.
class PieceJoiner
{
public:
    void reserve(std::size_t count) { m_items.reserve(count); }
    /// @return where the item is; the track is left open
    DocumentPlace add(const Item& item);
    std::vector<DocumentItem> items() && { return std::move(m_items); }

private:
    struct Run
    {
        std::size_t position = 0;
        int number = 0;
        int joined = 0;
    };

    bool continues(const ItemPiece& piece, const DocumentItem& next) const;

    QHash<int, Run> m_runs;
    std::vector<DocumentItem> m_items;
};

/// Puts the tracks below a root into a document, see StandardTimelineModel::document(), in as many goes as one likes;
/// in between the tracks and items must stay as they are.
class DocumentBuilder
{
public:
    /// @param root must outlive this object. @param sink told of every item, unless it is empty
    explicit DocumentBuilder(const Track& root, PlaceSink sink = {});

    /// Goes on for about so many items and tracks. @return whether all is done
    bool advance(int count);
    /// Once all is done.
    Document document() && { return std::move(m_document); }

private:
    struct Level
    {
        const Track* parent = nullptr;
        QStringList path;
        std::size_t next = 0; ///< of the parent's tracks
        QSet<QString> names;
    };

    void openNextTrack();
    int addItems(int most);
    void closeTrack();

    PlaceSink m_sink;
    Document m_document;
    std::vector<Level> m_levels;
    const Track* m_track = nullptr; ///< whose items are being added
    std::size_t m_nextItem = 0;
    PieceJoiner m_joiner;
};

/// An item as a document has it; its colour only if it is its own.
DocumentItem documentItemOf(const Item& item);

/// The tracks below a root as a document, see StandardTimelineModel::document().
/// @param sink told of every item, unless it is empty
Document documentOfTracks(const Track& root, const PlaceSink& sink = {});

} // namespace VeskTimeline::Kit
