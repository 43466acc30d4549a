#include "member_layout.h"
#include "support/held_modifiers.h"
#include "support/input.h"
#include "support/view_fixture.h"

#include <VeskTimeline/timeline_header_view_mouse_handler.h>

#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>

using namespace VeskTimeline;

PUBLISH_MEMBER(TimelineHeaderViewMouseHandler, m_header)
PUBLISH_MEMBER(TimelineHeaderViewMouseHandler, m_lastPos)
PUBLISH_MEMBER(TimelineHeaderViewMouseHandler, m_isLeftButtonPressed)
PUBLISH_MEMBER(TimelineHeaderViewMouseHandler, m_isRightButtonPressed)
PUBLISH_MEMBER(TimelineHeaderViewMouseHandler, m_hasMouseMovedLeft)
PUBLISH_MEMBER(TimelineHeaderViewMouseHandler, m_hasMouseMovedRight)
PUBLISH_MEMBER(TimelineHeaderViewMouseHandler, m_isIndicatorSelected)
PUBLISH_MEMBER(TimelineHeaderViewMouseHandler, m_isResizingSection)

namespace {

constexpr int left = ViewFixture::labelWidth;
constexpr int upperHalf = 10;
constexpr int lowerHalf = 40;

/// A ruler whose indicator stands at second 300; the mouse rests.
struct MouseFixture : ViewFixture
{
    TimelineHeaderView* header = view.header();
    TimelineHeaderViewMouseHandler* handler = header->mouseHandler();

    MouseFixture() { header->setIndicatorTime(at(300)); }

    /// Position in the ruler of a second of the window.
    static QPoint rulerPos(int second, int y) { return {left + second, y}; }
    Qt::CursorShape cursor() const { return view.cursor().shape(); }
    int indicatorSecond() const { return static_cast<int>((header->indicatorTime() - origin) / 1000); }
    void dragBorderTo(int x)
    {
        const QPoint grip(header->sectionPosition(1) - 3, upperHalf);
        Input::move(header, grip);
        Input::press(header, grip);
        Input::move(header, {x, upperHalf}, Qt::LeftButton);
        Input::release(header, {x, upperHalf});
    }
};

} // namespace

class TestHeaderMouseHandler : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".?"))); }

    void membersAreDeclaredInOrder();
    void virtualOperationsComeInOrder();
    void subclassesMayReplaceEachOperation();

    void pressOverTheIndicatorGrabsIt_data();
    void pressOverTheIndicatorGrabsIt();
    void gripGrowsWithTheRuler();
    void hiddenOrLockedIndicatorIsNotGrabbed();
    void otherButtonsGrabNothing();
    void pressWithTheSplitCursorGrabsTheBorder();

    void gripOfTheBorderHasNinePixels_data();
    void gripOfTheBorderHasNinePixels();
    void borderFollowsTheMouse();
    void borderStopsHalfWay();
    void cursorStaysBelowTheRuler();

    void hoverMarkerFollowsTheMouse();
    void hoverMarkerGoesWhenTheMouseLeavesTheColumn_data();
    void hoverMarkerGoesWhenTheMouseLeavesTheColumn();
    void hoverMarkerStaysWhileTheButtonIsDown();
    void movableIndicatorShowsTheOpenHand();

    void dragMovesTheIndicator();
    void dragSnapsWhileTheModelDoes();
    void dragBesideTheColumnHoldsTheIndicator();
    void lockStopsADrag();
    void moveWithoutGrabLeavesTheIndicator();

    void clickPlacesTheIndicator();
    void clickOnAHiddenIndicatorsRulerPlacesItToo();
    void clickOutsideTheColumnOrLockedPlacesNothing();
    void releaseAfterAMovePlacesNothing();
    void releaseEndsTheGesture();
    void cursorAfterReleaseTellsOfTheIndicator();

    void rightClickCyclesTheFormats();
    void rightClickCountsAfterAMoveToo();
    void rightClickRespectsAFixedFormat();

    void wheelScrollsByOneMajorInterval_data();
    void wheelScrollsByOneMajorInterval();
    void wheelStopsAtTheEndsOfTheRange();
    void controlWheelZooms_data();
    void controlWheelZooms();
    void controlWithAnotherModifierScrolls();
    void theKeyboardCountsNotTheEvent();

    void theBaseHeaderGetsNoMouseEvents();
    void withoutAViewOnlyTheRightButtonCounts();
};

