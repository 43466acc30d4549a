#include "icons.h"
#include "main_window.h"
#include "navigation.h"

#include <VeskTimelineKit/standard_timeline_model.h>
#include <VeskTimelineKit/time_text.h>

#include <QAction>
#include <QLabel>
#include <QMenu>
#include <QStatusBar>
#include <QToolBar>
#include <QToolButton>

namespace Workbench {

using namespace VeskTimeline;
using namespace VeskTimeline::Kit;

namespace {

int itemCount(const Track& track)
{
    int count = track.itemCount();
    for (const TrackPtr& child : track.tracks())
        count += itemCount(*child);
    return count;
}

} // namespace

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
    m_warningLabel = new QLabel(this);
    statusBar()->addWidget(m_contentLabel);
    statusBar()->addPermanentWidget(m_warningLabel);
}

void MainWindow::updateStatus()
{
    const int tracks = m_model->trackCount();
    const int items = itemCount(*m_model->rootTrack());
    QString content = (tracks == 1 ? tr("1 track") : tr("%1 tracks").arg(tracks)) + QStringLiteral(", ") +
                      (items == 1 ? tr("1 item") : tr("%1 items").arg(items));
    if (const auto span = m_navigation->documentSpan())
        content += tr(", %1 – %2").arg(formatTime(span->start), formatTime(span->end));
    m_contentLabel->setText(content);
    m_warningLabel->setVisible(!m_warnings.isEmpty());
    m_warningLabel->setText(m_warnings.size() == 1 ? tr("1 warning") : tr("%1 warnings").arg(m_warnings.size()));
    m_warningLabel->setToolTip(m_warnings.join(u'\n'));
}

} // namespace Workbench
