#include "probe_select_handler.h"
#include "reference/rubber_band.h"

#include <QRandomGenerator>
#include <QRegularExpression>
#include <QTest>

#include <memory>
#include <vector>

/// The items that a rubber band covers.
class TestRubberBand : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void mirroredRubberBandsSelectTheSame_data();
    void mirroredRubberBandsSelectTheSame();
    void rubberBandOfOnePixelSelectsNothing();
    void rubberBandTouchingAnItemSelectsIt();
    void shortRubberBandTakesTheRowOfItsEnd();
    void rubberBandTakesExpandedRows();
    void rowWithoutATrackIsLoggedAndSkipped();
    void rubberBandWithoutADelegateSelectsNothing();
    void rubberBandAgreesWithTheReferenceOnRandomData();

private:
    SelectFixture& fixture() { return *m_fixture; }
    void press(const QPoint& pos)
    {
        QMouseEvent event = pressAt(pos);
        fixture().handler.mousePressEvent(&event);
    }
    void move(const QPoint& pos)
    {
        QMouseEvent event = moveTo(pos);
        fixture().handler.mouseMoveEvent(&event);
    }
    void release(const QPoint& pos)
    {
        QMouseEvent event = releaseAt(pos);
        fixture().handler.mouseReleaseEvent(&event);
    }
    QList<int> selected() { return fixture().view.selectedItemIds(); }

    std::unique_ptr<SelectFixture> m_fixture;
};

void TestRubberBand::init()
{
    QTest::failOnWarning(QRegularExpression(".?"));
    m_fixture = std::make_unique<SelectFixture>();
}

void TestRubberBand::cleanup()
{
    m_fixture.reset();
}

void TestRubberBand::mirroredRubberBandsSelectTheSame_data()
{
    QTest::addColumn<bool>("isLeftwards");
    QTest::addColumn<bool>("isUpwards");
    QTest::newRow("right and down") << false << false;
    QTest::newRow("left and down") << true << false;
    QTest::newRow("right and up") << false << true;
    QTest::newRow("left and up") << true << true;
}

void TestRubberBand::mirroredRubberBandsSelectTheSame()
{
    QFETCH(bool, isLeftwards);
    QFETCH(bool, isUpwards);
    SelectFixture& f = fixture();
    const int trackC = f.model.newTrack("C");
    f.addSeconds(trackC, 100, 60);
    f.addSeconds(f.trackB, 250, 60);
    f.addSeconds(f.trackB, 100, 60);
    f.addSeconds(f.trackA, 100, 60);
    f.addSeconds(f.trackA, 400, 60);
    const QPoint leftTop = f.pos(50, f.trackA);
    const QPoint rightBottom = f.pos(350, f.trackB);
    const QPoint from(isLeftwards ? rightBottom.x() : leftTop.x(), isUpwards ? rightBottom.y() : leftTop.y());
    const QPoint to(isLeftwards ? leftTop.x() : rightBottom.x(), isUpwards ? leftTop.y() : rightBottom.y());
    press(from);
    move(to);
    release(to);
    QCOMPARE(selected(), (QList<int>{3, 2, 1}));
}

void TestRubberBand::rubberBandOfOnePixelSelectsNothing()
{
    SelectFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    f.handler.m_rubberBand = QRect(f.pos(130, f.trackA), QSize(1, 30));
    QVERIFY(f.handler.getItemsWithinRubberBand().isEmpty());
    f.handler.m_rubberBand = QRect(f.pos(130, f.trackA), QSize(2, 30));
    QVERIFY(!f.handler.getItemsWithinRubberBand().isEmpty());

    press(f.pos(300, f.trackA));
    f.select({0});
    move(f.pos(301, f.trackA) + QPoint(0, 20));
    release(f.pos(301, f.trackA) + QPoint(0, 20));
    QVERIFY(selected().isEmpty());
    QCOMPARE(f.selections.size(), 1);
}

void TestRubberBand::rubberBandTouchingAnItemSelectsIt()
{
    SelectFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    const int y = f.pos(0, f.trackA).y();
    const int start = f.view.toPixel(f.at(100));
    const int end = f.view.toPixel(f.at(160));
    const auto covered = [&](int left, int right) {
        f.handler.m_rubberBand = QRect(QPoint(left, y), QPoint(right, y + 5));
        return f.handler.getItemsWithinRubberBand().contains(0);
    };
    QVERIFY(covered(start - 20, start));
    QVERIFY(!covered(start - 20, start - 1));
    QVERIFY(covered(end, end + 20));
    QVERIFY(!covered(end + 1, end + 20));
    QVERIFY(covered(start + 10, start + 20));
}

