#include "support/input.h"
#include "support/recording_logger.h"
#include "support/test_model.h"

#include <VeskTimeline/item_delegate.h>
#include <VeskTimeline/timeline_view.h>
#include <VeskTimeline/timeline_view_track_handler.h>
#include <VeskWidgets/vesk_message_dialog_new.h>

#include <QPushButton>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QSortFilterProxyModel>
#include <QTest>
#include <QWindow>

#include <functional>

using namespace VeskTimeline;
using VeskWidgets::VeskMessageDialogNew;

namespace {

/// Keeps what its buttons ask for.
class ButtonModel : public TestModel
{
public:
    void onInsertTrack(const QModelIndex& index) override
    {
        inserted.append(index);
        if (onInsert)
            onInsert();
    }
    void onRemoveTrack(const QModelIndex& index) override
    {
        removed.append(index);
        if (onRemove)
            onRemove();
    }

    QModelIndexList inserted;
    QModelIndexList removed;
    std::function<void()> onInsert;
    std::function<void()> onRemove;
};

/// Tracks with each combination of buttons, by name.
struct ButtonFixture
{
    ButtonModel model;
    TimelineView view;
    int both = model.newTrack(QStringLiteral("both"));
    int insertOnly = model.newTrack(QStringLiteral("12"));
    int removeOnly = model.newTrack(QStringLiteral("Alpha"));
    int none = model.newTrack(QStringLiteral("none"));

    ButtonFixture()
    {
        for (const int id : {both, insertOnly})
            model.track(id)->setInsertButton(true);
        for (const int id : {both, removeOnly})
            model.track(id)->setRemoveButton(true);
        view.setModel(&model);
        view.setItemDelegate(new ItemDelegate(&view));
        view.resize(900, 400);
        view.show();
        view.header()->resizeSection(0, 200);
        QCoreApplication::processEvents();
    }

    QModelIndex name(int trackId) const { return view.indexOfTrackRow(trackId, 0); }
    QRect cell(int trackId) const { return view.visualRect(name(trackId)); }
    /// Where "+" and "-" are painted; the cells' last column of pixels belongs to them as well.
    QRect insertButton(int trackId) const { return QRect(cell(trackId).right() - 25, cell(trackId).top(), 26, 25); }
    QRect removeButton(int trackId) const
    {
        return QRect(cell(trackId).right() - 25, cell(trackId).center().y(), 26, 25);
    }
    VeskMessageDialogNew* dialog() const { return view.findChild<VeskMessageDialogNew*>(); }
    /// Answers the question that stands, and lets the dialog go.
    void answer(QMessageBox::StandardButton button)
    {
        QVERIFY(dialog());
        dialog()->button(button)->click();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(!dialog());
    }
    bool isInsertPressed(int trackId) const { return view.trackHandler()->isInsertButtonPressed(name(trackId)); }
    bool isRemovePressed(int trackId) const { return view.trackHandler()->isRemoveButtonPressed(name(trackId)); }
};

QList<QPoint> corners(const QRect& rect)
{
    return {rect.topLeft(), rect.topRight(), rect.bottomLeft(), rect.bottomRight()};
}

} // namespace

