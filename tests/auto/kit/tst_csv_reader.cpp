#include "csv_reading.h"

#include <VeskTimelineKit/csv_reader.h>

#include <QDateTime>
#include <QFile>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTest>

using namespace VeskTimeline::Kit;
using namespace CsvReading;

namespace {

const QByteArray header = "track,label,start,end\n";

} // namespace

class TestCsvReader : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(".?")); }

    void linesMayEndAnywhere_data()
    {
        QTest::addColumn<QByteArray>("end");
        QTest::newRow("line feeds") << QByteArray("\n");
        QTest::newRow("carriage returns") << QByteArray("\r");
        QTest::newRow("both") << QByteArray("\r\n");
        QTest::newRow("mixed") << QByteArray();
    }
    // A file is read block by block; here the first block ends around the end of a line.
    void linesMayEndAnywhere()
    {
        QFETCH(QByteArray, end);
        constexpr qsizetype firstBlock = 256 * 1024;
        constexpr int count = 600;
        const QByteArray label(1000, 'x');
        const QByteArrayList ends = end.isEmpty() ? QByteArrayList{"\n", "\r\n", "\r", "\r\n"} : QByteArrayList{end};
        QByteArray records;
        QList<qsizetype> positions;
        for (int i = 0; i < count; ++i) {
            records += "A," + label + ",1,2,n" + ends.at(i % ends.size());
            positions.append(records.size());
        }
        for (int line = 250; line < 250 + ends.size(); ++line) {
            for (int distance = -3; distance <= 3; ++distance) {
                const QByteArray head = "track,label,start,end,note";
                const qsizetype more = firstBlock + distance - positions.at(line) - head.size() - 1;
                const QByteArray text = head + QByteArray(more, 'e') + "\n" + records;
                const auto result = read(text);
                QVERIFY(result);
                QCOMPARE(result.value().itemCount(), count);
                const auto& items = result.value().tracks().front().items;
                QVERIFY(std::all_of(items.begin(), items.end(), [&label](const DocumentItem& item) {
                    return item.label == QLatin1String(label) && item.attributes.first() == u"n";
                }));
                QCOMPARE(itemTexts(read(text + "A,abcd,x,2")).value(0).left(30),
                         QString("f.csv:%1: bad start \"x\": neither").arg(count + 2).left(30));
            }
        }
    }

    void tracksBeyondTheLimitAreLeftOut()
    {
        QByteArray text = header;
        for (int i = 0; i < 1010; ++i)
            text += QByteArray("t" + QByteArray::number(i) + "/").repeated(99) + "z,a,1,2\n";
        text += QByteArray("t0/").repeated(99) + "z,b,2,3\n";
        const auto result = read(text);
        QVERIFY(result);
        QCOMPARE(result.value().tracks().size(), Document::mostTracks);
        QCOMPARE(result.value().itemCount(), 1001);
        QCOMPARE(result.value().warnings(),
                 QStringList{"f.csv: records left out because there would be too many tracks: 10"});
    }

    void recordsBecomeItemsOfTheirTracks()
    {
        const auto result = read(header + "A,one,1000,3000\nB/C,two,1970-01-01T00:00:02Z,1970-01-01T01:00:03+01:00\n"
                                          "A,three,0,0\n");
        QCOMPARE(itemTexts(result), (QStringList{"A: one 1000+2000", "A: three 0+0", "B>C: two 2000+1000"}));
        QCOMPARE(result.value().tracks().size(), std::size_t(3));
        QCOMPARE(result.value().warnings(), QStringList());
    }

    void columnsComeInAnyOrderAndLetterCase()
    {
        QCOMPARE(itemTexts(read("END, Start ,LABEL,Track\n20,10,x,A\n")), QStringList{"A: x 10+10"});
    }

    void aDurationServesForTheEnd()
    {
        QCOMPARE(itemTexts(read("track,label,start,duration\nA,x,10,5\n")), QStringList{"A: x 10+5"});
        QCOMPARE(itemTexts(read("track,label,start,end,duration\nA,x,10,15,5\nA,y,10,,7\nA,z,10,20,\n")),
                 (QStringList{"A: x 10+5", "A: y 10+7", "A: z 10+10"}));
    }

    void anEmptyEndMakesAnItemOpenEnded()
    {
        QCOMPARE(itemTexts(read(header + "A,x,10,\n")), QStringList{"A: x 10+-1"});
        QCOMPARE(itemTexts(read("track,label,start,end,duration\nA,x,10,,\nA,y,10,\n")),
                 (QStringList{"A: x 10+-1", "A: y 10+-1"}));
    }

    void timesBeforeTheEpochAreTaken()
    {
        QCOMPARE(itemTexts(read(header + "A,x,-5000,-1000\n")), QStringList{"A: x -5000+4000"});
    }

    void theLongestDurationIsTaken()
    {
        QCOMPARE(itemTexts(read(header + "A,x,-1,2147483646\n")), QStringList{"A: x -1+2147483647"});
    }

    void colorAndEditableAreRead()
    {
        const auto result = read("track,label,start,end,color,editable\nA,1,0,1,#ff8000,false\nA,2,0,1,red,Yes\n"
                                 "A,3,0,1,#80ff8000,0\nA,4,0,1,,\nA,5,0,1\n");
        QVERIFY2(result, qPrintable(itemTexts(result).join('\n')));
        const std::vector<DocumentItem>& items = result.value().tracks().front().items;
        QCOMPARE(items.size(), std::size_t(5));
        QCOMPARE(items[0].color, QColor(255, 128, 0));
        QVERIFY(!items[0].isEditable);
        QCOMPARE(items[1].color, QColor(Qt::red));
        QVERIFY(items[1].isEditable);
        QCOMPARE(items[2].color, QColor(255, 128, 0, 128));
        QVERIFY(!items[2].isEditable);
        for (const std::size_t i : {3u, 4u}) {
            QVERIFY(!items[i].color.isValid());
            QVERIFY(items[i].isEditable);
        }
    }

    void quotedFieldsMayHoldAnything()
    {
        QCOMPARE(itemTexts(read(header + "\"A, B\",\"say \"\"x\"\"\ntwice\",0,1\n")),
                 QStringList{"A, B: say \"x\"\ntwice 0+1"});
    }

    void anyLineEndsAreTaken_data()
    {
        QTest::addColumn<QByteArray>("end");
        QTest::newRow("LF") << QByteArray("\n");
        QTest::newRow("CR LF") << QByteArray("\r\n");
        QTest::newRow("CR") << QByteArray("\r");
    }
    void anyLineEndsAreTaken()
    {
        QFETCH(QByteArray, end);
        QByteArray text = header + "A,x,1,2\n\n  \nA,\"y\nz\",3,4\nA,bad,5,4\n";
        text.replace("\n", end);
        QCOMPARE(itemTexts(read(text)), QStringList{"f.csv:7: the end is before the start"});
        text.replace("bad,5,4", "good,5,6");
        QCOMPARE(itemTexts(read(text)), (QStringList{"A: x 1+1", "A: y" + end + "z 3+1", "A: good 5+1"}));
        text.chop(end.size());
        QCOMPARE(itemTexts(read(text)).size(), 3);
    }

    void linesAreCountedAcrossBlocksOfAnySize()
    {
        // The reader takes the text in blocks; a line end may fall on any edge of them.
        for (const QByteArray end : {"\n", "\r\n", "\r"}) {
            for (int length = 65530; length < 65540; ++length) {
                const QByteArray head = "track,label,start,end" + end + "A,";
                const QByteArray label(length - head.size() - 4, 'x');
                const auto result = read(head + label + ",1,2" + end + end + "A,y,2,1" + end);
                QCOMPARE(itemTexts(result), QStringList{"f.csv:4: the end is before the start"});
            }
        }
    }

    void aByteOrderMarkIsLeftOut()
    {
        QCOMPARE(itemTexts(read("\xEF\xBB\xBF" + header + "A,x,1,2\n")), QStringList{"A: x 1+1"});
    }

    void recordsOfEmptyFieldsAreSkipped()
    {
        QCOMPARE(itemTexts(read(header + ",,,\n,,,,,\nA,x,1,2\n")), QStringList{"A: x 1+1"});
    }

    void emptyFieldsPastTheLastColumnDoNotCount()
    {
        QCOMPARE(itemTexts(read(header + "A,x,1,2,,\n")), QStringList{"A: x 1+1"});
    }

    void otherColumnsBecomeAttributes()
    {
        const auto result = read("track,note,label,start,end,,description,Note\nA,abc,x,1,2,z,more,\nA,,y,2,3\n");
        QCOMPARE(itemTexts(result), (QStringList{"A: x 1+1 column 6=z note=abc", "A: y 2+1"}));
        QCOMPARE(result.value().warnings(), QStringList());
        const std::vector<DocumentItem>& items = result.value().tracks().front().items;
        QCOMPARE(items[0].description, "more");
        QCOMPARE(items[1].description, QString());
    }

    void attributesOfTheSameNameAreToldApart()
    {
        const auto result = read("track,note,label,start,end,note\nA,abc,x,1,2,def\n");
        QCOMPARE(itemTexts(result), QStringList{"A: x 1+1 note=abc note (2)=def"});
        QCOMPARE(result.value().warnings(),
                 QStringList{"f.csv: column \"note\" is there more than once; one is called \"note (2)\""});
    }

    void aBackslashMakesAnAttributeOfAnyName()
    {
        const auto result = read("track,label,start,end,\\start,\\,\\\\x\nA,x,1,2,s,e,b\n");
        QCOMPARE(itemTexts(result), QStringList{"A: x 1+1 =e \\x=b start=s"});
        QCOMPARE(result.value().warnings(), QStringList());
    }

    void withoutATrackAllItemsAreInOneNamedAfterTheFile()
    {
        const auto result = read("label,start,end\nx,1,2\n");
        QCOMPARE(itemTexts(result), QStringList{"f: x 1+1"});
        QCOMPARE(result.value().warnings(),
                 QStringList{"f.csv: there is no column for tracks: all items are in the track \"f\""});
    }

    void withoutALabelItIsEmpty()
    {
        const auto result = read("track,start,end\nA,1,2\n");
        QCOMPARE(itemTexts(result), QStringList{"A:  1+1"});
        QCOMPARE(result.value().warnings(), QStringList{"f.csv: there is no column for labels: they are empty"});
    }

    void aRecordOfATrackAloneIsATrackWithoutItems()
    {
        const auto result = read(header + "A/B,,,\nC,x,1,2\nA,,,\n");
        QCOMPARE(itemTexts(result), QStringList{"C: x 1+1"});
        QStringList paths;
        for (const DocumentTrack& track : result.value().tracks())
            paths.append(track.path.join('>'));
        QCOMPARE(paths, (QStringList{"A", "A>B", "C"}));
        QCOMPARE(result.value().warnings(), QStringList());
    }

    void timesWithoutAZoneAreUtcUnlessSaid()
    {
        const QByteArray text = header + "A,x,1970-01-01T00:00:00,1970-01-01 00:00:02\nA,y,1970-01-02,1970-01-03\n";
        auto result = read(text);
        QCOMPARE(itemTexts(result), (QStringList{"A: x 0+2000", "A: y 86400000+86400000"}));
        QCOMPARE(result.value().warnings(), QStringList{"f.csv: times without a zone are taken as UTC"});

        ReadOptions options;
        options.csv.timeZone = "Asia/Tokyo";
        result = read(text, options);
        QCOMPARE(itemTexts(result), (QStringList{"A: x -32400000+2000", "A: y 54000000+86400000"}));
        QCOMPARE(result.value().warnings(), QStringList());
    }

    void itemsOfAnyLengthAreKept()
    {
        QCOMPARE(itemTexts(read(header + "A,x,0,2147483648\nA,y,0001-01-01T00:00Z,9999-12-31T23:59:59.999Z\n")),
                 (QStringList{"A: x 0+2147483648", "A: y -62135596800000+315537897599999"}));
    }

    void recordsWithTimesFarOutAreLeftOut()
    {
        const auto result = read(header + "A,x,1,8640000000000001\nA,y,1,2\nA,z,-8640000000000000,1\n"
                                          "A,z,1,99999999999999999999999\n");
        QCOMPARE(itemTexts(result), QStringList{"A: y 1+1"});
        QCOMPARE(result.value().warnings(),
                 (QStringList{
                     "f.csv:2: the record is left out: the end \"8640000000000001\" is outside the years 1 to 9999",
                     "f.csv:4: the record is left out: the start \"-8640000000000000\" is outside the years 1 to 9999",
                     "f.csv:5: the record is left out: the end \"99999999999999999999999\" is outside the years 1 to "
                     "9999"}));
    }

    void aDurationThatEndsFarOutIsLeftOut()
    {
        const auto result = read("track,label,start,duration\nA,x,9999-12-31T23:59:59Z,1000\nA,y,1,2\n");
        QCOMPARE(itemTexts(result), QStringList{"A: y 1+2"});
        QCOMPARE(result.value().warnings(),
                 QStringList{"f.csv:2: the record is left out: the end is outside the years 1 to 9999"});
    }

    void cutTimesAreWarnedOf()
    {
        const auto result = read(header + "A,x,1970-01-01T00:00:00.0015Z,1970-01-01T00:00:00.0035Z\n");
        QCOMPARE(itemTexts(result), QStringList{"A: x 1+2"});
        QCOMPARE(result.value().warnings(), QStringList{"f.csv: times cut to whole milliseconds: 2"});
    }

    // Most are read at fixed places; with a fraction behind them they are not.
    void timesAreTheSameWhicheverWayTheyAreRead()
    {
        QRandomGenerator random(20150302);
        QByteArray text = header;
        for (int i = 0; i < 20'000; ++i) {
            const auto number = [&random](int from, int to) { return random.bounded(from, to + 1); };
            const QString time =
                QString::asprintf("%04d-%02d-%02d%c%02d:%02d:%02d", number(1, 9998), number(1, 12), number(1, 28),
                                  i % 2 == 0 ? 'T' : ' ', number(0, 23), number(0, 59), number(0, 59));
            const QString zone =
                i % 3 == 0 ? "Z"
                           : QString::asprintf("%c%02d:%02d", i % 5 == 0 ? '-' : '+', number(0, 14), number(0, 59));
            text += QString("A,%1%2,%1%2,%1.0%2\n").arg(time, zone).toLatin1();
        }
        const auto result = read(text);
        QVERIFY2(result, qPrintable(result ? QString() : result.error().text()));
        QCOMPARE(result.value().itemCount(), 20'000);
        for (const DocumentItem& item : result.value().tracks().front().items) {
            QVERIFY2(item.duration == 0, qPrintable(item.label));
            QString iso = item.label;
            iso[10] = 'T';
            QCOMPARE(item.start, QDateTime::fromString(iso, Qt::ISODate).toMSecsSinceEpoch());
        }
    }

    void timesThatAreNoneAreNotReadAtFixedPlaces_data()
    {
        QTest::addColumn<QByteArray>("time");
        for (const char* const time :
             {"2015-02-29T08:15:00Z", "2015-04-31T08:15:00Z", "2015-13-01T08:15:00Z", "2015-00-01T08:15:00Z",
              "2015-01-00T08:15:00Z", "0000-01-01T08:15:00Z", "2015-01-01T25:00:00Z", "2015-01-01T08:60:00Z",
              "2015-01-01T08:00:60Z", "2015-01-01T08:00:00+24:00", "2015-01-01T08:00:00+01:60", "2015-01-01T08:00:0xZ",
              "2o15-01-01T08:00:00Z", "2015-01-01T08:00:00Q", "2015-01-01T08:00:00+01;00"})
            QTest::newRow(time) << QByteArray(time);
    }
    void timesThatAreNoneAreNotReadAtFixedPlaces()
    {
        QFETCH(QByteArray, time);
        const auto result = read(header + "A,x," + time + ",\n");
        QVERIFY(!result);
        QVERIFY2(result.error().text().startsWith("f.csv:2: bad start"), qPrintable(result.error().text()));
    }

    void daysOfTheLongMonthsAreRead()
    {
        QCOMPARE(itemTexts(read(header + "A,x,2016-02-29T24:00:00Z,2016-03-31T00:00:00Z\n")),
                 QStringList{"A: x 1456790400000+2592000000"});
    }

    // The room of a field is used again for the next record, unless an item has taken the text.
    void fieldsOfARecordDoNotShineThroughInTheNext()
    {
        const auto result = read("track,label,start,end,note\nAa,first label,1,2,\xC3\xA4\xC3\xB6\nAa,b,3,4,"
                                 "\nC,,5,6,long note\nC,third,7,8\n");
        QCOMPARE(itemTexts(result),
                 (QStringList{"Aa: first label 1+1 note=äö", "Aa: b 3+1", "C:  5+1 note=long note", "C: third 7+1"}));
        const auto attributes = [&result](std::size_t track, std::size_t item) {
            return result.value().tracks()[track].items[item].attributes;
        };
        QCOMPARE(attributes(0, 0), (QMap<QString, QString>{{"note", "äö"}}));
        QCOMPARE(attributes(0, 1), (QMap<QString, QString>()));
        QCOMPARE(attributes(1, 0), (QMap<QString, QString>{{"note", "long note"}}));
        QCOMPARE(attributes(1, 1), (QMap<QString, QString>()));
    }

    void itemsThatOverlapInATrackAreCounted_data()
    {
        QTest::addColumn<QByteArray>("records");
        QTest::addColumn<int>("count");
        QTest::newRow("one after the other") << QByteArray("A,a,1,3\nA,b,3,4\n") << 0;
        QTest::newRow("in different tracks") << QByteArray("A,a,1,3\nB,b,2,4\n") << 0;
        QTest::newRow("within another") << QByteArray("A,a,1,9\nA,b,2,3\nA,c,4,5\n") << 2;
        QTest::newRow("in any order") << QByteArray("A,a,5,7\nA,b,1,6\n") << 1;
        QTest::newRow("behind one that never ends") << QByteArray("A,a,1,\nA,b,100,200\n") << 1;
        QTest::newRow("points at the same time") << QByteArray("A,a,1,1\nA,b,1,1\n") << 1;
        QTest::newRow("a point where another begins") << QByteArray("A,a,1,1\nA,b,2,3\n") << 0;
    }
    void itemsThatOverlapInATrackAreCounted()
    {
        QFETCH(QByteArray, records);
        QFETCH(int, count);
        const auto result = read(header + records);
        QVERIFY(result);
        const QString warning = "f.csv: items that overlap others of their track, and may hide them: %1";
        QCOMPARE(result.value().warnings(), count > 0 ? QStringList{warning.arg(count)} : QStringList());
    }

    void countsOfTheWholeFileAreToldAlsoBehindManyRecordsLeftOut()
    {
        const auto result = read(header + QByteArray("A,far,9999999999999999,\n").repeated(150) + "A,a,1,3\nA,b,2,4\n");
        QVERIFY(result);
        const QStringList& warnings = result.value().warnings();
        QCOMPARE(warnings.size(), 102);
        QVERIFY2(warnings.at(99).startsWith("f.csv:101: the record is left out"), qPrintable(warnings.at(99)));
        QCOMPARE(warnings.at(100), "f.csv: further warnings: 50");
        QCOMPARE(warnings.at(101), "f.csv: items that overlap others of their track, and may hide them: 1");
    }

    void aHeaderAloneIsAnEmptyDocument()
    {
        const auto result = read(header);
        QVERIFY(result);
        QCOMPARE(result.value().tracks().size(), std::size_t(0));
    }

    void badTextIsRefusedWithItsLine_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<QString>("error");

        const auto row = [](const char* name, const QByteArray& text, const char* error) {
            QTest::newRow(name) << text << QString::fromUtf8(error);
        };
        const QByteArray good = "A,x,1,2\n";
        row("empty", "", "f.csv: the file is empty");
        row("mark only", "\xEF\xBB\xBF", "f.csv: the file is empty");
        row("blank lines only", "\n \n\r\n", "f.csv: the file is empty");
        row("no start and end", "track,label\n",
            "f.csv:1: column \"start\" is missing, column \"end\" or \"duration\" is missing");
        row("no header", "A,x,1,2\n",
            "f.csv:1: column \"start\" is missing, column \"end\" or \"duration\" is missing");
        row("no start", "\ntrack,label,end\n", "f.csv:2: column \"start\" is missing");
        row("no end", "track,label,start\nA,x,1\n", "f.csv:1: column \"end\" or \"duration\" is missing");
        row("column twice", "track,label,start,end,Start\n", "f.csv:1: column \"start\" is there twice");
        row("bad start", header + good + "A,x,soon,2\n",
            "f.csv:3: bad start \"soon\": neither an ISO 8601 time with its zone nor milliseconds since 1970");
        row("empty start", header + "A,x,,2\n",
            "f.csv:2: bad start \"\": neither an ISO 8601 time with its zone nor milliseconds since 1970");
        row("bad end", header + "A,x,1,1e3\n",
            "f.csv:2: bad end \"1e3\": neither an ISO 8601 time with its zone nor milliseconds since 1970");
        row("long bad start", header + "A,x,\"" + QByteArray(100, 'y') + "\",2\n",
            "f.csv:2: bad start \"yyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyy…\": neither an ISO 8601 time with its zone "
            "nor milliseconds since 1970");
        row("end before start", header + good + "\n\nA,x,2,1\n", "f.csv:5: the end is before the start");
        row("bad duration", "track,label,start,duration\nA,x,0,1.5\n",
            "f.csv:2: bad duration \"1.5\": not a whole number of milliseconds");
        row("negative duration", "track,label,start,duration\nA,x,0,-1\n", "f.csv:2: the duration is negative");
        row("end against duration", "track,label,start,end,duration\nA,x,0,5,6\n",
            "f.csv:2: end and duration contradict each other");
        row("no track name", header + ",x,1,2\n", "f.csv:2: the track has no name");
        row("gap in the path", header + "A//B,x,1,2\n", "f.csv:2: a track in the path \"A//B\" has no name");
        row("deep path", header + "A" + QByteArray("/A").repeated(100) + ",x,1,2\n",
            "f.csv:2: the track is more than 100 levels deep");
        row("bad color", "track,label,start,end,color\nA,x,1,2,#12\n", "f.csv:2: bad color \"#12\"");
        row("bad editable", "track,label,start,end,editable\nA,x,1,2,maybe\n",
            "f.csv:2: bad editable \"maybe\": neither true nor false");
        row("short of the end", header + "A,x,1\n", "f.csv:2: the line ends before its end");
        row("short of the start", header + "A,x\n", "f.csv:2: the line ends before its field \"start\"");
        row("short of the label", header + "A\n", "f.csv:2: the line ends before its field \"label\"");
        row("long", header + "A,x,y,1,2\n", "f.csv:2: 5 fields, but the header names 4");
        row("line of a record with line breaks", header + "A,\"x\ny\nz\",2,1\n",
            "f.csv:2: the end is before the start");
        row("line after a record with line breaks", header + "A,\"x\n\nz\",1,2\nA,x,2,1\n",
            "f.csv:5: the end is before the start");
        row("unterminated quote", header + good + "A,\"x,1,2\nA,y,1,2\n", "f.csv:3: unterminated quote");
        row("quote inside", header + "A,x\"y,1,2\n", "f.csv:2: misplaced quote");
        row("text after a quote", header + good + "A,\"x\"y,1,2\n", "f.csv:3: misplaced quote");
        row("Latin-1", header + good + "A,\xE9,1,2\n", "f.csv:3: not UTF-8 text");
        row("Latin-1 in a record of several lines", header + "A,\"x\n\xE9\n\",1,2\n", "f.csv:3: not UTF-8 text");
        row("cut UTF-8 at the end", header + "A,x,1,\xE2\x80", "f.csv:2: not UTF-8 text");
        row("binary",
            QByteArray("\x7F"
                       "ELF\0\1",
                       6),
            "f.csv:1: binary data, not text");
        row("binary later", header + QByteArray("A,x\0,1,2\n", 9), "f.csv:2: binary data, not text");
        row("long field", header + "A," + QByteArray(10'000'000, 'x') + ",1,2\n",
            "f.csv:2: a field has more than 1000000 characters");
        row("endless line behind the header", header + QByteArray(17 * 1024 * 1024, 'x'),
            "f.csv:2: the line is too long");
        row("quote never closed", header + "A,\"x" + QByteArray("\nyyyyyyyyyyyyyyyy").repeated(1024 * 1024),
            "f.csv:2: the record is too long");
        row("endless line", QByteArray(17 * 1024 * 1024, 'x'), "f.csv:1: the line is too long");
    }
    void badTextIsRefusedWithItsLine()
    {
        QFETCH(QByteArray, text);
        QFETCH(QString, error);
        QCOMPARE(itemTexts(read(text)), QStringList{error});
    }

    void progressIsReportedAndReadingCanBeCancelled()
    {
        const QByteArray text = header + QByteArray("A,xxxxxxxxxxxxxxxxxxxxxxx,1,2\n").repeated(100'000);
        QList<double> shares;
        ReadOptions options;
        options.progress = [&shares](double share) {
            shares.append(share);
            return true;
        };
        QCOMPARE(read(text, options).value().itemCount(), 100'000);
        QVERIFY(shares.size() > 2);
        QVERIFY(std::is_sorted(shares.begin(), shares.end()));
        QCOMPARE(shares.first(), 0.0);
        QVERIFY(shares.last() > 0.5 && shares.last() <= 1.0);

        options.progress = [](double share) { return share == 0.0; };
        QCOMPARE(itemTexts(read(text, options)), QStringList{"f.csv: reading was cancelled"});
    }

    void aFileIsRead()
    {
        QTemporaryDir dir;
        QFile file(dir.filePath("ä.csv"));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(header + "Größe,–,1,2\n");
        file.close();
        QCOMPARE(itemTexts(readCsv(file.fileName())), QStringList{"Größe: – 1+1"});
    }

    void aFileThatCannotBeReadIsRefused()
    {
        // Opens like any file, and fails at the first read.
        const QString unreadable = QStringLiteral("/proc/self/mem");
        if (!QFile::exists(unreadable))
            QSKIP("there is no such file on this system");
        QCOMPARE(itemTexts(readCsv(unreadable)), QStringList{unreadable + ": Input/output error"});
    }

    void whatIsNoFileIsRefusedWithoutALine()
    {
        QTemporaryDir dir;
        const QString missing = dir.filePath("missing.csv");
        QCOMPARE(itemTexts(readCsv(missing)), QStringList{missing + ": No such file or directory"});
        QCOMPARE(itemTexts(readCsv(QString())), QStringList{": no file name"});
        QCOMPARE(itemTexts(readCsv(dir.path())), QStringList{dir.path() + ": is a directory"});
    }
};

QTEST_APPLESS_MAIN(TestCsvReader)
#include "tst_csv_reader.moc"
