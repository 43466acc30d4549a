#include <VeskTimelineKit/document_format.h>

#include <QTest>

using namespace VeskTimeline::Kit;

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
    }

    void everyFormatIsFoundByEachOfItsSuffixes()
    {
        QVERIFY(!documentFormats().empty());
        for (const DocumentFormat& format : documentFormats()) {
            QVERIFY(format.read);
            QVERIFY(!format.description.isEmpty());
            QCOMPARE(documentFormatByName(format.name), &format);
            for (const QString& suffix : format.suffixes)
                QCOMPARE(documentFormatBySuffix("x." + suffix), &format);
        }
    }
};

QTEST_APPLESS_MAIN(TestDocumentFormat)
#include "tst_document_format.moc"
