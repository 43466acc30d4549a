#include "probe_drag_handler.h"

#include <QApplication>
#include <QDrag>
#include <QMimeData>
#include <QPointer>
#include <QRegularExpression>
#include <QTest>
#include <QTimer>
#include <QWindow>

#include <deque>
#include <memory>

namespace {

constexpr int patienceInMs = 5000;

/// Runs steps one after the other from the event loop that a drag and drop turns, beginning with the view's first drag
/// event. A drag that is still going on when the patience ends is cancelled.
class DragScript : public QObject
{
public:
    using Step = std::function<void()>;

    DragScript(VeskTimeline::TimelineView* view, std::deque<Step> steps) : m_steps(std::move(steps))
    {
        view->viewport()->installEventFilter(this);
        QTimer::singleShot(patienceInMs, this, [] { QDrag::cancel(); });
    }
    bool eventFilter(QObject* /*watched*/, QEvent* event) override
    {
        if (event->type() == QEvent::DragEnter && !m_hasStarted) {
            m_hasStarted = true;
            QTimer::singleShot(0, this, &DragScript::runNext);
        }
        return false;
    }
    bool isDone() const { return m_hasStarted && m_steps.empty(); }

private:
    void runNext()
    {
        const Step step = m_steps.front();
        m_steps.pop_front();
        step();
        if (!m_steps.empty())
            QTimer::singleShot(0, this, &DragScript::runNext);
    }

    std::deque<Step> m_steps;
    bool m_hasStarted = false;
};

} // namespace

/// Drags and drops carried out by Qt itself. The offscreen platform has none, the minimal one has.
class TestDragHandlerTransfer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void leavingTheTrackStartsADragWithAnEmptyMarker();
    void moveWithinTheTrackStartsNoDrag();
    void dropMovesTheItemToTheOtherTrack();
    void twoItemsMoveByTheSameNumberOfRows();
    void snappedOffsetIsThatOfTheDrop();
    void dropBackOnTheFirstTrackMovesInTime();
    void dragMovesTheHoverMarkerAndRepaints();
    void dragOverAnOccupiedPlaceIsNotAccepted();
    void dropOnAnOccupiedPlaceIsAcceptedAndMovesNothing();
    void refusedDropIsAcceptedAndMovesNothing();
    void leavingTheViewForgetsThePositionOnly();
    void cancelledDragKeepsTheStateUntilTheNextMove();
    void failingDropStopsHalfWay_data();
    void failingDropStopsHalfWay();
    void failingPolicyIsLogged_data();
    void failingPolicyIsLogged();

    void dropFollowsTheLastDragMoveNotItsOwnPosition();
    void dropTakesTheOffsetOnce();
    void canDragIsAskedThroughItsSlot();
    void foreignDragsAreIgnoredEvenWithTheMarker();
    void eventsWithoutADragAreIgnored();
    void dragInAReadOnlyModelIsIgnored();
    void dragWithoutItemsIsIgnored();
    void dragWithoutAStartIsIgnoredButDropped();
    void dragWithoutTheMarkerIsLeftAlone();
    void dragWithoutAHeaderIsFollowed();

