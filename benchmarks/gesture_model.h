#pragma once

#include <VeskTimeline/timeline_model.h>

#include <QRandomGenerator>

/// Tracks full of items of about 30 s, spread over the 24 hours from `origin`, and filled at once: what is measured
/// comes after.
class GestureModel : public VeskTimeline::TimelineModel
{
public:
    static constexpr qint64 origin = 1'600'000'000'000;
    static constexpr int day = 86'400'000;

    enum class Shape {
        Wide, ///< over 200 tracks
        Deep, ///< on one track
        Rows, ///< 100 on each track, of which a tenth are parents of nine others
    };

    GestureModel(Shape shape, int itemCount)
    {
        makeTracks(shape, itemCount);
        fill(itemCount);
    }

    /// The tracks in the order of their rows; their items change places by turns.
    const std::vector<int>& trackIds() const { return m_trackIds; }

private:
    /// One that takes an id without the model's signals.
    struct NumberedItem : VeskTimeline::Item
    {
        NumberedItem(int id, int trackId, qint64 startTime, int duration)
            : Item(startTime, duration, QColor::fromHsv(id % 360, 160, 220), true)
        {
            m_id = id;
            m_parentTrackId = trackId;
        }
    };

    void makeTracks(Shape shape, int itemCount)
    {
        constexpr int family = 10;
        const int trackCount = shape == Shape::Wide ? 200 : shape == Shape::Deep ? 1 : itemCount / 100;
        int parentId = 0;
        for (int i = 0; i < trackCount; ++i) {
            if (shape != Shape::Rows || i % family == 0)
                parentId = 0;
            const QString name = QStringLiteral("Track %1").arg(i);
            m_trackIds.push_back(insertTrack(parentId, -1, std::make_unique<VeskTimeline::Track>(name))->id());
            if (parentId == 0 && shape == Shape::Rows)
                parentId = m_trackIds.back();
        }
    }

    void fill(int itemCount)
    {
        QRandomGenerator random(itemCount);
        for (int i = 0; i < itemCount; ++i) {
            const int trackId = m_trackIds[static_cast<std::size_t>(i) % m_trackIds.size()];
            const qint64 start = origin + static_cast<qint64>(i) * day / itemCount;
            auto item =
                std::make_unique<NumberedItem>(nextFreeItemId(), trackId, start, 20'000 + random.bounded(20'000));
            m_itemCache.emplace_hint(m_itemCache.end(), item->id(), item.get());
            track(trackId)->addItemPtr(std::move(item));
        }
    }

    std::vector<int> m_trackIds;
};
