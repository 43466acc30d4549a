#include "auto/data/model_signals.h"
#include "reference/snapping.h"
#include "support/forked_child.h"
#include "support/input.h"
#include "support/recording_logger.h"
#include "support/test_model.h"
#include "support/thrown.h"
#include "support/view_fixture.h"

#include <VeskTimeline/timeline_view_drag_handler.h>

#include <QRandomGenerator>
#include <QRegularExpression>
#include <QTest>

using namespace VeskTimeline;

namespace {

/// Writes down which virtual operations are called, then does what the base class does.
class NotedModel : public TestModel
{
public:
    void setItemStartTime(Track& track, Item& item, qint64 time) override
    {
        calls.append(
            QStringLiteral("start of item on track %1, item's parent %2").arg(track.id()).arg(item.parentTrackId()));
        TestModel::setItemStartTime(track, item, time);
    }
    void setItemStartTime(Item& item, qint64 time) override
    {
        calls.append(QStringLiteral("start of item"));
        TestModel::setItemStartTime(item, time);
    }
    void setItemStartTime(int itemId, qint64 time) override
    {
        calls.append(QStringLiteral("start of id"));
        TestModel::setItemStartTime(itemId, time);
    }
    void setItemDuration(Track& track, Item& item, int duration) override
    {
        calls.append(QStringLiteral("duration of item on track %1").arg(track.id()));
        TestModel::setItemDuration(track, item, duration);
    }
    void setItemDuration(Item& item, int duration) override
    {
        calls.append(QStringLiteral("duration of item"));
        TestModel::setItemDuration(item, duration);
    }
    void setItemDuration(int itemId, int duration) override
    {
        calls.append(QStringLiteral("duration of id"));
        TestModel::setItemDuration(itemId, duration);
    }

    QStringList calls;
};

/// Without the model tester, for rows and ids that do not fit together.
class OpenModel : public TimelineModel
{
public:
    using TimelineModel::addItem;
    using TimelineModel::insertTrack;
    using TimelineModel::m_itemCache;
    using TimelineModel::m_itemCaching;
    using TimelineModel::m_trackCache;
    using TimelineModel::m_trackCaching;
    using TimelineModel::nextFreeTrackId;
};

ItemPtr newItem(qint64 start, int duration = 10)
{
    return std::make_unique<Item>(start, duration, Qt::red, true);
}

TrackPtr newTrack(const char* text)
{
    return std::make_unique<Track>(QString::fromLatin1(text));
}

} // namespace

class tst_timeline_model_editing : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".?"))); }

    void settersStoreAndEmitNothing();
    void snapTimeCutsTowardsTheEpoch_data();
    void snapTimeCutsTowardsTheEpoch();
    void snapTimeEqualsTheReference();
    void negativeMinimumDurationIsZeroWithAWarning();
    void minimumDurationOffTheSecondIsStoredWithAWarningWhileSnapping();
    void minimumDurationLogsNothingWhenItFits();

    void addItemGivesIdsSortsAndFillsTheCache();
    void addItemEmitsDataChangedAndNothingElse();
    void addItemOnTheRootEmitsTheInvalidIndex();
    void addItemCutsToWholeSecondsWhileSnapping_data();
    void addItemCutsToWholeSecondsWhileSnapping();
    void addItemEqualsTheReference();
    void addItemToAnUnknownTrackUsesUpAnIdAndChangesNothing();

    void removeItemDestroysTheItemAndEmitsNothing();
    void removeItemOfAnUnknownIdThrows();
    void removeItemMissingInTheCacheStopsAtAnAssertion();
    void removeItemLeavesCopyItemIds();

    void removeTrackDestroysTheSubtreeAndEmitsNothing();
    void removeTrackLeavesStaleEntriesOfDescendants();
    void removeTrackOfAnUnknownIdThrows();
    void removeTrackOfTheRootStopsAtAnAssertion();
    void removeTrackWithAnItemMissingInTheCacheStopsAtAnAssertion();
    void removeTrackMissingInTheCacheStopsAtAnAssertion();
    void removedTrackIdsAreNotReused();

    void moveItemToTrackMovesTheSameObject();
    void moveItemToTrackOnTheSameTrackChangesTheTime();
    void moveItemToTrackDoesNotSnap();
    void moveItemToTrackCallsTheFirstFormOnceBeforeTheParentChanges();
    void moveItemToTrackOfUnknownIdsChangesNothing();

    void setItemStartTimeSortsAndEmitsNothing();
    void setItemStartTimeNeitherSnapsNorChecks();
    void setItemStartTimeDelegatesThroughTheVirtuals();
    void setItemStartTimeOfUnknownIdsThrows();
    void setItemDurationKeepsTheMinimum();
    void setItemDurationSortsTheTrack();
    void setItemDurationDelegatesThroughTheVirtuals();
    void setItemDurationOfUnknownIdsThrows();

    void policyHooksAllowEverything();
    void isItemDraggedAsksTheDragHandlerOfTheView();
    void isItemDraggedIsFalseWithoutViewOrHandler();

    void insertTrackGivesIdsAndFillsTheCache();
    void insertTrackEmitsTheRowSignals();
    void insertTrackPutsTheTrackAtTheRow_data();
    void insertTrackPutsTheTrackAtTheRow();
    void insertTrackRefusesTracksThatHoldSomething();
    void insertTrackRefusesAnUnknownParent();
};

