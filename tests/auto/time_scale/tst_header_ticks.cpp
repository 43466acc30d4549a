#include "member_layout.h"
#include "paint_counter.h"
#include "reference/ticks.h"
#include "support/view_fixture.h"

#include <QRandomGenerator>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>

#include <type_traits>

using namespace VeskTimeline;

PUBLISH_MEMBER(TimelineHeaderView, m_timelineView)
PUBLISH_MEMBER(TimelineHeaderView, m_majorTicks)
PUBLISH_MEMBER(TimelineHeaderView, m_mediumTicks)
PUBLISH_MEMBER(TimelineHeaderView, m_minorTicks)
PUBLISH_MEMBER(TimelineHeaderView, m_dateTimeFormat)
PUBLISH_MEMBER(TimelineHeaderView, m_isDateTimeFormatChangable)

namespace {

constexpr qint64 day = 86'400'000;
constexpr qint64 minute = 60'000;

QStringList texts(const Ticks& ticks)
{
    QStringList lines;
    for (const Tick& tick : ticks)
        lines.append(QStringLiteral("%1@%2 %3").arg(tick.time).arg(tick.pos).arg(tick.label));
    return lines;
}

QList<qint64> times(const Ticks& ticks)
{
    QList<qint64> all;
    for (const Tick& tick : ticks)
        all.append(tick.time);
    return all;
}

QList<qint64> multiples(qint64 first, qint64 last, qint64 step, const QList<QList<qint64>>& without = {})
{
    QList<qint64> all;
    for (qint64 time = first; time <= last; time += step) {
        const auto holdsTime = [time](const QList<qint64>& list) { return list.contains(time); };
        if (std::none_of(without.begin(), without.end(), holdsTime))
            all.append(time);
    }
    return all;
}

Reference::RulerScale scaleOf(const TimelineView& view)
{
    Reference::RulerScale scale;
    scale.currentTime = view.currentTime();
    scale.zoomFactor = view.zoomFactor();
    scale.duration = view.duration();
    scale.left = view.header()->sectionPosition(1);
    scale.width = view.header()->geometry().width();
    scale.format = view.header()->dateTimeFormat();
    return scale;
}

void compareWithReference(const TimelineView& view)
{
    const TimelineHeaderView* const header = view.header();
    const Reference::TickLists expected = Reference::ticks(scaleOf(view));
    QCOMPARE(texts(header->majorTicks()), texts(expected.major));
    QCOMPARE(texts(header->mediumTicks()), texts(expected.medium));
    QCOMPARE(texts(header->minorTicks()), texts(expected.minor));
}

void updateTicks(TimelineHeaderView* header)
{
    QVERIFY(QMetaObject::invokeMethod(header, "onUpdateTicks", Qt::DirectConnection));
}

} // namespace

class TestHeaderTicks : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".?"))); }

    void aTickIsAPlainRecord();
    void membersAreDeclaredInOrder();
    void listsAreEmptyAtFirst();
    void rangesZoomsAndColumnsFollowThePlainForm();
    void aRangeWithoutLengthHasNoTicks();
    void atFifteenSecondsThereAreNoMediumTicks();
    void aWholeDayFromMidnightHasItsThreeGrids();
    void aTickLiesOnEachEdgeOfTheWindow();
    void aLeftEdgeBeforeTheEpochLosesItsFirstTick();
    void anInvalidZoomFactorHasNoTicks();

    void everyNoticeOfTheViewUpdatesTheTicks();
    void aResizedSectionUpdatesTheTicks();
    void eachTickIsThereOnceWhenSectionsResizeMeanwhile();
    void ticksChangedComesLastAndCarriesTheMajorTicks();
    void anUpdateSnapsVisibleIndicatorsAnew();
    void anUpdateRepaintsTheTimeColumnOnly();

    void anotherFormatRelabelsEveryTick();
    void theSameFormatIsWrittenAnew();
    void aFormatThatMayNotChangeStays();
};

