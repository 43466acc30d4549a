#include "x11/desktop_view.h"
#include "x11/pointer.h"

#include <QSignalSpy>
#include <QTest>

using VeskTimeline::TimelineView;

/// Selecting with the mouse, and the keys that act on the selection, on a real display.
class TestX11Selection : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void clickSelectsTheItemAlone();
    void clickOnTheOnlySelectedItemDeselectsIt();
    void pressAndReleaseOnDifferentItemsSelectNothing();
    void controlClickTogglesTheItem();
    void rubberBandSelectsTheSameInAllDirections_data();
    void rubberBandSelectsTheSameInAllDirections();
    void rubberBandReplacesTheSelection();
    void rubberBandInTheNameColumnFollowsInHeightOnly();
    void rubberBandBeginsBelowTheRows();
    void rubberBandShowsACrossOverAReadOnlyModel();
    void controlPressOnEmptySpaceStartsNoRubberBand();
    void doubleClickOnAnItemActivatesItAndClearsTheSelection();
    void doubleClickBesideAnItemActivatesNothing();
    void rightPressOnAnItemAsksForItsContextMenu();
    void rightPressOnEmptySpaceAsksForAContextMenu();
    void deleteRemovesTheSelectedItems();
    void escapeClearsTheSelection();
    void controlASelectsAllItems();
    void controlCAndControlVPasteAtTheIndicator();
    void controlXTakesTheItemsAway();
    void controlVPastesAtTheLeftEdgeWithoutIndicator();
    void keysWithoutControlDoNothing();
};

void TestX11Selection::init()
{
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".?")));
    Pointer pointer;
    PLAY(pointer.moveAway());
}

void TestX11Selection::clickSelectsTheItemAlone()
{
    DesktopView desktop;
    const int first = desktop.addSeconds(desktop.trackA, 100, 60);
    const int second = desktop.addSeconds(desktop.trackB, 300, 60);
    desktop.addSeconds(desktop.trackA, 300, 60);
    QVERIFY(desktop.show());
    QSignalSpy selected(&desktop.view, &TimelineView::selectedItemsChanged);

    Pointer pointer;
    pointer.moveTo(desktop.rows(), desktop.pos(130, desktop.trackA)).press();
    pointer.expect("nothing is selected before the release", [&] { return selected.isEmpty(); }).release();
    PLAY(pointer);
    QTRY_COMPARE(desktop.view.selectedItemIds(), QList<int>({first}));

    PLAY(pointer.moveTo(desktop.rows(), desktop.pos(330, desktop.trackB)).click());
    QTRY_COMPARE(desktop.view.selectedItemIds(), QList<int>({second}));
    QCOMPARE(selected.size(), 2);
    QCOMPARE(desktop.items(), QStringList({"A:100+60", "A:300+60", "B:300+60"}));
}

void TestX11Selection::clickOnTheOnlySelectedItemDeselectsIt()
{
    DesktopView desktop;
    const int item = desktop.addSeconds(desktop.trackA, 100, 60);
    QVERIFY(desktop.show());
    desktop.view.selectItem(item, true);

    Pointer pointer;
    PLAY(pointer.moveTo(desktop.rows(), desktop.pos(130, desktop.trackA)).click());
    QTRY_COMPARE(desktop.view.selectedItemIds(), QList<int>());
}

void TestX11Selection::pressAndReleaseOnDifferentItemsSelectNothing()
{
    DesktopView desktop;
    desktop.addSeconds(desktop.trackA, 100, 60);
    desktop.addSeconds(desktop.trackA, 170, 60);
    desktop.model.setEditable(false);
    QVERIFY(desktop.show());
    QSignalSpy selected(&desktop.view, &TimelineView::selectedItemsChanged);

    Pointer pointer;
    PLAY(pointer.drag(desktop.rows(), desktop.pos(130, desktop.trackA), desktop.pos(200, desktop.trackA)));
    PLAY(pointer.moveTo(desktop.rows(), desktop.pos(500, desktop.trackB)));
    QCOMPARE(selected.size(), 0);
}

void TestX11Selection::controlClickTogglesTheItem()
{
    DesktopView desktop;
    const int first = desktop.addSeconds(desktop.trackA, 100, 60);
    const int second = desktop.addSeconds(desktop.trackB, 300, 60);
    QVERIFY(desktop.show());
    desktop.view.selectItem(first, true);

    Pointer pointer;
    pointer.keyDown("ctrl").moveTo(desktop.rows(), desktop.pos(330, desktop.trackB)).click();
    pointer.expect("both are selected", [&] { return desktop.view.selectedItemIds() == QList<int>({first, second}); });
    pointer.moveTo(desktop.rows(), desktop.pos(130, desktop.trackA)).click();
    pointer.expect("the second is selected", [&] { return desktop.view.selectedItemIds() == QList<int>({second}); });
    PLAY(pointer.keyUp("ctrl"));
    QCOMPARE(desktop.view.selectedItemIds(), QList<int>({second}));
}

