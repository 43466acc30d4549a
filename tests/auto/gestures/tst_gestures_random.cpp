#include "probe_drag_handler.h"
#include "probe_resize_handler.h"
#include "random_items.h"
#include "reference/gesture_rules.h"
#include "reference/resize_snapping.h"

#include <QRegularExpression>
#include <QTest>

namespace {

/// A policy that refuses now and then, and the same in both models.
void refuseSometimes(JournalModel* model, int seed)
{
    const auto isAllowed = [seed](int id, qint64 start) { return (start / 100 + id + seed) % 7 != 0; };
    model->canMove = [=](const VeskTimeline::Item& item, qint64 start) { return isAllowed(item.id(), start); };
    model->canDrop = [=](const VeskTimeline::Item& item, int, qint64 start) { return isAllowed(item.id(), start); };
}

} // namespace

/// Moving and resizing over random models, beside plain loops over a model just like it: the same times, questions,
/// changes and signals, in the same order.
class TestGesturesRandom : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void movesAgreeWithTheReference_data() { addSizes(); }
    void movesAgreeWithTheReference();
    void dropsAgreeWithTheReference_data() { addSizes(); }
    void dropsAgreeWithTheReference();
    void nudgesAgreeWithTheReference_data() { addSizes(); }
    void nudgesAgreeWithTheReference();
    void crowdsMovedTogetherAgreeWithTheReference();
    void whatHasChangedSinceCountsForACrowd();
    void offsetsAgreeWithTheReference_data();
    void offsetsAgreeWithTheReference();
    void edgesAgreeWithTheReference_data();
    void edgesAgreeWithTheReference();
    void itemsUnknownToTheModelAreNoCandidates();

private:
    static void addSizes();
    static void addSizesAndCaching();
};

void TestGesturesRandom::init()
{
    QTest::failOnWarning(QRegularExpression(".?"));
}

void TestGesturesRandom::addSizes()
{
    QTest::addColumn<int>("itemCount");
    QTest::addColumn<int>("spread");
    QTest::newRow("few") << 12 << 100'000;
    QTest::newRow("crowded") << 60 << 60'000;
    QTest::newRow("many") << 400 << 1'500'000;
}

void TestGesturesRandom::addSizesAndCaching()
{
    QTest::addColumn<int>("itemCount");
    QTest::addColumn<int>("spread");
    QTest::addColumn<bool>("isCaching");
    QTest::newRow("few") << 12 << 60'000 << true;
    QTest::newRow("crowded") << 120 << 60'000 << true;
    QTest::newRow("many") << 900 << 1'500'000 << true;
    QTest::newRow("without cache") << 120 << 60'000 << false;
}

namespace {

/// One model behind a view, moved by its handler, and one like it, moved by the reference.
struct Twins
{
    DragFixture real;
    JournalModel plain;
    QRandomGenerator random;
    QVector<int> ids;
    QPoint from;
    QPoint to;
    qint64 dt = 0;

    Twins(int seed, int itemCount, int spread) : random(static_cast<quint32>(seed))
    {
        plain.newTrack(QStringLiteral("A"));
        plain.newTrack(QStringLiteral("B"));
        for (JournalModel* const model : {&real.model, &plain}) {
            addRandomItems(model, static_cast<quint32>(seed), itemCount, spread);
            model->setSnapStep(random.bounded(2) ? 500 : 100);
            model->setSnapTolerance(1500);
            if (seed % 3 == 0)
                refuseSometimes(model, seed);
        }
        plain.setSnapStep(real.model.snapStep());
        real.view.expandAll();
        const bool isSnapping = random.bounded(2) == 1;
        real.model.setSnapEnabled(isSnapping);
        plain.setSnapEnabled(isSnapping);
        forgetCalls();
    }
    void forgetCalls()
    {
        real.model.forgetCalls();
        plain.forgetCalls();
    }
    /// The state that a press on track A and a move leave.
    void drag(int rows)
    {
        ids = randomIds(&random, real.model.itemIds(), random.bounded(1, 6));
        from = real.pos(600, real.trackA);
        to = QPoint(from.x() + random.bounded(12) - 6, real.pos(0, 1 + rows).y());
        real.handler.m_dragItemIds = ids;
        real.handler.m_dragStartIndex = real.view.indexOfTrackRow(real.trackA, 1);
        real.handler.m_dragStartPos = from;
        real.handler.m_dragStartTime = real.view.toTime(from.x());
        real.handler.m_dragPos = to;
        const qint64 raw = real.view.toTime(to.x()) - real.view.toTime(from.x());
        dt = !plain.isSnapEnabled() ? raw
                                    : Reference::snappedDelta(raw, plain.snapStep(), plain.snapTolerance(),
                                                              Reference::itemsInOrder(plain), {ids.begin(), ids.end()});
    }
    /// All items but a few, which move to where these are.
    void dragCrowd()
    {
        for (JournalModel* const model : {&real.model, &plain})
            model->setSnapEnabled(false);
        drag(0);
        ids = plain.itemIds();
        for (int left = random.bounded(3); left > 0; --left)
            ids.removeAt(random.bounded(ids.size()));
        real.handler.m_dragItemIds = ids;
    }
    bool haveTheSameTimes() const
    {
        for (int trackId = 1; trackId <= 4; ++trackId) {
            if (real.model.times(trackId) != plain.times(trackId))
                return false;
        }
        return true;
    }
};

} // namespace

