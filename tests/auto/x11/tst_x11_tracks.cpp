#include "x11/desktop_view.h"
#include "x11/pointer.h"

#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>

using VeskTimeline::TimelineView;

/// The name column: row buttons with their question, the branch arrow, double and right clicks, on a real display.
class TestX11Tracks : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void insertButtonInsertsAtThePress();
    void insertButtonLooksPressedWhileItIsHeld();
    void removeButtonRemovesTheTrackAfterYes();
    void removeButtonKeepsTheTrackAfterNo();
    void removeButtonKeepsTheTrackAfterAKeyThatMeansNo_data();
    void removeButtonKeepsTheTrackAfterAKeyThatMeansNo();
    void removeButtonIsUpOnceTheQuestionIsAnswered();
    void buttonsOfAReadOnlyModelDoNothing();
    void doubleClickOnANameActivatesTheTrack();
    void rightPressOnANameAsksForAContextMenu();
    void branchArrowExpandsAndCollapsesTheTrack();
    void itemsOfAChildTrackAreInReachOnceItIsExpanded();
    void pressOnANameReachesNoItem();

private:
    static QPoint insertButtonPos(const DesktopView& desktop, int trackId);
    static QPoint removeButtonPos(const DesktopView& desktop, int trackId);
    static QImage nameOnScreen(const DesktopView& desktop, int trackId);
    static QMessageBox* question(const DesktopView& desktop);
    /// Presses the remove button and waits until the question is there to be answered.
    static Pointer& askToRemove(Pointer& pointer, const DesktopView& desktop, int trackId);
};

void TestX11Tracks::init()
{
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".?")));
    Pointer pointer;
    PLAY(pointer.moveAway());
}

QPoint TestX11Tracks::insertButtonPos(const DesktopView& desktop, int trackId)
{
    return desktop.view.visualRect(desktop.view.indexOfTrackRow(trackId, 0)).topRight() + QPoint(-10, 10);
}

QPoint TestX11Tracks::removeButtonPos(const DesktopView& desktop, int trackId)
{
    return desktop.view.visualRect(desktop.view.indexOfTrackRow(trackId, 0)).bottomRight() - QPoint(10, 10);
}

QImage TestX11Tracks::nameOnScreen(const DesktopView& desktop, int trackId)
{
    return desktop.rowsOnScreen().copy(desktop.view.visualRect(desktop.view.indexOfTrackRow(trackId, 0)));
}

QMessageBox* TestX11Tracks::question(const DesktopView& desktop)
{
    return desktop.view.findChild<QMessageBox*>();
}

Pointer& TestX11Tracks::askToRemove(Pointer& pointer, const DesktopView& desktop, int trackId)
{
    pointer.moveTo(desktop.rows(), removeButtonPos(desktop, trackId)).click();
    return pointer.expect("the question stands",
                          [&] { return question(desktop) && question(desktop)->isActiveWindow(); });
}

void TestX11Tracks::insertButtonInsertsAtThePress()
{
    DesktopView desktop;
    desktop.model.track(desktop.trackB)->setInsertButton(true);
    QVERIFY(desktop.show());

    Pointer pointer;
    pointer.moveTo(desktop.rows(), insertButtonPos(desktop, desktop.trackB)).press();
    pointer.expect("the track is there", [&] { return desktop.model.track(desktop.trackB)->trackCount() == 1; });
    PLAY(pointer.release());
    QCOMPARE(desktop.model.track(desktop.trackB)->trackCount(), 1);
    QVERIFY(!question(desktop));

    // Where the other button would be there is none.
    PLAY(pointer.moveTo(desktop.rows(), removeButtonPos(desktop, desktop.trackB)).click());
    QVERIFY(!question(desktop));
}

void TestX11Tracks::insertButtonLooksPressedWhileItIsHeld()
{
    DesktopView desktop;
    desktop.model.track(desktop.trackB)->setInsertButton(true);
    desktop.header()->setHoverVisible(false);
    QVERIFY(desktop.show());
    // The first press makes the row current and gives it a child; the second changes the button only.
    Pointer pointer;
    PLAY(pointer.moveTo(desktop.rows(), insertButtonPos(desktop, desktop.trackB)).click());
    QTRY_VERIFY(desktop.isScreenUpToDate());
    const QImage raised = nameOnScreen(desktop, desktop.trackB);

    pointer.press();
    pointer.expect("the button is down", [&] { return nameOnScreen(desktop, desktop.trackB) != raised; });
    PLAY(pointer.release());
    QTRY_COMPARE(nameOnScreen(desktop, desktop.trackB), raised);
}

