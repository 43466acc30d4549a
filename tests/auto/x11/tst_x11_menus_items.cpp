#include "x11/desktop_workbench.h"

#include <VeskTimeline/timeline_header_view.h>
#include <VeskTimeline/timeline_view.h>
#include <VeskTimeline/timeline_widget.h>

#include <QAction>
#include <QApplication>
#include <QColorDialog>
#include <QLineEdit>
#include <QMenu>
#include <QTest>

using namespace VeskTimeline;

namespace {

QColor colorOf(const DesktopWorkbench& f, int itemId)
{
    return std::as_const(*f.model()).item(itemId)->color();
}

bool isLocked(const DesktopWorkbench& f, int itemId)
{
    return !std::as_const(*f.model()).item(itemId)->isEditable();
}

// Of the menus of right presses; they destroy themselves later.
QList<QMenu*> openContextMenus(const DesktopWorkbench& f)
{
    QList<QMenu*> menus;
    for (QMenu* const menu : f.view()->findChildren<QMenu*>("contextMenu")) {
        if (menu->isVisible())
            menus.append(menu);
    }
    return menus;
}

QSet<QString> namesIn(const QMenu& menu)
{
    QSet<QString> names;
    for (const QAction* const action : menu.actions()) {
        if (!action->isSeparator())
            names.insert(action->menu() ? action->text().remove('&') : action->objectName());
    }
    return names;
}

} // namespace

