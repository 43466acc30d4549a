#include "autosave.h"
#include "file_dialogs.h"
#include "file_session.h"
#include "main_window.h"

#include <QAction>
#include <QLabel>
#include <QMenu>
#include <QStatusBar>
#include <QTimer>

namespace Workbench {

using namespace VeskTimeline::Kit;

void MainWindow::startAutosave(const QString& folder)
{
    m_autosave = std::make_unique<Autosave>(*m_model, folder.isEmpty() ? Autosave::defaultFolder() : folder);
    m_autosave->startFor(std::make_shared<const Document>(), {});
    connect(m_session, &FileSession::documentLoaded, m_autosave.get(), &Autosave::startFor);
    connect(m_session, &FileSession::savingStarted, m_autosave.get(), &Autosave::saving);
    connect(m_session, &FileSession::documentSaved, m_autosave.get(), &Autosave::documentSaved);
    connect(m_session, &FileSession::stateChanged, m_autosave.get(), [this] {
        if (!m_session->isModified())
            m_autosave->unmodified();
    });
    // What there is may have changes that the user would miss; at the start there are none.
    connect(m_autosave.get(), &Autosave::documentRecovered, this, [this](const Autosave::Recovered& recovered) {
        m_session->whenDisposable([this, recovered] { showRecovered(recovered); });
    });
    if (auto* const recover = findChild<QAction*>(QStringLiteral("recover")))
        recover->setEnabled(true);

    auto* const failure = new QLabel(tr("Not kept for a crash"), this);
    failure->setObjectName(QStringLiteral("autosaveFailure"));
    failure->hide();
    statusBar()->addPermanentWidget(failure);
    connect(m_autosave.get(), &Autosave::failed, failure, [failure](const QString& reason) {
        failure->setToolTip(reason.toHtmlEscaped());
        failure->show();
    });
    connect(m_autosave.get(), &Autosave::resumed, failure, &QLabel::hide);
    // Over the window, once it is there.
    QTimer::singleShot(0, m_autosave.get(), [this] { m_autosave->offerOrphans(this); });
}

QAction* MainWindow::addRecoverAction(QMenu* menu)
{
    QAction* const action = addMenuAction(menu, "recover", tr("Reco&ver…"));
    action->setEnabled(m_autosave != nullptr);
    connect(action, &QAction::triggered, this, [this] {
        m_autosave->offerOrphans(this);
        if (m_autosave->dialog())
            return;
        openMessage(this,
                    {"nothingToRecover", tr("There is nothing to recover."),
                     tr("Changes of programs that ended before they were saved would be offered here."),
                     QMessageBox::Information},
                    QMessageBox::Ok, QMessageBox::Ok);
    });
    return action;
}

void MainWindow::showRecovered(const Autosave::Recovered& recovered)
{
    showDocument(recovered->document, recovered->fileNames);
    m_autosave->startRecovered(recovered);
    m_session->setUnsaved();
    if (recovered->problems.isEmpty())
        return;
    openMessage(this,
                {"recoveredInPart", tr("Not everything could be recovered."), recovered->problems.join(u'\n'),
                 QMessageBox::Warning},
                QMessageBox::Ok, QMessageBox::Ok);
}

} // namespace Workbench