void TestX11Tracks::removeButtonRemovesTheTrackAfterYes()
{
    DesktopView desktop;
    desktop.model.track(desktop.trackB)->setRemoveButton(true);
    desktop.addSeconds(desktop.trackB, 100, 60);
    desktop.addSeconds(desktop.trackC, 100, 60);
    QVERIFY(desktop.show());

    Pointer pointer;
    PLAY(askToRemove(pointer, desktop, desktop.trackB));
    QCOMPARE(desktop.items(), QStringList({"B:100+60", "C:100+60"}));
    QPointer<QMessageBox> box(question(desktop));
    QAbstractButton* const yes = box->button(QMessageBox::Yes);
    PLAY(pointer.moveTo(yes).click());
    QTRY_COMPARE(desktop.items(), QStringList({"C:100+60"}));
    QCOMPARE(desktop.model.rowCount(), 3);
    QTRY_VERIFY(!box);
}

void TestX11Tracks::removeButtonKeepsTheTrackAfterNo()
{
    DesktopView desktop;
    desktop.model.track(desktop.trackB)->setRemoveButton(true);
    QVERIFY(desktop.show());

    Pointer pointer;
    PLAY(askToRemove(pointer, desktop, desktop.trackB));
    QPointer<QMessageBox> box(question(desktop));
    QAbstractButton* const no = box->button(QMessageBox::No);
    PLAY(pointer.moveTo(no).click());
    QTRY_VERIFY(!box);
    QCOMPARE(desktop.model.rowCount(), 4);
}

void TestX11Tracks::removeButtonKeepsTheTrackAfterAKeyThatMeansNo_data()
{
    QTest::addColumn<QString>("key");
    QTest::newRow("Escape") << "Escape";
    QTest::newRow("Return") << "Return";
}

void TestX11Tracks::removeButtonKeepsTheTrackAfterAKeyThatMeansNo()
{
    QFETCH(QString, key);
    DesktopView desktop;
    desktop.model.track(desktop.trackB)->setRemoveButton(true);
    QVERIFY(desktop.show());

    Pointer pointer;
    PLAY(askToRemove(pointer, desktop, desktop.trackB));
    QPointer<QMessageBox> box(question(desktop));
    PLAY(pointer.key(key));
    QTRY_VERIFY(!box);
    QCOMPARE(desktop.model.rowCount(), 4);

    // It asks anew.
    PLAY(askToRemove(pointer, desktop, desktop.trackB));
}

void TestX11Tracks::removeButtonIsUpOnceTheQuestionIsAnswered()
{
    DesktopView desktop;
    desktop.model.track(desktop.trackB)->setRemoveButton(true);
    desktop.header()->setHoverVisible(false);
    QVERIFY(desktop.show());
    // The row is made current, so that the button is all that changes.
    Pointer pointer;
    PLAY(pointer.moveTo(desktop.rows(), desktop.namePos(desktop.trackB)).click());
    QTRY_VERIFY(desktop.isScreenUpToDate());
    const QImage raised = nameOnScreen(desktop, desktop.trackB);

    // The question keeps the mouse from the view, and with it the release.
    PLAY(askToRemove(pointer, desktop, desktop.trackB).key("Escape"));
    QTRY_VERIFY(!question(desktop) && desktop.view.isActiveWindow() && desktop.isScreenUpToDate());
    QCOMPARE(nameOnScreen(desktop, desktop.trackB), raised);
}

void TestX11Tracks::buttonsOfAReadOnlyModelDoNothing()
{
    DesktopView desktop;
    desktop.model.track(desktop.trackB)->setInsertButton(true);
    desktop.model.track(desktop.trackB)->setRemoveButton(true);
    desktop.model.setEditable(false);
    QVERIFY(desktop.show());

    Pointer pointer;
    PLAY(pointer.moveTo(desktop.rows(), insertButtonPos(desktop, desktop.trackB)).click());
    PLAY(pointer.moveTo(desktop.rows(), removeButtonPos(desktop, desktop.trackB)).click());
    QCOMPARE(desktop.model.track(desktop.trackB)->trackCount(), 0);
    QVERIFY(!question(desktop));
}

