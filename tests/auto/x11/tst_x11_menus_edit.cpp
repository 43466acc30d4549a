#include "x11/desktop_workbench.h"

#include <VeskTimeline/timeline_header_view.h>
#include <VeskTimeline/timeline_view.h>
#include <VeskTimeline/timeline_widget.h>

#include <QAction>
#include <QTest>

using namespace VeskTimeline;

namespace {

QStringList selectedLabels(const DesktopWorkbench& f)
{
    QStringList labels;
    for (const int id : f.view()->selectedItemIds())
        labels.append(f.model()->itemLabel(id));
    labels.sort();
    return labels;
}

} // namespace

/// Drives each entry of the Edit menu with the mouse and by its keys, in a real window.
class TestX11MenusEdit : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(".?")); }

    void undoAndRedoNameTheirStep()
    {
        DesktopWorkbench f;
        QVERIFY(f.show());
        QVERIFY(!f.entry("undo")->isEnabled());
        QVERIFY(!f.entry("redo")->isEnabled());
        QVERIFY(f.select(f.items().at(0)));
        CHOOSE(f, "delete");
        QTRY_COMPARE(f.contents(), "A[second 20+5] B[third 40+5]");
        QVERIFY2(f.entry("undo")->text().contains("Delete item"), qPrintable(f.entry("undo")->text()));
        CHOOSE(f, "undo");
        QTRY_COMPARE(f.contents(), f.initially);
        QVERIFY2(f.entry("redo")->text().contains("Delete item"), qPrintable(f.entry("redo")->text()));
        CHOOSE(f, "redo");
        QTRY_COMPARE(f.contents(), "A[second 20+5] B[third 40+5]");

        PLAY(f.pointer.shortcut("ctrl+z"));
        QTRY_COMPARE(f.contents(), f.initially);
        PLAY(f.pointer.shortcut("ctrl+shift+z"));
        QTRY_COMPARE(f.contents(), "A[second 20+5] B[third 40+5]");
    }

    void whatNeedsASelectionIsDisabledWithoutOne()
    {
        DesktopWorkbench f;
        QVERIFY(f.show());
        for (const char* const name : {"cut", "copy", "paste", "duplicate", "delete"})
            QVERIFY2(!f.entry(name)->isEnabled(), name);
        QCOMPARE(f.choose("cut"), "the entry cut is disabled");
        PLAY(f.pointer.key("Escape").key("Escape"));
        QVERIFY(f.select(f.items().at(0)));
        for (const char* const name : {"cut", "copy", "duplicate", "delete"})
            QVERIFY2(f.entry(name)->isEnabled(), name);
        QVERIFY(!f.entry("paste")->isEnabled());
    }

    void cutAndPaste()
    {
        DesktopWorkbench f;
        QVERIFY(f.show());
        f.window.timeline()->header()->setIndicatorTime(DesktopWorkbench::origin + 10 * DesktopWorkbench::minute);
        QVERIFY(f.select(f.items().at(1)));
        CHOOSE(f, "cut");
        QTRY_COMPARE(f.contents(), "A[first 0+5] B[third 40+5]");
        CHOOSE(f, "paste");
        QTRY_COMPARE(f.contents(), "A[first 0+5, second 10+5] B[third 40+5]");
        QCOMPARE(selectedLabels(f), QStringList{"second"});
        UNDO_ALL(f);
        QCOMPARE(f.contents(), f.initially);
    }

    void copyAndPaste()
    {
        DesktopWorkbench f;
        QVERIFY(f.show());
        f.window.timeline()->header()->setIndicatorTime(DesktopWorkbench::origin + 50 * DesktopWorkbench::minute);
        QVERIFY(f.select(f.items().at(2)));
        CHOOSE(f, "copy");
        QCOMPARE(f.contents(), f.initially);
        QVERIFY(!f.model()->undoStack()->canUndo());
        CHOOSE(f, "paste");
        QTRY_COMPARE(f.contents(), "A[first 0+5, second 20+5] B[third 40+5, third 50+5]");
        UNDO_ALL(f);
        QCOMPARE(f.contents(), f.initially);
    }

    void duplicateAddsBehind()
    {
        DesktopWorkbench f;
        QVERIFY(f.show());
        QVERIFY(f.select(f.items().at(0)));
        CHOOSE(f, "duplicate");
        QTRY_COMPARE(f.contents(), "A[first 0+5, first 5+5, second 20+5] B[third 40+5]");
        QCOMPARE(selectedLabels(f), QStringList{"first"});
        QVERIFY(f.view()->selectedItemIds().first() != f.items().at(0));
        UNDO_ALL(f);
        QCOMPARE(f.contents(), f.initially);
    }

    void selectAllAndDelete()
    {
        DesktopWorkbench f;
        QVERIFY(f.show());
        CHOOSE(f, "select_all");
        QTRY_COMPARE(selectedLabels(f), QStringList({"first", "second", "third"}));
        CHOOSE(f, "delete");
        QTRY_COMPARE(f.contents(), "A[] B[]");
        QVERIFY(!f.view()->hasSelectedItems());
        // All three are one step.
        QCOMPARE(f.model()->undoStack()->count(), 1);
        UNDO_ALL(f);
        QCOMPARE(f.contents(), f.initially);
    }

    void theKeysDoTheSame()
    {
        DesktopWorkbench f;
        QVERIFY(f.show());
        f.window.timeline()->header()->setIndicatorTime(DesktopWorkbench::origin + 10 * DesktopWorkbench::minute);
        QVERIFY(f.select(f.items().at(1)));
        PLAY(f.pointer.shortcut("ctrl+x"));
        QTRY_COMPARE(f.contents(), "A[first 0+5] B[third 40+5]");
        PLAY(f.pointer.shortcut("ctrl+v"));
        QTRY_COMPARE(f.contents(), "A[first 0+5, second 10+5] B[third 40+5]");
        PLAY(f.pointer.shortcut("ctrl+d"));
        QTRY_COMPARE(f.contents(), "A[first 0+5, second 10+5, second 15+5] B[third 40+5]");
        PLAY(f.pointer.shortcut("Delete"));
        QTRY_COMPARE(f.contents(), "A[first 0+5, second 10+5] B[third 40+5]");
        PLAY(f.pointer.shortcut("ctrl+a"));
        QTRY_COMPARE(f.view()->selectedItemIds().size(), 3);
        QVERIFY(f.select(f.items().at(0)));
        f.window.timeline()->header()->setIndicatorTime(DesktopWorkbench::origin + 30 * DesktopWorkbench::minute);
        PLAY(f.pointer.shortcut("ctrl+c").shortcut("ctrl+v"));
        QTRY_COMPARE(f.contents(), "A[first 0+5, second 10+5, first 30+5] B[third 40+5]");
        UNDO_ALL(f);
        QCOMPARE(f.contents(), f.initially);
    }

    void everyEntryHasBeenChosen()
    {
        const DesktopWorkbench f;
        QCOMPARE(f.unchosen("editMenu"), QStringList());
    }
};

QTEST_MAIN(TestX11MenusEdit)
#include "tst_x11_menus_edit.moc"
