#include <VeskTimeline/timeline_header_view.h>
#include <VeskTimeline/timeline_view.h>
#include <VeskTimeline/timeline_widget.h>

#include <QDockWidget>
#include <QFile>
#include <QScreen>
#include <QTemporaryDir>
#include <QTest>

#include <workbench/main_window.h>
#include <workbench/recent_files.h>
#include <workbench/settings.h>
#include <workbench/theme.h>
#include <workbench/view_settings.h>

using namespace Workbench;
using VeskTimeline::Kit::Document;

namespace {

// One run of the program.
std::unique_ptr<MainWindow> startedWindow()
{
    auto window = std::make_unique<MainWindow>();
    window->keepViewSettings();
    window->show();
    QCoreApplication::processEvents();
    return window;
}

Document namedTrack(const QString& name)
{
    Document document;
    document.track({name});
    return document;
}

// With the mouse.
void dragNameColumn(const MainWindow& window, int width)
{
    auto* const header = window.timeline()->header();
    const QPoint border(header->sectionPosition(1) - 3, 20);
    QTest::mouseMove(header->viewport(), border);
    QCoreApplication::processEvents();
    QTest::mousePress(header->viewport(), Qt::LeftButton, Qt::NoModifier, border);
    QTest::mouseMove(header->viewport(), QPoint(width, 20));
    QCoreApplication::processEvents();
    QTest::mouseRelease(header->viewport(), Qt::LeftButton, Qt::NoModifier, QPoint(width, 20));
}

int nameColumnOf(const MainWindow& window)
{
    return window.timeline()->header()->sectionSize(0);
}

} // namespace

class TestKeptSettings : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(m_home.isValid());
        QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, m_home.path());
        prepareSettings();
    }

    void init() { openSettings()->clear(); }

    void thereIsOneStore()
    {
        QCOMPARE(openSettings()->fileName(), QSettings().fileName());
        QVERIFY(openSettings()->fileName().startsWith(m_home.path()));
        openSettings()->setValue("a", 5);
        QCOMPARE(QSettings().value("a").toInt(), 5);
    }

    void theWindowComesBackAsItWasLeft()
    {
        QRect place;
        {
            const auto window = startedWindow();
            window->setGeometry(30, 40, 780, 560);
            window->findChild<QDockWidget*>("inspectorDock")->hide();
            dragNameColumn(*window, 333);
            QCOMPARE(nameColumnOf(*window), 333);
            place = window->geometry();
            QVERIFY(window->close());
        }
        const auto window = startedWindow();
        QCOMPARE(window->geometry(), place);
        QVERIFY(!window->findChild<QDockWidget*>("inspectorDock")->isVisible());
        QCOMPARE(nameColumnOf(*window), 333);
    }

    void theWidthOfTheInspectorComesBack()
    {
        {
            const auto window = startedWindow();
            window->resize(780, 560);
            auto* const dock = window->findChild<QDockWidget*>("inspectorDock");
            window->resizeDocks({dock}, {350}, Qt::Horizontal);
            QTRY_COMPARE(dock->width(), 350);
            window->close();
        }
        QTRY_COMPARE(startedWindow()->findChild<QDockWidget*>("inspectorDock")->width(), 350);
    }

    void theFirstWindowFitsTheScreen()
    {
        const auto window = startedWindow();
        const QSize screen = window->screen()->availableSize();
        QVERIFY(window->width() <= screen.width() && window->height() <= screen.height());
        QVERIFY(window->width() == 1440 || window->width() > screen.width() - 20);
    }

    void spoiltSettingsDoNoHarm()
    {
        openSettings()->setValue("window/geometry", "nonsense");
        openSettings()->setValue("window/state", 7);
        openSettings()->setValue("window/nameColumn", -5);
        openSettings()->setValue("view/theme", "purple");
        openSettings()->setValue("view/snapStep", "often");
        const auto window = startedWindow();
        QVERIFY(window->isVisible() && window->width() > 300);
        QVERIFY(window->findChild<QDockWidget*>("inspectorDock")->isVisible());
        QVERIFY(nameColumnOf(*window) >= 200);
        QCOMPARE(window->theme()->scheme(), Theme::System);
        QCOMPARE(window->viewSettings()->snapStep(), 500);
    }

    void theNameColumnFollowsTheNamesUntilItIsDragged()
    {
        const auto window = startedWindow();
        window->showDocument(namedTrack(QString(40, 'm')), {});
        const int wide = nameColumnOf(*window);
        window->showDocument(namedTrack("m"), {});
        QCOMPARE(nameColumnOf(*window), 200);
        QVERIFY(wide > 250);
        window->close();
        QVERIFY(!openSettings()->contains("window/nameColumn"));

        window->show();
        dragNameColumn(*window, 240);
        QCOMPARE(nameColumnOf(*window), 240);
        window->showDocument(namedTrack(QString(40, 'm')), {});
        QCOMPARE(nameColumnOf(*window), 240);
    }

    void whatTheMenusSetIsThereInTheNextRun()
    {
        {
            const auto window = startedWindow();
            window->viewSettings()->setSnapStep(60'000);
            window->viewSettings()->setLimitsVisible(false);
            window->theme()->setScheme(Theme::Dark);
            // Not closed: a setting is kept when it is made.
        }
        QVERIFY(!Theme::isDark());
        const auto window = startedWindow();
        QCOMPARE(window->viewSettings()->snapStep(), 60'000);
        QVERIFY(!window->viewSettings()->areLimitsVisible());
        QCOMPARE(window->theme()->scheme(), Theme::Dark);
    }

    void aLookForOnceIsNotKept()
    {
        openSettings()->setValue("view/theme", "light");
        {
            MainWindow window;
            window.keepViewSettings(Theme::Dark);
            QCOMPARE(window.theme()->scheme(), Theme::Dark);
        }
        QCOMPARE(openSettings()->value("view/theme").toString(), "light");
        QCOMPARE(startedWindow()->theme()->scheme(), Theme::Light);
    }

    void aWindowThatLeavesNoTraceKeepsNothing()
    {
        QFile file(m_home.filePath("a.csv"));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write("track,label,start,end\nA,x,5,6\n") > 0);
        file.close();
        MainWindow window;
        window.leaveNoTrace();
        window.show();
        QVERIFY(window.openFiles({file.fileName()}).isEmpty());
        window.viewSettings()->setSnapStep(60'000);
        window.close();
        QCOMPARE(RecentFiles().files(), QStringList());
        QCOMPARE(openSettings()->allKeys(), QStringList());

        MainWindow other;
        QVERIFY(other.openFiles({file.fileName()}).isEmpty());
        QCOMPARE(RecentFiles().files(), QStringList{file.fileName()});
    }

private:
    QTemporaryDir m_home;
};

QTEST_MAIN(TestKeptSettings)
#include "tst_kept_settings.moc"
