#include "auto/view/recording_handlers.h"
#include "support/input.h"

#include <VeskTimeline/timeline_header_view_mouse_handler.h>

#include <QMouseEvent>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>

using namespace VeskTimeline;

namespace {

struct RoutingFixture : ViewFixture
{
    RecordingHandlers handlers{view};
    QPoint inRow = pos(500, trackA);
    QPoint inName{50, inRow.y()};
    QPoint belowRows{labelWidth + 500, view.viewport()->height() - 20};

    /// The handlers that a mouse event reaches; each must have been given the event itself.
    QStringList routed(void (TimelineView::*handler)(QMouseEvent*), QMouseEvent& event)
    {
        handlers.calls.clear();
        (view.*handler)(&event);
        return handlers.calls.allGot(&event) ? handlers.calls.names() : QStringList("an event of its own");
    }
    static QMouseEvent mouseEvent(QEvent::Type type, const QPoint& pos, Qt::MouseButton button)
    {
        return QMouseEvent(type, QPointF(pos), QPointF(pos), button, button, Qt::NoModifier);
    }
    QStringList press(const QPoint& pos, Qt::MouseButton button = Qt::LeftButton)
    {
        QMouseEvent event = mouseEvent(QEvent::MouseButtonPress, pos, button);
        return routed(&OpenView::mousePressEvent, event);
    }
    QStringList move(const QPoint& pos, bool* isAccepted = nullptr)
    {
        QMouseEvent event = mouseEvent(QEvent::MouseMove, pos, Qt::NoButton);
        const QStringList names = routed(&OpenView::mouseMoveEvent, event);
        if (isAccepted)
            *isAccepted = event.isAccepted();
        return names;
    }
    QStringList release(const QPoint& pos, Qt::MouseButton button = Qt::LeftButton)
    {
        QMouseEvent event = mouseEvent(QEvent::MouseButtonRelease, pos, button);
        return routed(&OpenView::mouseReleaseEvent, event);
    }
    QStringList doubleClick(const QPoint& pos)
    {
        QMouseEvent event = mouseEvent(QEvent::MouseButtonDblClick, pos, Qt::LeftButton);
        return routed(&OpenView::mouseDoubleClickEvent, event);
    }
    QStringList key(int key)
    {
        QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier);
        handlers.calls.clear();
        (view.*&OpenView::keyPressEvent)(&event);
        return handlers.calls.allGot(&event) ? handlers.calls.names() : QStringList("an event of its own");
    }
    Qt::CursorShape cursor() const { return view.cursor().shape(); }

    /// Grabs the indicator on the ruler, as a user who drags it.
    void keepHeaderBusy()
    {
        view.header()->setIndicatorTime(at(900));
        Input::press(view.header(), QPoint(labelWidth + 900, 40));
        QVERIFY(view.header()->mouseHandler()->isBusy());
        view.setCursor(Qt::ArrowCursor);
    }
};

/// Counts the times the rows are painted.
class PaintCounter : public QObject
{
public:
    explicit PaintCounter(TimelineView& view) : m_viewport(view.viewport())
    {
        QCoreApplication::processEvents();
        m_viewport->installEventFilter(this);
    }
    int paints()
    {
        QCoreApplication::processEvents();
        return std::exchange(m_count, 0);
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::Paint)
            ++m_count;
        return QObject::eventFilter(watched, event);
    }

private:
    QWidget* m_viewport;
    int m_count = 0;
};

const QList<Qt::CursorShape> moveCursors{Qt::ClosedHandCursor, Qt::ForbiddenCursor};

} // namespace

