#include <VeskTimelineKit/standard_timeline_model.h>

#include <QRandomGenerator>
#include <QSignalSpy>
#include <QTest>
#include <QUndoStack>

#include <workbench/document_extent.h>

using namespace VeskTimeline;
using namespace VeskTimeline::Kit;
using Workbench::DocumentExtent;

namespace {

constexpr int many = 12'000; // more than are looked up one by one

std::vector<DocumentItem> someItems(QRandomGenerator& random, int count)
{
    std::vector<DocumentItem> items;
    for (int i = 0; i < count; ++i)
        items.push_back({{}, random.bounded(-1000, 1000), random.bounded(-1, 500), {}});
    return items;
}

int anyOf(QRandomGenerator& random, const QVector<int>& ids)
{
    return ids.at(random.bounded(static_cast<int>(ids.size())));
}

int anyTrack(QRandomGenerator& random, const StandardTimelineModel& model)
{
    const Tracks& tracks = model.rootTrack()->tracks();
    const Track& track = *tracks.at(static_cast<std::size_t>(random.bounded(static_cast<int>(tracks.size()))));
    return track.hasTracks() && random.bounded(2) == 0 ? track.tracks().front()->id() : track.id();
}

} // namespace

class TestDocumentExtent : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void nothingIsTheExtentOfNoItems()
    {
        StandardTimelineModel model;
        model.addTrack("A");
        const DocumentExtent extent(&model);
        QVERIFY(!extent.span());
        QCOMPARE(extent.firstItem(), -1);
        QCOMPARE(extent.lastItem(), -1);
    }

    void itsEndsAreThoseOfTheItems()
    {
        StandardTimelineModel model;
        const int track = model.addTrack("A");
        const int below = model.addTrack("B", track);
        const int first = model.addItem(track, {"long", 10, 500, {}});
        model.addItem(below, {"later, and shorter", 20, 5, {}});
        const DocumentExtent extent(&model);
        QCOMPARE(extent.span()->start, 10);
        QCOMPARE(extent.span()->end, 510);
        QCOMPARE(extent.firstItem(), first);
        QCOMPARE(extent.lastItem(), first);
    }

    void itIsAnnouncedOnceAndOnlyWhenItIsAnother()
    {
        StandardTimelineModel model;
        const int track = model.addTrack("A");
        model.addItem(track, {"a", 0, 100, {}});
        const DocumentExtent extent(&model);
        QSignalSpy changed(&extent, &DocumentExtent::changed);
        model.addItem(track, {"inside", 10, 10, {}});
        QVERIFY(!changed.wait(20));
        const int last = model.addItem(track, {"b", 100, 10, {}});
        model.addItem(track, {"c", -5, 10, {}});
        QVERIFY(changed.wait());
        QVERIFY(!changed.wait(20));
        QCOMPARE(changed.count(), 1);
        model.removeItem(last);
        QVERIFY(changed.wait());
        QCOMPARE(extent.span()->end, 100);
    }

    void itIsWhatAWalkThroughAllItemsFinds_data()
    {
        QTest::addColumn<quint32>("seed");
        for (quint32 seed = 1; seed <= 10; ++seed)
            QTest::addRow("seed %u", seed) << seed;
    }
    void itIsWhatAWalkThroughAllItemsFinds()
    {
        QFETCH(quint32, seed);
        QRandomGenerator random(seed);
        StandardTimelineModel model;
        model.addTrack("B", model.addTrack("A"));
        const DocumentExtent extent(&model);
        for (int step = 0; step < 60; ++step) {
            act(random, model);
            if (random.bounded(3) == 0)
                QCoreApplication::processEvents();
            if (random.bounded(3) > 0)
                compare(extent, model);
            if (QTest::currentTestFailed())
                return;
        }
    }

private:
    static void act(QRandomGenerator& random, StandardTimelineModel& model)
    {
        const QVector<int> items = model.itemIds();
        const int what = random.bounded(10);
        if (model.trackCount() == 0 || what == 0)
            model.addTrack("T");
        else if (what < 3 || items.isEmpty())
            model.addItems(anyTrack(random, model), someItems(random, random.bounded(5) == 0 ? many : 5));
        else if (what == 3)
            model.setItemStartTime(anyOf(random, items), random.bounded(-1500, 1500));
        else if (what == 4)
            model.setItemDuration(anyOf(random, items), random.bounded(600));
        else if (what == 5)
            model.removeItems(items.mid(random.bounded(static_cast<int>(items.size()))));
        else if (what == 6)
            model.undoStack()->undo();
        else if (what == 7)
            model.undoStack()->redo();
        else if (what == 8)
            model.removeTrack(anyTrack(random, model));
        else
            model.removeItem(anyOf(random, items));
    }
    static void compare(const DocumentExtent& extent, const StandardTimelineModel& model)
    {
        std::optional<TimeSpan> span;
        for (const int id : model.itemIds()) {
            const Item& item = *model.item(id);
            const qint64 end = item.startTime() + std::max(item.duration(), 0);
            if (!span)
                span = TimeSpan{item.startTime(), end};
            span = TimeSpan{std::min(span->start, item.startTime()), std::max(span->end, end)};
        }
        QCOMPARE(extent.span().has_value(), span.has_value());
        if (!span) {
            QCOMPARE(extent.firstItem(), -1);
            return;
        }
        QCOMPARE(extent.span()->start, span->start);
        QCOMPARE(extent.span()->end, span->end);
        const Item& last = *model.item(extent.lastItem());
        QCOMPARE(model.item(extent.firstItem())->startTime(), span->start);
        QCOMPARE(last.startTime() + std::max(last.duration(), 0), span->end);
    }
};

QTEST_GUILESS_MAIN(TestDocumentExtent)
#include "tst_document_extent.moc"
