#include "x11/desktop_view.h"
#include "x11/pointer.h"

#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>

namespace DateTime = VeskTimeline::DateTime;
namespace Zoom = VeskTimeline::Zoom;
using VeskTimeline::TimelineHeaderView;

/// The time ruler under the mouse, and the wheel over ruler and rows, on a real display.
class TestX11Header : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void clickPlacesTheIndicator();
    void dragMovesTheIndicator();
    void indicatorDragGoesOnOverTheRows();
    void dragInTheUpperHalfMovesNothing();
    void lockedIndicatorStays();
    void cursorShowsWhatAPressWouldGrab();
    void borderOfTheNameColumnCanBeDragged();
    void nameColumnTakesHalfTheRulerAtMost();
    void rightClickCyclesTheFormats();
    void hoverMarkerFollowsTheMouseOverTheRuler();
    void wheelOverTheRulerMovesTheWindow();
    void wheelWithControlOverTheRulerZooms();
    void wheelOverTheRowsScrollsThem();
    void wheelOverTheFirstRowIsNotTheRulers();
    void wheelWithControlOverTheRowsZooms();
    void wheelWithControlAndShiftOverTheRowsScrollsThem();

private:
    static void addTracks(DesktopView* desktop);
};

void TestX11Header::init()
{
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".?")));
    Pointer pointer;
    PLAY(pointer.moveAway());
}

// More than the window shows.
void TestX11Header::addTracks(DesktopView* desktop)
{
    for (int i = 0; i < 20; ++i)
        desktop->model.newTrack(QString::number(i));
}

void TestX11Header::clickPlacesTheIndicator()
{
    DesktopView desktop;
    QVERIFY(desktop.show());
    QSignalSpy changed(desktop.header(), &TimelineHeaderView::indicatorTimeChanged);

    Pointer pointer;
    pointer.moveTo(desktop.ruler(), desktop.rulerPos(250)).press();
    pointer.expect("the press alone places nothing", [&] { return changed.isEmpty(); });
    PLAY(pointer.release());
    QTRY_COMPARE(desktop.header()->indicatorTime(), DesktopView::at(250));
    QCOMPARE(changed.size(), 1);
}

void TestX11Header::dragMovesTheIndicator()
{
    DesktopView desktop;
    desktop.header()->setIndicatorVisible(true);
    desktop.header()->setIndicatorTime(DesktopView::at(300));
    QVERIFY(desktop.show());

    Pointer pointer;
    pointer.moveTo(desktop.ruler(), desktop.rulerPos(300)).press();
    pointer.expect("a hand holds it", [&] { return desktop.cursor() == Qt::ClosedHandCursor; });
    pointer.moveTo(desktop.ruler(), desktop.rulerPos(320));
    pointer.expect("it follows", [&] { return desktop.header()->indicatorTime() == DesktopView::at(320); });
    PLAY(pointer.moveTo(desktop.ruler(), desktop.rulerPos(400)).release());
    QTRY_COMPARE(desktop.header()->indicatorTime(), DesktopView::at(400));
    QCOMPARE(desktop.cursor(), Qt::OpenHandCursor);
}

void TestX11Header::indicatorDragGoesOnOverTheRows()
{
    DesktopView desktop;
    const int item = desktop.addSeconds(desktop.trackB, 480, 60);
    desktop.header()->setIndicatorVisible(true);
    desktop.header()->setIndicatorTime(DesktopView::at(300));
    QVERIFY(desktop.show());

    Pointer pointer;
    pointer.moveTo(desktop.ruler(), desktop.rulerPos(300)).press();
    pointer.moveTo(desktop.rows(), desktop.pos(500, desktop.trackB));
    pointer.expect("it follows", [&] { return desktop.header()->indicatorTime() == DesktopView::at(500); });
    PLAY(pointer.release());
    QCOMPARE(desktop.items(), QStringList({"B:480+60"}));
    QVERIFY(!desktop.view.hasSelectedItems());

    // The next click is the rows' again.
    PLAY(pointer.moveTo(desktop.rows(), desktop.pos(520, desktop.trackB)).click());
    QTRY_COMPARE(desktop.view.selectedItemIds(), QList<int>({item}));
    QCOMPARE(desktop.header()->indicatorTime(), DesktopView::at(500));
}

void TestX11Header::dragInTheUpperHalfMovesNothing()
{
    DesktopView desktop;
    desktop.header()->setIndicatorVisible(true);
    desktop.header()->setIndicatorTime(DesktopView::at(300));
    QVERIFY(desktop.show());

    const QPoint up(0, desktop.header()->height() / 2);
    Pointer pointer;
    PLAY(pointer.drag(desktop.ruler(), desktop.rulerPos(300) - up, desktop.rulerPos(400) - up));
    QCOMPARE(desktop.header()->indicatorTime(), DesktopView::at(300));
}

