#include "main_window.h"

#include <VeskTimelineKit/document_format.h>

#include <QAction>
#include <QFileDialog>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>

namespace Workbench {

using namespace VeskTimeline::Kit;

namespace {

QString fileFilter()
{
    QStringList filters;
    for (const DocumentFormat& format : documentFormats()) {
        QStringList patterns;
        for (const QString& suffix : format.suffixes)
            patterns.append(QStringLiteral("*.") + suffix);
        filters.append(QStringLiteral("%1 (%2)").arg(format.description, patterns.join(u' ')));
    }
    filters.append(MainWindow::tr("All files (*)"));
    return filters.join(QStringLiteral(";;"));
}

} // namespace

void MainWindow::createFileMenu()
{
    QMenu* const menu = menuBar()->addMenu(tr("&File"));
    menu->setObjectName(QStringLiteral("fileMenu"));
    connect(addMenuAction(menu, "open", tr("&Open…"), QKeySequence::Open), &QAction::triggered, this,
            &MainWindow::askForFiles);
    menu->addSeparator();
    addPictureActions(menu);
    menu->addSeparator();
    connect(addMenuAction(menu, "quit", tr("&Quit"), QKeySequence::Quit), &QAction::triggered, this,
            &MainWindow::close);
}

void MainWindow::askForFiles()
{
    const QStringList fileNames = QFileDialog::getOpenFileNames(this, tr("Open timelines"), QString(), fileFilter());
    if (fileNames.isEmpty())
        return;
    QStringList reasons;
    for (const FileError& refusal : openFiles(fileNames))
        reasons.append(refusal.text());
    if (!reasons.isEmpty())
        QMessageBox::warning(this, tr("Not opened"), reasons.join(u'\n'));
}

} // namespace Workbench
