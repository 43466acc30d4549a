#include <VeskTimelineKit/document_format.h>
#include <VeskTimelineKit/document_loader.h>
#include <VeskTimelineKit/standard_timeline_model.h>

#include <QFile>
#include <QRegularExpression>
#include <QSemaphore>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>

using namespace VeskTimeline::Kit;

namespace {

// What the formats of the tests tell and are told, on the thread that reads.
struct Probe
{
    QSemaphore isReading;
    QSemaphore mayGoOn;
    QThread* thread = nullptr;
    bool wasCancelled = false;
};
Probe* probe = nullptr;

Result<Document> readHeld(const QString& fileName, const ReadOptions& options)
{
    probe->thread = QThread::currentThread();
    options.progress(0.5);
    probe->isReading.release();
    while (!probe->mayGoOn.tryAcquire(1, 1)) {
        if (!options.progress(0.5)) {
            probe->wasCancelled = true;
            return FileError{fileName, 0, cancelledReason()};
        }
    }
    Document document;
    document.track({"Held"}).items.push_back({"x", 1, 2, {}});
    document.addWarning("held back");
    return document;
}

Result<Document> readWithoutMemory(const QString& /*fileName*/, const ReadOptions& /*options*/)
{
    throw std::bad_alloc();
}

DocumentFormat formatOf(Result<Document> (*read)(const QString&, const ReadOptions&))
{
    DocumentFormat format;
    format.name = "test";
    format.read = read;
    return format;
}

const DocumentFormat held = formatOf(readHeld);
const DocumentFormat withoutMemory = formatOf(readWithoutMemory);

QStringList paths(const Document& document)
{
    QStringList names;
    for (const DocumentTrack& track : document.tracks())
        names.append(track.path.join(u'/'));
    return names;
}

/// A loader and all that it emits, in order.
class RecordedLoader
{
public:
    RecordedLoader()
    {
        QObject::connect(&loader, &DocumentLoader::progressChanged, &loader, [this](double share) {
            isOrdered = isOrdered && share >= lastShare && share >= 0.0 && share <= 1.0;
            lastShare = share;
            ++progressCount;
        });
        QObject::connect(&loader, &DocumentLoader::loaded, &loader,
                         [this](const std::shared_ptr<LoadedDocument>& loaded) {
                             result = loaded;
                             events.append(QThread::currentThread() == loader.thread() ? "loaded" : "elsewhere");
                         });
        QObject::connect(&loader, &DocumentLoader::refused, &loader, [this](const QList<FileError>& errors) {
            events.append("refused");
            for (const FileError& error : errors)
                refusals.append(error.text());
        });
        QObject::connect(&loader, &DocumentLoader::cancelled, &loader, [this] { events.append("cancelled"); });
    }

    QStringList events;
    QStringList refusals;
    std::shared_ptr<LoadedDocument> result;
    int progressCount = 0;
    double lastShare = 0.0;
    bool isOrdered = true;
    DocumentLoader loader;
};

} // namespace

