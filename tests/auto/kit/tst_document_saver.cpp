#include "support/file_size_limit.h"

#include <VeskTimelineKit/document_format.h>
#include <VeskTimelineKit/document_saver.h>
#include <VeskTimelineKit/document_snapshot.h>
#include <VeskTimelineKit/standard_timeline_model.h>
#include <VeskTimelineKit/vtl_writer.h>

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QSemaphore>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>
#include <QUndoStack>

#include <algorithm>

using namespace VeskTimeline::Kit;

namespace {

struct Probe
{
    QSemaphore isWriting;
    QSemaphore mayGoOn;
    QThread* thread = nullptr;
    bool heedsCancelling = true;
};
Probe* probe = nullptr;

WriteResult writeHeld(const Document& /*document*/, const QString& fileName, const WriteOptions& options)
{
    probe->thread = QThread::currentThread();
    options.progress(0.5);
    probe->isWriting.release();
    while (!probe->mayGoOn.tryAcquire(1, 1)) {
        if (!options.progress(0.5) && probe->heedsCancelling)
            return FileError{fileName, 0, writingCancelledReason()};
    }
    return QStringList{"the colours are lost"};
}

DocumentFormat heldFormat()
{
    DocumentFormat format;
    format.name = "held";
    format.write = writeHeld;
    return format;
}

const DocumentFormat held = heldFormat();

Document documentOf(int count)
{
    Document document;
    for (int i = 0; i < count; ++i)
        document.track({QStringLiteral("T%1").arg(i % 3)}).items.push_back({QString::number(i), i, 1, {}});
    return document;
}

/// A saver and all that it emits, in order.
class RecordedSaver
{
public:
    RecordedSaver()
    {
        QObject::connect(&saver, &DocumentSaver::progressChanged, &saver, [this](double share) {
            ++progressCount;
            lastShare = share;
        });
        QObject::connect(&saver, &DocumentSaver::saved, &saver, [this](const QStringList& texts) {
            events.append("saved");
            warnings = texts;
        });
        QObject::connect(&saver, &DocumentSaver::failed, &saver, [this](const FileError& error) {
            events.append("failed");
            reason = error.text();
        });
        QObject::connect(&saver, &DocumentSaver::cancelled, &saver, [this] { events.append("cancelled"); });
    }

    QStringList events;
    QStringList warnings;
    QString reason;
    int progressCount = 0;
    double lastShare = 0.0;
    DocumentSaver saver;
};

} // namespace

