#include "auto/data/open_track.h"
#include "support/virtual_slot.h"

#include <VeskTimeline/item.h>

#include <QModelIndex>
#include <QPainter>
#include <QRegularExpression>
#include <QStyleOptionViewItem>
#include <QTest>

#include <type_traits>

using namespace VeskTimeline;

namespace {

static_assert(std::is_same_v<ItemPtr, std::unique_ptr<Item>>);
static_assert(std::is_same_v<Items, std::vector<ItemPtr>>);
static_assert(std::is_same_v<ItemPtrRef, std::reference_wrapper<const ItemPtr>>);
static_assert(std::is_same_v<ItemPtrRefs, std::vector<ItemPtrRef>>);
static_assert(std::is_same_v<ItemPtrNCVRef, std::reference_wrapper<ItemPtr>>);
static_assert(std::is_same_v<ItemPtrNCVRefs, std::vector<ItemPtrNCVRef>>);
static_assert(std::is_same_v<decltype(&Item::mimetype), const QString*>);
static_assert(std::is_same_v<decltype(&Item::s_highlightColor), const QColor*>);
static_assert(std::is_polymorphic_v<Item> && std::has_virtual_destructor_v<Item>);
static_assert(std::is_copy_constructible_v<Item> && std::is_copy_assignable_v<Item>);
static_assert(std::is_same_v<decltype(std::declval<const Item&>().startTime()), qint64>);
static_assert(std::is_same_v<decltype(std::declval<const Item&>().duration()), int>);

class CountingItem : public Item
{
public:
    CountingItem(int* painted, int* destroyed) : m_painted(painted), m_destroyed(destroyed) {}
    ~CountingItem() override { ++*m_destroyed; }
    void paint(QPainter*, const QStyleOptionViewItem&, const QModelIndex&, bool isSelected) const override
    {
        *m_painted += isSelected ? 100 : 1;
    }

private:
    int* m_painted;
    int* m_destroyed;
};

} // namespace

class tst_item : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".?"))); }

    void constructorStoresWhatItIsGivenAndLeavesTheIdsUnset()
    {
        const Item item(-1'234'567'890'123, 4321, QColor(1, 2, 3, 4), false);
        QCOMPARE(item.startTime(), -1'234'567'890'123);
        QCOMPARE(item.duration(), 4321);
        QCOMPARE(item.color(), QColor(1, 2, 3, 4));
        QVERIFY(!item.isEditable());
        QCOMPARE(item.id(), -1);
        QCOMPARE(item.parentTrackId(), -1);
        QVERIFY(Item(0, 0, Qt::red, true).isEditable());
    }

    void defaultItemBelongsToNoModel()
    {
        const Item item;
        QCOMPARE(item.id(), -1);
        QCOMPARE(item.parentTrackId(), -1);
    }

    void openEndedDurationIsStored() { QCOMPARE(Item(5, -1, Qt::red, true).duration(), -1); }

    void settersStore()
    {
        Item item(1, 2, Qt::red, true);
        item.setColor(Qt::green);
        item.setStartTime(9'000'000'000'000);
        item.setDuration(77);
        item.setEditable(false);
        QCOMPARE(item.color(), QColor(Qt::green));
        QCOMPARE(item.startTime(), 9'000'000'000'000);
        QCOMPARE(item.duration(), 77);
        QVERIFY(!item.isEditable());
    }

    void rawSettersStoreWithoutAnyCheck()
    {
        Item item(1, 2, Qt::red, false);
        item._setStartTime(-5);
        item._setDuration(-1000);
        QCOMPARE(item.startTime(), -5);
        QCOMPARE(item.duration(), -1000);
    }

    void copyIsMemberWiseIdsIncluded()
    {
        const OpenItem original(12, 3456, 789, 34);
        const Item copy(static_cast<const Item&>(original));
        compareWithOriginal(copy);

        Item assigned;
        assigned = original;
        compareWithOriginal(assigned);
    }

    void moveKeepsEveryFieldColourAndIdsIncluded()
    {
        OpenItem original(12, 3456, 789, 34);
        const Item moved(std::move(static_cast<Item&>(original)));
        compareWithOriginal(moved);
    }

    void subclassPaintsThroughTheBaseClass()
    {
        int painted = 0;
        int destroyed = 0;
        ItemPtr item = std::make_unique<CountingItem>(&painted, &destroyed);
        item->paint(nullptr, QStyleOptionViewItem(), QModelIndex(), false);
        QCOMPARE(painted, 1);
        item->paint(nullptr, QStyleOptionViewItem(), QModelIndex(), true);
        QCOMPARE(painted, 101);
        item.reset();
        QCOMPARE(destroyed, 1);
    }

    void virtualSlotsAreDestructorThenPaint()
    {
        QCOMPARE(VirtualSlot::of(&Item::paint), VirtualSlot::destructorSlots);
        QCOMPARE(VirtualSlot::of(&Item::_setStartTime), -1);
        QCOMPARE(VirtualSlot::of(&Item::_setDuration), -1);
    }

    void staticMembersHaveTheirValues()
    {
        QCOMPARE(Item::mimetype, QStringLiteral("application/brannovexis.timeline.item"));
        QCOMPARE(Item::s_highlightColor, QColor(0x43, 0xB0, 0xE0));
    }

private:
    void compareWithOriginal(const Item& item)
    {
        QCOMPARE(item.id(), 12);
        QCOMPARE(item.parentTrackId(), 34);
        QCOMPARE(item.startTime(), 3456);
        QCOMPARE(item.duration(), 789);
        QCOMPARE(item.color(), QColor(Qt::blue));
        QVERIFY(item.isEditable());
    }
};

QTEST_GUILESS_MAIN(tst_item)
#include "tst_item.moc"
