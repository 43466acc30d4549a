#include "VeskTimeline/track_items_p.h"
#include "auto/data/open_track.h"
#include "reference/interval_query.h"
#include "reference/item_list.h"
#include "support/test_model.h"

#include <QRandomGenerator>
#include <QRegularExpression>
#include <QTest>

#include <array>

using namespace VeskTimeline;
using Reference::ItemList;

namespace {

/// What times a run of random steps uses.
struct Times
{
    qint64 origin;
    qint64 range;
    int longest;
};

/// An item that is given its ids from outside.
class IdItem : public Item
{
public:
    IdItem(int id, int trackId, qint64 start, int duration) : Item(start, duration, Qt::red, true)
    {
        m_id = id;
        m_parentTrackId = trackId;
    }
};

/// Does the same to two tracks of a model, one below the other, and to plain lists of what they hold.
class Pair
{
public:
    Pair(quint32 seed, const Times& times) : m_random(seed), m_times(times)
    {
        model.newTrack(QStringLiteral("above"));
        model.newTrack(QStringLiteral("below"), 1);
        for (int i = 0; i < 400; ++i)
            add();
    }

    Track& track(int row) { return *model.track(row + 1); }
    ItemList& list(int row) { return m_lists[static_cast<std::size_t>(row)]; }

    qint64 randomTime() { return m_times.origin + static_cast<qint64>(m_random.generate64() % quint64(m_times.range)); }
    int randomDuration()
    {
        const int kind = m_random.bounded(40);
        return kind == 0 ? -1 : kind < 5 ? 0 : m_random.bounded(kind == 5 ? m_times.longest : m_times.longest / 20 + 2);
    }
    quint64 random64() { return m_random.generate64(); }
    int random(int below) { return m_random.bounded(below); }

    /// Says what was done.
    QString step()
    {
        const int row = random(2);
        if (list(row).items.size() < 100)
            return add();
        const int id = list(row).items[std::size_t(random(int(list(row).items.size())))].id;
        switch (random(16)) {
        case 0:
        case 1:
            return add();
        case 2:
            return remove(row, id);
        case 3:
            return takeFromTrack(row, id);
        case 4:
            return move(row, id);
        case 5:
            return setRawTime(row, id);
        case 6:
            return changeThroughTheList(row, id);
        case 7:
            return changeThroughAKeptReference(row, id);
        case 8:
            track(row).sort();
            list(row).sort();
            return QStringLiteral("sort");
        case 9:
        case 10:
        case 11:
            return setDuration(row, id);
        case 12:
            model.m_itemCaching = random(2) == 0;
            model.m_trackCaching = random(2) == 0;
            return QStringLiteral("caching");
        default:
            return setStart(row, id);
        }
    }

    /// What the model does to a large selection, with no question in between.
    QString changesInARow()
    {
        for (int i = 0; i < 150; ++i) {
            const int row = random(2);
            putInOrder(row);
            const int id = list(row).items[std::size_t(random(int(list(row).items.size())))].id;
            const int kind = list(row).items.size() < 100 ? 0 : random(5);
            if (kind == 0)
                add();
            else if (kind == 1)
                remove(row, id);
            else if (kind == 2)
                move(row, id);
            else if (kind == 3)
                setDuration(row, id);
            else
                setStart(row, id);
        }
        return QStringLiteral("changes in a row");
    }

    TestModel model;

private:
    // Adding to a list that is out of order has no defined place.
    void putInOrder(int row)
    {
        if (list(row).isSorted())
            return;
        track(row).sort();
        list(row).sort();
    }

    QString add()
    {
        const int row = random(2);
        putInOrder(row);
        const qint64 start = randomTime();
        const int duration = randomDuration();
        const int id = model.newItem(row + 1, start, duration);
        list(row).add({id, start, duration});
        return QStringLiteral("add");
    }

    QString remove(int row, int id)
    {
        model.removeItem(id);
        list(row).take(id);
        return QStringLiteral("removeItem");
    }

