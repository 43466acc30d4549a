#include "auto/data/open_track.h"
#include "support/stderr_capture.h"
#include "support/thrown.h"
#include "support/virtual_slot.h"

#include <VeskTimeline/track.h>

#include <QRegularExpression>
#include <QTest>

#include <stdexcept>
#include <type_traits>

using namespace VeskTimeline;

namespace {

static_assert(std::is_same_v<TrackPtr, std::unique_ptr<Track>>);
static_assert(std::is_same_v<Tracks, std::vector<TrackPtr>>);
static_assert(std::is_polymorphic_v<Track> && std::has_virtual_destructor_v<Track>);
static_assert(std::is_move_constructible_v<Track>);
static_assert(std::is_same_v<decltype(std::declval<Track&>().item(0)), Item*>);
static_assert(std::is_same_v<decltype(std::declval<const Track&>().item(0)), const Item*>);
static_assert(std::is_same_v<decltype(std::declval<Track&>().itemAt(0)), Item*>);
static_assert(std::is_same_v<decltype(std::declval<const Track&>().itemAt(0)), const Item*>);
static_assert(std::is_same_v<decltype(std::declval<const Track&>().previous(0)), const Item*>);
static_assert(std::is_same_v<decltype(std::declval<const Track&>().next(0)), const Item*>);
static_assert(std::is_same_v<decltype(std::declval<const Track&>().copyItemAt(0)), const Item*>);
static_assert(std::is_same_v<decltype(std::declval<Track&>().track(0)), Track*>);
static_assert(std::is_same_v<decltype(std::declval<const Track&>().track(0)), const Track*>);
static_assert(std::is_same_v<decltype(std::declval<const Track&>().parentOf(0)), const Track*>);
static_assert(std::is_same_v<decltype(std::declval<Track&>().trackAt(0)), Track*>);
static_assert(std::is_same_v<decltype(std::declval<Track&>().takeItem(0)), ItemPtr>);

class LabelledTrack : public Track
{
public:
    using Track::Track;
    QString text() const override { return Track::text() + QStringLiteral("!"); }
};

template <typename Base>
class Counted : public Base
{
public:
    template <typename... Arguments>
    explicit Counted(int* destroyed, Arguments&&... arguments)
        : Base(std::forward<Arguments>(arguments)...), m_destroyed(destroyed)
    {
    }
    ~Counted() override { ++*m_destroyed; }

private:
    int* m_destroyed;
};

QVector<qint64> startsOf(const ItemPtrRefs& items)
{
    QVector<qint64> starts;
    for (const ItemPtr& item : items)
        starts.append(item->startTime());
    return starts;
}

} // namespace

class tst_track : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".?"))); }

    void newTrackIsEmptyAndHasNoId();
    void textIsVirtualAndInTheSlotAfterTheDestructor();
    void plainAccessorsStore();
    void moveConstructorTakesEverything();
    void destroyingATrackDestroysItsSubtree();

    void itemsAreInsertedByStartTimeTheNewcomerLastAmongEquals();
    void addItemPtrInsertsAtTheSamePlace();
    void addItemSetsNoIds();
    void removeItemDestroysOnlyOwnItems();
    void takeItemHandsTheItemOver();
    void clearItemsKeepsThoseOfChildren();
    void removeTrackDestroysADirectChildOnly();

    void trackSearchesDirectChildrenFirstThenEachSubtree();
    void trackNeverMatchesItself();
    void hasTrackLooksDeeperOnlyWhenRecursive();
    void parentOfFindsTheParentBelowTheTrack();
    void rowOfTrackCountsDirectChildren();
    void trackAtChecksItsBounds();

    void itemLookUpsSearchOwnItemsFirstThenEachSubtree();
    void itemLookUpsFailEachWithItsMessage();
    void referencesNameTheOwnedPointers();
    void itemAtIncludesBothEnds();
    void itemAtPrefersTheEarlierOfTouchingItems();
    void itemAtFindsNeitherOpenEndedNorForeignItems();
    void previousAndNextAreTheNeighbours();
    void previousAndNextFailAtTheEnds();

    void copyItemIdsAreAddedUnitedAndCleared();
    void removeCopyItemReachesTheWholeSubtree();
    void copyItemAtIncludesBothEnds();
    void copyItemAtTakesTheFirstInTheOrderOfTheSet();
    void copyItemAtReportsDanglingIdsAndThenFails();

    void itemsAreOwnThenCopiesThenEachChild();
    void itemsSkipDanglingCopyIdsWithALineOnStandardError();
    void itemsNcvLeaveCopiesOut();
    void copyItemsAreInTheOrderOfTheSet();
    void copyItemsSkipDanglingIdsWithALineOnStandardError();
    void itemIdsUnsortedAreInPreOrderWithoutCopies();
    void itemIdsSortedNotRecursiveAreTheOwn();
    void itemIdsSortedRecursiveNameACopyTwice();

    void sortOrdersTheOwnItems();
    void sortOverloadsOrderTheGivenList();
    void transformItemPtrsToIdsKeepsTheOrder();

    void printTrackIdsIndentsTheTrackAndPrintsChildrenAtLevelZero();
    void printTrackIdsWithoutItemsAtMinusOneListsNoneForTheChildrenEither();
    void printTrackIdsLetsTheLevelDecideAboutTheChildrensItems();
    void printTrackIdsCutsTheLabelTo16Characters();
};

