#include <hoxtools/dtg.h>

#include <QDateTime>
#include <QLocale>
#include <QRegularExpression>
#include <QScopeGuard>
#include <QTest>
#include <QTimeZone>

#include <ctime>
#include <limits>

namespace {

qint64 utc(int year, int month, int day, int hour = 0, int minute = 0, int second = 0, int msec = 0)
{
    const QDateTime time(QDate(year, month, day), QTime(hour, minute, second, msec), QTimeZone::utc());
    return time.toMSecsSinceEpoch();
}

void setProcessTimeZone(const QByteArray& name)
{
    qputenv("TZ", name);
    tzset();
}

} // namespace

class TestDtg : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void formatsHaveTheirNumbers();
    void zoneIsZUntilSet();
    void everyLetterButJBecomesTheZone();
    void otherZonesAreRefused_data();
    void otherZonesAreRefused();
    void lettersHaveTheirOffsets_data();
    void lettersHaveTheirOffsets();
    void otherLettersHaveNoOffset_data();
    void otherLettersHaveNoOffset();
    void okMayBeLeftOut();

    void timesAreWrittenInTheZone_data();
    void timesAreWrittenInTheZone();
    void monthsAreEnglish_data();
    void monthsAreEnglish();
    void partsOfASecondAreDropped();
    void localeDoesNotMatter();
    void timeZoneOfTheSystemDoesNotMatter();
    void timesOutOfRangeGiveANullText();
};

void TestDtg::init()
{
    QTest::failOnWarning(QRegularExpression(".?"));
}

void TestDtg::cleanup()
{
    QVERIFY(DTG::setTimezone('Z'));
}

void TestDtg::formatsHaveTheirNumbers()
{
    QCOMPARE(static_cast<int>(DTG::Short), 0);
    QCOMPARE(static_cast<int>(DTG::Full), 1);
}

void TestDtg::zoneIsZUntilSet()
{
    QCOMPARE(DTG::timezone(), 'Z');
}

void TestDtg::everyLetterButJBecomesTheZone()
{
    for (const char zone : QByteArray("ABCDEFGHIKLMNOPQRSTUVWXYZ")) {
        QVERIFY2(DTG::setTimezone(zone), &zone);
        QCOMPARE(DTG::timezone(), zone);
    }
}

void TestDtg::otherZonesAreRefused_data()
{
    QTest::addColumn<char>("zone");
    QTest::newRow("J") << 'J';
    QTest::newRow("lower case") << 'b';
    QTest::newRow("lower case z") << 'z';
    QTest::newRow("before A") << '@';
    QTest::newRow("after Z") << '[';
    QTest::newRow("digit") << '1';
    QTest::newRow("null") << '\0';
    QTest::newRow("beyond ASCII") << '\xC4';
}

void TestDtg::otherZonesAreRefused()
{
    QFETCH(char, zone);
    QVERIFY(DTG::setTimezone('B'));
    QVERIFY(!DTG::setTimezone(zone));
    QCOMPARE(DTG::timezone(), 'B');
}

void TestDtg::lettersHaveTheirOffsets_data()
{
    QTest::addColumn<char>("zone");
    QTest::addColumn<int>("hours");
    const QByteArray east("ABCDEFGHIKLM");
    const QByteArray west("NOPQRSTUVWXY");
    for (int i = 0; i < 12; ++i) {
        QTest::newRow(east.mid(i, 1).constData()) << east[i] << i + 1;
        QTest::newRow(west.mid(i, 1).constData()) << west[i] << -i - 1;
    }
    QTest::newRow("Z") << 'Z' << 0;
}

void TestDtg::lettersHaveTheirOffsets()
{
    QFETCH(char, zone);
    bool ok = false;
    QTEST(DTG::timezone2Hours(zone, &ok), "hours");
    QVERIFY(ok);
}

void TestDtg::otherLettersHaveNoOffset_data()
{
    otherZonesAreRefused_data();
}

void TestDtg::otherLettersHaveNoOffset()
{
    QFETCH(char, zone);
    bool ok = true;
    QCOMPARE(DTG::timezone2Hours(zone, &ok), 0);
    QVERIFY(!ok);
}

void TestDtg::okMayBeLeftOut()
{
    QCOMPARE(DTG::timezone2Hours('M'), 12);
    QCOMPARE(DTG::timezone2Hours('J'), 0);
}

