#include "support/input.h"

#include <VeskTimeline/timeline_header_view.h>
#include <VeskTimeline/timeline_view.h>
#include <VeskTimeline/timeline_widget.h>
#include <VeskTimelineKit/standard_timeline_model.h>
#include <VeskWidgets/vesk_message_dialog_new.h>

#include <QAbstractButton>
#include <QAction>
#include <QDockWidget>
#include <QLineEdit>
#include <QMenu>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>
#include <QUndoStack>

#include <workbench/edit_field.h>
#include <workbench/item_commands.h>
#include <workbench/item_placement.h>
#include <workbench/main_window.h>
#include <workbench/track_commands.h>

using namespace VeskTimeline;
using namespace VeskTimeline::Kit;
using Workbench::MainWindow;

namespace {

// The offscreen platform remarks on every window that limits its size; the library on presses beside the rows.
const QRegularExpression unexpectedWarning(
    "^(?!This plugin does not support (propagateSizeHints|raise|grabbing the keyboard)|clicked on row)");
constexpr qint64 base = 1'600'000'000'000;
constexpr qint64 minute = 60'000;

struct Scene
{
    Scene()
    {
        Document document;
        document.track({"A"}).items = {{"one", base, 10 * minute, {}}, {"two", base + 20 * minute, 10 * minute, {}}};
        document.track({"B"}).items = {{"three", base, 60 * minute, {}}};
        document.track({"C"});
        window.showDocument(document, {});
        window.show();
        model.setSnapEnabled(false);
        if (!QTest::qWaitForWindowActive(&window))
            qFatal("the window gets no keys");
        view.setFocus();
        QCoreApplication::processEvents();
    }

    QAction* action(const char* name) { return window.findChild<QAction*>(name); }
    void trigger(const char* name)
    {
        QVERIFY2(action(name), name);
        QVERIFY2(action(name)->isEnabled(), name);
        action(name)->trigger();
        QCoreApplication::processEvents();
    }
    QPoint at(int trackId, qint64 time)
    {
        return {view.toPixel(time), view.visualRect(view.indexOfTrackRow(trackId, 1)).center().y()};
    }
    QPoint nameOf(int trackId) { return view.visualRect(view.indexOfTrackRow(trackId, 0)).center() - QPoint(40, 0); }
    QStringList steps()
    {
        QStringList texts;
        for (int i = 0; i < model.undoStack()->count(); ++i)
            texts.append(model.undoStack()->text(i));
        return texts;
    }
    /// "A(B C) D"
    QString tree() { return treeBelow(*model.rootTrack()); }
    QString treeBelow(const Track& parent)
    {
        QStringList names;
        for (const TrackPtr& track : parent.tracks())
            names.append(track->text() + (track->hasTracks() ? '(' + treeBelow(*track) + ')' : QString()));
        return names.join(' ');
    }
    QMenu* contextMenu() { return view.findChild<QMenu*>("contextMenu"); }

    MainWindow window;
    StandardTimelineModel& model = *window.model();
    TimelineView& view = *window.timeline()->view();
};

} // namespace

