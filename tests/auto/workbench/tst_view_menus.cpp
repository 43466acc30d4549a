#include <VeskTimeline/timeline_header_view.h>
#include <VeskTimeline/timeline_view.h>
#include <VeskTimeline/timeline_widget.h>
#include <hoxtools/dtg.h>

#include <QAction>
#include <QDateTime>
#include <QDoubleSpinBox>
#include <QInputDialog>
#include <QMenu>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

#include <workbench/main_window.h>
#include <workbench/navigation.h>
#include <workbench/theme.h>
#include <workbench/view_settings.h>

using namespace Workbench;
namespace DateTime = VeskTimeline::DateTime;

namespace {

// A click on an entry, as the keyboard of an open menu makes it.
void click(MainWindow& window, const char* menuName, const QString& text)
{
    auto* const menu = window.findChild<QMenu*>(menuName);
    QVERIFY2(menu, menuName);
    for (QAction* const action : menu->actions()) {
        if (action->text().remove('&') != text)
            continue;
        menu->popup(QPoint(100, 100));
        menu->setActiveAction(action);
        QTest::keyClick(menu, Qt::Key_Return);
        return;
    }
    QFAIL(qPrintable(text));
}

QStringList checkedEntries(const MainWindow& window, const char* menuName)
{
    QStringList texts;
    for (const QAction* const action : window.findChild<QMenu*>(menuName)->actions()) {
        if (action->isChecked())
            texts.append(action->text().remove('&'));
    }
    return texts;
}

// Answers the next dialog that asks for a length. Nothing: cancels it.
void answerDialog(std::optional<double> seconds, QString* title)
{
    QTimer::singleShot(0, qApp, [seconds, title] {
        auto* const dialog = qobject_cast<QInputDialog*>(QApplication::activeModalWidget());
        if (!dialog)
            return;
        *title = dialog->windowTitle();
        auto* const box = dialog->findChild<QDoubleSpinBox*>();
        if (seconds) {
            box->selectAll();
            QTest::keyClicks(box, QLocale().toString(*seconds, 'f', 3));
            QTest::keyClick(box, Qt::Key_Return);
        } else {
            QTest::keyClick(dialog, Qt::Key_Escape);
        }
    });
}

} // namespace

