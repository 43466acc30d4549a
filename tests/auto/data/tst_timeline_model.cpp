#include "auto/data/model_signals.h"
#include "support/forked_child.h"
#include "support/recording_logger.h"
#include "support/test_model.h"
#include "support/thrown.h"
#include "support/virtual_slot.h"

#include <VeskTimeline/timeline_model.h>

#include <QMetaMethod>
#include <QRegularExpression>
#include <QTest>
#include <QTranslator>

#include <stdexcept>
#include <type_traits>

using namespace VeskTimeline;

namespace {

static_assert(std::is_base_of_v<QAbstractItemModel, TimelineModel>);
static_assert(std::is_same_v<decltype(std::declval<TimelineModel&>().track(0)), Track*>);
static_assert(std::is_same_v<decltype(std::declval<const TimelineModel&>().track(0)), const Track*>);
static_assert(std::is_same_v<decltype(std::declval<TimelineModel&>().item(0)), Item*>);
static_assert(std::is_same_v<decltype(std::declval<const TimelineModel&>().item(0)), const Item*>);
static_assert(std::is_same_v<decltype(std::declval<TimelineModel&>().rootTrack()), Track*>);
static_assert(std::is_same_v<decltype(std::declval<const TimelineModel&>().parentOfTrackId(0)), const Track*>);

/// The numbers and pointers that a model starts with, and what tests need to break it. The model tester does not watch
/// this one.
class OpenModel : public TimelineModel
{
public:
    using TimelineModel::TimelineModel;

    int rowCount(const QModelIndex& parent = QModelIndex()) const override
    {
        return claimedRows < 0 ? TimelineModel::rowCount(parent) : claimedRows;
    }

    int newTrack(const QString& text, int parentTrackId = 0)
    {
        return insertTrack(parentTrackId, -1, std::make_unique<Track>(text))->id();
    }

    /// Below 0: the true count.
    int claimedRows = -1;

    using TimelineModel::addItem;
    using TimelineModel::clearItems;
    using TimelineModel::createIndex;
    using TimelineModel::insertTrack;
    using TimelineModel::m_clipboard;
    using TimelineModel::m_currentItemId;
    using TimelineModel::m_currentTrackId;
    using TimelineModel::m_isEditable;
    using TimelineModel::m_isSnapEnabled;
    using TimelineModel::m_itemCache;
    using TimelineModel::m_itemCaching;
    using TimelineModel::m_logger;
    using TimelineModel::m_minItemDuration;
    using TimelineModel::m_rootTrack;
    using TimelineModel::m_snapStep;
    using TimelineModel::m_snapTol;
    using TimelineModel::m_trackCache;
    using TimelineModel::m_trackCaching;
    using TimelineModel::m_view;
    using TimelineModel::trackOfIndex;
};

/// Gives access to the last virtual operation of the base class, and to those of the model.
struct ModelSlots : TimelineModel
{
    static std::ptrdiff_t lastOfBase() { return VirtualSlot::of(&ModelSlots::resetInternalData); }
    static std::vector<std::ptrdiff_t> inOrder()
    {
        using Model = TimelineModel;
        return VirtualSlot::listOf(static_cast<void (Model::*)(Track&, Item&, qint64)>(&Model::setItemStartTime),
                                   static_cast<void (Model::*)(Item&, qint64)>(&Model::setItemStartTime),
                                   static_cast<void (Model::*)(int, qint64)>(&Model::setItemStartTime),
                                   static_cast<void (Model::*)(Track&, Item&, int)>(&Model::setItemDuration),
                                   static_cast<void (Model::*)(Item&, int)>(&Model::setItemDuration),
                                   static_cast<void (Model::*)(int, int)>(&Model::setItemDuration),
                                   &Model::moveItemToTrack, &Model::removeItem, &Model::removeTrack,
                                   &Model::canDropItem, &Model::canMoveItem, &Model::canResizeItem,
                                   &Model::isItemDragged, &Model::copyToClipboard, &Model::cutToClipboard,
                                   &Model::pasteFromClipboard, &Model::onInsertTrack, &Model::onRemoveTrack);
    }
};

class UpperCaseTrack : public Track
{
public:
    using Track::Track;
    QString text() const override { return Track::text().toUpper(); }
};

class UnknownTranslator : public QTranslator
{
public:
    bool isEmpty() const override { return false; }
    QString translate(const char* context, const char* sourceText, const char*, int) const override
    {
        const bool isOurs =
            qstrcmp(sourceText, "[unknown]") == 0 && qstrcmp(context, TimelineModel::staticMetaObject.className()) == 0;
        return isOurs ? QStringLiteral("[inconnu]") : QString();
    }
};

/// A model with this tree: A (1) with B (2) with C (3); D (4). All on the root.
struct Tree
{
    explicit Tree(OpenModel& model)
        : a(model.newTrack(QStringLiteral("A"))),
          b(model.newTrack(QStringLiteral("B"), a)),
          c(model.newTrack(QStringLiteral("C"), b)),
          d(model.newTrack(QStringLiteral("D")))
    {
    }
    int a;
    int b;
    int c;
    int d;
};

ItemPtr newItem(qint64 start = 0)
{
    return std::make_unique<Item>(start, 10, Qt::red, true);
}

} // namespace

