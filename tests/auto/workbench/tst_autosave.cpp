#include "workbench/autosave.h"
#include "workbench/file_session.h"
#include "workbench/main_window.h"
#include "workbench/recovery_dialog.h"

#include <VeskTimelineKit/labelled_item.h>
#include <VeskTimelineKit/standard_timeline_model.h>
#include <VeskTimelineKit/vtl_writer.h>

#include <QAction>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QProcess>
#include <QPushButton>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTreeWidget>
#include <QUndoStack>

using namespace VeskTimeline;
using namespace VeskTimeline::Kit;
using namespace Workbench;
using namespace std::chrono_literals;

namespace {

// The offscreen platform remarks on every window that limits its size.
const QRegularExpression unexpectedWarning("^(?!This plugin does not support propagateSizeHints)");

std::shared_ptr<const Document> plan()
{
    Document document;
    document.track({"A"}).items = {{"a0", 0, 10, {}}, {"a1", 5, 10, Qt::red}};
    return std::make_shared<const Document>(document);
}

/// A window without a window.
struct User
{
    explicit User(const QString& folder, const QStringList& fileNames = {"/x/plan.csv"})
        : autosave(model, folder, hurried())
    {
        model.setDocument(*document);
        autosave.startFor(document, fileNames);
    }
    static JournalOptions hurried()
    {
        JournalOptions options;
        options.interval = 1ms;
        options.retryInterval = 20ms;
        return options;
    }

    void change(const QString& label)
    {
        model.setItemLabel(0, label);
        QTRY_VERIFY(isWritten());
    }
    bool isWritten() const
    {
        const Result<RecoveredJournal> recovered = readJournal(autosave.journalName());
        return recovered && recovered.value().problems.isEmpty() &&
               vtlText(recovered.value().document) == vtlText(model.document());
    }

    std::shared_ptr<const Document> document = plan();
    StandardTimelineModel model;
    Autosave autosave;
};

QStringList filesIn(const QTemporaryDir& folder)
{
    return QDir(folder.path()).entryList(QDir::Files, QDir::Name);
}

QStringList titles(const std::vector<OrphanedJournal>& orphans)
{
    QStringList list;
    for (const OrphanedJournal& orphan : orphans)
        list.append(orphan.title());
    return list;
}

template <typename Widget>
Widget* child(const QObject* parent, const char* name)
{
    Widget* const found = parent->findChild<Widget*>(QString::fromLatin1(name));
    if (!found)
        qFatal("no %s", name);
    return found;
}

void press(const QObject* parent, const char* name)
{
    QTest::mouseClick(child<QPushButton>(parent, name), Qt::LeftButton);
}

} // namespace

