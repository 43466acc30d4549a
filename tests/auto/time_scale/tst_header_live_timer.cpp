#include "support/view_fixture.h"

#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

using namespace VeskTimeline;

namespace {

QRegularExpression message(const char* function, const QString& text)
{
    return QRegularExpression(
        QStringLiteral("^void VeskTimeline::TimelineHeaderView::%1\\(.*\\)%2$").arg(QLatin1String(function), text));
}

void expectStopMessage()
{
    QTest::ignoreMessage(QtDebugMsg, message("stopLiveTimer", QString()));
}

void expectRestartMessage()
{
    QTest::ignoreMessage(QtWarningMsg,
                         message("startLiveTimer", QStringLiteral(" timer is already active - restarting")));
}

struct TimerFixture : ViewFixture
{
    TimelineHeaderView* header = view.header();
    QTimer* timer = header->findChild<QTimer*>(QString(), Qt::FindDirectChildrenOnly);
    QSignalSpy times{header, &TimelineHeaderView::liveIndicatorTimeChanged};
    QSignalSpy visibilities{header, &TimelineHeaderView::liveIndicatorVisibilityChanged};

    /// One step, without the wait.
    void step() { QVERIFY(QMetaObject::invokeMethod(timer, "timeout", Qt::DirectConnection)); }
};

} // namespace

class TestHeaderLiveTimer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".?"))); }

    void startShowsTheIndicatorAndStepsByTheInterval();
    void theTimerRunsByItself();
    void aNegativeStartIsTheLeftEdge();
    void zeroIsAStartLikeOthers();
    void stepsAreSnapped();
    void intervalNotAboveZeroIsRefused_data();
    void intervalNotAboveZeroIsRefused();
    void aRunningTimerIsRestarted();
    void stopHidesTheIndicatorWithoutATimeSignal();
    void stoppingAnIdleTimerDoesNothing();
    void hidingTheIndicatorLeavesTheTimerRunning();
    void startAfterStopAnnouncesTheSameTimeAgain();
};

