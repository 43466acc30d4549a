#include <VeskTimelineKit/ics_reader.h>

#include <QBuffer>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <QTimeZone>

using namespace VeskTimeline::Kit;

namespace {

qint64 utc(const char* iso)
{
    return QDateTime::fromString(QString::fromLatin1(iso) + "Z", Qt::ISODate).toMSecsSinceEpoch();
}

Result<Document> readRaw(QByteArray text, const ReadOptions& options = {})
{
    QBuffer buffer(&text);
    buffer.open(QIODevice::ReadOnly);
    return readIcs(buffer, "f.ics", options);
}

// The lines as the content of a calendar with the name Cal.
Result<Document> read(const QByteArrayList& lines, const ReadOptions& options = {})
{
    return readRaw("BEGIN:VCALENDAR\r\nVERSION:2.0\r\nX-WR-CALNAME:Cal\r\n" + lines.join("\r\n") +
                       "\r\nEND:VCALENDAR\r\n",
                   options);
}

QByteArrayList vevent(const QByteArrayList& lines)
{
    return QByteArrayList{"BEGIN:VEVENT"} + lines + QByteArrayList{"END:VEVENT"};
}

// "path: label start +seconds" of every item, or the error's text.
QStringList itemTexts(const Result<Document>& result)
{
    if (!result)
        return {result.error().text()};
    QStringList texts;
    for (const DocumentTrack& track : result.value().tracks()) {
        for (const DocumentItem& item : track.items)
            texts.append(QString("%1: %2 %3 +%4")
                             .arg(track.path.join('>'), item.label,
                                  QDateTime::fromMSecsSinceEpoch(item.start, Qt::UTC).toString(Qt::ISODate))
                             .arg(item.duration / 1000));
    }
    return texts;
}

QStringList starts(const Result<Document>& result)
{
    if (!result)
        return {result.error().text()};
    QStringList texts;
    for (const DocumentTrack& track : result.value().tracks()) {
        for (const DocumentItem& item : track.items)
            texts.append(QDateTime::fromMSecsSinceEpoch(item.start, Qt::UTC).toString("yyyy-MM-dd hh:mm"));
    }
    return texts;
}

QStringList warnings(const Result<Document>& result)
{
    return result ? result.value().warnings() : QStringList{result.error().text()};
}

DocumentItem onlyItem(const Result<Document>& result)
{
    if (!result || result.value().itemCount() != 1)
        return {"not one item", 0, 0, {}, true, {}, {}};
    for (const DocumentTrack& track : result.value().tracks()) {
        if (!track.items.empty())
            return track.items.front();
    }
    return {};
}

const QByteArrayList berlin{"BEGIN:VTIMEZONE",
                            "TZID:Here",
                            "BEGIN:DAYLIGHT",
                            "DTSTART:19810329T020000",
                            "TZOFFSETFROM:+0100",
                            "TZOFFSETTO:+0200",
                            "RRULE:FREQ=YEARLY;BYMONTH=3;BYDAY=-1SU",
                            "END:DAYLIGHT",
                            "BEGIN:STANDARD",
                            "DTSTART:19961027T030000",
                            "TZOFFSETFROM:+0200",
                            "TZOFFSETTO:+0100",
                            "RRULE:FREQ=YEARLY;BYMONTH=10;BYDAY=-1SU",
                            "END:STANDARD",
                            "END:VTIMEZONE"};

} // namespace

