#include "journal_replay_p.h"
#include "journal_writer_p.h"

#include <VeskTimelineKit/journal_recovery.h>

#include <QFileInfo>

#include <algorithm>

namespace VeskTimeline::Kit {

JournalWriter::JournalWriter(const QString& fileName, const JournalOptions& options)
    : m_fileName(fileName), m_options(options), m_baseTimer(this)
{
    m_baseTimer.setSingleShot(true);
    connect(&m_baseTimer, &QTimer::timeout, this, &JournalWriter::continueBase);
}

JournalWriter::~JournalWriter()
{
    stopCompaction();
}

void JournalWriter::start(int generation, const std::shared_ptr<const JournalBase>& base, const QStringList& fileNames)
{
    drop();
    m_generation = generation;
    m_fileNames = fileNames;
    m_base = base;
    m_baseTimer.start(0);
}

QString JournalWriter::nextBaseName()
{
    return QStringLiteral("%1.%2.base").arg(m_fileName).arg(++m_baseNumber);
}

void JournalWriter::drop()
{
    stopCompaction();
    m_baseTimer.stop();
    m_baseLines.reset();
    m_base.reset();
    m_isBaseComplete = false;
    m_compactAt = 0;
    const bool hasWritten = m_journal.isOpen() || !m_baseFile.fileName().isEmpty();
    m_journal.close();
    m_baseFile.remove();
    if (hasWritten)
        removeJournal(m_fileName);
}

bool JournalWriter::isLost() const
{
    return (m_journal.isOpen() && !m_journal.exists()) || (m_isBaseComplete && !m_baseFile.exists());
}

bool JournalWriter::writeText(const QByteArray& text)
{
    if (m_journal.isOpen())
        return m_journal.append(text) && m_journal.sync();
    // The base may not be there yet; once its name is known, it will be.
    if (m_base && !m_baseLines)
        startBase();
    const JournalHeader header{m_fileNames, QFileInfo(m_baseFile.fileName()).fileName()};
    if (!m_journal.create(m_fileName))
        return false;
    if (m_journal.append(headerLine(header) + text) && m_journal.sync())
        return true;
    m_journal.remove();
    return false;
}

void JournalWriter::append(const JournalDelta& delta, qint64 time)
{
    if (isLost()) {
        Q_EMIT lost(m_generation);
        return;
    }
    if (!writeText(deltaLines(delta) + commitLine(time))) {
        Q_EMIT rejected(m_generation, m_journal.errorReason());
        return;
    }
    Q_EMIT appended(m_generation);
    if (isCompactionDue())
        startCompaction();
}

void JournalWriter::markSaved()
{
    // When it cannot be written, what is already in a file is offered once more, which does no harm.
    if (m_journal.isOpen())
        writeText(savedLine());
}

void JournalWriter::startBase()
{
    m_baseLines = std::make_unique<JournalBaseLines>(m_base);
    m_baseSize = 0;
    m_unsynced = 0;
    if (!m_baseFile.create(nextBaseName()))
        failBase(m_baseFile.errorReason());
}

void JournalWriter::continueBase()
{
    if (!m_base)
        return;
    if (!m_baseLines)
        startBase();
    else if (!m_baseFile.isOpen() && !m_baseFile.create(m_baseFile.fileName()))
        failBase(m_baseFile.errorReason());
    if (!m_baseFile.isOpen())
        return;
    if (!writeBaseLines()) {
        failBase(m_baseFile.errorReason());
        return;
    }
    if (!m_baseLines->isDone()) {
        m_baseTimer.start(0);
        return;
    }
    m_isBaseComplete = true;
    m_baseFile.close();
    m_baseLines.reset();
    m_base.reset();
    Q_EMIT baseWritten(m_generation);
}

bool JournalWriter::writeBaseLines()
{
    // Little enough for a slow disk to be done with soon, since changes wait for it.
    constexpr qint64 mostUnsynced = 4 * 1024 * 1024;
    const QByteArray lines = m_baseLines->next();
    if (!m_baseFile.append(lines))
        return false;
    m_baseSize += lines.size();
    m_unsynced += lines.size();
    if (m_unsynced < mostUnsynced && !m_baseLines->isDone())
        return true;
    m_unsynced = 0;
    return m_baseFile.sync();
}

// All over again, under the same name, which the journal may tell already.
void JournalWriter::failBase(const QString& reason)
{
    m_baseFile.remove();
    m_baseLines = std::make_unique<JournalBaseLines>(m_base);
    m_baseSize = 0;
    m_baseTimer.start(m_options.retryInterval);
    Q_EMIT baseFailed(m_generation, reason);
}

void JournalWriter::finish()
{
    while (m_base) {
        m_baseTimer.stop();
        continueBase();
        // Not written, and there is no other attempt.
        if (m_base && !m_baseFile.isOpen())
            return;
    }
}

} // namespace VeskTimeline::Kit
