#include "journal_replay_p.h"
#include "journal_writer_p.h"

#include <QFileInfo>

#include <algorithm>

namespace VeskTimeline::Kit {

namespace {

bool writeState(const JournalState& state, const QString& fileName, const std::atomic<bool>& isCancelled)
{
    constexpr qsizetype enough = 256 * 1024;
    JournalFile file;
    bool isWritten = file.create(fileName);
    QByteArray lines;
    state.forEachRecord([&](const QByteArray& json) {
        lines += journalLine(json);
        if (lines.size() < enough || !isWritten)
            return;
        isWritten = !isCancelled && file.append(lines);
        lines.clear();
    });
    isWritten = isWritten && !isCancelled && file.append(lines + endLine()) && file.sync();
    if (!isWritten)
        file.remove();
    return isWritten;
}

} // namespace

bool JournalWriter::isCompactionDue() const
{
    return m_isBaseComplete && !m_compaction.valid() &&
           m_journal.size() >
               std::max({m_options.compactionFloor, m_options.compactionFactor * m_baseSize, m_compactAt});
}

// In a thread of its own: changes are written meanwhile, to the journal that there is, and are copied in the end.
void JournalWriter::startCompaction()
{
    m_isCompactionCancelled = false;
    m_compactedBase = nextBaseName();
    m_compaction = std::async(std::launch::async, [this, name = m_compactedBase, upTo = m_journal.size()] {
        ReadOptions options;
        options.progress = [this](double) { return !m_isCompactionCancelled; };
        ReadProgress progress(options);
        JournalReplay replay(progress);
        bool isWritten = false;
        try {
            // What cannot be read back now must not be thrown away.
            isWritten = !replay.read(m_fileName, upTo) && replay.problems().isEmpty() &&
                        writeState(replay.state(), name, m_isCompactionCancelled);
        } catch (const ReadCancelled&) {
            isWritten = false;
        }
        QMetaObject::invokeMethod(
            this, [this, name, upTo, isWritten] { finishCompaction(name, upTo, isWritten); }, Qt::QueuedConnection);
    });
}

void JournalWriter::finishCompaction(const QString& newBase, qint64 upTo, bool isWritten)
{
    // Meanwhile everything may have been dropped, and this said of a compaction that is no more.
    if (!m_compaction.valid() || newBase != m_compactedBase)
        return;
    m_compaction.get();
    if (isWritten && !isLost() && replaceJournal(newBase, upTo))
        return;
    QFile::remove(newBase);
    m_compactAt = 2 * m_journal.size();
}

// A new head, and what is behind a place in the old one.
bool JournalWriter::rewriteJournal(const QString& base, qint64 from)
{
    QFile old(m_fileName);
    if (!old.open(QIODevice::ReadOnly) || !old.seek(from))
        return false;
    const QByteArray later = old.read(m_journal.size() - from);
    const QString newName = m_fileName + QStringLiteral(".new");
    JournalFile journal;
    const bool isReplaced = later.size() == m_journal.size() - from && journal.create(newName) &&
                            journal.append(headerLine({m_fileNames, QFileInfo(base).fileName()}) + later) &&
                            journal.sync() && replaceFile(m_fileName, newName);
    if (!isReplaced)
        journal.remove();
    journal.close();
    return isReplaced;
}

bool JournalWriter::replaceJournal(const QString& newBase, qint64 upTo)
{
    if (!rewriteJournal(newBase, upTo))
        return false;
    m_baseFile.remove();
    m_baseFile.open(newBase);
    m_baseSize = m_baseFile.size();
    m_baseFile.close();
    m_compactAt = 0;
    // When it cannot be opened, the next change finds that something is missing, and all is written anew.
    if (!m_journal.open(m_fileName))
        m_baseFile.remove();
    return true;
}

void JournalWriter::setFileNames(const QStringList& fileNames)
{
    if (m_fileNames == fileNames)
        return;
    m_fileNames = fileNames;
    QFile old(m_fileName);
    if (!m_journal.isOpen() || isLost() || !old.open(QIODevice::ReadOnly))
        return;
    // It reads the journal by places in it, which are others then. The next change starts it anew.
    stopCompaction();
    const qint64 headSize = readJournalLine(old).size();
    if (rewriteJournal(m_baseFile.fileName(), headSize) && !m_journal.open(m_fileName))
        Q_EMIT lost(m_generation);
}

void JournalWriter::stopCompaction()
{
    if (!m_compaction.valid())
        return;
    m_isCompactionCancelled = true;
    m_compaction.get();
    QFile::remove(m_compactedBase);
}

} // namespace VeskTimeline::Kit