/// Drives each entry of the Items menu, and what the mouse does with items besides it, in a real window.
class TestX11MenusItems : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(".?")); }

    void addItemAtTheIndicatorAndTypeItsLabel()
    {
        DesktopWorkbench f;
        QVERIFY(f.show());
        f.window.timeline()->header()->setIndicatorTime(DesktopWorkbench::origin + 10 * DesktopWorkbench::minute);
        PLAY(f.pointer.moveTo(f.rows(), f.namePos(2)).click());
        CHOOSE(f, "add_item");
        QTRY_COMPARE(f.items().size(), 4);
        const int added = f.items().at(1);
        QCOMPARE(f.model()->item(added)->parentTrackId(), 2);
        QCOMPARE(f.model()->itemTimes(added).start, DesktopWorkbench::origin + 10 * DesktopWorkbench::minute);
        QCOMPARE(f.view()->selectedItemIds(), QList<int>{added});
        // Its label is there to be typed at once.
        PLAY(f.pointer.type("break").key("Return"));
        QTRY_COMPARE(f.model()->itemLabel(added), "break");
        f.view()->setFocus();
        UNDO_ALL(f);
        QCOMPARE(f.contents(), f.initially);

        PLAY(f.pointer.shortcut("Insert"));
        QTRY_COMPARE(f.items().size(), 4);
    }

    void addItemToAnEmptyTimelineAddsATrack()
    {
        DesktopWorkbench f;
        f.window.showDocument({}, {});
        QVERIFY(f.show());
        CHOOSE(f, "add_item");
        QTRY_COMPARE(f.items().size(), 1);
        QCOMPARE(f.model()->trackCount(), 1);
        f.view()->setFocus();
        UNDO_ALL(f);
        QCOMPARE(f.model()->trackCount(), 0);
    }

    void lockAndUnlock()
    {
        DesktopWorkbench f;
        QVERIFY(f.show());
        const int id = f.items().at(0);
        QVERIFY(!f.entry("lock")->isEnabled());
        QVERIFY(f.select(id));
        CHOOSE(f, "lock");
        QTRY_VERIFY(isLocked(f, id));
        QVERIFY(!isLocked(f, f.items().at(1)));
        // A locked item stays where it is.
        PLAY(f.pointer.drag(f.rows(), f.itemPos(id), f.itemPos(id) + QPoint(60, 0)));
        QCOMPARE(f.contents(), f.initially);
        f.view()->selectItem(id, true);
        CHOOSE(f, "unlock");
        QTRY_VERIFY(!isLocked(f, id));
        PLAY(f.pointer.shortcut("ctrl+l"));
        QTRY_VERIFY(isLocked(f, id));
        PLAY(f.pointer.shortcut("ctrl+shift+l"));
        QTRY_VERIFY(!isLocked(f, id));
        UNDO_ALL(f);
        QVERIFY(!isLocked(f, id));
    }

    void colours()
    {
        DesktopWorkbench f;
        QVERIFY(f.show());
        const int id = f.items().at(0);
        const QColor before = colorOf(f, id);
        const QStringList names{"Blue",   "Orange", "Green", "Red",   "Teal",   "Yellow",
                                "Purple", "Pink",   "Brown", "Olive", "Indigo", "Grey"};
        QVERIFY(f.select(id));
        for (int i = 0; i < names.size(); ++i) {
            CHOOSE(f, "Colour/" + names.at(i));
            QTRY_COMPARE(colorOf(f, id), Kit::StandardTimelineModel::trackColor(i));
        }
        CHOOSE(f, "Colour/Colour of the track");
        QTRY_COMPARE(colorOf(f, id), f.model()->colorOfTrack(1));
        UNDO_ALL(f);
        QCOMPARE(colorOf(f, id), before);
    }

    void anyOtherColourIsTyped()
    {
        DesktopWorkbench f;
        QVERIFY(f.show());
        const int id = f.items().at(0);
        QVERIFY(f.select(id));
        CHOOSE(f, "Colour/Other…");
        TYPE_COLOR(f, "#123456");
        QTRY_COMPARE(colorOf(f, id), QColor("#123456"));

        CHOOSE(f, "Colour/Other…");
        QTRY_VERIFY(f.dialog<QColorDialog>());
        PLAY(f.pointer.key("Escape"));
        QTRY_VERIFY(!f.dialog<QColorDialog>());
        QCOMPARE(colorOf(f, id), QColor("#123456"));
    }

    void aDoubleClickOnAnEmptyPlaceAddsAnItem()
    {
        DesktopWorkbench f;
        QVERIFY(f.show());
        const QPoint between((f.itemPos(f.items().at(0)) + f.itemPos(f.items().at(1))) / 2);
        PLAY(f.pointer.moveTo(f.rows(), between).doubleClick());
        QTRY_COMPARE(f.items().size(), 4);
        const int added = f.items().at(1);
        QCOMPARE(f.model()->item(added)->parentTrackId(), 1);
        const auto times = f.model()->itemTimes(added);
        const qint64 time = f.view()->toTime(between.x());
        QVERIFY(times.start <= time && time <= times.end());
        PLAY(f.pointer.type("x").key("Return"));
        QTRY_COMPARE(f.model()->itemLabel(added), "x");
        // On an item it is no other one, but its label.
        PLAY(f.pointer.moveTo(f.rows(), f.itemPos(f.items().at(0))).doubleClick());
        PLAY(f.pointer.type("y").key("Return"));
        QTRY_COMPARE(f.model()->itemLabel(f.items().at(0)), "y");
        QCOMPARE(f.items().size(), 4);
        f.view()->setFocus();
        UNDO_ALL(f);
        QCOMPARE(f.contents(), f.initially);
    }

    void aRightPressShowsOneMenu_data()
    {
        QTest::addColumn<int>("place");
        QTest::addColumn<QString>("expected");
        QTest::newRow("item") << 0 << "first";
        QTest::newRow("row") << 1 << "";
        QTest::newRow("track name") << 2 << "";
    }

    void aRightPressShowsOneMenu()
    {
        QFETCH(const int, place);
        QFETCH(const QString, expected);
        DesktopWorkbench f;
        QVERIFY(f.show());
        const QList<int> ids = f.items();
        const QPoint places[] = {f.itemPos(ids.at(0)), (f.itemPos(ids.at(0)) + f.itemPos(ids.at(1))) / 2, f.namePos(1)};
        PLAY(f.pointer.moveTo(f.rows(), places[place]).click(Qt::RightButton));
        QTRY_COMPARE(openContextMenus(f).size(), 1);
        const QSet<QString> names = namesIn(*openContextMenus(f).first());
        QCOMPARE(names.contains("rename_track"), place == 2);
        QCOMPARE(names.contains("add_item_here"), place != 2);
        QCOMPARE(names.contains("cut"), place != 2);
        QCOMPARE(f.view()->selectedItemIds().size(), expected.isEmpty() ? 0 : 1);
        PLAY(f.pointer.key("Escape"));
        QTRY_COMPARE(openContextMenus(f).size(), 0);
        QCOMPARE(QApplication::activePopupWidget(), nullptr);
        QCOMPARE(f.contents(), f.initially);
    }

    void theContextMenuAddsAnItemHere()
    {
        DesktopWorkbench f;
        QVERIFY(f.show());
        const QPoint between((f.itemPos(f.items().at(0)) + f.itemPos(f.items().at(1))) / 2);
        PLAY(f.pointer.moveTo(f.rows(), between).click(Qt::RightButton));
        QTRY_COMPARE(openContextMenus(f).size(), 1);
        QMenu* const menu = openContextMenus(f).first();
        PLAY(f.pointer.moveTo(menu, menu->actionGeometry(menu->actions().first()).center()).click());
        QTRY_COMPARE(f.items().size(), 4);
        QCOMPARE(f.model()->item(f.items().at(1))->parentTrackId(), 1);
    }

    void everyEntryHasBeenChosen()
    {
        const DesktopWorkbench f;
        QCOMPARE(f.unchosen("itemsMenu"), QStringList());
    }
};

QTEST_MAIN(TestX11MenusItems)
#include "tst_x11_menus_items.moc"
