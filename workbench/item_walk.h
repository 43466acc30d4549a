#pragma once

#include <VeskTimelineKit/labelled_item.h>
#include <VeskTimelineKit/standard_timeline_model.h>

#include <QElapsedTimer>

#include <algorithm>
#include <vector>

namespace Workbench {

/// Goes through all items of a model, track by track from the top, a while at a time, so that work on a million items
/// leaves the event loop free in between.
///
/// The model may change between two turns; items that moved past the place reached may then be visited twice or not at
/// all, so whoever needs all of them begins anew when the model says that it changed.
class ItemWalk
{
public:
    explicit ItemWalk(const VeskTimeline::Kit::StandardTimelineModel* model) : m_model(model) {}

    /// Back to the first item of the first track.
    void restart()
    {
        m_trackIds.clear();
        collect(*m_model->rootTrack());
        m_track = 0;
        m_item = 0;
    }

    /// Calls `visit(const LabelledItem&, int row)`, the row counted over the whole tree, for the next items.
    /// @param milliseconds stops soon after this time
    /// @return whether there may be more
    template <typename Visit>
    bool advance(int milliseconds, const Visit& visit)
    {
        QElapsedTimer timer;
        timer.start();
        while (m_track < m_trackIds.size()) {
            if (!visitSome(visit)) {
                ++m_track;
                m_item = 0;
            }
            if (timer.hasExpired(milliseconds))
                return m_track < m_trackIds.size();
        }
        return false;
    }

private:
    void collect(const VeskTimeline::Track& parent)
    {
        for (const VeskTimeline::TrackPtr& track : parent.tracks()) {
            m_trackIds.push_back(track->id());
            collect(*track);
        }
    }

    // Whether the track has more items.
    template <typename Visit>
    bool visitSome(const Visit& visit)
    {
        constexpr std::size_t betweenLooksAtTheClock = 512;
        const VeskTimeline::Track* const track = current();
        if (!track)
            return false;
        const VeskTimeline::Items& items = track->items();
        const std::size_t end = std::min(items.size(), m_item + betweenLooksAtTheClock);
        for (; m_item < end; ++m_item) {
            // All items of this model are of this class.
            visit(static_cast<const VeskTimeline::Kit::LabelledItem&>(*items[m_item]), static_cast<int>(m_track));
        }
        return m_item < items.size();
    }

    // Null for a track that was removed since restart().
    const VeskTimeline::Track* current() const
    {
        try {
            return m_model->track(m_trackIds[m_track]);
        } catch (const QString&) {
            return nullptr;
        }
    }

    const VeskTimeline::Kit::StandardTimelineModel* m_model;
    std::vector<int> m_trackIds;
    std::size_t m_track = 0;
    std::size_t m_item = 0;
};

} // namespace Workbench
