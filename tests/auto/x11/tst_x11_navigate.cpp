#include "x11/desktop_workbench.h"

#include <VeskTimeline/timeline_header_view.h>
#include <VeskTimeline/timeline_view.h>
#include <VeskTimeline/timeline_widget.h>
#include <VeskTimelineKit/standard_timeline_model.h>

#include <QAction>
#include <QLineEdit>
#include <QTest>

#include <workbench/find_bar.h>
#include <workbench/go_to_dialog.h>
#include <workbench/navigation.h>
#include <workbench/overview_strip.h>

using namespace VeskTimeline;
using Workbench::FindBar;
using Workbench::GoToDialog;
using Workbench::OverviewStrip;

namespace {

constexpr qint64 minute = DesktopWorkbench::minute;
constexpr qint64 hour = 60 * minute;
constexpr qint64 day = 24 * hour;

// Ten years.
void addFarItem(const DesktopWorkbench& f)
{
    Kit::DocumentItem item;
    item.label = QStringLiteral("far away");
    item.start = DesktopWorkbench::origin + 3650 * day;
    item.duration = hour;
    f.model()->addItem(1, item);
    QCoreApplication::processEvents();
    f.window.navigation()->fit();
}

QString selectedLabel(const DesktopWorkbench& f)
{
    const QList<int>& ids = f.view()->selectedItemIds();
    return ids.size() == 1 ? f.model()->itemLabel(ids.first()) : QString();
}

} // namespace

