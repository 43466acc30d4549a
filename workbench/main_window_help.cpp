#include "main_window.h"

#include <QMenu>
#include <QMenuBar>

namespace Workbench {

void MainWindow::createHelpMenu()
{
    QMenu* const menu = menuBar()->addMenu(tr("&Help"));
    menu->setObjectName(QStringLiteral("helpMenu"));
}

} // namespace Workbench
