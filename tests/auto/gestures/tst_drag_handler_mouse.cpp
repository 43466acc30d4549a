#include "probe_drag_handler.h"
#include "support/input.h"

#include <VeskTimeline/timeline_view_selection_handler.h>

#include <QRegularExpression>
#include <QSortFilterProxyModel>
#include <QTest>

#include <memory>

class TestDragHandlerMouse : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void newHandlerIsIdle();
    void pressTakesTheItemAndShowsTheClosedHand();
    void pressOnASelectedItemTakesTheSelectionInItsOrder();
    void pressOnAnUnselectedItemTakesItAloneAndKeepsTheSelection();
    void pressWithAnotherButtonTakesNothing();
    void pressInAReadOnlyModelTakesNothing();
    void pressOutsideTheTimeCellsTakesNothing();
    void pressOnEmptySpaceIsLoggedAtDebug();
    void pressThatFindsNoItemForgetsAnEarlierClick();
    void dragFromEmptySpaceAfterAClickMovesNothing();
    void groupWithAFixedMemberKeepsItsIdsButNeverMoves();
    void pressOnAGroupWithARemovedItemKeepsExceptionsInside();

    void nothingIsShownBeforeTheStartDragDistance();
    void distanceIsTheManhattanLength();
    void moveWithinTheTrackWritesNothing();
    void moveRepaintsTheView();
    void cursorShowsWhetherTheItemsMayLand();
    void moveOutsideTheTimeCellsKeepsTheLastPosition();
    void moveWithoutTheLeftButtonAloneClears_data();
    void moveWithoutTheLeftButtonAloneClears();
    void moveInAReadOnlyModelIsIgnored();
    void moveWithoutAPressDoesNothing();
    void failureDuringAMoveIsLogged_data();
    void failureDuringAMoveIsLogged();

    void releaseSignalsAndThenWritesEachItem();
    void releaseTakesTheOffsetOnce();
    void draggingAnUnselectedItemMovesOnlyIt();
    void releaseEndsTheGesture();
    void releaseAtTheSameXChangesNothing();
    void releaseWithAnotherButtonIsIgnored();
    void releaseInAReadOnlyModelIsIgnored();
    void releaseOverAnotherTrackIsLeftToTheDrop();
    void releaseOutsideTheTimeCellsIsIgnored();
    void releaseWithoutAGestureIsIgnored();
    void refusedMoveLeavesEverythingInPlace();
    void itemInTheWayStopsTheMove();
    void touchingAnItemIsNoCollision();
    void draggedItemsAreNotInEachOthersWay();
    void itemsOfOtherTracksAreNotInTheWay();
    void everyItemIsCheckedOnItsOwnTrack();
    void failingWriteEndsTheMoveHalfWay_data();
    void failingWriteEndsTheMoveHalfWay();
    void failingPolicyAtTheReleaseEndsTheMove_data();
    void failingPolicyAtTheReleaseEndsTheMove();
    void itemRemovedDuringTheMoveEndsItAtTheRelease();
    void trackRemovedDuringTheMoveEndsItWithoutAWrite_data();
    void trackRemovedDuringTheMoveEndsItWithoutAWrite();

    void clearIsTheWayBackToIdle();

private:
    DragFixture& fixture() { return *m_fixture; }
    /// Presses at a second of a track and moves to another, through the view.
    void pressAndMove(int from, int to, int trackId)
    {
        Input::press(&fixture().view, fixture().pos(from, trackId));
        Input::move(&fixture().view, fixture().pos(to, trackId), Qt::LeftButton);
    }

    std::unique_ptr<DragFixture> m_fixture;
};

void TestDragHandlerMouse::init()
{
    QTest::failOnWarning(QRegularExpression(".?"));
    m_fixture = std::make_unique<DragFixture>();
}

void TestDragHandlerMouse::cleanup()
{
    m_fixture.reset();
}

