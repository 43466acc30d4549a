#include "support/gzip.h"

#include <VeskTimelineKit/document_format.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace VeskTimeline::Kit;

namespace {

} // namespace

class TestDocumentFormat : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(".?")); }

    void aFormatIsFoundByItsName()
    {
        QCOMPARE(documentFormatByName("csv")->name, "csv");
        QCOMPARE(documentFormatByName("CSV")->name, "csv");
        QCOMPARE(documentFormatByName("nonsense"), nullptr);
        QCOMPARE(documentFormatByName(""), nullptr);
    }

    void aFormatIsFoundByTheSuffixOfAFile()
    {
        QCOMPARE(documentFormatBySuffix("/a.b/c.csv")->name, "csv");
        QCOMPARE(documentFormatBySuffix("C.CSV")->name, "csv");
        QCOMPARE(documentFormatBySuffix("/a.csv/c"), nullptr);
        QCOMPARE(documentFormatBySuffix("csv"), nullptr);
        QCOMPARE(documentFormatBySuffix("a.csv.bak"), nullptr);
        QCOMPARE(documentFormatBySuffix("/a/.ninja_log")->name, "ninja");
        QCOMPARE(documentFormatBySuffix("a.json.gz")->name, "trace");
        QCOMPARE(documentFormatBySuffix("a.csv.gz")->name, "csv");
    }

    void theLongerSuffixCounts()
    {
        QCOMPARE(documentFormatBySuffix("a.vtl.json")->name, "vtl");
        QCOMPARE(documentFormatBySuffix("a.VTL.Json")->name, "vtl");
        // Trace events are not written: what is to become a .json file is native.
        QCOMPARE(documentFormatBySuffix("a.json")->name, "vtl");
    }

    void everyFormatIsFoundByEachOfItsSuffixes()
    {
        QVERIFY(!documentFormats().empty());
        for (const DocumentFormat& format : documentFormats()) {
            QVERIFY(format.read);
            QVERIFY(!format.description.isEmpty());
            QCOMPARE(documentFormatByName(format.name), &format);
            for (const QString& suffix : format.suffixes)
                QVERIFY(documentFormatBySuffix("x." + suffix)->suffixes.contains(suffix));
        }
    }

    void theFormatOfAFileIsThatOfItsSuffixOrContent_data()
    {
        QTest::addColumn<QString>("fileName");
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QString>("format");
        const auto row = [](const char* fileName, const QByteArray& content, const char* format) {
            QTest::addRow("%s %s", fileName, content.toPercentEncoding().constData())
                << QString(fileName) << content << QString(format);
        };
        const char* const native = " {\n \"format\" : \"vesk-timeline\", \"version\":1}";
        row("a.csv", native, "csv");
        row("a.vtl.json", "[]", "vtl");
        row("a.json", native, "vtl");
        row("a.json", "\xEF\xBB\xBF{\"format\":\"vesk-timeline\"}", "vtl");
        row("a.json", "\xEF\xBB\xBF\n[", "trace");
        row("a.json", "{\"traceEvents\":[]}", "trace");
        row("a.json", "{\"format\":\"other\"}", "trace");
        row("a.json", "[\"format\",\"vesk-timeline\"]", "trace");
        row("a.json", "\x1f\x8b", "trace");
        row("a.json", "", "vtl");
        row("a.json.gz", "", "trace");
        row("log", "# ninja log v5\n", "ninja");
        row("a.ics", "", "ics");
        row("calendar", "BEGIN:VCALENDAR\r\n", "ics");
        row("a.txt", native, "vtl");
        row("a.txt", "[{", "trace");
        row("a.gz", "\x1f\x8b", "trace");
        row("a.gz", gzipped("[]"), "trace");
        row("a.gz", gzipped("track,label"), "csv");
        row("a", gzipped("track,label").left(24), "csv");
        row("a.json.gz", gzipped("track,label"), "trace");
        row("a.csv.gz", gzipped("[]"), "csv");
        row("a.txt", "track,label", "csv");
        row("a.txt", "", "csv");
    }
    void theFormatOfAFileIsThatOfItsSuffixOrContent()
    {
        QFETCH(QString, fileName);
        QFETCH(QByteArray, content);
        QFETCH(QString, format);
        QTemporaryDir dir;
        QFile file(dir.filePath(fileName));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
        file.close();
        QCOMPARE(documentFormatOf(file.fileName()).name, format);
    }

    void theFormatOfAFileThatCannotBeReadIsTheFirstInQuestion()
    {
        QCOMPARE(documentFormatOf("/no/such/file").name, "csv");
        QCOMPARE(documentFormatOf("/no/such/file.json").name, "vtl");
        QCOMPARE(documentFormatOf("").name, "csv");
        QCOMPARE(documentFormatOf(QDir::tempPath()).name, "csv");
    }
};

QTEST_APPLESS_MAIN(TestDocumentFormat)
#include "tst_document_format.moc"
