#include "auto/data/model_signals.h"
#include "support/recording_logger.h"
#include "support/test_model.h"
#include "support/thrown.h"

#include <QRegularExpression>
#include <QTest>

using namespace VeskTimeline;

namespace {

/// Writes down which virtual operations are called, then does what the base class does.
class NotedModel : public TestModel
{
public:
    void copyToClipboard(const QVector<int>& itemIds) override
    {
        calls.append(QStringLiteral("copy %1").arg(itemIds.size()));
        TestModel::copyToClipboard(itemIds);
    }
    void removeItem(int itemId) override
    {
        calls.append(QStringLiteral("remove %1").arg(itemId));
        TestModel::removeItem(itemId);
    }

    QStringList calls;
};

} // namespace

class tst_timeline_model_clipboard : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".?"))); }

    void copyKeepsStartsRelativeToTheEarliest();
    void copyReplacesWhatWasThere();
    void copyOfNothingEmptiesTheClipboard();
    void copyOfAnUnknownIdKeepsTheCopiesMadeBefore();
    void copyIsIndependentOfItsSource();
    void copyMayNameAnItemTwice();
    void cutCopiesThenRemovesThroughTheVirtuals();
    void cutOfAnUnknownIdRemovesNothing();
    void pasteAddsEditableItemsWithNewIdsToTheirTracks();
    void pasteEmitsDataChangedForEachItem();
    void pasteEmptiesTheClipboard();
    void pasteOfAnEmptyClipboardDoesNothing();
    void pasteSnapsTheTimeAndCutsToWholeSeconds();
    void pasteBeforeTheEpochSnapsTowardsIt();
    void cutItemsComeBackUnderNewIds();
    void pasteToARemovedTrackThrowsAndKeepsTheRest();
    void failedPasteLeavesTheCopyAsItWas();
    void pasteToATrackRemovedWithItsParentThrows();
    void copyFromASlotOfThePasteIsKept();
};

void tst_timeline_model_clipboard::copyFromASlotOfThePasteIsKept()
{
    TestModel model;
    const int track = model.newTrack(QStringLiteral("A"));
    const int first = model.newItem(track, 1000, 10);
    const int second = model.newItem(track, 2000, 20);
    model.copyToClipboard({first, second});
    connect(&model, &QAbstractItemModel::dataChanged, &model, [&] { model.copyToClipboard({second}); });

    model.pasteFromClipboard(5000);
    QCOMPARE(model.times(track), (QStringList{"1000+10", "2000+20", "5000+10", "6000+20"}));
    QCOMPARE(model.m_clipboard.size(), std::size_t{1});
    QCOMPARE(model.m_clipboard.front()->duration(), 20);
}

void tst_timeline_model_clipboard::copyKeepsStartsRelativeToTheEarliest()
{
    TestModel model;
    const int a = model.newTrack(QStringLiteral("A"));
    const int b = model.newTrack(QStringLiteral("B"));
    const int first = model.newItem(a, 5000, 10, Qt::green, false);
    const int second = model.newItem(b, 8000, -1, Qt::blue, true);
    ModelSignals emitted(&model);
    QVERIFY(model.isClipboardEmpty());

    model.copyToClipboard({second, first});
    QVERIFY(!model.isClipboardEmpty());
    QCOMPARE(model.m_clipboard.size(), std::size_t(2));
    const Item& late = *model.m_clipboard.at(0);
    QCOMPARE(late.startTime(), 3000);
    QCOMPARE(late.duration(), -1);
    QCOMPARE(late.color(), QColor(Qt::blue));
    QCOMPARE(late.parentTrackId(), b);
    QCOMPARE(late.id(), -1);
    const Item& early = *model.m_clipboard.at(1);
    QCOMPARE(early.startTime(), 0);
    QCOMPARE(early.duration(), 10);
    QCOMPARE(early.color(), QColor(Qt::green));
    QCOMPARE(early.parentTrackId(), a);
    QCOMPARE(early.id(), -1);
    QVERIFY2(late.isEditable() && early.isEditable(), "whatever the sources");
    QCOMPARE(emitted.take(), QStringList());
    QCOMPARE(model.times(a), QStringList{"5000+10"});
}

