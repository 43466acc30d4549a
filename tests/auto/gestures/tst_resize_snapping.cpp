#include "probe_resize_handler.h"
#include "reference/resize_snapping.h"

#include <QRandomGenerator>
#include <QRegularExpression>
#include <QTest>

#include <memory>
#include <vector>

/// The time that a held edge takes, with snapping and without.
class TestResizeSnapping : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void localTimeWithoutAnEdgeIsThatOfTheMouse();
    void localEndStopsAtTheNextItem();
    void localStartStopsAtThePreviousItem();
    void localEdgeThatPassesTheOtherLeavesTheMinimumDuration();
    void missingNeighbourIsLoggedAtError();
    void localTimeAgreesWithTheReferenceOnRandomData();
    void globalTimeWithoutAnEdgeIsOnTheGrid();
    void globalTimeIsCutTowardsZero();
    void globalEdgeSnapsToEdgesOfAllTracks();
    void edgeAtTheToleranceDoesNotAttract();
    void edgeBeforeTheGridEndsTheSnapping();
    void edgeBehindTheGridGivesWayToANearerOne();
    void equallyNearEdgeReplacesNothing();
    void bandMovesWithTheResult();
    void edgeBeyondTheOtherEdgeDoesNotAttract();
    void globalEdgeThatPassesTheOtherLeavesTheMinimumDuration();
    void globalEdgeStaysBetweenTheNeighbours();
    void missingNeighboursAreLoggedAtDebugAndTheViewBounds();
    void failedLookUpIsLoggedAtErrorAndSkipped();
    void globalTimeAgreesWithTheReferenceOnRandomData();

private:
    ResizeFixture& fixture() { return *m_fixture; }
    void hold(TimelineViewResizeHandler::ResizePosition edge, int itemId)
    {
        fixture().handler.hold(edge, fixture().model.item(itemId)->parentTrackId(), itemId);
    }
    /// Seconds from the start of the range, for the edge at that second of the window.
    qint64 localAt(int second)
    {
        return fixture().handler.localSnapTime(fixture().pos(second, 1).x()) - fixture().origin;
    }
    qint64 globalAt(int second)
    {
        return fixture().handler.globalSnapTime(fixture().pos(second, 1).x()) - fixture().origin;
    }
    void setSnapping(int step, int tolerance)
    {
        fixture().model.setSnapEnabled(true);
        fixture().model.setSnapStep(step);
        fixture().model.setSnapTolerance(tolerance);
    }
    int addExactly(int trackId, qint64 start, int duration)
    {
        const bool isSnapEnabled = fixture().model.isSnapEnabled();
        fixture().model.setSnapEnabled(false);
        const int id = fixture().model.newItem(trackId, fixture().origin + start, duration);
        fixture().model.setSnapEnabled(isSnapEnabled);
        return id;
    }
    /// Items that do not overlap, with gaps of any size, on both tracks.
    std::vector<Reference::Span> addRandomItems(QRandomGenerator* random);
    Reference::Neighbours neighboursOf(int itemId);

    std::unique_ptr<ResizeFixture> m_fixture;
};

void TestResizeSnapping::init()
{
    QTest::failOnWarning(QRegularExpression(".?"));
    m_fixture = std::make_unique<ResizeFixture>();
}

void TestResizeSnapping::cleanup()
{
    m_fixture.reset();
}

std::vector<Reference::Span> TestResizeSnapping::addRandomItems(QRandomGenerator* random)
{
    std::vector<Reference::Span> items;
    for (const int trackId : {fixture().trackA, fixture().trackB}) {
        qint64 time = fixture().origin;
        for (int i = 0; i < 12; ++i) {
            time += random->bounded(8000);
            const int duration = random->bounded(9000);
            items.push_back({fixture().model.newItem(trackId, time, duration), time, duration});
            time += duration;
        }
    }
    return items;
}

