#include "support/text_file.h"
#include "writer_checks.h"

#include <VeskTimelineKit/ics_reader.h>
#include <VeskTimelineKit/ics_writer.h>

#include <QBuffer>
#include <QFile>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTest>

#include <libical/ical.h>

using namespace VeskTimeline::Kit;

namespace {

WriteResult write(const Document& document, const QString& fileName, const WriteOptions& options)
{
    return writeIcs(document, fileName, options);
}

constexpr qint64 day = 86'400'000;

const QDateTime stamp(QDate(2020, 1, 2), QTime(3, 4, 5), Qt::UTC);

QByteArray text(const Document& document)
{
    const auto result = icsText(document, stamp);
    return std::holds_alternative<QByteArray>(result) ? std::get<QByteArray>(result)
                                                      : std::get<QString>(result).toUtf8();
}

Result<Document> readBack(const Document& document)
{
    QByteArray written = text(document);
    QBuffer buffer(&written);
    buffer.open(QIODevice::ReadOnly);
    return readIcs(buffer, "f.ics");
}

QStringList itemText(const DocumentItem& item)
{
    QStringList texts{item.label,
                      QString::number(item.start),
                      QString::number(item.duration),
                      item.color.isValid() ? item.color.name(QColor::HexArgb) : QString("none"),
                      item.isEditable ? QString("editable") : QString("locked"),
                      item.description};
    for (auto it = item.attributes.begin(); it != item.attributes.end(); ++it)
        texts.append(it.key() + "=" + it.value());
    return texts;
}

// All that is in it, for one comparison.
QStringList contents(const Document& document)
{
    QStringList texts = document.warnings();
    for (const DocumentTrack& track : document.tracks()) {
        texts.append("track " + track.path.join('>') +
                     (track.color.isValid() ? " " + track.color.name(QColor::HexArgb) : QString()));
        for (const DocumentItem& item : track.items)
            texts.append(itemText(item).join('|'));
    }
    return texts;
}

void compareWithReadBack(const Document& document)
{
    const Result<Document> result = readBack(document);
    QVERIFY2(result, qPrintable(result ? QString() : result.error().text()));
    QCOMPARE(contents(result.value()), contents(document));
}

Document documentOf(const DocumentItem& item)
{
    Document document;
    document.track({"T"}).items = {item};
    return document;
}

} // namespace

