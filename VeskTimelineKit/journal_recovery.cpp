#include "journal_replay_p.h"
#include "json_record_p.h"

#include <VeskTimelineKit/journal_recovery.h>
#include <VeskTimelineKit/standard_timeline_model.h>

#include <QFile>
#include <QFileInfo>
#include <QUndoStack>

#include <algorithm>

namespace VeskTimeline::Kit {

void RecoveredJournal::showIn(StandardTimelineModel& model) const
{
    model.setDocument(document);
    for (auto copies = copyItemIds.cbegin(); copies != copyItemIds.cend(); ++copies)
        model.setCopyItemIds(copies.key(), copies.value());
    model.undoStack()->clear();
}

std::optional<JournalInfo> journalInfo(const QString& fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    JournalInfo info{{}, QFileInfo(file).lastModified(), false};
    std::optional<QByteArray> json = checkedJson(readJournalLine(file));
    JsonRecordParser parser;
    const std::optional<simdjson::dom::element> value = json ? parser.parse(*json) : std::nullopt;
    if (const std::optional<JournalHeader> header = value ? readHeader(*value) : std::nullopt)
        info.fileNames = header->fileNames;
    const QByteArray saved = savedLine();
    info.isSaved = file.seek(std::max<qint64>(0, file.size() - saved.size())) && file.readAll() == saved;
    return info;
}

Result<RecoveredJournal> readJournal(const QString& fileName, const ReadOptions& options)
{
    ReadProgress progress(options);
    JournalReplay replay(progress);
    try {
        if (const std::optional<QString> reason = replay.read(fileName))
            return FileError{fileName, 0, *reason};
    } catch (const ReadCancelled&) {
        return FileError{fileName, 0, cancelledReason()};
    }
    RecoveredJournal recovered;
    recovered.document = replay.state().takeDocument(recovered.copyItemIds);
    recovered.fileNames = replay.header().fileNames;
    if (replay.lastChange() != 0)
        recovered.lastChange = QDateTime::fromMSecsSinceEpoch(replay.lastChange());
    recovered.isSaved = replay.isSaved();
    recovered.changeCount = replay.changeCount();
    recovered.problems = replay.problems();
    return recovered;
}

bool removeJournal(const QString& fileName)
{
    // What a program that ended while it made the journal smaller has left.
    QFile::remove(fileName + QStringLiteral(".new"));
    const QStringList bases = journalBases(fileName);
    const bool isGone = !QFile::exists(fileName) || QFile::remove(fileName);
    return std::all_of(bases.begin(), bases.end(), [](const QString& base) { return QFile::remove(base); }) && isGone;
}

} // namespace VeskTimeline::Kit
