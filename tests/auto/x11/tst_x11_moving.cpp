#include "x11/desktop_view.h"
#include "x11/pointer.h"

#include <QSignalSpy>
#include <QTest>

using VeskTimeline::TimelineView;

/// Moving items within their track and resizing them, with the mouse and the arrow keys, on a real display.
class TestX11Moving : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void dragMovesTheItemInTime();
    void dragBelowTheStartDistanceIsAClick();
    void dragOfASelectedItemMovesTheSelection();
    void dragOfAnUnselectedItemMovesThatItemOnly();
    void dragStraightDownInItsRowMovesNothing();
    void dragOntoANeighbourIsRefused();
    void dragThatTheModelRefusesMovesNothing();
    void dragIntoTheNameColumnGoesOnWhereItComesBack();
    void dragSnapsToTheGrid();
    void dragSnapsToTheEdgeOfANeighbour();
    void escapeAbandonsTheDragOfASelectedItem();
    void fixedItemCannotBeDragged();
    void arrowKeysMoveTheSelectionByTenSteps();
    void arrowKeysWithControlMoveTheSelectionByOneStep();
    void arrowKeysStopAtTheNeighbour();
    void cursorShowsWhereAnItemCanBeResized();
    void endEdgeFollowsTheMouse();
    void startEdgeFollowsTheMouseWhileTheEndStays();
    void edgeStopsAtTheNeighbour();
    void resizePausesOverAnotherRow();
    void keysDoNothingDuringAResize();
};

void TestX11Moving::init()
{
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".?")));
    Pointer pointer;
    PLAY(pointer.moveAway());
}

void TestX11Moving::dragMovesTheItemInTime()
{
    DesktopView desktop;
    desktop.addSeconds(desktop.trackA, 100, 60);
    QVERIFY(desktop.show());
    QSignalSpy changed(&desktop.view, &TimelineView::currentItemTimeChanged);

    Pointer pointer;
    pointer.moveTo(desktop.rows(), desktop.pos(130, desktop.trackA)).press();
    pointer.expect("a hand holds the item", [&] { return desktop.cursor() == Qt::ClosedHandCursor; });
    pointer.glideTo(desktop.pos(180, desktop.trackA));
    pointer.expect("nothing is written yet", [&] { return desktop.items() == QStringList({"A:100+60"}); });
    PLAY(pointer.release());
    QTRY_COMPARE(desktop.items(), QStringList({"A:150+60"}));
    QTRY_VERIFY(desktop.isScreenUpToDate());
    QCOMPARE(changed.size(), 1);
    QCOMPARE(desktop.view.selectedItemIds(), QList<int>());
    QCOMPARE(desktop.cursor(), Qt::ArrowCursor);
}

void TestX11Moving::dragBelowTheStartDistanceIsAClick()
{
    DesktopView desktop;
    const int item = desktop.addSeconds(desktop.trackA, 100, 60);
    QVERIFY(desktop.show());
    QSignalSpy changed(&desktop.view, &TimelineView::currentItemTimeChanged);

    Pointer pointer;
    PLAY(pointer.drag(desktop.rows(), desktop.pos(130, desktop.trackA), desktop.pos(135, desktop.trackA)));
    QTRY_COMPARE(desktop.view.selectedItemIds(), QList<int>({item}));
    QCOMPARE(desktop.items(), QStringList({"A:100+60"}));
    QCOMPARE(changed.size(), 0);
}

void TestX11Moving::dragOfASelectedItemMovesTheSelection()
{
    DesktopView desktop;
    const int first = desktop.addSeconds(desktop.trackA, 100, 60);
    const int second = desktop.addSeconds(desktop.trackB, 300, 60);
    desktop.addSeconds(desktop.trackA, 500, 60);
    QVERIFY(desktop.show());
    desktop.view.selectItems({first, second}, true);

    Pointer pointer;
    PLAY(pointer.drag(desktop.rows(), desktop.pos(330, desktop.trackB), desktop.pos(290, desktop.trackB)));
    QTRY_COMPARE(desktop.items(), QStringList({"A:60+60", "A:500+60", "B:260+60"}));
    QCOMPARE(desktop.view.selectedItemIds(), QList<int>({first, second}));
}

