#include "main_window.h"

#include <QAction>
#include <QMenu>
#include <QMenuBar>

namespace Workbench {

void MainWindow::createNavigateMenu()
{
    QMenu* const menu = menuBar()->addMenu(tr("&Navigate"));
    menu->setObjectName(QStringLiteral("navigateMenu"));
    connect(addMenuAction(menu, "first_item", tr("&First item"), tr("Ctrl+Home")), &QAction::triggered, this,
            &MainWindow::goToFirstItem);
    connect(addMenuAction(menu, "last_item", tr("&Last item"), tr("Ctrl+End")), &QAction::triggered, this,
            &MainWindow::goToLastItem);
    m_previousStretch = addMenuAction(menu, "previous_part", tr("&Previous part"), tr("Ctrl+PgUp"));
    connect(m_previousStretch, &QAction::triggered, this, [this] { pageTo(-1); });
    m_nextStretch = addMenuAction(menu, "next_part", tr("&Next part"), tr("Ctrl+PgDown"));
    connect(m_nextStretch, &QAction::triggered, this, [this] { pageTo(1); });
}

} // namespace Workbench
