#include "background_disposal_p.h"
#include "kit_tr_p.h"
#include "quoted_text_p.h"

#include <VeskTimelineKit/document.h>
#include <VeskTimelineKit/result.h>

#include <algorithm>
#include <utility>

namespace VeskTimeline::Kit {

// Names of files may hold anything; what is told of them is one line, and does nothing to terminals.
QString FileError::text() const
{
    const QString name = withoutControls(file);
    return line > 0 ? QStringLiteral("%1:%2: %3").arg(name, QString::number(line), reason)
                    : QStringLiteral("%1: %2").arg(name, reason);
}

int Document::itemCount() const
{
    std::size_t count = 0;
    for (const DocumentTrack& track : m_tracks)
        count += track.items.size();
    return static_cast<int>(count);
}

std::optional<TimeSpan> Document::span() const
{
    std::optional<TimeSpan> span;
    for (const DocumentTrack& track : m_tracks) {
        for (const DocumentItem& item : track.items) {
            if (!span)
                span = TimeSpan{item.start, item.end()};
            span->start = std::min(span->start, item.start);
            span->end = std::max(span->end, item.end());
        }
    }
    return span;
}

Document::Found Document::find(const QStringList& path) const
{
    Found found;
    for (; found.levels < path.size(); ++found.levels) {
        const auto next = m_positions.constFind({found.position, path.at(found.levels)});
        if (next == m_positions.cend())
            break;
        found.position = *next;
    }
    return found;
}

DocumentTrack& Document::complete(const QStringList& path, Found found)
{
    Q_ASSERT(!path.isEmpty());
    for (; found.levels < path.size(); ++found.levels) {
        // The text of the names above is shared with the track above, so that deep trees do not hold it many times.
        QStringList whole =
            found.position < 0 ? QStringList() : m_tracks[static_cast<std::size_t>(found.position)].path;
        whole.reserve(found.levels + 1);
        whole.append(path.at(found.levels));
        const auto position = static_cast<int>(m_tracks.size());
        m_positions.insert({found.position, path.at(found.levels)}, position);
        m_tracks.push_back({std::move(whole), {}, {}});
        found.position = position;
    }
    return m_tracks[static_cast<std::size_t>(found.position)];
}

DocumentTrack& Document::track(const QStringList& path)
{
    return complete(path, find(path));
}

DocumentTrack* Document::trackWithinLimit(const QStringList& path)
{
    const Found found = find(path);
    const auto missing = static_cast<std::size_t>(path.size() - found.levels);
    if (missing > 0 && m_tracks.size() + missing > mostTracks)
        return nullptr;
    return &complete(path, found);
}

QStringList Document::longItemWarnings() const
{
    constexpr qsizetype mostWarnings = 100;
    QStringList texts;
    qint64 left = 0;
    for (const DocumentTrack& track : m_tracks) {
        for (const DocumentItem& item : track.items) {
            if (item.duration <= DocumentItem::longestBar)
                continue;
            if (texts.size() == mostWarnings)
                ++left;
            else
                texts.append(Tr::tr("%1 is longer than 24 days and is shown in pieces").arg(quotedText(item.label)));
        }
    }
    if (left > 0)
        texts.append(Tr::tr("further items that are shown in pieces: %1").arg(left));
    return texts;
}

void Document::merge(const Document& other)
{
    for (const DocumentTrack& source : other.m_tracks) {
        DocumentTrack& target = track(source.path);
        target.items.insert(target.items.end(), source.items.begin(), source.items.end());
        if (!target.color.isValid())
            target.color = source.color;
    }
    m_warnings.append(other.m_warnings);
}

void Document::addBelow(const QString& name, Document&& other)
{
    track({name});
    for (DocumentTrack& source : other.m_tracks) {
        DocumentTrack& target = track(QStringList(name) + source.path);
        target.items = std::move(source.items);
        target.color = source.color;
    }
    m_warnings.append(other.m_warnings);
}

std::shared_ptr<const Document> shareDocument(Document&& document)
{
    const auto dispose = [](const Document* shared) {
        std::unique_ptr<const Document> owned(shared);
        if (static_cast<std::size_t>(owned->itemCount()) >= manyItems)
            disposeInBackground(std::move(owned));
    };
    return {new Document(std::move(document)), dispose};
}

} // namespace VeskTimeline::Kit