void TestX11Selection::rubberBandSelectsTheSameInAllDirections_data()
{
    QTest::addColumn<int>("fromSecond");
    QTest::addColumn<bool>("isFromTrackA");
    QTest::newRow("right and down") << 60 << true;
    QTest::newRow("left and down") << 400 << true;
    QTest::newRow("right and up") << 60 << false;
    QTest::newRow("left and up") << 400 << false;
}

void TestX11Selection::rubberBandSelectsTheSameInAllDirections()
{
    QFETCH(int, fromSecond);
    QFETCH(bool, isFromTrackA);
    DesktopView desktop;
    const int inA = desktop.addSeconds(desktop.trackA, 100, 60);
    const int inB = desktop.addSeconds(desktop.trackB, 200, 60);
    const int inC = desktop.addSeconds(desktop.trackC, 330, 40);
    desktop.addSeconds(desktop.trackC, 500, 60);
    desktop.addSeconds(desktop.trackD, 200, 60);
    QVERIFY(desktop.show());

    const int fromTrack = isFromTrackA ? desktop.trackA : desktop.trackC;
    const int toTrack = isFromTrackA ? desktop.trackC : desktop.trackA;
    // More than two rows high, so that the rows are three whichever way the band is drawn.
    const QPoint from = desktop.pos(fromSecond, fromTrack) - QPoint(0, isFromTrackA ? 10 : -10);
    const QPoint to = desktop.pos(460 - fromSecond, toTrack);
    Pointer pointer;
    PLAY(pointer.drag(desktop.rows(), from, to));
    QTRY_COMPARE(desktop.view.selectedItemIds(), QList<int>({inA, inB, inC}));
    QTRY_VERIFY(desktop.isScreenUpToDate());
    QCOMPARE(desktop.cursor(), Qt::ArrowCursor);
}

void TestX11Selection::rubberBandReplacesTheSelection()
{
    DesktopView desktop;
    const int old = desktop.addSeconds(desktop.trackA, 500, 60);
    const int caught = desktop.addSeconds(desktop.trackA, 100, 60);
    QVERIFY(desktop.show());
    desktop.view.selectItem(old, true);

    Pointer pointer;
    pointer.moveTo(desktop.rows(), desktop.pos(60, desktop.trackA)).press();
    pointer.expect("the press clears the selection", [&] { return !desktop.view.hasSelectedItems(); });
    pointer.glideTo(desktop.pos(200, desktop.trackA));
    pointer.expect("nothing is selected before the release", [&] { return !desktop.view.hasSelectedItems(); });
    PLAY(pointer.release());
    QTRY_COMPARE(desktop.view.selectedItemIds(), QList<int>({caught}));
}

void TestX11Selection::rubberBandInTheNameColumnFollowsInHeightOnly()
{
    DesktopView desktop;
    const int inA = desktop.addSeconds(desktop.trackA, 100, 60);
    const int inB = desktop.addSeconds(desktop.trackB, 100, 60);
    desktop.addSeconds(desktop.trackB, 20, 60);
    QVERIFY(desktop.show());

    Pointer pointer;
    pointer.moveTo(desktop.rows(), desktop.pos(300, desktop.trackA)).press();
    pointer.moveTo(desktop.rows(), desktop.pos(120, desktop.trackA));
    PLAY(pointer.moveTo(desktop.rows(), desktop.namePos(desktop.trackB)).release());
    QTRY_COMPARE(desktop.view.selectedItemIds(), QList<int>({inA, inB}));
}

void TestX11Selection::rubberBandBeginsBelowTheRows()
{
    DesktopView desktop;
    const int inD = desktop.addSeconds(desktop.trackD, 100, 60);
    desktop.addSeconds(desktop.trackA, 100, 60);
    QVERIFY(desktop.show());

    QTest::ignoreMessage(QtWarningMsg, "TimelineViewSelectHandler::mousePressEvent: index invalid");
    Pointer pointer;
    const QPoint below = desktop.pos(60, desktop.trackD) + QPoint(0, DesktopView::rowHeight);
    PLAY(pointer.drag(desktop.rows(), below, desktop.pos(200, desktop.trackD)));
    QTRY_COMPARE(desktop.view.selectedItemIds(), QList<int>({inD}));
}

void TestX11Selection::rubberBandShowsACrossOverAReadOnlyModel()
{
    DesktopView desktop;
    const int item = desktop.addSeconds(desktop.trackA, 100, 60);
    desktop.model.setEditable(false);
    QVERIFY(desktop.show());

    Pointer pointer;
    pointer.moveTo(desktop.rows(), desktop.pos(60, desktop.trackA)).press().glideTo(desktop.pos(200, desktop.trackA));
    pointer.expect("the cursor is a cross", [&] { return desktop.cursor() == Qt::CrossCursor; });
    PLAY(pointer.release());
    QTRY_COMPARE(desktop.view.selectedItemIds(), QList<int>({item}));
    QCOMPARE(desktop.cursor(), Qt::ArrowCursor);
}