class TestIcsReader : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void eventsOfTooManyCategoriesAreLeftOut()
    {
        QByteArrayList lines;
        for (int i = 0; i < 100'004; ++i)
            lines += vevent({"CATEGORIES:c" + QByteArray::number(i), "DTSTART:20200101T000000Z"});
        lines += vevent({"CATEGORIES:c100003", "DTSTART:20200101T000000Z", "RRULE:FREQ=DAILY;COUNT=3"});
        const auto result = read(lines);
        QVERIFY(result);
        QCOMPARE(result.value().tracks().size(), Document::mostTracks);
        QCOMPARE(result.value().itemCount(), 99'999);
        QCOMPARE(result.value().warnings(),
                 QStringList{"f.ics: items left out because there would be too many tracks: 8"});
    }

    void init() { QTest::failOnWarning(QRegularExpression(".?")); }

    void eventsBecomeItemsOfTheCalendarsTrack()
    {
        const auto result = read(vevent({"SUMMARY:a", "DTSTART:20200102T030405Z", "DTEND:20200102T040405Z"}) +
                                 vevent({"SUMMARY:b", "DTSTART:20200102T030405Z", "DURATION:PT90S"}) +
                                 vevent({"SUMMARY:c", "DTSTART:19600102T030405Z"}));
        QCOMPARE(itemTexts(result), (QStringList{"Cal: a 2020-01-02T03:04:05Z +3600", "Cal: b 2020-01-02T03:04:05Z +90",
                                                 "Cal: c 1960-01-02T03:04:05Z +0"}));
        QCOMPARE(warnings(result), QStringList());
    }

    void allDayEventsRunFromMidnightToMidnight()
    {
        const auto result =
            read(vevent({"DTSTART;VALUE=DATE:20200102", "DTEND;VALUE=DATE:20200105"}) +
                 vevent({"DTSTART;VALUE=DATE:20200102"}) + vevent({"DTSTART;VALUE=DATE:20200102", "DURATION:P1W"}));
        QCOMPARE(itemTexts(result),
                 (QStringList{"Cal:  2020-01-02T00:00:00Z +259200", "Cal:  2020-01-02T00:00:00Z +86400",
                              "Cal:  2020-01-02T00:00:00Z +604800"}));
        QCOMPARE(result.value().tracks()[0].items[0].attributes.value("DTSTART;VALUE"), "DATE");
    }

    void propertiesBecomeAttributes()
    {
        const auto item = onlyItem(
            read(vevent({"SUMMARY;LANGUAGE=en:La\\, bel", "DESCRIPTION:one\\ntwo\\\\n", "DTSTART:20200102T030405Z",
                         "LOCATION:Room\\; 1", "UID:u1", "URL:http://a/b,c", "status:CONFIRMED", "COLOR:red",
                         "ATTENDEE;CN=\"A; B\";MEMBER=\"m:a\",\"m:b\":mailto:a", "ATTENDEE:mailto:b", "PRIORITY:5"})));
        QCOMPARE(item.label, "La, bel");
        QCOMPARE(item.description, "one\ntwo\\n");
        QCOMPARE(item.color, QColor(Qt::red));
        const QMap<QString, QString> expected{{"SUMMARY;LANGUAGE", "en"},
                                              {"LOCATION", "Room; 1"},
                                              {"UID", "u1"},
                                              {"URL", "http://a/b,c"},
                                              {"STATUS", "CONFIRMED"},
                                              {"ATTENDEE", "mailto:a"},
                                              {"ATTENDEE;CN", "A; B"},
                                              {"ATTENDEE;MEMBER", "\"m:a\",\"m:b\""},
                                              {"ATTENDEE#2", "mailto:b"},
                                              {"PRIORITY", "5"}};
        QCOMPARE(item.attributes, expected);
    }

    void foldedLinesArePutTogether()
    {
        const auto item =
            onlyItem(read(vevent({"SUM\r\n MARY:one\r\n\t two \xc3\r\n \xa4", "DTSTART:20200102T0\n 30405Z"})));
        QCOMPARE(item.label, QString::fromUtf8("one two ä"));
        QCOMPARE(item.start, utc("2020-01-02T03:04:05"));
    }

    void eachCalendarOfAStreamIsATrack()
    {
        const QByteArray dated = "BEGIN:VEVENT\nDTSTART:20200102T030405Z\nEND:VEVENT\nEND:VCALENDAR\n";
        const auto result = readRaw("BEGIN:VCALENDAR\nNAME:N\n" + dated + "BEGIN:VCALENDAR\n" + dated +
                                    "BEGIN:VCALENDAR\n" + dated + "BEGIN:VCALENDAR\nX-WR-CALNAME:N\n" + dated);
        QCOMPARE(result.value().tracks().size(), std::size_t(3));
        QCOMPARE(result.value().tracks()[0].path, QStringList{"N"});
        QCOMPARE(result.value().tracks()[0].items.size(), std::size_t(2));
        QCOMPARE(result.value().tracks()[1].path, QStringList{"f"});
        QCOMPARE(result.value().tracks()[2].path, QStringList{"f (2)"});
    }

    void categoriesAreTracksBelowTheCalendar()
    {
        const auto result = read(vevent({"SUMMARY:a", "DTSTART:20200102T030405Z", "CATEGORIES:X\\,Y,Z"}) +
                                 vevent({"SUMMARY:b", "DTSTART:20200102T030405Z", "CATEGORIES:Z"}) +
                                 vevent({"SUMMARY:c", "DTSTART:20200102T030405Z"}));
        QCOMPARE(itemTexts(result), (QStringList{"Cal: c 2020-01-02T03:04:05Z +0", "Cal>X,Y: a 2020-01-02T03:04:05Z +0",
                                                 "Cal>Z: b 2020-01-02T03:04:05Z +0"}));
        QCOMPARE(result.value().tracks()[1].items[0].attributes.value("CATEGORIES"), "X\\,Y,Z");
        QVERIFY(!result.value().tracks()[2].items[0].attributes.contains("CATEGORIES"));
    }

    void theCalendarsColorIsTheTracks()
    {
        const auto result = read({"X-APPLE-CALENDAR-COLOR:#11223380"});
        QCOMPARE(result.value().tracks()[0].color, QColor(0x11, 0x22, 0x33, 0x80));
    }

    void timesAreToldByTheZonesOfTheStream()
    {
        const auto result = read(vevent({"DTSTART;TZID=Here:20200115T120000"}) +
                                 vevent({"DTSTART;TZID=\"Here\":20200715T120000", "DTEND;TZID=Here:20200715T130000"}) +
                                 vevent({"DTSTART;TZID=Here:99990715T120000"}) + berlin);
        QCOMPARE(starts(result), (QStringList{"2020-01-15 11:00", "2020-07-15 10:00", "9999-07-15 10:00"}));
        QCOMPARE(warnings(result), QStringList());
    }

    void zonesOfTheStreamAgreeWithTheWellKnownOnes()
    {
        const QTimeZone zone("Europe/Berlin");
        QByteArrayList lines = berlin;
        QList<qint64> expected;
        for (int day = 0; day < 800; ++day) {
            const QDateTime local(QDate(2019, 1, 1).addDays(day), QTime(day % 24, 30), zone);
            if (local.time() != QTime(day % 24, 30))
                continue;
            lines += vevent({"DTSTART;TZID=Here:" + local.toString("yyyyMMdd'T'HHmmss").toLatin1()});
            expected.append(local.toMSecsSinceEpoch());
        }
        QList<qint64> actual;
        const auto result = read(lines);
        for (const DocumentItem& item : result.value().tracks()[0].items)
            actual.append(item.start);
        QCOMPARE(actual, expected);
    }

    void timesThatAClockSkipsOrShowsTwiceAreTheFormatsOnes()
    {
        for (const QByteArray& id : {QByteArray("Here"), QByteArray("Europe/Berlin")}) {
            const auto result = read(berlin + vevent({"DTSTART;TZID=" + id + ":20200329T023000"}) +
                                     vevent({"DTSTART;TZID=" + id + ":20201025T023000"}) +
                                     vevent({"DTSTART;TZID=" + id + ":20200329T033000"}) +
                                     vevent({"DTSTART;TZID=" + id + ":20201025T033000"}));
            QCOMPARE(starts(result),
                     (QStringList{"2020-03-29 01:30", "2020-10-25 00:30", "2020-03-29 01:30", "2020-10-25 02:30"}));
        }
    }

    void wellKnownZonesNeedNoDescription()
    {
        const auto result = read(vevent({"DTSTART;TZID=America/New_York:20200715T120000"}) +
                                 vevent({"DTSTART;TZID=/example.org/20050126_1/Asia/Tokyo:20200715T120000"}) +
                                 vevent({"DTSTART;TZID=W. Europe Standard Time:20200715T120000"}));
        QCOMPARE(starts(result), (QStringList{"2020-07-15 16:00", "2020-07-15 03:00", "2020-07-15 10:00"}));
        QCOMPARE(warnings(result), QStringList());
    }

    void otherZonesAndFloatingTimesAreUtcWithAWarning()
    {
        const auto result =
            read(vevent({"DTSTART;TZID=Nowhere:20200715T120000"}) + vevent({"DTSTART:20200715T130000"}));
        QCOMPARE(starts(result), (QStringList{"2020-07-15 12:00", "2020-07-15 13:00"}));
        QCOMPARE(warnings(result),
                 (QStringList{"f.ics:4: the time zone \"Nowhere\" is not known; its times are taken as UTC",
                              "f.ics:7: events without a time zone are taken as UTC: 1"}));
    }

    void aLongNameOfAZoneMayStillEndInAWellKnownOne()
    {
        const QByteArray id = QByteArray("a/").repeated(1000000) + "Europe/Berlin";
        const auto result = read(vevent({"DTSTART;TZID=" + id + ":20200715T120000"}));
        QCOMPARE(starts(result), QStringList{"2020-07-15 10:00"});
        QCOMPARE(warnings(result), QStringList());
    }

    void aTimeZoneOfTooManyLinesIsLeftOut()
    {
        const QByteArrayList zone{"BEGIN:VTIMEZONE", "TZID:Much", QByteArray("X-A:B\r\n").repeated(300000) + "X-A:B",
                                  "END:VTIMEZONE"};
        const auto result = read(zone + berlin + vevent({"DTSTART;TZID=Here:20200715T120000"}));
        QCOMPARE(starts(result), QStringList{"2020-07-15 10:00"});
        QCOMPARE(warnings(result),
                 QStringList{"f.ics:4: the time zone is left out: those of the file are too long for clocks"});
    }

    void textsAreKeptWhateverTheirCharacters()
    {
        const QString mark(QChar::ByteOrderMark);
        const QString half = QChar(0xd83d) + QString("x"); // of a pair
        const auto result = read(vevent({"DTSTART:20200101T000000Z", "SUMMARY:" + (mark + mark + "a").toUtf8(),
                                         "DESCRIPTION:" + QStringLiteral("\u00e4\U0001f600").toUtf8(),
                                         "X-VESKTIMELINE-ATTRIBUTE:[\"\\\\ud83dx\"\\,\"\\\\ufeffb\"]", "X-NONE:"}));
        QVERIFY(result);
        const DocumentItem& item = result.value().tracks().at(0).items.at(0);
        QCOMPARE(item.label, mark + "a");
        QCOMPARE(item.description, QStringLiteral("\u00e4\U0001f600"));
        QCOMPARE(item.attributes, (QMap<QString, QString>{{half, mark + "b"}, {"X-NONE", ""}}));
    }

    void zonesThatMakeNoSenseAreLeftOut()
    {
        const auto result = read({"BEGIN:VTIMEZONE", "X-A:B", "END:VTIMEZONE", "BEGIN:VTIMEZONE", "TZID:S",
                                  "BEGIN:STANDARD", "DTSTART:19700101T000000", "TZOFFSETFROM:+0000", "TZOFFSETTO:+0100",
                                  "RRULE:FREQ=SECONDLY", "END:STANDARD", "END:VTIMEZONE"});
        QCOMPARE(warnings(result),
                 (QStringList{"f.ics:4: the time zone has no TZID and is left out",
                              "f.ics:7: the time zone \"S\" tells no clock that can be followed and is left out"}));
    }

    void aRuleBecomesOccurrencesUpToTwoYearsAfterTheLastDate()
    {
        const auto result =
            read(vevent({"DTSTART:20200115T100000Z", "DTEND:20200115T110000Z", "RRULE:FREQ=MONTHLY;INTERVAL=6"}) +
                 vevent({"DTSTART:20200715T090000Z", "DTEND:20200715T100000Z"}));
        QCOMPARE(starts(result),
                 (QStringList{"2020-01-15 10:00", "2020-07-15 10:00", "2021-01-15 10:00", "2021-07-15 10:00",
                              "2022-01-15 10:00", "2022-07-15 10:00", "2020-07-15 09:00"}));
        QCOMPARE(warnings(result), QStringList{"f.ics:4: occurrences after 2022-07-15T10:00:00Z are left out"});
    }

    void countCountsTheStart()
    {
        QCOMPARE(starts(read(vevent({"DTSTART:20200101T100000Z", "RRULE:FREQ=DAILY;COUNT=3"}))),
                 (QStringList{"2020-01-01 10:00", "2020-01-02 10:00", "2020-01-03 10:00"}));
        QCOMPARE(starts(read(vevent({"DTSTART:20200101T100000Z", "RRULE:FREQ=WEEKLY;BYDAY=FR;COUNT=3"}))),
                 (QStringList{"2020-01-01 10:00", "2020-01-03 10:00", "2020-01-10 10:00"}));
    }

    void untilIsTheLastTimeInItsOwnZone()
    {
        const auto until = [](const QByteArray& value) {
            return starts(
                       read(berlin + vevent({"DTSTART;TZID=Here:20200101T100000", "RRULE:FREQ=DAILY;UNTIL=" + value})))
                .size();
        };
        QCOMPARE(until("20200103T090000Z"), 3);
        QCOMPARE(until("20200103T085959Z"), 2);
        QCOMPARE(until("20200103T100000"), 3);
        QCOMPARE(until("20200103T095959"), 2);
        QCOMPARE(until("20200103"), 3);
        QCOMPARE(starts(read(vevent({"DTSTART;VALUE=DATE:20200101", "RRULE:FREQ=DAILY;UNTIL=20200103"}))).size(), 3);
    }

    void occurrencesKeepTheTimeOfTheClock()
    {
        QCOMPARE(starts(read(berlin + vevent({"DTSTART;TZID=Here:20200328T120000", "RRULE:FREQ=DAILY;COUNT=3"}))),
                 (QStringList{"2020-03-28 11:00", "2020-03-29 10:00", "2020-03-30 10:00"}));
    }

    void aDurationOfADayIsAsLongAsThatDay()
    {
        const auto result =
            read(berlin + vevent({"DTSTART;TZID=Here:20200328T120000", "DURATION:P1D", "RRULE:FREQ=DAILY;COUNT=2"}));
        QCOMPARE(itemTexts(result),
                 (QStringList{"Cal:  2020-03-28T11:00:00Z +82800", "Cal:  2020-03-29T10:00:00Z +86400"}));
    }

    void datesAndPeriodsAreAdded()
    {
        const auto result = read(vevent({"DTSTART:20200101T100000Z", "DTEND:20200101T103000Z",
                                         "RDATE:20200105T100000Z,20200103T100000Z,20200101T100000Z",
                                         "RDATE;VALUE=PERIOD:20200107T100000Z/20200107T120000Z,20200108T100000Z/PT1H",
                                         "RDATE;TZID=Asia/Tokyo:20200110T000000"}));
        QCOMPARE(itemTexts(result),
                 (QStringList{"Cal:  2020-01-01T10:00:00Z +1800", "Cal:  2020-01-03T10:00:00Z +1800",
                              "Cal:  2020-01-05T10:00:00Z +1800", "Cal:  2020-01-07T10:00:00Z +7200",
                              "Cal:  2020-01-08T10:00:00Z +3600", "Cal:  2020-01-09T15:00:00Z +1800"}));
        QCOMPARE(warnings(result), QStringList());
    }

    void manyDatesOfOneLineAreAllAdded()
    {
        QByteArrayList dates;
        for (int i = 1; i <= 2000; ++i)
            dates.append(QDateTime(QDate(2020, 1, 1).addDays(i), QTime(0, 0), Qt::UTC)
                             .toString("yyyyMMdd'T000000Z'")
                             .toLatin1());
        QCOMPARE(starts(read(vevent({"DTSTART:20200101T000000Z", "RDATE:" + dates.join(',')}))).size(), 2001);
        QCOMPARE(starts(read(
                     vevent({"DTSTART:20200101T000000Z", "RRULE:FREQ=DAILY;COUNT=2001", "EXDATE:" + dates.join(',')}))),
                 QStringList{"2020-01-01 00:00"});
    }

    void exceptionsAreTakenAway()
    {
        const QByteArrayList series{"DTSTART;TZID=Here:20200101T100000", "RRULE:FREQ=DAILY;COUNT=3"};
        for (const QByteArray& exception :
             {QByteArray("EXDATE;TZID=Here:20200102T100000"), QByteArray("EXDATE:20200102T090000Z"),
              QByteArray("EXDATE;VALUE=DATE:20200102"), QByteArray("EXDATE;TZID=Asia/Tokyo:20200102T180000")})
            QCOMPARE(starts(read(berlin + vevent(series + QByteArrayList{exception}))),
                     (QStringList{"2020-01-01 09:00", "2020-01-03 09:00"}));
        QCOMPARE(starts(read(vevent({"DTSTART;VALUE=DATE:20200101", "RRULE:FREQ=DAILY;COUNT=3",
                                     "EXDATE:20200101T000000Z", "EXDATE;VALUE=DATE:20200103"}))),
                 QStringList{"2020-01-02 00:00"});
    }

    void anEventWithARecurrenceIdReplacesItsOccurrence()
    {
        const auto result =
            read(vevent({"UID:u", "SUMMARY:moved", "DTSTART:20210102T100000Z", "RECURRENCE-ID:20200102T100000Z"}) +
                 vevent({"UID:u", "SUMMARY:s", "DTSTART:20200101T100000Z", "RRULE:FREQ=DAILY;COUNT=3"}) +
                 vevent({"UID:v", "SUMMARY:other", "DTSTART:20200101T110000Z", "RECURRENCE-ID:20200101T100000Z"}) +
                 vevent({"UID:u", "SUMMARY:day", "DTSTART:20200103T110000Z", "RECURRENCE-ID;VALUE=DATE:20200103"}));
        QCOMPARE(itemTexts(result),
                 (QStringList{"Cal: moved 2021-01-02T10:00:00Z +0", "Cal: s 2020-01-01T10:00:00Z +0",
                              "Cal: other 2020-01-01T11:00:00Z +0", "Cal: day 2020-01-03T11:00:00Z +0"}));
    }

    void occurrencesStartWithinTheGivenSpan()
    {
        ReadOptions options;
        options.expand = TimeSpan{utc("2020-01-03T10:00:00"), utc("2020-01-05T10:00:00")};
        const auto result = read(
            vevent({"DTSTART:20200101T100000Z", "RRULE:FREQ=DAILY"}) + vevent({"DTSTART:20190101T100000Z"}), options);
        QCOMPARE(starts(result), (QStringList{"2020-01-03 10:00", "2020-01-04 10:00", "2019-01-01 10:00"}));
        QCOMPARE(warnings(result), (QStringList{"f.ics:4: occurrences before 2020-01-03T10:00:00Z are left out",
                                                "f.ics:4: occurrences after 2020-01-05T09:59:59.999Z are left out"}));
    }

    void replacementsStartWithinTheGivenSpan()
    {
        ReadOptions options;
        options.expand = TimeSpan{utc("2020-01-02T00:00:00"), utc("2020-01-03T00:00:00")};
        const auto result = read(vevent({"UID:u", "DTSTART:20200101T100000Z", "RRULE:FREQ=DAILY;COUNT=5"}) +
                                     vevent({"UID:u", "DTSTART:20200105T100000Z", "RECURRENCE-ID:20200102T100000Z"}) +
                                     vevent({"UID:u", "DTSTART:20200102T110000Z", "RECURRENCE-ID:20200104T100000Z"}),
                                 options);
        QCOMPARE(starts(result), QStringList{"2020-01-02 11:00"});
        QCOMPARE(warnings(result).last(), "f.ics:9: the occurrence is outside the span that is read and is left out");
    }

    void noMoreThanAHundredThousandOccurrencesAreMade()
    {
        const auto result =
            read(vevent({"DTSTART:20200101T100000Z", "RRULE:FREQ=DAILY;COUNT=10"}) +
                 vevent({"DTSTART:20200101T100000Z", "RRULE:FREQ=SECONDLY"}) + vevent({"DTSTART:20200101T100000Z"}) +
                 vevent({"DTSTART:20200101T100000Z", "RRULE:FREQ=DAILY;COUNT=10"}));
        QCOMPARE(result.value().itemCount(), 100'001);
        QCOMPARE(warnings(result), (QStringList{"f.ics:8: more than 100000 occurrences; the rest are left out",
                                                "f.ics:15: more than 100000 occurrences; the rest are left out"}));
    }

    void rulesThatNeverComeTrueEndInTime()
    {
        QByteArrayList lines;
        for (const char* frequency : {"SECONDLY", "MINUTELY", "HOURLY", "DAILY", "MONTHLY", "YEARLY"}) {
            for (int i = 0; i < 20; ++i)
                lines += vevent(
                    {"DTSTART:20200101T100000Z", QByteArray("RRULE:FREQ=") + frequency + ";BYMONTH=2;BYMONTHDAY=30"});
        }
        QElapsedTimer timer;
        timer.start();
        const auto result = read(lines);
        QCOMPARE(result.value().itemCount(), 120);
        QVERIFY(
            warnings(result).contains("f.ics:4: the recurrence cannot be followed to its end; the rest are left out"));
        QVERIFY2(timer.elapsed() < 10'000, qPrintable(QString::number(timer.elapsed())));
    }

    void whatIsNoEventIsCounted()
    {
        const auto result = read(vevent({"DTSTART:20200102T030405Z", "BEGIN:VALARM", "TRIGGER:-PT5M", "SUMMARY:alarm",
                                         "END:VALARM", "SUMMARY:a"}) +
                                 QByteArrayList{"BEGIN:VTODO", "BEGIN:VALARM", "END:VALARM", "END:VTODO", "BEGIN:VTODO",
                                                "END:VTODO", "X-WR-CALDESC:x"});
        QCOMPARE(itemTexts(result), QStringList{"Cal: a 2020-01-02T03:04:05Z +0"});
        QCOMPARE(warnings(result), (QStringList{"f.ics:6: components \"VALARM\" are left out: 1",
                                                "f.ics:12: components \"VTODO\" are left out: 2",
                                                "f.ics:18: properties \"X-WR-CALDESC\" of calendars are left out: 1"}));
    }

    void badValuesAreLeftOutWithTheirLine()
    {
        const auto result =
            read(vevent({"SUMMARY:no"}) + vevent({"DTSTART:20201301T000000Z"}) + vevent({"DTSTART:00000101T000000Z"}) +
                 vevent({"DTSTART:20200101T000000Z", "DTEND:20200101T990000Z", "COLOR:reddish", "no colon",
                         "RRULE:FREQ=BOO", "RRULE:FREQ=DAILY;UNTIL=20209999", "EXDATE:x", "DURATION:y"}));
        QCOMPARE(itemTexts(result), QStringList{"Cal:  2020-01-01T00:00:00Z +0"});
        QCOMPARE(warnings(result),
                 (QStringList{"f.ics:4: the event \"no\" has no start that can be read and is left out",
                              "f.ics:8: DTSTART \"20201301T000000Z\" cannot be read and is left out",
                              "f.ics:7: the event \"\" has no start that can be read and is left out",
                              "f.ics:11: DTSTART \"00000101T000000Z\" cannot be read and is left out",
                              "f.ics:10: the event \"\" has no start that can be read and is left out",
                              "f.ics:17: the line \"no colon\" is no property and is left out",
                              "f.ics:15: DTEND \"20200101T990000Z\" cannot be read and is left out",
                              "f.ics:16: COLOR \"reddish\" cannot be read and is left out",
                              "f.ics:18: RRULE \"FREQ=BOO\" cannot be read and is left out",
                              "f.ics:19: RRULE \"FREQ=DAILY;UNTIL=20209999\" cannot be read and is left out",
                              "f.ics:20: EXDATE \"x\" cannot be read and is left out",
                              "f.ics:21: DURATION \"y\" cannot be read and is left out"}));
    }

    void anEndBeforeTheStartIsTakenAsTheStart()
    {
        const auto result = read(vevent({"DTSTART:20200101T000000Z", "DTEND:20190101T000000Z"}));
        QCOMPARE(itemTexts(result), QStringList{"Cal:  2020-01-01T00:00:00Z +0"});
        QCOMPARE(warnings(result),
                 QStringList{"f.ics:4: the event ends before it starts and is taken without a length"});
    }

    void timesBeyondTheYearsOfTheFormatAreLeftOut()
    {
        const auto result = read(vevent({"DTSTART:99991231T230000Z", "DURATION:PT2H"}) +
                                 vevent({"DTSTART:99991231T000000Z", "RRULE:FREQ=DAILY;COUNT=3"}));
        QCOMPARE(starts(result), QStringList{"9999-12-31 00:00"});
        QCOMPARE(warnings(result).first(), "f.ics:4: the event is outside the years 1 to 9999 and is left out");
        QCOMPARE(warnings(result).size(), 2);
    }

    void aFileThatBreaksOffIsReadUpToThere()
    {
        const auto result = readRaw("BEGIN:VCALENDAR\nBEGIN:VEVENT\nDTSTART:20200101T000000Z\nEND:VEVENT\n"
                                    "BEGIN:VEVENT\nDTSTART:20200102T000000Z\nSUMM");
        QCOMPARE(itemTexts(result), QStringList{"f:  2020-01-01T00:00:00Z +0"});
        QCOMPARE(warnings(result), (QStringList{"f.ics:7: the line \"SUMM\" is no property and is left out",
                                                "f.ics:5: the file ends within this event, which is left out",
                                                "f.ics:1: VCALENDAR has no end"}));
    }

    void missingEndsAreMadeUpFor()
    {
        const auto result = readRaw("BEGIN:VCALENDAR\nBEGIN:VEVENT\nDTSTART:20200101T000000Z\n"
                                    "BEGIN:VEVENT\nDTSTART:20200102T000000Z\nEND:VCALENDAR\nEND:VEVENT\n"
                                    "BEGIN:VEVENT\nEND:VEVENT\n");
        QCOMPARE(itemTexts(result), (QStringList{"f:  2020-01-01T00:00:00Z +0", "f:  2020-01-02T00:00:00Z +0"}));
        QCOMPARE(warnings(result), (QStringList{"f.ics:2: VEVENT has no end", "f.ics:4: VEVENT has no end",
                                                "f.ics:7: END:VEVENT without a beginning",
                                                "f.ics:8: components \"VEVENT\" are left out: 1"}));
    }

    void otherEncodingsAndControlCharactersAreRepaired()
    {
        const auto result =
            read(vevent({"SUMMARY:a\xe4", "DTSTART:20200102T030405Z", QByteArray("LOCATION:x\0\x01y", 13)}));
        QCOMPARE(onlyItem(result).label, QString::fromUtf8("aä"));
        QCOMPARE(onlyItem(result).attributes.value("LOCATION"), "xy");
        QCOMPARE(warnings(result), (QStringList{"f.ics:7: lines with control characters, which are dropped: 1",
                                                "f.ics:5: lines that are not UTF-8, taken as ISO 8859-1: 1"}));
    }

    void aFileWithoutACalendarIsRefused()
    {
        const QString reason = "f.ics: no calendar in it: there is no BEGIN:VCALENDAR";
        QCOMPARE(itemTexts(readRaw("")), QStringList{reason});
        QCOMPARE(itemTexts(readRaw("{\"a\": 1}\n")), QStringList{reason});
        QCOMPARE(itemTexts(readRaw("BEGIN:X\nBEGIN:VEVENT\nDTSTART:20200101\nEND:VEVENT\nBEGIN:VTIMEZONE\nEND:X\n")),
                 QStringList{reason});
        QCOMPARE(itemTexts(readRaw(QByteArray(100'000, '\0'))), QStringList{reason});
        QCOMPARE(readIcs("no/such.ics", {}).error().text(), "no/such.ics: No such file or directory");
        QCOMPARE(readIcs(QDir::tempPath(), {}).error().reason, "is a directory");
    }

    void deepNestingIsRefused()
    {
        const QString reason = "f.ics:101: components are more than 100 levels deep";
        QCOMPARE(itemTexts(readRaw("BEGIN:VCALENDAR\n" + QByteArray("BEGIN:X\n").repeated(100'000))),
                 QStringList{reason});
        QCOMPARE(itemTexts(readRaw("BEGIN:VCALENDAR\nBEGIN:VTIMEZONE\n" + QByteArray("BEGIN:X\n").repeated(100'000))),
                 QStringList{reason});
    }

    void longFieldsAreReadAndEndlessOnesRefused()
    {
        const QByteArray longText(10'000'000, 'x');
        const auto item = onlyItem(read(vevent({"DTSTART:20200102T030405Z", "SUMMARY:" + longText})));
        QCOMPARE(item.label.size(), 10'000'000);
        const auto result = readRaw("BEGIN:VCALENDAR\nX:" + QByteArray(40'000'000, 'x'));
        QCOMPARE(itemTexts(result), QStringList{"f.ics:2: the line is too long"});
    }

    void manyRepeatedPropertiesAreAllKept()
    {
        QByteArrayList lines{"DTSTART:20200102T030405Z"};
        for (int i = 0; i < 20'000; ++i)
            lines.append("COMMENT:c");
        const auto item = onlyItem(read(vevent(lines)));
        QCOMPARE(item.attributes.size(), 20'000);
        QCOMPARE(item.attributes.value("COMMENT#20000"), "c");
    }

    void progressGrowsAndCancels()
    {
        QByteArrayList lines;
        for (int i = 0; i < 3'000; ++i)
            lines += vevent({"DTSTART:20200102T030405Z"});
        QList<double> shares;
        ReadOptions options;
        options.progress = [&shares](double share) {
            shares.append(share);
            return true;
        };
        QVERIFY(read(lines, options));
        QVERIFY(!shares.isEmpty());
        QVERIFY(std::is_sorted(shares.begin(), shares.end()));
        QVERIFY(shares.first() >= 0.0 && shares.last() <= 1.0);

        options.progress = [](double) { return false; };
        QCOMPARE(read(lines, options).error().text(), "f.ics: reading was cancelled");
    }

    void aCancelEndsTheExpansionOfARule()
    {
        ReadOptions options;
        options.progress = [](double share) { return share < 0.6; };
        const auto result = read(vevent({"DTSTART:20200101T100000Z", "RRULE:FREQ=SECONDLY"}), options);
        QCOMPARE(itemTexts(result), QStringList{"f.ics: reading was cancelled"});
    }
};

QTEST_APPLESS_MAIN(TestIcsReader)
#include "tst_ics_reader.moc"