void TestHeaderMouseHandler::membersAreDeclaredInOrder()
{
    const QList<std::ptrdiff_t> offsets{MEMBER_OFFSET(TimelineHeaderViewMouseHandler, m_header),
                                        MEMBER_OFFSET(TimelineHeaderViewMouseHandler, m_lastPos),
                                        MEMBER_OFFSET(TimelineHeaderViewMouseHandler, m_isLeftButtonPressed),
                                        MEMBER_OFFSET(TimelineHeaderViewMouseHandler, m_isRightButtonPressed),
                                        MEMBER_OFFSET(TimelineHeaderViewMouseHandler, m_hasMouseMovedLeft),
                                        MEMBER_OFFSET(TimelineHeaderViewMouseHandler, m_hasMouseMovedRight),
                                        MEMBER_OFFSET(TimelineHeaderViewMouseHandler, m_isIndicatorSelected),
                                        MEMBER_OFFSET(TimelineHeaderViewMouseHandler, m_isResizingSection)};
    QCOMPARE(offsets.first(), static_cast<std::ptrdiff_t>(sizeof(void*)));
    for (int i = 1; i < offsets.size(); ++i)
        QVERIFY2(offsets.at(i - 1) < offsets.at(i), QByteArray::number(i).constData());
}

void TestHeaderMouseHandler::virtualOperationsComeInOrder()
{
#if defined(__GNUC__) && defined(__x86_64__)
    using Handler = TimelineHeaderViewMouseHandler;
    static_assert(std::has_virtual_destructor_v<Handler>);
    // A virtual destructor has two entries.
    QCOMPARE(MemberLayout::virtualSlot(&Handler::mousePressEvent), std::ptrdiff_t(2));
    QCOMPARE(MemberLayout::virtualSlot(&Handler::mouseMoveEvent), std::ptrdiff_t(3));
    QCOMPARE(MemberLayout::virtualSlot(&Handler::mouseReleaseEvent), std::ptrdiff_t(4));
    QCOMPARE(MemberLayout::virtualSlot(&Handler::wheelEvent), std::ptrdiff_t(5));
#else
    QSKIP("The layout of virtual tables is known for x86-64 only");
#endif
}

void TestHeaderMouseHandler::subclassesMayReplaceEachOperation()
{
    struct Silent : TimelineHeaderViewMouseHandler
    {
        using TimelineHeaderViewMouseHandler::TimelineHeaderViewMouseHandler;
        void mousePressEvent(QMouseEvent*) override { calls << QStringLiteral("press"); }
        void mouseMoveEvent(QMouseEvent*) override { calls << QStringLiteral("move"); }
        void mouseReleaseEvent(QMouseEvent*) override { calls << QStringLiteral("release"); }
        void wheelEvent(QWheelEvent*) override { calls << QStringLiteral("wheel"); }
        QStringList calls;
    };
    MouseFixture f;
    Silent silent(f.header);
    TimelineHeaderViewMouseHandler* const handler = &silent;
    handler->mousePressEvent(nullptr);
    handler->mouseMoveEvent(nullptr);
    handler->mouseReleaseEvent(nullptr);
    handler->wheelEvent(nullptr);
    QCOMPARE(silent.calls, QStringList({QStringLiteral("press"), QStringLiteral("move"), QStringLiteral("release"),
                                        QStringLiteral("wheel")}));
}

void TestHeaderMouseHandler::pressOverTheIndicatorGrabsIt_data()
{
    QTest::addColumn<QPoint>("offset");
    QTest::addColumn<int>("y");
    QTest::addColumn<bool>("isGrabbed");

    // The ruler lies at rows 1 to 50 of the view; a quarter of its height to each side counts.
    QTest::newRow("middle") << QPoint(0, 0) << lowerHalf << true;
    QTest::newRow("left end") << QPoint(-12, 0) << lowerHalf << true;
    QTest::newRow("right end") << QPoint(12, 0) << lowerHalf << true;
    QTest::newRow("too far left") << QPoint(-13, 0) << lowerHalf << false;
    QTest::newRow("too far right") << QPoint(13, 0) << lowerHalf << false;
    QTest::newRow("first row") << QPoint(0, 0) << 25 << true;
    QTest::newRow("above") << QPoint(0, 0) << 24 << false;
    QTest::newRow("last row") << QPoint(0, 0) << 49 << true;
    QTest::newRow("below") << QPoint(0, 0) << 50 << false;
}