class tst_timeline_model : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".?"))); }

    void newModelHoldsOnlyTheRoot();
    void newModelHasTheDefaultSettings();
    void loggerIsTakenFromTheRootLoggerAtConstruction();
    void viewAndParentAreStored();
    void metaObjectHasTheTwoHooksAndNoSignals();
    void hooksDoNothing();
    void virtualOperationsStandInTheirOrder();

    void idsCountUpSeparately();
    void clearReturnsToTheStart();
    void clearLeavesSettingsCachingAndClipboard();
    void clearItemsKeepsTheTracks();
    void clearItemsReachesOnlyTracksInTheCache();
    void clearItemsSurvivesRemovedSubtrees();

    void trackLooksInTheCache();
    void trackWalksTheTreeWithoutCaching();
    void itemLooksInTheCache();
    void itemWalksTheTreeWithoutCaching();
    void itemIdsAscendWithCachingAndFollowTheTreeWithout();
    void parentOfTrackIdFindsTheParent();
    void rowOfTrackIdNeedsAParentWithItems();
    void trackOfIndexExplainsItsFailure();

    void indexCarriesTheTrackId();
    void parentIsTheRowAbove();
    void rowCountCountsChildTracksInColumnZero();
    void rowCountOfAFailedLookUpIsZeroWithoutLog();
    void columnCountIsTwo();
    void dataAnswersTwoRolesInTwoColumns_data();
    void dataAnswersTwoRolesInTwoColumns();
    void dataTextIsVirtual();
    void emptyTextIsReplacedAndTranslated();
    void dataOfAnUnknownTrackStopsAtAnAssertion();
    void flagsAreSelectableAndEnabled();
    void parentOfTheObjectStaysReachable();

    void indexOfTrackSearchesDepthFirst();
    void indexOfTrackFromIndexSearchesBelowTheIndex();
    void safeSearchesThrow();
    void searchEndsWhenRowsAreMissing();

    void indexLogsAMissingParentTrack();
    void indexLogsAMissingChildTrack();
    void parentLogsAnUnknownTrack();
    void parentLogsAMissingGrandparent();
    void parentLogsAMissingRow();
    void nothingIsLoggedWhenDebugIsOff();

private:
    static constexpr int unknownId = 77;

    void compareLog(RecordingLogger& log, const char* signaturePattern, const QString& text);
};

void tst_timeline_model::newModelHoldsOnlyTheRoot()
{
    TestModel model;
    QCOMPARE(model.rowCount(), 0);
    QCOMPARE(model.columnCount(), 2);
    QCOMPARE(model.track(0), model.rootTrack());
    QCOMPARE(std::as_const(model).track(0), model.rootTrack());
    QCOMPARE(model.rootTrack()->id(), 0);
    QCOMPARE(model.rootTrack()->parentId(), -1);
    QCOMPARE(model.rootTrack()->text(), QString());
    QCOMPARE(model.m_trackCache, (std::map<int, Track*>{{0, model.rootTrack()}}));
    QVERIFY(model.m_itemCache.empty());
    QVERIFY(model.itemIds().isEmpty());
    QVERIFY(model.isClipboardEmpty());
    QCOMPARE(model.nextFreeTrackId(), 1);
    QCOMPARE(model.nextFreeItemId(), 0);
}

void tst_timeline_model::newModelHasTheDefaultSettings()
{
    const OpenModel model(nullptr, nullptr);
    QCOMPARE(model.m_currentTrackId, 1);
    QCOMPARE(model.m_currentItemId, 0);
    QVERIFY(model.isEditable() && model.m_isEditable);
    QVERIFY(!model.isSnapEnabled() && !model.m_isSnapEnabled);
    QCOMPARE(model.snapStep(), 500);
    QCOMPARE(model.m_snapStep, 500);
    QCOMPARE(model.snapTolerance(), 1000);
    QCOMPARE(model.m_snapTol, 1000);
    QCOMPARE(model.minimumDuration(), 0);
    QCOMPARE(model.m_minItemDuration, 0);
    QVERIFY(model.m_itemCaching);
    QVERIFY(model.m_trackCaching);
    QVERIFY(model.m_clipboard.empty());
}