class TestTrackHandler : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        // The offscreen platform says so of every dialog.
        QTest::failOnWarning(QRegularExpression("^(?!This plugin does not support propagateSizeHints\\(\\)$)"));
    }

    void noButtonIsPressedAtFirst();
    void pressOnTheInsertButtonInsertsAtOnceWithoutAQuestion();
    void everyPixelOfTheInsertButtonHits();
    void everyPixelOfTheRemoveButtonHits();
    void theLineThatBothButtonsShareIsTheInsertButtons();
    void removeButtonAloneLeavesTheUpperHalfDead();
    void insertButtonAloneLeavesTheLowerHalfDead();
    void pressElsewhereInTheNameDoesNothing();
    void readOnlyModelsButtonsAreDead();
    void timeColumnHasNoButtons();
    void otherButtonsOfTheMousePressNothing();

    void removalIsAskedForWithTheDescribedQuestion();
    void confirmedRemovalReachesTheModelOnce();
    void declinedRemovalDoesNothing();
    void closedQuestionDoesNothing();
    void removalKnowsItsRowAfterRowsHaveMoved();
    void removalOfARowThatHasGoneDoesNothing();
    void failingRemovalIsLogged();
    void failingInsertionEndsThePressSilently();

    void buttonLooksPressedUntilAnyRelease();
    void removeButtonIsRaisedAlthoughTheQuestionStands();
    void pressedLookIsPaintedAtOnce();
    void buttonIsRaisedWhenTheQuestionHasTakenTheRelease();

    void rightPressOnANameAsksForAContextMenu();
    void doubleClickActivatesTheTrackByItsNameAsANumber_data();
    void doubleClickActivatesTheTrackByItsNameAsANumber();
    void doubleClickOutsideTheNamesActivatesNothing();
    void doubleClickOfAnotherButtonActivatesNothing();
    void readOnlyModelsTracksAreActivatedToo();

    void behindAProxyTheModelGetsItsOwnIndexes();
    void withoutAModelPressesDoNothing();
};

void TestTrackHandler::noButtonIsPressedAtFirst()
{
    ButtonFixture f;
    for (const int id : {f.both, f.insertOnly, f.removeOnly, f.none}) {
        QVERIFY(!f.isInsertPressed(id));
        QVERIFY(!f.isRemovePressed(id));
    }
    QVERIFY(f.view.trackHandler()->isInsertButtonPressed(QModelIndex()));
    QVERIFY(f.view.trackHandler()->isRemoveButtonPressed(QModelIndex()));
}

void TestTrackHandler::pressOnTheInsertButtonInsertsAtOnceWithoutAQuestion()
{
    ButtonFixture f;
    Input::press(&f.view, f.insertButton(f.insertOnly).center());
    QCOMPARE(f.model.inserted, QModelIndexList{f.name(f.insertOnly)});
    QVERIFY(!f.dialog());
    Input::release(&f.view, f.insertButton(f.insertOnly).center());
    QCOMPARE(f.model.inserted.size(), 1);
    QVERIFY(f.model.removed.isEmpty());
}

void TestTrackHandler::everyPixelOfTheInsertButtonHits()
{
    ButtonFixture f;
    const QRect button = f.insertButton(f.insertOnly);
    QCOMPARE(button.right(), 199);
    for (int y = button.top() - 1; y <= button.bottom() + 1; ++y) {
        for (int x = button.left() - 1; x <= button.right(); ++x) {
            f.model.inserted.clear();
            Input::click(&f.view, QPoint(x, y));
            const bool isHit = !f.model.inserted.isEmpty();
            if (isHit != button.contains(x, y))
                QFAIL(qPrintable(QStringLiteral("%1, %2").arg(x).arg(y)));
        }
    }
}

void TestTrackHandler::everyPixelOfTheRemoveButtonHits()
{
    ButtonFixture f;
    const QRect button = f.removeButton(f.removeOnly);
    for (const QPoint& pos : corners(button)) {
        Input::click(&f.view, pos);
        f.answer(QMessageBox::No);
    }
    for (const QPoint& pos : corners(button.adjusted(-1, -1, 0, 1))) {
        if (!button.contains(pos))
            Input::click(&f.view, pos);
    }
    QVERIFY(!f.dialog());
}

void TestTrackHandler::theLineThatBothButtonsShareIsTheInsertButtons()
{
    ButtonFixture f;
    const QRect shared = f.insertButton(f.both).intersected(f.removeButton(f.both));
    QCOMPARE(shared.height(), 1);
    Input::click(&f.view, shared.center());
    QCOMPARE(f.model.inserted.size(), 1);
    QVERIFY(!f.dialog());
    Input::click(&f.view, shared.center() + QPoint(0, 1));
    QCOMPARE(f.model.inserted.size(), 1);
    f.answer(QMessageBox::No);
}

