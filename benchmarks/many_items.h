#pragma once

#include <VeskTimeline/timeline_model.h>

#include <QRandomGenerator>

/// Items of about 30 s, spread evenly over the 24 hours from `origin`, on a number of tracks.
class ManyItems : public VeskTimeline::TimelineModel
{
public:
    static constexpr qint64 origin = 1'600'000'000'000;
    static constexpr int day = 86'400'000;

    explicit ManyItems(int trackCount)
    {
        for (int i = 0; i < trackCount; ++i)
            insertTrack(0, -1, std::make_unique<VeskTimeline::Track>(QStringLiteral("Track %1").arg(i)));
    }

    /// Adds in the order of start times, which is the cheap one, or in a random order.
    void addItems(int count, bool isRandomOrder)
    {
        QRandomGenerator random(count);
        for (int i = 0; i < count; ++i) {
            const qint64 offset = isRandomOrder ? random.bounded(day) : static_cast<qint64>(i) * day / count;
            const int duration = 20'000 + random.bounded(20'000);
            const QColor color = QColor::fromHsv(random.bounded(360), 160, 220);
            addItem(1 + i % rowCount(), std::make_unique<VeskTimeline::Item>(origin + offset, duration, color, true),
                    false);
        }
    }
};
