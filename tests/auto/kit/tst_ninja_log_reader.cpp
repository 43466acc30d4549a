#include "document_contents.h"

#include <VeskTimelineKit/ninja_log_reader.h>

#include <QBuffer>
#include <QRandomGenerator>
#include <QTest>

#include <algorithm>

using namespace VeskTimeline::Kit;

namespace {

Result<Document> read(QByteArray text, const ReadOptions& options = {})
{
    QBuffer buffer(&text);
    buffer.open(QIODevice::ReadOnly);
    return readNinjaLog(buffer, "f", options);
}

void compare(const QByteArray& text, const QString& expected, const QStringList& warnings = {})
{
    const Result<Document> result = read(text);
    QVERIFY2(result, qPrintable(result ? QString() : result.error().text()));
    QCOMPARE(contents(result.value()), expected);
    QCOMPARE(result.value().warnings(), warnings);
}

} // namespace

class TestNinjaLogReader : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(".?")); }

    void stepsAreOnAsFewLanesAsOverlapsAllow()
    {
        compare("# ninja log v5\n0\t10\t1\ta.o\t1\n3\t12\t1\tb.o\t2\n12\t15\t1\td.o\t3\n10\t20\t1\tc.o\t4\n",
                "lane 1: a.o 0+10, c.o 10+10 | lane 2: b.o 3+9, d.o 12+3");
    }

    void outputsOfOneStepAreOneItem()
    {
        const Result<Document> result =
            read("# ninja log v5\n0\t10\t77\ta.h\tabc\n0\t10\t78\ta.cpp\tabc\n0\t10\t79\tb\tdef\n");
        QVERIFY(result);
        QCOMPARE(contents(result.value()), "lane 1: a.h 0+10 | lane 2: b 0+10");
        const DocumentItem& item = result.value().tracks()[0].items[0];
        QCOMPARE(item.description, "a.h\na.cpp");
        const QMap<QString, QString> expected{{"command hash", "abc"}, {"modified", "77"}};
        QCOMPARE(item.attributes, expected);
    }

    void olderLogsHaveTheCommand()
    {
        const Result<Document> result = read("# ninja log v4\n0\t10\t77\ta.o\tcc -c a.c\n");
        QVERIFY(result);
        QCOMPARE(result.value().tracks()[0].items[0].attributes.value("command"), "cc -c a.c");
    }

    void aCommandMayHoldTabs()
    {
        const Result<Document> result = read("# ninja log v4\n0\t10\t77\ta.o\tprintf 'a\tb\tc'\n");
        QVERIFY(result);
        QVERIFY(result.value().warnings().isEmpty());
        QCOMPARE(result.value().tracks()[0].items[0].attributes.value("command"), "printf 'a\tb\tc'");
    }

    void anOutputMadeAgainBeginsABuild()
    {
        compare("# ninja log v5\n0\t10\t1\ta\t1\n0\t30\t1\ta\t1\n30\t40\t1\tb\t2\n",
                "build 1 | build 1/lane 1: a 0+10 | build 2 | build 2/lane 1: a 10+30, b 40+10",
                {"f: the log is of 2 builds, which are shown one after the other"});
    }

    void aLogInNoOrderIsTakenForOneBuild()
    {
        constexpr int count = 40;
        QByteArray log("# ninja log v5\n");
        for (int i = 0; i < count; ++i) {
            const int step = i * 17 % count;
            log += QByteArray::number(step * 10) + '\t' + QByteArray::number(step * 10 + 10) + "\t1\tout" +
                   QByteArray::number(step) + "\t1\n";
        }
        const auto result = read(log);
        QVERIFY(result);
        QCOMPARE(result.value().tracks().size(), std::size_t(1));
        QCOMPARE(result.value().itemCount(), count);
        QCOMPARE(result.value().span()->end, count * 10);
        QCOMPARE(
            result.value().warnings(),
            QStringList{"f: the lines of the log are in no order: if it is of several builds, they are shown as one"});
    }

    void buildsFollowEachOtherOnTracksOfTheirOwn()
    {
        compare("# ninja log v5\n0\t10\t1\ta\t1\n5\t30\t1\tb\t2\n0\t7\t1\ta\t1\n2\t8\t1\tc\t3\n",
                "build 1 | build 1/lane 1: a 0+10 | build 1/lane 2: b 5+25 | build 2 | build 2/lane 1: a 30+7 | "
                "build 2/lane 2: c 32+6",
                {"f: the log is of 2 builds, which are shown one after the other"});
    }

    void stepsThatEndTogetherAreOfOneBuild()
    {
        compare("# ninja log v5\n5\t10\t1\ta\t1\n0\t10\t1\tb\t2\n", "lane 1: b 0+10 | lane 2: a 5+5");
    }

    void stepsWithoutLengthDoNotHideEachOther()
    {
        compare("# ninja log v5\n5\t5\t1\ta\t1\n5\t5\t1\tb\t2\n6\t6\t1\tc\t3\n",
                "lane 1: a 5+0, c 6+0 | lane 2: b 5+0");
    }

    void aLogWithoutStepsIsEmpty() { compare("# ninja log v5\n", ""); }

    void lineEndsOfEitherKindAndCommentsAreReadOver()
    {
        compare("# ninja log v5\r\n\r\n# more\r\n1\t2\t0\ta\tf\r\n1\t2\t0\tb\tf", "lane 1: a 1+1");
    }

    void brokenLinesAreLeftOutWithAWarning()
    {
        compare("# ninja log v5\nx\t1\t1\ta\t1\n1\t2\t3\n5\t4\t1\ta\t1\n-1\t4\t1\ta\t1\n1\t2147483648\t1\ta\t1\n"
                "1\t2\t1\t\t1\n1\t2\t1\tgood\xE9\t1\n1\t2",
                "lane 1: good" + QString(QChar(0xFFFD)) + " 1+1",
                {"f:2: the line is left out: its times are no numbers of milliseconds, or out of range",
                 "f:3: the line is left out: the number of its fields is 3 instead of 5",
                 "f:4: the line is left out: its end is before its start",
                 "f:5: the line is left out: its times are no numbers of milliseconds, or out of range",
                 "f:6: the line is left out: its times are no numbers of milliseconds, or out of range",
                 "f:7: the line is left out: it names no output", "f:8: bytes that are not UTF-8 are replaced",
                 "f:9: the line is left out: the number of its fields is 2 instead of 5"});
    }

    void anEndlessLineIsLeftOut()
    {
        compare("# ninja log v5\n1\t2\t3\t" + QByteArray(10'000'000, 'x') + "\t1\n1\t2\t1\ta\t1\n", "lane 1: a 1+1",
                {"f:2: the line is left out: it is longer than 4194304 bytes"});
    }

    void theFileIsRefused_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<QString>("error");
        QTest::newRow("empty") << QByteArray() << "f:1: not a build log: it does not start with \"# ninja log v\"";
        QTest::newRow("another text") << QByteArray("hello\n")
                                      << "f:1: not a build log: it does not start with \"# ninja log v\"";
        QTest::newRow("no version") << QByteArray("# ninja log vx\n") << "f:1: the version is no number";
        QTest::newRow("old") << QByteArray("# ninja log v3\n")
                             << "f:1: version 3 of the log is too old; the oldest that can be read is 4";
    }
    void theFileIsRefused()
    {
        QFETCH(QByteArray, text);
        QFETCH(QString, error);
        const Result<Document> result = read(text);
        QVERIFY(!result);
        QCOMPARE(result.error().text(), error);
    }

    void aNewerLogIsReadWithAWarning()
    {
        compare("# ninja log v7\n1\t2\t1\ta\t1\n", "lane 1: a 1+1");
        compare("# ninja log v8\n1\t2\t1\ta\t1\n", "lane 1: a 1+1",
                {"f:1: version 8 of the log is not known and is read like version 7"});
    }

    void lanesAreTheMostStepsAtATime()
    {
        QRandomGenerator random(3);
        for (int round = 0; round < 50; ++round) {
            struct Step
            {
                int start;
                int end;
            };
            std::vector<Step> steps;
            for (int i = 0; i < 100; ++i) {
                const int start = random.bounded(500);
                steps.push_back({start, start + 1 + random.bounded(60)});
            }
            std::sort(steps.begin(), steps.end(), [](const Step& a, const Step& b) { return a.end < b.end; });
            QByteArray text = "# ninja log v5\n";
            for (std::size_t i = 0; i < steps.size(); ++i) {
                const QByteArray number = QByteArray::number(static_cast<int>(i));
                text += QByteArray::number(steps[i].start) + '\t' + QByteArray::number(steps[i].end) + "\t1\t" +
                        number + '\t' + number + '\n';
            }
            std::ptrdiff_t most = 0;
            for (int time = 0; time < 600; ++time)
                most = std::max(most, std::count_if(steps.begin(), steps.end(), [time](const Step& step) {
                                    return step.start <= time && time < step.end;
                                }));
            const Result<Document> result = read(text);
            QVERIFY(result);
            QCOMPARE(static_cast<std::ptrdiff_t>(result.value().tracks().size()), most);
            QCOMPARE(result.value().itemCount(), 100);
            for (const DocumentTrack& track : result.value().tracks()) {
                for (std::size_t i = 1; i < track.items.size(); ++i)
                    QVERIFY(track.items[i].start >= track.items[i - 1].end());
            }
        }
    }

    void cancellingEndsIt()
    {
        ReadOptions options;
        options.progress = [](double) { return false; };
        QCOMPARE(read("# ninja log v5\n1\t2\t1\ta\t1\n", options).error().text(), "f: reading was cancelled");
    }
};

QTEST_APPLESS_MAIN(TestNinjaLogReader)
#include "tst_ninja_log_reader.moc"
