#pragma once

#include <VeskTimelineKit/document.h>

/// "path: label start+duration, ..." for each track, joined by " | ".
inline QString contents(const VeskTimeline::Kit::Document& document)
{
    QStringList tracks;
    for (const VeskTimeline::Kit::DocumentTrack& track : document.tracks()) {
        QStringList items;
        for (const VeskTimeline::Kit::DocumentItem& item : track.items)
            items.append(QString("%1 %2+%3").arg(item.label).arg(item.start).arg(item.duration));
        tracks.append(track.path.join('/') + (items.isEmpty() ? "" : ": " + items.join(", ")));
    }
    return tracks.join(" | ");
}