    // And changed while it is out.
    QString takeFromTrack(int row, int id)
    {
        putInOrder(row);
        ItemPtr taken = track(row).takeItem(id);
        taken->_setStartTime(randomTime());
        Reference::ListedItem listed = list(row).take(id);
        listed.start = taken->startTime();
        track(row).addItem(std::move(taken));
        list(row).add(listed);
        return QStringLiteral("takeItem and addItem");
    }

    QString move(int row, int id)
    {
        const int other = 1 - row;
        putInOrder(other);
        const qint64 time = randomTime();
        model.moveItemToTrack(id, other + 1, time);
        list(other).add(list(row).take(id));
        list(other).setStart(id, time);
        return QStringLiteral("moveItemToTrack");
    }

    QString setStart(int row, int id)
    {
        // Mostly a nudge, as in a drag.
        qint64 time = randomTime();
        if (random(3) > 0)
            time = list(row).at(id).start / 2 + time / 2;
        model.setItemStartTime(id, time);
        list(row).setStart(id, time);
        return QStringLiteral("setItemStartTime");
    }

    QString setDuration(int row, int id)
    {
        const int duration = std::max(randomDuration(), 0);
        model.setItemDuration(id, duration);
        list(row).setDuration(id, duration);
        return QStringLiteral("setItemDuration");
    }

    QString setRawTime(int row, int id)
    {
        Item& item = *model.item(id);
        switch (random(3)) {
        case 0:
            item.setStartTime(randomTime());
            break;
        case 1:
            // A duration below -1 is no use to anybody, but may be stored.
            item.setDuration(random(4) == 0 ? -5 : randomDuration());
            break;
        default: {
            Item other = item;
            other._setStartTime(randomTime());
            item = other;
            break;
        }
        }
        list(row).at(id) = {id, item.startTime(), item.duration()};
        return QStringLiteral("raw setter");
    }

    QString changeThroughTheList(int row, int id)
    {
        Items& items = track(row).items();
        const auto found =
            std::find_if(items.begin(), items.end(), [id](const ItemPtr& own) { return own->id() == id; });
        ItemPtr replacement = std::make_unique<IdItem>(id, row + 1, randomTime(), randomDuration());
        model.m_itemCache[id] = replacement.get();
        items.erase(found);
        list(row).take(id);
        list(row).items.push_back({id, replacement->startTime(), replacement->duration()});
        items.push_back(std::move(replacement));
        return QStringLiteral("erase and push_back");
    }

    // The queries in between have indexed the list as it was.
    QString changeThroughAKeptReference(int row, int id)
    {
        Items& items = track(row).items();
        track(row).isItemsBetween(0, 1, -1, true, false, false);
        const auto found =
            std::find_if(items.begin(), items.end(), [id](const ItemPtr& own) { return own->id() == id; });
        ItemPtr replacement = std::make_unique<IdItem>(id, row + 1, randomTime(), randomDuration());
        model.m_itemCache[id] = replacement.get();
        list(row).at(id) = {id, replacement->startTime(), replacement->duration()};
        *found = std::move(replacement);
        return QStringLiteral("replacement in place");
    }

    QRandomGenerator m_random;
    Times m_times;
    std::array<ItemList, 2> m_lists;
};

QVector<int> idsOf(const ItemList& list)
{
    QVector<int> ids;
    for (const Reference::ListedItem& item : list.items)
        ids.append(item.id);
    return ids;
}

/// The list's own items in the interval, each asked about.
QVector<int> idsBetween(const ItemList& list, const Reference::Interval& in, qint64 minimum)
{
    QVector<int> ids;
    for (const Reference::ListedItem& item : list.items) {
        if (Track::isItemBetween(Item(item.start, item.duration, Qt::red, true), in.start, in.end, in.strict,
                                 in.complete, minimum))
            ids.append(item.id);
    }
    return ids;
}

int idAt(const Track& track, qint64 time)
{
    try {
        return track.itemAt(time)->id();
    } catch (const QString&) {
        return -1;
    }
}

QVector<int> idsTouching(const Track& track, qint64 from, qint64 to)
{
    QVector<int> ids;
    visitItemsTouching(track, from, to, [&ids](const Item& item) { ids.append(item.id()); });
    return ids;
}

Reference::Interval randomInterval(Pair& pair, const Times& times)
{
    const qint64 start = pair.randomTime();
    const bool isStrict = pair.random(2) == 0;
    const bool isComplete = pair.random(2) == 0;
    if (pair.random(6) == 0 && start > std::numeric_limits<qint64>::min())
        return {start, start - 1, isStrict, isComplete};
    const quint64 longest = (static_cast<quint64>(times.range) >> pair.random(10)) + 1;
    const qint64 end = Reference::plainEnd(start, static_cast<qint64>(pair.random64() % longest));
    return {start, end, isStrict, isComplete};
}

} // namespace