void TestX11Selection::controlPressOnEmptySpaceStartsNoRubberBand()
{
    DesktopView desktop;
    const int item = desktop.addSeconds(desktop.trackA, 100, 60);
    const int other = desktop.addSeconds(desktop.trackB, 100, 60);
    QVERIFY(desktop.show());
    desktop.view.selectItem(other, true);
    QSignalSpy selected(&desktop.view, &TimelineView::selectedItemsChanged);

    Pointer pointer;
    pointer.keyDown("ctrl").drag(desktop.rows(), desktop.pos(60, desktop.trackA), desktop.pos(200, desktop.trackA));
    PLAY(pointer.keyUp("ctrl"));
    QCOMPARE(selected.size(), 0);
    QCOMPARE(desktop.cursor(), Qt::ArrowCursor);

    // The same without Control does catch it.
    PLAY(pointer.drag(desktop.rows(), desktop.pos(60, desktop.trackA), desktop.pos(200, desktop.trackA)));
    QTRY_COMPARE(desktop.view.selectedItemIds(), QList<int>({item}));
}

void TestX11Selection::doubleClickOnAnItemActivatesItAndClearsTheSelection()
{
    DesktopView desktop;
    const int item = desktop.addSeconds(desktop.trackB, 100, 60);
    const int other = desktop.addSeconds(desktop.trackA, 100, 60);
    QVERIFY(desktop.show());
    desktop.view.selectItem(other, true);
    QSignalSpy activated(&desktop.view, &TimelineView::itemActivated);
    QSignalSpy trackActivated(&desktop.view, &TimelineView::trackActivated);

    Pointer pointer;
    PLAY(pointer.moveTo(desktop.rows(), desktop.pos(130, desktop.trackB)).doubleClick());
    QTRY_COMPARE(activated.size(), 1);
    QCOMPARE(activated.first().first().toInt(), item);
    QCOMPARE(desktop.view.selectedItemIds(), QList<int>());
    QCOMPARE(trackActivated.size(), 0);
}

void TestX11Selection::doubleClickBesideAnItemActivatesNothing()
{
    DesktopView desktop;
    desktop.addSeconds(desktop.trackB, 100, 60);
    QVERIFY(desktop.show());
    QSignalSpy activated(&desktop.view, &TimelineView::itemActivated);

    Pointer pointer;
    PLAY(pointer.moveTo(desktop.rows(), desktop.pos(300, desktop.trackB)).doubleClick());
    PLAY(pointer.moveTo(desktop.rows(), desktop.pos(400, desktop.trackB)));
    QCOMPARE(activated.size(), 0);
}

void TestX11Selection::rightPressOnAnItemAsksForItsContextMenu()
{
    DesktopView desktop;
    const int item = desktop.addSeconds(desktop.trackA, 100, 60);
    QVERIFY(desktop.show());
    desktop.view.selectItem(item, true);
    QSignalSpy asked(&desktop.view, &QWidget::customContextMenuRequested);

    const QPoint pos = desktop.pos(130, desktop.trackA);
    Pointer pointer;
    PLAY(pointer.moveTo(desktop.rows(), pos).click(Qt::RightButton));
    QTRY_COMPARE(asked.size(), 1);
    QCOMPARE(asked.first().first().toPoint(), pos);
    QCOMPARE(desktop.view.selectedItemIds(), QList<int>({item}));
}

void TestX11Selection::rightPressOnEmptySpaceAsksForAContextMenu()
{
    DesktopView desktop;
    const int item = desktop.addSeconds(desktop.trackA, 100, 60);
    QVERIFY(desktop.show());
    desktop.view.selectItem(item, true);
    QSignalSpy asked(&desktop.view, &QWidget::customContextMenuRequested);

    const QPoint pos = desktop.pos(400, desktop.trackB);
    Pointer pointer;
    PLAY(pointer.moveTo(desktop.rows(), pos).click(Qt::RightButton));
    // Once by the select handler, once by the view.
    QTRY_COMPARE(asked.size(), 2);
    QCOMPARE(asked.at(0).first().toPoint(), pos);
    QCOMPARE(asked.at(1).first().toPoint(), pos);
    QCOMPARE(desktop.view.selectedItemIds(), QList<int>({item}));
}