void TestRubberBand::shortRubberBandTakesTheRowOfItsEnd()
{
    SelectFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    f.addSeconds(f.trackB, 100, 60);
    const int rowHeight = f.view.visualRect(f.view.indexOfTrackRow(f.trackA, 1)).height();
    const int x = f.pos(90, f.trackA).x();
    f.handler.m_rubberBand = QRect(x, rowHeight - 5, 30, 10);
    QCOMPARE(f.handler.getItemsWithinRubberBand(), (QVector<int>{0, 1}));
    // Within one row its items are named twice; the selection holds them once.
    f.handler.m_rubberBand = QRect(x, 5, 30, 10);
    QCOMPARE(f.handler.getItemsWithinRubberBand(), (QVector<int>{0, 0}));
    f.handler.m_isRubberBandActive = true;
    release({x + 30, 15});
    QCOMPARE(selected(), QList<int>{0});
}

void TestRubberBand::rubberBandTakesExpandedRows()
{
    SelectFixture& f = fixture();
    const int child = f.model.newTrack("child", f.trackA);
    f.addSeconds(f.trackA, 100, 60);
    f.addSeconds(child, 100, 60);
    f.addSeconds(f.trackB, 100, 60);
    f.handler.m_rubberBand = QRect(f.pos(90, f.trackA), f.pos(120, f.trackB));
    QCOMPARE(f.handler.getItemsWithinRubberBand(), (QVector<int>{0, 2}));
    f.view.expandAll();
    f.handler.m_rubberBand = QRect(f.pos(90, f.trackA), f.pos(120, f.trackB));
    QCOMPARE(f.handler.getItemsWithinRubberBand(), (QVector<int>{0, 1, 2}));
}

void TestRubberBand::rowWithoutATrackIsLoggedAndSkipped()
{
    SelectFixture& f = fixture();
    const int lost = f.model.newTrack("77");
    const int named = f.model.newTrack(QString::number(f.trackB));
    f.addSeconds(f.trackB, 100, 60);
    // A band that begins over the names takes them for the ids.
    f.handler.m_rubberBand = QRect(QPoint(f.labelWidth - 1, f.pos(0, lost).y()), f.pos(120, named));
    QCOMPARE(f.handler.getItemsWithinRubberBand(), QVector<int>{0});
    QCOMPARE(f.logLines(), QStringList{"Error: Model: track with id 77 not found in cache"});
}

void TestRubberBand::rubberBandWithoutADelegateSelectsNothing()
{
    SelectFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    f.handler.m_rubberBand = QRect(f.pos(90, f.trackA), QSize(50, 20));
    delete f.view.itemDelegate();
    QVERIFY(f.handler.getItemsWithinRubberBand().isEmpty());
    f.view.setItemDelegate(new VeskTimeline::ItemDelegate(&f.view));
}

void TestRubberBand::rubberBandAgreesWithTheReferenceOnRandomData()
{
    SelectFixture& f = fixture();
    f.model.newTrack("C");
    f.model.newTrack("D");
    QRandomGenerator random(31);
    std::vector<Reference::BandRow> rows;
    for (int row = 0; row < f.model.rowCount(); ++row) {
        const int trackId = f.model.index(row, 1).data().toInt();
        Reference::BandRow& items = rows.emplace_back();
        qint64 time = f.origin;
        for (int i = 0; i < 8; ++i) {
            time += random.bounded(200'000);
            const int duration = i == 7 && row % 2 == 0 ? -1 : random.bounded(150'000);
            items.push_back({f.model.newItem(trackId, time, duration), time, duration});
        }
    }
    const int rowHeight = f.view.visualRect(f.view.indexOfTrackRow(f.trackA, 1)).height();
    const auto toTime = [&](int x) { return f.view.toTime(x); };
    int covered = 0;
    for (int round = 0; round < 4000; ++round) {
        const QRect band(f.labelWidth + 300 + random.bounded(1200), random.bounded(330), random.bounded(600) - 300,
                         random.bounded(300) - 150);
        f.handler.m_rubberBand = band;
        const std::vector<int> expected = Reference::itemsWithinBand(band, rows, rowHeight, toTime);
        covered += !expected.empty();
        QCOMPARE(f.handler.getItemsWithinRubberBand(), QVector<int>(expected.begin(), expected.end()));
    }
    QVERIFY(covered > 1000);
}

QTEST_MAIN(TestRubberBand)
#include "tst_rubber_band.moc"
