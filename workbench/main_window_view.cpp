#include "main_window.h"
#include "navigation.h"
#include "settings.h"
#include "view_menus.h"
#include "view_settings.h"
#include "window_layout.h"

#include <VeskTimeline/timeline_widget.h>

#include <QAction>
#include <QDateTime>
#include <QMenu>
#include <QMenuBar>

namespace Workbench {

using VeskTimeline::TimelineWidget;

namespace {

const QString themeKey = QStringLiteral("view/theme");

} // namespace

void MainWindow::createViewMenu()
{
    QMenu* const menu = menuBar()->addMenu(tr("&View"));
    menu->setObjectName(QStringLiteral("viewMenu"));
    connect(addMenuAction(menu, "pnx_zoom_in", tr("Zoom &in"), QKeySequence::ZoomIn), &QAction::triggered, m_timeline,
            &TimelineWidget::onZoomIn);
    connect(addMenuAction(menu, "pnx_zoom_out", tr("Zoom &out"), QKeySequence::ZoomOut), &QAction::triggered,
            m_timeline, &TimelineWidget::onZoomOut);
    connect(addMenuAction(menu, "fit", tr("&Fit"), tr("Ctrl+0")), &QAction::triggered, m_navigation, &Navigation::fit);
    menu->addSeparator();
    addSnapEntries(menu, m_viewSettings);
    menu->addSeparator();
    addLiveEntries(menu, m_viewSettings);
    // The settings follow within the range of the view; whoever asks for it now may be years away.
    for (const char* const name : {"live", "follow_live"})
        connect(findChild<QAction*>(QString::fromLatin1(name)), &QAction::triggered, this, &MainWindow::goToPresent);
    menu->addSeparator();
    addRulerEntries(menu, m_viewSettings);
    menu->addSeparator();
    addThemeEntries(menu, m_theme);
    menu->addSeparator();
    menu->addAction(findChild<QAction*>(QStringLiteral("inspector")));
}

void MainWindow::goToPresent()
{
    if (m_viewSettings->isLive() && m_viewSettings->followsLive())
        m_navigation->centreOn(QDateTime::currentMSecsSinceEpoch());
}

// The view zooms out to one day at the most, which is little of a document of years.
void MainWindow::explainFit()
{
    auto* const fit = findChild<QAction*>(QStringLiteral("fit"));
    const QString text = tr("The start of the timeline, at most one day; the strip at the bottom shows all of it");
    fit->setStatusTip(text);
    fit->setToolTip(fit->toolTip() + u'\n' + text);
}

Theme::Scheme MainWindow::keptLook()
{
    return Theme::schemeOf(openSettings()->value(themeKey).toString()).value_or(Theme::System);
}

void MainWindow::keepViewSettings(std::optional<Theme::Scheme> look)
{
    const std::unique_ptr<QSettings> settings = openSettings();
    m_viewSettings->restore(*settings);
    m_theme->setScheme(look.value_or(keptLook()));
    connect(m_viewSettings, &ViewSettings::changed, this, [this] { m_viewSettings->save(*openSettings()); });
    connect(m_theme, &Theme::changed, this,
            [this] { openSettings()->setValue(themeKey, Theme::name(m_theme->scheme())); });
    new WindowLayout(this, m_nameColumn);
}

} // namespace Workbench