class TestDocumentLoader : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        QTest::failOnWarning(QRegularExpression(".?"));
        QVERIFY(m_dir.isValid());
        m_probe = std::make_unique<Probe>();
        probe = m_probe.get();
    }

    void aFileIsReadOnAnotherThreadAndDeliveredOnThisOne()
    {
        RecordedLoader recorded;
        recorded.loader.start({{"x", &held}});
        QVERIFY(recorded.loader.isRunning());
        m_probe->mayGoOn.release();
        QTRY_COMPARE(recorded.events, QStringList{"loaded"});
        QVERIFY(!recorded.loader.isRunning());
        QVERIFY(m_probe->thread && m_probe->thread != QThread::currentThread());
        QVERIFY(recorded.progressCount > 0);
        QVERIFY(recorded.isOrdered);
        QCOMPARE(recorded.result->document->warnings(), QStringList{"held back"});
        QCOMPARE(recorded.result->stretch, 1.0);

        StandardTimelineModel model;
        model.setDocument(std::move(recorded.result->prepared));
        QCOMPARE(model.itemIds(), QVector<int>{0});
        QCOMPARE(model.itemLabel(0), "x");
    }

    void oneFileHasNoTrackOfItsOwn()
    {
        RecordedLoader recorded;
        recorded.loader.start({{write("one.csv", "track,label,start,end\nA/B,x,5,6\n")}});
        QTRY_COMPARE(recorded.events, QStringList{"loaded"});
        QCOMPARE(paths(*recorded.result->document), QStringList({"A", "A/B"}));
    }

    void severalFilesGetATrackEachAtTheTopLevel()
    {
        const QString a = write("a.csv", "track,label,start,end\nA,x,5,6\n");
        const QString b = write("b.csv", "track,label,start,end,note\nA,y,5,6,n\n");
        RecordedLoader recorded;
        recorded.loader.start({{a}, {b}, {a}});
        QTRY_COMPARE(recorded.events, QStringList{"loaded"});
        const Document& document = *recorded.result->document;
        QCOMPARE(paths(document), QStringList({"a.csv", "a.csv/A", "b.csv", "b.csv/A", "a.csv (2)", "a.csv (2)/A"}));
        QCOMPARE(document.tracks()[3].items.front().label, "y");
        QCOMPARE(document.itemCount(), 3);
    }

    void theNameOfTheTrackCanBeGiven()
    {
        FileToRead file{write("c.csv", "track,label,start,end\nA,x,5,6\n")};
        file.trackName = "Mine";
        QCOMPARE(paths(readDocuments({file}).document), QStringList({"Mine", "Mine/A"}));
    }

    void everyRefusalIsToldAndNothingIsDelivered()
    {
        const QString good = write("good.csv", "track,label,start,end\nA,x,5,6\n");
        RecordedLoader recorded;
        recorded.loader.start({{"/nowhere/1.csv"}, {good}, {"/nowhere/2.csv"}});
        QTRY_COMPARE(recorded.events, QStringList{"refused"});
        QCOMPARE(recorded.refusals.size(), 2);
        QVERIFY(recorded.refusals.first().startsWith("/nowhere/1.csv: "));
        QVERIFY(recorded.refusals.last().startsWith("/nowhere/2.csv: "));
        QVERIFY(!recorded.result);
        QVERIFY(!recorded.loader.isRunning());
    }

    void aFileThatNeedsMoreMemoryThanThereIsIsRefused()
    {
        RecordedLoader recorded;
        recorded.loader.start({{"big", &withoutMemory}});
        QTRY_COMPARE(recorded.events, QStringList{"refused"});
        QCOMPARE(recorded.refusals, QStringList{"big: there is not enough memory for it"});
    }

    void afterCancellingNothingElseIsEmitted()
    {
        RecordedLoader recorded;
        recorded.loader.start({{"x", &held}, {"y", &held}});
        m_probe->isReading.acquire();
        const int before = recorded.progressCount;
        recorded.loader.cancel();
        QCOMPARE(recorded.events, QStringList{"cancelled"});
        QVERIFY(!recorded.loader.isRunning());
        QTRY_VERIFY(m_probe->wasCancelled);
        QTRY_VERIFY(recorded.loader.findChildren<QThread*>().isEmpty());
        QCoreApplication::processEvents();
        QCOMPARE(recorded.events, QStringList{"cancelled"});
        QCOMPARE(recorded.progressCount, before);
        QVERIFY(!m_probe->isReading.tryAcquire()); // the second file was not begun
    }

    void cancellingWithNothingUnderWayDoesNothing()
    {
        RecordedLoader recorded;
        recorded.loader.cancel();
        QCOMPARE(recorded.events, QStringList());
    }

    void itCanStartAgainRightAfterCancelling()
    {
        RecordedLoader recorded;
        recorded.loader.start({{"x", &held}});
        m_probe->isReading.acquire();
        recorded.loader.cancel();
        recorded.loader.start({{write("again.csv", "track,label,start,end\nA,x,5,6\n")}});
        QTRY_COMPARE(recorded.events, QStringList({"cancelled", "loaded"}));
        QCOMPARE(paths(*recorded.result->document), QStringList{"A"});
    }

    void destroyingItCancelsAndWaits()
    {
        auto recorded = std::make_unique<RecordedLoader>();
        recorded->loader.start({{"x", &held}});
        m_probe->isReading.acquire();
        recorded.reset();
        QVERIFY(m_probe->wasCancelled);
    }

    void preparingCanBeGivenUp()
    {
        Document document;
        for (int i = 0; i < 10000; ++i)
            document.track({"T"}).items.push_back({QString::number(i), i, 1, {}});
        int calls = 0;
        QVERIFY(!PreparedDocument::prepare(document, [&calls](double) { return ++calls < 1; }));
        QCOMPARE(calls, 1);
        QVERIFY(PreparedDocument::prepare(document, [](double share) { return share <= 1.0; }));
    }

    void aPreparedDocumentGivesTheSameModelAsTheDocument()
    {
        Document document;
        document.track({"A", "B"}).items = {{"late", 9, 1, Qt::red}, {"early", 1, 2, {}}};
        document.track({"C"}).color = Qt::green;
        document.track({"A"}).items = {{"long", 0, 3 * DocumentItem::longestBar, {}}};
        StandardTimelineModel plain;
        plain.setDocument(document);
        StandardTimelineModel prepared;
        prepared.addTrack("Before");
        QSignalSpy resets(&prepared, &QAbstractItemModel::modelReset);
        prepared.setDocument(PreparedDocument(document));
        QCOMPARE(resets.count(), 1);
        QCOMPARE(prepared.itemIds(), plain.itemIds());
        QCOMPARE(prepared.trackCount(), 3);
        for (const int id : plain.itemIds()) {
            QCOMPARE(prepared.itemLabel(id), plain.itemLabel(id));
            QCOMPARE(prepared.item(id)->startTime(), plain.item(id)->startTime());
            QCOMPARE(prepared.item(id)->parentTrackId(), plain.item(id)->parentTrackId());
            QCOMPARE(prepared.item(id)->color(), plain.item(id)->color());
        }
        QCOMPARE(paths(prepared.document()), paths(document));
        QCOMPARE(prepared.addTrack("New"), 4);
        QCOMPARE(prepared.addItem(4, {"new", 0, 1, {}}), 6);
    }

private:
    QString write(const QString& name, const QByteArray& text)
    {
        QFile file(m_dir.filePath(name));
        if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size())
            qFatal("cannot write %s", qPrintable(file.fileName()));
        return file.fileName();
    }

    QTemporaryDir m_dir;
    std::unique_ptr<Probe> m_probe;
};

QTEST_GUILESS_MAIN(TestDocumentLoader)
#include "tst_document_loader.moc"
