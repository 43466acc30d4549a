#pragma once

#include "autosave_orphans.h"

#include <VeskTimelineKit/journal.h>
#include <VeskTimelineKit/journal_recovery.h>
#include <VeskTimelineKit/result.h>

#include <QObject>
#include <QPointer>

#include <atomic>

class QThread;
class QWidget;

namespace Workbench {

class RecoveryDialog;

/// Keeps the changes of one window in a journal, and offers those that a crash has left behind.
///
/// The journal of a window has a name of its own in the folder of all, and a lock, by which others see that its program
/// is running.
class Autosave : public QObject
{
    Q_OBJECT

public:
    using Recovered = std::shared_ptr<const VeskTimeline::Kit::RecoveredJournal>;

    /// @param model must outlive this object
    /// @param folder made when needed
    explicit Autosave(VeskTimeline::Kit::StandardTimelineModel& model, const QString& folder = defaultFolder(),
                      const VeskTimeline::Kit::JournalOptions& options = {}, QObject* parent = nullptr);
    ~Autosave() override;

    /// "autosave" in the user's folder for the program's data, or what VESKTIMELINE_AUTOSAVE_FOLDER says.
    static QString defaultFolder();

    /// Of this window; it is there from the first change on.
    QString journalName() const { return m_journal.fileName(); }
    /// The dialog with what can be recovered; null when there is none.
    RecoveryDialog* dialog() const;

public Q_SLOTS:
    /// The window shows another document. @param base what the model was filled with, see Journal::start()
    void startFor(std::shared_ptr<const VeskTimeline::Kit::Document> base, const QStringList& fileNames);
    /// The document is about to be written to a file as it is now.
    void saving();
    /// The document is again as it is in its files, as when all has been undone: there is nothing to recover.
    void unmodified();
    /// It is in the file now, as it was at saving(), or else as it is.
    /// @param fileName the file that the document belongs to from now on; empty: the same as before
    void documentSaved(const QString& fileName = {});
    /// The window is closed, and the user wants nothing of what has not been saved.
    void closed();

    /// Asks what is to become of the journals that others have left, without waiting for the answer. Does nothing when
    /// there are none.
    void offerOrphans(QWidget* parent);
    /// To be called when the model has been filled with the document of documentRecovered(): brings back the rest,
    /// tells the undo stack that the document is in no file, and keeps it in this window's journal from now on. The
    /// journal that it came from goes once that is written.
    void startRecovered(const Recovered& recovered);

Q_SIGNALS:
    /// The user wants this document back. Whoever shows it fills the model with it and calls startRecovered(). When
    /// nobody does, its journal is offered again.
    void documentRecovered(const Workbench::Autosave::Recovered& recovered);
    /// See Journal.
    void failed(const QString& reason);
    void resumed();

private:
    void lockJournal();
    void read(const QString& fileName);
    void onRead(const QString& fileName, const std::shared_ptr<VeskTimeline::Kit::Result<Recovered>>& result);
    void discard(const QString& fileName);
    void stopReading();
    std::vector<OrphanedJournal>::iterator orphan(const QString& fileName);
    void onWritten();

    VeskTimeline::Kit::StandardTimelineModel& m_model;
    const QString m_folder;
    VeskTimeline::Kit::Journal m_journal;
    std::unique_ptr<QLockFile> m_lock;
    std::optional<quint64> m_savingRevision;
    std::vector<OrphanedJournal> m_orphans;      ///< that are offered
    std::optional<OrphanedJournal> m_recovering; ///< that is going to be shown
    std::optional<OrphanedJournal> m_recovered;  ///< that is shown, until it is written elsewhere
    QPointer<RecoveryDialog> m_dialog;
    std::unique_ptr<QThread> m_reader;
    std::atomic<bool> m_isReadingCancelled = false;
};

} // namespace Workbench
