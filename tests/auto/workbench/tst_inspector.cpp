#include "support/input.h"

#include <VeskTimeline/item_delegate.h>
#include <VeskTimeline/timeline_header_view.h>
#include <VeskTimeline/timeline_view.h>
#include <VeskTimeline/timeline_view_drag_handler.h>
#include <VeskTimelineKit/standard_timeline_model.h>

#include <QAbstractItemView>
#include <QCheckBox>
#include <QComboBox>
#include <QElapsedTimer>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <QTableWidget>
#include <QTest>
#include <QToolButton>
#include <QUndoStack>
#include <QWheelEvent>

#include <workbench/duration_text.h>
#include <workbench/edit_field.h>
#include <workbench/inspector.h>

using namespace VeskTimeline;
using namespace VeskTimeline::Kit;
using Workbench::EditField;
using Workbench::Inspector;

namespace {

// The offscreen platform remarks on windows that limit their size, and on lists that open.
const QRegularExpression
    unexpectedWarning("^(?!This plugin does not support (propagateSizeHints|raise|grabbing the keyboard))");
constexpr qint64 base = 1'600'000'000'000; // 2020-09-13T12:26:40Z
constexpr qint64 second = 1000;
constexpr qint64 minute = 60 * second;

/// A view with two tracks and the inspector, side by side in one window.
struct Scene
{
    Scene()
    {
        trackA = model.addTrack("A");
        trackB = model.addTrack("B", trackA);
        first = model.addItem(trackA, {"one", base, minute, {}, true, "text", {{"crew", "3"}, {"lead", "x"}}});
        second_ = model.addItem(trackA, {"two", base + 2 * minute, 2 * minute, Qt::red, false, "", {{"crew", "2"}}});
        third = model.addItem(trackB, {"one", base, DocumentItem::openEnded, {}});
        view.setModel(&model);
        view.setItemDelegate(new ItemDelegate(&view));
        view.setRange(base, base + 10 * minute);
        view.setZoomFactor(Zoom::TenMinutes);
        view.expandAll();
        view.setGeometry(0, 0, 700, 400);
        inspector.setGeometry(700, 0, 300, 600);
        window.resize(1000, 600);
        model.undoStack()->clear();
        window.show();
        QTest::qWait(0);
    }

    void select(const QList<int>& ids)
    {
        view.selectItems(ids, true);
        QCoreApplication::processEvents();
        QCoreApplication::processEvents();
    }
    EditField* field(const char* name) { return inspector.findChild<EditField*>(name); }
    QLineEdit* line(const char* name) { return field(name)->findChild<QLineEdit*>(); }
    void type(const char* name, const QString& text, Qt::Key end = Qt::Key_Return)
    {
        QLineEdit* const edit = line(name);
        edit->setFocus();
        edit->selectAll();
        QTest::keyClick(edit, Qt::Key_Delete);
        QTest::keyClicks(edit, text);
        QTest::keyClick(edit, end);
        QCoreApplication::processEvents();
    }
    QTableWidget* table() { return inspector.findChild<QTableWidget*>("attributes"); }
    void typeInCell(int row, int column, const QString& text)
    {
        table()->setCurrentCell(row, column);
        // That of the cell before goes only when the event loop is reached.
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        table()->editItem(table()->item(row, column));
        auto* const editor = table()->viewport()->findChild<QLineEdit*>();
        QVERIFY(editor);
        editor->selectAll();
        QTest::keyClicks(editor, text);
        QTest::keyClick(editor, Qt::Key_Return);
        QCoreApplication::processEvents();
    }
    QStringList attributes()
    {
        QStringList rows;
        for (int row = 0; row < table()->rowCount(); ++row)
            rows.append(table()->item(row, 0)->text() + '=' + table()->item(row, 1)->text());
        return rows;
    }
    QStringList steps()
    {
        QStringList texts;
        for (int i = 0; i < model.undoStack()->count(); ++i)
            texts.append(model.undoStack()->text(i));
        return texts;
    }

