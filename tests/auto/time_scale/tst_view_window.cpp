#include "paint_counter.h"
#include "reference/view_window.h"
#include "support/view_fixture.h"

#include <QRandomGenerator>
#include <QRegularExpression>
#include <QTest>

#include <algorithm>
#include <array>

using namespace VeskTimeline;

namespace {

Zoom::Factor factor(int msecs)
{
    return static_cast<Zoom::Factor>(msecs);
}

/// A view whose signals of the window are kept as text, in the order in which they come.
struct WindowFixture
{
    TimelineView view;
    QStringList emitted;

    WindowFixture()
    {
        QObject::connect(&view, &TimelineView::rangeChanged, &view, [this](qint64 start, qint64 end) {
            emitted << QStringLiteral("rangeChanged %1 %2").arg(start).arg(end);
        });
        QObject::connect(&view, &TimelineView::currentTimeChanged, &view,
                         [this](qint64 time) { emitted << QStringLiteral("currentTimeChanged %1").arg(time); });
        QObject::connect(&view, &TimelineView::zoomChanged, &view,
                         [this](Zoom::Factor zoom) { emitted << QStringLiteral("zoomChanged %1").arg(int(zoom)); });
    }

    /// One hour from 0, of which the first half hour is seen.
    void showHour()
    {
        view.setRange(0, 3'600'000);
        view.setCurrentTime(0);
        emitted.clear();
    }
    QStringList take() { return std::exchange(emitted, {}); }
    /// "start+duration, window at time+zoom"
    QString state() const
    {
        return QStringLiteral("%1+%2, %3+%4")
            .arg(view.startTime())
            .arg(view.duration())
            .arg(view.currentTime())
            .arg(int(view.zoomFactor()));
    }
};

QStringList lines(std::initializer_list<const char*> texts)
{
    QStringList all;
    for (const char* const text : texts)
        all << QString::fromLatin1(text);
    return all;
}

/// A call of a setter.
struct Step
{
    enum Setter {
        ZoomFactor,
        MinimumZoom,
        MaximumZoom,
        StartTime,
        CurrentTime,
        Duration,
        EndTime,
        Range,
        NumberOfSetters
    };

    Setter setter;
    int span;
    qint64 time;
    qint64 otherTime;

    QByteArray text() const
    {
        return QStringLiteral("setter %1: %2, %3, %4").arg(setter).arg(span).arg(time).arg(otherTime).toLatin1();
    }
};

// Few values, so that bounds meet often.
Step randomStep(QRandomGenerator* random)
{
    constexpr std::array<int, 20> spans{-1,         -20'000,    0,          1,          14'999,
                                        15'000,     30'000,     60'000,     299'999,    300'000,
                                        900'000,    1'800'000,  1'800'001,  3'600'000,  7'000'000,
                                        14'400'000, 43'200'000, 86'400'000, 86'400'001, 200'000'000};
    const auto span = [&] { return spans.at(random->bounded(static_cast<quint32>(spans.size()))); };
    const auto time = [&] { return static_cast<qint64>(span()) + span() / 2; };
    return {static_cast<Step::Setter>(random->bounded(int(Step::NumberOfSetters))), span(), time(), time()};
}

template <typename Window>
void apply(Window& window, const Step& step)
{
    const Zoom::Factor zoom = factor(std::max(step.span, 1));
    switch (step.setter) {
    case Step::ZoomFactor:
        return window.setZoomFactor(zoom);
    case Step::MinimumZoom:
        return window.setMinimumZoomFactor(zoom);
    case Step::MaximumZoom:
        return window.setMaximumZoomFactor(zoom);
    case Step::StartTime:
        return window.setStartTime(step.time);
    case Step::CurrentTime:
        return window.setCurrentTime(step.time);
    case Step::Duration:
        return window.setDuration(step.span);
    case Step::EndTime:
        return window.setEndTime(step.time);
    case Step::Range:
    case Step::NumberOfSetters:
        return window.setRange(step.time, step.otherTime);
    }
}

bool isSame(const TimelineView& view, const Reference::ViewWindow& plain)
{
    return view.startTime() == plain.startTime && view.currentTime() == plain.currentTime &&
           view.duration() == plain.duration && view.endTime() == plain.endTime() &&
           int(view.zoomFactor()) == plain.zoomFactor && int(view.upperZoomFactor()) == plain.upperZoomFactor &&
           int(view.minimumZoomFactor()) == plain.minimumZoomFactor &&
           int(view.maximumZoomFactor()) == plain.maximumZoomFactor;
}

} // namespace