class TestViewRouting : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(".?")); }

    void withoutAModelPressReleaseMoveAndKeyReachNobody();
    void withoutAModelAMoveStillSetsTheHoverPosition();
    void doubleClickReachesTrackThenSelectHandlerEvenWithoutAModel();

    void pressWhileTheHeaderIsBusyReachesTheHeaderOnly();
    void pressOnANameReachesTreeViewThenTrackHandlerOnly();
    void pressOnANameIgnoresTheEdgeCursor();
    void pressOnABranchArrowExpandsAndCollapses();
    void pressWithTheEdgeCursorReachesOnlyTheResizeHandler();
    void pressWithTheEdgeCursorOnAReadOnlyModelReachesOnlyTheSelectHandler();
    void pressInTheTimeColumnReachesSelectThenDragHandler_data();
    void pressInTheTimeColumnReachesSelectThenDragHandler();
    void pressOnAReadOnlyModelReachesOnlyTheSelectHandler();
    void rightPressAsksForTheContextMenuOnce();
    void rightPressAsksForTheContextMenuWhateverTheContextMenuPolicy();
    void rightPressThatStartsADragAsksForNoContextMenu();
    void rightPressOnAReadOnlyModelAsksForTheContextMenuAlthoughADragIsActive();
    void rightPressThatResizesOrHitsANameAsksForNoContextMenuHere();
    void otherButtonsAskForNoContextMenu();
    void rightPressOnEmptySpaceIsAskedForByHandlerAndView();

    void moveInsideTheTimeColumnSetsTheHoverPosition();
    void moveOutsideTheTimeColumnHidesTheHoverMarker_data();
    void moveOutsideTheTimeColumnHidesTheHoverMarker();
    void moveWhileTheHeaderIsBusyReachesTheHeaderOnly();
    void moveResetsTheEdgeCursorUnlessAResizeIsActive();
    void moveWithoutAResizeHandlerResetsTheEdgeCursor();
    void moveOfDraggedItemsReachesOnlyTheDragHandler();
    void moveIsNoDragWithoutItems();
    void moveIsNoDragWithAnotherCursor();
    void moveIsNoDragOnAReadOnlyModel();
    void moveDuringAResizeReachesOnlyTheResizeHandler();
    void moveDuringAResizeNeedsTheEdgeCursor();
    void moveDuringAResizeOfAReadOnlyModelReachesTheSelectHandler();
    void dragComesBeforeResize();
    void moveOverAnItemReachesTheSelectHandlerAndIsAccepted();
    void moveOverANameOrBelowTheRowsIsIgnoredUnderTheArrow_data();
    void moveOverANameOrBelowTheRowsIsIgnoredUnderTheArrow();
    void moveOutsideTheRowsKeepsTheCursorWhereItIsNotTheViews();
    void moveOverARowOfAReadOnlyModelKeepsTheCursor();

    void releaseWhileTheHeaderIsBusyReachesTheHeaderOnly();
    void releaseOfADragReachesTrackAndDragHandler();
    void releaseOfAResizeReachesTrackAndResizeHandler();
    void releaseOfAnActiveSelectionReachesTrackAndSelectHandler();
    void releaseWithoutAnyGestureReachesOnlyTheTrackHandler();
    void releaseOnAReadOnlyModelAlwaysReachesTheSelectHandler();
    void everyReleaseRepaints();

    void keyReachesDragThenSelectHandler();
    void keyDuringAResizeReachesNobodyAndRepaintsNothing();
    void keyOnAReadOnlyModelReachesOnlyTheSelectHandler();
    void keysDoNotMoveACurrentRow();
    void everyKeyRepaints();

    void missingHandlersDropTheirSteps();
    void withoutAnyHandlerEventsDoNothing();
    void withoutAHeaderEventsReachTheHandlers();
};

void TestViewRouting::withoutAModelPressReleaseMoveAndKeyReachNobody()
{
    TimelineView view;
    RecordingHandlers handlers(view);
    handlers.select.active = true;
    QSignalSpy menuSpy(&view, &QWidget::customContextMenuRequested);
    const QPoint pos(300, 20);
    for (const Qt::CursorShape cursor : {Qt::ArrowCursor, Qt::SizeHorCursor, Qt::ClosedHandCursor}) {
        view.setCursor(cursor);
        Input::press(&view, pos);
        Input::press(&view, pos, Qt::RightButton);
        Input::move(&view, pos, Qt::LeftButton);
        Input::release(&view, pos);
        Input::key(&view, Qt::Key_Left);
    }
    QCOMPARE(handlers.calls.names(), QStringList());
    QCOMPARE(menuSpy.count(), 0);
}

void TestViewRouting::withoutAModelAMoveStillSetsTheHoverPosition()
{
    TimelineView view;
    view.resize(800, 300);
    RecordingHandlers handlers(view);
    // Without a model the mouse is not tracked; with a button down moves arrive all the same.
    Input::move(&view, QPoint(300, 20), Qt::LeftButton);
    QCOMPARE(view.header()->hoverPosition(), 300);
    QCOMPARE(handlers.calls.names(), QStringList());
}

void TestViewRouting::doubleClickReachesTrackThenSelectHandlerEvenWithoutAModel()
{
    const QStringList expected{"track.doubleClick", "select.doubleClick"};
    RoutingFixture f;
    QCOMPARE(f.doubleClick(f.inRow), expected);
    QCOMPARE(f.doubleClick(f.inName), expected);
    f.model.setEditable(false);
    QCOMPARE(f.doubleClick(f.belowRows), expected);

    TimelineView empty;
    RecordingHandlers handlers(empty);
    Input::mouse(empty.viewport(), QEvent::MouseButtonDblClick, QPoint(5, 5), Qt::LeftButton, Qt::LeftButton);
    QCOMPARE(handlers.calls.names(), expected);
}