class TestIcsWriter : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(".?")); }

    void theTextIsAsDescribed()
    {
        Document document;
        document.track({"A, B", "Cat"}).items = {
            {"x; y", 1577934245000, 60'000, QColor(Qt::red), true, "one\ntwo", {{"UID", "u"}, {"LOCATION", "here"}}}};
        document.track({"A, B"}).items = {
            {"day", 1577923200000, 2 * day, {}, true, {}, {{"UID", "v"}, {"DTSTART;VALUE", "DATE"}}}};
        QCOMPARE(text(document), QByteArray("BEGIN:VCALENDAR\r\n"
                                            "VERSION:2.0\r\n"
                                            "PRODID:-//VeskTimeline//VeskTimelineKit//EN\r\n"
                                            "X-WR-CALNAME:A\\, B\r\n"
                                            "X-VESKTIMELINE-TRACK:[\"A\\, B\"]\r\n"
                                            "X-VESKTIMELINE-TRACK:[\"A\\, B\"\\,\"Cat\"]\r\n"
                                            "BEGIN:VEVENT\r\n"
                                            "UID:v\r\n"
                                            "DTSTAMP:20200102T030405Z\r\n"
                                            "DTSTART;VALUE=DATE:20200102\r\n"
                                            "DTEND;VALUE=DATE:20200104\r\n"
                                            "SUMMARY:day\r\n"
                                            "X-VESKTIMELINE-GENERATED:DTSTAMP\r\n"
                                            "END:VEVENT\r\n"
                                            "BEGIN:VEVENT\r\n"
                                            "UID:u\r\n"
                                            "DTSTAMP:20200102T030405Z\r\n"
                                            "DTSTART:20200102T030405Z\r\n"
                                            "DTEND:20200102T030505Z\r\n"
                                            "SUMMARY:x\\; y\r\n"
                                            "DESCRIPTION:one\\ntwo\r\n"
                                            "CATEGORIES:Cat\r\n"
                                            "COLOR:red\r\n"
                                            "LOCATION:here\r\n"
                                            "X-VESKTIMELINE-GENERATED:DTSTAMP\r\n"
                                            "END:VEVENT\r\n"
                                            "END:VCALENDAR\r\n"));
    }

    void itemsAreReadBack_data()
    {
        QTest::addColumn<QString>("label");
        QTest::addColumn<qint64>("start");
        QTest::addColumn<qint64>("duration");
        QTest::addColumn<QColor>("color");
        QTest::newRow("plain") << "a" << qint64(0) << qint64(1000) << QColor();
        QTest::newRow("no label") << "" << qint64(0) << qint64(0) << QColor(Qt::blue);
        QTest::newRow("open-ended") << "a" << qint64(5000) << qint64(DocumentItem::openEnded) << QColor();
        QTest::newRow("milliseconds") << "a" << qint64(1234) << qint64(77) << QColor(1, 2, 3);
        QTest::newRow("over a second") << "a" << qint64(1999) << qint64(2) << QColor(1, 2, 3, 4);
        QTest::newRow("open-ended with milliseconds") << "a" << qint64(5001) << qint64(-1) << QColor();
        QTest::newRow("before 1970") << "a" << qint64(-1) << qint64(1) << QColor();
        QTest::newRow("first") << "a" << qint64(-62'135'596'800'000) << qint64(1500) << QColor();
        QTest::newRow("to the last") << "a" << qint64(253'402'300'799'000) << qint64(999) << QColor();
        QTest::newRow("long") << "a" << qint64(-62'135'596'800'000) << qint64(315'537'897'599'999) << QColor();
        QTest::newRow("tricky text") << QString::fromUtf8("a\\n,;:\"\t – ü 😀 \r\n\r \n x\x01y ") << qint64(0)
                                     << qint64(0) << QColor();
        QTest::newRow("long text") << QString::fromUtf8("ü–😀a").repeated(1000) << qint64(0) << qint64(0) << QColor();
        QTest::newRow("day") << "a" << day << 3 * day << QColor();
    }

    void itemsAreReadBack()
    {
        QFETCH(QString, label);
        QFETCH(qint64, start);
        QFETCH(qint64, duration);
        QFETCH(QColor, color);
        compareWithReadBack(documentOf({label, start, duration, color, true, {}, {}}));
        compareWithReadBack(
            documentOf({{}, start, duration, color, false, label, {{"DTSTART;VALUE", "DATE"}, {"x", label}}}));
    }

    void attributesAreReadBack()
    {
        DocumentItem item{"a", 0, 1000, {}, true, "d", {}};
        item.attributes = {{"LOCATION", "x;y,z\nw"},
                           {"URL", "http://a/b,c;d"},
                           {"ATTENDEE", "mailto:a"},
                           {"ATTENDEE;CN", "A, B"},
                           {"ATTENDEE;MEMBER", "\"m:a\",\"m:b\""},
                           {"ATTENDEE;EMPTY", ""},
                           {"ATTENDEE#2", "mailto:b"},
                           {"ATTENDEE#4", "none before it"},
                           {"COMMENT#2", "no first"},
                           {"CONTACT;CN", "no property"},
                           {"SUMMARY;LANGUAGE", "en"},
                           {"SUMMARY;bad name", "x"},
                           {"DESCRIPTION;ALTREP", "cid:\"1\""},
                           {"SUMMARY", "another"},
                           {"SUMMARY#2", "one more"},
                           {"CATEGORIES", "A,B"},
                           {"DTSTAMP", "20010203T040506Z"},
                           {"DTSTART", "x"},
                           {"DTSTART;TZID", "y"},
                           {"RRULE", "FREQ=DAILY"},
                           {"UID", "u,1"},
                           {"X-OWN", "v"},
                           {"X-OWN;VALUE", "URI"},
                           {"X-VESKTIMELINE-LOCKED", "TRUE"},
                           {"STOPS", "12"},
                           {"stops", "13"},
                           {"", "no name"},
                           {"a;b:c", "d\re\x01"},
                           {"LAST-MODIFIED", "20200102T030405Z"},
                           {"GEO", "1.5;2"},
                           {"PRIORITY", ""},
                           {"RESOURCES", "a,b"}};
        compareWithReadBack(documentOf(item));
        item.attributes["DTSTAMP"] = "yesterday";
        item.attributes["UID"] = "";
        item.attributes["CATEGORIES"] = "A, B";
        compareWithReadBack(documentOf(item));
    }

    void tracksAreReadBack()
    {
        Document document;
        document.track({"A"}).color = QColor(1, 2, 3, 4);
        document.track({"A", "B"}).items = {{"x", 0, 1, {}, true, {}, {}},
                                            {"y", 0, 1, {}, true, {}, {{"CATEGORIES", "B,C"}}},
                                            {"z", 0, 1, {}, true, {}, {{"CATEGORIES", "C,B"}}}};
        document.track({"A", "B"}).color = Qt::red;
        document.track({"A", "empty"});
        document.track({"A", "B", "C"}).items = {{"x", 0, 1, {}, true, {}, {}},
                                                 {"y", 0, 1, {}, true, {}, {{"CATEGORIES", "Q"}}}};
        document.track({""}).items = {{"x", 0, 1, {}, true, {}, {{"CATEGORIES", "Q"}}}};
        document.track({"", " blanks "}).items = {{"x", 0, 1, {}, true, {}, {}}};
        document.track({"", ""}).items = {{"x", 0, 1, {}, true, {}, {}}};
        document.track({"f"});
        document.track({"a,b/c\\d\ne\x01", "x,y"}).items = {{"x", 0, 1, {}, true, {}, {}}};
        compareWithReadBack(document);
    }

    void aDocumentWithoutTracksIsReadBack() { compareWithReadBack({}); }

    void occurrencesOfOneSeriesAreEventsOfTheirOwn()
    {
        Document document;
        for (int i = 0; i < 3; ++i)
            document.track({"T"}).items.push_back({"x", i * 1000, 0, {}, true, {}, {{"UID", "u"}}});
        document.track({"T"}).items.push_back({"y", 0, 0, {}, true, {}, {{"UID", "u-1"}}});
        const QByteArray written = text(document);
        QVERIFY(written.contains("\r\nUID:u\r\n"));
        QVERIFY(written.contains("\r\nUID:u-2\r\n"));
        QVERIFY(written.contains("\r\nUID:u-3\r\n"));
        QCOMPARE(written.count("\r\nUID:u-1\r\n"), 1);
        QCOMPARE(written.count("\r\nX-VESKTIMELINE-UID:u\r\n"), 2);
        compareWithReadBack(document);
    }

    void everyEventHasAUidOfItsOwn()
    {
        Document document;
        document.track({"T"}).items.assign(3, {"x", 0, 0, {}, true, {}, {}});
        QSet<QByteArray> uids;
        const auto lines = text(document).split('\n');
        for (const QByteArray& line : lines) {
            if (line.startsWith("UID:"))
                uids.insert(line);
        }
        QCOMPARE(uids.size(), 3);
        QCOMPARE(text(document), text(document));
    }

    void noLineIsLongerThan75Bytes()
    {
        const auto lines =
            text(documentOf({QString::fromUtf8("ü–😀a").repeated(1000), 0, 0, {}, true, {}, {}})).split('\n');
        QVERIFY(lines.size() > 100);
        for (const QByteArray& line : lines) {
            QVERIFY(line.size() <= 76);
            QVERIFY(line.isEmpty() || line.endsWith('\r'));
            QVERIFY(!QString::fromUtf8(line).contains(QChar::ReplacementCharacter));
        }
    }

    void anotherParserReadsTheEvents()
    {
        const QByteArray written =
            text(documentOf({"La, bel",
                             1577934245000,
                             60'000,
                             QColor(1, 2, 3),
                             false,
                             "d\ne",
                             {{"LOCATION", "x;y"}, {"free", "f"}, {"ATTENDEE", "mailto:a"}, {"ATTENDEE;CN", "A: B"}}}));
        icalcomponent* calendar = icalparser_parse_string(written.constData());
        QVERIFY(calendar);
        icalcomponent* event = icalcomponent_get_first_component(calendar, ICAL_VEVENT_COMPONENT);
        QVERIFY(event);
        QCOMPARE(icalcomponent_count_errors(calendar), 0);
        QCOMPARE(icalcomponent_get_summary(event), "La, bel");
        QCOMPARE(icalcomponent_get_description(event), "d\ne");
        QCOMPARE(icalcomponent_get_location(event), "x;y");
        QCOMPARE(icaltime_as_timet(icalcomponent_get_dtstart(event)), time_t(1577934245));
        QCOMPARE(icaltime_as_timet(icalcomponent_get_dtend(event)), time_t(1577934305));
        icalcomponent_free(calendar);
    }

    void randomDocumentsAreReadBack()
    {
        QRandomGenerator random(1);
        const QString letters = QString::fromUtf8("aB ,;:\\\"\n\r\t/#ü😀=\x02");
        const auto word = [&] {
            QString made;
            for (int i = random.bounded(12); i > 0; --i)
                made += letters.at(random.bounded(letters.size()));
            // No halves of characters.
            return QString::fromUtf8(made.toUtf8());
        };
        for (int round = 0; round < 100; ++round) {
            Document document;
            for (int i = random.bounded(20); i > 0; --i) {
                QStringList path{QString::number(round)};
                while (random.bounded(2))
                    path.append(word());
                DocumentItem item{word(),
                                  random.bounded(1'000'000) * 500LL,
                                  random.bounded(1000) * 100LL - 1,
                                  {},
                                  random.bounded(2) == 0,
                                  word(),
                                  {}};
                item.duration = random.bounded(2) ? item.duration : DocumentItem::openEnded;
                for (int a = random.bounded(5); a > 0; --a)
                    item.attributes.insert(random.bounded(2) ? word() : QString("X-A;") + word(), word());
                document.track(path).items.push_back(item);
            }
            compareWithReadBack(document);
            if (QTest::currentTestFailed())
                return;
        }
    }

    void timesThatTheFormatCannotSayAreRefused()
    {
        QTemporaryDir dir;
        const QString fileName = dir.filePath("out.ics");
        for (const DocumentItem& item : {DocumentItem{"x", -62'135'596'800'001, 0, {}, true, {}, {}},
                                         DocumentItem{"x", 253'402'300'799'999, 1, {}, true, {}, {}}}) {
            const WriteResult result = writeIcs(documentOf(item), fileName);
            QVERIFY(!result);
            QCOMPARE(result.error().text(), fileName + ": the item \"x\" is outside the years 1 to 9999");
            QVERIFY(!QFile::exists(fileName));
        }
    }

    void aFileIsReplacedByTheWholeText()
    {
        const Document document = documentOf({"x", 0, 0, {}, true, {}, {{"DTSTAMP", "20010203T040506Z"}}});
        WriterChecks::aFileIsReplacedByTheWholeText(document, "out.ics", write, [&](const QString& fileName) {
            QCOMPARE(contentOf(fileName), text(document));
        });
    }

    void aCancelledWriteKeepsTheOldFile() { WriterChecks::aCancelledWriteKeepsTheOldFile("out.ics", write); }

    void whatCannotBeWrittenIsReported() { WriterChecks::whatCannotBeWrittenIsReported("out.ics", write); }
};

QTEST_APPLESS_MAIN(TestIcsWriter)
#include "tst_ics_writer.moc"
