#include "x11/desktop_view.h"
#include "x11/pointer.h"

#include <VeskTimeline/timeline_view_drag_handler.h>

#include <QApplication>
#include <QDrag>
#include <QMimeData>
#include <QMouseEvent>
#include <QSignalSpy>
#include <QTest>

using VeskTimeline::TimelineView;

namespace {

bool isDragUnderWay(const QWidget& source)
{
    return source.findChild<QDrag*>() != nullptr;
}

/// A widget beside the view from which data can be dragged that looks like the view's own.
class ForeignSource : public QWidget
{
public:
    ForeignSource()
    {
        setWindowTitle(QStringLiteral("foreign"));
        setGeometry(1400, 100, 200, 200);
    }

    int finishedDrags = 0;
    Qt::DropAction lastResult = Qt::CopyAction;

protected:
    void mouseMoveEvent(QMouseEvent* event) override
    {
        if (event->buttons() != Qt::LeftButton)
            return;
        auto* const marker = new QMimeData;
        marker->setData(VeskTimeline::Item::mimetype, QByteArray());
        auto* const drag = new QDrag(this);
        drag->setMimeData(marker);
        lastResult = drag->exec(Qt::MoveAction);
        ++finishedDrags;
    }
};

} // namespace

/// Moving items to other tracks, by a drag and drop of the windowing system, on a real display.
class TestX11DragAndDrop : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void dropOnAnotherTrackMovesTheItemInTrackAndTime();
    void crossingIntoTheNextRowWithinTheStartDistanceStartsNoDrag();
    void severalItemsMoveByTheSameNumberOfRows();
    void dropBackOnTheStartTrackMovesTheItemInTime();
    void hoverMarkerFollowsTheDrag();
    void dropThatTheModelRefusesMovesNothing();
    void dropOntoAnotherItemMovesNothing();
    void dropMovesNothingWhenOneOfSeveralItemsHasNoPlace();
    void dropOnTheNameColumnMovesNothing();
    void escapeCancelsTheDrag();
    void dragThatLeavesTheViewCanComeBack();
    void dropOutsideTheViewMovesNothing();
    void itemDroppedIsNotSelectedByIt();
    void dropFromAnotherWidgetIsIgnored();
    void dragsCanFollowEachOther();
};

void TestX11DragAndDrop::init()
{
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".?")));
    Pointer pointer;
    PLAY(pointer.moveAway());
}

void TestX11DragAndDrop::dropOnAnotherTrackMovesTheItemInTrackAndTime()
{
    DesktopView desktop;
    desktop.addSeconds(desktop.trackA, 100, 60);
    desktop.addSeconds(desktop.trackA, 300, 60);
    QVERIFY(desktop.show());
    QSignalSpy changed(&desktop.view, &TimelineView::currentItemTimeChanged);

    Pointer pointer;
    pointer.moveTo(desktop.rows(), desktop.pos(130, desktop.trackA)).press().glideTo(desktop.pos(180, desktop.trackB));
    pointer.expect("a drag is under way", [&] { return isDragUnderWay(desktop.view); });
    pointer.expect("nothing is written yet", [&] { return desktop.items() == QStringList({"A:100+60", "A:300+60"}); });
    PLAY(pointer.release());
    QTRY_COMPARE(desktop.items(), QStringList({"A:300+60", "B:150+60"}));
    QTRY_VERIFY(desktop.isScreenUpToDate());
    QTRY_VERIFY(!isDragUnderWay(desktop.view));
    QVERIFY(desktop.view.dragHandler()->dragItemIds().isEmpty());
    QCOMPARE(desktop.cursor(), Qt::ArrowCursor);
    QCOMPARE(changed.size(), 0);
}

void TestX11DragAndDrop::crossingIntoTheNextRowWithinTheStartDistanceStartsNoDrag()
{
    DesktopView desktop;
    desktop.addSeconds(desktop.trackA, 100, 60);
    QVERIFY(desktop.show());

    // From just above the border of the two rows to just below it.
    const QPoint border = desktop.pos(130, desktop.trackA) + QPoint(0, DesktopView::rowHeight / 2);
    bool isStarted = false;
    Pointer pointer;
    pointer.moveTo(desktop.rows(), border - QPoint(0, 3)).press().moveTo(desktop.rows(), border + QPoint(0, 4));
    pointer.then([&] { isStarted = isDragUnderWay(desktop.view); });
    PLAY(pointer.release());
    QVERIFY(!isStarted);
    QCOMPARE(desktop.items(), QStringList({"A:100+60"}));
}

