#include "probe_resize_handler.h"
#include "support/input.h"

#include <QRegularExpression>
#include <QTest>

#include <memory>

class TestResizeHandler : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void isActiveNeedsTrackItemAndEdge();

    void everyPixelOfAnItemIsGripOrInside();
    void itemsOfFourteenPixelsHaveNoGrips();
    void itemsOfFifteenPixelsHaveGrips();
    void gripRemembersTrackAndItemAndSetsNoCursor();
    void pressInsideAnItemOnlyLetsTheEdgeGo();
    void pressWithAnotherButtonTakesNoEdge();
    void pressInAReadOnlyModelTakesNoEdge();
    void pressOnAFixedItemTakesNoEdge();
    void pressOutsideTheTimeCellsTakesNoEdge();
    void pressOnEmptySpaceIsLoggedAtError();

    void endFollowsTheMouse();
    void startFollowsTheMouseWhileTheEndStays();
    void everyWriteRepaintsTheView();
    void unchangedTimeWritesNothing_data();
    void unchangedTimeWritesNothing();
    void refusedSizeIsSilentAndTheNextMoveTriesAgain_data();
    void refusedSizeIsSilentAndTheNextMoveTriesAgain();
    void moveOverAnotherRowPauses();
    void moveOutsideTheTimeCellsPauses();
    void moveInAReadOnlyModelDoesNothing();
    void moveOfAFixedItemDoesNothing();
    void moveWithoutAnEdgeDoesNothing();
    void snapSettingChoosesTheSlot();
    void resizeThroughTheView();

    void failureEndsTheResize_data();
    void failureEndsTheResize();
    void failureSignalsOnceWhenTheReleaseIsReplaced();
    void failureOfTheSecondWriteShowsTheFirst();
    void failureShowsWhatItLeft();
    void removedItemEndsTheResize();
    void removedTrackEndsTheResize();

    void releaseEndsTheResize();
    void releaseSignalsWithoutAResizeToo();
    void otherReleasesAreIgnored();

private:
    ResizeFixture& fixture() { return *m_fixture; }
    void press(const QPoint& pos, Qt::MouseButton button = Qt::LeftButton)
    {
        QMouseEvent event = pressAt(pos, button);
        fixture().handler.mousePressEvent(&event);
    }
    void move(const QPoint& pos)
    {
        QMouseEvent event = moveTo(pos);
        fixture().handler.mouseMoveEvent(&event);
    }

    std::unique_ptr<ResizeFixture> m_fixture;
};

void TestResizeHandler::init()
{
    QTest::failOnWarning(QRegularExpression(".?"));
    m_fixture = std::make_unique<ResizeFixture>();
}

void TestResizeHandler::cleanup()
{
    m_fixture.reset();
}

void TestResizeHandler::isActiveNeedsTrackItemAndEdge()
{
    ProbeResizeHandler& handler = fixture().handler;
    QVERIFY(handler.isIdle());
    QVERIFY(!handler.isActive());
    handler.hold(TimelineViewResizeHandler::eStart, 1, 0);
    QVERIFY(handler.isActive());
    handler.hold(TimelineViewResizeHandler::eStart, -1, 0);
    QVERIFY(!handler.isActive());
    handler.hold(TimelineViewResizeHandler::eEnd, 1, -1);
    QVERIFY(!handler.isActive());
    handler.hold(TimelineViewResizeHandler::eNone, 1, 0);
    QVERIFY(!handler.isActive());
}

void TestResizeHandler::everyPixelOfAnItemIsGripOrInside()
{
    ResizeFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 40);
    const int x1 = f.view.toPixel(f.at(100));
    const int x2 = f.view.toPixel(f.at(140));
    QCOMPARE(x2 - x1, 40);
    const int y = f.pos(0, f.trackA).y();
    for (int x = x1 - 3; x <= x2 + 3; ++x) {
        f.handler.hold(TimelineViewResizeHandler::eNone, -1, -1);
        press({x, y});
        const bool isStart = x >= x1 && x <= x1 + 5;
        const bool isEnd = x >= x2 - 5 && x <= x2;
        QCOMPARE(f.handler.m_resizePos, isStart ? TimelineViewResizeHandler::eStart
                                        : isEnd ? TimelineViewResizeHandler::eEnd
                                                : TimelineViewResizeHandler::eNone);
        QCOMPARE(f.handler.isActive(), isStart || isEnd);
    }
}

