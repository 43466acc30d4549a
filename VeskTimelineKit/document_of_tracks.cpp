#include "document_of_tracks_p.h"
#include "free_name_p.h"
#include "kit_tr_p.h"
#include "standard_timeline_model_track_p.h"

#include <VeskTimelineKit/labelled_item.h>

#include <algorithm>
#include <limits>

namespace VeskTimeline::Kit {

namespace {

bool saysTheSame(const DocumentItem& left, const DocumentItem& right)
{
    return left.label == right.label && left.color == right.color && left.isEditable == right.isEditable &&
           left.description == right.description && left.attributes == right.attributes;
}

} // namespace

DocumentPlace PieceJoiner::add(const Item& item)
{
    const auto* const labelled = dynamic_cast<const LabelledItem*>(&item);
    const ItemPiece piece = labelled ? labelled->piece() : ItemPiece();
    DocumentItem next = documentItemOf(item);
    if (piece.isPiece() && continues(piece, next)) {
        Run& run = m_runs[piece.whole];
        m_items[run.position].duration += next.duration;
        run.number = piece.number;
        return {0, run.position, ++run.joined};
    }
    if (piece.isPiece())
        m_runs[piece.whole] = {m_items.size(), piece.number};
    m_items.push_back(std::move(next));
    return {0, m_items.size() - 1, 0};
}

bool PieceJoiner::continues(const ItemPiece& piece, const DocumentItem& next) const
{
    const auto run = m_runs.constFind(piece.whole);
    if (run == m_runs.cend() || piece.number != run->number + 1)
        return false;
    const DocumentItem& before = m_items[run->position];
    return before.end() == next.start && saysTheSame(before, next);
}

DocumentBuilder::DocumentBuilder(const Track& root, PlaceSink sink) : m_sink(std::move(sink))
{
    m_levels.push_back({&root, {}, 0, {}});
}

bool DocumentBuilder::advance(int count)
{
    while (count > 0 && !m_levels.empty()) {
        if (!m_track)
            openNextTrack();
        if (m_track)
            count -= addItems(count);
        else
            --count;
    }
    return m_levels.empty();
}

// Leaves no track open when the innermost level has no more.
void DocumentBuilder::openNextTrack()
{
    Level& level = m_levels.back();
    if (level.next == level.parent->tracks().size()) {
        m_levels.pop_back();
        return;
    }
    m_track = level.parent->tracks()[level.next++].get();
    m_nextItem = 0;
    m_joiner = PieceJoiner();
    m_joiner.reserve(m_track->items().size());
}

int DocumentBuilder::addItems(int most)
{
    const std::size_t position = m_document.tracks().size();
    const std::size_t first = m_nextItem;
    const std::size_t end = std::min(m_track->items().size(), first + static_cast<std::size_t>(most));
    for (; m_nextItem < end; ++m_nextItem) {
        const Item& item = *m_track->items()[m_nextItem];
        DocumentPlace place = m_joiner.add(item);
        place.track = position;
        if (m_sink)
            m_sink(item, place);
    }
    if (m_nextItem == m_track->items().size())
        closeTrack();
    return static_cast<int>(end - first) + 1;
}

void DocumentBuilder::closeTrack()
{
    Level& level = m_levels.back();
    const QString text = m_track->text();
    const QString name = freeName(text, level.names);
    level.names.insert(name);
    if (name != text)
        m_document.addWarning(Tr::tr("There are several tracks “%1” side by side: one is now “%2”").arg(text, name));
    const QStringList path = level.path + QStringList(name);
    DocumentTrack& target = m_document.track(path);
    target.items = std::move(m_joiner).items();
    if (const auto* const standard = dynamic_cast<const StandardTrack*>(m_track))
        target.color = standard->details().color;
    m_levels.push_back({m_track, path, 0, {}});
    m_track = nullptr;
}

DocumentItem documentItemOf(const Item& item)
{
    DocumentItem result{{}, item.startTime(), item.duration(), item.color(), item.isEditable()};
    if (const auto* const labelled = dynamic_cast<const LabelledItem*>(&item)) {
        result.label = labelled->plainLabel();
        result.description = labelled->description();
        result.attributes = labelled->attributes();
        if (!labelled->hasOwnColor())
            result.color = QColor();
    }
    return result;
}

Document documentOfTracks(const Track& root, const PlaceSink& sink)
{
    DocumentBuilder builder(root, sink);
    while (!builder.advance(std::numeric_limits<int>::max())) {
    }
    return std::move(builder).document();
}

} // namespace VeskTimeline::Kit