void TestViewRouting::pressWhileTheHeaderIsBusyReachesTheHeaderOnly()
{
    RoutingFixture f;
    f.keepHeaderBusy();
    QSignalSpy menuSpy(&f.view, &QWidget::customContextMenuRequested);
    QCOMPARE(f.press(f.inName), QStringList());
    QCOMPARE(f.cursor(), Qt::ArrowCursor);
    // What the ruler takes for a press on its indicator.
    QCOMPARE(f.press(QPoint(ViewFixture::labelWidth + 900, 40)), QStringList());
    QCOMPARE(f.cursor(), Qt::ClosedHandCursor);
    QCOMPARE(f.press(f.inRow, Qt::RightButton), QStringList());
    QCOMPARE(menuSpy.count(), 0);
}

void TestViewRouting::pressOnANameReachesTreeViewThenTrackHandlerOnly()
{
    RoutingFixture f;
    connect(&f.view, &QAbstractItemView::pressed, &f.view,
            [&f](const QModelIndex& index) { QCOMPARE(index, f.view.indexOfTrackRow(f.trackA, 0)); });
    QSignalSpy pressedSpy(&f.view, &QAbstractItemView::pressed);
    QSignalSpy menuSpy(&f.view, &QWidget::customContextMenuRequested);
    int pressesBeforeTrackHandler = 0;
    f.handlers.calls.onCall = [&] { pressesBeforeTrackHandler = static_cast<int>(pressedSpy.count()); };
    f.handlers.drag.active = true;
    f.handlers.resize.active = true;
    QCOMPARE(f.press(f.inName), QStringList("track.press"));
    QCOMPARE(pressesBeforeTrackHandler, 1);
    QCOMPARE(f.view.currentIndex(), f.view.indexOfTrackRow(f.trackA, 0));
    QCOMPARE(f.press(f.inName, Qt::RightButton), QStringList("track.press"));
    QCOMPARE(menuSpy.count(), 0);
}

void TestViewRouting::pressOnANameIgnoresTheEdgeCursor()
{
    RoutingFixture f;
    f.view.setCursor(Qt::SizeHorCursor);
    QCOMPARE(f.press(f.inName), QStringList("track.press"));
    f.model.setEditable(false);
    QCOMPARE(f.press(f.inName), QStringList("track.press"));
}

void TestViewRouting::pressOnABranchArrowExpandsAndCollapses()
{
    RoutingFixture f;
    f.model.newTrack(QStringLiteral("A1"), f.trackA);
    QCoreApplication::processEvents();
    const QModelIndex row = f.view.indexOfTrackRow(f.trackA, 0);
    const QRect name = f.view.visualRect(row);
    const QPoint arrow(name.left() - f.view.indentation() / 2, name.center().y());
    QVERIFY(!f.view.isExpanded(row));
    Input::click(&f.view, arrow);
    QVERIFY(f.view.isExpanded(row));
    Input::click(&f.view, arrow);
    QVERIFY(!f.view.isExpanded(row));
    Input::click(&f.view, name.center());
    QVERIFY(!f.view.isExpanded(row));
}

void TestViewRouting::pressWithTheEdgeCursorReachesOnlyTheResizeHandler()
{
    RoutingFixture f;
    QSignalSpy menuSpy(&f.view, &QWidget::customContextMenuRequested);
    f.view.setCursor(Qt::SizeHorCursor);
    QCOMPARE(f.press(f.inRow), QStringList("resize.press"));
    QCOMPARE(f.press(f.belowRows), QStringList("resize.press"));
    QCOMPARE(f.press(f.inRow, Qt::RightButton), QStringList("resize.press"));
    QCOMPARE(menuSpy.count(), 0);
}

void TestViewRouting::pressWithTheEdgeCursorOnAReadOnlyModelReachesOnlyTheSelectHandler()
{
    RoutingFixture f;
    f.model.setEditable(false);
    f.view.setCursor(Qt::SizeHorCursor);
    QCOMPARE(f.press(f.inRow), QStringList("select.press"));
}

void TestViewRouting::pressInTheTimeColumnReachesSelectThenDragHandler_data()
{
    QTest::addColumn<int>("cursor");
    for (const Qt::CursorShape cursor : {Qt::ArrowCursor, Qt::ClosedHandCursor, Qt::SplitHCursor, Qt::CrossCursor})
        QTest::addRow("cursor %d", cursor) << static_cast<int>(cursor);
}

