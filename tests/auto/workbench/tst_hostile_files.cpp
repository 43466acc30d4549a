#include "measured_run.h"
#include "support/gzip.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <limits>
#include <sys/stat.h>

namespace {

// What a file may cost at most, whatever is in it. A build without optimisation is given three times as long, one with
// sanitizers four times that, and memory is not held to a limit there, as most of it is theirs.
// There are fewer parts in a file then, too: how they are kept is no other for a million.
#if defined(__SANITIZE_ADDRESS__)
constexpr unsigned int mostSeconds = 120;
constexpr int manyParts = 100000;
#elif defined(__OPTIMIZE__)
constexpr unsigned int mostSeconds = 10;
constexpr int manyParts = 1000000;
#else
constexpr unsigned int mostSeconds = 30;
constexpr int manyParts = 300000;
#endif
// By a clock on the wall: a machine that is busy with other things takes several times as long.
constexpr unsigned int longestWait = mostSeconds * 4;
#if defined(__SANITIZE_ADDRESS__)
constexpr long mostKiB = std::numeric_limits<long>::max();
#else
constexpr long mostKiB = 500 * 1024;
#endif

QByteArray repeated(const QByteArray& text, int count)
{
    return text.repeated(count);
}

const QByteArray csvHead = "track,label,start,end\n";
const QByteArray icsHead = "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//x//x//EN\r\n";
const QByteArray icsFoot = "END:VCALENDAR\r\n";

QByteArray icsEvent(const QByteArray& lines)
{
    return "BEGIN:VEVENT\r\nUID:1\r\nDTSTART:20200101T000000Z\r\nDTEND:20200101T010000Z\r\n" + lines + "END:VEVENT\r\n";
}

QByteArray calendar(const QByteArray& lines)
{
    return icsHead + icsEvent(lines) + icsFoot;
}

QByteArray vtl(const QByteArray& tracks)
{
    return "{\"format\": \"vesk-timeline\", \"version\": 1, \"tracks\": [" + tracks + "]}";
}

} // namespace