private:
    DragFixture& fixture() { return *m_fixture; }
    QPoint inWindow(const QPoint& pos) { return fixture().view.viewport()->mapTo(&fixture().view, pos); }
    QWindow* window() { return fixture().view.windowHandle(); }
    void mouseTo(const QPoint& pos) { QTest::mouseMove(window(), inWindow(pos)); }
    void releaseTheMouseAt(const QPoint& pos)
    {
        QTest::mouseRelease(window(), Qt::LeftButton, Qt::NoModifier, inWindow(pos));
    }
    /// Presses, moves on to another track and carries out the steps during the drag that follows.
    void dragThrough(const QPoint& from, const QPoint& to, std::deque<DragScript::Step> steps);
    /// Carries out an action while a drag goes on that a widget has begun with some data.
    void duringDragOf(QWidget* source, QMimeData* data, const DragScript::Step& action);
    void duringOwnDrag(const DragScript::Step& action)
    {
        auto* const marker = new QMimeData;
        marker->setData(VeskTimeline::Item::mimetype, {});
        duringDragOf(&fixture().view, marker, action);
    }
    /// The state after a press on the item at that second of track A, without a mouse.
    void pressItem(int second)
    {
        QMouseEvent event = pressAt(fixture().pos(second, fixture().trackA));
        fixture().handler.mousePressEvent(&event);
        QVERIFY(fixture().handler.dragStartIndex().isValid());
    }
    /// What becomes of events that were accepted or not before: "accepted", "ignored" or "kept".
    template <typename Send>
    static QString answerTo(const Send& send);
    QString answerToEnter(const QPoint& pos);
    QString answerToMove(const QPoint& pos);
    QString answerToDrop(const QPoint& pos);

    std::unique_ptr<DragFixture> m_fixture;
    QMimeData m_marker;
    const QMimeData* m_data = &m_marker;
};

void TestDragHandlerTransfer::init()
{
    QTest::failOnWarning(QRegularExpression(".?"));
    m_fixture = std::make_unique<DragFixture>();
    m_marker.setData(VeskTimeline::Item::mimetype, {});
    m_data = &m_marker;
}

void TestDragHandlerTransfer::cleanup()
{
    m_fixture.reset();
}

void TestDragHandlerTransfer::dragThrough(const QPoint& from, const QPoint& to, std::deque<DragScript::Step> steps)
{
    DragScript script(&fixture().view, std::move(steps));
    QTest::mousePress(window(), Qt::LeftButton, Qt::NoModifier, inWindow(from));
    mouseTo(to);
    QVERIFY(script.isDone());
}

void TestDragHandlerTransfer::duringDragOf(QWidget* source, QMimeData* data, const DragScript::Step& action)
{
    auto* const drag = new QDrag(source);
    drag->setMimeData(data);
    bool isDone = false;
    QTimer::singleShot(0, this, [&] {
        action();
        isDone = true;
        QDrag::cancel();
    });
    drag->exec(Qt::MoveAction);
    QVERIFY(isDone);
}

template <typename Send>
QString TestDragHandlerTransfer::answerTo(const Send& send)
{
    const bool afterAccepted = send(true);
    const bool afterIgnored = send(false);
    if (afterAccepted == afterIgnored)
        return afterAccepted ? QStringLiteral("accepted") : QStringLiteral("ignored");
    return QStringLiteral("kept");
}

QString TestDragHandlerTransfer::answerToEnter(const QPoint& pos)
{
    return answerTo([&](bool isAccepted) {
        QDragEnterEvent event(pos, Qt::MoveAction, m_data, Qt::LeftButton, Qt::NoModifier);
        event.setAccepted(isAccepted);
        fixture().handler.dragEnterEvent(&event);
        return event.isAccepted();
    });
}

QString TestDragHandlerTransfer::answerToMove(const QPoint& pos)
{
    return answerTo([&](bool isAccepted) {
        QDragMoveEvent event(pos, Qt::MoveAction, m_data, Qt::LeftButton, Qt::NoModifier);
        event.setAccepted(isAccepted);
        fixture().handler.dragMoveEvent(&event);
        return event.isAccepted();
    });
}

QString TestDragHandlerTransfer::answerToDrop(const QPoint& pos)
{
    return answerTo([&](bool isAccepted) {
        const QVector<int> ids = fixture().handler.m_dragItemIds;
        QDropEvent event(pos, Qt::MoveAction, m_data, Qt::LeftButton, Qt::NoModifier);
        event.setAccepted(isAccepted);
        fixture().handler.dropEvent(&event);
        if (isAccepted)
            fixture().handler.m_dragItemIds = ids;
        return event.isAccepted();
    });
}