void tst_timeline_model_editing::settersStoreAndEmitNothing()
{
    RecordingLogger log;
    TestModel model;
    ModelSignals emitted(&model);
    model.setEditable(false);
    QVERIFY(!model.isEditable());
    model.setSnapEnabled(true);
    QVERIFY(model.isSnapEnabled());
    model.setSnapStep(-3);
    QCOMPARE(model.snapStep(), -3);
    model.setSnapTolerance(-7);
    QCOMPARE(model.snapTolerance(), -7);
    model.setMinimumDuration(3000);
    QCOMPARE(model.minimumDuration(), 3000);
    QCOMPARE(emitted.take(), QStringList());
    QVERIFY(log.entries().empty());
}

void tst_timeline_model_editing::snapTimeCutsTowardsTheEpoch_data()
{
    QTest::addColumn<bool>("isSnapping");
    QTest::addColumn<int>("step");
    QTest::addColumn<qint64>("time");
    QTest::addColumn<qint64>("expected");
    QTest::newRow("down") << true << 500 << qint64(1234) << qint64(1000);
    QTest::newRow("never up") << true << 500 << qint64(1499) << qint64(1000);
    QTest::newRow("on the grid") << true << 500 << qint64(1500) << qint64(1500);
    QTest::newRow("before the epoch") << true << 500 << qint64(-1234) << qint64(-1000);
    QTest::newRow("just before the epoch") << true << 500 << qint64(-499) << qint64(0);
    QTest::newRow("64 bits") << true << 7 << qint64(1'600'000'000'003) << qint64(1'600'000'000'003 / 7 * 7);
    QTest::newRow("off") << false << 500 << qint64(1234) << qint64(1234);
    QTest::newRow("off, before the epoch") << false << 500 << qint64(-1234) << qint64(-1234);
}