void TestViewRouting::pressInTheTimeColumnReachesSelectThenDragHandler()
{
    QFETCH(int, cursor);
    RoutingFixture f;
    f.view.setCursor(static_cast<Qt::CursorShape>(cursor));
    const QStringList expected{"select.press", "drag.press"};
    QCOMPARE(f.press(f.inRow), expected);
    QCOMPARE(f.press(f.belowRows), expected);
    QCOMPARE(f.press(QPoint(50, f.belowRows.y())), expected);
    QCOMPARE(f.press(f.inRow, Qt::MiddleButton), expected);
    f.handlers.resize.active = true;
    QCOMPARE(f.press(f.inRow), expected);
}

void TestViewRouting::pressOnAReadOnlyModelReachesOnlyTheSelectHandler()
{
    RoutingFixture f;
    f.model.setEditable(false);
    f.handlers.drag.active = true;
    QCOMPARE(f.press(f.inRow), QStringList("select.press"));
    QCOMPARE(f.press(f.belowRows), QStringList("select.press"));
}

void TestViewRouting::rightPressAsksForTheContextMenuOnce()
{
    RoutingFixture f;
    QSignalSpy menuSpy(&f.view, &QWidget::customContextMenuRequested);
    const QStringList expected{"select.press", "drag.press"};
    QCOMPARE(f.press(f.inRow, Qt::RightButton), expected);
    QCOMPARE(menuSpy.count(), 1);
    QCOMPARE(menuSpy.last().first().toPoint(), f.inRow);
    QCOMPARE(f.press(f.belowRows, Qt::RightButton), expected);
    QCOMPARE(menuSpy.count(), 2);
    QCOMPARE(menuSpy.last().first().toPoint(), f.belowRows);
}

void TestViewRouting::rightPressAsksForTheContextMenuWhateverTheContextMenuPolicy()
{
    RoutingFixture f;
    for (const Qt::ContextMenuPolicy policy : {Qt::NoContextMenu, Qt::CustomContextMenu, Qt::PreventContextMenu}) {
        f.view.setContextMenuPolicy(policy);
        QSignalSpy menuSpy(&f.view, &QWidget::customContextMenuRequested);
        f.press(f.inRow, Qt::RightButton);
        QCOMPARE(menuSpy.count(), 1);
    }
}

void TestViewRouting::rightPressThatStartsADragAsksForNoContextMenu()
{
    RoutingFixture f;
    QSignalSpy menuSpy(&f.view, &QWidget::customContextMenuRequested);
    f.handlers.drag.becomesActiveAtPress = true;
    const QStringList expected{"select.press", "drag.press"};
    QCOMPARE(f.press(f.inRow, Qt::RightButton), expected);
    QCOMPARE(menuSpy.count(), 0);
}

void TestViewRouting::rightPressOnAReadOnlyModelAsksForTheContextMenuAlthoughADragIsActive()
{
    RoutingFixture f;
    QSignalSpy menuSpy(&f.view, &QWidget::customContextMenuRequested);
    f.handlers.drag.active = true;
    f.model.setEditable(false);
    QCOMPARE(f.press(f.inRow, Qt::RightButton), QStringList("select.press"));
    QCOMPARE(menuSpy.count(), 1);
}

void TestViewRouting::rightPressThatResizesOrHitsANameAsksForNoContextMenuHere()
{
    RoutingFixture f;
    QSignalSpy menuSpy(&f.view, &QWidget::customContextMenuRequested);
    f.press(f.inName, Qt::RightButton);
    f.view.setCursor(Qt::SizeHorCursor);
    f.press(f.inRow, Qt::RightButton);
    QCOMPARE(menuSpy.count(), 0);
}

void TestViewRouting::otherButtonsAskForNoContextMenu()
{
    RoutingFixture f;
    QSignalSpy menuSpy(&f.view, &QWidget::customContextMenuRequested);
    f.press(f.inRow, Qt::LeftButton);
    f.press(f.inRow, Qt::MiddleButton);
    QCOMPARE(menuSpy.count(), 0);
}