/// Drives the Navigate menu, the find bar, the dialog and the overview strip with mouse and keys, in a real window.
class TestX11Navigate : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(".?")); }

    void findNextAndPrevious()
    {
        DesktopWorkbench f;
        addFarItem(f);
        QVERIFY(f.show());
        auto* const bar = f.window.findChild<FindBar*>();
        CHOOSE(f, "find");
        QTRY_VERIFY(bar->isVisible() && bar->field()->hasFocus());
        PLAY(f.pointer.key("a").key("r"));
        QTRY_COMPARE(bar->countText(), "1 of 1");
        QCOMPARE(selectedLabel(f), "far away");
        QVERIFY(f.view()->currentTime() > DesktopWorkbench::origin + 3640 * day);
        PLAY(f.pointer.key("ctrl+a").key("r"));
        // "third" is not before "far away" any more: it goes on from what is selected.
        QTRY_COMPARE(bar->countText(), "3 of 3");
        CHOOSE(f, "find_next");
        QTRY_COMPARE(selectedLabel(f), "first");
        CHOOSE(f, "find_previous");
        QTRY_COMPARE(selectedLabel(f), "far away");
        PLAY(f.pointer.shortcut("F3"));
        QTRY_COMPARE(selectedLabel(f), "first");
        PLAY(f.pointer.shortcut("shift+F3"));
        QTRY_COMPARE(selectedLabel(f), "far away");
        PLAY(f.pointer.shortcut("F3"));
        QTRY_COMPARE(selectedLabel(f), "first");
        PLAY(f.pointer.key("Return"));
        QTRY_COMPARE(selectedLabel(f), "third");
        PLAY(f.pointer.key("shift+Return"));
        QTRY_COMPARE(selectedLabel(f), "first");
        PLAY(f.pointer.key("Escape"));
        QTRY_VERIFY(!bar->isVisible());
        QTRY_VERIFY(f.view()->hasFocus());
        PLAY(f.pointer.shortcut("ctrl+f"));
        QTRY_VERIFY(bar->isVisible() && bar->field()->hasFocus());
    }

    void goToDateAndTime()
    {
        DesktopWorkbench f;
        QVERIFY(f.show());
        CHOOSE(f, "go_to");
        QTRY_VERIFY(f.window.findChild<GoToDialog*>());
        auto* const dialog = f.window.findChild<GoToDialog*>();
        QVERIFY(QTest::qWaitForWindowActive(dialog));
        QTRY_VERIFY(dialog->field()->hasFocus());
        for (const char* const digit : {"1", "9", "7", "2"})
            f.pointer.key(QString::fromLatin1(digit));
        PLAY(f.pointer.key("Return"));
        QTRY_VERIFY(!f.window.findChild<GoToDialog*>());
        QCOMPARE(f.view()->currentTime(), 63'072'000'000);
        QTRY_VERIFY(f.window.isActiveWindow());
        PLAY(f.pointer.shortcut("ctrl+g"));
        QTRY_VERIFY(f.dialog<GoToDialog>());
        PLAY(f.pointer.key("Escape"));
        QTRY_VERIFY(!f.window.findChild<GoToDialog*>());
        QCOMPARE(f.view()->currentTime(), 63'072'000'000);
    }

    void firstAndLastItemAndParts()
    {
        DesktopWorkbench f;
        addFarItem(f);
        QVERIFY(f.show());
        const qint64 start = f.view()->currentTime();
        QVERIFY(!f.entry("previous_part")->isEnabled());
        CHOOSE(f, "last_item");
        QTRY_COMPARE(f.window.navigation()->window().end, f.window.navigation()->overviewSpan().end);
        CHOOSE(f, "first_item");
        QTRY_COMPARE(f.view()->currentTime(), start);
        CHOOSE(f, "next_part");
        QTRY_VERIFY(f.view()->currentTime() > start + 3600 * day);
        CHOOSE(f, "previous_part");
        QTRY_COMPARE(f.view()->currentTime(), start);
        PLAY(f.pointer.shortcut("ctrl+End"));
        QTRY_COMPARE(f.window.navigation()->window().end, f.window.navigation()->overviewSpan().end);
        PLAY(f.pointer.shortcut("ctrl+Home"));
        QTRY_COMPARE(f.view()->currentTime(), start);
        PLAY(f.pointer.shortcut("ctrl+Next"));
        QTRY_VERIFY(f.view()->currentTime() > start + 3600 * day);
        PLAY(f.pointer.shortcut("ctrl+Prior"));
        QTRY_COMPARE(f.view()->currentTime(), start);
    }

    void steps()
    {
        DesktopWorkbench f;
        QVERIFY(f.show());
        qint64 expected = f.view()->currentTime();
        const struct
        {
            const char* entry;
            const char* keys;
            qint64 step;
        } steps[] = {{"day_forward", "alt+Next", day},
                     {"hour_forward", "alt+Right", hour},
                     {"minute_forward", "alt+shift+Right", minute},
                     {"minute_back", "alt+shift+Left", -minute},
                     {"hour_back", "alt+Left", -hour},
                     {"day_back", "alt+Prior", -day}};
        for (const auto& step : steps) {
            CHOOSE(f, step.entry);
            expected += step.step;
            QTRY_COMPARE(f.view()->currentTime(), expected);
            PLAY(f.pointer.shortcut(step.keys));
            expected += step.step;
            QTRY_COMPARE(f.view()->currentTime(), expected);
        }
    }

    void theOverviewIsClickedDraggedAndTurned()
    {
        DesktopWorkbench f;
        addFarItem(f);
        QVERIFY(f.show());
        auto* const strip = f.window.findChild<OverviewStrip*>();
        const qint64 start = DesktopWorkbench::origin;
        const qint64 length = 3650 * day;
        const auto share = [&] { return double(f.view()->currentTime() - start) / double(length); };
        const QPoint middle(strip->width() / 2, 10);
        PLAY(f.pointer.moveTo(strip, middle).click());
        QTRY_VERIFY(qAbs(share() - 0.5) < 0.002);
        PLAY(f.pointer.drag(strip, middle, middle + QPoint(strip->width() / 4, 0)));
        QTRY_VERIFY(qAbs(share() - 0.75) < 0.003);

        const qint64 before = f.view()->currentTime();
        PLAY(f.pointer.wheel(-1));
        QTRY_COMPARE(f.view()->currentTime(), before + day / 2);
        PLAY(f.pointer.keyDown("ctrl").wheel(1).keyUp("ctrl"));
        QTRY_COMPARE(f.view()->zoomFactor(), Zoom::TwelveHours);
        PLAY(f.pointer.moveTo(strip, middle).doubleClick());
        QTRY_COMPARE(f.view()->zoomFactor(), Zoom::OneDay);
        QTRY_COMPARE(f.view()->currentTime(), start);
    }

    void everyEntryHasBeenChosen()
    {
        const DesktopWorkbench f;
        QCOMPARE(f.unchosen("navigateMenu"), QStringList());
    }
};

QTEST_MAIN(TestX11Navigate)
#include "tst_x11_navigate.moc"
