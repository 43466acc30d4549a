#include "x11/desktop_workbench.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QTreeWidget>

#include <workbench/shortcut_page.h>

using Workbench::ShortcutPage;

namespace {

const QPushButton* buttonOf(const ShortcutPage& page, const QString& text)
{
    for (const auto* const button : page.findChildren<QPushButton*>()) {
        if (button->text().remove('&') == text)
            return button;
    }
    return nullptr;
}

int shownRows(const ShortcutPage& page)
{
    int rows = 0;
    const auto* const list = page.findChild<QTreeWidget*>();
    for (int i = 0; i < list->topLevelItemCount(); ++i) {
        for (int row = 0; row < list->topLevelItem(i)->childCount(); ++row)
            rows += list->topLevelItem(i)->child(row)->isHidden() ? 0 : 1;
    }
    return rows;
}

} // namespace

/// Drives each entry of the Help menu with the mouse and by its keys, in a real window, and sees to it that each menu
/// of the menu bar has a program that does so.
class TestX11MenusHelp : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(".?")); }

    void shortcutsAreListedSearchedAndCopied()
    {
        DesktopWorkbench f;
        QVERIFY(f.show());
        CHOOSE(f, "help");
        QTRY_VERIFY(f.dialog<ShortcutPage>());
        const ShortcutPage& page = *f.dialog<ShortcutPage>();
        const int all = shownRows(page);
        PLAY(f.pointer.type("duplic"));
        QTRY_COMPARE(page.findChild<QLineEdit*>()->text(), "duplic");
        QCOMPARE(shownRows(page), 1);
        QVERIFY(all > 30);
        const QPushButton* const copy = buttonOf(page, "Copy as text");
        QVERIFY(copy);
        PLAY(f.pointer.moveTo(copy).click());
        QTRY_COMPARE(QApplication::clipboard()->text(), page.text());
        QVERIFY(page.text().contains("Ctrl+D"));
        const QPushButton* const close = buttonOf(page, "Close");
        QVERIFY(close);
        PLAY(f.pointer.moveTo(close).click());
        QTRY_VERIFY(!f.window.findChild<ShortcutPage*>());
        QTRY_VERIFY(f.window.isActiveWindow());

        PLAY(f.pointer.shortcut("F1"));
        QTRY_VERIFY(f.dialog<ShortcutPage>());
        PLAY(f.pointer.key("Escape"));
        QTRY_VERIFY(!f.window.findChild<ShortcutPage*>());
    }

    void thePageSaysAllShortcutsOfTheMenus()
    {
        DesktopWorkbench f;
        QVERIFY(f.show());
        const QString text = ShortcutPage(f.window).text();
        for (const QString& menu : f.menus()) {
            for (const QString& name : f.entries(menu)) {
                const QAction* const action = f.entry(name);
                const QString keys = action->shortcut().toString(QKeySequence::NativeText);
                if (!keys.isEmpty())
                    QVERIFY2(text.contains(keys), qPrintable(name));
            }
        }
    }

    void noTwoEntriesHaveTheSameKeys()
    {
        const DesktopWorkbench f;
        QHash<QString, QString> owners;
        for (const QString& menu : f.menus()) {
            for (const QString& name : f.entries(menu)) {
                for (const QKeySequence& keys : f.entry(name)->shortcuts()) {
                    const QString text = keys.toString();
                    QVERIFY2(!owners.contains(text), qPrintable(text + ": " + name + ", " + owners.value(text)));
                    owners.insert(text, name);
                }
            }
        }
    }

    void about()
    {
        DesktopWorkbench f;
        QVERIFY(f.show());
        CHOOSE(f, "about");
        QTRY_VERIFY(f.dialog<QMessageBox>());
        const QMessageBox& box = *f.dialog<QMessageBox>();
        for (const char* const name : {"VeskTimeline Workbench", "libical", "libcsv", "simdjson", "zlib", qVersion()})
            QVERIFY2(box.text().contains(name), name);
        const QAbstractButton* const close = box.button(QMessageBox::Close);
        QVERIFY(close);
        PLAY(f.pointer.moveTo(close).click());
        QTRY_VERIFY(!f.dialog<QMessageBox>());
    }

    void eachMenuHasAProgram()
    {
        const DesktopWorkbench f;
        // Each tests that it has chosen every entry of its menu.
        QCOMPARE(f.menus(), QStringList({"fileMenu", "editMenu", "itemsMenu", "tracksMenu", "navigateMenu", "viewMenu",
                                         "helpMenu"}));
    }

    void everyEntryHasBeenChosen()
    {
        const DesktopWorkbench f;
        QCOMPARE(f.unchosen("helpMenu"), QStringList());
    }
};

QTEST_MAIN(TestX11MenusHelp)
#include "tst_x11_menus_help.moc"