void TestX11Moving::dragOfAnUnselectedItemMovesThatItemOnly()
{
    DesktopView desktop;
    const int selected = desktop.addSeconds(desktop.trackA, 100, 60);
    desktop.addSeconds(desktop.trackB, 300, 60);
    QVERIFY(desktop.show());
    desktop.view.selectItem(selected, true);

    Pointer pointer;
    PLAY(pointer.drag(desktop.rows(), desktop.pos(330, desktop.trackB), desktop.pos(400, desktop.trackB)));
    QTRY_COMPARE(desktop.items(), QStringList({"A:100+60", "B:370+60"}));
    QCOMPARE(desktop.view.selectedItemIds(), QList<int>({selected}));
}

void TestX11Moving::dragStraightDownInItsRowMovesNothing()
{
    DesktopView desktop;
    desktop.addSeconds(desktop.trackA, 100, 60);
    QVERIFY(desktop.show());
    QSignalSpy changed(&desktop.view, &TimelineView::currentItemTimeChanged);

    const QPoint middle = desktop.pos(130, desktop.trackA);
    Pointer pointer;
    PLAY(pointer.drag(desktop.rows(), middle - QPoint(0, 15), middle + QPoint(0, 15)));
    QTRY_COMPARE(desktop.cursor(), Qt::ArrowCursor);
    QCOMPARE(desktop.items(), QStringList({"A:100+60"}));
    QCOMPARE(changed.size(), 0);
}

void TestX11Moving::dragOntoANeighbourIsRefused()
{
    DesktopView desktop;
    desktop.addSeconds(desktop.trackA, 100, 60);
    desktop.addSeconds(desktop.trackA, 200, 60);
    QVERIFY(desktop.show());
    QSignalSpy changed(&desktop.view, &TimelineView::currentItemTimeChanged);

    Pointer pointer;
    pointer.moveTo(desktop.rows(), desktop.pos(130, desktop.trackA)).press().glideTo(desktop.pos(200, desktop.trackA));
    pointer.expect("the cursor refuses", [&] { return desktop.cursor() == Qt::ForbiddenCursor; });
    PLAY(pointer.release());
    QTRY_COMPARE(desktop.cursor(), Qt::ArrowCursor);
    QCOMPARE(desktop.items(), QStringList({"A:100+60", "A:200+60"}));
    QCOMPARE(changed.size(), 0);
}

void TestX11Moving::dragThatTheModelRefusesMovesNothing()
{
    DesktopView desktop;
    desktop.model.heldItems = {desktop.addSeconds(desktop.trackA, 100, 60)};
    QVERIFY(desktop.show());

    Pointer pointer;
    pointer.moveTo(desktop.rows(), desktop.pos(130, desktop.trackA)).press().glideTo(desktop.pos(200, desktop.trackA));
    pointer.expect("the cursor refuses", [&] { return desktop.cursor() == Qt::ForbiddenCursor; });
    PLAY(pointer.release());
    QTRY_COMPARE(desktop.cursor(), Qt::ArrowCursor);
    QCOMPARE(desktop.items(), QStringList({"A:100+60"}));
}

void TestX11Moving::dragIntoTheNameColumnGoesOnWhereItComesBack()
{
    DesktopView desktop;
    desktop.addSeconds(desktop.trackA, 100, 60);
    QVERIFY(desktop.show());

    Pointer pointer;
    pointer.moveTo(desktop.rows(), desktop.pos(130, desktop.trackA)).press();
    pointer.moveTo(desktop.rows(), desktop.pos(90, desktop.trackA));
    pointer.moveTo(desktop.rows(), desktop.namePos(desktop.trackA));
    pointer.expect("the cursor refuses", [&] { return desktop.cursor() == Qt::ForbiddenCursor; });
    pointer.moveTo(desktop.rows(), desktop.pos(80, desktop.trackA));
    pointer.expect("a hand holds the item", [&] { return desktop.cursor() == Qt::ClosedHandCursor; });
    PLAY(pointer.release());
    QTRY_COMPARE(desktop.items(), QStringList({"A:50+60"}));
}

