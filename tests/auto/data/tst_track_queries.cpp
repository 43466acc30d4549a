#include "auto/data/open_track.h"
#include "reference/interval_query.h"
#include "support/forked_child.h"
#include "support/stderr_capture.h"
#include "support/test_model.h"
#include "support/thrown.h"

#include <QRandomGenerator>
#include <QRegularExpression>
#include <QTest>

#include <limits>

using namespace VeskTimeline;
using Reference::Interval;
using Reference::PlainItem;
using Reference::PlainTrack;

namespace {

constexpr int rounds = 300;

/// A three-level tree whose items and copy item ids are random, the start times all different.
struct RandomTree
{
    explicit RandomTree(quint32 seed) : random(seed)
    {
        tracks.push_back(model.rootTrack());
        for (int i = 0; i < 2; ++i) {
            const int top = model.newTrack(QStringLiteral("top"));
            tracks.push_back(model.track(top));
            for (int j = 0; j < 2; ++j) {
                const int below = model.newTrack(QStringLiteral("below"), top);
                tracks.push_back(model.track(below));
                tracks.push_back(model.track(model.newTrack(QStringLiteral("deep"), below)));
            }
        }
        QVector<int> starts;
        for (int i = 0; i < 40; ++i)
            starts.append(i * 5 - 60);
        std::shuffle(starts.begin(), starts.end(), random);
        // None on the root: the model tester does not take the change of a row that does not exist.
        for (const int start : starts) {
            const int track = random.bounded(1, static_cast<int>(tracks.size()));
            model.newItem(tracks[static_cast<std::size_t>(track)]->id(), start, randomDuration());
        }
        for (Track* const track : tracks)
            addCopies(*track);
    }

    int randomDuration()
    {
        switch (random.bounded(6)) {
        case 0:
            return -1;
        case 1:
            return 0;
        default:
            return random.bounded(60);
        }
    }

    void addCopies(Track& track)
    {
        for (const int id : track.itemIds(true, false)) {
            if (random.bounded(3) == 0)
                track.addCopyItemId(id);
        }
    }

    Interval randomInterval()
    {
        const qint64 start = random.bounded(-80, 180);
        const qint64 end = random.bounded(5) == 0 ? start - 1 : start + random.bounded(100);
        return {start, end, random.bounded(2) == 0, random.bounded(2) == 0};
    }

    qint64 randomMinimum() { return random.bounded(2) == 0 ? 0 : random.bounded(30); }

    PlainTrack plain(const Track& track)
    {
        PlainTrack copy;
        copy.id = track.id();
        for (const ItemPtr& item : track.items())
            copy.items.push_back({item->id(), item->startTime(), item->duration()});
        for (const int id : track.copyItemIds())
            copy.copyIds.append(id);
        for (const TrackPtr& child : track.tracks())
            copy.children.push_back(plain(*child));
        return copy;
    }

    Reference::ItemsById itemsById()
    {
        Reference::ItemsById items;
        for (const auto& [id, item] : model.m_itemCache)
            items[id] = {id, item->startTime(), item->duration()};
        return items;
    }

    QVector<int> randomIds()
    {
        QVector<int> ids;
        for (int i = random.bounded(30); i > 0; --i)
            ids.append(random.bounded(40));
        return ids;
    }

    /// Any track of the tree, the root included.
    Track& randomTrack() { return *tracks[static_cast<std::size_t>(random.bounded(static_cast<int>(tracks.size())))]; }

    QRandomGenerator random;
    TestModel model;
    std::vector<Track*> tracks;
};

} // namespace

