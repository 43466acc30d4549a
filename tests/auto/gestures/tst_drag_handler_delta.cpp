#include "probe_drag_handler.h"
#include "reference/edge_snapping.h"
#include "support/input.h"

#include <QRandomGenerator>
#include <QRegularExpression>
#include <QSortFilterProxyModel>
#include <QTest>

#include <memory>

class TestDragHandlerDelta : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void isActiveNeedsItemsAndDistance();

    void withoutSnappingDeltaXIsTheWayOfThePointer();
    void withSnappingDeltaXIsTheWidthOfTheSnappedOffset();
    void deltaXAsksDeltaTimeThroughItsSlot();
    void deltaYJumpsFromRowToRow();
    void deltaYIsFreeBelowTheRows();
    void deltaYCountsFromTheRowOfThePress();
    void rowInsertedDuringTheMoveShiftsTheStartToo();

    void withoutSnappingTheOffsetIsTheTimeBetweenThePositions();
    void offsetIsCutToTheGridTowardsZero_data();
    void offsetIsCutToTheGridTowardsZero();
    void offsetOfAnInactiveGridIsFree();
    void startSnapsToTheEndOfAnotherItem();
    void endSnapsToTheStartOfAnotherItem();
    void edgeAtTheToleranceDoesNotSnap_data();
    void edgeAtTheToleranceDoesNotSnap();
    void offsetOfTwiceTheToleranceDoesNotSnap();
    void endOfTheOtherItemTakesPrecedence();
    void firstOfEquallyNearEdgesWins();
    void nearerEdgeReplacesAFartherOne();
    void itemsOnAllTracksAttract();
    void draggedItemsDoNotAttractEachOther();
    void laterDraggedItemsStartFromTheImprovedOffset();
    void toleranceOfZeroSnapsToTheGridOnly();
    void removedItemMakesTheOffsetFail();
    void offsetAgreesWithTheReferenceOnRandomData();

    void itemOfTheGrabbedTrackStaysWhileTheRowIsTheSame();
    void everyItemMovesByTheSameNumberOfRows();
    void itemPastTheLastRowHasNoTrack();
    void itemPastTheFirstRowHasNoTrack();
    void trackIsReadBesideANameThatIsANumber();
    void itemInACollapsedRowHasNoTrack();
    void dragItemTrackIdAsksDeltaYThroughItsSlot();
    void tracksAreFoundThroughAProxy();

private:
    DragFixture& fixture() { return *m_fixture; }
    /// Sets the state that a press and a move leave, with times to the millisecond instead of the pixel.
    void dragItems(const QVector<int>& ids, qint64 startTime)
    {
        ProbeDragHandler& handler = fixture().handler;
        handler.m_dragItemIds = ids;
        handler.m_dragStartIndex = fixture().view.indexOfTrackRow(fixture().trackA, 1);
        handler.m_dragStartTime = startTime;
        handler.m_dragStartPos = fixture().pos(0, fixture().trackA);
    }
    /// Drags the items so that the unsnapped offset is `raw` milliseconds.
    qint64 deltaTimeFor(const QVector<int>& ids, qint64 raw)
    {
        const QPoint to = fixture().pos(900, fixture().trackA);
        dragItems(ids, fixture().view.toTime(to.x()) - raw);
        fixture().handler.m_dragPos = to;
        return fixture().handler.deltaTime();
    }
    void setSnapping(int step, int tolerance)
    {
        fixture().model.setSnapEnabled(true);
        fixture().model.setSnapStep(step);
        fixture().model.setSnapTolerance(tolerance);
    }
    /// An item to the millisecond, counted from the start of the range, past the whole-second cut of a snapping model.
    int addExactly(int trackId, qint64 start, int duration)
    {
        const bool isSnapEnabled = fixture().model.isSnapEnabled();
        fixture().model.setSnapEnabled(false);
        const int id = fixture().model.newItem(trackId, fixture().origin + start, duration);
        fixture().model.setSnapEnabled(isSnapEnabled);
        return id;
    }
    void press(int second, int trackId) { Input::press(&fixture().view, fixture().pos(second, trackId)); }

    std::unique_ptr<DragFixture> m_fixture;
};