void TestTrackHandler::removeButtonAloneLeavesTheUpperHalfDead()
{
    ButtonFixture f;
    Input::click(&f.view, f.cell(f.removeOnly).topRight() + QPoint(-5, 5));
    QVERIFY(!f.dialog());
    QVERIFY(f.model.inserted.isEmpty());
    Input::click(&f.view, f.cell(f.removeOnly).bottomRight() + QPoint(-5, -5));
    f.answer(QMessageBox::No);
}

void TestTrackHandler::insertButtonAloneLeavesTheLowerHalfDead()
{
    ButtonFixture f;
    Input::click(&f.view, f.cell(f.insertOnly).bottomRight() + QPoint(-5, -5));
    QVERIFY(!f.dialog());
    QVERIFY(f.model.inserted.isEmpty());
}

void TestTrackHandler::pressElsewhereInTheNameDoesNothing()
{
    ButtonFixture f;
    Input::click(&f.view, f.cell(f.both).center());
    Input::click(&f.view, f.insertButton(f.none).center());
    Input::click(&f.view, f.removeButton(f.none).center());
    QVERIFY(!f.dialog());
    QVERIFY(f.model.inserted.isEmpty());
}

void TestTrackHandler::readOnlyModelsButtonsAreDead()
{
    ButtonFixture f;
    f.model.setEditable(false);
    Input::press(&f.view, f.insertButton(f.both).center());
    QVERIFY(!f.isInsertPressed(f.both));
    Input::press(&f.view, f.removeButton(f.both).center());
    QVERIFY(!f.isRemovePressed(f.both));
    QVERIFY(!f.dialog());
    QVERIFY(f.model.inserted.isEmpty());
}