void tst_timeline_model_editing::snapTimeCutsTowardsTheEpoch()
{
    QFETCH(const bool, isSnapping);
    QFETCH(const int, step);
    QFETCH(const qint64, time);
    QFETCH(const qint64, expected);
    TestModel model;
    model.setSnapEnabled(isSnapping);
    model.setSnapStep(step);
    model.setSnapTolerance(100'000);
    QCOMPARE(model.snapTime(time), expected);
}

void tst_timeline_model_editing::snapTimeEqualsTheReference()
{
    TestModel model;
    model.setSnapEnabled(true);
    QRandomGenerator random(4711);
    for (int i = 0; i < 3000; ++i) {
        const int step = random.bounded(1, 2000);
        const qint64 time = random.bounded(-100'000, 100'000);
        model.setSnapStep(step);
        QCOMPARE(model.snapTime(time), Reference::snapped(time, step));
    }
}

void tst_timeline_model_editing::negativeMinimumDurationIsZeroWithAWarning()
{
    RecordingLogger log;
    TestModel model;
    model.setSnapEnabled(true);
    model.setMinimumDuration(2000);
    model.setMinimumDuration(-5);
    QCOMPARE(model.minimumDuration(), 0);
    QCOMPARE(log.entries().size(), std::size_t(1));
    const RecordingLogger::Entry& entry = log.entries().front();
    QCOMPARE(entry.logger, QStringLiteral("Timeline.TimelineModel"));
    QCOMPARE(entry.level, Hox::Warning);
    QCOMPARE(entry.message, QStringLiteral("void VeskTimeline::TimelineModel::setMinimumDuration(int) "
                                           "negative duration is not possible -> setting minimum duration to 0"));
}

void tst_timeline_model_editing::minimumDurationOffTheSecondIsStoredWithAWarningWhileSnapping()
{
    RecordingLogger log;
    TestModel model;
    model.setSnapEnabled(true);
    model.setSnapStep(500); // the grid is not what counts
    model.setMinimumDuration(1500);
    QCOMPARE(model.minimumDuration(), 1500);
    QCOMPARE(log.entries().size(), std::size_t(1));
    const RecordingLogger::Entry& entry = log.entries().front();
    QCOMPARE(entry.logger, QStringLiteral("Timeline.TimelineModel"));
    QCOMPARE(entry.level, Hox::Warning);
    QCOMPARE(entry.message,
             QStringLiteral("void VeskTimeline::TimelineModel::setMinimumDuration(int) Snapping to 1000ms enabled, yet "
                            "minimum duration is not a multiple of 1000ms: 1500"));
}

void tst_timeline_model_editing::minimumDurationLogsNothingWhenItFits()
{
    RecordingLogger log;
    TestModel model;
    model.setMinimumDuration(1500);
    QCOMPARE(model.minimumDuration(), 1500);
    model.setSnapEnabled(true);
    model.setSnapStep(7);
    model.setMinimumDuration(3000);
    QCOMPARE(model.minimumDuration(), 3000);
    model.setMinimumDuration(0);
    QCOMPARE(model.minimumDuration(), 0);
    QVERIFY(log.entries().empty());

    log.setThreshold(Hox::Error);
    model.setMinimumDuration(-1);
    model.setMinimumDuration(1);
    QVERIFY2(log.entries().empty(), "the logger is asked first");
    QCOMPARE(model.minimumDuration(), 1);
}

void tst_timeline_model_editing::addItemGivesIdsSortsAndFillsTheCache()
{
    TestModel model;
    const int a = model.newTrack(QStringLiteral("A"));
    ItemPtr late = newItem(5000, 1234);
    Item* const object = late.get();
    QCOMPARE(model.addItem(a, std::move(late), true), 0);
    QVERIFY(!late);
    QCOMPARE(model.addItem(a, newItem(1000), false), 1);
    QCOMPARE(model.addItem(a, newItem(5000, 1), false), 2);

    QCOMPARE(object->id(), 0);
    QCOMPARE(object->parentTrackId(), a);
    QCOMPARE(object->startTime(), 5000);
    QCOMPARE(object->duration(), 1234);
    QCOMPARE(model.item(0), object);
    QCOMPARE(model.m_itemCache.size(), std::size_t(3));
    QCOMPARE(model.times(a), QStringList({"1000+10", "5000+1234", "5000+1"}));
}

void tst_timeline_model_editing::addItemEmitsDataChangedAndNothingElse()
{
    TestModel model;
    const int a = model.newTrack(QStringLiteral("A"));
    model.newTrack(QStringLiteral("B"), a);
    const int c = model.newTrack(QStringLiteral("C"), a);
    ModelSignals emitted(&model);
    int itemsAtSignal = -1;
    connect(&model, &TimelineModel::dataChanged, this, [&] { itemsAtSignal = int(model.m_itemCache.size()); });
    model.addItem(c, newItem(1000), false);
    QCOMPARE(emitted.take(), QStringList{"dataChanged (track 3 row 1 column 0) (track 3 row 1 column 0) roles 0"});
    QCOMPARE(itemsAtSignal, 1);
}

void tst_timeline_model_editing::addItemOnTheRootEmitsTheInvalidIndex()
{
    OpenModel model;
    ModelSignals emitted(&model);
    QCOMPARE(model.addItem(0, newItem(1000), false), 0);
    QCOMPARE(emitted.take(), QStringList{"dataChanged (root) (root) roles 0"});
    QCOMPARE(model.rootTrack()->itemCount(), 1);
    QCOMPARE(model.item(0)->parentTrackId(), 0);
}

void tst_timeline_model_editing::addItemCutsToWholeSecondsWhileSnapping_data()
{
    QTest::addColumn<qint64>("start");
    QTest::addColumn<int>("duration");
    QTest::addColumn<qint64>("expectedStart");
    QTest::addColumn<int>("expectedDuration");
    QTest::newRow("cut") << qint64(12345) << 2500 << qint64(12000) << 2000;
    QTest::newRow("whole") << qint64(12000) << 2000 << qint64(12000) << 2000;
    QTest::newRow("before the epoch") << qint64(-12345) << 999 << qint64(-12000) << 0;
    QTest::newRow("open-ended") << qint64(1500) << -1 << qint64(1000) << 0;
}

void tst_timeline_model_editing::addItemCutsToWholeSecondsWhileSnapping()
{
    QFETCH(const qint64, start);
    QFETCH(const int, duration);
    QFETCH(const qint64, expectedStart);
    QFETCH(const int, expectedDuration);
    for (const int step : {1, 500, 60'000}) {
        TestModel model;
        const int a = model.newTrack(QStringLiteral("A"));
        model.setSnapStep(step);
        const int free = model.newItem(a, start, duration);
        QCOMPARE(model.item(free)->startTime(), start);
        QCOMPARE(model.item(free)->duration(), duration);
        model.setSnapEnabled(true);
        const int cut = model.newItem(a, start, duration);
        QCOMPARE(model.item(cut)->startTime(), expectedStart);
        QCOMPARE(model.item(cut)->duration(), expectedDuration);
    }
}

void tst_timeline_model_editing::addItemEqualsTheReference()
{
    TestModel model;
    const int a = model.newTrack(QStringLiteral("A"));
    model.setSnapEnabled(true);
    QRandomGenerator random(815);
    for (int i = 0; i < 300; ++i) {
        const qint64 start = random.bounded(-1'000'000, 1'000'000);
        const int duration = random.bounded(-1, 100'000);
        const Item* const item = model.item(model.newItem(a, start, duration));
        QCOMPARE(item->startTime(), Reference::snapped(start, 1000));
        QCOMPARE(item->duration(), int(Reference::snapped(duration, 1000)));
    }
}

void tst_timeline_model_editing::addItemToAnUnknownTrackUsesUpAnIdAndChangesNothing()
{
    TestModel model;
    const int a = model.newTrack(QStringLiteral("A"));
    ModelSignals emitted(&model);
    ItemPtr item = newItem(1000);
    COMPARE_THROWN_STRING(model.addItem(77, std::move(item), false), "Model: track with id 77 not found in cache");
    QVERIFY(item);
    QVERIFY(model.m_itemCache.empty());
    QCOMPARE(emitted.take(), QStringList());
    QCOMPARE(model.newItem(a, 1000, 10), 1);
}

void tst_timeline_model_editing::removeItemDestroysTheItemAndEmitsNothing()
{
    TestModel model;
    const int a = model.newTrack(QStringLiteral("A"));
    const int b = model.newTrack(QStringLiteral("B"), a);
    const int first = model.newItem(b, 1000, 10);
    const int second = model.newItem(b, 2000, 20);
    ModelSignals emitted(&model);
    model.removeItem(first);
    QCOMPARE(emitted.take(), QStringList());
    QCOMPARE(model.times(b), QStringList{"2000+20"});
    QCOMPARE(model.itemIds(), QVector<int>{second});
    QCOMPARE(model.m_itemCache.count(first), std::size_t(0));
}

void tst_timeline_model_editing::removeItemOfAnUnknownIdThrows()
{
    TestModel model;
    model.newItem(model.newTrack(QStringLiteral("A")), 1000, 10);
    COMPARE_THROWN_STRING(model.removeItem(5), "Model: item with id 5 not found in cache");
    QCOMPARE(model.itemIds(), QVector<int>{0});
    model.m_itemCaching = false;
    COMPARE_THROWN_STRING(model.removeItem(5), "lookup failed!");
}

void tst_timeline_model_editing::removeItemMissingInTheCacheStopsAtAnAssertion()
{
    OpenModel model;
    model.insertTrack(0, -1, newTrack("A"));
    model.addItem(1, newItem(1000), false);
    model.m_itemCaching = false;
    model.m_itemCache.clear();
    const ChildEnd end = runInChild([&] {
        model.removeItem(0);
        return model.track(1)->itemCount();
    });
    QCOMPARE(end.isAborted, areAssertionsChecked);
    if (!areAssertionsChecked)
        QCOMPARE(end.result, 0);
}

void tst_timeline_model_editing::removeItemLeavesCopyItemIds()
{
    TestModel model;
    const int a = model.newTrack(QStringLiteral("A"));
    const int b = model.newTrack(QStringLiteral("B"), a);
    const int item = model.newItem(b, 1000, 10);
    model.track(a)->addCopyItemId(item);
    model.removeItem(item);
    QCOMPARE(model.track(a)->copyItemIds(), QSet<int>{item});
}

void tst_timeline_model_editing::removeTrackDestroysTheSubtreeAndEmitsNothing()
{
    OpenModel model;
    for (const int parent : {0, 1, 2, 0})
        model.insertTrack(parent, -1, newTrack("track"));
    for (const int track : {1, 2, 3, 4})
        model.addItem(track, newItem(1000), false);
    ModelSignals emitted(&model);
    model.removeTrack(2);
    QCOMPARE(emitted.take(), QStringList());
    QVERIFY(!model.rootTrack()->hasTrack(2, true) && !model.rootTrack()->hasTrack(3, true));
    QVERIFY(model.rootTrack()->hasTrack(1, true) && model.rootTrack()->hasTrack(4, true));
    QCOMPARE(model.itemIds(), QVector<int>({0, 3}));
    COMPARE_THROWN_STRING(model.track(2), "Model: track with id 2 not found in cache");
}

void tst_timeline_model_editing::removeTrackLeavesStaleEntriesOfDescendants()
{
    OpenModel model;
    for (const int parent : {0, 1, 2})
        model.insertTrack(parent, -1, newTrack("track"));
    model.removeTrack(1);
    QCOMPARE(model.m_trackCache.size(), std::size_t(3));
    QVERIFY(model.m_trackCache.count(0) == 1 && model.m_trackCache.count(2) == 1 && model.m_trackCache.count(3) == 1);
    // Found, but destroyed: only the pointer may be looked at.
    QVERIFY(model.track(2));
    QVERIFY(model.track(3));
    model.clear();
    QCOMPARE(model.m_trackCache.size(), std::size_t(1));
}

void tst_timeline_model_editing::removeTrackOfAnUnknownIdThrows()
{
    OpenModel model;
    model.insertTrack(0, -1, newTrack("A"));
    COMPARE_THROWN_STRING(model.removeTrack(5), "Model: track with id 5 not found in cache");
    QCOMPARE(model.rowCount(), 1);
}

void tst_timeline_model_editing::removeTrackOfTheRootStopsAtAnAssertion()
{
    OpenModel model;
    model.insertTrack(0, -1, newTrack("A"));
    const ChildEnd end = runInChild([&] {
        try {
            model.removeTrack(0);
        } catch (const QString& text) {
            return text == QLatin1String("Model: track with id -1 not found in cache") ? 3 : 4;
        }
        return 5;
    });
    if (areAssertionsChecked) {
        QVERIFY(end.isAborted);
        QVERIFY2(end.text.contains("ASSERT: \"false\""), end.text.constData());
    } else {
        QCOMPARE(end.result, 3);
    }
}

void tst_timeline_model_editing::removeTrackWithAnItemMissingInTheCacheStopsAtAnAssertion()
{
    OpenModel model;
    model.insertTrack(0, -1, newTrack("A"));
    model.addItem(1, newItem(1000), false);
    model.m_itemCache.clear();
    const ChildEnd end = runInChild([&] {
        model.removeTrack(1);
        return model.rowCount();
    });
    QCOMPARE(end.isAborted, areAssertionsChecked);
    if (!areAssertionsChecked)
        QCOMPARE(end.result, 0);
}

void tst_timeline_model_editing::removeTrackMissingInTheCacheStopsAtAnAssertion()
{
    OpenModel model;
    model.insertTrack(0, -1, newTrack("A"));
    model.m_trackCaching = false;
    model.m_trackCache.erase(1);
    const ChildEnd end = runInChild([&] {
        model.removeTrack(1);
        return model.rowCount();
    });
    QCOMPARE(end.isAborted, areAssertionsChecked);
    if (!areAssertionsChecked)
        QCOMPARE(end.result, 0);
}

void tst_timeline_model_editing::removedTrackIdsAreNotReused()
{
    OpenModel model;
    model.insertTrack(0, -1, newTrack("A"));
    model.removeTrack(1);
    QCOMPARE(model.insertTrack(0, -1, newTrack("B"))->id(), 2);
}

void tst_timeline_model_editing::moveItemToTrackMovesTheSameObject()
{
    TestModel model;
    const int a = model.newTrack(QStringLiteral("A"));
    const int b = model.newTrack(QStringLiteral("B"));
    const int moved = model.newItem(a, 1000, 10);
    model.newItem(a, 2000, 20);
    model.newItem(b, 500, 30);
    model.newItem(b, 4000, 40);
    Item* const object = model.item(moved);
    ModelSignals emitted(&model);

    model.moveItemToTrack(moved, b, 3000);
    QCOMPARE(emitted.take(), QStringList());
    QCOMPARE(model.item(moved), object);
    QCOMPARE(object->parentTrackId(), b);
    QCOMPARE(object->id(), moved);
    QCOMPARE(model.times(a), QStringList{"2000+20"});
    QCOMPARE(model.times(b), QStringList({"500+30", "3000+10", "4000+40"}));
}

void tst_timeline_model_editing::moveItemToTrackOnTheSameTrackChangesTheTime()
{
    TestModel model;
    const int a = model.newTrack(QStringLiteral("A"));
    const int moved = model.newItem(a, 1000, 10);
    model.newItem(a, 2000, 20);
    model.moveItemToTrack(moved, a, 5000);
    QCOMPARE(model.times(a), QStringList({"2000+20", "5000+10"}));
    QCOMPARE(model.item(moved)->parentTrackId(), a);
}

void tst_timeline_model_editing::moveItemToTrackDoesNotSnap()
{
    TestModel model;
    const int a = model.newTrack(QStringLiteral("A"));
    const int b = model.newTrack(QStringLiteral("B"));
    const int moved = model.newItem(a, 1000, 10);
    model.setSnapEnabled(true);
    model.moveItemToTrack(moved, b, 1234);
    QCOMPARE(model.item(moved)->startTime(), 1234);
}

void tst_timeline_model_editing::moveItemToTrackCallsTheFirstFormOnceBeforeTheParentChanges()
{
    NotedModel model;
    const int a = model.newTrack(QStringLiteral("A"));
    const int b = model.newTrack(QStringLiteral("B"));
    const int moved = model.newItem(a, 1000, 10);
    model.moveItemToTrack(moved, b, 1234);
    QCOMPARE(model.calls, QStringList{"start of item on track 2, item's parent 1"});
}

void tst_timeline_model_editing::moveItemToTrackOfUnknownIdsChangesNothing()
{
    TestModel model;
    const int a = model.newTrack(QStringLiteral("A"));
    const int item = model.newItem(a, 1000, 10);
    COMPARE_THROWN_STRING(model.moveItemToTrack(item, 77, 5), "Model: track with id 77 not found in cache");
    COMPARE_THROWN_STRING(model.moveItemToTrack(66, a, 5), "Model: item with id 66 not found in cache");
    QCOMPARE(model.times(a), QStringList{"1000+10"});
    QCOMPARE(model.item(item)->parentTrackId(), a);

    // An item that has gone from its track without the cache knowing.
    const ItemPtr taken = model.track(a)->takeItem(item);
    const int b = model.newTrack(QStringLiteral("B"));
    COMPARE_THROWN_STRING(model.moveItemToTrack(item, b, 5), "Track::takeItem: item with id 0 not found");
}

void tst_timeline_model_editing::setItemStartTimeSortsAndEmitsNothing()
{
    TestModel model;
    const int a = model.newTrack(QStringLiteral("A"));
    const int first = model.newItem(a, 1000, 10);
    model.newItem(a, 2000, 20);
    ModelSignals emitted(&model);
    model.setItemStartTime(first, 3000);
    QCOMPARE(model.times(a), QStringList({"2000+20", "3000+10"}));
    model.setItemStartTime(*model.item(first), 1500);
    QCOMPARE(model.times(a), QStringList({"1500+10", "2000+20"}));
    model.setItemStartTime(*model.track(a), *model.item(first), 2500);
    QCOMPARE(model.times(a), QStringList({"2000+20", "2500+10"}));
    QCOMPARE(emitted.take(), QStringList());
}

void tst_timeline_model_editing::setItemStartTimeNeitherSnapsNorChecks()
{
    TestModel model;
    const int a = model.newTrack(QStringLiteral("A"));
    const int item = model.newItem(a, 1000, 10);
    model.setSnapEnabled(true);
    model.setEditable(false);
    model.item(item)->setEditable(false);
    model.setItemStartTime(item, -1234);
    QCOMPARE(model.item(item)->startTime(), -1234);
}

void tst_timeline_model_editing::setItemStartTimeDelegatesThroughTheVirtuals()
{
    NotedModel model;
    const int a = model.newTrack(QStringLiteral("A"));
    const int item = model.newItem(a, 1000, 10);
    model.setItemStartTime(item, 2000);
    QCOMPARE(model.calls, QStringList({"start of id", "start of item", "start of item on track 1, item's parent 1"}));
    model.calls.clear();
    model.setItemStartTime(*model.item(item), 3000);
    QCOMPARE(model.calls, QStringList({"start of item", "start of item on track 1, item's parent 1"}));
}

void tst_timeline_model_editing::setItemStartTimeOfUnknownIdsThrows()
{
    TestModel model;
    Item stray(1000, 10, Qt::red, true);
    COMPARE_THROWN_STRING(model.setItemStartTime(5, 1), "Model: item with id 5 not found in cache");
    COMPARE_THROWN_STRING(model.setItemStartTime(stray, 1), "Model: track with id -1 not found in cache");
    QCOMPARE(stray.startTime(), 1000);
}

void tst_timeline_model_editing::setItemDurationKeepsTheMinimum()
{
    TestModel model;
    const int a = model.newTrack(QStringLiteral("A"));
    const int item = model.newItem(a, 1000, 10);
    ModelSignals emitted(&model);
    model.setMinimumDuration(100);
    model.setItemDuration(item, 10);
    QCOMPARE(model.item(item)->duration(), 100);
    model.setItemDuration(*model.item(item), 101);
    QCOMPARE(model.item(item)->duration(), 101);
    model.setItemDuration(*model.track(a), *model.item(item), 99);
    QCOMPARE(model.item(item)->duration(), 100);
    model.setItemDuration(item, -1);
    QCOMPARE(model.item(item)->duration(), 100);
    model.setMinimumDuration(0);
    model.setItemDuration(item, -1);
    QCOMPARE(model.item(item)->duration(), 0);
    model.setSnapEnabled(true);
    model.setItemDuration(item, 1234);
    QCOMPARE(model.item(item)->duration(), 1234);
    QCOMPARE(emitted.take(), QStringList());
}

void tst_timeline_model_editing::setItemDurationSortsTheTrack()
{
    TestModel model;
    const int a = model.newTrack(QStringLiteral("A"));
    const int first = model.newItem(a, 1000, 10);
    model.newItem(a, 2000, 20);
    model.item(first)->_setStartTime(3000);
    model.setItemDuration(first, 15);
    QCOMPARE(model.times(a), QStringList({"2000+20", "3000+15"}));
}

void tst_timeline_model_editing::setItemDurationDelegatesThroughTheVirtuals()
{
    NotedModel model;
    const int a = model.newTrack(QStringLiteral("A"));
    const int item = model.newItem(a, 1000, 10);
    model.setItemDuration(item, 20);
    QCOMPARE(model.calls, QStringList({"duration of id", "duration of item", "duration of item on track 1"}));
    model.calls.clear();
    model.setItemDuration(*model.item(item), 30);
    QCOMPARE(model.calls, QStringList({"duration of item", "duration of item on track 1"}));
}

void tst_timeline_model_editing::setItemDurationOfUnknownIdsThrows()
{
    TestModel model;
    Item stray(1000, 10, Qt::red, true);
    COMPARE_THROWN_STRING(model.setItemDuration(5, 1), "Model: item with id 5 not found in cache");
    COMPARE_THROWN_STRING(model.setItemDuration(stray, 1), "Model: track with id -1 not found in cache");
    QCOMPARE(stray.duration(), 10);
}

void tst_timeline_model_editing::policyHooksAllowEverything()
{
    TestModel model;
    model.setEditable(false);
    const Item item(0, 10, Qt::red, false);
    QVERIFY(model.canDropItem(item, 77, -5));
    QVERIFY(model.canMoveItem(item, -5));
    QVERIFY(model.canResizeItem(item, -5, -7));
}

void tst_timeline_model_editing::isItemDraggedAsksTheDragHandlerOfTheView()
{
    ViewFixture fixture;
    const int item = fixture.addSeconds(fixture.trackA, 100, 200);
    const int other = fixture.addSeconds(fixture.trackA, 600, 200);
    QVERIFY(!fixture.model.isItemDragged(item));
    Input::press(&fixture.view, fixture.pos(200, fixture.trackA));
    QCOMPARE(fixture.view.dragHandler()->dragItemIds(), QVector<int>{item});
    QVERIFY(fixture.model.isItemDragged(item));
    QVERIFY(!fixture.model.isItemDragged(other));
    Input::release(&fixture.view, fixture.pos(200, fixture.trackA));
}

void tst_timeline_model_editing::isItemDraggedIsFalseWithoutViewOrHandler()
{
    TestModel lonely;
    QVERIFY(!lonely.isItemDragged(0));

    ViewFixture fixture;
    const int item = fixture.addSeconds(fixture.trackA, 100, 200);
    Input::press(&fixture.view, fixture.pos(200, fixture.trackA));
    QVERIFY(fixture.model.isItemDragged(item));
    TimelineViewDragHandler* const handler = fixture.view.dragHandler();
    fixture.view.setDragHandler(nullptr);
    QVERIFY(!fixture.model.isItemDragged(item));
    fixture.view.setDragHandler(handler);
    Input::release(&fixture.view, fixture.pos(200, fixture.trackA));
}

void tst_timeline_model_editing::insertTrackGivesIdsAndFillsTheCache()
{
    TestModel model;
    TrackPtr track = newTrack("A");
    Track* const object = track.get();
    QCOMPARE(model.insertTrack(0, -1, std::move(track)), object);
    QCOMPARE(object->id(), 1);
    QCOMPARE(object->parentId(), 0);
    Track* const below = model.insertTrack(1, -1, newTrack("B"));
    QCOMPARE(below->id(), 2);
    QCOMPARE(below->parentId(), 1);
    QCOMPARE(model.m_trackCache, (std::map<int, Track*>{{0, model.rootTrack()}, {1, object}, {2, below}}));
    QCOMPARE(object->trackAt(0), below);

    model.m_trackCaching = false;
    model.insertTrack(2, 0, newTrack("C"));
    QCOMPARE(model.m_trackCache.at(3), model.track(3));
}

void tst_timeline_model_editing::insertTrackEmitsTheRowSignals()
{
    TestModel model;
    ModelSignals emitted(&model);
    model.insertTrack(0, -1, newTrack("A"));
    QCOMPARE(emitted.take(), QStringList({"rowsAboutToBeInserted (root) 0..0", "rowsInserted (root) 0..0"}));
    model.insertTrack(0, -1, newTrack("B"));
    QCOMPARE(emitted.take(), QStringList({"rowsAboutToBeInserted (root) 1..1", "rowsInserted (root) 1..1"}));
    model.insertTrack(2, 0, newTrack("C"));
    QCOMPARE(emitted.take(), QStringList({"rowsAboutToBeInserted (track 2 row 1 column 0) 0..0",
                                          "rowsInserted (track 2 row 1 column 0) 0..0"}));
}

void tst_timeline_model_editing::insertTrackPutsTheTrackAtTheRow_data()
{
    QTest::addColumn<int>("row");
    QTest::addColumn<int>("expectedRow");
    QTest::newRow("first") << 0 << 0;
    QTest::newRow("middle") << 1 << 1;
    QTest::newRow("last") << 2 << 2;
    QTest::newRow("past the end") << 3 << 2;
    QTest::newRow("far past the end") << 1000 << 2;
    QTest::newRow("-1") << -1 << 2;
}

void tst_timeline_model_editing::insertTrackPutsTheTrackAtTheRow()
{
    QFETCH(const int, row);
    QFETCH(const int, expectedRow);
    for (const int parent : {0, 2}) {
        TestModel model;
        for (const int above : {0, 0, 2, 2})
            model.newTrack(QStringLiteral("track"), above);
        Track* const parentTrack = model.track(parent);
        Track* const inserted = model.insertTrack(parent, row, newTrack("new"));
        QCOMPARE(parentTrack->rowOfTrack(inserted->id()), expectedRow);
        QCOMPARE(model.indexOfTrack(inserted->id()).row(), expectedRow);
        QCOMPARE(parentTrack->trackCount(), 3);
    }
}

void tst_timeline_model_editing::insertTrackRefusesTracksThatHoldSomething()
{
    TestModel model;
    model.newTrack(QStringLiteral("A"));
    ModelSignals emitted(&model);
    TrackPtr withItem = newTrack("item");
    withItem->addItem(newItem(5));
    TrackPtr withChild = newTrack("child");
    withChild->tracks().push_back(newTrack("below"));
    for (TrackPtr* const track : {&withItem, &withChild}) {
        QVERIFY_EXCEPTION_THROWN(model.insertTrack(0, -1, std::move(*track)), QString);
        QVERIFY(*track);
        QCOMPARE((*track)->id(), -1);
        QCOMPARE((*track)->parentId(), -1);
    }
    QCOMPARE(emitted.take(), QStringList());
    QCOMPARE(model.rowCount(), 1);
    QCOMPARE(model.m_trackCache.size(), std::size_t(2));
    QCOMPARE(model.nextFreeTrackId(), 2);
}

void tst_timeline_model_editing::insertTrackRefusesAnUnknownParent()
{
    TestModel model;
    ModelSignals emitted(&model);
    TrackPtr track = newTrack("A");
    QVERIFY_EXCEPTION_THROWN(model.insertTrack(77, -1, std::move(track)), QString);
    QVERIFY(track);
    QVERIFY_EXCEPTION_THROWN(model.insertTrack(0, -1, nullptr), QString);
    QCOMPARE(emitted.take(), QStringList());
    QCOMPARE(model.rowCount(), 0);
    QCOMPARE(model.m_trackCache.size(), std::size_t(1));
    QCOMPARE(model.nextFreeTrackId(), 1);
}

QTEST_MAIN(tst_timeline_model_editing)
#include "tst_timeline_model_editing.moc"
