#include "writer_checks.h"

#include <VeskTimelineKit/vtl_reader.h>
#include <VeskTimelineKit/vtl_writer.h>

#include <QBuffer>
#include <QJsonDocument>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTest>

using namespace VeskTimeline::Kit;

namespace {

WriteResult write(const Document& document, const QString& fileName, const WriteOptions& options)
{
    return writeVtl(document, fileName, options);
}

Result<Document> read(QByteArray text, const ReadOptions& options = {})
{
    QBuffer buffer(&text);
    buffer.open(QIODevice::ReadOnly);
    return readVtl(buffer, "f", options);
}

// A file with these members after format and version.
QByteArray vtl(const QByteArray& members)
{
    return "{\"format\":\"vesk-timeline\",\"version\":1" + members + "}";
}

QByteArray withItem(const QByteArray& item)
{
    return vtl(",\n\"tracks\":[{\"path\":[\"A\"]}],\n\"items\":[\n" + item + "]");
}

void compare(const DocumentItem& actual, const DocumentItem& expected)
{
    QCOMPARE(actual.label, expected.label);
    QCOMPARE(actual.start, expected.start);
    QCOMPARE(actual.duration, expected.duration);
    QCOMPARE(actual.color, expected.color);
    QCOMPARE(actual.isEditable, expected.isEditable);
    QCOMPARE(actual.description, expected.description);
    QCOMPARE(actual.attributes, expected.attributes);
}

void compare(const Document& actual, const Document& expected)
{
    QCOMPARE(actual.tracks().size(), expected.tracks().size());
    for (std::size_t t = 0; t < expected.tracks().size(); ++t) {
        QCOMPARE(actual.tracks()[t].path, expected.tracks()[t].path);
        QCOMPARE(actual.tracks()[t].color, expected.tracks()[t].color);
        QCOMPARE(actual.tracks()[t].items.size(), expected.tracks()[t].items.size());
        for (std::size_t i = 0; i < expected.tracks()[t].items.size(); ++i)
            compare(actual.tracks()[t].items[i], expected.tracks()[t].items[i]);
    }
}

/// Documents full of what is hard to write down.
class RandomDocument
{
public:
    explicit RandomDocument(quint32 seed) : m_random(seed) {}

    Document make()
    {
        Document document;
        std::vector<QStringList> paths;
        for (int t = 0; t < 12; ++t) {
            QStringList path = paths.empty() ? QStringList() : paths[number(paths.size())];
            if (path.size() > 3 || number(3) == 0)
                path.clear();
            path.append(text() + QString::number(t));
            paths.push_back(path);
            DocumentTrack& track = document.track(path);
            track.color = color();
            for (std::size_t i = number(6); i > 0; --i)
                track.items.push_back(item());
        }
        return document;
    }

private:
    std::size_t number(std::size_t below) { return m_random.bounded(static_cast<quint32>(below)); }

    QString text()
    {
        static const QStringList pieces{
            "a",  "\"", "\\", "/", "\n", "\r", "\t", QString(QChar(0)),    QString(QChar(1)),
            "\b", "é",  "漢", "🚀", " ",  "{",  "]",  QString(QChar(0x7F)), "\\u0041"};
        QString text;
        for (std::size_t n = number(8); n > 0; --n)
            text += pieces.at(static_cast<qsizetype>(number(static_cast<std::size_t>(pieces.size()))));
        return text;
    }

    QColor color()
    {
        switch (number(4)) {
        case 0:
            return QColor::fromRgba(m_random.generate());
        case 1:
            return QColor::fromRgba64(QRgba64::fromRgba64(m_random.generate64()));
        case 2:
            return QColor::fromRgb(m_random.generate() | 0xFF000000u);
        default:
            return {};
        }
    }

