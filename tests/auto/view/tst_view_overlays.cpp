#include "auto/view/picture.h"
#include "auto/view/recording_handlers.h"
#include "support/input.h"

#include <QRegularExpression>
#include <QTest>

using namespace VeskTimeline;

namespace {

const QColor highlight{0x43, 0xB0, 0xE0};

/// A view with recording handlers, empty rows and nothing over them.
struct OverlayFixture : ViewFixture
{
    RecordingHandlers handlers{view};
    QImage bare;

    OverlayFixture()
    {
        view.header()->setIndicatorVisible(false);
        bare = picture();
    }
    QImage picture() const { return Picture::of(view); }
    QRect changed() const { return Picture::difference(picture(), bare); }
    int height() const { return view.viewport()->height(); }
    /// A vertical line over the whole height, as far as it can be seen.
    QRect line(int x) const { return QRect(x, 0, 1, height()); }
    bool isLine(int x, const QColor& color) const
    {
        const QImage image = picture();
        for (int y = 0; y < image.height(); ++y) {
            if (image.pixelColor(x, y) != color)
                return false;
        }
        return true;
    }
    void hover(const QPoint& pos) { Input::move(&view, pos); }
};

} // namespace

class TestViewOverlays : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(".?")); }

    void indicatorIsALineOfOnePixelOverAllRows();
    void indicatorIsDrawnAtTheLeftEdgeOfTheTimeColumnButNotLeftOfIt();
    void indicatorWithoutATimeOrHiddenIsNotDrawn();
    void hoverMarkerIsALineAtItsPosition();
    void hoverMarkerWithoutAPositionOrHiddenIsNotDrawn();
    void liveIndicatorIsALineInItsOwnColour();
    void liveIndicatorIsDrawnFromTheFirstToTheLastPixelOfTheWindow();
    void liveIndicatorWithoutATimeOrHiddenIsNotDrawn();
    void cursorTextIsInABoxAboveTheMouse();
    void cursorTextNeedsTextVisibilityAndHoverLine();
    void rubberBandIsTheSameInAllDirections_data();
    void rubberBandIsTheSameInAllDirections();
    void rubberBandIsDrawnOnlyWhileActive();
    void rubberBandOfARealDragIsPaintedUnderTheMouse();
    void overlaysArePaintedInTheirOrder();
    void ghostsArePaintedUnderTheOverlays();
    void ghostsNeedADragHandlerAndAnItemDelegate();
    void changesRepaintTheRows();
};

void TestViewOverlays::indicatorIsALineOfOnePixelOverAllRows()
{
    OverlayFixture f;
    f.view.header()->setIndicatorTime(f.at(300));
    f.view.header()->setIndicatorVisible(true);
    QCOMPARE(f.changed(), f.line(500));
    QVERIFY(f.isLine(500, highlight));
}

void TestViewOverlays::indicatorIsDrawnAtTheLeftEdgeOfTheTimeColumnButNotLeftOfIt()
{
    OverlayFixture f;
    f.view.header()->setIndicatorVisible(true);
    f.view.setCurrentTime(f.at(600));
    f.view.header()->setIndicatorTime(f.at(600));
    QCOMPARE(f.changed(), f.line(ViewFixture::labelWidth));
    f.view.header()->setIndicatorTime(f.at(599));
    QCOMPARE(f.view.header()->indicatorPosition(), ViewFixture::labelWidth - 1);
    QCOMPARE(f.changed(), QRect());
}

void TestViewOverlays::indicatorWithoutATimeOrHiddenIsNotDrawn()
{
    OverlayFixture f;
    f.view.header()->setIndicatorVisible(true);
    QCOMPARE(f.view.header()->indicatorPosition(), -1);
    QCOMPARE(f.changed(), QRect());
    f.view.header()->setIndicatorTime(f.at(300));
    f.view.header()->setIndicatorVisible(false);
    QCOMPARE(f.changed(), QRect());
}

void TestViewOverlays::hoverMarkerIsALineAtItsPosition()
{
    OverlayFixture f;
    f.hover(f.pos(400, f.trackB));
    QCOMPARE(f.changed(), f.line(600));
    QVERIFY(f.isLine(600, highlight));
}