/// The real program on files that somebody made to harm it, or that a disk or a network spoiled.
class TestHostileFiles : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { qputenv("QT_QPA_PLATFORM", "offscreen"); }

    void eachEndsInAnAnswerOrAReason_data();
    void eachEndsInAnAnswerOrAReason()
    {
        QFETCH(QString, name);
        check(name);
        QFile::remove(name);
    }

    // Each makes something of its own that the reader has to keep apart.
    void aMillionRecordsOfATrace_data()
    {
        QTest::addColumn<QByteArray>("record");
        const auto add = [](const char* name, const char* record) { QTest::newRow(name) << QByteArray(record); };
        add("processes", "{\"ph\":\"X\",\"name\":\"a\",\"ts\":1,\"dur\":2,\"tid\":1,\"pid\":#}");
        add("threads", "{\"ph\":\"X\",\"name\":\"a\",\"ts\":1,\"dur\":2,\"tid\":#,\"pid\":1}");
        add("names", "{\"ph\":\"X\",\"name\":\"name #\",\"ts\":#,\"dur\":2,\"tid\":1,\"pid\":1}");
        add("arguments",
            "{\"ph\":\"X\",\"name\":\"a\",\"ts\":#,\"dur\":2,\"tid\":1,\"pid\":1,\"args\":{\"k#\":\"v#\"}}");
        add("beginnings", "{\"ph\":\"B\",\"name\":\"name #\",\"ts\":#,\"tid\":1,\"pid\":1}");
        add("open asynchronous ids",
            "{\"ph\":\"b\",\"cat\":\"c\",\"id\":\"0x#\",\"name\":\"name #\",\"ts\":#,\"tid\":1,\"pid\":1}");
        add("ends of asynchronous ids",
            "{\"ph\":\"e\",\"cat\":\"c\",\"id\":\"0x#\",\"name\":\"n\",\"ts\":#,\"tid\":1,\"pid\":1}");
        add("categories", "{\"ph\":\"b\",\"cat\":\"c#\",\"id\":\"0x#\",\"name\":\"n\",\"ts\":#,\"tid\":1,\"pid\":1}");
        add("names of threads",
            "{\"ph\":\"M\",\"name\":\"thread_name\",\"tid\":#,\"pid\":1,\"args\":{\"name\":\"t#\"}}");
        add("kinds of metadata", "{\"ph\":\"M\",\"name\":\"m#\",\"tid\":1,\"pid\":1,\"args\":{\"name\":\"t#\"}}");
    }
    void aMillionRecordsOfATrace()
    {
        QFETCH(QByteArray, record);
        checkMillion("many.json", "[", record + ",\n", "{}]");
    }

    // Of each there is a multitude that the reader has to keep apart, or to keep until the end.
    void aMillionPartsOfACalendar_data()
    {
        QTest::addColumn<QByteArray>("part");
        const auto add = [](const char* name, const QByteArray& part) { QTest::newRow(name) << part; };
        const auto event = [](const char* lines) {
            return QByteArray("BEGIN:VEVENT\nDTSTART:20200101T000000Z\n") + lines + "END:VEVENT\n";
        };
        add("tiny events", event(""));
        add("names", event("UID:#\nSUMMARY:event #\n"));
        add("properties", event("X-A#:v#\n"));
        add("recurrences", event("UID:#\nRRULE:FREQ=DAILY\n"));
        add("replaced occurrences", event("UID:#\nRECURRENCE-ID:20200101T000000Z\n"));
        add("categories", event("CATEGORIES:c#\n"));
        add("tracks", event("X-VESKTIMELINE-TRACK:[\"a\"\\,\"b#\"]\n"));
        add("calendars", "END:VCALENDAR\nBEGIN:VCALENDAR\nX-WR-CALNAME:c#\n" + event(""));
        add("time zones of events", "BEGIN:VEVENT\nDTSTART;TZID=z#:20200101T000000\nEND:VEVENT\n");
        add("time zones", "BEGIN:VTIMEZONE\nTZID:z#\nBEGIN:STANDARD\nDTSTART:20200101T000000\nTZOFFSETFROM:+0100\n"
                          "TZOFFSETTO:+0100\nEND:STANDARD\nEND:VTIMEZONE\n");
    }
    void aMillionPartsOfACalendar()
    {
        QFETCH(QByteArray, part);
        checkMillion("many.ics", "BEGIN:VCALENDAR\n", part, "END:VCALENDAR\n");
    }

    void aMillionStepsOfABuild_data()
    {
        QTest::addColumn<QByteArray>("step");
        QTest::newRow("at once") << QByteArray("0\t1000\t2\t#\t#\n");
        QTest::newRow("one after the other") << QByteArray("#0\t#9\t2\t#\t#\n");
        QTest::newRow("outputs of one step") << QByteArray("0\t9\t2\to#\tabc\n");
    }
    void aMillionStepsOfABuild()
    {
        QFETCH(QByteArray, step);
        checkMillion("many.ninja_log", "# ninja log v5\n", step, "");
    }

    void directoriesAndPipesAreNoFiles_data()
    {
        QTest::addColumn<QString>("suffix");
        for (const char* const suffix : {"csv", "csv.gz", "ics", "json", "json.gz", "vtl.json", "ninja_log", "txt"})
            QTest::newRow(suffix) << QString(suffix);
    }
    void directoriesAndPipesAreNoFiles()
    {
        QFETCH(QString, suffix);
        const QString directory = m_dir.filePath("dir." + suffix);
        QVERIFY(QDir().mkdir(directory));
        check(directory, 1);
        const QString pipe = m_dir.filePath("pipe." + suffix);
        QCOMPARE(mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
        check(pipe, 1);
        check(m_dir.filePath("absent." + suffix), 1);
        if (geteuid() == 0)
            return;
        QFile file(m_dir.filePath("shut." + suffix));
        QVERIFY(file.open(QIODevice::WriteOnly));
        QVERIFY(file.setPermissions({}));
        check(file.fileName(), 1);
    }

private:
    void addCsv();
    void addCalendars();
    void addTraces();
    void addNative();
    void addBuildLogs();

    // Written at once: what a test process holds counts in the memory of the programs that it starts.
    QString write(const QString& suffix, const QByteArray& content)
    {
        QFile file(m_dir.filePath(QStringLiteral("%1.%2").arg(++m_fileCount).arg(suffix)));
        if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
            qFatal("cannot write %s", qPrintable(file.fileName()));
        return file.fileName();
    }

    // A file of as many of the same part, each with a number of its own.
    void checkMillion(const QString& name, const QByteArray& begin, const QByteArray& part, const QByteArray& end)
    {
        QFile file(m_dir.filePath(name));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(begin);
        for (int i = 0; i < manyParts; ++i)
            file.write(QByteArray(part).replace('#', QByteArray::number(i)));
        file.write(end);
        file.close();
        check(file.fileName());
        file.remove();
    }

    // Ends with what is known of the file, or with one line that says why not.
    static void check(const QString& fileName, int expected = -1)
    {
        const MeasuredRun run = runMeasured({QStringLiteral(PROGRAM_FILE), "--info", fileName}, longestWait);
        const QByteArray told = "signal " + QByteArray::number(run.signal) + ", status " +
                                QByteArray::number(run.exitStatus) + ", " + QByteArray::number(run.seconds) + " s, " +
                                QByteArray::number(static_cast<qlonglong>(run.peakKiB / 1024)) +
                                " MiB: " + run.errors.left(300) + run.output.left(300);
        if (qEnvironmentVariableIsSet("SHOW_COST"))
            qInfo("%s", told.constData());
        QVERIFY2(run.exitStatus == 0 || run.exitStatus == 1, told.constData());
        QVERIFY2(expected < 0 || run.exitStatus == expected, told.constData());
        QVERIFY2(run.seconds <= mostSeconds, told.constData());
        QVERIFY2(run.peakKiB <= mostKiB, told.constData());
        if (run.exitStatus == 0) {
            const QJsonObject info = QJsonDocument::fromJson(run.output).object();
            QVERIFY2(info.contains("items") && info.value("warnings").isArray(), told.constData());
            QVERIFY2(info.value("warnings").toArray().size() < 300, told.constData());
            return;
        }
        QCOMPARE(run.output, QByteArray());
        QCOMPARE(run.errors.count('\n'), 1);
        QVERIFY2(run.errors.startsWith(QFile::encodeName(fileName) + ':'), told.constData());
        QVERIFY2(run.errors.size() < 1000, told.constData());
        for (const char character : run.errors.chopped(1))
            QVERIFY2(static_cast<unsigned char>(character) >= ' ' && character != '\x7f', told.constData());
    }

    QTemporaryDir m_dir;
    int m_fileCount = 0;
};