    DocumentItem item()
    {
        constexpr qint64 first = -62135596800000;
        constexpr qint64 last = 253402300799999;
        DocumentItem item;
        item.start = first + static_cast<qint64>(m_random.generate64() % static_cast<quint64>(last - first));
        const auto longest = static_cast<quint64>(last - item.start);
        item.duration = number(4) == 0 ? -1 : static_cast<qint64>(m_random.generate64() % (longest + 1));
        item.label = text();
        item.description = text();
        item.color = color();
        item.isEditable = number(2) == 0;
        for (std::size_t n = number(3); n > 0; --n)
            item.attributes.insert(text(), text());
        return item;
    }

    QRandomGenerator m_random;
};

} // namespace

class TestVtl : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(".?")); }

    // Other formats have a limit on tracks, several of them in one document may exceed it, and that must be kept.
    void anyNumberOfTracksComesBack()
    {
        Document document;
        for (std::size_t i = 0; i < Document::mostTracks + 10; ++i)
            document.track({QString::number(i)});
        document.trackAt(Document::mostTracks + 9).items.push_back({"last", 1, 2, {}, true});
        const auto result = read(vtlText(document));
        QVERIFY(result);
        QCOMPARE(result.value().tracks().size(), Document::mostTracks + 10);
        QCOMPARE(result.value().tracks().back().items.front().label, "last");
        QCOMPARE(result.value().warnings(), QStringList());
    }

    void aDocumentBelowATrackOfAnotherComesBack()
    {
        Document inner;
        QStringList path;
        for (int level = 0; level < 100; ++level)
            path.append(QString::number(level));
        inner.track(path).items.push_back({"deep", 1, 2, {}, true});
        Document document;
        document.addBelow("file", std::move(inner));
        const auto result = read(vtlText(document));
        QVERIFY(result);
        QCOMPARE(result.value().tracks().back().path.size(), 101);
        QCOMPARE(result.value().tracks().back().items.front().label, "deep");
    }

    void theTextIsAsDescribed()
    {
        Document document;
        document.track({"A", "B"}).color = QColor("#4c78a8");
        document.track({"A", "B"}).items = {
            {"\"x\"\n\x01", 92554380000, 3000000000, QColor(255, 0, 0, 128), false, "long", {{"k", "v"}, {"l", "w"}}},
            {"", -5, DocumentItem::openEnded, {}, true}};
        QCOMPARE(
            vtlText(document),
            QByteArray("{\n\"format\": \"vesk-timeline\",\n\"version\": 1,\n\"tracks\": [\n{\"path\":[\"A\"]},\n"
                       "{\"path\":[\"A\",\"B\"],\"color\":\"#4c78a8\"}\n],\n\"items\": [\n"
                       "{\"track\":1,\"start\":92554380000,\"duration\":3000000000,\"label\":\"\\\"x\\\"\\n\\u0001\","
                       "\"color\":\"#80ff0000\",\"editable\":false,\"description\":\"long\","
                       "\"attributes\":{\"k\":\"v\",\"l\":\"w\"}},\n"
                       "{\"track\":1,\"start\":-5,\"label\":\"\"}\n]\n}\n"));
    }

    void anyDocumentIsReadBackAsItWas()
    {
        for (quint32 seed = 1; seed <= 200; ++seed) {
            const Document document = RandomDocument(seed).make();
            const QByteArray text = vtlText(document);
            QVERIFY(QJsonDocument::fromJson(text).isObject());
            const Result<Document> result = read(text);
            QVERIFY2(result, qPrintable(result ? QString() : result.error().text()));
            QCOMPARE(result.value().warnings(), QStringList());
            compare(result.value(), document);
            QCOMPARE(vtlText(result.value()), text);
            if (QTest::currentTestFailed())
                return;
        }
    }

    void theFirstAndTheLastTimeAreKept()
    {
        Document document;
        document.track({"A"}).items = {{"", -62135596800000, 315537897599999, {}}, {"", 253402300799999, 0, {}}};
        const Result<Document> result = read(vtlText(document));
        QVERIFY(result);
        QCOMPARE(result.value().warnings(), QStringList());
        compare(result.value(), document);
    }

    void anEmptyDocumentIsADocument()
    {
        const Result<Document> result = read(vtlText(Document()));
        QVERIFY(result);
        QCOMPARE(result.value().tracks().size(), 0u);
        QVERIFY(read(vtl("")));
    }

    void blanksAndAByteOrderMarkAreReadOver()
    {
        const Result<Document> result =
            read("\xEF\xBB\xBF \r\n{ \"format\" : \"vesk-timeline\" , \"version\" : 1 , \"tracks\" : [ { \"path\" : [ "
                 "\"A\" ] } ] , \"items\" : [ { \"start\" : 5 , \"track\" : 0 } ] } \n");
        QVERIFY2(result, qPrintable(result ? QString() : result.error().text()));
        QCOMPARE(result.value().tracks()[0].items[0].start, 5);
        QCOMPARE(result.value().tracks()[0].items[0].duration, DocumentItem::openEnded);
    }

    void theFileIsRefused_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<QString>("error");
        const auto row = [](const char* name, const QByteArray& text, const char* error) {
            QTest::newRow(name) << text << QString(error);
        };
        row("empty", "", "f:1: the file is empty");
        row("blank", " \n ", "f:2: the file is empty");
        row("no JSON", "track,label", "f:1: the text is not JSON: it starts with neither { nor [");
        row("UTF-16", QByteArray("\xFF\xFE{\0\"\0", 6), "f:1: the text is not UTF-8");
        row("another format", "{\n\"format\":\"x\",\"version\":1}",
            "f:2: not a VeskTimeline document: its format is another one");
        row("no format", "{\"version\":1}", "f:1: not a VeskTimeline document: it has no format and version");
        row("an array", "[1]", "f:1: not a VeskTimeline document: it does not start with format and version");
        row("late format", "{\"tracks\":[1],\"format\":\"vesk-timeline\",\"version\":1}",
            "f:1: not a VeskTimeline document: it does not start with format and version");
        row("bad version", "{\"format\":\"vesk-timeline\",\"version\":\"1\"}",
            "f:1: the version is not a positive whole number");
        row("newer version", "{\"format\":\"vesk-timeline\",\n\"version\":2}",
            "f:2: version 2 of the format is newer than this program, which knows version 1");
        row("cut off", "{\"format\":\"vesk-timeline\",\"version\":1,\"tracks\":[{\"path\":[\"A\"]},{\"pa",
            "f:1: the file ends in the middle of a document");
        row("cut off in a later line", "{\"format\":\"vesk-timeline\",\n\"version\":1,\"tracks\":[\n{\"path\":\n[\"A\"",
            "f:4: the file ends in the middle of a document");
        row("cut off after an element", "{\"format\":\"vesk-timeline\",\"version\":1,\"tracks\":[{\"path\":[\"A\"]}",
            "f:1: the file ends in the middle of a document");
        row("more text", vtl("") + "\n}", "f:2: there is more text after the end of the JSON text");
        row("wrong bracket", vtl(",\"tracks\":[{\"path\":[\"A\"}]"), "f:1: brackets do not match");
        row("no comma", vtl(",\"tracks\":[{\"path\":[\"A\"]} {\"path\":[\"B\"]}]"),
            "f:1: a comma is missing after an element");
        row("no path", vtl(",\"tracks\":[{}]"), "f:1: a track has no path");
        row("empty path", vtl(",\"tracks\":[{\"path\":[]}]"), "f:1: a track has no path");
        row("path of numbers", vtl(",\"tracks\":[{\"path\":[1]}]"), "f:1: \"path\" is no text");
        row("track twice", vtl(",\"tracks\":[{\"path\":[\"A\"]},\n{\"path\":[\"A\"]}]"),
            "f:2: the track \"A\" is there twice");
        row("child first", vtl(",\"tracks\":[{\"path\":[\"A\",\"B\"]}]"),
            "f:1: the track \"B\" is listed before the one above it");
        row("track colour", vtl(",\"tracks\":[{\"path\":[\"A\"],\"color\":\"red\"}]"), "f:1: bad color \"red\"");
        row("tracks are no list", vtl(",\"tracks\":1"), "f:1: \"tracks\" is not a list");
    }
    void theFileIsRefused()
    {
        QFETCH(QByteArray, text);
        QFETCH(QString, error);
        const Result<Document> result = read(text);
        QVERIFY(!result);
        QCOMPARE(result.error().text(), error);
    }

    void anItemIsLeftOutWithAWarning_data()
    {
        QTest::addColumn<QByteArray>("item");
        QTest::addColumn<QString>("reason");
        const auto row = [](const char* name, const QByteArray& item, const char* reason) {
            QTest::newRow(name) << item << QString(reason);
        };
        row("no object", "1", "it is no object");
        row("bad JSON", "{\"track\":0 \"start\":1}", "it is not valid JSON");
        row("no track", "{\"start\":1}", "it has no track");
        row("no start", "{\"track\":0}", "it has no start");
        row("unknown track", "{\"track\":1,\"start\":1}", "there is no track 1");
        row("negative track", "{\"track\":-1,\"start\":1}", "there is no track -1");
        row("fraction", "{\"track\":0,\"start\":1.5}", "\"start\" is no whole number, or out of range");
        row("huge number", "{\"track\":0,\"start\":1e999}", "a number is malformed or out of range");
        row("beyond 64 bits", "{\"track\":0,\"start\":18446744073709551615}",
            "\"start\" is no whole number, or out of range");
        row("early", "{\"track\":0,\"start\":-62135596800001}", "its times are outside the years 1 to 9999");
        row("late", "{\"track\":0,\"start\":253402300800000}", "its times are outside the years 1 to 9999");
        row("late end", "{\"track\":0,\"start\":0,\"duration\":9223372036854775807}",
            "its times are outside the years 1 to 9999");
        row("negative duration", "{\"track\":0,\"start\":0,\"duration\":-1}", "the duration is negative");
        row("bad colour", "{\"track\":0,\"start\":0,\"color\":\"#12\"}", "bad color \"#12\"");
        row("bad wide colour", "{\"track\":0,\"start\":0,\"color\":\"#00000000000g0000\"}",
            "bad color \"#00000000000g0000\"");
        row("bad label", "{\"track\":0,\"start\":0,\"label\":7}", "\"label\" is no text");
        row("bad editable", "{\"track\":0,\"start\":0,\"editable\":1}", "\"editable\" is neither true nor false");
        row("bad attributes", "{\"track\":0,\"start\":0,\"attributes\":[]}", "\"attributes\" is no object");
        row("bad attribute", "{\"track\":0,\"start\":0,\"attributes\":{\"k\":1}}", "\"k\" is no text");
    }
    void anItemIsLeftOutWithAWarning()
    {
        QFETCH(QByteArray, item);
        QFETCH(QString, reason);
        const Result<Document> result = read(withItem(item + ",\n{\"track\":0,\"start\":7}"));
        QVERIFY2(result, qPrintable(result ? QString() : result.error().text()));
        QCOMPARE(result.value().itemCount(), 1);
        QCOMPARE(result.value().tracks()[0].items[0].start, 7);
        QCOMPARE(result.value().warnings(), QStringList("f:4: an item is left out: " + reason));
    }

    void whatIsNotKnownIsLeftOutWithAWarning()
    {
        const Result<Document> result = read(vtl(",\"x\":{\"items\":[1]},\"tracks\":[{\"path\":[\"A\"],\"y\":1}],\n"
                                                 "\"items\":[{\"track\":0,\"start\":1,\"z\":2}]"));
        QVERIFY2(result, qPrintable(result ? QString() : result.error().text()));
        QCOMPARE(result.value().itemCount(), 1);
        QCOMPARE(result.value().warnings(),
                 (QStringList{"f:1: the member \"y\" of a track is left out",
                              "f:2: the member \"z\" of an item is left out", "f: the member \"x\" is left out"}));
    }

    void wrongBytesAreReplacedWithAWarning()
    {
        const Result<Document> result = read(withItem("{\"track\":0,\"start\":1,\"label\":\"caf\xE9\"}"));
        QVERIFY(result);
        QCOMPARE(result.value().tracks()[0].items[0].label, QString("caf") + QChar(QChar::ReplacementCharacter));
        QCOMPARE(result.value().warnings(), QStringList("f:4: bytes that are not UTF-8 are replaced"));
    }

    void deepNestingIsRefused()
    {
        const QByteArray deep = QByteArray(100'000, '[') + QByteArray(100'000, ']');
        QCOMPARE(read(vtl(",\"x\":" + deep)).error().text(), "f:1: brackets are nested more than 1000 levels deep");
        QCOMPARE(read(withItem(deep)).error().text(), "f:4: brackets are nested more than 1000 levels deep");
        QCOMPARE(read(deep).error().text(), "f:1: brackets are nested more than 1000 levels deep");
    }

    void aLongTextIsReadAndAnEndlessOneRefused()
    {
        const QByteArray longText(10'000'000, 'x');
        const Result<Document> result = read(withItem("{\"track\":0,\"start\":1,\"label\":\"" + longText + "\"}"));
        QVERIFY(result);
        QCOMPARE(result.value().tracks()[0].items[0].label.size(), 10'000'000);
        const QByteArray endless(20'000'000, 'x');
        QCOMPARE(read(withItem("{\"track\":0,\"start\":1,\"label\":\"" + endless)).error().text(),
                 "f:4: a record is longer than 12582912 bytes");
    }

    void progressGrowsAndCancellingEndsIt()
    {
        Document document;
        document.track({"A"}).items.resize(50'000);
        const QByteArray text = vtlText(document);
        ReadOptions options;
        double last = -1.0;
        bool grows = true;
        options.progress = [&](double share) {
            grows = grows && share >= last && share <= 1.0;
            last = share;
            return true;
        };
        QVERIFY(read(text, options));
        QVERIFY(grows);
        QVERIFY(last >= 0.0);

        int calls = 0;
        options.progress = [&calls](double) { return ++calls < 1; };
        const Result<Document> result = read(text, options);
        QVERIFY(!result);
        QCOMPARE(result.error().text(), "f: reading was cancelled");
        QCOMPARE(calls, 1);
    }

    void aFileIsReplacedByTheWholeText()
    {
        const Document document = RandomDocument(1).make();
        WriterChecks::aFileIsReplacedByTheWholeText(document, "out.vtl.json", write, [&](const QString& fileName) {
            const Result<Document> result = readVtl(fileName, {});
            QVERIFY(result);
            compare(result.value(), document);
        });
    }

    void aCancelledWriteKeepsTheOldFile() { WriterChecks::aCancelledWriteKeepsTheOldFile("out.vtl.json", write); }

    void whatCannotBeReadOrWrittenIsReported()
    {
        QTemporaryDir dir;
        const QString fileName = dir.filePath("no/such/out.vtl.json");
        WriterChecks::whatCannotBeWrittenIsReported("out.vtl.json", write);
        QCOMPARE(readVtl(fileName, {}).error().text(), fileName + ": No such file or directory");
        QCOMPARE(readVtl(dir.path(), {}).error().text(), dir.path() + ": is a directory");
        QCOMPARE(readVtl(QString(), {}).error().text(), ": no file name");
    }
};

QTEST_APPLESS_MAIN(TestVtl)
#include "tst_vtl.moc"