void tst_timeline_model::loggerIsTakenFromTheRootLoggerAtConstruction()
{
    RecordingLogger log;
    const OpenModel model;
    QCOMPARE(model.m_logger.name(), QStringLiteral("Timeline.TimelineModel"));
    QCOMPARE(&model.m_logger, &log.logger(QStringLiteral("Timeline.TimelineModel")));
    QVERIFY(log.entries().empty());
}

void tst_timeline_model::viewAndParentAreStored()
{
    QObject owner;
    char place = 0;
    auto* const view = reinterpret_cast<TimelineView*>(&place); // stored, never used
    const OpenModel model(view, &owner);
    QCOMPARE(model.m_view, view);
    QCOMPARE(static_cast<const QObject&>(model).parent(), &owner);
    QVERIFY(!OpenModel(nullptr, nullptr).m_view);
}

void tst_timeline_model::metaObjectHasTheTwoHooksAndNoSignals()
{
    const QMetaObject& meta = TimelineModel::staticMetaObject;
    QCOMPARE(meta.className(), "VeskTimeline::TimelineModel");
    QCOMPARE(meta.methodCount() - meta.methodOffset(), 2);
    const QMetaMethod insert = meta.method(meta.methodOffset());
    const QMetaMethod remove = meta.method(meta.methodOffset() + 1);
    QCOMPARE(insert.methodSignature(), QByteArray("onInsertTrack(QModelIndex)"));
    QCOMPARE(remove.methodSignature(), QByteArray("onRemoveTrack(QModelIndex)"));
    for (const QMetaMethod& hook : {insert, remove}) {
        QCOMPARE(hook.methodType(), QMetaMethod::Slot);
        QCOMPARE(hook.access(), QMetaMethod::Public);
    }
    QCOMPARE(meta.propertyCount(), meta.propertyOffset());
}

void tst_timeline_model::hooksDoNothing()
{
    RecordingLogger log;
    TestModel model;
    model.newTrack(QStringLiteral("A"));
    ModelSignals emitted(&model);
    model.onInsertTrack(model.index(0, 0));
    model.onRemoveTrack(model.index(0, 0));
    model.onInsertTrack(QModelIndex());
    model.onRemoveTrack(QModelIndex());
    QCOMPARE(model.rowCount(), 1);
    QCOMPARE(emitted.take(), QStringList());
    QVERIFY(log.entries().empty());
}

void tst_timeline_model::virtualOperationsStandInTheirOrder()
{
    const std::vector<std::ptrdiff_t> order = ModelSlots::inOrder();
    QCOMPARE(order, VirtualSlot::consecutive(order.front(), order.size()));
    QVERIFY(order.front() > ModelSlots::lastOfBase());
}

void tst_timeline_model::idsCountUpSeparately()
{
    TestModel model;
    QCOMPARE(model.newTrack(QStringLiteral("A")), 1);
    QCOMPARE(model.newItem(1, 100, 10), 0);
    QCOMPARE(model.newTrack(QStringLiteral("B")), 2);
    QCOMPARE(model.newItem(2, 100, 10), 1);
    model.removeItem(1);
    QCOMPARE(model.newItem(2, 100, 10), 2);
}

void tst_timeline_model::clearReturnsToTheStart()
{
    OpenModel model;
    const Tree tree(model);
    model.addItem(tree.c, newItem(), false);
    model.addItem(0, newItem(), false);
    model.rootTrack()->addCopyItemId(0);
    ModelSignals emitted(&model);

    model.clear();
    QCOMPARE(emitted.take(), QStringList());
    QVERIFY(!model.rootTrack()->hasTracks());
    QVERIFY(!model.rootTrack()->hasItems());
    QVERIFY(!model.rootTrack()->hasCopyItems());
    QCOMPARE(model.rootTrack()->id(), 0);
    QCOMPARE(model.m_trackCache, (std::map<int, Track*>{{0, model.rootTrack()}}));
    QVERIFY(model.m_itemCache.empty());
    QCOMPARE(model.newTrack(QStringLiteral("new")), 1);
    QCOMPARE(model.addItem(1, newItem(), false), 0);
}

void tst_timeline_model::clearLeavesSettingsCachingAndClipboard()
{
    OpenModel model;
    const Tree tree(model);
    model.copyToClipboard({model.addItem(tree.a, newItem(), false)});
    model.setEditable(false);
    model.setSnapEnabled(true);
    model.setSnapStep(250);
    model.setSnapTolerance(3);
    model.setMinimumDuration(2000);
    model.m_itemCaching = false;
    model.m_trackCaching = false;

    model.clear();
    QVERIFY(!model.isEditable());
    QVERIFY(model.isSnapEnabled());
    QCOMPARE(model.snapStep(), 250);
    QCOMPARE(model.snapTolerance(), 3);
    QCOMPARE(model.minimumDuration(), 2000);
    QVERIFY(!model.m_itemCaching);
    QVERIFY(!model.m_trackCaching);
    QVERIFY(!model.isClipboardEmpty());
}

