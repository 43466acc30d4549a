#include "reference/ticks.h"
#include "support/view_fixture.h"

#include <VeskTimeline/time_pixel_mapping_p.h>

#include <QRandomGenerator>
#include <QRegularExpression>
#include <QTest>

#include <limits>

using namespace VeskTimeline;

class TestTimePixelMapping : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".?"))); }

    void mapsAsTheFormulaSays_data();
    void mapsAsTheFormulaSays();
    void randomMappingsFollowThePlainForm();
    void aTimeTooFarAwayEndsBesideThePicture();
    void anAxisWithoutWidthShowsOneTime();
    void extremeArgumentsStayDefined();

    void noTimeHasNoPosition();
    void positionMinusOneIsAPositionLikeOthers();
    void leftEdgeOfTheWindowIsWhereTheTimeColumnBegins();
    void rightEdgeOfTheWindowIsTheWidthOfTheRuler();
    void rulerMeasuresItselfNotTheView();
    void mappingFollowsTimeZoomAndColumnWidth();
    void viewMapsAsItsRuler();
};

void TestTimePixelMapping::mapsAsTheFormulaSays_data()
{
    QTest::addColumn<qint64>("time");
    QTest::addColumn<int>("pixel");
    QTest::addColumn<qint64>("timeAtPixel");

    // 1000 ms on 100 pixels that begin at 50.
    QTest::newRow("left edge") << qint64(5000) << 50 << qint64(5000);
    QTest::newRow("right edge") << qint64(6000) << 150 << qint64(6000);
    QTest::newRow("inside") << qint64(5430) << 93 << qint64(5430);
    QTest::newRow("part of a pixel is cut") << qint64(5439) << 93 << qint64(5430);
    QTest::newRow("left of the window") << qint64(4000) << -50 << qint64(4000);
    QTest::newRow("right of the window") << qint64(8000) << 350 << qint64(8000);
    QTest::newRow("cut towards zero left of zero") << qint64(4001) << -49 << qint64(4010);
    QTest::newRow("zero is reached from both sides") << qint64(4491) << 0 << qint64(4500);
    QTest::newRow("negative time") << qint64(-1000) << -550 << qint64(-1000);
}

void TestTimePixelMapping::mapsAsTheFormulaSays()
{
    QFETCH(const qint64, time);
    QFETCH(const int, pixel);
    QFETCH(const qint64, timeAtPixel);

    const TimePixelMapping mapping{5000, 1000, 50, 150};
    QCOMPARE(mapping.toPixel(time), pixel);
    QCOMPARE(mapping.toTime(pixel), timeAtPixel);
}

void TestTimePixelMapping::randomMappingsFollowThePlainForm()
{
    QRandomGenerator random(20);
    const QList<Zoom::Factor> factors = Zoom::availableZoomFactors(Zoom::FifteenSeconds, Zoom::OneDay);
    for (int i = 0; i < 20'000; ++i) {
        Reference::RulerScale scale;
        scale.currentTime = static_cast<qint64>(random.bounded(4e12)) - 1'000'000'000'000;
        scale.zoomFactor = factors.at(random.bounded(static_cast<int>(factors.size())));
        scale.left = random.bounded(0, 400);
        scale.width = scale.left + random.bounded(1, 3000);
        const TimePixelMapping mapping{scale.currentTime, scale.zoomFactor, scale.left, scale.width};

        const qint64 time = scale.currentTime + random.bounded(-200'000'000, 200'000'000);
        QCOMPARE(mapping.toPixel(time), Reference::toPixel(scale, time));
        const int x = random.bounded(-10'000, 10'000);
        QCOMPARE(mapping.toTime(x), Reference::toTime(scale, x));
    }
}