void TestX11DragAndDrop::severalItemsMoveByTheSameNumberOfRows()
{
    DesktopView desktop;
    const int first = desktop.addSeconds(desktop.trackA, 100, 60);
    const int second = desktop.addSeconds(desktop.trackB, 300, 60);
    QVERIFY(desktop.show());
    desktop.view.selectItems({first, second}, true);

    Pointer pointer;
    PLAY(pointer.drag(desktop.rows(), desktop.pos(130, desktop.trackA), desktop.pos(140, desktop.trackC)));
    QTRY_COMPARE(desktop.items(), QStringList({"C:110+60", "D:310+60"}));

    // And back up, grabbed by the other.
    PLAY(pointer.drag(desktop.rows(), desktop.pos(330, desktop.trackD), desktop.pos(330, desktop.trackB)));
    QTRY_COMPARE(desktop.items(), QStringList({"A:110+60", "B:310+60"}));
}

void TestX11DragAndDrop::dropBackOnTheStartTrackMovesTheItemInTime()
{
    DesktopView desktop;
    desktop.addSeconds(desktop.trackA, 100, 60);
    QVERIFY(desktop.show());

    Pointer pointer;
    pointer.moveTo(desktop.rows(), desktop.pos(130, desktop.trackA)).press().glideTo(desktop.pos(180, desktop.trackB));
    pointer.expect("a drag is under way", [&] { return isDragUnderWay(desktop.view); });
    PLAY(pointer.glideTo(desktop.pos(230, desktop.trackA)).release());
    QTRY_COMPARE(desktop.items(), QStringList({"A:200+60"}));
}

void TestX11DragAndDrop::hoverMarkerFollowsTheDrag()
{
    DesktopView desktop;
    desktop.addSeconds(desktop.trackA, 100, 60);
    QVERIFY(desktop.show());

    Pointer pointer;
    pointer.moveTo(desktop.rows(), desktop.pos(130, desktop.trackA)).press().glideTo(desktop.pos(180, desktop.trackB));
    pointer.moveTo(desktop.rows(), desktop.pos(250, desktop.trackC));
    pointer.expect("the marker is at the mouse",
                   [&] { return desktop.header()->hoverPosition() == desktop.pos(250, desktop.trackC).x(); });
    PLAY(pointer.release());
    QTRY_COMPARE(desktop.items(), QStringList({"C:220+60"}));
}

void TestX11DragAndDrop::dropThatTheModelRefusesMovesNothing()
{
    DesktopView desktop;
    desktop.addSeconds(desktop.trackA, 100, 60);
    desktop.model.closedTracks = {desktop.trackB};
    QVERIFY(desktop.show());

    Pointer pointer;
    pointer.drag(desktop.rows(), desktop.pos(130, desktop.trackA), desktop.pos(180, desktop.trackB));
    pointer.expect("the drag is over", [&] { return !isDragUnderWay(desktop.view); });
    PLAY(pointer.moveTo(desktop.rows(), desktop.pos(400, desktop.trackC)));
    QTRY_VERIFY(desktop.view.dragHandler()->dragItemIds().isEmpty());
    QCOMPARE(desktop.items(), QStringList({"A:100+60"}));
    QCOMPARE(desktop.cursor(), Qt::ArrowCursor);

    // The same drop goes through when the model allows it.
    desktop.model.closedTracks.clear();
    PLAY(pointer.drag(desktop.rows(), desktop.pos(130, desktop.trackA), desktop.pos(180, desktop.trackB)));
    QTRY_COMPARE(desktop.items(), QStringList({"B:150+60"}));
}

