#include "icons.h"
#include "main_window.h"

#include <QAction>
#include <QLabel>
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
    bar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    const char* const names[] = {"open",         "",    "undo", "redo",       "",          "pnx_zoom_in",
                                 "pnx_zoom_out", "fit", "",     "first_item", "last_item", "previous_part",
                                 "next_part",    "",    "snap"};
    for (const char* const name : names) {
        if (*name == '\0') {
            bar->addSeparator();
            continue;
        }
        auto* const action = findChild<QAction*>(QString::fromLatin1(name));
        Q_ASSERT(action);
        bar->addAction(action);
    }
    for (QAction* const action : bar->actions()) {
        // Their texts name what they would undo; here, where they would push the others about, the icons say enough.
        const bool namesItsStep = action->objectName() == u"undo" || action->objectName() == u"redo";
        auto* const button = qobject_cast<QToolButton*>(bar->widgetForAction(action));
        if (namesItsStep && button)
            button->setToolButtonStyle(Qt::ToolButtonIconOnly);
        else if (!action->shortcut().isEmpty())
            action->setToolTip(QStringLiteral("%1 (%2)").arg(action->iconText(),
                                                             action->shortcut().toString(QKeySequence::NativeText)));
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

} // namespace Workbench
