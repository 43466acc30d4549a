#include "x11/desktop_workbench.h"

#include <VeskTimeline/timeline_view.h>
#include <VeskWidgets/vesk_message_dialog_new.h>

#include <QAbstractButton>
#include <QAction>
#include <QColorDialog>
#include <QLineEdit>
#include <QTest>

using namespace VeskTimeline;
using VeskWidgets::VeskMessageDialogNew;

namespace {

QLineEdit* nameEditor(const DesktopWorkbench& f)
{
    auto* const editor = f.view()->findChild<QLineEdit*>("trackNameEditor");
    return editor && editor->hasFocus() ? editor : nullptr;
}

} // namespace

/// Drives each entry of the Tracks menu, and what the mouse does with the names of tracks, in a real window.
class TestX11MenusTracks : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(".?")); }

    void theMenuSaysWhichTrackIsMeant()
    {
        DesktopWorkbench f;
        QVERIFY(f.show());
        PLAY(f.pointer.moveTo(f.rows(), f.namePos(2)).click());
        QCOMPARE(f.choose("track_title"), "the entry track_title is disabled");
        QVERIFY2(f.entry("track_title")->text().contains("B"), qPrintable(f.entry("track_title")->text()));
        PLAY(f.pointer.key("Escape").key("Escape"));
    }

    void addTracksAndTypeTheirNames()
    {
        DesktopWorkbench f;
        QVERIFY(f.show());
        PLAY(f.pointer.moveTo(f.rows(), f.namePos(1)).click());
        CHOOSE(f, "add_track");
        QTRY_VERIFY(nameEditor(f));
        PLAY(f.pointer.type("beside").key("Return"));
        QTRY_COMPARE(f.contents(), "A[first 0+5, second 20+5] beside[] B[third 40+5]");
        CHOOSE(f, "add_track_inside");
        QTRY_VERIFY(nameEditor(f));
        PLAY(f.pointer.type("inside").key("Return"));
        QTRY_COMPARE(f.contents(), "A[first 0+5, second 20+5] beside[]{inside[]} B[third 40+5]");
        UNDO_ALL(f);
        QCOMPARE(f.contents(), f.initially);

        PLAY(f.pointer.moveTo(f.rows(), f.namePos(2)).click().shortcut("ctrl+t"));
        QTRY_VERIFY(nameEditor(f));
        PLAY(f.pointer.key("Escape").shortcut("ctrl+shift+t"));
        QTRY_VERIFY(nameEditor(f));
        PLAY(f.pointer.key("Escape"));
        QTRY_COMPARE(f.contents(), f.initially + " New track[]{New track[]}");
    }

    void rename()
    {
        DesktopWorkbench f;
        QVERIFY(f.show());
        PLAY(f.pointer.moveTo(f.rows(), f.namePos(2)).click());
        CHOOSE(f, "rename_track");
        QTRY_VERIFY(nameEditor(f));
        PLAY(f.pointer.type("by the menu").key("Return"));
        QTRY_COMPARE(f.model()->track(2)->text(), "by the menu");
        PLAY(f.pointer.shortcut("F2"));
        QTRY_VERIFY(nameEditor(f));
        PLAY(f.pointer.type("by F2").key("Return"));
        QTRY_COMPARE(f.model()->track(2)->text(), "by F2");
        PLAY(f.pointer.moveTo(f.rows(), f.namePos(2)).doubleClick());
        QTRY_VERIFY(nameEditor(f));
        PLAY(f.pointer.type("dropped").key("Escape"));
        QTRY_VERIFY(!nameEditor(f));
        QCOMPARE(f.model()->track(2)->text(), "by F2");
        PLAY(f.pointer.moveTo(f.rows(), f.namePos(2)).doubleClick());
        QTRY_VERIFY(nameEditor(f));
        PLAY(f.pointer.type("by double click").key("Return"));
        QTRY_COMPARE(f.model()->track(2)->text(), "by double click");
        UNDO_ALL(f);
        QCOMPARE(f.contents(), f.initially);
    }

    void moveUpAndDown()
    {
        DesktopWorkbench f;
        QVERIFY(f.show());
        const QString swapped = "B[third 40+5] A[first 0+5, second 20+5]";
        PLAY(f.pointer.moveTo(f.rows(), f.namePos(2)).click());
        CHOOSE(f, "track_up");
        QTRY_COMPARE(f.contents(), swapped);
        CHOOSE(f, "track_down");
        QTRY_COMPARE(f.contents(), f.initially);
        PLAY(f.pointer.shortcut("alt+Up"));
        QTRY_COMPARE(f.contents(), swapped);
        PLAY(f.pointer.shortcut("alt+Down"));
        QTRY_COMPARE(f.contents(), f.initially);
        UNDO_ALL(f);
        QCOMPARE(f.contents(), f.initially);
    }

    void moveInAndOut()
    {
        DesktopWorkbench f;
        QVERIFY(f.show());
        const QString nested = "A[first 0+5, second 20+5]{B[third 40+5]}";
        PLAY(f.pointer.moveTo(f.rows(), f.namePos(2)).click());
        CHOOSE(f, "track_in");
        QTRY_COMPARE(f.contents(), nested);
        CHOOSE(f, "track_out");
        QTRY_COMPARE(f.contents(), f.initially);
        PLAY(f.pointer.shortcut("ctrl+bracketright"));
        QTRY_COMPARE(f.contents(), nested);
        PLAY(f.pointer.shortcut("ctrl+bracketleft"));
        QTRY_COMPARE(f.contents(), f.initially);
        UNDO_ALL(f);
        QCOMPARE(f.contents(), f.initially);
    }

    void removeAsksFirst()
    {
        DesktopWorkbench f;
        QVERIFY(f.show());
        PLAY(f.pointer.moveTo(f.rows(), f.namePos(1)).click());
        CHOOSE(f, "remove_track");
        QTRY_VERIFY(f.dialog<VeskMessageDialogNew>());
        QVERIFY(f.dialog<VeskMessageDialogNew>()->text().contains("items: 2"));
        PLAY(f.pointer.key("Escape"));
        QTRY_VERIFY(!f.dialog<VeskMessageDialogNew>());
        QCOMPARE(f.contents(), f.initially);

        CHOOSE(f, "remove_track");
        QTRY_VERIFY(f.dialog<VeskMessageDialogNew>());
        const QAbstractButton* const yes = f.dialog<VeskMessageDialogNew>()->button(QMessageBox::Yes);
        QVERIFY(yes);
        PLAY(f.pointer.moveTo(yes).click());
        QTRY_COMPARE(f.contents(), "B[third 40+5]");
        QTRY_VERIFY(f.window.isActiveWindow());
        UNDO_ALL(f);
        QCOMPARE(f.contents(), f.initially);
    }

    void colours()
    {
        DesktopWorkbench f;
        QVERIFY(f.show());
        const QColor before = f.model()->colorOfTrack(1);
        const QStringList names{"Blue",   "Orange", "Green", "Red",   "Teal",   "Yellow",
                                "Purple", "Pink",   "Brown", "Olive", "Indigo", "Grey"};
        PLAY(f.pointer.moveTo(f.rows(), f.namePos(1)).click());
        for (int i = 0; i < names.size(); ++i) {
            CHOOSE(f, "Colour of track/" + names.at(i));
            QTRY_COMPARE(f.model()->colorOfTrack(1), Kit::StandardTimelineModel::trackColor(i));
        }
        CHOOSE(f, "Colour of track/Default");
        QTRY_COMPARE(f.model()->colorOfTrack(1), Kit::StandardTimelineModel::trackColor(0));
        CHOOSE(f, "Colour of track/Other…");
        TYPE_COLOR(f, "#123456");
        QTRY_COMPARE(f.model()->colorOfTrack(1), QColor("#123456"));
        QTRY_VERIFY(f.window.isActiveWindow());
        UNDO_ALL(f);
        QCOMPARE(f.model()->colorOfTrack(1), before);
    }

    void everyEntryHasBeenChosen()
    {
        const DesktopWorkbench f;
        QCOMPARE(f.unchosen("tracksMenu"), QStringList{"track_title"});
    }
};

QTEST_MAIN(TestX11MenusTracks)
#include "tst_x11_menus_tracks.moc"