void tst_track::newTrackIsEmptyAndHasNoId()
{
    for (const Track& track : {Track(QStringLiteral("Radar")), Track(QStringLiteral("Radar"), 7)}) {
        QCOMPARE(track.text(), QStringLiteral("Radar"));
        QVERIFY(!track.userData().isValid());
        QCOMPARE(track.id(), -1);
        QCOMPARE(track.parentId(), -1);
        QCOMPARE(track.parent(), -1);
        QVERIFY(!track.hasInsertButton());
        QVERIFY(!track.hasRemoveButton());
        QVERIFY(track.items().empty() && !track.hasItems());
        QCOMPARE(track.itemCount(), 0);
        QVERIFY(track.tracks().empty() && !track.hasTracks());
        QCOMPARE(track.trackCount(), 0);
        QVERIFY(track.copyItemIds().isEmpty() && !track.hasCopyItems());
    }
}

void tst_track::textIsVirtualAndInTheSlotAfterTheDestructor()
{
    const LabelledTrack labelled(QStringLiteral("Radar"));
    const Track& track = labelled;
    QCOMPARE(track.text(), QStringLiteral("Radar!"));
    QCOMPARE(VirtualSlot::of(&Track::text), VirtualSlot::destructorSlots);
    QCOMPARE(VirtualSlot::of(&Track::addItem), -1);
    QCOMPARE(VirtualSlot::of(&Track::printTrackIds), -1);
}

void tst_track::plainAccessorsStore()
{
    OpenTrack track(4, QStringLiteral("Radar"), 2);
    QCOMPARE(track.id(), 4);
    QCOMPARE(track.parentId(), 2);
    QCOMPARE(track.parent(), 2);
    track.setUserData(QStringLiteral("data"));
    QCOMPARE(track.userData(), QVariant(QStringLiteral("data")));
    track.setInsertButton(true);
    QVERIFY(track.hasInsertButton() && !track.hasRemoveButton());
    track.setInsertButton(false);
    track.setRemoveButton(true);
    QVERIFY(!track.hasInsertButton() && track.hasRemoveButton());

    track.newItem(1, 10, 5);
    track.newItem(2, 20, 5);
    track.newTrack(5);
    QCOMPARE(track.itemCount(), 2);
    QVERIFY(track.hasItems());
    QCOMPARE(track.trackCount(), 1);
    QVERIFY(track.hasTracks());
    const Track& constant = track;
    QCOMPARE(&constant.items(), &static_cast<Track&>(track).items());
    QCOMPARE(&constant.tracks(), &static_cast<Track&>(track).tracks());
}

void tst_track::moveConstructorTakesEverything()
{
    OpenTrack original(4, QStringLiteral("Radar"), 2);
    original.setUserData(17);
    original.setInsertButton(true);
    original.newItem(1, 10, 5);
    original.newTrack(5);
    original.addCopyItemId(1);

    const Track moved(std::move(static_cast<Track&>(original)));
    QCOMPARE(moved.id(), 4);
    QCOMPARE(moved.parentId(), 2);
    QCOMPARE(moved.text(), QStringLiteral("Radar"));
    QCOMPARE(moved.userData(), QVariant(17));
    QVERIFY(moved.hasInsertButton() && !moved.hasRemoveButton());
    QCOMPARE(moved.itemIds(true, false), QVector<int>{1});
    QCOMPARE(moved.trackAt(0)->id(), 5);
    QCOMPARE(moved.copyItemIds(), QSet<int>{1});
}