Reference::Neighbours TestResizeSnapping::neighboursOf(int itemId)
{
    Reference::Neighbours neighbours;
    const auto span = [](const VeskTimeline::Item& item) {
        return Reference::Span{item.id(), item.startTime(), item.duration()};
    };
    const VeskTimeline::Items& items = fixture().model.track(fixture().model.item(itemId)->parentTrackId())->items();
    for (std::size_t i = 0; i < items.size(); ++i) {
        if (items[i]->id() != itemId)
            continue;
        if (i > 0)
            neighbours.previous = span(*items[i - 1]);
        if (i + 1 < items.size())
            neighbours.next = span(*items[i + 1]);
    }
    return neighbours;
}

void TestResizeSnapping::localTimeWithoutAnEdgeIsThatOfTheMouse()
{
    ResizeFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 40);
    f.addSeconds(f.trackA, 150, 40);
    QCOMPARE(localAt(170), 170'000);
    f.handler.hold(TimelineViewResizeHandler::eEnd, f.trackA, -1);
    QCOMPARE(localAt(170), 170'000);
    f.handler.hold(TimelineViewResizeHandler::eNone, f.trackA, 0);
    QCOMPARE(localAt(170), 170'000);
    QVERIFY(f.logLines().isEmpty());
}

void TestResizeSnapping::localEndStopsAtTheNextItem()
{
    ResizeFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 40);
    f.addSeconds(f.trackA, 150, 40);
    f.addSeconds(f.trackB, 145, 40);
    hold(TimelineViewResizeHandler::eEnd, 0);
    QCOMPARE(localAt(149), 149'000);
    QCOMPARE(localAt(151), 150'000);
    QCOMPARE(localAt(400), 150'000);
    QVERIFY(f.logLines().isEmpty());
}

void TestResizeSnapping::localStartStopsAtThePreviousItem()
{
    ResizeFixture& f = fixture();
    f.addSeconds(f.trackA, 50, 40);
    f.addSeconds(f.trackA, 100, 40);
    hold(TimelineViewResizeHandler::eStart, 1);
    QCOMPARE(localAt(91), 91'000);
    QCOMPARE(localAt(89), 90'000);
    QCOMPARE(localAt(0), 90'000);
    QVERIFY(f.logLines().isEmpty());
}

void TestResizeSnapping::localEdgeThatPassesTheOtherLeavesTheMinimumDuration()
{
    ResizeFixture& f = fixture();
    f.addSeconds(f.trackA, 50, 20);
    f.addSeconds(f.trackA, 100, 40);
    f.addSeconds(f.trackA, 200, 40);
    f.model.setMinimumDuration(7000);
    hold(TimelineViewResizeHandler::eEnd, 1);
    QCOMPARE(localAt(101), 101'000);
    QCOMPARE(localAt(100), 107'000);
    QCOMPARE(localAt(60), 107'000);
    hold(TimelineViewResizeHandler::eStart, 1);
    QCOMPARE(localAt(139), 139'000);
    QCOMPARE(localAt(140), 133'000);
    QCOMPARE(localAt(220), 133'000);
    QVERIFY(f.logLines().isEmpty());
}

void TestResizeSnapping::missingNeighbourIsLoggedAtError()
{
    ResizeFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 40);
    hold(TimelineViewResizeHandler::eEnd, 0);
    QCOMPARE(localAt(500), 500'000);
    hold(TimelineViewResizeHandler::eStart, 0);
    QCOMPARE(localAt(3), 3000);
    const QString begin = "Error: " + resizeSignature("qint64 ::localSnapTime(int) const");
    QCOMPARE(f.logLines(),
             (QStringList{begin + " lookup failed!", begin + " Track::previous: previous item for id 0 not found"}));
}

void TestResizeSnapping::localTimeAgreesWithTheReferenceOnRandomData()
{
    ResizeFixture& f = fixture();
    QRandomGenerator random(99);
    const std::vector<Reference::Span> items = addRandomItems(&random);
    f.log.setThreshold(Hox::Fatal);
    for (int round = 0; round < 4000; ++round) {
        const Reference::Span& item = items[static_cast<std::size_t>(random.bounded(24))];
        const bool isEnd = random.bounded(2) == 1;
        const int minimum = random.bounded(3000);
        f.model.setMinimumDuration(minimum);
        hold(isEnd ? TimelineViewResizeHandler::eEnd : TimelineViewResizeHandler::eStart, item.id);
        const int x = f.pos(random.bounded(240), f.trackA).x();
        QCOMPARE(f.handler.localSnapTime(x),
                 Reference::localEdgeTime(isEnd ? Reference::Edge::End : Reference::Edge::Start, f.view.toTime(x), item,
                                          neighboursOf(item.id), minimum));
    }
}

void TestResizeSnapping::globalTimeWithoutAnEdgeIsOnTheGrid()
{
    ResizeFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 40);
    setSnapping(60'000, 30'000);
    const qint64 expected = f.at(170) / 60'000 * 60'000;
    QCOMPARE(f.handler.globalSnapTime(f.pos(170, f.trackA).x()), expected);
    f.handler.hold(TimelineViewResizeHandler::eEnd, f.trackA, -1);
    QCOMPARE(f.handler.globalSnapTime(f.pos(170, f.trackA).x()), expected);
    f.handler.hold(TimelineViewResizeHandler::eNone, f.trackA, 0);
    QCOMPARE(f.handler.globalSnapTime(f.pos(170, f.trackA).x()), expected);
    QVERIFY(f.logLines().isEmpty());
}

void TestResizeSnapping::globalTimeIsCutTowardsZero()
{
    ResizeFixture& f = fixture();
    setSnapping(60'000, 0);
    f.view.setRange(-600'000, 3'000'000);
    f.view.setCurrentTime(0);
    // A minute and a half to either side of the epoch.
    const int epoch = f.view.toPixel(0);
    QCOMPARE(f.handler.globalSnapTime(epoch + 90), 60'000);
    QCOMPARE(f.handler.globalSnapTime(epoch - 90), -60'000);
    QCOMPARE(f.handler.globalSnapTime(epoch - 59), 0);
}

void TestResizeSnapping::globalEdgeSnapsToEdgesOfAllTracks()
{
    ResizeFixture& f = fixture();
    const int child = f.model.newTrack("child", f.trackB);
    addExactly(f.trackA, 100'000, 40'000);
    addExactly(f.trackB, 160'300, 5000);
    addExactly(child, 210'000, 10'700);
    setSnapping(1000, 2000);
    hold(TimelineViewResizeHandler::eEnd, 0);
    QCOMPARE(globalAt(159), 160'300);
    QCOMPARE(globalAt(165), 165'300);
    QCOMPARE(globalAt(220), 220'700);
    QCOMPARE(globalAt(190), 190'000);
    hold(TimelineViewResizeHandler::eStart, 0);
    addExactly(f.trackB, 80'100, 3000);
    QCOMPARE(globalAt(80), 80'100);
}

void TestResizeSnapping::edgeAtTheToleranceDoesNotAttract()
{
    ResizeFixture& f = fixture();
    addExactly(f.trackA, 100'000, 40'000);
    const int other = addExactly(f.trackB, 161'000, 50'000);
    setSnapping(1000, 1000);
    hold(TimelineViewResizeHandler::eEnd, 0);
    QCOMPARE(globalAt(160), 160'000);
    QCOMPARE(globalAt(161), 161'000);
    f.model.item(other)->_setStartTime(f.origin + 160'999);
    QCOMPARE(globalAt(160), 160'999);
    f.model.item(other)->_setStartTime(f.origin + 159'001);
    QCOMPARE(globalAt(160), 159'001);
    f.model.item(other)->_setStartTime(f.origin + 159'000);
    QCOMPARE(globalAt(160), 160'000);
}

void TestResizeSnapping::edgeBeforeTheGridEndsTheSnapping()
{
    ResizeFixture& f = fixture();
    addExactly(f.trackA, 100'000, 40'000);
    addExactly(f.trackB, 159'200, 50'000);
    addExactly(f.trackB, 160'100, 50'000);
    setSnapping(1000, 1500);
    hold(TimelineViewResizeHandler::eEnd, 0);
    // The nearer edge comes too late.
    QCOMPARE(globalAt(160), 159'200);
}

void TestResizeSnapping::edgeBehindTheGridGivesWayToANearerOne()
{
    ResizeFixture& f = fixture();
    addExactly(f.trackA, 100'000, 40'000);
    addExactly(f.trackB, 160'800, 50'000);
    addExactly(f.trackB, 160'100, 50'000);
    addExactly(f.trackB, 160'500, 50'000);
    setSnapping(1000, 1500);
    hold(TimelineViewResizeHandler::eEnd, 0);
    QCOMPARE(globalAt(160), 160'100);
}

void TestResizeSnapping::equallyNearEdgeReplacesNothing()
{
    ResizeFixture& f = fixture();
    addExactly(f.trackA, 100'000, 40'000);
    addExactly(f.trackB, 160'500, 50'000);
    addExactly(f.trackB, 159'500, 50'000);
    setSnapping(1000, 1500);
    hold(TimelineViewResizeHandler::eEnd, 0);
    QCOMPARE(globalAt(160), 160'500);
}

void TestResizeSnapping::bandMovesWithTheResult()
{
    ResizeFixture& f = fixture();
    addExactly(f.trackA, 100'000, 40'000);
    addExactly(f.trackB, 160'900, 50'000);
    // Within the tolerance of the grid point, but no more of the edge taken before.
    addExactly(f.trackB, 159'800, 50'000);
    setSnapping(1000, 1000);
    hold(TimelineViewResizeHandler::eEnd, 0);
    QCOMPARE(globalAt(160), 160'900);
    f.model.TestModel::removeItem(1);
    QCOMPARE(globalAt(160), 159'800);
}

void TestResizeSnapping::edgeBeyondTheOtherEdgeDoesNotAttract()
{
    ResizeFixture& f = fixture();
    addExactly(f.trackA, 100'000, 40'000);
    addExactly(f.trackB, 100'000, 50'000);
    addExactly(f.trackB, 60'000, 80'000);
    setSnapping(1000, 3000);
    hold(TimelineViewResizeHandler::eEnd, 0);
    QCOMPARE(globalAt(102), 102'000);
    hold(TimelineViewResizeHandler::eStart, 0);
    QCOMPARE(globalAt(138), 138'000);
}

void TestResizeSnapping::globalEdgeThatPassesTheOtherLeavesTheMinimumDuration()
{
    ResizeFixture& f = fixture();
    addExactly(f.trackA, 100'000, 40'000);
    f.model.setMinimumDuration(7000);
    setSnapping(1000, 0);
    hold(TimelineViewResizeHandler::eEnd, 0);
    QCOMPARE(globalAt(101), 101'000);
    QCOMPARE(globalAt(100), 107'000);
    QCOMPARE(globalAt(10), 107'000);
    hold(TimelineViewResizeHandler::eStart, 0);
    QCOMPARE(globalAt(139), 139'000);
    QCOMPARE(globalAt(140), 133'000);
    QCOMPARE(globalAt(300), 133'000);
}

void TestResizeSnapping::globalEdgeStaysBetweenTheNeighbours()
{
    ResizeFixture& f = fixture();
    addExactly(f.trackA, 50'000, 20'500);
    addExactly(f.trackA, 100'000, 40'000);
    addExactly(f.trackA, 160'500, 20'000);
    addExactly(f.trackB, 165'000, 20'000);
    setSnapping(1000, 100);
    hold(TimelineViewResizeHandler::eEnd, 1);
    QCOMPARE(globalAt(165), 160'500);
    hold(TimelineViewResizeHandler::eStart, 1);
    QCOMPARE(globalAt(60), 70'500);
    QVERIFY(f.logLines().isEmpty());
    // A previous item that reaches beyond the next: the next has the last word.
    f.model.item(0)->_setDuration(150'000);
    hold(TimelineViewResizeHandler::eEnd, 1);
    QCOMPARE(globalAt(145), 160'500);
}

void TestResizeSnapping::missingNeighboursAreLoggedAtDebugAndTheViewBounds()
{
    ResizeFixture& f = fixture();
    addExactly(f.trackA, 1'000'000, 40'000);
    f.view.setRange(f.origin + 500'000, f.origin + 1'500'000);
    setSnapping(1000, 0);
    hold(TimelineViewResizeHandler::eStart, 0);
    const int left = f.view.toPixel(f.origin + 400'000);
    QCOMPARE(f.handler.globalSnapTime(left) - f.origin, 500'000);
    const QString begin = "Debug: " + resizeSignature("qint64 ::globalSnapTime(int) const");
    QCOMPARE(f.logLines(),
             (QStringList{begin + " Track::previous: previous item for id 0 not found", begin + " lookup failed!"}));
    hold(TimelineViewResizeHandler::eEnd, 0);
    const int right = f.view.toPixel(f.origin + 1'600'000);
    QCOMPARE(f.handler.globalSnapTime(right) - f.origin, 1'500'000);
}

void TestResizeSnapping::failedLookUpIsLoggedAtErrorAndSkipped()
{
    ResizeFixture& f = fixture();
    addExactly(f.trackA, 50'000, 20'000);
    addExactly(f.trackA, 100'000, 40'000);
    addExactly(f.trackA, 160'500, 20'000);
    // An id whose item has gone, listed before the edge that is near.
    const int lost = 2;
    VeskTimeline::Item* const near = f.model.m_itemCache[lost];
    f.model.m_itemCache[77] = near;
    f.model.m_itemCache[lost] = nullptr;
    setSnapping(1000, 1000);
    hold(TimelineViewResizeHandler::eEnd, 1);
    QCOMPARE(globalAt(160), 160'500);
    QCOMPARE(f.logLines(), QStringList{"Error: " + resizeSignature("qint64 ::globalSnapTime(int) const") +
                                       " Model: const item with id 2 not found in cache"});
    f.model.m_itemCache.erase(77);
    f.model.m_itemCache[lost] = near;
}

void TestResizeSnapping::globalTimeAgreesWithTheReferenceOnRandomData()
{
    ResizeFixture& f = fixture();
    QRandomGenerator random(4712);
    const std::vector<Reference::Span> items = addRandomItems(&random);
    f.log.setThreshold(Hox::Fatal);
    f.view.setRange(f.origin + 10'000, f.origin + 110'000);
    const int steps[] = {1, 250, 1000, 7000};
    int attracted = 0;
    for (int round = 0; round < 6000; ++round) {
        const Reference::Span& item = items[static_cast<std::size_t>(random.bounded(24))];
        const bool isEnd = random.bounded(2) == 1;
        const Reference::Edge edge = isEnd ? Reference::Edge::End : Reference::Edge::Start;
        const Reference::Snapping snapping{steps[random.bounded(4)], random.bounded(4000), random.bounded(3000),
                                           f.view.startTime(), f.view.endTime()};
        f.model.setMinimumDuration(snapping.minimumDuration);
        setSnapping(snapping.step, snapping.tolerance);
        hold(isEnd ? TimelineViewResizeHandler::eEnd : TimelineViewResizeHandler::eStart, item.id);
        const int x = f.labelWidth + random.bounded(f.view.toPixel(f.at(130)));
        const qint64 time = f.view.toTime(x);
        const qint64 expected = Reference::globalEdgeTime(edge, time, item, neighboursOf(item.id), items, snapping);
        attracted += expected != time / snapping.step * snapping.step;
        QCOMPARE(f.handler.globalSnapTime(x), expected);
    }
    QVERIFY(attracted > 1000);
}

QTEST_MAIN(TestResizeSnapping)
#include "tst_resize_snapping.moc"