void TestViewOverlays::hoverMarkerWithoutAPositionOrHiddenIsNotDrawn()
{
    OverlayFixture f;
    f.hover(f.pos(400, f.trackB));
    f.view.header()->setHoverVisible(false);
    QCOMPARE(f.changed(), QRect());
    f.view.header()->setHoverVisible(true);
    QCOMPARE(f.changed(), f.line(600));
    f.hover(QPoint(20, 20));
    QCOMPARE(f.changed(), QRect());
}

void TestViewOverlays::liveIndicatorIsALineInItsOwnColour()
{
    OverlayFixture f;
    f.view.header()->setLiveIndicatorColor(Qt::magenta);
    f.view.header()->setLiveIndicatorTime(f.at(300));
    f.view.header()->setLiveIndicatorVisible(true);
    QCOMPARE(f.changed(), f.line(500));
    QVERIFY(f.isLine(500, Qt::magenta));
}

void TestViewOverlays::liveIndicatorIsDrawnFromTheFirstToTheLastPixelOfTheWindow()
{
    OverlayFixture f;
    f.view.header()->setLiveIndicatorVisible(true);
    f.view.setCurrentTime(f.at(600));
    f.view.header()->setLiveIndicatorTime(f.at(600));
    QCOMPARE(f.changed(), f.line(ViewFixture::labelWidth));
    f.view.header()->setLiveIndicatorTime(f.at(600) - 1);
    QCOMPARE(f.changed(), QRect());
    // The very end of the window is the first pixel behind the viewport.
    f.view.header()->setLiveIndicatorTime(f.at(600) + Zoom::ThirtyMinutes - 1000);
    QCOMPARE(f.changed(), f.line(ViewFixture::labelWidth + ViewFixture::secondsVisible - 1));
    f.view.header()->setLiveIndicatorTime(f.at(600) + Zoom::ThirtyMinutes + 1);
    QCOMPARE(f.changed(), QRect());
}

void TestViewOverlays::liveIndicatorWithoutATimeOrHiddenIsNotDrawn()
{
    OverlayFixture f;
    f.view.header()->setLiveIndicatorVisible(true);
    QCOMPARE(f.changed(), QRect());
    f.view.header()->setLiveIndicatorTime(f.at(300));
    f.view.header()->setLiveIndicatorVisible(false);
    QCOMPARE(f.changed(), QRect());
}

void TestViewOverlays::cursorTextIsInABoxAboveTheMouse()
{
    OverlayFixture f;
    f.view.setCursorTextVisible(true);
    f.view.setCursorText(QStringLiteral("12:34"));
    const QPoint mouse = f.pos(400, f.trackB);
    f.hover(mouse);
    const int textWidth = QFontMetrics(f.view.viewport()->font()).horizontalAdvance(QStringLiteral("12:34"));
    // A rectangle is outlined one pixel beyond its size.
    const QRect outline(mouse.x(), mouse.y() - 22, textWidth + 3, 23);
    QCOMPARE(f.changed(), f.line(mouse.x()).united(outline));

    const QImage image = f.picture();
    for (const QPoint& corner : {outline.topLeft(), outline.topRight(), outline.bottomLeft(), outline.bottomRight()})
        QCOMPARE(image.pixelColor(corner), highlight);
    QCOMPARE(image.pixelColor(outline.left() + 1, outline.top() + 1), TimelineHeaderView::backgroundColor());
    QCOMPARE(image.pixelColor(outline.right() - 1, outline.bottom() - 1), TimelineHeaderView::backgroundColor());

    QImage expected = f.bare;
    QPainter painter(&expected);
    painter.setFont(f.view.viewport()->font());
    painter.setPen(highlight);
    painter.drawLine(mouse.x(), 0, mouse.x(), f.height());
    painter.setBrush(TimelineHeaderView::backgroundColor());
    painter.drawRect(mouse.x(), mouse.y() - 22, textWidth + 2, 22);
    painter.drawText(QRect(mouse.x() + 1, mouse.y() - 21, textWidth, 20), Qt::AlignCenter, QStringLiteral("12:34"));
    painter.end();
    COMPARE_PICTURES(image, expected);
}

