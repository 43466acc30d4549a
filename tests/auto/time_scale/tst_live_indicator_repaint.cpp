#include "auto/time_scale/paint_counter.h"
#include "auto/view/picture.h"
#include "support/view_fixture.h"

#include <QRandomGenerator>
#include <QRegularExpression>
#include <QScreen>
#include <QScrollBar>
#include <QTest>

#include <functional>

using namespace VeskTimeline;

namespace {

/// A window with some of everything on it, whose contents can be looked at as a user sees them.
struct ScreenFixture : ViewFixture
{
    TimelineHeaderView* header = view.header();
    QRandomGenerator random{4711};

    ScreenFixture()
    {
        for (int i = 0; i < 30; ++i) {
            const int track = model.newTrack(QStringLiteral("Track %1").arg(i), i % 3 == 0 ? trackA : 0);
            for (int item = 0; item < 20; ++item)
                addSeconds(track, random.bounded(3600), random.bounded(300),
                           QColor::fromHsv(random.bounded(360), 99, 220));
        }
        view.expandAll();
        const QVector<int> ids = model.itemIds();
        view.selectItems(ids.mid(0, ids.size() / 4), true);
        header->setLiveIndicatorVisible(true);
        settle();
    }

    static void settle()
    {
        for (int i = 0; i < 4; ++i) {
            QCoreApplication::processEvents();
            QCoreApplication::sendPostedEvents();
        }
    }

    /// What has been painted on the screen so far.
    QImage shown() const { return view.screen()->grabWindow(view.winId()).toImage(); }

    void repaintAll()
    {
        for (QWidget* const widget : {view.viewport(), header->viewport()})
            widget->update();
        settle();
    }

    qint64 someTime()
    {
        return random.bounded(20) == 0 ? -1 : view.currentTime() - 60'000 + random.bounded(view.zoomFactor() + 120'000);
    }
};

/// What may happen between two steps of the live indicator.
QList<std::function<void(ScreenFixture&)>> changes()
{
    return {
        [](ScreenFixture& f) { f.header->setHoverPosition(f.random.bounded(-1, 2200)); },
        [](ScreenFixture& f) { f.header->setIndicatorTime(f.someTime()); },
        [](ScreenFixture& f) { f.header->setLimitsVisible(!f.header->isLimitsVisible()); },
        [](ScreenFixture& f) { f.header->setLiveIndicatorScalingFactor(0.1 + f.random.bounded(1.5)); },
        [](ScreenFixture& f) { f.header->setDateTimeFormat(DateTime::Format(f.random.bounded(6))); },
        [](ScreenFixture& f) { f.header->setLiveIndicatorColor(QColor::fromRgb(f.random.generate())); },
        [](ScreenFixture& f) { f.header->resizeSection(0, f.random.bounded(200, 500)); },
        [](ScreenFixture& f) {
            f.header->font().setPointSize(f.random.bounded(6, 16)), f.header->viewport()->update();
        },
        [](ScreenFixture& f) { f.view.setZoomFactor(f.random.bounded(2) ? Zoom::FiveMinutes : Zoom::ThirtyMinutes); },
        [](ScreenFixture& f) { f.view.setCurrentTime(ViewFixture::at(f.random.bounded(1800))); },
        [](ScreenFixture& f) { f.view.verticalScrollBar()->setValue(f.random.bounded(20)); },
        [](ScreenFixture& f) { f.view.setExpanded(f.view.indexOfTrackRow(f.trackA, 0), f.random.bounded(2)); },
        [](ScreenFixture& f) { f.view.clearSelectedItems(); },
    };
}

} // namespace

/// Each step of the live indicator repaints no more than it changes, and no less.
class TestLiveIndicatorRepaint : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".?"))); }

    void whatIsOnTheScreenEqualsAFullRepaint();
    void whatIsOnTheScreenChangesWithTheIndicator();
    void aStepRepaintsAStripOfTheRows();
    void aStepWithinAPixelLeavesTheRowsAlone();
    void aStepOutOfTheWindowTakesTheLineAway();
    void aStepRepaintsAStripOfTheRuler();
    void aStepOutsideTheWindowRepaintsNothing();
    void aRulerOfAnotherKindRepaintsAll();
};