void TestDragHandlerTransfer::leavingTheTrackStartsADragWithAnEmptyMarker()
{
    DragFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    QPointer<QDrag> drag;
    dragThrough(f.pos(130, f.trackA), f.pos(150, f.trackB),
                {[&] {
                     drag = f.view.findChild<QDrag*>();
                     QVERIFY(drag);
                     QCOMPARE(drag->source(), &f.view);
                     QCOMPARE(drag->supportedActions(), Qt::DropActions(Qt::MoveAction));
                     QCOMPARE(drag->mimeData()->formats(), QStringList{"application/brannovexis.timeline.item"});
                     QVERIFY(drag->mimeData()->data("application/brannovexis.timeline.item").isEmpty());
                     QVERIFY(f.model.journal.isEmpty());
                     QCOMPARE(f.handler.transfers, (QStringList{"enter accepted", "move accepted"}));
                     QCOMPARE(f.handler.dragPos(), f.pos(150, f.trackB));
                 },
                 [&] { releaseTheMouseAt(f.pos(150, f.trackB)); }});
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(!drag);
}

void TestDragHandlerTransfer::moveWithinTheTrackStartsNoDrag()
{
    DragFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    QTest::mousePress(window(), Qt::LeftButton, Qt::NoModifier, inWindow(f.pos(130, f.trackA)));
    mouseTo(f.pos(300, f.trackA));
    QVERIFY(f.handler.isActive());
    QVERIFY(f.handler.transfers.isEmpty());
    releaseTheMouseAt(f.pos(300, f.trackA));
    QCOMPARE(f.model.item(0)->startTime(), f.at(270));
}

void TestDragHandlerTransfer::dropMovesTheItemToTheOtherTrack()
{
    DragFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    dragThrough(f.pos(130, f.trackA), f.pos(150, f.trackB),
                {[&] { mouseTo(f.pos(180, f.trackB)); }, [&] { releaseTheMouseAt(f.pos(180, f.trackB)); }});

    QCOMPARE(f.model.journal,
             (QStringList{QString("moveToTrack(0, %1, 150000)").arg(f.trackB), "track.start(0, 150000)"}));
    QCOMPARE(f.model.item(0)->parentTrackId(), f.trackB);
    QVERIFY(f.model.times(f.trackA).isEmpty());
    QCOMPARE(f.model.times(f.trackB), QStringList{QString("%1+60000").arg(f.at(150))});
    QCOMPARE(f.handler.transfers, (QStringList{"enter accepted", "move accepted", "drop accepted"}));
    QVERIFY(f.handler.isIdle());
    QCOMPARE(f.cursor(), Qt::ArrowCursor);
    QVERIFY(f.logLines().isEmpty());
}

void TestDragHandlerTransfer::twoItemsMoveByTheSameNumberOfRows()
{
    DragFixture& f = fixture();
    const int trackC = f.model.newTrack("C");
    f.addSeconds(f.trackA, 100, 60);
    f.addSeconds(f.trackA, 300, 60);
    f.addSeconds(f.trackB, 200, 60);
    f.view.selectItems({2, 0, 1}, true);
    dragThrough(f.pos(130, f.trackA), f.pos(140, f.trackB), {[&] { releaseTheMouseAt(f.pos(140, f.trackB)); }});
    QCOMPARE(f.model.times(f.trackA), QStringList());
    QCOMPARE(f.model.times(f.trackB),
             (QStringList{QString("%1+60000").arg(f.at(110)), QString("%1+60000").arg(f.at(310))}));
    QCOMPARE(f.model.times(trackC), QStringList{QString("%1+60000").arg(f.at(210))});
    QCOMPARE(f.model.journal.filter("moveToTrack"), (QStringList{QString("moveToTrack(2, %1, 210000)").arg(trackC),
                                                                 QString("moveToTrack(0, %1, 110000)").arg(f.trackB),
                                                                 QString("moveToTrack(1, %1, 310000)").arg(f.trackB)}));
}

