#pragma once

// Internal to the kit; not installed.

#include "journal_base_p.h"
#include "journal_file_p.h"

#include <VeskTimelineKit/journal.h>

#include <QTimer>

#include <atomic>
#include <future>

namespace VeskTimeline::Kit {

/// The part of a Journal that lives in its thread and writes.
///
/// Base and changes are written in turns, so that no change waits for a large base. Each start begins a generation;
/// what is said about an earlier one is out of date.
class JournalWriter : public QObject
{
    Q_OBJECT

public:
    JournalWriter(const QString& fileName, const JournalOptions& options);
    ~JournalWriter() override;

    void start(int generation, const std::shared_ptr<const JournalBase>& base, const QStringList& fileNames);
    void append(const JournalDelta& delta, qint64 time);
    void markSaved();
    /// When they cannot be written, whoever recovers the journal is told the old ones.
    void setFileNames(const QStringList& fileNames);
    void drop();
    /// Writes the rest of the base, without turns.
    void finish();

Q_SIGNALS:
    void appended(int generation);
    void rejected(int generation, const QString& reason);
    void baseWritten(int generation);
    void baseFailed(int generation, const QString& reason);
    /// The files have been removed by somebody.
    void lost(int generation);

private:
    bool isLost() const;
    bool writeText(const QByteArray& text);
    QString nextBaseName();
    void startBase();
    void continueBase();
    bool writeBaseLines();
    void failBase(const QString& reason);
    bool isCompactionDue() const;
    void startCompaction();
    void finishCompaction(const QString& newBase, qint64 upTo, bool isWritten);
    bool rewriteJournal(const QString& base, qint64 from);
    bool replaceJournal(const QString& newBase, qint64 upTo);
    void stopCompaction();

    const QString m_fileName;
    const JournalOptions m_options;
    int m_generation = 0;
    QStringList m_fileNames;
    JournalFile m_journal;
    JournalFile m_baseFile;
    int m_baseNumber = 0;
    qint64 m_baseSize = 0;
    qint64 m_unsynced = 0;
    bool m_isBaseComplete = false;
    std::shared_ptr<const JournalBase> m_base; ///< until it is written
    std::unique_ptr<JournalBaseLines> m_baseLines;
    QTimer m_baseTimer; ///< for the next turn, or the next attempt
    qint64 m_compactAt = 0;
    std::future<void> m_compaction; ///< valid while one is under way
    QString m_compactedBase;        ///< that it writes
    std::atomic<bool> m_isCompactionCancelled = false;
};

} // namespace VeskTimeline::Kit
