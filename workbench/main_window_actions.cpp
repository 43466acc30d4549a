#include "icons.h"
#include "main_window.h"

#include <VeskTimeline/timeline_view.h>
#include <VeskTimeline/timeline_widget.h>
#include <VeskTimelineKit/document_format.h>
#include <VeskTimelineKit/standard_timeline_model.h>

#include <QAction>
#include <QFileDialog>
#include <QLabel>
#include <QMessageBox>
#include <QStatusBar>
#include <QToolBar>
#include <QToolButton>
#include <QUndoStack>

namespace Workbench {

using namespace VeskTimeline;
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

QAction* MainWindow::addToolBarAction(QToolBar* bar, const QString& iconName, const QString& text,
                                      const QKeySequence& shortcut)
{
    QAction* const action = bar->addAction(icon(iconName), text);
    action->setObjectName(iconName);
    action->setShortcut(shortcut);
    if (!shortcut.isEmpty())
        action->setToolTip(QStringLiteral("%1 (%2)").arg(text, shortcut.toString(QKeySequence::NativeText)));
    return action;
}

void MainWindow::createActions()
{
    QToolBar* const bar = addToolBar(tr("Timeline"));
    bar->setMovable(false);
    bar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    const auto add = [this, bar](const char* iconName, const QString& text, const QKeySequence& shortcut) {
        return addToolBarAction(bar, QString::fromLatin1(iconName), text, shortcut);
    };

    connect(add("open", tr("Open…"), QKeySequence::Open), &QAction::triggered, this, &MainWindow::askForFiles);
    bar->addSeparator();
    addUndoActions(bar);
    bar->addSeparator();
    connect(add("pnx_zoom_in", tr("Zoom in"), QKeySequence::ZoomIn), &QAction::triggered, m_timeline,
            &TimelineWidget::onZoomIn);
    connect(add("pnx_zoom_out", tr("Zoom out"), QKeySequence::ZoomOut), &QAction::triggered, m_timeline,
            &TimelineWidget::onZoomOut);
    connect(add("fit", tr("Fit"), tr("Ctrl+0")), &QAction::triggered, this, &MainWindow::showFromStart);
    bar->addSeparator();
    connect(add("first_item", tr("First item"), tr("Ctrl+Home")), &QAction::triggered, this,
            &MainWindow::goToFirstItem);
    connect(add("last_item", tr("Last item"), tr("Ctrl+End")), &QAction::triggered, this, &MainWindow::goToLastItem);
    m_previousStretch = add("previous_part", tr("Previous part"), tr("Ctrl+PgUp"));
    connect(m_previousStretch, &QAction::triggered, this, [this] { pageTo(-1); });
    m_nextStretch = add("next_part", tr("Next part"), tr("Ctrl+PgDown"));
    connect(m_nextStretch, &QAction::triggered, this, [this] { pageTo(1); });
    bar->addSeparator();
    QAction* const snap = add("snap", tr("Snap"), {});
    snap->setToolTip(tr("Items snap to whole steps and to each other's edges"));
    snap->setCheckable(true);
    snap->setChecked(m_timeline->isSnapEnabled());
    connect(snap, &QAction::toggled, m_timeline, &TimelineWidget::setSnapEnabled);
}

// Their texts name what they would undo; on the bar, where they would push the others about, the icons say enough.
void MainWindow::addUndoActions(QToolBar* bar)
{
    QUndoStack* const stack = m_model->undoStack();
    QAction* const undo = stack->createUndoAction(bar, tr("Undo"));
    undo->setObjectName(QStringLiteral("undo"));
    undo->setIcon(icon(QStringLiteral("undo")));
    undo->setShortcut(QKeySequence::Undo);
    QAction* const redo = stack->createRedoAction(bar, tr("Redo"));
    redo->setObjectName(QStringLiteral("redo"));
    redo->setIcon(icon(QStringLiteral("redo")));
    redo->setShortcut(QKeySequence::Redo);
    for (QAction* const action : {undo, redo}) {
        bar->addAction(action);
        if (auto* const button = qobject_cast<QToolButton*>(bar->widgetForAction(action)))
            button->setToolButtonStyle(Qt::ToolButtonIconOnly);
    }
}

void MainWindow::createStatusBar()
{
    m_contentLabel = new QLabel(this);
    m_stretchLabel = new QLabel(this);
    m_warningLabel = new QLabel(this);
    statusBar()->addWidget(m_contentLabel);
    statusBar()->addWidget(m_stretchLabel);
    statusBar()->addPermanentWidget(m_warningLabel);
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
