#include "auto/view/recording_handlers.h"
#include "support/held_modifiers.h"
#include "support/input.h"

#include <QRegularExpression>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <QWheelEvent>

using namespace VeskTimeline;

namespace {

/// More rows than the view shows, scrolled to somewhere in the middle.
struct ScrolledFixture : ViewFixture
{
    ScrolledFixture()
    {
        for (int i = 0; i < 30; ++i)
            model.newTrack(QString::number(i));
        QCoreApplication::processEvents();
        view.setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
        view.verticalScrollBar()->setValue(scrolledTo);
        view.setCurrentTime(at(900));
    }

    static constexpr int scrolledTo = 500;
    int zoom() const { return view.zoomFactor(); }
    int scrolled() const { return view.verticalScrollBar()->value() - scrolledTo; }

    /// @param y in the view's own coordinates
    void wheel(int y, int angleDelta)
    {
        const QPointF pos = view.viewport()->mapFrom(&view, QPoint(700, y));
        QWheelEvent event(pos, view.viewport()->mapToGlobal(pos), QPoint(), QPoint(0, angleDelta), Qt::NoButton,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
        (view.*&OpenView::wheelEvent)(&event);
    }
    int headerBottom() const { return view.header()->geometry().bottom(); }
    int overRows() const { return headerBottom() + 100; }
};

} // namespace

class TestViewWheel : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(".?")); }

    void controlAndTheWheelTowardsTheUserWidensTheZoomByOneStep();
    void controlAndTheWheelAwayFromTheUserNarrowsTheZoomByOneStep();
    void controlAndAZeroDeltaNarrowsTheZoom();
    void controlDoesNotScrollTheRows();
    void zoomStaysWithinTheViewsBounds();
    void withoutControlTheRowsScroll();
    void anyModifierBesideControlScrollsTheRows_data();
    void anyModifierBesideControlScrollsTheRows();
    void theModifiersOfTheKeyboardCountNotTheEvents();
    void overTheHeaderTheTimeScrolls();
    void overTheHeaderControlZooms();
    void theHeadersBottomRowIsTheHeaders();
    void theFirstRowIsNotTakenForTheHeader();
    void realWheelEventsOverTheRowsScrollThem();
    void realWheelEventsOverTheHeaderScrollTheTime();
    void withoutAHeaderTheRowsScrollAndControlZooms();
};

void TestViewWheel::controlAndTheWheelTowardsTheUserWidensTheZoomByOneStep()
{
    ScrolledFixture f;
    const HeldModifiers control(f.view.windowHandle(), Qt::ControlModifier);
    QSignalSpy zoomSpy(&f.view, &TimelineView::zoomChanged);
    f.wheel(f.overRows(), -120);
    QCOMPARE(f.zoom(), int(Zoom::SixtyMinutes));
    QCOMPARE(zoomSpy.count(), 1);
    f.view.setZoomFactor(Zoom::TenMinutes);
    f.wheel(f.overRows(), -1);
    QCOMPARE(f.zoom(), int(Zoom::FifteenMinutes));
}

void TestViewWheel::controlAndTheWheelAwayFromTheUserNarrowsTheZoomByOneStep()
{
    ScrolledFixture f;
    const HeldModifiers control(f.view.windowHandle(), Qt::ControlModifier);
    f.wheel(f.overRows(), 120);
    QCOMPARE(f.zoom(), int(Zoom::FifteenMinutes));
    f.wheel(f.overRows(), 1);
    QCOMPARE(f.zoom(), int(Zoom::TenMinutes));
}

void TestViewWheel::controlAndAZeroDeltaNarrowsTheZoom()
{
    ScrolledFixture f;
    const HeldModifiers control(f.view.windowHandle(), Qt::ControlModifier);
    f.wheel(f.overRows(), 0);
    QCOMPARE(f.zoom(), int(Zoom::FifteenMinutes));
}

void TestViewWheel::controlDoesNotScrollTheRows()
{
    ScrolledFixture f;
    const HeldModifiers control(f.view.windowHandle(), Qt::ControlModifier);
    f.wheel(f.overRows(), -120);
    QCOMPARE(f.scrolled(), 0);
}

void TestViewWheel::zoomStaysWithinTheViewsBounds()
{
    ScrolledFixture f;
    const HeldModifiers control(f.view.windowHandle(), Qt::ControlModifier);
    f.view.setMinimumZoomFactor(Zoom::ThirtyMinutes);
    f.wheel(f.overRows(), 120);
    QCOMPARE(f.zoom(), int(Zoom::ThirtyMinutes));
    f.wheel(f.overRows(), -120);
    QCOMPARE(f.zoom(), int(Zoom::SixtyMinutes));
    // The range is one hour long.
    f.wheel(f.overRows(), -120);
    QCOMPARE(f.zoom(), int(Zoom::SixtyMinutes));
}

void TestViewWheel::withoutControlTheRowsScroll()
{
    ScrolledFixture f;
    QSignalSpy zoomSpy(&f.view, &TimelineView::zoomChanged);
    QSignalSpy timeSpy(&f.view, &TimelineView::currentTimeChanged);
    f.wheel(f.overRows(), -120);
    QVERIFY(f.scrolled() > 0);
    f.wheel(f.overRows(), 240);
    QVERIFY(f.scrolled() < 0);
    QCOMPARE(zoomSpy.count(), 0);
    QCOMPARE(timeSpy.count(), 0);
}