void TestX11Header::lockedIndicatorStays()
{
    DesktopView desktop;
    desktop.header()->setIndicatorVisible(true);
    desktop.header()->setIndicatorTime(DesktopView::at(300));
    desktop.header()->setIndicatorLocked(true);
    QVERIFY(desktop.show());

    Pointer pointer;
    PLAY(pointer.drag(desktop.ruler(), desktop.rulerPos(300), desktop.rulerPos(400)));
    PLAY(pointer.moveTo(desktop.ruler(), desktop.rulerPos(500)).click());
    QCOMPARE(desktop.header()->indicatorTime(), DesktopView::at(300));
}

void TestX11Header::cursorShowsWhatAPressWouldGrab()
{
    DesktopView desktop;
    desktop.header()->setIndicatorVisible(true);
    desktop.header()->setIndicatorTime(DesktopView::at(300));
    QVERIFY(desktop.show());

    const auto cursorAt = [&](int second) {
        Pointer pointer;
        pointer.moveTo(desktop.ruler(), desktop.rulerPos(second)).play();
        return desktop.cursor();
    };
    QCOMPARE(cursorAt(100), Qt::ArrowCursor);
    QCOMPARE(cursorAt(288), Qt::OpenHandCursor);
    QCOMPARE(cursorAt(312), Qt::OpenHandCursor);
    QCOMPARE(cursorAt(313), Qt::ArrowCursor);
    QCOMPARE(cursorAt(-1), Qt::SplitHCursor);
    QCOMPARE(cursorAt(-9), Qt::SplitHCursor);
    QCOMPARE(cursorAt(-10), Qt::ArrowCursor);
}

void TestX11Header::borderOfTheNameColumnCanBeDragged()
{
    DesktopView desktop;
    QVERIFY(desktop.show());

    Pointer pointer;
    const int y = desktop.header()->height() / 2;
    pointer.moveTo(desktop.ruler(), QPoint(DesktopView::labelWidth - 5, y)).press();
    pointer.moveTo(desktop.ruler(), QPoint(280, y));
    pointer.expect("the column follows", [&] { return desktop.header()->sectionSize(0) == 280; });
    PLAY(pointer.moveTo(desktop.ruler(), QPoint(320, y)).release());
    QTRY_COMPARE(desktop.header()->sectionSize(0), 320);
    QCOMPARE(desktop.view.toPixel(DesktopView::origin), 320);
    QTRY_VERIFY(desktop.isScreenUpToDate());

    // The border is let go.
    PLAY(pointer.moveTo(desktop.ruler(), QPoint(400, y)));
    QCOMPARE(desktop.header()->sectionSize(0), 320);
}

void TestX11Header::nameColumnTakesHalfTheRulerAtMost()
{
    DesktopView desktop;
    QVERIFY(desktop.show());

    const int y = desktop.header()->height() / 2;
    Pointer pointer;
    PLAY(pointer.drag(desktop.ruler(), QPoint(DesktopView::labelWidth - 5, y), QPoint(900, y)));
    QTRY_COMPARE(desktop.header()->sectionSize(0), (DesktopView::labelWidth + DesktopView::secondsVisible) / 2);
}

void TestX11Header::rightClickCyclesTheFormats()
{
    DesktopView desktop;
    QVERIFY(desktop.show());
    QCOMPARE(desktop.header()->dateTimeFormat(), DateTime::DTG);

    Pointer pointer;
    for (const DateTime::Format format : {DateTime::ISODate, DateTime::Standard, DateTime::DTGShort,
                                          DateTime::DTGVeryShort, DateTime::TimeOnly, DateTime::DTG}) {
        PLAY(pointer.moveTo(desktop.ruler(), desktop.rulerPos(100 + 50 * format)).click(Qt::RightButton));
        QTRY_COMPARE(desktop.header()->dateTimeFormat(), format);
    }
    QTRY_VERIFY(desktop.isScreenUpToDate());
}

