#include "probe_select_handler.h"
#include "support/input.h"

#include <QRegularExpression>
#include <QTest>
#include <QWindow>

#include <memory>

class TestSelectionHandler : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void leftPressOnAnItemOnlyRemembersIt();
    void rightPressOnAnItemDoesNothing();
    void otherButtonsDoNothing();
    void pressOutsideTheRowsClearsAndStartsARubberBand();
    void pressOutsideTheRowsBesideTheTimeColumnStartsNoRubberBand();
    void rightPressOutsideTheRowsOnlyWarns();
    void controlPressOutsideTheRowsOnlyWarns();
    void pressOnANameOnlyWarns();
    void pressOnEmptySpaceClearsAndStartsARubberBand();
    void controlPressOnEmptySpaceDoesNothing();
    void rightPressOnEmptySpaceRequestsTheContextMenu();

    void moveWithoutARubberBandGivesUpTheClick();
    void moveDrawsTheRubberBand();
    void moveOutsideTheTimeColumnChangesTheHeightOnly();

    void clickSelects_data();
    void clickSelects();
    void clickThroughTheViewSelects();
    void clickWithTheKeyboardsControlToggles();
    void releaseElsewhereSelectsNothing();
    void pressMoveReleaseSelectsNothing();
    void otherButtonsReleaseNothing();
    void releaseOfARubberBandReplacesTheSelection();
    void failingRubberBandIsLoggedAndOver_data();
    void failingRubberBandIsLoggedAndOver();

    void doubleClickActivatesAndClearsFirst();
    void doubleClickOnEmptySpaceIsLoggedAtDebug();
    void doubleClickOutsideTheTimeCellsOnlyClears();
    void doubleClickWithAnotherButtonDoesNothing();

    void isActiveWhileThereIsSomethingToDo();

    void shiftHasNoMeaning();
    void handlerWithoutAModelDoesNothing();

private:
    SelectFixture& fixture() { return *m_fixture; }
    void press(const QPoint& pos, Qt::MouseButton button = Qt::LeftButton,
               Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QMouseEvent event = pressAt(pos, button, modifiers);
        fixture().handler.mousePressEvent(&event);
    }
    void move(const QPoint& pos)
    {
        QMouseEvent event = moveTo(pos);
        fixture().handler.mouseMoveEvent(&event);
    }
    void release(const QPoint& pos, Qt::MouseButton button = Qt::LeftButton,
                 Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QMouseEvent event = releaseAt(pos, button, modifiers);
        fixture().handler.mouseReleaseEvent(&event);
    }
    void doubleClick(const QPoint& pos, Qt::MouseButton button = Qt::LeftButton)
    {
        QMouseEvent event(QEvent::MouseButtonDblClick, pos, pos, button, button, Qt::NoModifier);
        fixture().handler.mouseDoubleClickEvent(&event);
    }
    QList<int> selected() { return fixture().view.selectedItemIds(); }

    std::unique_ptr<SelectFixture> m_fixture;
};

void TestSelectionHandler::init()
{
    QTest::failOnWarning(QRegularExpression(".?"));
    m_fixture = std::make_unique<SelectFixture>();
}

void TestSelectionHandler::cleanup()
{
    m_fixture.reset();
}

void TestSelectionHandler::leftPressOnAnItemOnlyRemembersIt()
{
    SelectFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    const int item = f.addSeconds(f.trackB, 100, 60);
    f.select({0});
    press(f.pos(130, f.trackB));
    QCOMPARE(f.handler.m_selectedItemId, item);
    QVERIFY(f.handler.isActive());
    QVERIFY(!f.handler.isRubberBandActive());
    QCOMPARE(selected(), QList<int>{0});
    QVERIFY(f.selections.isEmpty());
}

void TestSelectionHandler::rightPressOnAnItemDoesNothing()
{
    SelectFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    f.select({0});
    press(f.pos(130, f.trackA), Qt::RightButton);
    QCOMPARE(f.handler.m_selectedItemId, -1);
    QVERIFY(f.menus.isEmpty());
    QVERIFY(f.selections.isEmpty());
}

void TestSelectionHandler::otherButtonsDoNothing()
{
    SelectFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    f.select({0});
    for (const QPoint& pos : {f.pos(130, f.trackA), f.pos(500, f.trackA), f.belowRows(10), f.onName(f.trackA)})
        press(pos, Qt::MiddleButton);
    QVERIFY(!f.handler.isActive());
    QVERIFY(f.selections.isEmpty());
}