void TestDtg::timesAreWrittenInTheZone_data()
{
    QTest::addColumn<char>("zone");
    QTest::addColumn<qint64>("msecs");
    QTest::addColumn<QString>("full");

    const qint64 afternoon = utc(2026, 11, 20, 13, 45, 1);
    QTest::newRow("Z") << 'Z' << afternoon << "20134501Z NOV 26";
    QTest::newRow("B is two hours ahead") << 'B' << utc(2026, 11, 20, 11, 45, 1) << "20134501B NOV 26";
    QTest::newRow("M is twelve hours ahead") << 'M' << afternoon << "21014501M NOV 26";
    QTest::newRow("Y is twelve hours behind") << 'Y' << afternoon << "20014501Y NOV 26";
    QTest::newRow("R is five hours behind") << 'R' << afternoon << "20084501R NOV 26";
    QTest::newRow("offset reaches the next month and year") << 'A' << utc(2026, 12, 31, 23) << "01000000A JAN 27";
    QTest::newRow("offset reaches the year before") << 'N' << utc(2026, 1, 1, 0, 59, 59) << "31235959N DEC 25";
    QTest::newRow("leap day") << 'K' << utc(2028, 2, 28, 14) << "29000000K FEB 28";
    QTest::newRow("epoch") << 'Z' << qint64(0) << "01000000Z JAN 70";
    QTest::newRow("last second before the epoch") << 'Z' << qint64(-1) << "31235959Z DEC 69";
    QTest::newRow("before the epoch, ahead of it in the zone") << 'C' << qint64(-1) << "01025959C JAN 70";
    QTest::newRow("long before the epoch") << 'Z' << utc(1907, 6, 9, 1, 2, 3) << "09010203Z JUN 07";
    QTest::newRow("year of four digits ends in two") << 'Z' << utc(2100, 3, 4, 5, 6, 7) << "04050607Z MAR 00";
}

void TestDtg::timesAreWrittenInTheZone()
{
    QFETCH(char, zone);
    QFETCH(qint64, msecs);
    QFETCH(QString, full);
    QVERIFY(DTG::setTimezone(zone));
    QCOMPARE(DTG::toStringMSec(msecs, DTG::Full), full);
    QCOMPARE(DTG::toStringMSec(msecs, DTG::Short), full.left(9));
}

void TestDtg::monthsAreEnglish_data()
{
    QTest::addColumn<int>("month");
    QTest::addColumn<QString>("name");
    const QStringList names = QString("JAN FEB MAR APR MAY JUN JUL AUG SEP OCT NOV DEC").split(' ');
    for (int month = 1; month <= 12; ++month)
        QTest::newRow(qPrintable(names[month - 1])) << month << names[month - 1];
}

void TestDtg::monthsAreEnglish()
{
    QFETCH(int, month);
    QFETCH(QString, name);
    QCOMPARE(DTG::toStringMSec(utc(2026, month, 15), DTG::Full), "15000000Z " + name + " 26");
}

void TestDtg::partsOfASecondAreDropped()
{
    QCOMPARE(DTG::toStringMSec(utc(2026, 11, 20, 13, 45, 1, 999), DTG::Full), QString("20134501Z NOV 26"));
}

void TestDtg::localeDoesNotMatter()
{
    const auto restore = qScopeGuard([] { QLocale::setDefault(QLocale::system()); });
    for (const QLocale::Language language : {QLocale::German, QLocale::Arabic, QLocale::Turkish}) {
        QLocale::setDefault(QLocale(language));
        QCOMPARE(DTG::toStringMSec(utc(2026, 10, 20, 13, 45, 1), DTG::Full), QString("20134501Z OCT 26"));
        QCOMPARE(DTG::toStringMSec(utc(2026, 4, 20, 13, 45, 1), DTG::Full), QString("20134501Z APR 26"));
    }
}

void TestDtg::timeZoneOfTheSystemDoesNotMatter()
{
    const QByteArray previous = qgetenv("TZ");
    const auto restore = qScopeGuard([&previous] { setProcessTimeZone(previous); });
    for (const char* const name : {"America/New_York", "Asia/Kathmandu"}) {
        setProcessTimeZone(name);
        QCOMPARE(DTG::toStringMSec(utc(2026, 7, 20, 13, 45, 1), DTG::Full), QString("20134501Z JUL 26"));
    }
}

void TestDtg::timesOutOfRangeGiveANullText()
{
    QVERIFY(DTG::setTimezone('M'));
    QVERIFY(DTG::toStringMSec(std::numeric_limits<qint64>::max(), DTG::Full).isNull());
    QVERIFY(DTG::setTimezone('Y'));
    QVERIFY(DTG::toStringMSec(std::numeric_limits<qint64>::min(), DTG::Full).isNull());
}

QTEST_APPLESS_MAIN(TestDtg)
#include "tst_dtg.moc"
