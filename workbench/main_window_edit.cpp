#include "icons.h"
#include "main_window.h"

#include <VeskTimelineKit/standard_timeline_model.h>

#include <QAction>
#include <QMenu>
#include <QMenuBar>
#include <QUndoStack>

namespace Workbench {

void MainWindow::createEditMenu()
{
    QMenu* const menu = menuBar()->addMenu(tr("&Edit"));
    menu->setObjectName(QStringLiteral("editMenu"));
    addUndoActions(menu);
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