void TestX11Tracks::doubleClickOnANameActivatesTheTrack()
{
    DesktopView desktop;
    const int numbered = desktop.model.newTrack(QStringLiteral("12"));
    desktop.model.newTrack(QStringLiteral("child"), numbered);
    QVERIFY(desktop.show());
    QSignalSpy activated(&desktop.view, &TimelineView::trackActivated);
    QSignalSpy itemActivated(&desktop.view, &TimelineView::itemActivated);

    Pointer pointer;
    PLAY(pointer.moveTo(desktop.rows(), desktop.namePos(numbered)).doubleClick());
    QTRY_COMPARE(activated.size(), 1);
    QCOMPARE(activated.first().first().toInt(), 12);
    QVERIFY(!desktop.view.isExpanded(desktop.model.indexOfTrack(numbered)));

    // A name that is no number.
    PLAY(pointer.moveTo(desktop.rows(), desktop.namePos(desktop.trackB)).doubleClick());
    QTRY_COMPARE(activated.size(), 2);
    QCOMPARE(activated.last().first().toInt(), 0);
    QCOMPARE(itemActivated.size(), 0);
}

void TestX11Tracks::rightPressOnANameAsksForAContextMenu()
{
    DesktopView desktop;
    QVERIFY(desktop.show());
    QSignalSpy asked(&desktop.view, &QWidget::customContextMenuRequested);

    const QPoint pos = desktop.namePos(desktop.trackC);
    Pointer pointer;
    PLAY(pointer.moveTo(desktop.rows(), pos).click(Qt::RightButton));
    QTRY_COMPARE(asked.size(), 1);
    QCOMPARE(asked.first().first().toPoint(), pos);
}

void TestX11Tracks::branchArrowExpandsAndCollapsesTheTrack()
{
    DesktopView desktop;
    desktop.model.newTrack(QStringLiteral("child"), desktop.trackB);
    QVERIFY(desktop.show());
    const QModelIndex parent = desktop.model.indexOfTrack(desktop.trackB);
    QVERIFY(!desktop.view.isExpanded(parent));

    const QPoint arrow(desktop.view.indentation() / 2, desktop.namePos(desktop.trackB).y());
    Pointer pointer;
    PLAY(pointer.moveTo(desktop.rows(), arrow).click());
    QTRY_VERIFY(desktop.view.isExpanded(parent));
    QTRY_VERIFY(desktop.isScreenUpToDate());
    PLAY(pointer.click());
    QTRY_VERIFY(!desktop.view.isExpanded(parent));
}

void TestX11Tracks::itemsOfAChildTrackAreInReachOnceItIsExpanded()
{
    DesktopView desktop;
    const int child = desktop.model.newTrack(QStringLiteral("child"), desktop.trackB);
    desktop.addSeconds(child, 100, 60);
    QVERIFY(desktop.show());

    const QPoint arrow(desktop.view.indentation() / 2, desktop.namePos(desktop.trackB).y());
    Pointer pointer;
    PLAY(pointer.moveTo(desktop.rows(), arrow).click());
    QTRY_VERIFY(desktop.view.isExpanded(desktop.model.indexOfTrack(desktop.trackB)));
    PLAY(pointer.drag(desktop.rows(), desktop.pos(130, child), desktop.pos(180, desktop.trackC)));
    QTRY_COMPARE(desktop.items(), QStringList({"C:150+60"}));
    PLAY(pointer.drag(desktop.rows(), desktop.pos(180, desktop.trackC), desktop.pos(130, child)));
    QTRY_COMPARE(desktop.items(), QStringList({"child:100+60"}));
}

void TestX11Tracks::pressOnANameReachesNoItem()
{
    DesktopView desktop;
    const int item = desktop.addSeconds(desktop.trackA, 100, 60);
    QVERIFY(desktop.show());
    desktop.view.selectItem(item, true);

    Pointer pointer;
    PLAY(pointer.drag(desktop.rows(), desktop.namePos(desktop.trackA), desktop.pos(200, desktop.trackB)));
    PLAY(pointer.moveTo(desktop.rows(), desktop.pos(300, desktop.trackC)));
    QCOMPARE(desktop.view.selectedItemIds(), QList<int>({item}));
    QCOMPARE(desktop.items(), QStringList({"A:100+60"}));
}

QTEST_MAIN(TestX11Tracks)
#include "tst_x11_tracks.moc"