void TestHostileFiles::eachEndsInAnAnswerOrAReason_data()
{
    QTest::addColumn<QString>("name");
    const QByteArray noise = [] {
        QByteArray bytes;
        unsigned int state = 12345;
        for (int i = 0; i < 1000000; ++i) {
            state = state * 1664525U + 1013904223U;
            bytes.append(static_cast<char>(state >> 24));
        }
        return bytes;
    }();
    for (const char* const suffix : {"csv", "csv.gz", "ics", "json", "json.gz", "vtl.json", "ninja_log", "txt"}) {
        const auto add = [this, suffix](const char* what, const QByteArray& content) {
            QTest::addRow("%s: %s", suffix, what) << write(QLatin1String(suffix), content);
        };
        add("nothing", {});
        add("one byte", "x");
        add("noise", noise);
        add("NUL bytes", QByteArray(5000000, '\0'));
        add("UTF-16", QByteArray("\xff\xfe", 2) + QByteArray("a\0,\0b\0\n\0", 8).repeated(10));
        add("brackets", repeated("[", 100000));
        add("braces", repeated("{\"a\":", 100000));
        add("a long line", QByteArray(10000000, 'a'));
        add("line breaks", QByteArray(10000000, '\n'));
        add("quotes", QByteArray(1000001, '"'));
    }
    addCsv();
    addCalendars();
    addTraces();
    addNative();
    addBuildLogs();
}