void TestDragHandlerMouse::newHandlerIsIdle()
{
    const ProbeDragHandler& handler = fixture().handler;
    QVERIFY(handler.isIdle());
    QVERIFY(!handler.isActive());
    QCOMPARE(handler.deltaX(), 0);
    QCOMPARE(handler.m_snapLinePos, -1);
    QVERIFY(fixture().view.dragHandler() == &handler);
}

void TestDragHandlerMouse::pressTakesTheItemAndShowsTheClosedHand()
{
    DragFixture& f = fixture();
    f.addSeconds(f.trackA, 0, 10);
    const int item = f.addSeconds(f.trackB, 100, 60);
    const QPoint pos = f.pos(130, f.trackB);

    Input::press(&f.view, pos);

    QCOMPARE(f.handler.dragItemIds(), QVector<int>{item});
    QCOMPARE(f.handler.dragStartIndex(), f.view.indexOfTrackRow(f.trackB, 1));
    QCOMPARE(f.handler.dragStartTime(), f.at(130));
    QCOMPARE(f.handler.dragStartPos(), pos);
    QCOMPARE(f.handler.dragPos(), pos);
    QVERIFY(!f.handler.isActive());
    QCOMPARE(f.cursor(), Qt::ClosedHandCursor);
    QVERIFY(f.model.isItemDragged(item));
    QVERIFY(f.model.journal.isEmpty());
    QVERIFY(f.logLines().isEmpty());
}

void TestDragHandlerMouse::pressOnASelectedItemTakesTheSelectionInItsOrder()
{
    DragFixture& f = fixture();
    const int first = f.addSeconds(f.trackA, 100, 60);
    const int second = f.addSeconds(f.trackA, 200, 60);
    const int third = f.addSeconds(f.trackB, 0, 60);
    f.view.selectItems({third, first, second}, true);

    Input::press(&f.view, f.pos(130, f.trackA));

    QCOMPARE(f.handler.dragItemIds(), (QVector<int>{third, first, second}));
}

void TestDragHandlerMouse::pressOnAnUnselectedItemTakesItAloneAndKeepsTheSelection()
{
    DragFixture& f = fixture();
    const int item = f.addSeconds(f.trackA, 100, 60);
    const int other = f.addSeconds(f.trackA, 200, 60);
    f.view.selectItem(other, true);

    Input::press(&f.view, f.pos(130, f.trackA));

    QCOMPARE(f.handler.dragItemIds(), QVector<int>{item});
    QCOMPARE(f.view.selectedItemIds(), QList<int>{other});
}

void TestDragHandlerMouse::pressWithAnotherButtonTakesNothing()
{
    DragFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    for (const Qt::MouseButton button : {Qt::RightButton, Qt::MiddleButton}) {
        QMouseEvent press = pressAt(f.pos(130, f.trackA), button);
        f.handler.mousePressEvent(&press);
        QVERIFY(f.handler.isIdle());
    }
    QCOMPARE(f.cursor(), Qt::ArrowCursor);
}

void TestDragHandlerMouse::pressInAReadOnlyModelTakesNothing()
{
    DragFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    f.model.setEditable(false);
    QMouseEvent press = pressAt(f.pos(130, f.trackA));
    f.handler.mousePressEvent(&press);
    QVERIFY(f.handler.isIdle());
    QCOMPARE(f.cursor(), Qt::ArrowCursor);
}

void TestDragHandlerMouse::pressOutsideTheTimeCellsTakesNothing()
{
    DragFixture& f = fixture();
    f.addSeconds(f.trackA, 0, 60);
    for (const QPoint& pos : {f.onName(f.trackA), f.belowRows(30)}) {
        QMouseEvent press = pressAt(pos);
        f.handler.mousePressEvent(&press);
        QVERIFY(f.handler.isIdle());
    }
    QCOMPARE(f.cursor(), Qt::ArrowCursor);
    QVERIFY(f.logLines().isEmpty());
}

