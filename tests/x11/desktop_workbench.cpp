#include "x11/desktop_workbench.h"

#include <VeskTimeline/timeline_view.h>
#include <VeskTimeline/timeline_widget.h>
#include <VeskTimelineKit/standard_timeline_model.h>

#include <QAction>
#include <QApplication>
#include <QColorDialog>
#include <QLineEdit>
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

QString plain(QString text)
{
    return text.remove(u'&');
}

QString nameOf(const QMenu& menu)
{
    return menu.objectName().isEmpty() ? plain(menu.title()) : menu.objectName();
}

QString nameOf(const QMenu& menu, const QAction& action)
{
    if (action.menu())
        return nameOf(*action.menu());
    return action.objectName().isEmpty() ? nameOf(menu) + u'/' + plain(action.text()) : action.objectName();
}

void collectEntries(const QMenu& menu, QSet<QString>& names)
{
    for (const QAction* const action : menu.actions()) {
        if (action->isSeparator())
            continue;
        if (action->menu() && !action->menu()->isEmpty())
            collectEntries(*action->menu(), names);
        else
            names.insert(nameOf(menu, *action));
    }
}

QAction* entryOf(const QMenu& menu, const QString& name)
{
    for (QAction* const action : menu.actions()) {
        if (!action->isSeparator() && nameOf(menu, *action) == name)
            return action;
    }
    return nullptr;
}

// The menus to open, outermost first, until one that has the entry; empty when none has it.
QList<QMenu*> pathBelow(QMenu* menu, const QString& name)
{
    if (entryOf(*menu, name))
        return {menu};
    for (const QAction* const action : menu->actions()) {
        const QList<QMenu*> below = action->menu() ? pathBelow(action->menu(), name) : QList<QMenu*>();
        if (!below.isEmpty())
            return QList<QMenu*>{menu} + below;
    }
    return {};
}

QString contentsOf(const Kit::StandardTimelineModel& model, const Track& parent)
{
    QStringList tracks;
    for (const TrackPtr& track : parent.tracks()) {
        QList<QString> items;
        for (const ItemPtr& item : track->items())
            items.append(QStringLiteral("%1 %2+%3")
                             .arg(model.itemLabel(item->id()))
                             .arg((item->startTime() - DesktopWorkbench::origin) / DesktopWorkbench::minute)
                             .arg(item->duration() / DesktopWorkbench::minute));
        const QString below = track->hasTracks() ? u'{' + contentsOf(model, *track) + u'}' : QString();
        tracks.append(QStringLiteral("%1[%2]%3").arg(track->text(), items.join(QStringLiteral(", ")), below));
    }
    return tracks.join(u' ');
}

// In all windows of this program.
QSet<QString>& chosenEntries()
{
    static QSet<QString> names;
    return names;
}

} // namespace

DesktopWorkbench::DesktopWorkbench() : initially(QStringLiteral("A[first 0+5, second 20+5] B[third 40+5]"))
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

QList<QMenu*> DesktopWorkbench::pathTo(const QString& name, const QString& menu) const
{
    for (const QAction* const top : window.menuBar()->actions()) {
        QList<QMenu*> path = pathBelow(top->menu(), menu.isEmpty() ? name : menu);
        if (path.isEmpty())
            continue;
        if (!menu.isEmpty())
            path.append(entryOf(*path.last(), menu)->menu());
        return path;
    }
    return {};
}

QAction* DesktopWorkbench::entry(const QString& name) const
{
    const QList<QMenu*> path = pathTo(name, {});
    return path.isEmpty() ? nullptr : entryOf(*path.last(), name);
}

QStringList DesktopWorkbench::menus() const
{
    QStringList names;
    for (const QAction* const top : window.menuBar()->actions())
        names.append(nameOf(*top->menu()));
    return names;
}

QSet<QString> DesktopWorkbench::entries(const QString& menu) const
{
    QSet<QString> names;
    for (const QAction* const top : window.menuBar()->actions()) {
        if (nameOf(*top->menu()) == menu)
            collectEntries(*top->menu(), names);
    }
    return names;
}