void TestLiveIndicatorRepaint::whatIsOnTheScreenEqualsAFullRepaint()
{
    ScreenFixture f;
    const auto all = changes();
    for (int round = 0; round < 150; ++round) {
        // Most steps are small, as those of the timer.
        const int steps = f.random.bounded(1, 5);
        for (int step = 0; step < steps; ++step) {
            const bool isSmall = f.random.bounded(4) != 0;
            f.header->setLiveIndicatorTime(isSmall ? f.header->liveIndicatorTime() + f.random.bounded(3'000)
                                                   : f.someTime());
            if (f.random.bounded(2) == 0)
                ScreenFixture::settle();
        }
        if (f.random.bounded(3) == 0)
            all.at(f.random.bounded(all.size()))(f);
        if (f.random.bounded(2) == 0)
            f.header->setLiveIndicatorTime(f.someTime());
        ScreenFixture::settle();
        const QImage actual = f.shown();
        f.repaintAll();
        COMPARE_PICTURES(actual, f.shown());
    }
}

// Or else the pictures compared are not those of the screen.
void TestLiveIndicatorRepaint::whatIsOnTheScreenChangesWithTheIndicator()
{
    ScreenFixture f;
    const QImage before = f.shown();
    QVERIFY(!before.isNull());
    f.header->setLiveIndicatorTime(f.at(500));
    QCOMPARE(Picture::difference(f.shown(), before), QRect());
    ScreenFixture::settle();
    const QRect changed = Picture::difference(f.shown(), before);
    const qreal scale = f.view.devicePixelRatioF();
    QVERIFY(changed.contains((QPointF(f.view.viewport()->mapTo(&f.view, QPoint(700, 100))) * scale).toPoint()));
    QVERIFY(changed.width() < 250 * scale);
}

void TestLiveIndicatorRepaint::aStepRepaintsAStripOfTheRows()
{
    ScreenFixture f;
    f.header->setLiveIndicatorTime(f.at(500));
    PaintCounter counter(f.view.viewport());
    f.header->setLiveIndicatorTime(f.at(502));
    QCOMPARE(counter.takeRegion(), QRegion(698, 0, 7, f.view.viewport()->height()));
    f.header->setLiveIndicatorTime(f.at(1000));
    const int height = f.view.viewport()->height();
    QCOMPARE(counter.takeRegion(), QRegion(700, 0, 5, height) + QRegion(1198, 0, 5, height));
}

void TestLiveIndicatorRepaint::aStepWithinAPixelLeavesTheRowsAlone()
{
    ScreenFixture f;
    f.header->setLiveIndicatorTime(f.at(500));
    PaintCounter counter(f.view.viewport());
    f.header->setLiveIndicatorTime(f.at(500) + 20);
    QVERIFY(!counter.takeIsPainted());
}

void TestLiveIndicatorRepaint::aStepOutOfTheWindowTakesTheLineAway()
{
    ScreenFixture f;
    f.header->setLiveIndicatorTime(f.at(500));
    PaintCounter counter(f.view.viewport());
    for (const qint64 time : {qint64(-1), f.view.currentTime() - 1, f.view.currentTime() + f.view.zoomFactor() + 1}) {
        f.header->setLiveIndicatorTime(time);
        QCOMPARE(counter.takeRegion(), QRegion(698, 0, 5, f.view.viewport()->height()));
        f.header->setLiveIndicatorTime(f.at(500));
        QCOMPARE(counter.takeRegion(), QRegion(698, 0, 5, f.view.viewport()->height()));
    }
}

void TestLiveIndicatorRepaint::aStepRepaintsAStripOfTheRuler()
{
    ScreenFixture f;
    f.header->setLiveIndicatorTime(f.at(500));
    PaintCounter counter(f.header->viewport());
    f.header->setLiveIndicatorTime(f.at(502));
    const QRect painted = counter.takeRegion().boundingRect();
    QVERIFY(painted.contains(QRect(QPoint(680, 0), QPoint(720, f.header->height() - 1))));
    QVERIFY(painted.width() < 250);

    // Also where only the text changes, and never the track label's column.
    f.header->setLiveIndicatorTime(f.at(5));
    counter.takeRegion();
    f.header->setLiveIndicatorTime(f.at(5) + 20);
    const bool isWholeScale = f.view.devicePixelRatioF() == int(f.view.devicePixelRatioF());
    QCOMPARE(counter.takeRegion().boundingRect().left(), ViewFixture::labelWidth - (isWholeScale ? 0 : 1));
}

void TestLiveIndicatorRepaint::aStepOutsideTheWindowRepaintsNothing()
{
    ScreenFixture f;
    f.header->setLiveIndicatorTime(f.at(-600));
    PaintCounter rows(f.view.viewport());
    PaintCounter ruler(f.header->viewport());
    f.header->setLiveIndicatorTime(f.at(-599));
    QVERIFY(!rows.takeIsPainted());
    QVERIFY(!ruler.takeIsPainted());
}

void TestLiveIndicatorRepaint::aRulerOfAnotherKindRepaintsAll()
{
    struct OtherRuler : TimelineHeaderView
    {
        using TimelineHeaderView::TimelineHeaderView;
    };
    ScreenFixture f;
    auto* const ruler = new OtherRuler(&f.view);
    f.view.setHeader(ruler);
    ruler->show();
    ruler->setLiveIndicatorVisible(true);
    PaintCounter counter(ruler->viewport());
    ruler->setLiveIndicatorTime(f.at(500));
    QCOMPARE(counter.takeRegion().boundingRect(), ruler->viewport()->rect());
}

QTEST_MAIN(TestLiveIndicatorRepaint)
#include "tst_live_indicator_repaint.moc"
