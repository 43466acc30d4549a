#include <VeskTimelineKit/journal.h>
#include <VeskTimelineKit/journal_recovery.h>
#include <VeskTimelineKit/standard_timeline_model.h>
#include <VeskTimelineKit/vtl_writer.h>

#include <QDeadlineTimer>
#include <QDir>
#include <QElapsedTimer>
#include <QSet>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>
#include <QTimer>

using namespace VeskTimeline;
using namespace VeskTimeline::Kit;
using namespace std::chrono_literals;

namespace {

constexpr int itemsPerTrack = 300;

std::shared_ptr<const Document> sample()
{
    auto document = std::make_shared<Document>();
    for (const char* name : {"A", "B"}) {
        std::vector<DocumentItem>& items = document->track({name}).items;
        for (int i = 0; i < itemsPerTrack; ++i)
            items.push_back({QString::number(i), i / 3 * 10, 5, {}});
    }
    return document;
}

/// A journal that takes down as little at a time as it can.
struct Scene
{
    explicit Scene(std::chrono::milliseconds patience = 1h, bool hasBase = true)
        : journal(std::make_unique<Journal>(model, folder.filePath("a.journal"), options(patience)))
    {
        model.setDocument(*document);
        journal->start(hasBase ? document : nullptr, {});
    }
    static JournalOptions options(std::chrono::milliseconds patience)
    {
        JournalOptions options;
        options.interval = 0ms;
        options.slice = 0ms;
        options.patience = patience;
        return options;
    }
    void changeAll(const QString& description)
    {
        for (const int id : model.itemIds())
            model.setItemDescription(id, description);
    }
    /// Until some of it has been taken down, and by far not all.
    static void takeSome()
    {
        for (int turn = 0; turn < itemsPerTrack; ++turn)
            QCoreApplication::processEvents();
    }
    bool write() { return written.wait(20'000); }
    RecoveredJournal recovered() const
    {
        const Result<RecoveredJournal> result = readJournal(folder.filePath("a.journal"));
        return result ? result.value() : RecoveredJournal();
    }
    QByteArray recoveredText() const { return vtlText(recovered().document); }
    QByteArray text() const { return vtlText(model.document()); }

    QTemporaryDir folder;
    std::shared_ptr<const Document> document = sample();
    StandardTimelineModel model;
    std::unique_ptr<Journal> journal;
    QSignalSpy written{journal.get(), &Journal::written};
};

} // namespace

class TestJournalSlices : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theEventLoopTurnsWhileALargeChangeIsTakenDown()
    {
        Scene scene;
        scene.changeAll("changed");
        int turns = 0;
        QTimer timer;
        connect(&timer, &QTimer::timeout, &timer, [&] { ++turns; });
        timer.start(0);
        QVERIFY(scene.write());
        QVERIFY2(turns > 2 * itemsPerTrack, qPrintable(QString::number(turns)));
        QCOMPARE(scene.recoveredText(), scene.text());
        QCOMPARE(scene.recovered().changeCount, 1);
    }