void tst_timeline_model::clearItemsKeepsTheTracks()
{
    OpenModel model;
    const Tree tree(model);
    for (const int track : {0, tree.a, tree.c, tree.d})
        model.addItem(track, newItem(), false);
    model.track(tree.a)->addCopyItemId(2);
    ModelSignals emitted(&model);

    model.clearItems();
    QCOMPARE(emitted.take(), QStringList());
    QVERIFY(model.m_itemCache.empty());
    QCOMPARE(model.m_rootTrack.itemIds(true, false), QVector<int>());
    QCOMPARE(model.m_trackCache.size(), std::size_t(5));
    QCOMPARE(model.track(tree.c)->text(), QStringLiteral("C"));
    QCOMPARE(model.track(tree.a)->copyItemIds(), QSet<int>{2});
    QCOMPARE(model.addItem(tree.a, newItem(), false), 4);
}

void tst_timeline_model::clearItemsReachesOnlyTracksInTheCache()
{
    OpenModel model;
    const Tree tree(model);
    model.addItem(tree.b, newItem(), false);
    model.addItem(tree.c, newItem(), false);
    model.m_trackCaching = false;
    model.m_trackCache.erase(tree.b);
    model.clearItems();
    QCOMPARE(model.m_rootTrack.itemIds(true, false), QVector<int>{0});
    QVERIFY(model.m_itemCache.empty());
}

void tst_timeline_model::clearItemsSurvivesRemovedSubtrees()
{
    OpenModel model;
    const Tree tree(model);
    model.addItem(tree.d, newItem(), false);
    model.removeTrack(tree.a);
    QVERIFY(model.m_trackCache.count(tree.b) == 1);
    model.clearItems();
    QVERIFY(!model.track(tree.d)->hasItems());
}

void tst_timeline_model::trackLooksInTheCache()
{
    OpenModel model;
    const Tree tree(model);
    const OpenModel& constant = model;
    QCOMPARE(model.track(tree.c)->text(), QStringLiteral("C"));
    QCOMPARE(constant.track(tree.c), static_cast<const Track*>(model.track(tree.c)));
    COMPARE_THROWN_STRING(model.track(unknownId), "Model: track with id 77 not found in cache");
    COMPARE_THROWN_STRING(constant.track(unknownId), "Model: const track with id 77 not found in cache");
    COMPARE_THROWN_STRING(model.track(-1), "Model: track with id -1 not found in cache");

    Track elsewhere(QStringLiteral("elsewhere"));
    model.m_trackCache[unknownId] = &elsewhere;
    QCOMPARE(model.track(unknownId), &elsewhere);
    QCOMPARE(constant.track(unknownId), static_cast<const Track*>(&elsewhere));
    model.m_trackCache.erase(tree.c);
    COMPARE_THROWN_STRING(model.track(tree.c), "Model: track with id 3 not found in cache");
}

void tst_timeline_model::trackWalksTheTreeWithoutCaching()
{
    OpenModel model;
    const Tree tree(model);
    model.m_trackCaching = false;
    model.m_trackCache.clear();
    const OpenModel& constant = model;
    QCOMPARE(model.track(0), model.rootTrack());
    QCOMPARE(constant.track(0), constant.rootTrack());
    QCOMPARE(model.track(tree.c)->text(), QStringLiteral("C"));
    QCOMPARE(constant.track(tree.c)->text(), QStringLiteral("C"));
    COMPARE_THROWN_STRING(model.track(unknownId), "Track: track with id 77 not found");
    COMPARE_THROWN_STRING(constant.track(unknownId), "lookup failed!");
}

void tst_timeline_model::itemLooksInTheCache()
{
    OpenModel model;
    const Tree tree(model);
    const int id = model.addItem(tree.c, newItem(123), false);
    const OpenModel& constant = model;
    QCOMPARE(model.item(id)->startTime(), 123);
    QCOMPARE(constant.item(id), static_cast<const Item*>(model.item(id)));
    COMPARE_THROWN_STRING(model.item(unknownId), "Model: item with id 77 not found in cache");
    COMPARE_THROWN_STRING(constant.item(unknownId), "Model: const item with id 77 not found in cache");

    Item elsewhere;
    model.m_itemCache[unknownId] = &elsewhere;
    QCOMPARE(model.item(unknownId), &elsewhere);
    QCOMPARE(constant.item(unknownId), static_cast<const Item*>(&elsewhere));
}