void TestDragHandlerTransfer::snappedOffsetIsThatOfTheDrop()
{
    DragFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    f.model.setSnapEnabled(true);
    f.model.setSnapStep(60'000);
    f.model.setSnapTolerance(0);
    dragThrough(f.pos(130, f.trackA), f.pos(249, f.trackB), {[&] { releaseTheMouseAt(f.pos(249, f.trackB)); }});
    QCOMPARE(f.model.item(0)->startTime(), f.at(160));
    QCOMPARE(f.model.item(0)->parentTrackId(), f.trackB);
}

void TestDragHandlerTransfer::dropBackOnTheFirstTrackMovesInTime()
{
    DragFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    dragThrough(f.pos(130, f.trackA), f.pos(150, f.trackB),
                {[&] { mouseTo(f.pos(170, f.trackA)); }, [&] { releaseTheMouseAt(f.pos(170, f.trackA)); }});
    QCOMPARE(f.model.item(0)->parentTrackId(), f.trackA);
    QCOMPARE(f.model.item(0)->startTime(), f.at(140));
}

void TestDragHandlerTransfer::dragMovesTheHoverMarkerAndRepaints()
{
    DragFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    dragThrough(f.pos(130, f.trackA), f.pos(150, f.trackB),
                {[&] {
                     QCOMPARE(f.view.header()->hoverPosition(), f.pos(150, f.trackB).x());
                     f.view.header()->setHoverVisible(false);
                     QVERIFY(f.repaints([&] { mouseTo(f.pos(155, f.trackB)); }));
                     f.view.header()->setHoverVisible(true);
                     mouseTo(f.pos(160, f.trackB));
                     QCOMPARE(f.view.header()->hoverPosition(), f.pos(160, f.trackB).x());
                 },
                 [&] { releaseTheMouseAt(f.pos(160, f.trackB)); }});
}

void TestDragHandlerTransfer::dragOverAnOccupiedPlaceIsNotAccepted()
{
    DragFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    f.addSeconds(f.trackB, 200, 60);
    dragThrough(f.pos(130, f.trackA), f.pos(150, f.trackB),
                {[&] { mouseTo(f.pos(190, f.trackB)); }, [&] { mouseTo(f.pos(300, f.trackB)); },
                 [&] { mouseTo(f.belowRows(300)); }, [&] { mouseTo(f.pos(310, f.trackB)); },
                 [&] { releaseTheMouseAt(f.pos(310, f.trackB)); }});
    QCOMPARE(f.handler.transfers, (QStringList{"enter accepted", "move accepted", "move ignored", "move accepted",
                                               "move ignored", "move accepted", "drop accepted"}));
    QCOMPARE(f.model.item(0)->startTime(), f.at(280));
}

void TestDragHandlerTransfer::dropOnAnOccupiedPlaceIsAcceptedAndMovesNothing()
{
    DragFixture& f = fixture();
    f.model.newTrack("C");
    f.addSeconds(f.trackA, 100, 60);
    f.addSeconds(f.trackB, 300, 60);
    const int obstacle = f.addSeconds(f.trackB, 90, 20);
    f.view.selectItems({0, 1}, true);
    pressItem(130);
    f.handler.m_dragPos = f.pos(130, f.trackB);
    duringOwnDrag([&] {
        f.handler.m_dragPos = f.pos(130, f.trackB);
        QCOMPARE(answerToDrop(f.pos(130, f.trackB)), "accepted");
    });
    QVERIFY(f.model.journal.isEmpty());
    QVERIFY(f.handler.isIdle());
    QCOMPARE(f.model.item(obstacle)->startTime(), f.at(90));
}

void TestDragHandlerTransfer::refusedDropIsAcceptedAndMovesNothing()
{
    DragFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    f.model.canDrop = [](const VeskTimeline::Item&, int, qint64) { return false; };
    pressItem(130);
    duringOwnDrag([&] {
        f.handler.m_dragPos = f.pos(150, f.trackB);
        QDropEvent event(f.pos(150, f.trackB), Qt::MoveAction | Qt::CopyAction, m_data, Qt::LeftButton, Qt::NoModifier);
        event.setDropAction(event.proposedAction() == Qt::MoveAction ? Qt::CopyAction : Qt::MoveAction);
        event.ignore();
        f.handler.dropEvent(&event);
        QVERIFY(event.isAccepted());
        QCOMPARE(event.dropAction(), event.proposedAction());
    });
    QCOMPARE(f.model.asked.last(), QString("canDrop(0, %1, 120000)").arg(f.trackB));
    QVERIFY(f.model.journal.isEmpty());
    QVERIFY(f.handler.isIdle());
    QCOMPARE(f.cursor(), Qt::ArrowCursor);
}

void TestDragHandlerTransfer::leavingTheViewForgetsThePositionOnly()
{
    DragFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    dragThrough(f.pos(130, f.trackA), f.pos(150, f.trackB),
                {[&] { mouseTo(QPoint(-100, -100)); },
                 [&] {
                     QCOMPARE(f.handler.transfers, (QStringList{"enter accepted", "move accepted", "leave"}));
                     QVERIFY(f.handler.dragPos().isNull());
                     QCOMPARE(f.handler.dragItemIds(), QVector<int>{0});
                     QVERIFY(f.handler.dragStartIndex().isValid());
                     QCOMPARE(f.handler.dragStartPos(), f.pos(130, f.trackA));
                     QCOMPARE(f.handler.dragStartTime(), f.at(130));
                 },
                 [&] { mouseTo(f.pos(160, f.trackB)); }, [&] { releaseTheMouseAt(f.pos(160, f.trackB)); }});
    QCOMPARE(f.model.item(0)->parentTrackId(), f.trackB);
    QCOMPARE(f.model.item(0)->startTime(), f.at(130));
}

void TestDragHandlerTransfer::cancelledDragKeepsTheStateUntilTheNextMove()
{
    DragFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    dragThrough(f.pos(130, f.trackA), f.pos(150, f.trackB), {[&] { QTest::keyClick(window(), Qt::Key_Escape); }});
    QCOMPARE(f.handler.dragItemIds(), QVector<int>{0});
    QVERIFY(f.handler.dragStartIndex().isValid());
    QVERIFY(f.model.journal.isEmpty());

    QMouseEvent move = moveTo(f.pos(160, f.trackB), Qt::NoButton);
    QCoreApplication::sendEvent(f.view.viewport(), &move);
    QVERIFY(f.handler.isIdle());
    releaseTheMouseAt(f.pos(160, f.trackB));
    QVERIFY(f.model.journal.isEmpty());
    QCOMPARE(f.model.item(0)->parentTrackId(), f.trackA);
}

void TestDragHandlerTransfer::failingDropStopsHalfWay_data()
{
    addFailureRows();
}

void TestDragHandlerTransfer::failingDropStopsHalfWay()
{
    QFETCH(Failure, failure);
    DragFixture& f = fixture();
    for (const int start : {100, 200, 300})
        f.addSeconds(f.trackA, start, 60);
    f.view.selectItems({0, 1, 2}, true);
    f.model.failAt("moveToTrack(1", failure);
    dragThrough(f.pos(130, f.trackA), f.pos(140, f.trackB), {[&] { releaseTheMouseAt(f.pos(140, f.trackB)); }});

    QCOMPARE(f.model.journal.filter("moveToTrack"), (QStringList{QString("moveToTrack(0, %1, 110000)").arg(f.trackB),
                                                                 QString("moveToTrack(1, %1, 210000)").arg(f.trackB)}));
    QCOMPARE(f.model.times(f.trackB), QStringList{QString("%1+60000").arg(f.at(110))});
    QCOMPARE(f.logLines(), QStringList{failureLine(dragSignature("dropEvent(QDropEvent*)"), failure)});
    QVERIFY(f.handler.isIdle());
    QCOMPARE(f.handler.transfers.last(), "drop accepted");
}

void TestDragHandlerTransfer::failingPolicyIsLogged_data()
{
    addFailureRows();
}

void TestDragHandlerTransfer::failingPolicyIsLogged()
{
    QFETCH(Failure, failure);
    DragFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    pressItem(130);
    f.model.failAt("canDrop", failure);
    duringOwnDrag([&] {
        f.log.clear();
        QVERIFY(keepsExceptions([&] {
            QDragMoveEvent move(f.pos(150, f.trackB), Qt::MoveAction, m_data, Qt::LeftButton, Qt::NoModifier);
            move.accept();
            f.handler.dragMoveEvent(&move);
            QVERIFY(!move.isAccepted());
        }));
        QVERIFY(keepsExceptions([&] {
            QDropEvent drop(f.pos(150, f.trackB), Qt::MoveAction, m_data, Qt::LeftButton, Qt::NoModifier);
            drop.ignore();
            f.handler.dropEvent(&drop);
            QVERIFY(drop.isAccepted());
        }));
        QCOMPARE(f.logLines(), (QStringList{failureLine(dragSignature("dragMoveEvent(QDragMoveEvent*)"), failure),
                                            failureLine(dragSignature("dropEvent(QDropEvent*)"), failure)}));
    });
    QVERIFY(f.handler.isIdle());
    QVERIFY(f.model.journal.isEmpty());
}

void TestDragHandlerTransfer::dropFollowsTheLastDragMoveNotItsOwnPosition()
{
    DragFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    pressItem(130);
    duringOwnDrag([&] {
        QCOMPARE(answerToMove(f.pos(150, f.trackB)), "accepted");
        QDropEvent drop(f.pos(500, f.trackB), Qt::MoveAction, m_data, Qt::LeftButton, Qt::NoModifier);
        f.handler.dropEvent(&drop);
    });
    QCOMPARE(f.model.item(0)->startTime(), f.at(120));
}

void TestDragHandlerTransfer::dropTakesTheOffsetOnce()
{
    DragFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    f.addSeconds(f.trackA, 200, 60);
    f.view.selectItems({0, 1}, true);
    pressItem(130);
    duringOwnDrag([&] {
        f.handler.m_dragPos = f.pos(150, f.trackB);
        f.handler.calls.clear();
        QDropEvent drop(f.pos(150, f.trackB), Qt::MoveAction, m_data, Qt::LeftButton, Qt::NoModifier);
        f.handler.dropEvent(&drop);
        QCOMPARE(f.handler.calls, (QStringList{"canDrag", "deltaTime", "deltaTime"}));
    });
    QCOMPARE(f.model.times(f.trackB).size(), 2);
}

void TestDragHandlerTransfer::canDragIsAskedThroughItsSlot()
{
    DragFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    pressItem(130);
    duringOwnDrag([&] {
        QCOMPARE(answerToMove(f.pos(150, f.trackB)), "accepted");
        QPoint asked;
        f.handler.canDrag = [&](const QPoint& pos) {
            asked = pos;
            return false;
        };
        QCOMPARE(answerToMove(f.pos(151, f.trackB)), "ignored");
        QCOMPARE(asked, f.pos(151, f.trackB));
        QCOMPARE(answerToDrop(f.pos(152, f.trackB)), "accepted");
        QCOMPARE(asked, f.pos(152, f.trackB));
    });
    QVERIFY(f.model.journal.isEmpty());
}

void TestDragHandlerTransfer::foreignDragsAreIgnoredEvenWithTheMarker()
{
    DragFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    pressItem(130);
    QWidget other;
    auto* const marker = new QMimeData;
    marker->setData(VeskTimeline::Item::mimetype, {});
    duringDragOf(&other, marker, [&] {
        QCOMPARE(answerToEnter(f.pos(150, f.trackB)), "ignored");
        QCOMPARE(answerToMove(f.pos(150, f.trackB)), "ignored");
        QCOMPARE(answerToDrop(f.pos(150, f.trackB)), "ignored");
    });
    QCOMPARE(f.handler.dragPos(), f.pos(130, f.trackA));
    QCOMPARE(f.handler.dragItemIds(), QVector<int>{0});
    QVERIFY(f.model.journal.isEmpty());
}

void TestDragHandlerTransfer::eventsWithoutADragAreIgnored()
{
    DragFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    pressItem(130);
    QCOMPARE(answerToEnter(f.pos(150, f.trackB)), "ignored");
    QCOMPARE(answerToMove(f.pos(150, f.trackB)), "ignored");
    QCOMPARE(answerToDrop(f.pos(150, f.trackB)), "ignored");
    QVERIFY(f.model.journal.isEmpty());
}

void TestDragHandlerTransfer::dragInAReadOnlyModelIsIgnored()
{
    DragFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    pressItem(130);
    duringOwnDrag([&] {
        QCOMPARE(answerToEnter(f.pos(150, f.trackB)), "accepted");
        f.model.setEditable(false);
        QCOMPARE(answerToEnter(f.pos(150, f.trackB)), "ignored");
        QCOMPARE(answerToMove(f.pos(150, f.trackB)), "ignored");
        QCOMPARE(answerToDrop(f.pos(150, f.trackB)), "ignored");
    });
    QCOMPARE(f.handler.dragItemIds(), QVector<int>{0});
    QVERIFY(f.model.journal.isEmpty());
}

void TestDragHandlerTransfer::dragWithoutItemsIsIgnored()
{
    DragFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    pressItem(130);
    f.handler.m_dragItemIds.clear();
    duringOwnDrag([&] {
        QCOMPARE(answerToEnter(f.pos(150, f.trackB)), "ignored");
        QCOMPARE(answerToMove(f.pos(150, f.trackB)), "ignored");
        QCOMPARE(answerToDrop(f.pos(150, f.trackB)), "ignored");
    });
}

void TestDragHandlerTransfer::dragWithoutAStartIsIgnoredButDropped()
{
    DragFixture& f = fixture();
    f.handler.m_dragItemIds = {f.addSeconds(f.trackA, 100, 60)};
    duringOwnDrag([&] {
        QCOMPARE(answerToEnter(f.pos(150, f.trackB)), "ignored");
        QCOMPARE(answerToMove(f.pos(150, f.trackB)), "ignored");
        QVERIFY(f.handler.dragPos().isNull());
        QCOMPARE(answerToDrop(f.pos(150, f.trackB)), "accepted");
    });
    QVERIFY(f.handler.isIdle());
    QVERIFY(f.model.journal.isEmpty());
}

void TestDragHandlerTransfer::dragWithoutTheMarkerIsLeftAlone()
{
    DragFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    pressItem(130);
    QMimeData text;
    text.setText("an item");
    m_data = &text;
    duringOwnDrag([&] {
        const QPoint before = f.handler.dragPos();
        QCOMPARE(answerToEnter(f.pos(150, f.trackB)), "ignored");
        QCOMPARE(answerToMove(f.pos(150, f.trackB)), "kept");
        QCOMPARE(answerToDrop(f.pos(150, f.trackB)), "kept");
        QCOMPARE(f.handler.dragPos(), before);
    });
    QCOMPARE(f.handler.dragItemIds(), QVector<int>{0});
    QVERIFY(f.model.journal.isEmpty());
}

void TestDragHandlerTransfer::dragWithoutAHeaderIsFollowed()
{
    DragFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    pressItem(130);
    const QPoint pos = f.pos(150, f.trackB);
    duringOwnDrag([&] {
        f.view.setHeader(new QHeaderView(Qt::Horizontal, &f.view));
        QVERIFY(!f.view.header());
        QVERIFY(keepsExceptions([&] { answerToMove(pos); }));
        QCOMPARE(f.handler.dragPos(), pos);
    });
}

int main(int argc, char** argv)
{
    // Of the platforms without a display, the one with a drag and drop of its own.
    qputenv("QT_QPA_PLATFORM", "minimal");
    QApplication application(argc, argv);
    TestDragHandlerTransfer test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_drag_handler_transfer.moc"
