#include <VeskTimelineKit/csv_reader.h>
#include <VeskTimelineKit/csv_writer.h>

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace VeskTimeline::Kit;

namespace {

Result<Document> readBack(const Document& document)
{
    QByteArray text = csvText(document);
    QBuffer buffer(&text);
    buffer.open(QIODevice::ReadOnly);
    return readCsv(buffer, "f.csv");
}

QByteArray content(const QString& fileName)
{
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("cannot be read");
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

    void aFileIsReplacedByTheWholeText()
    {
        QTemporaryDir dir;
        const QString fileName = dir.filePath("out.csv");
        QFile old(fileName);
        QVERIFY(old.open(QIODevice::WriteOnly));
        old.write("old");
        old.close();

        const WriteResult result = writeCsv(trickyDocument(), fileName);
        QVERIFY(result);
        QCOMPARE(result.value(), QStringList());
        QCOMPARE(content(fileName), csvText(trickyDocument()));
        QCOMPARE(QDir(dir.path()).entryList(QDir::Files | QDir::Hidden), QStringList{"out.csv"});
    }

    void whatCannotBeWrittenIsReported()
    {
        QTemporaryDir dir;
        const QString fileName = dir.filePath("no/such/out.csv");
        const WriteResult result = writeCsv(trickyDocument(), fileName);
        QVERIFY(!result);
        QCOMPARE(result.error().text(), fileName + ": No such file or directory");
        QVERIFY(!QFile::exists(fileName));
        QVERIFY(!writeCsv(trickyDocument(), dir.path()));
    }
};

QTEST_APPLESS_MAIN(TestCsvWriter)
#include "tst_csv_writer.moc"