void tst_timeline_model::itemWalksTheTreeWithoutCaching()
{
    OpenModel model;
    const Tree tree(model);
    const int id = model.addItem(tree.c, newItem(123), false);
    model.m_itemCaching = false;
    model.m_itemCache.clear();
    const OpenModel& constant = model;
    QCOMPARE(model.item(id)->startTime(), 123);
    QCOMPARE(constant.item(id)->startTime(), 123);
    COMPARE_THROWN_STRING(model.item(unknownId), "lookup failed!");
    COMPARE_THROWN_STRING(constant.item(unknownId), "_item: item with id 77 not found!");
}

void tst_timeline_model::itemIdsAscendWithCachingAndFollowTheTreeWithout()
{
    OpenModel model;
    const Tree tree(model);
    model.addItem(tree.d, newItem(500), false); // 0
    model.addItem(tree.c, newItem(400), false); // 1
    model.addItem(tree.a, newItem(300), false); // 2
    model.addItem(tree.a, newItem(200), false); // 3
    model.addItem(0, newItem(900), false);      // 4
    QCOMPARE(model.itemIds(), QVector<int>({0, 1, 2, 3, 4}));
    model.m_itemCaching = false;
    QCOMPARE(model.itemIds(), QVector<int>({4, 3, 2, 1, 0}));
}

void tst_timeline_model::parentOfTrackIdFindsTheParent()
{
    OpenModel model;
    const Tree tree(model);
    for (const bool isCaching : {true, false}) {
        model.m_trackCaching = isCaching;
        QCOMPARE(model.parentOfTrackId(tree.a), static_cast<const Track*>(model.rootTrack()));
        QCOMPARE(model.parentOfTrackId(tree.d), static_cast<const Track*>(model.rootTrack()));
        QCOMPARE(model.parentOfTrackId(tree.b)->id(), tree.a);
        QCOMPARE(model.parentOfTrackId(tree.c)->id(), tree.b);
        COMPARE_THROWN_STRING(model.parentOfTrackId(unknownId),
                              isCaching ? "Model: const track with id 77 not found in cache" : "lookup failed!");
        COMPARE_THROWN_STRING(model.parentOfTrackId(0),
                              isCaching ? "Model: const track with id -1 not found in cache" : "lookup failed!");
    }
}

void tst_timeline_model::rowOfTrackIdNeedsAParentWithItems()
{
    TestModel model;
    const int a = model.newTrack(QStringLiteral("A"));
    model.newTrack(QStringLiteral("B"), a);
    const int c = model.newTrack(QStringLiteral("C"), a);
    COMPARE_THROWN_CSTRING(model.rowOfTrackId(c), "parent doesn't have items");
    COMPARE_THROWN_CSTRING(model.rowOfTrackId(a), "parent doesn't have items");
    model.newItem(a, 100, 10);
    QCOMPARE(model.rowOfTrackId(c), 1);
    COMPARE_THROWN_STRING(model.rowOfTrackId(unknownId), "Model: const track with id 77 not found in cache");
    COMPARE_THROWN_STRING(model.rowOfTrackId(0), "Model: const track with id -1 not found in cache");

    Tracks& children = model.track(a)->tracks();
    const TrackPtr taken = std::move(children.back());
    children.pop_back();
    COMPARE_THROWN_CSTRING(model.rowOfTrackId(c), "not found");
}

void tst_timeline_model::trackOfIndexExplainsItsFailure()
{
    OpenModel model;
    const Tree tree(model);
    QCOMPARE(model.trackOfIndex(model.index(1, 1))->id(), tree.d);
    COMPARE_THROWN_STRING(model.trackOfIndex(QModelIndex()), "trackOfIndex: index is invalid!");
    COMPARE_THROWN_STRING(model.trackOfIndex(model.createIndex(0, 0, quintptr(unknownId))),
                          "trackOfIndex: cannot find track by internal id 77: "
                          "Model: const track with id 77 not found in cache");
    model.m_trackCaching = false;
    COMPARE_THROWN_STRING(model.trackOfIndex(model.createIndex(0, 0, quintptr(unknownId))),
                          "trackOfIndex: cannot find track by internal id 77: lookup failed!");
}

void tst_timeline_model::indexCarriesTheTrackId()
{
    OpenModel model;
    const Tree tree(model);
    for (const int column : {0, 1}) {
        const QModelIndex second = model.index(1, column);
        QCOMPARE(second.internalId(), quintptr(tree.d));
        QCOMPARE(second.row(), 1);
        QCOMPARE(second.column(), column);
        QCOMPARE(second.model(), &model);
    }
    const QModelIndex below = model.index(0, 1, model.index(0, 0));
    QCOMPARE(below.internalId(), quintptr(tree.b));
    QCOMPARE(model.index(0, 0, model.index(0, 0, model.index(0, 0))).internalId(), quintptr(tree.c));

    QVERIFY(!model.index(2, 0).isValid());
    QVERIFY(!model.index(-1, 0).isValid());
    QVERIFY(!model.index(0, 2).isValid());
    QVERIFY(!model.index(0, -1).isValid());
    QVERIFY(!model.index(0, 0, model.index(0, 1)).isValid());
    QVERIFY(!model.index(0, 0, model.index(1, 0)).isValid());
}

