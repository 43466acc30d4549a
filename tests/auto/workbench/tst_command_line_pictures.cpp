#include "run_workbench.h"
#include "support/text_file.h"

#include <QDir>
#include <QFile>
#include <QImage>
#include <QTemporaryDir>
#include <QTest>

namespace {

const QString sample = QStringLiteral(SAMPLE_FILE);

} // namespace

class TestCommandLinePictures : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        QTest::failOnWarning(QRegularExpression(".?"));
        m_dir.reset(new QTemporaryDir);
        QVERIFY(m_dir->isValid());
    }

    void aPictureIsWrittenWithoutADisplay_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QByteArray>("head");
        QTest::newRow("png") << "a.png" << QByteArray("\x89PNG");
        QTest::newRow("svg") << "a.SVG" << QByteArray("<?xml");
        QTest::newRow("pdf") << "a.pdf" << QByteArray("%PDF-1.4");
    }
    void aPictureIsWrittenWithoutADisplay()
    {
        QFETCH(const QString, name);
        QFETCH(const QByteArray, head);
        const QString file = m_dir->filePath(name);
        const WorkbenchRun result = runWorkbench({"--convert", file, sample});
        QCOMPARE(result.errors, QString());
        QCOMPARE(result.output, QString());
        QCOMPARE(result.status, 0);
        QVERIFY(contentOf(file).startsWith(head));
        QCOMPARE(QDir(m_dir->path()).entryList(QDir::Files), QStringList{name});
    }

    void sizeAndColoursAreThoseAskedFor()
    {
        const QString file = m_dir->filePath("a.png");
        QCOMPARE(runWorkbench({"--convert", file, "--width", "800", "--scale", "2", "--dark", sample}).status, 0);
        const QImage picture(file);
        QCOMPARE(picture.size(), QSize(1600, 2 * (70 + 9 * 50)));
        QVERIFY(picture.pixelColor(2, 2).lightness() < 64);
    }

    void rangeAndTracksAreThoseAskedFor()
    {
        const QString file = m_dir->filePath("a.svg");
        const QString source = write("a.csv", "track,label,start,end\nShip/Deck,watch,2020-01-01T00:00:00Z,"
                                              "2020-01-01T06:00:00Z\nShip/Deck,later,2020-01-03T00:00:00Z,"
                                              "2020-01-03T06:00:00Z\nShip/Hold,cargo,2020-01-01T00:00:00Z,"
                                              "2020-01-01T06:00:00Z\n\"A,B\",comma,2020-01-01T00:00:00Z,"
                                              "2020-01-01T06:00:00Z\nShore,rest,2020-01-01T00:00:00Z,"
                                              "2020-01-01T06:00:00Z\n");
        const WorkbenchRun result = runWorkbench({"--convert", file, "--range", "2020-01-01..2020-01-02", "--tracks",
                                                  "Ship/Deck,A\\,B", "--title", "The <title>", source});
        QCOMPARE(result.errors, QString());
        QCOMPARE(result.status, 0);
        const QByteArray svg = contentOf(file);
        for (const char* const shown : {">Ship<", ">Deck<", ">watch<", ">A,B<", ">comma<", "The &lt;title&gt;"})
            QVERIFY2(svg.contains(shown), shown);
        for (const char* const hidden : {"later", "Hold", "cargo", "Shore", "rest<"})
            QVERIFY2(!svg.contains(hidden), hidden);
    }

    void aTrackBringsThoseBelowIt()
    {
        const QString file = m_dir->filePath("a.svg");
        const QString source = write("a.csv", "track,label,start,end\nShip/Deck,watch,5,600000\nShore,rest,5,600000\n");
        QCOMPARE(runWorkbench({"--convert", file, "--tracks", "Ship", source}).status, 0);
        QVERIFY(contentOf(file).contains(">watch<"));
        QVERIFY(!contentOf(file).contains(">Shore<"));
    }

    void pagesAreThoseAskedFor()
    {
        const QString file = m_dir->filePath("a.pdf");
        QCOMPARE(runWorkbench({"--convert", file, "--page", "a3", "--portrait", "--pages-across", "4", sample}).status,
                 0);
        const QByteArray pdf = contentOf(file);
        QVERIFY(pdf.contains("/Count 4"));
        QVERIFY(pdf.contains("/MediaBox [0 0 842") && pdf.contains("1191"));
    }

    void wrongUsageIsRefused_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QString>("reason");
        const QString range = "\"%1\" is not START..END with an end after the start";
        QTest::newRow("range") << QStringList{"--range", "x"} << range.arg("x");
        QTest::newRow("empty range") << QStringList{"--range", "5..5"} << range.arg("5..5");
        QTest::newRow("width") << QStringList{"--width", "12"}
                               << "--width takes a number from 300 to 1000000, not \"12\"";
        QTest::newRow("no width") << QStringList{"--width", "x"}
                                  << "--width takes a number from 300 to 1000000, not \"x\"";
        QTest::newRow("scale") << QStringList{"--scale", "nan"} << "--scale takes a number from 0.25 to 8, not \"nan\"";
        QTest::newRow("pages") << QStringList{"--pages-across", "0"}
                               << "--pages-across takes a number from 1 to 1000, not \"0\"";
        QTest::newRow("page") << QStringList{"--page", "A44"} << "there is no page size \"A44\"";
        QTest::newRow("twice") << QStringList{"--page", "A4", "--page", "A3"} << "--page is there more than once";
        QTest::newRow("track") << QStringList{"--tracks", "Nowhere"} << "there is no track \"Nowhere\"";
        QTest::newRow("empty track") << QStringList{"--tracks", ""} << "there is no track \"\"";
    }
    void wrongUsageIsRefused()
    {
        QFETCH(const QStringList, arguments);
        QFETCH(const QString, reason);
        const QString file = m_dir->filePath("a.png");
        const WorkbenchRun result = runWorkbench(QStringList{"--convert", file} + arguments + QStringList{sample});
        QCOMPARE(result.errors, "vesk-timeline-workbench: " + reason + '\n');
        QCOMPARE(result.status, 2);
        QVERIFY(!QFile::exists(file));
    }

    void optionsOfPicturesGoWithPicturesOnly_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::newRow("info") << QStringList{"--info", "--dark"};
        QTest::newRow("csv") << QStringList{"--convert", "a.csv", "--dark"};
    }
    void optionsOfPicturesGoWithPicturesOnly()
    {
        QFETCH(const QStringList, arguments);
        const WorkbenchRun result = runWorkbench(arguments + QStringList{sample});
        QCOMPARE(result.errors, "vesk-timeline-workbench: --dark goes with --convert to a .png, .svg or .pdf\n");
        QCOMPARE(result.status, 2);
    }

    void whatCannotBePaintedIsAnErrorOfTheFile()
    {
        const QString file = m_dir->filePath("a.png");
        const WorkbenchRun empty = runWorkbench({"--convert", file, write("a.csv", "track,label,start,end\n")});
        QCOMPARE(empty.errors, file + ": there are no items; say which range to show\n");
        QCOMPARE(empty.status, 1);
        const WorkbenchRun large = runWorkbench({"--convert", file, "--width", "1000000", sample});
        QVERIFY(large.errors.contains("more than the 100 million that are possible"));
        QCOMPARE(large.status, 1);
        const QString missing = m_dir->filePath("missing/a.pdf");
        QCOMPARE(runWorkbench({"--convert", missing, sample}).errors, missing + ": No such file or directory\n");
        QVERIFY(!QFile::exists(file));
    }

    void theHelpNamesTheOptions()
    {
        const QString help = runWorkbench({"--help"}).output;
        for (const char* const option :
             {"--range <START..END>", "--tracks <PATH[,PATH...]>", "--page <SIZE>", "--dark"})
            QVERIFY2(help.contains(QLatin1String(option)), option);
    }

private:
    QString write(const QString& name, const QByteArray& text) const { return writeFile(m_dir->filePath(name), text); }

    std::unique_ptr<QTemporaryDir> m_dir;
};

QTEST_GUILESS_MAIN(TestCommandLinePictures)
#include "tst_command_line_pictures.moc"