void TestHeaderLiveTimer::startShowsTheIndicatorAndStepsByTheInterval()
{
    TimerFixture f;
    QStringList order;
    connect(f.header, &TimelineHeaderView::liveIndicatorTimeChanged, this, [&] { order << QStringLiteral("time"); });
    connect(f.header, &TimelineHeaderView::liveIndicatorVisibilityChanged, this,
            [&] { order << QStringLiteral("visible"); });

    f.header->startLiveTimer(ViewFixture::at(10), 30'000);
    QCOMPARE(f.header->liveIndicatorTime(), ViewFixture::at(10));
    QVERIFY(f.header->isLiveIndicatorVisible());
    QCOMPARE(f.header->liveTimerInterval(), 30'000);
    QCOMPARE(order, QStringList({QStringLiteral("time"), QStringLiteral("visible")}));
    QCOMPARE(f.visibilities.first().first().toBool(), true);
    QVERIFY(f.timer->isActive());
    QVERIFY(!f.timer->isSingleShot());
    QCOMPARE(f.timer->interval(), 30'000);

    f.step();
    QCOMPARE(f.header->liveIndicatorTime(), ViewFixture::at(40));
    f.step();
    QCOMPARE(f.header->liveIndicatorTime(), ViewFixture::at(70));
    QCOMPARE(f.times.count(), 3);
    QCOMPARE(f.times.last().first().toLongLong(), ViewFixture::at(70));
    QCOMPARE(f.visibilities.count(), 1);
    QCOMPARE(f.header->indicatorTime(), qint64(-1));
}

void TestHeaderLiveTimer::theTimerRunsByItself()
{
    TimerFixture f;
    f.header->startLiveTimer(ViewFixture::at(10), 20);
    QTRY_VERIFY(f.times.count() >= 4);
    // Each step adds the interval, however late it comes.
    const QList<QList<QVariant>> steps = f.times;
    for (int i = 0; i < steps.size(); ++i)
        QCOMPARE(steps.at(i).first().toLongLong(), ViewFixture::at(10) + 20 * i);
    expectStopMessage();
    f.header->stopLiveTimer();
}

void TestHeaderLiveTimer::aNegativeStartIsTheLeftEdge()
{
    TimerFixture f;
    f.view.setCurrentTime(ViewFixture::at(123));
    f.header->startLiveTimer(-1, 500);
    QCOMPARE(f.header->liveIndicatorTime(), ViewFixture::at(123));
    f.step();
    QCOMPARE(f.header->liveIndicatorTime(), ViewFixture::at(123) + 500);

    expectRestartMessage();
    f.header->startLiveTimer(-7'000'000, 500);
    QCOMPARE(f.header->liveIndicatorTime(), ViewFixture::at(123));
}

void TestHeaderLiveTimer::zeroIsAStartLikeOthers()
{
    TimerFixture f;
    f.header->startLiveTimer(0, 500);
    QCOMPARE(f.header->liveIndicatorTime(), qint64(0));
}

void TestHeaderLiveTimer::stepsAreSnapped()
{
    TimerFixture f;
    f.model.setSnapEnabled(true);
    f.model.setSnapStep(1000);
    f.header->startLiveTimer(ViewFixture::at(5) + 300, 1500);
    QCOMPARE(f.header->liveIndicatorTime(), ViewFixture::at(5));
    f.step();
    QCOMPARE(f.header->liveIndicatorTime(), ViewFixture::at(6));
    f.step();
    QCOMPARE(f.header->liveIndicatorTime(), ViewFixture::at(7));
}

void TestHeaderLiveTimer::intervalNotAboveZeroIsRefused_data()
{
    QTest::addColumn<int>("interval");
    QTest::addColumn<bool>("isRunning");

    QTest::newRow("zero, idle") << 0 << false;
    QTest::newRow("negative, idle") << -5 << false;
    QTest::newRow("zero, running") << 0 << true;
    QTest::newRow("negative, running") << -1000 << true;
}

void TestHeaderLiveTimer::intervalNotAboveZeroIsRefused()
{
    QFETCH(const int, interval);
    QFETCH(const bool, isRunning);

    TimerFixture f;
    if (isRunning)
        f.header->startLiveTimer(ViewFixture::at(10), 30'000);
    const qint64 before = f.header->liveIndicatorTime();
    f.times.clear();
    f.visibilities.clear();

    QTest::ignoreMessage(QtCriticalMsg,
                         message("startLiveTimer", QStringLiteral(" invalid time interval: %1").arg(interval)));
    f.header->startLiveTimer(ViewFixture::at(99), interval);
    QCOMPARE(f.timer->isActive(), isRunning);
    QCOMPARE(f.header->liveIndicatorTime(), before);
    QCOMPARE(f.header->liveTimerInterval(), isRunning ? 30'000 : 1000);
    QCOMPARE(f.header->isLiveIndicatorVisible(), isRunning);
    QVERIFY(f.times.isEmpty() && f.visibilities.isEmpty());
}

void TestHeaderLiveTimer::aRunningTimerIsRestarted()
{
    TimerFixture f;
    f.header->startLiveTimer(ViewFixture::at(10), 30'000);
    expectRestartMessage();
    f.header->startLiveTimer(ViewFixture::at(500), 2000);
    QVERIFY(f.timer->isActive());
    QCOMPARE(f.timer->interval(), 2000);
    QCOMPARE(f.header->liveTimerInterval(), 2000);
    QCOMPARE(f.header->liveIndicatorTime(), ViewFixture::at(500));
    QCOMPARE(f.times.count(), 2);
    QCOMPARE(f.visibilities.count(), 1);
    f.step();
    QCOMPARE(f.header->liveIndicatorTime(), ViewFixture::at(502));
}

void TestHeaderLiveTimer::stopHidesTheIndicatorWithoutATimeSignal()
{
    TimerFixture f;
    f.header->startLiveTimer(ViewFixture::at(10), 30'000);
    f.times.clear();
    f.visibilities.clear();
    expectStopMessage();
    f.header->stopLiveTimer();
    QVERIFY(!f.timer->isActive());
    QCOMPARE(f.header->liveIndicatorTime(), qint64(-1));
    QVERIFY(!f.header->isLiveIndicatorVisible());
    QVERIFY(f.times.isEmpty());
    QCOMPARE(f.visibilities.count(), 1);
    QCOMPARE(f.visibilities.first().first().toBool(), false);
    QCOMPARE(f.header->liveTimerInterval(), 30'000);
}

void TestHeaderLiveTimer::stoppingAnIdleTimerDoesNothing()
{
    TimerFixture f;
    f.header->setLiveIndicatorTime(ViewFixture::at(10));
    f.header->setLiveIndicatorVisible(true);
    f.times.clear();
    f.visibilities.clear();
    f.header->stopLiveTimer();
    QCOMPARE(f.header->liveIndicatorTime(), ViewFixture::at(10));
    QVERIFY(f.header->isLiveIndicatorVisible());
    QVERIFY(f.times.isEmpty() && f.visibilities.isEmpty());
}

void TestHeaderLiveTimer::hidingTheIndicatorLeavesTheTimerRunning()
{
    TimerFixture f;
    f.header->startLiveTimer(ViewFixture::at(10), 30'000);
    f.header->setLiveIndicatorVisible(false);
    QVERIFY(f.timer->isActive());
    f.step();
    QCOMPARE(f.header->liveIndicatorTime(), ViewFixture::at(40));
    QVERIFY(!f.header->isLiveIndicatorVisible());
}

void TestHeaderLiveTimer::startAfterStopAnnouncesTheSameTimeAgain()
{
    TimerFixture f;
    f.header->startLiveTimer(ViewFixture::at(10), 30'000);
    expectStopMessage();
    f.header->stopLiveTimer();
    f.header->startLiveTimer(ViewFixture::at(10), 30'000);
    QCOMPARE(f.times.count(), 2);
    QCOMPARE(f.visibilities.count(), 3);
    QVERIFY(f.timer->isActive());
}

QTEST_MAIN(TestHeaderLiveTimer)
#include "tst_header_live_timer.moc"
