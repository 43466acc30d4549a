#include "icons.h"
#include "main_window.h"
#include "status_line.h"
#include "warnings_button.h"

#include <QAction>
#include <QMenu>
#include <QStatusBar>
#include <QToolBar>
#include <QToolButton>

namespace Workbench {

QAction* MainWindow::addMenuAction(QMenu* menu, const char* name, const QString& text, const QKeySequence& shortcut)
{
    const QString objectName = QString::fromLatin1(name);
    QAction* const action = menu->addAction(text);
    action->setObjectName(objectName);
    if (hasIcon(objectName))
        action->setIcon(icon(objectName));
    action->setShortcut(shortcut);
    return action;
}

void MainWindow::createToolBar()
{
    QToolBar* const bar = addToolBar(tr("Timeline"));
    bar->setObjectName(QStringLiteral("toolBar"));
    bar->setMovable(false);
    // Only what is wanted most, and what its icon does not tell, has its text beside it.
    const struct
    {
        const char* name;
        bool hasText;
    } entries[] = {{"open", true},
                   {"save", true},
                   {"", false},
                   {"undo", false},
                   {"redo", false},
                   {"", false},
                   {"pnx_zoom_in", false},
                   {"pnx_zoom_out", false},
                   {"fit", true},
                   {"", false},
                   {"find", true},
                   {"first_item", false},
                   {"previous_part", false},
                   {"next_part", false},
                   {"last_item", false},
                   {"", false},
                   {"snap", true},
                   {"inspector", true}};
    for (const auto& entry : entries) {
        if (*entry.name == '\0') {
            bar->addSeparator();
            continue;
        }
        auto* const action = findChild<QAction*>(QString::fromLatin1(entry.name));
        Q_ASSERT(action);
        bar->addAction(action);
        auto* const button = qobject_cast<QToolButton*>(bar->widgetForAction(action));
        button->setToolButtonStyle(entry.hasText ? Qt::ToolButtonTextBesideIcon : Qt::ToolButtonIconOnly);
        // The texts of undo and redo name what they would do, and change.
        const bool namesItsStep = action->objectName() == u"undo" || action->objectName() == u"redo";
        if (!namesItsStep && !action->shortcut().isEmpty())
            action->setToolTip(QStringLiteral("%1 (%2)").arg(action->iconText(),
                                                             action->shortcut().toString(QKeySequence::NativeText)));
    }
}

void MainWindow::createStatusBar()
{
    m_warningsButton = new WarningsButton(this);
    statusBar()->addWidget(new StatusLine(m_navigation, m_viewSettings, this), 1);
    statusBar()->addPermanentWidget(m_warningsButton);
    m_warningsButton->hide();
}

} // namespace Workbench
