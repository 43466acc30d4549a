// How fast files come into a model, beside what the parsing library alone takes for the same bytes. Times are those of
// one core: of the processor, not of the clock on the wall.

#include <VeskTimelineKit/csv_reader.h>
#include <VeskTimelineKit/prepared_document.h>
#include <VeskTimelineKit/standard_timeline_model.h>
#include <VeskTimelineKit/trace_reader.h>
#include <VeskTimelineKit/vtl_reader.h>
#include <VeskTimelineKit/vtl_writer.h>

#include <QBuffer>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <csv.h>
#include <ctime>
#include <functional>
#include <simdjson.h>
#include <vector>

using namespace VeskTimeline::Kit;

namespace {

using Read = std::function<Result<Document>(const QString& fileName)>;
using Parse = std::function<std::size_t(const QByteArray& content)>;

constexpr int rounds = 5;

double processorSeconds()
{
    return static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

// Fields and records are counted, so that nothing can be left out as of no use.
std::size_t parseWithLibCsv(const QByteArray& content)
{
    std::size_t count = 0;
    csv_parser parser;
    csv_init(&parser, CSV_STRICT | CSV_STRICT_FINI);
    const auto onField = [](void*, std::size_t size, void* sum) { *static_cast<std::size_t*>(sum) += size; };
    const auto onRecord = [](int, void* sum) { ++*static_cast<std::size_t*>(sum); };
    constexpr qsizetype blockSize = 64 * 1024;
    for (qsizetype at = 0; at < content.size(); at += blockSize)
        csv_parse(&parser, content.constData() + at, static_cast<std::size_t>(std::min(blockSize, content.size() - at)),
                  onField, onRecord, &count);
    csv_fini(&parser, onField, onRecord, &count);
    csv_free(&parser);
    return count;
}

std::size_t parseWithSimdjson(const QByteArray& content)
{
    simdjson::dom::parser parser;
    const simdjson::padded_string text(content.constData(), static_cast<std::size_t>(content.size()));
    simdjson::dom::element element;
    if (parser.parse(text).get(element) != simdjson::SUCCESS)
        qFatal("simdjson refuses the text");
    return element.is_array() ? element.get_array().value().size() : element.get_object().value().size();
}

QByteArray isoTime(qint64 seconds)
{
    return QDateTime::fromSecsSinceEpoch(1'600'000'000 + seconds, Qt::UTC).toString(Qt::ISODate).toLatin1();
}

QByteArray csvOfOwnWay()
{
    QByteArray text = "track,label,start,end,color,editable,description,crew\n";
    for (int i = 0; i < 300'000; ++i)
        text += "Line " + QByteArray::number(i / 1500) + "/Vehicle " + QByteArray::number(i / 300 % 5) + ",Trip " +
                QByteArray::number(i) + ',' + isoTime(i * 60LL) + ',' + isoTime(i * 60LL + 45) +
                ",#4c78a8,true,,\"Cernan, Schmitt\"\n";
    return text;
}

QByteArray csvOfNumbers()
{
    QByteArray text = "name,thread,start_ms,end_ms,bytes\n";
    for (int i = 0; i < 500'000; ++i)
        text += "read block " + QByteArray::number(i % 5000) + ",worker-" + QByteArray::number(i % 8) + ',' +
                QByteArray::number(1'600'000'000'000 + i * 20LL) + ',' +
                QByteArray::number(1'600'000'000'000 + i * 20LL + 15) + ',' + QByteArray::number(i * 7919LL % 65536) +
                '\n';
    return text;
}

QByteArray csvOfLocalTimes()
{
    QByteArray text = "Linie;Fahrt;Abfahrt;Ankunft;Halte\r\n";
    const QDateTime first(QDate(2015, 3, 2), QTime(0, 0), Qt::UTC);
    const auto time = [&first](int minutes) {
        return first.addSecs(60LL * minutes).toString(QStringLiteral("dd.MM.yyyy HH:mm")).toLatin1();
    };
    for (int i = 0; i < 300'000; ++i)
        text += "Linie " + QByteArray::number(i % 40) + ";nach Garching, Forschungszentrum;" + time(i) + ';' +
                time(i + 37) + ';' + QByteArray::number(i % 30) + "\r\n";
    return text;
}

QByteArray traceOfSlices()
{
    QByteArray text = "{\"traceEvents\":[";
    for (int i = 0; i < 300'000; ++i)
        text +=
            QByteArray(i > 0 ? "," : "") +
            "\n{\"args\":{\"data\":{\"type\":\"mark\",\"id\":" + QByteArray::number(i % 200) +
            "}},\"cat\":\"devtools.timeline\",\"dur\":" + QByteArray::number(5 + i % 50) + ",\"name\":\"FunctionCall " +
            QByteArray::number(i % 1000) + "\",\"ph\":\"X\",\"pid\":" + QByteArray::number(1000 + i % 4) +
            ",\"tdur\":3,\"tid\":" + QByteArray::number(2000 + i % 13) +
            ",\"ts\":" + QByteArray::number(1'474'187'323 + i * 3LL) + ",\"tts\":" + QByteArray::number(i * 2LL) + '}';
    return text + "\n],\"displayTimeUnit\":\"ms\"}";
}

QByteArray traceOfPairs(const QByteArray& begin, const QByteArray& end, const QByteArray& more)
{
    QByteArray text = "[";
    for (int i = 0; i < 200'000; ++i) {
        const QByteArray rest = "\",\"pid\":1,\"tid\":" + QByteArray::number(i % 7) +
                                ",\"cat\":\"check\",\"name\":\"checkVariableDeclaration\"" +
                                (more.isEmpty() ? QByteArray() : more + QByteArray::number(i) + '"');
        text += QByteArray(i > 0 ? ",\n" : "\n") + "{\"ph\":\"" + begin + rest +
                ",\"ts\":" + QByteArray::number(i * 10) +
                ".25,\"args\":{\"kind\":261,\"pos\":" + QByteArray::number(i) +
                ",\"path\":\"/home/build/project/node_modules/lib.d.ts\"}},\n{\"ph\":\"" + end + rest +
                ",\"ts\":" + QByteArray::number(i * 10 + 7) + ".5}";
    }
    return text + "\n]";
}

} // namespace

class BenchReaders : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void intoAModel_data();
    void intoAModel();

private:
    QTemporaryDir m_dir;
};

void BenchReaders::intoAModel_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<Parse>("parse");
    QTest::addColumn<Read>("read");
    const auto addCsv = [](const char* name, const QByteArray& content) {
        const Read read = [](const QString& fileName) { return readCsv(fileName); };
        QTest::newRow(name) << content << Parse(parseWithLibCsv) << read;
    };
    const auto addTrace = [](const char* name, const QByteArray& content) {
        const Read read = [](const QString& fileName) { return readTrace(fileName, {}); };
        QTest::newRow(name) << content << Parse(parseWithSimdjson) << read;
    };
    addCsv("CSV, our own way", csvOfOwnWay());
    addCsv("CSV, plain numbers", csvOfNumbers());
    addCsv("CSV, local times", csvOfLocalTimes());
    addTrace("trace, X", traceOfSlices());
    addTrace("trace, B and E", traceOfPairs("B", "E", {}));
    addTrace("trace, b and e", traceOfPairs("b", "e", ",\"id\":\"0x"));
    QBuffer csv;
    csv.setData(csvOfOwnWay());
    csv.open(QIODevice::ReadOnly);
    const Read readNative = [](const QString& fileName) { return readVtl(fileName, {}); };
    QTest::newRow("native JSON") << vtlText(readCsv(csv, QString()).value()) << Parse(parseWithSimdjson) << readNative;
}

void BenchReaders::intoAModel()
{
    QFETCH(QByteArray, content);
    QFETCH(Parse, parse);
    QFETCH(Read, read);
    const QString fileName = m_dir.filePath(QStringLiteral("content"));
    QFile file(fileName);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(content), content.size());
    file.close();

    std::vector<double> parsing;
    std::vector<double> reading;
    std::vector<double> preparing;
    std::vector<double> showing;
    // One after the other in each round, so that the ratios hold when the machine gets slower or faster.
    for (int round = 0; round < rounds; ++round) {
        std::vector<double> times{processorSeconds()};
        const auto lap = [&times] { times.push_back(processorSeconds()); };
        QVERIFY(parse(content) > 0);
        lap();
        Result<Document> result = read(fileName);
        lap();
        QVERIFY(result);
        PreparedDocument prepared(result.value());
        lap();
        StandardTimelineModel model;
        model.setDocument(std::move(prepared));
        lap();
        QVERIFY(model.rowCount() > 0);
        parsing.push_back(times[1] - times[0]);
        reading.push_back(times[2] - times[1]);
        preparing.push_back(times[3] - times[2]);
        showing.push_back(times[4] - times[3]);
    }
    const double megabytes = static_cast<double>(content.size()) / 1e6;
    const double whole = median(reading) + median(preparing) + median(showing);
    qInfo("%6.1f MB: parsing alone %6.1f MB/s, into a document %6.1f MB/s, into the model %6.1f MB/s (ms: %4.0f to "
          "read, %4.0f to prepare, %2.0f to show)",
          megabytes, megabytes / median(parsing), megabytes / median(reading), megabytes / whole, 1e3 * median(reading),
          1e3 * median(preparing), 1e3 * median(showing));
}

QTEST_GUILESS_MAIN(BenchReaders)
#include "bench_readers.moc"