class TestDocumentSaver : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        QTest::failOnWarning(QRegularExpression(".?"));
        m_dir = std::make_unique<QTemporaryDir>();
        QVERIFY(m_dir->isValid());
        m_probe = std::make_unique<Probe>();
        probe = m_probe.get();
    }

    void aDocumentIsWrittenOnAnotherThread()
    {
        RecordedSaver recorded;
        recorded.saver.start(m_document, "x", held);
        QVERIFY(recorded.saver.isRunning());
        m_probe->mayGoOn.release();
        QTRY_COMPARE(recorded.events, QStringList{"saved"});
        QVERIFY(!recorded.saver.isRunning());
        QVERIFY(m_probe->thread && m_probe->thread != QThread::currentThread());
        QCOMPARE(recorded.warnings, QStringList{"the colours are lost"});
        QVERIFY(recorded.progressCount > 0);
        QCOMPARE(recorded.lastShare, 0.5);
    }

    void theFileHoldsTheDocument()
    {
        RecordedSaver recorded;
        recorded.saver.start(m_document, path(), *documentFormatByName("vtl"));
        QTRY_COMPARE(recorded.events, QStringList{"saved"});
        QCOMPARE(contents(), vtlText(*m_document));
        QCOMPARE(recorded.warnings, QStringList());
    }

    void whatTheDocumentWarnsOfIsToldFirst()
    {
        auto document = std::make_shared<Document>(*m_document);
        document->addWarning("one is now two");
        RecordedSaver recorded;
        recorded.saver.start(document, "x", held);
        m_probe->mayGoOn.release();
        QTRY_COMPARE(recorded.events, QStringList{"saved"});
        QCOMPARE(recorded.warnings, (QStringList{"one is now two", "the colours are lost"}));
    }

    void onAFullDiskTheOldFileStays_data()
    {
        QTest::addColumn<QString>("format");
        for (const DocumentFormat& format : documentFormats()) {
            if (format.write)
                QTest::newRow(qPrintable(format.name)) << format.name;
        }
    }
    void onAFullDiskTheOldFileStays()
    {
        QFETCH(const QString, format);
        put("old");
        RecordedSaver recorded;
        {
            const FileSizeLimit limit(1000);
            // Longer than what a file buffers.
            const auto document = std::make_shared<const Document>(documentOf(1000));
            recorded.saver.start(document, path(), *documentFormatByName(format));
            QTRY_COMPARE(recorded.events, QStringList{"failed"});
        }
        QVERIFY2(recorded.reason.startsWith(path() + ": ") && recorded.reason.contains("too large"),
                 qPrintable(recorded.reason));
        QCOMPARE(contents(), "old");
        QCOMPARE(QDir(m_dir->path()).entryList(QDir::Files | QDir::Hidden), QStringList{"file.vtl.json"});
    }

    void withoutItsFolderAFileIsNotWrittenAndTheReasonSaysSo()
    {
        RecordedSaver recorded;
        recorded.saver.start(m_document, m_dir->filePath("gone/file.vtl.json"), *documentFormatByName("vtl"));
        QTRY_COMPARE(recorded.events, QStringList{"failed"});
        QVERIFY2(recorded.reason.contains("No such file or directory"), qPrintable(recorded.reason));
    }

    void whatMayNotBeWrittenIsNot()
    {
        RecordedSaver recorded;
        recorded.saver.start(m_document, "/proc/version", *documentFormatByName("vtl"));
        QTRY_COMPARE(recorded.events, QStringList{"failed"});
        QVERIFY(recorded.reason.startsWith("/proc/version: "));
    }

    void cancellingLeavesTheOldFileAndIsToldWhenTheThreadHasEnded()
    {
        RecordedSaver recorded;
        recorded.saver.start(m_document, "x", held);
        m_probe->isWriting.acquire();
        const int before = recorded.progressCount;
        recorded.saver.cancel();
        QCOMPARE(recorded.events, QStringList());
        QVERIFY(recorded.saver.isRunning());
        QTRY_COMPARE(recorded.events, QStringList{"cancelled"});
        QVERIFY(!recorded.saver.isRunning());
        QCOMPARE(recorded.progressCount, before);
    }

    void aFileThatWasWrittenAllTheSameIsToldOf()
    {
        m_probe->heedsCancelling = false;
        RecordedSaver recorded;
        recorded.saver.start(m_document, "x", held);
        m_probe->isWriting.acquire();
        recorded.saver.cancel();
        m_probe->mayGoOn.release();
        QTRY_COMPARE(recorded.events, QStringList{"saved"});
    }

    void destroyingItCancelsAndWaits()
    {
        put("old");
        auto recorded = std::make_unique<RecordedSaver>();
        QSignalSpy progress(&recorded->saver, &DocumentSaver::progressChanged);
        recorded->saver.start(std::make_shared<const Document>(documentOf(200000)), path(),
                              *documentFormatByName("vtl"));
        QVERIFY(progress.wait(30000));
        recorded.reset();
        QCOMPARE(contents(), "old");
        QCOMPARE(QDir(m_dir->path()).entryList(QDir::Files | QDir::Hidden), QStringList{"file.vtl.json"});
    }

    void aSnapshotIsWhatTheModelHolds()
    {
        StandardTimelineModel model;
        model.setDocument(documentOf(20000));
        DocumentSnapshot snapshot(&model);
        const QByteArray taken = take(snapshot);
        QCOMPARE(taken, vtlText(model.document()));
        QVERIFY(!snapshot.isRunning());
    }

    void aChangeMakesTheSnapshotStartAnew_data()
    {
        QTest::addColumn<int>("change");
        for (int change = 0; change < 6; ++change)
            QTest::addRow("%d", change) << change;
    }
    void aChangeMakesTheSnapshotStartAnew()
    {
        QFETCH(int, change);
        StandardTimelineModel model;
        model.setDocument(documentOf(20000));
        DocumentSnapshot snapshot(&model);
        snapshot.setSlice(0);
        std::shared_ptr<const Document> document;
        connect(&snapshot, &DocumentSnapshot::taken, this, [&](const auto& taken) { document = taken; });
        snapshot.start();
        // In the middle of it: the timer of the snapshot has been served, but not all is done.
        QCoreApplication::processEvents();
        QVERIFY(snapshot.isRunning());
        switch (change) {
        case 0:
            model.setItemLabel(0, "changed");
            break;
        case 1:
            model.removeTrack(1);
            break;
        case 2:
            model.addItem(1, {"new", -5, 1, {}});
            break;
        case 3:
            model.moveTrack(3, 0, 0);
            break;
        case 4:
            model.renameTrack(1, "renamed");
            break;
        default:
            model.setDocument(documentOf(7));
            break;
        }
        QTRY_VERIFY(document);
        QVERIFY(areSame(*document, model.document()));
    }

    void aSnapshotCanBeCancelledAndEndsWithItsModel()
    {
        auto model = std::make_unique<StandardTimelineModel>();
        model->setDocument(documentOf(20000));
        DocumentSnapshot snapshot(model.get());
        snapshot.setSlice(0);
        QSignalSpy taken(&snapshot, &DocumentSnapshot::taken);
        QSignalSpy cancelled(&snapshot, &DocumentSnapshot::cancelled);
        snapshot.cancel();
        QCOMPARE(cancelled.count(), 0);
        snapshot.start();
        snapshot.cancel();
        QCOMPARE(cancelled.count(), 1);
        snapshot.start();
        QCoreApplication::processEvents();
        model.reset();
        QVERIFY(!snapshot.isRunning());
        QCoreApplication::processEvents();
        QCOMPARE(taken.count(), 0);
        QCOMPARE(cancelled.count(), 1);
    }

    void theSpanAndTheNumberOfItemsFollowEveryChange()
    {
        StandardTimelineModel model;
        QVERIFY(!model.span());
        QCOMPARE(model.itemCount(), 0);
        model.setDocument(documentOf(10));
        QCOMPARE(spanText(model), "0..10");
        QCOMPARE(model.itemCount(), 10);
        QVERIFY(model.hasItem(9) && !model.hasItem(10));
        model.setItemStartTime(9, -5);
        model.finishGesture();
        const int added = model.addItem(2, {"far", 50, 50, {}});
        QCOMPARE(model.span()->end, 100);
        QCOMPARE(spanText(model), spanOfAll(model));
        model.moveItemToTrack(added, 1, 70);
        QCOMPARE(spanText(model), spanOfAll(model));
        model.removeItem(added);
        QCOMPARE(spanText(model), spanOfAll(model));
        model.removeTrack(1);
        QCOMPARE(spanText(model), spanOfAll(model));
        model.copyToClipboard({model.itemIds().first()});
        model.pasteFromClipboard(1000);
        QCOMPARE(model.span()->end, 1001);
        while (model.undoStack()->canUndo()) {
            model.undoStack()->undo();
            QCOMPARE(spanText(model), spanOfAll(model));
        }
        while (model.undoStack()->canRedo()) {
            model.undoStack()->redo();
            QCOMPARE(spanText(model), spanOfAll(model));
        }
    }