void TestDragHandlerMouse::pressOnEmptySpaceIsLoggedAtDebug()
{
    DragFixture& f = fixture();
    Input::press(&f.view, f.pos(130, f.trackA));
    QVERIFY(f.handler.isIdle());
    QCOMPARE(f.logLines(), QStringList{"Debug: " + dragSignature("mousePressEvent(QMouseEvent*)") + " lookup failed!"});
    QCOMPARE(f.cursor(), Qt::ArrowCursor);
}

void TestDragHandlerMouse::pressThatFindsNoItemForgetsAnEarlierClick()
{
    DragFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    QTest::ignoreMessage(QtWarningMsg, "TimelineViewSelectHandler::mousePressEvent: index invalid");
    for (const QPoint& pos : {f.pos(500, f.trackA), f.belowRows(30)}) {
        Input::click(&f.view, f.pos(130, f.trackA));
        QVERIFY(!f.handler.dragItemIds().isEmpty());
        Input::press(&f.view, pos);
        QVERIFY(f.handler.isIdle());
        Input::release(&f.view, pos);
    }
}

void TestDragHandlerMouse::dragFromEmptySpaceAfterAClickMovesNothing()
{
    DragFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    Input::click(&f.view, f.pos(130, f.trackA));

    Input::press(&f.view, f.pos(500, f.trackA));
    Input::move(&f.view, f.pos(550, f.trackA), Qt::LeftButton);
    QVERIFY(f.view.selectHandler()->isRubberBandActive());
    Input::release(&f.view, f.pos(550, f.trackA));

    QVERIFY(f.model.journal.isEmpty());
    QCOMPARE(f.model.times(f.trackA), QStringList{QString("%1+60000").arg(f.at(100))});
}

void TestDragHandlerMouse::groupWithAFixedMemberKeepsItsIdsButNeverMoves()
{
    DragFixture& f = fixture();
    const int item = f.addSeconds(f.trackA, 100, 60);
    const int fixed = f.addSeconds(f.trackB, 100, 60, Qt::red, false);
    f.view.selectItems({item, fixed}, true);

    Input::press(&f.view, f.pos(130, f.trackA));
    QCOMPARE(f.handler.dragItemIds(), (QVector<int>{item, fixed}));
    QVERIFY(!f.handler.dragStartIndex().isValid());
    QCOMPARE(f.cursor(), Qt::ArrowCursor);
    f.model.setSnapEnabled(true);
    QCOMPARE(f.handler.deltaX(), 0);
    QCOMPARE(f.handler.deltaY(), 0);

    for (const int second : {150, 300}) {
        QMouseEvent move = moveTo(f.pos(second, f.trackA));
        f.handler.mouseMoveEvent(&move);
        QVERIFY(!f.handler.isActive());
    }
    QMouseEvent release = releaseAt(f.pos(300, f.trackA));
    f.handler.mouseReleaseEvent(&release);
    QVERIFY(f.model.journal.isEmpty());
    QCOMPARE(f.handler.dragItemIds(), (QVector<int>{item, fixed}));
}

void TestDragHandlerMouse::pressOnAGroupWithARemovedItemKeepsExceptionsInside()
{
    DragFixture& f = fixture();
    const int item = f.addSeconds(f.trackA, 100, 60);
    const int removed = f.addSeconds(f.trackA, 200, 60);
    f.view.selectItems({item, removed}, true);
    f.model.TestModel::removeItem(removed);

    QMouseEvent press = pressAt(f.pos(130, f.trackA));
    QVERIFY(keepsExceptions([&] { f.handler.mousePressEvent(&press); }));
    QCOMPARE(f.logLines(), QStringList{"Debug: " + dragSignature("mousePressEvent(QMouseEvent*)") +
                                       " Model: item with id 1 not found in cache"});
    QVERIFY(!f.handler.dragStartIndex().isValid());
}

