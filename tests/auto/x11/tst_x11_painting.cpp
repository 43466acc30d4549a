#include "x11/desktop_view.h"
#include "x11/pointer.h"

#include <QDrag>
#include <QPainter>
#include <QTest>

using VeskTimeline::TimelineHeaderView;

/// What the X server shows, compared pixel by pixel with a picture that is put together by hand.
class TestX11Painting : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void itemsAreShownWhereTheirTimesAre();
    void selectedItemHasAThickOutline();
    void rubberBandIsShownWhileItIsDragged();
    void rubberBandIsGoneAfterTheRelease();
    void ghostIsShownWhileAnItemIsDraggedInItsTrack();
    void ghostIsShownOverAnotherTrackDuringADragAndDrop();
    void ghostsKeepTheirDistanceInRows();
    void hoverLineFollowsTheMouse();
    void cursorTextStandsAtTheMouse();
    void indicatorLineFollowsTheDragInTheHeader();
    void rulerShowsTheIndicatorWhereItIsDragged();
    void liveIndicatorAdvancesByItself();

private:
    static QRect itemRect(const DesktopView& desktop, int trackId, int start, int length);
    static void paintItem(QImage* picture, const QRect& rect, const QColor& color, bool isSelected = false);
    static void paintLine(QImage* picture, int x, const QColor& color);
    static QImage rowsUnderDrag(const DesktopView& desktop, const QImage& expected);
};

void TestX11Painting::init()
{
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".?")));
    Pointer pointer;
    PLAY(pointer.moveAway());
}

QRect TestX11Painting::itemRect(const DesktopView& desktop, int trackId, int start, int length)
{
    const QRect row = desktop.view.visualRect(desktop.view.indexOfTrackRow(trackId, 1));
    return {DesktopView::labelWidth + start, row.top(), length, row.height()};
}

void TestX11Painting::paintItem(QImage* picture, const QRect& rect, const QColor& color, bool isSelected)
{
    QPainter painter(picture);
    const QColor highlight(0x43, 0xB0, 0xE0);
    painter.setPen(QPen(isSelected ? highlight : QColor(Qt::black), isSelected ? 5 : 1, Qt::SolidLine, Qt::SquareCap,
                        Qt::BevelJoin));
    painter.setBrush(color);
    painter.drawRect(rect);
}

void TestX11Painting::paintLine(QImage* picture, int x, const QColor& color)
{
    QPainter painter(picture);
    painter.fillRect(x, 0, 1, picture->height(), color);
}

// A drag and drop without a picture shows one of a single pixel beside the mouse, which is not the view's.
QImage TestX11Painting::rowsUnderDrag(const DesktopView& desktop, const QImage& expected)
{
    QImage rows = desktop.rowsOnScreen();
    const QPoint dragPicture = desktop.rows()->mapFromGlobal(QCursor::pos()) + QPoint(10, 10);
    rows.setPixelColor(dragPicture, expected.pixelColor(dragPicture));
    return rows;
}

void TestX11Painting::itemsAreShownWhereTheirTimesAre()
{
    DesktopView desktop;
    QVERIFY(desktop.show());
    Pointer pointer;
    PLAY(pointer.moveAway());
    QImage expected = desktop.rowsOnScreen();

    desktop.addSeconds(desktop.trackA, 100, 60, Qt::red);
    desktop.addSeconds(desktop.trackC, 0, 20, Qt::green);
    desktop.view.viewport()->update();
    // The last pixel column and row of a cell cut the outline off.
    QPainter painter(&expected);
    painter.setPen(Qt::black);
    painter.setBrush(Qt::red);
    painter.setClipRect(itemRect(desktop, desktop.trackA, 0, DesktopView::secondsVisible));
    painter.drawRect(itemRect(desktop, desktop.trackA, 100, 60));
    painter.setBrush(Qt::green);
    painter.setClipRect(itemRect(desktop, desktop.trackC, 0, DesktopView::secondsVisible));
    painter.drawRect(itemRect(desktop, desktop.trackC, 0, 20));
    painter.end();
    QTRY_COMPARE(desktop.rowsOnScreen(), expected);
}

void TestX11Painting::selectedItemHasAThickOutline()
{
    DesktopView desktop;
    desktop.addSeconds(desktop.trackA, 100, 60, Qt::red);
    QVERIFY(desktop.show());
    Pointer pointer;
    PLAY(pointer.moveTo(desktop.rows(), desktop.pos(130, desktop.trackA)).click());
    PLAY(pointer.moveTo(desktop.rows(), desktop.pos(500, desktop.trackB)));
    QVERIFY(desktop.view.hasSelectedItems());

    const QColor highlight(0x43, 0xB0, 0xE0);
    const int row = desktop.pos(130, desktop.trackA).y();
    const auto colorAt = [&](int second) {
        return desktop.rowsOnScreen().pixelColor(DesktopView::labelWidth + second, row);
    };
    QTRY_COMPARE(colorAt(100), highlight);
    QCOMPARE(colorAt(97), QColor(Qt::white));
    QCOMPARE(colorAt(98), highlight);
    QCOMPARE(colorAt(102), highlight);
    QCOMPARE(colorAt(103), QColor(Qt::red));
    QCOMPARE(colorAt(157), QColor(Qt::red));
    QCOMPARE(colorAt(158), highlight);
    QCOMPARE(colorAt(162), highlight);
    QCOMPARE(colorAt(163), QColor(Qt::white));
}

