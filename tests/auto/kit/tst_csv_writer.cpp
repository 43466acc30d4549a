#include "support/text_file.h"
#include "writer_checks.h"

#include <VeskTimelineKit/csv_reader.h>
#include <VeskTimelineKit/csv_writer.h>

#include <QBuffer>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTest>

using namespace VeskTimeline::Kit;

namespace {

WriteResult write(const Document& document, const QString& fileName, const WriteOptions& options)
{
    return writeCsv(document, fileName, options);
}

Result<Document> readBack(const Document& document)
{
    QByteArray text = csvText(document);
    QBuffer buffer(&text);
    buffer.open(QIODevice::ReadOnly);
    return readCsv(buffer, "f.csv");
}

Document trickyDocument()
{
    Document document;
    document.track({"A, \"B\"", "km/h", "back\\"}).items = {
        {"", -62135596800000, 1, QColor(1, 2, 3, 4), false},
        {"two\r\nlines, \"quoted\" – ü", 1234, 0, QColor(255, 128, 0), true},
        {"  blanks around  ", 0, 2147483647, {}, true},
        {"open", 92867562300, DocumentItem::openEnded, {}, false}};
    document.track({"B"}).items = {{"x", 0, 1000, {}, true}};
    return document;
}

/// Documents with all that CSV can say, and texts that try its quoting.
class RandomDocument
{
public:
    explicit RandomDocument(unsigned seed) : m_random(seed) {}

    Document make()
    {
        Document document;
        QList<QStringList> paths{{}};
        for (int i = below(8); i >= 0; --i) {
            QStringList path = paths.at(below(static_cast<int>(paths.size())));
            path.append(name());
            paths.append(path);
            document.track(path);
            for (int count = below(5); count > 0; --count)
                document.track(path).items.push_back(item());
        }
        return document;
    }

private:
    int below(int limit) { return static_cast<int>(m_random.bounded(limit)); }

    QString text()
    {
        static const QStringList pieces{"a",          "B",      ",",      "\"",         "\n",    "\r",  "\r\n",
                                        " ",          "\t",     ";",      "\\",         "/",     "\\/", "'",
                                        "\u00E4",     "\u2013", "\u6F22", "\U0001D11E", "=",     "-",   "1",
                                        "2020-01-01", "start",  "\uFEFF", "\u0001",     "\u00A0"};
        QString text;
        for (int i = below(6); i > 0; --i)
            text += pieces.at(below(static_cast<int>(pieces.size())));
        return text;
    }

    QString name()
    {
        const QString trimmed = text().trimmed();
        return trimmed.isEmpty() ? QString("n%1").arg(below(5)) : trimmed;
    }

    DocumentItem item()
    {
        DocumentItem item;
        item.label = text();
        item.start = static_cast<qint64>(m_random.bounded(300'000'000'000'000.0)) - 60'000'000'000'000;
        item.duration = below(4) == 0 ? DocumentItem::openEnded
                                      : std::min<qint64>(static_cast<qint64>(m_random.bounded(1e11)),
                                                         253'402'300'799'999 - item.start);
        if (below(2) == 0)
            item.color = QColor(below(256), below(256), below(256), below(256));
        item.isEditable = below(2) == 0;
        item.description = text();
        for (int i = below(4); i > 0; --i)
            item.attributes.insert(text(), text() + 'x');
        return item;
    }

    QRandomGenerator m_random;
};

void compare(const Result<Document>& result, const Document& expected)
{
    QVERIFY2(result, qPrintable(result ? QString() : result.error().text()));
    const Document& document = result.value();
    QCOMPARE(document.tracks().size(), expected.tracks().size());
    for (std::size_t t = 0; t < expected.tracks().size(); ++t) {
        QCOMPARE(document.tracks()[t].path, expected.tracks()[t].path);
        const auto& items = document.tracks()[t].items;
        const auto& expectedItems = expected.tracks()[t].items;
        QCOMPARE(items.size(), expectedItems.size());
        for (std::size_t i = 0; i < expectedItems.size(); ++i) {
            QCOMPARE(items[i].label, expectedItems[i].label);
            QCOMPARE(items[i].start, expectedItems[i].start);
            QCOMPARE(items[i].duration, expectedItems[i].duration);
            QCOMPARE(items[i].color, expectedItems[i].color);
            QCOMPARE(items[i].isEditable, expectedItems[i].isEditable);
            QCOMPARE(items[i].description, expectedItems[i].description);
            QCOMPARE(items[i].attributes, expectedItems[i].attributes);
        }
    }
}

} // namespace