void TestX11DragAndDrop::dropOntoAnotherItemMovesNothing()
{
    DesktopView desktop;
    desktop.addSeconds(desktop.trackA, 100, 60);
    desktop.addSeconds(desktop.trackB, 200, 60);
    QVERIFY(desktop.show());

    Pointer pointer;
    pointer.drag(desktop.rows(), desktop.pos(130, desktop.trackA), desktop.pos(180, desktop.trackB));
    pointer.expect("the drag is over", [&] { return !isDragUnderWay(desktop.view); });
    PLAY(pointer.moveTo(desktop.rows(), desktop.pos(400, desktop.trackC)));
    QTRY_VERIFY(desktop.view.dragHandler()->dragItemIds().isEmpty());
    QCOMPARE(desktop.items(), QStringList({"A:100+60", "B:200+60"}));
}

void TestX11DragAndDrop::dropMovesNothingWhenOneOfSeveralItemsHasNoPlace()
{
    DesktopView desktop;
    const int first = desktop.addSeconds(desktop.trackA, 100, 60);
    const int second = desktop.addSeconds(desktop.trackB, 300, 60);
    desktop.addSeconds(desktop.trackC, 330, 60);
    QVERIFY(desktop.show());
    desktop.view.selectItems({first, second}, true);

    Pointer pointer;
    pointer.drag(desktop.rows(), desktop.pos(130, desktop.trackA), desktop.pos(140, desktop.trackB));
    pointer.expect("the drag is over", [&] { return !isDragUnderWay(desktop.view); });
    PLAY(pointer.moveTo(desktop.rows(), desktop.pos(400, desktop.trackD)));
    QTRY_VERIFY(desktop.view.dragHandler()->dragItemIds().isEmpty());
    QCOMPARE(desktop.items(), QStringList({"A:100+60", "B:300+60", "C:330+60"}));
}

void TestX11DragAndDrop::dropOnTheNameColumnMovesNothing()
{
    DesktopView desktop;
    desktop.addSeconds(desktop.trackA, 100, 60);
    QVERIFY(desktop.show());

    Pointer pointer;
    pointer.moveTo(desktop.rows(), desktop.pos(130, desktop.trackA)).press().glideTo(desktop.pos(130, desktop.trackB));
    pointer.expect("a drag is under way", [&] { return isDragUnderWay(desktop.view); });
    pointer.glideTo(desktop.namePos(desktop.trackB)).release();
    pointer.expect("the drag is over", [&] { return !isDragUnderWay(desktop.view); });
    PLAY(pointer.moveTo(desktop.rows(), desktop.pos(400, desktop.trackC)));
    QTRY_VERIFY(desktop.view.dragHandler()->dragItemIds().isEmpty());
    QCOMPARE(desktop.items(), QStringList({"A:100+60"}));
}

void TestX11DragAndDrop::escapeCancelsTheDrag()
{
    DesktopView desktop;
    const int item = desktop.addSeconds(desktop.trackA, 100, 60);
    QVERIFY(desktop.show());
    desktop.view.selectItem(item, true);

    Pointer pointer;
    pointer.moveTo(desktop.rows(), desktop.pos(130, desktop.trackA)).press().glideTo(desktop.pos(180, desktop.trackB));
    pointer.expect("a drag is under way", [&] { return isDragUnderWay(desktop.view); });
    pointer.key("Escape");
    pointer.expect("the drag is over", [&] { return !isDragUnderWay(desktop.view); });
    PLAY(pointer.release().moveTo(desktop.rows(), desktop.pos(400, desktop.trackC)));
    QTRY_VERIFY(desktop.view.dragHandler()->dragItemIds().isEmpty());
    QCOMPARE(desktop.items(), QStringList({"A:100+60"}));
    QCOMPARE(desktop.cursor(), Qt::ArrowCursor);
    // The key was the drag's: the selection stays.
    QCOMPARE(desktop.view.selectedItemIds(), QList<int>({item}));
}

void TestX11DragAndDrop::dragThatLeavesTheViewCanComeBack()
{
    DesktopView desktop;
    desktop.addSeconds(desktop.trackA, 100, 60);
    QVERIFY(desktop.show());

    Pointer pointer;
    pointer.moveTo(desktop.rows(), desktop.pos(130, desktop.trackA)).press().glideTo(desktop.pos(180, desktop.trackB));
    pointer.expect("a drag is under way", [&] { return isDragUnderWay(desktop.view); });
    pointer.moveAway();
    pointer.expect("the view has been left", [&] { return desktop.view.dragHandler()->dragPos().isNull(); });
    pointer.expect("the items are held on", [&] { return !desktop.view.dragHandler()->dragItemIds().isEmpty(); });
    pointer.moveTo(desktop.rows(), desktop.pos(160, desktop.trackC));
    pointer.glideTo(desktop.pos(200, desktop.trackC));
    PLAY(pointer.release());
    QTRY_COMPARE(desktop.items(), QStringList({"C:170+60"}));
}