void TestResizeHandler::itemsOfFourteenPixelsHaveNoGrips()
{
    ResizeFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 14);
    for (int second = 100; second <= 114; ++second) {
        f.handler.hold(TimelineViewResizeHandler::eEnd, 7, 8);
        press(f.pos(second, f.trackA));
        QCOMPARE(f.handler.m_resizePos, TimelineViewResizeHandler::eNone);
        QCOMPARE(f.handler.m_currentTrackId, 7);
        QCOMPARE(f.handler.m_currentItemId, 8);
    }
}

void TestResizeHandler::itemsOfFifteenPixelsHaveGrips()
{
    ResizeFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 15);
    QCOMPARE(f.view.toPixel(f.at(115)) - f.view.toPixel(f.at(100)), 15);
    QString grips;
    for (int second = 100; second <= 115; ++second) {
        press(f.pos(second, f.trackA));
        grips.append(QString::number(f.handler.m_resizePos));
    }
    QCOMPARE(grips, QString("1111110000222222"));
}

void TestResizeHandler::gripRemembersTrackAndItemAndSetsNoCursor()
{
    ResizeFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 40);
    const int item = f.addSeconds(f.trackB, 100, 40);
    press(f.pos(101, f.trackB));
    QCOMPARE(f.handler.m_currentTrackId, f.trackB);
    QCOMPARE(f.handler.m_currentItemId, item);
    QCOMPARE(f.handler.m_resizePos, TimelineViewResizeHandler::eStart);
    QCOMPARE(f.cursor(), Qt::ArrowCursor);
    QVERIFY(f.model.journal.isEmpty());
}

void TestResizeHandler::pressInsideAnItemOnlyLetsTheEdgeGo()
{
    ResizeFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 40);
    f.handler.hold(TimelineViewResizeHandler::eEnd, 7, 8);
    press(f.pos(120, f.trackA));
    QCOMPARE(f.handler.m_resizePos, TimelineViewResizeHandler::eNone);
    QCOMPARE(f.handler.m_currentTrackId, 7);
    QCOMPARE(f.handler.m_currentItemId, 8);
}

void TestResizeHandler::pressWithAnotherButtonTakesNoEdge()
{
    ResizeFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 40);
    press(f.pos(101, f.trackA), Qt::RightButton);
    press(f.pos(101, f.trackA), Qt::MiddleButton);
    QVERIFY(f.handler.isIdle());
}

void TestResizeHandler::pressInAReadOnlyModelTakesNoEdge()
{
    ResizeFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 40);
    f.model.setEditable(false);
    press(f.pos(101, f.trackA));
    QVERIFY(f.handler.isIdle());
}

void TestResizeHandler::pressOnAFixedItemTakesNoEdge()
{
    ResizeFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 40, Qt::red, false);
    press(f.pos(101, f.trackA));
    QVERIFY(f.handler.isIdle());
    QVERIFY(f.logLines().isEmpty());
}

void TestResizeHandler::pressOutsideTheTimeCellsTakesNoEdge()
{
    ResizeFixture& f = fixture();
    f.addSeconds(f.trackA, 0, 40);
    press(f.onName(f.trackA));
    press(f.belowRows(1));
    QVERIFY(f.handler.isIdle());
    QVERIFY(f.logLines().isEmpty());
}

void TestResizeHandler::pressOnEmptySpaceIsLoggedAtError()
{
    ResizeFixture& f = fixture();
    f.handler.hold(TimelineViewResizeHandler::eEnd, 7, 8);
    QVERIFY(keepsExceptions([&] { press(f.pos(101, f.trackA)); }));
    QCOMPARE(f.logLines(),
             QStringList{"Error: " + resizeSignature("void ::mousePressEvent(QMouseEvent*)") + " lookup failed!"});
    QCOMPARE(f.handler.m_resizePos, TimelineViewResizeHandler::eEnd);
    QCOMPARE(f.handler.m_currentItemId, 8);
}