void TestTrackHandler::timeColumnHasNoButtons()
{
    ButtonFixture f;
    const QPoint right(f.view.viewport()->width() - 5, f.insertButton(f.both).center().y());
    QMouseEvent event(QEvent::MouseButtonPress, right, right, Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
    f.view.trackHandler()->mousePressEvent(&event);
    QVERIFY(f.model.inserted.isEmpty());
    QMouseEvent below(QEvent::MouseButtonPress, QPoint(195, 300), QPoint(195, 300), Qt::LeftButton, Qt::LeftButton,
                      Qt::NoModifier);
    f.view.trackHandler()->mousePressEvent(&below);
    QVERIFY(f.model.inserted.isEmpty());
    QVERIFY(!f.dialog());
}

void TestTrackHandler::otherButtonsOfTheMousePressNothing()
{
    ButtonFixture f;
    QSignalSpy menuSpy(&f.view, &QWidget::customContextMenuRequested);
    Input::click(&f.view, f.insertButton(f.both).center(), Qt::MiddleButton);
    QCOMPARE(menuSpy.count(), 0);
    Input::click(&f.view, f.insertButton(f.both).center(), Qt::RightButton);
    Input::click(&f.view, f.removeButton(f.both).center(), Qt::RightButton);
    QVERIFY(f.model.inserted.isEmpty());
    QVERIFY(!f.dialog());
}

void TestTrackHandler::removalIsAskedForWithTheDescribedQuestion()
{
    ButtonFixture f;
    Input::click(&f.view, f.removeButton(f.both).center());
    const VeskMessageDialogNew* const dialog = f.dialog();
    QVERIFY(dialog);
    QVERIFY(dialog->isVisible());
    QVERIFY(dialog->isModal());
    QCOMPARE(dialog->parent(), &f.view);
    QCOMPARE(dialog->windowTitle(), QString());
    QCOMPARE(dialog->text(), QStringLiteral("Do you really want to remove this filter track and all of its contents?"));
    QCOMPARE(dialog->standardButtons(), QMessageBox::Yes | QMessageBox::No);
    QCOMPARE(dialog->icon(), QMessageBox::Question);
    QVERIFY(f.model.removed.isEmpty());
    f.answer(QMessageBox::No);
}

void TestTrackHandler::confirmedRemovalReachesTheModelOnce()
{
    ButtonFixture f;
    Input::click(&f.view, f.removeButton(f.removeOnly).center());
    f.answer(QMessageBox::Yes);
    QCOMPARE(f.model.removed, QModelIndexList{f.name(f.removeOnly)});
    QVERIFY(f.model.inserted.isEmpty());
    Input::click(&f.view, f.removeButton(f.both).center());
    f.answer(QMessageBox::Yes);
    QCOMPARE(f.model.removed, (QModelIndexList{f.name(f.removeOnly), f.name(f.both)}));
}

void TestTrackHandler::declinedRemovalDoesNothing()
{
    ButtonFixture f;
    Input::click(&f.view, f.removeButton(f.removeOnly).center());
    f.answer(QMessageBox::No);
    QVERIFY(f.model.removed.isEmpty());
}

void TestTrackHandler::closedQuestionDoesNothing()
{
    ButtonFixture f;
    Input::click(&f.view, f.removeButton(f.removeOnly).center());
    Input::key(f.dialog(), Qt::Key_Escape);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(!f.dialog());
    QVERIFY(f.model.removed.isEmpty());
}

// A hover of the mouse changes the layout while the question stands, and the application may insert a track.
void TestTrackHandler::removalKnowsItsRowAfterRowsHaveMoved()
{
    ButtonFixture f;
    Input::click(&f.view, f.removeButton(f.removeOnly).center());
    f.model.newTrack(QStringLiteral("new"), 0, 0);
    Q_EMIT f.model.layoutAboutToBeChanged();
    Q_EMIT f.model.layoutChanged();
    f.answer(QMessageBox::Yes);
    QCOMPARE(f.model.removed, QModelIndexList{f.name(f.removeOnly)});
}

void TestTrackHandler::removalOfARowThatHasGoneDoesNothing()
{
    struct ResettableModel : ButtonModel
    {
        void reset()
        {
            beginResetModel();
            clear();
            endResetModel();
        }
    };
    ResettableModel model;
    const int id = model.newTrack(QStringLiteral("A"));
    model.track(id)->setRemoveButton(true);
    TimelineView view;
    view.setModel(&model);
    view.setItemDelegate(new ItemDelegate(&view));
    view.show();
    QCoreApplication::processEvents();
    Input::click(&view, view.visualRect(view.indexOfTrackRow(id, 0)).bottomRight() - QPoint(5, 5));
    auto* const dialog = view.findChild<VeskMessageDialogNew*>();
    QVERIFY(dialog);
    model.reset();
    dialog->button(QMessageBox::Yes)->click();
    QVERIFY(model.removed.isEmpty());
}

void TestTrackHandler::failingRemovalIsLogged()
{
    RecordingLogger logger;
    ButtonFixture f;
    f.model.onRemove = [] { throw QStringLiteral("cannot remove"); };
    Input::click(&f.view, f.removeButton(f.removeOnly).center());
    f.answer(QMessageBox::Yes);
    QCOMPARE(f.model.removed.size(), 1);
    QCOMPARE(logger.messages(Hox::Error).size(), 1);
    QVERIFY(logger.messages(Hox::Error).first().endsWith(QStringLiteral(" cannot remove")));
}

void TestTrackHandler::failingInsertionEndsThePressSilently()
{
    RecordingLogger logger;
    ButtonFixture f;
    f.model.onInsert = [] { throw QStringLiteral("cannot insert"); };
    Input::click(&f.view, f.insertButton(f.both).center());
    QCOMPARE(f.model.inserted.size(), 1);
    QVERIFY(logger.messages(Hox::Error).isEmpty());
}

void TestTrackHandler::buttonLooksPressedUntilAnyRelease()
{
    ButtonFixture f;
    Input::press(&f.view, f.insertButton(f.both).center());
    QVERIFY(f.isInsertPressed(f.both));
    QVERIFY(!f.isRemovePressed(f.both));
    QVERIFY(!f.isInsertPressed(f.insertOnly));
    Input::release(&f.view, QPoint(700, 300));
    QVERIFY(!f.isInsertPressed(f.both));

    Input::press(&f.view, f.insertButton(f.both).center());
    Input::release(&f.view, QPoint(700, 300), Qt::RightButton);
    QVERIFY(!f.isInsertPressed(f.both));
}

void TestTrackHandler::removeButtonIsRaisedAlthoughTheQuestionStands()
{
    ButtonFixture f;
    Input::press(&f.view, f.removeButton(f.both).center());
    QVERIFY(f.isRemovePressed(f.both));
    QVERIFY(!f.isInsertPressed(f.both));
    QVERIFY(f.dialog());
    Input::release(&f.view, f.removeButton(f.both).center());
    QVERIFY(!f.isRemovePressed(f.both));
    QVERIFY(f.dialog()->isVisible());
    f.answer(QMessageBox::No);
}

void TestTrackHandler::pressedLookIsPaintedAtOnce()
{
    ButtonFixture f;
    const QPoint button = f.insertButton(f.both).center();
    // The row is the current one already: the press changes nothing but the button.
    Input::click(&f.view, button);
    const auto settle = [] {
        for (int i = 0; i < 3; ++i)
            QCoreApplication::processEvents();
    };
    settle();
    struct Watcher : QObject
    {
        int paints = 0;
        bool eventFilter(QObject*, QEvent* event) override
        {
            paints += event->type() == QEvent::Paint;
            return false;
        }
    } watcher;
    f.view.viewport()->installEventFilter(&watcher);
    Input::press(&f.view, button);
    settle();
    QVERIFY(watcher.paints > 0);
    watcher.paints = 0;
    Input::release(&f.view, button);
    settle();
    QVERIFY(watcher.paints > 0);
}

// The question blocks the window before the mouse button is up, and with it the release.
void TestTrackHandler::buttonIsRaisedWhenTheQuestionHasTakenTheRelease()
{
    ButtonFixture f;
    const QPoint pos = f.view.viewport()->mapTo(&f.view, f.removeButton(f.both).center());
    QTest::mousePress(f.view.windowHandle(), Qt::LeftButton, Qt::NoModifier, pos);
    QTest::mouseRelease(f.view.windowHandle(), Qt::LeftButton, Qt::NoModifier, pos);
    f.answer(QMessageBox::No);
    QVERIFY(!f.isRemovePressed(f.both));
}

void TestTrackHandler::rightPressOnANameAsksForAContextMenu()
{
    ButtonFixture f;
    QSignalSpy menuSpy(&f.view, &QWidget::customContextMenuRequested);
    const QPoint pos(60, f.cell(f.none).center().y());
    Input::press(&f.view, pos, Qt::RightButton);
    QCOMPARE(menuSpy.count(), 1);
    QCOMPARE(menuSpy.first(), QVariantList{pos});
    f.model.setEditable(false);
    Input::press(&f.view, pos, Qt::RightButton);
    QCOMPARE(menuSpy.count(), 2);
}

void TestTrackHandler::doubleClickActivatesTheTrackByItsNameAsANumber_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("number");
    QTest::newRow("number") << "12" << 12;
    QTest::newRow("negative number") << "-3" << -3;
    QTest::newRow("words") << "Alpha" << 0;
    QTest::newRow("words with a number") << "Track 7" << 0;
    QTest::newRow("no name") << "" << 0;
}

