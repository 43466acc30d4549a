#include "support/input.h"

#include <VeskTimeline/timeline_header_view.h>
#include <VeskTimeline/timeline_view.h>
#include <VeskTimeline/timeline_widget.h>
#include <VeskTimelineKit/labelled_item_tool_tips.h>
#include <VeskTimelineKit/standard_timeline_model.h>

#include <QAction>
#include <QApplication>
#include <QDockWidget>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QRegularExpression>
#include <QScrollBar>
#include <QStatusBar>
#include <QTemporaryDir>
#include <QTest>
#include <QTextDocument>
#include <QToolBar>
#include <QToolButton>

#include <workbench/find_bar.h>
#include <workbench/go_to_dialog.h>
#include <workbench/icons.h>
#include <workbench/main_window.h>
#include <workbench/navigation.h>
#include <workbench/overview_strip.h>
#include <workbench/theme.h>
#include <workbench/view_settings.h>
#include <workbench/warnings_button.h>

using namespace VeskTimeline;
using Workbench::MainWindow;

namespace {

// The offscreen platform remarks on every window that limits its size.
const QRegularExpression unexpectedWarning("^(?!This plugin does not support propagateSizeHints)");

const QString sample = QStringLiteral(SAMPLE_FILE);
constexpr qint64 sampleStart = 92554380000;
constexpr qint64 sampleEnd = 93644135000;
constexpr qint64 day = 86400000;

QStringList texts(const QList<Kit::FileError>& errors)
{
    QStringList lines;
    for (const Kit::FileError& error : errors)
        lines.append(error.text());
    return lines;
}

// All that the status bar shows, in order, once it is up to date.
QStringList statusTexts(const MainWindow& window)
{
    QCoreApplication::processEvents();
    QStringList shown;
    for (const QLabel* const label : window.statusBar()->findChildren<QLabel*>()) {
        if (label->isVisibleTo(window.statusBar()) && !label->text().isEmpty())
            shown.append(label->text());
    }
    const auto* const warnings = window.findChild<Workbench::WarningsButton*>();
    if (warnings->isVisibleTo(window.statusBar()))
        shown.append(warnings->text());
    return shown;
}

QAction* action(const MainWindow& window, const char* name)
{
    return window.findChild<QAction*>(name);
}

} // namespace