// Each of the two raises the signal on its own account; on an item only the view does.
void TestViewRouting::rightPressOnEmptySpaceIsAskedForByHandlerAndView()
{
    ViewFixture f;
    f.addSeconds(f.trackA, 100, 50);
    QSignalSpy menuSpy(&f.view, &QWidget::customContextMenuRequested);
    Input::press(&f.view, f.pos(500, f.trackA), Qt::RightButton);
    QCOMPARE(menuSpy.count(), 2);
    QCOMPARE(menuSpy.first(), QVariantList{f.pos(500, f.trackA)});
    QCOMPARE(menuSpy.last(), QVariantList{f.pos(500, f.trackA)});
    Input::press(&f.view, f.pos(125, f.trackA), Qt::RightButton);
    QCOMPARE(menuSpy.count(), 3);
    QCOMPARE(menuSpy.last(), QVariantList{f.pos(125, f.trackA)});
}

void TestViewRouting::moveInsideTheTimeColumnSetsTheHoverPosition()
{
    RoutingFixture f;
    const int y = f.inRow.y();
    for (const int x : {ViewFixture::labelWidth + 1, 700, f.view.geometry().right() - 1}) {
        f.move(QPoint(x, y));
        QCOMPARE(f.view.header()->hoverPosition(), x);
    }
    f.move(QPoint(700, 1));
    QCOMPARE(f.view.header()->hoverPosition(), 700);
}

void TestViewRouting::moveOutsideTheTimeColumnHidesTheHoverMarker_data()
{
    QTest::addColumn<QPoint>("pos");
    QTest::newRow("name column") << QPoint(50, 20);
    QTest::newRow("left edge of the time column") << QPoint(ViewFixture::labelWidth, 20);
    QTest::newRow("top edge") << QPoint(700, 0);
    QTest::newRow("above") << QPoint(700, -1);
}

void TestViewRouting::moveOutsideTheTimeColumnHidesTheHoverMarker()
{
    QFETCH(QPoint, pos);
    RoutingFixture f;
    f.move(f.inRow);
    QCOMPARE(f.view.header()->hoverPosition(), f.inRow.x());
    f.move(pos);
    QCOMPARE(f.view.header()->hoverPosition(), -1);
    f.move(f.inRow);
    f.move(QPoint(f.view.geometry().right(), 20));
    QCOMPARE(f.view.header()->hoverPosition(), -1);
    f.move(f.inRow);
    f.move(QPoint(700, f.view.geometry().bottom()));
    QCOMPARE(f.view.header()->hoverPosition(), -1);
}

void TestViewRouting::moveWhileTheHeaderIsBusyReachesTheHeaderOnly()
{
    RoutingFixture f;
    f.keepHeaderBusy();
    // Neither the drag nor the edge that the cursor speaks of is looked at.
    f.view.selectItem(1, true);
    f.handlers.drag.active = true;
    f.view.setCursor(Qt::SizeHorCursor);
    QCOMPARE(f.move(f.inRow), QStringList());
    QCOMPARE(f.view.header()->hoverPosition(), f.inRow.x());
    QCOMPARE(f.view.header()->indicatorTime(), f.view.toTime(f.inRow.x()));
    QCOMPARE(f.cursor(), Qt::ClosedHandCursor);
    QCOMPARE(f.move(f.inName), QStringList());
    QCOMPARE(f.view.header()->hoverPosition(), -1);
}

void TestViewRouting::moveResetsTheEdgeCursorUnlessAResizeIsActive()
{
    RoutingFixture f;
    f.model.setEditable(false);
    f.view.setCursor(Qt::SizeHorCursor);
    f.handlers.resize.active = true;
    f.move(f.inRow);
    QCOMPARE(f.cursor(), Qt::SizeHorCursor);
    f.handlers.resize.active = false;
    f.move(f.inRow);
    QCOMPARE(f.cursor(), Qt::ArrowCursor);

    for (const Qt::CursorShape other : {Qt::OpenHandCursor, Qt::CrossCursor}) {
        f.view.setCursor(other);
        f.move(f.inRow);
        QCOMPARE(f.cursor(), other);
    }
}

void TestViewRouting::moveWithoutAResizeHandlerResetsTheEdgeCursor()
{
    RoutingFixture f;
    f.view.setResizeHandler(nullptr);
    f.view.setCursor(Qt::SizeHorCursor);
    f.move(f.inName);
    QCOMPARE(f.cursor(), Qt::ArrowCursor);
}

void TestViewRouting::moveOfDraggedItemsReachesOnlyTheDragHandler()
{
    RoutingFixture f;
    for (const Qt::CursorShape cursor : moveCursors) {
        f.view.setCursor(cursor);
        f.handlers.drag.setDragItemIds({7});
        for (const QPoint& pos : {f.inRow, f.inName, f.belowRows})
            QCOMPARE(f.move(pos), QStringList("drag.move"));
        f.handlers.drag.setDragItemIds({});
        f.view.selectItem(7, true);
        QCOMPARE(f.move(f.inRow), QStringList("drag.move"));
        f.view.clearSelectedItems();
        QCOMPARE(f.cursor(), cursor);
    }
}