void TestResizeHandler::endFollowsTheMouse()
{
    ResizeFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 40);
    press(f.pos(140, f.trackA));
    move(f.pos(160, f.trackA));
    move(f.pos(120, f.trackA));
    QCOMPARE(f.model.journal, (QStringList{"track.duration(0, 60000)", "track.duration(0, 20000)"}));
    QCOMPARE(f.model.asked, (QStringList{"canResize(0, 100000, 60000)", "canResize(0, 100000, 20000)"}));
    QCOMPARE(f.model.times(f.trackA), QStringList{QString("%1+20000").arg(f.at(100))});
    QVERIFY(f.handler.isActive());
}

void TestResizeHandler::startFollowsTheMouseWhileTheEndStays()
{
    ResizeFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 40);
    press(f.pos(100, f.trackA));
    move(f.pos(90, f.trackA));
    move(f.pos(110, f.trackA));
    QCOMPARE(f.model.journal, (QStringList{"track.duration(0, 50000)", "track.start(0, 90000)",
                                           "track.duration(0, 30000)", "track.start(0, 110000)"}));
    QCOMPARE(f.model.asked, (QStringList{"canResize(0, 90000, 50000)", "canResize(0, 110000, 30000)"}));
    QCOMPARE(f.model.times(f.trackA), QStringList{QString("%1+30000").arg(f.at(110))});
}

void TestResizeHandler::everyWriteRepaintsTheView()
{
    ResizeFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 40);
    press(f.pos(140, f.trackA));
    QVERIFY(f.repaints([&] { move(f.pos(160, f.trackA)); }));
    QVERIFY(!f.repaints([&] { move(f.pos(160, f.trackA)); }));
    press(f.pos(100, f.trackA));
    QVERIFY(f.repaints([&] { move(f.pos(90, f.trackA)); }));
}

void TestResizeHandler::unchangedTimeWritesNothing_data()
{
    QTest::addColumn<int>("second");
    QTest::newRow("start") << 100;
    QTest::newRow("end") << 140;
}

void TestResizeHandler::unchangedTimeWritesNothing()
{
    QFETCH(int, second);
    ResizeFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 40);
    press(f.pos(second, f.trackA));
    QVERIFY(f.handler.isActive());
    move(f.pos(second, f.trackA));
    QVERIFY(f.model.journal.isEmpty());
    QVERIFY(f.model.asked.isEmpty());
}

void TestResizeHandler::refusedSizeIsSilentAndTheNextMoveTriesAgain_data()
{
    unchangedTimeWritesNothing_data();
}

void TestResizeHandler::refusedSizeIsSilentAndTheNextMoveTriesAgain()
{
    QFETCH(int, second);
    ResizeFixture& f = fixture();
    f.addSeconds(f.trackA, 20, 10);
    f.addSeconds(f.trackA, 100, 40);
    f.addSeconds(f.trackA, 300, 40);
    press(f.pos(second, f.trackA));
    f.model.canResize = [](const VeskTimeline::Item&, qint64, int duration) { return duration < 50'000; };
    move(f.pos(second == 100 ? 60 : 180, f.trackA));
    QVERIFY(f.model.journal.isEmpty());
    QVERIFY(f.handler.isActive());
    QVERIFY(f.logLines().isEmpty());
    move(f.pos(second == 100 ? 95 : 145, f.trackA));
    QCOMPARE(f.model.item(1)->duration(), 45'000);
}

void TestResizeHandler::moveOverAnotherRowPauses()
{
    ResizeFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 40);
    press(f.pos(140, f.trackA));
    move(f.pos(160, f.trackB));
    QVERIFY(f.model.journal.isEmpty());
    QVERIFY(f.model.asked.isEmpty());
    QVERIFY(f.handler.isActive());
    move(f.pos(160, f.trackA));
    QCOMPARE(f.model.item(0)->duration(), 60'000);
}

void TestResizeHandler::moveOutsideTheTimeCellsPauses()
{
    ResizeFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 40);
    press(f.pos(100, f.trackA));
    move(f.onName(f.trackA));
    move(f.belowRows(50));
    QVERIFY(f.model.journal.isEmpty());
    QVERIFY(f.handler.isActive());
    QVERIFY(f.logLines().isEmpty());
}

void TestResizeHandler::moveInAReadOnlyModelDoesNothing()
{
    ResizeFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 40);
    press(f.pos(140, f.trackA));
    f.model.setEditable(false);
    move(f.pos(160, f.trackA));
    QVERIFY(f.model.journal.isEmpty());
    QVERIFY(f.handler.isActive());
}