void TestHeaderTicks::aTickIsAPlainRecord()
{
    const Tick unplaced(4711);
    QCOMPARE(unplaced.pos, -1);
    QCOMPARE(unplaced.time, qint64(4711));
    QVERIFY(unplaced.label.isEmpty());
    const Tick placed(17, 4712, QStringLiteral("label"));
    QCOMPARE(placed.pos, 17);
    QCOMPARE(placed.time, qint64(4712));
    QCOMPARE(placed.label, QStringLiteral("label"));
    static_assert(std::is_default_constructible_v<Tick> && std::is_copy_assignable_v<Tick>);
    static_assert(std::is_nothrow_move_constructible_v<Tick> && std::is_same_v<Ticks, QList<Tick>>);
}

void TestHeaderTicks::membersAreDeclaredInOrder()
{
    const QList<std::ptrdiff_t> offsets{MEMBER_OFFSET(TimelineHeaderView, m_timelineView),
                                        MEMBER_OFFSET(TimelineHeaderView, m_majorTicks),
                                        MEMBER_OFFSET(TimelineHeaderView, m_mediumTicks),
                                        MEMBER_OFFSET(TimelineHeaderView, m_minorTicks),
                                        MEMBER_OFFSET(TimelineHeaderView, m_dateTimeFormat),
                                        MEMBER_OFFSET(TimelineHeaderView, m_isDateTimeFormatChangable)};
    QVERIFY(offsets.first() > 0);
    QVERIFY(std::is_sorted(offsets.begin(), offsets.end()));
}

void TestHeaderTicks::listsAreEmptyAtFirst()
{
    const TimelineView view;
    QVERIFY(view.header()->majorTicks().isEmpty());
    QVERIFY(view.header()->mediumTicks().isEmpty());
    QVERIFY(view.header()->minorTicks().isEmpty());
    QCOMPARE(view.header()->dateTimeFormat(), DateTime::DTG);
    QVERIFY(view.header()->isDateTimeFormatChangable());
}

void TestHeaderTicks::rangesZoomsAndColumnsFollowThePlainForm()
{
    ViewFixture f;
    QRandomGenerator random(22);
    Zoom::Factor zoom = Zoom::FifteenSeconds;
    for (int i = 0; i < 300; ++i) {
        const qint64 start =
            static_cast<qint64>(random.bounded(2e12)) / (i % 3 == 0 ? 3'600'000 : 1) * (i % 3 == 0 ? 3'600'000 : 1);
        f.view.setRange(start, start + 2 * day);
        f.view.setCurrentTime(start + random.bounded(static_cast<int>(day)) / (i % 2 == 0 ? 1000 : 1));
        f.view.setZoomFactor(zoom);
        QCOMPARE(int(f.view.zoomFactor()), int(zoom));
        zoom = zoom == Zoom::OneDay ? Zoom::FifteenSeconds : Zoom::increment(zoom);
        if (i % 5 == 0)
            f.view.header()->resizeSection(0, random.bounded(200, 900));
        if (i % 7 == 0)
            f.view.header()->setDateTimeFormat(static_cast<DateTime::Format>(random.bounded(6)));
        updateTicks(f.view.header());
        compareWithReference(f.view);
        if (QTest::currentTestFailed())
            return;
    }
}

void TestHeaderTicks::aRangeWithoutLengthHasNoTicks()
{
    ViewFixture f;
    QVERIFY(!f.view.header()->majorTicks().isEmpty());

    // The shortest range is the minimum zoom factor; 0 is the only way to a range without length.
    f.view.setMinimumZoomFactor(static_cast<Zoom::Factor>(0));
    QSignalSpy spy(f.view.header(), &TimelineHeaderView::ticksChanged);
    f.view.setRange(ViewFixture::origin, ViewFixture::origin);
    QCOMPARE(f.view.duration(), 0);
    QCOMPARE(spy.count(), 1);
    QVERIFY(spy.first().first().value<Ticks>().isEmpty());
    QVERIFY(f.view.header()->majorTicks().isEmpty());
    QVERIFY(f.view.header()->mediumTicks().isEmpty());
    QVERIFY(f.view.header()->minorTicks().isEmpty());

    f.view.setDuration(1);
    QVERIFY(!f.view.header()->minorTicks().isEmpty());
}