QStringList DesktopWorkbench::unchosen(const QString& menu) const
{
    QStringList names = (entries(menu) - chosenEntries()).values();
    names.sort();
    return names;
}

QString DesktopWorkbench::clickIn(QMenu* menu, const QString& name, const QStringList& keys)
{
    pointer.expect(QStringLiteral("menu %1 opens").arg(menu->title()), [menu] { return menu->isVisible(); });
    if (!pointer.play())
        return pointer.error();
    // What is in a menu, whether it is enabled and where it is, is settled once it is open.
    QAction* const action = entryOf(*menu, name);
    if (!action)
        return QStringLiteral("the menu has no entry %1").arg(name);
    if (!action->isEnabled())
        return QStringLiteral("the entry %1 is disabled").arg(name);
    chosenEntries().insert(name);
    pointer.moveTo(menu, menu->actionGeometry(action).center()).click();
    if (!keys.isEmpty()) {
        pointer.expect(QStringLiteral("dialog of %1 opens").arg(name), [] {
            const QWidget* const dialog = QApplication::activeModalWidget();
            return dialog && dialog->isActiveWindow();
        });
    }
    for (const QString& key : keys)
        pointer.key(key);
    return pointer.play() ? QString() : pointer.error();
}

QString DesktopWorkbench::choose(const QString& name, const QStringList& keys)
{
    const QList<QMenu*> path = pathTo(name, {});
    if (path.isEmpty())
        return QStringLiteral("no menu has the entry %1").arg(name);
    return chooseAlong(path, name, keys);
}

QString DesktopWorkbench::chooseIn(const QString& menu, const QString& name)
{
    const QList<QMenu*> path = pathTo(name, menu);
    if (path.isEmpty())
        return QStringLiteral("there is no menu %1").arg(menu);
    return chooseAlong(path, name, {});
}

QString DesktopWorkbench::chooseAlong(const QList<QMenu*>& path, const QString& name, const QStringList& keys)
{
    QMenuBar* const bar = window.menuBar();
    if (!pointer.moveTo(bar, bar->actionGeometry(path.first()->menuAction()).center()).click().play())
        return pointer.error();
    for (int level = 0; level + 1 < path.size(); ++level) {
        const QString trouble = clickIn(path.at(level), nameOf(*path.at(level + 1)));
        if (!trouble.isNull())
            return trouble;
    }
    return clickIn(path.last(), name, keys);
}

QList<int> DesktopWorkbench::items() const
{
    QVector<int> ids = model()->itemIds();
    std::sort(ids.begin(), ids.end(), [this](int left, int right) {
        return model()->item(left)->startTime() < model()->item(right)->startTime();
    });
    return ids;
}

QLineEdit* DesktopWorkbench::colorField() const
{
    const auto* const colors = dialog<QColorDialog>();
    if (!colors)
        return nullptr;
    // The only one that is not part of a spin box.
    for (auto* const field : colors->findChildren<QLineEdit*>()) {
        if (field->text().startsWith(u'#'))
            return field;
    }
    return nullptr;
}

QString DesktopWorkbench::contents() const
{
    return contentsOf(*model(), *std::as_const(*model()).rootTrack());
}

bool DesktopWorkbench::select(int itemId)
{
    view()->clearSelectedItems();
    return pointer.moveTo(rows(), itemPos(itemId)).click().play() && view()->selectedItemIds() == QList<int>{itemId};
}

QPoint DesktopWorkbench::namePos(int trackId) const
{
    constexpr int besideTheArrow = 40;
    const QRect cell = view()->visualRect(view()->indexOfTrackRow(trackId, 0));
    return {cell.left() + besideTheArrow, cell.center().y()};
}

QPoint DesktopWorkbench::itemPos(int itemId) const
{
    const Item* const item = model()->item(itemId);
    const int x = view()->toPixel(item->startTime() + item->duration() / 2);
    return {x, view()->visualRect(view()->indexOfTrackRow(item->parentTrackId(), 1)).center().y()};
}
