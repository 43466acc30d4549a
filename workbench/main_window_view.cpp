#include "main_window.h"

#include <VeskTimeline/timeline_widget.h>

#include <QAction>
#include <QMenu>
#include <QMenuBar>

namespace Workbench {

using VeskTimeline::TimelineWidget;

void MainWindow::createViewMenu()
{
    QMenu* const menu = menuBar()->addMenu(tr("&View"));
    menu->setObjectName(QStringLiteral("viewMenu"));
    connect(addMenuAction(menu, "pnx_zoom_in", tr("Zoom &in"), QKeySequence::ZoomIn), &QAction::triggered, m_timeline,
            &TimelineWidget::onZoomIn);
    connect(addMenuAction(menu, "pnx_zoom_out", tr("Zoom &out"), QKeySequence::ZoomOut), &QAction::triggered,
            m_timeline, &TimelineWidget::onZoomOut);
    connect(addMenuAction(menu, "fit", tr("&Fit"), tr("Ctrl+0")), &QAction::triggered, this,
            &MainWindow::showFromStart);
    menu->addSeparator();
    QAction* const snap = addMenuAction(menu, "snap", tr("&Snap"));
    snap->setToolTip(tr("Items snap to whole steps and to each other's edges"));
    snap->setCheckable(true);
    snap->setChecked(m_timeline->isSnapEnabled());
    connect(snap, &QAction::toggled, m_timeline, &TimelineWidget::setSnapEnabled);
}

} // namespace Workbench
