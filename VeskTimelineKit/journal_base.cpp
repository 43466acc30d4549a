#include "journal_base_p.h"

namespace VeskTimeline::Kit {

JournalBaseLines::JournalBaseLines(std::shared_ptr<const JournalBase> base) : m_base(std::move(base))
{
}

QByteArray JournalBaseLines::next()
{
    constexpr qsizetype enough = 256 * 1024;
    QByteArray lines;
    while (!m_isDone && lines.size() < enough) {
        m_isDone = !(m_base->document ? addNextOfDocument(lines) : addNextOfEverything(lines));
        if (m_isDone)
            lines += endLine();
    }
    return lines;
}

bool JournalBaseLines::addNextOfDocument(QByteArray& lines)
{
    if (m_bar == m_bars.size()) {
        if (m_track == m_base->document->tracks().size())
            return false;
        enterTrack(lines);
        return true;
    }
    const DocumentBar& bar = m_bars[m_bar++];
    JournalItem item{m_nextItemId++, static_cast<int>(m_track), JournalItem::last, bar.piece,
                     m_base->document->tracks()[m_track - 1].items[bar.item]};
    item.content.start = bar.start;
    item.content.duration = bar.duration;
    lines += journalLine(itemRecord(item));
    return true;
}

// The ids are those that the model gives, see StandardTimelineModel::setDocument().
void JournalBaseLines::enterTrack(QByteArray& lines)
{
    const DocumentTrack& track = m_base->document->tracks()[m_track++];
    const int id = static_cast<int>(m_track);
    const int parentId = m_trackIds.value(track.path.first(track.path.size() - 1));
    m_trackIds.insert(track.path, id);
    lines += journalLine(trackRecord({id, parentId, m_childCounts[parentId]++, track.path.last(), track.color}));
    m_bars = barsOf(track.items, m_nextWhole);
    m_bar = 0;
}

bool JournalBaseLines::addNextOfEverything(QByteArray& lines)
{
    const JournalDelta& all = m_base->everything;
    if (m_track < all.tracks.size())
        lines += journalLine(trackRecord(all.tracks[m_track++]));
    else if (m_item < all.items.size())
        lines += journalLine(itemRecord(all.items[m_item++]));
    else if (m_copies < all.copies.size())
        lines += journalLine(copiesRecord(all.copies[m_copies++]));
    else
        return false;
    return true;
}

} // namespace VeskTimeline::Kit