void TestTrackHandler::doubleClickActivatesTheTrackByItsNameAsANumber()
{
    QFETCH(QString, name);
    QFETCH(int, number);
    ButtonFixture f;
    const int id = f.model.newTrack(name);
    QCoreApplication::processEvents();
    QSignalSpy activatedSpy(&f.view, &TimelineView::trackActivated);
    const QPoint pos(60, f.cell(id).center().y());
    Input::mouse(f.view.viewport(), QEvent::MouseButtonDblClick, pos, Qt::LeftButton, Qt::LeftButton);
    QCOMPARE(activatedSpy, (QList<QVariantList>{{number}}));
}

void TestTrackHandler::doubleClickOutsideTheNamesActivatesNothing()
{
    ButtonFixture f;
    QSignalSpy activatedSpy(&f.view, &TimelineView::trackActivated);
    for (const QPoint& pos : {QPoint(500, f.cell(f.none).center().y()), QPoint(60, 320)})
        Input::mouse(f.view.viewport(), QEvent::MouseButtonDblClick, pos, Qt::LeftButton, Qt::LeftButton);
    QCOMPARE(activatedSpy.count(), 0);
}

void TestTrackHandler::doubleClickOfAnotherButtonActivatesNothing()
{
    ButtonFixture f;
    QSignalSpy activatedSpy(&f.view, &TimelineView::trackActivated);
    const QPoint pos(60, f.cell(f.none).center().y());
    for (const Qt::MouseButton button : {Qt::RightButton, Qt::MiddleButton})
        Input::mouse(f.view.viewport(), QEvent::MouseButtonDblClick, pos, button, button);
    QCOMPARE(activatedSpy.count(), 0);
}

