#pragma once

#include "journal_model.h"

#include <QRandomGenerator>

/// Fills a model of four tracks, one of them inside another, with items of every kind: overlapping, touching,
/// identical, without length, without end, copied to the parent track, and, by the raw setter, out of order. The same
/// seed makes the same model.
inline void addRandomItems(JournalModel* model, quint32 seed, int itemCount, int spread)
{
    QRandomGenerator random(seed);
    const int parentId = model->newTrack(QStringLiteral("parent"));
    const int childId = model->newTrack(QStringLiteral("child"), parentId);
    const QVector<int> trackIds{1, 2, parentId, childId};
    QVector<int> ids;
    for (int i = 0; i < itemCount; ++i) {
        const int kind = random.bounded(40);
        // Those without end come late, or nothing could be moved past them.
        const int offset = kind == 0 ? spread * 3 / 4 + random.bounded(spread / 4) : random.bounded(spread);
        const qint64 start = ViewFixture::origin + offset / 100 * 100;
        const int duration = kind == 0 ? -1 : kind < 6 ? 0 : random.bounded(4000) / 100 * 100;
        const int trackId = trackIds[random.bounded(4)];
        ids.append(model->newItem(trackId, start, duration));
        if (kind == 39)
            ids.append(model->newItem(trackId, start, duration));
        if (kind == 38 && trackId == childId)
            model->track(parentId)->addCopyItemId(ids.last());
    }
    for (int i = random.bounded(3); i > 0; --i)
        model->item(ids[random.bounded(ids.size())])->_setStartTime(ViewFixture::origin + random.bounded(spread));
}

/// Some ids, each once, in no order.
inline QVector<int> randomIds(QRandomGenerator* random, const QVector<int>& from, int count)
{
    QVector<int> ids;
    for (; count > 0; --count) {
        const int id = from[random->bounded(from.size())];
        if (!ids.contains(id))
            ids.append(id);
    }
    return ids;
}
