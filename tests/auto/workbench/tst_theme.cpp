#include <VeskTimeline/timeline_header_view.h>
#include <VeskTimeline/timeline_widget.h>

#include <QApplication>
#include <QDBusVariant>
#include <QDialogButtonBox>
#include <QPushButton>
#include <QSignalSpy>
#include <QStyle>
#include <QTest>

#include <workbench/icons.h>
#include <workbench/main_window.h>
#include <workbench/portal_look.h>
#include <workbench/theme.h>

using namespace Workbench;

namespace {

/// A desktop that says what it is told to.
class FakeLook : public SystemLook
{
public:
    void ask() override { ++asked; }
    void report(Preference preference) { Q_EMIT reported(preference); }

    int asked = 0;
};

QVariant portalAnswer(uint number)
{
    return QVariant::fromValue(QDBusVariant(QVariant::fromValue(QDBusVariant(number))));
}

int lightnessAt(QWidget& window, const QPoint& pos)
{
    return window.grab().toImage().pixelColor(pos).lightness();
}

} // namespace

class TestTheme : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression("^(?!This plugin does not support propagateSizeHints)")); }

    void theButtonsOfDialogsHaveNoIcons()
    {
        Theme theme;
        QDialogButtonBox buttons(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
        for (QAbstractButton* const button : buttons.buttons())
            button->setIcon(icon("save"));
        QPushButton other(icon("save"), "Save");
        buttons.show();
        other.show();
        const auto hasIcons = [&buttons] {
            const QList<QAbstractButton*> all = buttons.buttons();
            return std::any_of(all.begin(), all.end(), [](const auto* button) { return !button->icon().isNull(); });
        };
        QVERIFY(!hasIcons());
        QVERIFY(!other.icon().isNull());
        // Another style gives them its own.
        theme.setScheme(Theme::Dark);
        QTRY_VERIFY(!hasIcons());
    }

    void aDarkDesktopMakesTheSystemsLookDark()
    {
        const QPalette before = QApplication::palette();
        QVERIFY(!Theme::isDark());
        {
            Theme theme;
            const QSignalSpy changes(&theme, &Theme::changed);
            auto* const desktop = new FakeLook;
            theme.listenTo(desktop);
            QCOMPARE(desktop->asked, 1);
            QCOMPARE(desktop->parent(), &theme);
            desktop->report(SystemLook::Light);
            desktop->report(SystemLook::None);
            QCOMPARE(changes.count(), 0);
            desktop->report(SystemLook::Dark);
            QVERIFY(Theme::isDark());
            QCOMPARE(theme.scheme(), Theme::System);
            QCOMPARE(changes.count(), 1);
            desktop->report(SystemLook::Dark);
            QCOMPARE(changes.count(), 1);
            desktop->report(SystemLook::Light);
            QVERIFY(!Theme::isDark());
            QCOMPARE(changes.count(), 2);
            desktop->report(SystemLook::Dark);
        }
        QCOMPARE(QApplication::palette().color(QPalette::Window), before.color(QPalette::Window));
    }

    void aChosenLookDoesNotCareForTheDesktop()
    {
        Theme theme;
        auto* const desktop = new FakeLook;
        theme.listenTo(desktop);
        theme.setScheme(Theme::Light);
        const QSignalSpy changes(&theme, &Theme::changed);
        desktop->report(SystemLook::Dark);
        QVERIFY(!Theme::isDark());
        QCOMPARE(changes.count(), 0);
        // What was said meanwhile holds once the look is the system's again.
        theme.setScheme(Theme::System);
        QVERIFY(Theme::isDark());
    }

    void aPlatformThatIsDarkItselfStaysAsItIs()
    {
        const QPalette before = QApplication::palette();
        Theme theme;
        auto* const desktop = new FakeLook;
        theme.listenTo(desktop);
        desktop->report(SystemLook::Light);
        QCOMPARE(QApplication::palette().color(QPalette::Window), before.color(QPalette::Window));
    }

    void anotherSourceTakesThePlaceOfTheFirst()
    {
        Theme theme;
        const QPointer<FakeLook> first(new FakeLook);
        theme.listenTo(first);
        theme.listenTo(new FakeLook);
        QVERIFY(!first);
    }

    void whatThePortalSaysIsRead()
    {
        QCOMPARE(PortalLook::preferenceOf(portalAnswer(0)), SystemLook::None);
        QCOMPARE(PortalLook::preferenceOf(portalAnswer(1)), SystemLook::Dark);
        QCOMPARE(PortalLook::preferenceOf(portalAnswer(2)), SystemLook::Light);
        QCOMPARE(PortalLook::preferenceOf(portalAnswer(3)), SystemLook::None);
        QCOMPARE(PortalLook::preferenceOf(1U), SystemLook::Dark);
        QCOMPARE(PortalLook::preferenceOf("dark"), SystemLook::None);
        QCOMPARE(PortalLook::preferenceOf({}), SystemLook::None);
    }

    void withoutABusThereIsNoAnswerAndNoHarm()
    {
        const QByteArray address = qgetenv("DBUS_SESSION_BUS_ADDRESS");
        qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent/bus");
        {
            PortalLook portal;
            const QSignalSpy answers(&portal, &SystemLook::reported);
            portal.ask();
            QCoreApplication::processEvents();
            QCOMPARE(answers.count(), 0);
        }
        if (address.isNull())
            qunsetenv("DBUS_SESSION_BUS_ADDRESS");
        else
            qputenv("DBUS_SESSION_BUS_ADDRESS", address);
    }

    void aNewPaletteOfThePlatformIsAnnouncedAndShownAtOnce()
    {
        const QPalette before = QApplication::palette();
        MainWindow window;
        window.resize(900, 500);
        window.show();
        QCoreApplication::processEvents();
        const QSignalSpy changes(window.theme(), &Theme::changed);
        const QImage icon = Workbench::icon("open").pixmap(24, 24).toImage();
        const QPoint ruler = window.timeline()->header()->mapTo(&window, QPoint(20, 20));
        const QPoint rows = window.timeline()->mapTo(&window, QPoint(20, 200));
        QVERIFY(lightnessAt(window, ruler) > 200 && lightnessAt(window, rows) > 200);
        QApplication::setPalette(Theme::palette(Theme::Dark));
        QCoreApplication::processEvents();
        const int darkRuler = lightnessAt(window, ruler);
        const int darkRows = lightnessAt(window, rows);
        const int announced = int(changes.count());
        const QColor live = window.timeline()->header()->liveIndicatorColor();
        const QImage darkIcon = Workbench::icon("open").pixmap(24, 24).toImage();
        QApplication::setPalette(before);
        QCOMPARE(announced, 1);
        QVERIFY2(darkRuler < 80 && darkRows < 80, qPrintable(QString("%1 %2").arg(darkRuler).arg(darkRows)));
        QCOMPARE(live, Theme::palette(Theme::Dark).color(QPalette::Link));
        QVERIFY(icon != darkIcon);
    }
};

QTEST_MAIN(TestTheme)
#include "tst_theme.moc"