void tst_timeline_model_clipboard::copyReplacesWhatWasThere()
{
    TestModel model;
    const int a = model.newTrack(QStringLiteral("A"));
    const int first = model.newItem(a, -5000, 10);
    const int second = model.newItem(a, 8000, 20);
    model.copyToClipboard({first, second});
    QCOMPARE(model.m_clipboard.at(1)->startTime(), 13000);
    model.copyToClipboard({second});
    QCOMPARE(model.m_clipboard.size(), std::size_t(1));
    QCOMPARE(model.m_clipboard.at(0)->startTime(), 0);
    QCOMPARE(model.m_clipboard.at(0)->duration(), 20);
}

void tst_timeline_model_clipboard::copyOfNothingEmptiesTheClipboard()
{
    TestModel model;
    model.copyToClipboard({model.newItem(model.newTrack(QStringLiteral("A")), 5000, 10)});
    model.copyToClipboard({});
    QVERIFY(model.isClipboardEmpty());
}

void tst_timeline_model_clipboard::copyOfAnUnknownIdKeepsTheCopiesMadeBefore()
{
    TestModel model;
    const int a = model.newTrack(QStringLiteral("A"));
    const int first = model.newItem(a, 5000, 10);
    const int second = model.newItem(a, 8000, 20);
    COMPARE_THROWN_STRING(model.copyToClipboard({first, 77, second}), "Model: item with id 77 not found in cache");
    QCOMPARE(model.m_clipboard.size(), std::size_t(1));
    QCOMPARE(model.m_clipboard.at(0)->startTime(), 5000);
    COMPARE_THROWN_STRING(model.copyToClipboard({77}), "Model: item with id 77 not found in cache");
    QVERIFY(model.isClipboardEmpty());
}

void tst_timeline_model_clipboard::copyIsIndependentOfItsSource()
{
    TestModel model;
    const int a = model.newTrack(QStringLiteral("A"));
    const int item = model.newItem(a, 5000, 10);
    model.copyToClipboard({item});
    model.setItemDuration(item, 99);
    model.removeItem(item);
    model.pasteFromClipboard(1000);
    QCOMPARE(model.times(a), QStringList{"1000+10"});
}

void tst_timeline_model_clipboard::copyMayNameAnItemTwice()
{
    TestModel model;
    const int a = model.newTrack(QStringLiteral("A"));
    const int item = model.newItem(a, 5000, 10);
    model.copyToClipboard({item, item});
    model.pasteFromClipboard(1000);
    QCOMPARE(model.times(a), QStringList({"1000+10", "1000+10", "5000+10"}));
}

void tst_timeline_model_clipboard::cutCopiesThenRemovesThroughTheVirtuals()
{
    NotedModel model;
    const int a = model.newTrack(QStringLiteral("A"));
    const int first = model.newItem(a, 5000, 10);
    const int second = model.newItem(a, 8000, 20);
    const int third = model.newItem(a, 9000, 30);
    ModelSignals emitted(&model);
    model.cutToClipboard({third, first});
    QCOMPARE(model.calls, QStringList({"copy 2", "remove 2", "remove 0"}));
    QCOMPARE(emitted.take(), QStringList());
    QCOMPARE(model.itemIds(), QVector<int>{second});
    QCOMPARE(model.times(a), QStringList{"8000+20"});
    QCOMPARE(model.m_clipboard.size(), std::size_t(2));
    QCOMPARE(model.m_clipboard.at(0)->startTime(), 4000);
}

void tst_timeline_model_clipboard::cutOfAnUnknownIdRemovesNothing()
{
    TestModel model;
    const int a = model.newTrack(QStringLiteral("A"));
    const int item = model.newItem(a, 5000, 10);
    COMPARE_THROWN_STRING(model.cutToClipboard({item, 77}), "Model: item with id 77 not found in cache");
    QCOMPARE(model.itemIds(), QVector<int>{item});
    QCOMPARE(model.m_clipboard.size(), std::size_t(1));
}