void TestX11Moving::dragSnapsToTheGrid()
{
    DesktopView desktop;
    desktop.addSeconds(desktop.trackA, 100, 60);
    desktop.model.setSnapEnabled(true);
    desktop.model.setSnapStep(60'000);
    QVERIFY(desktop.show());

    Pointer pointer;
    PLAY(pointer.drag(desktop.rows(), desktop.pos(130, desktop.trackA), desktop.pos(189, desktop.trackA)));
    QTRY_COMPARE(desktop.cursor(), Qt::ArrowCursor);
    QCOMPARE(desktop.items(), QStringList({"A:100+60"}));
    PLAY(pointer.drag(desktop.rows(), desktop.pos(130, desktop.trackA), desktop.pos(260, desktop.trackA)));
    QTRY_COMPARE(desktop.items(), QStringList({"A:220+60"}));
}

void TestX11Moving::dragSnapsToTheEdgeOfANeighbour()
{
    DesktopView desktop;
    desktop.addSeconds(desktop.trackA, 100, 60);
    desktop.addSeconds(desktop.trackB, 166, 60);
    desktop.model.setSnapEnabled(true);
    desktop.model.setSnapStep(1'000);
    desktop.model.setSnapTolerance(10'000);
    QVERIFY(desktop.show());

    Pointer pointer;
    PLAY(pointer.drag(desktop.rows(), desktop.pos(130, desktop.trackA), desktop.pos(142, desktop.trackA)));
    QTRY_COMPARE(desktop.items(), QStringList({"A:106+60", "B:166+60"}));
}

void TestX11Moving::escapeAbandonsTheDragOfASelectedItem()
{
    DesktopView desktop;
    const int item = desktop.addSeconds(desktop.trackA, 100, 60);
    QVERIFY(desktop.show());
    desktop.view.selectItem(item, true);
    QSignalSpy changed(&desktop.view, &TimelineView::currentItemTimeChanged);

    Pointer pointer;
    pointer.moveTo(desktop.rows(), desktop.pos(130, desktop.trackA)).press().glideTo(desktop.pos(200, desktop.trackA));
    pointer.key("Escape");
    pointer.expect("the hand is empty", [&] { return desktop.cursor() == Qt::ArrowCursor; });
    PLAY(pointer.glideTo(desktop.pos(260, desktop.trackA)).release());
    QCOMPARE(desktop.items(), QStringList({"A:100+60"}));
    QCOMPARE(changed.size(), 0);
    QCOMPARE(desktop.cursor(), Qt::ArrowCursor);
}

void TestX11Moving::fixedItemCannotBeDragged()
{
    DesktopView desktop;
    const int fixed = desktop.addSeconds(desktop.trackA, 100, 60, Qt::red, false);
    const int movable = desktop.addSeconds(desktop.trackA, 300, 60);
    QVERIFY(desktop.show());
    desktop.view.selectItems({fixed, movable}, true);

    Pointer pointer;
    PLAY(pointer.drag(desktop.rows(), desktop.pos(330, desktop.trackA), desktop.pos(400, desktop.trackA)));
    PLAY(pointer.drag(desktop.rows(), desktop.pos(130, desktop.trackA), desktop.pos(200, desktop.trackB)));
    PLAY(pointer.moveTo(desktop.rows(), desktop.pos(500, desktop.trackC)));
    QCOMPARE(desktop.items(), QStringList({"A:100+60", "A:300+60"}));
}

void TestX11Moving::arrowKeysMoveTheSelectionByTenSteps()
{
    DesktopView desktop;
    const int first = desktop.addSeconds(desktop.trackA, 100, 60);
    const int second = desktop.addSeconds(desktop.trackB, 300, 60);
    desktop.addSeconds(desktop.trackC, 300, 60);
    QVERIFY(desktop.show());
    desktop.view.selectItems({first, second}, true);

    Pointer pointer;
    PLAY(pointer.key("Right"));
    QTRY_COMPARE(desktop.items(), QStringList({"A:105+60", "B:305+60", "C:300+60"}));
    QTRY_VERIFY(desktop.isScreenUpToDate());
    PLAY(pointer.key("Left").key("Left"));
    QTRY_COMPARE(desktop.items(), QStringList({"A:95+60", "B:295+60", "C:300+60"}));
    QCOMPARE(desktop.view.selectedItemIds(), QList<int>({first, second}));
}

void TestX11Moving::arrowKeysWithControlMoveTheSelectionByOneStep()
{
    DesktopView desktop;
    const int item = desktop.addSeconds(desktop.trackA, 100, 60);
    QVERIFY(desktop.show());
    desktop.view.selectItem(item, true);

    Pointer pointer;
    PLAY(pointer.key("ctrl+Right"));
    QTRY_COMPARE(desktop.items(), QStringList({"A:100.5+60"}));
    QTRY_VERIFY(desktop.isScreenUpToDate());
    PLAY(pointer.key("ctrl+Left").key("ctrl+Left"));
    QTRY_COMPARE(desktop.items(), QStringList({"A:99.5+60"}));
}

void TestX11Moving::arrowKeysStopAtTheNeighbour()
{
    DesktopView desktop;
    const int item = desktop.addSeconds(desktop.trackA, 100, 60);
    desktop.addSeconds(desktop.trackA, 163, 60);
    QVERIFY(desktop.show());
    desktop.view.selectItem(item, true);

    Pointer pointer;
    PLAY(pointer.key("Right"));
    QTRY_COMPARE(desktop.items(), QStringList({"A:103+60", "A:163+60"}));
    PLAY(pointer.key("Right").key("ctrl+Right"));
    QCOMPARE(desktop.items(), QStringList({"A:103+60", "A:163+60"}));
}

void TestX11Moving::cursorShowsWhereAnItemCanBeResized()
{
    DesktopView desktop;
    desktop.addSeconds(desktop.trackA, 100, 60);
    desktop.addSeconds(desktop.trackA, 300, 14);
    QVERIFY(desktop.show());

    const auto cursorAt = [&](int second) {
        Pointer pointer;
        pointer.moveTo(desktop.rows(), desktop.pos(second, desktop.trackA)).play();
        return desktop.cursor();
    };
    QCOMPARE(cursorAt(99), Qt::ArrowCursor);
    QCOMPARE(cursorAt(100), Qt::SizeHorCursor);
    QCOMPARE(cursorAt(105), Qt::SizeHorCursor);
    QCOMPARE(cursorAt(106), Qt::ArrowCursor);
    QCOMPARE(cursorAt(154), Qt::ArrowCursor);
    QCOMPARE(cursorAt(155), Qt::SizeHorCursor);
    QCOMPARE(cursorAt(160), Qt::SizeHorCursor);
    QCOMPARE(cursorAt(161), Qt::ArrowCursor);
    QCOMPARE(cursorAt(302), Qt::ArrowCursor);
}

void TestX11Moving::endEdgeFollowsTheMouse()
{
    DesktopView desktop;
    desktop.addSeconds(desktop.trackA, 100, 60);
    desktop.addSeconds(desktop.trackA, 500, 60);
    QVERIFY(desktop.show());
    QSignalSpy changed(&desktop.view, &TimelineView::currentItemTimeChanged);
    QSignalSpy selected(&desktop.view, &TimelineView::selectedItemsChanged);

    Pointer pointer;
    pointer.moveTo(desktop.rows(), desktop.pos(158, desktop.trackA)).press();
    pointer.moveTo(desktop.rows(), desktop.pos(180, desktop.trackA));
    pointer.expect("each move writes", [&] { return desktop.items() == QStringList({"A:100+80", "A:500+60"}); });
    pointer.expect("each move shows", [&] { return desktop.isScreenUpToDate(); });
    pointer.moveTo(desktop.rows(), desktop.pos(250, desktop.trackA));
    pointer.expect("the release comes later", [&] { return changed.isEmpty(); });
    PLAY(pointer.release());
    QTRY_COMPARE(changed.size(), 1);
    QCOMPARE(desktop.items(), QStringList({"A:100+150", "A:500+60"}));
    QTRY_VERIFY(desktop.isScreenUpToDate());
    QCOMPARE(desktop.cursor(), Qt::ArrowCursor);
    QCOMPARE(selected.size(), 0);
}

void TestX11Moving::startEdgeFollowsTheMouseWhileTheEndStays()
{
    DesktopView desktop;
    desktop.addSeconds(desktop.trackA, 10, 20);
    desktop.addSeconds(desktop.trackA, 100, 60);
    QVERIFY(desktop.show());
    QSignalSpy changed(&desktop.view, &TimelineView::currentItemTimeChanged);

    Pointer pointer;
    PLAY(pointer.drag(desktop.rows(), desktop.pos(102, desktop.trackA), desktop.pos(70, desktop.trackA)));
    QTRY_COMPARE(changed.size(), 1);
    QCOMPARE(desktop.items(), QStringList({"A:10+20", "A:70+90"}));
}

void TestX11Moving::edgeStopsAtTheNeighbour()
{
    DesktopView desktop;
    desktop.addSeconds(desktop.trackA, 100, 60);
    desktop.addSeconds(desktop.trackA, 200, 60);
    QVERIFY(desktop.show());

    Pointer pointer;
    PLAY(pointer.drag(desktop.rows(), desktop.pos(158, desktop.trackA), desktop.pos(240, desktop.trackA)));
    QTRY_COMPARE(desktop.items(), QStringList({"A:100+100", "A:200+60"}));
}

void TestX11Moving::resizePausesOverAnotherRow()
{
    DesktopView desktop;
    desktop.addSeconds(desktop.trackA, 100, 60);
    desktop.addSeconds(desktop.trackA, 500, 60);
    QVERIFY(desktop.show());

    Pointer pointer;
    pointer.moveTo(desktop.rows(), desktop.pos(158, desktop.trackA)).press();
    pointer.moveTo(desktop.rows(), desktop.pos(180, desktop.trackA));
    pointer.moveTo(desktop.rows(), desktop.pos(250, desktop.trackB));
    pointer.expect("the edge waits", [&] { return desktop.items() == QStringList({"A:100+80", "A:500+60"}); });
    PLAY(pointer.moveTo(desktop.rows(), desktop.pos(220, desktop.trackA)).release());
    QTRY_COMPARE(desktop.items(), QStringList({"A:100+120", "A:500+60"}));
}

void TestX11Moving::keysDoNothingDuringAResize()
{
    DesktopView desktop;
    const int item = desktop.addSeconds(desktop.trackA, 100, 60);
    desktop.addSeconds(desktop.trackA, 500, 60);
    QVERIFY(desktop.show());
    desktop.view.selectItem(item, true);

    Pointer pointer;
    pointer.moveTo(desktop.rows(), desktop.pos(158, desktop.trackA)).press();
    pointer.moveTo(desktop.rows(), desktop.pos(180, desktop.trackA)).key("Delete").key("Escape").key("Right");
    PLAY(pointer.moveTo(desktop.rows(), desktop.pos(200, desktop.trackA)).release());
    QTRY_COMPARE(desktop.items(), QStringList({"A:100+100", "A:500+60"}));
    QCOMPARE(desktop.view.selectedItemIds(), QList<int>({item}));
}

QTEST_MAIN(TestX11Moving)
#include "tst_x11_moving.moc"