class TestAutosave : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        QTest::failOnWarning(unexpectedWarning);
        m_folder = std::make_unique<QTemporaryDir>();
    }

    void theFolderCanBeSaidByTheEnvironment()
    {
        qputenv("VESKTIMELINE_AUTOSAVE_FOLDER", "/some/where");
        QCOMPARE(Autosave::defaultFolder(), "/some/where");
        qunsetenv("VESKTIMELINE_AUTOSAVE_FOLDER");
        QVERIFY(Autosave::defaultFolder().endsWith("/autosave"));
    }

    void whatARunningProgramKeepsIsNotOffered()
    {
        User user(path());
        user.change("x");
        QCOMPARE(titles(takeOrphans(path())), QStringList());
        QVERIFY(QFile::exists(user.autosave.journalName()));
    }

    void whatIsLeftIsOfferedTheLatestFirst()
    {
        leave("x", {"/x/plan.csv"});
        leave("y", {"/x/plan.csv", "/x/b.ics", "c.csv"});
        leave("z", {});
        const std::vector<OrphanedJournal> orphans = takeOrphans(path());
        QCOMPARE(titles(orphans), (QStringList{"New timeline", "plan.csv and 2 more", "plan.csv"}));
        QVERIFY(orphans.at(0).lastChange.secsTo(QDateTime::currentDateTime()) < 30);
        // While one start offers them, another does not.
        QCOMPARE(titles(takeOrphans(path())), QStringList());
    }

    void whatWasSavedIsNotOfferedAndRemoved()
    {
        {
            User user(path());
            user.change("x");
            user.autosave.documentSaved();
        }
        QVERIFY(!filesIn(*m_folder).isEmpty());
        QCOMPARE(titles(takeOrphans(path())), QStringList());
        QCOMPARE(filesIn(*m_folder), QStringList());
    }

    void whatHasBeenUndoneIsNotOffered()
    {
        MainWindow window;
        window.startAutosave(path());
        const auto isOffered = [&window] {
            const std::optional<JournalInfo> info = journalInfo(window.autosave()->journalName());
            return info && !info->isSaved;
        };
        window.model()->addTrack("x");
        QTRY_VERIFY(isOffered());
        window.model()->undoStack()->undo();
        QTRY_VERIFY(!isOffered());
        window.model()->undoStack()->redo();
        QTRY_VERIFY(isOffered());
    }

    void aChangeWhileSavingIsOffered()
    {
        {
            User user(path());
            user.change("x");
            user.autosave.saving();
            user.model.setItemLabel(0, "y");
            user.autosave.documentSaved();
        }
        QCOMPARE(titles(takeOrphans(path())), QStringList("plan.csv"));
    }

    void closingLeavesNothing()
    {
        {
            User user(path());
            user.change("x");
            user.autosave.closed();
        }
        QCOMPARE(filesIn(*m_folder), QStringList());
    }

    void leftoversWithoutAJournalAreRemoved()
    {
        QFile base(m_folder->filePath("1-2-3.journal.1.base"));
        QVERIFY(base.open(QIODevice::WriteOnly));
        base.close();
        QCOMPARE(titles(takeOrphans(path())), QStringList());
        QCOMPARE(filesIn(*m_folder), QStringList());
    }

    void withoutOrphansNothingIsAsked()
    {
        User user(path());
        user.autosave.offerOrphans(nullptr);
        QVERIFY(!user.autosave.dialog());
    }

    void recoveringShowsTheDocumentAsModifiedAndKeepsItElsewhere()
    {
        const QByteArray left = leave("recovered", {"/x/plan.csv"});
        const QStringList before = filesIn(*m_folder);
        MainWindow window;
        window.startAutosave(path());
        QTRY_VERIFY(window.autosave()->dialog());
        RecoveryDialog* const dialog = window.autosave()->dialog();
        QVERIFY(!dialog->isModal());
        auto* const list = child<QTreeWidget>(dialog, "journals");
        QCOMPARE(list->topLevelItemCount(), 1);
        QCOMPARE(list->topLevelItem(0)->text(0), "plan.csv");
        QCOMPARE(list->topLevelItem(0)->text(2), "/x");
        QSignalSpy recovered(window.autosave(), &Autosave::documentRecovered);
        press(dialog, "recover");
        QVERIFY(recovered.wait());
        QCOMPARE(vtlText(window.model()->document()), left);
        QVERIFY(window.windowTitle().startsWith("plan.csv"));
        QVERIFY(!window.model()->undoStack()->isClean());
        QVERIFY(!window.model()->undoStack()->canUndo());
        QTRY_VERIFY(!window.autosave()->dialog());

        // The old journal goes when a new one has it all.
        QTRY_VERIFY(!QFile::exists(m_folder->filePath(before.first())));
        const Result<RecoveredJournal> again = readJournal(window.autosave()->journalName());
        QVERIFY(again);
        QCOMPARE(vtlText(again.value().document), left);
        QCOMPARE(again.value().fileNames, QStringList("/x/plan.csv"));
        window.autosave()->closed();
        QTRY_COMPARE(filesIn(*m_folder).filter("base"), QStringList());
    }

    void returnInTheListRecovers()
    {
        const QByteArray left = leave("recovered", {"/x/plan.csv"});
        MainWindow window;
        window.show();
        window.startAutosave(path());
        QTRY_VERIFY(window.autosave()->dialog());
        auto* const list = child<QTreeWidget>(window.autosave()->dialog(), "journals");
        list->window()->activateWindow();
        list->setFocus();
        QTRY_VERIFY(list->hasFocus());
        QSignalSpy recovered(window.autosave(), &Autosave::documentRecovered);
        QTest::keyClick(list, Qt::Key_Return);
        QVERIFY(recovered.wait());
        QCOMPARE(vtlText(window.model()->document()), left);
    }

    void copyItemsComeBack()
    {
        {
            User user(path());
            user.model.setCopyItemIds(1, {1});
            user.change("x");
        }
        MainWindow window;
        recoverIn(window);
        QCOMPARE(window.model()->track(1)->copyItemIds(), QSet<int>{1});
        // The journal is there once the first of it has been written.
        const auto written = [&window] {
            const auto journal = readJournal(window.autosave()->journalName());
            return journal ? journal.value().copyItemIds.value(1) : QSet<int>();
        };
        QTRY_COMPARE(written(), QSet<int>{1});
    }

    void laterLeavesEverythingForTheNextStart()
    {
        leave("x", {"/x/plan.csv"});
        User user(path());
        user.autosave.offerOrphans(nullptr);
        press(user.autosave.dialog(), "later");
        QTRY_VERIFY(!user.autosave.dialog());
        QCOMPARE(titles(takeOrphans(path())), QStringList("plan.csv"));
    }

    void discardingAsksAndRemovesThatOne()
    {
        leave("x", {"/x/plan.csv"});
        leave("y", {"/x/other.csv"});
        User user(path());
        user.autosave.offerOrphans(nullptr);
        RecoveryDialog* const dialog = user.autosave.dialog();
        for (const QMessageBox::StandardButton answer : {QMessageBox::Cancel, QMessageBox::Discard}) {
            press(dialog, "discard");
            auto* const question = dialog->findChild<QMessageBox*>();
            QVERIFY(question);
            QVERIFY(question->text().contains("other.csv"));
            QSignalSpy finished(question, &QDialog::finished);
            QTest::mouseClick(question->button(answer), Qt::LeftButton);
            QCOMPARE(finished.count(), 1);
            QTRY_VERIFY(!dialog->findChild<QMessageBox*>());
            QCOMPARE(child<QTreeWidget>(dialog, "journals")->topLevelItemCount(),
                     answer == QMessageBox::Discard ? 1 : 2);
        }
        press(dialog, "later");
        QTRY_VERIFY(!user.autosave.dialog());
        QCOMPARE(titles(takeOrphans(path())), QStringList("plan.csv"));
    }

    void whatIsDamagedIsRecoveredInPartAndSaid()
    {
        leave("x", {"/x/plan.csv"});
        for (const QString& name : filesIn(*m_folder)) {
            QFile file(m_folder->filePath(name));
            if (name.endsWith(".base"))
                QVERIFY(file.resize(file.size() / 2) || !file.exists());
        }
        MainWindow window;
        recoverIn(window);
        auto* const message = child<QMessageBox>(&window, "recoveredInPart");
        QVERIFY(message->informativeText().contains("The program ended before the whole document was in the journal"));
        QCOMPARE(window.model()->itemIds().size(), 1);
        message->close();
    }

    void whatCannotBeReadStaysAndIsSaid()
    {
        QFile rubbish(m_folder->filePath("1-2-3.journal"));
        QVERIFY(rubbish.open(QIODevice::WriteOnly) && rubbish.write("rubbish") > 0);
        rubbish.close();
        User user(path());
        user.autosave.offerOrphans(nullptr);
        RecoveryDialog* const dialog = user.autosave.dialog();
        press(dialog, "recover");
        QTRY_VERIFY(child<QLabel>(dialog, "error")->text().contains("it is no journal, or of a newer version"));
        QVERIFY(child<QPushButton>(dialog, "recover")->isEnabled());
        QVERIFY(rubbish.exists());
    }

    void theWindowSaysWhileNothingCanBeKept()
    {
        QFile inTheWay(m_folder->filePath("f"));
        QVERIFY(inTheWay.open(QIODevice::WriteOnly));
        MainWindow window;
        window.show();
        window.startAutosave(m_folder->filePath("f"));
        QSignalSpy failed(window.autosave(), &Autosave::failed);
        window.model()->addTrack("new");
        QVERIFY(failed.wait());
        auto* const label = child<QLabel>(&window, "autosaveFailure");
        QVERIFY(label->isVisible());
        QVERIFY(label->toolTip().contains("Changes cannot be kept"));
        QVERIFY(inTheWay.remove());
        QTRY_VERIFY_WITH_TIMEOUT(!label->isVisible(), 15000);
        // From now on it is known whose the journal is.
        QTRY_COMPARE(takeOrphans(m_folder->filePath("f")).size(), std::size_t(0));
        QVERIFY(QFile::exists(window.autosave()->journalName()));
    }

    void aProgramThatIsKilledLosesLessThanTwoSeconds()
    {
        QProcess victim;
        victim.start(VICTIM_FILE, {path()});
        QVERIFY(victim.waitForStarted());
        QElapsedTimer timer;
        timer.start();
        QByteArray output;
        while (timer.elapsed() < 3000) {
            victim.waitForReadyRead(100);
            output += victim.readAllStandardOutput();
        }
        // It is running: what it keeps is its own.
        QCOMPARE(titles(takeOrphans(path())), QStringList());
        victim.kill();
        const qint64 killed = QDateTime::currentMSecsSinceEpoch();
        QVERIFY(victim.waitForFinished());
        output += victim.readAllStandardOutput();

        const std::vector<OrphanedJournal> orphans = takeOrphans(path());
        QCOMPARE(titles(orphans), QStringList("plan.csv"));
        const Result<RecoveredJournal> recovered = readJournal(orphans.front().fileName);
        QVERIFY(recovered);
        QCOMPARE(recovered.value().document.itemCount(), 1000);
        // The item was dragged to 7000 + step.
        const qint64 step = stepOf(recovered.value().document);
        qint64 lost = 0;
        for (const QByteArray& line : output.split('\n')) {
            const QList<QByteArray> words = line.split(' ');
            if (words.size() == 2 && words.at(0).toLongLong() == step)
                lost = killed - words.at(1).toLongLong();
        }
        QVERIFY(step > 0);
        QVERIFY2(lost > 0 && lost < 2000, qPrintable(QString::number(lost)));
        qInfo("%lld ms lost", lost);
    }

    void savingUnderAnotherNameIsWhatTheJournalSays()
    {
        {
            User user(path());
            user.change("x");
            user.autosave.saving();
            user.autosave.documentSaved("/x/a longer name than before.vtl.json");
            user.change("y");
            user.autosave.saving();
            user.autosave.documentSaved("/x/b");
            user.change("z");
        }
        const std::vector<OrphanedJournal> orphans = takeOrphans(path());
        QCOMPARE(titles(orphans), QStringList("b"));
        const Result<RecoveredJournal> recovered = readJournal(orphans.front().fileName);
        QVERIFY(recovered);
        QCOMPARE(recovered.value().fileNames, QStringList("/x/b"));
        QCOMPARE(recovered.value().problems, QStringList());
        QCOMPARE(recovered.value().document.tracks().at(0).items.at(0).label, "z");
    }

    void aNewNameIsKnownToAJournalThatBeginsLater()
    {
        {
            User user(path());
            user.autosave.documentSaved("/x/b.vtl.json");
            user.change("x");
        }
        QCOMPARE(titles(takeOrphans(path())), QStringList("b.vtl.json"));
    }

    void whatIsOpenedChangedSavedAndChangedAgainComesBackAfterAKill()
    {
        const QString file = m_folder->filePath("plan.vtl.json");
        QVERIFY(writeVtl(*plan(), file));
        const QString journals = m_folder->filePath("journals");
        const QString saved = m_folder->filePath("saved.vtl.json");
        QByteArray left;
        {
            MainWindow window;
            window.startAutosave(journals);
            FileSession* const session = window.fileSession();
            session->open({file});
            QTRY_COMPARE(window.model()->itemCount(), 2);
            window.model()->setItemLabel(0, "first");
            session->save();
            QTRY_VERIFY(!session->isBusy());
            QVERIFY(!session->isModified());
            window.model()->setItemLabel(0, "second");
            session->saveAs(saved);
            QTRY_VERIFY(!session->isBusy());
            window.model()->setItemLabel(1, "third");
            window.model()->addTrack("B");
            left = vtlText(window.model()->document());
            QTRY_COMPARE(recoveredText(window.autosave()->journalName()), left);
            // The window goes without being closed, as in a crash.
        }
        MainWindow window;
        window.startAutosave(journals);
        recover(window);
        QTRY_COMPARE(vtlText(window.model()->document()), left);
        QCOMPARE(window.fileSession()->fileNames(), QStringList(saved));
        QVERIFY(window.fileSession()->isModified());
        QVERIFY(window.isWindowModified());
        QVERIFY(window.windowTitle().startsWith("saved.vtl.json"));
        window.fileSession()->save();
        QTRY_VERIFY(!window.fileSession()->isBusy());
        QVERIFY(!window.fileSession()->isModified());
        QCOMPARE(textOfFile(saved), left);
        // It is in a file: neither journal is offered any more.
        window.autosave()->closed();
        QCOMPARE(titles(takeOrphans(journals)), QStringList());
    }

    void recoveringAsksAboutTheChangesOfTheWindow()
    {
        leave("x", {"/x/plan.csv"});
        MainWindow window;
        window.show();
        window.startAutosave(path());
        QTRY_VERIFY(window.autosave()->dialog());
        window.model()->addTrack("mine");
        const QByteArray mine = vtlText(window.model()->document());
        for (const QMessageBox::StandardButton answer : {QMessageBox::Cancel, QMessageBox::Discard}) {
            recover(window);
            QTRY_VERIFY(window.findChild<QMessageBox*>("saveChanges"));
            auto* const question = child<QMessageBox>(&window, "saveChanges");
            QCOMPARE(vtlText(window.model()->document()), mine);
            QTest::mouseClick(question->button(answer), Qt::LeftButton);
            QTRY_VERIFY(!window.findChild<QMessageBox*>("saveChanges"));
            if (answer == QMessageBox::Discard)
                break;
            // Not wanted after all: the menu offers it again.
            QCOMPARE(vtlText(window.model()->document()), mine);
            window.autosave()->offerOrphans(&window);
            QVERIFY(window.autosave()->dialog());
        }
        QTRY_COMPARE(window.model()->itemLabel(0), "x");
        QCOMPARE(window.fileSession()->fileNames(), QStringList("/x/plan.csv"));
    }

    void theMenuOffersWhatIsLeftOrSaysThatThereIsNothing()
    {
        MainWindow window;
        window.show();
        auto* const menu = new QMenu(&window);
        auto* recover = window.findChild<QAction*>("recover");
        if (!recover)
            recover = window.addRecoverAction(menu);
        QVERIFY(!recover->isEnabled());
        window.startAutosave(path());
        QVERIFY(recover->isEnabled());
        QCoreApplication::processEvents();
        recover->trigger();
        auto* const message = child<QMessageBox>(&window, "nothingToRecover");
        QCOMPARE(message->text(), "There is nothing to recover.");
        QVERIFY(!window.autosave()->dialog());
        message->close();
        leave("x", {"/x/plan.csv"});
        recover->trigger();
        QVERIFY(window.autosave()->dialog());
    }