void TestX11Painting::rubberBandIsShownWhileItIsDragged()
{
    DesktopView desktop;
    desktop.header()->setHoverVisible(false);
    desktop.addSeconds(desktop.trackA, 100, 60);
    QVERIFY(desktop.show());
    QImage expected = desktop.rowsOnScreen();
    const QPoint from = desktop.pos(300, desktop.trackB);
    const QPoint to = desktop.pos(60, desktop.trackA);
    QColor fill(0x43, 0xB0, 0xE0);
    QPainter painter(&expected);
    painter.setPen(fill);
    fill.setAlpha(100);
    painter.setBrush(fill);
    painter.drawRect(from.x(), from.y(), to.x() - from.x(), to.y() - from.y());
    painter.end();

    Pointer pointer;
    pointer.moveTo(desktop.rows(), from).press().glideTo(to);
    pointer.expect("the band is on the screen", [&] { return desktop.rowsOnScreen() == expected; });
    PLAY(pointer.release());
}

void TestX11Painting::rubberBandIsGoneAfterTheRelease()
{
    DesktopView desktop;
    desktop.header()->setHoverVisible(false);
    QVERIFY(desktop.show());
    Pointer pointer;
    const QPoint from = desktop.pos(300, desktop.trackB);
    PLAY(pointer.moveTo(desktop.rows(), from));
    const QImage before = desktop.rowsOnScreen();
    pointer.press().glideTo(desktop.pos(60, desktop.trackC));
    pointer.expect("the band is on the screen", [&] { return desktop.rowsOnScreen() != before; });
    PLAY(pointer.release());
    QTRY_COMPARE(desktop.rowsOnScreen(), before);
}

void TestX11Painting::ghostIsShownWhileAnItemIsDraggedInItsTrack()
{
    DesktopView desktop;
    desktop.header()->setHoverVisible(false);
    QVERIFY(desktop.show());
    QImage expected = desktop.rowsOnScreen();
    desktop.addSeconds(desktop.trackB, 100, 60, Qt::red);
    paintItem(&expected, itemRect(desktop, desktop.trackB, 150, 59).adjusted(0, 0, 0, -1), Qt::red);

    Pointer pointer;
    pointer.moveTo(desktop.rows(), desktop.pos(130, desktop.trackB)).press().glideTo(desktop.pos(180, desktop.trackB));
    pointer.expect("the ghost is on the screen", [&] { return desktop.rowsOnScreen() == expected; });
    PLAY(pointer.release());
}

void TestX11Painting::ghostIsShownOverAnotherTrackDuringADragAndDrop()
{
    DesktopView desktop;
    desktop.header()->setHoverVisible(false);
    QVERIFY(desktop.show());
    QImage expected = desktop.rowsOnScreen();
    desktop.addSeconds(desktop.trackA, 100, 60, Qt::red);
    paintItem(&expected, itemRect(desktop, desktop.trackC, 150, 59).adjusted(0, 0, 0, -1), Qt::red);

    Pointer pointer;
    pointer.moveTo(desktop.rows(), desktop.pos(130, desktop.trackA)).press().glideTo(desktop.pos(180, desktop.trackC));
    pointer.expect("a drag is under way", [&] { return desktop.view.findChild<QDrag*>() != nullptr; });
    pointer.expect("the ghost is on the screen", [&] { return rowsUnderDrag(desktop, expected) == expected; });
    PLAY(pointer.release());
    QTRY_COMPARE(desktop.items(), QStringList({"C:150+60"}));
    QTRY_VERIFY(desktop.isScreenUpToDate());
}

void TestX11Painting::ghostsKeepTheirDistanceInRows()
{
    DesktopView desktop;
    desktop.header()->setHoverVisible(false);
    QVERIFY(desktop.show());
    QImage expected = desktop.rowsOnScreen();
    const int first = desktop.addSeconds(desktop.trackA, 100, 60, Qt::red);
    const int second = desktop.addSeconds(desktop.trackB, 300, 60, Qt::green);
    desktop.view.selectItems({first, second}, true);
    paintItem(&expected, itemRect(desktop, desktop.trackC, 110, 59).adjusted(0, 0, 0, -1), Qt::red, true);
    paintItem(&expected, itemRect(desktop, desktop.trackD, 310, 59).adjusted(0, 0, 0, -1), Qt::green, true);

    Pointer pointer;
    pointer.moveTo(desktop.rows(), desktop.pos(130, desktop.trackA)).press().glideTo(desktop.pos(140, desktop.trackC));
    pointer.expect("the ghosts are on the screen", [&] { return rowsUnderDrag(desktop, expected) == expected; });
    PLAY(pointer.release());
}