    void manyItemsAreTakenDownInTime()
    {
        constexpr int count = 100'000;
        auto many = std::make_shared<Document>();
        for (int i = 0; i < count; ++i)
            many->track({"A"}).items.push_back({{}, i, 5, {}});
        QTemporaryDir folder;
        StandardTimelineModel model;
        model.setDocument(*many);
        JournalOptions options;
        options.interval = 10min; // which is too long for a change of that size
        Journal journal(model, folder.filePath("a.journal"), options);
        QSignalSpy written(&journal, &Journal::written);
        journal.start(many, {});
        model.setItemLabel(7, "one");
        QVERIFY(!written.wait(50));
        model.removeItems(model.itemIds());
        QVERIFY(written.wait(20'000));
        QVERIFY(readJournal(journal.fileName()).value().document.tracks().at(0).items.empty());
    }

    void aChangeMeanwhileGoesIntoTheSameOne()
    {
        Scene scene;
        scene.changeAll("changed");
        Scene::takeSome();
        QVERIFY(!QFile::exists(scene.journal->fileName()));
        // Items that stand before, and behind, what is taken down already.
        scene.model.removeItems({1, 200});
        scene.model.addItem(1, {"new", 0, 1, {}});
        scene.model.setItemDescription(3, "again");
        scene.model.setItemStartTime(10, 5);
        QVERIFY(scene.write());
        QCOMPARE(scene.recoveredText(), scene.text());
        QCOMPARE(scene.recovered().changeCount, 1);
    }

    void tracksMayGoMeanwhile()
    {
        Scene scene;
        scene.changeAll("changed");
        Scene::takeSome();
        scene.model.removeTrack(1);
        Scene::takeSome();
        scene.model.insertTrack(0, 0, "new");
        QVERIFY(scene.write());
        QCOMPARE(scene.recoveredText(), scene.text());
    }

    void aWholeModelIsTakenDownInSlicesToo()
    {
        Scene scene(1h, false);
        scene.model.setItemLabel(0, "first");
        int turns = 0;
        QTimer timer;
        connect(&timer, &QTimer::timeout, &timer, [&] { ++turns; });
        timer.start(0);
        Scene::takeSome();
        scene.model.removeTrack(1);
        scene.model.setItemLabel(itemsPerTrack, "second");
        QVERIFY(scene.write());
        QVERIFY2(turns > itemsPerTrack, qPrintable(QString::number(turns)));
        QCOMPARE(scene.recoveredText(), scene.text());
        // What follows is a change to that.
        scene.model.setItemLabel(itemsPerTrack + 1, "third");
        QVERIFY(scene.write());
        QCOMPARE(scene.recoveredText(), scene.text());
        QCOMPARE(scene.recovered().changeCount, 2);
    }

    void aResetMeanwhileStartsWithTheNewContents()
    {
        Scene scene;
        scene.changeAll("changed");
        Scene::takeSome();
        Document other;
        other.track({"Z"}).items = {{"z", 1, 1, {}}};
        scene.model.setDocument(other);
        QVERIFY(!scene.written.wait(50));
        scene.model.setItemLabel(0, "zz");
        QVERIFY(scene.write());
        QCOMPARE(scene.recoveredText(), scene.text());
    }

    // They are states that were, all the same.
    void changesThatLeaveNoTimeAreTakenDownAllTheSame()
    {
        Scene scene(20ms);
        scene.changeAll("changed");
        QSet<QByteArray> states{scene.text()};
        int step = 0;
        QTimer timer;
        connect(&timer, &QTimer::timeout, &timer, [&] {
            scene.model.setItemLabel(step % itemsPerTrack, QString("step %1").arg(step));
            states.insert(scene.text());
            ++step;
        });
        timer.start(0);
        QElapsedTimer time;
        time.start();
        // Never is all written.
        QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(scene.journal->fileName()) && scene.recovered().changeCount > 0, 20'000);
        QVERIFY2(time.elapsed() < 2000, qPrintable(QString::number(time.elapsed())));
        timer.stop();
        QVERIFY(states.contains(scene.recoveredText()));
        QTRY_COMPARE(scene.recoveredText(), scene.text());
    }

    void whatIsSavedMeanwhileIsMarkedInTheEnd()
    {
        for (const bool hasBase : {true, false}) {
            Scene scene(1h, hasBase);
            scene.changeAll("changed");
            Scene::takeSome();
            scene.journal->markSaved(scene.journal->revision());
            QTRY_VERIFY(journalInfo(scene.journal->fileName()) && journalInfo(scene.journal->fileName())->isSaved);
            QCOMPARE(scene.recoveredText(), scene.text());
        }
    }

    void whatIsSavedBeforeAChangeMeanwhileIsNotMarked()
    {
        Scene scene;
        scene.changeAll("changed");
        Scene::takeSome();
        scene.journal->markSaved(scene.journal->revision());
        scene.model.setItemLabel(0, "later");
        QVERIFY(scene.write());
        QVERIFY(!scene.recovered().isSaved);
    }

    void flushingTakesDownTheRestInOneGo()
    {
        Scene scene;
        scene.changeAll("changed");
        Scene::takeSome();
        const QByteArray text = scene.text();
        scene.journal->flush();
        // This one comes too late for the change that is written, and waits for the event loop, which stands still
        // here.
        scene.model.setItemLabel(0, "later");
        const QDeadlineTimer deadline(20'000);
        while (scene.recovered().changeCount == 0 && !deadline.hasExpired())
            QThread::msleep(5);
        QCOMPARE(scene.recovered().changeCount, 1);
        QCOMPARE(scene.recoveredText(), text);
    }

    void nothingIsTakenDownAnyMoreAfterADrop()
    {
        Scene scene;
        scene.changeAll("changed");
        Scene::takeSome();
        scene.journal->drop();
        QVERIFY(!scene.written.wait(100));
        QVERIFY(QDir(scene.folder.path()).isEmpty());
    }

    void aJournalThatEndsMeanwhileWritesAll()
    {
        for (const bool hasBase : {true, false}) {
            Scene scene(1h, hasBase);
            scene.changeAll("changed");
            Scene::takeSome();
            scene.journal.reset();
            QCOMPARE(scene.recoveredText(), scene.text());
        }
    }

    // Only whole changes are written.
    void aModelThatEndsMeanwhileLeavesNoHalfChange()
    {
        QTemporaryDir folder;
        auto model = std::make_unique<StandardTimelineModel>();
        const std::shared_ptr<const Document> document = sample();
        model->setDocument(*document);
        Journal journal(*model, folder.filePath("a.journal"), Scene::options(1h));
        QSignalSpy written(&journal, &Journal::written);
        journal.start(document, {});
        for (const int id : model->itemIds())
            model->setItemDescription(id, "changed");
        Scene::takeSome();
        model.reset();
        QVERIFY(written.wait());
        QCOMPARE(vtlText(readJournal(journal.fileName()).value().document), vtlText(*document));
    }
};

QTEST_GUILESS_MAIN(TestJournalSlices)
#include "tst_journal_slices.moc"
