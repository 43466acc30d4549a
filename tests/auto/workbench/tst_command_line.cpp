#include "run_workbench.h"
#include "support/text_file.h"

#include <VeskTimelineKit/csv_reader.h>
#include <VeskTimelineKit/csv_writer.h>

#include <QDir>
#include <QFile>
#include <QImage>
#include <QJsonDocument>
#include <QTemporaryDir>
#include <QTest>

namespace {

const QString sample = QStringLiteral(SAMPLE_FILE);

} // namespace

class TestCommandLine : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        QTest::failOnWarning(QRegularExpression(".?"));
        m_dir.reset(new QTemporaryDir);
        QVERIFY(m_dir->isValid());
    }

    void infoIsOneJsonObject()
    {
        const WorkbenchRun result = runWorkbench({"--info", sample});
        QCOMPARE(result.errors, QString());
        QCOMPARE(result.status, 0);
        QVERIFY(QJsonDocument::fromJson(result.output.toUtf8()).isObject());
        QCOMPARE(result.output,
                 "{\"end\":93644135000,\"items\":105,\"start\":92554380000,\"tracks\":9,\"warnings\":[]}\n");
    }

    void infoOfNoItemsHasNoTimes()
    {
        const WorkbenchRun result = runWorkbench({"--info", write("a.csv", "track,label,start,end\n")});
        QCOMPARE(result.status, 0);
        QCOMPARE(result.output, "{\"end\":null,\"items\":0,\"start\":null,\"tracks\":0,\"warnings\":[]}\n");
    }

    void infoListsWarningsAndWritesLargeTimesAsIntegers()
    {
        const QString file =
            write("a.csv", "track,label,start,end\nA/B,x,-62135596800000,253402300799999\nA,y,1,8640000000000000\n");
        const WorkbenchRun result = runWorkbench({"--info", file});
        QCOMPARE(result.output,
                 QString("{\"end\":253402300799999,\"items\":1,\"start\":-62135596800000,\"tracks\":2,\"warnings\":["
                         "\"%1:3: the record is left out: the end \\\"8640000000000000\\\" is outside the years 1 to "
                         "9999\",\"%1: \\\"x\\\" is longer than 24 days and is shown in pieces\"]}\n")
                     .arg(file));
        QCOMPARE(result.status, 0);
    }

    void severalFilesGetATrackEachAtTheTopLevel()
    {
        const QString a = write("a.csv", "track,label,start,end\nA/B,x,5,6\nC,x,5,6\n");
        const QString b = write("b.csv", "track,label,start,duration\nC,x,1,1\nA/B,x,9,1\nA/D,x,5,1\n");
        QCOMPARE(runWorkbench({"--info", a, b}).output,
                 "{\"end\":10,\"items\":5,\"start\":1,\"tracks\":9,\"warnings\":[]}\n");
    }

    void withoutAUserNoDialogWaits()
    {
        const QString missing = m_dir->filePath("missing.csv");
        const WorkbenchRun result = runWorkbench({"--show-refusals", missing}, Platform::Offscreen);
        QCOMPARE(result.status, 1);
        QCOMPARE(result.errors, missing + ": No such file or directory\n");
    }

    void refusedFilesAreReportedOneLineEach()
    {
        const QString good = write("good.csv", "track,label,start,end\nA,x,5,6\n");
        const QString late = write("late.csv", "track,label,start,end\nA,\"x\ny\",5,6\nA,x,6,5\n");
        const QString empty = write("empty.csv", "");
        const QString missing = m_dir->filePath("missing.csv");
        const WorkbenchRun result = runWorkbench({"--info", good, late, empty, missing, m_dir->path()});
        QCOMPARE(result.status, 1);
        QCOMPARE(result.output, QString());
        QCOMPARE(result.errors, QString("%1:4: the end is before the start\n%2: the file is empty\n"
                                        "%3: No such file or directory\n%4: is a directory\n")
                                    .arg(late, empty, missing, m_dir->path()));
    }

    void aFileIsRefusedAlikeByEveryAction_data()
    {
        QTest::addColumn<QStringList>("options");
        QTest::newRow("window") << QStringList{};
        QTest::newRow("info") << QStringList{"--info"};
        QTest::newRow("convert") << QStringList{"--convert", "OUT.csv"};
        QTest::newRow("screenshot") << QStringList{"--screenshot", "OUT.png"};
    }
    void aFileIsRefusedAlikeByEveryAction()
    {
        QFETCH(QStringList, options);
        for (QString& option : options)
            option.replace("OUT", m_dir->filePath("OUT"));
        const QString bad = write("bad.csv", "track,label,start,end\nA,x,5,6\nA,\"x,6,5\n");
        for (const Platform platform : {Platform::None, Platform::Offscreen}) {
            const WorkbenchRun result = runWorkbench(options + QStringList{sample, bad}, platform);
            QCOMPARE(result.status, 1);
            QCOMPARE(result.output, QString());
            QCOMPARE(result.errors, bad + ":3: unterminated quote\n");
            QCOMPARE(QDir(m_dir->path()).entryList(QDir::Files | QDir::Hidden), QStringList{"bad.csv"});
        }
    }

    void convertingWritesTheFile()
    {
        const QString out = m_dir->filePath("out.csv");
        const WorkbenchRun result = runWorkbench({"--convert", out, sample});
        QCOMPARE(result.errors, QString());
        QCOMPARE(result.output, QString());
        QCOMPARE(result.status, 0);
        QCOMPARE(contentOf(out), csvText(VeskTimeline::Kit::readCsv(sample).value()));
        QCOMPARE(QDir(m_dir->path()).entryList(QDir::Files | QDir::Hidden), QStringList{"out.csv"});
    }

    void aPackedFileIsWrittenAndReadBack()
    {
        const QString out = m_dir->filePath("out.csv.gz");
        const WorkbenchRun result = runWorkbench({"--convert", out, sample});
        QCOMPARE(result.errors, QString());
        QCOMPARE(result.status, 0);
        QVERIFY(contentOf(out).startsWith("\x1f\x8b"));
        QCOMPARE(csvText(VeskTimeline::Kit::readCsv(out).value()), csvText(VeskTimeline::Kit::readCsv(sample).value()));
    }

    void aFileCanBeConvertedIntoItself()
    {
        const QString file = write("a.csv", "label,track,start,end\nx,A,5,6\n");
        QCOMPARE(runWorkbench({"--convert", file, file}).status, 0);
        QCOMPARE(contentOf(file), QByteArray("track,label,start,end,color,editable\n"
                                             "A,x,1970-01-01T00:00:00.005Z,1970-01-01T00:00:00.006Z,,true\n"));
    }

    void aRefusedFileLeavesWhatWasThereBefore()
    {
        const QString out = write("out.csv", "old");
        QCOMPARE(runWorkbench({"--convert", out, sample, m_dir->filePath("missing.csv")}).status, 1);
        QCOMPARE(contentOf(out), QByteArray("old"));
    }

    void whatIsLeftOutByConvertingIsWarnedOf()
    {
        const QString file = write("a.csv", "track,label,start,end\nA,x,5,6\nA,y,8640000000000000,\n");
        const QString left =
            "warning: %1:3: the record is left out: the start \"8640000000000000\" is outside the years "
            "1 to 9999\n";
        const WorkbenchRun result = runWorkbench({"--convert", m_dir->filePath("out.csv"), file});
        QCOMPARE(result.status, 0);
        QCOMPARE(result.errors, left.arg(file));
    }

    void whatTheFormatOfTheOutputCannotSayIsWarnedOf()
    {
        const QString file = write("a.vtl.json", "{\"format\":\"vesk-timeline\",\"version\":1,\"tracks\":[{\"path\":"
                                                 "[\"A\"],\"color\":\"#ff0000\"}],\"items\":[]}");
        const QString out = m_dir->filePath("out.csv");
        const WorkbenchRun result = runWorkbench({"--convert", out, file});
        QCOMPARE(result.status, 0);
        QCOMPARE(result.errors, QString("warning: CSV has no place for the colors of tracks; left out: 1\n"));
        QCOMPARE(contentOf(out), QByteArray("track,label,start,end,color,editable\nA,,,,,\n"));
    }

    void csvFilesAreReadAsTheOptionsSay()
    {
        const QString file = write("a.txt", "one;\"two, +\";t;len;who\nA;B;02.03.2015 10:00;1,5;G\xF6\xE9\x80\n");
        const QString out = m_dir->filePath("out.csv");
        const WorkbenchRun result = runWorkbench(
            {"--convert", out, "--from", "csv", "--map", "track=one+two\\, \\+,start=t,duration=len,label=who",
             "--delimiter", ";", "--decimal", ",", "--encoding", "windows-1252", "--time-unit", "s", "--date-format",
             "dd.MM.yyyy", "--time-zone", "Europe/Berlin", file});
        QCOMPARE(result.errors, QString());
        QCOMPARE(result.status, 0);
        QCOMPARE(
            QString::fromUtf8(contentOf(out)),
            "track,label,start,end,color,editable\nA/B,Göé€,2015-03-02T09:00:00Z,2015-03-02T09:00:01.500Z,,true\n");
    }

    void tabsAreSaidByTheirName()
    {
        const QString file = write("a.csv", "start\tend\tlabel,x\n1\t2\ta\n");
        for (const QString& tab : {QString("tab"), QString("TAB"), QString("\\t"), QString("\t")}) {
            const WorkbenchRun result = runWorkbench({"--info", "--delimiter", tab, "--map", "label=label\\,x", file});
            QCOMPARE(result.status, 0);
            QVERIFY2(result.output.startsWith("{\"end\":2,\"items\":1,\"start\":1,"), qPrintable(result.output));
        }
    }

    void aColumnThatIsNotThereRefusesTheFile()
    {
        const QString file = write("a.csv", "start,end\n1,2\n");
        const WorkbenchRun result = runWorkbench({"--info", "--map", "start=begin", file});
        QCOMPARE(result.status, 1);
        QCOMPARE(result.errors, file + ":1: there is no column \"begin\"\n");
        QCOMPARE(result.output, QString());
    }

    void anOutputThatCannotBeWrittenIsReported()
    {
        const QString csv = m_dir->filePath("no/out.csv");
        WorkbenchRun result = runWorkbench({"--convert", csv, sample});
        QCOMPARE(result.status, 1);
        QCOMPARE(result.errors, csv + ": No such file or directory\n");

        const QString png = m_dir->filePath("no/out.png");
        result = runWorkbench({"--screenshot", png, sample});
        QCOMPARE(result.status, 1);
        QVERIFY2(result.errors.endsWith(png + ": No such file or directory\n"), qPrintable(result.errors));
    }

    void aScreenshotIsAPictureOfTheWindow()
    {
        const QString withFile = m_dir->filePath("a.png");
        const QString empty = m_dir->filePath("b.PNG");
        for (const Platform platform : {Platform::None, Platform::Offscreen}) {
            QCOMPARE(runWorkbench({"--screenshot", withFile, sample}, platform).status, 0);
            QCOMPARE(runWorkbench({"--screenshot", empty}, platform).status, 0);
            const QImage picture(withFile);
            QCOMPARE(picture.size(), QSize(1440, 800));
            QVERIFY(picture != QImage(empty));
            // The colour of the first track's items, which fill the row; column and inspector take the rest.
            int pixels = 0;
            for (int x = 0; x < picture.width(); ++x)
                pixels += picture.pixelColor(x, 140) == QColor("#4c78a8") ? 1 : 0;
            QVERIFY2(pixels > 700, qPrintable(QString::number(pixels)));
            QCOMPARE(QDir(m_dir->path()).entryList(QDir::Files | QDir::Hidden).size(), 2);
        }
    }

    void aScreenshotSaysNothingAndLeavesNoTrace()
    {
        const QTemporaryDir home;
        const QByteArray configBefore = qgetenv("XDG_CONFIG_HOME");
        qputenv("XDG_CONFIG_HOME", home.filePath("config").toLocal8Bit());
        const WorkbenchRun result = runWorkbench({"--screenshot", m_dir->filePath("a.png"), sample});
        qputenv("XDG_CONFIG_HOME", configBefore);
        QCOMPARE(result.errors, QString());
        QCOMPARE(result.output, QString());
        QCOMPARE(result.status, 0);
        QVERIFY(!QDir(home.filePath("config")).exists());
    }

    void anUnknownThemeIsRefused()
    {
        for (const QString& name : {QString("purple"), QString("Dark"), QString("")}) {
            const WorkbenchRun result =
                runWorkbench({"--theme=" + name, "--screenshot", m_dir->filePath("a.png")}, Platform::Offscreen);
            QCOMPARE(result.status, 2);
            QCOMPARE(result.errors, QString("vesk-timeline-workbench: there is no look \"%1\"; there are system, light "
                                            "and dark\n")
                                        .arg(name));
            QVERIFY(!QFile::exists(m_dir->filePath("a.png")));
        }
        const WorkbenchRun result =
            runWorkbench({"--screenshot", m_dir->filePath("a.png"), "--theme"}, Platform::Offscreen);
        QCOMPARE(result.status, 2);
        QVERIFY2(result.errors.contains("--theme"), qPrintable(result.errors));
    }

    void theThemeIsThatOfThePicture()
    {
        const QString light = m_dir->filePath("light.png");
        const QString dark = m_dir->filePath("dark.png");
        QCOMPARE(runWorkbench({"--theme", "light", "--screenshot", light}).status, 0);
        QCOMPARE(runWorkbench({"--theme", "dark", "--screenshot", dark}).status, 0);
        const QPoint toolBar(1400, 40);
        QVERIFY(QImage(light).pixelColor(toolBar).lightness() > 150);
        QVERIFY(QImage(dark).pixelColor(toolBar).lightness() < 100);
    }

    void withoutADisplayThereIsNoWindow()
    {
        const WorkbenchRun result = runWorkbench({sample});
        QCOMPARE(result.status, 1);
        QCOMPARE(result.errors, "there is no display; --screenshot OUT.png saves a picture of the window\n");
    }

    void theFormatCanBeGiven()
    {
        const QString file = write("a.txt", "track,label,start,end\nA,x,5,6\n");
        const QString info = "{\"end\":6,\"items\":1,\"start\":5,\"tracks\":1,\"warnings\":[]}\n";
        QCOMPARE(runWorkbench({"--info", "--from", "csv", file}).output, info);
        QCOMPARE(runWorkbench({"--info", "--from=CSV", file}).output, info);
        QCOMPARE(runWorkbench({"--info", file}).output, info);
    }

    void theFormatIsToldByTheContent()
    {
        const QString trace = write("a.json", "[{\"ph\":\"i\",\"ts\":5,\"name\":\"x\",\"pid\":1,\"tid\":1}]");
        const QString native = m_dir->filePath("b.json");
        QCOMPARE(runWorkbench({"--convert", native, "--stretch", "1", trace}).status, 0);
        QVERIFY(contentOf(native).contains("vesk-timeline"));
        QCOMPARE(runWorkbench({"--info", native}).output,
                 "{\"end\":0,\"items\":1,\"start\":0,\"tracks\":2,\"warnings\":[]}\n");
    }

    void nothingIsLostByWayOfTheNativeFormat()
    {
        const QString native = m_dir->filePath("a.vtl.json");
        const QString back = m_dir->filePath("back.csv");
        QCOMPARE(runWorkbench({"--convert", native, sample}).status, 0);
        QCOMPARE(runWorkbench({"--convert", back, native}).status, 0);
        QCOMPARE(contentOf(back), csvText(VeskTimeline::Kit::readCsv(sample).value()));
    }

    void tracesAreStretchedAsToldAndTheWarningSaysSo()
    {
        const QString trace = write("a.json", "[{\"ph\":\"X\",\"ts\":2000,\"dur\":1000,\"pid\":1,\"tid\":1}]");
        QCOMPARE(
            runWorkbench({"--info", trace}).output,
            QString("{\"end\":3000,\"items\":1,\"start\":2000,\"tracks\":2,\"warnings\":[\"%1: times are stretched "
                    "by 1000: one microsecond of the trace is 1 ms of the axis\"]}\n")
                .arg(trace));
        QCOMPARE(runWorkbench({"--info", "--stretch", "10.5", trace}).output,
                 QString("{\"end\":31,\"items\":1,\"start\":21,\"tracks\":2,\"warnings\":[\"%1: times are stretched by "
                         "10.5: one microsecond of the trace is 0.0105 ms of the axis\",\"%1: times cut to whole "
                         "milliseconds: 1\"]}\n")
                     .arg(trace));
    }

    void recurringEventsAreExpandedWithinTheSpan()
    {
        const QString calendar =
            write("a.ics", "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:x\r\nBEGIN:VEVENT\r\nUID:1\r\n"
                           "DTSTAMP:20200101T000000Z\r\nDTSTART:20200101T000000Z\r\nDTEND:20200101T010000Z\r\n"
                           "RRULE:FREQ=DAILY;COUNT=100\r\nSUMMARY:x\r\nEND:VEVENT\r\nEND:VCALENDAR\r\n");
        const auto items = [](const WorkbenchRun& result) {
            return QJsonDocument::fromJson(result.output.toUtf8())["items"].toInt();
        };
        QCOMPARE(items(runWorkbench({"--info", calendar})), 100);
        QCOMPARE(items(runWorkbench({"--info", "--expand", "2020-01-03..2020-01-10", calendar})), 7);
        QCOMPARE(items(runWorkbench({"--info", "--expand", "2020-01-03T01:00+01:00..2020-01-10T00:00Z", calendar})), 7);
        QCOMPARE(items(runWorkbench({"--info", "--expand", "1577836800000..1577836800001", calendar})), 1);
        QCOMPARE(items(runWorkbench({"--info", "--expand=-5..5", calendar})), 0);
    }

    void wrongUsageIsToldApart_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QString>("error");
        const auto row = [](const char* name, const QStringList& arguments, const char* error) {
            QTest::newRow(name) << arguments << QString("vesk-timeline-workbench: %1\n").arg(error);
        };
        row("unknown option", {"--nonsense"}, "Unknown option 'nonsense'.");
        row("no output", {sample, "--convert"}, "Missing value after '--convert'.");
        row("no picture", {"--screenshot"}, "Missing value after '--screenshot'.");
        row("info of nothing", {"--info"}, "--info needs a FILE");
        row("nothing to convert", {"--convert", "x.csv"}, "--convert needs a FILE");
        row("two actions", {"--info", "--screenshot", "x.png", sample}, "--info, --screenshot do not go together");
        row("two outputs", {"--convert", "x.csv", "--convert", "y.csv", sample}, "--convert is there more than once");
        row("output without format", {"--convert", "x", sample}, "no format to write has the suffix of \"x\"");
        row("output of unknown format", {"--convert", "x.doc", sample},
            "no format to write has the suffix of \"x.doc\"");
        row("packed trace", {"--convert", "x.json.gz", sample}, "no format to write has the suffix of \"x.json.gz\"");
        row("picture of another kind", {"--screenshot", "x.jpg"},
            "the name of a picture ends in .png, not so \"x.jpg\"");
        row("stretch is no number", {"--info", "--stretch", "x", sample}, "times cannot be stretched by \"x\"");
        row("stretch of nothing", {"--info", "--stretch", "0", sample}, "times cannot be stretched by \"0\"");
        row("stretch backwards", {"--info", "--stretch=-1", sample}, "times cannot be stretched by \"-1\"");
        row("stretch without end", {"--info", "--stretch", "inf", sample}, "times cannot be stretched by \"inf\"");
        row("two stretches", {"--info", "--stretch", "1", "--stretch", "2", sample},
            "--stretch is there more than once");
        row("no span", {"--info", "--expand", "2012-01-01", sample},
            "\"2012-01-01\" is not START..END with an end after the start");
        row("span without time", {"--info", "--expand", "2012-01-01..", sample},
            "\"2012-01-01..\" is not START..END with an end after the start");
        row("empty span", {"--info", "--expand", "5..5", sample},
            "\"5..5\" is not START..END with an end after the start");
        row("three times", {"--info", "--expand", "1..2..3", sample},
            "\"1..2..3\" is not START..END with an end after the start");
        row("map without field", {"--info", "--map", "x", sample}, "--map needs FIELD=COLUMN, not \"x\"");
        row("map of nothing", {"--info", "--map", "", sample}, "--map needs FIELD=COLUMN, not \"\"");
        row("map of an unknown field", {"--info", "--map", "begin=x", sample},
            "--map knows no \"begin\"; there are track, label, start, end, duration, color, editable, description");
        row("map without column", {"--info", "--map", "start=a+", sample},
            "--map needs a column behind each \"=\" and \"+\"");
        row("map twice", {"--info", "--map", "start=a,Start=b", sample}, "--map names \"start\" more than once");
        row("map with two signs", {"--info", "--map", "start=a=b", sample}, "--map has a \"=\" too many behind \"a\"");
        row("two maps", {"--info", "--map", "start=a", "--map", "end=b", sample}, "--map is there more than once");
        row("long delimiter", {"--info", "--delimiter", ";;", sample},
            "fields cannot be separated by \";;\": a delimiter is one character that is no letter, digit or quote, or "
            "the word tab");
        row("delimiter is a letter", {"--info", "--delimiter", "x", sample},
            "fields cannot be separated by \"x\": a delimiter is one character that is no letter, digit or quote, or "
            "the word tab");
        row("no decimal point", {"--info", "--decimal", ";", sample}, "the decimal point is . or , and not \";\"");
        row("unknown encoding", {"--info", "--encoding", "EBCDIC", sample},
            "there is no encoding \"EBCDIC\"; there are UTF-8, UTF-16, Windows-1252 and Latin-1");
        row("unknown unit", {"--info", "--time-unit", "min", sample},
            "there is no unit \"min\"; there are s, ms, us and ns");
        row("no pattern", {"--info", "--date-format", "dd.MM.", sample},
            "\"dd.MM.\" is no pattern of dates: it has to name day (d), month (M) and year (y)");
        row("unknown zone", {"--info", "--time-zone", "Europe/Nowhere", sample},
            "there is no time zone \"Europe/Nowhere\"");
        row("unknown format", {"--info", "--from", "nonsense", sample}, "there is no format \"nonsense\"");
    }
    void wrongUsageIsToldApart()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QString, error);
        const WorkbenchRun result = runWorkbench(arguments);
        QCOMPARE(result.errors, error);
        QCOMPARE(result.output, QString());
        QCOMPARE(result.status, 2);
    }

    void helpAndVersionArePrinted()
    {
        const WorkbenchRun help = runWorkbench({"--help"});
        QCOMPARE(help.status, 0);
        QCOMPARE(help.errors, QString());
        for (const char* const option :
             {"--info", "--convert <OUT>", "--screenshot <OUT.png>", "--from <FORMAT>", "--stretch <N>",
              "--expand <START..END>", "csv, vtl, ics, trace, ninja", "--map <FIELD=COLUMN,...>", "--delimiter",
              "--decimal", "--encoding", "--time-unit", "--date-format", "--time-zone"})
            QVERIFY2(help.output.contains(option), option);
        const WorkbenchRun version = runWorkbench({"--version"});
        QCOMPARE(version.status, 0);
        QVERIFY(QRegularExpression("^vesk-timeline-workbench \\d+\\.\\d+\\.\\d+\n$").match(version.output).hasMatch());
    }

    void fileNamesThatLookLikeOptionsFollowADoubleDash()
    {
        const WorkbenchRun result = runWorkbench({"--info", "--", "-style"});
        QCOMPARE(result.status, 1);
        QCOMPARE(result.errors, "-style: No such file or directory\n");
    }

private:
    QString write(const QString& name, const QByteArray& text) const { return writeFile(m_dir->filePath(name), text); }

    std::unique_ptr<QTemporaryDir> m_dir;
};

QTEST_APPLESS_MAIN(TestCommandLine)
#include "tst_command_line.moc"