void TestDragHandlerMouse::nothingIsShownBeforeTheStartDragDistance()
{
    DragFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    const QPoint pos = f.pos(130, f.trackA);
    const int distance = QApplication::startDragDistance();

    Input::press(&f.view, pos);
    Input::move(&f.view, pos + QPoint(distance - 1, 0), Qt::LeftButton);
    QCOMPARE(f.handler.dragPos(), pos);
    QVERIFY(!f.handler.isActive());
    QVERIFY(f.handler.calls.isEmpty());

    Input::move(&f.view, pos + QPoint(distance, 0), Qt::LeftButton);
    QCOMPARE(f.handler.dragPos(), pos + QPoint(distance, 0));
    QVERIFY(f.handler.isActive());
}

void TestDragHandlerMouse::distanceIsTheManhattanLength()
{
    DragFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    const QPoint pos = f.pos(130, f.trackA);
    const int across = QApplication::startDragDistance() - 4;

    Input::press(&f.view, pos);
    Input::move(&f.view, pos + QPoint(-across, 3), Qt::LeftButton);
    QVERIFY(!f.handler.isActive());
    Input::move(&f.view, pos + QPoint(-across, 4), Qt::LeftButton);
    QVERIFY(f.handler.isActive());
}

void TestDragHandlerMouse::moveWithinTheTrackWritesNothing()
{
    DragFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    pressAndMove(130, 300, f.trackA);
    Input::move(&f.view, f.pos(400, f.trackA), Qt::LeftButton);
    QVERIFY(f.handler.isActive());
    QCOMPARE(f.handler.dragPos(), f.pos(400, f.trackA));
    QCOMPARE(f.cursor(), Qt::ClosedHandCursor);
    QVERIFY(f.model.journal.isEmpty());
}

void TestDragHandlerMouse::moveRepaintsTheView()
{
    DragFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    QMouseEvent press = pressAt(f.pos(130, f.trackA));
    f.handler.mousePressEvent(&press);
    QVERIFY(!f.repaints([] {}));
    QVERIFY(f.repaints([&] {
        QMouseEvent move = moveTo(f.pos(200, f.trackA));
        f.handler.mouseMoveEvent(&move);
    }));
}

void TestDragHandlerMouse::cursorShowsWhetherTheItemsMayLand()
{
    DragFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    f.addSeconds(f.trackA, 200, 60);
    pressAndMove(130, 180, f.trackA);
    QCOMPARE(f.cursor(), Qt::ForbiddenCursor);
    QCOMPARE(f.handler.dragPos(), f.pos(180, f.trackA));
    Input::move(&f.view, f.pos(150, f.trackA), Qt::LeftButton);
    QCOMPARE(f.cursor(), Qt::ClosedHandCursor);
    f.model.canMove = [](const VeskTimeline::Item&, qint64) { return false; };
    Input::move(&f.view, f.pos(151, f.trackA), Qt::LeftButton);
    QCOMPARE(f.cursor(), Qt::ForbiddenCursor);
}

void TestDragHandlerMouse::moveOutsideTheTimeCellsKeepsTheLastPosition()
{
    DragFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    for (const QPoint& outside : {f.belowRows(160), f.onName(f.trackA)}) {
        pressAndMove(130, 160, f.trackA);
        QCOMPARE(f.cursor(), Qt::ClosedHandCursor);
        Input::move(&f.view, outside, Qt::LeftButton);
        QCOMPARE(f.cursor(), Qt::ForbiddenCursor);
        QCOMPARE(f.handler.dragPos(), f.pos(160, f.trackA));
        QVERIFY(f.handler.isActive());
        f.handler.clear();
    }
}

void TestDragHandlerMouse::moveWithoutTheLeftButtonAloneClears_data()
{
    QTest::addColumn<Qt::MouseButtons>("buttons");
    QTest::newRow("none") << Qt::MouseButtons(Qt::NoButton);
    QTest::newRow("right") << Qt::MouseButtons(Qt::RightButton);
    QTest::newRow("left and right") << (Qt::LeftButton | Qt::RightButton);
}

