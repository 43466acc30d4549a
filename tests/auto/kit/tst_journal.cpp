#include <VeskTimelineKit/journal.h>
#include <VeskTimelineKit/journal_recovery.h>
#include <VeskTimelineKit/labelled_item.h>
#include <VeskTimelineKit/standard_timeline_model.h>
#include <VeskTimelineKit/vtl_writer.h>

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QUndoStack>

#include <csignal>
#include <sys/resource.h>

using namespace VeskTimeline;
using namespace VeskTimeline::Kit;
using namespace std::chrono_literals;

namespace {

std::shared_ptr<const Document> sample()
{
    Document document;
    document.track({"A"}).items = {{"late", 9000, 10, {}}, {"a0", 0, 10, Qt::red}, {"a1", 0, 10, {}}};
    document.track({"A", "B"}).items = {{"long", 5, 5'000'000'000, {}, false, "text\nline", {{"k", "v"}}}};
    document.track({"A", "B"}).color = Qt::blue;
    document.track({"C"});
    return std::make_shared<const Document>(document);
}

/// A model with a journal that is in a hurry.
struct Scene
{
    explicit Scene(const JournalOptions& options = hurried()) : journal(model, folder.filePath("a.journal"), options)
    {
        model.setDocument(*document);
        journal.start(document, {"/x/a.csv", "b.ics"});
    }
    static JournalOptions hurried()
    {
        JournalOptions options;
        options.interval = 1ms;
        options.retryInterval = 20ms;
        return options;
    }
    bool write() { return written.wait(); }
    QString fileName() const { return journal.fileName(); }
    QStringList files() const { return QDir(folder.path()).entryList(QDir::Files, QDir::Name); }
    RecoveredJournal recovered() const
    {
        const Result<RecoveredJournal> result = readJournal(fileName());
        if (!result)
            qWarning("%s", qPrintable(result.error().text()));
        return result ? result.value() : RecoveredJournal();
    }
    QByteArray content() const
    {
        QFile file(fileName());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    void replaceContent(const QByteArray& content, const QString& name = {}) const
    {
        QFile file(name.isEmpty() ? fileName() : name);
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(content), content.size());
    }

    QTemporaryDir folder;
    std::shared_ptr<const Document> document = sample();
    StandardTimelineModel model;
    Journal journal;
    QSignalSpy written{&journal, &Journal::written};
    QSignalSpy failed{&journal, &Journal::failed};
    QSignalSpy resumed{&journal, &Journal::resumed};
};

/// Files of this process cannot grow beyond a size meanwhile, as on a full disk.
class FullDisk
{
public:
    explicit FullDisk(rlim_t size)
    {
        std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &m_before);
        rlimit limit = m_before;
        limit.rlim_cur = size;
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FullDisk() { setrlimit(RLIMIT_FSIZE, &m_before); }
    Q_DISABLE_COPY_MOVE(FullDisk)

private:
    rlimit m_before{};
};

} // namespace

class TestJournal : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(".?")); }

    // What the base's ids rely on.
    void theIdsOfAModelFollowFromItsDocument()
    {
        StandardTimelineModel model;
        // Ids start again, and so do those of what comes in pieces.
        model.setDocument(*sample());
        model.setDocument(*sample());
        QCOMPARE(model.track(1)->text(), "A");
        QCOMPARE(model.track(2)->text(), "B");
        QCOMPARE(model.track(3)->text(), "C");
        QStringList labels;
        for (const int id : model.itemIds())
            labels.append(QString("%1 %2 on %3").arg(id).arg(model.itemLabel(id)).arg(model.item(id)->parentTrackId()));
        QCOMPARE(labels, (QStringList{"0 a0 on 1", "1 a1 on 1", "2 late on 1", "3 long (1/3) on 2", "4 long (2/3) on 2",
                                      "5 long (3/3) on 2"}));
        QCOMPARE(dynamic_cast<const LabelledItem&>(*model.item(4)).piece().whole, 0);
    }

    void nothingIsWrittenBeforeTheFirstChange()
    {
        Scene scene;
        QVERIFY(!scene.written.wait(50));
        QCOMPARE(scene.files(), QStringList());
        scene.model.setItemLabel(1, "changed");
        QVERIFY(scene.write());
        QCOMPARE(scene.files(), (QStringList{"a.journal", "a.journal.1.base"}));
    }

    void aChangeIsRecoveredWithTheDocumentAndWhereItCameFrom()
    {
        Scene scene;
        const QDateTime before = QDateTime::currentDateTime();
        scene.model.setItemLabel(1, "changed");
        QVERIFY(scene.write());
        const RecoveredJournal recovered = scene.recovered();
        QCOMPARE(vtlText(recovered.document), vtlText(scene.model.document()));
        QCOMPARE(recovered.document.tracks().at(0).items.at(1).label, "changed");
        QCOMPARE(recovered.document.tracks().at(1).items.at(0).duration, 5'000'000'000);
        QCOMPARE(recovered.fileNames, (QStringList{"/x/a.csv", "b.ics"}));
        QCOMPARE(recovered.problems, QStringList());
        QCOMPARE(recovered.changeCount, 1);
        QVERIFY(!recovered.isSaved);
        QVERIFY(recovered.lastChange >= before && recovered.lastChange <= QDateTime::currentDateTime());

        const std::optional<JournalInfo> info = journalInfo(scene.fileName());
        QVERIFY(info);
        QCOMPARE(info->fileNames, recovered.fileNames);
        QVERIFY(!info->isSaved);
        QVERIFY(info->lastChange.secsTo(QDateTime::currentDateTime()) < 10);
    }

    void copyItemsAreRecovered()
    {
        Scene scene;
        scene.model.setCopyItemIds(1, {0, 4});
        scene.model.setCopyItemIds(0, {2});
        scene.model.insertTrack(0, 0, "first");
        scene.model.addItem(1, {"before", -5, 1, {}});
        QVERIFY(scene.write());
        const RecoveredJournal recovered = scene.recovered();
        StandardTimelineModel model;
        recovered.showIn(model);
        QStringList copies;
        for (const int trackId : {0, 2}) {
            QList<int> ids(model.track(trackId)->copyItemIds().begin(), model.track(trackId)->copyItemIds().end());
            std::sort(ids.begin(), ids.end());
            for (const int id : ids)
                copies.append(model.itemLabel(id));
        }
        QCOMPARE(copies, (QStringList{"late", "a0", "long (2/3)"}));
    }

    void aNewDocumentWithoutBaseIsTakenFromTheModel()
    {
        Scene scene;
        scene.model.setDocument(Document());
        scene.model.addItem(scene.model.addTrack("new"), {"x", 1, 2, {}});
        QVERIFY(scene.write());
        QCOMPARE(vtlText(scene.recovered().document), vtlText(scene.model.document()));
    }

    void whatIsModifiedFromTheStartIsWrittenAtOnce()
    {
        Scene scene;
        scene.journal.start(scene.document, {}, true);
        QVERIFY(scene.write());
        QCOMPARE(vtlText(scene.recovered().document), vtlText(scene.model.document()));
    }

    // As the user drags an item, for a while.
    void changesAreWrittenWhileTheyGoOn()
    {
        JournalOptions options = Scene::hurried();
        options.interval = 100ms;
        Scene scene(options);
        QElapsedTimer timer;
        timer.start();
        int step = 0;
        qint64 lastWritten = 0;
        qint64 longestGap = 0;
        QTimer drag;
        connect(&drag, &QTimer::timeout, &drag, [&] { scene.model.setItemStartTime(2, 9000 + ++step); });
        drag.start(5ms);
        QByteArray seen;
        while (timer.elapsed() < 1500) {
            QTest::qWait(10);
            const QByteArray now = scene.content();
            if (now == seen)
                continue;
            seen = now;
            longestGap = std::max(longestGap, timer.elapsed() - lastWritten);
            lastWritten = timer.elapsed();
        }
        QVERIFY(step > 50);
        QVERIFY2(longestGap < 1000, qPrintable(QString::number(longestGap)));
        // Not once a change either.
        QVERIFY(scene.recovered().changeCount <= 16);
    }

    void byDefaultAChangeIsOnTheDiskWithinTwoSeconds()
    {
        Scene scene{JournalOptions()};
        QElapsedTimer timer;
        timer.start();
        scene.model.setItemLabel(0, "changed");
        QVERIFY(scene.write());
        QVERIFY2(timer.elapsed() < 1000, qPrintable(QString::number(timer.elapsed())));
    }

    void aChangeCostsWhatItChanges()
    {
        Document many;
        for (int i = 0; i < 20000; ++i)
            many.track({"A"}).items.push_back({QString::number(i), i, 10, {}});
        Scene scene;
        const auto document = std::make_shared<const Document>(many);
        scene.model.setDocument(many);
        scene.journal.start(document, {});
        scene.model.setItemLabel(5, "x");
        QVERIFY(scene.write());
        QVERIFY(scene.content().size() < 500);
        scene.model.setItemStartTime(19000, 3);
        QVERIFY(scene.write());
        QVERIFY(scene.content().size() < 1000);
        QCOMPARE(vtlText(scene.recovered().document), vtlText(scene.model.document()));
    }

    void aTornLastLineCostsTheLastChangeOnly()
    {
        Scene scene;
        scene.model.setItemLabel(0, "first");
        QVERIFY(scene.write());
        const QByteArray afterFirst = vtlText(scene.model.document());
        const qsizetype length = scene.content().size();
        scene.model.setItemsColor({0, 1, 2}, Qt::green);
        QVERIFY(scene.write());
        const QByteArray whole = scene.content();
        const QByteArray afterSecond = vtlText(scene.model.document());
        for (qsizetype cut = length; cut <= whole.size(); ++cut) {
            scene.replaceContent(whole.first(cut));
            const RecoveredJournal recovered = scene.recovered();
            QCOMPARE(vtlText(recovered.document), cut == whole.size() ? afterSecond : afterFirst);
            const bool isBetween = cut == length || cut == whole.size();
            QCOMPARE(recovered.problems, isBetween ? QStringList()
                                                   : QStringList("The last change was not written to its end and is "
                                                                 "lost."));
        }
    }

    void damageInTheMiddleEndsTheJournalThere()
    {
        Scene scene;
        QList<QByteArray> states;
        QList<qsizetype> lengths;
        for (int i = 0; i < 4; ++i) {
            scene.model.setItemLabel(0, QString::number(i));
            QVERIFY(scene.write());
            states.append(vtlText(scene.model.document()));
            lengths.append(scene.content().size());
        }
        QByteArray damaged = scene.content();
        damaged[lengths.at(1) + 30] = '#';
        scene.replaceContent(damaged);
        const RecoveredJournal recovered = scene.recovered();
        QCOMPARE(vtlText(recovered.document), states.at(1));
        QCOMPARE(recovered.problems,
                 QStringList("The journal is damaged: what was changed after its 2. change is lost."));
    }

    void copiesThatHaveLostTheirPlaceAreLeftOut()
    {
        Scene scene;
        scene.model.setCopyItemIds(1, {0, 4});
        QVERIFY(scene.write());
        const QString baseName = scene.fileName() + ".1.base";
        QFile file(baseName);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QByteArray base = file.readAll();
        // The track is no longer known to be below the first one.
        QVERIFY(base.contains("\"B\""));
        base.replace("\"B\"", "\"!\"");
        scene.replaceContent(base, baseName);
        const RecoveredJournal recovered = scene.recovered();
        StandardTimelineModel model;
        recovered.showIn(model);
        QCOMPARE(model.itemCount(), scene.model.itemCount());
        const QSet<int> copies = model.track(1)->copyItemIds();
        QCOMPARE(copies.size(), 1);
        QCOMPARE(model.itemLabel(*copies.begin()), "a0");
    }

    void ofADamagedBaseTheRestIsRecovered()
    {
        Scene scene;
        scene.model.setItemLabel(2, "changed");
        QVERIFY(scene.write());
        const QString baseName = scene.fileName() + ".1.base";
        QFile file(baseName);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QByteArray base = file.readAll();
        const QByteArray whole = base;
        base.replace("\"a0\"", "\"!!\"");
        scene.replaceContent(base, baseName);
        RecoveredJournal recovered = scene.recovered();
        QCOMPARE(recovered.document.itemCount(), 3);
        QCOMPARE(recovered.document.tracks().at(0).items.at(1).label, "changed");
        QCOMPARE(recovered.problems, QStringList("An item or track cannot be read."));

        scene.replaceContent(whole.first(whole.indexOf("\"long\"")), baseName);
        recovered = scene.recovered();
        QCOMPARE(recovered.document.itemCount(), 3);
        QCOMPARE(recovered.problems.size(), 2);
        QVERIFY(recovered.problems.at(1).startsWith("The program ended before the whole document was in the journal"));

        QVERIFY(QFile::remove(baseName));
        recovered = scene.recovered();
        QCOMPARE(recovered.document.itemCount(), 1);
        QCOMPARE(recovered.document.tracks().at(0).path, QStringList("Recovered"));
        QVERIFY(recovered.problems.at(0).startsWith("The document as it was before the changes is missing"));
    }

    void withoutItsFirstLineAJournalIsWorthItsBase()
    {
        Scene scene;
        scene.model.setItemLabel(2, "changed");
        QVERIFY(scene.write());
        scene.replaceContent("rubbish\n" + scene.content());
        const RecoveredJournal recovered = scene.recovered();
        QCOMPARE(vtlText(recovered.document).size(), vtlText(*scene.document).size());
        QCOMPARE(recovered.problems, QStringList("The journal of the changes cannot be read: this is the document "
                                                 "without them."));
        QVERIFY(journalInfo(scene.fileName())->fileNames.isEmpty());
    }

    void randomDamageNeverCrashes()
    {
        Scene scene;
        for (int i = 0; i < 10; ++i) {
            const int track = scene.model.addTrack(QString::number(i), i % 3);
            scene.model.addItem(track, {"x", i, 5, {}});
            scene.model.moveTrack(3, track, 0);
            if (i == 0)
                scene.model.retimeItem(2, i, 4'000'000'000);
            if (i == 7)
                scene.model.removeTrack(1);
            else
                scene.model.setItemLabel(scene.model.itemIds().last(), "y");
            QVERIFY(scene.write());
            if (i == 7)
                break;
        }
        const QList<QByteArray> lines = scene.content().split('\n');
        QRandomGenerator random(7);
        for (int round = 0; round < 200; ++round) {
            // Whole lines out of order pass the checksum and make no sense.
            QList<QByteArray> shuffled = lines;
            for (int i = random.bounded(6); i >= 0; --i)
                shuffled.swapItemsAt(1 + random.bounded(static_cast<int>(lines.size()) - 2),
                                     1 + random.bounded(static_cast<int>(lines.size()) - 2));
            QByteArray content = shuffled.join('\n');
            if (random.bounded(2) == 0)
                content[random.bounded(static_cast<int>(content.size()))] = static_cast<char>(random.bounded(256));
            scene.replaceContent(content);
            const Result<RecoveredJournal> result = readJournal(scene.fileName());
            if (result) {
                StandardTimelineModel model;
                result.value().showIn(model);
                QVERIFY(model.trackCount() >= 0);
            }
        }
    }

    void whatIsNoJournalIsRefused()
    {
        Scene scene;
        scene.replaceContent("{}\n");
        const Result<RecoveredJournal> result = readJournal(scene.fileName());
        QVERIFY(!result);
        QCOMPARE(result.error().text(), scene.fileName() + ": it is no journal, or of a newer version");
        QVERIFY(!readJournal(scene.folder.filePath("none")));
        QVERIFY(!journalInfo(scene.folder.filePath("none")));
    }

    void readingCanBeCancelled()
    {
        Scene scene;
        scene.model.addItems(1, std::vector<DocumentItem>(20000, DocumentItem{"x", 1, 2, {}}));
        QVERIFY(scene.write());
        ReadOptions options;
        options.progress = [](double) { return false; };
        const Result<RecoveredJournal> result = readJournal(scene.fileName(), options);
        QVERIFY(!result);
        QCOMPARE(result.error().reason, cancelledReason());
    }

    void afterASaveThereIsNothingToRecoverUntilTheNextChange()
    {
        Scene scene;
        scene.model.setItemLabel(0, "saved");
        scene.journal.markSaved(scene.journal.revision());
        QTRY_VERIFY(journalInfo(scene.fileName()) && journalInfo(scene.fileName())->isSaved);
        QVERIFY(scene.recovered().isSaved);
        scene.written.clear();
        scene.model.setItemLabel(0, "more");
        QVERIFY(scene.write());
        QVERIFY(!journalInfo(scene.fileName())->isSaved);
        QVERIFY(!scene.recovered().isSaved);
        QCOMPARE(vtlText(scene.recovered().document), vtlText(scene.model.document()));
    }

    // Saving takes its time, and the user goes on.
    void aChangeDuringASaveIsNotTakenForSaved()
    {
        Scene scene;
        scene.model.setItemLabel(0, "to be saved");
        const quint64 revision = scene.journal.revision();
        scene.model.setItemLabel(0, "meanwhile");
        scene.journal.markSaved(revision);
        QVERIFY(scene.write());
        QVERIFY(!scene.recovered().isSaved);
        QCOMPARE(vtlText(scene.recovered().document), vtlText(scene.model.document()));
    }

    void droppingRemovesEverythingAndStops()
    {
        Scene scene;
        scene.model.setItemLabel(0, "x");
        QVERIFY(scene.write());
        scene.journal.drop();
        QTRY_COMPARE(scene.files(), QStringList());
        scene.model.setItemLabel(0, "y");
        QVERIFY(!scene.written.wait(50));
        QCOMPARE(scene.files(), QStringList());
    }

    void anotherDocumentReplacesWhatWasWritten()
    {
        Scene scene;
        scene.model.setItemLabel(0, "x");
        QVERIFY(scene.write());
        Document other;
        other.track({"Z"}).items = {{"z", 1, 1, {}}};
        scene.model.setDocument(other);
        scene.journal.start(std::make_shared<const Document>(other), {"z.csv"});
        QTRY_COMPARE(scene.files(), QStringList());
        scene.model.setItemLabel(0, "zz");
        QVERIFY(scene.write());
        QCOMPARE(scene.recovered().fileNames, QStringList("z.csv"));
        QCOMPARE(vtlText(scene.recovered().document), vtlText(scene.model.document()));
        QCOMPARE(scene.files().size(), 2);
    }

    void aJournalThatEndsWritesWhatIsWaiting()
    {
        JournalOptions options;
        options.interval = 10min;
        QTemporaryDir folder;
        StandardTimelineModel model;
        const auto document = sample();
        model.setDocument(*document);
        {
            Journal journal(model, folder.filePath("a.journal"), options);
            journal.start(document, {});
            model.setItemLabel(0, "x");
        }
        const Result<RecoveredJournal> recovered = readJournal(folder.filePath("a.journal"));
        QVERIFY(recovered);
        QCOMPARE(recovered.value().problems, QStringList());
        QCOMPARE(vtlText(recovered.value().document), vtlText(model.document()));
    }

    void aFullDiskIsToldOnceAndRetried()
    {
        Scene scene;
        scene.model.setItemLabel(0, "x");
        QVERIFY(scene.write());
        {
            const FullDisk full(static_cast<rlim_t>(scene.content().size() + 20));
            scene.model.setItemLabel(0, "y");
            QVERIFY(scene.failed.wait());
            QVERIFY(scene.failed.at(0).at(0).toString().contains(scene.fileName()));
            scene.model.setItemLabel(1, "z");
            QVERIFY(!scene.failed.wait(100));
            // What is in the file is not harmed.
            QCOMPARE(scene.recovered().document.tracks().at(0).items.at(0).label, "x");
            QCOMPARE(scene.resumed.count(), 0);
        }
        QVERIFY(scene.resumed.wait());
        QCOMPARE(scene.resumed.count(), 1);
        QTRY_COMPARE(vtlText(scene.recovered().document), vtlText(scene.model.document()));
        QCOMPARE(scene.recovered().problems, QStringList());
        QCOMPARE(scene.failed.count(), 1);
    }

    void aDiskThatIsFullForTheBaseIsToldOnceAndRetried()
    {
        Scene scene;
        {
            const FullDisk full(50);
            scene.model.setItemLabel(0, "y");
            QVERIFY(scene.failed.wait());
            QVERIFY(!scene.failed.wait(100));
            QCOMPARE(scene.written.count(), 0);
        }
        QVERIFY(scene.write());
        QTRY_COMPARE(scene.resumed.count(), 1);
        QCOMPARE(vtlText(scene.recovered().document), vtlText(scene.model.document()));
    }

    void aFolderThatCannotBeMadeIsToldOnceAndRetried()
    {
        QTemporaryDir folder;
        QFile inTheWay(folder.filePath("f"));
        QVERIFY(inTheWay.open(QIODevice::WriteOnly));
        StandardTimelineModel model;
        const auto document = sample();
        model.setDocument(*document);
        Journal journal(model, folder.filePath("f/a.journal"), Scene::hurried());
        QSignalSpy failed(&journal, &Journal::failed);
        QSignalSpy written(&journal, &Journal::written);
        journal.start(document, {});
        model.setItemLabel(0, "x");
        QVERIFY(failed.wait());
        QVERIFY(!failed.wait(100));
        QVERIFY(inTheWay.remove());
        QVERIFY(written.wait());
        const Result<RecoveredJournal> recovered = readJournal(journal.fileName());
        QVERIFY(recovered);
        QCOMPARE(vtlText(recovered.value().document), vtlText(model.document()));
    }

    void filesThatSomebodyRemovesAreWrittenAnew()
    {
        for (const char* name : {"a.journal", "a.journal.1.base"}) {
            Scene scene;
            scene.model.setItemLabel(0, "x");
            QVERIFY(scene.write());
            QVERIFY(QFile::remove(scene.folder.filePath(name)));
            scene.model.setItemLabel(1, "y");
            QVERIFY(scene.write());
            QCOMPARE(vtlText(scene.recovered().document), vtlText(scene.model.document()));
            QCOMPARE(scene.recovered().problems, QStringList());
        }
    }

    void aLongJournalIsMadeSmaller()
    {
        JournalOptions options = Scene::hurried();
        options.compactionFloor = 20'000;
        Scene scene(options);
        int step = 0;
        while (!QFile::exists(scene.fileName() + ".2.base") || QFile::exists(scene.fileName() + ".1.base")) {
            scene.model.setItemDescription(0, QString(2000, u'x') + QString::number(++step));
            QVERIFY(scene.write());
            QVERIFY(step < 500);
        }
        QVERIFY(scene.content().size() < 20'000);
        scene.model.setItemLabel(1, "after");
        QVERIFY(scene.write());
        const RecoveredJournal recovered = scene.recovered();
        QCOMPARE(vtlText(recovered.document), vtlText(scene.model.document()));
        QCOMPARE(recovered.problems, QStringList());
        QCOMPARE(recovered.fileNames.size(), 2);
        QCOMPARE(scene.failed.count(), 0);
    }

    void removingAJournalLeavesNothing()
    {
        Scene scene;
        scene.model.setItemLabel(0, "x");
        QVERIFY(scene.write());
        scene.replaceContent("", scene.fileName() + ".new");
        QVERIFY(removeJournal(scene.fileName()));
        QCOMPARE(scene.files(), QStringList());
        QVERIFY(removeJournal(scene.fileName()));
    }
};

QTEST_MAIN(TestJournal)
#include "tst_journal.moc"