class TestViewMenus : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        QTest::failOnWarning(
            QRegularExpression("^(?!This plugin does not support (propagateSizeHints|raise|grabbing))"));
    }
    void cleanup() { QVERIFY(DTG::setTimezone('Z')); }

    void stepsAndTolerancesAreChosen()
    {
        MainWindow window;
        window.show();
        QCOMPARE(checkedEntries(window, "snapStep"), QStringList{"500 ms"});
        click(window, "snapStep", "5 min");
        QCOMPARE(window.viewSettings()->snapStep(), 300'000);
        QCOMPARE(checkedEntries(window, "snapStep"), QStringList{"5 min"});
        click(window, "snapStep", "Off");
        QCOMPARE(window.viewSettings()->snapStep(), 0);
        click(window, "snapTolerance", "1 h");
        QCOMPARE(window.viewSettings()->snapTolerance(), 3'600'000);
        QCOMPARE(checkedEntries(window, "snapTolerance"), QStringList{"1 h"});
    }

    void aLengthOfOnesOwnIsAskedFor()
    {
        MainWindow window;
        window.show();
        QString title;
        answerDialog(2.25, &title);
        click(window, "snapStep", "Custom…");
        QCOMPARE(title, "Snap step");
        QCOMPARE(window.viewSettings()->snapStep(), 2250);
        QCOMPARE(checkedEntries(window, "snapStep"), QStringList{"Custom (2250 ms)…"});

        answerDialog(std::nullopt, &title);
        click(window, "snapTolerance", "Custom…");
        QCOMPARE(title, "Snap tolerance");
        QCOMPARE(window.viewSettings()->snapTolerance(), 1000);
        QCOMPARE(checkedEntries(window, "snapTolerance"), QStringList{"1 s"});
        click(window, "snapStep", "1 s");
        QCOMPARE(checkedEntries(window, "snapStep"), QStringList{"1 s"});
    }

    void formatAndZoneOfTheRulerAreChosen()
    {
        MainWindow window;
        window.show();
        const auto* const header = window.timeline()->header();
        QCOMPARE(checkedEntries(window, "rulerFormat"), QStringList{"Automatic by zoom"});
        click(window, "rulerFormat", "ISO 8601, local time");
        QCOMPARE(header->dateTimeFormat(), DateTime::ISODate);
        QCOMPARE(header->hoverDateTimeFormat(), DateTime::ISODate);
        click(window, "rulerFormat", "Date-time group");
        QCOMPARE(header->dateTimeFormat(), DateTime::DTG);
        QCOMPARE(checkedEntries(window, "rulerFormat"), QStringList{"Date-time group"});
        QCOMPARE(checkedEntries(window, "zone"), QStringList{"Z (UTC)"});
        click(window, "zone", "R (UTC−5)");
        QCOMPARE(DTG::timezone(), 'R');
        QCOMPARE(checkedEntries(window, "zone"), QStringList{"R (UTC−5)"});
    }

    void whatIsShownIsSwitched_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool (*)(const MainWindow&)>("isOn");
        using IsOn = bool (*)(const MainWindow&);
        const auto row = [](const char* text, IsOn isOn) { QTest::newRow(text) << QString(text) << isOn; };
        row("Snap", [](const MainWindow& window) { return window.timeline()->isSnapEnabled(); });
        row("Live", [](const MainWindow& window) { return window.timeline()->header()->isLiveIndicatorVisible(); });
        row("Follow the present", [](const MainWindow& window) { return window.viewSettings()->followsLive(); });
        row("Show limits", [](const MainWindow& window) { return window.timeline()->header()->isLimitsVisible(); });
        row("Show indicator",
            [](const MainWindow& window) { return window.timeline()->header()->isIndicatorVisible(); });
        row("Show time under the pointer",
            [](const MainWindow& window) { return window.timeline()->header()->isHoverVisible(); });
    }
    void whatIsShownIsSwitched()
    {
        using IsOn = bool (*)(const MainWindow&);
        QFETCH(QString, text);
        QFETCH(IsOn, isOn);
        MainWindow window;
        window.show();
        const bool before = isOn(window);
        QCOMPARE(checkedEntries(window, "viewMenu").contains(text), before);
        click(window, "viewMenu", text);
        QCOMPARE(isOn(window), !before);
        QCOMPARE(checkedEntries(window, "viewMenu").contains(text), !before);
        click(window, "viewMenu", text);
        QCOMPARE(isOn(window), before);
    }

    void theLookIsChosen()
    {
        MainWindow window;
        window.show();
        QCOMPARE(checkedEntries(window, "theme"), QStringList{"As the system"});
        click(window, "theme", "Dark");
        QVERIFY(Theme::isDark());
        QCOMPARE(checkedEntries(window, "theme"), QStringList{"Dark"});
        click(window, "theme", "Light");
        QVERIFY(!Theme::isDark());
        click(window, "theme", "As the system");
        QCOMPARE(window.theme()->scheme(), Theme::System);
    }

    void theViewFollowsThePresentWhileThatIsInItsRange()
    {
        MainWindow window;
        window.show();
        const auto middle = [&window] {
            return window.timeline()->currentTime() + window.timeline()->zoomFactor() / 2;
        };
        const auto apart = [&middle] { return qAbs(QDateTime::currentMSecsSinceEpoch() - middle()); };
        constexpr int hour = 3'600'000;
        window.navigation()->setWindow(window.timeline()->startTime(), VeskTimeline::Zoom::FifteenSeconds);
        window.viewSettings()->setFollowsLive(true);
        const qint64 before = window.timeline()->currentTime();
        QTest::qWait(0);
        QCOMPARE(window.timeline()->currentTime(), before);
        // An empty document shows today, so the present is in it. At its ends there is no room for all of the window.
        window.viewSettings()->setLive(true);
        QVERIFY2(apart() < 16'000, qPrintable(QString::number(apart())));
        window.viewSettings()->setFollowsLive(false);
        window.navigation()->goToTime(QDateTime::currentMSecsSinceEpoch() - 2400LL * hour);
        window.viewSettings()->setFollowsLive(true);
        QVERIFY(apart() > hour);
    }
};

QTEST_MAIN(TestViewMenus)
#include "tst_view_menus.moc"