void TestDragHandlerMouse::moveWithoutTheLeftButtonAloneClears()
{
    QFETCH(Qt::MouseButtons, buttons);
    DragFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    pressAndMove(130, 300, f.trackA);
    Input::move(&f.view, f.pos(310, f.trackA), buttons);
    QVERIFY(f.handler.isIdle());
    QCOMPARE(f.cursor(), Qt::ArrowCursor);
    QVERIFY(f.model.journal.isEmpty());
}

void TestDragHandlerMouse::moveInAReadOnlyModelIsIgnored()
{
    DragFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    pressAndMove(130, 300, f.trackA);
    f.model.setEditable(false);
    for (const Qt::MouseButtons buttons : {Qt::MouseButtons(Qt::LeftButton), Qt::MouseButtons(Qt::NoButton)}) {
        QMouseEvent move = moveTo(f.pos(400, f.trackA), buttons);
        f.handler.mouseMoveEvent(&move);
        QCOMPARE(f.handler.dragPos(), f.pos(300, f.trackA));
    }
}

void TestDragHandlerMouse::moveWithoutAPressDoesNothing()
{
    DragFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    QMouseEvent move = moveTo(f.pos(130, f.trackA));
    f.handler.mouseMoveEvent(&move);
    QVERIFY(f.handler.isIdle());
    QCOMPARE(f.cursor(), Qt::ArrowCursor);
    QVERIFY(f.handler.calls.isEmpty());
}

void TestDragHandlerMouse::failureDuringAMoveIsLogged_data()
{
    addFailureRows();
}

void TestDragHandlerMouse::failureDuringAMoveIsLogged()
{
    QFETCH(Failure, failure);
    DragFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    Input::press(&f.view, f.pos(130, f.trackA));
    f.model.failAt("canMove", failure);
    QMouseEvent move = moveTo(f.pos(200, f.trackA));
    QVERIFY(keepsExceptions([&] { f.handler.mouseMoveEvent(&move); }));
    QCOMPARE(f.logLines(), QStringList{failureLine(dragSignature("mouseMoveEvent(QMouseEvent*)"), failure)});
    QVERIFY(f.model.journal.isEmpty());
}

void TestDragHandlerMouse::releaseSignalsAndThenWritesEachItem()
{
    DragFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    f.addSeconds(f.trackA, 200, 60);
    f.addSeconds(f.trackB, 50, 60);
    f.view.selectItems({2, 0, 1}, true);

    Input::drag(&f.view, f.pos(130, f.trackA), f.pos(170, f.trackA));

    QCOMPARE(f.model.journal, (QStringList{"currentItemTimeChanged", "item.start(2, 90000)", "track.start(2, 90000)",
                                           "item.start(0, 140000)", "track.start(0, 140000)", "item.start(1, 240000)",
                                           "track.start(1, 240000)"}));
    QCOMPARE(f.model.item(2)->startTime(), f.at(90));
    QCOMPARE(f.model.item(0)->startTime(), f.at(140));
    QCOMPARE(f.model.item(1)->startTime(), f.at(240));
    QCOMPARE(f.view.selectedItemIds(), (QList<int>{2, 0, 1}));
    QVERIFY(f.logLines().isEmpty());
}

void TestDragHandlerMouse::releaseTakesTheOffsetOnce()
{
    DragFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    f.addSeconds(f.trackB, 100, 60);
    f.view.selectItems({0, 1}, true);
    pressAndMove(130, 160, f.trackA);
    f.handler.calls.clear();
    Input::release(&f.view, f.pos(165, f.trackA));
    // Once to see whether the items fit, once to move them.
    QCOMPARE(f.handler.calls, (QStringList{"canMove", "deltaTime", "deltaTime"}));
    QCOMPARE(f.model.item(1)->startTime(), f.at(135));
}

