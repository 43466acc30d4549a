#include "document_contents.h"
#include "support/gzip.h"

#include <VeskTimelineKit/trace_reader.h>

#include <QBuffer>
#include <QRandomGenerator>
#include <QTest>

#include <algorithm>
#include <limits>

using namespace VeskTimeline::Kit;

namespace {

Result<Document> read(QByteArray text, double stretch = 1000.0)
{
    QBuffer buffer(&text);
    buffer.open(QIODevice::ReadOnly);
    ReadOptions options;
    options.stretch = stretch;
    return readTrace(buffer, "f", options);
}

const QString stretchWarning =
    QStringLiteral("f: times are stretched by 1000: one microsecond of the trace is 1 ms of the axis");

// Of a process 1 and a thread 2.
QByteArray traceEvent(const char* phase, const QByteArray& time, const char* name, const QByteArray& more = {})
{
    return QByteArray("{\"ph\":\"") + phase + "\",\"ts\":" + time + ",\"name\":\"" + name + "\",\"pid\":1,\"tid\":2" +
           more + "}";
}

void compare(const QByteArray& text, const QString& expected, const QStringList& warnings = {})
{
    const Result<Document> result = read(text);
    QVERIFY2(result, qPrintable(result ? QString() : result.error().text()));
    QCOMPARE(contents(result.value()), expected);
    QCOMPARE(result.value().warnings(), QStringList(stretchWarning) + warnings);
}

} // namespace