void tst_track::destroyingATrackDestroysItsSubtree()
{
    int tracks = 0;
    int items = 0;
    {
        Track root{QString()};
        root.tracks().push_back(std::make_unique<Counted<Track>>(&tracks, QString()));
        root.trackAt(0)->tracks().push_back(std::make_unique<Counted<Track>>(&tracks, QString()));
        root.addItem(std::make_unique<Counted<Item>>(&items));
        root.trackAt(0)->trackAt(0)->addItem(std::make_unique<Counted<Item>>(&items));
    }
    QCOMPARE(tracks, 2);
    QCOMPARE(items, 2);
}

void tst_track::itemsAreInsertedByStartTimeTheNewcomerLastAmongEquals()
{
    OpenTrack track(1, QString());
    track.newItem(1, 100, 5);
    track.newItem(2, -50, 5);
    track.newItem(3, 100, 1);
    track.newItem(4, 200, 5);
    track.newItem(5, 100, 9);
    track.newItem(6, 150, 0);
    QCOMPARE(idsOf(track.items()), QVector<int>({2, 1, 3, 5, 6, 4}));

    const Item* const added = track.newItem(7, 100, -1);
    QCOMPARE(added->id(), 7);
    QCOMPARE(added, track.items().at(4).get());
}

void tst_track::addItemPtrInsertsAtTheSamePlace()
{
    OpenTrack track(1, QString());
    track.newItem(1, 100, 5);
    track.newItem(2, 200, 5);
    track.addItemPtr(std::make_unique<OpenItem>(3, 100, 5));
    QCOMPARE(idsOf(track.items()), QVector<int>({1, 3, 2}));
}

void tst_track::addItemSetsNoIds()
{
    OpenTrack track(1, QString());
    const Item* const item = track.addItem(std::make_unique<Item>(100, 5, Qt::red, true));
    QCOMPARE(item->id(), -1);
    QCOMPARE(item->parentTrackId(), -1);
    track.addItemPtr(std::make_unique<Item>(50, 5, Qt::red, true));
    QCOMPARE(track.items().front()->id(), -1);
    QCOMPARE(track.items().front()->parentTrackId(), -1);
}

void tst_track::removeItemDestroysOnlyOwnItems()
{
    int destroyed = 0;
    OpenTrack track(1, QString());
    track.newItem(1, 100, 5);
    track.addItem(std::make_unique<Counted<OpenItem>>(&destroyed, 2, 200, 5));
    OpenTrack* const child = track.newTrack(2);
    child->newItem(3, 100, 5);

    track.removeItem(2);
    QCOMPARE(destroyed, 1);
    QCOMPARE(track.itemIds(true, false), QVector<int>({1, 3}));
    COMPARE_THROWN_STRING(track.removeItem(3), "removeItem: item 3 not found");
    COMPARE_THROWN_STRING(track.removeItem(-7), "removeItem: item -7 not found");
    QCOMPARE(track.itemIds(true, false), QVector<int>({1, 3}));
}

void tst_track::takeItemHandsTheItemOver()
{
    OpenTrack track(1, QString());
    track.newItem(1, 100, 5);
    const Item* const second = track.newItem(2, 200, 5);
    track.newItem(3, 300, 5);
    track.newTrack(2)->newItem(4, 100, 5);

    const ItemPtr taken = track.takeItem(2);
    QCOMPARE(taken.get(), second);
    QCOMPARE(idsOf(track.items()), QVector<int>({1, 3}));
    COMPARE_THROWN_STRING(track.takeItem(2), "Track::takeItem: item with id 2 not found");
    COMPARE_THROWN_STRING(track.takeItem(4), "Track::takeItem: item with id 4 not found");
}

void tst_track::clearItemsKeepsThoseOfChildren()
{
    int destroyed = 0;
    OpenTrack track(1, QString());
    track.addItem(std::make_unique<Counted<OpenItem>>(&destroyed, 1, 100, 5));
    track.newTrack(2)->newItem(2, 100, 5);
    track.addCopyItemId(2);
    track.clearItems();
    QCOMPARE(destroyed, 1);
    QCOMPARE(track.itemIds(true, false), QVector<int>{2});
    QCOMPARE(track.copyItemIds(), QSet<int>{2});
}

void tst_track::removeTrackDestroysADirectChildOnly()
{
    int destroyed = 0;
    OpenTrack track(1, QString());
    OpenTrack* const first = track.newTrack(2);
    first->newTrack(3);
    track.tracks().push_back(std::make_unique<Counted<OpenTrack>>(&destroyed, 4, QString()));
    track.newTrack(5);

    COMPARE_THROWN_STRING(track.removeTrack(3), "removeTrack: track 3 not found on track 1");
    COMPARE_THROWN_STRING(track.removeTrack(1), "removeTrack: track 1 not found on track 1");
    track.removeTrack(4);
    QCOMPARE(destroyed, 1);
    QCOMPARE(track.trackCount(), 2);
    QCOMPARE(track.rowOfTrack(2), 0);
    QCOMPARE(track.rowOfTrack(5), 1);
}