void TestDragHandlerMouse::draggingAnUnselectedItemMovesOnlyIt()
{
    DragFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    f.addSeconds(f.trackB, 100, 60);
    f.view.selectItem(1, true);
    Input::drag(&f.view, f.pos(130, f.trackA), f.pos(190, f.trackA));
    QCOMPARE(f.model.item(0)->startTime(), f.at(160));
    QCOMPARE(f.model.item(1)->startTime(), f.at(100));
    QCOMPARE(f.view.selectedItemIds(), QList<int>{1});
}

void TestDragHandlerMouse::releaseEndsTheGesture()
{
    DragFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    Input::drag(&f.view, f.pos(130, f.trackA), f.pos(190, f.trackA));
    QVERIFY(f.handler.isIdle());
    QCOMPARE(f.cursor(), Qt::ArrowCursor);
    QVERIFY(!f.model.isItemDragged(0));
}

void TestDragHandlerMouse::releaseAtTheSameXChangesNothing()
{
    DragFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    const QPoint pos = f.pos(130, f.trackA);
    Input::press(&f.view, pos);
    Input::move(&f.view, pos + QPoint(40, 0), Qt::LeftButton);
    Input::release(&f.view, pos + QPoint(0, 5));
    QVERIFY(f.model.journal.isEmpty());
    QVERIFY(f.handler.isIdle());
    QCOMPARE(f.cursor(), Qt::ArrowCursor);
}

void TestDragHandlerMouse::releaseWithAnotherButtonIsIgnored()
{
    DragFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    pressAndMove(130, 300, f.trackA);
    QMouseEvent release = releaseAt(f.pos(310, f.trackA), Qt::RightButton);
    f.handler.mouseReleaseEvent(&release);
    QCOMPARE(f.handler.dragPos(), f.pos(300, f.trackA));
    QVERIFY(f.model.journal.isEmpty());
}

void TestDragHandlerMouse::releaseInAReadOnlyModelIsIgnored()
{
    DragFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    pressAndMove(130, 300, f.trackA);
    f.model.setEditable(false);
    QMouseEvent release = releaseAt(f.pos(310, f.trackA));
    f.handler.mouseReleaseEvent(&release);
    QVERIFY(!f.handler.isIdle());
    QVERIFY(f.model.journal.isEmpty());
}

void TestDragHandlerMouse::releaseOverAnotherTrackIsLeftToTheDrop()
{
    DragFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    pressAndMove(130, 300, f.trackA);
    Input::release(&f.view, f.pos(310, f.trackB));
    QCOMPARE(f.handler.dragItemIds(), QVector<int>{0});
    QCOMPARE(f.handler.dragPos(), f.pos(300, f.trackA));
    QVERIFY(f.model.journal.isEmpty());
}

void TestDragHandlerMouse::releaseOutsideTheTimeCellsIsIgnored()
{
    DragFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    pressAndMove(130, 300, f.trackA);
    for (const QPoint& outside : {f.belowRows(310), f.onName(f.trackA)}) {
        Input::release(&f.view, outside);
        QVERIFY(f.handler.isActive());
        QCOMPARE(f.handler.dragPos(), f.pos(300, f.trackA));
    }
    QVERIFY(f.model.journal.isEmpty());
}

void TestDragHandlerMouse::releaseWithoutAGestureIsIgnored()
{
    DragFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    f.view.setCursor(Qt::CrossCursor);
    QMouseEvent release = releaseAt(f.pos(130, f.trackA));
    f.handler.mouseReleaseEvent(&release);
    QVERIFY(f.handler.isIdle());
    QCOMPARE(f.cursor(), Qt::CrossCursor);
    QVERIFY(f.model.journal.isEmpty());
}

