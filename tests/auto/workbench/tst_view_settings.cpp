#include <VeskTimeline/timeline_header_view.h>
#include <VeskTimeline/timeline_widget.h>
#include <hoxtools/dtg.h>

#include <QAction>
#include <QApplication>
#include <QImage>
#include <QLineEdit>
#include <QMenu>
#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTreeWidget>

#include <algorithm>
#include <workbench/icons.h>
#include <workbench/main_window.h>
#include <workbench/shortcut_page.h>
#include <workbench/theme.h>
#include <workbench/view_settings.h>

using namespace Workbench;

class TestViewSettings : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aChosenLookIsThatOfTheWholeApplicationUntilTheSystemsIsBack()
    {
        const QPalette before = QApplication::palette();
        Theme theme;
        const QSignalSpy changes(&theme, &Theme::changed);
        theme.setScheme(Theme::Dark);
        QVERIFY(Theme::isDark());
        theme.setScheme(Theme::Dark);
        QCOMPARE(changes.count(), 1);
        theme.setScheme(Theme::Light);
        QVERIFY(!Theme::isDark());
        theme.setScheme(Theme::System);
        QCOMPARE(QApplication::palette().color(QPalette::Window), before.color(QPalette::Window));
        QCOMPARE(changes.count(), 3);
    }

    void namesAreReadBack()
    {
        for (const auto scheme : {Theme::System, Theme::Light, Theme::Dark})
            QCOMPARE(Theme::schemeOf(Theme::name(scheme)), std::optional(scheme));
        QCOMPARE(Theme::schemeOf("Dark"), std::nullopt);
    }

    void iconsTakeTheColourOfTheText()
    {
        registerIcons();
        Theme theme;
        const QIcon open = icon("open");
        theme.setScheme(Theme::Light);
        const QImage light = open.pixmap(24, 24).toImage();
        theme.setScheme(Theme::Dark);
        const QImage dark = open.pixmap(24, 24).toImage();
        QVERIFY(light != dark);
        QVERIFY(open.pixmap({24, 24}, QIcon::Disabled).toImage() != dark);
    }

    void settingsOfTheViewComeBack()
    {
        QTemporaryDir dir;
        QSettings settings(dir.filePath("s.ini"), QSettings::IniFormat);
        {
            MainWindow window;
            ViewSettings* const view = window.viewSettings();
            view->setSnapEnabled(false);
            view->setSnapStep(60000);
            view->setSnapTolerance(0);
            view->setRulerFormat(VeskTimeline::DateTime::ISODate);
            view->setZone('B');
            view->setLimitsVisible(false);
            view->save(settings);
            view->setZone('Z');
        }
        MainWindow window;
        window.viewSettings()->restore(settings);
        QVERIFY(!window.viewSettings()->isSnapEnabled());
        QCOMPARE(window.viewSettings()->snapStep(), 60000);
        QCOMPARE(window.viewSettings()->snapTolerance(), 0);
        QCOMPARE(window.timeline()->header()->dateTimeFormat(), VeskTimeline::DateTime::ISODate);
        QCOMPARE(DTG::timezone(), 'B');
        QVERIFY(!window.timeline()->header()->isLimitsVisible());
        window.viewSettings()->setZone('Z');
    }

    void theLiveLineStandsAtTheWallClockWhateverTheGridIs()
    {
        MainWindow window;
        window.viewSettings()->setSnapStep(86400000);
        window.viewSettings()->setLive(true);
        const qint64 apart = QDateTime::currentMSecsSinceEpoch() - window.timeline()->header()->liveIndicatorTime();
        QVERIFY(apart >= 0 && apart < 5000);
        QVERIFY(window.timeline()->header()->isLiveIndicatorVisible());
        QVERIFY(window.viewSettings()->isSnapEnabled());
        window.viewSettings()->setLive(false);
        QVERIFY(!window.timeline()->header()->isLiveIndicatorVisible());
    }

    void thePageListsTheShortcutsOfTheMenusAndFindsThem()
    {
        MainWindow window;
        ShortcutPage page(window);
        auto* const undo = window.findChild<QAction*>("undo");
        QVERIFY(page.text().contains(undo->shortcut().toString(QKeySequence::NativeText)));
        auto* const list = page.findChild<QTreeWidget*>();
        QTest::keyClicks(page.findChild<QLineEdit*>(), "ctrl+wheel");
        int shown = 0;
        for (int i = 0; i < list->topLevelItemCount(); ++i)
            shown += list->topLevelItem(i)->isHidden() ? 0 : 1;
        QCOMPARE(shown, 1);
    }

    void everyEntryOfTheMenusThatHasAShortcutIsListed()
    {
        MainWindow window;
        const QStringList lines = ShortcutPage(window).text().split('\n');
        int listed = 0;
        for (const QAction* const action : window.findChildren<QAction*>()) {
            const QString keys = action->shortcut().toString(QKeySequence::NativeText);
            // Fields have entries of their own for what they do with text.
            if (keys.isEmpty() || !action->isVisible() || !qobject_cast<QMenu*>(action->parent()))
                continue;
            const QString effect = action->text().remove('&');
            const bool isListed = std::any_of(lines.begin(), lines.end(), [&](const QString& line) {
                return line.contains(keys) && line.endsWith("  " + effect);
            });
            QVERIFY2(isListed, qPrintable(keys + ' ' + effect));
            ++listed;
        }
        QVERIFY2(listed > 25, qPrintable(QString::number(listed)));
    }

    void thePageTellsOfTheGestures()
    {
        MainWindow window;
        const QString text = ShortcutPage(window).text();
        for (const char* const gesture : {"Double click on an empty place", "Shift while dragging", "Overview strip",
                                          "Drag an edge of the frame", "Find bar", "Shift+Return"})
            QVERIFY2(text.contains(gesture), gesture);
    }
};

QTEST_MAIN(TestViewSettings)
#include "tst_view_settings.moc"