void TestGesturesRandom::movesAgreeWithTheReference()
{
    QFETCH(int, itemCount);
    QFETCH(int, spread);
    int moved = 0;
    for (int seed = 1; seed <= 12; ++seed) {
        Twins twins(seed, itemCount, spread);
        for (int round = 0; round < 25; ++round) {
            twins.drag(0);
            const bool isAllowed = Reference::canMove(twins.plain, twins.ids, twins.dt);
            QCOMPARE(twins.real.handler.canMoveItemsTo(twins.to), isAllowed);
            QCOMPARE(twins.real.model.asked, twins.plain.asked);

            twins.forgetCalls();
            QMouseEvent release = releaseAt(twins.to);
            twins.real.handler.mouseReleaseEvent(&release);
            if (twins.to.x() != twins.from.x() && Reference::canMove(twins.plain, twins.ids, twins.dt)) {
                twins.plain.journal.append(QStringLiteral("currentItemTimeChanged"));
                Reference::move(twins.plain, twins.ids, twins.dt);
                ++moved;
            }
            QCOMPARE(twins.real.model.asked, twins.plain.asked);
            QCOMPARE(twins.real.model.journal, twins.plain.journal);
            QVERIFY(twins.haveTheSameTimes());
            QVERIFY(twins.real.handler.isIdle());
            twins.forgetCalls();
        }
    }
    QVERIFY(moved > 10);
}

void TestGesturesRandom::dropsAgreeWithTheReference()
{
    QFETCH(int, itemCount);
    QFETCH(int, spread);
    int allowed = 0;
    for (int seed = 1; seed <= 12; ++seed) {
        Twins twins(seed, itemCount, spread);
        for (int round = 0; round < 25; ++round) {
            const int rows = twins.random.bounded(1, 4);
            twins.drag(rows);
            // The rows show the tracks 1 to 4, from the top.
            const auto targetOf = [rows](const VeskTimeline::Item& item) {
                const int target = item.parentTrackId() + rows;
                return target <= 4 ? target : 0;
            };
            const bool isAllowed = Reference::canDrop(twins.plain, twins.ids, twins.dt, targetOf);
            allowed += isAllowed;
            QCOMPARE(twins.real.handler.canDragItemsTo(twins.to), isAllowed);
            QCOMPARE(twins.real.model.asked, twins.plain.asked);
            QCOMPARE(twins.real.model.journal, QStringList());
            twins.forgetCalls();
        }
    }
    QVERIFY(allowed > 10);
}