void tst_timeline_model::parentIsTheRowAbove()
{
    OpenModel model;
    const Tree tree(model);
    const int e = model.newTrack(QStringLiteral("E"), tree.d);
    const int f = model.newTrack(QStringLiteral("F"), e);
    QVERIFY(!model.parent(QModelIndex()).isValid());
    for (const int column : {0, 1}) {
        QVERIFY(!model.parent(model.index(1, column)).isValid());
        const QModelIndex second = model.index(0, column, model.index(1, 0));
        QCOMPARE(second.internalId(), quintptr(e));
        QCOMPARE(model.parent(second), model.index(1, 0));
        const QModelIndex third = model.index(0, column, model.index(0, 0, model.index(1, 0)));
        QCOMPARE(third.internalId(), quintptr(f));
        QCOMPARE(model.parent(third), model.index(0, 0, model.index(1, 0)));
    }
    model.m_trackCaching = false;
    QCOMPARE(model.parent(model.index(0, 1, model.index(1, 0))), model.index(1, 0));
    QVERIFY(!model.parent(model.index(1, 1)).isValid());
}

void tst_timeline_model::rowCountCountsChildTracksInColumnZero()
{
    OpenModel model;
    const Tree tree(model);
    model.newTrack(QStringLiteral("E"), tree.a);
    QCOMPARE(model.rowCount(), 2);
    QCOMPARE(model.rowCount(model.index(0, 0)), 2);
    QCOMPARE(model.rowCount(model.index(0, 1)), 0);
    QCOMPARE(model.rowCount(model.index(0, 0, model.index(0, 0))), 1);
    QCOMPARE(model.rowCount(model.index(1, 0)), 0);
}

void tst_timeline_model::rowCountOfAFailedLookUpIsZeroWithoutLog()
{
    RecordingLogger log;
    const OpenModel model;
    QCOMPARE(model.rowCount(model.createIndex(0, 0, quintptr(unknownId))), 0);
    QVERIFY(log.entries().empty());
}

void tst_timeline_model::columnCountIsTwo()
{
    OpenModel model;
    const Tree tree(model);
    QCOMPARE(model.columnCount(), 2);
    QCOMPARE(model.columnCount(model.index(0, 0)), 2);
    QCOMPARE(model.columnCount(model.index(1, 1)), 2);
}

void tst_timeline_model::dataAnswersTwoRolesInTwoColumns_data()
{
    QTest::addColumn<int>("column");
    QTest::addColumn<int>("role");
    QTest::addColumn<QVariant>("expected");
    QTest::newRow("name") << 0 << int(Qt::DisplayRole) << QVariant(QStringLiteral("D"));
    QTest::newRow("name, user") << 0 << int(Qt::UserRole) << QVariant(4);
    QTest::newRow("time") << 1 << int(Qt::DisplayRole) << QVariant(4);
    QTest::newRow("time, user") << 1 << int(Qt::UserRole) << QVariant(QStringLiteral("of the application"));
    for (const int column : {0, 1}) {
        for (int role = 1; role < 40; ++role)
            QTest::addRow("column %d, role %d", column, role) << column << role << QVariant();
        QTest::addRow("column %d, next user role", column) << column << Qt::UserRole + 1 << QVariant();
        QTest::addRow("column %d, negative role", column) << column << -1 << QVariant();
    }
    QTest::newRow("no such column") << 2 << int(Qt::DisplayRole) << QVariant();
    QTest::newRow("no such column, user") << 2 << int(Qt::UserRole) << QVariant();
}

void tst_timeline_model::dataAnswersTwoRolesInTwoColumns()
{
    QFETCH(const int, column);
    QFETCH(const int, role);
    QFETCH(const QVariant, expected);
    OpenModel model;
    const Tree tree(model);
    model.track(tree.d)->setUserData(QStringLiteral("of the application"));
    const QVariant actual = model.data(model.createIndex(1, column, quintptr(tree.d)), role);
    QCOMPARE(actual, expected);
    QCOMPARE(actual.typeId(), expected.typeId());
    QVERIFY(!model.data(QModelIndex(), role).isValid());
}

void tst_timeline_model::dataTextIsVirtual()
{
    OpenModel model;
    model.insertTrack(0, -1, std::make_unique<UpperCaseTrack>(QStringLiteral("radar")));
    QCOMPARE(model.index(0, 0).data(), QVariant(QStringLiteral("RADAR")));
}