void tst_track::trackSearchesDirectChildrenFirstThenEachSubtree()
{
    OpenTrack track(1, QString());
    OpenTrack* const first = track.newTrack(2);
    OpenTrack* const second = track.newTrack(3);
    first->newTrack(7, QStringLiteral("deeper"));
    const Track* const direct = second;
    track.newTrack(7, QStringLiteral("direct"));
    OpenTrack* const middle = first->newTrack(4);
    middle->newTrack(9, QStringLiteral("below the first child"));
    second->newTrack(9, QStringLiteral("below the second child"));

    const Track& constant = track;
    QCOMPARE(track.track(3), direct);
    QCOMPARE(constant.track(3), direct);
    QCOMPARE(track.track(7)->text(), QStringLiteral("direct"));
    QCOMPARE(constant.track(7)->text(), QStringLiteral("direct"));
    QCOMPARE(track.track(9)->text(), QStringLiteral("below the first child"));
    QCOMPARE(constant.track(9)->text(), QStringLiteral("below the first child"));
    QCOMPARE(track.track(4), static_cast<Track*>(middle));
}

void tst_track::trackNeverMatchesItself()
{
    OpenTrack track(1, QString());
    track.newTrack(2)->newTrack(3);
    const Track& constant = track;
    COMPARE_THROWN_STRING(track.track(1), "Track: track with id 1 not found");
    COMPARE_THROWN_STRING(constant.track(1), "lookup failed!");
    COMPARE_THROWN_STRING(track.track(-12), "Track: track with id -12 not found");
    COMPARE_THROWN_STRING(constant.track(-12), "lookup failed!");
}

void tst_track::hasTrackLooksDeeperOnlyWhenRecursive()
{
    OpenTrack track(1, QString());
    track.newTrack(2);
    track.newTrack(3)->newTrack(4)->newTrack(5);
    QVERIFY(track.hasTrack(3, false) && track.hasTrack(3, true));
    QVERIFY(!track.hasTrack(4, false) && track.hasTrack(4, true));
    QVERIFY(!track.hasTrack(5, false) && track.hasTrack(5, true));
    QVERIFY(!track.hasTrack(1, false) && !track.hasTrack(1, true));
    QVERIFY(!track.hasTrack(6, false) && !track.hasTrack(6, true));
}

void tst_track::parentOfFindsTheParentBelowTheTrack()
{
    OpenTrack track(1, QString());
    track.newTrack(2);
    OpenTrack* const parent = track.newTrack(3);
    OpenTrack* const child = parent->newTrack(4);
    child->newTrack(5);

    QCOMPARE(track.parentOf(4), static_cast<const Track*>(parent));
    QCOMPARE(track.parentOf(5), static_cast<const Track*>(child));
    COMPARE_THROWN_CSTRING(track.parentOf(3), "not found");
    COMPARE_THROWN_CSTRING(track.parentOf(1), "not found");
    COMPARE_THROWN_CSTRING(track.parentOf(6), "not found");
    COMPARE_THROWN_CSTRING(parent->parentOf(4), "not found");
}

void tst_track::rowOfTrackCountsDirectChildren()
{
    OpenTrack track(1, QString());
    track.newTrack(7)->newTrack(9);
    track.newTrack(5);
    QCOMPARE(track.rowOfTrack(7), 0);
    QCOMPARE(track.rowOfTrack(5), 1);
    COMPARE_THROWN_CSTRING(track.rowOfTrack(9), "not found");
    COMPARE_THROWN_CSTRING(track.rowOfTrack(1), "not found");
}

void tst_track::trackAtChecksItsBounds()
{
    OpenTrack track(1, QString());
    track.newTrack(7);
    Track* const last = track.newTrack(5);
    const Track& constant = track;
    QCOMPARE(track.trackAt(1), last);
    QCOMPARE(constant.trackAt(1), last);
    QVERIFY_EXCEPTION_THROWN(track.trackAt(2), std::out_of_range);
    QVERIFY_EXCEPTION_THROWN(constant.trackAt(2), std::out_of_range);
    QVERIFY_EXCEPTION_THROWN(track.trackAt(-1), std::out_of_range);
    QVERIFY_EXCEPTION_THROWN(constant.trackAt(-1), std::out_of_range);
}