void tst_timeline_model_clipboard::pasteAddsEditableItemsWithNewIdsToTheirTracks()
{
    RecordingLogger log;
    TestModel model;
    const int a = model.newTrack(QStringLiteral("A"));
    const int b = model.newTrack(QStringLiteral("B"), a);
    const int first = model.newItem(a, 5000, 10, Qt::green, false);
    const int second = model.newItem(b, 8000, 20, Qt::blue, false);
    model.copyToClipboard({first, second});
    model.pasteFromClipboard(20000);

    QCOMPARE(model.times(a), QStringList({"5000+10", "20000+10"}));
    QCOMPARE(model.times(b), QStringList({"8000+20", "23000+20"}));
    QCOMPARE(model.itemIds(), QVector<int>({0, 1, 2, 3}));
    QCOMPARE(model.item(2)->startTime(), 20000);
    QCOMPARE(model.item(2)->color(), QColor(Qt::green));
    QCOMPARE(model.item(2)->parentTrackId(), a);
    QVERIFY(model.item(2)->isEditable());
    QCOMPARE(model.item(3)->startTime(), 23000);
    QCOMPARE(model.item(3)->parentTrackId(), b);
    QVERIFY(model.item(3)->isEditable());
    QVERIFY(log.entries().empty());
}

void tst_timeline_model_clipboard::pasteEmitsDataChangedForEachItem()
{
    TestModel model;
    const int a = model.newTrack(QStringLiteral("A"));
    const int b = model.newTrack(QStringLiteral("B"));
    const int first = model.newItem(a, 5000, 10);
    const int second = model.newItem(b, 8000, 20);
    model.copyToClipboard({second, first});
    ModelSignals emitted(&model);
    model.pasteFromClipboard(20000);
    QCOMPARE(emitted.take(), QStringList({"dataChanged (track 2 row 1 column 0) (track 2 row 1 column 0) roles 0",
                                          "dataChanged (track 1 row 0 column 0) (track 1 row 0 column 0) roles 0"}));
}

void tst_timeline_model_clipboard::pasteEmptiesTheClipboard()
{
    TestModel model;
    const int a = model.newTrack(QStringLiteral("A"));
    model.copyToClipboard({model.newItem(a, 5000, 10)});
    model.pasteFromClipboard(20000);
    QVERIFY(model.isClipboardEmpty());
    model.pasteFromClipboard(30000);
    QCOMPARE(model.times(a), QStringList({"5000+10", "20000+10"}));
}

void tst_timeline_model_clipboard::pasteOfAnEmptyClipboardDoesNothing()
{
    TestModel model;
    model.newTrack(QStringLiteral("A"));
    ModelSignals emitted(&model);
    model.pasteFromClipboard(20000);
    QCOMPARE(emitted.take(), QStringList());
    QVERIFY(model.itemIds().isEmpty());
}

void tst_timeline_model_clipboard::pasteSnapsTheTimeAndCutsToWholeSeconds()
{
    TestModel model;
    const int a = model.newTrack(QStringLiteral("A"));
    const int first = model.newItem(a, 5000, 1500);
    const int second = model.newItem(a, 7750, 2000);
    model.copyToClipboard({first, second});
    model.setSnapEnabled(true);
    model.pasteFromClipboard(20333);
    QCOMPARE(model.times(a), QStringList({"5000+1500", "7750+2000", "20000+1000", "22000+2000"}));

    // The grid decides about the base: 40 750 is on it, 2 750 later is 43 500, which is cut to 43 000.
    model.setSnapStep(250);
    model.copyToClipboard({first, second});
    model.pasteFromClipboard(40999);
    QCOMPARE(model.times(a).mid(4), QStringList({"40000+1000", "43000+2000"}));
}

void tst_timeline_model_clipboard::pasteBeforeTheEpochSnapsTowardsIt()
{
    TestModel model;
    const int a = model.newTrack(QStringLiteral("A"));
    model.copyToClipboard({model.newItem(a, 5000, 1000)});
    model.setSnapEnabled(true);
    model.setSnapStep(2000);
    model.pasteFromClipboard(-3999);
    QCOMPARE(model.times(a).first(), QStringLiteral("-2000+1000"));
}