class tst_item_index : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".?"))); }

    void listsAndQueriesEqualGoingThroughAllItems_data();
    void listsAndQueriesEqualGoingThroughAllItems();
    void hundredsOfThousandsAreFoundAsByGoingThroughThem();
    void aTrackThatIsMovedTakesItsIndexAlong();
    void itemsThatWereTakenOutBelongToNoIndex();
    void aCopyOfAnItemBelongsToNoIndex();
    void manyIdsAreIgnoredAsFewAre();
};

void tst_item_index::listsAndQueriesEqualGoingThroughAllItems_data()
{
    using Limits = std::numeric_limits<qint64>;
    QTest::addColumn<quint32>("seed");
    QTest::addColumn<qint64>("origin");
    QTest::addColumn<qint64>("range");
    QTest::addColumn<int>("longest");
    for (quint32 seed = 1; seed <= 4; ++seed) {
        QTest::addRow("many start together, %u", seed) << seed << qint64{-40} << qint64{80} << 30;
        QTest::addRow("few overlap, %u", seed) << seed << qint64{1'600'000'000'000} << qint64{10'000'000} << 40'000;
        QTest::addRow("up to the last time, %u", seed) << seed << Limits::max() - 5000 << qint64{5001} << 3000;
        QTest::addRow("from the first time, %u", seed) << seed << Limits::min() << qint64{5000} << 3000;
        QTest::addRow("all times, %u", seed)
            << seed << Limits::min() / 2 << Limits::max() << std::numeric_limits<int>::max();
    }
}

void tst_item_index::listsAndQueriesEqualGoingThroughAllItems()
{
    QFETCH(const quint32, seed);
    QFETCH(const qint64, origin);
    QFETCH(const qint64, range);
    QFETCH(const int, longest);
    const Times times{origin, range, longest};
    Pair pair(seed, times);
    bool wasIndexed = false;
    for (int i = 0; i < 600; ++i) {
        QString done = pair.step();
        // Some steps with no query between them.
        if (i % 3 == 0)
            done += QStringLiteral(" and ") + pair.step();
        if (i % 20 == 0)
            done += QStringLiteral(" and ") + pair.changesInARow();
        for (const int row : {0, 1}) {
            const Track& track = pair.track(row);
            const ItemList& list = pair.list(row);
            const QByteArray where = QStringLiteral("step %1, %2, row %3").arg(i).arg(done).arg(row).toUtf8();
            QVERIFY2(track.itemIds(false, false) == idsOf(list), where.constData());

            const Reference::Interval in = randomInterval(pair, times);
            const qint64 minimum = pair.random(2) == 0 ? 0 : pair.random(longest) - longest / 4;
            const QVector<int> expected = idsBetween(list, in, minimum);
            QVERIFY2(track.itemIdsBetween(in.start, in.end, in.strict, in.complete, false, false, minimum) == expected,
                     where.constData());
            QVERIFY2(pair.model._itemIdsBetween(pair.track(row), in.start, in.end, in.strict, in.complete, false, false,
                                                minimum) == expected,
                     where.constData());
            // All but one are ignored, or all.
            QVector<int> ignored = expected;
            const bool isOneLeft = !ignored.isEmpty() && pair.random(2) == 0;
            if (isOneLeft)
                ignored.removeAt(pair.random(int(ignored.size())));
            QVERIFY2(track.isItemsBetween(in.start, in.end, ignored, in.strict, in.complete, false, minimum) ==
                         isOneLeft,
                     where.constData());
            QVERIFY2(pair.model._isItemsBetween(track, in.start, in.end, ignored, in.strict, in.complete, false,
                                                minimum) == isOneLeft,
                     where.constData());

            const qint64 time = pair.randomTime();
            QVERIFY2(idAt(track, time) == Reference::idAt(list, time), where.constData());
            QVERIFY2(idsTouching(track, in.start, in.end) == Reference::idsTouching(list, in.start, in.end),
                     where.constData());
            wasIndexed = wasIndexed || ItemIndex::of(track);
        }
    }
    QVERIFY(wasIndexed);
}