void tst_track::itemLookUpsSearchOwnItemsFirstThenEachSubtree()
{
    OpenTrack track(1, QString());
    OpenTrack* const first = track.newTrack(2);
    OpenTrack* const second = track.newTrack(3);
    Item* const own = track.newItem(10, 900, 1);
    first->newItem(10, 100, 1);
    Item* const deep = first->newTrack(4)->newItem(11, 800, 1);
    second->newItem(11, 100, 1);
    Item* const last = second->newItem(12, 300, 1);

    const Track& constant = track;
    const QVector<std::pair<int, Item*>> expected{{10, own}, {11, deep}, {12, last}};
    for (const auto& [id, item] : expected) {
        QCOMPARE(track.item(id), item);
        QCOMPARE(constant.item(id), item);
        QCOMPARE(track._item(id).get().get(), item);
        QCOMPARE(track._itemNCV(id).get().get(), item);
    }
}

void tst_track::itemLookUpsFailEachWithItsMessage()
{
    OpenTrack track(1, QString());
    track.newTrack(2)->newItem(10, 100, 1);
    const Track& constant = track;
    COMPARE_THROWN_STRING(track.item(11), "lookup failed!");
    COMPARE_THROWN_STRING(constant.item(11), "lookup failed!");
    COMPARE_THROWN_STRING(track._item(11), "_item: item with id 11 not found!");
    COMPARE_THROWN_STRING(track._itemNCV(11), "lookup failed!");
}

void tst_track::referencesNameTheOwnedPointers()
{
    OpenTrack track(1, QString());
    Track* const child = track.newTrack(2);
    track.newItem(1, 100, 1);
    child->addItem(std::make_unique<OpenItem>(2, 50, 1));
    QCOMPARE(&track._item(1).get(), &std::as_const(track).items().front());
    QCOMPARE(&track._itemNCV(2).get(), &child->items().front());
    QCOMPARE(&track._items(true).back().get(), &std::as_const(*child).items().front());
    QCOMPARE(&track._itemsNCV(true).back().get(), &child->items().front());
}

void tst_track::itemAtIncludesBothEnds()
{
    OpenTrack track(1, QString());
    track.newItem(1, 1000, 500);
    track.newItem(2, 3000, 0);
    const Track& constant = track;
    for (const qint64 time : {1000, 1001, 1499, 1500}) {
        QCOMPARE(track.itemAt(time)->id(), 1);
        QCOMPARE(constant.itemAt(time)->id(), 1);
    }
    QCOMPARE(track.itemAt(3000)->id(), 2);
    for (const qint64 time : {999, 1501, 2999, 3001}) {
        COMPARE_THROWN_STRING(track.itemAt(time), "lookup failed!");
        COMPARE_THROWN_STRING(constant.itemAt(time), "lookup failed!");
    }
}

void tst_track::itemAtPrefersTheEarlierOfTouchingItems()
{
    OpenTrack track(1, QString());
    track.newItem(2, 1500, 500);
    track.newItem(1, 1000, 500);
    QCOMPARE(track.itemAt(1500)->id(), 1);
    QCOMPARE(track.itemAt(1501)->id(), 2);
}

void tst_track::itemAtFindsNeitherOpenEndedNorForeignItems()
{
    OpenTrack track(1, QString());
    track.newItem(1, 1000, -1);
    track.newTrack(2)->newItem(2, 2000, 500);
    track.addCopyItemId(2);
    COMPARE_THROWN_STRING(track.itemAt(1000), "lookup failed!");
    COMPARE_THROWN_STRING(track.itemAt(999), "lookup failed!");
    COMPARE_THROWN_STRING(track.itemAt(2100), "lookup failed!");
}

void tst_track::previousAndNextAreTheNeighbours()
{
    OpenTrack track(1, QString());
    track.newItem(1, 300, 1);
    track.newItem(2, 100, 1);
    track.newItem(3, 200, 1);
    const Track& constant = track;
    QCOMPARE(track.previous(1)->id(), 3);
    QCOMPARE(constant.previous(3)->id(), 2);
    QCOMPARE(track.next(2)->id(), 3);
    QCOMPARE(constant.next(3)->id(), 1);
}

void tst_track::previousAndNextFailAtTheEnds()
{
    OpenTrack track(1, QString());
    track.newItem(1, 100, 1);
    track.newItem(2, 200, 1);
    track.newTrack(2)->newItem(3, 150, 1);
    const Track& constant = track;
    COMPARE_THROWN_STRING(track.previous(1), "Track::previous: previous item for id 1 not found");
    COMPARE_THROWN_STRING(constant.previous(1), "Track::previous: previous item for id 1 not found");
    COMPARE_THROWN_STRING(track.previous(3), "Track::previous: previous item for id 3 not found");
    COMPARE_THROWN_STRING(track.next(2), "lookup failed!");
    COMPARE_THROWN_STRING(constant.next(2), "lookup failed!");
    COMPARE_THROWN_STRING(track.next(3), "lookup failed!");
}

