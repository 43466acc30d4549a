#include "probe_drag_handler.h"
#include "random_items.h"
#include "reference/selection.h"

#include <QTest>

#include <limits>

/// The view's selection, beside one plain list.
class TestSelectionRandom : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void selectionAgreesWithTheReference_data();
    void selectionAgreesWithTheReference();
    void unselectingKeepsTheOrderOfManyItems();
    void listThatNamesAnIdTwiceLosesTheFirst();
    void draggedIdsFollowTheirList();
};

void TestSelectionRandom::selectionAgreesWithTheReference_data()
{
    QTest::addColumn<QList<int>>("ids");
    QTest::newRow("few") << QList<int>{0, 1, 2, 3, 4, 5};
    QTest::newRow("at the limits") << QList<int>{
        std::numeric_limits<int>::min(), -2, -1, 0, 63, 64, (1 << 24) - 1, 1 << 24, std::numeric_limits<int>::max()};
    QList<int> many;
    for (int id = 0; id < 300; ++id)
        many.append(id * 7);
    QTest::newRow("many") << many;
}

void TestSelectionRandom::selectionAgreesWithTheReference()
{
    QFETCH(QList<int>, ids);
    VeskTimeline::TimelineView view;
    QList<QList<int>> announced;
    connect(&view, &VeskTimeline::TimelineView::selectedItemsChanged, this,
            [&](const QList<int>& selected) { announced.append(selected); });
    Reference::Selection reference;
    QRandomGenerator random(17);
    for (int round = 0; round < 4000; ++round) {
        const int id = ids[random.bounded(ids.size())];
        const int kind = random.bounded(30);
        bool isAnnounced = false;
        if (kind == 0) {
            view.clearSelectedItems();
            isAnnounced = reference.clear();
        } else if (kind < 3) {
            QList<int> some;
            for (int n = random.bounded(20); n > 0; --n)
                some.append(ids[random.bounded(ids.size())]);
            view.selectItems(some, kind == 1);
            isAnnounced = reference.selectMany(some, kind == 1);
        } else if (kind < 16) {
            view.selectItem(id, kind == 3);
            isAnnounced = reference.select(id, kind == 3);
        } else {
            view.unselectItem(id);
            isAnnounced = reference.unselect(id);
        }
        QCOMPARE(announced, isAnnounced ? QList<QList<int>>{reference.ids} : QList<QList<int>>());
        QCOMPARE(view.selectedItemIds(), reference.ids);
        QCOMPARE(view.hasSelectedItems(), !reference.ids.isEmpty());
        for (const int each : ids)
            QCOMPARE(view.isItemSelected(each), reference.ids.contains(each));
        announced.clear();
    }
}

void TestSelectionRandom::unselectingKeepsTheOrderOfManyItems()
{
    constexpr int count = 100'000;
    VeskTimeline::TimelineView view;
    QList<int> ids;
    for (int i = 0; i < count; ++i)
        ids.append((i * 7919) % count);
    view.selectItems(ids, true);
    for (int i = count - 1; i > 0; i -= 997) {
        view.unselectItem(ids.takeAt(i));
        QCOMPARE(view.selectedItemIds(), ids);
    }
    view.selectItem(count, false);
    view.unselectItem(ids.takeFirst());
    QCOMPARE(view.selectedItemIds(), ids + QList<int>{count});
}

void TestSelectionRandom::listThatNamesAnIdTwiceLosesTheFirst()
{
    ViewFixture f;
    const int id = f.addSeconds(f.trackA, 100, 10);
    f.addSeconds(f.trackA, 200, 10);
    // Without the cache the ids are those of the tracks, an item put into two places among them.
    f.model.m_itemCaching = false;
    f.model.track(f.trackB)->addItem(std::make_unique<VeskTimeline::Item>(*f.model.item(id)));
    f.view.selectAllItems();
    QCOMPARE(f.view.selectedItemIds(), (QList<int>{0, 1, 0}));
    f.view.unselectItem(1);
    f.view.unselectItem(0);
    QCOMPARE(f.view.selectedItemIds(), QList<int>{0});
    QVERIFY(!f.view.isItemSelected(0));
}

void TestSelectionRandom::draggedIdsFollowTheirList()
{
    DragFixture f;
    const auto areDragged = [&](const QVector<int>& ids) {
        for (int id = -2; id < 10; ++id) {
            if (f.handler.isItemDragged(id) != ids.contains(id) || f.model.isItemDragged(id) != ids.contains(id))
                return false;
        }
        return true;
    };
    QVERIFY(areDragged({}));
    f.handler.m_dragItemIds = {3, 5};
    QVERIFY(areDragged({3, 5}));
    f.handler.m_dragItemIds.append(-1);
    QVERIFY(areDragged({3, 5, -1}));
    f.handler.m_dragItemIds[0] = 4;
    QVERIFY(areDragged({4, 5, -1}));
    f.handler.m_dragItemIds.removeLast();
    QVERIFY(areDragged({4, 5}));
    f.handler.clear();
    QVERIFY(areDragged({}));
    f.handler.m_dragItemIds = {4, 5};
    QVERIFY(areDragged({4, 5}));
}

QTEST_MAIN(TestSelectionRandom)
#include "tst_selection_random.moc"