void TestTimePixelMapping::aTimeTooFarAwayEndsBesideThePicture()
{
    const TimePixelMapping mapping{1'600'000'000'000, Zoom::FifteenSeconds, 200, 2000};
    QCOMPARE(mapping.toPixel(0), -TimePixelMapping::farAway);
    QCOMPARE(mapping.toPixel(4'000'000'000'000), TimePixelMapping::farAway);
    // 2^30 - 1 pixels are reached exactly, and the difference of any two positions is an int.
    QCOMPARE(mapping.toPixel(1'600'000'000'000 + 8'900'000'000'000LL / 1000), 200 + 1'068'000'000);
    QCOMPARE(mapping.toPixel(4'000'000'000'000) - mapping.toPixel(0), std::numeric_limits<int>::max() - 1);
}

void TestTimePixelMapping::anAxisWithoutWidthShowsOneTime()
{
    const TimePixelMapping mapping{5000, 1000, 50, 50};
    QCOMPARE(mapping.toTime(50), qint64(5000));
    QCOMPARE(mapping.toTime(700), qint64(5000));
    QCOMPARE(mapping.toPixel(9000), 50);
}

void TestTimePixelMapping::extremeArgumentsStayDefined()
{
    constexpr auto latest = std::numeric_limits<qint64>::max();
    constexpr auto earliest = std::numeric_limits<qint64>::min();
    const TimePixelMapping fresh{-1, Zoom::ThirtyMinutes, 200, 2000};
    QCOMPARE(fresh.toPixel(latest), TimePixelMapping::farAway);
    QCOMPARE(fresh.toPixel(earliest), -TimePixelMapping::farAway);
    const TimePixelMapping late{1'600'000'000'000, Zoom::ThirtyMinutes, 200, 2000};
    QCOMPARE(late.toPixel(earliest), -TimePixelMapping::farAway);
    // 2000 ms a pixel, too far for an int's difference to the left edge.
    const TimePixelMapping coarse{0, 2000, 1, 2};
    QCOMPARE(coarse.toTime(std::numeric_limits<int>::min()), (qint64(std::numeric_limits<int>::min()) - 1) * 2000);
}

void TestTimePixelMapping::noTimeHasNoPosition()
{
    const ViewFixture f;
    QCOMPARE(f.view.header()->toPixel(-1), -1);
    // Although -1 has its place on the axis when the window is there.
    TimelineView fresh;
    QCOMPARE(fresh.currentTime(), qint64(-1));
    QCOMPARE(fresh.header()->toPixel(-1), -1);
}

void TestTimePixelMapping::positionMinusOneIsAPositionLikeOthers()
{
    const ViewFixture f;
    QCOMPARE(f.view.header()->toTime(-1), ViewFixture::at(-201));
}

void TestTimePixelMapping::leftEdgeOfTheWindowIsWhereTheTimeColumnBegins()
{
    const ViewFixture f;
    const TimelineHeaderView* const header = f.view.header();
    QCOMPARE(header->sectionPosition(1), ViewFixture::labelWidth);
    QCOMPARE(header->toPixel(f.view.currentTime()), ViewFixture::labelWidth);
    QCOMPARE(header->toTime(ViewFixture::labelWidth), f.view.currentTime());
}

void TestTimePixelMapping::rightEdgeOfTheWindowIsTheWidthOfTheRuler()
{
    const ViewFixture f;
    const TimelineHeaderView* const header = f.view.header();
    const qint64 end = f.view.currentTime() + f.view.zoomFactor();
    QCOMPARE(header->geometry().width(), ViewFixture::labelWidth + ViewFixture::secondsVisible);
    QCOMPARE(header->toPixel(end), header->geometry().width());
    QCOMPARE(header->toTime(header->geometry().width()), end);
}

void TestTimePixelMapping::rulerMeasuresItselfNotTheView()
{
    const ViewFixture f;
    // Scroll bar and frame make the view wider than its ruler.
    QVERIFY(f.view.width() > f.view.header()->width());
    QCOMPARE(f.view.header()->toPixel(ViewFixture::at(900)), ViewFixture::labelWidth + 900);
}

void TestTimePixelMapping::mappingFollowsTimeZoomAndColumnWidth()
{
    ViewFixture f;
    TimelineHeaderView* const header = f.view.header();

    f.view.setCurrentTime(ViewFixture::at(600));
    QCOMPARE(header->toPixel(ViewFixture::at(600)), ViewFixture::labelWidth);
    QCOMPARE(header->toPixel(ViewFixture::at(0)), ViewFixture::labelWidth - 600);

    f.view.setZoomFactor(Zoom::FifteenMinutes);
    QCOMPARE(header->toPixel(ViewFixture::at(601)), ViewFixture::labelWidth + 2);
    QCOMPARE(header->toTime(ViewFixture::labelWidth + 3), ViewFixture::at(601) + 500);

    header->resizeSection(0, 1100);
    QCOMPARE(header->toPixel(ViewFixture::at(600)), 1100);
    QCOMPARE(header->toPixel(ViewFixture::at(601)), 1101);
}

void TestTimePixelMapping::viewMapsAsItsRuler()
{
    const ViewFixture f;
    QRandomGenerator random(21);
    for (int i = 0; i < 1000; ++i) {
        const int second = random.bounded(-4000, 8000);
        QCOMPARE(f.view.toPixel(ViewFixture::at(second)), f.view.header()->toPixel(ViewFixture::at(second)));
        const int x = random.bounded(-5000, 5000);
        QCOMPARE(f.view.toTime(x), f.view.header()->toTime(x));
    }
    QCOMPARE(f.view.toPixel(ViewFixture::at(700) + 500), ViewFixture::labelWidth + 700);
    QCOMPARE(f.view.toPixel(-1), -1);
}

QTEST_MAIN(TestTimePixelMapping)
#include "tst_time_pixel_mapping.moc"