void tst_track::copyItemIdsAreAddedUnitedAndCleared()
{
    OpenTrack track(1, QString());
    OpenTrack* const child = track.newTrack(2);
    track.addCopyItemId(4);
    track.addCopyItemId(4);
    QCOMPARE(track.copyItemIds(), QSet<int>{4});
    track.addCopyItemIds({4, 5, 6});
    QCOMPARE(track.copyItemIds(), QSet<int>({4, 5, 6}));
    QVERIFY(track.hasCopyItems());
    child->addCopyItemId(9);
    track.clearCopyItemIds();
    QVERIFY(!track.hasCopyItems());
    QCOMPARE(child->copyItemIds(), QSet<int>{9});
}

void tst_track::removeCopyItemReachesTheWholeSubtree()
{
    OpenTrack track(1, QString());
    OpenTrack* const first = track.newTrack(2);
    OpenTrack* const deep = first->newTrack(3);
    OpenTrack* const second = track.newTrack(4);
    for (Track* const each : {static_cast<Track*>(&track), static_cast<Track*>(first), static_cast<Track*>(deep)})
        each->addCopyItemIds({7, 8});
    second->addCopyItemId(8);

    track.removeCopyItem(7);
    QCOMPARE(track.copyItemIds(), QSet<int>{8});
    QCOMPARE(first->copyItemIds(), QSet<int>{8});
    QCOMPARE(deep->copyItemIds(), QSet<int>{8});
    first->removeCopyItem(8);
    QCOMPARE(track.copyItemIds(), QSet<int>{8});
    QVERIFY(!first->hasCopyItems() && !deep->hasCopyItems());
    QCOMPARE(second->copyItemIds(), QSet<int>{8});
    track.removeCopyItem(1234);
    QCOMPARE(track.copyItemIds(), QSet<int>{8});
}

void tst_track::copyItemAtIncludesBothEnds()
{
    OpenTrack track(1, QString());
    Item* const copied = track.newTrack(2)->newItem(5, 1000, 500);
    track.newItem(6, 5000, 500);
    track.addCopyItemId(5);
    for (const qint64 time : {1000, 1250, 1500})
        QCOMPARE(track.copyItemAt(time), copied);
    for (const qint64 time : {999, 1501, 5250}) {
        COMPARE_THROWN_STRING(track.copyItemAt(time), QStringLiteral("Track: can't find copy item at %1").arg(time));
    }
    track.addCopyItemId(6);
    QCOMPARE(track.copyItemAt(5250)->id(), 6);
    copied->setDuration(-1);
    COMPARE_THROWN_STRING(track.copyItemAt(1000), "Track: can't find copy item at 1000");
}

void tst_track::copyItemAtTakesTheFirstInTheOrderOfTheSet()
{
    OpenTrack track(1, QString());
    OpenTrack* const child = track.newTrack(2);
    for (int id = 0; id < 20; ++id) {
        child->newItem(id, 1000 - id, 500);
        track.addCopyItemId(id);
    }
    QCOMPARE(track.copyItemAt(1200)->id(), *track.copyItemIds().begin());
}

void tst_track::copyItemAtReportsDanglingIdsAndThenFails()
{
    OpenTrack track(1, QString());
    track.newTrack(2)->newItem(5, 1000, 500);
    track.addCopyItemId(5);
    track.trackAt(0)->removeItem(5);
    StderrCapture capture;
    COMPARE_THROWN_STRING(track.copyItemAt(1200), "Track: can't find copy item at 1200");
    QCOMPARE(capture.take(), QByteArray("Track::_copyItems: cannot find item for item id 5\n"));
}

void tst_track::itemsAreOwnThenCopiesThenEachChild()
{
    OpenTrack track(1, QString());
    OpenTrack* const first = track.newTrack(2);
    OpenTrack* const second = track.newTrack(3);
    OpenTrack* const deep = first->newTrack(4);
    track.newItem(11, 200, 1);
    track.newItem(10, 100, 1);
    first->newItem(20, 50, 1);
    second->newItem(30, 20, 1);
    deep->newItem(40, 10, 1);
    track.addCopyItemId(40);
    first->addCopyItemId(40);

    QCOMPARE(idsOf(track._items(false)), QVector<int>({10, 11, 40}));
    QCOMPARE(idsOf(track._items(true)), QVector<int>({10, 11, 40, 20, 40, 40, 30}));
    QVERIFY(idsOf(Track(QString())._items(true)).isEmpty());
}