void TestViewRouting::moveIsNoDragWithoutItems()
{
    RoutingFixture f;
    f.handlers.drag.active = true;
    for (const Qt::CursorShape cursor : moveCursors) {
        f.view.setCursor(cursor);
        QCOMPARE(f.move(f.inRow), QStringList("select.move"));
        QCOMPARE(f.cursor(), Qt::ArrowCursor);
    }
}

void TestViewRouting::moveIsNoDragWithAnotherCursor()
{
    RoutingFixture f;
    f.handlers.drag.active = true;
    f.handlers.drag.setDragItemIds({7});
    f.view.selectItem(7, true);
    for (const Qt::CursorShape cursor : {Qt::ArrowCursor, Qt::OpenHandCursor, Qt::CrossCursor, Qt::SizeHorCursor}) {
        f.view.setCursor(cursor);
        QCOMPARE(f.move(f.inRow), QStringList("select.move"));
    }
}

void TestViewRouting::moveIsNoDragOnAReadOnlyModel()
{
    RoutingFixture f;
    f.model.setEditable(false);
    f.handlers.drag.setDragItemIds({7});
    for (const Qt::CursorShape cursor : moveCursors) {
        f.view.setCursor(cursor);
        QCOMPARE(f.move(f.inRow), QStringList("select.move"));
    }
}

void TestViewRouting::moveDuringAResizeReachesOnlyTheResizeHandler()
{
    RoutingFixture f;
    f.handlers.resize.active = true;
    f.view.setCursor(Qt::SizeHorCursor);
    for (const QPoint& pos : {f.inRow, f.inName, f.belowRows}) {
        QCOMPARE(f.move(pos), QStringList("resize.move"));
        QCOMPARE(f.cursor(), Qt::SizeHorCursor);
    }
}

void TestViewRouting::moveDuringAResizeNeedsTheEdgeCursor()
{
    RoutingFixture f;
    f.handlers.resize.active = true;
    f.view.setCursor(Qt::ArrowCursor);
    QCOMPARE(f.move(f.inRow), QStringList("select.move"));
}

void TestViewRouting::moveDuringAResizeOfAReadOnlyModelReachesTheSelectHandler()
{
    RoutingFixture f;
    f.model.setEditable(false);
    f.handlers.resize.active = true;
    f.view.setCursor(Qt::SizeHorCursor);
    QCOMPARE(f.move(f.inRow), QStringList("select.move"));
}

void TestViewRouting::dragComesBeforeResize()
{
    RoutingFixture f;
    f.handlers.resize.active = true;
    f.handlers.drag.setDragItemIds({7});
    f.view.setCursor(Qt::ClosedHandCursor);
    QCOMPARE(f.move(f.inRow), QStringList("drag.move"));
}

void TestViewRouting::moveOverAnItemReachesTheSelectHandlerAndIsAccepted()
{
    RoutingFixture f;
    f.addSeconds(f.trackA, 450, 100);
    bool isAccepted = false;
    QCOMPARE(f.move(f.inRow, &isAccepted), QStringList("select.move"));
    QVERIFY(isAccepted);
    f.model.setEditable(false);
    QCOMPARE(f.move(f.inRow, &isAccepted), QStringList("select.move"));
    QVERIFY(isAccepted);
}

void TestViewRouting::moveOverANameOrBelowTheRowsIsIgnoredUnderTheArrow_data()
{
    QTest::addColumn<bool>("isName");
    QTest::newRow("name") << true;
    QTest::newRow("below the rows") << false;
}

void TestViewRouting::moveOverANameOrBelowTheRowsIsIgnoredUnderTheArrow()
{
    QFETCH(bool, isName);
    RoutingFixture f;
    f.view.setCursor(Qt::CrossCursor);
    bool isAccepted = true;
    QCOMPARE(f.move(isName ? f.inName : f.belowRows, &isAccepted), QStringList("select.move"));
    QVERIFY(!isAccepted);
    QCOMPARE(f.cursor(), Qt::ArrowCursor);
}

void TestViewRouting::moveOutsideTheRowsKeepsTheCursorWhereItIsNotTheViews()
{
    RoutingFixture f;
    const auto isKept = [&f] {
        f.view.setCursor(Qt::CrossCursor);
        bool isAccepted = true;
        f.move(f.inName, &isAccepted);
        return f.cursor() == Qt::CrossCursor && !isAccepted;
    };
    QVERIFY(!isKept());
    f.handlers.resize.active = true;
    QVERIFY(isKept());
    f.handlers.resize.active = false;
    f.model.setEditable(false);
    QVERIFY(isKept());
    f.model.setEditable(true);
    f.view.setResizeHandler(nullptr);
    QVERIFY(isKept());
}