class TestTraceReader : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(".?")); }

    void aCompleteEventIsAnItem()
    {
        compare("[" + traceEvent("X", "5", "a", ",\"dur\":7") + "]", "process 1 | process 1/thread 2: a 5+7");
    }

    void theObjectFormHasTheSameEvents()
    {
        compare("{\"displayTimeUnit\":\"ms\",\"traceEvents\":[" + traceEvent("X", "5", "a", ",\"dur\":7") +
                    "],\"metadata\":{\"traceEvents\":[1]}}",
                "process 1 | process 1/thread 2: a 5+7",
                {"f: the member \"displayTimeUnit\" is left out", "f: the member \"metadata\" is left out"});
    }

    void anArrayMayBeLeftOpen()
    {
        const QString expected = "process 1 | process 1/thread 2: a 5+7";
        compare("[" + traceEvent("X", "5", "a", ",\"dur\":7"), expected);
        compare("[" + traceEvent("X", "5", "a", ",\"dur\":7") + ",\n", expected);
        compare("[" + traceEvent("X", "5", "a", ",\"dur\":7") + ",\n]\n", expected);
    }

    void whatIsCutOffIsReadAsFarAsItGoes()
    {
        const QStringList warning{"f: the text ends before its end; what is complete has been read"};
        const QString expected = "process 1 | process 1/thread 2: a 5+7";
        compare("[" + traceEvent("X", "5", "a", ",\"dur\":7") + ",{\"ph\":\"X\",\"na", expected, warning);
        compare("{\"traceEvents\":[" + traceEvent("X", "5", "a", ",\"dur\":7"), expected, warning);
        compare("{\"traceEvents\":[" + traceEvent("X", "5", "a", ",\"dur\":7") + "]", expected, warning);
    }

    void nestedItemsComeToLieOnTracksOfTheirDepth()
    {
        compare("[" + traceEvent("X", "20", "c", ",\"dur\":5") + "," + traceEvent("X", "0", "a", ",\"dur\":50") + "," +
                    traceEvent("X", "10", "b", ",\"dur\":20") + "," + traceEvent("X", "30", "d", ",\"dur\":20") + "," +
                    traceEvent("X", "50", "e", ",\"dur\":1") + "]",
                "process 1 | process 1/thread 2: a 0+50, e 50+1 | process 1/thread 2/depth 1: b 10+20, d 30+20 | "
                "process 1/thread 2/depth 2: c 20+5");
    }

    void endsCloseWhatBeganLast()
    {
        compare("[" + traceEvent("B", "0", "a", ",\"args\":{\"x\":1,\"y\":2}") + "," + traceEvent("B", "5", "b") + "," +
                    traceEvent("E", "7", "") + "," + "{\"ph\":\"B\",\"ts\":6,\"name\":\"other\",\"pid\":1,\"tid\":3}," +
                    traceEvent("E", "9", "a") + ",{\"ph\":\"E\",\"ts\":8,\"pid\":1,\"tid\":3}]",
                "process 1 | process 1/thread 2: a 0+9 | process 1/thread 2/depth 1: b 5+2 | "
                "process 1/thread 3: other 6+2");
    }

    void pairsAreFoundWhateverTheOrderInTheFile()
    {
        compare("[" + traceEvent("E", "9", "a") + "," + traceEvent("B", "5", "b") + "," + traceEvent("E", "7", "b") +
                    "," + traceEvent("B", "0", "a") + "]",
                "process 1 | process 1/thread 2: a 0+9 | process 1/thread 2/depth 1: b 5+2");
    }

    void whatNeverEndsIsOpenEnded()
    {
        compare("[" + traceEvent("B", "0", "a") + ",\n" + traceEvent("X", "5", "b", ",\"dur\":1") + ",\n" +
                    traceEvent("X", "9", "c") + "]",
                "process 1 | process 1/thread 2: a 0+-1 | process 1/thread 2/depth 1: b 5+1, c 9+-1",
                {"f:3: event 3: \"c\" has no duration and is left open-ended",
                 "f:1: event 1: \"a\" never ends and is left open-ended"});
    }

    void whatNeverBeganIsLeftOut()
    {
        compare("[" + traceEvent("E", "0", "a") + "," + traceEvent("X", "5", "b", ",\"dur\":1") + "]",
                "process 1 | process 1/thread 2: b 5+1",
                {"f:1: event 1: the end \"a\" without a beginning is left out"});
    }

    void anEndUnderAnotherNameIsWarnedOf()
    {
        compare("[" + traceEvent("B", "0", "a") + "," + traceEvent("E", "5", "b") + "]",
                "process 1 | process 1/thread 2: a 0+5", {"f:1: event 2: it ends \"a\" under the name \"b\""});
    }

    void asynchronousPairsAreMatchedByCategoryIdAndName()
    {
        const auto async = [](const char* phase, const QByteArray& time, const char* name, const QByteArray& id,
                              const char* category) {
            return traceEvent(phase, time, name, ",\"id\":" + id + ",\"cat\":\"" + category + "\"");
        };
        compare("[" + async("b", "0", "a", "1", "k") + "," + async("b", "1", "a", "2", "k") + "," +
                    async("b", "2", "b", "1", "k") + "," + async("b", "3", "a", "1", "l") + "," +
                    async("e", "10", "a", "1", "k") + "," + async("e", "11", "b", "1", "k") + "," +
                    async("e", "12", "a", "2", "k") + "," + async("e", "13", "a", "1", "l") + "]",
                "process 1 | process 1/async k: a 0+10 | process 1/async k/depth 1: a 1+11 | "
                "process 1/async k/depth 2: b 2+9 | process 1/async l: a 3+10");
    }

    void localIdsAreThoseOfTheirProcess()
    {
        const auto local = [](const char* phase, const QByteArray& time, int process) {
            return QByteArray("{\"ph\":\"") + phase + "\",\"ts\":" + time +
                   ",\"name\":\"a\",\"cat\":\"k\",\"pid\":" + QByteArray::number(process) +
                   ",\"tid\":1,\"id2\":{\"local\":\"0x1\"}}";
        };
        compare("[" + local("b", "0", 1) + "," + local("b", "1", 2) + "," + local("e", "5", 1) + "," +
                    local("e", "9", 2) + "]",
                "process 1 | process 1/async k: a 0+5 | process 2 | process 2/async k: a 1+8");
    }

    void globalIdsMatchAcrossProcesses()
    {
        compare(
            "[{\"ph\":\"b\",\"ts\":0,\"name\":\"a\",\"cat\":\"k\",\"pid\":1,\"tid\":1,\"id2\":{\"global\":\"0x1\"}},"
            "{\"ph\":\"e\",\"ts\":4,\"name\":\"a\",\"cat\":\"k\",\"pid\":2,\"tid\":1,\"id2\":{\"global\":\"0x1\"}}]",
            "process 1 | process 1/async k: a 0+4", {"f: threads left out because they have no items: 1"});
    }

    void theOldAsynchronousPhasesAreMatchedToo()
    {
        const QByteArray id = ",\"id\":1,\"cat\":\"k\"";
        compare("[" + traceEvent("S", "0", "a", id) + "," + traceEvent("T", "3", "step", id) + "," +
                    traceEvent("F", "9", "a", id) + "]",
                "process 1 | process 1/async k: a 0+9 | process 1/async k/depth 1: step 3+0");
    }

    void instantsAreMarkers()
    {
        compare("[" + traceEvent("i", "1", "a") + "," + traceEvent("I", "2", "b") + "," + traceEvent("R", "3", "c") +
                    "," + traceEvent("n", "4", "d", ",\"id\":1,\"cat\":\"k\"") + "]",
                "process 1 | process 1/thread 2: a 1+0, b 2+0, c 3+0 | process 1/async k: d 4+0");
    }

    void markersOfOneTimeDoNotHideEachOther()
    {
        compare("[" + traceEvent("i", "1", "a") + "," + traceEvent("i", "1", "b") + "]",
                "process 1 | process 1/thread 2: a 1+0 | process 1/thread 2/depth 1: b 1+0");
    }

    void namesAndOrderAreInTheMetadata()
    {
        const auto thread = [](const char* process, const char* id) {
            return QByteArray("{\"ph\":\"i\",\"ts\":1,\"name\":\"x\",\"pid\":") + process + ",\"tid\":" + id + "}";
        };
        const auto metadata = [](const char* name, const char* process, const char* id, const QByteArray& args) {
            return QByteArray("{\"ph\":\"M\",\"name\":\"") + name + "\",\"pid\":" + process + ",\"tid\":" + id +
                   ",\"args\":{" + args + "}}";
        };
        compare("[" + thread("1", "10") + "," + thread("1", "11") + "," + thread("2", "\"GPU\"") + "," +
                    metadata("process_name", "2", "0", "\"name\":\"second\"") + "," +
                    metadata("process_sort_index", "2", "0", "\"sort_index\":-1") + "," +
                    metadata("thread_name", "1", "11", "\"name\":\"main\"") + "," +
                    metadata("thread_sort_index", "1", "11", "\"sort_index\":-5") + "," +
                    metadata("thread_name", "1", "12", "\"name\":\"idle\"") + "," +
                    metadata("num_cpus", "1", "12", "\"number\":4") + "]",
                "second (2) | second (2)/thread GPU: x 1+0 | process 1 | process 1/main (11): x 1+0 | "
                "process 1/thread 10: x 1+0",
                {"f: left out: metadata \"num_cpus\", 1 time", "f: threads left out because they have no items: 1"});
    }

    void otherPhasesAreCounted()
    {
        compare("[" + traceEvent("C", "1", "a") + "," + traceEvent("s", "1", "a") + "," + traceEvent("f", "1", "a") +
                    "," + traceEvent("?", "1", "a") + "," + traceEvent("i", "1", "a") + "]",
                "process 1 | process 1/thread 2: a 1+0",
                {"f: left out: counters, 1 time", "f: left out: events of the phase \"?\", 1 time",
                 "f: left out: flow events, 2 times"});
    }

    void allThatAnEventSaysIsKept()
    {
        const Result<Document> result = read(
            "[" + traceEvent("B", "0", "a", ",\"cat\":\"k\",\"tts\":5,\"args\":{\"s\":\"t\",\"o\":{\"p\":[1, 2]}}") +
            "," + traceEvent("E", "3", "a", ",\"cat\":\"k\",\"tts\":6,\"args\":{\"q\":true}") + "]");
        QVERIFY(result);
        const QMap<QString, QString> expected{
            {"cat", "k"},      {"tts", "5"}, {"end.tts", "6"}, {"args.s", "t"}, {"args.o", "{\"p\":[1,2]}"},
            {"args.q", "true"}};
        QCOMPARE(result.value().tracks()[1].items[0].attributes, expected);
    }

    void timesAreStretchedAndCut()
    {
        const QByteArray text = "[" + traceEvent("X", "1000.419", "a", ",\"dur\":0.581") + "," +
                                traceEvent("X", "2000", "b", ",\"dur\":1500") + "]";
        Result<Document> result = read(text);
        QCOMPARE(contents(result.value()), "process 1 | process 1/thread 2: a 1000+1, b 2000+1500");
        QCOMPARE(result.value().warnings(), (QStringList{stretchWarning, "f: times cut to whole milliseconds: 1"}));
        result = read(text, 1.0);
        QCOMPARE(contents(result.value()), "process 1 | process 1/thread 2: a 1+0, b 2+1");
        QCOMPARE(result.value().warnings(), QStringList("f: times cut to whole milliseconds: 3"));
        result = read(text, 1e6);
        QCOMPARE(contents(result.value()), "process 1 | process 1/thread 2: a 1000419+581, b 2000000+1500000");
        QCOMPARE(result.value().warnings(),
                 QStringList("f: times are stretched by 1e+06: one microsecond of the trace is "
                             "1000 ms of the axis"));
    }

    void tracesOfTheCalendarCountFromTheirFirstEvent()
    {
        compare("[" + traceEvent("X", "1795194915583994", "a", ",\"dur\":10") + "," +
                    traceEvent("X", "1795194915583999", "b", ",\"dur\":2") + "]",
                "process 1 | process 1/thread 2: a 0+10 | process 1/thread 2/depth 1: b 5+2",
                {"f: times count from the first event, which is at 1795194915583994 microseconds"});
    }

    void timesOutsideTheYearsAreLeftOut()
    {
        compare("[" + traceEvent("X", "0", "a", ",\"dur\":1") + "," + traceEvent("X", "1e15", "b", ",\"dur\":1") + "," +
                    traceEvent("X", "-1e300", "c", ",\"dur\":1") + "," + traceEvent("X", "1", "d", ",\"dur\":1e308") +
                    "," + traceEvent("X", "1e308", "d", ",\"dur\":1e308") + "]",
                "process 1 | process 1/thread 2: a 0+1",
                {"f: items left out because they are outside the years 1 to 9999: 4"});
    }

    void anItemOfManyDaysIsOneItem()
    {
        compare("[" + traceEvent("X", "-5000000000", "a", ",\"dur\":9000000000") + "]",
                "process 1 | process 1/thread 2: a -5000000000+9000000000");
    }

    void brokenEventsAreLeftOutWithAWarning()
    {
        compare("[\n1,\n{},\n{\"ph\":\"XX\"},\n{\"ph\":\"X\",\"dur\":1},\n{\"ph\":\"X\",\"ts\":\"1\"},\n" +
                    traceEvent("X", "1", "a", ",\"dur\":-1") +
                    ",\n{\"ph\":\"X\" \"ts\":1},\n{\"ph\":\"X\",\"ts\":1e999},\n" +
                    traceEvent("X", "1", "a", ",\"dur\":1") + "]",
                "process 1 | process 1/thread 2: a 1+1",
                {"f:2: event 1 is left out: it is no object", "f:3: event 2 is left out: it has no phase",
                 "f:4: event 3 is left out: it has no phase", "f:5: event 4 is left out: it has no time",
                 "f:6: event 5 is left out: its time is no number",
                 "f:7: event 6 is left out: its duration is negative", "f:8: event 7 is left out: it is not valid JSON",
                 "f:9: event 8 is left out: a number is malformed or out of range"});
    }

    void wrongBytesAndControlCharactersAreSurvived()
    {
        compare("[" + traceEvent("X", "1", "caf\xE9\\u0000\\u0007", ",\"dur\":1") + "," +
                    traceEvent("E", "1", "\\n\\u0007") + "]",
                "process 1 | process 1/thread 2: caf" + QString(QChar(0xFFFD)) + QChar(0) + QChar(7) + " 1+1",
                {"f:1: event 1: bytes that are not UTF-8 are replaced",
                 "f:1: event 2: the end \"" + QString(QChar(0xFFFD)) + "\" without a beginning is left out"});
    }

    void theFileIsRefused_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<QString>("error");
        QTest::newRow("empty") << QByteArray() << "f:1: the file is empty";
        QTest::newRow("no JSON") << QByteArray("hello") << "f:1: the text is not JSON: it starts with neither { nor [";
        QTest::newRow("no events") << QByteArray("{\"a\":[]}") << "f: not a trace: it has no traceEvents";
        QTest::newRow("other records") << QByteArray("[1,{}]")
                                       << "f: not a trace: none of its records is an event; the last: it has no phase";
        QTest::newRow("no comma") << QByteArray("[{}\n\n{}]") << "f:3: a comma is missing after an element";
        QTest::newRow("two commas") << QByteArray("[1,,2]") << "f:1: a value is missing";
        QTest::newRow("no colon") << QByteArray("{\"a\" 1}") << "f:1: a colon is missing after the name of a member";
        QTest::newRow("no name") << QByteArray("{1}") << "f:1: the name of a member is missing";
        QTest::newRow("more") << QByteArray("[] []") << "f:1: there is more text after the end of the JSON text";
        QTest::newRow("deep") << QByteArray(100'000, '[') << "f:1: brackets are nested more than 1000 levels deep";
        QTest::newRow("broken gzip") << QByteArray("\x1f\x8b\x08hello, world, hello") << "f: the packed data is broken";
    }
    void theFileIsRefused()
    {
        QFETCH(QByteArray, text);
        QFETCH(QString, error);
        const Result<Document> result = read(text);
        QVERIFY(!result);
        QCOMPARE(result.error().text(), error);
    }

    void anEmptyTraceIsATrace()
    {
        compare("[]", "");
        compare("{\"traceEvents\":[]}", "");
    }

    void packedTracesAreUnpacked()
    {
        const QByteArray text = "[" + traceEvent("X", "5", "a", ",\"dur\":7") + "]";
        const QString expected = "process 1 | process 1/thread 2: a 5+7";
        compare(gzipped(text), expected);
        compare(gzipped(text.left(20)) + gzipped(text.mid(20)), expected);
    }

    void aPackedTraceThatIsCutOffIsReadAsFarAsItGoes()
    {
        QByteArray text = "[";
        QRandomGenerator random(1);
        for (int i = 0; i < 1000; ++i)
            text += traceEvent("i", QByteArray::number(i), QByteArray::number(random.generate()).constData()) + ",\n";
        const QByteArray whole = gzipped(text);
        const Result<Document> result = read(whole.left(whole.size() / 2));
        QVERIFY(result);
        QVERIFY(result.value().itemCount() > 100 && result.value().itemCount() < 900);
        QVERIFY(result.value().warnings().contains("f: the text ends before its end; what is complete has been read"));
    }

    void whatSwellsBeyondMeasureIsRefused()
    {
        const Result<Document> result = read(gzipped("[" + QByteArray(40 * 1024 * 1024, ' ') + "]"));
        QVERIFY(!result);
        QCOMPARE(result.error().text(), "f: the packed data swells to more than 100 times its size");
    }

    void manyWarningsDoNotHideTheGeneralOnes()
    {
        QByteArray text = "[";
        for (int i = 0; i < 500; ++i)
            text += "{\"ph\":\"X\"},";
        text += traceEvent("C", "1", "a");
        const Result<Document> result = read(text);
        QVERIFY(result);
        QCOMPARE(result.value().warnings().first(), stretchWarning);
        QCOMPARE(result.value().warnings().at(1), "f: left out: counters, 1 time");
        QCOMPARE(result.value().warnings().last(), "f: further warnings: 400");
    }

    void textsThatComeAgainAreHeldOnce()
    {
        const QByteArray more = ",\"dur\":1,\"cat\":\"category\",\"args\":{\"argument\":\"value\"}";
        const Result<Document> result =
            read("[" + traceEvent("X", "1", "a name", more) + "," + traceEvent("X", "5", "a name", more) + "]");
        QVERIFY(result);
        const std::vector<DocumentItem>& items = result.value().tracks().back().items;
        QCOMPARE(items.size(), std::size_t(2));
        QCOMPARE(items[0].label.constData(), items[1].label.constData());
        QCOMPARE(items[0].attributes, items[1].attributes);
        QCOMPARE(items[0].attributes.size(), 2);
        for (auto a = items[0].attributes.cbegin(), b = items[1].attributes.cbegin(); b != items[1].attributes.cend();
             ++a, ++b) {
            QCOMPARE(a.key().constData(), b.key().constData());
            QCOMPARE(a.value().constData(), b.value().constData());
        }
    }

    void itemsOfTooManyProcessesAreLeftOut()
    {
        QByteArray text = "[";
        for (int i = 0; i < 50'010; ++i)
            text += "{\"ph\":\"i\",\"ts\":1,\"pid\":" + QByteArray::number(i) + "},";
        text += "{\"ph\":\"E\",\"ts\":1,\"pid\":\"x\"},";
        text += "{\"ph\":\"M\",\"name\":\"process_name\",\"pid\":\"x\",\"args\":{\"name\":\"x\"}},";
        text += "{\"ph\":\"M\",\"name\":\"process_name\",\"pid\":0,\"args\":{\"name\":\"first\"}}";
        const Result<Document> result = read(text);
        QVERIFY(result);
        QCOMPARE(result.value().tracks().size(), Document::mostTracks);
        QCOMPARE(result.value().tracks().front().path, QStringList{"first (0)"});
        QCOMPARE(result.value().itemCount(), 50'000);
        QVERIFY(result.value().warnings().contains("f: items left out because there would be too many tracks: 10"));
        QVERIFY(result.value().warnings().contains("f: left out: metadata \"process_name\", 1 time"));
    }

    void tooManyDepthsAreLeftOut()
    {
        QByteArray text = "[";
        for (int i = 0; i < 10'010; ++i)
            text += "{\"ph\":\"B\",\"ts\":1},";
        const Result<Document> result = read(text);
        QVERIFY(result);
        QCOMPARE(result.value().itemCount(), 10'000);
        QVERIFY(result.value().warnings().contains("f: items left out because there would be too many tracks: 10"));
    }

    void noItemsOfATrackOverlapAndNoneIsLost()
    {
        QRandomGenerator random(7);
        for (int round = 0; round < 30; ++round) {
            QByteArray text = "[";
            for (int i = 0; i < 300; ++i)
                text += traceEvent("X", QByteArray::number(random.bounded(1000)), "x",
                                   ",\"dur\":" + QByteArray::number(random.bounded(100))) +
                        ",";
            const Result<Document> result = read(text);
            QVERIFY(result);
            QCOMPARE(result.value().itemCount(), 300);
            for (const DocumentTrack& track : result.value().tracks()) {
                for (std::size_t i = 1; i < track.items.size(); ++i) {
                    const DocumentItem& before = track.items[i - 1];
                    QVERIFY(track.items[i].start >= std::max(before.end(), before.start + 1));
                }
            }
        }
    }

    void everyStageReportsAndCanBeCancelled()
    {
        QByteArray text = "[";
        for (int i = 0; i < 40'000; ++i)
            text += traceEvent(i % 2 ? "E" : "B", QByteArray::number(40'000 - i / 2), "x") + ",";
        int calls = 0;
        double last = 0.0;
        bool grows = true;
        const auto readUntil = [&](int most) {
            calls = 0;
            last = 0.0;
            QBuffer buffer(&text);
            buffer.open(QIODevice::ReadOnly);
            ReadOptions options;
            options.progress = [&](double share) {
                grows = grows && share >= last && share <= 1.0;
                last = share;
                return ++calls < most;
            };
            return readTrace(buffer, "f", options);
        };
        QVERIFY(readUntil(std::numeric_limits<int>::max()));
        QVERIFY(grows);
        const Result<Document> result = readUntil(1);
        QVERIFY(!result);
        QCOMPARE(result.error().text(), "f: reading was cancelled");
        QCOMPARE(calls, 1);
    }
};

QTEST_APPLESS_MAIN(TestTraceReader)
#include "tst_trace_reader.moc"
