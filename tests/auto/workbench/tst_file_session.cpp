#include "support/file_size_limit.h"

#include <VeskTimeline/timeline_view.h>
#include <VeskTimeline/timeline_widget.h>
#include <VeskTimelineKit/document_format.h>
#include <VeskTimelineKit/standard_timeline_model.h>
#include <VeskTimelineKit/vtl_writer.h>

#include <QAction>
#include <QApplication>
#include <QDir>
#include <QDropEvent>
#include <QFile>
#include <QFileDialog>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QMimeData>
#include <QProgressBar>
#include <QPushButton>
#include <QRegularExpression>
#include <QSettings>
#include <QSignalSpy>
#include <QStatusBar>
#include <QTemporaryDir>
#include <QTest>
#include <QToolButton>
#include <QUndoStack>

#include <workbench/file_session.h>
#include <workbench/main_window.h>
#include <workbench/recent_files.h>

using namespace VeskTimeline;
using namespace VeskTimeline::Kit;
using Workbench::FileSession;
using Workbench::MainWindow;

namespace {

// The offscreen platform remarks on every window that limits its size.
const QRegularExpression unexpectedWarning("^(?!This plugin does not support propagateSizeHints)");

QAction* action(const MainWindow& window, const char* name)
{
    return window.findChild<QAction*>(name);
}

template <typename Dialog>
Dialog* dialog(const MainWindow& window, const char* name)
{
    for (auto* const candidate : window.findChildren<Dialog*>(name)) {
        if (candidate->isVisible())
            return candidate;
    }
    return nullptr;
}

QMessageBox* box(const MainWindow& window, const char* name)
{
    return dialog<QMessageBox>(window, name);
}

int openDialogs(const MainWindow& window)
{
    int count = 0;
    for (const auto* const candidate : window.findChildren<QDialog*>())
        count += candidate->isVisible() ? 1 : 0;
    return count;
}

bool isIdle(const MainWindow& window)
{
    return !window.fileSession()->isBusy();
}

QStringList topTracks(const MainWindow& window)
{
    QStringList names;
    for (const TrackPtr& track : window.model()->rootTrack()->tracks())
        names.append(track->text());
    return names;
}

// As a person does: types the name and presses the button.
void acceptFile(QFileDialog* dialog, const QString& text)
{
    auto* const edit = dialog->findChild<QLineEdit*>("fileNameEdit");
    QVERIFY(edit);
    edit->setText(text);
    QTest::keyClick(edit, Qt::Key_Return);
}

} // namespace

#define PRESS(window, name, pressed)                                                                                   \
    QTRY_VERIFY(box(window, name));                                                                                    \
    QVERIFY(box(window, name)->button(QMessageBox::pressed));                                                          \
    QTest::mouseClick(box(window, name)->button(QMessageBox::pressed), Qt::LeftButton);                                \
    QTRY_VERIFY(!box(window, name))

