#include <VeskTimelineKit/id_set_p.h>
#include <VeskTimelineKit/id_table_p.h>

#include <QRandomGenerator>
#include <QTest>

#include <set>

using VeskTimeline::Kit::IdSet;
using VeskTimeline::Kit::IdTable;

/// Both are compared with what they stand for, a plain set.
class TestIdSet : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void holdsWhatAPlainSetHolds_data()
    {
        QTest::addColumn<quint32>("seed");
        for (quint32 seed = 1; seed <= 20; ++seed)
            QTest::addRow("seed %u", seed) << seed;
    }
    void holdsWhatAPlainSetHolds()
    {
        QFETCH(quint32, seed);
        QRandomGenerator random(seed);
        IdSet set;
        std::set<int> plain;
        const auto compare = [&] {
            const QVector<int> ids = set.ids();
            QCOMPARE(ids, QVector<int>(plain.begin(), plain.end()));
            QCOMPARE(set.size(), static_cast<int>(plain.size()));
            QCOMPARE(set.isEmpty(), plain.empty());
        };
        for (int act = 0; act < 200; ++act) {
            const int first = random.bounded(300);
            switch (random.bounded(5)) {
            case 0: // a track's
                for (int id = first; id < first + 20; id += 1 + static_cast<int>(seed) % 3) {
                    set.insert(id);
                    plain.insert(id);
                }
                break;
            case 1: {
                const QVector<int> run{first, first + 1, first + 5};
                set.insert(run);
                plain.insert(run.begin(), run.end());
                break;
            }
            case 2:
                for (int i = 0; i < 3; ++i)
                    QCOMPARE(set.remove(first + i), plain.erase(first + i) == 1);
                break;
            case 3:
                set.insert(first);
                plain.insert(first);
                break;
            default:
                if (random.bounded(20) == 0) {
                    QCOMPARE(std::exchange(set, {}).ids(), QVector<int>(plain.begin(), plain.end()));
                    plain.clear();
                }
            }
            for (int id = -1; id < 330; ++id)
                QCOMPARE(set.contains(id), plain.count(id) == 1);
            compare();
        }
        set.clear();
        plain.clear();
        compare();
    }

    void aTableTellsTheSlotOfEachId()
    {
        const IdTable table({7, -3, 2'000, 8});
        QCOMPARE(table.of(7), 0);
        QCOMPARE(table.of(-3), 1);
        QCOMPARE(table.of(2'000), 2);
        QCOMPARE(table.of(8), 3);
        for (const int id : {-4, -2, 9, 2'001, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()})
            QVERIFY(!table.contains(id));
        QVERIFY(!IdTable({}).contains(0));
    }
};

QTEST_APPLESS_MAIN(TestIdSet)
#include "tst_id_set.moc"
