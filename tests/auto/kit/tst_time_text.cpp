#include <VeskTimelineKit/time_text.h>

#include <QTest>

using namespace VeskTimeline::Kit;

class TestTimeText : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(".?")); }

    void aTimeIsRead_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<qint64>("time");

        QTest::newRow("epoch") << "0" << qint64(0);
        QTest::newRow("milliseconds") << "92554380000" << Q_INT64_C(92554380000);
        QTest::newRow("negative milliseconds") << "-3852662325000" << Q_INT64_C(-3852662325000);
        QTest::newRow("signed milliseconds") << "+5" << qint64(5);
        QTest::newRow("farthest") << "8640000000000000" << farthestTime;
        QTest::newRow("farthest back") << "-8640000000000000" << -farthestTime;
        QTest::newRow("UTC") << "1972-12-07T05:33:00Z" << Q_INT64_C(92554380000);
        QTest::newRow("lower case") << "1972-12-07t05:33:00z" << Q_INT64_C(92554380000);
        QTest::newRow("blank for T") << "1972-12-07 05:33:00Z" << Q_INT64_C(92554380000);
        QTest::newRow("no seconds") << "1972-12-07T05:33Z" << Q_INT64_C(92554380000);
        QTest::newRow("milliseconds of a second") << "1972-12-10T20:32:42.300Z" << Q_INT64_C(92867562300);
        QTest::newRow("one digit of a second") << "1972-12-10T20:32:42.3Z" << Q_INT64_C(92867562300);
        QTest::newRow("comma") << "1972-12-10T20:32:42,3Z" << Q_INT64_C(92867562300);
        QTest::newRow("west") << "2015-03-02T02:15:00-10:00" << Q_INT64_C(1425298500000);
        QTest::newRow("east, half an hour") << "1970-01-01T05:30:00+05:30" << qint64(0);
        QTest::newRow("zone without colon") << "1970-01-01T05:30:00+0530" << qint64(0);
        QTest::newRow("zone of hours") << "1970-01-01T05:00:00+05" << qint64(0);
        QTest::newRow("before the epoch") << "1969-12-31T23:59:59.999Z" << qint64(-1);
        QTest::newRow("long ago") << "1847-12-01T00:01:15Z" << Q_INT64_C(-3852662325000);
        QTest::newRow("end of a day") << "1970-01-01T24:00:00Z" << Q_INT64_C(86400000);
        QTest::newRow("leap day") << "2024-02-29T00:00:00Z" << Q_INT64_C(1709164800000);
        QTest::newRow("first year") << "0001-01-01T00:00:00Z" << Q_INT64_C(-62135596800000);
    }
    void aTimeIsRead()
    {
        QFETCH(QString, text);
        QFETCH(qint64, time);
        const auto parsed = parseTime(text);
        QVERIFY(parsed.has_value());
        QCOMPARE(parsed->time, time);
        QVERIFY(!parsed->isCut);
    }

    void otherTextIsNoTime_data()
    {
        QTest::addColumn<QString>("text");

        for (const char* const text : {"",
                                       " ",
                                       "yesterday",
                                       "12:00",
                                       "1972-12-07",
                                       "1972-12-07T05:33:00",
                                       "1972-12-07T05:33:00+",
                                       "1.5",
                                       "1e3",
                                       "0x10",
                                       "9223372036854775808",
                                       "8640000000000001",
                                       "-8640000000000001",
                                       "1972-13-07T05:33:00Z",
                                       "1972-02-30T05:33:00Z",
                                       "2023-02-29T00:00:00Z",
                                       "0000-01-01T00:00:00Z",
                                       "1972-12-07T25:00:00Z",
                                       "1972-12-07T24:00:01Z",
                                       "1972-12-07T24:00:00.1Z",
                                       "1972-12-07T05:60:00Z",
                                       "1972-12-07T05:33:60Z",
                                       "1972-12-07T05:33:00.Z",
                                       "1972-12-07T05:33:00+24:00",
                                       "1972-12-07T05:33:00+10:60",
                                       "1972-12-07T05:33:00ZZ",
                                       "1972-12-07T05:33:00Z ",
                                       "72-12-07T05:33:00Z",
                                       "\u0661\u0662"})
            QTest::newRow(text) << QString::fromUtf8(text);
    }
    void otherTextIsNoTime()
    {
        QFETCH(QString, text);
        QVERIFY(!parseTime(text).has_value());
    }

    void fractionsOfAMillisecondAreCutAndToldOf()
    {
        const auto after = parseTime("1970-01-01T00:00:01.2349Z");
        QVERIFY(after);
        QCOMPARE(after->time, 1234);
        QVERIFY(after->isCut);

        const auto zeros = parseTime("1970-01-01T00:00:01.234000Z");
        QVERIFY(zeros);
        QCOMPARE(zeros->time, 1234);
        QVERIFY(!zeros->isCut);
    }

    void timesAreWrittenInUtc()
    {
        QCOMPARE(formatTime(92554380000), "1972-12-07T05:33:00Z");
        QCOMPARE(formatTime(92867562300), "1972-12-10T20:32:42.300Z");
        QCOMPARE(formatTime(-1), "1969-12-31T23:59:59.999Z");
    }

    void timesThatIsoCannotWriteAreNumbers()
    {
        QCOMPARE(formatTime(253402300799999), "9999-12-31T23:59:59.999Z");
        QCOMPARE(formatTime(253402300800000), "253402300800000");
        QCOMPARE(formatTime(-62135596800000), "0001-01-01T00:00:00Z");
        QCOMPARE(formatTime(-62135596800001), "-62135596800001");
        QCOMPARE(formatTime(farthestTime), "8640000000000000");
    }

    void whatIsWrittenIsReadBack()
    {
        for (const qint64 time : {Q_INT64_C(0), Q_INT64_C(-1), Q_INT64_C(999), Q_INT64_C(1425291300000),
                                  Q_INT64_C(-62135596800001), Q_INT64_C(-62135596800000), farthestTime, -farthestTime})
            QCOMPARE(parseTime(formatTime(time))->time, time);
    }
};

QTEST_APPLESS_MAIN(TestTimeText)
#include "tst_time_text.moc"