class TestItemCommands : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(unexpectedWarning); }

    void movingALargeSelectionIsOneStepAndToldOnce()
    {
        Scene scene;
        std::vector<DocumentItem> items;
        for (int i = 0; i < 60; ++i)
            items.push_back({QString::number(i), base + i * 1000, 500, {}});
        const QVector<int> ids = scene.model.addItems(3, items);
        scene.view.selectItems(ids, true);
        QSignalSpy changed(&scene.model, &StandardTimelineModel::itemsChanged);
        const qint64 step = scene.model.snapStep();
        const int steps = scene.model.undoStack()->count();

        QTest::keyClick(&scene.view, Qt::Key_Right);
        QCOMPARE(changed.count(), 1);
        QCOMPARE(changed.first().first().value<QVector<int>>(), ids);
        QCOMPARE(scene.model.item(ids.last())->startTime(), base + 59'000 + 10 * step);
        QCOMPARE(scene.model.undoStack()->undoText(), "Move 60 items");
        QTest::keyClick(&scene.view, Qt::Key_Left);
        QCOMPARE(changed.count(), 2);
        QCOMPARE(scene.model.item(ids.first())->startTime(), base);
        QCOMPARE(scene.model.undoStack()->count(), steps + 2);

        scene.view.selectItem(2, false);
        const QPoint pressed = scene.at(2, base + 30 * minute);
        Input::drag(&scene.view, pressed, pressed + QPoint(60, 0));
        QCOMPARE(changed.count(), 3);
        QCOMPARE(changed.last().first().value<QVector<int>>(), QVector<int>{2} + ids);
        const qint64 offset = scene.model.item(2)->startTime() - base;
        QVERIFY(offset > 0);
        QCOMPARE(scene.model.item(ids.last())->startTime(), base + 59'000 + offset);
        QCOMPARE(scene.model.undoStack()->undoText(), "Move 61 items");
    }

    void commandsNeedASelection()
    {
        Scene scene;
        for (const char* const name : {"cut", "copy", "paste", "delete", "duplicate", "lock", "unlock"})
            QVERIFY2(!scene.action(name)->isEnabled(), name);
        QVERIFY(scene.action("select_all")->isEnabled());
        scene.view.selectItem(0, true);
        for (const char* const name : {"cut", "copy", "delete", "duplicate", "lock", "unlock"})
            QVERIFY2(scene.action(name)->isEnabled(), name);
        QVERIFY(!scene.action("paste")->isEnabled());
        scene.trigger("copy");
        QVERIFY(scene.action("paste")->isEnabled());
    }

    void keysWorkOnce()
    {
        Scene scene;
        QTest::keyClick(&scene.view, Qt::Key_A, Qt::ControlModifier);
        QCOMPARE(scene.view.selectedItemIds().size(), 3);
        QTest::keyClick(&scene.view, Qt::Key_C, Qt::ControlModifier);
        QTest::keyClick(&scene.view, Qt::Key_V, Qt::ControlModifier);
        QCOMPARE(scene.model.itemIds().size(), 6);
        QCOMPARE(scene.steps(), QStringList{"Paste 3 items"});
        QCOMPARE(scene.view.selectedItemIds(), (QList<int>{3, 4, 5}));
        QTest::keyClick(&scene.view, Qt::Key_X, Qt::ControlModifier);
        QCOMPARE(scene.model.itemIds().size(), 3);
        scene.view.selectItem(0, true);
        QTest::keyClick(&scene.view, Qt::Key_Delete);
        QCOMPARE(scene.model.itemIds().size(), 2);
        QTest::keyClick(&scene.view, Qt::Key_Delete);
        QCOMPARE(scene.model.itemIds().size(), 2);
        QCOMPARE(scene.steps(), (QStringList{"Paste 3 items", "Cut 3 items", "Delete item"}));
    }

    void textFieldsKeepTheirKeys()
    {
        Scene scene;
        scene.view.selectItem(0, true);
        auto* const label = scene.window.findChild<Workbench::EditField*>("label")->findChild<QLineEdit*>();
        QTRY_COMPARE(label->text(), "one");
        label->setFocus();
        QTest::keyClick(label, Qt::Key_Home);
        QTest::keyClick(label, Qt::Key_Delete);
        QCOMPARE(label->text(), "ne");
        QCOMPARE(scene.model.itemIds().size(), 3);
        QTest::keyClick(label, Qt::Key_A, Qt::ControlModifier);
        QCOMPARE(label->selectedText(), "ne");
        QCOMPARE(scene.view.selectedItemIds(), QList<int>{0});
        QTest::keyClick(label, Qt::Key_Insert);
        QCOMPARE(scene.model.itemIds().size(), 3);
    }

    void deletingManyIsOneStep()
    {
        Scene scene;
        scene.view.selectAllItems();
        scene.trigger("delete");
        QCOMPARE(scene.model.itemIds().size(), 0);
        QCOMPARE(scene.view.selectedItemIds(), QList<int>());
        scene.model.undoStack()->undo();
        QCOMPARE(scene.model.itemIds().size(), 3);
        QCOMPARE(scene.steps(), QStringList{"Delete 3 items"});
    }

    void duplicatesStandBehindTheOriginals()
    {
        Scene scene;
        scene.view.selectItems({0, 1}, true);
        scene.trigger("duplicate");
        QCOMPARE(scene.view.selectedItemIds().size(), 2);
        QCOMPARE(scene.model.item(scene.view.selectedItemIds().first())->startTime(), base + 30 * minute);
        QCOMPARE(scene.model.item(scene.view.selectedItemIds().last())->startTime(), base + 50 * minute);
        QCOMPARE(scene.model.itemLabel(scene.view.selectedItemIds().last()), "two");
        QCOMPARE(scene.steps(), QStringList{"Duplicate 2 items"});
        scene.model.undoStack()->undo();
        QCOMPARE(scene.model.itemIds().size(), 3);
    }

    void aDoubleClickOnAnEmptyPlaceAddsAnItem()
    {
        Scene scene;
        const int trackC = scene.model.track(3)->id();
        const QPoint pos = scene.at(trackC, base + 30 * minute);
        Input::doubleClick(&scene.view, pos);
        QCOMPARE(scene.model.track(trackC)->itemCount(), 1);
        const Item& added = *scene.model.track(trackC)->items().front();
        QCOMPARE(added.startTime(), scene.view.toTime(pos.x()));
        QCOMPARE(qint64(added.duration()), Workbench::roundDuration(scene.view.zoomFactor()));
        QCOMPARE(scene.view.selectedItemIds(), QList<int>{added.id()});
        QCOMPARE(scene.steps(), QStringList{"Add item"});
        // What is typed next is its label.
        auto* const label = scene.window.findChild<Workbench::EditField*>("label")->findChild<QLineEdit*>();
        QVERIFY(label->hasFocus());
        QTest::keyClicks(label, "EVA");
        QTest::keyClick(label, Qt::Key_Return);
        QCOMPARE(scene.model.itemLabel(added.id()), "EVA");
    }

    void aDoubleClickOnAnItemOpensItsLabel()
    {
        Scene scene;
        scene.window.findChild<QDockWidget*>("inspectorDock")->hide();
        Input::doubleClick(&scene.view, scene.at(2, base + 30 * minute));
        QCOMPARE(scene.model.itemIds().size(), 3);
        QCOMPARE(scene.view.selectedItemIds(), QList<int>{2});
        auto* const label = scene.window.findChild<Workbench::EditField*>("label")->findChild<QLineEdit*>();
        QVERIFY(label->isVisible());
        QCOMPARE(label->selectedText(), "three");
    }

    void aNewItemFitsBetweenItsNeighboursAndOnTheGrid()
    {
        Scene scene;
        const Track& track = *scene.model.track(1);
        auto place = Workbench::placeForItem(scene.model, track, base + 12 * minute, 600 * minute);
        QCOMPARE(place.start, base + 12 * minute);
        QCOMPARE(place.end, base + 20 * minute);
        scene.model.setSnapEnabled(true);
        scene.model.setSnapStep(int(3 * minute));
        place = Workbench::placeForItem(scene.model, track, base + 15 * minute, 10 * minute);
        QCOMPARE(place.start, scene.model.snapTime(base + 15 * minute));
        QVERIFY(place.start < base + 15 * minute);
        QCOMPARE(place.end, place.start + minute);
    }

    void aNewItemStartsAtARoundTimeWhileSnappingIsOn_data()
    {
        QTest::addColumn<qint64>("window");
        QTest::addColumn<int>("step");
        QTest::addColumn<qint64>("time");
        QTest::addColumn<qint64>("start");
        constexpr qint64 midnight = 1'599'955'200'000;
        constexpr qint64 time = midnight + (7 * 60 + 44) * minute + 41'500;
        const auto row = [](const char* name, qint64 window, int step, qint64 at, qint64 start) {
            QTest::newRow(name) << window << step << at << start;
        };
        row("a day", 24 * 60 * minute, 500, time, midnight + (7 * 60 + 40) * minute);
        row("an hour", 60 * minute, 500, time, midnight + (7 * 60 + 44) * minute + 30'000);
        row("a minute", minute, 500, time, time - 500);
        row("a step above the unit", minute, int(10 * minute), time, midnight + (7 * 60 + 40) * minute);
        row("a step of its own", 24 * 60 * minute, 7000, 70'000'000'001, 70'000'000'000);
        row("before the epoch", 60 * minute, 500, -1, -15'000);
    }
    void aNewItemStartsAtARoundTimeWhileSnappingIsOn()
    {
        QFETCH(qint64, window);
        QFETCH(int, step);
        QFETCH(qint64, time);
        QFETCH(qint64, start);
        Scene scene;
        scene.model.setSnapEnabled(true);
        scene.model.setSnapStep(step);
        const Track& empty = *scene.model.track(3);
        QCOMPARE(Workbench::placeForItem(scene.model, empty, time, window).start, start);
        scene.model.setSnapEnabled(false);
        QCOMPARE(Workbench::placeForItem(scene.model, empty, time, window).start, time);
    }

    void insertAddsAtTheIndicatorInTheCurrentTrack()
    {
        Scene scene;
        Input::click(&scene.view, scene.at(3, base + 5 * minute));
        scene.window.timeline()->header()->setIndicatorTime(base + 40 * minute);
        QTest::keyClick(&scene.view, Qt::Key_Insert);
        QCOMPARE(scene.model.track(3)->itemCount(), 1);
        QCOMPARE(scene.model.track(3)->items().front()->startTime(), base + 40 * minute);
    }

    void insertInAnEmptyDocumentAddsATrackToo()
    {
        Scene scene;
        scene.window.showDocument(Document(), {});
        scene.trigger("add_item");
        QCOMPARE(scene.model.trackCount(), 1);
        QCOMPARE(scene.model.itemIds().size(), 1);
        QCOMPARE(scene.steps(), QStringList{"Add item"});
    }

    void lockingAndColouringAreSteps()
    {
        Scene scene;
        scene.view.selectItems({0, 2}, true);
        scene.trigger("lock");
        QVERIFY(!scene.model.item(0)->isEditable() && scene.model.item(1)->isEditable());
        scene.trigger("unlock");
        QVERIFY(scene.model.item(0)->isEditable());
        QCOMPARE(scene.steps(), (QStringList{"Lock 2 items", "Unlock 2 items"}));
    }

    void aRightPressShowsOneMenu_data()
    {
        QTest::addColumn<int>("trackId");
        QTest::addColumn<int>("minutes");
        QTest::newRow("item") << 1 << 5;
        QTest::newRow("empty place") << 3 << 5;
        QTest::newRow("name") << 2 << -1;
    }
    void aRightPressShowsOneMenu()
    {
        QFETCH(int, trackId);
        QFETCH(int, minutes);
        Scene scene;
        QSignalSpy asked(&scene.view, &QWidget::customContextMenuRequested);
        const QPoint pos = minutes < 0 ? scene.nameOf(trackId) : scene.at(trackId, base + minutes * minute);
        Input::press(&scene.view, pos, Qt::RightButton);
        QCOMPARE(asked.size(), 1);
        QVERIFY(scene.contextMenu());
        QCOMPARE(scene.view.findChildren<QMenu*>("contextMenu").size(), 1);
        QCOMPARE(scene.view.selectedItemIds(), trackId == 1 ? QList<int>{0} : QList<int>());
        QCOMPARE(scene.window.findChild<Workbench::TrackCommands*>()->current(), trackId);
        const bool addsHere = scene.contextMenu()->findChild<QAction*>("add_item_here") != nullptr;
        QCOMPARE(addsHere, minutes >= 0);
        scene.contextMenu()->close();
    }

    void tracksAreAddedAndNamedInPlace()
    {
        Scene scene;
        Input::click(&scene.view, scene.nameOf(1));
        scene.trigger("add_track");
        QCOMPARE(scene.tree(), "A New track B C");
        auto* const editor = scene.view.findChild<QLineEdit*>("trackNameEditor");
        QVERIFY(editor && editor->hasFocus());
        QTest::keyClicks(editor, "Rover");
        QTest::keyClick(editor, Qt::Key_Return);
        QCOMPARE(scene.tree(), "A Rover B C");
        scene.trigger("add_track_inside");
        QCOMPARE(scene.tree(), "A Rover(New track) B C");
        QCOMPARE(scene.steps(),
                 (QStringList{"Add track “New track”", "Rename track “New track”", "Add track “New track”"}));
    }

    void aDoubleClickOnANameRenames()
    {
        Scene scene;
        Input::doubleClick(&scene.view, scene.nameOf(2));
        auto* const editor = scene.view.findChild<QLineEdit*>("trackNameEditor");
        QVERIFY(editor);
        QCOMPARE(editor->text(), "B");
        QTest::keyClicks(editor, "x");
        QTest::keyClick(editor, Qt::Key_Escape);
        QCOMPARE(scene.tree(), "A B C");
        QCOMPARE(scene.steps(), QStringList());
        QTRY_VERIFY(!scene.view.findChild<QLineEdit*>("trackNameEditor"));
        QTest::keyClick(&scene.view, Qt::Key_F2);
        QVERIFY(scene.view.findChild<QLineEdit*>("trackNameEditor"));
    }

    void tracksAreMovedUpDownInAndOut()
    {
        Scene scene;
        Input::click(&scene.view, scene.nameOf(2));
        scene.trigger("track_up");
        QCOMPARE(scene.tree(), "B A C");
        scene.trigger("track_up");
        QCOMPARE(scene.tree(), "B A C");
        scene.trigger("track_down");
        scene.trigger("track_in");
        QCOMPARE(scene.tree(), "A(B) C");
        scene.trigger("track_out");
        QCOMPARE(scene.tree(), "A B C");
        QCOMPARE(scene.model.undoStack()->count(), 4);
    }

    void removingATrackAsksFirst()
    {
        Scene scene;
        Input::click(&scene.view, scene.nameOf(2));
        scene.trigger("remove_track");
        auto* dialog = scene.view.findChild<VeskWidgets::VeskMessageDialogNew*>();
        QVERIFY(dialog);
        QVERIFY(dialog->text().contains("“B”"));
        dialog->button(QMessageBox::No)->click();
        QCOMPARE(scene.tree(), "A B C");
        QTRY_VERIFY(!scene.view.findChild<VeskWidgets::VeskMessageDialogNew*>());
        scene.trigger("remove_track");
        dialog = scene.view.findChild<VeskWidgets::VeskMessageDialogNew*>();
        dialog->button(QMessageBox::Yes)->click();
        QCOMPARE(scene.tree(), "A C");
        QCOMPARE(scene.model.itemIds().size(), 2);
    }

    void shiftSuspendsSnappingDuringADrag()
    {
        Scene scene;
        scene.model.setSnapEnabled(true);
        scene.model.setSnapStep(int(10 * minute));
        const QPoint from = scene.at(1, base + 25 * minute);
        const QPoint to = from + QPoint(23, 0);
        Input::press(&scene.view, from);
        Input::move(&scene.view, from + QPoint(15, 0), Qt::LeftButton, Qt::ShiftModifier);
        QVERIFY(!scene.model.isSnapEnabled());
        Input::move(&scene.view, from + QPoint(15, 0), Qt::LeftButton);
        QVERIFY(scene.model.isSnapEnabled());
        Input::move(&scene.view, to, Qt::LeftButton, Qt::ShiftModifier);
        const qint64 expected = base + 20 * minute + scene.view.toTime(to.x()) - scene.view.toTime(from.x());
        Input::release(&scene.view, to, Qt::LeftButton, Qt::ShiftModifier);
        QCOMPARE(scene.model.item(1)->startTime(), expected);
        QTRY_VERIFY(scene.model.isSnapEnabled());
    }
};

QTEST_MAIN(TestItemCommands)
#include "tst_item_commands.moc"