void TestViewRouting::moveOverARowOfAReadOnlyModelKeepsTheCursor()
{
    RoutingFixture f;
    f.model.setEditable(false);
    f.view.setCursor(Qt::CrossCursor);
    f.move(f.inRow);
    QCOMPARE(f.cursor(), Qt::CrossCursor);
}

void TestViewRouting::releaseWhileTheHeaderIsBusyReachesTheHeaderOnly()
{
    RoutingFixture f;
    f.keepHeaderBusy();
    f.handlers.drag.active = true;
    QCOMPARE(f.release(f.inRow), QStringList());
    QVERIFY(!f.view.header()->mouseHandler()->isBusy());
    const QStringList afterwards{"track.release", "drag.release"};
    QCOMPARE(f.release(f.inRow), afterwards);
}

void TestViewRouting::releaseOfADragReachesTrackAndDragHandler()
{
    RoutingFixture f;
    f.handlers.drag.active = true;
    f.handlers.resize.active = true;
    f.handlers.select.active = true;
    const QStringList expected{"track.release", "drag.release"};
    QCOMPARE(f.release(f.inRow), expected);
    QCOMPARE(f.release(f.inName), expected);
    QCOMPARE(f.release(f.inRow, Qt::RightButton), expected);
}

void TestViewRouting::releaseOfAResizeReachesTrackAndResizeHandler()
{
    RoutingFixture f;
    f.handlers.resize.active = true;
    f.handlers.select.active = true;
    const QStringList expected{"track.release", "resize.release"};
    QCOMPARE(f.release(f.inRow), expected);
    QCOMPARE(f.release(f.belowRows), expected);
}

void TestViewRouting::releaseOfAnActiveSelectionReachesTrackAndSelectHandler()
{
    RoutingFixture f;
    f.handlers.select.active = true;
    const QStringList expected{"track.release", "select.release"};
    QCOMPARE(f.release(f.inRow), expected);
    QCOMPARE(f.release(f.inName), expected);
}

void TestViewRouting::releaseWithoutAnyGestureReachesOnlyTheTrackHandler()
{
    RoutingFixture f;
    QCOMPARE(f.release(f.inRow), QStringList("track.release"));
    // The rubber band is a matter of isActive() alone.
    f.handlers.select.rubberBandActive = true;
    QCOMPARE(f.release(f.inRow), QStringList("track.release"));
}

void TestViewRouting::releaseOnAReadOnlyModelAlwaysReachesTheSelectHandler()
{
    RoutingFixture f;
    f.model.setEditable(false);
    const QStringList expected{"track.release", "select.release"};
    QCOMPARE(f.release(f.inRow), expected);
    f.handlers.drag.active = true;
    f.handlers.resize.active = true;
    QCOMPARE(f.release(f.inRow), expected);
}

void TestViewRouting::everyReleaseRepaints()
{
    RoutingFixture f;
    PaintCounter counter(f.view);
    f.release(f.inRow);
    QVERIFY(counter.paints() > 0);
    f.handlers.drag.active = true;
    f.release(f.inRow);
    QVERIFY(counter.paints() > 0);
    f.handlers.drag.active = false;
    f.handlers.resize.active = true;
    f.release(f.inRow);
    QVERIFY(counter.paints() > 0);
    QCOMPARE(counter.paints(), 0);
}

void TestViewRouting::keyReachesDragThenSelectHandler()
{
    RoutingFixture f;
    const QStringList expected{"drag.key", "select.key"};
    for (const int key : {Qt::Key_Left, Qt::Key_Delete, Qt::Key_Down, Qt::Key_Q})
        QCOMPARE(f.key(key), expected);
    f.handlers.drag.active = true;
    QCOMPARE(f.key(Qt::Key_Escape), expected);
    f.keepHeaderBusy();
    QCOMPARE(f.key(Qt::Key_Escape), expected);
}

void TestViewRouting::keyDuringAResizeReachesNobodyAndRepaintsNothing()
{
    RoutingFixture f;
    f.handlers.resize.active = true;
    PaintCounter counter(f.view);
    QCOMPARE(f.key(Qt::Key_Escape), QStringList());
    QCOMPARE(counter.paints(), 0);
}