void tst_track::itemsSkipDanglingCopyIdsWithALineOnStandardError()
{
    OpenTrack track(1, QString());
    track.newItem(10, 100, 1);
    track.addCopyItemId(99);
    StderrCapture capture;
    const ItemPtrRefs items = track._items(false);
    QCOMPARE(capture.take(), QByteArray("cannot add item ptr ref from copy item with copy item id 99: "
                                        "_item: item with id 99 not found!\n"));
    QCOMPARE(idsOf(items), QVector<int>{10});
}

void tst_track::itemsNcvLeaveCopiesOut()
{
    OpenTrack track(1, QString());
    OpenTrack* const first = track.newTrack(2);
    track.newTrack(3)->newItem(30, 20, 1);
    track.newItem(10, 100, 1);
    first->newItem(20, 50, 1);
    track.addCopyItemIds({20, 99});
    first->addCopyItemId(20);
    StderrCapture capture;
    QCOMPARE(idsOf(track._itemsNCV(false)), QVector<int>{10});
    QCOMPARE(idsOf(track._itemsNCV(true)), QVector<int>({10, 20, 30}));
    QCOMPARE(capture.take(), QByteArray());
}

void tst_track::copyItemsAreInTheOrderOfTheSet()
{
    OpenTrack track(1, QString());
    OpenTrack* const child = track.newTrack(2);
    for (int id = 0; id < 20; ++id)
        child->newItem(id, 1000 - id, 500);
    track.newItem(50, 1, 1);
    track.addCopyItemIds({3, 17, 8, 11, 0, 50});
    child->addCopyItemId(5);
    const QSet<int>& ids = track.copyItemIds();
    QCOMPARE(idsOf(track._copyItems()), QVector<int>(ids.begin(), ids.end()));
}

void tst_track::copyItemsSkipDanglingIdsWithALineOnStandardError()
{
    OpenTrack track(1, QString());
    track.newItem(10, 100, 1);
    track.addCopyItemIds({10, 99});
    StderrCapture capture;
    const ItemPtrRefs items = track._copyItems();
    QCOMPARE(capture.take(), QByteArray("Track::_copyItems: cannot find item for item id 99\n"));
    QCOMPARE(idsOf(items), QVector<int>{10});
}

void tst_track::itemIdsUnsortedAreInPreOrderWithoutCopies()
{
    OpenTrack track(1, QString());
    OpenTrack* const first = track.newTrack(2);
    track.newTrack(3)->newItem(30, 20, 1);
    track.newItem(11, 200, 1);
    track.newItem(10, 100, 1);
    first->newItem(20, 50, 1);
    first->newTrack(4)->newItem(40, 10, 1);
    track.addCopyItemIds({40, 99});

    StderrCapture capture;
    QCOMPARE(track.itemIds(false, false), QVector<int>({10, 11}));
    QCOMPARE(track.itemIds(true, false), QVector<int>({10, 11, 20, 40, 30}));
    QCOMPARE(track._itemIds(false), QVector<int>({10, 11}));
    QCOMPARE(track._itemIds(true), QVector<int>({10, 11, 20, 40, 30}));
    QCOMPARE(capture.take(), QByteArray());
}

void tst_track::itemIdsSortedNotRecursiveAreTheOwn()
{
    OpenTrack track(1, QString());
    track.newItem(11, 200, 1);
    track.newItem(10, 100, 1);
    track.newTrack(2)->newItem(20, 150, 1);
    track.addCopyItemId(20);
    QCOMPARE(track.itemIds(false, true), QVector<int>({10, 11}));
}

void tst_track::itemIdsSortedRecursiveNameACopyTwice()
{
    OpenTrack track(1, QString());
    track.newItem(11, 200, 1);
    track.newItem(10, 100, 1);
    track.newTrack(2)->newItem(20, 150, 1);
    track.addCopyItemId(20);
    QCOMPARE(track.itemIds(true, true), QVector<int>({10, 20, 20, 11}));
}

void tst_track::sortOrdersTheOwnItems()
{
    OpenTrack track(1, QString());
    track.newItem(1, 100, 1);
    track.newItem(2, 200, 1);
    track.newItem(3, 300, 1);
    track.newTrack(2)->newItem(4, 5, 1);
    track.item(3)->_setStartTime(-7);
    track.item(1)->_setStartTime(250);
    track.sort();
    QCOMPARE(idsOf(track.items()), QVector<int>({3, 2, 1}));
}