private:
    QString path() const { return m_folder->path(); }

    // @return the document, as text
    QByteArray leave(const QString& label, const QStringList& fileNames)
    {
        User user(path(), fileNames);
        user.change(label);
        return vtlText(user.model.document());
    }

    static QByteArray recoveredText(const QString& journal)
    {
        const Result<RecoveredJournal> recovered = readJournal(journal);
        return recovered ? vtlText(recovered.value().document) : QByteArray();
    }
    static QByteArray textOfFile(const QString& fileName)
    {
        QFile file(fileName);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    void recoverIn(MainWindow& window)
    {
        window.startAutosave(path());
        recover(window);
    }

    static void recover(MainWindow& window)
    {
        QTRY_VERIFY(window.autosave()->dialog());
        QSignalSpy recovered(window.autosave(), &Autosave::documentRecovered);
        press(window.autosave()->dialog(), "recover");
        QVERIFY(recovered.wait());
    }

    static qint64 stepOf(const Document& document)
    {
        for (const DocumentItem& item : document.tracks().at(0).items) {
            if (item.label == "7")
                return item.start - 7000;
        }
        return -1;
    }

    std::unique_ptr<QTemporaryDir> m_folder;
};

QTEST_MAIN(TestAutosave)
#include "tst_autosave.moc"
