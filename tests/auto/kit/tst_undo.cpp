#include "random_user.h"
#include "support/input.h"

#include <VeskTimeline/item_delegate.h>
#include <VeskTimeline/timeline_view.h>
#include <VeskTimeline/timeline_view_drag_handler.h>
#include <VeskTimelineKit/labelled_item.h>
#include <VeskTimelineKit/standard_timeline_model.h>

#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>
#include <QUndoStack>

#include <algorithm>
#include <functional>

using namespace VeskTimeline;
using namespace VeskTimeline::Kit;
using namespace RandomUse;

namespace {

// The offscreen platform remarks on every window that limits its size.
const QRegularExpression unexpectedWarning("^(?!This plugin does not support propagateSizeHints)");

/// All that undo is to restore, as text.
QString stateOf(const Model& model, const Track& track)
{
    QString text = QString("[%1<%2 ").arg(track.id()).arg(track.parentId()) + textOf(model, track);
    for (const TrackPtr& child : track.tracks())
        text += stateOf(model, *child);
    return text + "]\n";
}

QString stateOf(const Model& model)
{
    return stateOf(model, *model.rootTrack());
}

int checkCaches(const Model& model, const Track& track)
{
    int items = track.itemCount();
    if (model.m_trackCache.at(track.id()) != &track)
        return -1000000;
    for (const ItemPtr& item : track.items()) {
        if (model.m_itemCache.at(item->id()) != item.get())
            return -1000000;
    }
    for (const TrackPtr& child : track.tracks())
        items += checkCaches(model, *child);
    return items;
}

void verifyConsistent(const Model& model)
{
    QCOMPARE(checkCaches(model, *model.rootTrack()), static_cast<int>(model.m_itemCache.size()));
    QCOMPARE(countTracks(*model.rootTrack()), static_cast<int>(model.m_trackCache.size()));
    for (const auto& [trackId, track] : model.m_trackCache) {
        const QVector<int> below = track->itemIds(true, false);
        for (const int copy : track->copyItemIds())
            QVERIFY(below.contains(copy));
    }
    std::optional<TimeSpan> span;
    for (const auto& [id, item] : model.m_itemCache) {
        const qint64 end = item->startTime() + std::max(item->duration(), 0);
        span = TimeSpan{std::min(span ? span->start : item->startTime(), item->startTime()),
                        std::max(span ? span->end : end, end)};
    }
    QCOMPARE(model.span().has_value(), span.has_value());
    QVERIFY(!span || (model.span()->start == span->start && model.span()->end == span->end));
    // Nobody who goes by the signals has missed anything.
    QCOMPARE(model.seenItems().size(), static_cast<int>(model.m_itemCache.size()));
    for (const auto& [id, item] : model.m_itemCache)
        QCOMPARE(model.seenItems().value(id), textOf(*item));
    for (const auto& [id, track] : model.m_trackCache) {
        if (model.isWatchingTracks() && track != model.rootTrack())
            QCOMPARE(model.seenTracks().value(id), textOf(model, *track));
    }
}

QStringList texts(const QUndoStack& stack)
{
    QStringList list;
    for (int i = 0; i < stack.count(); ++i)
        list.append(stack.text(i));
    return list;
}

/// A view with one item of a second's length each half minute, on two tracks, an hour across.
struct Scene
{
    Scene()
    {
        Document document;
        for (int i = 0; i < 10; ++i)
            document.track({"A"}).items.push_back({QString::number(i), i * 300'000, 120'000, {}});
        document.track({"B"});
        view.setModel(&model);
        view.setItemDelegate(new ItemDelegate(&view));
        model.setDocument(document);
        view.setRange(0, 3'600'000);
        view.resize(1200, 400);
        view.show();
        QCoreApplication::processEvents();
    }

    QPoint at(qint64 time, int row = 0) const
    {
        return {view.toPixel(time), view.visualRect(model.index(row, 1)).center().y()};
    }

    TimelineView view;
    Model model{&view};
    QUndoStack& stack = *model.undoStack();
};

} // namespace