void TestDragHandlerMouse::refusedMoveLeavesEverythingInPlace()
{
    DragFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    f.addSeconds(f.trackB, 100, 60);
    f.view.selectItems({0, 1}, true);
    f.model.canMove = [](const VeskTimeline::Item& item, qint64) { return item.id() != 1; };
    pressAndMove(130, 160, f.trackA);
    f.model.asked.clear();

    Input::release(&f.view, f.pos(170, f.trackA));

    QCOMPARE(f.model.asked, (QStringList{"canMove(0, 140000)", "canMove(1, 140000)"}));
    QVERIFY(f.model.journal.isEmpty());
    QCOMPARE(f.model.item(0)->startTime(), f.at(100));
    QCOMPARE(f.model.item(1)->startTime(), f.at(100));
    QVERIFY(f.handler.isIdle());
    QVERIFY(f.logLines().isEmpty());
}

void TestDragHandlerMouse::itemInTheWayStopsTheMove()
{
    DragFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    f.addSeconds(f.trackA, 200, 60);
    Input::drag(&f.view, f.pos(130, f.trackA), f.pos(171, f.trackA));
    QVERIFY(f.model.journal.isEmpty());
    QVERIFY(f.handler.isIdle());
}

void TestDragHandlerMouse::touchingAnItemIsNoCollision()
{
    DragFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    f.addSeconds(f.trackA, 200, 60);
    Input::drag(&f.view, f.pos(130, f.trackA), f.pos(170, f.trackA));
    QCOMPARE(f.model.item(0)->startTime(), f.at(140));
}

void TestDragHandlerMouse::draggedItemsAreNotInEachOthersWay()
{
    DragFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    f.addSeconds(f.trackA, 160, 60);
    f.view.selectItems({0, 1}, true);
    Input::drag(&f.view, f.pos(130, f.trackA), f.pos(160, f.trackA));
    QCOMPARE(f.model.item(0)->startTime(), f.at(130));
    QCOMPARE(f.model.item(1)->startTime(), f.at(190));
}

void TestDragHandlerMouse::itemsOfOtherTracksAreNotInTheWay()
{
    DragFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    f.addSeconds(f.trackB, 200, 60);
    const int child = f.model.newTrack("child", f.trackA);
    f.addSeconds(child, 200, 60);
    Input::drag(&f.view, f.pos(130, f.trackA), f.pos(230, f.trackA));
    QCOMPARE(f.model.item(0)->startTime(), f.at(200));
}

void TestDragHandlerMouse::everyItemIsCheckedOnItsOwnTrack()
{
    DragFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    f.addSeconds(f.trackB, 100, 60);
    f.addSeconds(f.trackB, 200, 60);
    f.view.selectItems({0, 1}, true);
    Input::drag(&f.view, f.pos(130, f.trackA), f.pos(190, f.trackA));
    QVERIFY(f.model.journal.isEmpty());
}

void TestDragHandlerMouse::failingWriteEndsTheMoveHalfWay_data()
{
    addFailureRows();
}

void TestDragHandlerMouse::failingWriteEndsTheMoveHalfWay()
{
    QFETCH(Failure, failure);
    DragFixture& f = fixture();
    for (const int start : {100, 200, 300})
        f.addSeconds(f.trackA, start, 60);
    f.view.selectItems({0, 1, 2}, true);
    pressAndMove(130, 150, f.trackA);
    f.model.failAt("item.start(1", failure);

    QMouseEvent release = releaseAt(f.pos(150, f.trackA));
    QVERIFY(keepsExceptions([&] { f.handler.mouseReleaseEvent(&release); }));

    QCOMPARE(f.model.journal, (QStringList{"currentItemTimeChanged", "item.start(0, 120000)", "track.start(0, 120000)",
                                           "item.start(1, 220000)"}));
    QCOMPARE(f.logLines(), QStringList{failureLine(dragSignature("mouseReleaseEvent(QMouseEvent*)"), failure)});
    QVERIFY(f.handler.isIdle());
    QCOMPARE(f.cursor(), Qt::ArrowCursor);
}