class TestViewWindow : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".?"))); }

    void defaults();

    void zoomIsClampedAndAnnouncedOnce_data();
    void zoomIsClampedAndAnnouncedOnce();
    void anyFactorBetweenTheBoundsIsTaken();
    void widerZoomMovesTheWindowBack();
    void zoomWiderThanTheRangeBeginsAtItsStart();
    void minimumZoomLiftsTheZoom();
    void maximumZoomLowersTheZoom();
    void raisingTheMaximumLeavesTheUpperBound();
    void minimumAboveTheUpperBoundWins();

    void startTimeMovesTheRange();
    void negativeStartTimeIsRefused();
    void startTimePushesTheWindow();
    void startTimePullsTheWindow();
    void startTimeBeforeARangeHasNoEnd();

    void currentTimeStaysInTheRange_data();
    void currentTimeStaysInTheRange();
    void currentTimeWithoutARangeHasNoEnd();

    void durationIsAtLeastTheMinimumZoom();
    void durationBelowTheMinimumIsAnnouncedEachTime();
    void durationSetsTheUpperBoundOfTheZoom();
    void shorterDurationNarrowsTheZoom();
    void windowThatOnlyPassesTheNewEndStays();
    void windowBehindTheNewEndMoves();

    void endTimeSetsTheDuration();
    void endTimeIsAtLeastTheMinimumZoomAfterTheStart();

    void rangeSetsStartAndDurationAtOnce();
    void rangeBoundsMayBeSwapped();
    void sameRangeIsNotAnnounced();
    void shortRangeIsAsLongAsTheMinimumZoom();
    void rangeMovesTheWindowSilently();
    void rangeLeavesTheZoomAlone();

    void eachChangeRepaintsTheRows();
    void randomSettersFollowThePlainForm_data();
    void randomSettersFollowThePlainForm();
};