void TestGesturesRandom::nudgesAgreeWithTheReference()
{
    QFETCH(int, itemCount);
    QFETCH(int, spread);
    int moved = 0;
    for (int seed = 1; seed <= 12; ++seed) {
        Twins twins(seed, itemCount, spread);
        for (int round = 0; round < 25; ++round) {
            const QVector<int> ids = randomIds(&twins.random, twins.plain.itemIds(), twins.random.bounded(1, 6));
            const bool isLeft = twins.random.bounded(2) == 1;
            twins.real.view.selectItems(ids, true);
            QKeyEvent key = keyPress(isLeft ? Qt::Key_Left : Qt::Key_Right);
            twins.real.handler.keyPressEvent(&key);
            Reference::nudge(twins.plain, ids, (isLeft ? -10 : 10) * twins.plain.snapStep());
            moved += !twins.plain.journal.isEmpty();
            QCOMPARE(twins.real.model.asked, twins.plain.asked);
            QCOMPARE(twins.real.model.journal, twins.plain.journal);
            QVERIFY(twins.haveTheSameTimes());
            twins.forgetCalls();
        }
    }
    QVERIFY(moved > 10);
}

void TestGesturesRandom::crowdsMovedTogetherAgreeWithTheReference()
{
    int moved = 0;
    int held = 0;
    for (const int seed : {1, 2, 4, 5, 7, 8}) {
        Twins twins(seed, 400, 60'000);
        for (int round = 0; round < 6; ++round) {
            twins.dragCrowd();
            const bool isLeft = round % 2 == 0;
            twins.real.view.selectItems(twins.ids, true);
            QKeyEvent key = keyPress(isLeft ? Qt::Key_Left : Qt::Key_Right);
            twins.real.handler.keyPressEvent(&key);
            Reference::nudge(twins.plain, twins.ids, (isLeft ? -10 : 10) * twins.plain.snapStep());
            moved += !twins.plain.journal.isEmpty();
            held += twins.plain.asked.size() != twins.ids.size();
            QCOMPARE(twins.real.model.asked, twins.plain.asked);
            QCOMPARE(twins.real.model.journal, twins.plain.journal);
            QVERIFY(twins.haveTheSameTimes());
            twins.forgetCalls();
        }
    }
    QVERIFY(moved > 5);
    QVERIFY(held > 5);
}

void TestGesturesRandom::whatHasChangedSinceCountsForACrowd()
{
    int allowed = 0;
    int refused = 0;
    for (const int seed : {1, 2, 4, 5, 7, 8}) {
        Twins twins(seed, 400, 60'000);
        twins.dragCrowd();
        for (int round = 0; round < 8; ++round) {
            const bool isAllowed = Reference::canMove(twins.plain, twins.ids, twins.dt);
            (isAllowed ? allowed : refused) += 1;
            for (int again = 0; again < 2; ++again)
                QCOMPARE(twins.real.handler.canMoveItemsTo(twins.to), isAllowed);
            // One that stays goes out of the way or into it.
            QVector<int> others = twins.plain.itemIds();
            others.removeIf([&](int id) { return twins.ids.contains(id); });
            const qint64 time = ViewFixture::origin + (round % 2 ? 30'000 : -3'000'000);
            for (const int id : std::as_const(others)) {
                twins.real.model.setItemStartTime(id, time);
                twins.plain.setItemStartTime(id, time);
            }
        }
    }
    QVERIFY(allowed > 5);
    QVERIFY(refused > 5);
}

void TestGesturesRandom::offsetsAgreeWithTheReference_data()
{
    addSizesAndCaching();
}

void TestGesturesRandom::offsetsAgreeWithTheReference()
{
    QFETCH(int, itemCount);
    QFETCH(int, spread);
    QFETCH(bool, isCaching);
    DragFixture f;
    addRandomItems(&f.model, 5, itemCount, spread);
    f.model.m_itemCaching = isCaching;
    f.model.setSnapEnabled(true);
    const std::vector<Reference::DragItem> items = Reference::itemsInOrder(f.model);
    QRandomGenerator random(91);
    const QVector<int> all = f.model.itemIds();
    const int steps[] = {1, 100, 700, 1000};
    const QPoint to = f.pos(900, f.trackA);
    int snapped = 0;
    for (int round = 0; round < 600; ++round) {
        const QVector<int> ids = randomIds(&random, all, random.bounded(1, 8));
        const qint64 raw = random.bounded(8000) - 4000;
        f.model.setSnapStep(steps[random.bounded(4)]);
        f.model.setSnapTolerance(random.bounded(3000));
        f.handler.m_dragItemIds = ids;
        f.handler.m_dragStartTime = f.view.toTime(to.x()) - raw;
        f.handler.m_dragPos = to;
        const qint64 expected =
            Reference::snappedDelta(raw, f.model.snapStep(), f.model.snapTolerance(), items, {ids.begin(), ids.end()});
        snapped += expected != raw / f.model.snapStep() * f.model.snapStep();
        QCOMPARE(f.handler.deltaTime(), expected);
    }
    QVERIFY(snapped > 100);
}

void TestGesturesRandom::edgesAgreeWithTheReference_data()
{
    addSizesAndCaching();
}

void TestGesturesRandom::edgesAgreeWithTheReference()
{
    QFETCH(int, itemCount);
    QFETCH(int, spread);
    QFETCH(bool, isCaching);
    ResizeFixture f;
    f.log.setThreshold(Hox::Fatal);
    addRandomItems(&f.model, 6, itemCount, spread);
    f.model.m_itemCaching = isCaching;
    f.model.setSnapEnabled(true);
    std::vector<Reference::Span> items;
    for (const Reference::DragItem& item : Reference::itemsInOrder(f.model))
        items.push_back({item.id, item.start, item.duration});
    QRandomGenerator random(92);
    const int steps[] = {1, 100, 700, 1000};
    int attracted = 0;
    for (int round = 0; round < 1500; ++round) {
        const Reference::Span& item = items[static_cast<std::size_t>(random.bounded(static_cast<int>(items.size())))];
        const auto edge = random.bounded(2) ? Reference::Edge::End : Reference::Edge::Start;
        const Reference::Snapping snapping{steps[random.bounded(4)], random.bounded(4000), random.bounded(3000),
                                           f.view.startTime(), f.view.endTime()};
        f.model.setMinimumDuration(snapping.minimumDuration / 1000 * 1000);
        f.model.setSnapStep(snapping.step);
        f.model.setSnapTolerance(snapping.tolerance);
        const int trackId = f.model.item(item.id)->parentTrackId();
        f.handler.hold(edge == Reference::Edge::End ? TimelineViewResizeHandler::eEnd
                                                    : TimelineViewResizeHandler::eStart,
                       trackId, item.id);

        Reference::Neighbours neighbours;
        const VeskTimeline::Items& own = f.model.track(trackId)->items();
        for (std::size_t i = 0; i < own.size(); ++i) {
            if (own[i]->id() != item.id)
                continue;
            if (i > 0)
                neighbours.previous = {own[i - 1]->id(), own[i - 1]->startTime(), own[i - 1]->duration()};
            if (i + 1 < own.size())
                neighbours.next = {own[i + 1]->id(), own[i + 1]->startTime(), own[i + 1]->duration()};
        }
        // Crowded neighbours leave no room; what the edges do is seen without them.
        const int x = f.view.toPixel(item.start) + random.bounded(12) - 4;
        Reference::Snapping expectedFor = snapping;
        expectedFor.minimumDuration = f.model.minimumDuration();
        const qint64 time = f.view.toTime(x);
        const qint64 expected = Reference::globalEdgeTime(edge, time, item, neighbours, items, expectedFor);
        attracted += expected != time / snapping.step * snapping.step;
        QCOMPARE(f.handler.globalSnapTime(x), expected);
    }
    QVERIFY(attracted > 100);
}

void TestGesturesRandom::itemsUnknownToTheModelAreNoCandidates()
{
    DragFixture f;
    const int id = f.addSeconds(f.trackA, 100, 10);
    f.addSeconds(f.trackB, 400, 10);
    // A background item of the application, which the model has no id for.
    f.model.track(f.trackB)->addItem(std::make_unique<VeskTimeline::Item>(f.at(90), 9'900, Qt::gray, false));
    f.model.setSnapEnabled(true);
    f.handler.m_dragItemIds = {id};
    f.handler.m_dragPos = f.pos(900, f.trackA);
    f.handler.m_dragStartTime = f.view.toTime(f.handler.m_dragPos.x());
    QCOMPARE(f.handler.deltaTime(), 0);

    f.model.newItem(f.trackB, f.at(90), 9'000);
    QCOMPARE(f.handler.deltaTime(), 0);
    f.model.setItemDuration(2, 9'800);
    QCOMPARE(f.handler.deltaTime(), -200);
}

QTEST_MAIN(TestGesturesRandom)
#include "tst_gestures_random.moc"
