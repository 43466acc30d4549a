#include "main_window.h"
#include "timeline_pictures.h"

#include <QAction>
#include <QMenu>

namespace Workbench {

void MainWindow::addPictureActions(QMenu* fileMenu)
{
    connect(addMenuAction(fileMenu, "export_picture", tr("&Export picture…"), tr("Ctrl+E")), &QAction::triggered, this,
            [this] { exportPicture(*this); });
    connect(addMenuAction(fileMenu, "print_preview", tr("Print pre&view…")), &QAction::triggered, this,
            [this] { previewPrint(*this); });
    connect(addMenuAction(fileMenu, "print", tr("&Print…"), QKeySequence::Print), &QAction::triggered, this,
            [this] { printTimeline(*this); });
}

} // namespace Workbench