void tst_item_index::hundredsOfThousandsAreFoundAsByGoingThroughThem()
{
    constexpr int count = 200'000;
    QRandomGenerator random(7);
    OpenTrack track(1, QString());
    ItemList list;
    for (int id = 0; id < count; ++id) {
        // Here and there one that lasts for long or for ever.
        const int duration = random.bounded(5000) == 0 ? random.bounded(-1, 40'000'000) : random.bounded(900);
        track.newItem(id, id * qint64{400}, duration);
        list.items.push_back({id, id * qint64{400}, duration});
    }
    for (int i = 0; i < 60; ++i) {
        const qint64 from = random.bounded(-1000, count * 400 + 1000);
        const qint64 to = from + random.bounded(100'000);
        QCOMPARE(idsTouching(track, from, to), Reference::idsTouching(list, from, to));
        QCOMPARE(idAt(track, from), Reference::idAt(list, from));
        const int id = random.bounded(count);
        Item& item = *track.items()[static_cast<std::size_t>(id)];
        item._setDuration(random.bounded(2'000'000));
        list.items[static_cast<std::size_t>(id)].duration = item.duration();
    }
}

void tst_item_index::aTrackThatIsMovedTakesItsIndexAlong()
{
    OpenTrack track(1, QString());
    for (int id = 0; id < 100; ++id)
        track.newItem(id, id * 10, 5);
    const ItemIndex* const index = ItemIndex::of(track);
    QVERIFY(index);
    const OpenTrack moved(std::move(track));
    QCOMPARE(ItemIndex::of(moved), index);
    QCOMPARE(idsTouching(moved, 500, 520), QVector<int>({50, 51, 52}));
    moved.items()[51]->_setStartTime(900);
    moved.items()[51]->_setDuration(0);
    QCOMPARE(idsTouching(moved, 500, 520), QVector<int>({50, 52}));
}

void tst_item_index::itemsThatWereTakenOutBelongToNoIndex()
{
    OpenTrack track(1, QString());
    for (int id = 0; id < 100; ++id)
        track.newItem(id, id * 10, 5);
    const ItemIndex* const index = ItemIndex::of(track);
    ItemPtr taken = track.takeItem(50);
    QVERIFY(index->matches(std::as_const(track).items()));
    taken->setStartTime(7000);
    QVERIFY(index->matches(std::as_const(track).items()));
    taken.reset();
    QVERIFY(index->matches(std::as_const(track).items()));
    std::as_const(track).items()[3]->setDuration(6);
    QVERIFY(!index->matches(std::as_const(track).items()));
}

void tst_item_index::aCopyOfAnItemBelongsToNoIndex()
{
    OpenTrack track(1, QString());
    for (int id = 0; id < 100; ++id)
        track.newItem(id, id * 10, 5);
    const ItemIndex* const index = ItemIndex::of(track);
    {
        Item copy = *std::as_const(track).items()[50];
        copy.setStartTime(7000);
    }
    QVERIFY(index->matches(std::as_const(track).items()));
    *std::as_const(track).items()[50] = Item(505, 1, Qt::red, true);
    QVERIFY(!index->matches(std::as_const(track).items()));
}

void tst_item_index::manyIdsAreIgnoredAsFewAre()
{
    OpenTrack track(1, QString());
    QVector<int> ids;
    for (int id = 0; id < 200; ++id) {
        track.newItem(id, id, 1000);
        ids.append(id);
    }
    QVERIFY(!track.isItemsBetween(500, 600, ids, true, false, false));
    QVERIFY(track.isItemsBetween(500, 600, ids.mid(0, 199), true, false, false));
    QVERIFY(track.isItemsBetween(500, 600, ids.mid(1), true, false, false));
}

QTEST_GUILESS_MAIN(tst_item_index)
#include "tst_item_index.moc"