void TestHeaderMouseHandler::pressOverTheIndicatorGrabsIt()
{
    QFETCH(const QPoint, offset);
    QFETCH(const int, y);
    QFETCH(const bool, isGrabbed);

    MouseFixture f;
    QCOMPARE(f.header->geometry().top(), 1);
    QCOMPARE(f.header->geometry().bottom(), 50);
    QVERIFY(!f.handler->isBusy());
    Input::press(f.header, MouseFixture::rulerPos(300, y) + offset);
    QCOMPARE(f.handler->isIndicatorSelected(), isGrabbed);
    QCOMPARE(f.handler->isBusy(), isGrabbed);
    QCOMPARE(f.cursor(), isGrabbed ? Qt::ClosedHandCursor : Qt::ArrowCursor);
    QCOMPARE(f.indicatorSecond(), 300);
}

void TestHeaderMouseHandler::gripGrowsWithTheRuler()
{
    MouseFixture f;
    f.header->setLimitsVisible(true);
    QCoreApplication::processEvents();
    Input::press(f.header, MouseFixture::rulerPos(300 + 18, 60));
    QVERIFY(!f.handler->isBusy());
    Input::release(f.header, {10, 60});
    f.header->setIndicatorTime(ViewFixture::at(300));
    Input::press(f.header, MouseFixture::rulerPos(300 + 17, 60));
    QVERIFY(f.handler->isBusy());
}

void TestHeaderMouseHandler::hiddenOrLockedIndicatorIsNotGrabbed()
{
    MouseFixture f;
    f.header->setIndicatorVisible(false);
    Input::press(f.header, MouseFixture::rulerPos(300, lowerHalf));
    QVERIFY(!f.handler->isBusy());
    QVERIFY(!f.handler->isIndicatorSelected());
    QCOMPARE(f.cursor(), Qt::ArrowCursor);
    Input::release(f.header, MouseFixture::rulerPos(300, lowerHalf));

    f.header->setIndicatorVisible(true);
    f.header->lockIndicator();
    Input::press(f.header, MouseFixture::rulerPos(300, lowerHalf));
    QVERIFY(!f.handler->isBusy());
}

void TestHeaderMouseHandler::otherButtonsGrabNothing()
{
    MouseFixture f;
    for (const Qt::MouseButton button : {Qt::RightButton, Qt::MiddleButton}) {
        Input::press(f.header, MouseFixture::rulerPos(300, lowerHalf), button);
        QVERIFY(!f.handler->isBusy());
        Input::move(f.header, MouseFixture::rulerPos(350, lowerHalf), button);
        Input::release(f.header, MouseFixture::rulerPos(350, lowerHalf), button);
        QCOMPARE(f.indicatorSecond(), 300);
    }
}

void TestHeaderMouseHandler::pressWithTheSplitCursorGrabsTheBorder()
{
    MouseFixture f;
    const QPoint border(left - 1, upperHalf);
    // The cursor decides, not the position.
    Input::press(f.header, border);
    QVERIFY(!f.handler->isBusy());
    Input::release(f.header, border);

    Input::move(f.header, border);
    QCOMPARE(f.cursor(), Qt::SplitHCursor);
    Input::press(f.header, border);
    QVERIFY(f.handler->isBusy());
    QVERIFY(!f.handler->isIndicatorSelected());
    QCOMPARE(f.cursor(), Qt::SplitHCursor);
}

void TestHeaderMouseHandler::gripOfTheBorderHasNinePixels_data()
{
    QTest::addColumn<int>("x");
    QTest::addColumn<bool>("isGrip");

    QTest::newRow("before") << left - 10 << false;
    QTest::newRow("first") << left - 9 << true;
    QTest::newRow("last") << left - 1 << true;
    QTest::newRow("behind") << left << false;
}

