#include "document_of_tracks_p.h"
#include "kit_tr_p.h"
#include "standard_timeline_model_track_p.h"

#include <VeskTimelineKit/labelled_item.h>

#include <QSet>

namespace VeskTimeline::Kit {

namespace {

bool saysTheSame(const DocumentItem& left, const DocumentItem& right)
{
    return left.label == right.label && left.color == right.color && left.isEditable == right.isEditable &&
           left.description == right.description && left.attributes == right.attributes;
}

/// The items of a track as a document has them: pieces that follow each other without a gap are one item.
class PieceJoiner
{
public:
    /// @return where the item is; the track is left open
    DocumentPlace add(const Item& item)
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

    std::vector<DocumentItem> items() && { return std::move(m_items); }

private:
    struct Run
    {
        std::size_t position = 0;
        int number = 0;
        int joined = 0;
    };

    bool continues(const ItemPiece& piece, const DocumentItem& next) const
    {
        const auto run = m_runs.constFind(piece.whole);
        if (run == m_runs.cend() || piece.number != run->number + 1)
            return false;
        const DocumentItem& before = m_items[run->position];
        return before.end() == next.start && saysTheSame(before, next);
    }

    QHash<int, Run> m_runs;
    std::vector<DocumentItem> m_items;
};

QString freeName(const QString& name, const QSet<QString>& taken)
{
    QString free = name;
    for (int number = 2; taken.contains(free); ++number)
        free = QStringLiteral("%1 (%2)").arg(name).arg(number);
    return free;
}

void addSubtree(Document& document, const Track& parent, const QStringList& parentPath, const PlaceSink& sink)
{
    QSet<QString> names;
    for (const TrackPtr& track : parent.tracks()) {
        const QString name = freeName(track->text(), names);
        names.insert(name);
        if (name != track->text())
            document.addWarning(
                Tr::tr("There are several tracks “%1” side by side: one is now “%2”").arg(track->text(), name));
        const QStringList path = parentPath + QStringList(name);
        PieceJoiner joiner;
        const std::size_t position = document.tracks().size();
        for (const ItemPtr& item : track->items()) {
            DocumentPlace place = joiner.add(*item);
            place.track = position;
            if (sink)
                sink(*item, place);
        }
        DocumentTrack& target = document.track(path);
        target.items = std::move(joiner).items();
        if (const auto* const standard = dynamic_cast<const StandardTrack*>(track.get()))
            target.color = standard->details().color;
        addSubtree(document, *track, path, sink);
    }
}

} // namespace

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
    Document document;
    addSubtree(document, root, {}, sink);
    return document;
}

} // namespace VeskTimeline::Kit
