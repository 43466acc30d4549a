#include "file_session.h"

#include <VeskTimelineKit/document_format.h>
#include <VeskTimelineKit/standard_timeline_model.h>

#include <QFileInfo>
#include <QPushButton>
#include <QUndoStack>

namespace Workbench {

using namespace VeskTimeline::Kit;

void FileSession::createSaver()
{
    connect(&m_snapshot, &DocumentSnapshot::taken, this, &FileSession::writeSnapshot);
    connect(&m_snapshot, &DocumentSnapshot::cancelled, this, &FileSession::giveUpSaving);
    connect(&m_saver, &DocumentSaver::progressChanged, this, [this](double share) {
        Q_EMIT workProgressed(share, tr("Writing %1").arg(QFileInfo(m_savingName).fileName()));
    });
    connect(&m_saver, &DocumentSaver::saved, this, &FileSession::takeSaved);
    connect(&m_saver, &DocumentSaver::cancelled, this, &FileSession::giveUpSaving);
    connect(&m_saver, &DocumentSaver::failed, this, [this](const FileError& error) {
        giveUpSaving();
        const FileQuestion message{"saveFailed", tr("“%1” could not be written.").arg(QFileInfo(error.file).fileName()),
                                   tr("%1\nNothing has changed in the file.").arg(error.text()), QMessageBox::Warning};
        openMessage(m_window, message, QMessageBox::Ok, QMessageBox::Ok);
    });
}

void FileSession::save()
{
    const QString fileName = nativeFileName();
    if (fileName.isEmpty()) {
        askForNameToSave();
        return;
    }
    if (!m_watch.hasChanged(fileName) || !QFileInfo::exists(fileName)) {
        write(fileName, nativeFormat(), false);
        return;
    }
    const FileQuestion question{
        "fileChangedBeforeSave",
        tr("“%1” has been changed by another program. Overwrite it?").arg(QFileInfo(fileName).fileName()),
        tr("What the other program has written is lost then.")};
    m_question = ask(m_window, question, QMessageBox::Save | QMessageBox::Cancel, QMessageBox::Cancel,
                     [this, fileName](QMessageBox::StandardButton button) {
                         m_question = nullptr;
                         if (button == QMessageBox::Save)
                             write(fileName, nativeFormat(), false);
                         else
                             m_afterSaving = nullptr;
                     });
    m_question->button(QMessageBox::Save)->setText(tr("&Overwrite"));
}

void FileSession::askForNameToSave()
{
    chooseNameToSave(suggestedName(QStringLiteral(".vtl.json")));
}

void FileSession::chooseNameToSave(const QString& suggestion)
{
    chooseFileToSave(
        m_window, suggestion, [this](const QString& fileName) { saveAs(fileName); },
        [this] { m_afterSaving = nullptr; });
}

void FileSession::askForNameToExport()
{
    chooseFileToExport(m_window, suggestedName(QStringLiteral(".csv")),
                       [this](const QString& fileName, const DocumentFormat& format) { exportTo(fileName, format); });
}

void FileSession::askBeforeOverwriting(const QString& fileName, const std::function<void()>& then)
{
    m_question = askToReplace(
        m_window, fileName,
        [this, then] {
            m_question = nullptr;
            then();
        },
        [this] {
            m_question = nullptr;
            m_afterSaving = nullptr;
        });
}

void FileSession::saveAs(const QString& fileName)
{
    const QString name = withNativeSuffix(fileName);
    askBeforeOverwriting(name, [this, name] { write(name, nativeFormat(), false); });
}

void FileSession::exportTo(const QString& fileName, const DocumentFormat& format)
{
    askBeforeOverwriting(fileName, [this, fileName, &format] { write(fileName, format, true); });
}

void FileSession::write(const QString& fileName, const DocumentFormat& format, bool isExport)
{
    if (isBusy())
        return;
    Q_EMIT contentsNeeded();
    m_savingName = fileName;
    m_savingFormat = &format;
    m_isExport = isExport;
    m_watch.setPaused(true);
    m_snapshot.start();
    Q_EMIT workStarted(tr("Writing %1").arg(QFileInfo(fileName).fileName()));
}

// What is changed from here on is not in the file, so the mark for that is set now, and taken back should it fail.
void FileSession::writeSnapshot(const std::shared_ptr<const Document>& document)
{
    if (!m_isExport) {
        QUndoStack* const stack = m_model->undoStack();
        m_wasClean = stack->isClean();
        m_wasUnsaved = std::exchange(m_isUnsaved, false);
        m_isMarkedClean = true;
        m_model->finishGesture();
        stack->setClean();
        Q_EMIT savingStarted();
    }
    m_saver.start(document, m_savingName, *m_savingFormat);
}

void FileSession::giveUpSaving()
{
    m_afterSaving = nullptr;
    if (std::exchange(m_isMarkedClean, false)) {
        m_isUnsaved = m_isUnsaved || m_wasUnsaved;
        if (!m_wasClean)
            m_model->undoStack()->resetClean();
    }
    m_watch.setPaused(false);
    Q_EMIT stateChanged();
    Q_EMIT workEnded();
}

void FileSession::takeSaved(const QStringList& warnings)
{
    m_isMarkedClean = false;
    const QString name = m_savingName;
    if (m_isExport) {
        m_watch.accept(name);
    } else {
        m_files = filesToRead({name});
        m_files.front().format = &nativeFormat();
        m_watch.watch(stampsOf({name}));
    }
    m_watch.setPaused(false);
    Q_EMIT workEnded();
    if (m_isExport) {
        Q_EMIT exported(name);
    } else {
        Q_EMIT documentSaved(name);
        Q_EMIT stateChanged();
        Q_EMIT filesUsed({name});
    }
    if (!warnings.isEmpty())
        openMessage(m_window,
                    {"writeWarnings", tr("“%1” does not say everything.").arg(QFileInfo(name).fileName()),
                     warnings.mid(0, 20).join(u'\n'), QMessageBox::Information},
                    QMessageBox::Ok, QMessageBox::Ok);
    if (const auto then = std::exchange(m_afterSaving, nullptr))
        then();
}

} // namespace Workbench
