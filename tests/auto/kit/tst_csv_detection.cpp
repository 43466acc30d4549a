#include "csv_reading.h"

#include <VeskTimelineKit/csv_reader.h>
#include <VeskTimelineKit/warnings.h>

#include <QScopeGuard>
#include <QTest>

#include <ctime>

using namespace VeskTimeline::Kit;
using namespace CsvReading;

namespace {

QStringList warnings(const Result<Document>& result)
{
    QStringList texts = result ? result.value().warnings() : QStringList{"refused"};
    return texts.replaceInStrings("f.csv: ", QString());
}

QString iso(qint64 time)
{
    return QDateTime::fromMSecsSinceEpoch(time, Qt::UTC).toString(Qt::ISODateWithMs);
}

const QString noTrack = "there is no column for tracks: all items are in the track \"f\"";

} // namespace

class TestCsvDetection : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(".?")); }

    void columnsAreFoundByTheNamesThatOthersUse_data()
    {
        QTest::addColumn<QByteArray>("header");
        QTest::addColumn<QString>("start");
        QTest::addColumn<QString>("end");
        QTest::addColumn<QString>("track");
        QTest::addColumn<QString>("label");
        const auto row = [](const char* header, const char* start, const char* end, const char* track,
                            const char* label) {
            QTest::newRow(header) << QByteArray(header) << QString::fromUtf8(start) << QString::fromUtf8(end)
                                  << QString::fromUtf8(track) << QString::fromUtf8(label);
        };
        row("route,from,until,title", "from", "until", "route", "title");
        row("name,begin,finish,group", "begin", "finish", "group", "name");
        row("Category,Subject,departure_time,arrival_time", "departure_time", "arrival_time", "Category", "Subject");
        row("startTime,endTime,threadId,event", "startTime", "endTime", "threadId", "event");
        row("created,release,eol,lane,codename", "release", "eol", "lane", "codename");
        row("Start (UTC),End (UTC),team name,summary", "Start (UTC)", "End (UTC)", "team name", "summary");
        row("Beginn,Ende,Gruppe,Titel", "Beginn", "Ende", "Gruppe", "Titel");
        row("d\xC3\xA9"
            "but,fin,zone,nom",
            "début", "fin", "zone", "nom");
        row("first seen,last seen,host,first,last,message", "first", "last", "host", "message");
    }
    void columnsAreFoundByTheNamesThatOthersUse()
    {
        QFETCH(QByteArray, header);
        QFETCH(QString, start);
        QFETCH(QString, end);
        QFETCH(QString, track);
        QFETCH(QString, label);
        const QStringList names = QString::fromUtf8(header).split(',');
        QStringList cells;
        for (const QString& name : names)
            cells.append(name == start   ? "2020-01-01T00:00Z"
                         : name == end   ? "2020-01-01T00:01Z"
                         : name == track ? "T"
                         : name == label ? "L"
                                         : QString());
        const auto result = read(header + '\n' + cells.join(',').toUtf8() + '\n');
        QCOMPARE(itemTexts(result), QStringList{"T: L 1577836800000+60000"});
        for (const auto& [field, name] : {std::pair("track", track), {"label", label}, {"start", start}, {"end", end}})
            QVERIFY2(warnings(result).contains(QString("%1 is taken from column \"%2\"").arg(field, name)),
                     qPrintable(warnings(result).join('\n')));
    }

    void timesAreFoundByTheirContentWhereNamesSayNothing()
    {
        const auto result = read("what,alpha,beta\nx,2020-01-01,2020-01-02\n");
        QCOMPARE(itemTexts(result), QStringList{"f: x 1577836800000+86400000"});
        QCOMPARE(warnings(result),
                 (QStringList{"label is taken from column \"what\"", "start is taken from column \"alpha\"",
                              "end is taken from column \"beta\"", "times without a zone are taken as UTC", noTrack}));
    }

    void aFileWithoutAnyTimeIsRefused()
    {
        QCOMPARE(itemTexts(read("name,alpha\nx,y\n")),
                 QStringList{"f.csv:1: column \"start\" is missing, column \"end\" or \"duration\" is missing"});
    }

    void eventsWithoutAnEndArePointsInTime()
    {
        const auto result = read("timestamp,message,level\n2020-01-01T00:00:00Z,up,info\n");
        QCOMPARE(itemTexts(result), QStringList{"f: up 1577836800000+0 level=info"});
        QVERIFY(warnings(result).contains("there is no column for the end: all items are points in time"));
    }

    void datesAndTimesOfDayInColumnsOfTheirOwnAreJoined_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::newRow("four columns") << QByteArray("Subject,Start Date,Start Time,End Date,End Time\n"
                                                    "x,2020-01-01,10:00,2020-01-01,10:30\n");
        QTest::newRow("one date") << QByteArray("Date,Start Time,End Time,Subject\n2020-01-01,10:00,10:30,x\n");
        QTest::newRow("date, time, duration") << QByteArray("Date,Time,Duration,Subject\n2020-01-01,10:00,0:30,x\n");
        QTest::newRow("twelve hours") << QByteArray(
            "Subject,Start Date,Start Time,End Date,End Time\nx,01/01/2020,10:00 AM,01/01/2020,10:30 am\n");
    }
    void datesAndTimesOfDayInColumnsOfTheirOwnAreJoined()
    {
        QFETCH(QByteArray, text);
        QCOMPARE(itemTexts(read(text)), QStringList{"f: x 1577872800000+1800000"});
    }

    void delimitersAreFound_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<QString>("guess");
        QTest::newRow("semicolon") << QByteArray("track;label;start;end\nA;x, y|z;1;3\n")
                                   << "fields are taken to be separated by \";\"";
        QTest::newRow("tab") << QByteArray("track\tlabel\tstart\tend\nA\tx, y|z\t1\t3\n")
                             << "fields are taken to be separated by tabs";
        QTest::newRow("pipe") << QByteArray("track|label|start|end\nA|\"x, y|z\"|1|3\n")
                              << "fields are taken to be separated by \"|\"";
        QTest::newRow("said by the file") << QByteArray("sep=;\ntrack;label;start;end\nA;x, y|z;1;3\n") << "";
        QTest::newRow("others in names") << QByteArray("track;label;start;end;a,b,c,d,e,f,g\nA;x, y|z;1;3\n")
                                         << "fields are taken to be separated by \";\"";
    }
    void delimitersAreFound()
    {
        QFETCH(QByteArray, text);
        QFETCH(QString, guess);
        const auto result = read(text);
        QCOMPARE(itemTexts(result), QStringList{"A: x, y|z 1+2"});
        QCOMPARE(warnings(result), guess.isEmpty() ? QStringList() : QStringList{guess});
    }

    void aSaidDelimiterIsNoGuess()
    {
        CsvOptions options;
        options.delimiter = u'~';
        const auto result = read("track~label~start~end\nA~x, y|z~1~3\n", options);
        QCOMPARE(itemTexts(result), QStringList{"A: x, y|z 1+2"});
        QCOMPARE(warnings(result), QStringList());
        options.delimiter = u'x';
        QCOMPARE(itemTexts(read("track\n", options)), QStringList{"f.csv: fields cannot be separated by \"x\""});
    }

    void unitsOfNumbersAreFoundByTheirSizeOrName_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<QString>("item");
        QTest::addColumn<QString>("guess");
        const auto row = [](const char* name, const QByteArray& text, const char* item, const char* guess) {
            QTest::newRow(name) << text << QString(item) << QString(guess);
        };
        const QByteArray header = "track,label,start,end\nA,x,";
        row("seconds", header + "1425291300,1425291301\n", "1425291300000+1000", "seconds");
        row("fractions of seconds", header + "1425291300.25,1425291300.5\n", "1425291300250+250", "seconds");
        row("milliseconds", header + "1425291300250,1425291300500\n", "1425291300250+250", "");
        row("microseconds", header + "1425291300250000,1425291300500000\n", "1425291300250+250", "microseconds");
        row("nanoseconds", header + "1425291300250000000,1425291300500000000\n", "1425291300250+250", "nanoseconds");
        row("nothing tells", header + "1,3\n", "1+2", "");
        row("small fractions", header + "0.5,1.25\n", "500+750", "seconds");
        row("name", "track,label,start_us,end_us\nA,x,1000,3000\n", "1+2", "microseconds");
        row("name of a duration", "track,label,start,duration (s)\nA,x,1970-01-01T00:00Z,2\n", "0+2000", "seconds");
    }
    void unitsOfNumbersAreFoundByTheirSizeOrName()
    {
        QFETCH(QByteArray, text);
        QFETCH(QString, item);
        QFETCH(QString, guess);
        const auto result = read(text);
        QCOMPARE(itemTexts(result), QStringList{"A: x " + item});
        const QStringList about = warnings(result).filter("plain numbers");
        QCOMPARE(about, guess.isEmpty() ? QStringList() : QStringList{"plain numbers are taken for " + guess});
    }

    void unitsThatAreSaidAreTaken_data()
    {
        QTest::addColumn<CsvTimeUnit>("unit");
        QTest::addColumn<QString>("item");
        QTest::newRow("s") << CsvTimeUnit::Seconds << "-1500000000000+5000000500";
        QTest::newRow("ms") << CsvTimeUnit::Milliseconds << "-1500000000+5000000";
        QTest::newRow("us") << CsvTimeUnit::Microseconds << "-1500000+5000";
        QTest::newRow("ns") << CsvTimeUnit::Nanoseconds << "-1500+5";
    }
    void unitsThatAreSaidAreTaken()
    {
        QFETCH(CsvTimeUnit, unit);
        QFETCH(QString, item);
        CsvOptions options;
        options.timeUnit = unit;
        options.columns[CsvField::Start] = QStringList{"s"};
        options.columns[CsvField::Duration] = QStringList{"d"};
        const auto result = read("s,d\n-1500000000,5000000.5\n", options);
        QCOMPARE(itemTexts(result), QStringList{"f:  " + item});
        QCOMPARE(warnings(result).filter("plain numbers"), QStringList());
        QCOMPARE(warnings(result).filter("cut to whole").size(), unit == CsvTimeUnit::Seconds ? 0 : 1);
    }

    void negativeFractionsGoToTheMillisecondBefore()
    {
        CsvOptions options;
        options.timeUnit = CsvTimeUnit::Microseconds;
        QCOMPARE(itemTexts(read("track,label,start,end\nA,x,-1500,-1\n", options)), QStringList{"A: x -2+1"});
    }

    void decimalCommasAreFound()
    {
        const auto result = read("track;label;start;end\nA;x;1425291300,25;1425291300,5\n");
        QCOMPARE(itemTexts(result), QStringList{"A: x 1425291300250+250"});
        QVERIFY(warnings(result).contains("the comma in numbers is taken for a decimal point"));
        CsvOptions options;
        options.decimalPoint = u'.';
        QVERIFY(!read("track;label;start;end\nA;x;1425291300,25;1425291300,5\n", options));
    }

    void datesAreReadInManyWays_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("time");
        const auto row = [](const char* text, const char* time) {
            QTest::newRow(text) << QString::fromUtf8(text) << QString(time) + "Z";
        };
        row("2015-03-02", "2015-03-02T00:00:00.000");
        row("2015-03-02 08:15", "2015-03-02T08:15:00.000");
        row("2015-03-02T08:15:30.25", "2015-03-02T08:15:30.250");
        row("2015-03-02T08:15:30,25", "2015-03-02T08:15:30.250");
        row("2015/03/02 8:15", "2015-03-02T08:15:00.000");
        row("2015.03.02", "2015-03-02T00:00:00.000");
        row("02.03.2015", "2015-03-02T00:00:00.000");
        row("2.3.2015 8:15", "2015-03-02T08:15:00.000");
        row("02.03.15 08:15:30", "2015-03-02T08:15:30.000");
        row("02.03.72", "1972-03-02T00:00:00.000");
        row("25/03/2015 08:15", "2015-03-25T08:15:00.000");
        row("03/25/2015 08:15 pm", "2015-03-25T20:15:00.000");
        row("3/25/2015, 12:15 AM", "2015-03-25T00:15:00.000");
        row("3/25/2015 12:15:01 p.m.", "2015-03-25T12:15:01.000");
        row("25-03-2015", "2015-03-25T00:00:00.000");
        row("2 Mar 2015", "2015-03-02T00:00:00.000");
        row("02-Mar-2015 08:15", "2015-03-02T08:15:00.000");
        row("March 2, 2015 8:15 pm", "2015-03-02T20:15:00.000");
        row("Mon, 02 Mar 2015 08:15:30 GMT", "2015-03-02T08:15:30.000");
        row("Mon, 02 Mar 2015 08:15:30 +0100", "2015-03-02T07:15:30.000");
        row("2015-03-02 08:15 UTC", "2015-03-02T08:15:00.000");
        row("2015-03-02T08:15:00\u221205:00", "2015-03-02T13:15:00.000");
        row("20150302", "2015-03-02T00:00:00.000");
        row("20150302T081530Z", "2015-03-02T08:15:30.000");
        row("2015-03-02T24:00", "2015-03-03T00:00:00.000");
    }
    void datesAreReadInManyWays()
    {
        QFETCH(QString, text);
        QFETCH(QString, time);
        const auto result = read("when,what\n\"" + text.toUtf8() + "\",x\n");
        QVERIFY2(result, qPrintable(itemTexts(result).join('\n')));
        QCOMPARE(iso(result.value().tracks().front().items.front().start), time);
    }

    void whatIsNoDateIsToldWithItsLine_data()
    {
        QTest::addColumn<QByteArray>("text");
        for (const char* const text :
             {"31.02.2015", "2015-13-01", "2015-02-30 10:00", "2015-02-01 24:01", "2015-02-01 10:60", "1.2.3.4",
              "10:00", "2015-02-01 13:00 pm", "2015-02-01 10:00 XYZ", "Foo 2, 2015", "2015-02/01", "2015-02-01T", "1-2",
              "-", "2015-02-01 10:00+1", "0000-01-01"})
            QTest::newRow(text) << QByteArray(text);
    }
    void whatIsNoDateIsToldWithItsLine()
    {
        QFETCH(QByteArray, text);
        const auto result = read("begin,finish,title\n2015-02-01 10:00,,x\n\"" + text + "\",,y\n");
        QCOMPARE(itemTexts(result), QStringList{"f: x 1422784800000+-1"});
        QCOMPARE(result.value().warnings().filter("f.csv:3: the record is left out: bad start").size(), 1);
    }

    void theOrderOfDayAndMonthIsThatOfTheFile_data()
    {
        QTest::addColumn<QByteArray>("dates");
        QTest::addColumn<QString>("first");
        QTest::addColumn<QString>("guess");
        const auto row = [](const char* dates, const char* first, const QString& guess) {
            QTest::newRow(dates) << QByteArray(dates) << QString(first) << guess;
        };
        const QString unsaid = "dates are read as %1, which nothing in the file says; %2 is possible as well";
        row("01/02/2020 25/02/2020", "2020-02-01", "dates are read as d/M/yyyy");
        row("01/02/2020 02/25/2020", "2020-01-02", "dates are read as M/d/yyyy");
        row("01/02/2020 01/03/2020", "2020-01-02", unsaid.arg("M/d/yyyy", "d/M/yyyy"));
        row("02/01/2020 01/02/2020", "2020-01-02", unsaid.arg("d/M/yyyy", "M/d/yyyy"));
        row("01-02-2020 01-03-2020", "2020-02-01", unsaid.arg("d-M-yyyy", "M-d-yyyy"));
        row("01.02.2020 01.03.2020", "2020-02-01", "dates are read as d.M.yyyy");
        row("01/02/20 25/02/20", "2020-02-01", "dates are read as d/M/yy");
    }
    void theOrderOfDayAndMonthIsThatOfTheFile()
    {
        QFETCH(QByteArray, dates);
        QFETCH(QString, first);
        QFETCH(QString, guess);
        const auto result = read("when,what\n" + QByteArray(dates).replace(" ", ",x\n") + ",y\n");
        QVERIFY2(result, qPrintable(itemTexts(result).join('\n')));
        QCOMPARE(iso(result.value().tracks().front().items.front().start), first + "T00:00:00.000Z");
        QVERIFY2(warnings(result).contains(guess), qPrintable(warnings(result).join('\n')));
    }

    void aSaidPatternIsTheOnlyOne_data()
    {
        QTest::addColumn<QString>("pattern");
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<QString>("time");
        const auto row = [](const char* pattern, const char* text, const char* time) {
            QTest::newRow(pattern) << QString(pattern) << QByteArray(text) << QString(time);
        };
        row("dd.MM.yyyy", "1.2.2020 10:30", "2020-02-01T10:30:00.000Z");
        row("MM/dd/yyyy", "01/02/2020", "2020-01-02T00:00:00.000Z");
        row("dd/MM/yyyy", "01/02/2020 1:00 pm", "2020-02-01T13:00:00.000Z");
        row("yyyyMMdd", "20200201", "2020-02-01T00:00:00.000Z");
        row("ddMMyyyy", "01022020", "2020-02-01T00:00:00.000Z");
        row("ddMMyyyy HHmm", "01022020 1030", "2020-02-01T10:30:00.000Z");
        row("d MMMM yyyy", "1 February 2020 10:30:15", "2020-02-01T10:30:15.000Z");
        row("yyyy'Y'MM'M'dd", "2020Y02M01", "2020-02-01T00:00:00.000Z");
    }
    void aSaidPatternIsTheOnlyOne()
    {
        QFETCH(QString, pattern);
        QFETCH(QByteArray, text);
        QFETCH(QString, time);
        CsvOptions options;
        options.dateFormat = pattern;
        const auto result = read("start,end,label\n" + text + ",,x\n", options);
        QVERIFY2(result, qPrintable(itemTexts(result).join('\n')));
        QCOMPARE(iso(result.value().tracks().front().items.front().start), time);
        QCOMPARE(itemTexts(read("start,end,label\nsoon,,x\n", options)),
                 QStringList{"f.csv:2: bad start \"soon\": not a time as " + pattern});
        QCOMPARE(warnings(result).filter("dates are read").size(), 0);
    }

    void clocksThatChangeAreFollowed()
    {
        CsvOptions options;
        options.timeZone = "Europe/Berlin";
        const auto result = read("start,end,label\n"
                                 "2020-01-01 12:00,2020-07-01 12:00,seasons\n"
                                 "2020-03-29 01:59,2020-03-29 03:00,over the gap\n"
                                 "2020-03-29 02:30,2020-03-29 03:45,in the gap\n"
                                 "2020-10-25 01:30,2020-10-25 02:30,to the first\n"
                                 "2020-10-25 02:30,2020-10-25 03:00,over the overlap\n"
                                 "2020-10-25T02:30+01:00,2020-10-25 03:00,said\n",
                                 options);
        QCOMPARE(itemTexts(result),
                 (QStringList{"f: seasons 1577876400000+15721200000", "f: over the gap 1585443540000+60000",
                              "f: in the gap 1585445400000+900000", "f: to the first 1603582200000+3600000",
                              "f: over the overlap 1603585800000+5400000", "f: said 1603589400000+1800000"}));
        QCOMPARE(warnings(result),
                 (QStringList{noTrack, "times that the clocks left out when they were put forward, moved by as much: 1",
                              "times that the clocks showed twice, the first taken: 2",
                              "items that overlap others of their track, and may hide them: 3"}));
    }

    void theZoneOfTheMachineDoesNotMatter()
    {
        const bool hadZone = qEnvironmentVariableIsSet("TZ");
        const QByteArray zone = qgetenv("TZ");
        const auto restore = qScopeGuard([&] {
            if (hadZone)
                qputenv("TZ", zone);
            else
                qunsetenv("TZ");
            tzset();
        });
        for (const char* const machine : {"UTC", "Europe/Berlin", "America/New_York"}) {
            qputenv("TZ", machine);
            tzset();
            const auto startOf = [](const char* pattern, const char* text) {
                CsvOptions options;
                options.dateFormat = pattern;
                const auto result = read(QByteArray("start,end,label\n") + text + ",,x\n", options);
                return result ? iso(result.value().tracks().front().items.front().start) : result.error().text();
            };
            QCOMPARE(startOf("yyyy-MM-dd HH:mm", "2015-03-29 02:30"), "2015-03-29T02:30:00.000Z");
            QCOMPARE(startOf("hh:mm ap d.M.yyyy", "02:30 am 8.3.2015"), "2015-03-08T02:30:00.000Z");
            QCOMPARE(startOf("d.M.yyyy 'at' HH:mm:ss.zzz", "29.3.2015 at 02:30:15.250"), "2015-03-29T02:30:15.250Z");
            QCOMPARE(startOf("d.M.yyyy", "29.3.2015 02:30"), "2015-03-29T02:30:00.000Z");
            QCOMPARE(startOf("yyyyMMddHHmm t", "201503290230 +02:00"), "2015-03-29T00:30:00.000Z");
            QCOMPARE(startOf("yyyyMMddHHmm t", "201507010230 Asia/Tokyo"), "2015-06-30T17:30:00.000Z");
            QCOMPARE(startOf("yyyyMMddHHmm t", "201503290230 UTC"), "2015-03-29T02:30:00.000Z");
            // Of abbreviations only the machine's own would be known.
            QCOMPARE(startOf("yyyyMMddHHmm t", "201507010230 CEST"),
                     "f.csv:2: bad start \"201507010230 CEST\": not a time as yyyyMMddHHmm t");
        }
    }

    void anUnknownZoneRefusesTheFile()
    {
        CsvOptions options;
        options.timeZone = "Europe/Nowhere";
        QCOMPARE(itemTexts(read("start,end\n1,2\n", options)),
                 QStringList{"f.csv: there is no time zone \"Europe/Nowhere\""});
    }

    void aFieldOfWhichNoneIsSaidIsNotLookedFor_data()
    {
        QTest::addColumn<CsvField>("field");
        QTest::addColumn<QByteArray>("header");
        QTest::addColumn<QString>("item");
        const auto row = [](const char* name, CsvField field, const char* header, const char* item) {
            QTest::newRow(name) << field << QByteArray(header) << QString(item);
        };
        row("own end", CsvField::End, "track,label,start,end", "T: L 0+0 end=1");
        row("own duration", CsvField::Duration, "track,label,start,duration", "T: L 0+0 duration=1");
        row("own label", CsvField::Label, "track,label,start,end", "T:  0+1 label=L");
        row("own track", CsvField::Track, "track,label,start,end", "f: L 0+1 track=T");
        row("end", CsvField::End, "group,name,begin,finish", "T: L 0+0 finish=1");
        row("label", CsvField::Label, "group,name,begin,finish", "T:  0+1 name=L");
        row("label by content", CsvField::Label, "group,alpha,begin,finish", "T:  0+1 alpha=L");
        row("track", CsvField::Track, "group,name,begin,finish", "f: L 0+1 group=T");
    }
    void aFieldOfWhichNoneIsSaidIsNotLookedFor()
    {
        QFETCH(CsvField, field);
        QFETCH(QByteArray, header);
        QFETCH(QString, item);
        CsvOptions options;
        options.timeUnit = CsvTimeUnit::Milliseconds;
        options.columns = {{field, {}}};
        const auto result = read(header + "\nT,L,0,1\n", options);
        QCOMPARE(itemTexts(result), QStringList{item});
        // What is said is no guess; but that there is no end either is one.
        QCOMPARE(warnings(result).filter("there is no column").size(), field == CsvField::Duration ? 1 : 0);
        QCOMPARE(warnings(result).filter(csvFieldName(field) + " is taken"), QStringList());
    }

    void withoutAStartThereIsNothingToRead()
    {
        CsvOptions options;
        options.columns = {{CsvField::Start, {}}};
        for (const char* const header : {"label,start,end", "name,begin,finish", "alpha,beta,gamma"})
            QVERIFY(itemTexts(read(QByteArray(header) + "\nx,2020-01-01,2020-01-02\n", options))
                        .value(0)
                        .startsWith("f.csv:1: column \"start\" is missing"));
    }

    void columnsThatAreSaidAreTaken()
    {
        CsvOptions options;
        options.columns = {{CsvField::Track, {"a", "b"}},
                           {CsvField::Start, {"day", "hour"}},
                           {CsvField::Label, {"start"}},
                           {CsvField::Duration, {"LEN"}}};
        const auto result = read("a,b,day,hour,start,len,end\nx/y,,2020-01-01,10:00,go,5,zzz\n", options);
        QCOMPARE(itemTexts(result), QStringList{"x/y>(no b): go 1577872800000+5 end=zzz"});
        options.columns[CsvField::End] = QStringList{"nonsense"};
        QCOMPARE(itemTexts(read("\na,b,day,hour,start,len\n", options)),
                 QStringList{"f.csv:2: there is no column \"nonsense\""});
    }

    void ofFilesOfOthersBadRecordsAreLeftOut()
    {
        const auto result = read("group,begin,finish,title,colour\n"
                                 "A,2020-01-01,2020-01-02,good,red\n"
                                 "A,2020-01-02,2020-01-01,backwards,\n"
                                 "A,soon,,bad,\n"
                                 "A\n"
                                 ",2020-01-01,,no end,nonsense\n"
                                 "A,2020-01-03,2020-01-04,x,,more\n"
                                 "A,2020-01-05\n");
        QCOMPARE(itemTexts(result), (QStringList{"A: good 1577836800000+86400000", "A:  1578182400000+-1",
                                                 "(no group): no end 1577836800000+-1"}));
        const QString leftOut = ": the record is left out: ";
        QCOMPARE(
            result.value().warnings().filter(QRegularExpression("^f.csv:\\d")),
            (QStringList{"f.csv:3" + leftOut + "the end is before the start",
                         "f.csv:4" + leftOut +
                             "bad start \"soon\": neither an ISO 8601 time with its zone nor milliseconds since 1970",
                         "f.csv:5" + leftOut + "the line ends before its field \"start\"",
                         "f.csv:6: the color \"nonsense\" is left out: there is no such color",
                         "f.csv:7" + leftOut + "6 fields, but the header names 5"}));
    }

    void allThatIsLeftOutOfARecordIsTold()
    {
        const auto result = read("group,begin,finish,color,editable\nA,2020-01-01,2020-01-02,nonsense,perhaps\n");
        QVERIFY(result);
        QCOMPARE(result.value().warnings().filter(QRegularExpression("^f.csv:\\d")),
                 (QStringList{"f.csv:2: the color \"nonsense\" is left out: there is no such color",
                              "f.csv:2: \"perhaps\" is left out: it is neither true nor false"}));
    }

    void aFileWithoutAnyGoodRecordIsRefused()
    {
        QCOMPARE(itemTexts(read("begin,finish\nsoon,later\nsooner,never\n")).size(), 1);
        QVERIFY(itemTexts(read("begin,finish\nsoon,later\n")).first().startsWith("f.csv:2: bad start \"soon\""));
    }

    void warningsAreCountedAndTheFirstHundredKept()
    {
        const auto result = read("begin,finish\n2020-01-01,\n" + QByteArray("soon,\n").repeated(1000));
        QVERIFY(result);
        const QStringList& texts = result.value().warnings();
        QCOMPARE(texts.filter(QRegularExpression("^f.csv:\\d")).size(), WarningList::mostKept);
        QCOMPARE(texts.last(), "f.csv: further warnings: 900");
    }

    void manyColumnsAreRefused()
    {
        QCOMPARE(itemTexts(read("start,end" + QByteArray(",a").repeated(10'000) + "\n")),
                 QStringList{"f.csv:1: more than 10000 columns"});
    }
};

QTEST_APPLESS_MAIN(TestCsvDetection)
#include "tst_csv_detection.moc"
