#include "journal_replay_p.h"
#include "json_record_p.h"
#include "kit_tr_p.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>

namespace VeskTimeline::Kit {

namespace {

// Opening is worth most of the time when the base is much longer than the journal, which is the rule.
constexpr double baseShare = 0.8;

std::optional<JournalHeader> parseHeader(QFile& file)
{
    std::optional<QByteArray> json = checkedJson(readJournalLine(file));
    JsonRecordParser parser;
    const std::optional<simdjson::dom::element> value = json ? parser.parse(*json) : std::nullopt;
    return value ? readHeader(*value) : std::nullopt;
}

} // namespace

QStringList journalBases(const QString& fileName)
{
    const QFileInfo info(fileName);
    QFileInfoList files = info.dir().entryInfoList({info.fileName() + QStringLiteral(".*.base")}, QDir::Files);
    std::sort(files.begin(), files.end(), [](const QFileInfo& left, const QFileInfo& right) {
        return std::pair(left.lastModified(), left.filePath()) < std::pair(right.lastModified(), right.filePath());
    });
    QStringList names;
    for (const QFileInfo& file : files)
        names.append(file.filePath());
    return names;
}

std::optional<QString> JournalReplay::read(const QString& fileName, qint64 upTo)
{
    QFile file(fileName);
    const bool isOpen = file.open(QIODevice::ReadOnly);
    const std::optional<JournalHeader> header = isOpen ? parseHeader(file) : std::nullopt;
    const QStringList bases = journalBases(fileName);
    if (!header && bases.isEmpty())
        return isOpen ? Tr::tr("it is no journal, or of a newer version") : file.errorString();
    if (header) {
        m_header = *header;
        readBase(QFileInfo(fileName).dir().filePath(QFileInfo(header->base).fileName()));
        readChanges(file, upTo);
    } else {
        m_problems.append(Tr::tr("The journal of the changes cannot be read: this is the document without them."));
        readBase(bases.last());
    }
    return std::nullopt;
}

void JournalReplay::reportProgress(const QFile& file, double from, double to)
{
    const double share = file.size() > 0 ? static_cast<double>(file.pos()) / static_cast<double>(file.size()) : 1.0;
    m_progress.reportSometimes(from + std::clamp(share, 0.0, 1.0) * (to - from));
}

void JournalReplay::readBase(const QString& fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly)) {
        m_problems.append(Tr::tr("The document as it was before the changes is missing: only what has been changed is "
                                 "here."));
        return;
    }
    // Many at a time, since each change has its price; and not all, since that would be a second copy of everything.
    constexpr std::size_t enough = 1000;
    JsonRecordParser parser;
    JournalDelta delta;
    int damaged = 0;
    while (!file.atEnd()) {
        reportProgress(file, 0.0, baseShare);
        if (!readBaseLine(readJournalLine(file), parser, delta))
            ++damaged;
        if (delta.items.size() >= enough)
            m_state.apply(std::exchange(delta, {}));
    }
    m_state.apply(std::move(delta));
    if (damaged > 0)
        m_problems.append(damaged == 1 ? Tr::tr("An item or track cannot be read.")
                                       : Tr::tr("%n items or tracks cannot be read.", nullptr, damaged));
    if (!m_isBaseComplete)
        m_problems.append(Tr::tr("The program ended before the whole document was in the journal: what had not been "
                                 "changed may be missing here, and is still in the file that it was opened from."));
}

bool JournalReplay::readBaseLine(const QByteArray& line, JsonRecordParser& parser, JournalDelta& delta)
{
    std::optional<QByteArray> json = checkedJson(line);
    const std::optional<simdjson::dom::element> value = json ? parser.parse(*json) : std::nullopt;
    if (!value)
        return false;
    try {
        qint64 time = 0;
        m_isBaseComplete = readRecord(*value, delta, time) == JournalMark::End;
    } catch (const QString&) {
        return false;
    }
    return true;
}

void JournalReplay::readChanges(QFile& file, qint64 end)
{
    const auto isDone = [&file, end] { return file.atEnd() || (end >= 0 && file.pos() >= end); };
    JsonRecordParser parser;
    JournalDelta delta;
    bool isWhole = true;
    while (isWhole && !isDone()) {
        reportProgress(file, baseShare, 1.0);
        std::optional<QByteArray> json = checkedJson(readJournalLine(file));
        const std::optional<simdjson::dom::element> value = json ? parser.parse(*json) : std::nullopt;
        isWhole = value.has_value();
        if (!isWhole)
            break;
        try {
            const JournalMark mark = readRecord(*value, delta, m_lastChange);
            if (mark == JournalMark::Saved)
                m_isSaved = true;
            if (mark != JournalMark::Commit)
                continue;
            m_isSaved = false;
            ++m_changeCount;
            m_state.apply(std::exchange(delta, {}));
        } catch (const QString&) {
            isWhole = false;
        }
    }
    const bool isCutOff = isWhole ? !delta.isEmpty() : isDone();
    if (isCutOff)
        m_problems.append(Tr::tr("The last change was not written to its end and is lost."));
    else if (!isWhole)
        m_problems.append(
            Tr::tr("The journal is damaged: what was changed after its %n. change is lost.", nullptr, m_changeCount));
}

} // namespace VeskTimeline::Kit
