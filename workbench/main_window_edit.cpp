#include "file_session.h"
#include "icons.h"
#include "inspector.h"
#include "item_commands.h"
#include "main_window.h"
#include "track_commands.h"

#include <VeskTimeline/timeline_view.h>
#include <VeskTimelineKit/standard_timeline_model.h>

#include <QAction>
#include <QDockWidget>
#include <QMenu>
#include <QMenuBar>
#include <QStatusBar>
#include <QUndoStack>

namespace Workbench {

void MainWindow::createEditMenu()
{
    QMenu* const menu = menuBar()->addMenu(tr("&Edit"));
    menu->setObjectName(QStringLiteral("editMenu"));
    addUndoActions(menu);
    menu->addSeparator();
    m_itemCommands = new ItemCommands(m_model.get(), view(), this);
    m_itemCommands->addClipboardActions(menu);

    QMenu* const items = menuBar()->addMenu(tr("&Items"));
    items->setObjectName(QStringLiteral("itemsMenu"));
    m_itemCommands->addItemActions(items);
    QMenu* const tracks = menuBar()->addMenu(tr("&Tracks"));
    tracks->setObjectName(QStringLiteral("tracksMenu"));
    m_itemCommands->tracks()->addActions(tracks);
    connect(m_itemCommands, &ItemCommands::refused, this, [this](const QString& reason) {
        constexpr int visibleFor = 10'000;
        statusBar()->showMessage(reason, visibleFor);
    });
    createInspector();
}

void MainWindow::createInspector()
{
    auto* const dock = new QDockWidget(tr("Inspector"), this);
    dock->setObjectName(QStringLiteral("inspectorDock"));
    auto* const inspector = new Inspector(m_model.get(), view(), dock);
    dock->setWidget(inspector);
    addDockWidget(Qt::RightDockWidgetArea, dock);
    constexpr int width = 270;
    resizeDocks({dock}, {width}, Qt::Horizontal);
    QAction* const toggle = dock->toggleViewAction();
    toggle->setObjectName(QStringLiteral("inspector"));
    toggle->setText(tr("&Inspector"));
    toggle->setIcon(icon(QStringLiteral("inspector")));
    toggle->setShortcut(tr("Ctrl+I"));
    connect(m_session, &FileSession::contentsNeeded, inspector, &Inspector::commitPending);
    connect(m_session, &FileSession::contentsNeeded, m_itemCommands->tracks(), &TrackCommands::commitPending);
    connect(m_itemCommands, &ItemCommands::labelEditRequested, inspector, [dock, inspector] {
        dock->show();
        dock->raise();
        inspector->editLabel();
    });
}

void MainWindow::addUndoActions(QMenu* menu)
{
    QUndoStack* const stack = m_model->undoStack();
    QAction* const undo = stack->createUndoAction(menu, tr("&Undo"));
    undo->setObjectName(QStringLiteral("undo"));
    undo->setIcon(icon(QStringLiteral("undo")));
    undo->setShortcut(QKeySequence::Undo);
    QAction* const redo = stack->createRedoAction(menu, tr("&Redo"));
    redo->setObjectName(QStringLiteral("redo"));
    redo->setIcon(icon(QStringLiteral("redo")));
    redo->setShortcut(QKeySequence::Redo);
    menu->addActions({undo, redo});
}

} // namespace Workbench