void tst_timeline_model::emptyTextIsReplacedAndTranslated()
{
    TestModel model;
    model.newTrack(QString());
    QCOMPARE(model.index(0, 0).data(), QVariant(QStringLiteral("[unknown]")));
    QCOMPARE(model.index(0, 1).data(), QVariant(1));
    UnknownTranslator translator;
    QCoreApplication::installTranslator(&translator);
    QCOMPARE(model.index(0, 0).data(), QVariant(QStringLiteral("[inconnu]")));
}

void tst_timeline_model::dataOfAnUnknownTrackStopsAtAnAssertion()
{
    const OpenModel model;
    const QModelIndex index = model.createIndex(0, 0, quintptr(unknownId));
    const ChildEnd end = runInChild([&] { return model.data(index).isValid() ? 1 : 0; });
    if (areAssertionsChecked) {
        QVERIFY(end.isAborted);
        QVERIFY2(end.text.contains("ASSERT: \"false\""), end.text.constData());
    } else {
        QCOMPARE(end.result, 0);
    }
    QVERIFY2(!model.data(index, Qt::ToolTipRole).isValid(), "a role without answer asks for no track");
}

void tst_timeline_model::flagsAreSelectableAndEnabled()
{
    OpenModel model;
    const Tree tree(model);
    QCOMPARE(model.flags(QModelIndex()), Qt::ItemFlags(Qt::NoItemFlags));
    QCOMPARE(model.flags(model.index(0, 0)), Qt::ItemIsSelectable | Qt::ItemIsEnabled);
    QCOMPARE(model.flags(model.index(0, 1)), Qt::ItemIsSelectable | Qt::ItemIsEnabled);
}

void tst_timeline_model::parentOfTheObjectStaysReachable()
{
    QObject owner;
    const TimelineModel model(nullptr, &owner);
    QCOMPARE(model.parent(), &owner);
}

void tst_timeline_model::indexOfTrackSearchesDepthFirst()
{
    OpenModel model;
    const Tree tree(model);
    QCOMPARE(model.indexOfTrack(tree.d), model.index(1, 0));
    QCOMPARE(model.indexOfTrack(tree.b), model.index(0, 0, model.index(0, 0)));
    QCOMPARE(model.indexOfTrack(tree.c).internalId(), quintptr(tree.c));
    QCOMPARE(model.indexOfTrack(tree.c).column(), 0);
    QVERIFY(!model.indexOfTrack(0).isValid());
    QVERIFY(!model.indexOfTrack(unknownId).isValid());
    QVERIFY(!model.indexOfTrack(-1).isValid());
}

void tst_timeline_model::indexOfTrackFromIndexSearchesBelowTheIndex()
{
    OpenModel model;
    const Tree tree(model);
    const QModelIndex a = model.index(0, 0);
    QCOMPARE(model.indexOfTrackFromIndex(a, tree.a), a);
    QCOMPARE(model.indexOfTrackFromIndex(a, tree.c), model.indexOfTrack(tree.c));
    QVERIFY(!model.indexOfTrackFromIndex(a, tree.d).isValid());
    const QModelIndex time = model.index(0, 1);
    QCOMPARE(model.indexOfTrackFromIndex(time, tree.a), time);
    QVERIFY(!model.indexOfTrackFromIndex(time, tree.b).isValid());
    // The invalid index stands for the root.
    QCOMPARE(model.indexOfTrackFromIndex(QModelIndex(), tree.c), model.indexOfTrack(tree.c));
    QVERIFY(!model.indexOfTrackFromIndex(QModelIndex(), unknownId).isValid());
}

void tst_timeline_model::safeSearchesThrow()
{
    OpenModel model;
    const Tree tree(model);
    QCOMPARE(model.indexOfTrackSafe(tree.c), model.indexOfTrack(tree.c));
    QCOMPARE(model.indexOfTrackFromIndexSafe(model.index(0, 0), tree.c), model.indexOfTrack(tree.c));
    COMPARE_THROWN_STRING(model.indexOfTrackSafe(unknownId),
                          "indexOfTrackSafe: index for trackId 77 ('(unknown)') not found ");
    COMPARE_THROWN_STRING(model.indexOfTrackFromIndexSafe(model.index(0, 0), tree.d),
                          "indexOfTrackFromIndexSafe: index for trackId 4 not found");
    COMPARE_THROWN_STRING(model.indexOfTrackFromIndexSafe(QModelIndex(), unknownId),
                          "indexOfTrackFromIndexSafe: index for trackId 77 not found");

    UpperCaseTrack hidden(QStringLiteral("%1 of %2"));
    model.m_trackCache[unknownId] = &hidden;
    COMPARE_THROWN_STRING(model.indexOfTrackSafe(unknownId),
                          "indexOfTrackSafe: index for trackId 77 ('%1 OF %2') not found ");
    COMPARE_THROWN_STRING(model.indexOfTrackSafe(0), "indexOfTrackSafe: index for trackId 0 ('') not found ");
}

