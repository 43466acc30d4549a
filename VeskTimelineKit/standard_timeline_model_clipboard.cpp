#include "standard_timeline_model_p.h"

#include <map>

namespace VeskTimeline::Kit {

void StandardTimelineModel::labelCopies(const QVector<int>& itemIds)
{
    QHash<int, int> wholes;
    for (std::size_t i = 0; i < m_clipboard.size(); ++i) {
        const LabelledItem* const source = labelledItem(itemIds.at(static_cast<qsizetype>(i)));
        if (!source)
            continue;
        const Item& copy = *m_clipboard[i];
        auto labelled = std::make_unique<LabelledItem>(source->plainLabel(), copy.startTime(), copy.duration(),
                                                       copy.color(), copy.isEditable());
        labelled->setDescription(source->description());
        labelled->setAttributes(source->attributes());
        labelled->setHasOwnColor(source->hasOwnColor());
        ItemPiece piece = source->piece();
        if (piece.isPiece()) {
            // The pieces that are copied together are an item of their own.
            if (!wholes.contains(piece.whole))
                wholes.insert(piece.whole, d->nextWhole++);
            piece.whole = wholes.value(piece.whole);
            labelled->setPiece(piece);
        }
        labelled->setIds(copy.id(), copy.parentTrackId());
        m_clipboard[i] = std::move(labelled);
    }
}

void StandardTimelineModel::copyToClipboard(const QVector<int>& itemIds)
{
    try {
        TimelineModel::copyToClipboard(itemIds);
    } catch (...) {
        labelCopies(itemIds);
        throw;
    }
    labelCopies(itemIds);
}

void StandardTimelineModel::cutToClipboard(const QVector<int>& itemIds)
{
    copyToClipboard(itemIds);
    StepScope scope(*d, StepKind::Cut);
    removeFromModel(itemIds);
}

// As the library will place the copies.
void StandardTimelineModel::refuseOverlapsOfPaste(qint64 time) const
{
    if (d->overlapPolicy == AllowOverlaps)
        return;
    constexpr int wholeSecond = 1000;
    const qint64 base = snapTime(time);
    for (const ItemPtr& copy : m_clipboard) {
        qint64 start = base + copy->startTime();
        qint64 duration = copy->duration();
        if (isSnapEnabled()) {
            start -= start % wholeSecond;
            duration -= duration % wholeSecond;
        }
        if (track(copy->parentTrackId())->isItemsBetween(start, start + duration, QVector<int>(), true, false, false))
            throw QStringLiteral("pasteFromClipboard: items would overlap on track %1").arg(copy->parentTrackId());
    }
}

void StandardTimelineModel::recordPasted(int firstNewId)
{
    std::map<int, Positions> positions;
    for (auto entry = m_itemCache.lower_bound(firstNewId); entry != m_itemCache.end(); ++entry) {
        Item& pasted = *entry->second;
        const Track& target = *track(pasted.parentTrackId());
        const auto* const labelled = dynamic_cast<const LabelledItem*>(&pasted);
        if (labelled && !labelled->hasOwnColor())
            pasted.setColor(ModelContents::colorOf(target));
        positions[target.id()].push_back(d->contents.positionOf(pasted));
        d->contents.noteAdded(pasted);
        d->step->noteItem(pasted);
    }
    for (auto& [trackId, places] : positions) {
        std::sort(places.begin(), places.end());
        d->record(std::make_unique<ItemsChange>(trackId, std::move(places)));
    }
}

// The first of the copies, up to one that the library has to deal with, as the library would add them.
std::map<int, Items> StandardTimelineModel::takePasted(qint64 time)
{
    constexpr int wholeSecond = 1000;
    const qint64 base = snapTime(time);
    std::map<int, Items> pasted;
    auto copy = m_clipboard.begin();
    for (; copy != m_clipboard.end(); ++copy) {
        auto* const labelled = dynamic_cast<LabelledItem*>(copy->get());
        const Track* const target = ModelContents::findTrack(*this, (*copy)->parentTrackId());
        if (!labelled || !target)
            break;
        labelled->setIds(nextFreeItemId(), target->id());
        labelled->_setStartTime(base + labelled->startTime());
        if (isSnapEnabled()) {
            labelled->_setStartTime(labelled->startTime() - labelled->startTime() % wholeSecond);
            labelled->_setDuration(labelled->duration() - labelled->duration() % wholeSecond);
        }
        settle(*labelled, *target);
        pasted[target->id()].push_back(std::move(*copy));
    }
    m_clipboard.erase(m_clipboard.begin(), copy);
    return pasted;
}

void StandardTimelineModel::pasteFromClipboard(qint64 time)
{
    refuseOverlapsOfPaste(time);
    StepScope scope(*d, StepKind::Paste);
    for (auto& [trackId, items] : takePasted(time)) {
        Track::sort(items);
        putNewItems(trackId, std::move(items));
    }
    if (m_clipboard.empty())
        return;
    const int firstNewId = m_currentItemId;
    try {
        TimelineModel::pasteFromClipboard(time);
    } catch (...) {
        recordPasted(firstNewId);
        throw;
    }
    recordPasted(firstNewId);
}

} // namespace VeskTimeline::Kit