void TestResizeHandler::moveOfAFixedItemDoesNothing()
{
    ResizeFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 40);
    press(f.pos(140, f.trackA));
    f.model.item(0)->setEditable(false);
    move(f.pos(160, f.trackA));
    QVERIFY(f.model.journal.isEmpty());
    QVERIFY(f.handler.isActive());
}

void TestResizeHandler::moveWithoutAnEdgeDoesNothing()
{
    ResizeFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 40);
    press(f.pos(120, f.trackA));
    move(f.pos(160, f.trackA));
    QVERIFY(f.model.journal.isEmpty());
    QCOMPARE(f.handler.releases, 0);
}

void TestResizeHandler::snapSettingChoosesTheSlot()
{
    ResizeFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 40);
    press(f.pos(140, f.trackA));
    f.handler.fixedLocalTime = f.at(111);
    f.handler.fixedGlobalTime = f.at(122);
    move(f.pos(160, f.trackA));
    QCOMPARE(f.model.item(0)->duration(), 11'000);
    f.model.setSnapEnabled(true);
    move(f.pos(160, f.trackA));
    QCOMPARE(f.model.item(0)->duration(), 22'000);
}

void TestResizeHandler::resizeThroughTheView()
{
    ResizeFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 40);
    Input::move(&f.view, f.pos(138, f.trackA));
    QCOMPARE(f.cursor(), Qt::SizeHorCursor);
    Input::drag(&f.view, f.pos(138, f.trackA), f.pos(170, f.trackA));
    QCOMPARE(f.model.times(f.trackA), QStringList{QString("%1+70000").arg(f.at(100))});
    QCOMPARE(f.model.journal,
             (QStringList{"track.duration(0, 54000)", "track.duration(0, 70000)", "currentItemTimeChanged"}));
    QVERIFY(f.handler.isIdle());
    QCOMPARE(f.cursor(), Qt::ArrowCursor);
}

void TestResizeHandler::failureEndsTheResize_data()
{
    QTest::addColumn<QString>("call");
    QTest::addColumn<int>("second");
    QTest::addColumn<Failure>("failure");
    for (const QString call : {"canResize", "track.duration", "track.start"}) {
        QTest::newRow(qPrintable(call + " QString")) << call << 100 << Failure::Text;
        QTest::newRow(qPrintable(call + " C string")) << call << 100 << Failure::CString;
        QTest::newRow(qPrintable(call + " standard exception")) << call << 100 << Failure::Standard;
    }
    QTest::newRow("at the end") << "track.duration" << 140 << Failure::Standard;
}

void TestResizeHandler::failureEndsTheResize()
{
    QFETCH(QString, call);
    QFETCH(int, second);
    QFETCH(Failure, failure);
    ResizeFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 40);
    press(f.pos(second, f.trackA));
    f.view.setCursor(Qt::SizeHorCursor);
    f.model.failAt(call, failure);
    QVERIFY(keepsExceptions([&] { move(f.pos(second - 10, f.trackA)); }));
    QVERIFY(f.handler.isIdle());
    QCOMPARE(f.handler.releases, 1);
    QCOMPARE(f.model.journal.count("currentItemTimeChanged"), 1);
    QCOMPARE(f.model.journal.last(), QString("currentItemTimeChanged"));
    QCOMPARE(f.cursor(), Qt::ArrowCursor);

    f.model.failNoMore();
    f.model.forgetCalls();
    move(f.pos(second - 20, f.trackA));
    QVERIFY(f.model.journal.isEmpty());
}