void TestViewWindow::defaults()
{
    const TimelineView view;
    QCOMPARE(view.startTime(), qint64(-1));
    QCOMPARE(view.currentTime(), qint64(-1));
    QCOMPARE(view.duration(), -1);
    QCOMPARE(view.endTime(), qint64(-2));
    QCOMPARE(int(view.zoomFactor()), 1'800'000);
    QCOMPARE(int(view.minimumZoomFactor()), 15'000);
    QCOMPARE(int(view.maximumZoomFactor()), 86'400'000);
    QCOMPARE(int(view.upperZoomFactor()), 86'400'000);
}

void TestViewWindow::zoomIsClampedAndAnnouncedOnce_data()
{
    QTest::addColumn<int>("asked");
    QTest::addColumn<int>("zoom");

    QTest::newRow("below the minimum") << 10'000 << 60'000;
    QTest::newRow("zero") << 0 << 60'000;
    QTest::newRow("negative") << -5 << 60'000;
    QTest::newRow("the minimum") << 60'000 << 60'000;
    QTest::newRow("between") << 300'000 << 300'000;
    QTest::newRow("the upper bound") << 3'600'000 << 3'600'000;
    QTest::newRow("above the upper bound") << 7'200'000 << 3'600'000;
    QTest::newRow("above the maximum") << 200'000'000 << 3'600'000;
    QTest::newRow("the same") << 1'800'000 << 1'800'000;
}

void TestViewWindow::zoomIsClampedAndAnnouncedOnce()
{
    QFETCH(const int, asked);
    QFETCH(const int, zoom);

    WindowFixture f;
    f.view.setMinimumZoomFactor(Zoom::SixtySeconds);
    f.showHour();
    f.view.setZoomFactor(factor(asked));
    QCOMPARE(int(f.view.zoomFactor()), zoom);
    const bool isChanged = zoom != 1'800'000;
    QCOMPARE(f.take(), isChanged ? QStringList(QStringLiteral("zoomChanged %1").arg(zoom)) : QStringList());

    // Clamped to where it is, it stays silent.
    f.view.setZoomFactor(factor(asked));
    QVERIFY(f.take().isEmpty());
}

void TestViewWindow::anyFactorBetweenTheBoundsIsTaken()
{
    WindowFixture f;
    f.showHour();
    f.view.setZoomFactor(factor(123'456));
    QCOMPARE(int(f.view.zoomFactor()), 123'456);
}

void TestViewWindow::widerZoomMovesTheWindowBack()
{
    WindowFixture f;
    f.showHour();
    f.view.setZoomFactor(Zoom::TenMinutes);
    f.view.setCurrentTime(3'000'000);
    f.take();
    f.view.setZoomFactor(Zoom::ThirtyMinutes);
    QCOMPARE(f.state(), QStringLiteral("0+3600000, 1800000+1800000"));
    QCOMPARE(f.take(), lines({"zoomChanged 1800000", "currentTimeChanged 1800000"}));

    // Ending just at the end of the range, it may stay.
    f.view.setZoomFactor(Zoom::TenMinutes);
    f.view.setCurrentTime(2'700'000);
    f.take();
    f.view.setZoomFactor(Zoom::FifteenMinutes);
    QCOMPARE(f.take(), lines({"zoomChanged 900000"}));
    QCOMPARE(f.view.currentTime(), qint64(2'700'000));
}

void TestViewWindow::zoomWiderThanTheRangeBeginsAtItsStart()
{
    WindowFixture f;
    f.view.setZoomFactor(Zoom::FourHours);
    f.take();
    f.view.setRange(1'000'000, 4'600'000);
    f.take();
    // Still far wider than the range, above whose end even its start lies.
    f.view.setMinimumZoomFactor(Zoom::EightHours);
    QCOMPARE(f.state(), QStringLiteral("1000000+3600000, 1000000+28800000"));
    QCOMPARE(f.take(), lines({"zoomChanged 28800000"}));
}

void TestViewWindow::minimumZoomLiftsTheZoom()
{
    WindowFixture f;
    f.showHour();
    f.view.setMinimumZoomFactor(Zoom::ThirtyMinutes);
    QCOMPARE(int(f.view.minimumZoomFactor()), 1'800'000);
    QVERIFY(f.take().isEmpty());
    f.view.setMinimumZoomFactor(Zoom::SixtyMinutes);
    QCOMPARE(f.take(), lines({"zoomChanged 3600000"}));
    f.view.setMinimumZoomFactor(Zoom::FifteenSeconds);
    QCOMPARE(int(f.view.zoomFactor()), 3'600'000);
    QVERIFY(f.take().isEmpty());
}

void TestViewWindow::maximumZoomLowersTheZoom()
{
    WindowFixture f;
    f.showHour();
    f.view.setMaximumZoomFactor(Zoom::ThirtyMinutes);
    QCOMPARE(int(f.view.maximumZoomFactor()), 1'800'000);
    QCOMPARE(int(f.view.upperZoomFactor()), 1'800'000);
    QVERIFY(f.take().isEmpty());
    f.view.setMaximumZoomFactor(Zoom::FiveMinutes);
    QCOMPARE(int(f.view.upperZoomFactor()), 300'000);
    QCOMPARE(f.take(), lines({"zoomChanged 300000"}));
    f.view.setZoomFactor(Zoom::ThirtyMinutes);
    QVERIFY(f.take().isEmpty());
    QCOMPARE(int(f.view.zoomFactor()), 300'000);
}

void TestViewWindow::raisingTheMaximumLeavesTheUpperBound()
{
    WindowFixture f;
    f.showHour();
    f.view.setMaximumZoomFactor(Zoom::FiveMinutes);
    f.view.setMaximumZoomFactor(Zoom::OneDay);
    QCOMPARE(int(f.view.upperZoomFactor()), 300'000);
    // The next range finds the new bound.
    f.view.setDuration(7'200'000);
    QCOMPARE(int(f.view.upperZoomFactor()), 7'200'000);
}

void TestViewWindow::minimumAboveTheUpperBoundWins()
{
    WindowFixture f;
    f.view.setRange(0, 60'000);
    f.take();
    QCOMPARE(int(f.view.upperZoomFactor()), 60'000);
    f.view.setMinimumZoomFactor(Zoom::TwoHours);
    QCOMPARE(int(f.view.zoomFactor()), 7'200'000);
    QCOMPARE(f.take(), lines({"zoomChanged 7200000"}));
    for (const int asked : {15'000, 60'000, 3'600'000, 86'400'000}) {
        f.view.setZoomFactor(factor(asked));
        QCOMPARE(int(f.view.zoomFactor()), 7'200'000);
    }
    QVERIFY(f.take().isEmpty());
}

void TestViewWindow::startTimeMovesTheRange()
{
    WindowFixture f;
    f.view.setRange(1'000'000, 4'600'000);
    f.view.setCurrentTime(1'500'000);
    f.take();
    f.view.setStartTime(1'200'000);
    QCOMPARE(f.state(), QStringLiteral("1200000+3600000, 1500000+1800000"));
    QCOMPARE(f.take(), lines({"rangeChanged 1200000 4800000"}));
    f.view.setStartTime(1'200'000);
    QVERIFY(f.take().isEmpty());
    f.view.setStartTime(0);
    QCOMPARE(f.take(), lines({"rangeChanged 0 3600000"}));
}

void TestViewWindow::negativeStartTimeIsRefused()
{
    WindowFixture f;
    f.showHour();
    f.view.setStartTime(-5);
    f.view.setStartTime(-1);
    QCOMPARE(f.state(), QStringLiteral("0+3600000, 0+1800000"));
    QVERIFY(f.take().isEmpty());
}

void TestViewWindow::startTimePushesTheWindow()
{
    WindowFixture f;
    f.showHour();
    f.view.setStartTime(600'000);
    QCOMPARE(f.state(), QStringLiteral("600000+3600000, 600000+1800000"));
    QCOMPARE(f.take(), lines({"currentTimeChanged 600000", "rangeChanged 600000 4200000"}));
}

void TestViewWindow::startTimePullsTheWindow()
{
    WindowFixture f;
    f.view.setRange(5'000'000, 8'600'000);
    f.view.setCurrentTime(6'800'000);
    f.take();
    f.view.setStartTime(4'000'000);
    QCOMPARE(f.state(), QStringLiteral("4000000+3600000, 5800000+1800000"));
    QCOMPARE(f.take(), lines({"currentTimeChanged 5800000", "rangeChanged 4000000 7600000"}));
}

void TestViewWindow::startTimeBeforeARangeHasNoEnd()
{
    WindowFixture f;
    f.view.setStartTime(600'000);
    QCOMPARE(f.state(), QStringLiteral("600000+-1, 600000+1800000"));
    QCOMPARE(f.take(), lines({"currentTimeChanged 600000", "rangeChanged 600000 599999"}));
    f.view.setStartTime(0);
    QCOMPARE(f.state(), QStringLiteral("0+-1, 600000+1800000"));
}

void TestViewWindow::currentTimeStaysInTheRange_data()
{
    QTest::addColumn<qint64>("asked");
    QTest::addColumn<qint64>("time");

    QTest::newRow("inside") << qint64(2'000'000) << qint64(2'000'000);
    QTest::newRow("first") << qint64(1'000'000) << qint64(1'000'000);
    QTest::newRow("before the range") << qint64(999'999) << qint64(1'000'000);
    QTest::newRow("negative") << qint64(-7) << qint64(1'000'000);
    QTest::newRow("last") << qint64(2'800'000) << qint64(2'800'000);
    QTest::newRow("window would pass the end") << qint64(2'800'001) << qint64(2'800'000);
    QTest::newRow("behind the range") << qint64(4'000'000'000'000) << qint64(2'800'000);
    QTest::newRow("unchanged") << qint64(1'500'000) << qint64(1'500'000);
}

void TestViewWindow::currentTimeStaysInTheRange()
{
    QFETCH(const qint64, asked);
    QFETCH(const qint64, time);

    WindowFixture f;
    f.view.setRange(1'000'000, 4'600'000);
    f.view.setCurrentTime(1'500'000);
    f.take();
    f.view.setCurrentTime(asked);
    QCOMPARE(f.view.currentTime(), time);
    const bool isChanged = time != 1'500'000;
    QCOMPARE(f.take(), isChanged ? QStringList(QStringLiteral("currentTimeChanged %1").arg(time)) : QStringList());
    f.view.setCurrentTime(asked);
    QVERIFY(f.take().isEmpty());
}

void TestViewWindow::currentTimeWithoutARangeHasNoEnd()
{
    WindowFixture f;
    f.view.setCurrentTime(5'000'000);
    QCOMPARE(f.view.currentTime(), qint64(5'000'000));
    f.view.setCurrentTime(-9);
    QCOMPARE(f.view.currentTime(), qint64(-1));
    QCOMPARE(f.take(), lines({"currentTimeChanged 5000000", "currentTimeChanged -1"}));
}

void TestViewWindow::durationIsAtLeastTheMinimumZoom()
{
    WindowFixture f;
    f.showHour();
    f.view.setDuration(1000);
    QCOMPARE(f.state(), QStringLiteral("0+15000, 0+15000"));
    QCOMPARE(f.take(), lines({"rangeChanged 0 15000", "zoomChanged 15000"}));
    f.view.setMinimumZoomFactor(Zoom::FiveMinutes);
    f.view.setDuration(-20);
    QCOMPARE(f.view.duration(), 300'000);
}

void TestViewWindow::durationBelowTheMinimumIsAnnouncedEachTime()
{
    WindowFixture f;
    f.showHour();
    f.view.setDuration(1000);
    f.take();
    // What is asked for is compared, not what would be stored.
    f.view.setDuration(1000);
    QCOMPARE(f.take(), lines({"rangeChanged 0 15000"}));
    f.view.setDuration(15'000);
    QVERIFY(f.take().isEmpty());
}

void TestViewWindow::durationSetsTheUpperBoundOfTheZoom()
{
    WindowFixture f;
    f.showHour();
    f.view.setDuration(3'599'999);
    QCOMPARE(int(f.view.upperZoomFactor()), 1'800'000);
    f.view.setDuration(100'000'000);
    QCOMPARE(int(f.view.upperZoomFactor()), 86'400'000);
    f.view.setMaximumZoomFactor(Zoom::FourHours);
    f.view.setDuration(50'000'000);
    QCOMPARE(int(f.view.upperZoomFactor()), 14'400'000);
}

void TestViewWindow::shorterDurationNarrowsTheZoom()
{
    WindowFixture f;
    f.showHour();
    f.view.setCurrentTime(600'000);
    f.take();
    f.view.setDuration(1'000'000);
    // 15 minutes are what fits; 600000 + 900000 would pass the end.
    QCOMPARE(f.state(), QStringLiteral("0+1000000, 100000+900000"));
    QCOMPARE(f.take(), lines({"rangeChanged 0 1000000", "zoomChanged 900000", "currentTimeChanged 100000"}));
}

void TestViewWindow::windowThatOnlyPassesTheNewEndStays()
{
    WindowFixture f;
    f.showHour();
    f.view.setCurrentTime(1'800'000);
    f.take();
    f.view.setDuration(2'000'000);
    QCOMPARE(f.state(), QStringLiteral("0+2000000, 1800000+1800000"));
    QCOMPARE(f.take(), lines({"rangeChanged 0 2000000"}));
}

void TestViewWindow::windowBehindTheNewEndMoves()
{
    WindowFixture f;
    f.showHour();
    f.view.setZoomFactor(Zoom::FiveMinutes);
    f.view.setCurrentTime(3'000'000);
    f.take();
    f.view.setDuration(2'000'000);
    QCOMPARE(f.state(), QStringLiteral("0+2000000, 1700000+300000"));
    QCOMPARE(f.take(), lines({"rangeChanged 0 2000000", "currentTimeChanged 1700000"}));
}

void TestViewWindow::endTimeSetsTheDuration()
{
    WindowFixture f;
    f.view.setRange(1'000'000, 4'600'000);
    f.take();
    f.view.setEndTime(8'200'000);
    QCOMPARE(f.view.duration(), 7'200'000);
    QCOMPARE(f.view.endTime(), qint64(8'200'000));
    QCOMPARE(f.take(), lines({"rangeChanged 1000000 8200000"}));
    f.view.setEndTime(8'200'000);
    QVERIFY(f.take().isEmpty());
}

void TestViewWindow::endTimeIsAtLeastTheMinimumZoomAfterTheStart()
{
    WindowFixture f;
    f.view.setRange(1'000'000, 4'600'000);
    f.take();
    f.view.setEndTime(500);
    QCOMPARE(f.view.startTime(), qint64(1'000'000));
    QCOMPARE(f.view.endTime(), qint64(1'015'000));
    QCOMPARE(f.take(), lines({"rangeChanged 1000000 1015000", "zoomChanged 15000"}));
    f.view.setEndTime(1'014'999);
    QVERIFY(f.take().isEmpty());
}

void TestViewWindow::rangeSetsStartAndDurationAtOnce()
{
    WindowFixture f;
    f.view.setRange(7'000'000, 14'200'000);
    QCOMPARE(f.state(), QStringLiteral("7000000+7200000, 7000000+1800000"));
    QCOMPARE(int(f.view.upperZoomFactor()), 7'200'000);
    QCOMPARE(f.take(), lines({"rangeChanged 7000000 14200000"}));
    // A start before the epoch is taken here.
    f.view.setRange(-7'000'000, 200'000);
    QCOMPARE(f.view.startTime(), qint64(-7'000'000));
}

void TestViewWindow::rangeBoundsMayBeSwapped()
{
    WindowFixture f;
    f.view.setRange(200'000, 100'000);
    QCOMPARE(f.view.startTime(), qint64(100'000));
    QCOMPARE(f.view.duration(), 100'000);
    QCOMPARE(f.take(), lines({"rangeChanged 100000 200000"}));
}

void TestViewWindow::sameRangeIsNotAnnounced()
{
    WindowFixture f;
    f.view.setRange(100'000, 200'000);
    f.take();
    f.view.setRange(100'000, 200'000);
    QVERIFY(f.take().isEmpty());
    // Swapped or too short it is not seen to be the same.
    f.view.setRange(200'000, 100'000);
    QCOMPARE(f.take(), lines({"rangeChanged 100000 200000"}));
}

void TestViewWindow::shortRangeIsAsLongAsTheMinimumZoom()
{
    WindowFixture f;
    f.view.setRange(100'000, 100'000);
    QCOMPARE(f.view.duration(), 15'000);
    QCOMPARE(int(f.view.upperZoomFactor()), 15'000);
    QCOMPARE(f.take(), lines({"rangeChanged 100000 115000"}));
}

void TestViewWindow::rangeMovesTheWindowSilently()
{
    WindowFixture f;
    f.showHour();
    f.view.setRange(5'000'000, 8'600'000);
    QCOMPARE(f.view.currentTime(), qint64(5'000'000));
    QCOMPARE(f.take(), lines({"rangeChanged 5000000 8600000"}));

    f.view.setCurrentTime(6'800'000);
    f.take();
    f.view.setRange(4'000'000, 7'600'000);
    QCOMPARE(f.view.currentTime(), qint64(5'800'000));
    QCOMPARE(f.take(), lines({"rangeChanged 4000000 7600000"}));
}

void TestViewWindow::rangeLeavesTheZoomAlone()
{
    WindowFixture f;
    f.showHour();
    f.view.setRange(0, 60'000);
    QCOMPARE(f.state(), QStringLiteral("0+60000, 0+1800000"));
    QCOMPARE(int(f.view.upperZoomFactor()), 60'000);
    QCOMPARE(f.take(), lines({"rangeChanged 0 60000"}));
}

void TestViewWindow::randomSettersFollowThePlainForm_data()
{
    QTest::addColumn<quint32>("seed");
    for (quint32 seed = 1; seed <= 8; ++seed)
        QTest::newRow(QByteArray::number(seed).constData()) << seed;
}

void TestViewWindow::randomSettersFollowThePlainForm()
{
    QFETCH(const quint32, seed);

    QRandomGenerator random(seed);
    WindowFixture f;
    Reference::ViewWindow plain;
    QByteArrayList history;
    for (int i = 0; i < 500; ++i) {
        const Step step = randomStep(&random);
        history << step.text();
        apply(f.view, step);
        apply(plain, step);
        const QByteArray last = history.mid(history.size() - 5).join("; ");
        QVERIFY2(f.take() == std::exchange(plain.emitted, {}), last.constData());
        QVERIFY2(isSame(f.view, plain), last.constData());
    }
}

void TestViewWindow::eachChangeRepaintsTheRows()
{
    ViewFixture f;
    PaintCounter counter(f.view.viewport());
    f.view.setCurrentTime(ViewFixture::at(60));
    QVERIFY(counter.takeIsPainted());
    f.view.setZoomFactor(Zoom::FiveMinutes);
    QVERIFY(counter.takeIsPainted());
    f.view.setDuration(7'200'000);
    QVERIFY(counter.takeIsPainted());
    f.view.setRange(ViewFixture::at(30), ViewFixture::at(7000));
    QVERIFY(counter.takeIsPainted());

    f.view.setCurrentTime(f.view.currentTime());
    f.view.setZoomFactor(f.view.zoomFactor());
    f.view.setDuration(f.view.duration());
    f.view.setRange(f.view.startTime(), f.view.endTime());
    QVERIFY(!counter.takeIsPainted());
}

QTEST_MAIN(TestViewWindow)
#include "tst_view_window.moc"