void TestHeaderMouseHandler::gripOfTheBorderHasNinePixels()
{
    QFETCH(const int, x);
    QFETCH(const bool, isGrip);

    MouseFixture f;
    f.view.setCursor(Qt::WaitCursor);
    Input::move(f.header, {x, upperHalf});
    QCOMPARE(f.cursor(), isGrip ? Qt::SplitHCursor : Qt::ArrowCursor);
}

void TestHeaderMouseHandler::borderFollowsTheMouse()
{
    MouseFixture f;
    f.dragBorderTo(450);
    QCOMPARE(f.header->sectionSize(0), 450);
    QVERIFY(!f.handler->isBusy());
    QCOMPARE(f.cursor(), Qt::ArrowCursor);
    QCOMPARE(f.indicatorSecond(), 300);
    f.dragBorderTo(230);
    QCOMPARE(f.header->sectionSize(0), 230);
    // Released, it stays.
    Input::move(f.header, {600, upperHalf});
    QCOMPARE(f.header->sectionSize(0), 230);
}

void TestHeaderMouseHandler::borderStopsHalfWay()
{
    MouseFixture f;
    QCOMPARE(f.header->width(), 2000);
    f.dragBorderTo(1000);
    QCOMPARE(f.header->sectionSize(0), 1000);
    f.dragBorderTo(1001);
    QCOMPARE(f.header->sectionSize(0), 1000);
    f.dragBorderTo(400);
    f.dragBorderTo(1900);
    QCOMPARE(f.header->sectionSize(0), 1000);
}

void TestHeaderMouseHandler::cursorStaysBelowTheRuler()
{
    MouseFixture f;
    f.view.setCursor(Qt::WaitCursor);
    Input::move(f.header, MouseFixture::rulerPos(100, 51));
    QCOMPARE(f.cursor(), Qt::WaitCursor);
    Input::move(f.header, MouseFixture::rulerPos(100, 50));
    QCOMPARE(f.cursor(), Qt::ArrowCursor);
    // In the track column as well.
    f.view.setCursor(Qt::WaitCursor);
    Input::move(f.header, {50, 51});
    QCOMPARE(f.cursor(), Qt::WaitCursor);
    Input::move(f.header, {50, 50});
    QCOMPARE(f.cursor(), Qt::ArrowCursor);
}

void TestHeaderMouseHandler::hoverMarkerFollowsTheMouse()
{
    MouseFixture f;
    QSignalSpy spy(f.header, &TimelineHeaderView::hoverPositionChanged);
    Input::move(f.header, MouseFixture::rulerPos(77, upperHalf));
    QCOMPARE(f.header->hoverPosition(), left + 77);
    QCOMPARE(f.header->hoverTime(), ViewFixture::at(77));
    Input::move(f.header, MouseFixture::rulerPos(78, upperHalf), Qt::RightButton);
    QCOMPARE(f.header->hoverPosition(), left + 78);
    QCOMPARE(spy.count(), 2);
    QCOMPARE(f.indicatorSecond(), 300);
}

void TestHeaderMouseHandler::hoverMarkerGoesWhenTheMouseLeavesTheColumn_data()
{
    QTest::addColumn<int>("x");
    QTest::addColumn<int>("position");

    // The right edge is that of the ruler in the view, one pixel further because of the frame.
    QTest::newRow("track column") << 50 << -1;
    QTest::newRow("first pixel") << left << -1;
    QTest::newRow("second pixel") << left + 1 << left + 1;
    QTest::newRow("last pixel") << 1999 << 1999;
    QTest::newRow("beyond") << 2000 << -1;
    QTest::newRow("left of the ruler") << -4 << -1;
}

void TestHeaderMouseHandler::hoverMarkerGoesWhenTheMouseLeavesTheColumn()
{
    QFETCH(const int, x);
    QFETCH(const int, position);

    MouseFixture f;
    QCOMPARE(f.header->geometry().right(), 2000);
    Input::move(f.header, MouseFixture::rulerPos(100, upperHalf));
    Input::move(f.header, {x, upperHalf});
    QCOMPARE(f.header->hoverPosition(), position);
}