void TestSelectionHandler::pressOutsideTheRowsClearsAndStartsARubberBand()
{
    SelectFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    f.select({0});
    QTest::ignoreMessage(QtWarningMsg, pressOutsideWarning);
    press(f.belowRows(10));
    QVERIFY(selected().isEmpty());
    QCOMPARE(f.selections.size(), 1);
    QVERIFY(f.handler.isRubberBandActive());
    QCOMPARE(f.handler.rubberBand(), QRect(f.belowRows(10), QSize(0, 0)));
    QVERIFY(f.logLines().isEmpty());
}

void TestSelectionHandler::pressOutsideTheRowsBesideTheTimeColumnStartsNoRubberBand()
{
    SelectFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    const int y = f.belowRows(0).y();
    for (const int x : {f.labelWidth / 2, f.labelWidth, f.view.geometry().right()}) {
        f.select({0});
        QTest::ignoreMessage(QtWarningMsg, pressOutsideWarning);
        press({x, y});
        QVERIFY(!f.handler.isRubberBandActive());
        QCOMPARE(f.selections.size(), 1);
        QVERIFY(selected().isEmpty());
    }
    QTest::ignoreMessage(QtWarningMsg, pressOutsideWarning);
    press({f.labelWidth + 1, y});
    QVERIFY(f.handler.isRubberBandActive());
}

void TestSelectionHandler::rightPressOutsideTheRowsOnlyWarns()
{
    SelectFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    f.select({0});
    QTest::ignoreMessage(QtWarningMsg, pressOutsideWarning);
    press(f.belowRows(10), Qt::RightButton);
    QVERIFY(f.selections.isEmpty());
    QVERIFY(f.menus.isEmpty());
    QVERIFY(!f.handler.isActive());
}

void TestSelectionHandler::controlPressOutsideTheRowsOnlyWarns()
{
    SelectFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    f.select({0});
    QTest::ignoreMessage(QtWarningMsg, pressOutsideWarning);
    press(f.belowRows(10), Qt::LeftButton, Qt::ControlModifier);
    QVERIFY(f.selections.isEmpty());
    QVERIFY(!f.handler.isRubberBandActive());
}

void TestSelectionHandler::pressOnANameOnlyWarns()
{
    SelectFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    f.select({0});
    for (const Qt::MouseButton button : {Qt::LeftButton, Qt::RightButton}) {
        QTest::ignoreMessage(QtWarningMsg, "clicked on row with actuator A");
        press(f.onName(f.trackA), button);
    }
    QVERIFY(!f.handler.isActive());
    QVERIFY(f.selections.isEmpty());
    QVERIFY(f.menus.isEmpty());
}

void TestSelectionHandler::pressOnEmptySpaceClearsAndStartsARubberBand()
{
    SelectFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    f.select({0});
    press(f.pos(200, f.trackA));
    QVERIFY(selected().isEmpty());
    QCOMPARE(f.selections.size(), 1);
    QCOMPARE(f.handler.rubberBand(), QRect(f.pos(200, f.trackA), QSize(0, 0)));
    QVERIFY(f.handler.isRubberBandActive());
    QVERIFY(f.menus.isEmpty());
    QVERIFY(f.logLines().isEmpty());

    // In a row the column's first pixel counts, too.
    f.handler.m_isRubberBandActive = false;
    press(f.pos(0, f.trackA));
    QVERIFY(f.handler.isRubberBandActive());
}

void TestSelectionHandler::controlPressOnEmptySpaceDoesNothing()
{
    SelectFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    f.select({0});
    press(f.pos(200, f.trackA), Qt::LeftButton, Qt::ControlModifier);
    press(f.pos(200, f.trackA), Qt::RightButton, Qt::ControlModifier);
    QVERIFY(f.selections.isEmpty());
    QVERIFY(f.menus.isEmpty());
    QVERIFY(!f.handler.isRubberBandActive());
}

void TestSelectionHandler::rightPressOnEmptySpaceRequestsTheContextMenu()
{
    SelectFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    f.select({0});
    press(f.pos(200, f.trackA), Qt::RightButton);
    QCOMPARE(f.menus.size(), 1);
    QCOMPARE(f.menus.first().first().toPoint(), f.pos(200, f.trackA));
    QVERIFY(f.selections.isEmpty());
    QVERIFY(!f.handler.isRubberBandActive());
}

void TestSelectionHandler::moveWithoutARubberBandGivesUpTheClick()
{
    SelectFixture& f = fixture();
    f.handler.m_selectedItemId = 3;
    f.view.setCursor(Qt::ClosedHandCursor);
    QVERIFY(!f.repaints([&] { move(f.pos(200, f.trackA)); }));
    QCOMPARE(f.handler.m_selectedItemId, -1);
    QCOMPARE(f.cursor(), Qt::ClosedHandCursor);
    QVERIFY(f.handler.rubberBand().isNull());
}