    QWidget window;
    TimelineView view{&window};
    StandardTimelineModel model{&view};
    Inspector inspector{&model, &view, &window};
    int trackA = 0;
    int trackB = 0;
    int first = 0;
    int second_ = 0;
    int third = 0;
};

} // namespace

class TestInspector : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(unexpectedWarning); }

    void durationsAreRead_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<qint64>("duration");
        QTest::newRow("all") << "1d 2:03:04.5" << qint64(((26 * 60 + 3) * 60 + 4) * 1000 + 500);
        QTest::newRow("seconds") << "90s" << qint64(90000);
        QTest::newRow("units") << " 1h 30 min " << qint64(90 * 60000);
        QTest::newRow("milliseconds") << "250ms" << qint64(250);
        QTest::newRow("clock") << "2:03" << qint64(123 * 60000);
        QTest::newRow("decimal comma") << "1,5 h" << qint64(90 * 60000);
        QTest::newRow("days alone") << "2d" << qint64(2) * 86400000;
        QTest::newRow("zero") << "0s" << qint64(0);
        QTest::newRow("open") << "Open" << qint64(-1);
    }
    void durationsAreRead()
    {
        QFETCH(QString, text);
        QFETCH(qint64, duration);
        const auto parsed = Workbench::parseDuration(text);
        QVERIFY(parsed);
        QCOMPARE(*parsed, duration);
        QCOMPARE(*Workbench::parseDuration(Workbench::formatDuration(duration)), duration);
    }

    void otherTextIsNoDuration_data()
    {
        QTest::addColumn<QString>("text");
        for (const char* const text : {"", "90", "-5s", "5 x", "1:60", "s", "1d 2", "99999999999d", "1:02:03 4s"})
            QTest::newRow(text) << QString(text);
    }
    void otherTextIsNoDuration()
    {
        QFETCH(QString, text);
        QVERIFY(!Workbench::parseDuration(text));
    }

    void timesAreReadWithAndWithoutZone()
    {
        QCOMPARE(*Workbench::parseUtcTime("2020-09-13T12:26:40Z"), base);
        QCOMPARE(*Workbench::parseUtcTime(" 2020-09-13 14:26:40+02:00 "), base);
        QCOMPARE(*Workbench::parseUtcTime("2020-09-13 12:26:40"), base);
        QCOMPARE(*Workbench::parseUtcTime("1970-01-02"), qint64(86400000));
        QVERIFY(!Workbench::parseUtcTime("tomorrow"));
        QVERIFY(!Workbench::parseUtcTime("2020-13-01"));
        QVERIFY(!Workbench::parseUtcTime("999999999999999"));
    }

    void nothingSelectedShowsNoFields()
    {
        Scene scene;
        scene.select({});
        QVERIFY(!scene.field("label")->isVisible());
        QCOMPARE(scene.inspector.findChild<QLabel*>("inspectorTitle")->text(), "No item is selected.");
    }

    void oneItemIsShown()
    {
        Scene scene;
        scene.select({scene.second_});
        QCOMPARE(scene.field("label")->text(), "two");
        QCOMPARE(scene.field("start")->text(), "2020-09-13T12:28:40Z");
        QCOMPARE(scene.field("end")->text(), "2020-09-13T12:30:40Z");
        QCOMPARE(scene.field("duration")->text(), "0:02:00");
        QCOMPARE(scene.inspector.findChild<QComboBox*>("track")->currentText(), "A");
        QCOMPARE(scene.inspector.findChild<QToolButton*>("color")->text(), "#FF0000");
        QCOMPARE(scene.inspector.findChild<QCheckBox*>("locked")->checkState(), Qt::Checked);
        QCOMPARE(scene.attributes(), QStringList{"crew=2"});
        scene.select({scene.third});
        QCOMPARE(scene.field("end")->text(), "open");
        QCOMPARE(scene.field("duration")->text(), "open");
        QCOMPARE(scene.inspector.findChild<QToolButton*>("color")->text(), "of the track");
    }

    void whatDiffersIsShownAsMixed()
    {
        Scene scene;
        scene.select({scene.first, scene.second_, scene.third});
        QCOMPARE(scene.field("label")->text(), "");
        QCOMPARE(scene.line("label")->placeholderText(), "(mixed)");
        QCOMPARE(scene.line("duration")->placeholderText(), "(mixed)");
        auto* const description = scene.field("description")->findChild<QPlainTextEdit*>();
        QCOMPARE(description->toPlainText(), "");
        QCOMPARE(description->placeholderText(), "(mixed)");
        QCOMPARE(scene.inspector.findChild<QToolButton*>("color")->text(), "(mixed)");
        QCOMPARE(scene.inspector.findChild<QComboBox*>("track")->currentIndex(), -1);
        QCOMPARE(scene.inspector.findChild<QCheckBox*>("locked")->checkState(), Qt::PartiallyChecked);
        QCOMPARE(scene.attributes(), (QStringList{"crew=(mixed)", "lead=(mixed)"}));
        scene.select({scene.first, scene.third});
        QCOMPARE(scene.field("label")->text(), "one");
        QCOMPARE(scene.line("label")->placeholderText(), "");
    }

    void aMixedFieldSetsAllInOneStep()
    {
        Scene scene;
        scene.select({scene.first, scene.second_});
        scene.type("label", "both");
        QCOMPARE(scene.model.itemLabel(scene.first), "both");
        QCOMPARE(scene.model.itemLabel(scene.second_), "both");
        QCOMPARE(scene.steps(), QStringList{"Rename 2 items"});
        scene.model.undoStack()->undo();
        QTRY_COMPARE(scene.line("label")->placeholderText(), "(mixed)");
        QCOMPARE(scene.model.itemLabel(scene.first), "one");
    }

    void anUntouchedFieldSetsNothing()
    {
        Scene scene;
        scene.select({scene.first, scene.second_});
        scene.line("label")->setFocus();
        QTest::keyClick(scene.line("label"), Qt::Key_Return);
        scene.line("start")->setFocus();
        QCOMPARE(scene.steps(), QStringList());
    }

    void changingTheStartKeepsTheDuration()
    {
        Scene scene;
        scene.select({scene.second_});
        scene.type("start", "2020-09-13T12:27:00Z");
        QCOMPARE(scene.model.item(scene.second_)->startTime(), base + 20 * second);
        QCOMPARE(scene.model.item(scene.second_)->duration(), int(2 * minute));
        QCOMPARE(scene.field("end")->text(), "2020-09-13T12:29:00Z");
        QCOMPARE(scene.steps(), QStringList{"Move item"});
    }

    void changingTheEndChangesTheDuration()
    {
        Scene scene;
        scene.select({scene.first});
        scene.type("end", "2020-09-13T12:29:40Z");
        QCOMPARE(scene.model.item(scene.first)->startTime(), base);
        QCOMPARE(scene.model.item(scene.first)->duration(), int(3 * minute));
        QCOMPARE(scene.field("duration")->text(), "0:03:00");
        scene.type("end", "open");
        QCOMPARE(scene.model.item(scene.first)->duration(), -1);
        QCOMPARE(scene.steps(), (QStringList{"Resize item", "Resize item"}));
    }

    void changingTheDurationChangesTheEnds()
    {
        Scene scene;
        scene.select({scene.first, scene.third});
        scene.type("duration", "90s");
        QCOMPARE(scene.model.item(scene.first)->duration(), 90000);
        QCOMPARE(scene.model.item(scene.third)->duration(), 90000);
        QCOMPARE(scene.field("end")->text(), "2020-09-13T12:28:10Z");
        QCOMPARE(scene.steps(), QStringList{"Resize 2 items"});
    }

    void aRefusalIsSaidAtTheField_data()
    {
        QTest::addColumn<QByteArray>("field");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("error");
        QTest::newRow("no time") << QByteArray("start") << "noon"
                                 << "“noon” is no time";
        QTest::newRow("end before start") << QByteArray("end") << "2020-09-13T12:26:39Z"
                                          << "The end is before the start.";
        QTest::newRow("no duration") << QByteArray("duration") << "90"
                                     << "“90” is no duration";
        QTest::newRow("too late") << QByteArray("start") << "9999-12-31T23:59:59Z"
                                  << "Items must lie in the years 1 to 9999.";
        QTest::newRow("too long") << QByteArray("duration") << "3600000d"
                                  << "Items must lie in the years 1 to 9999.";
    }
    void aRefusalIsSaidAtTheField()
    {
        QFETCH(QByteArray, field);
        QFETCH(QString, text);
        QFETCH(QString, error);
        Scene scene;
        scene.select({scene.first});
        const QString before = scene.field(field)->text();
        scene.type(field, text);
        QVERIFY2(scene.field(field)->error().startsWith(error), qPrintable(scene.field(field)->error()));
        QCOMPARE(scene.field(field)->text(), text);
        QCOMPARE(scene.steps(), QStringList());
        QTest::keyClick(scene.line(field), Qt::Key_Escape);
        QCOMPARE(scene.field(field)->text(), before);
        QCOMPARE(scene.field(field)->error(), QString());
    }

    void refusedForOneIsRefusedForAll()
    {
        Scene scene;
        scene.select({scene.first, scene.second_});
        scene.type("end", "2020-09-13T12:28:00Z");
        QCOMPARE(scene.field("end")->error(), "The end is before the start.");
        QCOMPARE(scene.model.item(scene.first)->duration(), int(minute));
        QCOMPARE(scene.steps(), QStringList());
    }

    void leavingTakesWhatIsValidAndDropsTheRest()
    {
        Scene scene;
        scene.select({scene.first});
        scene.type("label", "renamed", Qt::Key_Tab);
        QCOMPARE(scene.model.itemLabel(scene.first), "renamed");
        scene.type("duration", "nonsense", Qt::Key_Tab);
        QCOMPARE(scene.field("duration")->text(), "0:01:00");
        QVERIFY(!scene.field("duration")->error().isEmpty());
        QCOMPARE(scene.steps(), QStringList{"Rename item"});
    }

    void anotherSelectionTakesWhatWasTypedForTheFormer()
    {
        Scene scene;
        scene.select({scene.first});
        scene.line("label")->setFocus();
        QTest::keyClick(scene.line("label"), Qt::Key_End);
        QTest::keyClicks(scene.line("label"), "!");
        scene.select({scene.second_});
        QCOMPARE(scene.model.itemLabel(scene.first), "one!");
        QCOMPARE(scene.model.itemLabel(scene.second_), "two");
        QCOMPARE(scene.field("label")->text(), "two");

        scene.line("start")->setFocus();
        QTest::keyClicks(scene.line("start"), "!");
        scene.select({scene.first});
        QCOMPARE(scene.model.item(scene.second_)->startTime(), base + 2 * minute);
        QCOMPARE(scene.field("start")->text(), "2020-09-13T12:26:40Z");
        QCOMPARE(scene.field("start")->error(), QString());
    }

    void theDescriptionIsTakenWhenItIsLeft()
    {
        Scene scene;
        scene.select({scene.first});
        auto* const edit = scene.field("description")->findChild<QPlainTextEdit*>();
        edit->setFocus();
        edit->selectAll();
        QTest::keyClicks(edit, "first");
        QTest::keyClick(edit, Qt::Key_Return);
        QTest::keyClicks(edit, "second");
        QCOMPARE(scene.steps(), QStringList());
        scene.line("label")->setFocus();
        QCOMPARE(scene.model.itemDescription(scene.first), "first\nsecond");
        QCOMPARE(scene.steps(), QStringList{"Describe item"});
    }

    void theLockIsSetForAllAtTheFirstClick()
    {
        Scene scene;
        scene.select({scene.first, scene.second_});
        auto* const locked = scene.inspector.findChild<QCheckBox*>("locked");
        QTest::mouseClick(locked, Qt::LeftButton, {}, QPoint(8, locked->height() / 2));
        QVERIFY(!scene.model.item(scene.first)->isEditable());
        QCOMPARE(scene.steps(), QStringList{"Lock item"});
        QTRY_COMPARE(locked->checkState(), Qt::Checked);
        QTest::mouseClick(locked, Qt::LeftButton, {}, QPoint(8, locked->height() / 2));
        QVERIFY(scene.model.item(scene.first)->isEditable());
        QVERIFY(scene.model.item(scene.second_)->isEditable());
        QTRY_COMPARE(locked->checkState(), Qt::Unchecked);
    }

    void neitherTheWheelNorAKeyMovesItemsInPassing()
    {
        Scene scene;
        scene.select({scene.first, scene.third});
        auto* const track = scene.inspector.findChild<QComboBox*>("track");
        QCOMPARE(track->currentIndex(), -1);
        QWheelEvent wheel({5, 5}, track->mapToGlobal(QPoint(5, 5)), {}, {0, -120}, Qt::NoButton, Qt::NoModifier,
                          Qt::NoScrollPhase, false);
        wheel.accept();
        QApplication::sendEvent(track, &wheel);
        QVERIFY(!wheel.isAccepted());
        track->setFocus();
        for (const Qt::Key key : {Qt::Key_Down, Qt::Key_Up, Qt::Key_PageDown, Qt::Key_Home, Qt::Key_End, Qt::Key_B}) {
            QTest::keyClick(track, key);
            QTRY_VERIFY2(track->view()->isVisible(), qPrintable(QKeySequence(key).toString()));
            QTest::keyClick(track->view(), Qt::Key_Escape);
            QTRY_VERIFY(!track->view()->isVisible());
        }
        QCOMPARE(scene.steps(), QStringList());
        QCOMPARE(track->currentIndex(), -1);

        QTest::keyClick(track, Qt::Key_Down);
        QTest::keyClick(track->view(), Qt::Key_End);
        QTest::keyClick(track->view(), Qt::Key_Return);
        QTRY_COMPARE(scene.model.item(scene.first)->parentTrackId(), scene.trackB);
        QCOMPARE(scene.model.item(scene.third)->parentTrackId(), scene.trackB);
        QCOMPARE(scene.model.undoStack()->count(), 1);
    }

    void anAttributeThatIsBeingTypedIsTakenBeforeTheDocumentIsLeft()
    {
        Scene scene;
        scene.select({scene.first});
        scene.table()->setCurrentCell(0, 1);
        scene.table()->editItem(scene.table()->item(0, 1));
        auto* const editor = scene.table()->viewport()->findChild<QLineEdit*>();
        QVERIFY(editor);
        editor->selectAll();
        QTest::keyClicks(editor, "4");
        QCOMPARE(scene.steps(), QStringList());
        scene.inspector.commitPending();
        QCOMPARE(scene.model.itemAttributes(scene.first).value("crew"), "4");
        QCOMPARE(scene.model.undoStack()->count(), 1);
        QTRY_VERIFY(!scene.table()->viewport()->findChild<QLineEdit*>());
        // Nothing is being typed.
        scene.inspector.commitPending();
        QCOMPARE(scene.model.undoStack()->count(), 1);
    }

    void theTrackIsChosenFromAll()
    {
        Scene scene;
        scene.select({scene.first, scene.second_});
        auto* const track = scene.inspector.findChild<QComboBox*>("track");
        QCOMPARE(track->count(), 2);
        track->setFocus();
        QTest::keyClick(track, Qt::Key_Down);
        QTRY_VERIFY(track->view()->isVisible());
        QTest::keyClick(track->view(), Qt::Key_End);
        QTest::keyClick(track->view(), Qt::Key_Return);
        QCOMPARE(scene.model.item(scene.first)->parentTrackId(), scene.trackB);
        QCOMPARE(scene.model.item(scene.second_)->parentTrackId(), scene.trackB);
        QCOMPARE(scene.model.item(scene.second_)->startTime(), base + 2 * minute);
        QCOMPARE(scene.steps(), QStringList{"Move 2 items"});
        const int added = scene.model.addTrack("New");
        QTRY_COMPARE(track->findData(added), 2);
        scene.model.renameTrack(added, "Other");
        QTRY_COMPARE(track->itemText(2), "Other");
    }

    void theColourIsChosenFromAMenu()
    {
        Scene scene;
        scene.select({scene.first, scene.second_});
        QMenu* const menu = scene.inspector.findChild<QToolButton*>("color")->menu();
        menu->actions().first()->trigger();
        QCOMPARE(scene.model.item(scene.first)->color(), StandardTimelineModel::trackColor(0));
        QCOMPARE(scene.steps(), QStringList{"Change colour of 2 items"});
        menu->actions().last()->trigger();
        QTRY_COMPARE(scene.inspector.findChild<QToolButton*>("color")->text(), "of the track");
    }

    void attributesAreEditedAddedRenamedAndRemoved()
    {
        Scene scene;
        scene.select({scene.first, scene.second_});
        scene.typeInCell(0, 1, "7");
        QTRY_COMPARE(scene.attributes(), (QStringList{"crew=7", "lead=(mixed)"}));
        QCOMPARE(scene.model.itemAttributes(scene.second_).value("crew"), "7");
        scene.typeInCell(0, 0, "lead");
        QCOMPARE(scene.inspector.findChild<QLabel*>("attributesError")->text(),
                 "There is an attribute “lead” already.");
        scene.typeInCell(0, 0, "people");
        QTRY_COMPARE(scene.attributes(), (QStringList{"lead=(mixed)", "people=7"}));
        QTest::mouseClick(scene.inspector.findChild<QPushButton*>("addAttribute"), Qt::LeftButton);
        auto* const editor = scene.table()->viewport()->findChild<QLineEdit*>();
        QVERIFY(editor);
        QTest::keyClicks(editor, "new");
        QTest::keyClick(editor, Qt::Key_Return);
        QTRY_COMPARE(scene.attributes(), (QStringList{"lead=(mixed)", "new=", "people=7"}));
        scene.table()->setCurrentCell(0, 0);
        QTest::mouseClick(scene.inspector.findChild<QPushButton*>("removeAttribute"), Qt::LeftButton);
        QTRY_COMPARE(scene.attributes(), (QStringList{"new=", "people=7"}));
        QCOMPARE(scene.model.itemAttributes(scene.first), (QMap<QString, QString>{{"new", ""}, {"people", "7"}}));
        QCOMPARE(scene.model.undoStack()->count(), 4);
        while (scene.model.undoStack()->canUndo())
            scene.model.undoStack()->undo();
        QTRY_COMPARE(scene.attributes(), (QStringList{"crew=(mixed)", "lead=(mixed)"}));
    }

    void aLongItemActsAsOne()
    {
        Scene scene;
        constexpr qint64 long_ = 3 * DocumentItem::longestBar;
        const int piece = scene.model.addItem(scene.trackB, {"long", base, long_, {}});
        QVERIFY(scene.model.itemIds().size() > 5);
        scene.model.undoStack()->clear();
        scene.select({piece, piece + 1});
        QCOMPARE(scene.inspector.itemIds(), QList<int>{piece});
        QCOMPARE(scene.field("label")->text(), "long");
        QCOMPARE(*Workbench::parseDuration(scene.field("duration")->text()), long_);
        scene.type("duration", "60s");
        QCOMPARE(scene.steps(), QStringList{"Resize item"});
        // It is one bar now, and still what is shown.
        QCOMPARE(scene.model.itemIds().size(), 4);
        QTRY_COMPARE(scene.inspector.itemIds(), scene.view.selectedItemIds());
        QCOMPARE(scene.inspector.itemIds().size(), 1);
        QCOMPARE(scene.field("duration")->text(), "0:01:00");
    }

    void itFollowsADragBeforeItIsOver()
    {
        Scene scene;
        scene.model.setSnapEnabled(false);
        scene.select({scene.first});
        const QPoint from(scene.view.toPixel(base + 30 * second),
                          scene.view.visualRect(scene.model.indexOfTrack(scene.trackA)).center().y());
        const QPoint to(scene.view.toPixel(base + 60 * second), from.y());
        Input::press(&scene.view, from);
        Input::move(&scene.view, from + QPoint(15, 0), Qt::LeftButton);
        Input::move(&scene.view, to, Qt::LeftButton);
        QVERIFY(scene.view.dragHandler()->isActive());
        const qint64 shown = base + scene.view.dragHandler()->deltaTime();
        QVERIFY(shown > base);
        QTRY_COMPARE(*Workbench::parseUtcTime(scene.field("start")->text()), shown);
        QCOMPARE(scene.model.item(scene.first)->startTime(), base);
        Input::release(&scene.view, to);
        QTRY_COMPARE(*Workbench::parseUtcTime(scene.field("start")->text()),
                     scene.model.item(scene.first)->startTime());
        QVERIFY(scene.model.item(scene.first)->startTime() > base);
    }

    void itFollowsRemovalAndAnotherDocument()
    {
        Scene scene;
        scene.select({scene.first, scene.second_});
        scene.model.removeItems({scene.first});
        QTRY_COMPARE(scene.inspector.itemIds(), QList<int>{scene.second_});
        QCOMPARE(scene.field("label")->text(), "two");
        scene.view.clearSelectedItems();
        scene.model.setDocument(Document());
        QTRY_COMPARE(scene.inspector.itemIds(), QList<int>());
        QVERIFY(!scene.field("label")->isVisible());
    }

    void itStaysQuickWithManyItems()
    {
        Scene scene;
        std::vector<DocumentItem> items;
        for (int i = 0; i < 100'000; ++i)
            items.push_back({"many", base + i * second, int(second), {}, true, "d", {{"a", QString::number(i % 7)}}});
        const QVector<int> ids = scene.model.addItems(scene.trackB, items);
        QElapsedTimer timer;
        timer.start();
        scene.select(ids);
        QTRY_COMPARE(scene.inspector.itemIds().size(), 100'000);
        qInfo("shown in %lld ms", timer.restart());
        scene.type("label", "x");
        QCOMPARE(scene.model.itemLabel(ids.last()), "x");
        qInfo("renamed in %lld ms", timer.restart());
        scene.type("duration", "2s");
        QCOMPARE(scene.model.item(ids.last())->duration(), 2000);
        qInfo("resized in %lld ms", timer.restart());
        scene.model.undoStack()->undo();
        QCOMPARE(scene.model.item(ids.last())->duration(), 1000);
        qInfo("undone in %lld ms", timer.restart());
        scene.model.removeItems(ids);
        qInfo("removed in %lld ms", timer.restart());
        scene.model.undoStack()->undo();
        qInfo("brought back in %lld ms", timer.restart());
        scene.model.moveItemsToTrack(ids, scene.trackA);
        qInfo("moved to a track in %lld ms", timer.restart());
        scene.model.undoStack()->undo();
        qInfo("moved back in %lld ms", timer.restart());
        QCOMPARE(scene.model.item(ids.last())->parentTrackId(), scene.trackB);
        QCOMPARE(scene.model.itemIds().size(), 100'003);
    }
};

QTEST_MAIN(TestInspector)
#include "tst_inspector.moc"