class TestCsvWriter : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(".?")); }

    void theTextIsAsDescribed()
    {
        Document document;
        document.track({"A", "B"}).items = {{"x, y", 92554380000, 1500, QColor(Qt::red), false},
                                            {"\"z\"", 0, DocumentItem::openEnded, {}, true}};
        QCOMPARE(csvText(document), QByteArray("track,label,start,end,color,editable\n"
                                               "A/B,\"x, y\",1972-12-07T05:33:00Z,1972-12-07T05:33:01.500Z,#ff0000,"
                                               "false\n"
                                               "A/B,\"\"\"z\"\"\",1970-01-01T00:00:00Z,,,true\n"));
    }

    void whatIsWrittenIsReadBack()
    {
        const Document written = trickyDocument();
        const Result<Document> result = readBack(written);
        QVERIFY2(result, qPrintable(result ? QString() : result.error().text()));
        const Document& document = result.value();
        QCOMPARE(document.tracks().size(), written.tracks().size());
        for (std::size_t t = 0; t < written.tracks().size(); ++t) {
            QCOMPARE(document.tracks()[t].path, written.tracks()[t].path);
            const auto& items = document.tracks()[t].items;
            const auto& expected = written.tracks()[t].items;
            QCOMPARE(items.size(), expected.size());
            for (std::size_t i = 0; i < expected.size(); ++i) {
                QCOMPARE(items[i].label, expected[i].label);
                QCOMPARE(items[i].start, expected[i].start);
                QCOMPARE(items[i].duration, expected[i].duration);
                QCOMPARE(items[i].color, expected[i].color);
                QCOMPARE(items[i].isEditable, expected[i].isEditable);
            }
        }
        QCOMPARE(csvText(document), csvText(written));
    }

    void descriptionsAndAttributesAreColumns()
    {
        Document document;
        document.track({"A"}).items = {
            {"x", 0, 1000, {}, true, "more", {{"start", "s"}, {"note", "n"}, {"", "e"}, {"\\b", "\\"}}},
            {"y", 0, 1000, {}, true, {}, {{" End ", "f"}, {"Note", "N"}}}};
        QCOMPARE(csvText(document),
                 QByteArray("track,label,start,end,color,editable,description,\\,\"\\ End \",Note,\\\\b,note,\\start\n"
                            "A,x,1970-01-01T00:00:00Z,1970-01-01T00:00:01Z,,true,more,e,,,\\,n,s\n"
                            "A,y,1970-01-01T00:00:00Z,1970-01-01T00:00:01Z,,true,,,f,N,,,\n"));
        compare(readBack(document), document);
    }

    void tracksWithoutItemsAreKeptInTheirPlaces()
    {
        Document document;
        document.track({"A"});
        document.track({"B", "C"});
        document.track({"D", "E", "F"}).items = {{"x", 0, 1, {}, true, {}, {}}};
        document.track({"B", "G"});
        document.track({"A", "H"}).items = {{"y", 0, 1, {}, true, {}, {}}};
        compare(readBack(document), document);
        Document empty;
        empty.track({"A"});
        compare(readBack(empty), empty);
        compare(readBack({}), {});
    }

    void itemsOfAnyLengthAreKept()
    {
        Document document;
        document.track({"A"}).items = {{"x", -62'135'596'800'000, 315'537'897'599'999, {}, true, {}, {}},
                                       {"y", 5, 2'147'483'648, {}, true, {}, {}}};
        compare(readBack(document), document);
    }

    void anyDocumentIsReadBack()
    {
        for (unsigned seed = 1; seed <= 60; ++seed) {
            const Document document = RandomDocument(seed).make();
            const auto result = readBack(document);
            compare(result, document);
            if (QTest::currentTestFailed()) {
                qInfo("seed %u", seed);
                return;
            }
            // Items of these documents lie anywhere.
            for (const QString& warning : result.value().warnings())
                QVERIFY2(warning.contains(": items that overlap others of their track"), qPrintable(warning));
        }
    }

    void whatCannotBeSaidIsWarnedOf()
    {
        Document document;
        document.track({"A"}).color = Qt::red;
        document.track({" B "}).items = {{"x", 0, 1, QColor::fromRgba64(1, 2, 3), true, {}, {{"a", ""}, {"b", ""}}},
                                         {QString("a") + QChar(QChar::Null) + "b", 0, 1, {}, true, {}, {}},
                                         {QString(QChar(0xD800)) + "c", 0, 1, {}, true, {}, {}},
                                         {QString(1'000'001, u'x'), 0, 1, {}, true, {}, {}},
                                         {"far", 253'402'300'800'000, 1, {}, true, {}, {}}};
        document.track({""}).items = {{"y", 0, 1, {}, true, {}, {}}};
        QTemporaryDir dir;
        const QString fileName = dir.filePath("out.csv");
        const WriteResult result = writeCsv(document, fileName);
        QVERIFY(result);
        QCOMPARE(result.value(),
                 (QStringList{"CSV has no place for the colors of tracks; left out: 1",
                              "CSV has 8 bits for a part of a color; colors rounded: 1",
                              "CSV has no place for attributes without a value; left out: 2",
                              "names of tracks that CSV cannot say, changed: 2",
                              "texts that are too long or hold characters that are none, changed: 3",
                              "items outside the years 1 to 9999, which will be left out when the file is read: 1"}));
        const auto read = readCsv(fileName);
        QVERIFY2(read, qPrintable(read ? QString() : read.error().text()));
        QCOMPARE(read.value().itemCount(), 5);
        QCOMPARE(read.value().tracks()[1].path, QStringList{"B"});
        QCOMPARE(read.value().tracks()[1].items[1].label, QString::fromUtf8("a\uFFFDb"));
        QCOMPARE(read.value().tracks()[1].items[2].label, QString::fromUtf8("\uFFFDc"));
        QCOMPARE(read.value().tracks()[2].path, QStringList{"(no name)"});
    }

    void aCancelledWriteKeepsTheOldFile() { WriterChecks::aCancelledWriteKeepsTheOldFile("out.csv", write); }

    void aFileIsReplacedByTheWholeText()
    {
        WriterChecks::aFileIsReplacedByTheWholeText(trickyDocument(), "out.csv", write, [](const QString& fileName) {
            QCOMPARE(contentOf(fileName), csvText(trickyDocument()));
        });
    }

    void underAPackedNameTheTextIsPacked()
    {
        const auto check = [](const QString& fileName) {
            QVERIFY(contentOf(fileName).startsWith("\x1f\x8b"));
            const Result<Document> result = readCsv(fileName);
            QVERIFY(result);
            QCOMPARE(csvText(result.value()), csvText(trickyDocument()));
        };
        WriterChecks::aFileIsReplacedByTheWholeText(trickyDocument(), "out.csv.gz", write, check);
        WriterChecks::aFileIsReplacedByTheWholeText(trickyDocument(), "OUT.CSV.GZ", write, check);
        WriterChecks::aCancelledWriteKeepsTheOldFile("out.csv.gz", write);
        WriterChecks::whatCannotBeWrittenIsReported("out.csv.gz", write);
    }

    void whatIsPackedIsNeverSoSmallThatReadingRefusesIt()
    {
        Document document;
        document.track({"A"}).items = std::vector<DocumentItem>(300, {QString(100'000, 'x'), 0, 1, {}, true, {}, {}});
        const QTemporaryDir dir;
        const QString fileName = dir.filePath("out.csv.gz");
        QVERIFY(writeCsv(document, fileName));
        QVERIFY(QFileInfo(fileName).size() < csvText(document).size() / 5);
        const Result<Document> result = readCsv(fileName);
        QVERIFY2(result, qPrintable(result ? QString() : result.error().text()));
        QCOMPARE(result.value().itemCount(), 300);
        QCOMPARE(result.value().tracks().front().items.back().label, document.tracks().front().items.back().label);
    }

    void whatCannotBeWrittenIsReported() { WriterChecks::whatCannotBeWrittenIsReported("out.csv", write); }
};

QTEST_APPLESS_MAIN(TestCsvWriter)
#include "tst_csv_writer.moc"
