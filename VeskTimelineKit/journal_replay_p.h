#pragma once

// Internal to the kit; not installed.

#include "journal_state_p.h"
#include "read_progress_p.h"

#include <QStringList>

class QFile;

namespace VeskTimeline::Kit {

class JsonRecordParser;

/// Puts together what a journal and its base say, as far as they can be read.
///
/// A line that is damaged ends the journal, whose later changes may depend on it; of a base only that line is lost.
/// Changes count when they are whole. The operations throw ReadCancelled.
class JournalReplay
{
public:
    explicit JournalReplay(ReadProgress& progress) : m_progress(progress) {}

    /// @param upTo only that many bytes of the journal; -1: all of them
    /// @return the reason when nothing at all can be read
    std::optional<QString> read(const QString& fileName, qint64 upTo = -1);

    JournalState& state() { return m_state; }
    const JournalHeader& header() const { return m_header; }
    /// Changes that count.
    int changeCount() const { return m_changeCount; }
    /// Of the last change, milliseconds since the epoch; 0 when there is none.
    qint64 lastChange() const { return m_lastChange; }
    /// Whether the document was saved after the last change.
    bool isSaved() const { return m_isSaved; }
    /// What could not be read, in sentences for the user.
    const QStringList& problems() const { return m_problems; }

private:
    bool readHeaderLine(QFile& file);
    void readBase(const QString& fileName);
    bool readBaseLine(const QByteArray& line, JsonRecordParser& parser, JournalDelta& delta);
    void readChanges(QFile& file, qint64 end);
    void reportProgress(const QFile& file, double from, double to);

    ReadProgress& m_progress;
    JournalState m_state;
    JournalHeader m_header;
    int m_changeCount = 0;
    qint64 m_lastChange = 0;
    bool m_isSaved = false;
    bool m_isBaseComplete = false;
    QStringList m_problems;
};

/// The base files of a journal, the newest last.
QStringList journalBases(const QString& fileName);

} // namespace VeskTimeline::Kit