void TestViewOverlays::cursorTextNeedsTextVisibilityAndHoverLine()
{
    OverlayFixture f;
    const QPoint mouse = f.pos(400, f.trackB);
    f.hover(mouse);
    f.view.setCursorText(QStringLiteral("12:34"));
    QCOMPARE(f.changed(), f.line(mouse.x()));
    f.view.setCursorTextVisible(true);
    QVERIFY(f.changed() != f.line(mouse.x()));
    f.view.setCursorText(QString());
    QCOMPARE(f.changed(), f.line(mouse.x()));
    f.view.setCursorText(QStringLiteral("12:34"));
    f.hover(QPoint(20, 20));
    QCOMPARE(f.changed(), QRect());
    f.hover(mouse);
    f.view.header()->setHoverVisible(false);
    QCOMPARE(f.changed(), QRect());
}

void TestViewOverlays::rubberBandIsTheSameInAllDirections_data()
{
    QTest::addColumn<QRect>("band");
    QTest::newRow("right and down") << QRect(QPoint(300, 20), QSize(60, 110));
    QTest::newRow("left and down") << QRect(QPoint(360, 20), QSize(-60, 110));
    QTest::newRow("right and up") << QRect(QPoint(300, 130), QSize(60, -110));
    QTest::newRow("left and up") << QRect(QPoint(360, 130), QSize(-60, -110));
}

void TestViewOverlays::rubberBandIsTheSameInAllDirections()
{
    QFETCH(QRect, band);
    OverlayFixture f;
    f.handlers.select.setRubberBand(band);
    f.handlers.select.rubberBandActive = true;
    QCOMPARE(f.changed(), QRect(QPoint(300, 20), QPoint(360, 130)));
    const QImage image = f.picture();
    QColor fill = highlight;
    fill.setAlpha(100);
    for (int y = 20; y <= 130; ++y) {
        for (int x = 300; x <= 360; ++x) {
            const bool isOutline = x == 300 || x == 360 || y == 20 || y == 130;
            const QColor expected = isOutline ? highlight : Picture::over(f.bare.pixelColor(x, y), fill);
            QCOMPARE(image.pixelColor(x, y), expected);
        }
    }
}

void TestViewOverlays::rubberBandIsDrawnOnlyWhileActive()
{
    OverlayFixture f;
    f.handlers.select.setRubberBand(QRect(300, 20, 60, 110));
    QCOMPARE(f.changed(), QRect());
    f.handlers.select.rubberBandActive = true;
    QVERIFY(!f.changed().isNull());
    f.view.setSelectHandler(nullptr);
    QCOMPARE(f.changed(), QRect());
}

void TestViewOverlays::rubberBandOfARealDragIsPaintedUnderTheMouse()
{
    ViewFixture f;
    f.view.header()->setHoverVisible(false);
    const QImage bare = Picture::of(f.view);
    Input::press(&f.view, QPoint(700, 90));
    Input::move(&f.view, QPoint(640, 30), Qt::LeftButton);
    QCOMPARE(Picture::difference(Picture::of(f.view), bare), QRect(QPoint(640, 30), QPoint(700, 90)));
    Input::release(&f.view, QPoint(640, 30));
    QVERIFY(Picture::difference(Picture::of(f.view), bare).isNull());
}

void TestViewOverlays::overlaysArePaintedInTheirOrder()
{
    OverlayFixture f;
    TimelineHeaderView* const header = f.view.header();
    const QPoint mouse = f.pos(400, f.trackB);
    header->setLiveIndicatorColor(Qt::magenta);
    header->setIndicatorVisible(true);

    // The indicator lies over the band.
    f.handlers.select.setRubberBand(QRect(mouse - QPoint(20, 20), QSize(60, 60)));
    f.handlers.select.rubberBandActive = true;
    header->setIndicatorTime(f.at(400));
    QVERIFY(f.isLine(mouse.x(), highlight));

    // The text's box lies over band and indicator.
    f.view.setCursorTextVisible(true);
    f.view.setCursorText(QStringLiteral("a text"));
    header->setIndicatorTime(f.at(402));
    f.hover(mouse);
    const QPoint inBox = mouse + QPoint(2, -21);
    QCOMPARE(f.picture().pixelColor(inBox), TimelineHeaderView::backgroundColor());

    // The live indicator lies over everything.
    header->setLiveIndicatorTime(f.at(402));
    header->setLiveIndicatorVisible(true);
    QVERIFY(f.isLine(mouse.x() + 2, Qt::magenta));
    header->setLiveIndicatorTime(f.at(400));
    QVERIFY(f.isLine(mouse.x(), Qt::magenta));
}

