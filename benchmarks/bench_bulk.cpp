// What changing a hundred thousand of a million items costs, in one operation and one by one, as views do it.

#include <VeskTimelineKit/standard_timeline_model.h>

#include <QElapsedTimer>
#include <QTest>
#include <QUndoStack>

#include <functional>

using namespace VeskTimeline;
using namespace VeskTimeline::Kit;

namespace {

constexpr int itemCount = 1'000'000;
constexpr int changedCount = 100'000;

/// @param distance between the starts of one item and the next; 0: all start at once
Document manyItems(int trackCount, qint64 distance)
{
    Document document;
    for (int i = 0; i < itemCount; ++i)
        document.track({QStringLiteral("Track %1").arg(i % trackCount)})
            .items.push_back({QStringLiteral("Item %1").arg(i), i * distance, 500, {}});
    document.track({QStringLiteral("Target")});
    return document;
}

// Every tenth.
QVector<int> chosenItems(const StandardTimelineModel& model)
{
    QVector<int> ids;
    const QVector<int> all = model.itemIds();
    for (qsizetype i = 0; i < all.size(); i += itemCount / changedCount)
        ids.append(all[i]);
    return ids;
}

int targetOf(const StandardTimelineModel& model)
{
    return model.rootTrack()->tracks().back()->id();
}

std::vector<DocumentItem> newItems(int count)
{
    std::vector<DocumentItem> items;
    items.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i)
        items.push_back({QStringLiteral("New item %1").arg(i), i * 1000LL, 500, {}});
    return items;
}

/// As views announce what they do to a selection.
template <typename Body>
void forEach(StandardTimelineModel& model, const QVector<int>& ids, const Body& body)
{
    model.beginItemChanges(static_cast<int>(ids.size()));
    for (const int id : ids)
        body(id);
    model.endItemChanges();
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
        add("copy", [](auto& model, const auto& ids) { model.copyToClipboard(ids); });
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
        add("moveItemsToTrack", [](auto& model, const auto& ids) { model.moveItemsToTrack(ids, targetOf(model)); });
        add("retimeItems", [](auto& model, const auto& ids) {
            QVector<ItemTimes> times;
            for (const int id : ids)
                times.append({id, model.item(id)->startTime() + 70'000, 400});
            model.retimeItems(times);
        });
        add("removeItem, each",
            [](auto& model, const auto& ids) { forEach(model, ids, [&](int id) { model.removeItem(id); }); });
        add("moveItemToTrack, each", [](auto& model, const auto& ids) {
            const int target = targetOf(model);
            forEach(model, ids, [&](int id) { model.moveItemToTrack(id, target, model.item(id)->startTime()); });
        });
        add("setItemStartTime, each", [](auto& model, const auto& ids) {
            forEach(model, ids, [&](int id) { model.setItemStartTime(id, model.item(id)->startTime() + 5'000); });
        });
        add("setItemDuration, each",
            [](auto& model, const auto& ids) { forEach(model, ids, [&](int id) { model.setItemDuration(id, 700); }); });
        add("addItem, each", [](auto& model, const auto& ids) {
            const std::vector<DocumentItem> items = newItems(static_cast<int>(ids.size()));
            for (const DocumentItem& item : items)
                model.addItem(targetOf(model), item);
        });
        add("addItems, a million",
            [](auto& model, const auto& /*ids*/) { model.addItems(targetOf(model), newItems(itemCount)); });
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
        const QVector<int> ids = chosenItems(model);
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