void TestHeaderTicks::atFifteenSecondsThereAreNoMediumTicks()
{
    ViewFixture f;
    f.view.setZoomFactor(Zoom::FifteenSeconds);
    const qint64 start = ViewFixture::origin;
    QCOMPARE(start % 3000, qint64(0));
    QCOMPARE(times(f.view.header()->majorTicks()), multiples(start, start + 15'000, 3000));
    QVERIFY(f.view.header()->mediumTicks().isEmpty());
    QCOMPARE(times(f.view.header()->minorTicks()),
             multiples(start, start + 15'000, 1000, {multiples(start, start + 15'000, 3000)}));
    QCOMPARE(f.view.header()->minorTicks().size(), 10);
}

void TestHeaderTicks::aWholeDayFromMidnightHasItsThreeGrids()
{
    ViewFixture f;
    const qint64 midnight = 18'000 * day;
    f.view.setRange(midnight, midnight + 3 * day);
    f.view.setZoomFactor(Zoom::OneDay);
    f.view.setCurrentTime(midnight);
    updateTicks(f.view.header());

    const QList<qint64> everyTwoHours = multiples(midnight, midnight + day, 120 * minute);
    QCOMPARE(everyTwoHours.size(), 13);
    QCOMPARE(times(f.view.header()->majorTicks()), everyTwoHours);

    const QList<qint64> everyFortyMinutes = multiples(midnight, midnight + day, 40 * minute, {everyTwoHours});
    QCOMPARE(everyFortyMinutes.size(), 24);
    QCOMPARE(times(f.view.header()->mediumTicks()), everyFortyMinutes);

    const QList<qint64> others = multiples(midnight, midnight + day, 800'000, {everyTwoHours, everyFortyMinutes});
    QCOMPARE(others.size(), 72);
    QCOMPARE(times(f.view.header()->minorTicks()), others);
}

void TestHeaderTicks::aTickLiesOnEachEdgeOfTheWindow()
{
    ViewFixture f;
    const TimelineHeaderView* const header = f.view.header();
    QCOMPARE(ViewFixture::origin % 300'000, qint64(0));
    QCOMPARE(header->majorTicks().first().time, ViewFixture::origin);
    QCOMPARE(header->majorTicks().first().pos, header->sectionPosition(1));
    QCOMPARE(header->majorTicks().last().time, ViewFixture::origin + 1'800'000);
    QCOMPARE(header->majorTicks().last().pos, header->geometry().width());

    f.view.setCurrentTime(ViewFixture::origin + 1);
    QCOMPARE(header->majorTicks().first().time, ViewFixture::origin + 300'000);
    QCOMPARE(header->majorTicks().last().time, ViewFixture::origin + 1'800'000);
}

void TestHeaderTicks::aLeftEdgeBeforeTheEpochLosesItsFirstTick()
{
    ViewFixture f;
    f.view.setRange(-1'000'000, 10'000'000);
    f.view.setCurrentTime(-1'000'000);
    f.view.setZoomFactor(Zoom::FiveMinutes);
    f.view.setCurrentTime(-1'000'000);
    QCOMPARE(f.view.currentTime(), qint64(-1'000'000));
    // -960 s is a multiple of the interval too; the truncating remainder steps over it.
    QCOMPARE(times(f.view.header()->majorTicks()), multiples(-900'000, -700'000, 60'000));
    compareWithReference(f.view);
}

void TestHeaderTicks::anInvalidZoomFactorHasNoTicks()
{
    ViewFixture f;
    QSignalSpy spy(f.view.header(), &TimelineHeaderView::ticksChanged);
    f.view.setZoomFactor(static_cast<Zoom::Factor>(123'456));
    QCOMPARE(spy.count(), 1);
    QVERIFY(f.view.header()->majorTicks().isEmpty());
    QVERIFY(f.view.header()->mediumTicks().isEmpty());
    QVERIFY(f.view.header()->minorTicks().isEmpty());
}

void TestHeaderTicks::everyNoticeOfTheViewUpdatesTheTicks()
{
    ViewFixture f;
    QSignalSpy spy(f.view.header(), &TimelineHeaderView::ticksChanged);

    f.view.setCurrentTime(ViewFixture::at(77));
    QCOMPARE(spy.count(), 1);
    compareWithReference(f.view);
    f.view.setZoomFactor(Zoom::TenMinutes);
    QCOMPARE(spy.count(), 2);
    compareWithReference(f.view);
    f.view.setDuration(7'200'000);
    QCOMPARE(spy.count(), 3);
    compareWithReference(f.view);
    f.view.setRange(ViewFixture::at(1000), ViewFixture::at(9000));
    QCOMPARE(spy.count(), 4);
    compareWithReference(f.view);

    // Nothing new, nothing done.
    f.view.setCurrentTime(f.view.currentTime());
    f.view.setZoomFactor(f.view.zoomFactor());
    f.view.setDuration(f.view.duration());
    QCOMPARE(spy.count(), 4);
}

void TestHeaderTicks::aResizedSectionUpdatesTheTicks()
{
    ViewFixture f;
    QSignalSpy spy(f.view.header(), &TimelineHeaderView::ticksChanged);
    f.view.header()->resizeSection(0, 345);
    QVERIFY(spy.count() > 0);
    QCOMPARE(f.view.header()->majorTicks().first().pos, 345);
    compareWithReference(f.view);
}

void TestHeaderTicks::eachTickIsThereOnceWhenSectionsResizeMeanwhile()
{
    ViewFixture f;
    TimelineHeaderView* const header = f.view.header();
    QSignalSpy spy(header, &TimelineHeaderView::ticksChanged);
    for (const int width : {400, 201, 650, 200}) {
        header->resizeSection(0, width);
        // The first column's resize has the last one's carried out while the ticks are made.
        QCOMPARE(spy.count(), 2);
        spy.clear();
        compareWithReference(f.view);
        if (QTest::currentTestFailed())
            return;
    }
    f.view.resize(f.view.width() - 333, f.view.height());
    QCoreApplication::processEvents();
    compareWithReference(f.view);
}

void TestHeaderTicks::ticksChangedComesLastAndCarriesTheMajorTicks()
{
    ViewFixture f;
    f.model.setSnapEnabled(true);
    f.model.setSnapStep(500);
    TimelineHeaderView* const header = f.view.header();
    header->setIndicatorTime(ViewFixture::at(10) + 500);
    header->setLiveIndicatorTime(ViewFixture::at(20) + 500);
    header->setLiveIndicatorVisible(true);
    f.model.setSnapStep(1000);

    QStringList order;
    connect(header, &TimelineHeaderView::indicatorTimeChanged, this, [&] { order << QStringLiteral("indicator"); });
    connect(header, &TimelineHeaderView::liveIndicatorTimeChanged, this, [&] { order << QStringLiteral("live"); });
    connect(header, &TimelineHeaderView::ticksChanged, this, [&](const Ticks& major) {
        order << QStringLiteral("ticks");
        QCOMPARE(texts(major), texts(header->majorTicks()));
        QCOMPARE(texts(header->minorTicks()), texts(Reference::ticks(scaleOf(f.view)).minor));
    });
    f.view.setCurrentTime(ViewFixture::at(5));
    QCOMPARE(order, QStringList({QStringLiteral("indicator"), QStringLiteral("live"), QStringLiteral("ticks")}));
}

void TestHeaderTicks::anUpdateSnapsVisibleIndicatorsAnew()
{
    ViewFixture f;
    TimelineHeaderView* const header = f.view.header();
    header->setIndicatorTime(ViewFixture::at(10) + 499);
    header->setLiveIndicatorTime(ViewFixture::at(20) + 499);
    header->setIndicatorVisible(false);
    f.model.setSnapEnabled(true);

    QSignalSpy indicatorSpy(header, &TimelineHeaderView::indicatorTimeChanged);
    QSignalSpy liveSpy(header, &TimelineHeaderView::liveIndicatorTimeChanged);
    updateTicks(header);
    QCOMPARE(header->indicatorTime(), ViewFixture::at(10) + 499);
    QCOMPARE(header->liveIndicatorTime(), ViewFixture::at(20) + 499);
    QVERIFY(indicatorSpy.isEmpty() && liveSpy.isEmpty());

    header->setIndicatorVisible(true);
    header->setLiveIndicatorVisible(true);
    updateTicks(header);
    QCOMPARE(header->indicatorTime(), ViewFixture::at(10));
    QCOMPARE(header->liveIndicatorTime(), ViewFixture::at(20));
    QCOMPARE(indicatorSpy.count(), 1);
    QCOMPARE(liveSpy.count(), 1);

    updateTicks(header);
    QCOMPARE(indicatorSpy.count(), 1);
    QCOMPARE(liveSpy.count(), 1);
}

void TestHeaderTicks::anUpdateRepaintsTheTimeColumnOnly()
{
    ViewFixture f;
    PaintCounter counter(f.view.header()->viewport());
    updateTicks(f.view.header());
    const QRegion painted = counter.takeRegion();
    QCOMPARE(painted.boundingRect(), QRect(ViewFixture::labelWidth, 0, ViewFixture::secondsVisible, 50));
}

void TestHeaderTicks::anotherFormatRelabelsEveryTick()
{
    ViewFixture f;
    TimelineHeaderView* const header = f.view.header();
    f.view.setZoomFactor(Zoom::FiveMinutes);
    QVERIFY(!header->mediumTicks().isEmpty());
    QSignalSpy spy(header, &TimelineHeaderView::ticksChanged);
    PaintCounter counter(header->viewport());

    const Ticks before = header->mediumTicks();
    header->setDateTimeFormat(DateTime::Standard);
    QCOMPARE(header->dateTimeFormat(), DateTime::Standard);
    compareWithReference(f.view);
    QCOMPARE(header->majorTicks().first().label, QStringLiteral("13.09.2020 12:30:00"));
    QCOMPARE(times(header->mediumTicks()), times(before));
    QVERIFY(header->mediumTicks().first().label != before.first().label);
    QCOMPARE(spy.count(), 0);
    QCOMPARE(counter.takeRegion().boundingRect().left(), ViewFixture::labelWidth);

    // Ticks made later have it, too.
    f.view.setCurrentTime(ViewFixture::at(60));
    QCOMPARE(header->majorTicks().first().label, QStringLiteral("13.09.2020 12:31:00"));
}

void TestHeaderTicks::theSameFormatIsWrittenAnew()
{
    ViewFixture f;
    PaintCounter counter(f.view.header()->viewport());
    f.view.header()->setDateTimeFormat(DateTime::DTG);
    QVERIFY(counter.takeIsPainted());
    compareWithReference(f.view);
}

void TestHeaderTicks::aFormatThatMayNotChangeStays()
{
    ViewFixture f;
    TimelineHeaderView* const header = f.view.header();
    header->setDateTimeFormatChangable(false);
    QVERIFY(!header->isDateTimeFormatChangable());
    const QStringList before = texts(header->majorTicks());
    PaintCounter counter(header->viewport());
    header->setDateTimeFormat(DateTime::ISODate);
    QCOMPARE(header->dateTimeFormat(), DateTime::DTG);
    QCOMPARE(texts(header->majorTicks()), before);
    QVERIFY(!counter.takeIsPainted());

    header->setDateTimeFormatChangable(true);
    header->setDateTimeFormat(DateTime::ISODate);
    QCOMPARE(header->dateTimeFormat(), DateTime::ISODate);
    compareWithReference(f.view);
}

QTEST_MAIN(TestHeaderTicks)
#include "tst_header_ticks.moc"
