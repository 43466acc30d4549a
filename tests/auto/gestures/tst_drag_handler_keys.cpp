#include "probe_drag_handler.h"
#include "support/input.h"

#include <QRegularExpression>
#include <QTest>

#include <limits>
#include <memory>

class TestDragHandlerKeys : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void arrowMovesByTenSnapSteps();
    void arrowWithControlMovesByOneSnapStep();
    void stepIsTheModelsWhetherSnappingIsOnOrNot();
    void arrowsActOnTheSelectionNotOnTheDrag();
    void arrowsWithoutSelectionDoNothing();
    void readOnlyModelIsLeftAlone();
    void otherKeysDoNothing();
    void groupMovesInSelectionOrderWithoutSignal();
    void itemsOfTheGroupAreNotInEachOthersWay();
    void nudgeThroughTheViewRepaints();

    void collisionBacksOffStepByStepToTheLeft();
    void collisionBacksOffStepByStepToTheRight();
    void lessThanAStepIsNotUsed();
    void itemThatTouchesItsNeighbourStays();
    void collisionOfAControlNudgeStays();
    void oneMemberHoldsTheWholeGroupBack();
    void refusalBacksOffToo();
    void refusalOfEveryStepMovesNothing();
    void collisionIsTestedBeforeThePolicy();

    void escapeAbandonsTheMove();
    void escapeWithoutSelectionAbandonsNothing();
    void escapeInAReadOnlyModelAbandonsNothing();

    void nudgesAreCalledThroughTheirSlots();
    void failingWriteIsLoggedAndEndsTheNudge_data();
    void failingWriteIsLoggedAndEndsTheNudge();
    void failingPolicyIsLoggedOnceAndMovesNothing_data();
    void failingPolicyIsLoggedOnceAndMovesNothing();
    void removedItemIsLoggedAndMovesNothing();
    void gridWithoutStepHasNoNudges();
    void backingOffEndsWithoutAStep();
    void hugeStepsAreCutToWhatATimeSpanHolds();

private:
    DragFixture& fixture() { return *m_fixture; }
    void key(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QKeyEvent event = keyPress(key, modifiers);
        fixture().handler.keyPressEvent(&event);
    }
    qint64 secondsOf(int itemId) { return (fixture().model.item(itemId)->startTime() - fixture().origin) / 1000; }

    std::unique_ptr<DragFixture> m_fixture;
};

void TestDragHandlerKeys::init()
{
    QTest::failOnWarning(QRegularExpression(".?"));
    m_fixture = std::make_unique<DragFixture>();
    m_fixture->model.setSnapStep(1000);
}

void TestDragHandlerKeys::cleanup()
{
    m_fixture.reset();
}

void TestDragHandlerKeys::arrowMovesByTenSnapSteps()
{
    DragFixture& f = fixture();
    f.view.selectItem(f.addSeconds(f.trackA, 100, 60), true);
    key(Qt::Key_Left);
    QCOMPARE(secondsOf(0), 90);
    key(Qt::Key_Right);
    key(Qt::Key_Right);
    QCOMPARE(secondsOf(0), 110);
    QCOMPARE(f.handler.calls, (QStringList{"left -10000", "right 10000", "right 10000"}));
}

void TestDragHandlerKeys::arrowWithControlMovesByOneSnapStep()
{
    DragFixture& f = fixture();
    f.view.selectItem(f.addSeconds(f.trackA, 100, 60), true);
    key(Qt::Key_Left, Qt::ControlModifier);
    QCOMPARE(secondsOf(0), 99);
    key(Qt::Key_Right, Qt::ControlModifier | Qt::ShiftModifier);
    QCOMPARE(secondsOf(0), 100);
    key(Qt::Key_Right, Qt::ShiftModifier);
    QCOMPARE(secondsOf(0), 110);
}