void tst_timeline_model_clipboard::cutItemsComeBackUnderNewIds()
{
    TestModel model;
    const int a = model.newTrack(QStringLiteral("A"));
    const int item = model.newItem(a, 5000, 10, Qt::green);
    model.cutToClipboard({item});
    QVERIFY(model.itemIds().isEmpty());
    model.pasteFromClipboard(5000);
    QCOMPARE(model.itemIds(), QVector<int>{item + 1});
    QCOMPARE(model.times(a), QStringList{"5000+10"});
    QCOMPARE(model.item(item + 1)->color(), QColor(Qt::green));
}

void tst_timeline_model_clipboard::pasteToARemovedTrackThrowsAndKeepsTheRest()
{
    class RemovingModel : public TestModel
    {
    public:
        void removeTopTrack(int row)
        {
            const int id = rootTrack()->trackAt(row)->id();
            beginRemoveRows(QModelIndex(), row, row);
            removeTrack(id);
            endRemoveRows();
        }
    };
    RemovingModel model;
    const int a = model.newTrack(QStringLiteral("A"));
    const int b = model.newTrack(QStringLiteral("B"));
    const int first = model.newItem(a, 5000, 10);
    const int second = model.newItem(b, 6000, 20);
    const int third = model.newItem(a, 7000, 30);
    model.copyToClipboard({first, second, third});
    model.removeTopTrack(1);

    COMPARE_THROWN_STRING(model.pasteFromClipboard(20000), "Model: track with id 2 not found in cache");
    QCOMPARE(model.times(a), QStringList({"5000+10", "7000+30", "20000+10"}));
    QVERIFY(!model.isClipboardEmpty());
    // Pasting again neither adds the first once more nor gets further.
    COMPARE_THROWN_STRING(model.pasteFromClipboard(20000), "Model: track with id 2 not found in cache");
    QCOMPARE(model.times(a), QStringList({"5000+10", "7000+30", "20000+10"}));
}

void tst_timeline_model_clipboard::failedPasteLeavesTheCopyAsItWas()
{
    TestModel model;
    const int a = model.newTrack(QStringLiteral("A"));
    model.copyToClipboard({model.newItem(a, 5000, 1234)});
    Track* const track = model.track(a);
    model.m_trackCache.erase(a);
    model.setSnapEnabled(true);
    COMPARE_THROWN_STRING(model.pasteFromClipboard(20000), "Model: track with id 1 not found in cache");
    const Item& copy = *model.m_clipboard.at(0);
    QCOMPARE(copy.startTime(), 0);
    QCOMPARE(copy.duration(), 1234);
    QCOMPARE(copy.id(), -1);
    QCOMPARE(copy.parentTrackId(), a);

    model.m_trackCache[a] = track;
    model.setSnapEnabled(false);
    model.pasteFromClipboard(30000);
    QCOMPARE(model.times(a), QStringList({"5000+1234", "30000+1234"}));
}

void tst_timeline_model_clipboard::pasteToATrackRemovedWithItsParentThrows()
{
    class OpenModel : public TimelineModel
    {
    public:
        using TimelineModel::addItem;
        using TimelineModel::insertTrack;
    };
    OpenModel model;
    const int a = model.insertTrack(0, -1, std::make_unique<Track>(QStringLiteral("A")))->id();
    const int b = model.insertTrack(a, -1, std::make_unique<Track>(QStringLiteral("B")))->id();
    model.cutToClipboard({model.addItem(b, std::make_unique<Item>(5000, 10, Qt::red, true), false)});
    model.removeTrack(a);
    COMPARE_THROWN_STRING(model.pasteFromClipboard(20000), "Model: track with id 2 not found in cache");
    QVERIFY(!model.isClipboardEmpty());
}

QTEST_GUILESS_MAIN(tst_timeline_model_clipboard)
#include "tst_timeline_model_clipboard.moc"
