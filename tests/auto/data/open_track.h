#pragma once

#include <VeskTimeline/track.h>

/// An item whose ids tests set, as the model does.
class OpenItem : public VeskTimeline::Item
{
public:
    OpenItem(int id, qint64 startTime, int duration, int parentTrackId = -1)
        : Item(startTime, duration, QColor(Qt::blue), true)
    {
        m_id = id;
        m_parentTrackId = parentTrackId;
    }
};

/// A track whose ids tests set, as the model does.
class OpenTrack : public VeskTimeline::Track
{
public:
    OpenTrack(int id, const QString& text, int parentId = -1) : Track(text)
    {
        m_id = id;
        m_parentId = parentId;
    }

    OpenTrack* newTrack(int id, const QString& text = QString())
    {
        auto track = std::make_unique<OpenTrack>(id, text, m_id);
        OpenTrack* const pointer = track.get();
        m_childrenTracks.push_back(std::move(track));
        return pointer;
    }

    VeskTimeline::Item* newItem(int id, qint64 startTime, int duration)
    {
        return addItem(std::make_unique<OpenItem>(id, startTime, duration, m_id));
    }

    using Track::m_copyItemIds;
};

inline QVector<int> idsOf(const VeskTimeline::ItemPtrRefs& items)
{
    QVector<int> ids;
    for (const VeskTimeline::ItemPtr& item : items)
        ids.append(item->id());
    return ids;
}

inline QVector<int> idsOf(const VeskTimeline::ItemPtrNCVRefs& items)
{
    QVector<int> ids;
    for (const VeskTimeline::ItemPtr& item : items)
        ids.append(item->id());
    return ids;
}

inline QVector<int> idsOf(const VeskTimeline::Items& items)
{
    QVector<int> ids;
    for (const VeskTimeline::ItemPtr& item : items)
        ids.append(item->id());
    return ids;
}
