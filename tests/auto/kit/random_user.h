#pragma once

#include <VeskTimelineKit/labelled_item.h>
#include <VeskTimelineKit/prepared_document.h>
#include <VeskTimelineKit/standard_timeline_model.h>

#include <QAbstractItemModelTester>
#include <QRandomGenerator>
#include <QTest>

#include <algorithm>

/// A model and somebody who works on it at random.
namespace RandomUse {

using namespace VeskTimeline;
using namespace VeskTimeline::Kit;

/// All that undo is to restore of an item, as text.
inline QString textOf(const Item& item)
{
    const auto& labelled = dynamic_cast<const LabelledItem&>(item);
    QStringList attributes;
    for (auto entry = labelled.attributes().begin(); entry != labelled.attributes().end(); ++entry)
        attributes.append(entry.key() + '=' + entry.value());
    return QString("%1@%2:%3+%4 '%5' '%6' %7 %8 %9")
        .arg(item.id())
        .arg(item.parentTrackId())
        .arg(item.startTime())
        .arg(item.duration())
        .arg(labelled.label(), labelled.description(), attributes.join(','),
             (labelled.hasOwnColor() ? "" : "~") + item.color().name(QColor::HexArgb),
             item.isEditable() ? "free" : "locked");
}

/// The same of a track without its place and those below it.
inline QString textOf(const StandardTimelineModel& model, const Track& track)
{
    QList<int> copies(track.copyItemIds().begin(), track.copyItemIds().end());
    std::sort(copies.begin(), copies.end());
    QStringList copyTexts;
    for (const int id : copies)
        copyTexts.append(QString::number(id));
    QString text =
        QString("'%1' %2 copies %3\n").arg(track.text(), model.colorOfTrack(track.id()).name(), copyTexts.join(','));
    for (const ItemPtr& item : track.items())
        text += textOf(*item) + '\n';
    return text;
}

/// Follows the signals, as a view or a list of the items would: what it has seen by them can be compared with what
/// there is.
class Model : public StandardTimelineModel
{
public:
    explicit Model(TimelineView* view = nullptr) : StandardTimelineModel(view)
    {
        new QAbstractItemModelTester(this, QAbstractItemModelTester::FailureReportingMode::QtTest, this);
        connect(this, &StandardTimelineModel::itemsAdded, this, [this](const QVector<int>& ids) {
            for (const int id : ids) {
                QVERIFY(!m_seenItems.contains(id));
                lookAtItem(id);
            }
        });
        connect(this, &StandardTimelineModel::itemsRemoved, this, [this](const QVector<int>& ids) {
            for (const int id : ids)
                QVERIFY(m_seenItems.remove(id));
        });
        connect(this, &StandardTimelineModel::itemsChanged, this, [this](const QVector<int>& ids) {
            for (const int id : ids) {
                QVERIFY(m_seenItems.contains(id));
                lookAtItem(id);
            }
        });
        connect(this, &QAbstractItemModel::dataChanged, this,
                [this](const QModelIndex& row) { lookAtTrack(*trackOfIndex(row)); });
        connect(this, &QAbstractItemModel::rowsInserted, this,
                [this](const QModelIndex& parent, int row) { lookAtSubtree(*trackOfIndex(index(row, 0, parent))); });
        connect(this, &QAbstractItemModel::modelReset, this, [this] {
            m_seenItems.clear();
            m_seenTracks.clear();
            for (const int id : itemIds())
                lookAtItem(id);
            for (const TrackPtr& track : rootTrack()->tracks())
                lookAtSubtree(*track);
        });
    }

    /// What was there when a signal spoke of it last, by id. Tracks that have gone stay.
    const QHash<int, QString>& seenItems() const { return m_seenItems; }
    const QHash<int, QString>& seenTracks() const { return m_seenTracks; }
    /// For tracks with so many items that looking at each track after each change would take too long.
    void setWatchingTracks(bool isWatching) { m_isWatchingTracks = isWatching; }
    bool isWatchingTracks() const { return m_isWatchingTracks; }

    using StandardTimelineModel::m_itemCache;
    using StandardTimelineModel::m_trackCache;

private:
    void lookAtItem(int id) { m_seenItems.insert(id, textOf(*std::as_const(*this).item(id))); }
    void lookAtTrack(const Track& track)
    {
        if (m_isWatchingTracks)
            m_seenTracks.insert(track.id(), textOf(*this, track));
    }
    void lookAtSubtree(const Track& track)
    {
        lookAtTrack(track);
        for (const TrackPtr& child : track.tracks())
            lookAtSubtree(*child);
    }

    QHash<int, QString> m_seenItems;
    QHash<int, QString> m_seenTracks;
    bool m_isWatchingTracks = true;
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
            &RandomUser::paste,       &RandomUser::cut,         &RandomUser::snap,        &RandomUser::addDocument,
            &RandomUser::rename,      &RandomUser::addPrepared};
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
    void rename()
    {
        static const QStringList names{"a", "key", "other"};
        const QString& name = names.at(number(3));
        const QString& newName = names.at(number(3));
        const QVector<int> ids = someItems();
        const bool isRefused = name != newName && std::any_of(ids.begin(), ids.end(), [&](int id) {
                                   const auto attributes = m_model.itemAttributes(id);
                                   return attributes.contains(name) && attributes.contains(newName);
                               });
        if (isRefused)
            QVERIFY_EXCEPTION_THROWN(m_model.renameItemsAttribute(ids, name, newName), QString);
        else
            m_model.renameItemsAttribute(ids, name, newName);
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
    Document newDocument()
    {
        Document document;
        document.track({QString("T%1").arg(number(50)), "below"}).items = {newItem(), newItem()};
        document.track({"T1"}).color = anyColor();
        document.track({"A"}).items = {newItem()};
        return document;
    }
    void addDocument()
    {
        if (countTracks(*m_model.rootTrack()) < 20)
            m_model.addDocument(newDocument());
    }
    void addPrepared()
    {
        PreparedDocument prepared(newDocument());
        if (countTracks(*m_model.rootTrack()) < 20)
            m_model.addDocument(std::move(prepared));
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