void TestDragHandlerKeys::stepIsTheModelsWhetherSnappingIsOnOrNot()
{
    DragFixture& f = fixture();
    f.view.selectItem(f.addSeconds(f.trackA, 100, 60), true);
    f.model.setSnapStep(60'000);
    for (const bool isSnapEnabled : {false, true}) {
        f.model.setSnapEnabled(isSnapEnabled);
        f.handler.calls.clear();
        key(Qt::Key_Right);
        QCOMPARE(f.handler.calls, QStringList{"right 600000"});
    }
    QCOMPARE(secondsOf(0), 1300);
}

void TestDragHandlerKeys::arrowsActOnTheSelectionNotOnTheDrag()
{
    DragFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    f.view.selectItem(f.addSeconds(f.trackB, 100, 60), true);
    Input::press(&f.view, f.pos(130, f.trackA));
    QCOMPARE(f.handler.dragItemIds(), QVector<int>{0});
    key(Qt::Key_Right);
    QCOMPARE(secondsOf(0), 100);
    QCOMPARE(secondsOf(1), 110);
    QCOMPARE(f.handler.dragItemIds(), QVector<int>{0});
}

void TestDragHandlerKeys::arrowsWithoutSelectionDoNothing()
{
    DragFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    Input::press(&f.view, f.pos(130, f.trackA));
    key(Qt::Key_Left);
    key(Qt::Key_Right);
    QVERIFY(f.handler.calls.isEmpty());
    QVERIFY(f.model.journal.isEmpty());
}

void TestDragHandlerKeys::readOnlyModelIsLeftAlone()
{
    DragFixture& f = fixture();
    f.view.selectItem(f.addSeconds(f.trackA, 100, 60), true);
    f.model.setEditable(false);
    key(Qt::Key_Left);
    key(Qt::Key_Right);
    QVERIFY(f.handler.calls.isEmpty());
    QVERIFY(f.model.journal.isEmpty());
}

void TestDragHandlerKeys::otherKeysDoNothing()
{
    DragFixture& f = fixture();
    f.view.selectItem(f.addSeconds(f.trackA, 100, 60), true);
    Input::press(&f.view, f.pos(130, f.trackA));
    for (const int other : {Qt::Key_Up, Qt::Key_Down, Qt::Key_Delete, Qt::Key_A, Qt::Key_Home})
        key(other);
    QVERIFY(f.handler.calls.isEmpty());
    QVERIFY(f.model.journal.isEmpty());
    QVERIFY(!f.handler.isIdle());
}

void TestDragHandlerKeys::groupMovesInSelectionOrderWithoutSignal()
{
    DragFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    f.addSeconds(f.trackB, 300, 60);
    f.view.selectItems({1, 0}, true);
    key(Qt::Key_Left);
    QCOMPARE(f.model.journal, (QStringList{"item.start(1, 290000)", "track.start(1, 290000)", "item.start(0, 90000)",
                                           "track.start(0, 90000)"}));
    QCOMPARE(f.model.asked, (QStringList{"canMove(1, 290000)", "canMove(0, 90000)"}));
    QVERIFY(f.logLines().isEmpty());
}

void TestDragHandlerKeys::itemsOfTheGroupAreNotInEachOthersWay()
{
    DragFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    f.addSeconds(f.trackA, 160, 60);
    f.view.selectItems({0, 1}, true);
    key(Qt::Key_Right);
    QCOMPARE(secondsOf(0), 110);
    QCOMPARE(secondsOf(1), 170);
}

void TestDragHandlerKeys::nudgeThroughTheViewRepaints()
{
    DragFixture& f = fixture();
    f.view.selectItem(f.addSeconds(f.trackA, 100, 60), true);
    QVERIFY(f.repaints([&] { Input::key(&f.view, Qt::Key_Right); }));
    QCOMPARE(secondsOf(0), 110);
    QCOMPARE(f.view.selectedItemIds(), QList<int>{0});
}

void TestDragHandlerKeys::collisionBacksOffStepByStepToTheLeft()
{
    DragFixture& f = fixture();
    f.addSeconds(f.trackA, 37, 60);
    f.view.selectItem(f.addSeconds(f.trackA, 100, 60), true);
    key(Qt::Key_Left);
    QCOMPARE(f.handler.calls, (QStringList{"left -10000", "left -9000", "left -8000", "left -7000", "left -6000",
                                           "left -5000", "left -4000", "left -3000"}));
    QCOMPARE(secondsOf(1), 97);
    QCOMPARE(secondsOf(0), 37);
    QCOMPARE(f.model.journal, (QStringList{"item.start(1, 97000)", "track.start(1, 97000)"}));
}

void TestDragHandlerKeys::collisionBacksOffStepByStepToTheRight()
{
    DragFixture& f = fixture();
    f.addSeconds(f.trackA, 168, 60);
    f.view.selectItem(f.addSeconds(f.trackA, 100, 60), true);
    key(Qt::Key_Right);
    QCOMPARE(f.handler.calls, (QStringList{"right 10000", "right 9000", "right 8000"}));
    QCOMPARE(secondsOf(1), 108);
}

void TestDragHandlerKeys::lessThanAStepIsNotUsed()
{
    DragFixture& f = fixture();
    f.model.newItem(f.trackA, f.at(100) - 12'500, 10'000);
    f.view.selectItem(f.addSeconds(f.trackA, 100, 60), true);
    key(Qt::Key_Left);
    QCOMPARE(secondsOf(1), 98);
    f.handler.calls.clear();
    key(Qt::Key_Left);
    QCOMPARE(secondsOf(1), 98);
    QCOMPARE(f.handler.calls.size(), 10);
    QCOMPARE(f.handler.calls.last(), QString("left -1000"));
}

void TestDragHandlerKeys::itemThatTouchesItsNeighbourStays()
{
    DragFixture& f = fixture();
    f.addSeconds(f.trackA, 40, 60);
    f.view.selectItem(f.addSeconds(f.trackA, 100, 60), true);
    f.addSeconds(f.trackA, 160, 60);
    key(Qt::Key_Left);
    key(Qt::Key_Right);
    QVERIFY(f.model.journal.isEmpty());
    QCOMPARE(f.handler.calls.size(), 20);
    QVERIFY(f.logLines().isEmpty());
}

void TestDragHandlerKeys::collisionOfAControlNudgeStays()
{
    DragFixture& f = fixture();
    f.addSeconds(f.trackA, 40, 60);
    f.view.selectItem(f.addSeconds(f.trackA, 100, 60), true);
    key(Qt::Key_Left, Qt::ControlModifier);
    QCOMPARE(f.handler.calls, QStringList{"left -1000"});
    QVERIFY(f.model.journal.isEmpty());
}

void TestDragHandlerKeys::oneMemberHoldsTheWholeGroupBack()
{
    DragFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    f.addSeconds(f.trackB, 100, 60);
    f.addSeconds(f.trackB, 164, 60);
    f.view.selectItems({0, 1}, true);
    key(Qt::Key_Right);
    QCOMPARE(secondsOf(0), 104);
    QCOMPARE(secondsOf(1), 104);
    QCOMPARE(secondsOf(2), 164);
}

void TestDragHandlerKeys::refusalBacksOffToo()
{
    DragFixture& f = fixture();
    f.view.selectItem(f.addSeconds(f.trackA, 100, 60), true);
    f.model.canMove = [](const VeskTimeline::Item&, qint64 start) { return start >= DragFixture::at(94); };
    key(Qt::Key_Left);
    QCOMPARE(secondsOf(0), 94);
    QCOMPARE(f.model.asked, (QStringList{"canMove(0, 90000)", "canMove(0, 91000)", "canMove(0, 92000)",
                                         "canMove(0, 93000)", "canMove(0, 94000)"}));
}

void TestDragHandlerKeys::refusalOfEveryStepMovesNothing()
{
    DragFixture& f = fixture();
    f.view.selectItem(f.addSeconds(f.trackA, 100, 60), true);
    f.model.canMove = [](const VeskTimeline::Item&, qint64) { return false; };
    key(Qt::Key_Left);
    key(Qt::Key_Right);
    QVERIFY(f.model.journal.isEmpty());
    QCOMPARE(f.handler.calls.size(), 20);
}

void TestDragHandlerKeys::collisionIsTestedBeforeThePolicy()
{
    DragFixture& f = fixture();
    f.addSeconds(f.trackA, 40, 60);
    f.view.selectItem(f.addSeconds(f.trackA, 100, 60), true);
    key(Qt::Key_Left);
    QVERIFY(f.model.asked.isEmpty());
}

void TestDragHandlerKeys::escapeAbandonsTheMove()
{
    DragFixture& f = fixture();
    f.view.selectItem(f.addSeconds(f.trackA, 100, 60), true);
    Input::press(&f.view, f.pos(130, f.trackA));
    Input::move(&f.view, f.pos(300, f.trackA), Qt::LeftButton);
    Input::key(&f.view, Qt::Key_Escape);
    QVERIFY(f.handler.isIdle());
    QCOMPARE(f.cursor(), Qt::ArrowCursor);
    Input::release(&f.view, f.pos(300, f.trackA));
    QVERIFY(f.model.journal.isEmpty());
    QCOMPARE(secondsOf(0), 100);
}

void TestDragHandlerKeys::escapeWithoutSelectionAbandonsNothing()
{
    DragFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    Input::press(&f.view, f.pos(130, f.trackA));
    key(Qt::Key_Escape);
    QCOMPARE(f.handler.dragItemIds(), QVector<int>{0});
}

void TestDragHandlerKeys::escapeInAReadOnlyModelAbandonsNothing()
{
    DragFixture& f = fixture();
    f.view.selectItem(f.addSeconds(f.trackA, 100, 60), true);
    Input::press(&f.view, f.pos(130, f.trackA));
    f.model.setEditable(false);
    key(Qt::Key_Escape);
    QCOMPARE(f.handler.dragItemIds(), QVector<int>{0});
}

void TestDragHandlerKeys::nudgesAreCalledThroughTheirSlots()
{
    DragFixture& f = fixture();
    f.view.selectItem(f.addSeconds(f.trackA, 100, 60), true);
    f.handler.isNudgeReplaced = true;
    key(Qt::Key_Left);
    key(Qt::Key_Right);
    QCOMPARE(f.handler.calls, (QStringList{"left -10000", "right 10000"}));
    QVERIFY(f.model.journal.isEmpty());
}

void TestDragHandlerKeys::failingWriteIsLoggedAndEndsTheNudge_data()
{
    addFailureRows();
}

void TestDragHandlerKeys::failingWriteIsLoggedAndEndsTheNudge()
{
    QFETCH(Failure, failure);
    DragFixture& f = fixture();
    for (const int start : {100, 200, 300})
        f.addSeconds(f.trackA, start, 60);
    f.view.selectItems({0, 1, 2}, true);
    f.model.failAt("item.start(1", failure);
    QVERIFY(keepsExceptions([&] { key(Qt::Key_Left); }));
    QVERIFY(keepsExceptions([&] { key(Qt::Key_Right, Qt::ControlModifier); }));
    QCOMPARE(f.model.journal, (QStringList{"item.start(0, 90000)", "track.start(0, 90000)", "item.start(1, 190000)",
                                           "item.start(0, 91000)", "track.start(0, 91000)", "item.start(1, 201000)"}));
    QCOMPARE(f.logLines(), (QStringList{failureLine(dragSignature("moveItemsLeft(QList<int>&, int)"), failure),
                                        failureLine(dragSignature("moveItemsRight(QList<int>&, int)"), failure)}));
}

void TestDragHandlerKeys::failingPolicyIsLoggedOnceAndMovesNothing_data()
{
    addFailureRows();
}

void TestDragHandlerKeys::failingPolicyIsLoggedOnceAndMovesNothing()
{
    QFETCH(Failure, failure);
    DragFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    f.addSeconds(f.trackA, 35, 60);
    f.view.selectItem(0, true);
    // The neighbour lets the nudge back off first, so that it fails some calls down.
    f.model.failAt("canMove(0, 95000)", failure);
    QVERIFY(keepsExceptions([&] { key(Qt::Key_Left); }));
    QCOMPARE(f.handler.calls.size(), 6);
    QVERIFY(f.model.journal.isEmpty());
    QCOMPARE(f.logLines(), QStringList{failureLine(dragSignature("moveItemsLeft(QList<int>&, int)"), failure)});
}

void TestDragHandlerKeys::removedItemIsLoggedAndMovesNothing()
{
    DragFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    f.addSeconds(f.trackA, 200, 60);
    f.view.selectItems({0, 1}, true);
    f.model.TestModel::removeItem(1);
    QVERIFY(keepsExceptions([&] { key(Qt::Key_Right); }));
    QVERIFY(f.model.journal.isEmpty());
    QCOMPARE(f.logLines(), QStringList{"Error: " + dragSignature("moveItemsRight(QList<int>&, int)") +
                                       " Model: const item with id 1 not found in cache"});
}

void TestDragHandlerKeys::gridWithoutStepHasNoNudges()
{
    DragFixture& f = fixture();
    f.view.selectItem(f.addSeconds(f.trackA, 100, 60), true);
    for (const int step : {0, -1000, -300'000'000}) {
        f.model.setSnapStep(step);
        key(Qt::Key_Left);
        key(Qt::Key_Right, Qt::ControlModifier);
    }
    QVERIFY(f.handler.calls.isEmpty());
    QVERIFY(f.model.journal.isEmpty());
}

void TestDragHandlerKeys::backingOffEndsWithoutAStep()
{
    DragFixture& f = fixture();
    f.addSeconds(f.trackA, 40, 60);
    f.addSeconds(f.trackA, 100, 60);
    f.addSeconds(f.trackA, 160, 60);
    f.model.setSnapStep(0);
    f.handler.moveItemsLeft({1}, -5000);
    f.handler.moveItemsRight({1}, 5000);
    QCOMPARE(f.handler.calls, (QStringList{"left -5000", "right 5000"}));
    QVERIFY(f.model.journal.isEmpty());
}

void TestDragHandlerKeys::hugeStepsAreCutToWhatATimeSpanHolds()
{
    DragFixture& f = fixture();
    f.view.selectItem(f.addSeconds(f.trackA, 100, 60), true);
    f.model.setSnapStep(std::numeric_limits<int>::max() / 2);
    f.handler.isNudgeReplaced = true;
    key(Qt::Key_Right);
    key(Qt::Key_Left);
    QCOMPARE(f.handler.calls, (QStringList{"right 2147483647", "left -2147483647"}));
}

QTEST_MAIN(TestDragHandlerKeys)
#include "tst_drag_handler_keys.moc"
