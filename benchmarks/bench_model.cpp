#include "many_items.h"

#include <QTest>

/// Filling a model, and the queries that every mouse move of a drag asks.
class BenchModel : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void addItem_data();
    void addItem();
    void isItemsBetween();
};

void BenchModel::addItem_data()
{
    QTest::addColumn<int>("itemCount");
    QTest::addColumn<bool>("isRandomOrder");
    for (const int count : {1'000, 10'000, 100'000}) {
        QTest::addRow("%d in order of time", count) << count << false;
        QTest::addRow("%d in random order", count) << count << true;
    }
}

void BenchModel::addItem()
{
    QFETCH(int, itemCount);
    QFETCH(bool, isRandomOrder);
    QBENCHMARK
    {
        ManyItems model(200);
        model.addItems(itemCount, isRandomOrder);
    }
}

void BenchModel::isItemsBetween()
{
    ManyItems model(200);
    model.addItems(100'000, false);
    const qint64 behindAll = ManyItems::origin + 2 * static_cast<qint64>(ManyItems::day);
    bool isAny = true;
    QBENCHMARK
    {
        isAny = model.isItemsBetween(behindAll, behindAll + 1, -1, true, false, true);
    }
    QVERIFY(!isAny);
}

QTEST_MAIN(BenchModel)
#include "bench_model.moc"