void TestX11Painting::hoverLineFollowsTheMouse()
{
    DesktopView desktop;
    QVERIFY(desktop.show());
    Pointer pointer;
    PLAY(pointer.moveAway());
    const QImage bare = desktop.rowsOnScreen();
    for (const int second : {300, 310, 500}) {
        QImage expected = bare;
        paintLine(&expected, DesktopView::labelWidth + second, TimelineHeaderView::highlightColor());
        PLAY(pointer.moveTo(desktop.rows(), desktop.pos(second, desktop.trackB)));
        QTRY_COMPARE(desktop.rowsOnScreen(), expected);
    }
    PLAY(pointer.moveTo(desktop.rows(), desktop.namePos(desktop.trackB)));
    const QRect timeColumn(DesktopView::labelWidth, 0, DesktopView::secondsVisible, bare.height());
    QTRY_COMPARE(desktop.rowsOnScreen().copy(timeColumn), bare.copy(timeColumn));
}

void TestX11Painting::cursorTextStandsAtTheMouse()
{
    DesktopView desktop;
    desktop.view.setCursorText(QStringLiteral("Here"));
    QVERIFY(desktop.show());
    QImage expected = desktop.rowsOnScreen();
    const QPoint pos = desktop.pos(300, desktop.trackB);
    paintLine(&expected, pos.x(), TimelineHeaderView::highlightColor());
    QPainter painter(&expected);
    painter.setFont(desktop.view.font());
    painter.setPen(TimelineHeaderView::highlightColor());
    painter.setBrush(TimelineHeaderView::backgroundColor());
    const QRect box(pos.x(), pos.y() - 22, painter.fontMetrics().horizontalAdvance(QStringLiteral("Here")) + 2, 22);
    painter.drawRect(box);
    painter.drawText(box.adjusted(1, 1, -1, -1), Qt::AlignCenter, QStringLiteral("Here"));
    painter.end();

    desktop.view.setCursorTextVisible(true);
    Pointer pointer;
    PLAY(pointer.moveTo(desktop.rows(), pos));
    QTRY_COMPARE(desktop.rowsOnScreen(), expected);
}

void TestX11Painting::indicatorLineFollowsTheDragInTheHeader()
{
    DesktopView desktop;
    desktop.header()->setHoverVisible(false);
    QVERIFY(desktop.show());
    QImage expected = desktop.rowsOnScreen();
    paintLine(&expected, DesktopView::labelWidth + 400, TimelineHeaderView::highlightColor());
    desktop.header()->setIndicatorVisible(true);
    desktop.header()->setIndicatorTime(DesktopView::at(300));

    Pointer pointer;
    pointer.moveTo(desktop.ruler(), desktop.rulerPos(300)).press().glideTo(desktop.rulerPos(400));
    pointer.expect("the line is on the screen", [&] { return desktop.rowsOnScreen() == expected; });
    PLAY(pointer.release());
}

void TestX11Painting::rulerShowsTheIndicatorWhereItIsDragged()
{
    DesktopView desktop;
    desktop.header()->setHoverVisible(false);
    desktop.header()->setIndicatorVisible(true);
    desktop.header()->setIndicatorTime(DesktopView::at(300));
    QVERIFY(desktop.show());

    // Just above the bottom the triangle is narrow; near its base it is wide.
    const auto colorAt = [&](int second, int fromBottom) {
        const QImage ruler = desktop.rulerOnScreen();
        return ruler.pixelColor(DesktopView::labelWidth + second, ruler.height() - 1 - fromBottom);
    };
    const QColor highlight = TimelineHeaderView::highlightColor();
    QTRY_COMPARE(colorAt(300, 8), highlight);
    Pointer pointer;
    pointer.moveTo(desktop.ruler(), desktop.rulerPos(300)).press().glideTo(desktop.rulerPos(437));
    pointer.expect("the triangle has followed", [&] { return colorAt(437, 8) == highlight; });
    pointer.expect("the old place is bare", [&] { return colorAt(300, 8) != highlight; });
    PLAY(pointer.release());
    QTRY_VERIFY(desktop.isScreenUpToDate());
}

void TestX11Painting::liveIndicatorAdvancesByItself()
{
    DesktopView desktop;
    desktop.header()->setHoverVisible(false);
    desktop.header()->setLiveIndicatorColor(Qt::magenta);
    QVERIFY(desktop.show());
    const QImage bare = desktop.rowsOnScreen();

    desktop.header()->startLiveTimer(DesktopView::at(100), 100);
    QTRY_VERIFY(desktop.header()->liveIndicatorTime() >= DesktopView::at(101));
    desktop.header()->setLiveIndicatorTime(DesktopView::at(200));
    const auto isShown = [&] {
        QImage expected = bare;
        paintLine(&expected, desktop.header()->liveIndicatorPosition(), Qt::magenta);
        return desktop.rowsOnScreen() == expected;
    };
    QTRY_VERIFY(desktop.header()->liveIndicatorPosition() > DesktopView::labelWidth + 200 && isShown());
    desktop.header()->stopLiveTimer();
    QTRY_COMPARE(desktop.rowsOnScreen(), bare);
}

QTEST_MAIN(TestX11Painting)
#include "tst_x11_painting.moc"
