#include "csv_forget_imports.h"
#include "csv_import_assistant.h"
#include "file_dialogs.h"
#include "file_session.h"
#include "main_window.h"
#include "name_column.h"
#include "navigation.h"
#include "recent_files.h"
#include "settings.h"
#include "task_progress.h"
#include "warnings_button.h"

#include <VeskTimeline/timeline_view.h>
#include <VeskTimelineKit/standard_timeline_model.h>

#include <QAction>
#include <QCloseEvent>
#include <QDir>
#include <QDropEvent>
#include <QFileInfo>
#include <QMenu>
#include <QMenuBar>
#include <QMimeData>
#include <QPushButton>
#include <QStatusBar>

namespace Workbench {

using namespace VeskTimeline::Kit;

namespace {

// Empty unless all that is dragged are files of this machine.
QStringList filesOf(const QMimeData& data)
{
    QStringList names;
    for (const QUrl& url : data.urls()) {
        if (!url.isLocalFile())
            return {};
        names.append(url.toLocalFile());
    }
    return names;
}

} // namespace

void MainWindow::createFileSession()
{
    m_session = new FileSession(m_model.get(), this);
    m_recentFiles = new RecentFiles(this);
    setAcceptDrops(true);
    m_settings = openSettings();
    m_importAssistant = std::make_unique<CsvImportAssistant>(this, *m_settings);
    m_session->setAskForReadOptions([this](const QString& fileName, const ReadOptions& options,
                                           const std::function<void(const FileSession::ReadAnswer&)>& done) {
        m_importAssistant->ask(fileName, options.csv, [options, done](const std::optional<CsvOptions>& csv) {
            ReadOptions chosen = options;
            chosen.csv = csv.value_or(CsvOptions());
            done(csv ? FileSession::ReadAnswer(chosen) : std::nullopt);
        });
    });
    createTaskProgress();
    connect(m_session, &FileSession::documentLoaded, this,
            [this](const std::shared_ptr<const Document>& document) { showLoaded(*document); });
    connect(m_session, &FileSession::filesAdded, this,
            [this](const std::shared_ptr<const Document>& added) { showAdded(*added); });
    connect(m_session, &FileSession::stateChanged, this, [this] {
        setWindowTitle(m_session->title());
        setWindowModified(m_session->isModified());
        updateFileActions();
    });
    connect(m_session, &FileSession::filesUsed, m_recentFiles, &RecentFiles::add);
    connect(m_session, &FileSession::documentSaved, this,
            [this](const QString& fileName) { statusBar()->showMessage(tr("Saved %1").arg(fileName), 5000); });
    connect(m_session, &FileSession::exported, this,
            [this](const QString& fileName) { statusBar()->showMessage(tr("Exported %1").arg(fileName), 5000); });
    connect(m_recentFiles, &RecentFiles::chosen, this, &MainWindow::openRecent);
}

void MainWindow::openRecent(const QString& fileName)
{
    if (QFileInfo::exists(fileName)) {
        m_session->open({fileName});
        return;
    }
    // It may be on a disk that comes back, so that the user has to say.
    const FileQuestion question{"recentFileGone",
                                tr("“%1” is not there. Remove it from the list?").arg(QFileInfo(fileName).fileName()),
                                QDir::toNativeSeparators(fileName)};
    const QMessageBox* const box = ask(this, question, QMessageBox::Yes | QMessageBox::No, QMessageBox::No,
                                       [this, fileName](QMessageBox::StandardButton button) {
                                           if (button == QMessageBox::Yes)
                                               m_recentFiles->remove(fileName);
                                       });
    box->button(QMessageBox::Yes)->setText(tr("&Remove"));
    box->button(QMessageBox::No)->setText(tr("&Keep"));
}

void MainWindow::leaveNoTrace()
{
    m_recentFiles->setRecording(false);
}

void MainWindow::createTaskProgress()
{
    m_taskProgress = new TaskProgress(this);
    statusBar()->addPermanentWidget(m_taskProgress);
    m_taskProgress->hide();
    connect(m_taskProgress, &TaskProgress::cancelRequested, m_session, &FileSession::cancel);
    connect(m_session, &FileSession::workStarted, this, [this](const QString& text) {
        m_taskProgress->start(text);
        updateFileActions();
    });
    connect(m_session, &FileSession::workProgressed, this, [this](double share, const QString& text) {
        m_taskProgress->setText(text);
        m_taskProgress->setShare(share);
    });
    connect(m_session, &FileSession::workEnded, this, [this] {
        m_taskProgress->stop();
        updateFileActions();
    });
}

void MainWindow::createFileMenu()
{
    QMenu* const menu = menuBar()->addMenu(tr("&File"));
    menu->setObjectName(QStringLiteral("fileMenu"));
    connect(addMenuAction(menu, "new", tr("&New"), QKeySequence::New), &QAction::triggered, m_session,
            &FileSession::startNew);
    connect(addMenuAction(menu, "open", tr("&Open…"), QKeySequence::Open), &QAction::triggered, m_session,
            &FileSession::askForFilesToOpen);
    QMenu* const recent = menu->addMenu(tr("Open &recent"));
    recent->setObjectName(QStringLiteral("recentMenu"));
    m_recentFiles->fill(recent);
    connect(addMenuAction(menu, "add_files", tr("&Add files…"), tr("Ctrl+Shift+O")), &QAction::triggered, m_session,
            &FileSession::askForFilesToAdd);
    connect(addMenuAction(menu, "reload", tr("Re&load"), QKeySequence::Refresh), &QAction::triggered, m_session,
            &FileSession::reload);
    addRecoverAction(menu);
    addForgetImportsAction(menu, m_importAssistant.get());
    menu->addSeparator();
    addSaveActions(menu);
    menu->addSeparator();
    addPictureActions(menu);
    menu->addSeparator();
    connect(addMenuAction(menu, "quit", tr("&Quit"), QKeySequence::Quit), &QAction::triggered, this,
            &MainWindow::close);
    updateFileActions();
}

void MainWindow::addSaveActions(QMenu* menu)
{
    connect(addMenuAction(menu, "save", tr("&Save"), QKeySequence::Save), &QAction::triggered, m_session,
            &FileSession::save);
    connect(addMenuAction(menu, "save_as", tr("Save &as…"), tr("Ctrl+Shift+S")), &QAction::triggered, m_session,
            &FileSession::askForNameToSave);
    connect(addMenuAction(menu, "export", tr("&Export…"), tr("Ctrl+Shift+E")), &QAction::triggered, m_session,
            &FileSession::askForNameToExport);
}

void MainWindow::updateFileActions()
{
    const bool isBusy = m_session->isBusy();
    for (const char* const name : {"new", "open", "add_files", "reload", "save", "save_as", "export"}) {
        if (auto* const action = findChild<QAction*>(QString::fromLatin1(name)))
            action->setEnabled(!isBusy);
    }
    if (auto* const menu = findChild<QMenu*>(QStringLiteral("recentMenu")))
        menu->setEnabled(!isBusy);
    auto* const reload = findChild<QAction*>(QStringLiteral("reload"));
    if (reload && m_session->fileNames().isEmpty())
        reload->setEnabled(false);
}

void MainWindow::showAdded(const Document& added)
{
    view()->expandAll();
    m_nameColumn->fit();
    m_warningsButton->setWarnings(m_warningsButton->warnings() + added.warnings());
    m_navigation->fit();
}

void MainWindow::closeEvent(QCloseEvent* event)
{
    if (std::exchange(m_mayClose, false)) {
        QMainWindow::closeEvent(event);
        return;
    }
    // At once when there is nothing to ask; otherwise the window closes again with the answer.
    const auto within = std::make_shared<bool>(true);
    m_session->whenDisposable([this, within] {
        m_mayClose = true;
        if (!*within)
            close();
    });
    *within = false;
    event->setAccepted(std::exchange(m_mayClose, false));
}

void MainWindow::dragEnterEvent(QDragEnterEvent* event)
{
    if (!m_session->isBusy() && !filesOf(*event->mimeData()).isEmpty())
        event->acceptProposedAction();
}

void MainWindow::dropEvent(QDropEvent* event)
{
    const QStringList fileNames = filesOf(*event->mimeData());
    if (fileNames.isEmpty() || m_session->isBusy())
        return;
    event->acceptProposedAction();
    // Whoever drags waits for the end of this event: what has to be asked comes later.
    QMetaObject::invokeMethod(
        m_session, [this, fileNames] { m_session->open(fileNames); }, Qt::QueuedConnection);
}

} // namespace Workbench
