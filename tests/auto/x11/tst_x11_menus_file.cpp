#include "x11/desktop_workbench.h"

#include <VeskTimeline/timeline_view.h>

#include <QAbstractButton>
#include <QAction>
#include <QDrag>
#include <QFile>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QMimeData>
#include <QPrintDialog>
#include <QPrintPreviewDialog>
#include <QPrintPreviewWidget>
#include <QProgressDialog>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>

#include <workbench/csv_import_memory.h>
#include <workbench/file_session.h>
#include <workbench/picture_export_dialog.h>
#include <workbench/recent_files.h>
#include <workbench/settings.h>

using namespace VeskTimeline;
using Workbench::PictureExportDialog;

namespace {

QByteArray bytesOf(const QString& fileName)
{
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// A window of another kind, from which files are dragged as soon as the mouse is pressed on it.
class FileSource : public QWidget
{
public:
    explicit FileSource(const QList<QUrl>& urls) : m_urls(urls) { setGeometry(1600, 800, 200, 100); }

protected:
    void mousePressEvent(QMouseEvent* /*event*/) override
    {
        auto* const drag = new QDrag(this);
        auto* const dragged = new QMimeData;
        dragged->setUrls(m_urls);
        drag->setMimeData(dragged);
        drag->exec(Qt::CopyAction);
    }

private:
    QList<QUrl> m_urls;
};

} // namespace

/// Presses a button of the message box that is open, with the mouse.
#define PRESS(workbench, name, pressed)                                                                                \
    do {                                                                                                               \
        QTRY_VERIFY((workbench).dialog<QMessageBox>());                                                                \
        QCOMPARE((workbench).dialog<QMessageBox>()->objectName(), name);                                               \
        const QAbstractButton* const button = (workbench).dialog<QMessageBox>()->button(pressed);                      \
        QVERIFY(button);                                                                                               \
        PLAY((workbench).pointer.moveTo(button).click());                                                              \
        QTRY_VERIFY(!(workbench).dialog<QMessageBox>());                                                               \
    } while (false)

/// Types a name into the file dialog that is open, in place of what is proposed, and takes it.
#define TYPE_FILE(workbench, name, fileName)                                                                           \
    do {                                                                                                               \
        QTRY_VERIFY((workbench).dialog<QFileDialog>());                                                                \
        QCOMPARE((workbench).dialog<QFileDialog>()->objectName(), name);                                               \
        PLAY((workbench).pointer.key(QStringLiteral("ctrl+a")).type(fileName));                                        \
        QTRY_COMPARE((workbench).dialog<QFileDialog>()->findChild<QLineEdit*>("fileNameEdit")->text(), fileName);      \
        PLAY((workbench).pointer.key(QStringLiteral("Return")));                                                       \
        QTRY_VERIFY(!(workbench).dialog<QFileDialog>());                                                               \
    } while (false)

/// Drives each entry of the File menu, files that are dropped and the close of the window, in a real window.
class TestX11MenusFile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        QTest::failOnWarning(QRegularExpression(".?"));
        m_dir = std::make_unique<QTemporaryDir>();
        QVERIFY(m_dir->isValid());
        Workbench::RecentFiles().clear();
    }

    void newAsksAboutChanges()
    {
        DesktopWorkbench f;
        QVERIFY(f.show());
        QVERIFY(f.select(f.items().at(0)));
        PLAY(f.pointer.shortcut("Delete"));
        CHOOSE(f, "new");
        PRESS(f, "saveChanges", QMessageBox::Cancel);
        QCOMPARE(f.contents(), "A[second 20+5] B[third 40+5]");
        CHOOSE(f, "new");
        PRESS(f, "saveChanges", QMessageBox::Discard);
        QTRY_COMPARE(f.contents(), QString());
        QVERIFY(!f.window.isWindowModified());
        // There is nothing to lose now.
        PLAY(f.pointer.shortcut("ctrl+n"));
        QVERIFY(!f.dialog<QMessageBox>());
    }

    void openByTheDialog()
    {
        const QString file = write("a.csv", "track,label,start,end\nT,x,1,2\n");
        DesktopWorkbench f;
        QVERIFY(f.show());
        CHOOSE(f, "open");
        TYPE_FILE(f, "openDialog", file);
        QTRY_COMPARE(f.contents().section('[', 0, 0), "T");
        QCOMPARE(f.window.windowTitle(), "a.csv[*] – VeskTimeline Workbench");
        QTRY_VERIFY(f.window.isActiveWindow());
        PLAY(f.pointer.shortcut("ctrl+o"));
        QTRY_VERIFY(f.dialog<QFileDialog>());
        PLAY(f.pointer.key("Escape"));
        QTRY_VERIFY(!f.dialog<QFileDialog>());
        QCOMPARE(f.model()->itemCount(), 1);
    }

    void openRecentFilesAndClearTheList()
    {
        const QString first = write("first.csv", "track,label,start,end\nT1,x,1,2\n");
        const QString second = write("second.csv", "track,label,start,end\nT2,x,1,2\n");
        DesktopWorkbench f;
        QVERIFY(f.show());
        f.window.fileSession()->open({first});
        QTRY_COMPARE(f.contents().section('[', 0, 0), "T1");
        f.window.fileSession()->open({second});
        QTRY_COMPARE(f.contents().section('[', 0, 0), "T2");
        // The latest is the first.
        QCOMPARE(f.chooseIn("recentMenu", "recentFile2"), QString());
        QTRY_COMPARE(f.contents().section('[', 0, 0), "T1");
        QTRY_VERIFY(!f.window.fileSession()->isBusy());
        QCOMPARE(f.chooseIn("recentMenu", "clearRecentFiles"), QString());
        QTRY_COMPARE(Workbench::RecentFiles().files(), QStringList());
        QCOMPARE(f.chooseIn("recentMenu", "clearRecentFiles"), "the entry clearRecentFiles is disabled");
        PLAY(f.pointer.key("Escape").key("Escape").key("Escape"));
    }

    void addFilesBesideWhatIsThere()
    {
        const QString file = write("a.csv", "track,label,start,end\nT,x,1,2\n");
        DesktopWorkbench f;
        QVERIFY(f.show());
        CHOOSE(f, "add_files");
        TYPE_FILE(f, "addDialog", file);
        QTRY_COMPARE(f.model()->itemCount(), 4);
        QVERIFY(f.contents().startsWith(f.initially + " a.csv[]{T[x "));
        QTRY_VERIFY(f.window.isActiveWindow());
        UNDO_ALL(f);
        QCOMPARE(f.contents(), f.initially);
        PLAY(f.pointer.shortcut("ctrl+shift+o"));
        QTRY_VERIFY(f.dialog<QFileDialog>());
        PLAY(f.pointer.key("Escape"));
    }

    void reloadReadsTheFileAgain()
    {
        const QString file = write("a.csv", "track,label,start,end\nT,x,1,2\n");
        DesktopWorkbench f;
        QVERIFY(f.show());
        QVERIFY(!f.entry("reload")->isEnabled());
        f.window.fileSession()->open({file});
        QTRY_COMPARE(f.model()->itemCount(), 1);
        QTRY_VERIFY(!f.window.fileSession()->isBusy());
        CHOOSE(f, "select_all");
        CHOOSE(f, "delete");
        QTRY_COMPARE(f.model()->itemCount(), 0);
        CHOOSE(f, "reload");
        PRESS(f, "reloadChanges", QMessageBox::Cancel);
        QCOMPARE(f.model()->itemCount(), 0);
        CHOOSE(f, "reload");
        PRESS(f, "reloadChanges", QMessageBox::Discard);
        QTRY_COMPARE(f.model()->itemCount(), 1);
        QTRY_VERIFY(!f.window.fileSession()->isBusy());
        CHOOSE(f, "select_all");
        CHOOSE(f, "delete");
        PLAY(f.pointer.shortcut("F5"));
        PRESS(f, "reloadChanges", QMessageBox::Discard);
        QTRY_COMPARE(f.model()->itemCount(), 1);
    }

    void saveAsksForANameOnce()
    {
        const QString file = m_dir->filePath("a.vtl.json");
        DesktopWorkbench f;
        QVERIFY(f.show());
        CHOOSE(f, "save");
        TYPE_FILE(f, "saveDialog", file);
        QTRY_COMPARE(f.window.fileSession()->nativeFileName(), file);
        QTRY_VERIFY(!f.window.fileSession()->isBusy());
        const QByteArray before = bytesOf(file);
        QVERIFY(before.contains("first"));
        QTRY_VERIFY(f.window.isActiveWindow());

        QVERIFY(f.select(f.items().at(0)));
        PLAY(f.pointer.shortcut("Delete"));
        QTRY_VERIFY(f.window.isWindowModified());
        PLAY(f.pointer.shortcut("ctrl+s"));
        QTRY_VERIFY(!f.window.isWindowModified());
        QVERIFY(!f.dialog<QFileDialog>());
        QVERIFY(!bytesOf(file).contains("first"));
        UNDO_ALL(f);
        QVERIFY(f.window.isWindowModified());
        CHOOSE(f, "save");
        QTRY_VERIFY(!f.window.isWindowModified());
        QCOMPARE(bytesOf(file), before);
    }

    void saveAsAsksBeforeItReplaces()
    {
        const QString file = write("a.vtl.json", "old");
        DesktopWorkbench f;
        QVERIFY(f.show());
        CHOOSE(f, "save_as");
        TYPE_FILE(f, "saveDialog", file);
        PRESS(f, "overwrite", QMessageBox::Cancel);
        QCOMPARE(bytesOf(file), "old");
        QTRY_VERIFY(f.window.isActiveWindow());
        PLAY(f.pointer.shortcut("ctrl+shift+s"));
        TYPE_FILE(f, "saveDialog", file);
        PRESS(f, "overwrite", QMessageBox::Save);
        QTRY_VERIFY(bytesOf(file).contains("third"));
        QTRY_COMPARE(f.window.fileSession()->nativeFileName(), file);
    }

    void whatIsBeingTypedInTheInspectorIsSavedToo()
    {
        const QString file = m_dir->filePath("a.vtl.json");
        DesktopWorkbench f;
        QVERIFY(f.show());
        f.window.fileSession()->saveAs(file);
        QTRY_COMPARE(f.window.fileSession()->nativeFileName(), file);
        QTRY_VERIFY(!f.window.fileSession()->isBusy());
        PLAY(f.pointer.moveTo(f.rows(), f.itemPos(f.items().at(0))).doubleClick().type("typed"));
        PLAY(f.pointer.shortcut("ctrl+s"));
        QTRY_VERIFY(bytesOf(file).contains("typed"));
        QVERIFY(!f.window.isWindowModified());
        PLAY(f.pointer.key("ctrl+a").type("later").shortcut("ctrl+q"));
        PRESS(f, "saveChanges", QMessageBox::Cancel);
        QVERIFY(f.contents().contains("later"));
    }

    void exportWritesAnotherFormat()
    {
        const QString file = m_dir->filePath("a.csv");
        DesktopWorkbench f;
        QVERIFY(f.show());
        CHOOSE(f, "export");
        TYPE_FILE(f, "exportDialog", file);
        QTRY_VERIFY(bytesOf(file).contains("third"));
        QCOMPARE(f.window.fileSession()->nativeFileName(), QString());
        QTRY_VERIFY(!f.window.fileSession()->isBusy());
        QTRY_VERIFY(f.window.isActiveWindow());
        PLAY(f.pointer.shortcut("ctrl+shift+e"));
        QTRY_VERIFY(f.dialog<QFileDialog>());
        PLAY(f.pointer.key("Escape"));
    }

    void exportPicture()
    {
        const QString file = m_dir->filePath("a.png");
        DesktopWorkbench f;
        QVERIFY(f.show());
        CHOOSE(f, "export_picture");
        QTRY_VERIFY(f.dialog<PictureExportDialog>());
        PLAY(f.pointer.key("ctrl+a").type(file));
        QTRY_COMPARE(f.dialog<PictureExportDialog>()->fileName(), file);
        PLAY(f.pointer.key("Return"));
        QTRY_VERIFY(!QImage(file).isNull());
        QVERIFY(QImage(file).width() > 500);
        QTRY_VERIFY(!f.window.findChild<QProgressDialog*>());
        QTRY_VERIFY(f.window.isActiveWindow());
        PLAY(f.pointer.shortcut("ctrl+e"));
        QTRY_VERIFY(f.dialog<PictureExportDialog>());
        PLAY(f.pointer.key("Escape"));
        QTRY_VERIFY(!f.dialog<PictureExportDialog>());
    }

    void printPreview()
    {
        DesktopWorkbench f;
        QVERIFY(f.show());
        CHOOSE(f, "print_preview");
        QTRY_VERIFY(f.dialog<QPrintPreviewDialog>());
        const auto* const pages = f.dialog<QPrintPreviewDialog>()->findChild<QPrintPreviewWidget*>();
        QTRY_COMPARE(pages->pageCount(), 1);
        PLAY(f.pointer.key("Escape"));
        QTRY_VERIFY(!f.dialog<QPrintPreviewDialog>());
    }

    void printToAFile()
    {
        const QString file = m_dir->filePath("a.pdf");
        DesktopWorkbench f;
        QVERIFY(f.show());
        CHOOSE(f, "print");
        QTRY_VERIFY(f.dialog<QPrintDialog>());
        // There is no printer here, so that it proposes a file.
        QLineEdit* field = nullptr;
        for (auto* const candidate : f.dialog<QPrintDialog>()->findChildren<QLineEdit*>()) {
            if (candidate->isVisible() && candidate->text().endsWith(".pdf"))
                field = candidate;
        }
        QVERIFY(field);
        PLAY(f.pointer.moveTo(field).click().key("ctrl+a").type(file));
        QTRY_COMPARE(field->text(), file);
        PLAY(f.pointer.key("Return"));
        QTRY_VERIFY(bytesOf(file).startsWith("%PDF"));
        QTRY_VERIFY(f.window.isActiveWindow());
        PLAY(f.pointer.shortcut("ctrl+p"));
        QTRY_VERIFY(f.dialog<QPrintDialog>());
        PLAY(f.pointer.key("Escape"));
        QTRY_VERIFY(!f.dialog<QPrintDialog>());
    }

    void quitWithoutChangesClosesAtOnce()
    {
        DesktopWorkbench f;
        QVERIFY(f.show());
        CHOOSE(f, "quit");
        QTRY_VERIFY(!f.window.isVisible());
        QVERIFY(f.show());
        PLAY(f.pointer.shortcut("ctrl+q"));
        QTRY_VERIFY(!f.window.isVisible());
    }

    void quitWithChangesAsksAndTakesEachAnswer()
    {
        const QString file = m_dir->filePath("a.vtl.json");
        DesktopWorkbench f;
        QVERIFY(f.show());
        QVERIFY(f.select(f.items().at(0)));
        PLAY(f.pointer.shortcut("Delete"));
        CHOOSE(f, "quit");
        PRESS(f, "saveChanges", QMessageBox::Cancel);
        QVERIFY(f.window.isVisible());
        QCOMPARE(f.contents(), "A[second 20+5] B[third 40+5]");
        CHOOSE(f, "quit");
        PRESS(f, "saveChanges", QMessageBox::Discard);
        QTRY_VERIFY(!f.window.isVisible());

        QVERIFY(f.show());
        CHOOSE(f, "quit");
        PRESS(f, "saveChanges", QMessageBox::Save);
        TYPE_FILE(f, "saveDialog", file);
        QTRY_VERIFY(!f.window.isVisible());
        QVERIFY(bytesOf(file).contains("second"));
        QVERIFY(!bytesOf(file).contains("first"));
    }

    void aFileIsDroppedOnTheRows()
    {
        const QString file = write("a.csv", "track,label,start,end\nT,x,1,2\n");
        DesktopWorkbench f;
        QVERIFY(f.show());
        QVERIFY(f.select(f.items().at(0)));
        PLAY(f.pointer.shortcut("Delete"));
        FileSource source({QUrl::fromLocalFile(file)});
        source.show();
        QVERIFY(QTest::qWaitForWindowExposed(&source));
        const auto drop = [&]() -> Pointer& {
            f.pointer.moveTo(&source).press();
            return f.pointer.moveTo(f.rows(), QPoint(700, 100)).moveTo(f.rows(), QPoint(690, 100)).release();
        };
        PLAY(drop());
        // The window that the file comes from has the keyboard.
        QTRY_VERIFY(f.window.findChild<QMessageBox*>("saveChanges"));
        const QAbstractButton* const discard =
            f.window.findChild<QMessageBox*>("saveChanges")->button(QMessageBox::Discard);
        PLAY(f.pointer.moveTo(discard).click());
        QTRY_COMPARE(f.contents().section('[', 0, 0), "T");
    }

    void recoverSaysWhenThereIsNothingToRecover()
    {
        DesktopWorkbench f;
        QVERIFY(f.show());
        QVERIFY(!f.entry("recover")->isEnabled());
        f.window.startAutosave(m_dir->filePath("autosave"));
        QVERIFY(f.entry("recover")->isEnabled());
        CHOOSE(f, "recover");
        PRESS(f, "nothingToRecover", QMessageBox::Ok);
    }

    void forgetImportsAsksFirst()
    {
        {
            const auto settings = Workbench::openSettings();
            Workbench::CsvImportMemory(*settings).remember({"a", "b"}, {});
        }
        DesktopWorkbench f;
        QVERIFY(f.show());
        CHOOSE(f, "forgetImports");
        PRESS(f, "forgetImports", QMessageBox::Cancel);
        QCOMPARE(importCount(), 1);
        CHOOSE(f, "forgetImports");
        QTRY_VERIFY(f.dialog<QMessageBox>());
        auto* const forget = f.dialog<QMessageBox>()->findChild<QPushButton*>("forget");
        PLAY(f.pointer.moveTo(forget).click());
        QTRY_COMPARE(importCount(), 0);
    }

    void everyEntryHasBeenChosen()
    {
        const DesktopWorkbench f;
        QCOMPARE(f.unchosen("fileMenu"), QStringList());
    }

private:
    static int importCount()
    {
        const auto settings = Workbench::openSettings();
        return Workbench::CsvImportMemory(*settings).count();
    }

    QString write(const QString& name, const QByteArray& contents) const
    {
        QFile file(m_dir->filePath(name));
        if (!file.open(QIODevice::WriteOnly) || file.write(contents) != contents.size())
            qFatal("cannot write %s", qPrintable(file.fileName()));
        return file.fileName();
    }

    std::unique_ptr<QTemporaryDir> m_dir;
};

QTEST_MAIN(TestX11MenusFile)
#include "tst_x11_menus_file.moc"