void TestHeaderMouseHandler::hoverMarkerStaysWhileTheButtonIsDown()
{
    MouseFixture f;
    Input::move(f.header, MouseFixture::rulerPos(100, upperHalf));
    Input::press(f.header, MouseFixture::rulerPos(100, upperHalf));
    Input::move(f.header, {50, upperHalf}, Qt::LeftButton);
    QCOMPARE(f.header->hoverPosition(), left + 100);
    Input::move(f.header, MouseFixture::rulerPos(120, upperHalf), Qt::LeftButton);
    QCOMPARE(f.header->hoverPosition(), left + 120);
    Input::release(f.header, MouseFixture::rulerPos(120, upperHalf));
    Input::move(f.header, {50, upperHalf});
    QCOMPARE(f.header->hoverPosition(), -1);
}

void TestHeaderMouseHandler::movableIndicatorShowsTheOpenHand()
{
    MouseFixture f;
    const QPoint over = MouseFixture::rulerPos(300, lowerHalf);
    Input::move(f.header, over);
    QCOMPARE(f.cursor(), Qt::OpenHandCursor);
    Input::move(f.header, MouseFixture::rulerPos(300, upperHalf));
    QCOMPARE(f.cursor(), Qt::ArrowCursor);
    Input::move(f.header, over);
    f.header->lockIndicator();
    Input::move(f.header, over);
    QCOMPARE(f.cursor(), Qt::ArrowCursor);
    f.header->unlockIndicator();
    Input::move(f.header, over);
    QCOMPARE(f.cursor(), Qt::OpenHandCursor);
    f.header->setIndicatorVisible(false);
    Input::move(f.header, over);
    QCOMPARE(f.cursor(), Qt::ArrowCursor);
}

void TestHeaderMouseHandler::dragMovesTheIndicator()
{
    MouseFixture f;
    QSignalSpy spy(f.header, &TimelineHeaderView::indicatorTimeChanged);
    Input::press(f.header, MouseFixture::rulerPos(305, lowerHalf));
    Input::move(f.header, MouseFixture::rulerPos(400, upperHalf), Qt::LeftButton);
    QCOMPARE(f.indicatorSecond(), 400);
    QCOMPARE(f.cursor(), Qt::ClosedHandCursor);
    QCOMPARE(f.header->hoverPosition(), left + 400);
    Input::move(f.header, MouseFixture::rulerPos(410, 500), Qt::LeftButton);
    QCOMPARE(f.indicatorSecond(), 410);
    QVERIFY(f.handler->isIndicatorSelected());
    QCOMPARE(spy.count(), 2);
    // Where it is let go does not count, only where it was moved.
    Input::release(f.header, MouseFixture::rulerPos(450, upperHalf));
    QCOMPARE(f.indicatorSecond(), 410);
    QVERIFY(!f.handler->isBusy());
    Input::move(f.header, MouseFixture::rulerPos(500, lowerHalf));
    QCOMPARE(f.indicatorSecond(), 410);
}

