#include "bounded_line_p.h"
#include "byte_packing_p.h"
#include "kit_tr_p.h"
#include "lane_packer_p.h"
#include "quoted_text_p.h"
#include "read_file_p.h"
#include "read_progress_p.h"
#include "time_limits_p.h"

#include <VeskTimelineKit/ninja_log_reader.h>
#include <VeskTimelineKit/warnings.h>

#include <QIODevice>
#include <QSet>

#include <algorithm>
#include <iterator>
#include <optional>

namespace VeskTimeline::Kit {

namespace {

constexpr char firstWords[] = "# ninja log v";
constexpr int oldestVersion = 4;
constexpr int newestVersion = 7;
constexpr int firstVersionWithHashes = 5;
constexpr qint64 longestLine = 4 * 1024 * 1024;
constexpr int mostLanes = 10'000;

/// A line of the log: an output of a step. A log may have a million, and as values the texts of each would take several
/// times as much as they are long.
struct BuildStep
{
    int start = 0; ///< milliseconds since the build's start, as the end
    int end = 0;
    const char* texts = nullptr; ///< packed: the output as a text, the command and the time of the file as bytes

    /// Of two steps the same bytes if they are the same output.
    std::string_view packedOutput() const { return PackedBytes(texts).bytesOfText(); }
    std::string_view command() const
    {
        PackedBytes bytes(texts);
        static_cast<void>(bytes.bytesOfText());
        return bytes.bytes();
    }
};

bool isEarlier(const BuildStep& a, const BuildStep& b)
{
    if (a.start != b.start)
        return a.start < b.start;
    return a.end != b.end ? a.end > b.end : a.command() < b.command();
}

/// Whether they are outputs of one step.
bool isSameStep(const BuildStep& a, const BuildStep& b)
{
    return a.start == b.start && a.end == b.end && a.command() == b.command();
}

QByteArrayView bytesView(std::string_view bytes)
{
    return {bytes.data(), static_cast<qsizetype>(bytes.size())};
}

/// Makes a document of the lines of a log.
class NinjaDocumentBuilder
{
public:
    explicit NinjaDocumentBuilder(const QString& fileName) : m_remarks(fileName), m_warnings(fileName) {}

    /// @throws QString the reason why this is no log that can be read
    void readFirstLine(const QByteArray& line);
    void readLine(const QByteArray& line, int number);
    void warn(int line, const QString& text) { m_warnings.add(line, text); }
    /// @throws ReadCancelled
    Document takeDocument(ReadProgress& progress);

private:
    using Build = std::vector<BuildStep>;
    using Outputs = QSet<QByteArrayView>;

    BuildStep stepOf(const QByteArray& line, int number);
    BuildStep packed(int start, int end, const QList<QByteArray>& fields, int number);
    void joinUnorderedBuilds();
    void addBuild(Build build, const QStringList& parent, ReadProgress& progress);
    static void sort(Build& build, ReadProgress& progress);
    DocumentItem itemOf(Build::const_iterator step, Build::const_iterator end);