void TestHostileFiles::addCsv()
{
    const auto add = [this](const char* what, const QByteArray& content) {
        QTest::addRow("csv, %s", what) << write(QStringLiteral("csv"), content);
    };
    add("a long field", csvHead + "A," + QByteArray(10000000, 'x') + ",1,2\n");
    add("a long track", csvHead + QByteArray(10000000, 'x') + ",a,1,2\n");
    add("a deep track", csvHead + repeated("a/", 100000) + "b,a,1,2\n");
    add(
        "many deep tracks", csvHead + [] {
            QByteArray lines;
            for (int i = 0; i < 20000; ++i)
                lines += repeated("t" + QByteArray::number(i) + "/", 99) + "z,a,1,2\n";
            return lines;
        }());
    add("many columns", repeated("a,", 200000) + "start,end\n" + repeated("1,", 200001) + "2\n");
    add("large numbers", csvHead + "A,a,99999999999999999999999,1\nA,b,-9223372036854775808,9223372036854775807\n");
    add("faults in each record", csvHead + repeated("A,a,x,y\n", 500000));
    add("an open quote", csvHead + "A,\"a,1,2\n" + repeated("A,a,1,2\n", 500000));
    add("control characters", csvHead + "A\x01\x1b[31m,\x07l\x7f,\x02,\x1b]0;x\x07\n");
    add("bytes that are no UTF-8", csvHead + "A\xff\xfe,\xc3(,1,2\n");
    add("cut off", csvHead + "A,a,1,2\nA,b,1");
    QTest::addRow("csv.gz, a bomb") << write(QStringLiteral("csv.gz"),
                                             gzipped(csvHead + repeated("A,aaaaaaaaaaaaa,1,2\n", 50000), 2000));
    QTest::addRow("csv.gz, cut off") << write(QStringLiteral("csv.gz"),
                                              gzipped(csvHead + repeated("A,a,1,2\n", 5000), 1).chopped(20));
}

void TestHostileFiles::addCalendars()
{
    const auto add = [this](const char* what, const QByteArray& content) {
        QTest::addRow("ics, %s", what) << write(QStringLiteral("ics"), content);
    };
    add("endless recurrence", calendar("RRULE:FREQ=SECONDLY\r\n"));
    add("recurrence that never comes", calendar("RRULE:FREQ=SECONDLY;BYMONTH=2;BYMONTHDAY=31\r\n"));
    add("recurrence that never comes in years", calendar("RRULE:FREQ=YEARLY;BYMONTH=2;BYMONTHDAY=30\r\n"));
    add("a large interval", calendar("RRULE:FREQ=DAILY;INTERVAL=99999999999\r\n"));
    add("an interval of nothing", calendar("RRULE:FREQ=DAILY;INTERVAL=0\r\n"));
    add("many endless recurrences", icsHead + repeated(icsEvent("RRULE:FREQ=SECONDLY\r\n"), 2000) + icsFoot);
    add("a long text", calendar("SUMMARY:" + QByteArray(10000000, 'x') + "\r\n"));
    add("a long folded text", calendar("SUMMARY:" + repeated("x\r\n ", 3000000) + "\r\n"));
    add("components in components", icsHead + repeated("BEGIN:VEVENT\r\n", 100000));
    add("control characters", calendar("SUMMARY:a\x01\x1b[31m\x07\r\n"));
    add("cut off", calendar("SUMMARY:abc\r\n").left(100));
    add("numbers out of range", icsHead +
                                    "BEGIN:VEVENT\r\nUID:1\r\nDTSTART:99999999T999999Z\r\nDURATION:P999999999999W\r\n"
                                    "END:VEVENT\r\n" +
                                    icsFoot);
    add("a zone of many slashes", icsHead + "BEGIN:VEVENT\r\nDTSTART;TZID=" + repeated("a/", 2000000) +
                                      ":20200101T000000\r\nEND:VEVENT\r\n" + icsFoot);
    add("a large exception list", calendar("RRULE:FREQ=DAILY\r\n" + repeated("EXDATE:20200102T000000Z\r\n", 200000)));
}

