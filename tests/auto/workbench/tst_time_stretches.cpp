#include <QTest>

#include <limits>
#include <workbench/time_stretches.h>

using VeskTimeline::Kit::TimeSpan;
using Workbench::TimeStretches;

class TestTimeStretches : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(".?")); }

    void theSpanIsWidenedToWholeSeconds()
    {
        const TimeSpan positive = TimeStretches({1001, 2999}).at(0);
        QCOMPARE(positive.start, 1000);
        QCOMPARE(positive.end, 3000);
        const TimeSpan negative = TimeStretches({-1001, -1}).at(0);
        QCOMPARE(negative.start, -2000);
        QCOMPARE(negative.end, 0);
        const TimeSpan whole = TimeStretches({-2000, 4000}).at(0);
        QCOMPARE(whole.start, -2000);
        QCOMPARE(whole.end, 4000);
    }

    void aSpanThatFitsIsOneStretch()
    {
        QCOMPARE(TimeStretches({0, 0}).count(), 1);
        const TimeStretches stretches({0, 2147483000});
        QCOMPARE(stretches.count(), 1);
        QCOMPARE(stretches.at(0).end, 2147483000);
        QCOMPARE(stretches.indexOf(-5), 0);
        QCOMPARE(stretches.indexOf(2147483000), 0);
        QCOMPARE(stretches.indexOf(TimeStretches::maximumLength), 0);
    }

    void aLongerSpanIsCutWithoutGaps()
    {
        const qint64 length = TimeStretches::maximumLength;
        const TimeStretches stretches({5000, 5000 + 2 * length + 1000});
        QCOMPARE(stretches.count(), 3);
        QCOMPARE(stretches.at(0).start, 5000);
        for (int i = 0; i < 2; ++i) {
            QCOMPARE(stretches.at(i).end, stretches.at(i + 1).start);
            QCOMPARE(stretches.at(i).end - stretches.at(i).start, length);
        }
        QCOMPARE(stretches.at(2).end, 5000 + 2 * length + 1000);
        QVERIFY(length <= std::numeric_limits<int>::max());
    }

    void aSpanOfWholeStretchesHasNoEmptyOne()
    {
        QCOMPARE(TimeStretches({0, 2 * TimeStretches::maximumLength}).count(), 2);
    }

    void aTimeIsInItsStretch()
    {
        const qint64 length = TimeStretches::maximumLength;
        const TimeStretches stretches({0, 2 * length + 1000});
        QCOMPARE(stretches.indexOf(std::numeric_limits<qint64>::min()), 0);
        QCOMPARE(stretches.indexOf(0), 0);
        QCOMPARE(stretches.indexOf(length - 1), 0);
        QCOMPARE(stretches.indexOf(length), 1);
        QCOMPARE(stretches.indexOf(2 * length), 2);
        QCOMPARE(stretches.indexOf(9 * length), 2);
    }

    void theLongestSpanCanBeCut()
    {
        const TimeStretches stretches({-8'640'000'000'000'000, 8'640'000'000'000'000});
        QCOMPARE(stretches.count(), 8333334);
        QCOMPARE(stretches.at(stretches.count() - 1).end, 8'640'000'000'000'000);
    }
};

QTEST_APPLESS_MAIN(TestTimeStretches)
#include "tst_time_stretches.moc"