    int m_version = 0;
    std::vector<Build> m_builds;
    qint64 m_lastEnd = 0;
    Outputs m_outputsOfBuild; // the one being read
    ByteArena m_arena;
    BytePacker m_packer;
    SharedTexts m_texts;
    qint64 m_offset = 0;
    int m_tooMany = 0;
    int m_outside = 0;
    Document m_document;
    WarningList m_remarks; // of the file as a whole
    WarningList m_warnings;
};

void NinjaDocumentBuilder::readFirstLine(const QByteArray& line)
{
    if (!line.startsWith(firstWords))
        throw Tr::tr("not a build log: it does not start with \"%1\"").arg(QLatin1String(firstWords));
    bool isNumber = false;
    m_version = line.mid(static_cast<qsizetype>(sizeof firstWords) - 1).trimmed().toInt(&isNumber);
    if (!isNumber)
        throw Tr::tr("the version is no number");
    if (m_version < oldestVersion)
        throw Tr::tr("version %1 of the log is too old; the oldest that can be read is %2")
            .arg(m_version)
            .arg(oldestVersion);
    if (m_version > newestVersion)
        m_remarks.add(
            1,
            Tr::tr("version %1 of the log is not known and is read like version %2").arg(m_version).arg(newestVersion));
}

BuildStep NinjaDocumentBuilder::stepOf(const QByteArray& line, int number)
{
    QList<QByteArray> fields = line.split('\t');
    // A command may hold tabs; a hash does not.
    if (m_version < firstVersionWithHashes && fields.size() > 5)
        fields = fields.mid(0, 4) << fields.mid(4).join('\t');
    if (fields.size() != 5)
        throw Tr::tr("the number of its fields is %1 instead of 5").arg(fields.size());
    bool isStart = false;
    bool isEnd = false;
    const int start = fields.at(0).toInt(&isStart);
    const int end = fields.at(1).toInt(&isEnd);
    if (!isStart || !isEnd || start < 0)
        throw Tr::tr("its times are no numbers of milliseconds, or out of range");
    if (end < start)
        throw Tr::tr("its end is before its start");
    if (fields.at(3).isEmpty())
        throw Tr::tr("it names no output");
    return packed(start, end, fields, number);
}

BuildStep NinjaDocumentBuilder::packed(int start, int end, const QList<QByteArray>& fields, int number)
{
    const QString output = QString::fromUtf8(fields.at(3));
    if (output.contains(QChar::ReplacementCharacter))
        m_warnings.add(number, Tr::tr("bytes that are not UTF-8 are replaced"));
    m_packer.clear();
    m_packer.putText(output);
    m_packer.putBytes(fields.at(4));
    m_packer.putBytes(fields.at(2));
    return {start, end, m_arena.copy(m_packer.bytes()).data()};
}

void NinjaDocumentBuilder::readLine(const QByteArray& line, int number)
{
    if (line.isEmpty() || line.startsWith('#'))
        return;
    try {
        const BuildStep step = stepOf(line, number);
        const QByteArrayView output = bytesView(step.packedOutput());
        // Steps are logged as they end, and a build makes each output once.
        if (m_builds.empty() || step.end < m_lastEnd || m_outputsOfBuild.contains(output)) {
            m_builds.emplace_back();
            m_outputsOfBuild.clear();
        }
        m_lastEnd = step.end;
        m_outputsOfBuild.insert(output);
        m_builds.back().push_back(step);
    } catch (const QString& reason) {
        m_warnings.add(number, Tr::tr("the line is left out: %1").arg(reason));
    }
}

// By time, with the outputs of one step together.
void NinjaDocumentBuilder::sort(Build& build, ReadProgress& progress)
{
    std::stable_sort(build.begin(), build.end(), [&progress](const BuildStep& a, const BuildStep& b) {
        progress.reportSometimes(0.5);
        return isEarlier(a, b);
    });
}

/// @param step the first of the outputs of one step
/// @param end behind the last of them
DocumentItem NinjaDocumentBuilder::itemOf(Build::const_iterator step, Build::const_iterator end)
{
    DocumentItem item;
    item.start = m_offset + step->start;
    item.duration = step->end - step->start;
    PackedBytes bytes(step->texts);
    item.label = bytes.text(m_texts);
    item.attributes.insert(m_version < firstVersionWithHashes ? QStringLiteral("command")
                                                              : QStringLiteral("command hash"),
                           m_texts.shared(bytes.bytes()));
    item.attributes.insert(QStringLiteral("modified"), m_texts.shared(bytes.bytes()));
    item.description = item.label;
    for (auto other = step + 1; other != end; ++other)
        item.description += u'\n' + PackedBytes(other->texts).text(m_texts);
    return item;
}

void NinjaDocumentBuilder::addBuild(Build build, const QStringList& parent, ReadProgress& progress)
{
    sort(build, progress);
    LanePacker packer;
    std::vector<std::vector<DocumentItem>> lanes;
    qint64 buildEnd = 0;
    for (auto step = build.cbegin(), next = step; step != build.cend(); step = next) {
        progress.reportSometimes(0.5);
        next =
            std::find_if_not(step, build.cend(), [step](const BuildStep& other) { return isSameStep(*step, other); });
        buildEnd = std::max<qint64>(buildEnd, step->end);
        const auto lane = static_cast<std::size_t>(packer.place(step->start, step->end));
        if (lane >= mostLanes || m_document.tracks().size() + lane >= Document::mostTracks) {
            ++m_tooMany;
        } else if (!isWithinTimeLimits(m_offset + step->end)) {
            ++m_outside;
        } else {
            lanes.resize(std::max(lanes.size(), lane + 1));
            lanes[lane].push_back(itemOf(step, next));
        }
    }
    for (std::size_t lane = 0; lane < lanes.size(); ++lane)
        m_document.track(parent + QStringList{Tr::tr("lane %1").arg(lane + 1)}).items = std::move(lanes[lane]);
    m_offset += buildEnd;
}

// A log that was written anew has each output once and its lines in no order: nothing in it tells builds apart.
void NinjaDocumentBuilder::joinUnorderedBuilds()
{
    constexpr std::size_t fewestSteps = 20; // by which an order can be told from none
    constexpr std::size_t stepsOfBuild = 4; // on average; a log in order has more
    std::size_t count = 0;
    Outputs outputs;
    for (const Build& build : m_builds) {
        for (const BuildStep& step : build) {
            ++count;
            outputs.insert(bytesView(step.packedOutput()));
        }
    }
    const bool isInOrder = m_builds.size() < 2 || count < fewestSteps || m_builds.size() * stepsOfBuild < count;
    if (isInOrder || static_cast<std::size_t>(outputs.size()) < count)
        return;
    for (std::size_t i = 1; i < m_builds.size(); ++i)
        std::move(m_builds[i].begin(), m_builds[i].end(), std::back_inserter(m_builds.front()));
    m_builds.resize(1);
    m_remarks.add(0, Tr::tr("the lines of the log are in no order: if it is of several builds, they are shown as one"));
}

Document NinjaDocumentBuilder::takeDocument(ReadProgress& progress)
{
    m_outputsOfBuild = {};
    joinUnorderedBuilds();
    if (m_builds.size() > 1)
        m_remarks.add(0, Tr::tr("the log is of %1 builds, which are shown one after the other").arg(m_builds.size()));
    for (std::size_t i = 0; i < m_builds.size(); ++i) {
        const QStringList parent = m_builds.size() > 1 ? QStringList{Tr::tr("build %1").arg(i + 1)} : QStringList();
        addBuild(std::move(m_builds[i]), parent, progress);
    }
    if (m_tooMany > 0)
        m_remarks.add(0, Tr::tr("items left out because there would be too many tracks: %1").arg(m_tooMany));
    if (m_outside > 0)
        m_remarks.add(0, Tr::tr("items left out because they are outside the years 1 to 9999: %1").arg(m_outside));
    m_remarks.addTo(m_document);
    m_warnings.addTo(m_document);
    return std::move(m_document);
}

struct LogLine
{
    QByteArray text; ///< without what ends it
    bool isTooLong = false;
};

/// Nothing at the end. Of a line that is longer than any log has, the rest is passed over.
std::optional<LogLine> nextLine(QIODevice& device)
{
    LogLine line{readBoundedLine(device, longestLine)};
    if (line.text.isEmpty())
        return std::nullopt;
    line.isTooLong = line.text.size() >= longestLine - 1 && !line.text.endsWith('\n');
    for (QByteArray rest = line.text; line.isTooLong && !rest.isEmpty() && !rest.endsWith('\n');)
        rest = readBoundedLine(device, longestLine);
    while (line.text.endsWith('\n') || line.text.endsWith('\r'))
        line.text.chop(1);
    return line;
}

void readLines(QIODevice& device, NinjaDocumentBuilder& builder, ReadProgress& progress, int& number)
{
    builder.readFirstLine(nextLine(device).value_or(LogLine()).text);
    const auto size = static_cast<double>(std::max<qint64>(device.size(), 1));
    while (const std::optional<LogLine> line = nextLine(device)) {
        ++number;
        if (line->isTooLong)
            builder.warn(number, Tr::tr("the line is left out: it is longer than %1 bytes").arg(longestLine));
        else
            builder.readLine(line->text, number);
        progress.report(static_cast<double>(device.pos()) / size);
    }
}

} // namespace

Result<Document> readNinjaLog(QIODevice& device, const QString& fileName, const ReadOptions& options)
{
    ReadProgress progress(options);
    NinjaDocumentBuilder builder(fileName);
    int line = 1;
    try {
        progress.report(0.0);
        progress.setPart(0.0, 0.8);
        readLines(device, builder, progress, line);
        progress.setPart(0.8, 1.0);
        return builder.takeDocument(progress);
    } catch (const QString& reason) {
        return FileError{fileName, line, reason};
    } catch (const ReadCancelled&) {
        return FileError{fileName, 0, cancelledReason()};
    }
}

Result<Document> readNinjaLog(const QString& fileName, const ReadOptions& options)
{
    return readFile(fileName, [&](QIODevice& device) { return readNinjaLog(device, fileName, options); });
}

} // namespace VeskTimeline::Kit
