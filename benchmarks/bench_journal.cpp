// What keeping a journal of a document of a million items costs.

#include <VeskTimelineKit/journal.h>
#include <VeskTimelineKit/journal_recovery.h>
#include <VeskTimelineKit/standard_timeline_model.h>

#include <QElapsedTimer>
#include <QFileInfo>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <algorithm>

using namespace VeskTimeline;
using namespace VeskTimeline::Kit;

namespace {

constexpr int trackCount = 10;
constexpr int itemsPerTrack = 100'000;

std::shared_ptr<const Document> manyItems()
{
    auto document = std::make_shared<Document>();
    for (int track = 0; track < trackCount; ++track) {
        std::vector<DocumentItem>& items = document->track({QString::number(track)}).items;
        for (int i = 0; i < itemsPerTrack; ++i)
            items.push_back({QStringLiteral("item %1").arg(i), i * 1000, 500, {}});
    }
    return document;
}

/// The longest time that the event loop was not reached.
class BlockMeter
{
public:
    BlockMeter()
    {
        QObject::connect(&m_timer, &QTimer::timeout,
                         [this] { m_longest = std::max(m_longest, m_sinceLast.restart()); });
        m_sinceLast.start();
        m_timer.start(0);
    }
    qint64 longest() const { return m_longest; }

private:
    QTimer m_timer;
    QElapsedTimer m_sinceLast;
    qint64 m_longest = 0;
};

} // namespace

class BenchJournal : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aMillionItems()
    {
        const QTemporaryDir folder;
        StandardTimelineModel model;
        const std::shared_ptr<const Document> document = manyItems();
        model.setDocument(*document);
        Journal journal(model, folder.filePath(QStringLiteral("a.journal")));
        QSignalSpy written(&journal, &Journal::written);
        QElapsedTimer timer;
        timer.start();
        journal.start(document, {});
        qInfo("start: %lld ms", timer.elapsed());
        {
            BlockMeter meter;
            timer.start();
            model.setItemLabel(5, QStringLiteral("x"));
            qInfo("first change: %lld ms", timer.elapsed());
            while (QFileInfo(journal.fileName()).size() == 0)
                QTest::qWait(1);
            qInfo("first change in the journal: %lld ms", timer.elapsed());
            QVERIFY(written.wait(60'000));
            qInfo("base on the disk: %lld ms, longest block %lld ms", timer.elapsed(), meter.longest());
        }
        {
            BlockMeter meter;
            timer.start();
            model.setItemLabel(6, QStringLiteral("x"));
            QVERIFY(written.wait(60'000));
            qInfo("another change on the disk: %lld ms, longest block %lld ms", timer.elapsed(), meter.longest());
        }
        {
            timer.start();
            model.addItems(1, document->tracks().front().items);
            const qint64 change = timer.elapsed();
            BlockMeter meter;
            QVERIFY(written.wait(60'000));
            qInfo("100,000 items added in %lld ms, on the disk: %lld ms, longest block %lld ms", change,
                  timer.elapsed(), meter.longest());
        }
        {
            model.addDocument(PreparedDocument(*document));
            BlockMeter meter;
            timer.start();
            QVERIFY(written.wait(60'000));
            qInfo("a million items added, on the disk: %lld ms, longest block %lld ms", timer.elapsed(),
                  meter.longest());
        }
        timer.start();
        QVERIFY(readJournal(journal.fileName()));
        qInfo("recovered in %lld ms", timer.elapsed());
    }

    void aMillionItemsWithoutABase()
    {
        const QTemporaryDir folder;
        StandardTimelineModel model;
        model.setDocument(*manyItems());
        Journal journal(model, folder.filePath(QStringLiteral("a.journal")));
        QSignalSpy written(&journal, &Journal::written);
        journal.start(nullptr, {});
        model.setItemLabel(5, QStringLiteral("x"));
        BlockMeter meter;
        QElapsedTimer timer;
        timer.start();
        while (QFileInfo(journal.fileName()).size() == 0)
            QTest::qWait(1);
        qInfo("first change in the journal: %lld ms", timer.elapsed());
        QVERIFY(written.wait(60'000));
        qInfo("base on the disk: %lld ms, longest block %lld ms", timer.elapsed(), meter.longest());
    }
};

QTEST_GUILESS_MAIN(BenchJournal)
#include "bench_journal.moc"