void tst_track::sortOverloadsOrderTheGivenList()
{
    OpenTrack track(1, QString());
    for (int id = 0; id < 40; ++id)
        track.newItem(id, (id * 17) % 40, 1);
    ItemPtrRefs references = track._items(false);
    std::reverse(references.begin(), references.end());
    ItemPtrNCVRefs changeable = track._itemsNCV(false);
    std::reverse(changeable.begin(), changeable.end());
    const QVector<int> inOrder = idsOf(track.items());

    Track::sort(references);
    QCOMPARE(idsOf(references), inOrder);
    Track::sort(changeable);
    QCOMPARE(idsOf(changeable), inOrder);

    Items items;
    for (int id = 0; id < 40; ++id)
        items.push_back(std::make_unique<OpenItem>(id, 1000 - id, 1));
    Track::sort(items);
    QVector<int> backwards;
    for (int id = 39; id >= 0; --id)
        backwards.append(id);
    QCOMPARE(idsOf(items), backwards);
}

void tst_track::transformItemPtrsToIdsKeepsTheOrder()
{
    Items items;
    items.push_back(std::make_unique<OpenItem>(9, 500, 1));
    items.push_back(std::make_unique<OpenItem>(2, 100, 1));
    QCOMPARE(Track::transformItemPtrsToIds(items), QVector<int>({9, 2}));
    const ItemPtrRefs references{items[1], items[0], items[1]};
    QCOMPARE(Track::transformItemPtrsToIds(references), QVector<int>({2, 9, 2}));
    QCOMPARE(startsOf(references), QVector<qint64>({100, 500, 100}));
}

void tst_track::printTrackIdsIndentsTheTrackAndPrintsChildrenAtLevelZero()
{
    OpenTrack track(1, QStringLiteral("Radar"));
    track.newItem(4, 100, 1);
    track.newItem(5, 200, 1);
    track.newTrack(2, QStringLiteral("Sea"))->newItem(17, 100, 1);
    {
        StderrCapture capture;
        track.printTrackIds(true, 2);
        QCOMPARE(capture.take(), QByteArray("   > Track            Radar  ( 4 5 )\n"
                                            "> Track              Sea  ( 17 )\n"));
    }
    StderrCapture capture;
    track.printTrackIds(true, 1);
    QCOMPARE(capture.take(), QByteArray(" > Track            Radar  ( 4 5 )\n"
                                        "> Track              Sea  ( 17 )\n"));
}

void tst_track::printTrackIdsWithoutItemsAtMinusOneListsNoneForTheChildrenEither()
{
    OpenTrack track(1, QStringLiteral("Radar"));
    track.newItem(4, 100, 1);
    OpenTrack* const child = track.newTrack(2, QStringLiteral("Sea"));
    child->newItem(17, 100, 1);
    child->newTrack(3, QStringLiteral("Deep"))->newItem(18, 100, 1);
    StderrCapture capture;
    track.printTrackIds(false, -1);
    // A negative width aligns to the left; the grandchild's line follows from the child's level 0.
    QCOMPARE(capture.take(), QByteArray(">  Track            Radar \n"
                                        "> Track              Sea \n"
                                        "> Track             Deep  ( 18 )\n"));
}

void tst_track::printTrackIdsLetsTheLevelDecideAboutTheChildrensItems()
{
    OpenTrack track(1, QStringLiteral("Radar"));
    track.newTrack(2, QStringLiteral("Sea"))->newItem(17, 100, 1);
    track.newTrack(3, QString());
    StderrCapture capture;
    track.printTrackIds(false, 0);
    QCOMPARE(capture.take(), QByteArray("> Track            Radar \n"
                                        "> Track              Sea  ( 17 )\n"
                                        "> Track                   ( )\n"));
}

void tst_track::printTrackIdsCutsTheLabelTo16Characters()
{
    LabelledTrack track(QStringLiteral("ABCDEFGHIJKLMNO"));
    {
        StderrCapture capture;
        track.printTrackIds(false, 0);
        QCOMPARE(capture.take(), QByteArray("> Track ABCDEFGHIJKLMNO! \n"));
    }
    StderrCapture capture;
    Track(QStringLiteral("ABCDEFGHIJKLMNOPQRSTUVW")).printTrackIds(true, 0);
    QCOMPARE(capture.take(), QByteArray("> Track ABCDEFGHIJKLMNOP  ( )\n"));
}

QTEST_GUILESS_MAIN(tst_track)
#include "tst_track.moc"
