#include "standard_timeline_model_p.h"

#include <algorithm>
#include <numeric>

namespace VeskTimeline::Kit {

namespace {

// Whole seconds, so that pieces still meet where times are cut to them.
constexpr qint64 pieceLength = DocumentItem::longestBar / 1000 * 1000;

DocumentItem documentItem(const Item& item)
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

bool saysTheSame(const DocumentItem& left, const DocumentItem& right)
{
    return left.label == right.label && left.color == right.color && left.isEditable == right.isEditable &&
           left.description == right.description && left.attributes == right.attributes;
}

/// The items of a track as a document has them: pieces that follow each other without a gap are one item.
class PieceJoiner
{
public:
    void add(const Item& item)
    {
        const auto* const labelled = dynamic_cast<const LabelledItem*>(&item);
        const ItemPiece piece = labelled ? labelled->piece() : ItemPiece();
        DocumentItem next = documentItem(item);
        if (piece.isPiece() && continues(piece, next)) {
            Run& run = m_runs[piece.whole];
            m_items[run.position].duration += next.duration;
            run.number = piece.number;
            return;
        }
        if (piece.isPiece())
            m_runs[piece.whole] = {m_items.size(), piece.number};
        m_items.push_back(std::move(next));
    }

    std::vector<DocumentItem> items() && { return std::move(m_items); }

private:
    struct Run
    {
        std::size_t position = 0;
        int number = 0;
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

void addSubtree(Document& document, const Track& parent, const QStringList& parentPath)
{
    QSet<QString> names;
    for (const TrackPtr& track : parent.tracks()) {
        const QString name = freeName(track->text(), names);
        names.insert(name);
        if (name != track->text())
            document.addWarning(StandardTimelineModel::tr("There are several tracks “%1” side by side: one is now “%2”")
                                    .arg(track->text(), name));
        const QStringList path = parentPath + QStringList(name);
        PieceJoiner joiner;
        for (const ItemPtr& item : track->items())
            joiner.add(*item);
        DocumentTrack& target = document.track(path);
        target.items = std::move(joiner).items();
        if (const auto* const standard = dynamic_cast<const StandardTrack*>(track.get()))
            target.color = standard->details().color;
        addSubtree(document, *track, path);
    }
}

} // namespace

std::unique_ptr<LabelledItem> StandardTimelineModel::makeItem(const Track& track, const DocumentItem& source)
{
    const QColor color = source.color.isValid() ? source.color : ModelContents::colorOf(track);
    const auto duration = static_cast<int>(std::max<qint64>(source.duration, DocumentItem::openEnded));
    auto item = std::make_unique<LabelledItem>(source.label, source.start, duration, color, source.isEditable);
    item->setHasOwnColor(source.color.isValid());
    item->setDescription(source.description);
    item->setAttributes(source.attributes);
    return item;
}

void StandardTimelineModel::makePieces(const Track& track, const DocumentItem& source, Items& items)
{
    if (source.duration <= DocumentItem::longestBar) {
        items.push_back(makeItem(track, source));
        return;
    }
    const auto count = static_cast<int>((source.duration - 1) / pieceLength + 1);
    const int whole = d->nextWhole++;
    DocumentItem part = source;
    for (int number = 1; number <= count; ++number) {
        part.duration = std::min(pieceLength, source.end() - part.start);
        auto piece = makeItem(track, part);
        piece->setPiece({whole, number, count});
        items.push_back(std::move(piece));
        part.start += part.duration;
    }
}

// Sorted by start time, with ids in that order; `ids`, if not null, gets them in the order of the sources.
Items StandardTimelineModel::makeItems(const Track& track, const std::vector<DocumentItem>& sources, QVector<int>* ids)
{
    Items unsorted;
    unsorted.reserve(sources.size());
    for (const DocumentItem& source : sources)
        makePieces(track, source, unsorted);

    std::vector<std::size_t> order(unsorted.size());
    std::iota(order.begin(), order.end(), 0);
    std::stable_sort(order.begin(), order.end(), [&unsorted](std::size_t left, std::size_t right) {
        return unsorted[left]->startTime() < unsorted[right]->startTime();
    });
    Items items;
    items.reserve(order.size());
    if (ids)
        ids->resize(static_cast<qsizetype>(order.size()));
    for (const std::size_t index : order) {
        const int id = nextFreeItemId();
        static_cast<LabelledItem&>(*unsorted[index]).setIds(id, track.id());
        if (ids)
            (*ids)[static_cast<qsizetype>(index)] = id;
        items.push_back(std::move(unsorted[index]));
    }
    return items;
}

void StandardTimelineModel::setDocument(const Document& document)
{
    d->gesture.finish();
    d->stack.clear();
    beginResetModel();
    TimelineModel::clear();
    m_clipboard.clear();
    QHash<QStringList, Track*> tracks;
    for (const DocumentTrack& source : document.tracks()) {
        const QStringList parentPath = source.path.first(source.path.size() - 1);
        Track* const parentTrack = parentPath.isEmpty() ? rootTrack() : tracks.value(parentPath);
        auto added = std::make_unique<StandardTrack>(TrackDetails{source.path.last(), source.color}, nextFreeTrackId(),
                                                     parentTrack->id());
        Track* const track = added.get();
        parentTrack->tracks().push_back(std::move(added));
        m_trackCache[track->id()] = track;
        tracks.insert(source.path, track);
        track->items() = makeItems(*track, source.items, nullptr);
        for (const ItemPtr& item : track->items())
            m_itemCache[item->id()] = item.get();
    }
    endResetModel();
}

int StandardTimelineModel::childNamed(int parentTrackId, const QString& name, const QColor& color)
{
    const Tracks& children = track(parentTrackId)->tracks();
    const auto found = std::find_if(children.begin(), children.end(),
                                    [&name](const TrackPtr& child) { return child->text() == name; });
    return found != children.end() ? (*found)->id() : addNewTrack(parentTrackId, -1, name, color);
}

void StandardTimelineModel::addDocument(const Document& document)
{
    StepScope scope(*d, StepKind::Other, tr("Add %n tracks", nullptr, static_cast<int>(document.tracks().size())));
    QHash<QStringList, int> trackIds{{QStringList(), m_rootTrack.id()}};
    for (const DocumentTrack& source : document.tracks()) {
        const int parentId = trackIds.value(source.path.first(source.path.size() - 1));
        const int trackId = childNamed(parentId, source.path.last(), source.color);
        trackIds.insert(source.path, trackId);
        putNewItems(trackId, makeItems(*track(trackId), source.items, nullptr));
    }
}

Document StandardTimelineModel::document() const
{
    Document document;
    addSubtree(document, m_rootTrack, {});
    return document;
}

} // namespace VeskTimeline::Kit
