#pragma once

// Internal to the kit; not installed.

#include <VeskTimeline/track.h>

#include <QColor>

namespace VeskTimeline::Kit {

/// What undo restores of a track, apart from its place and contents.
struct TrackDetails
{
    QString text;
    QColor color; ///< of items that have none of their own; invalid: by the track's id

    friend bool operator==(const TrackDetails& left, const TrackDetails& right)
    {
        return left.text == right.text && left.color == right.color;
    }
};

/// A track with a colour, both buttons, and a name and a place that can be changed.
class StandardTrack : public Track
{
public:
    StandardTrack(const TrackDetails& details, int id, int parentId) : Track(details.text), m_color(details.color)
    {
        m_id = id;
        m_parentId = parentId;
        m_hasInsertButton = true;
        m_hasRemoveButton = true;
    }

    TrackDetails details() const { return {m_text, m_color}; }
    void setDetails(const TrackDetails& details)
    {
        m_text = details.text;
        m_color = details.color;
    }
    void setParentId(int parentId) { m_parentId = parentId; }
    /// For a track that is in no model yet.
    void setIds(int id, int parentId)
    {
        m_id = id;
        m_parentId = parentId;
    }

private:
    QColor m_color;
};

} // namespace VeskTimeline::Kit