void TestX11DragAndDrop::dropOutsideTheViewMovesNothing()
{
    DesktopView desktop;
    desktop.addSeconds(desktop.trackA, 100, 60);
    QVERIFY(desktop.show());

    Pointer pointer;
    pointer.moveTo(desktop.rows(), desktop.pos(130, desktop.trackA)).press().glideTo(desktop.pos(180, desktop.trackB));
    pointer.moveAway().release();
    pointer.expect("the drag is over", [&] { return !isDragUnderWay(desktop.view); });
    PLAY(pointer.moveTo(desktop.rows(), desktop.pos(400, desktop.trackC)));
    QTRY_VERIFY(desktop.view.dragHandler()->dragItemIds().isEmpty());
    QCOMPARE(desktop.items(), QStringList({"A:100+60"}));
    QCOMPARE(desktop.cursor(), Qt::ArrowCursor);
}

void TestX11DragAndDrop::itemDroppedIsNotSelectedByIt()
{
    DesktopView desktop;
    desktop.addSeconds(desktop.trackA, 100, 60);
    QVERIFY(desktop.show());
    QSignalSpy selected(&desktop.view, &TimelineView::selectedItemsChanged);

    Pointer pointer;
    PLAY(pointer.drag(desktop.rows(), desktop.pos(130, desktop.trackA), desktop.pos(180, desktop.trackB)));
    QTRY_COMPARE(desktop.items(), QStringList({"B:150+60"}));
    PLAY(pointer.moveTo(desktop.rows(), desktop.pos(400, desktop.trackC)));
    QCOMPARE(selected.size(), 0);
}

void TestX11DragAndDrop::dropFromAnotherWidgetIsIgnored()
{
    DesktopView desktop;
    desktop.addSeconds(desktop.trackA, 100, 60);
    ForeignSource foreign;
    foreign.show();
    QVERIFY(QTest::qWaitForWindowExposed(&foreign));
    QVERIFY(desktop.show());

    // A click whose release the mouse leaves at once: the view still holds the item.
    Pointer pointer;
    pointer.moveTo(desktop.rows(), desktop.pos(130, desktop.trackA)).click();
    PLAY(pointer.moveTo(&foreign, QPoint(100, 100)));
    QVERIFY(!desktop.view.dragHandler()->dragItemIds().isEmpty());

    pointer.press().moveTo(&foreign, QPoint(120, 120));
    pointer.expect("a drag is under way", [&] { return isDragUnderWay(foreign); });
    pointer.moveTo(desktop.rows(), desktop.pos(300, desktop.trackB));
    pointer.moveTo(desktop.rows(), desktop.pos(320, desktop.trackB)).release();
    pointer.expect("the drag is over", [&] { return foreign.finishedDrags == 1; });
    PLAY(pointer);
    QCOMPARE(foreign.lastResult, Qt::IgnoreAction);
    QCOMPARE(desktop.items(), QStringList({"A:100+60"}));
}

void TestX11DragAndDrop::dragsCanFollowEachOther()
{
    DesktopView desktop;
    desktop.addSeconds(desktop.trackA, 100, 60);
    QVERIFY(desktop.show());

    Pointer pointer;
    PLAY(pointer.drag(desktop.rows(), desktop.pos(130, desktop.trackA), desktop.pos(180, desktop.trackB)));
    QTRY_COMPARE(desktop.items(), QStringList({"B:150+60"}));
    PLAY(pointer.drag(desktop.rows(), desktop.pos(180, desktop.trackB), desktop.pos(230, desktop.trackC)));
    QTRY_COMPARE(desktop.items(), QStringList({"C:200+60"}));
    PLAY(pointer.drag(desktop.rows(), desktop.pos(230, desktop.trackC), desktop.pos(300, desktop.trackC)));
    QTRY_COMPARE(desktop.items(), QStringList({"C:270+60"}));
}

QTEST_MAIN(TestX11DragAndDrop)
#include "tst_x11_drag_and_drop.moc"
