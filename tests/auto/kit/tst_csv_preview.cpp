#include <VeskTimelineKit/csv_preview.h>
#include <VeskTimelineKit/csv_reader.h>

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>

using namespace VeskTimeline::Kit;

class TestCsvPreview : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        QTest::failOnWarning(QRegularExpression(".?"));
        m_dir.reset(new QTemporaryDir);
    }

    void aPreviewShowsWhatBecomesOfRecords()
    {
        const auto result = previewCsv(write("Gruppe;Beginn;Ende;Titel;Ort\n"
                                             "A;24.12.2020 10:00;24.12.2020 11:30;Baum;hier\n\n"
                                             "A;\"bald\n\";;x;\n"
                                             ";;;;\n"));
        QVERIFY(result);
        const CsvPreview& preview = result.value();
        QCOMPARE(preview.problem, QString());
        QCOMPARE(preview.header, (QStringList{"Gruppe", "Beginn", "Ende", "Titel", "Ort"}));
        QCOMPARE(preview.records.size(), 3);

        QCOMPARE(preview.records[0].line, 2);
        QCOMPARE(preview.records[0].fields.size(), 5);
        QCOMPARE(preview.records[0].trackPath, QStringList{"A"});
        QCOMPARE(preview.records[0].problem, QString());
        QVERIFY(preview.records[0].item);
        QCOMPARE(preview.records[0].item->label, "Baum");
        QCOMPARE(preview.records[0].item->start, Q_INT64_C(1608804000000));
        QCOMPARE(preview.records[0].item->duration, 90 * 60 * 1000);
        QCOMPARE(preview.records[0].item->attributes, (QMap<QString, QString>{{"Ort", "hier"}}));

        QCOMPARE(preview.records[1].line, 4);
        QVERIFY(!preview.records[1].item);
        QCOMPARE(preview.records[1].problem, "bad start \"bald\": not a time as d.M.yyyy");

        QCOMPARE(preview.records[2].line, 6);
        QVERIFY(!preview.records[2].item);
        QCOMPARE(preview.records[2].problem, QString());
    }

    void theOptionsHaveAllThatWasFound()
    {
        const QString file = write("Gruppe;Beginn;Ende;Titel\nA;24.12.2020;25.12.2020;x\n");
        const CsvPreview preview = previewCsv(file).value();
        QCOMPARE(preview.options.columns, (QMap<CsvField, QStringList>{{CsvField::Track, {"Gruppe"}},
                                                                       {CsvField::Start, {"Beginn"}},
                                                                       {CsvField::End, {"Ende"}},
                                                                       {CsvField::Label, {"Titel"}}}));
        QCOMPARE(preview.options.delimiter, QChar(';'));
        QCOMPARE(preview.options.decimalPoint, QChar('.'));
        QCOMPARE(preview.options.encoding, CsvEncoding::Utf8);
        QCOMPARE(preview.options.timeUnit, CsvTimeUnit::Milliseconds);
        QCOMPARE(preview.options.dateFormat, "d.M.yyyy");
        QCOMPARE(preview.options.timeZone, "UTC");
    }

    void theGuessesAreTheWarningsOfTheDocument()
    {
        const QString file = write("begin,finish,note\n01/02/2020 10:00,,x\n");
        QStringList expected;
        const auto preview = previewCsv(file);
        for (const QString& guess : preview.value().guesses)
            expected.append(file + ": " + guess);
        QVERIFY(expected.size() >= 4);
        QCOMPARE(readCsv(file).value().warnings(), expected);
    }

    void whatWasFoundAndIsSaidGivesTheSameWithoutGuesses_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::newRow("own way") << QByteArray("track,label,start,end\nA/B,x,1,2\n");
        QTest::newRow("dates") << QByteArray("group;from;to;name\nA/B;1/2/2020 1:00 pm;1/3/2020;x\n");
        QTest::newRow("seconds") << QByteArray("group;from;to;name\nA/B;1425291300,25;1425291301,5;x\n");
        QTest::newRow("joined") << QByteArray("Date,Start Time,End Time,Subject,Room\n2020-01-01,10:00,10:30,x,r\n");
        QTest::newRow("compact") << QByteArray("from,to,what,who\n20200101,20200103,x,y\n");
        QTest::newRow("Windows-1252") << QByteArray("from,to,name,host\n2020-01-01,2020-01-02,caf\xE9,h\n");
    }
    void whatWasFoundAndIsSaidGivesTheSameWithoutGuesses()
    {
        QFETCH(QByteArray, text);
        const QString file = write(text);
        const CsvPreview found = previewCsv(file).value();
        const CsvPreview said = previewCsv(file, found.options).value();
        QVERIFY(said.options == found.options);
        QCOMPARE(said.guesses.filter(QRegularExpression("taken|read as")), QStringList());
        QVERIFY(!found.records.isEmpty());
        QCOMPARE(said.records.size(), found.records.size());
        for (qsizetype i = 0; i < found.records.size(); ++i) {
            QCOMPARE(said.records[i].problem, QString());
            QCOMPARE(said.records[i].trackPath, found.records[i].trackPath);
            QCOMPARE(said.records[i].item->start, found.records[i].item->start);
            QCOMPARE(said.records[i].item->duration, found.records[i].item->duration);
            QCOMPARE(said.records[i].item->label, found.records[i].item->label);
            QCOMPARE(said.records[i].item->attributes, found.records[i].item->attributes);
        }
    }

    void fieldsOfWhichNoneIsSaidStayWithoutOne()
    {
        CsvOptions options;
        options.columns = {{CsvField::End, {}}, {CsvField::Track, {}}};
        const CsvPreview preview = previewCsv(write("track,label,start,end\nT,x,1,2\n"), options).value();
        QCOMPARE(preview.problem, QString());
        QCOMPARE(preview.guesses, QStringList());
        QCOMPARE(preview.options.columns, (QMap<CsvField, QStringList>{{CsvField::Track, {}},
                                                                       {CsvField::Label, {"label"}},
                                                                       {CsvField::Start, {"start"}},
                                                                       {CsvField::End, {}}}));
        QCOMPARE(preview.records.at(0).item->duration, 0);
        QCOMPARE(preview.records.at(0).trackPath, QStringList{"f"});
        QCOMPARE(preview.records.at(0).item->attributes, (QMap<QString, QString>{{"end", "2"}, {"track", "T"}}));
    }

    void aPipeIsNotWaitedFor()
    {
        const QString pipe = m_dir->filePath("pipe.csv");
        QCOMPARE(mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
        QCOMPARE(previewCsv(pipe).error().text(), pipe + ": is not a regular file");
    }

    void noMoreIsShownThanAskedFor()
    {
        const QString file = write("start,end\n" + QByteArray("1,2\n").repeated(100'000));
        QCOMPARE(previewCsv(file).value().records.size(), 50);
        QCOMPARE(previewCsv(file, {}, 3).value().records.size(), 3);
        QCOMPARE(previewCsv(file, {}, 0).value().records.size(), 0);
    }

    void recordsAreShownAlsoWhereColumnsAreMissing()
    {
        const CsvPreview preview = previewCsv(write("alpha,beta\nx,y\n")).value();
        QCOMPARE(preview.problem, "column \"start\" is missing, column \"end\" or \"duration\" is missing");
        QCOMPARE(preview.header, (QStringList{"alpha", "beta"}));
        QCOMPARE(preview.records.size(), 1);
        QCOMPARE(preview.records[0].fields, (QStringList{"x", "y"}));
        QVERIFY(!preview.records[0].item);
    }

    void anUnknownZoneIsAProblem()
    {
        CsvOptions options;
        options.timeZone = "nowhere";
        const CsvPreview preview = previewCsv(write("start,end\n1,2\n"), options).value();
        QCOMPARE(preview.problem, "there is no time zone \"nowhere\"");
        QCOMPARE(preview.records.size(), 1);
    }

    void aFaultOfTheTextIsAProblem()
    {
        const CsvPreview preview = previewCsv(write("start,end\n1,2\n\"x\"y,1\n")).value();
        QCOMPARE(preview.problem, "misplaced quote");
        QCOMPARE(preview.records.size(), 1);
    }

    void whereThereIsNothingToShowIsAnError()
    {
        const QString missing = m_dir->filePath("missing.csv");
        QCOMPARE(previewCsv(missing).error().text(), missing + ": No such file or directory");
        QCOMPARE(previewCsv(QString()).error().text(), ": no file name");
        QCOMPARE(previewCsv(m_dir->path()).error().text(), m_dir->path() + ": is a directory");
        const QString binary = write(QByteArray("\x7F"
                                                "ELF\0\1",
                                                6));
        QCOMPARE(previewCsv(binary).error().text(), binary + ":1: binary data, not text");
        const QString empty = write("");
        QCOMPARE(previewCsv(empty).error().text(), empty + ": the file is empty");
        const QString packed = write("\x1f\x8bnonsense");
        QCOMPARE(previewCsv(packed).error().text(), packed + ": the packed data is broken");
    }

private:
    QString write(const QByteArray& text)
    {
        QFile file(m_dir->filePath("f.csv"));
        if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size())
            qFatal("cannot write %s", qPrintable(file.fileName()));
        return file.fileName();
    }

    std::unique_ptr<QTemporaryDir> m_dir;
};

QTEST_APPLESS_MAIN(TestCsvPreview)
#include "tst_csv_preview.moc"