void TestDragHandlerDelta::init()
{
    QTest::failOnWarning(QRegularExpression(".?"));
    m_fixture = std::make_unique<DragFixture>();
}

void TestDragHandlerDelta::cleanup()
{
    m_fixture.reset();
}

void TestDragHandlerDelta::isActiveNeedsItemsAndDistance()
{
    ProbeDragHandler& handler = fixture().handler;
    const int distance = QApplication::startDragDistance();
    handler.m_dragStartPos = QPoint(300, 20);
    handler.m_dragPos = QPoint(300 + distance, 20);
    QVERIFY(!handler.isActive());
    handler.m_dragItemIds = {5};
    QVERIFY(handler.isActive());
    handler.m_dragPos = QPoint(300 - distance + 1, 20);
    QVERIFY(!handler.isActive());
    handler.m_dragPos = QPoint(300 - distance + 1, 19);
    QVERIFY(handler.isActive());
}

void TestDragHandlerDelta::withoutSnappingDeltaXIsTheWayOfThePointer()
{
    ProbeDragHandler& handler = fixture().handler;
    handler.m_dragStartPos = QPoint(300, 20);
    handler.m_dragPos = QPoint(340, 20);
    QCOMPARE(handler.deltaX(), 40);
    handler.m_dragPos = QPoint(250, 20);
    QCOMPARE(handler.deltaX(), -50);
}

