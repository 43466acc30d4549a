#include "view_commands.h"

#include <VeskTimeline/timeline_view.h>
#include <VeskTimelineKit/standard_timeline_model.h>

namespace Workbench {

using namespace VeskTimeline;
using namespace VeskTimeline::Kit;

ViewCommands::ViewCommands(StandardTimelineModel* model, TimelineView* view, QObject* parent)
    : QObject(parent), m_model(model), m_view(view)
{
}

QAction* ViewCommands::addAction(const char* name, const QString& text, const QKeySequence& shortcut)
{
    auto* const action = new QAction(text, this);
    action->setObjectName(QString::fromLatin1(name));
    action->setShortcut(shortcut);
    action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    m_view->addAction(action);
    return action;
}

TimelineView* ViewCommands::view() const
{
    return m_view;
}

void ViewCommands::startAttempt()
{
    m_model->finishGesture();
}

void ViewCommands::endAttempt()
{
    m_view->viewport()->update();
    afterAttempt();
}

} // namespace Workbench