class TestMainWindow : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        QTest::failOnWarning(unexpectedWarning);
        QVERIFY(m_dir.isValid());
    }

    void whatIsDeletedComesBackWithUndo()
    {
        MainWindow window;
        QCOMPARE(texts(window.openFiles({sample})), QStringList());
        auto* const undo = window.findChild<QAction*>("undo");
        auto* const redo = window.findChild<QAction*>("redo");
        QVERIFY(undo && redo);
        QVERIFY(!undo->isEnabled() && !redo->isEnabled());

        window.timeline()->view()->selectAllItems();
        QTest::keyClick(window.timeline()->view(), Qt::Key_Delete);
        QCOMPARE(window.model()->itemIds().size(), 0);
        QVERIFY(undo->isEnabled());
        undo->trigger();
        QCOMPARE(window.model()->itemIds().size(), 105);
        QVERIFY(!undo->isEnabled());
        redo->trigger();
        QCOMPARE(window.model()->itemIds().size(), 0);
    }

    void anEmptyWindowShowsToday()
    {
        MainWindow window;
        QCOMPARE(window.windowTitle(), "[*]VeskTimeline Workbench");
        QCOMPARE(window.model()->rowCount(), 0);
        QCOMPARE(window.timeline()->startTime() % day, 0);
        QCOMPARE(window.timeline()->duration(), int(day));
        QCOMPARE(statusTexts(window), QStringList{"0 tracks, 0 items"});
    }

    void theSampleIsShownFromItsStartAtTheWidestZoom()
    {
        MainWindow window;
        QCOMPARE(texts(window.openFiles({sample})), QStringList());
        QCOMPARE(window.windowTitle(), "apollo17.csv[*] – VeskTimeline Workbench");
        QCOMPARE(window.model()->rowCount(), 9);
        QCOMPARE(window.model()->itemIds().size(), 105);
        QCOMPARE(window.timeline()->startTime(), sampleStart);
        QCOMPARE(window.timeline()->endTime(), sampleEnd);
        QCOMPARE(window.timeline()->currentTime(), sampleStart);
        QCOMPARE(window.timeline()->zoomFactor(), Zoom::OneDay);
        QCOMPARE(window.timeline()->slider()->minimum(), int(sampleStart / 1000));
        QCOMPARE(window.timeline()->slider()->maximum(), int((sampleEnd - day) / 1000));
        QCOMPARE(statusTexts(window), QStringList{"9 tracks, 105 items, 1972-12-07 05:33:00Z – 1972-12-19 20:15:35Z"});
    }

    void everythingIsSwitchedOn()
    {
        MainWindow window;
        window.openFiles({sample});
        QVERIFY(window.timeline()->header()->isIndicatorVisible());
        QVERIFY(window.timeline()->header()->isHoverVisible());
        QVERIFY(window.timeline()->header()->isLimitsVisible());
        QVERIFY(window.timeline()->isSnapEnabled());
        QVERIFY(window.model()->isEditable());
        QVERIFY(window.model()->track(1)->hasInsertButton());
        QVERIFY(window.model()->track(1)->hasRemoveButton());
        const qint64 indicator = window.timeline()->header()->indicatorTime();
        QVERIFY(indicator > sampleStart && indicator < sampleStart + day);
    }

    void theSnapActionSwitchesSnapping()
    {
        MainWindow window;
        QAction* const snap = action(window, "snap");
        QVERIFY(snap->isChecked());
        snap->trigger();
        QVERIFY(!window.model()->isSnapEnabled());
        snap->trigger();
        QVERIFY(window.model()->isSnapEnabled());
    }

    void aRefusedFileLeavesTheWindowAsItWas()
    {
        MainWindow window;
        window.openFiles({sample});
        window.timeline()->setZoomFactor(Zoom::TwoHours);
        window.timeline()->setCurrentTime(sampleStart + day);
        window.timeline()->view()->selectItem(3, true);
        const QString bad = write("bad.csv", "track,label,start,end\nA,x,5,6\nA,y,6,5\n");
        const QString missing = m_dir.filePath("missing.csv");

        QCOMPARE(texts(window.openFiles({bad, sample, missing})),
                 (QStringList{bad + ":3: the end is before the start", missing + ": No such file or directory"}));
        QCOMPARE(window.windowTitle(), "apollo17.csv[*] – VeskTimeline Workbench");
        QCOMPARE(window.model()->itemIds().size(), 105);
        QCOMPARE(window.timeline()->zoomFactor(), Zoom::TwoHours);
        QCOMPARE(window.timeline()->currentTime(), sampleStart + day);
        QCOMPARE(window.timeline()->view()->selectedItemIds(), QList<int>{3});
    }

    void anotherFileReplacesTheFirst()
    {
        MainWindow window;
        window.openFiles({sample});
        window.timeline()->view()->selectItem(3, true);
        const QString other = write("other.csv", "track,label,start,end\nA/B,x,-7200500,-3600000\n");
        QCOMPARE(texts(window.openFiles({other})), QStringList());
        QCOMPARE(window.windowTitle(), "other.csv[*] – VeskTimeline Workbench");
        QCOMPARE(window.model()->trackCount(), 2);
        QVERIFY(window.timeline()->view()->isExpanded(window.model()->index(0, 0)));
        QVERIFY(window.timeline()->view()->selectedItemIds().isEmpty());
        QCOMPARE(window.timeline()->currentTime(), -7201000);
    }

    void aShortTimelineIsSeenWhole()
    {
        MainWindow window;
        window.openFiles({write("short.csv", "track,label,start,end\nA,x,0,10000000\n")});
        QCOMPARE(window.timeline()->zoomFactor(), Zoom::FourHours);
        QCOMPARE(window.timeline()->currentTime(), 0);
        QCOMPARE(window.timeline()->endTime(), qint64(Zoom::FourHours));
        window.openFiles({write("instant.csv", "track,label,start,end\nA,x,5000,5000\n")});
        QCOMPARE(window.timeline()->zoomFactor(), Zoom::FifteenSeconds);
        QCOMPARE(window.timeline()->currentTime(), 5000);
    }

    void severalFilesAreNamedInTheTitleAndHaveATrackEach()
    {
        MainWindow window;
        const QString other = write("other.csv", "track;label;start;end\nEVAs;x;92554380000;92554390000\n");
        window.openFiles({sample, other});
        QCOMPARE(window.windowTitle(), "apollo17.csv and 1 more[*] – VeskTimeline Workbench");
        QCOMPARE(window.model()->rowCount(), 2);
        QCOMPARE(statusTexts(window),
                 (QStringList{"12 tracks, 106 items, 1972-12-07 05:33:00Z – 1972-12-19 20:15:35Z", "1 warning"}));
    }

    void aLongTimelineIsPagedThroughWithoutEmptyParts()
    {
        MainWindow window;
        // The second reaches over the edge of a window.
        window.openFiles(
            {write("long.csv", QByteArray("track,label,start,end\nA,first,0,1000\nA,over,") +
                                   QByteArray::number(day - 5000) + ',' + QByteArray::number(day + 5000) + "\nA,last," +
                                   QByteArray::number(240 * day + 1000) + ',' + QByteArray::number(241 * day) + '\n')});
        QCOMPARE(window.timeline()->startTime(), 0);
        QCOMPARE(window.navigation()->reach().end, 241 * day);
        QCOMPARE(statusTexts(window), QStringList{"1 track, 3 items, 1970-01-01 00:00:00Z – 1970-08-30 00:00:00Z"});
        QAction* const next = action(window, "next_part");
        QAction* const previous = action(window, "previous_part");
        QVERIFY(next->isEnabled() && !previous->isEnabled());

        next->trigger();
        QCOMPARE(window.timeline()->currentTime(), day);
        next->trigger();
        QCOMPARE(window.timeline()->currentTime(), 240 * day);
        QVERIFY(!next->isEnabled() && previous->isEnabled());
        previous->trigger();
        QCOMPARE(window.timeline()->currentTime(), day + 5000 - day / 2);
        previous->trigger();
        QCOMPARE(window.timeline()->currentTime(), 0);

        action(window, "last_item")->trigger();
        QCOMPARE(window.timeline()->currentTime(), 240 * day);
        action(window, "first_item")->trigger();
        QCOMPARE(window.timeline()->currentTime(), 0);
    }

    void stepsMoveTheWindow()
    {
        MainWindow window;
        window.openFiles({sample});
        action(window, "day_forward")->trigger();
        QCOMPARE(window.timeline()->currentTime(), sampleStart + day);
        action(window, "hour_back")->trigger();
        action(window, "minute_back")->trigger();
        QCOMPARE(window.timeline()->currentTime(), sampleStart + day - 3'660'000);
        action(window, "minute_forward")->trigger();
        action(window, "hour_forward")->trigger();
        action(window, "day_back")->trigger();
        QCOMPARE(window.timeline()->currentTime(), sampleStart);
    }

    void findShowsTheBarAndGoesFromMatchToMatch()
    {
        MainWindow window;
        window.openFiles({sample});
        window.show();
        auto* const bar = window.findChild<Workbench::FindBar*>();
        QVERIFY(!bar->isVisible());
        action(window, "find")->trigger();
        QVERIFY(bar->isVisible());
        QTest::keyClicks(bar->field(), "main parachutes");
        QTRY_COMPARE(bar->countText(), "1 of 1");
        QCOMPARE(window.timeline()->view()->selectedItemIds().size(), 1);
        bar->field()->setText("EVA-");
        QTRY_COMPARE(bar->countText(), "1 of 8");
        action(window, "find_next")->trigger();
        QCOMPARE(bar->countText(), "2 of 8");
        action(window, "find_previous")->trigger();
        QCOMPARE(bar->countText(), "1 of 8");
        QTest::keyClick(bar->field(), Qt::Key_Escape);
        QVERIFY(!bar->isVisible());
    }

    void goToAsksForATime()
    {
        MainWindow window;
        window.openFiles({sample});
        window.show();
        action(window, "go_to")->trigger();
        auto* const dialog = window.findChild<Workbench::GoToDialog*>();
        QVERIFY(dialog && dialog->isVisible());
        dialog->field()->setText("1972-12-14");
        QTest::keyClick(dialog->field(), Qt::Key_Return);
        QCOMPARE(window.timeline()->currentTime(), 93'139'200'000);
        QTRY_VERIFY(!window.findChild<Workbench::GoToDialog*>());
    }

    void theOverviewIsBelowTheTimeline()
    {
        MainWindow window;
        window.openFiles({sample});
        window.show();
        auto* const strip = window.findChild<Workbench::OverviewStrip*>();
        QVERIFY(strip && strip->isVisible());
        QVERIFY(strip->height() >= 40 && strip->height() <= 56);
        QVERIFY(strip->mapTo(&window, QPoint()).y() >= window.timeline()->geometry().bottom());
        QTest::mouseClick(strip, Qt::LeftButton, Qt::NoModifier, QPoint(strip->width() / 2, 10));
        const qint64 middle = (sampleStart + sampleEnd - day) / 2;
        QVERIFY(qAbs(window.timeline()->currentTime() - middle) < day / 24);
    }

    void fitGoesBackToTheStartAtTheWidestZoom()
    {
        MainWindow window;
        window.openFiles({sample});
        action(window, "pnx_zoom_in")->trigger();
        QCOMPARE(window.timeline()->zoomFactor(), Zoom::TwelveHours);
        action(window, "pnx_zoom_out")->trigger();
        QCOMPARE(window.timeline()->zoomFactor(), Zoom::OneDay);
        window.timeline()->setZoomFactor(Zoom::OneDay);
        action(window, "pnx_zoom_in")->trigger();
        window.timeline()->setCurrentTime(sampleStart + 3 * day);
        action(window, "fit")->trigger();
        // Why a longer document is not seen whole.
        QVERIFY(action(window, "fit")->toolTip().contains("at most one day"));
        QVERIFY(action(window, "fit")->statusTip().contains("at most one day"));
        QVERIFY(action(window, "fit")->toolTip().contains("Ctrl+0"));
        QCOMPARE(window.timeline()->zoomFactor(), Zoom::OneDay);
        QCOMPARE(window.timeline()->currentTime(), sampleStart);
    }

    void followingGoesToThePresentHoweverFarItIs()
    {
        MainWindow window;
        window.show();
        QVERIFY(window.openFiles({sample}).isEmpty());
        action(window, "live")->trigger();
        QCOMPARE(window.navigation()->window().start, sampleStart);
        action(window, "follow_live")->trigger();
        const qint64 now = QDateTime::currentMSecsSinceEpoch();
        const auto isShown = [&window](qint64 time) {
            return window.navigation()->window().start <= time && time <= window.navigation()->window().end;
        };
        QVERIFY(isShown(now));
        // A document that is opened later is shown from its start.
        QVERIFY(window.openFiles({sample}).isEmpty());
        QCOMPARE(window.navigation()->window().start, sampleStart);
        action(window, "live")->trigger();
        QCOMPARE(window.navigation()->window().start, sampleStart);
        action(window, "live")->trigger();
        QVERIFY(isShown(now));
    }

    void theRulerShowsSecondsWhereThereIsRoom()
    {
        MainWindow window;
        window.openFiles({sample});
        QCOMPARE(window.timeline()->header()->dateTimeFormat(), DateTime::DTGVeryShort);
        window.timeline()->setZoomFactor(Zoom::FifteenSeconds);
        QCOMPARE(window.timeline()->header()->dateTimeFormat(), DateTime::DTGShort);
    }

    void removingATrackDropsItsItemsFromTheSelection()
    {
        MainWindow window;
        window.openFiles({write("two.csv", "track,label,start,end\nA,x,1,2\nB,y,1,2\n")});
        window.timeline()->view()->selectItems({0, 1}, true);
        window.model()->removeTrack(1);
        QCOMPARE(window.timeline()->view()->selectedItemIds(), QList<int>{1});
        QVERIFY(statusTexts(window).last().startsWith("1 track, 1 item,"));
        window.model()->onInsertTrack(window.model()->index(0, 0));
        QVERIFY(statusTexts(window).last().startsWith("2 tracks, 1 item,"));
    }

    void theMouseIsToldWhatItIsOn()
    {
        MainWindow window;
        window.openFiles({write("hover.csv", "track,label,start,end\nA,bar,0,1800000\nA,point,2700000,2700000\n")});
        window.show();
        QCoreApplication::processEvents();
        TimelineView* const view = window.timeline()->view();
        const auto* const hover = view->findChild<Kit::LabelledItemToolTips*>();
        QVERIFY(hover);
        const int y = view->visualRect(window.model()->index(0, 1)).center().y();
        const auto textAt = [&](qint64 time, int offset = 0) {
            QTextDocument document;
            document.setHtml(hover->textAt({view->toPixel(time) + offset, y}));
            return document.toPlainText().trimmed();
        };
        const QString bar = "bar\nStart\n1970-01-01 00:00:00Z\nEnd\n1970-01-01 00:30:00Z\nDuration\n00:30:00\nTrack\nA";
        QCOMPARE(textAt(900000), bar);
        QVERIFY(textAt(2700000).startsWith("point\nStart\n1970-01-01 00:45:00Z\n"));
        QVERIFY(textAt(2700000, 5).startsWith("point\n"));
        QCOMPARE(textAt(2700000, -6), QString());
        QCOMPARE(textAt(2200000), QString());
        QCOMPARE(hover->textAt({5, y}), QString());
        QCOMPARE(hover->textAt({view->toPixel(900000), y + 300}), QString());

        window.viewSettings()->setZone('B');
        const QString elsewhere = textAt(900000);
        window.viewSettings()->setZone('Z');
        QVERIFY2(elsewhere.contains("1970-01-01 02:30:00B"), qPrintable(elsewhere));
    }

    void iconsCanBeDrawnAndSeenOnLightAndDarkGround_data()
    {
        using Workbench::Theme;
        QTest::addColumn<QString>("name");
        QTest::addColumn<Theme::Scheme>("scheme");
        Workbench::registerIcons();
        for (const QString& file : QDir("icon:").entryList({"*.svg"})) {
            for (const Theme::Scheme scheme : {Theme::Light, Theme::Dark})
                QTest::newRow(qPrintable(file + ' ' + Theme::name(scheme))) << QFileInfo(file).baseName() << scheme;
        }
    }
    void iconsCanBeDrawnAndSeenOnLightAndDarkGround()
    {
        QFETCH(QString, name);
        QFETCH(Workbench::Theme::Scheme, scheme);
        Workbench::Theme theme;
        theme.setScheme(scheme);
        const int ground = QApplication::palette().color(QPalette::Button).lightness();
        const QImage image = Workbench::icon(name).pixmap(32, 32).toImage();
        QCOMPARE(image.size(), QSize(32, 32));
        int opaque = 0;
        for (int y = 0; y < 32; ++y) {
            for (int x = 0; x < 32; ++x) {
                const QColor color = image.pixelColor(x, y);
                if (color.alpha() < 250)
                    continue;
                ++opaque;
                if (name != "vesk_timeline_workbench")
                    QVERIFY(std::abs(color.lightness() - ground) > 100);
            }
        }
        QVERIFY2(opaque > 20, qPrintable(QString::number(opaque)));
    }

    void allIconsAreThere()
    {
        MainWindow window;
        for (const char* const name : {"open", "save", "undo", "redo", "pnx_zoom_in", "pnx_zoom_out", "fit", "find",
                                       "first_item", "last_item", "previous_part", "next_part", "snap", "inspector"})
            QVERIFY2(!action(window, name)->icon().isNull(), name);
        QVERIFY(!window.windowIcon().isNull());
    }

    void theToolBarFitsInTheWindow()
    {
        MainWindow window;
        window.show();
        const auto* const bar = window.findChild<QToolBar*>("toolBar");
        QCOMPARE(window.width(), 1440);
        QVERIFY2(bar->sizeHint().width() <= window.width(), qPrintable(QString::number(bar->sizeHint().width())));
        for (const char* const name : {"open", "save", "find", "inspector", "undo"}) {
            const auto* const button = qobject_cast<QToolButton*>(bar->widgetForAction(action(window, name)));
            QVERIFY2(button && button->isVisible(), name);
            QCOMPARE(button->toolButtonStyle(),
                     qstrcmp(name, "undo") == 0 ? Qt::ToolButtonIconOnly : Qt::ToolButtonTextBesideIcon);
        }
    }

    void theInspectorLeavesTheTimelineItsRoom()
    {
        MainWindow window;
        window.show();
        const auto* const dock = window.findChild<QDockWidget*>("inspectorDock");
        QTRY_VERIFY2(qAbs(dock->width() - 270) <= 20, qPrintable(QString::number(dock->width())));
    }

private:
    QString write(const QString& name, const QByteArray& text)
    {
        QFile file(m_dir.filePath(name));
        if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size())
            qFatal("cannot write %s", qPrintable(file.fileName()));
        return file.fileName();
    }

    QTemporaryDir m_dir;
};

QTEST_MAIN(TestMainWindow)
#include "tst_main_window.moc"
