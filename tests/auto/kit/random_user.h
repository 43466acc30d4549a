#pragma once

#include <VeskTimelineKit/standard_timeline_model.h>

#include <QAbstractItemModelTester>
#include <QRandomGenerator>
#include <QTest>

/// A model and somebody who works on it at random.
namespace RandomUse {

using namespace VeskTimeline;
using namespace VeskTimeline::Kit;

/// Follows the item signals, so that what they say can be compared with what there is.
class Model : public StandardTimelineModel
{
public:
    explicit Model(TimelineView* view = nullptr) : StandardTimelineModel(view)
    {
        new QAbstractItemModelTester(this, QAbstractItemModelTester::FailureReportingMode::QtTest, this);
        connect(this, &StandardTimelineModel::itemsAdded, this, [this](const QVector<int>& ids) {
            for (const int id : ids) {
                QVERIFY(!m_known.contains(id));
                m_known.insert(id);
            }
        });
        connect(this, &StandardTimelineModel::itemsRemoved, this, [this](const QVector<int>& ids) {
            for (const int id : ids)
                QVERIFY(m_known.remove(id));
        });
        connect(this, &StandardTimelineModel::itemsChanged, this, [this](const QVector<int>& ids) {
            for (const int id : ids)
                QVERIFY(m_known.contains(id));
        });
        connect(this, &QAbstractItemModel::modelReset, this, [this] {
            const QVector<int> ids = itemIds();
            m_known = QSet<int>(ids.begin(), ids.end());
        });
    }

    /// The ids by the signals.
    const QSet<int>& known() const { return m_known; }

    using StandardTimelineModel::m_itemCache;
    using StandardTimelineModel::m_trackCache;

private:
    QSet<int> m_known;
};

inline int countTracks(const Track& track)
{
    int count = 1;
    for (const TrackPtr& child : track.tracks())
        count += countTracks(*child);
    return count;
}

/// Does one thing after another at random, the way views and applications do.
class RandomUser
{
public:
    RandomUser(Model& model, quint32 seed) : m_model(model), m_random(seed) {}

    void act()
    {
        static const QList<void (RandomUser::*)()> acts{
            &RandomUser::addTrack,    &RandomUser::insertBelow, &RandomUser::moveTrack,   &RandomUser::renameTrack,
            &RandomUser::colorTrack,  &RandomUser::removeTrack, &RandomUser::addItem,     &RandomUser::addItems,
            &RandomUser::addItems,    &RandomUser::removeItem,  &RandomUser::removeItems, &RandomUser::retime,
            &RandomUser::shift,       &RandomUser::resize,      &RandomUser::drop,        &RandomUser::relabel,
            &RandomUser::describe,    &RandomUser::color,       &RandomUser::lock,        &RandomUser::copies,
            &RandomUser::relabelMany, &RandomUser::retimeMany,  &RandomUser::moveMany,    &RandomUser::attribute,
            &RandomUser::paste,       &RandomUser::cut,         &RandomUser::snap,        &RandomUser::addDocument};
        (this->*acts.at(number(static_cast<int>(acts.size()))))();
        if (number(3) != 0)
            m_model.finishGesture();
    }