void TestDragHandlerDelta::withSnappingDeltaXIsTheWidthOfTheSnappedOffset()
{
    DragFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    setSnapping(60'000, 0);
    press(130, f.trackA);
    f.handler.m_dragPos = f.pos(130 + 119, f.trackA);
    QCOMPARE(f.handler.deltaTime(), 60'000);
    QCOMPARE(f.handler.deltaX(), f.view.toPixel(f.at(190)) - f.view.toPixel(f.at(130)));
    QCOMPARE(f.handler.deltaX(), 60);
    f.handler.m_dragPos = f.pos(130 + 59, f.trackA);
    QCOMPARE(f.handler.deltaX(), 0);
}

void TestDragHandlerDelta::deltaXAsksDeltaTimeThroughItsSlot()
{
    DragFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    setSnapping(500, 0);
    press(130, f.trackA);
    f.handler.fixedDeltaTime = 25'000;
    QCOMPARE(f.handler.deltaX(), 25);
}

void TestDragHandlerDelta::deltaYJumpsFromRowToRow()
{
    DragFixture& f = fixture();
    const int trackC = f.model.newTrack("C");
    f.addSeconds(f.trackA, 100, 60);
    press(130, f.trackA);
    const int rowHeight = f.view.visualRect(f.view.indexOfTrackRow(f.trackA, 1)).height();
    f.handler.m_dragPos = f.pos(130, f.trackA) + QPoint(0, rowHeight / 2 - 1);
    QCOMPARE(f.handler.deltaY(), 0);
    f.handler.m_dragPos = f.pos(130, f.trackB) - QPoint(0, rowHeight / 2 - 1);
    QCOMPARE(f.handler.deltaY(), rowHeight);
    f.handler.m_dragPos = f.pos(130, trackC);
    QCOMPARE(f.handler.deltaY(), 2 * rowHeight);
}

void TestDragHandlerDelta::deltaYIsFreeBelowTheRows()
{
    DragFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    press(130, f.trackA);
    f.handler.m_dragPos = f.belowRows(130);
    QCOMPARE(f.handler.deltaY(), f.belowRows(130).y() - f.pos(130, f.trackA).y());
}

void TestDragHandlerDelta::deltaYCountsFromTheRowOfThePress()
{
    DragFixture& f = fixture();
    f.addSeconds(f.trackB, 100, 60);
    press(130, f.trackB);
    f.handler.m_dragPos = f.pos(130, f.trackA);
    QCOMPARE(f.handler.deltaY(), -f.view.visualRect(f.view.indexOfTrackRow(f.trackA, 1)).height());
}

void TestDragHandlerDelta::rowInsertedDuringTheMoveShiftsTheStartToo()
{
    DragFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    press(130, f.trackA);
    const int first = f.model.newTrack("first", 0, 0);
    const int rowHeight = f.view.visualRect(f.view.indexOfTrackRow(first, 1)).height();
    f.handler.m_dragPos = f.pos(130, first);
    QCOMPARE(f.handler.deltaY(), -rowHeight);
    f.handler.m_dragPos = f.pos(130, f.trackB);
    QCOMPARE(f.handler.deltaY(), rowHeight);
}

void TestDragHandlerDelta::withoutSnappingTheOffsetIsTheTimeBetweenThePositions()
{
    DragFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    f.addSeconds(f.trackA, 200, 60);
    press(130, f.trackA);
    f.handler.m_dragPos = f.pos(169, f.trackA);
    QCOMPARE(f.handler.deltaTime(), 39'000);
    // Not the remembered time of the press: a scrolled window has its part.
    f.handler.m_dragStartTime += 5000;
    QCOMPARE(f.handler.deltaTime(), 39'000);
}

void TestDragHandlerDelta::offsetIsCutToTheGridTowardsZero_data()
{
    QTest::addColumn<int>("step");
    QTest::addColumn<qint64>("raw");
    QTest::addColumn<qint64>("expected");
    QTest::newRow("59 s on a minute grid") << 60'000 << qint64(59'000) << qint64(0);
    QTest::newRow("60 s") << 60'000 << qint64(60'000) << qint64(60'000);
    QTest::newRow("119 s") << 60'000 << qint64(119'999) << qint64(60'000);
    QTest::newRow("-59 s") << 60'000 << qint64(-59'999) << qint64(0);
    QTest::newRow("-61 s") << 60'000 << qint64(-61'000) << qint64(-60'000);
    QTest::newRow("half seconds") << 500 << qint64(1749) << qint64(1500);
}

void TestDragHandlerDelta::offsetIsCutToTheGridTowardsZero()
{
    QFETCH(int, step);
    QFETCH(qint64, raw);
    QFETCH(qint64, expected);
    const int item = addExactly(fixture().trackA, 100'000, 60'000);
    setSnapping(step, 0);
    QCOMPARE(deltaTimeFor({item}, raw), expected);
}

void TestDragHandlerDelta::offsetOfAnInactiveGridIsFree()
{
    const int item = addExactly(fixture().trackA, 100'000, 60'000);
    setSnapping(0, 0);
    QCOMPARE(deltaTimeFor({item}, 1234), 1234);
}

void TestDragHandlerDelta::startSnapsToTheEndOfAnotherItem()
{
    DragFixture& f = fixture();
    const int item = addExactly(f.trackA, 100'000, 60'000);
    addExactly(f.trackA, 50'000, 48'765);
    setSnapping(500, 2000);
    // On the grid the start would be at 98 500; the end to snap to is at 98 765.
    QCOMPARE(deltaTimeFor({item}, -1600), -1235);
}

void TestDragHandlerDelta::endSnapsToTheStartOfAnotherItem()
{
    DragFixture& f = fixture();
    const int item = addExactly(f.trackA, 100'000, 60'000);
    addExactly(f.trackA, 161'111, 10'000);
    setSnapping(500, 2000);
    QCOMPARE(deltaTimeFor({item}, 1400), 1111);
}

void TestDragHandlerDelta::edgeAtTheToleranceDoesNotSnap_data()
{
    QTest::addColumn<qint64>("otherEnd");
    QTest::addColumn<qint64>("expected");
    QTest::newRow("tolerance before") << qint64(100'500 - 1000) << qint64(500);
    QTest::newRow("within, before") << qint64(100'500 - 999) << qint64(-499);
    QTest::newRow("within, after") << qint64(100'500 + 999) << qint64(1499);
    QTest::newRow("tolerance after") << qint64(100'500 + 1000) << qint64(500);
}

void TestDragHandlerDelta::edgeAtTheToleranceDoesNotSnap()
{
    QFETCH(qint64, otherEnd);
    QFETCH(qint64, expected);
    DragFixture& f = fixture();
    const int item = addExactly(f.trackA, 100'000, 60'000);
    addExactly(f.trackB, otherEnd - 10'000, 10'000);
    setSnapping(500, 1000);
    QCOMPARE(deltaTimeFor({item}, 600), expected);
}

void TestDragHandlerDelta::offsetOfTwiceTheToleranceDoesNotSnap()
{
    DragFixture& f = fixture();
    const int item = addExactly(f.trackA, 100'000, 60'000);
    addExactly(f.trackB, 91'999, 10'000);
    addExactly(f.trackB, 92'000, 10'000);
    setSnapping(500, 1000);
    // Both edges are near the grid offset, but only an offset below twice the tolerance is taken.
    QCOMPARE(deltaTimeFor({item}, 2400), 1999);
    f.model.TestModel::removeItem(1);
    QCOMPARE(deltaTimeFor({item}, 2400), 2000);
    f.model.TestModel::removeItem(2);
    addExactly(f.trackB, 92'300, 10'000);
    QCOMPARE(deltaTimeFor({item}, 2400), 2000);
}

void TestDragHandlerDelta::endOfTheOtherItemTakesPrecedence()
{
    DragFixture& f = fixture();
    const int item = addExactly(f.trackA, 100'000, 300);
    // End and start of the other are both near; its start would need the smaller offset.
    addExactly(f.trackB, 100'400, 200);
    setSnapping(500, 1000);
    QCOMPARE(deltaTimeFor({item}, 100), 600);
}

void TestDragHandlerDelta::firstOfEquallyNearEdgesWins()
{
    DragFixture& f = fixture();
    const int item = addExactly(f.trackA, 100'000, 60'000);
    addExactly(f.trackB, 90'000, 10'300);
    addExactly(f.trackB, 159'700, 1000);
    setSnapping(500, 1000);
    QCOMPARE(deltaTimeFor({item}, 0), 300);
    f.model.TestModel::removeItem(1);
    addExactly(f.trackB, 90'000, 10'300);
    QCOMPARE(deltaTimeFor({item}, 0), -300);
}

void TestDragHandlerDelta::nearerEdgeReplacesAFartherOne()
{
    DragFixture& f = fixture();
    const int item = addExactly(f.trackA, 100'000, 60'000);
    addExactly(f.trackB, 90'000, 10'700);
    addExactly(f.trackB, 90'000, 10'200);
    addExactly(f.trackB, 90'000, 9'700);
    setSnapping(500, 1000);
    QCOMPARE(deltaTimeFor({item}, 100), 200);
}

void TestDragHandlerDelta::itemsOnAllTracksAttract()
{
    DragFixture& f = fixture();
    const int child = f.model.newTrack("child", f.trackB);
    const int item = addExactly(f.trackA, 100'000, 60'000);
    addExactly(child, 160'250, 1000);
    setSnapping(500, 1000);
    QCOMPARE(deltaTimeFor({item}, 0), 250);
}

void TestDragHandlerDelta::draggedItemsDoNotAttractEachOther()
{
    DragFixture& f = fixture();
    const int item = addExactly(f.trackA, 100'000, 60'000);
    const int second = addExactly(f.trackA, 160'250, 60'000);
    setSnapping(500, 1000);
    QCOMPARE(deltaTimeFor({item, second}, 600), 500);
    QCOMPARE(deltaTimeFor({item}, 600), 250);
}

void TestDragHandlerDelta::laterDraggedItemsStartFromTheImprovedOffset()
{
    DragFixture& f = fixture();
    const int first = addExactly(f.trackA, 100'000, 1000);
    const int second = addExactly(f.trackA, 200'000, 1000);
    // Moves the first by 900; from there, not from the grid, the edge at 200 100 is within the tolerance.
    addExactly(f.trackB, 90'000, 10'900);
    addExactly(f.trackB, 190'000, 10'100);
    setSnapping(10'000, 901);
    QCOMPARE(deltaTimeFor({first, second}, 100), 100);
    setSnapping(10'000, 950);
    f.model.item(3)->_setStartTime(189'850 + f.origin);
    // At 0 the edge at 199 950 is near, at 900 it is not: the offset left by the first item counts.
    QCOMPARE(deltaTimeFor({first, second}, 100), 900);
    QCOMPARE(deltaTimeFor({second, first}, 100), -50);
}

void TestDragHandlerDelta::toleranceOfZeroSnapsToTheGridOnly()
{
    DragFixture& f = fixture();
    const int item = addExactly(f.trackA, 100'000, 60'000);
    addExactly(f.trackB, 90'000, 10'500);
    setSnapping(500, 0);
    QCOMPARE(deltaTimeFor({item}, 600), 500);
}

void TestDragHandlerDelta::removedItemMakesTheOffsetFail()
{
    DragFixture& f = fixture();
    const int item = addExactly(f.trackA, 100'000, 60'000);
    setSnapping(500, 1000);
    f.model.TestModel::removeItem(item);
    QVERIFY_EXCEPTION_THROWN(deltaTimeFor({item}, 600), QString);
}

void TestDragHandlerDelta::offsetAgreesWithTheReferenceOnRandomData()
{
    DragFixture& f = fixture();
    QRandomGenerator random(4711);
    const int steps[] = {1, 7, 500, 1000, 60'000};
    std::vector<Reference::DragItem> items;
    const int tracks[] = {f.trackA, f.trackB, f.model.newTrack("child", f.trackB)};
    for (int i = 0; i < 40; ++i) {
        const qint64 start = random.bounded(60'000);
        const int duration = random.bounded(4000);
        const int id = addExactly(tracks[random.bounded(3)], start, duration);
        items.push_back({id, f.origin + start, duration});
    }
    int snapped = 0;
    for (int round = 0; round < 3000; ++round) {
        const int step = steps[random.bounded(5)];
        const int tolerance = random.bounded(2500);
        const qint64 raw = random.bounded(12'000) - 6000;
        QVector<int> ids;
        for (int n = random.bounded(1, 5); n > 0; --n) {
            const int id = items[static_cast<std::size_t>(random.bounded(40))].id;
            if (!ids.contains(id))
                ids.append(id);
        }
        setSnapping(step, tolerance);
        const qint64 expected = Reference::snappedDelta(raw, step, tolerance, items, {ids.begin(), ids.end()});
        snapped += expected != raw / step * step;
        QCOMPARE(deltaTimeFor(ids, raw), expected);
    }
    QVERIFY(snapped > 1000);
}

void TestDragHandlerDelta::itemOfTheGrabbedTrackStaysWhileTheRowIsTheSame()
{
    DragFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    f.addSeconds(f.trackB, 100, 60);
    press(130, f.trackA);
    f.handler.m_dragPos = f.pos(300, f.trackA) + QPoint(0, 3);
    QCOMPARE(f.handler.dragItemTrackId(*f.model.item(0)), f.trackA);
    QCOMPARE(f.handler.dragItemTrackId(*f.model.item(1)), f.trackB);
}

void TestDragHandlerDelta::everyItemMovesByTheSameNumberOfRows()
{
    DragFixture& f = fixture();
    const int trackC = f.model.newTrack("C");
    const int trackD = f.model.newTrack("D");
    f.addSeconds(f.trackA, 100, 60);
    f.addSeconds(f.trackB, 100, 60);
    press(130, f.trackA);
    f.handler.m_dragPos = f.pos(130, f.trackB);
    QCOMPARE(f.handler.dragItemTrackId(*f.model.item(0)), f.trackB);
    QCOMPARE(f.handler.dragItemTrackId(*f.model.item(1)), trackC);
    f.handler.m_dragPos = f.pos(130, trackC);
    QCOMPARE(f.handler.dragItemTrackId(*f.model.item(0)), trackC);
    QCOMPARE(f.handler.dragItemTrackId(*f.model.item(1)), trackD);
}

void TestDragHandlerDelta::itemPastTheLastRowHasNoTrack()
{
    DragFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    f.addSeconds(f.trackB, 100, 60);
    press(130, f.trackA);
    f.handler.m_dragPos = f.pos(130, f.trackB);
    QCOMPARE(f.handler.dragItemTrackId(*f.model.item(1)), 0);
}

void TestDragHandlerDelta::itemPastTheFirstRowHasNoTrack()
{
    DragFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    f.addSeconds(f.trackB, 100, 60);
    press(130, f.trackB);
    f.handler.m_dragPos = f.pos(130, f.trackA);
    QCOMPARE(f.handler.dragItemTrackId(*f.model.item(0)), 0);
    QCOMPARE(f.handler.dragItemTrackId(*f.model.item(1)), f.trackA);
}

void TestDragHandlerDelta::trackIsReadBesideANameThatIsANumber()
{
    DragFixture& f = fixture();
    const int trackC = f.model.newTrack("77");
    f.addSeconds(f.trackB, 100, 60);
    press(130, f.trackB);
    f.handler.m_dragPos = f.pos(130, trackC);
    QCOMPARE(f.handler.dragItemTrackId(*f.model.item(0)), trackC);
}

void TestDragHandlerDelta::itemInACollapsedRowHasNoTrack()
{
    DragFixture& f = fixture();
    const int child = f.model.newTrack("child", f.trackA);
    f.addSeconds(f.trackA, 100, 60);
    f.addSeconds(child, 100, 60);
    press(130, f.trackA);
    f.handler.m_dragPos = f.pos(130, f.trackB);
    QCOMPARE(f.handler.dragItemTrackId(*f.model.item(1)), 0);
    f.view.expandAll();
    f.handler.m_dragPos = f.pos(130, child);
    QCOMPARE(f.handler.dragItemTrackId(*f.model.item(0)), child);
    QCOMPARE(f.handler.dragItemTrackId(*f.model.item(1)), f.trackB);
}

void TestDragHandlerDelta::dragItemTrackIdAsksDeltaYThroughItsSlot()
{
    DragFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    press(130, f.trackA);
    f.handler.fixedDeltaY = f.view.visualRect(f.view.indexOfTrackRow(f.trackA, 1)).height();
    QCOMPARE(f.handler.dragItemTrackId(*f.model.item(0)), f.trackB);
}

void TestDragHandlerDelta::tracksAreFoundThroughAProxy()
{
    DragFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    QSortFilterProxyModel proxy;
    proxy.setSourceModel(&f.model);
    f.view.setModel(&proxy);
    proxy.sort(0, Qt::DescendingOrder);
    QVERIFY(f.pos(0, f.trackB).y() < f.pos(0, f.trackA).y());

    press(130, f.trackA);
    QCOMPARE(f.handler.dragItemIds(), QVector<int>{0});
    f.handler.m_dragPos = f.pos(130, f.trackB);
    QVERIFY(f.handler.deltaY() < 0);
    QCOMPARE(f.handler.dragItemTrackId(*f.model.item(0)), f.trackB);
    f.handler.clear();
    f.view.setModel(&f.model);
}

QTEST_MAIN(TestDragHandlerDelta)
#include "tst_drag_handler_delta.moc"
