#include "x11/desktop_workbench.h"

#include <VeskTimeline/timeline_header_view.h>
#include <VeskTimeline/timeline_view.h>
#include <VeskTimeline/timeline_widget.h>
#include <hoxtools/dtg.h>

#include <QAction>
#include <QApplication>
#include <QDockWidget>
#include <QSettings>
#include <QStyle>
#include <QTest>

#include <workbench/theme.h>
#include <workbench/view_settings.h>

using namespace VeskTimeline;
using Workbench::Theme;
using Workbench::ViewSettings;

namespace {

constexpr int second = 1000;
constexpr int minute = 60 * second;
constexpr int hour = 60 * minute;

struct Length
{
    const char* text;
    int msecs;
};

// How many entries of a group are checked, and which is.
QStringList checkedIn(const DesktopWorkbench& f, const QString& menu)
{
    QStringList names;
    for (const QString& name : f.entries("viewMenu")) {
        if (name.startsWith(menu) && f.entry(name)->isChecked())
            names.append(name.mid(menu.size()));
    }
    return names;
}

// What the window looks like.
QImage picture(const DesktopWorkbench& f)
{
    return const_cast<Workbench::MainWindow&>(f.window).timeline()->grab().toImage();
}

} // namespace

/// Drives each entry of the View menu with the mouse and by its keys, in a real window.
class TestX11MenusView : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(".?")); }

    void zoomInOutAndFit()
    {
        DesktopWorkbench f;
        QVERIFY(f.show());
        const Zoom::Factor widest = f.view()->zoomFactor();
        CHOOSE(f, "pnx_zoom_in");
        QTRY_VERIFY(f.view()->zoomFactor() < widest);
        const Zoom::Factor closer = f.view()->zoomFactor();
        CHOOSE(f, "pnx_zoom_in");
        QTRY_VERIFY(f.view()->zoomFactor() < closer);
        const Zoom::Factor closest = f.view()->zoomFactor();
        CHOOSE(f, "pnx_zoom_out");
        QTRY_COMPARE(f.view()->zoomFactor(), closer);
        CHOOSE(f, "fit");
        QTRY_COMPARE(f.view()->zoomFactor(), widest);

        PLAY(f.pointer.shortcut("ctrl+plus").shortcut("ctrl+plus"));
        QTRY_COMPARE(f.view()->zoomFactor(), closest);
        PLAY(f.pointer.shortcut("ctrl+minus"));
        QTRY_COMPARE(f.view()->zoomFactor(), closer);
        PLAY(f.pointer.shortcut("ctrl+0"));
        QTRY_COMPARE(f.view()->zoomFactor(), widest);
    }

    void snapIsForWhatTheMouseMoves()
    {
        DesktopWorkbench f;
        QVERIFY(f.show());
        const int id = f.items().at(0);
        QVERIFY(f.entry("snap")->isChecked());
        CHOOSE(f, "snapStep/5 min");
        PLAY(f.pointer.drag(f.rows(), f.itemPos(id), f.itemPos(id) + QPoint(80, 0)));
        const auto moved = [&] { return f.model()->itemTimes(id).start - DesktopWorkbench::origin; };
        QTRY_VERIFY(moved() > 0);
        QCOMPARE(moved() % (5 * minute), 0);
        UNDO_ALL(f);
        CHOOSE(f, "snap");
        QTRY_VERIFY(!f.model()->isSnapEnabled());
        QVERIFY(!f.entry("snap")->isChecked());
        PLAY(f.pointer.drag(f.rows(), f.itemPos(id), f.itemPos(id) + QPoint(80, 0)));
        QTRY_VERIFY(moved() > 0);
        QVERIFY(moved() % (5 * minute) != 0);
        CHOOSE(f, "snap");
        QTRY_VERIFY(f.model()->isSnapEnabled());
        QVERIFY(f.entry("snap")->isChecked());
    }

    void snapSteps()
    {
        DesktopWorkbench f;
        QVERIFY(f.show());
        const Length lengths[] = {{"Off", 0},
                                  {"500 ms", 500},
                                  {"1 s", second},
                                  {"5 s", 5 * second},
                                  {"10 s", 10 * second},
                                  {"30 s", 30 * second},
                                  {"1 min", minute},
                                  {"5 min", 5 * minute},
                                  {"10 min", 10 * minute},
                                  {"15 min", 15 * minute},
                                  {"30 min", 30 * minute},
                                  {"1 h", hour},
                                  {"6 h", 6 * hour},
                                  {"1 d", 24 * hour}};
        for (const Length& length : lengths) {
            CHOOSE(f, QStringLiteral("snapStep/%1").arg(length.text));
            QTRY_COMPARE(f.model()->snapStep(), length.msecs);
            QCOMPARE(checkedIn(f, "snapStep"), QStringList{QStringLiteral("/%1").arg(length.text)});
        }
    }

    void snapTolerances()
    {
        DesktopWorkbench f;
        QVERIFY(f.show());
        const Length lengths[] = {{"Off", 0},
                                  {"1 s", second},
                                  {"5 s", 5 * second},
                                  {"10 s", 10 * second},
                                  {"30 s", 30 * second},
                                  {"1 min", minute},
                                  {"5 min", 5 * minute},
                                  {"15 min", 15 * minute},
                                  {"1 h", hour}};
        for (const Length& length : lengths) {
            CHOOSE(f, QStringLiteral("snapTolerance/%1").arg(length.text));
            QTRY_COMPARE(f.model()->snapTolerance(), length.msecs);
            QCOMPARE(checkedIn(f, "snapTolerance"), QStringList{QStringLiteral("/%1").arg(length.text)});
        }
    }

    void lengthsThatAreTyped()
    {
        DesktopWorkbench f;
        QVERIFY(f.show());
        CHOOSE(f, "snapStepCustom", {"4", "2", "Return"});
        QTRY_COMPARE(f.model()->snapStep(), 42 * second);
        QVERIFY(f.entry("snapStepCustom")->isChecked());
        QCOMPARE(f.entry("snapStepCustom")->text(), "Custom (42 s)…");
        CHOOSE(f, "snapStep/1 s");
        CHOOSE(f, "snapStepCustom", {"7", "Escape"});
        QTRY_VERIFY(f.window.isActiveWindow());
        QCOMPARE(f.model()->snapStep(), second);
        QCOMPARE(checkedIn(f, "snapStep"), QStringList{"/1 s"});
        CHOOSE(f, "snapToleranceCustom", {"3", "Return"});
        QTRY_COMPARE(f.model()->snapTolerance(), 3 * second);
        QCOMPARE(checkedIn(f, "snapTolerance"), QStringList{"Custom"});
    }

    void live()
    {
        DesktopWorkbench f;
        QVERIFY(f.show());
        TimelineHeaderView* const header = f.window.timeline()->header();
        CHOOSE(f, "live");
        QTRY_VERIFY(header->isLiveIndicatorVisible());
        QVERIFY(f.entry("live")->isChecked());
        QVERIFY(qAbs(header->liveIndicatorTime() - QDateTime::currentMSecsSinceEpoch()) < 10 * second);
        CHOOSE(f, "live");
        QTRY_VERIFY(!header->isLiveIndicatorVisible());
        QVERIFY(!f.entry("live")->isChecked());
    }

    void followThePresent()
    {
        DesktopWorkbench f;
        const qint64 now = QDateTime::currentMSecsSinceEpoch();
        Kit::Document document;
        document.track({"T"}).items = {{"since yesterday", now - 24 * hour, 48 * hour, {}, true}};
        f.window.showDocument(document, {});
        QVERIFY(f.show());
        CHOOSE(f, "pnx_zoom_in");
        CHOOSE(f, "pnx_zoom_in");
        f.view()->setCurrentTime(now - 20 * hour);
        const auto showsNow = [&] {
            const qint64 time = QDateTime::currentMSecsSinceEpoch();
            return f.view()->currentTime() < time && time < f.view()->currentTime() + f.view()->zoomFactor();
        };
        CHOOSE(f, "live");
        QVERIFY(!showsNow());
        CHOOSE(f, "follow_live");
        QTRY_VERIFY(showsNow());
        QVERIFY(f.entry("follow_live")->isChecked());
        CHOOSE(f, "follow_live");
        QTRY_VERIFY(!f.window.viewSettings()->followsLive());
        QVERIFY(!f.entry("follow_live")->isChecked());
    }

    void rulerFormats()
    {
        DesktopWorkbench f;
        QVERIFY(f.show());
        const struct
        {
            const char* text;
            DateTime::Format format;
        } formats[] = {{"Date-time group", DateTime::DTG},
                       {"Hours, minutes, seconds", DateTime::DTGShort},
                       {"Hours, minutes", DateTime::DTGVeryShort},
                       {"ISO 8601, local time", DateTime::ISODate},
                       {"Date and time, local time", DateTime::Standard},
                       {"Automatic by zoom", DateTime::DTGVeryShort}};
        for (const auto& entry : formats) {
            const QImage before = picture(f);
            CHOOSE(f, QStringLiteral("rulerFormat/%1").arg(entry.text));
            QTRY_COMPARE(f.window.timeline()->header()->dateTimeFormat(), entry.format);
            QCOMPARE(checkedIn(f, "rulerFormat"), QStringList{QStringLiteral("/%1").arg(entry.text)});
            QVERIFY2(picture(f) != before, entry.text);
        }
    }

    void zones()
    {
        DesktopWorkbench f;
        QVERIFY(f.show());
        for (const QChar letter : QStringLiteral("YXWVUTSRQPONABCDEFGHIKLMZ")) {
            const QString text = ViewSettings::zoneText(letter.toLatin1());
            const QImage before = picture(f);
            CHOOSE(f, "zone/" + text);
            QTRY_COMPARE(DTG::timezone(), letter.toLatin1());
            QCOMPARE(checkedIn(f, "zone"), QStringList{"/" + text});
            QVERIFY2(picture(f) != before, qPrintable(text));
        }
    }

    void whatTheRulerShows_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("limits") << "show_limits";
        QTest::newRow("indicator") << "show_indicator";
        QTest::newRow("time under the pointer") << "show_hover";
    }

    void whatTheRulerShows()
    {
        QFETCH(const QString, name);
        DesktopWorkbench f;
        QVERIFY(f.show());
        const TimelineHeaderView& header = *f.window.timeline()->header();
        const QString which = name;
        const auto isShown = [&] {
            if (which == "show_limits")
                return header.isLimitsVisible();
            return which == "show_indicator" ? header.isIndicatorVisible() : header.isHoverVisible();
        };
        const auto pictureWithPointer = [&] {
            const QPoint inTheRows(800, 60);
            const bool isThere =
                f.pointer.moveTo(f.rows(), inTheRows - QPoint(9, 0)).moveTo(f.rows(), inTheRows).play();
            return isThere ? picture(f) : QImage();
        };
        QVERIFY(f.entry(name)->isChecked());
        const QImage with = pictureWithPointer();
        CHOOSE(f, name);
        QTRY_VERIFY(!isShown());
        QVERIFY(!f.entry(name)->isChecked());
        const QImage without = pictureWithPointer();
        QVERIFY(without != with);
        CHOOSE(f, name);
        QTRY_VERIFY(isShown());
        QVERIFY(f.entry(name)->isChecked());
        QCOMPARE(pictureWithPointer(), with);
    }

    void looks()
    {
        DesktopWorkbench f;
        QVERIFY(f.show());
        QVERIFY(f.entry("theme/As the system")->isChecked());
        CHOOSE(f, "theme/Dark");
        QTRY_VERIFY(Theme::isDark());
        QCOMPARE(checkedIn(f, "theme"), QStringList{"/Dark"});
        QVERIFY(picture(f).pixelColor(5, f.window.timeline()->height() - 60).lightness() < 128);
        CHOOSE(f, "theme/Light");
        QTRY_VERIFY(!Theme::isDark());
        QCOMPARE(checkedIn(f, "theme"), QStringList{"/Light"});
        QVERIFY(picture(f).pixelColor(5, f.window.timeline()->height() - 60).lightness() > 128);
        CHOOSE(f, "theme/As the system");
        QTRY_COMPARE(f.window.theme()->scheme(), Theme::System);
        QCOMPARE(checkedIn(f, "theme"), QStringList{"/As the system"});
    }

    void inspector()
    {
        DesktopWorkbench f;
        QVERIFY(f.show());
        const auto* const dock = f.window.findChild<QDockWidget*>("inspectorDock");
        QVERIFY(dock->isVisible());
        CHOOSE(f, "inspector");
        QTRY_VERIFY(!dock->isVisible());
        QVERIFY(!f.entry("inspector")->isChecked());
        CHOOSE(f, "inspector");
        QTRY_VERIFY(dock->isVisible());
        QVERIFY(f.entry("inspector")->isChecked());
        PLAY(f.pointer.shortcut("ctrl+i"));
        QTRY_VERIFY(!dock->isVisible());
    }

    void theSettingsAreKeptForTheNextWindow()
    {
        {
            DesktopWorkbench f;
            f.window.keepViewSettings();
            QVERIFY(f.show());
            CHOOSE(f, "snap");
            CHOOSE(f, "snapStep/10 min");
            CHOOSE(f, "show_limits");
            CHOOSE(f, "theme/Dark");
        }
        DesktopWorkbench f;
        f.window.keepViewSettings();
        QVERIFY(!f.entry("snap")->isChecked());
        QVERIFY(f.entry("snapStep/10 min")->isChecked());
        QVERIFY(!f.entry("show_limits")->isChecked());
        QVERIFY(f.entry("theme/Dark")->isChecked());
        QSettings().clear();
    }

    void everyEntryHasBeenChosen()
    {
        const DesktopWorkbench f;
        QCOMPARE(f.unchosen("viewMenu"), QStringList());
    }
};

QTEST_MAIN(TestX11MenusView)
#include "tst_x11_menus_view.moc"