void TestViewRouting::keyOnAReadOnlyModelReachesOnlyTheSelectHandler()
{
    RoutingFixture f;
    f.model.setEditable(false);
    QCOMPARE(f.key(Qt::Key_Left), QStringList("select.key"));
    f.handlers.resize.active = true;
    QCOMPARE(f.key(Qt::Key_Left), QStringList("select.key"));
}

void TestViewRouting::keysDoNotMoveACurrentRow()
{
    RoutingFixture f;
    const QModelIndex row = f.view.indexOfTrackRow(f.trackA, 0);
    f.view.setCurrentIndex(row);
    for (const int key : {Qt::Key_Down, Qt::Key_Right, Qt::Key_End, Qt::Key_PageDown})
        Input::key(&f.view, key);
    QCOMPARE(f.view.currentIndex(), row);
}

void TestViewRouting::everyKeyRepaints()
{
    RoutingFixture f;
    PaintCounter counter(f.view);
    f.key(Qt::Key_Q);
    QVERIFY(counter.paints() > 0);
    f.model.setEditable(false);
    f.key(Qt::Key_Q);
    QVERIFY(counter.paints() > 0);
}

void TestViewRouting::missingHandlersDropTheirSteps()
{
    RoutingFixture f;
    QSignalSpy menuSpy(&f.view, &QWidget::customContextMenuRequested);
    f.view.setDragHandler(nullptr);
    QCOMPARE(f.press(f.inRow, Qt::RightButton), QStringList("select.press"));
    QCOMPARE(menuSpy.count(), 1);
    QCOMPARE(f.key(Qt::Key_Left), QStringList("select.key"));
    f.view.setCursor(Qt::ClosedHandCursor);
    f.view.selectItem(7, true);
    QCOMPARE(f.move(f.inRow), QStringList("select.move"));

    f.view.setDragHandler(&f.handlers.drag);
    f.view.setSelectHandler(nullptr);
    QCOMPARE(f.press(f.inRow), QStringList("drag.press"));
    QCOMPARE(f.move(f.inRow), QStringList());
    QCOMPARE(f.doubleClick(f.inRow), QStringList("track.doubleClick"));
    QCOMPARE(f.key(Qt::Key_Left), QStringList("drag.key"));
    f.handlers.resize.active = true;
    f.view.setResizeHandler(nullptr);
    QCOMPARE(f.release(f.inRow), QStringList("track.release"));
    QCOMPARE(f.key(Qt::Key_Left), QStringList("drag.key"));

    f.view.setTrackHandler(nullptr);
    f.view.setSelectHandler(&f.handlers.select);
    QCOMPARE(f.doubleClick(f.inRow), QStringList("select.doubleClick"));
    f.handlers.select.active = true;
    QCOMPARE(f.release(f.inRow), QStringList("select.release"));
    QSignalSpy pressedSpy(&f.view, &QAbstractItemView::pressed);
    QCOMPARE(f.press(f.inName), QStringList());
    QCOMPARE(pressedSpy.count(), 1);
}

void TestViewRouting::withoutAnyHandlerEventsDoNothing()
{
    RoutingFixture f;
    f.handlers.removeAll();
    for (const Qt::CursorShape cursor : {Qt::ArrowCursor, Qt::SizeHorCursor, Qt::ClosedHandCursor}) {
        for (const QPoint& pos : {f.inRow, f.inName, f.belowRows}) {
            f.view.setCursor(cursor);
            f.press(pos);
            f.move(pos);
            f.release(pos);
            f.doubleClick(pos);
            f.key(Qt::Key_Left);
        }
    }
    QVERIFY(!f.view.viewport()->grab().isNull());
    QCOMPARE(f.handlers.calls.names(), QStringList());
}

void TestViewRouting::withoutAHeaderEventsReachTheHandlers()
{
    RoutingFixture f;
    QTest::ignoreMessage(QtCriticalMsg, QRegularExpression("header view should be of type TimelineHeaderView"));
    f.view.setHeader(new QHeaderView(Qt::Horizontal, &f.view));
    QCoreApplication::processEvents();
    QVERIFY(!f.view.header());
    const QStringList presses{"select.press", "drag.press"};
    QCOMPARE(f.press(f.belowRows), presses);
    QCOMPARE(f.release(f.belowRows), QStringList("track.release"));
    f.view.setCursor(Qt::SizeHorCursor);
    QCOMPARE(f.move(f.belowRows), QStringList("select.move"));
    QVERIFY(!f.view.viewport()->grab().isNull());
}

QTEST_MAIN(TestViewRouting)
#include "tst_view_routing.moc"
