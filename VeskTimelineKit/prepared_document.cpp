#include "item_maker_p.h"
#include "model_tree_p.h"
#include "read_progress_p.h"
#include "standard_timeline_model_track_p.h"

#include <VeskTimelineKit/labelled_item.h>
#include <VeskTimelineKit/prepared_document.h>

#include <QSet>

#include <algorithm>

namespace VeskTimeline::Kit {

namespace {

class TreeMaker
{
public:
    TreeMaker(const Document& document, const ReadOptions& options)
        : m_document(document), m_progress(options), m_total(std::max(document.itemCount(), 1))
    {
    }

    std::unique_ptr<ModelTree> make()
    {
        for (const DocumentTrack& source : m_document.tracks())
            addItems(addTrack(source), source);
        return std::move(m_tree);
    }

private:
    Track& addTrack(const DocumentTrack& source)
    {
        constexpr int rootId = 0;
        const QStringList parentPath = source.path.first(source.path.size() - 1);
        Track* const parent = m_tracks.value(parentPath);
        Tracks& siblings = parent ? parent->tracks() : m_tree->tracks;
        Track* const track =
            siblings
                .emplace_back(std::make_unique<StandardTrack>(TrackDetails{source.path.last(), source.color},
                                                              m_tree->nextTrackId++, parent ? parent->id() : rootId))
                .get();
        m_tree->trackCache.emplace_hint(m_tree->trackCache.end(), track->id(), track);
        m_tracks.insert(source.path, track);
        return *track;
    }

    void addItems(Track& track, const DocumentTrack& source)
    {
        track.items() = ItemMaker(m_tree->nextItemId, m_tree->nextWhole).make(track, source.items, nullptr, [this] {
            m_progress.reportSometimes(std::min(m_tree->nextItemId / m_total, 1.0));
        });
        for (const ItemPtr& item : track.items())
            m_tree->itemCache.emplace_hint(m_tree->itemCache.end(), item->id(), item.get());
        if (track.hasItems())
            m_tree->extents.insert(track.id(), extentOf(track.items()));
    }

    const Document& m_document;
    ReadProgress m_progress;
    // Of the items in the document; pieces of long items make more.
    double m_total;
    std::unique_ptr<ModelTree> m_tree = std::make_unique<ModelTree>();
    QHash<QStringList, Track*> m_tracks;
};

} // namespace

TrackExtent extentOf(const Items& items)
{
    TrackExtent extent{{items.front()->startTime(), items.front()->startTime()}, 0};
    QSet<int> longItems;
    for (const ItemPtr& item : items) {
        extent.span.end = std::max(extent.span.end, item->startTime() + std::max(item->duration(), 0));
        const auto* const labelled = dynamic_cast<const LabelledItem*>(item.get());
        if (labelled && labelled->piece().isPiece())
            longItems.insert(labelled->piece().whole);
        else
            ++extent.documentItems;
    }
    extent.documentItems += static_cast<int>(longItems.size());
    return extent;
}

std::unique_ptr<ModelTree> makeTree(const Document& document, const ReadOptions& options)
{
    return TreeMaker(document, options).make();
}

PreparedDocument::PreparedDocument(std::unique_ptr<ModelTree> tree) : m_tree(std::move(tree))
{
}

PreparedDocument::PreparedDocument(const Document& document) : m_tree(makeTree(document, {}))
{
}

PreparedDocument::PreparedDocument(PreparedDocument&& other) noexcept = default;

PreparedDocument& PreparedDocument::operator=(PreparedDocument&& other) noexcept = default;

PreparedDocument::~PreparedDocument() = default;

std::optional<PreparedDocument> PreparedDocument::prepare(const Document& document,
                                                          const std::function<bool(double)>& progress)
{
    ReadOptions options;
    options.progress = progress;
    try {
        return PreparedDocument(makeTree(document, options));
    } catch (const ReadCancelled&) {
        return std::nullopt;
    }
}

} // namespace VeskTimeline::Kit