void TestViewWheel::anyModifierBesideControlScrollsTheRows_data()
{
    QTest::addColumn<int>("modifiers");
    QTest::newRow("Control+Shift") << static_cast<int>(Qt::ControlModifier | Qt::ShiftModifier);
    QTest::newRow("Control+Alt") << static_cast<int>(Qt::ControlModifier | Qt::AltModifier);
    QTest::newRow("Control+Meta") << static_cast<int>(Qt::ControlModifier | Qt::MetaModifier);
    QTest::newRow("Shift") << static_cast<int>(Qt::ShiftModifier);
}

void TestViewWheel::anyModifierBesideControlScrollsTheRows()
{
    QFETCH(int, modifiers);
    ScrolledFixture f;
    const HeldModifiers held(f.view.windowHandle(), Qt::KeyboardModifiers(modifiers));
    f.wheel(f.overRows(), -120);
    QCOMPARE(f.zoom(), int(Zoom::ThirtyMinutes));
    QVERIFY(f.scrolled() > 0);
}

void TestViewWheel::theModifiersOfTheKeyboardCountNotTheEvents()
{
    ScrolledFixture f;
    const QPointF pos(700, 100);
    QWheelEvent event(pos, pos, QPoint(), QPoint(0, -120), Qt::NoButton, Qt::ControlModifier, Qt::NoScrollPhase, false);
    (f.view.*&OpenView::wheelEvent)(&event);
    QCOMPARE(f.zoom(), int(Zoom::ThirtyMinutes));
    QVERIFY(f.scrolled() != 0);
}

void TestViewWheel::overTheHeaderTheTimeScrolls()
{
    ScrolledFixture f;
    const int step = Zoom::majorInterval(Zoom::ThirtyMinutes);
    f.wheel(10, -120);
    QCOMPARE(f.view.currentTime(), f.at(900) + step);
    f.wheel(10, 120);
    QCOMPARE(f.view.currentTime(), f.at(900));
    QCOMPARE(f.scrolled(), 0);
    QCOMPARE(f.zoom(), int(Zoom::ThirtyMinutes));
}

void TestViewWheel::overTheHeaderControlZooms()
{
    ScrolledFixture f;
    const HeldModifiers control(f.view.windowHandle(), Qt::ControlModifier);
    f.wheel(10, -120);
    QCOMPARE(f.zoom(), int(Zoom::SixtyMinutes));
}

void TestViewWheel::theHeadersBottomRowIsTheHeaders()
{
    ScrolledFixture f;
    f.wheel(f.headerBottom(), -120);
    QVERIFY(f.view.currentTime() != f.at(900));
    QCOMPARE(f.scrolled(), 0);
    f.view.setCurrentTime(f.at(900));
    f.wheel(f.headerBottom() + 1, -120);
    QCOMPARE(f.view.currentTime(), f.at(900));
    QVERIFY(f.scrolled() > 0);
}

void TestViewWheel::theFirstRowIsNotTakenForTheHeader()
{
    ScrolledFixture f;
    const QPointF pos(700, 0);
    QWheelEvent event(pos, pos, QPoint(), QPoint(0, -120), Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    (f.view.*&OpenView::wheelEvent)(&event);
    QCOMPARE(f.view.currentTime(), f.at(900));
    QVERIFY(f.scrolled() > 0);
}

void TestViewWheel::realWheelEventsOverTheRowsScrollThem()
{
    ScrolledFixture f;
    Input::wheel(&f.view, QPoint(700, 20), -120);
    QCOMPARE(f.view.currentTime(), f.at(900));
    QVERIFY(f.scrolled() > 0);
}

// Qt's headers hand wheel events on to the rows, with the position on the header.
void TestViewWheel::realWheelEventsOverTheHeaderScrollTheTime()
{
    ScrolledFixture f;
    for (const QPoint& pos : {QPoint(700, 20), QPoint(700, 0), QPoint(50, 49)}) {
        f.view.setCurrentTime(f.at(900));
        Input::wheel(f.view.header(), pos, -120);
        QVERIFY(f.view.currentTime() > f.at(900));
        QCOMPARE(f.scrolled(), 0);
    }
    const HeldModifiers control(f.view.windowHandle(), Qt::ControlModifier);
    Input::wheel(f.view.header(), QPoint(700, 20), -120);
    QCOMPARE(f.zoom(), int(Zoom::SixtyMinutes));
}

void TestViewWheel::withoutAHeaderTheRowsScrollAndControlZooms()
{
    ScrolledFixture f;
    QTest::ignoreMessage(QtCriticalMsg, QRegularExpression("header view should be of type TimelineHeaderView"));
    f.view.setHeader(new QHeaderView(Qt::Horizontal, &f.view));
    QCoreApplication::processEvents();
    f.view.verticalScrollBar()->setValue(ScrolledFixture::scrolledTo);
    f.wheel(5, -120);
    QVERIFY(f.scrolled() > 0);
    const HeldModifiers control(f.view.windowHandle(), Qt::ControlModifier);
    f.wheel(5, -120);
    QCOMPARE(f.zoom(), int(Zoom::SixtyMinutes));
}

QTEST_MAIN(TestViewWheel)
#include "tst_view_wheel.moc"