class tst_track_queries : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".?"))); }

    void itemIsInInterval_data();
    void itemIsInInterval();
    void extremeTimesDoNotOverflow();
    void endBeforeStartStopsAtAnAssertion();
    void openEndedItemsNeedNoValidInterval();

    void sortedIdsIncludeCopyItems();
    void sortedIdsNameAnItemTwiceWhenItIsAlsoACopy();
    void unsortedIdsLeaveCopyItemsOut();
    void unsortedChildrenAreTestedWithTheirOwnDurations();
    void minimumDurationSortsTheListsOfTheChildren();
    void minimumDurationStretchesOwnItemsOnly();
    void copyItemIdsVisitOneLevelOfChildrenOnly();
    void copyItemIdsIgnoreTheMinimumDuration();
    void copyItemIdsSortByStartTime();
    void danglingCopyIdsAreSkippedWithALine();
    void anyItemCountsUnlessIgnored();
    void ignoredItemIsIgnoredAsACopyToo();
    void anyCopyItemCountsWithTheMinimumDuration();
    void danglingCopyIdMakesTheCheckThrow();
    void singleIgnoreIdIsAListOfOne();

    void modelQueriesAskTheRoot();
    void modelCopyQueryIncludesTheTopLevelTracks();
    void modelVariantLeavesCopyItemsOut();
    void modelVariantSortsThroughTheItemCache();
    void modelCopyVariantVisitsTheWholeSubtree();
    void modelCopyVariantCollapsesOnlyAdjacentDuplicates();
    void modelCopyVariantThrowsForADanglingId();
    void modelCheckIgnoresCopyItems();

    void isItemBetweenEqualsTheReference();
    void trackQueriesEqualTheReference();
    void modelQueriesEqualTheReference();
};

void tst_track_queries::itemIsInInterval_data()
{
    QTest::addColumn<qint64>("itemStart");
    QTest::addColumn<int>("duration");
    QTest::addColumn<qint64>("start");
    QTest::addColumn<qint64>("end");
    QTest::addColumn<qint64>("minimum");
    // Not strict, strict, not strict and complete, strict and complete.
    QTest::addColumn<QVector<bool>>("expected");

    const auto row = [](const char* name, qint64 itemStart, int duration, qint64 start, qint64 end, qint64 minimum,
                        const QVector<bool>& expected) {
        QTest::newRow(name) << itemStart << duration << start << end << minimum << expected;
    };
    row("starts at the end", 1000, 1000, 2000, 3000, 0, {true, false, false, false});
    row("ends at the start", 1000, 1000, 0, 1000, 0, {true, false, false, false});
    row("the same interval", 1000, 1000, 1000, 2000, 0, {true, true, true, false});
    row("strictly inside", 1000, 1000, 999, 2001, 0, {true, true, true, true});
    row("around the interval", 1000, 1000, 1400, 1500, 0, {true, true, false, false});
    row("sticks out to the left", 1000, 1000, 1001, 2500, 0, {true, true, false, false});
    row("sticks out to the right", 1000, 1000, 500, 1999, 0, {true, true, false, false});
    row("touches the left edge from inside", 1000, 1000, 1000, 2001, 0, {true, true, true, false});
    row("touches the right edge from inside", 1000, 1000, 999, 2000, 0, {true, true, true, false});
    row("before", 1000, 1000, 2001, 3000, 0, {false, false, false, false});
    row("after", 1000, 1000, 0, 999, 0, {false, false, false, false});
    row("empty interval inside", 1000, 1000, 1500, 1500, 0, {true, true, false, false});
    row("empty interval at the start", 1000, 1000, 1000, 1000, 0, {true, false, false, false});
    row("empty item in an empty interval", 1500, 0, 1500, 1500, 0, {true, false, true, false});
    row("empty item with a minimum", 1500, 0, 1550, 1600, 100, {true, true, false, false});
    row("empty item without a minimum", 1500, 0, 1550, 1600, 0, {false, false, false, false});
    row("minimum touches the start", 1500, 0, 1600, 1700, 100, {true, false, false, false});
    row("minimum sticks out", 1500, 10, 1400, 1590, 100, {true, true, false, false});
    row("minimum below the duration", 1500, 50, 1550, 1600, 20, {true, false, false, false});
    row("negative minimum", 1500, 50, 1550, 1600, -500, {true, false, false, false});
    row("before the epoch", -2000, 500, -1500, -1000, 0, {true, false, false, false});

    row("open-ended item in an interval", 1000, -1, 5000, 6000, 0, {true, true, false, false});
    row("open-ended item starts inside", 5500, -1, 5000, 6000, 0, {true, true, false, false});
    row("open-ended item starts at the end", 6000, -1, 5000, 6000, 0, {true, false, false, false});
    row("open-ended item after the end", 6001, -1, 5000, 6000, 0, {false, false, false, false});
    row("open-ended item has no minimum", 6001, -1, 5000, 6000, 5000, {false, false, false, false});

    row("no end: item ends at the start", 4000, 1000, 5000, 4999, 0, {true, false, false, false});
    row("no end: item ends before the start", 3999, 1000, 5000, 4999, 0, {false, false, false, false});
    row("no end: the minimum plays no part", 3999, 1000, 5000, 4999, 9000, {false, false, false, false});
    row("no end: item ends after the start", 4001, 1000, 5000, 4999, 0, {true, true, false, false});
    row("no end: item starts at the start", 5000, 10, 5000, 4999, 0, {true, true, true, false});
    row("no end: item starts after the start", 5001, 10, 5000, 4999, 0, {true, true, true, true});
    row("no end: empty item at the start", 5000, 0, 5000, 4999, 0, {true, false, true, false});
    row("no end: open-ended item before", 4000, -1, 5000, 4999, 0, {true, true, false, false});
    row("no end: open-ended item at the start", 5000, -1, 5000, 4999, 0, {true, true, true, false});
    row("no end: open-ended item after", 5001, -1, 5000, 4999, 0, {true, true, true, true});
    row("no end, from the epoch", -500, 500, 0, -1, 0, {true, false, false, false});
}