void TestTrackHandler::readOnlyModelsTracksAreActivatedToo()
{
    ButtonFixture f;
    f.model.setEditable(false);
    QSignalSpy activatedSpy(&f.view, &TimelineView::trackActivated);
    const QPoint pos(60, f.cell(f.insertOnly).center().y());
    Input::mouse(f.view.viewport(), QEvent::MouseButtonDblClick, pos, Qt::LeftButton, Qt::LeftButton);
    QCOMPARE(activatedSpy, (QList<QVariantList>{{12}}));
}

void TestTrackHandler::behindAProxyTheModelGetsItsOwnIndexes()
{
    ButtonModel model;
    const int first = model.newTrack(QStringLiteral("B"));
    const int second = model.newTrack(QStringLiteral("A"));
    for (const int id : {first, second}) {
        model.track(id)->setInsertButton(true);
        model.track(id)->setRemoveButton(true);
    }
    QSortFilterProxyModel proxy;
    proxy.setSourceModel(&model);
    proxy.sort(0);
    TimelineView view;
    view.setModel(&proxy);
    view.setItemDelegate(new ItemDelegate(&view));
    view.show();
    QCoreApplication::processEvents();
    const QRect row = view.visualRect(view.indexOfTrackRow(first, 0));
    QVERIFY(row.top() > view.visualRect(view.indexOfTrackRow(second, 0)).top());
    Input::press(&view, row.topRight());
    QCOMPARE(model.inserted, QModelIndexList{model.indexOfTrack(first)});
    QVERIFY(view.trackHandler()->isInsertButtonPressed(view.indexOfTrackRow(first, 0)));
    Input::release(&view, row.topRight());
    Input::click(&view, row.bottomRight() - QPoint(5, 5));
    auto* const dialog = view.findChild<VeskMessageDialogNew*>();
    QVERIFY(dialog);
    dialog->button(QMessageBox::Yes)->click();
    QCOMPARE(model.removed, QModelIndexList{model.indexOfTrack(first)});
}

void TestTrackHandler::withoutAModelPressesDoNothing()
{
    TimelineView view;
    QSignalSpy activatedSpy(&view, &TimelineView::trackActivated);
    QMouseEvent event(QEvent::MouseButtonPress, QPoint(5, 5), QPoint(5, 5), Qt::LeftButton, Qt::LeftButton,
                      Qt::NoModifier);
    view.trackHandler()->mousePressEvent(&event);
    view.trackHandler()->mouseReleaseEvent(&event);
    view.trackHandler()->mouseDoubleClickEvent(&event);
    QCOMPARE(activatedSpy.count(), 0);
    QVERIFY(!view.findChild<VeskMessageDialogNew*>());
}

QTEST_MAIN(TestTrackHandler)
#include "tst_track_handler.moc"