void TestDragHandlerMouse::failingPolicyAtTheReleaseEndsTheMove_data()
{
    addFailureRows();
}

void TestDragHandlerMouse::failingPolicyAtTheReleaseEndsTheMove()
{
    QFETCH(Failure, failure);
    DragFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    pressAndMove(130, 150, f.trackA);
    f.model.failAt("canMove", failure);
    QMouseEvent release = releaseAt(f.pos(150, f.trackA));
    QVERIFY(keepsExceptions([&] { f.handler.mouseReleaseEvent(&release); }));
    QVERIFY(f.model.journal.isEmpty());
    QCOMPARE(f.logLines(), QStringList{failureLine(dragSignature("mouseReleaseEvent(QMouseEvent*)"), failure)});
    QVERIFY(f.handler.isIdle());
}

void TestDragHandlerMouse::itemRemovedDuringTheMoveEndsItAtTheRelease()
{
    DragFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    pressAndMove(130, 150, f.trackA);
    f.model.TestModel::removeItem(0);
    Input::move(&f.view, f.pos(160, f.trackA), Qt::LeftButton);
    QVERIFY(!f.handler.isIdle());
    Input::release(&f.view, f.pos(160, f.trackA));
    QVERIFY(f.handler.isIdle());
    const QString reason = " Model: const item with id 0 not found in cache";
    QCOMPARE(f.logLines(), (QStringList{"Error: " + dragSignature("mouseMoveEvent(QMouseEvent*)") + reason,
                                        "Error: " + dragSignature("mouseReleaseEvent(QMouseEvent*)") + reason}));
}

void TestDragHandlerMouse::trackRemovedDuringTheMoveEndsItWithoutAWrite_data()
{
    QTest::addColumn<bool>("isBehindProxy");
    QTest::newRow("model") << false;
    QTest::newRow("proxy") << true;
}

void TestDragHandlerMouse::trackRemovedDuringTheMoveEndsItWithoutAWrite()
{
    QFETCH(bool, isBehindProxy);
    DragFixture& f = fixture();
    QSortFilterProxyModel proxy;
    proxy.setSourceModel(&f.model);
    if (isBehindProxy)
        f.view.setModel(&proxy);
    f.addSeconds(f.trackB, 100, 60);
    pressAndMove(130, 150, f.trackB);
    f.model.removeTrackRow(f.trackB);
    f.log.clear();

    // The pointer is now below the rows; the row of the press is no more.
    const QPoint pos = f.pos(200, f.trackA);
    QMouseEvent move = moveTo(pos + QPoint(0, 50));
    QVERIFY(keepsExceptions([&] { f.handler.mouseMoveEvent(&move); }));
    QCOMPARE(f.cursor(), Qt::ForbiddenCursor);
    QVERIFY(!f.view.grab().isNull());
    QVERIFY(keepsExceptions([&] { f.handler.deltaY(); }));
    QVERIFY(!f.handler.canMoveItemsTo(pos));
    Input::release(&f.view, pos);
    QMouseEvent leave = moveTo(pos, Qt::NoButton);
    f.handler.mouseMoveEvent(&leave);
    QVERIFY(f.handler.isIdle());
    QVERIFY(f.model.journal.isEmpty());
    f.view.setModel(&f.model);
}

void TestDragHandlerMouse::clearIsTheWayBackToIdle()
{
    DragFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    pressAndMove(130, 300, f.trackA);
    f.handler.m_snapLinePos = 17;
    QVERIFY(f.repaints([&] { f.handler.clear(); }));
    QVERIFY(f.handler.isIdle());
    QVERIFY(!f.handler.isActive());
    QCOMPARE(f.cursor(), Qt::ArrowCursor);
    QCOMPARE(f.handler.m_snapLinePos, 17);
}

QTEST_MAIN(TestDragHandlerMouse)
#include "tst_drag_handler_mouse.moc"
