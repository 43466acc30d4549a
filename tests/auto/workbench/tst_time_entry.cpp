#include <QDateTime>
#include <QTest>

#include <workbench/time_entry.h>

using Workbench::parseTimeEntry;
using Workbench::TimeEntry;
using Workbench::TimeEntryContext;

namespace {

qint64 at(const char* iso)
{
    const QDateTime time = QDateTime::fromString(QString::fromLatin1(iso), Qt::ISODateWithMs);
    Q_ASSERT(time.isValid());
    return time.toMSecsSinceEpoch();
}

TimeEntryContext context(int offsetHours = 0)
{
    TimeEntryContext made;
    made.now = at("2026-11-21T12:30:15Z");
    made.here = at("1972-12-07T05:33:00Z");
    made.document = VeskTimeline::Kit::TimeSpan{1000, 2000};
    made.offsetHours = offsetHours;
    return made;
}

} // namespace

class TestTimeEntry : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void timesAreRead_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<qint64>("time");
        QTest::addColumn<bool>("isWholeDay");
        const auto row = [](const char* text, const char* iso, bool isWholeDay = false) {
            QTest::newRow(text) << QString::fromUtf8(text) << at(iso) << isWholeDay;
        };
        row("1972-12-07T05:33:00Z", "1972-12-07T05:33:00Z");
        row("1972-12-07 05:33", "1972-12-07T05:33:00Z");
        row("1972-12-07t05:33:07.25z", "1972-12-07T05:33:07.250Z");
        row("1972-12-07 05:33:07,1239", "1972-12-07T05:33:07.123Z");
        row("1972-12-07 05:33+02:00", "1972-12-07T03:33:00Z");
        row("1972-12-07 05:33 -0730", "1972-12-07T13:03:00Z");
        row("1972-12-07 05:33 +02", "1972-12-07T03:33:00Z");
        row("1972-12-07 24:00", "1972-12-08T00:00:00Z");
        row("  1972-12-07  ", "1972-12-07T00:00:00Z", true);
        row("1972-12", "1972-12-01T00:00:00Z", true);
        row("1972", "1972-01-01T00:00:00Z", true);
        row("33", "0033-01-01T00:00:00Z", true);
        row("0001-01-01", "0001-01-01T00:00:00Z", true);
        row("9999-12-31 23:59:59.999", "9999-12-31T23:59:59.999Z");
        row("7.12.1972", "1972-12-07T00:00:00Z", true);
        row("07. 12. 1972 5:33", "1972-12-07T05:33:00Z");
        row("7 Dec 1972", "1972-12-07T00:00:00Z", true);
        row("7. december 1972, 5:33", "1972-12-07T05:33:00Z");
        row("7dec1972 05:33", "1972-12-07T05:33:00Z");
        row("Dec 7, 1972", "1972-12-07T00:00:00Z", true);
        row("December 7th 1972", "1972-12-07T00:00:00Z", true);
        row("May 1804", "1804-05-01T00:00:00Z", true);
        row("29 Feb 2000", "2000-02-29T00:00:00Z", true);
        row("14:30", "1972-12-07T14:30:00Z");
        row("14:30:15Z", "1972-12-07T14:30:15Z");
        row("now", "2026-11-21T12:30:15Z");
        row("NOW", "2026-11-21T12:30:15Z");
        row("today", "2026-11-21T00:00:00Z", true);
        row("tomorrow", "2026-11-22T00:00:00Z", true);
        row("yesterday", "2026-11-20T00:00:00Z", true);
        row("first", "1970-01-01T00:00:01Z");
        row("Last", "1970-01-01T00:00:02Z");
        row("+3d", "1972-12-10T05:33:00Z");
        row("-2h 30min", "1972-12-07T03:03:00Z");
        row("+ 1 week", "1972-12-14T05:33:00Z");
        row("+1mo", "1973-01-07T05:33:00Z");
        row("-1y", "1971-12-07T05:33:00Z");
        row("+90m", "1972-12-07T07:03:00Z");
        row("+10s", "1972-12-07T05:33:10Z");
        row("-5ms", "1972-12-07T05:32:59.995Z");
    }
    void timesAreRead()
    {
        QFETCH(QString, text);
        const TimeEntry entry = parseTimeEntry(text, context());
        QCOMPARE(entry.error, QString());
        QTEST(entry.time, "time");
        QTEST(entry.isWholeDay, "isWholeDay");
    }

    void timesWithoutAZoneAreInThatOfTheRuler()
    {
        QCOMPARE(parseTimeEntry("1972-12-07 05:33", context(2)).time, at("1972-12-07T03:33:00Z"));
        QCOMPARE(parseTimeEntry("1972-12-07 05:33Z", context(2)).time, at("1972-12-07T05:33:00Z"));
        QCOMPARE(parseTimeEntry("1972-12-07", context(-5)).time, at("1972-12-07T05:00:00Z"));
        QCOMPARE(parseTimeEntry("today", context(12)).time, at("2026-11-21T12:00:00Z"));
        // At -6 hours it is still the day before.
        QCOMPARE(parseTimeEntry("14:00", context(-6)).time, at("1972-12-06T20:00:00Z"));
    }

    void whatIsNoTimeIsRefusedWithAReason_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("reason");
        const auto row = [](const char* text, const char* reason) {
            QTest::newRow(text) << QString::fromUtf8(text) << QString::fromUtf8(reason);
        };
        row("", "Write a date, a time or both.");
        row("1972-02-30", "February 1972 has no day 30.");
        row("29 Feb 1900", "February 1900 has no day 29.");
        row("1972-13-01", "There is no month 13.");
        row("7 Foo 1972", "“Foo” is no month.");
        row("0000-01-01", "There are the years 1 to 9999, not 0.");
        row("10000-01-01", "There are the years 1 to 9999, not 10000.");
        row("1972-12-07 25:00", "There is no hour 25.");
        row("1972-12-07 24:01", "There is no hour 24.");
        row("1972-12-07 05:60", "There is no minute 60.");
        row("1972-12-07 05:33:61", "There is no second 61.");
        row("1972-12-07 05:33 +19:00", "There is no zone +1900.");
        row("soon", "“soon” is no date. Write 1972-12-07 05:33, 7 Dec 1972, now or +3d.");
        row("soon 05:33", "“soon” is no date. Write 1972-12-07 05:33, 7 Dec 1972, now or +3d.");
        row("7/12/1972", "Day or month first? Write the date as 1972-12-07 or 7 Dec 1972.");
        row("+3", "A distance looks like this: +3d, +2h 30min.");
        row("+3 parsecs", "“parsecs” is no unit of time; there are ms, s, min, h, d, w, mo and y.");
        row("+99999999999d", "“99999999999d” is too far.");
        row("+9000y", "That is outside the years 1 to 9999.");
        row("-2000000000d", "That is outside the years 1 to 9999.");
        row("0001-01-01 00:00 +01:00", "That is outside the years 1 to 9999.");
        row("9999-12-31 24:00", "That is outside the years 1 to 9999.");
    }
    void whatIsNoTimeIsRefusedWithAReason()
    {
        QFETCH(QString, text);
        const TimeEntry entry = parseTimeEntry(text, context());
        QVERIFY(!entry.isOk());
        QTEST(entry.error, "reason");
    }

    void anEmptyDocumentHasNoFirstItem()
    {
        TimeEntryContext empty = context();
        empty.document.reset();
        QCOMPARE(parseTimeEntry("first", empty).error, "There are no items.");
    }
};

QTEST_GUILESS_MAIN(TestTimeEntry)
#include "tst_time_entry.moc"