void TestSelectionHandler::moveDrawsTheRubberBand()
{
    SelectFixture& f = fixture();
    const QPoint from = f.pos(200, f.trackA);
    press(from);
    f.handler.m_selectedItemId = 3;
    QVERIFY(f.repaints([&] { move(from + QPoint(30, 20)); }));
    QCOMPARE(f.handler.rubberBand(), QRect(from, QSize(30, 20)));
    QCOMPARE(f.cursor(), Qt::CrossCursor);
    move(from + QPoint(-40, -15));
    QCOMPARE(f.handler.rubberBand().topLeft(), from);
    QCOMPARE(f.handler.rubberBand().width(), -40);
    QCOMPARE(f.handler.rubberBand().height(), -15);
    QCOMPARE(f.handler.m_selectedItemId, 3);
    QVERIFY(f.selections.size() == 1);
}

void TestSelectionHandler::moveOutsideTheTimeColumnChangesTheHeightOnly()
{
    SelectFixture& f = fixture();
    const QPoint from = f.pos(200, f.trackA);
    press(from);
    move(from + QPoint(30, 20));
    for (const int x : {f.labelWidth, 10, -50, f.view.geometry().right(), 5000}) {
        move({x, from.y() + 33});
        QCOMPARE(f.handler.rubberBand(), QRect(from, QSize(30, 33)));
        move(from + QPoint(30, 20));
    }
    move({f.labelWidth + 1, from.y() + 5});
    QCOMPARE(f.handler.rubberBand().width(), -199);
}

void TestSelectionHandler::clickSelects_data()
{
    QTest::addColumn<QList<int>>("before");
    QTest::addColumn<bool>("isControlHeld");
    QTest::addColumn<QList<int>>("after");
    QTest::newRow("none selected") << QList<int>{} << false << QList<int>{0};
    QTest::newRow("the only selected") << QList<int>{0} << false << QList<int>{};
    QTest::newRow("one of two") << QList<int>{1, 0} << false << QList<int>{0};
    QTest::newRow("another selected") << QList<int>{1} << false << QList<int>{0};
    QTest::newRow("two others selected") << QList<int>{1, 2} << false << QList<int>{0};
    QTest::newRow("Control, none selected") << QList<int>{} << true << QList<int>{0};
    QTest::newRow("Control, another selected") << QList<int>{2} << true << QList<int>{2, 0};
    QTest::newRow("Control, the only selected") << QList<int>{0} << true << QList<int>{};
    QTest::newRow("Control, one of three") << QList<int>{1, 0, 2} << true << QList<int>{1, 2};
}

void TestSelectionHandler::clickSelects()
{
    QFETCH(QList<int>, before);
    QFETCH(bool, isControlHeld);
    QFETCH(QList<int>, after);
    SelectFixture& f = fixture();
    for (const int start : {100, 200, 300})
        f.addSeconds(f.trackA, start, 60);
    f.select(before);
    const Qt::KeyboardModifiers modifiers = isControlHeld ? Qt::ControlModifier : Qt::NoModifier;
    press(f.pos(130, f.trackA), Qt::LeftButton, modifiers);
    QVERIFY(f.selections.isEmpty());
    release(f.pos(150, f.trackA), Qt::LeftButton, modifiers);
    QCOMPARE(selected(), after);
    QCOMPARE(f.selections.size(), 1);
    QCOMPARE(f.selections.first().first().value<QList<int>>(), after);
    QCOMPARE(f.handler.m_selectedItemId, -1);
    QVERIFY(!f.handler.isActive());
}

void TestSelectionHandler::clickThroughTheViewSelects()
{
    SelectFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    f.addSeconds(f.trackB, 100, 60);
    Input::click(&f.view, f.pos(130, f.trackA));
    QCOMPARE(selected(), QList<int>{0});
    Input::click(&f.view, f.pos(130, f.trackB), Qt::LeftButton, Qt::ControlModifier);
    QCOMPARE(selected(), (QList<int>{0, 1}));
    Input::click(&f.view, f.pos(130, f.trackB));
    QCOMPARE(selected(), QList<int>{1});
    Input::click(&f.view, f.pos(130, f.trackB));
    QVERIFY(selected().isEmpty());
    QVERIFY(f.model.journal.isEmpty());
}