void TestHeaderMouseHandler::dragSnapsWhileTheModelDoes()
{
    MouseFixture f;
    f.model.setSnapEnabled(true);
    f.model.setSnapStep(60'000);
    Input::press(f.header, MouseFixture::rulerPos(300, lowerHalf));
    Input::move(f.header, MouseFixture::rulerPos(419, lowerHalf), Qt::LeftButton);
    QCOMPARE(f.indicatorSecond(), 360);
}

void TestHeaderMouseHandler::dragBesideTheColumnHoldsTheIndicator()
{
    MouseFixture f;
    Input::press(f.header, MouseFixture::rulerPos(300, lowerHalf));
    Input::move(f.header, {50, lowerHalf}, Qt::LeftButton);
    QCOMPARE(f.indicatorSecond(), 300);
    QCOMPARE(f.cursor(), Qt::ClosedHandCursor);
    QVERIFY(f.handler->isBusy());
    Input::move(f.header, MouseFixture::rulerPos(310, lowerHalf), Qt::LeftButton);
    QCOMPARE(f.indicatorSecond(), 310);
}

void TestHeaderMouseHandler::lockStopsADrag()
{
    MouseFixture f;
    Input::press(f.header, MouseFixture::rulerPos(300, lowerHalf));
    f.header->lockIndicator();
    Input::move(f.header, MouseFixture::rulerPos(400, lowerHalf), Qt::LeftButton);
    QCOMPARE(f.indicatorSecond(), 300);
    QCOMPARE(f.cursor(), Qt::ArrowCursor);
}

void TestHeaderMouseHandler::moveWithoutGrabLeavesTheIndicator()
{
    MouseFixture f;
    Input::press(f.header, MouseFixture::rulerPos(100, lowerHalf));
    Input::move(f.header, MouseFixture::rulerPos(300, lowerHalf), Qt::LeftButton);
    QCOMPARE(f.indicatorSecond(), 300);
    QCOMPARE(f.cursor(), Qt::ArrowCursor);
    Input::move(f.header, MouseFixture::rulerPos(500, lowerHalf), Qt::LeftButton);
    QCOMPARE(f.indicatorSecond(), 300);
}

void TestHeaderMouseHandler::clickPlacesTheIndicator()
{
    MouseFixture f;
    QSignalSpy spy(f.header, &TimelineHeaderView::indicatorTimeChanged);
    Input::click(f.header, MouseFixture::rulerPos(1234, upperHalf));
    QCOMPARE(f.indicatorSecond(), 1234);
    Input::click(f.header, MouseFixture::rulerPos(1, lowerHalf));
    QCOMPARE(f.indicatorSecond(), 1);
    QCOMPARE(spy.count(), 2);

    f.model.setSnapEnabled(true);
    f.model.setSnapStep(60'000);
    Input::click(f.header, MouseFixture::rulerPos(719, upperHalf));
    QCOMPARE(f.indicatorSecond(), 660);
}

void TestHeaderMouseHandler::clickOnAHiddenIndicatorsRulerPlacesItToo()
{
    MouseFixture f;
    f.header->setIndicatorVisible(false);
    Input::click(f.header, MouseFixture::rulerPos(200, upperHalf));
    QCOMPARE(f.indicatorSecond(), 200);
    QVERIFY(!f.header->isIndicatorVisible());
}

void TestHeaderMouseHandler::clickOutsideTheColumnOrLockedPlacesNothing()
{
    MouseFixture f;
    Input::click(f.header, {50, upperHalf});
    QCOMPARE(f.indicatorSecond(), 300);
    Input::click(f.header, {left, upperHalf});
    QCOMPARE(f.indicatorSecond(), 300);
    Input::click(f.header, {2000, upperHalf});
    QCOMPARE(f.indicatorSecond(), 300);
    f.header->lockIndicator();
    Input::click(f.header, MouseFixture::rulerPos(200, upperHalf));
    QCOMPARE(f.indicatorSecond(), 300);
}

void TestHeaderMouseHandler::releaseAfterAMovePlacesNothing()
{
    MouseFixture f;
    Input::press(f.header, MouseFixture::rulerPos(100, upperHalf));
    Input::move(f.header, MouseFixture::rulerPos(101, upperHalf), Qt::LeftButton);
    Input::release(f.header, MouseFixture::rulerPos(101, upperHalf));
    QCOMPARE(f.indicatorSecond(), 300);
    // The next click is a click again.
    Input::click(f.header, MouseFixture::rulerPos(101, upperHalf));
    QCOMPARE(f.indicatorSecond(), 101);
}

void TestHeaderMouseHandler::releaseEndsTheGesture()
{
    MouseFixture f;
    Input::press(f.header, MouseFixture::rulerPos(300, lowerHalf));
    QVERIFY(f.handler->isBusy());
    // Another button's release is none of this gesture.
    Input::release(f.header, MouseFixture::rulerPos(300, lowerHalf), Qt::MiddleButton);
    QVERIFY(f.handler->isBusy());
    Input::release(f.header, MouseFixture::rulerPos(300, lowerHalf));
    QVERIFY(!f.handler->isBusy());
    QVERIFY(!f.handler->isIndicatorSelected());
}

void TestHeaderMouseHandler::cursorAfterReleaseTellsOfTheIndicator()
{
    MouseFixture f;
    Input::click(f.header, MouseFixture::rulerPos(500, lowerHalf));
    QCOMPARE(f.cursor(), Qt::OpenHandCursor);
    Input::click(f.header, MouseFixture::rulerPos(700, upperHalf));
    QCOMPARE(f.cursor(), Qt::ArrowCursor);
    // After a resize that ends below, too.
    Input::move(f.header, {left - 3, upperHalf});
    Input::press(f.header, {left - 3, upperHalf});
    Input::release(f.header, {left - 3, 300});
    QCOMPARE(f.cursor(), Qt::ArrowCursor);
}

void TestHeaderMouseHandler::rightClickCyclesTheFormats()
{
    MouseFixture f;
    QList<int> formats;
    for (int i = 0; i < 7; ++i) {
        Input::click(f.header, MouseFixture::rulerPos(100, upperHalf), Qt::RightButton);
        formats << f.header->dateTimeFormat();
    }
    QCOMPARE(formats, QList<int>({DateTime::ISODate, DateTime::Standard, DateTime::DTGShort, DateTime::DTGVeryShort,
                                  DateTime::TimeOnly, DateTime::DTG, DateTime::ISODate}));
    QCOMPARE(f.indicatorSecond(), 300);
    QCOMPARE(int(f.header->hoverDateTimeFormat()), int(DateTime::DTG));
    // In the track column, too.
    Input::click(f.header, {50, upperHalf}, Qt::RightButton);
    QCOMPARE(int(f.header->dateTimeFormat()), int(DateTime::Standard));
}

void TestHeaderMouseHandler::rightClickCountsAfterAMoveToo()
{
    MouseFixture f;
    Input::press(f.header, MouseFixture::rulerPos(100, upperHalf), Qt::RightButton);
    QCOMPARE(int(f.header->dateTimeFormat()), int(DateTime::DTG));
    Input::move(f.header, MouseFixture::rulerPos(600, upperHalf), Qt::RightButton);
    Input::release(f.header, MouseFixture::rulerPos(600, upperHalf), Qt::RightButton);
    QCOMPARE(int(f.header->dateTimeFormat()), int(DateTime::ISODate));
}

void TestHeaderMouseHandler::rightClickRespectsAFixedFormat()
{
    MouseFixture f;
    f.header->setDateTimeFormatChangable(false);
    Input::click(f.header, MouseFixture::rulerPos(100, upperHalf), Qt::RightButton);
    QCOMPARE(int(f.header->dateTimeFormat()), int(DateTime::DTG));
}

void TestHeaderMouseHandler::wheelScrollsByOneMajorInterval_data()
{
    QTest::addColumn<int>("delta");
    QTest::addColumn<int>("zoom");
    QTest::addColumn<int>("step");

    QTest::newRow("towards the user") << -120 << int(Zoom::ThirtyMinutes) << 300;
    QTest::newRow("not at all") << 0 << int(Zoom::ThirtyMinutes) << 300;
    QTest::newRow("least away") << 1 << int(Zoom::ThirtyMinutes) << -300;
    QTest::newRow("away") << 120 << int(Zoom::ThirtyMinutes) << -300;
    QTest::newRow("another zoom") << 120 << int(Zoom::FifteenSeconds) << -3;
    QTest::newRow("many notches") << -1200 << int(Zoom::FiveMinutes) << 60;
}

void TestHeaderMouseHandler::wheelScrollsByOneMajorInterval()
{
    QFETCH(const int, delta);
    QFETCH(const int, zoom);
    QFETCH(const int, step);

    MouseFixture f;
    f.view.setZoomFactor(static_cast<Zoom::Factor>(zoom));
    f.view.setCurrentTime(ViewFixture::at(1000));
    QSignalSpy zooms(&f.view, &TimelineView::zoomChanged);
    Input::wheel(f.header, MouseFixture::rulerPos(100, upperHalf), delta);
    QCOMPARE(f.view.currentTime(), ViewFixture::at(1000 + step));
    QVERIFY(zooms.isEmpty());
}

void TestHeaderMouseHandler::wheelStopsAtTheEndsOfTheRange()
{
    MouseFixture f;
    f.view.setCurrentTime(ViewFixture::at(100));
    Input::wheel(f.header, MouseFixture::rulerPos(100, upperHalf), 120);
    QCOMPARE(f.view.currentTime(), ViewFixture::at(0));
    f.view.setCurrentTime(ViewFixture::at(1700));
    Input::wheel(f.header, MouseFixture::rulerPos(100, upperHalf), -120);
    QCOMPARE(f.view.currentTime(), ViewFixture::at(1800));
}

void TestHeaderMouseHandler::controlWheelZooms_data()
{
    QTest::addColumn<int>("delta");
    QTest::addColumn<int>("zoom");

    QTest::newRow("towards the user") << -120 << int(Zoom::SixtyMinutes);
    QTest::newRow("least towards the user") << -1 << int(Zoom::SixtyMinutes);
    QTest::newRow("not at all") << 0 << int(Zoom::FifteenMinutes);
    QTest::newRow("away") << 120 << int(Zoom::FifteenMinutes);
}

void TestHeaderMouseHandler::controlWheelZooms()
{
    QFETCH(const int, delta);
    QFETCH(const int, zoom);

    MouseFixture f;
    const HeldModifiers held(&f.view, Qt::ControlModifier);
    QCOMPARE(QGuiApplication::queryKeyboardModifiers(), Qt::ControlModifier);
    QSignalSpy times(&f.view, &TimelineView::currentTimeChanged);
    Input::wheel(f.header, MouseFixture::rulerPos(100, upperHalf), delta);
    QCOMPARE(int(f.view.zoomFactor()), zoom);
    QVERIFY(times.isEmpty());
}

void TestHeaderMouseHandler::controlWithAnotherModifierScrolls()
{
    MouseFixture f;
    f.view.setCurrentTime(ViewFixture::at(600));
    {
        const HeldModifiers held(&f.view, Qt::ControlModifier | Qt::ShiftModifier);
        Input::wheel(f.header, MouseFixture::rulerPos(100, upperHalf), 120);
    }
    QCOMPARE(int(f.view.zoomFactor()), int(Zoom::ThirtyMinutes));
    QCOMPARE(f.view.currentTime(), ViewFixture::at(300));
    // Released, the keys are out of the way.
    Input::wheel(f.header, MouseFixture::rulerPos(100, upperHalf), -120);
    QCOMPARE(int(f.view.zoomFactor()), int(Zoom::ThirtyMinutes));
    QCOMPARE(f.view.currentTime(), ViewFixture::at(600));
}

void TestHeaderMouseHandler::theKeyboardCountsNotTheEvent()
{
    MouseFixture f;
    const QPoint pos = MouseFixture::rulerPos(100, upperHalf);
    QWidget* const target = f.header->viewport();
    QWheelEvent event(pos, target->mapToGlobal(pos), QPoint(), QPoint(0, -120), Qt::NoButton, Qt::ControlModifier,
                      Qt::NoScrollPhase, false);
    QApplication::sendEvent(target, &event);
    QCOMPARE(int(f.view.zoomFactor()), int(Zoom::ThirtyMinutes));
    QCOMPARE(f.view.currentTime(), ViewFixture::at(300));
}

void TestHeaderMouseHandler::theBaseHeaderGetsNoMouseEvents()
{
    MouseFixture f;
    f.header->setSectionsClickable(true);
    f.header->setSectionsMovable(true);
    QSignalSpy pressed(f.header, &QHeaderView::sectionPressed);
    QSignalSpy clicked(f.header, &QHeaderView::sectionClicked);
    QSignalSpy entered(f.header, &QHeaderView::sectionEntered);
    QSignalSpy moved(f.header, &QHeaderView::sectionMoved);
    Input::click(f.header, {50, upperHalf});
    Input::drag(f.header, {50, upperHalf}, {800, upperHalf});
    QVERIFY(pressed.isEmpty() && clicked.isEmpty() && entered.isEmpty() && moved.isEmpty());
}

void TestHeaderMouseHandler::withoutAViewOnlyTheRightButtonCounts()
{
    QTest::ignoreMessage(QtWarningMsg,
                         "WARNING: main functionalities are inoperable without a TimelineView as parent.");
    TimelineHeaderView orphan(nullptr);
    orphan.resize(400, 50);
    Input::drag(&orphan, {100, upperHalf}, {300, lowerHalf});
    Input::click(&orphan, {100, upperHalf}, Qt::RightButton);
    Input::wheel(&orphan, {100, upperHalf}, 120);
    QVERIFY(!orphan.mouseHandler()->isBusy());
    QCOMPARE(orphan.indicatorTime(), qint64(-1));
    QCOMPARE(int(orphan.dateTimeFormat()), int(DateTime::ISODate));
}

QTEST_MAIN(TestHeaderMouseHandler)
#include "tst_header_mouse_handler.moc"
