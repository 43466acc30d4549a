#include "autosave.h"
#include "file_session.h"
#include "main_window.h"

#include <QLabel>
#include <QMessageBox>
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
    connect(m_autosave.get(), &Autosave::documentRecovered, this, &MainWindow::showRecovered);

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

void MainWindow::showRecovered(const Autosave::Recovered& recovered)
{
    showDocument(recovered->document, recovered->fileNames);
    m_autosave->startRecovered(recovered);
    m_session->setUnsaved();
    if (recovered->problems.isEmpty())
        return;
    auto* const message = new QMessageBox(QMessageBox::Warning, tr("Recovered in Part"),
                                          tr("Not everything could be recovered."), QMessageBox::Ok, this);
    message->setObjectName(QStringLiteral("recoveredInPart"));
    message->setInformativeText(recovered->problems.join(u'\n').toHtmlEscaped());
    message->setAttribute(Qt::WA_DeleteOnClose);
    message->open();
}

} // namespace Workbench