void TestSelectionHandler::clickWithTheKeyboardsControlToggles()
{
    SelectFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    f.addSeconds(f.trackB, 100, 60);
    f.select({1});
    QTest::keyPress(f.view.windowHandle(), Qt::Key_Control, Qt::ControlModifier);
    press(f.pos(130, f.trackA));
    release(f.pos(130, f.trackA));
    press(f.pos(500, f.trackA));
    QTest::keyRelease(f.view.windowHandle(), Qt::Key_Control);
    QCOMPARE(selected(), (QList<int>{1, 0}));
    QVERIFY(!f.handler.isRubberBandActive());
}

void TestSelectionHandler::releaseElsewhereSelectsNothing()
{
    SelectFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    f.addSeconds(f.trackA, 200, 60);
    for (const QPoint& pos :
         {f.pos(230, f.trackA), f.pos(500, f.trackA), f.pos(130, f.trackB), f.onName(f.trackA), f.belowRows(130)}) {
        press(f.pos(130, f.trackA));
        release(pos);
        QCOMPARE(f.handler.m_selectedItemId, -1);
    }
    QVERIFY(f.selections.isEmpty());
    // Without a press there is no click either.
    release(f.pos(130, f.trackA));
    QVERIFY(f.selections.isEmpty());
    QVERIFY(f.logLines().isEmpty());
}

void TestSelectionHandler::pressMoveReleaseSelectsNothing()
{
    SelectFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    press(f.pos(130, f.trackA));
    move(f.pos(131, f.trackA));
    release(f.pos(131, f.trackA));
    QVERIFY(f.selections.isEmpty());
    QCOMPARE(f.handler.m_selectedItemId, -1);
}

void TestSelectionHandler::otherButtonsReleaseNothing()
{
    SelectFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    press(f.pos(130, f.trackA));
    release(f.pos(130, f.trackA), Qt::RightButton);
    release(f.pos(500, f.trackA), Qt::MiddleButton);
    QCOMPARE(f.handler.m_selectedItemId, 0);
    QVERIFY(f.selections.isEmpty());

    press(f.pos(500, f.trackA));
    f.selections.clear();
    release(f.pos(510, f.trackA), Qt::RightButton);
    QVERIFY(f.handler.isRubberBandActive());
    QVERIFY(f.selections.isEmpty());
}

void TestSelectionHandler::releaseOfARubberBandReplacesTheSelection()
{
    SelectFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    f.addSeconds(f.trackB, 100, 60);
    f.addSeconds(f.trackB, 400, 60);
    Input::press(&f.view, f.pos(50, f.trackA));
    f.view.selectItem(2, true);
    f.selections.clear();
    f.handler.m_selectedItemId = 9;
    Input::move(&f.view, f.pos(250, f.trackB), Qt::LeftButton);
    f.view.setCursor(Qt::CrossCursor);
    Input::release(&f.view, f.pos(250, f.trackB));

    QCOMPARE(selected(), (QList<int>{0, 1}));
    QCOMPARE(f.selections.size(), 1);
    QVERIFY(!f.handler.isRubberBandActive());
    QCOMPARE(f.handler.rubberBand(), QRect(f.pos(50, f.trackA), QSize(0, 0)));
    QCOMPARE(f.cursor(), Qt::ArrowCursor);
    QCOMPARE(f.handler.m_selectedItemId, 9);
    QVERIFY(f.model.journal.isEmpty());
}

void TestSelectionHandler::failingRubberBandIsLoggedAndOver_data()
{
    addFailureRows();
}

void TestSelectionHandler::failingRubberBandIsLoggedAndOver()
{
    QFETCH(Failure, failure);
    SelectFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    press(f.pos(50, f.trackA));
    f.select({0});
    move(f.pos(250, f.trackA));
    f.handler.contents = [failure]() -> QVector<int> { throwVeto(failure); };
    QVERIFY(keepsExceptions([&] { release(f.pos(250, f.trackA)); }));
    QCOMPARE(f.logLines(), QStringList{failureLine(selectSignature("mouseReleaseEvent(QMouseEvent*)"), failure)});
    QVERIFY(!f.handler.isRubberBandActive());
    QCOMPARE(f.handler.rubberBand().size(), QSize(0, 0));
    QCOMPARE(f.cursor(), Qt::ArrowCursor);
    QCOMPARE(selected(), QList<int>{0});
}

void TestSelectionHandler::doubleClickActivatesAndClearsFirst()
{
    SelectFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    const int item = f.addSeconds(f.trackB, 100, 60);
    f.select({0, 1});
    QList<int> selectedAtActivation{-1};
    QObject::connect(&f.view, &TimelineView::itemActivated, &f.view, [&] { selectedAtActivation = selected(); });
    doubleClick(f.pos(130, f.trackB));
    QCOMPARE(f.activations.size(), 1);
    QCOMPARE(f.activations.first().first().toInt(), item);
    QCOMPARE(selectedAtActivation, QList<int>{});
    QCOMPARE(f.selections.size(), 1);
    QVERIFY(f.logLines().isEmpty());
}