private:
    static bool areSame(const Document& left, const Document& right)
    {
        const auto sameItem = [](const DocumentItem& a, const DocumentItem& b) {
            return a.label == b.label && a.start == b.start && a.duration == b.duration;
        };
        const auto sameTrack = [&sameItem](const DocumentTrack& a, const DocumentTrack& b) {
            return a.path == b.path &&
                   std::equal(a.items.begin(), a.items.end(), b.items.begin(), b.items.end(), sameItem);
        };
        return std::equal(left.tracks().begin(), left.tracks().end(), right.tracks().begin(), right.tracks().end(),
                          sameTrack);
    }
    static QString spanText(const StandardTimelineModel& model)
    {
        return QStringLiteral("%1..%2").arg(model.span()->start).arg(model.span()->end);
    }
    static QString spanOfAll(const StandardTimelineModel& model)
    {
        const TimeSpan span = *model.document().span();
        return QStringLiteral("%1..%2").arg(span.start).arg(span.end);
    }
    static QByteArray take(DocumentSnapshot& snapshot)
    {
        QByteArray text;
        const auto connection = connect(&snapshot, &DocumentSnapshot::taken, &snapshot,
                                        [&text](const auto& document) { text = vtlText(*document); });
        snapshot.start();
        [&] { QTRY_VERIFY(!text.isEmpty()); }();
        disconnect(connection);
        return text;
    }
    QString path() const { return m_dir->filePath("file.vtl.json"); }
    void put(const QByteArray& text) const
    {
        QFile file(path());
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(text) == text.size());
    }
    QByteArray contents() const
    {
        QFile file(path());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    std::unique_ptr<QTemporaryDir> m_dir;
    std::unique_ptr<Probe> m_probe;
    const std::shared_ptr<const Document> m_document = std::make_shared<const Document>(documentOf(100));
};

QTEST_GUILESS_MAIN(TestDocumentSaver)
#include "tst_document_saver.moc"
