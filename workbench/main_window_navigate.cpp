#include "find_bar.h"
#include "go_to_dialog.h"
#include "main_window.h"
#include "navigation.h"
#include "overview_strip.h"
#include "view_settings.h"
#include "window_scroll_bar.h"

#include <VeskTimeline/timeline_widget.h>

#include <QAction>
#include <QMenu>
#include <QMenuBar>
#include <QVBoxLayout>

namespace Workbench {

void MainWindow::createNavigation()
{
    m_navigation = new Navigation(m_timeline, m_model.get(), this);
    WindowScrollBar::replaceSlider(m_navigation);
    m_overviewStrip = new OverviewStrip(m_navigation, this);
    m_findBar = new FindBar(m_navigation, this);

    connect(m_viewSettings, &ViewSettings::changed, m_overviewStrip, &OverviewStrip::refresh);

    auto* const center = new QWidget(this);
    auto* const layout = new QVBoxLayout(center);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    layout->addWidget(m_timeline, 1);
    layout->addWidget(m_overviewStrip);
    layout->addWidget(m_findBar);
    setCentralWidget(center);
}

void MainWindow::createNavigateMenu()
{
    QMenu* const menu = menuBar()->addMenu(tr("&Navigate"));
    menu->setObjectName(QStringLiteral("navigateMenu"));
    addFindActions(menu);
    menu->addSeparator();
    connect(addMenuAction(menu, "go_to", tr("&Go to date and time…"), tr("Ctrl+G")), &QAction::triggered, this,
            &MainWindow::goToDateAndTime);
    connect(addMenuAction(menu, "first_item", tr("First &item"), tr("Ctrl+Home")), &QAction::triggered, m_navigation,
            &Navigation::goToFirstItem);
    connect(addMenuAction(menu, "last_item", tr("&Last item"), tr("Ctrl+End")), &QAction::triggered, m_navigation,
            &Navigation::goToLastItem);
    menu->addSeparator();
    m_previousPart = addMenuAction(menu, "previous_part", tr("Previous p&art"), tr("Ctrl+PgUp"));
    connect(m_previousPart, &QAction::triggered, m_navigation, [this] { m_navigation->page(-1); });
    m_nextPart = addMenuAction(menu, "next_part", tr("Next pa&rt"), tr("Ctrl+PgDown"));
    connect(m_nextPart, &QAction::triggered, m_navigation, [this] { m_navigation->page(1); });
    connect(m_navigation, &Navigation::windowChanged, this, &MainWindow::updatePaging);
    connect(m_navigation, &Navigation::documentSpanChanged, this, &MainWindow::updatePaging);
    menu->addSeparator();
    addStepActions(menu);
    updatePaging();
}

void MainWindow::addFindActions(QMenu* menu)
{
    connect(addMenuAction(menu, "find", tr("&Find…"), QKeySequence::Find), &QAction::triggered, m_findBar,
            &FindBar::open);
    connect(addMenuAction(menu, "find_next", tr("Find &next"), QKeySequence::FindNext), &QAction::triggered, m_findBar,
            &FindBar::findNext);
    connect(addMenuAction(menu, "find_previous", tr("Find &previous"), QKeySequence::FindPrevious), &QAction::triggered,
            m_findBar, &FindBar::findPrevious);
}

void MainWindow::addStepActions(QMenu* menu)
{
    const struct
    {
        const char* name;
        QString text;
        const char* shortcut;
        TimeStep step;
        int direction;
    } steps[] = {
        {"minute_back", tr("Minute back"), "Alt+Shift+Left", TimeStep::Minute, -1},
        {"minute_forward", tr("Minute forward"), "Alt+Shift+Right", TimeStep::Minute, 1},
        {"hour_back", tr("Hour back"), "Alt+Left", TimeStep::Hour, -1},
        {"hour_forward", tr("Hour forward"), "Alt+Right", TimeStep::Hour, 1},
        {"day_back", tr("Day back"), "Alt+PgUp", TimeStep::Day, -1},
        {"day_forward", tr("Day forward"), "Alt+PgDown", TimeStep::Day, 1},
    };
    for (const auto& entry : steps) {
        QAction* const action =
            addMenuAction(menu, entry.name, entry.text, QKeySequence(QString::fromLatin1(entry.shortcut)));
        connect(action, &QAction::triggered, m_navigation,
                [this, step = entry.step, direction = entry.direction] { m_navigation->stepBy(step, direction); });
    }
}

void MainWindow::goToDateAndTime()
{
    auto* const dialog = new GoToDialog(m_navigation, this);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->open();
}

void MainWindow::updatePaging()
{
    m_previousPart->setEnabled(m_navigation->canPage(-1));
    m_nextPart->setEnabled(m_navigation->canPage(1));
}

} // namespace Workbench
