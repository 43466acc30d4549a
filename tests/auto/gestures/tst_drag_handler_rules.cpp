#include "probe_drag_handler.h"
#include "support/input.h"

#include <QRegularExpression>
#include <QTest>

#include <memory>

/// Where dragged items may land.
class TestDragHandlerRules : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void canMoveNeedsAGestureOnItsOwnTrack();
    void canDragNeedsAGesture();
    void canDragOnTheSameTrackAsksCanMove();
    void canDragToAnotherTrackAsksForEachTarget();
    void itemInTheWayOnTheTargetTrackStopsTheDrag();
    void rowsMissingForOneItemStopTheDrag();
    void rulesAreCalledThroughTheirSlots();

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

void TestDragHandlerRules::init()
{
    QTest::failOnWarning(QRegularExpression(".?"));
    m_fixture = std::make_unique<DragFixture>();
}

void TestDragHandlerRules::cleanup()
{
    m_fixture.reset();
}

void TestDragHandlerRules::canMoveNeedsAGestureOnItsOwnTrack()
{
    DragFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    QVERIFY(!f.handler.canMoveItemsTo(f.pos(130, f.trackA)));
    Input::press(&f.view, f.pos(130, f.trackA));
    QVERIFY(f.handler.canMoveItemsTo(f.pos(130, f.trackA)));
    QVERIFY(!f.handler.canMoveItemsTo(f.pos(130, f.trackB)));
    QVERIFY(!f.handler.canMoveItemsTo(f.onName(f.trackA)));
    QVERIFY(!f.handler.canMoveItemsTo(f.belowRows(130)));
    f.model.setEditable(false);
    QVERIFY(!f.handler.canMoveItemsTo(f.pos(130, f.trackA)));
}

void TestDragHandlerRules::canDragNeedsAGesture()
{
    DragFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    QVERIFY(!f.handler.canDragItemsTo(f.pos(130, f.trackB)));
    Input::press(&f.view, f.pos(130, f.trackA));
    QVERIFY(f.handler.canDragItemsTo(f.pos(130, f.trackA)));
    QVERIFY(!f.handler.canDragItemsTo(f.onName(f.trackB)));
    QVERIFY(!f.handler.canDragItemsTo(f.belowRows(130)));
    f.handler.m_dragPos = f.pos(130, f.trackB);
    QVERIFY(f.handler.canDragItemsTo(f.pos(130, f.trackB)));
    f.model.setEditable(false);
    QVERIFY(!f.handler.canDragItemsTo(f.pos(130, f.trackB)));
}

void TestDragHandlerRules::canDragOnTheSameTrackAsksCanMove()
{
    DragFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    Input::press(&f.view, f.pos(130, f.trackA));
    f.handler.canMove = [](const QPoint&) { return false; };
    QVERIFY(!f.handler.canDragItemsTo(f.pos(130, f.trackA)));
    QCOMPARE(f.handler.calls, (QStringList{"canDrag", "canMove"}));
}

void TestDragHandlerRules::canDragToAnotherTrackAsksForEachTarget()
{
    DragFixture& f = fixture();
    const int trackC = f.model.newTrack("C");
    f.addSeconds(f.trackA, 100, 60);
    f.addSeconds(f.trackB, 300, 60);
    f.view.selectItems({0, 1}, true);
    Input::press(&f.view, f.pos(130, f.trackA));
    f.handler.m_dragPos = f.pos(150, f.trackB);
    QVERIFY(f.handler.canDragItemsTo(f.handler.m_dragPos));
    QCOMPARE(f.model.asked, (QStringList{QString("canDrop(0, %1, 120000)").arg(f.trackB),
                                         QString("canDrop(1, %1, 320000)").arg(trackC)}));
    QVERIFY(!f.handler.calls.contains("canMove"));

    f.model.canDrop = [](const VeskTimeline::Item& item, int, qint64) { return item.id() == 0; };
    QVERIFY(!f.handler.canDragItemsTo(f.handler.m_dragPos));
}

void TestDragHandlerRules::itemInTheWayOnTheTargetTrackStopsTheDrag()
{
    DragFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    f.addSeconds(f.trackB, 160, 60);
    Input::press(&f.view, f.pos(130, f.trackA));
    f.handler.m_dragPos = f.pos(130, f.trackB);
    QVERIFY(f.handler.canDragItemsTo(f.handler.m_dragPos));
    f.handler.m_dragPos = f.pos(131, f.trackB);
    QVERIFY(!f.handler.canDragItemsTo(f.handler.m_dragPos));
    // What is dragged along is not in the way.
    f.model.newTrack("C");
    f.handler.m_dragItemIds.append(1);
    QVERIFY(f.handler.canDragItemsTo(f.handler.m_dragPos));
}

void TestDragHandlerRules::rowsMissingForOneItemStopTheDrag()
{
    DragFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    f.addSeconds(f.trackB, 300, 60);
    f.view.selectItems({0, 1}, true);
    Input::press(&f.view, f.pos(130, f.trackA));
    f.handler.m_dragPos = f.pos(150, f.trackB);
    QVERIFY(!f.handler.canDragItemsTo(f.handler.m_dragPos));
}

void TestDragHandlerRules::rulesAreCalledThroughTheirSlots()
{
    DragFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    f.handler.canDrag = [](const QPoint&) { return false; };
    pressAndMove(130, 150, f.trackA);
    QCOMPARE(f.cursor(), Qt::ForbiddenCursor);

    // The release asks canMoveItemsTo() alone, and moves by deltaTime().
    f.handler.fixedDeltaTime = 7000;
    Input::release(&f.view, f.pos(160, f.trackA));
    QCOMPARE(f.model.item(0)->startTime(), f.at(107));

    f.handler.canMove = [](const QPoint&) { return false; };
    Input::drag(&f.view, f.pos(130, f.trackA), f.pos(160, f.trackA));
    QCOMPARE(f.model.item(0)->startTime(), f.at(107));
}

QTEST_MAIN(TestDragHandlerRules)
#include "tst_drag_handler_rules.moc"