void TestViewOverlays::ghostsArePaintedUnderTheOverlays()
{
    OverlayFixture f;
    const int id = f.addSeconds(f.trackA, 100, 200, Qt::green);
    f.handlers.drag.setDragItemIds({id});
    f.handlers.drag.delta = QPoint(100, 50);
    const QPoint inGhost = f.pos(300, f.trackB);
    QCOMPARE(f.picture().pixelColor(inGhost), QColor(Qt::green));
    f.view.header()->setIndicatorVisible(true);
    f.view.header()->setIndicatorTime(f.at(300));
    QVERIFY(f.isLine(inGhost.x(), highlight));
    f.view.header()->setIndicatorVisible(false);
    f.handlers.select.setRubberBand(QRect(inGhost - QPoint(20, 10), QSize(40, 20)));
    f.handlers.select.rubberBandActive = true;
    QColor fill = highlight;
    fill.setAlpha(100);
    QCOMPARE(f.picture().pixelColor(inGhost), Picture::over(Qt::green, fill));
}

void TestViewOverlays::ghostsNeedADragHandlerAndAnItemDelegate()
{
    OverlayFixture f;
    const int id = f.addSeconds(f.trackA, 100, 200, Qt::green);
    f.handlers.drag.setDragItemIds({id});
    f.handlers.drag.delta = QPoint(0, 150);
    const QPoint inGhost = f.pos(200, f.trackA) + QPoint(0, 150);
    QCOMPARE(f.picture().pixelColor(inGhost), QColor(Qt::green));
    f.view.setDragHandler(nullptr);
    QVERIFY(f.picture().pixelColor(inGhost) != QColor(Qt::green));
    f.view.setDragHandler(&f.handlers.drag);
    QStyledItemDelegate plain;
    ItemDelegate* const delegate = f.view.itemDelegate();
    f.view.QTreeView::setItemDelegate(&plain);
    QVERIFY(f.picture().pixelColor(inGhost) != QColor(Qt::green));
    f.view.setItemDelegate(delegate);
    QCOMPARE(f.picture().pixelColor(inGhost), QColor(Qt::green));
}

// A user sees what was painted last: every change has to be followed by a repaint of the rows.
void TestViewOverlays::changesRepaintTheRows()
{
    OverlayFixture f;
    TimelineHeaderView* const header = f.view.header();
    struct Watcher : QObject
    {
        int paints = 0;
        bool eventFilter(QObject*, QEvent* event) override
        {
            paints += event->type() == QEvent::Paint;
            return false;
        }
    } watcher;
    QCoreApplication::processEvents();
    f.view.viewport()->installEventFilter(&watcher);
    // A layout that is put off ends in an update, and that in a repaint.
    const auto settle = [] {
        for (int i = 0; i < 3; ++i)
            QCoreApplication::processEvents();
    };
    const auto isRepainted = [&](const auto& change) {
        settle();
        watcher.paints = 0;
        change();
        settle();
        return watcher.paints > 0;
    };
    QVERIFY(!isRepainted([] {}));
    QVERIFY(isRepainted([&] { f.hover(f.pos(300, f.trackA)); }));
    QVERIFY(isRepainted([&] { f.view.setCursorTextVisible(true); }));
    QVERIFY(isRepainted([&] { f.view.setCursorText(QStringLiteral("a text")); }));
    QVERIFY(isRepainted([&] { f.hover(f.pos(310, f.trackA)); }));
    // The text follows the mouse also where the line stays.
    QVERIFY(isRepainted([&] { f.hover(f.pos(310, f.trackB)); }));
    QVERIFY(isRepainted([&] { header->setIndicatorVisible(true); }));
    QVERIFY(isRepainted([&] { header->setIndicatorTime(f.at(20)); }));
    QVERIFY(isRepainted([&] { header->setLiveIndicatorVisible(true); }));
    QVERIFY(isRepainted([&] { header->setLiveIndicatorTime(f.at(30)); }));
    QVERIFY(isRepainted([&] { header->setHoverVisible(false); }));
}

QTEST_MAIN(TestViewOverlays)
#include "tst_view_overlays.moc"