    int number(int end) { return m_random.bounded(end); }

private:
    QList<int> trackIds() const
    {
        QList<int> ids;
        for (const auto& entry : m_model.m_trackCache)
            ids.append(entry.first);
        return ids;
    }
    int anyTrack() { return trackIds().at(number(static_cast<int>(trackIds().size()))); }
    int anyInnerTrack()
    {
        const QList<int> ids = trackIds();
        return ids.size() == 1 ? -1 : ids.at(1 + number(static_cast<int>(ids.size()) - 1));
    }
    int anyItem()
    {
        const QVector<int> ids = m_model.itemIds();
        return ids.isEmpty() ? -1 : ids.at(number(static_cast<int>(ids.size())));
    }
    QVector<int> someItems()
    {
        QVector<int> ids;
        for (const int id : m_model.itemIds()) {
            if (number(4) == 0)
                ids.append(id);
        }
        return ids;
    }
    // Few different ones, so that many items start together.
    qint64 time() { return 1000 * (number(6) - 2) + number(2) * 250; }
    QColor anyColor() { return number(3) == 0 ? QColor() : QColor::fromHsv(number(360), 200, 200); }
    DocumentItem newItem()
    {
        const qint64 durations[] = {0, 500, 1700, -1, 5'000'000'000};
        return {QString::number(number(100)),
                time(),
                durations[number(5)],
                anyColor(),
                number(2) == 0,
                number(2) == 0 ? "text" : "",
                {{"key", QString::number(number(3))}}};
    }

    void addTrack() { m_model.addTrack(QString("T%1").arg(number(50)), anyTrack()); }
    void insertBelow()
    {
        const int id = anyInnerTrack();
        if (id != -1)
            m_model.onInsertTrack(m_model.indexOfTrack(id));
    }
    void moveTrack()
    {
        const int id = anyInnerTrack();
        if (id == -1)
            return;
        try {
            m_model.moveTrack(id, anyTrack(), number(5) - 1);
        } catch (const QString&) {
            // Below itself.
        }
    }
    void renameTrack()
    {
        const int id = anyInnerTrack();
        if (id != -1)
            m_model.renameTrack(id, QString("R%1").arg(number(50)));
    }
    void colorTrack()
    {
        const int id = anyInnerTrack();
        if (id != -1)
            m_model.setTrackColor(id, anyColor());
    }
    void removeTrack()
    {
        const int id = anyInnerTrack();
        if (id != -1 && number(3) == 0)
            m_model.removeTrack(id);
    }
    // The root has no row to show items on.
    void addItem()
    {
        const int trackId = anyInnerTrack();
        if (trackId != -1)
            m_model.addItem(trackId, newItem());
    }
    void addItems()
    {
        const int trackId = anyInnerTrack();
        if (trackId == -1)
            return;
        std::vector<DocumentItem> items;
        for (int i = number(6); i >= 0; --i)
            items.push_back(newItem());
        m_model.addItems(trackId, items);
    }
    void removeItem()
    {
        for (const int id : someItems().mid(0, 3))
            m_model.removeItem(id);
    }
    void removeItems() { m_model.removeItems(someItems()); }
    void retime()
    {
        const int id = anyItem();
        if (id != -1)
            m_model.retimeItem(id, time(), newItem().duration);
    }
    void shift()
    {
        const qint64 offset = time();
        for (const int id : someItems())
            m_model.setItemStartTime(id, m_model.item(id)->startTime() + offset);
    }
    void resize()
    {
        const int id = anyItem();
        if (id == -1)
            return;
        for (int i = number(4); i >= 0; --i) {
            m_model.setItemDuration(id, number(3) * 1000);
            m_model.setItemStartTime(id, time());
        }
    }
    void drop()
    {
        const int trackId = anyInnerTrack();
        for (const int id : someItems())
            m_model.moveItemToTrack(id, trackId, time());
    }
    void relabel()
    {
        const int id = anyItem();
        if (id != -1)
            m_model.setItemLabel(id, QString::number(number(5)));
    }
    void describe()
    {
        const int id = anyItem();
        if (id == -1)
            return;
        m_model.setItemDescription(id, QString::number(number(5)));
        m_model.setItemAttributes(id, {{"a", QString::number(number(2))}});
    }
    void color() { m_model.setItemsColor(someItems(), anyColor()); }
    void relabelMany() { m_model.setItemsLabel(someItems(), QString::number(number(5))); }
    void retimeMany()
    {
        QVector<ItemTimes> times;
        for (const int id : someItems())
            times.append({id, time(), newItem().duration});
        m_model.retimeItems(times);
    }
    void moveMany()
    {
        const int trackId = anyInnerTrack();
        if (trackId != -1)
            m_model.moveItemsToTrack(someItems(), trackId);
    }
    void attribute()
    {
        const QVector<int> ids = someItems();
        if (number(3) == 0)
            m_model.removeItemsAttribute(ids, "a");
        else
            m_model.setItemsAttribute(ids, "a", QString::number(number(3)));
    }
    void lock() { m_model.setItemsLocked(someItems(), number(2) == 0); }
    void copies()
    {
        const int trackId = anyTrack();
        QSet<int> ids;
        for (const int id : m_model.track(trackId)->itemIds(true, false)) {
            if (number(2) == 0)
                ids.insert(id);
        }
        m_model.setCopyItemIds(trackId, ids);
    }
    void paste()
    {
        m_model.copyToClipboard(someItems());
        m_model.pasteFromClipboard(time());
    }
    void cut()
    {
        m_model.cutToClipboard(someItems().mid(0, 4));
        if (number(2) == 0) {
            try {
                m_model.pasteFromClipboard(time());
            } catch (const QString&) {
                QFAIL("the tracks are still there");
            }
        }
    }
    void snap() { m_model.setSnapEnabled(!m_model.isSnapEnabled()); }
    void addDocument()
    {
        Document document;
        document.track({QString("T%1").arg(number(50)), "below"}).items = {newItem(), newItem()};
        document.track({"T1"}).color = anyColor();
        if (countTracks(*m_model.rootTrack()) < 20)
            m_model.addDocument(document);
    }

    Model& m_model;
    QRandomGenerator m_random;
};

// A (a0 0+10, a1 5+10, a2 5+20), A > B (b 100+10), C (c 7+0)
inline Document sampleDocument()
{
    Document document;
    document.track({"A"}).items = {{"a0", 0, 10, {}}, {"a1", 5, 10, {}}, {"a2", 5, 20, {}}};
    document.track({"A", "B"}).items = {{"b", 100, 10, Qt::red}};
    document.track({"C"}).items = {{"c", 7, 0, {}}};
    return document;
}

} // namespace RandomUse
