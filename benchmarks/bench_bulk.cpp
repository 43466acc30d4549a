// What changing a hundred thousand items costs, in one operation and one by one, as views do it.

#include <VeskTimelineKit/standard_timeline_model.h>

#include <QElapsedTimer>
#include <QTest>
#include <QUndoStack>

#include <functional>

using namespace VeskTimeline;
using namespace VeskTimeline::Kit;

namespace {

constexpr int itemCount = 100'000;

Document manyItems(int trackCount, qint64 distance)
{
    Document document;
    for (int i = 0; i < itemCount; ++i)
        document.track({QStringLiteral("Track %1").arg(i % trackCount)})
            .items.push_back({QStringLiteral("Item %1").arg(i), i * distance, 500, {}});
    document.track({QStringLiteral("Target")});
    return document;
}

} // namespace

class BenchBulk : public QObject
{
    Q_OBJECT

    using Change = std::function<void(StandardTimelineModel& model, const QVector<int>& ids)>;

private Q_SLOTS:
    void change_data()
    {
        QTest::addColumn<Change>("change");
        const auto add = [](const char* name, const Change& change) { QTest::newRow(name) << change; };
        add("removeItems", [](auto& model, const auto& ids) { model.removeItems(ids); });
        add("cut", [](auto& model, const auto& ids) { model.cutToClipboard(ids); });
        add("copy and paste", [](auto& model, const auto& ids) {
            model.copyToClipboard(ids);
            model.pasteFromClipboard(0);
        });
        add("setItemsLocked", [](auto& model, const auto& ids) { model.setItemsLocked(ids, true); });
        add("setItemsColor", [](auto& model, const auto& ids) { model.setItemsColor(ids, Qt::red); });
        add("setItemsAttribute", [](auto& model, const auto& ids) {
            model.setItemsAttribute(ids, QStringLiteral("a"), QStringLiteral("b"));
        });
        add("setTrackColor", [](auto& model, const auto&) { model.setTrackColor(1, Qt::red); });
        add("moveItemsToTrack", [](auto& model, const auto& ids) {
            model.moveItemsToTrack(ids, model.rootTrack()->tracks().back()->id());
        });
        add("retimeItems", [](auto& model, const auto& ids) {
            QVector<ItemTimes> times;
            for (const int id : ids)
                times.append({id, model.item(id)->startTime() + 70'000, 400});
            model.retimeItems(times);
        });
        add("removeItem, each", [](auto& model, const auto& ids) {
            for (const int id : ids)
                model.removeItem(id);
        });
        add("moveItemToTrack, each", [](auto& model, const auto& ids) {
            const int target = model.rootTrack()->tracks().back()->id();
            for (const int id : ids)
                model.moveItemToTrack(id, target, model.item(id)->startTime());
        });
        add("setItemStartTime, each", [](auto& model, const auto& ids) {
            for (const int id : ids)
                model.setItemStartTime(id, model.item(id)->startTime() + 5'000);
        });
        add("setItemDuration, each", [](auto& model, const auto& ids) {
            for (const int id : ids)
                model.setItemDuration(id, 700);
        });
    }

    void change()
    {
        QFETCH(Change, change);
        run("1 track", 1, 1000, change);
        run("200 tracks", 200, 1000, change);
        run("1 track, all at once", 1, 0, change);
    }

private:
    static void run(const char* what, int trackCount, qint64 distance, const Change& change)
    {
        StandardTimelineModel model;
        model.setDocument(manyItems(trackCount, distance));
        const QVector<int> ids = model.itemIds();
        QElapsedTimer timer;
        timer.start();
        change(model, ids);
        const qint64 forward = timer.restart();
        model.undoStack()->undo();
        const qint64 undo = timer.restart();
        model.undoStack()->redo();
        qInfo("%-22s %-22s %6lld ms, undo %6lld ms, redo %6lld ms", QTest::currentDataTag(), what, forward, undo,
              timer.elapsed());
    }
};

QTEST_GUILESS_MAIN(BenchBulk)
#include "bench_bulk.moc"