class TestFileSession : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(m_settings.isValid());
        QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, m_settings.path());
        QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    }

    void init()
    {
        QTest::failOnWarning(unexpectedWarning);
        m_dir = std::make_unique<QTemporaryDir>();
        QVERIFY(m_dir->isValid());
        Workbench::RecentFiles().clear();
    }

    void openingReadsInTheBackgroundAndTellsOfIt()
    {
        const QString file = csv("a.csv", "A,x,1,2\n");
        MainWindow window;
        window.show();
        QSignalSpy loaded(window.fileSession(), &FileSession::documentLoaded);
        window.fileSession()->open({file});
        QVERIFY(window.fileSession()->isBusy());
        QVERIFY(!action(window, "open")->isEnabled() && !action(window, "save")->isEnabled());
        QTRY_VERIFY(isIdle(window));
        QCOMPARE(topTracks(window), QStringList{"A"});
        QCOMPARE(window.windowTitle(), "a.csv[*] – VeskTimeline Workbench");
        QVERIFY(!window.isWindowModified());
        QVERIFY(action(window, "open")->isEnabled() && action(window, "save")->isEnabled());
        QCOMPARE(loaded.count(), 1);
        QCOMPARE(loaded.first().at(0).value<std::shared_ptr<const Document>>()->itemCount(), 1);
        QCOMPARE(loaded.first().at(1).toStringList(), QStringList{file});
        QCOMPARE(Workbench::RecentFiles().files(), QStringList{file});
    }

    void theOpenDialogOpensWhatIsChosen()
    {
        const QString file = csv("a.csv", "A,x,1,2\n");
        MainWindow window;
        window.show();
        action(window, "open")->trigger();
        auto* const open = dialog<QFileDialog>(window, "openDialog");
        QVERIFY(open);
        acceptFile(open, file);
        QTRY_COMPARE(topTracks(window), QStringList{"A"});
    }

    void aRefusedFileChangesNothingAndEachIsToldOfInOneDialog()
    {
        const QString good = csv("good.csv", "A,x,1,2\n");
        MainWindow window;
        window.show();
        window.showDocument(documentOf(3), {good});
        window.fileSession()->open({path("none1.csv"), good, path("none2.csv")});
        QTRY_VERIFY(box(window, "notOpened"));
        QCOMPARE(openDialogs(window), 1);
        const QStringList lines = box(window, "notOpened")->informativeText().split('\n');
        QCOMPARE(lines.size(), 2);
        QVERIFY(lines.first().startsWith(path("none1.csv")) && lines.last().startsWith(path("none2.csv")));
        QCOMPARE(window.model()->itemCount(), 3);
        QCOMPARE(window.windowTitle(), "good.csv[*] – VeskTimeline Workbench");
        PRESS(window, "notOpened", Ok);
        QVERIFY(isIdle(window));
        QCOMPARE(Workbench::RecentFiles().files(), QStringList{good});
    }

    void loadingShowsItsProgressAndCanBeCancelled()
    {
        const QString big = write("big.vtl.json", vtlText(documentOf(500000)));
        MainWindow window;
        window.show();
        window.showDocument(documentOf(3), {});
        QSignalSpy progress(window.fileSession(), &FileSession::workProgressed);
        window.fileSession()->open({big});
        auto* const bar = window.statusBar()->findChild<QProgressBar*>("taskBar");
        auto* const cancel = window.statusBar()->findChild<QToolButton*>("taskCancel");
        QVERIFY(bar && cancel && !bar->isVisible());
        while (!bar->isVisible() || bar->value() <= 0)
            QVERIFY(progress.wait(30000));
        QTest::mouseClick(cancel, Qt::LeftButton);
        QVERIFY(isIdle(window));
        QVERIFY(!bar->isVisible());
        QTest::qWait(50);
        QCOMPARE(window.model()->itemCount(), 3);
        QCOMPARE(openDialogs(window), 0);
    }

    void filesAreAddedAsTracksAtTheTopLevelAndThatIsUndone()
    {
        const QString a = csv("a.csv", "A,x,1,2\n");
        MainWindow window;
        window.show();
        window.fileSession()->open({a});
        QTRY_COMPARE(topTracks(window), QStringList{"A"});
        window.fileSession()->add({a, a});
        QTRY_COMPARE(topTracks(window), QStringList({"A", "a.csv", "a.csv (2)"}));
        QVERIFY(window.isWindowModified());
        window.fileSession()->add({a});
        QTRY_COMPARE(topTracks(window).size(), 4);
        QCOMPARE(topTracks(window).last(), "a.csv (3)");
        action(window, "undo")->trigger();
        action(window, "undo")->trigger();
        QCOMPARE(topTracks(window), QStringList{"A"});
        QVERIFY(!window.isWindowModified());
    }

    void severalFilesOpenedTogetherHaveATrackEach()
    {
        MainWindow window;
        window.fileSession()->open({csv("a.csv", "A,x,1,2\n"), csv("b.csv", "A,x,1,2\n")});
        QTRY_COMPARE(topTracks(window), QStringList({"a.csv", "b.csv"}));
        QCOMPARE(window.windowTitle(), "a.csv and 1 more[*] – VeskTimeline Workbench");
        QCOMPARE(window.fileSession()->nativeFileName(), QString());
    }

    void theTitleNamesTheStretchOfATrace()
    {
        const QString trace = write("t.json", R"([{"ph":"X","pid":1,"tid":1,"ts":5,"dur":7,"name":"x"}])");
        MainWindow window;
        window.fileSession()->open({trace});
        QTRY_COMPARE(window.windowTitle(), "t.json[*] – VeskTimeline Workbench (times stretched by 1000)");
    }

    void readOptionsAreAskedForAndCancellingOpensNothing()
    {
        const QString file = csv("a.csv", "A,x,1,2\n");
        const QString native = write("n.vtl.json", vtlText(documentOf(2)));
        MainWindow window;
        QStringList asked;
        std::function<void(const FileSession::ReadAnswer&)> answer;
        window.fileSession()->setAskForReadOptions(
            [&](const QString& fileName, const ReadOptions&,
                const std::function<void(const FileSession::ReadAnswer&)>& done) {
                asked.append(fileName);
                answer = done;
            });
        ReadOptions wanted;
        wanted.stretch = 7.0;
        window.fileSession()->open({native, file});
        QCOMPARE(asked, QStringList{file});
        QVERIFY(window.fileSession()->isBusy());
        QVERIFY(!window.findChild<QAction*>("open")->isEnabled());
        window.fileSession()->open({native});
        QCOMPARE(asked, QStringList{file});
        answer({});
        QVERIFY(isIdle(window));
        QVERIFY(window.findChild<QAction*>("open")->isEnabled());
        QSignalSpy loaded(window.fileSession(), &FileSession::documentLoaded);
        window.fileSession()->open({file});
        answer(wanted);
        QTRY_COMPARE(loaded.count(), 1);
        QCOMPARE(loaded.first().at(2).value<ReadOptions>().stretch, 7.0);
        window.fileSession()->reload();
        QTRY_COMPARE(loaded.count(), 2);
        QCOMPARE(asked.size(), 2);
        QCOMPARE(loaded.last().at(2).value<ReadOptions>().stretch, 7.0);
    }

    void savingANativeFileWritesItAndTheStarGoes()
    {
        const QString file = openNative();
        QSignalSpy saved(m_window->fileSession(), &FileSession::documentSaved);
        m_window->model()->setItemLabel(0, "changed");
        QVERIFY(m_window->isWindowModified());
        action(*m_window, "save")->trigger();
        QVERIFY(m_window->isWindowModified());
        QTRY_COMPARE(saved.count(), 1);
        QCOMPARE(saved.first().first().toString(), file);
        QVERIFY(!m_window->isWindowModified());
        QCOMPARE(contents(file), vtlText(m_window->model()->document()));
        action(*m_window, "undo")->trigger();
        QVERIFY(m_window->isWindowModified());
        // What was saved by oneself is no change by others.
        QTest::qWait(500);
        QCOMPARE(openDialogs(*m_window), 0);
    }

    void whatIsChangedWhileItIsWrittenStaysModified()
    {
        openNative(60000);
        m_window->model()->setItemLabel(0, "saved");
        action(*m_window, "save")->trigger();
        QTRY_VERIFY(m_window->model()->undoStack()->isClean());
        QVERIFY(m_window->fileSession()->isSaving());
        QVERIFY(m_window->isWindowModified());
        m_window->model()->setItemLabel(0, "not saved");
        QTRY_VERIFY(isIdle(*m_window));
        QVERIFY(m_window->isWindowModified());
        action(*m_window, "undo")->trigger();
        QVERIFY(!m_window->isWindowModified());
    }

    void savingAForeignFormatAsksForANativeName()
    {
        const QString file = csv("a.csv", "A,x,1,2\n");
        const QByteArray before = contents(file);
        MainWindow window;
        window.show();
        window.fileSession()->open({file});
        QTRY_COMPARE(topTracks(window), QStringList{"A"});
        window.model()->setItemLabel(0, "changed");
        action(window, "save")->trigger();
        auto* const save = dialog<QFileDialog>(window, "saveDialog");
        QVERIFY(save);
        QCOMPARE(save->findChild<QLineEdit*>("fileNameEdit")->text(), "a.vtl.json");
        QCOMPARE(save->nameFilters().size(), 1);
        QVERIFY2(save->nameFilters().first().endsWith(" (*.vtl.json)"), qPrintable(save->nameFilters().first()));
        QCOMPARE(save->labelText(QFileDialog::LookIn), "Save in:");
        acceptFile(save, path("a.vtl.json"));
        QTRY_COMPARE(window.windowTitle(), "a.vtl.json[*] – VeskTimeline Workbench");
        QVERIFY(!window.isWindowModified());
        QCOMPARE(window.fileSession()->nativeFileName(), path("a.vtl.json"));
        QCOMPARE(contents(path("a.vtl.json")), vtlText(window.model()->document()));
        QCOMPARE(contents(file), before);
    }

    void theNativeSuffixIsAddedAndAFileIsNotReplacedUnasked()
    {
        MainWindow window;
        window.show();
        window.showDocument(documentOf(2), {});
        write("x.vtl.json", "old");
        window.fileSession()->saveAs(path("x"));
        PRESS(window, "overwrite", Cancel);
        QVERIFY(isIdle(window));
        QCOMPARE(contents(path("x.vtl.json")), "old");
        window.fileSession()->saveAs(path("x"));
        PRESS(window, "overwrite", Save);
        QTRY_COMPARE(contents(path("x.vtl.json")), vtlText(documentOf(2)));
    }

    void theSuffixOfAnotherFormatGivesWayToTheNativeOne_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("written");
        QTest::newRow("none") << "a"
                              << "a.vtl.json";
        QTest::newRow("native") << "a.vtl.json"
                                << "a.vtl.json";
        QTest::newRow("native, capitals") << "a.VTL.JSON"
                                          << "a.VTL.JSON";
        QTest::newRow("trace") << "a.json"
                               << "a.vtl.json";
        QTest::newRow("packed trace") << "a.json.gz"
                                      << "a.vtl.json";
        QTest::newRow("table") << "a.csv"
                               << "a.vtl.json";
        QTest::newRow("calendar") << "a.ICS"
                                  << "a.vtl.json";
        QTest::newRow("unknown") << "a.2024"
                                 << "a.2024.vtl.json";
    }

    void theSuffixOfAnotherFormatGivesWayToTheNativeOne()
    {
        QFETCH(const QString, typed);
        QFETCH(const QString, written);
        MainWindow window;
        window.show();
        window.showDocument(documentOf(2), {});
        window.fileSession()->saveAs(path(typed));
        QTRY_VERIFY(!window.fileSession()->isBusy());
        QCOMPARE(m_dir->path(), QFileInfo(path(written)).path());
        QCOMPARE(QDir(m_dir->path()).entryList(QDir::Files), QStringList(written));
        QCOMPARE(contents(path(written)), vtlText(documentOf(2)));
        QCOMPARE(window.windowTitle(), written + "[*] – VeskTimeline Workbench");
    }

    void theTitleSaysWhetherAllTimesAreStretched()
    {
        const QString trace = write("t.json", R"([{"ph":"X","pid":1,"tid":1,"ts":5,"dur":7,"name":"x"}])");
        const QString dated = csv("a.csv", "A,x,1,2\n");
        const QString some = "[*] – VeskTimeline Workbench (times of traces stretched by 1000)";
        const QString all = "[*] – VeskTimeline Workbench (times stretched by 1000)";
        MainWindow window;
        window.show();
        window.fileSession()->open({trace, dated});
        QTRY_COMPARE(window.windowTitle(), "t.json and 1 more" + some);
        window.fileSession()->open({trace, trace});
        QTRY_COMPARE(window.windowTitle(), "t.json and 1 more" + all);
        window.fileSession()->open({dated});
        QTRY_COMPARE(window.windowTitle(), "a.csv[*] – VeskTimeline Workbench");
        window.fileSession()->add({trace});
        QTRY_COMPARE(window.windowTitle(), "a.csv" + some);
    }

    void addingToATraceTellsInTheTitleWhatIsStretched()
    {
        const QString trace = write("t.json", R"([{"ph":"X","pid":1,"tid":1,"ts":5,"dur":7,"name":"x"}])");
        MainWindow window;
        window.show();
        window.fileSession()->add({trace});
        QTRY_COMPARE(window.windowTitle(), "[*]VeskTimeline Workbench (times stretched by 1000)");
        window.fileSession()->add({trace});
        QTRY_COMPARE(window.model()->itemCount(), 2);
        QCOMPARE(window.windowTitle(), "[*]VeskTimeline Workbench (times stretched by 1000)");
        window.fileSession()->add({csv("a.csv", "A,x,1,2\n")});
        QTRY_COMPARE(window.windowTitle(), "[*]VeskTimeline Workbench (times of traces stretched by 1000)");
    }

    void aRecentFileThatIsNotThereCanBeTakenFromTheList()
    {
        const QString gone = path("gone.csv");
        const QString there = csv("a.csv", "A,x,1,2\n");
        Workbench::RecentFiles().add({there, gone});
        MainWindow window;
        window.show();
        const auto choose = [&window](const char* name) {
            Q_EMIT window.findChild<QMenu*>("recentMenu")->aboutToShow();
            action(window, name)->trigger();
        };
        choose("recentFile2");
        QCOMPARE(box(window, "recentFileGone")->text(), "“gone.csv” is not there. Remove it from the list?");
        QCOMPARE(box(window, "recentFileGone")->informativeText(), gone);
        PRESS(window, "recentFileGone", No);
        QCOMPARE(Workbench::RecentFiles().files(), (QStringList{there, gone}));
        choose("recentFile2");
        PRESS(window, "recentFileGone", Yes);
        QCOMPARE(Workbench::RecentFiles().files(), QStringList(there));
        choose("recentFile1");
        QTRY_COMPARE(topTracks(window), QStringList("A"));
        QVERIFY(!box(window, "recentFileGone"));
    }

    void reloadingFirstTakesTheTrackNameThatIsBeingTyped()
    {
        openNative();
        typeTrackName("typed");
        action(*m_window, "reload")->trigger();
        QCOMPARE(topTracks(*m_window), QStringList("typed"));
        PRESS(*m_window, "reloadChanges", Cancel);
        QCOMPARE(topTracks(*m_window), QStringList("typed"));
        QVERIFY(m_window->isWindowModified());
        m_window->model()->undoStack()->undo();
        QVERIFY(!m_window->isWindowModified());
        QCOMPARE(topTracks(*m_window), QStringList("T"));
    }

    void whatIsBeingTypedCountsWhenOthersChangeTheFile()
    {
        openNative();
        typeTrackName("typed");
        write("n.vtl.json", vtlText(documentOf(5)));
        QTRY_VERIFY(box(*m_window, "fileChanged"));
        QCOMPARE(topTracks(*m_window), QStringList("typed"));
        QCOMPARE(box(*m_window, "fileChanged")->informativeText(), "Reloading it loses what you have changed.");
    }

    void whatIsOpenedAfterARecoveredDocumentIsNotModified()
    {
        const QString file = csv("a.csv", "A,x,1,2\n");
        MainWindow window;
        window.show();
        window.model()->undoStack()->resetClean();
        QVERIFY(window.fileSession()->isModified());
        window.fileSession()->open({file});
        PRESS(window, "saveChanges", Discard);
        QTRY_COMPARE(topTracks(window), QStringList("A"));
        QVERIFY(!window.fileSession()->isModified());
        QVERIFY(!window.isWindowModified());
    }

    void exportingWritesAnotherFormatAndSaysWhatIsLost()
    {
        MainWindow window;
        window.show();
        window.showDocument(documentOf(2), {});
        window.model()->setItemLabel(0, "changed");
        action(window, "export")->trigger();
        auto* const dialogOfExport = dialog<QFileDialog>(window, "exportDialog");
        QVERIFY(dialogOfExport);
        QSignalSpy exported(window.fileSession(), &FileSession::exported);
        QSignalSpy saved(window.fileSession(), &FileSession::documentSaved);
        acceptFile(dialogOfExport, path("out.ics"));
        QTRY_COMPARE(exported.count(), 1);
        QVERIFY(contents(path("out.ics")).startsWith("BEGIN:VCALENDAR"));
        QCOMPARE(saved.count(), 0);
        QVERIFY(window.isWindowModified());
        QVERIFY(window.fileSession()->fileNames().isEmpty());
        QCOMPARE(openDialogs(window), 0);

        DocumentFormat lossy;
        lossy.write = [](const Document&, const QString&, const WriteOptions&) -> WriteResult {
            return QStringList{"the colours are lost"};
        };
        window.fileSession()->exportTo(path("lossy"), lossy);
        QTRY_VERIFY(box(window, "writeWarnings"));
        QCOMPARE(box(window, "writeWarnings")->informativeText(), "the colours are lost");
    }

    void savingSaysWhichTracksGetAnotherName()
    {
        const QString file = openNative();
        m_window->model()->addTrack("twin");
        m_window->model()->addTrack("twin");
        action(*m_window, "save")->trigger();
        QTRY_VERIFY(box(*m_window, "writeWarnings"));
        QVERIFY(box(*m_window, "writeWarnings")->informativeText().contains("several tracks “twin”"));
        QVERIFY(contents(file).contains("twin (2)"));
    }

    void aFailedSaveKeepsTheOldFileSaysWhyAndStaysModified()
    {
        const QString file = openNative(1000);
        const QByteArray before = contents(file);
        m_window->model()->setItemLabel(0, "changed");
        {
            const FileSizeLimit limit(4000);
            action(*m_window, "save")->trigger();
            QTRY_VERIFY(box(*m_window, "saveFailed"));
        }
        QVERIFY(box(*m_window, "saveFailed")->informativeText().contains("too large"));
        QVERIFY(m_window->isWindowModified());
        QCOMPARE(contents(file), before);
        PRESS(*m_window, "saveFailed", Ok);
        action(*m_window, "save")->trigger();
        QTRY_VERIFY(!m_window->isWindowModified());
        QCOMPARE(contents(file), vtlText(m_window->model()->document()));
    }

    void aSaveIntoAFolderThatIsGoneFails()
    {
        MainWindow window;
        window.show();
        window.showDocument(documentOf(2), {});
        window.fileSession()->saveAs(path("gone/x.vtl.json"));
        QTRY_VERIFY(box(window, "saveFailed"));
        QVERIFY(box(window, "saveFailed")->informativeText().contains("No such file or directory"));
        QVERIFY(window.fileSession()->fileNames().isEmpty());
    }

    void aCancelledSaveLeavesTheFileAndStaysModified()
    {
        const QString file = openNative(200000);
        const QByteArray before = contents(file);
        m_window->model()->setItemLabel(0, "changed");
        QSignalSpy progress(m_window->fileSession(), &FileSession::workProgressed);
        action(*m_window, "save")->trigger();
        QVERIFY(progress.wait(30000));
        m_window->fileSession()->cancel();
        QTRY_VERIFY(isIdle(*m_window));
        QVERIFY(m_window->isWindowModified());
        QCOMPARE(contents(file), before);
        QCOMPARE(openDialogs(*m_window), 0);
    }

    void closingWithoutChangesAsksNothing()
    {
        openNative();
        QVERIFY(m_window->close());
    }

    void closingWithChangesAsks()
    {
        const QString file = openNative();
        m_window->model()->setItemLabel(0, "changed");
        QVERIFY(!m_window->close());
        QTRY_VERIFY(box(*m_window, "saveChanges"));
        QCOMPARE(box(*m_window, "saveChanges")->text(), "Save the changes to “n.vtl.json”?");
        for (const QAbstractButton* const button : box(*m_window, "saveChanges")->buttons())
            QVERIFY(button->icon().isNull());
        PRESS(*m_window, "saveChanges", Cancel);
        QVERIFY(m_window->isVisible());
        m_window->close();
        m_window->close(); // asks once
        QCOMPARE(openDialogs(*m_window), 1);
        PRESS(*m_window, "saveChanges", Save);
        QTRY_VERIFY(!m_window->isVisible());
        QCOMPARE(contents(file), vtlText(m_window->model()->document()));
    }

    void discardingClosesAndWritesNothing()
    {
        const QString file = openNative();
        const QByteArray before = contents(file);
        m_window->model()->setItemLabel(0, "changed");
        action(*m_window, "quit")->trigger();
        PRESS(*m_window, "saveChanges", Discard);
        QTRY_VERIFY(!m_window->isVisible());
        QCOMPARE(contents(file), before);
    }

    void aSaveThatFailsKeepsTheWindowOpen()
    {
        MainWindow window;
        window.show();
        window.model()->addTrack("new");
        window.close();
        PRESS(window, "saveChanges", Save);
        auto* const save = dialog<QFileDialog>(window, "saveDialog");
        QVERIFY(save);
        save->reject();
        QCoreApplication::processEvents();
        QVERIFY(window.isVisible());
        window.fileSession()->saveAs(path("x"));
        QTRY_VERIFY(!window.isWindowModified());
        QVERIFY(window.isVisible()); // the wish to close ended with the dialog
    }

    void openingAnotherFileAndStartingNewAskToo()
    {
        const QString other = csv("a.csv", "A,x,1,2\n");
        openNative();
        m_window->model()->setItemLabel(0, "changed");
        m_window->fileSession()->open({other});
        QVERIFY(isIdle(*m_window));
        PRESS(*m_window, "saveChanges", Cancel);
        QCOMPARE(m_window->model()->itemCount(), 2);
        action(*m_window, "new")->trigger();
        PRESS(*m_window, "saveChanges", Cancel);
        QCOMPARE(m_window->model()->itemCount(), 2);
        m_window->fileSession()->open({other});
        PRESS(*m_window, "saveChanges", Discard);
        QTRY_COMPARE(topTracks(*m_window), QStringList{"A"});
        action(*m_window, "new")->trigger();
        QCOMPARE(m_window->model()->trackCount(), 0);
        QCOMPARE(m_window->windowTitle(), "[*]VeskTimeline Workbench");
    }

    void whatIsChangedWhileAnotherFileIsReadIsAskedAbout()
    {
        openNative();
        m_window->fileSession()->open({write("big.vtl.json", vtlText(documentOf(20000)))});
        QVERIFY(m_window->fileSession()->isBusy());
        m_window->model()->setItemLabel(0, "changed");
        QTRY_VERIFY(isIdle(*m_window));
        QCOMPARE(m_window->model()->itemCount(), 2);
        PRESS(*m_window, "saveChanges", Discard);
        QTRY_COMPARE(m_window->model()->itemCount(), 20000);
    }

    void reloadingReadsTheFileAgainAndAsksWhenThereAreChanges()
    {
        const QString file = openNative();
        m_window->model()->removeItem(0);
        action(*m_window, "reload")->trigger();
        PRESS(*m_window, "reloadChanges", Cancel);
        QCOMPARE(m_window->model()->itemCount(), 1);
        action(*m_window, "reload")->trigger();
        PRESS(*m_window, "reloadChanges", Discard);
        QTRY_COMPARE(m_window->model()->itemCount(), 2);
        QVERIFY(!m_window->isWindowModified());
        QCOMPARE(m_window->fileSession()->nativeFileName(), file);
    }

    void aFileChangedByOthersIsNoticedAndReloaded()
    {
        const QString file = openNative();
        write("n.vtl.json", vtlText(documentOf(5)));
        QTRY_VERIFY(box(*m_window, "fileChanged"));
        QVERIFY(m_window->isWindowModified());
        PRESS(*m_window, "fileChanged", Yes);
        QTRY_COMPARE(m_window->model()->itemCount(), 5);
        QVERIFY(!m_window->isWindowModified());
    }

    void whatIsMineIsSavedAsAnotherFileWhenOthersChangeIt()
    {
        const QString file = openNative();
        m_window->model()->setItemLabel(0, "mine");
        write("n.vtl.json", vtlText(documentOf(5)));
        PRESS(*m_window, "fileChanged", Save);
        auto* save = dialog<QFileDialog>(*m_window, "saveDialog");
        QVERIFY(save);
        QCOMPARE(save->findChild<QLineEdit*>("fileNameEdit")->text(), "n (mine).vtl.json");
        save->reject();
        QVERIFY(m_window->isWindowModified());
        action(*m_window, "save")->trigger(); // nothing has been decided
        PRESS(*m_window, "fileChangedBeforeSave", Cancel);
        write("n.vtl.json", vtlText(documentOf(6)));
        PRESS(*m_window, "fileChanged", Save);
        save = dialog<QFileDialog>(*m_window, "saveDialog");
        QVERIFY(save);
        acceptFile(save, path("n (mine).vtl.json"));
        QTRY_COMPARE(contents(path("n (mine).vtl.json")), vtlText(m_window->model()->document()));
        QTRY_VERIFY(!m_window->isWindowModified());
        QCOMPARE(contents(file), vtlText(documentOf(6)));
    }

    void withoutChangesThereIsNothingOfMineToSave()
    {
        openNative();
        write("n.vtl.json", vtlText(documentOf(5)));
        QTRY_VERIFY(box(*m_window, "fileChanged"));
        QVERIFY(!box(*m_window, "fileChanged")->button(QMessageBox::Save));
    }

    void aFileThatIsReplacedIsNoticedAndCanBeKeptAsItIs()
    {
        const QString file = openNative();
        const QString other = write("other", vtlText(documentOf(6)));
        QVERIFY(std::rename(qPrintable(other), qPrintable(file)) == 0);
        PRESS(*m_window, "fileChanged", No);
        QCOMPARE(m_window->model()->itemCount(), 2);
        QVERIFY(m_window->isWindowModified());
        action(*m_window, "save")->trigger(); // the user has decided already
        QTRY_COMPARE(contents(file), vtlText(documentOf(2)));
        QVERIFY(!m_window->isWindowModified());
        write("n.vtl.json", vtlText(documentOf(7)));
        QTRY_VERIFY(box(*m_window, "fileChanged"));
    }

    void aFileThatIsDeletedIsNoticedAndCanBeSavedAgain()
    {
        const QString file = openNative();
        QVERIFY(QFile::remove(file));
        PRESS(*m_window, "fileGone", Ok);
        QVERIFY(m_window->isWindowModified());
        action(*m_window, "save")->trigger();
        QTRY_VERIFY(QFile::exists(file));
        QTRY_VERIFY(!m_window->isWindowModified());
        QTest::qWait(500);
        QCOMPARE(openDialogs(*m_window), 0);
    }

    void savingOverAFileThatHasChangedAsksFirst()
    {
        const QString file = openNative();
        m_window->model()->setItemLabel(0, "mine");
        write("n.vtl.json", vtlText(documentOf(5)));
        action(*m_window, "save")->trigger(); // before the watcher has told
        PRESS(*m_window, "fileChangedBeforeSave", Cancel);
        QCOMPARE(contents(file), vtlText(documentOf(5)));
        QVERIFY(m_window->isWindowModified());
        action(*m_window, "save")->trigger();
        PRESS(*m_window, "fileChangedBeforeSave", Save);
        QTRY_COMPARE(contents(file), vtlText(m_window->model()->document()));
    }

    void filesDroppedOnTheWindowAreOpened()
    {
        const QString file = csv("a.csv", "A,x,1,2\n");
        MainWindow window;
        window.show();
        QMimeData data;
        data.setUrls({QUrl::fromLocalFile(file)});
        QVERIFY(drop(window, data));
        QTRY_COMPARE(topTracks(window), QStringList{"A"});
        QMimeData elsewhere;
        elsewhere.setUrls({QUrl("http://example.org/a.csv")});
        QVERIFY(!drop(window, elsewhere));
        QMimeData text;
        text.setText("a.csv");
        QVERIFY(!drop(window, text));
    }

    void recentFilesAreOfferedLatestFirstAndCleared()
    {
        const QString a = csv("a&b.csv", "A,x,1,2\n");
        const QString b = csv("b.csv", "B,x,1,2\n");
        MainWindow window;
        window.show();
        window.fileSession()->open({a});
        QTRY_COMPARE(topTracks(window), QStringList{"A"});
        window.fileSession()->open({b});
        QTRY_COMPARE(topTracks(window), QStringList{"B"});

        auto* const menu = window.findChild<QMenu*>("recentMenu");
        Q_EMIT menu->aboutToShow();
        QVERIFY(menu->findChild<QAction*>("recentFile1")->text().endsWith("b.csv"));
        QVERIFY(menu->findChild<QAction*>("recentFile2")->text().endsWith("a&&b.csv"));
        menu->findChild<QAction*>("recentFile2")->trigger();
        QTRY_COMPARE(topTracks(window), QStringList{"A"});
        QCOMPARE(Workbench::RecentFiles().files(), QStringList({a, b}));
        Q_EMIT menu->aboutToShow();
        menu->findChild<QAction*>("clearRecentFiles")->trigger();
        QCOMPARE(Workbench::RecentFiles().files(), QStringList());
        Q_EMIT menu->aboutToShow();
        QVERIFY(!menu->findChild<QAction*>("clearRecentFiles")->isEnabled());
    }

    void onlyTheLatestTenAreRemembered()
    {
        Workbench::RecentFiles recent;
        for (int i = 0; i < 15; ++i)
            recent.add({path(QString::number(i))});
        QCOMPARE(recent.files().size(), 10);
        QCOMPARE(recent.files().first(), path("14"));
        recent.remove(path("14"));
        QCOMPARE(recent.files().first(), path("13"));
    }

    void aRecoveredDocumentCountsAsModifiedUntilItIsSaved()
    {
        const QString file = openNative();
        m_window->fileSession()->setUnsaved();
        QVERIFY(m_window->isWindowModified());
        action(*m_window, "save")->trigger();
        QTRY_VERIFY(!m_window->isWindowModified());
        QVERIFY(isIdle(*m_window));
    }

    void aWindowThatGoesWhileItReadsOrWritesEndsThatFirst()
    {
        const QString big = write("big.vtl.json", vtlText(documentOf(60000)));
        {
            MainWindow window;
            window.fileSession()->open({big});
        }
        MainWindow window;
        window.showDocument(documentOf(60000), {});
        window.fileSession()->saveAs(path("out"));
        QTRY_VERIFY(isIdle(window) || QFile::exists(path("out.vtl.json")) || window.fileSession()->isSaving());
    }