void TestX11Selection::deleteRemovesTheSelectedItems()
{
    DesktopView desktop;
    const int first = desktop.addSeconds(desktop.trackA, 100, 60);
    desktop.addSeconds(desktop.trackA, 200, 60);
    const int third = desktop.addSeconds(desktop.trackB, 100, 60);
    QVERIFY(desktop.show());
    desktop.view.selectItems({first, third}, true);

    Pointer pointer;
    PLAY(pointer.key("Delete"));
    QTRY_COMPARE(desktop.items(), QStringList({"A:200+60"}));
    QTRY_VERIFY(desktop.isScreenUpToDate());
    QCOMPARE(desktop.view.selectedItemIds(), QList<int>());

    PLAY(pointer.key("Delete"));
    QCOMPARE(desktop.items(), QStringList({"A:200+60"}));
}

void TestX11Selection::escapeClearsTheSelection()
{
    DesktopView desktop;
    const int item = desktop.addSeconds(desktop.trackA, 100, 60);
    QVERIFY(desktop.show());
    desktop.view.selectItem(item, true);

    Pointer pointer;
    PLAY(pointer.key("Escape"));
    QTRY_COMPARE(desktop.view.selectedItemIds(), QList<int>());
    QTRY_VERIFY(desktop.isScreenUpToDate());
    QCOMPARE(desktop.items(), QStringList({"A:100+60"}));
}

void TestX11Selection::controlASelectsAllItems()
{
    DesktopView desktop;
    const int inB = desktop.addSeconds(desktop.trackB, 100, 60);
    const int inA = desktop.addSeconds(desktop.trackA, 100, 60);
    QVERIFY(desktop.show());

    Pointer pointer;
    PLAY(pointer.key("ctrl+a"));
    QTRY_COMPARE(desktop.view.selectedItemIds(), QList<int>({inB, inA}));
    QTRY_VERIFY(desktop.isScreenUpToDate());
}

void TestX11Selection::controlCAndControlVPasteAtTheIndicator()
{
    DesktopView desktop;
    const int first = desktop.addSeconds(desktop.trackA, 100, 60);
    const int second = desktop.addSeconds(desktop.trackB, 150, 60);
    QVERIFY(desktop.show());
    desktop.header()->setIndicatorVisible(true);
    desktop.header()->setIndicatorTime(desktop.at(400));
    desktop.view.selectItems({first, second}, true);

    Pointer pointer;
    PLAY(pointer.key("ctrl+c"));
    QTRY_VERIFY(!desktop.model.isClipboardEmpty());
    QCOMPARE(desktop.view.selectedItemIds(), QList<int>({first, second}));
    PLAY(pointer.key("ctrl+v"));
    QTRY_COMPARE(desktop.items(), QStringList({"A:100+60", "A:400+60", "B:150+60", "B:450+60"}));
    QTRY_VERIFY(desktop.isScreenUpToDate());
}

void TestX11Selection::controlXTakesTheItemsAway()
{
    DesktopView desktop;
    const int item = desktop.addSeconds(desktop.trackA, 100, 60);
    desktop.addSeconds(desktop.trackB, 100, 60);
    QVERIFY(desktop.show());
    desktop.view.selectItem(item, true);

    Pointer pointer;
    PLAY(pointer.key("ctrl+x"));
    QTRY_COMPARE(desktop.items(), QStringList({"B:100+60"}));
    QTRY_VERIFY(desktop.isScreenUpToDate());
    QVERIFY(!desktop.model.isClipboardEmpty());
    QCOMPARE(desktop.view.selectedItemIds(), QList<int>());
}

void TestX11Selection::controlVPastesAtTheLeftEdgeWithoutIndicator()
{
    DesktopView desktop;
    const int item = desktop.addSeconds(desktop.trackA, 500, 60);
    QVERIFY(desktop.show());
    desktop.header()->setIndicatorVisible(false);
    desktop.view.selectItem(item, true);
    desktop.view.setCurrentTime(desktop.at(30));

    Pointer pointer;
    PLAY(pointer.key("ctrl+x"));
    PLAY(pointer.key("ctrl+v"));
    QTRY_COMPARE(desktop.items(), QStringList({"A:30+60"}));
}

void TestX11Selection::keysWithoutControlDoNothing()
{
    DesktopView desktop;
    const int item = desktop.addSeconds(desktop.trackA, 100, 60);
    QVERIFY(desktop.show());
    desktop.view.selectItem(item, true);
    QSignalSpy selected(&desktop.view, &TimelineView::selectedItemsChanged);
    const QModelIndex current = desktop.view.currentIndex();

    Pointer pointer;
    PLAY(pointer.key("a").key("x").key("Down"));
    QCOMPARE(selected.size(), 0);
    QCOMPARE(desktop.items(), QStringList({"A:100+60"}));
    QVERIFY(desktop.model.isClipboardEmpty());
    QCOMPARE(desktop.view.currentIndex(), current);
}

QTEST_MAIN(TestX11Selection)
#include "tst_x11_selection.moc"