void tst_track_queries::itemIsInInterval()
{
    QFETCH(const qint64, itemStart);
    QFETCH(const int, duration);
    QFETCH(const qint64, start);
    QFETCH(const qint64, end);
    QFETCH(const qint64, minimum);
    QFETCH(const QVector<bool>, expected);
    const Item item(itemStart, duration, Qt::red, true);
    QVector<bool> actual;
    for (const bool complete : {false, true}) {
        for (const bool strict : {false, true})
            actual.append(Track::isItemBetween(item, start, end, strict, complete, minimum));
    }
    QCOMPARE(actual, expected);
}

void tst_track_queries::extremeTimesDoNotOverflow()
{
    constexpr qint64 least = std::numeric_limits<qint64>::min();
    constexpr qint64 most = std::numeric_limits<qint64>::max();
    const Item item(1000, 1000, Qt::red, true);
    QVERIFY(Track::isItemBetween(item, least, most - 1, true, true, 0));
    QVERIFY(Track::isItemBetween(item, 0, most, true, true, 0));
    QVERIFY(!Track::isItemBetween(item, 2000, most, true, false, 0));
    QVERIFY(Track::isItemBetween(Item(0, std::numeric_limits<int>::max(), Qt::red, true), 0, 3'000'000'000, false, true,
                                 2'999'999'999));
}

void tst_track_queries::endBeforeStartStopsAtAnAssertion()
{
    const Item item(1000, 1000, Qt::red, true);
    const ChildEnd inside = runInChild([&] { return int(Track::isItemBetween(item, 1800, 1200, false, false, 0)); });
    const ChildEnd outside = runInChild([&] { return int(Track::isItemBetween(item, 1800, 900, false, false, 0)); });
    if (areAssertionsChecked) {
        QVERIFY(inside.isAborted && outside.isAborted);
        QVERIFY2(inside.text.contains("end + 1 > start"), inside.text.constData());
    } else {
        QCOMPARE(inside.result, 1);
        QCOMPARE(outside.result, 0);
    }
}

void tst_track_queries::openEndedItemsNeedNoValidInterval()
{
    const Item item(1000, -1, Qt::red, true);
    QVERIFY(Track::isItemBetween(item, 1800, 1200, true, false, 0));
    QVERIFY(!Track::isItemBetween(item, 1800, 1200, true, true, 0));
    QVERIFY(!Track::isItemBetween(item, 1800, 500, false, false, 0));
}

void tst_track_queries::sortedIdsIncludeCopyItems()
{
    OpenTrack track(1, QString());
    track.newItem(10, 300, 10);
    track.newTrack(2)->newItem(20, 100, 10);
    track.newItem(11, 900, 10);
    track.addCopyItemId(20);
    QCOMPARE(track.itemIdsBetween(0, 500, false, false, false, true), QVector<int>({20, 10}));
    QCOMPARE(track.itemIdsBetween(0, 100, true, false, false, true), QVector<int>());
}

void tst_track_queries::sortedIdsNameAnItemTwiceWhenItIsAlsoACopy()
{
    OpenTrack track(1, QString());
    track.newItem(10, 300, 10);
    track.newTrack(2)->newItem(20, 100, 10);
    track.addCopyItemId(20);
    QCOMPARE(track.itemIdsBetween(0, 500, false, false, true, true), QVector<int>({20, 20, 10}));
}

void tst_track_queries::unsortedIdsLeaveCopyItemsOut()
{
    OpenTrack track(1, QString());
    OpenTrack* const child = track.newTrack(2);
    track.newItem(10, 300, 10);
    child->newItem(20, 100, 10);
    child->newTrack(3)->newItem(30, 50, 10);
    track.addCopyItemId(20);
    child->addCopyItemId(30);
    QCOMPARE(track.itemIdsBetween(0, 500, false, false, false, false), QVector<int>{10});
    QCOMPARE(track.itemIdsBetween(0, 500, false, false, true, false), QVector<int>({10, 20, 30}));
}

void tst_track_queries::unsortedChildrenAreTestedWithTheirOwnDurations()
{
    OpenTrack track(1, QString());
    track.newItem(10, 100, 0);
    track.newTrack(2)->newItem(20, 100, 0);
    QCOMPARE(track.itemIdsBetween(150, 500, false, false, true, false, 60), QVector<int>{10});
    QCOMPARE(track.itemIdsBetween(150, 500, false, false, true, true, 60).size(), 2);
}

void tst_track_queries::minimumDurationSortsTheListsOfTheChildren()
{
    OpenTrack track(1, QString());
    OpenTrack* const first = track.newTrack(2);
    first->newItem(20, 300, 10);
    first->newTrack(4)->newItem(40, 200, 10);
    first->addCopyItemId(40);
    track.newTrack(3)->newItem(30, 100, 10);
    track.newItem(10, 400, 10);

    QCOMPARE(track.itemIdsBetween(0, 500, false, false, true, false, 0), QVector<int>({10, 20, 40, 30}));
    QCOMPARE(track.itemIdsBetween(0, 500, false, false, true, false, 1), QVector<int>({10, 40, 40, 20, 30}));
}

void tst_track_queries::minimumDurationStretchesOwnItemsOnly()
{
    OpenTrack track(1, QString());
    track.newItem(10, 100, 0);
    QCOMPARE(track.itemIdsBetween(150, 500, false, false, false, false, 50), QVector<int>{10});
    QCOMPARE(track.itemIdsBetween(150, 500, false, false, false, false), QVector<int>());
    QCOMPARE(track.itemIdsBetween(150, 500, false, false, false, true, 50), QVector<int>{10});
}

void tst_track_queries::copyItemIdsVisitOneLevelOfChildrenOnly()
{
    OpenTrack track(1, QString());
    OpenTrack* const child = track.newTrack(2);
    OpenTrack* const grandchild = child->newTrack(3);
    for (int id = 10; id < 14; ++id)
        grandchild->newItem(id, id * 10, 5);
    track.addCopyItemId(10);
    child->addCopyItemId(11);
    grandchild->addCopyItemId(12);
    QCOMPARE(track.copyItemIdsBetween(0, 500, false, false, false, false), QVector<int>{10});
    QCOMPARE(track.copyItemIdsBetween(0, 500, false, false, true, false), QVector<int>({10, 11}));
    QCOMPARE(child->copyItemIdsBetween(0, 500, false, false, true, false), QVector<int>({11, 12}));
}

void tst_track_queries::copyItemIdsIgnoreTheMinimumDuration()
{
    OpenTrack track(1, QString());
    track.newTrack(2)->newItem(20, 100, 0);
    track.addCopyItemId(20);
    QCOMPARE(track.copyItemIdsBetween(150, 500, false, false, false, true, 60), QVector<int>());
    QCOMPARE(track.copyItemIdsBetween(100, 500, false, false, false, true, 60), QVector<int>{20});
}

void tst_track_queries::copyItemIdsSortByStartTime()
{
    OpenTrack track(1, QString());
    OpenTrack* const child = track.newTrack(2);
    child->newItem(20, 300, 5);
    child->newItem(21, 100, 5);
    track.addCopyItemId(20);
    child->addCopyItemId(21);
    QCOMPARE(track.copyItemIdsBetween(0, 500, false, false, true, false), QVector<int>({20, 21}));
    QCOMPARE(track.copyItemIdsBetween(0, 500, false, false, true, true), QVector<int>({21, 20}));
}

void tst_track_queries::danglingCopyIdsAreSkippedWithALine()
{
    OpenTrack track(1, QString());
    track.newItem(10, 100, 5);
    track.addCopyItemIds({99});
    {
        StderrCapture capture;
        QCOMPARE(track.itemIdsBetween(0, 500, false, false, false, true), QVector<int>{10});
        QCOMPARE(capture.take(), QByteArray("cannot add item ptr ref from copy item with copy item id 99: "
                                            "_item: item with id 99 not found!\n"));
    }
    {
        StderrCapture capture;
        QCOMPARE(track.itemIdsBetween(0, 500, false, false, false, false), QVector<int>{10});
        QCOMPARE(capture.take(), QByteArray());
    }
    StderrCapture capture;
    QCOMPARE(track.copyItemIdsBetween(0, 500, false, false, false, true), QVector<int>());
    QCOMPARE(capture.take(), QByteArray("Track::_copyItems: cannot find item for item id 99\n"));
}

void tst_track_queries::anyItemCountsUnlessIgnored()
{
    OpenTrack track(1, QString());
    track.newItem(10, 100, 50);
    OpenTrack* const child = track.newTrack(2);
    child->newItem(20, 300, 50);
    child->newTrack(3)->newItem(30, 500, 50);

    QVERIFY(track.isItemsBetween(120, 130, QVector<int>(), true, false, false));
    QVERIFY(!track.isItemsBetween(120, 130, QVector<int>{9, 10}, true, false, true));
    QVERIFY(!track.isItemsBetween(150, 200, QVector<int>(), true, false, false));
    QVERIFY(track.isItemsBetween(150, 200, QVector<int>(), false, false, false));
    QVERIFY(!track.isItemsBetween(320, 330, QVector<int>(), true, false, false));
    QVERIFY(track.isItemsBetween(320, 330, QVector<int>(), true, false, true));
    QVERIFY(track.isItemsBetween(520, 530, QVector<int>(), true, false, true));
    QVERIFY(!track.isItemsBetween(520, 530, QVector<int>{30}, true, false, true));
    QVERIFY(track.isItemsBetween(560, 570, QVector<int>(), true, false, true, 65));
    QVERIFY(!track.isItemsBetween(560, 570, QVector<int>(), true, false, true));
    QVERIFY(track.isItemsBetween(90, 160, QVector<int>(), true, true, false));
    QVERIFY(!track.isItemsBetween(100, 150, QVector<int>(), true, true, false));
}

void tst_track_queries::ignoredItemIsIgnoredAsACopyToo()
{
    OpenTrack track(1, QString());
    track.newTrack(2)->newItem(20, 300, 50);
    track.addCopyItemId(20);
    QVERIFY(track.isItemsBetween(320, 330, QVector<int>(), true, false, false));
    QVERIFY(!track.isItemsBetween(320, 330, QVector<int>{20}, true, false, false));
    QVERIFY(!track.isItemsBetween(320, 330, QVector<int>{20}, true, false, true));
}

void tst_track_queries::anyCopyItemCountsWithTheMinimumDuration()
{
    OpenTrack track(1, QString());
    track.newTrack(2)->newItem(20, 300, 0);
    track.addCopyItemId(20);
    QVERIFY(track.isItemsBetween(320, 330, QVector<int>(), true, false, false, 25));
    QVERIFY(!track.isItemsBetween(320, 330, QVector<int>(), true, false, false));
}

void tst_track_queries::danglingCopyIdMakesTheCheckThrow()
{
    OpenTrack track(1, QString());
    track.newItem(10, 100, 50);
    OpenTrack* const child = track.newTrack(2);
    child->addCopyItemId(99);
    COMPARE_THROWN_STRING(track.isItemsBetween(900, 950, QVector<int>{99}, true, false, true), "lookup failed!");
    COMPARE_THROWN_STRING(track.isItemsBetween(900, 950, 99, true, false, true), "lookup failed!");
    QVERIFY2(track.isItemsBetween(120, 130, QVector<int>(), true, false, true), "the first hit ends the search");
    QVERIFY(!track.isItemsBetween(900, 950, QVector<int>(), true, false, false));
}

void tst_track_queries::singleIgnoreIdIsAListOfOne()
{
    OpenTrack track(1, QString());
    track.newItem(10, 100, 0);
    track.newTrack(2)->newItem(20, 100, 50);
    QVERIFY(!track.isItemsBetween(110, 130, 10, true, false, false, 40));
    QVERIFY(track.isItemsBetween(110, 130, 20, true, false, false, 40));
    QVERIFY(!track.isItemsBetween(110, 130, 20, true, false, true));
    QVERIFY(track.isItemsBetween(110, 130, -1, true, false, true));
}

void tst_track_queries::modelQueriesAskTheRoot()
{
    TestModel model;
    const int top = model.newTrack(QStringLiteral("A"));
    const int below = model.newTrack(QStringLiteral("B"), top);
    const int late = model.newItem(top, 3000, 100);
    const int early = model.newItem(below, 1000, 100);

    QCOMPARE(model.itemIdsBetween(0, 5000, false, false, true, false), QVector<int>({late, early}));
    QCOMPARE(model.itemIdsBetween(0, 5000, false, false, true, true), QVector<int>({early, late}));
    QCOMPARE(model.itemIdsBetween(0, 5000, false, false, false, true), QVector<int>());
    QCOMPARE(model.itemIdsBetween(0, 1000, true, false, true, true), QVector<int>());
    QCOMPARE(model.itemIdsBetween(1050, 5000, false, true, true, true), QVector<int>{late});

    QVERIFY(model.isItemsBetween(900, 1200, QVector<int>(), true, true, true));
    QVERIFY(!model.isItemsBetween(900, 1200, QVector<int>(), true, true, false));
    QVERIFY(!model.isItemsBetween(900, 1200, QVector<int>{early}, true, true, true));
    QVERIFY(!model.isItemsBetween(900, 1200, early, true, true, true));
    QVERIFY(model.isItemsBetween(900, 1200, late, true, true, true));
    QVERIFY(!model.isItemsBetween(1000, 1100, late, true, true, true));
}

void tst_track_queries::modelCopyQueryIncludesTheTopLevelTracks()
{
    TestModel model;
    const int top = model.newTrack(QStringLiteral("A"));
    const int below = model.newTrack(QStringLiteral("B"), top);
    const int late = model.newItem(below, 3000, 100);
    const int early = model.newItem(below, 1000, 100);
    model.rootTrack()->addCopyItemId(late);
    model.track(top)->addCopyItemId(early);
    model.track(below)->addCopyItemIds({late, early});

    QCOMPARE(model.copyItemIdsBetween(0, 5000, false, false, false), QVector<int>({late, early}));
    QCOMPARE(model.copyItemIdsBetween(0, 5000, false, false, true), QVector<int>({early, late}));
    QCOMPARE(model.copyItemIdsBetween(1100, 3000, true, false, true), QVector<int>());
    QCOMPARE(model.copyItemIdsBetween(1000, 3050, false, true, true), QVector<int>{early});
}

void tst_track_queries::modelVariantLeavesCopyItemsOut()
{
    TestModel model;
    const int top = model.newTrack(QStringLiteral("A"));
    const int below = model.newTrack(QStringLiteral("B"), top);
    const int own = model.newItem(top, 3000, 100);
    const int deep = model.newItem(below, 1000, 0);
    Track& track = *model.track(top);
    track.addCopyItemId(deep);

    QCOMPARE(model._itemIdsBetween(track, 0, 5000, false, false, false, true, 0), QVector<int>{own});
    QCOMPARE(model._itemIdsBetween(track, 0, 5000, false, false, true, false, 0), QVector<int>({own, deep}));
    QCOMPARE(model._itemIdsBetween(track, 0, 5000, false, false, true, true, 0), QVector<int>({deep, own}));
    // Unlike the track's own query the children's items get the minimum duration too.
    QCOMPARE(model._itemIdsBetween(track, 1500, 2000, false, false, true, false, 600), QVector<int>{deep});
}

void tst_track_queries::modelVariantSortsThroughTheItemCache()
{
    TestModel model;
    const int top = model.newTrack(QStringLiteral("A"));
    const int first = model.newItem(top, 1000, 100);
    const int second = model.newItem(top, 2000, 100);
    // Another object under the id shows which of the two is asked for its start time.
    Item late(9000, 100, Qt::red, true);
    model.m_itemCache[first] = &late;
    QCOMPARE(model._itemIdsBetween(*model.track(top), 0, 5000, false, false, false, true, 0),
             QVector<int>({second, first}));
    model.m_itemCache.erase(first);
    QCOMPARE(model._itemIdsBetween(*model.track(top), 0, 5000, false, false, false, true, 0).size(), 2);
}

void tst_track_queries::modelCopyVariantVisitsTheWholeSubtree()
{
    TestModel model;
    const int top = model.newTrack(QStringLiteral("A"));
    const int below = model.newTrack(QStringLiteral("B"), top);
    const int deep = model.newTrack(QStringLiteral("C"), below);
    const int late = model.newItem(deep, 3000, 0);
    const int middle = model.newItem(deep, 2000, 0);
    const int early = model.newItem(deep, 1000, 0);
    Track& track = *model.track(top);
    track.addCopyItemId(middle);
    model.track(below)->addCopyItemId(late);
    model.track(deep)->addCopyItemId(early);

    QCOMPARE(model._copyItemIdsBetween(track, 0, 5000, false, false, false, false, 0), QVector<int>{middle});
    QCOMPARE(model._copyItemIdsBetween(track, 0, 5000, false, false, true, false, 0),
             QVector<int>({middle, late, early}));
    QCOMPARE(model._copyItemIdsBetween(track, 0, 5000, false, false, true, true, 0),
             QVector<int>({early, middle, late}));
    QCOMPARE(model._copyItemIdsBetween(track, 2500, 2900, false, false, true, true, 600), QVector<int>{middle});
}

void tst_track_queries::modelCopyVariantCollapsesOnlyAdjacentDuplicates()
{
    TestModel model;
    const int top = model.newTrack(QStringLiteral("A"));
    const int below = model.newTrack(QStringLiteral("B"), top);
    const int deep = model.newTrack(QStringLiteral("C"), below);
    const int item = model.newItem(deep, 1000, 10);
    const int other = model.newItem(deep, 2000, 10);
    Track& track = *model.track(top);
    track.addCopyItemId(item);
    model.track(below)->addCopyItemId(item);
    QCOMPARE(model._copyItemIdsBetween(track, 0, 5000, false, false, true, false, 0), QVector<int>{item});

    model.track(below)->clearCopyItemIds();
    model.track(below)->addCopyItemId(other);
    model.track(deep)->addCopyItemId(item);
    QCOMPARE(model._copyItemIdsBetween(track, 0, 5000, false, false, true, false, 0),
             QVector<int>({item, other, item}));
    QCOMPARE(model._copyItemIdsBetween(track, 0, 5000, false, false, true, true, 0), QVector<int>({item, item, other}));
}

void tst_track_queries::modelCopyVariantThrowsForADanglingId()
{
    TestModel model;
    const int top = model.newTrack(QStringLiteral("A"));
    model.track(top)->addCopyItemId(99);
    COMPARE_THROWN_STRING(model._copyItemIdsBetween(*model.track(top), 0, 5000, false, false, false, false, 0),
                          "Model: const item with id 99 not found in cache");
}

void tst_track_queries::modelCheckIgnoresCopyItems()
{
    TestModel model;
    const int top = model.newTrack(QStringLiteral("A"));
    const int below = model.newTrack(QStringLiteral("B"), top);
    const int item = model.newItem(below, 1000, 0);
    const Track& track = *model.track(top);
    model.track(top)->addCopyItemIds({item, 99});

    QVERIFY(!model._isItemsBetween(track, 900, 1100, QVector<int>(), true, false, false, 0));
    QVERIFY(model._isItemsBetween(track, 900, 1100, QVector<int>(), true, false, true, 0));
    QVERIFY(!model._isItemsBetween(track, 900, 1100, QVector<int>{item}, true, false, true, 0));
    QVERIFY(!model._isItemsBetween(track, 900, 1100, item, true, false, true, 0));
    QVERIFY(model._isItemsBetween(track, 900, 1100, 99, true, false, true, 0));
    QVERIFY(model._isItemsBetween(track, 1050, 1100, -1, true, false, true, 60));
}

void tst_track_queries::isItemBetweenEqualsTheReference()
{
    QRandomGenerator random(20261);
    for (int i = 0; i < 20000; ++i) {
        const PlainItem item{0, random.bounded(-12, 12), random.bounded(-1, 8)};
        const qint64 start = random.bounded(-12, 12);
        const Interval in{start, start - 1 + random.bounded(10), random.bounded(2) == 0, random.bounded(2) == 0};
        const qint64 minimum = random.bounded(6);
        const Item object(item.start, item.duration, Qt::red, true);
        QCOMPARE(Track::isItemBetween(object, in.start, in.end, in.strict, in.complete, minimum),
                 Reference::isIn(item, in, minimum));
    }
}

void tst_track_queries::trackQueriesEqualTheReference()
{
    for (quint32 seed = 1; seed <= 3; ++seed) {
        RandomTree tree(seed);
        for (int i = 0; i < rounds; ++i) {
            const Track& track = tree.randomTrack();
            const PlainTrack plain = tree.plain(track);
            const Interval in = tree.randomInterval();
            const qint64 minimum = tree.randomMinimum();
            const QVector<int> ignored = tree.randomIds();
            for (const bool recursive : {false, true}) {
                for (const bool sorted : {false, true}) {
                    QCOMPARE(track.itemIdsBetween(in.start, in.end, in.strict, in.complete, recursive, sorted, minimum),
                             Reference::itemIdsBetween(plain, in, recursive, sorted, minimum));
                    QCOMPARE(
                        track.copyItemIdsBetween(in.start, in.end, in.strict, in.complete, recursive, sorted, minimum),
                        Reference::copyItemIdsBetween(plain, in, recursive, sorted));
                }
                QCOMPARE(track.isItemsBetween(in.start, in.end, ignored, in.strict, in.complete, recursive, minimum),
                         Reference::isItemsBetween(plain, in, ignored, recursive, minimum).value());
            }
        }
    }
}

void tst_track_queries::modelQueriesEqualTheReference()
{
    for (quint32 seed = 11; seed <= 13; ++seed) {
        RandomTree tree(seed);
        const TestModel& model = tree.model;
        const PlainTrack plainRoot = tree.plain(*model.rootTrack());
        const Reference::ItemsById items = tree.itemsById();
        for (int i = 0; i < rounds; ++i) {
            Track& track = tree.randomTrack();
            const PlainTrack plain = tree.plain(track);
            const Interval in = tree.randomInterval();
            const qint64 minimum = tree.randomMinimum();
            const QVector<int> ignored = tree.randomIds();
            for (const bool recursive : {false, true}) {
                for (const bool sorted : {false, true}) {
                    QCOMPARE(model._itemIdsBetween(track, in.start, in.end, in.strict, in.complete, recursive, sorted,
                                                   minimum),
                             Reference::modelItemIdsBetween(plain, items, in, recursive, sorted, minimum));
                    QCOMPARE(model._copyItemIdsBetween(track, in.start, in.end, in.strict, in.complete, recursive,
                                                       sorted, minimum),
                             Reference::modelCopyItemIdsBetween(plain, items, in, recursive, sorted, minimum));
                    QCOMPARE(model.itemIdsBetween(in.start, in.end, in.strict, in.complete, recursive, sorted),
                             Reference::itemIdsBetween(plainRoot, in, recursive, sorted, 0));
                }
                QCOMPARE(
                    model._isItemsBetween(track, in.start, in.end, ignored, in.strict, in.complete, recursive, minimum),
                    Reference::modelIsItemsBetween(plain, in, ignored, recursive, minimum));
                QCOMPARE(model.isItemsBetween(in.start, in.end, ignored, in.strict, in.complete, recursive),
                         Reference::isItemsBetween(plainRoot, in, ignored, recursive, 0).value());
            }
        }
    }
}

QTEST_GUILESS_MAIN(tst_track_queries)
#include "tst_track_queries.moc"
