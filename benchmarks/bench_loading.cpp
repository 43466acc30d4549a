#include "support/heartbeat.h"

#include <VeskTimelineKit/document_format.h>
#include <VeskTimelineKit/document_loader.h>
#include <VeskTimelineKit/document_saver.h>
#include <VeskTimelineKit/document_snapshot.h>
#include <VeskTimelineKit/standard_timeline_model.h>
#include <VeskTimelineKit/vtl_writer.h>

#include <QAction>
#include <QElapsedTimer>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QUndoStack>

#include <workbench/file_session.h>
#include <workbench/main_window.h>

using namespace VeskTimeline::Kit;
using Workbench::FileSession;

/// For how long a window does not answer while a million items are read, shown, replaced and written.
class BenchLoading : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        constexpr int count = 1'000'000;
        Document document;
        for (int i = 0; i < count; ++i)
            document.track({QStringLiteral("Track %1").arg(i % 200)})
                .items.push_back({QStringLiteral("Item %1").arg(i), i * 1'000LL, 30'000, {}});
        QVERIFY(writeVtl(document, file()));
    }

    void model()
    {
        StandardTimelineModel model;
        DocumentLoader loader;
        DocumentLoader adder;
        DocumentSnapshot snapshot(&model);
        DocumentSaver saver;
        connect(&loader, &DocumentLoader::loaded, this, [&](const auto& loaded) {
            QElapsedTimer time;
            time.start();
            model.setDocument(std::move(loaded->prepared));
            qInfo("  setDocument %lld ms", time.elapsed());
        });
        connect(&snapshot, &DocumentSnapshot::taken, &saver, [&](const std::shared_ptr<const Document>& document) {
            saver.start(document, m_dir.filePath(QStringLiteral("out.vtl.json")),
                        *documentFormatByName(QStringLiteral("vtl")));
        });
        measure("model: read", &loader, &DocumentLoader::loaded, [&] { loader.start({{file()}}); });
        measure("model: read and replace", &loader, &DocumentLoader::loaded, [&] { loader.start({{file()}}); });
        connect(&adder, &DocumentLoader::loaded, this, [&](const auto& loaded) {
            QElapsedTimer time;
            time.start();
            model.addDocument(std::move(loaded->prepared));
            const qint64 added = time.restart();
            model.undoStack()->undo();
            const qint64 undone = time.restart();
            model.undoStack()->redo();
            qInfo("  addDocument %lld ms, undo %lld ms, redo %lld ms", added, undone, time.elapsed());
        });
        measure("model: snapshot and write", &saver, &DocumentSaver::saved, [&] { snapshot.start(); });
        measure("model: add to the same tracks", &adder, &DocumentLoader::loaded, [&] { adder.start({{file()}}); });
        model.setDocument(Document());
        measure("model: add as new tracks", &adder, &DocumentLoader::loaded, [&] { adder.start({{file()}}); });
    }

    void window()
    {
        Workbench::MainWindow window;
        window.show();
        FileSession* const session = window.fileSession();
        measure("window: open", session, &FileSession::stateChanged, [&] { session->open({file()}); });
        measure("window: reload", session, &FileSession::stateChanged, [&] { session->reload(); });
        measure("window: save", session, &FileSession::documentSaved,
                [&] { session->saveAs(m_dir.filePath(QStringLiteral("out2.vtl.json"))); });
        measure("window: move one item", window.model(), &StandardTimelineModel::itemsChanged,
                [&] { window.model()->setItemStartTime(500'000, 7); });
        measure("window: add a file of as many", session, &FileSession::filesAdded, [&] { session->add({file()}); });
        window.fileSession()->cancel();
    }

private:
    QString file() const { return m_dir.filePath(QStringLiteral("many.vtl.json")); }

    template <typename Sender, typename Signal, typename Body>
    void measure(const char* name, Sender* sender, Signal signal, const Body& body)
    {
        constexpr int timeout = 120'000;
        QSignalSpy spy(sender, signal);
        QCoreApplication::processEvents();
        Heartbeat heartbeat;
        QElapsedTimer time;
        time.start();
        body();
        if (spy.isEmpty())
            QVERIFY(spy.wait(timeout));
        // What follows from it, such as painting, too.
        QTest::qWait(300);
        qInfo("%s: %lld ms, the longest block %lld ms", name, time.elapsed() - 300, heartbeat.takeLongest());
    }

    QTemporaryDir m_dir;
};

QTEST_MAIN(BenchLoading)
#include "bench_loading.moc"