void TestResizeHandler::failureSignalsOnceWhenTheReleaseIsReplaced()
{
    ResizeFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 40);
    press(f.pos(140, f.trackA));
    f.handler.endsWithAnyEvent = true;
    f.model.failAt("canResize", Failure::Text);
    move(f.pos(160, f.trackA));
    QVERIFY(f.handler.isIdle());
    QCOMPARE(f.model.journal, QStringList{"currentItemTimeChanged"});
}

void TestResizeHandler::failureShowsWhatItLeft()
{
    ResizeFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 40);
    press(f.pos(140, f.trackA));
    f.model.canResize = [&](const VeskTimeline::Item& item, qint64, int duration) -> bool {
        f.model.item(item.id())->_setDuration(duration);
        throwVeto(Failure::Text);
    };
    QVERIFY(f.repaints([&] { move(f.pos(160, f.trackA)); }));
    QVERIFY(f.handler.isIdle());
}

void TestResizeHandler::failureOfTheSecondWriteShowsTheFirst()
{
    ResizeFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 40);
    press(f.pos(100, f.trackA));
    f.model.failAt("track.start", Failure::Text);
    QVERIFY(f.repaints([&] { move(f.pos(90, f.trackA)); }));
    QCOMPARE(f.model.item(0)->duration(), 50'000);
}

void TestResizeHandler::removedItemEndsTheResize()
{
    ResizeFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 40);
    press(f.pos(140, f.trackA));
    f.model.TestModel::removeItem(0);
    QVERIFY(keepsExceptions([&] { move(f.pos(160, f.trackA)); }));
    QVERIFY(f.handler.isIdle());
    QCOMPARE(f.model.journal, QStringList{"currentItemTimeChanged"});
}

void TestResizeHandler::removedTrackEndsTheResize()
{
    ResizeFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 40);
    press(f.pos(140, f.trackA));
    const QPoint pos = f.pos(160, f.trackA);
    f.model.removeTrackRow(f.trackA);
    // Track B's row has taken the place.
    QVERIFY(keepsExceptions([&] { move(pos); }));
    QVERIFY(f.handler.isIdle());
    QCOMPARE(f.model.journal, QStringList{"currentItemTimeChanged"});
}

void TestResizeHandler::releaseEndsTheResize()
{
    ResizeFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 40);
    press(f.pos(140, f.trackA));
    f.view.setCursor(Qt::SizeHorCursor);
    bool wasActive = false;
    QObject::connect(&f.view, &VeskTimeline::TimelineView::currentItemTimeChanged, &f.view,
                     [&] { wasActive = f.handler.isActive() && f.cursor() == Qt::SizeHorCursor; });
    QMouseEvent release = releaseAt(f.pos(140, f.trackA));
    f.handler.mouseReleaseEvent(&release);
    QVERIFY(f.handler.isIdle());
    QCOMPARE(f.cursor(), Qt::ArrowCursor);
    QCOMPARE(f.model.journal, QStringList{"currentItemTimeChanged"});
    // The signal comes before the reset.
    QVERIFY(wasActive);
}

void TestResizeHandler::releaseSignalsWithoutAResizeToo()
{
    ResizeFixture& f = fixture();
    f.view.setCursor(Qt::CrossCursor);
    QMouseEvent release = releaseAt(f.belowRows(10));
    f.handler.mouseReleaseEvent(&release);
    QCOMPARE(f.model.journal, QStringList{"currentItemTimeChanged"});
    QCOMPARE(f.cursor(), Qt::ArrowCursor);
}

void TestResizeHandler::otherReleasesAreIgnored()
{
    ResizeFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 40);
    press(f.pos(140, f.trackA));
    QMouseEvent right = releaseAt(f.pos(140, f.trackA), Qt::RightButton);
    f.handler.mouseReleaseEvent(&right);
    f.model.setEditable(false);
    QMouseEvent left = releaseAt(f.pos(140, f.trackA));
    f.handler.mouseReleaseEvent(&left);
    QVERIFY(f.handler.isActive());
    QVERIFY(f.model.journal.isEmpty());
}

QTEST_MAIN(TestResizeHandler)
#include "tst_resize_handler.moc"