void TestHostileFiles::addTraces()
{
    const auto add = [this](const char* what, const QByteArray& content) {
        QTest::addRow("trace, %s", what) << write(QStringLiteral("json"), content);
    };
    const auto slice = [](const QByteArray& more) {
        return "{\"ph\":\"X\",\"name\":\"a\",\"ts\":1,\"dur\":2,\"pid\":1,\"tid\":1" + more + "}";
    };
    add("a long name",
        "[{\"ph\":\"X\",\"name\":\"" + QByteArray(10000000, 'x') + "\",\"ts\":1,\"dur\":2,\"pid\":1,\"tid\":1}]");
    add("nested arguments", "[" + slice(",\"args\":" + repeated("[", 100000) + repeated("]", 100000)) + "]");
    add("numbers out of range", "[" + slice(",\"ts\":1e308") + "," + slice(",\"dur\":-1e400") + "," +
                                    slice(",\"pid\":99999999999999999999") + "]");
    add("a million slices within each other",
        "[" + repeated("{\"ph\":\"B\",\"name\":\"a\",\"ts\":1,\"pid\":1,\"tid\":1},", 1000000) + "{}]");
    add("control characters", "[" + slice(",\"cat\":\"\x01\x1b\"") + slice(",\"cat\":\"\\u0000\\u001b[31m\"") + "]");
    add("half a surrogate", "[" + slice(",\"cat\":\"\\ud800\"") + "]");
    add("bytes that are no UTF-8", "[{\"ph\":\"X\",\"name\":\"\xff\xfe\",\"ts\":1,\"dur\":2,\"pid\":1,\"tid\":1}]");
    add("cut off", "{\"traceEvents\":[" + slice({}) + ",{\"ph\":\"X\",\"na");
    QTest::addRow("trace.gz, a bomb") << write(QStringLiteral("json.gz"),
                                               gzipped("[" + repeated(slice({}) + ",", 20000), 1000));
    QTest::addRow("trace.gz, a bomb of blanks")
        << write(QStringLiteral("json.gz"), gzipped(QByteArray(1 << 20, ' '), 4000));
    QTest::addRow("trace.gz, cut off") << write(QStringLiteral("json.gz"),
                                                gzipped("[" + repeated(slice({}) + ",", 2000), 1).chopped(20));
}

void TestHostileFiles::addNative()
{
    const auto add = [this](const char* what, const QByteArray& content) {
        QTest::addRow("vtl, %s", what) << write(QStringLiteral("vtl.json"), content);
    };
    add("a long name", vtl("{\"name\": \"" + QByteArray(10000000, 'x') + "\"}"));
    add("nested tracks", vtl(repeated("{\"name\":\"a\",\"path\":[\"a\"],\"tracks\":[", 100000)));
    add("a deep path", vtl("{\"path\": [" + repeated("\"a\",", 100000) + "\"b\"], \"items\": []}"));
    add("numbers out of range",
        vtl("{\"path\": [\"a\"], \"items\": [{\"label\": \"x\", \"start\": 1e300, \"duration\": 1}]}"));
    add("control characters", vtl("{\"path\": [\"\x01\x1b\"], \"items\": []}"));
    add("escaped control characters", vtl("{\"path\": [\"\\u0000\\u001b\"], \"items\": []}"));
    add("cut off", vtl("{\"path\": [\"a\"], \"items\": []}").chopped(5));
}

void TestHostileFiles::addBuildLogs()
{
    const auto add = [this](const char* what, const QByteArray& content) {
        QTest::addRow("ninja, %s", what) << write(QStringLiteral("ninja_log"), "# ninja log v5\n" + content);
    };
    add("a long field", "0\t1\t2\t" + QByteArray(10000000, 'x') + "\tabc\n");
    add("numbers out of range", "99999999999999999999\t-1\t2\ta\tabc\n0\t9223372036854775807\t0\tb\tabc\n");
    add("control characters", "0\t1\t2\ta\x01\x1b[31m\tabc\n");
    add("a million steps at once", repeated("0\t1\t2\ta\tabc\n", 1000000));
    add("half a million lanes", [] {
        QByteArray lines;
        for (int i = 0; i < 500000; ++i)
            lines += "0\t1000\t2\t" + QByteArray::number(i) + "\t" + QByteArray::number(i, 16) + "\n";
        return lines;
    }());
    add("cut off", "0\t1\t2");
}

QTEST_GUILESS_MAIN(TestHostileFiles)
#include "tst_hostile_files.moc"
