#include "autosave.h"

#include "recovery_dialog.h"

#include <VeskTimelineKit/standard_timeline_model.h>

#include <QCoreApplication>
#include <QDir>
#include <QStandardPaths>
#include <QThread>
#include <QUndoStack>

#include <algorithm>

namespace Workbench {

using namespace VeskTimeline::Kit;

namespace {

// Of this process and moment; several windows of a process may be made within one.
QString newJournalName(const QString& folder)
{
    static int count = 0;
    return QDir(folder).filePath(QStringLiteral("%1-%2-%3.journal")
                                     .arg(QDateTime::currentMSecsSinceEpoch())
                                     .arg(QCoreApplication::applicationPid())
                                     .arg(++count));
}

} // namespace

QString Autosave::defaultFolder()
{
    const QString folder = qEnvironmentVariable("VESKTIMELINE_AUTOSAVE_FOLDER");
    return !folder.isEmpty() ? folder
                             : QDir(QStandardPaths::writableLocation(QStandardPaths::AppDataLocation))
                                   .filePath(QStringLiteral("autosave"));
}

Autosave::Autosave(StandardTimelineModel& model, const QString& folder, const JournalOptions& options, QObject* parent)
    : QObject(parent),
      m_model(model),
      m_folder(folder),
      m_journal(model, newJournalName(folder), options),
      m_lock(journalLock(m_journal.fileName()))
{
    lockJournal();
    connect(&m_journal, &Journal::failed, this, &Autosave::failed);
    connect(&m_journal, &Journal::resumed, this, &Autosave::resumed);
    connect(&m_journal, &Journal::written, this, &Autosave::onWritten);
}

Autosave::~Autosave()
{
    stopReading();
    delete m_dialog;
}

// Where that does not work the journal will not either, and says so.
void Autosave::lockJournal()
{
    QDir().mkpath(m_folder);
    m_lock->tryLock(0);
}

RecoveryDialog* Autosave::dialog() const
{
    return m_dialog;
}

void Autosave::startFor(std::shared_ptr<const Document> base, const QStringList& fileNames)
{
    m_savingRevision.reset();
    // If it is not written elsewhere yet, it is offered again.
    m_recovered.reset();
    m_journal.start(std::move(base), fileNames);
}

void Autosave::saving()
{
    m_savingRevision = m_journal.revision();
}

void Autosave::unmodified()
{
    m_journal.markSaved(m_journal.revision());
}

void Autosave::documentSaved(const QString& fileName)
{
    if (!fileName.isEmpty())
        m_journal.setFileNames({fileName});
    m_journal.markSaved(m_savingRevision.value_or(m_journal.revision()));
    m_savingRevision.reset();
    // What was recovered is in a file of the user now.
    onWritten();
}

void Autosave::closed()
{
    m_journal.drop();
    onWritten();
}

void Autosave::onWritten()
{
    if (!m_lock->isLocked())
        lockJournal();
    if (m_recovered) {
        removeJournal(m_recovered->fileName);
        m_recovered.reset();
    }
}

void Autosave::offerOrphans(QWidget* parent)
{
    if (m_dialog) {
        m_dialog->raise();
        return;
    }
    // One that was read and then not wanted after all.
    m_recovering.reset();
    m_orphans = takeOrphans(m_folder);
    if (m_orphans.empty())
        return;
    m_dialog = new RecoveryDialog(m_orphans, parent);
    m_dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(m_dialog, &RecoveryDialog::recoverWanted, this, &Autosave::read);
    connect(m_dialog, &RecoveryDialog::discardWanted, this, &Autosave::discard);
    connect(m_dialog, &QDialog::finished, this, [this] {
        stopReading();
        // The locks are let go: later, or another window, offers them again.
        m_orphans.clear();
    });
    m_dialog->show();
}

std::vector<OrphanedJournal>::iterator Autosave::orphan(const QString& fileName)
{
    return std::find_if(m_orphans.begin(), m_orphans.end(),
                        [&fileName](const OrphanedJournal& other) { return other.fileName == fileName; });
}

void Autosave::discard(const QString& fileName)
{
    const auto found = orphan(fileName);
    if (found == m_orphans.end())
        return;
    if (!removeJournal(fileName)) {
        m_dialog->showError(tr("The journal cannot be removed: %1").arg(fileName));
        return;
    }
    m_orphans.erase(found);
    m_dialog->removeJournal(fileName);
}

void Autosave::read(const QString& fileName)
{
    stopReading();
    m_isReadingCancelled = false;
    m_dialog->setBusy(true);
    m_reader.reset(QThread::create([this, fileName] {
        ReadOptions options;
        options.progress = [this](double share) {
            QMetaObject::invokeMethod(
                this,
                [this, share] {
                    if (m_dialog)
                        m_dialog->setProgress(share);
                },
                Qt::QueuedConnection);
            return !m_isReadingCancelled;
        };
        Result<RecoveredJournal> read = readJournal(fileName, options);
        const auto result = std::make_shared<Result<Recovered>>(
            read ? Result<Recovered>(std::make_shared<const RecoveredJournal>(std::move(read.value())))
                 : Result<Recovered>(read.error()));
        QMetaObject::invokeMethod(
            this, [this, fileName, result] { onRead(fileName, result); }, Qt::QueuedConnection);
    }));
    m_reader->start();
}

void Autosave::stopReading()
{
    if (!m_reader)
        return;
    m_isReadingCancelled = true;
    m_reader->wait();
    m_reader.reset();
}

void Autosave::onRead(const QString& fileName, const std::shared_ptr<Result<Recovered>>& result)
{
    const auto found = orphan(fileName);
    if (m_isReadingCancelled || found == m_orphans.end() || !m_dialog)
        return;
    m_dialog->setBusy(false);
    if (!*result) {
        m_dialog->showError(result->error().text());
        return;
    }
    m_recovering = std::move(*found);
    m_orphans.erase(found);
    m_dialog->close();
    Q_EMIT documentRecovered(result->value());
}

void Autosave::startRecovered(const Recovered& recovered)
{
    m_savingRevision.reset();
    m_recovered = std::exchange(m_recovering, {});
    m_journal.start(std::shared_ptr<const Document>(recovered, &recovered->document), recovered->fileNames, true);
    for (auto copies = recovered->copyItemIds.cbegin(); copies != recovered->copyItemIds.cend(); ++copies)
        m_model.setCopyItemIds(copies.key(), copies.value());
    m_model.undoStack()->clear();
    m_model.undoStack()->resetClean();
}

} // namespace Workbench