private:
    static Document documentOf(int count)
    {
        Document document;
        for (int i = 0; i < count; ++i)
            document.track({"T"}).items.push_back({QString::number(i), i * 1000, 500, {}});
        return document;
    }
    static bool drop(MainWindow& window, const QMimeData& data)
    {
        QDragEnterEvent enter({50, 50}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        enter.ignore();
        QApplication::sendEvent(&window, &enter);
        if (!enter.isAccepted())
            return false;
        QDropEvent event({50, 50}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        event.ignore();
        QApplication::sendEvent(&window, &event);
        return event.isAccepted();
    }
    // Leaves the editor open.
    void typeTrackName(const QString& name)
    {
        action(*m_window, "rename_track")->trigger();
        auto* const editor = m_window->findChild<QLineEdit*>("trackNameEditor");
        QVERIFY(editor);
        editor->selectAll();
        QTest::keyClicks(editor, name);
    }
    // A window with n.vtl.json, which is returned.
    QString openNative(int count = 2)
    {
        const QString file = write("n.vtl.json", vtlText(documentOf(count)));
        m_window = std::make_unique<MainWindow>();
        m_window->show();
        m_window->fileSession()->open({file});
        [&] { QTRY_COMPARE_WITH_TIMEOUT(m_window->model()->itemCount(), count, 60000); }();
        return file;
    }
    QString path(const QString& name) const { return m_dir->filePath(name); }
    QString csv(const QString& name, const QByteArray& lines) { return write(name, "track,label,start,end\n" + lines); }
    QString write(const QString& name, const QByteArray& text)
    {
        QFile file(path(name));
        if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size())
            qFatal("cannot write %s", qPrintable(file.fileName()));
        return file.fileName();
    }
    static QByteArray contents(const QString& fileName)
    {
        QFile file(fileName);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    QTemporaryDir m_settings;
    std::unique_ptr<QTemporaryDir> m_dir;
    std::unique_ptr<MainWindow> m_window;
};

QTEST_MAIN(TestFileSession)
#include "tst_file_session.moc"