void TestSelectionHandler::doubleClickOnEmptySpaceIsLoggedAtDebug()
{
    SelectFixture& f = fixture();
    doubleClick(f.pos(130, f.trackB));
    QVERIFY(f.activations.isEmpty());
    QCOMPARE(f.selections.size(), 1);
    QCOMPARE(f.logLines(),
             QStringList{"Debug: " + selectSignature("mouseDoubleClickEvent(QMouseEvent*)") + " lookup failed!"});
}

void TestSelectionHandler::doubleClickOutsideTheTimeCellsOnlyClears()
{
    SelectFixture& f = fixture();
    f.addSeconds(f.trackA, 0, 60);
    f.select({0});
    doubleClick(f.onName(f.trackA));
    doubleClick(f.belowRows(30));
    QCOMPARE(f.selections.size(), 2);
    QVERIFY(selected().isEmpty());
    QVERIFY(f.activations.isEmpty());
    QVERIFY(f.logLines().isEmpty());
}

void TestSelectionHandler::doubleClickWithAnotherButtonDoesNothing()
{
    SelectFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    f.select({0});
    doubleClick(f.pos(130, f.trackA), Qt::RightButton);
    QVERIFY(f.selections.isEmpty());
    QVERIFY(f.activations.isEmpty());
}

void TestSelectionHandler::isActiveWhileThereIsSomethingToDo()
{
    SelectFixture& f = fixture();
    QVERIFY(!f.handler.isActive());
    f.handler.m_selectedItemId = 0;
    QVERIFY(f.handler.isActive());
    QVERIFY(!f.handler.isRubberBandActive());
    f.handler.m_selectedItemId = -1;
    f.handler.m_isRubberBandActive = true;
    QVERIFY(f.handler.isActive());
    QVERIFY(f.handler.isRubberBandActive());
    f.handler.m_isRubberBandActive = false;
    QTest::keyPress(f.view.windowHandle(), Qt::Key_Control, Qt::ControlModifier);
    const bool isActiveWithControl = f.handler.isActive();
    QTest::keyRelease(f.view.windowHandle(), Qt::Key_Control);
    QVERIFY(isActiveWithControl);
    QVERIFY(!f.handler.isActive());
}

void TestSelectionHandler::shiftHasNoMeaning()
{
    SelectFixture& f = fixture();
    f.addSeconds(f.trackA, 100, 60);
    f.addSeconds(f.trackA, 200, 60);
    f.select({1});
    press(f.pos(130, f.trackA), Qt::LeftButton, Qt::ShiftModifier);
    release(f.pos(130, f.trackA), Qt::LeftButton, Qt::ShiftModifier);
    QCOMPARE(selected(), QList<int>{0});
    press(f.pos(230, f.trackA), Qt::LeftButton, Qt::ShiftModifier | Qt::ControlModifier);
    release(f.pos(230, f.trackA), Qt::LeftButton, Qt::ShiftModifier | Qt::ControlModifier);
    QCOMPARE(selected(), (QList<int>{0, 1}));
    QKeyEvent copy = keyPress(Qt::Key_C, Qt::ShiftModifier | Qt::ControlModifier);
    f.handler.keyPressEvent(&copy);
    QCOMPARE(f.model.journal, QStringList{"copy(0, 1)"});
    press(f.pos(500, f.trackA), Qt::LeftButton, Qt::ShiftModifier);
    QVERIFY(f.handler.isRubberBandActive());
    QVERIFY(selected().isEmpty());
}

void TestSelectionHandler::handlerWithoutAModelDoesNothing()
{
    TimelineView view;
    ProbeSelectHandler handler(&view);
    for (const int key : {Qt::Key_Delete, Qt::Key_A, Qt::Key_C, Qt::Key_X, Qt::Key_V}) {
        QKeyEvent event = keyPress(key, Qt::ControlModifier);
        handler.keyPressEvent(&event);
    }
    QTest::ignoreMessage(QtWarningMsg, pressOutsideWarning);
    QMouseEvent down = pressAt({300, 20});
    handler.mousePressEvent(&down);
    QMouseEvent up = releaseAt({310, 30});
    handler.mouseReleaseEvent(&up);
    QVERIFY(view.selectedItemIds().isEmpty());
}

QTEST_MAIN(TestSelectionHandler)
#include "tst_selection_handler.moc"