class TestUndo : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(unexpectedWarning); }

    void randomOperationsAreUndoneAndRedoneStepByStep_data()
    {
        QTest::addColumn<quint32>("seed");
        for (quint32 seed = 1; seed <= 25; ++seed)
            QTest::addRow("seed %u", seed) << seed;
    }
    void randomOperationsAreUndoneAndRedoneStepByStep()
    {
        QFETCH(quint32, seed);
        Model model;
        model.setDocument(sampleDocument());
        RandomUser user(model, seed);
        QUndoStack& stack = *model.undoStack();
        QStringList states{stateOf(model)};
        const auto remember = [&] {
            states.resize(stack.index());
            states.append(stateOf(model));
        };
        const auto compare = [&] {
            QCOMPARE(stateOf(model), states.at(stack.index()));
            verifyConsistent(model);
        };
        // One act may be several steps, the first of which may become one with that of the act before.
        bool isActing = false;
        connect(&stack, &QUndoStack::indexChanged, &model, [&] {
            if (isActing)
                remember();
        });
        for (int i = 0; i < 60; ++i) {
            isActing = true;
            user.act();
            isActing = false;
            QCOMPARE(states.size(), stack.count() + 1);
            // Back and forth in between, at times with something else done where it goes back to.
            for (int back = user.number(6) == 0 ? user.number(5) : 0; back > 0 && stack.canUndo(); --back) {
                stack.undo();
                compare();
            }
            for (const bool isForth = user.number(3) != 0; isForth && stack.canRedo();) {
                stack.redo();
                compare();
            }
            verifyConsistent(model);
        }
        QVERIFY(stack.count() > 20);
        for (int round = 0; round < 2; ++round) {
            while (stack.canUndo()) {
                stack.undo();
                compare();
            }
            while (stack.canRedo()) {
                stack.redo();
                compare();
            }
        }
    }

    void manySingleChangesOfOneGestureAreUndoneTogether_data()
    {
        QTest::addColumn<quint32>("seed");
        for (quint32 seed = 1; seed <= 3; ++seed)
            QTest::addRow("seed %u", seed) << seed;
    }
    void manySingleChangesOfOneGestureAreUndoneTogether()
    {
        QFETCH(quint32, seed);
        constexpr int count = 3000;
        QRandomGenerator random(seed);
        Document document;
        // Many of them start together, and some tracks hold most of them.
        for (int i = 0; i < count; ++i)
            document.track({QString::number(random.bounded(1 + random.bounded(4)))})
                .items.push_back({QString::number(i), random.bounded(200) * 10, i % 7 - 1, {}});
        Model model;
        model.setWatchingTracks(false);
        model.setDocument(document);
        QUndoStack& stack = *model.undoStack();
        QStringList states{stateOf(model)};
        const auto anyTime = [&] { return random.bounded(200) * 10; };
        const auto anyTrack = [&] { return 1 + static_cast<int>(random.bounded(model.trackCount())); };
        for (int round = 0; round < 4; ++round) {
            model.finishGesture();
            QVector<int> ids = model.itemIds();
            std::shuffle(ids.begin(), ids.end(), random);
            ids.resize(ids.size() * 2 / 3);
            QVector<ItemTimes> times;
            for (const int id : std::as_const(ids)) {
                if (round == 0)
                    model.setItemStartTime(id, anyTime());
                else if (round == 1)
                    model.moveItemToTrack(id, anyTrack(), anyTime());
                else if (round == 2)
                    times.append({id, anyTime(), id % 5 == 0 ? 5'000'000'000 : 7});
                else
                    model.removeItem(id);
            }
            if (round == 2)
                model.retimeItems(times);
            states.append(stateOf(model));
            QCOMPARE(stack.count(), round + 1);
            verifyConsistent(model);
        }
        for (int turn = 0; turn < 2; ++turn) {
            for (int i = 3; i >= 0; --i) {
                stack.undo();
                QCOMPARE(stateOf(model), states.at(i));
                verifyConsistent(model);
            }
            for (int i = 1; i <= 4; ++i) {
                stack.redo();
                QCOMPARE(stateOf(model), states.at(i));
                verifyConsistent(model);
            }
        }
    }

    void announcedChangesComeOutAsSingleOnes_data()
    {
        QTest::addColumn<quint32>("seed");
        for (quint32 seed = 1; seed <= 12; ++seed)
            QTest::addRow("seed %u", seed) << seed;
    }
    void announcedChangesComeOutAsSingleOnes()
    {
        QFETCH(quint32, seed);
        constexpr int count = 400;
        QRandomGenerator random(seed);
        Document document;
        document.track({"A"}).color = Qt::red;
        for (const QStringList& path : {QStringList{"A"}, {"A", "B"}, {"A", "B", "C"}, {"D"}}) {
            for (int i = 0; i < count / 4; ++i)
                document.track(path).items.push_back(
                    {QString::number(i), random.bounded(20) * 10, 5, random.bounded(2) ? QColor() : QColor(Qt::blue)});
        }
        Model model;
        Model plain;
        for (Model* const one : {&model, &plain}) {
            one->setDocument(document);
            one->setCopyItemIds(1, {count / 4, count / 4 + 1, count / 2, count / 2 + 1});
        }
        QStringList states{stateOf(model)};
        QSignalSpy changed(&model, &StandardTimelineModel::itemsChanged);
        QSignalSpy removed(&model, &StandardTimelineModel::itemsRemoved);
        for (int round = 0; round < 6; ++round) {
            QVector<int> ids = plain.itemIds();
            std::shuffle(ids.begin(), ids.end(), random);
            ids.resize(ids.size() * 2 / 3);
            QVERIFY(ids.size() > 52);
            const int offset = (random.bounded(5) - 2) * 10;
            const auto trackFor = [round](int id) { return 1 + (id + round) % 4; };
            const auto offsetFor = [offset](int id) { return offset * (id % 3 - 1); };
            // Single moves count items that others then put back in their place, too.
            const bool isCountSure = std::none_of(ids.begin(), ids.end(), [&](int id) {
                return round % 2 == 1 && offsetFor(id) == 0 && plain.item(id)->parentTrackId() == trackFor(id);
            });
            const auto act = [&](StandardTimelineModel& one, int id) {
                const qint64 start = one.item(id)->startTime();
                if (round == 5)
                    one.removeItem(id);
                else if (round % 2 == 0)
                    one.setItemStartTime(id, start + offset);
                else
                    one.moveItemToTrack(id, trackFor(id), start + offsetFor(id));
            };
            for (Model* const one : {&model, &plain})
                one->finishGesture();
            const int steps = model.undoStack()->count();
            changed.clear();
            removed.clear();
            model.beginItemChanges(static_cast<int>(ids.size()));
            for (const int id : std::as_const(ids))
                act(model, id);
            QCOMPARE(stateOf(model), states.last());
            QCOMPARE(changed.count() + removed.count(), 0);
            model.endItemChanges();
            for (const int id : std::as_const(ids))
                act(plain, id);
            QCOMPARE(stateOf(model), stateOf(plain));
            QCOMPARE(model.undoStack()->count(), plain.undoStack()->count());
            verifyConsistent(model);
            if (model.undoStack()->count() == steps)
                continue;
            if (isCountSure)
                QCOMPARE(model.undoStack()->undoText(), plain.undoStack()->undoText());
            states.append(stateOf(model));
            QCOMPARE(changed.count() + removed.count(), 1);
        }
        QVERIFY(states.size() > 4);
        for (int turn = 0; turn < 2; ++turn) {
            for (qsizetype i = states.size() - 2; i >= 0; --i) {
                model.undoStack()->undo();
                QCOMPARE(stateOf(model), states.at(i));
                verifyConsistent(model);
            }
            for (qsizetype i = 1; i < states.size(); ++i) {
                model.undoStack()->redo();
                QCOMPARE(stateOf(model), states.at(i));
                verifyConsistent(model);
            }
        }
    }

    void whatIsAskedAmongAnnouncedChangesIsDoneInItsTurn()
    {
        Document document;
        for (int i = 0; i < 100; ++i)
            document.track({"A"}).items.push_back({QString::number(i), i * 10, 5, {}});
        document.track({"B"});
        Model model;
        Model plain;
        const auto act = [](Model& one) {
            for (int id = 0; id < 60; ++id)
                one.setItemStartTime(id, 1000 - id);
            one.setItemStartTime(3, 7);     // a second time
            one.moveItemToTrack(4, 2, 900); // the same kind
            one.setItemDuration(5, 77);     // another kind
            one.removeItem(6);
            one.addItem(2, {"new", 1, 1, {}});
            one.removeItem(7);
        };
        for (Model* const one : {&model, &plain})
            one->setDocument(document);
        model.beginItemChanges(100);
        model.beginItemChanges(2);
        act(model);
        model.endItemChanges();
        QVERIFY_EXCEPTION_THROWN(model.removeItem(7), QString);
        QVERIFY_EXCEPTION_THROWN(model.moveItemToTrack(8, 99, 0), QString);
        model.endItemChanges();
        act(plain);
        QCOMPARE(stateOf(model), stateOf(plain));
        QCOMPARE(texts(*model.undoStack()), texts(*plain.undoStack()));
        // One too many does no harm.
        model.endItemChanges();
        model.removeItem(8);
        QVERIFY(!model.hasItem(8));
    }

    void fewAnnouncedChangesAreMadeAtOnce()
    {
        Model model;
        model.setDocument(sampleDocument());
        model.beginItemChanges(2);
        model.removeItem(0);
        QVERIFY(!model.hasItem(0));
        model.setItemStartTime(1, 500);
        QCOMPARE(model.item(1)->startTime(), 500);
        model.endItemChanges();
        QCOMPARE(model.undoStack()->count(), 2);
    }

    void anotherDocumentForgetsWhatWasPutOff()
    {
        Model model;
        model.setDocument(sampleDocument());
        model.beginItemChanges(100);
        model.removeItem(0);
        model.setDocument(sampleDocument());
        model.endItemChanges();
        QVERIFY(model.hasItem(0));
        QCOMPARE(model.undoStack()->count(), 0);
    }

    void aHeldKeyOnManyItemsIsTakenBackAtOnce()
    {
        Document document;
        for (int i = 0; i < 100; ++i)
            document.track({QString::number(i % 3)}).items.push_back({QString::number(i), i % 10, 5, {}});
        Model model;
        model.setDocument(document);
        const QString before = stateOf(model);
        // All that happens before the event loop is one gesture.
        for (int repeat = 0; repeat < 5; ++repeat) {
            model.beginItemChanges(60);
            for (int id = 0; id < 60; ++id)
                model.setItemStartTime(id, model.item(id)->startTime() + 3);
            model.endItemChanges();
        }
        const QString after = stateOf(model);
        QCOMPARE(texts(*model.undoStack()), QStringList{"Move 60 items"});
        model.undoStack()->undo();
        QCOMPARE(stateOf(model), before);
        model.undoStack()->redo();
        QCOMPARE(stateOf(model), after);
        verifyConsistent(model);
    }

    void aDocumentOfTracksThatAreThereIsAddedToThem()
    {
        Model model;
        model.setDocument(sampleDocument());
        model.setTrackColor(1, Qt::green);
        model.undoStack()->clear();
        const QString before = stateOf(model);
        Document document;
        document.track({"C", "below"}).items = {{"long", 0, 5'000'000'000, {}}};
        document.track({"A"}).items = {{"a", 5, 1, {}}, {"first", -5, 1, {}}};
        document.track({"new", "D"}).items = {{"d", 5, 1, {}}};
        QSignalSpy added(&model, &StandardTimelineModel::itemsAdded);
        QSignalSpy changed(&model, &StandardTimelineModel::itemsChanged);
        QSignalSpy inserted(&model, &QAbstractItemModel::rowsInserted);
        QSignalSpy data(&model, &QAbstractItemModel::dataChanged);
        QSignalSpy resets(&model, &QAbstractItemModel::modelReset);
        model.addDocument(PreparedDocument(document));
        QCOMPARE(added.count(), 1);
        QCOMPARE(changed.count(), 0);
        QCOMPARE(resets.count(), 0);
        // What is new comes with all that is below it.
        QCOMPARE(inserted.count(), 2);
        QSet<quintptr> rows;
        for (const QList<QVariant>& one : std::as_const(data))
            rows.insert(one.at(0).toModelIndex().internalId());
        QCOMPARE(rows.size(), data.count());
        const QString after = stateOf(model);
        QCOMPARE(model.trackCount(), 6);
        QCOMPARE(model.itemIds().size(), 11);
        const Track& first = *model.track(1);
        QCOMPARE(model.itemLabel(first.items().front()->id()), "first");
        QCOMPARE(model.itemLabel(first.items().back()->id()), "a");
        QCOMPARE(first.items().back()->color(), QColor(Qt::green));
        QCOMPARE(texts(*model.undoStack()), QStringList("Add 3 tracks"));
        verifyConsistent(model);
        model.undoStack()->undo();
        QCOMPARE(stateOf(model), before);
        verifyConsistent(model);
        model.undoStack()->redo();
        QCOMPARE(stateOf(model), after);
        verifyConsistent(model);
        // Long items of both are told apart. Now all tracks are there.
        model.addDocument(PreparedDocument(document));
        QCOMPARE(model.undoStack()->undoText(), "Add 4 items");
        QCOMPARE(model.document().tracks().at(3).items.size(), std::size_t(2));
    }

    void operationsOnSeveralItemsAreOneStep()
    {
        Model model;
        model.setDocument(sampleDocument());
        const int track = model.addTrack("New");
        const QVector<int> ids = model.addItems(track, {{"x", 0, 10, {}}, {"y", 20, 10, {}}, {"z", 40, -1, {}}});
        QUndoStack& stack = *model.undoStack();
        stack.clear();
        QSignalSpy changed(&model, &StandardTimelineModel::itemsChanged);
        model.setItemsLabel(ids, "same");
        model.setItemsDescription(ids, "text");
        model.setItemsAttribute(ids, "a", "1");
        model.renameItemsAttribute(ids, "a", "b");
        QCOMPARE(model.itemAttributes(ids.last()), (QMap<QString, QString>{{"b", "1"}}));
        model.removeItemsAttribute(ids, "b");
        QCOMPARE(model.retimeItems({{ids[0], 50, 10}, {ids[1], 60, 10}}), (QVector<int>{ids[0], ids[1]}));
        QCOMPARE(model.track(track)->itemIds(false, false), (QVector<int>{ids[2], ids[0], ids[1]}));
        model.retimeItems({{ids[0], 50, 20}, {ids[1], 60, 20}});
        model.moveItemsToTrack(ids, 1);
        QCOMPARE(model.track(track)->itemCount(), 0);
        QCOMPARE(model.item(ids[1])->color(), model.colorOfTrack(1));
        QCOMPARE(texts(stack), (QStringList{"Rename 3 items", "Describe 3 items", "Change attribute of 3 items",
                                            "Change attribute of 3 items", "Change attribute of 3 items",
                                            "Move 2 items", "Resize 2 items", "Move 3 items"}));
        QCOMPARE(changed.size(), 8);
        stack.undo();
        QCOMPARE(model.track(track)->itemIds(false, false), (QVector<int>{ids[2], ids[0], ids[1]}));
        verifyConsistent(model);
    }

    void aLongItemCountsOnceInTheTexts()
    {
        Model model;
        model.setDocument(sampleDocument());
        const QVector<int> pieces = model.addItems(1, {{"long", 0, 5'000'000'000, {}}});
        QCOMPARE(pieces.size(), 3);
        model.setItemsLabel(pieces, "longer");
        model.setItemsLabel(pieces + QVector<int>{0}, "longest");
        model.moveItemsToTrack({pieces[1]}, 3);
        model.copyToClipboard(pieces);
        model.pasteFromClipboard(0);
        for (const int id : pieces)
            model.removeItem(id);
        QCOMPARE(texts(*model.undoStack()),
                 (QStringList{"Add item", "Rename item", "Rename 2 items", "Move item", "Paste item", "Delete item"}));
    }

    void addingOneTrackSaysSo()
    {
        Model model;
        model.setDocument(sampleDocument());
        Document document;
        document.track({"A", "more"}).items = {{"x", 0, 1, {}}};
        model.addDocument(document);
        document.track({"A", "more"}).items = {{"y", 0, 1, {}}};
        model.addDocument(document);
        model.addDocument(Document());
        QCOMPARE(texts(*model.undoStack()), (QStringList{"Add track", "Add item"}));
    }

    void renamingOntoAnotherAttributeIsRefused()
    {
        Model model;
        model.setDocument(sampleDocument());
        model.setItemAttributes(0, {{"a", "1"}});
        model.setItemAttributes(1, {{"a", "1"}, {"b", "2"}});
        const int steps = model.undoStack()->count();
        QVERIFY_EXCEPTION_THROWN(model.renameItemsAttribute({0, 1}, "a", "b"), QString);
        QCOMPARE(model.undoStack()->count(), steps);
        QCOMPARE(model.itemAttributes(0), (QMap<QString, QString>{{"a", "1"}}));
    }

    void everyOperationIsOneStepWithItsText()
    {
        Model model;
        model.setDocument(sampleDocument());
        QUndoStack& stack = *model.undoStack();
        const int added = model.addTrack("New");
        model.insertTrack(0, 0, "First");
        model.moveTrack(added, 1, 0);
        model.renameTrack(added, "Old");
        model.setTrackColor(added, Qt::blue);
        model.setCopyItemIds(1, {3});
        const int item = model.addItem(added, {"x", 5, 6, {}});
        model.addItems(added, {{"y", 5, 6, {}}, {"z", 5, 6, {}}});
        model.retimeItem(item, 5, 7);
        model.retimeItem(item, 6, 7);
        model.setItemLabel(item, "y");
        model.setItemDescription(item, "text");
        model.setItemAttributes(item, {{"a", "b"}});
        model.setItemColor(item, Qt::green);
        model.setItemsLocked({0, 1, item}, true);
        model.setItemLocked(item, false);
        model.copyToClipboard({item});
        model.pasteFromClipboard(50);
        model.cutToClipboard({0, 1});
        model.removeItems({2, item});
        model.removeTrack(added);
        QCOMPARE(texts(stack), (QStringList{"Add track “New”",
                                            "Add track “First”",
                                            "Move track “New”",
                                            "Rename track “New”",
                                            "Change colour of track “Old”",
                                            "Change copies on track “A”",
                                            "Add item",
                                            "Add 2 items",
                                            "Resize item",
                                            "Move item",
                                            "Rename item",
                                            "Describe item",
                                            "Change attribute of item",
                                            "Change colour of item",
                                            "Lock 3 items",
                                            "Unlock item",
                                            "Paste item",
                                            "Cut 2 items",
                                            "Delete 2 items",
                                            "Delete track “Old”"}));
    }

    void whatChangesNothingIsNoStepAndTellsNobody()
    {
        Model model;
        model.setDocument(sampleDocument());
        QSignalSpy changes(&model, &StandardTimelineModel::itemsChanged);
        QSignalSpy added(&model, &StandardTimelineModel::itemsAdded);
        QSignalSpy removed(&model, &StandardTimelineModel::itemsRemoved);
        QSignalSpy data(&model, &QAbstractItemModel::dataChanged);
        model.renameTrack(1, "A");
        model.setTrackColor(1, QColor());
        model.moveTrack(1, 0, 0);
        model.setCopyItemIds(1, {});
        model.addItems(1, {});
        model.removeItems({});
        model.retimeItem(0, 0, 10);
        model.setItemStartTime(0, 0);
        model.setItemDuration(0, 10);
        model.setItemLabel(0, "a0");
        model.setItemLocked(0, false);
        model.setItemDescription(0, "");
        model.setItemAttributes(0, {});
        model.setItemColor(0, QColor());
        model.removeItemsAttribute({0, 1}, "none");
        model.renameItemsAttribute({0, 1}, "none", "other");
        model.retimeItems({});
        model.moveItemsToTrack({0, 1}, 1);
        model.moveItemToTrack(0, 1, 0);
        model.cutToClipboard({});
        model.addDocument(Document());
        model.pasteFromClipboard(7);
        QCOMPARE(model.undoStack()->count(), 0);
        QCOMPARE(changes.count(), 0);
        QCOMPARE(added.count(), 0);
        QCOMPARE(removed.count(), 0);
        QCOMPARE(data.count(), 0);
    }

    void unknownIdsThrowBeforeAnythingHasChanged()
    {
        Model model;
        model.setDocument(sampleDocument());
        const QString before = stateOf(model);
        const QList<std::function<void()>> calls{
            [&] { model.addTrack("x", 99); }, [&] { model.insertTrack(99, 0, "x"); },
            [&] { model.moveTrack(99, 1, 0); }, [&] { model.moveTrack(1, 99, 0); }, [&] { model.moveTrack(1, 2, 0); },
            [&] { model.moveTrack(1, 1, 0); }, [&] { model.moveTrack(0, 1, 0); }, [&] { model.renameTrack(99, "x"); },
            [&] { model.renameTrack(0, "x"); }, [&] { model.setTrackColor(0, Qt::red); },
            [&] { model.removeTrack(99); }, [&] { model.setCopyItemIds(99, {1}); },
            [&] {
                model.setCopyItemIds(1, {0, 99});
            },
            // Neither above it nor its own.
            [&] { model.setCopyItemIds(3, {0}); },
            [&] {
                model.retimeItems({{0, 1, 1}, {99, 1, 1}});
            },
            [&] {
                model.moveItemsToTrack({0, 99}, 3);
            },
            [&] { model.moveItemsToTrack({0}, 99); },
            [&] {
                model.setItemsAttribute({0, 99}, "a", "b");
            },
            [&] {
                model.renameItemsAttribute({0, 99}, "a", "b");
            },
            [&] {
                model.cutToClipboard({0, 99});
            },
            [&] {
                model.addItem(99, {"x", 0, 0, {}});
            },
            [&] {
                model.removeItems({0, 99});
            },
            [&] { model.removeItem(99); }, [&] { model.retimeItem(99, 0, 0); },
            [&] {
                model.setItemsLocked({0, 99}, true);
            },
            [&] {
                model.setItemsColor({0, 99}, Qt::red);
            },
            [&] { model.moveItemToTrack(0, 99, 5); }, [&] { model.moveItemToTrack(99, 1, 5); }};
        for (const auto& call : calls)
            QVERIFY_EXCEPTION_THROWN(call(), QString);
        QCOMPARE(stateOf(model), before);
        QCOMPARE(model.undoStack()->count(), 0);
    }

    void undoBringsBackTheSameObjects()
    {
        Model model;
        model.setDocument(sampleDocument());
        const Item* const item = std::as_const(model).item(3);
        const Track* const track = std::as_const(model).track(2);
        model.removeTrack(1);
        QVERIFY_EXCEPTION_THROWN(model.track(2), QString);
        model.undoStack()->undo();
        QCOMPARE(std::as_const(model).item(3), item);
        QCOMPARE(std::as_const(model).track(2), track);
    }

    void itemsOfOneStartComeBackInTheirOrder()
    {
        Model model;
        Document document;
        for (int i = 0; i < 6; ++i)
            document.track({"A"}).items.push_back({QString::number(i), 10, 1, {}});
        model.setDocument(document);
        const QString before = stateOf(model);
        for (const int id : {4, 0, 2}) {
            model.setItemStartTime(id, 3);
            model.setItemStartTime(id, 10);
            model.finishGesture();
        }
        const QString after = stateOf(model);
        QVERIFY(after != before);
        model.undoStack()->setIndex(0);
        QCOMPARE(stateOf(model), before);
        model.undoStack()->setIndex(model.undoStack()->count());
        QCOMPARE(stateOf(model), after);
    }

    void bulkAdditionIsOneSignalForEachTrack()
    {
        Model model;
        model.setDocument(sampleDocument());
        QSignalSpy data(&model, &QAbstractItemModel::dataChanged);
        QSignalSpy added(&model, &StandardTimelineModel::itemsAdded);
        const QVector<int> ids = model.addItems(3, {{"z", 9, 1, {}}, {"x", 7, 1, {}}, {"y", 7, 1, {}}});
        QCOMPARE(ids, (QVector<int>{7, 5, 6}));
        QCOMPARE(data.count(), 1);
        QCOMPARE(data.at(0).at(0).toModelIndex(), model.index(1, 0));
        QCOMPARE(data.at(0).at(1).toModelIndex(), model.index(1, 1));
        QCOMPARE(added.count(), 1);
        QCOMPARE(added.at(0).at(0).value<QVector<int>>(), (QVector<int>{5, 6, 7}));
        QStringList labels;
        for (const ItemPtr& item : model.track(3)->items())
            labels.append(model.itemLabel(item->id()));
        QCOMPARE(labels, (QStringList{"c", "x", "y", "z"}));
    }

    void aMovedTrackEmitsTheMoveSignals()
    {
        Model model;
        model.setDocument(sampleDocument());
        QSignalSpy moves(&model, &QAbstractItemModel::rowsMoved);
        model.moveTrack(2, 0, 1);
        QCOMPARE(moves.count(), 1);
        QCOMPARE(model.track(2)->parentId(), 0);
        QCOMPARE(model.rootTrack()->rowOfTrack(2), 1);
        model.moveTrack(1, 0, 2);
        QCOMPARE(model.rootTrack()->rowOfTrack(1), 2);
        model.moveTrack(1, 0, 0);
        QCOMPARE(model.rootTrack()->rowOfTrack(1), 0);
        model.undoStack()->setIndex(0);
        QCOMPARE(moves.count(), 6);
        QCOMPARE(model.track(2)->parentId(), 1);
    }

    void copiesGoWithTheirItems()
    {
        Model model;
        model.setDocument(sampleDocument());
        model.setCopyItemIds(1, {0, 3});
        model.setCopyItemIds(2, {3});
        const QString before = stateOf(model);
        model.moveItemToTrack(3, 1, 100);
        QCOMPARE(model.track(1)->copyItemIds(), (QSet<int>{0, 3}));
        QCOMPARE(model.track(2)->copyItemIds(), QSet<int>());
        model.undoStack()->undo();
        QCOMPARE(stateOf(model), before);
        model.moveItemToTrack(3, 3, 100);
        QCOMPARE(model.track(1)->copyItemIds(), QSet<int>{0});
        model.undoStack()->undo();
        model.moveTrack(2, 0, 0);
        QCOMPARE(model.track(1)->copyItemIds(), QSet<int>{0});
        QCOMPARE(model.track(2)->copyItemIds(), QSet<int>{3});
        model.undoStack()->undo();
        model.removeItem(3);
        QCOMPARE(model.track(1)->copyItemIds(), QSet<int>{0});
        QCOMPARE(model.track(2)->copyItemIds(), QSet<int>());
        model.undoStack()->undo();
        QCOMPARE(stateOf(model), before);
    }

    void itemsWithoutColourTakeThatOfTheTrackTheyAreOn()
    {
        Model model;
        model.setDocument(sampleDocument());
        model.moveItemToTrack(0, 3, 0);
        QCOMPARE(model.item(0)->color(), StandardTimelineModel::trackColor(2));
        model.setTrackColor(3, Qt::black);
        QCOMPARE(model.item(0)->color(), QColor(Qt::black));
        model.moveItemToTrack(3, 3, 0);
        QCOMPARE(model.item(3)->color(), QColor(Qt::red));
        model.undoStack()->setIndex(0);
        QCOMPARE(model.item(0)->color(), StandardTimelineModel::trackColor(0));
    }

    void oneTurnOfTheEventLoopIsOneStep()
    {
        Model model;
        model.setDocument(sampleDocument());
        for (const int id : {0, 1, 2})
            model.setItemStartTime(id, 50);
        QCOMPARE(texts(*model.undoStack()), QStringList{"Move 3 items"});
        QCoreApplication::processEvents();
        model.setItemStartTime(0, 60);
        QCOMPARE(texts(*model.undoStack()), (QStringList{"Move 3 items", "Move item"}));
        model.removeItem(0);
        model.removeItem(1);
        QCOMPARE(texts(*model.undoStack()), (QStringList{"Move 3 items", "Move item", "Delete 2 items"}));
    }

    void aSavedStateIsNotMergedInto()
    {
        Model model;
        model.setDocument(sampleDocument());
        model.setItemStartTime(0, 50);
        model.undoStack()->setClean();
        model.setItemStartTime(0, 60);
        QCOMPARE(model.undoStack()->count(), 2);
        QVERIFY(!model.undoStack()->isClean());
    }

    void aDocumentAndClearEmptyTheStack()
    {
        Model model;
        model.setDocument(sampleDocument());
        model.removeTrack(1);
        model.setDocument(sampleDocument());
        QCOMPARE(model.undoStack()->count(), 0);
        model.removeTrack(1);
        model.clear();
        QCOMPARE(model.undoStack()->count(), 0);
        QCOMPARE(model.trackCount(), 0);
    }

    void aPasteThatEndsEarlyCanBeUndone()
    {
        Model model;
        model.setDocument(sampleDocument());
        model.copyToClipboard({0, 4});
        model.removeTrack(3);
        const QString before = stateOf(model);
        QVERIFY_EXCEPTION_THROWN(model.pasteFromClipboard(20), QString);
        QCOMPARE(model.undoStack()->undoText(), "Paste item");
        model.undoStack()->undo();
        QCOMPARE(stateOf(model), before);
        verifyConsistent(model);
    }

    void draggingASelectionIsOneStep()
    {
        Scene scene;
        scene.view.selectItems({1, 2, 3}, true);
        const QString before = stateOf(scene.model);
        Input::drag(&scene.view, scene.at(360'000), scene.at(420'000));
        QCOMPARE(texts(scene.stack), QStringList{"Move 3 items"});
        QVERIFY(scene.model.item(1)->startTime() > 300'000);
        scene.stack.undo();
        QCOMPARE(stateOf(scene.model), before);
        QCOMPARE(scene.model.item(1)->startTime(), 300'000);
    }

    void twoDragsAreTwoStepsEvenInOneTurn()
    {
        Scene scene;
        Input::drag(&scene.view, scene.at(360'000), scene.at(420'000));
        Input::drag(&scene.view, scene.at(420'000), scene.at(360'000));
        QCOMPARE(texts(scene.stack), (QStringList{"Move item", "Move item"}));
    }

    void aResizeIsOneStepHoweverLongItTakes()
    {
        Scene scene;
        for (const bool atStart : {false, true}) {
            const QString before = stateOf(scene.model);
            const QPoint edge = scene.at(atStart ? 300'000 : 420'000) + QPoint(atStart ? 2 : -2, 0);
            Input::move(&scene.view, edge);
            Input::press(&scene.view, edge);
            for (int i = 1; i <= 20; ++i) {
                Input::move(&scene.view, edge - QPoint(atStart ? i : -i, 0), Qt::LeftButton);
                QCoreApplication::processEvents();
            }
            Input::release(&scene.view, edge);
            QCOMPARE(texts(scene.stack), QStringList{"Resize item"});
            QCOMPARE(scene.model.item(1)->startTime() < 300'000, atStart);
            scene.stack.undo();
            QCOMPARE(stateOf(scene.model), before);
        }
    }

    void twoResizesOfOneItemAreTwoSteps()
    {
        Scene scene;
        for (int i = 0; i < 2; ++i) {
            const Item& item = *scene.model.item(1);
            const QPoint edge = scene.at(item.startTime() + item.duration()) - QPoint(2, 0);
            Input::move(&scene.view, edge);
            Input::drag(&scene.view, edge, edge + QPoint(12, 0));
        }
        QCOMPARE(texts(scene.stack), (QStringList{"Resize item", "Resize item"}));
    }

    void aResizeBackToWhereItBeganIsNoStep()
    {
        Scene scene;
        const QPoint edge = scene.at(420'000) - QPoint(2, 0);
        scene.model.setSnapEnabled(true);
        scene.model.setSnapStep(60'000);
        Input::move(&scene.view, edge);
        Input::press(&scene.view, edge);
        Input::move(&scene.view, scene.at(490'000), Qt::LeftButton);
        QCOMPARE(scene.stack.count(), 1);
        Input::move(&scene.view, scene.at(430'000), Qt::LeftButton);
        QCOMPARE(scene.model.item(1)->duration(), 120'000);
        QCOMPARE(scene.stack.count(), 0);
        Input::move(&scene.view, scene.at(490'000), Qt::LeftButton);
        Input::release(&scene.view, scene.at(490'000));
        QCOMPARE(texts(scene.stack), QStringList{"Resize item"});
        scene.stack.undo();
        QCOMPARE(scene.model.item(1)->duration(), 120'000);
    }

    void arrowKeysAreOneStepForEachPress()
    {
        Scene scene;
        scene.view.selectItems({1, 2}, true);
        Input::key(scene.view.viewport(), Qt::Key_Right);
        Input::key(scene.view.viewport(), Qt::Key_Right);
        QCOMPARE(texts(scene.stack), (QStringList{"Move 2 items", "Move 2 items"}));
    }

    void aKeyThatIsHeldIsOneStep()
    {
        Scene scene;
        scene.view.selectItems({1, 2}, true);
        for (int i = 0; i < 5; ++i) {
            QKeyEvent event(QEvent::KeyPress, Qt::Key_Right, Qt::NoModifier, QString(), i > 0);
            QApplication::sendEvent(&scene.view, &event);
            QCoreApplication::processEvents();
        }
        QCOMPARE(texts(scene.stack), QStringList{"Move 2 items"});
        QCOMPARE(scene.model.item(1)->startTime(), 325'000);
        scene.stack.undo();
        QCOMPARE(scene.model.item(1)->startTime(), 300'000);
    }

    void deletingASelectionIsOneStep()
    {
        Scene scene;
        const QString before = stateOf(scene.model);
        scene.view.selectItems({7, 1, 2}, true);
        Input::key(scene.view.viewport(), Qt::Key_Delete);
        QCOMPARE(texts(scene.stack), QStringList{"Delete 3 items"});
        scene.stack.undo();
        QCOMPARE(stateOf(scene.model), before);
    }

    void cutAndPasteByKeysAreTwoSteps()
    {
        Scene scene;
        const QString before = stateOf(scene.model);
        scene.view.selectItems({1, 2}, true);
        Input::key(scene.view.viewport(), Qt::Key_X, Qt::ControlModifier);
        Input::key(scene.view.viewport(), Qt::Key_V, Qt::ControlModifier);
        QCOMPARE(texts(scene.stack), (QStringList{"Cut 2 items", "Paste 2 items"}));
        scene.stack.undo();
        scene.stack.undo();
        QCOMPARE(stateOf(scene.model), before);
        scene.stack.redo();
        scene.stack.redo();
        QCOMPARE(scene.model.itemLabel(11), "2");
    }

    void droppingOnAnotherTrackIsOneStep()
    {
        Scene scene;
        const QString before = stateOf(scene.model);
        for (const int id : {1, 2, 3})
            scene.model.moveItemToTrack(id, 2, scene.model.item(id)->startTime());
        QCOMPARE(texts(scene.stack), QStringList{"Move 3 items"});
        scene.stack.undo();
        QCOMPARE(stateOf(scene.model), before);
    }

    void contentsChangedBehindTheStacksBackDoNoHarm()
    {
        Model model;
        model.setDocument(sampleDocument());
        model.setItemStartTime(0, 50);
        static_cast<TimelineModel&>(model).clear();
        model.undoStack()->undo();
        QVERIFY(!model.undoStack()->canRedo());
        QCOMPARE(model.trackCount(), 0);
    }
};

QTEST_MAIN(TestUndo)
#include "tst_undo.moc"