void TestX11Header::hoverMarkerFollowsTheMouseOverTheRuler()
{
    DesktopView desktop;
    QVERIFY(desktop.show());

    Pointer pointer;
    PLAY(pointer.moveTo(desktop.ruler(), desktop.rulerPos(100)));
    QTRY_COMPARE(desktop.header()->hoverPosition(), DesktopView::labelWidth + 100);
    PLAY(pointer.moveTo(desktop.ruler(), desktop.rulerPos(200)));
    QTRY_COMPARE(desktop.header()->hoverTime(), DesktopView::at(200));
    PLAY(pointer.moveTo(desktop.ruler(), desktop.rulerPos(-100)));
    QTRY_COMPARE(desktop.header()->hoverPosition(), -1);
    QTRY_VERIFY(desktop.isScreenUpToDate());
}

void TestX11Header::wheelOverTheRulerMovesTheWindow()
{
    DesktopView desktop;
    QVERIFY(desktop.show());
    const int step = Zoom::majorInterval(desktop.view.zoomFactor());

    Pointer pointer;
    PLAY(pointer.moveTo(desktop.ruler(), desktop.rulerPos(100)).wheel(-3));
    QTRY_COMPARE(desktop.view.currentTime(), DesktopView::origin + 3 * step);
    PLAY(pointer.wheel(2));
    QTRY_COMPARE(desktop.view.currentTime(), DesktopView::origin + step);
    QCOMPARE(desktop.view.zoomFactor(), Zoom::FifteenMinutes);
    QTRY_VERIFY(desktop.isScreenUpToDate());
}

void TestX11Header::wheelWithControlOverTheRulerZooms()
{
    DesktopView desktop;
    QVERIFY(desktop.show());

    Pointer pointer;
    PLAY(pointer.moveTo(desktop.ruler(), desktop.rulerPos(100)).keyDown("ctrl").wheel(-1).keyUp("ctrl"));
    QTRY_COMPARE(desktop.view.zoomFactor(), Zoom::ThirtyMinutes);
    PLAY(pointer.keyDown("ctrl").wheel(2).keyUp("ctrl"));
    QTRY_COMPARE(desktop.view.zoomFactor(), Zoom::TenMinutes);
    QCOMPARE(desktop.view.currentTime(), DesktopView::origin);
}

void TestX11Header::wheelOverTheRowsScrollsThem()
{
    DesktopView desktop;
    addTracks(&desktop);
    QVERIFY(desktop.show());

    Pointer pointer;
    PLAY(pointer.moveTo(desktop.rows(), desktop.pos(100, desktop.trackC)).wheel(-1));
    QTRY_VERIFY(desktop.view.verticalScrollBar()->value() > 0);
    QCOMPARE(desktop.view.currentTime(), DesktopView::origin);
    QCOMPARE(desktop.view.zoomFactor(), Zoom::FifteenMinutes);
    PLAY(pointer.wheel(1));
    QTRY_COMPARE(desktop.view.verticalScrollBar()->value(), 0);
}

void TestX11Header::wheelOverTheFirstRowIsNotTheRulers()
{
    DesktopView desktop;
    addTracks(&desktop);
    QVERIFY(desktop.show());

    Pointer pointer;
    PLAY(pointer.moveTo(desktop.rows(), QPoint(500, 2)).wheel(-1));
    QTRY_VERIFY(desktop.view.verticalScrollBar()->value() > 0);
    QCOMPARE(desktop.view.currentTime(), DesktopView::origin);
}

void TestX11Header::wheelWithControlOverTheRowsZooms()
{
    DesktopView desktop;
    addTracks(&desktop);
    QVERIFY(desktop.show());

    Pointer pointer;
    PLAY(pointer.moveTo(desktop.rows(), desktop.pos(100, desktop.trackC)).keyDown("ctrl").wheel(-1).keyUp("ctrl"));
    QTRY_COMPARE(desktop.view.zoomFactor(), Zoom::ThirtyMinutes);
    PLAY(pointer.keyDown("ctrl").wheel(2).keyUp("ctrl"));
    QTRY_COMPARE(desktop.view.zoomFactor(), Zoom::TenMinutes);
    QCOMPARE(desktop.view.verticalScrollBar()->value(), 0);
}

void TestX11Header::wheelWithControlAndShiftOverTheRowsScrollsThem()
{
    DesktopView desktop;
    addTracks(&desktop);
    QVERIFY(desktop.show());

    Pointer pointer;
    pointer.moveTo(desktop.rows(), desktop.pos(100, desktop.trackC)).keyDown("ctrl").keyDown("shift");
    PLAY(pointer.wheel(-1).keyUp("shift").keyUp("ctrl"));
    QTRY_VERIFY(desktop.view.verticalScrollBar()->value() > 0);
    QCOMPARE(desktop.view.zoomFactor(), Zoom::FifteenMinutes);
}

QTEST_MAIN(TestX11Header)
#include "tst_x11_header.moc"