void tst_timeline_model::searchEndsWhenRowsAreMissing()
{
    RecordingLogger log;
    OpenModel model;
    model.claimedRows = 3;
    QVERIFY(!model.indexOfTrack(unknownId).isValid());
    QCOMPARE(log.entries().size(), std::size_t(3));
}

void tst_timeline_model::compareLog(RecordingLogger& log, const char* signaturePattern, const QString& text)
{
    QCOMPARE(log.entries().size(), std::size_t(1));
    const RecordingLogger::Entry& entry = log.entries().front();
    QCOMPARE(entry.logger, QStringLiteral("Timeline.TimelineModel"));
    QCOMPARE(entry.level, Hox::Debug);
    QVERIFY2(entry.message.endsWith(text), qPrintable(entry.message));
    const QRegularExpression signature(QRegularExpression::anchoredPattern(QString::fromLatin1(signaturePattern)));
    QVERIFY2(signature.match(entry.message.chopped(text.size())).hasMatch(), qPrintable(entry.message));
    log.clear();
}

void tst_timeline_model::indexLogsAMissingParentTrack()
{
    RecordingLogger log;
    OpenModel model;
    model.claimedRows = 1;
    const char* const signature =
        R"((virtual )?QModelIndex VeskTimeline::TimelineModel::index\(int, int, const QModelIndex ?&\) const)";
    QVERIFY(!model.index(0, 0, model.createIndex(0, 0, quintptr(unknownId))).isValid());
    compareLog(log, signature,
               QStringLiteral(" cannot get parent track Model: const track with id 77 not found in cache"));
}

void tst_timeline_model::indexLogsAMissingChildTrack()
{
    RecordingLogger log;
    OpenModel model;
    model.claimedRows = 9;
    QString reason;
    try {
        static_cast<void>(model.rootTrack()->trackAt(7));
    } catch (const std::out_of_range& exception) {
        reason = QString::fromUtf8(exception.what());
    }
    QVERIFY(!reason.isEmpty());
    const char* const signature =
        R"((virtual )?QModelIndex VeskTimeline::TimelineModel::index\(int, int, const QModelIndex ?&\) const)";
    QVERIFY(!model.index(7, 0).isValid());
    compareLog(log, signature, QStringLiteral(" cannot get child track ") + reason);
}

void tst_timeline_model::parentLogsAnUnknownTrack()
{
    RecordingLogger log;
    const OpenModel model;
    const char* const signature =
        R"((virtual )?QModelIndex VeskTimeline::TimelineModel::parent\(const QModelIndex ?&\) const)";
    QVERIFY(!model.parent(model.createIndex(0, 0, quintptr(unknownId))).isValid());
    compareLog(log, signature, QStringLiteral(" cannot get parent of track with id 77"));
}

void tst_timeline_model::parentLogsAMissingGrandparent()
{
    RecordingLogger log;
    OpenModel model;
    const Tree tree(model);
    model.m_trackCache.erase(tree.a);
    const char* const signature =
        R"((virtual )?QModelIndex VeskTimeline::TimelineModel::parent\(const QModelIndex ?&\) const)";
    QVERIFY(!model.parent(model.createIndex(0, 0, quintptr(tree.c))).isValid());
    compareLog(log, signature,
               QStringLiteral(" super parent not found for super parent id 1 - "
                              "Model: const track with id 1 not found in cache"));
}

void tst_timeline_model::parentLogsAMissingRow()
{
    RecordingLogger log;
    OpenModel model;
    const Tree tree(model);
    Tracks& children = model.track(tree.a)->tracks();
    const TrackPtr taken = std::move(children.front());
    children.clear();
    const char* const signature =
        R"((virtual )?QModelIndex VeskTimeline::TimelineModel::parent\(const QModelIndex ?&\) const)";
    QVERIFY(!model.parent(model.createIndex(0, 0, quintptr(tree.c))).isValid());
    compareLog(log, signature, QStringLiteral(" row of track for parent not found for parent id 2 - not found"));
}

void tst_timeline_model::nothingIsLoggedWhenDebugIsOff()
{
    RecordingLogger log;
    log.setThreshold(Hox::Info);
    OpenModel model;
    QVERIFY(!model.parent(model.createIndex(0, 0, quintptr(unknownId))).isValid());
    model.claimedRows = 3;
    QVERIFY(!model.index(2, 0).isValid());
    QVERIFY(log.entries().empty());
}

QTEST_GUILESS_MAIN(tst_timeline_model)
#include "tst_timeline_model.moc"
