#include "x11/desktop_workbench.h"

#include <VeskTimeline/timeline_view.h>
#include <VeskTimeline/timeline_widget.h>
#include <VeskTimelineKit/standard_timeline_model.h>

#include <QAction>
#include <QMenu>
#include <QMenuBar>
#include <QTest>

#include <algorithm>

using namespace VeskTimeline;

namespace {

Kit::Document smallDocument()
{
    constexpr qint64 origin = DesktopWorkbench::origin;
    constexpr qint64 minute = DesktopWorkbench::minute;
    Kit::Document document;
    document.track({QStringLiteral("A")}).items = {
        {QStringLiteral("first"), origin, 5 * minute, {}, true},
        {QStringLiteral("second"), origin + 20 * minute, 5 * minute, {}, true}};
    document.track({QStringLiteral("B")}).items = {
        {QStringLiteral("third"), origin + 40 * minute, 5 * minute, {}, true}};
    return document;
}

void collectEntries(const QMenu& menu, QSet<QString>& names)
{
    for (const QAction* const action : menu.actions()) {
        if (action->isSeparator())
            continue;
        if (action->menu())
            collectEntries(*action->menu(), names);
        else
            names.insert(action->objectName().isEmpty() ? action->text() : action->objectName());
    }
}

// The menus to open, outermost first; empty when the action is not below the menu.
QList<QMenu*> pathTo(QMenu* menu, const QAction* wanted)
{
    for (const QAction* const action : menu->actions()) {
        if (action == wanted)
            return {menu};
        QList<QMenu*> below = action->menu() ? pathTo(action->menu(), wanted) : QList<QMenu*>();
        if (!below.isEmpty())
            return QList<QMenu*>{menu} + below;
    }
    return {};
}

} // namespace

DesktopWorkbench::DesktopWorkbench()
{
    window.showDocument(smallDocument(), {});
    window.setGeometry(100, 100, 1400, 700);
}

bool DesktopWorkbench::show()
{
    window.show();
    return QTest::qWaitForWindowExposed(&window) && QTest::qWaitForWindowActive(&window);
}

TimelineView* DesktopWorkbench::view() const
{
    return window.timeline()->view();
}

QWidget* DesktopWorkbench::rows() const
{
    return view()->viewport();
}

QAction* DesktopWorkbench::entry(const char* name) const
{
    return window.findChild<QAction*>(QString::fromLatin1(name));
}

QSet<QString> DesktopWorkbench::entries() const
{
    QSet<QString> names;
    for (const QAction* const action : window.menuBar()->actions())
        collectEntries(*action->menu(), names);
    return names;
}

QString DesktopWorkbench::clickIn(QMenu* menu, QAction* action)
{
    pointer.expect(QStringLiteral("menu %1 opens").arg(menu->title()), [menu] { return menu->isVisible(); });
    if (!pointer.play())
        return pointer.error();
    // Where an entry is, a menu knows once it is open.
    const bool isPlayed = pointer.moveTo(menu, menu->actionGeometry(action).center()).click().play();
    return isPlayed ? QString() : pointer.error();
}

QString DesktopWorkbench::choose(const char* name)
{
    QAction* const wanted = entry(name);
    QMenuBar* const bar = window.menuBar();
    QList<QMenu*> menus;
    for (const QAction* const top : bar->actions()) {
        if (menus.isEmpty())
            menus = pathTo(top->menu(), wanted);
    }
    if (menus.isEmpty())
        return QStringLiteral("no menu has the entry %1").arg(QString::fromLatin1(name));
    if (!pointer.moveTo(bar, bar->actionGeometry(menus.first()->menuAction()).center()).click().play())
        return pointer.error();
    for (int level = 0; level < menus.size(); ++level) {
        QAction* const next = level + 1 < menus.size() ? menus.at(level + 1)->menuAction() : wanted;
        const QString trouble = clickIn(menus.at(level), next);
        if (!trouble.isNull())
            return trouble;
    }
    return {};
}

QList<int> DesktopWorkbench::items() const
{
    QVector<int> ids = model()->itemIds();
    std::sort(ids.begin(), ids.end(), [this](int left, int right) {
        return model()->item(left)->startTime() < model()->item(right)->startTime();
    });
    return ids;
}

QPoint DesktopWorkbench::itemPos(int itemId) const
{
    const Item* const item = model()->item(itemId);
    const int x = view()->toPixel(item->startTime() + item->duration() / 2);
    return {x, view()->visualRect(view()->indexOfTrackRow(item->parentTrackId(), 1)).center().y()};
}
