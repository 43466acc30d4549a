#include "navigation_fixture.h"

#include <hoxtools/dtg.h>

#include <QCalendarWidget>
#include <QDialogButtonBox>
#include <QLineEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>

#include <workbench/go_to_dialog.h>

using namespace VeskTimeline;
using Workbench::GoToDialog;

namespace {

constexpr qint64 hour = NavigationFixture::hour;
constexpr qint64 day = NavigationFixture::day;

struct DialogFixture : NavigationFixture
{
    DialogFixture()
    {
        add("A", "first", 0, hour);
        add("A", "last", 3000 * day, hour);
        navigation->fit();
        widget.header()->setIndicatorVisible(true);
        dialog = std::make_unique<GoToDialog>(navigation.get());
        dialog->show();
    }

    void type(const QString& text) const
    {
        dialog->field()->selectAll();
        QTest::keyClicks(dialog->field(), text);
    }

    bool isMarked() const
    {
        return dialog->field()->palette().color(QPalette::Base) != dialog->palette().color(QPalette::Base);
    }

    std::unique_ptr<GoToDialog> dialog;
};

} // namespace

class TestGoToDialog : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression("^(?!This plugin does not support propagateSizeHints)")); }
    void cleanup() { DTG::setTimezone('Z'); }

    void itStartsWithTheMiddleOfTheWindow()
    {
        const DialogFixture f;
        QCOMPARE(f.dialog->field()->text(), "1970-01-01 12:00");
        QCOMPARE(f.dialog->field()->selectedText(), f.dialog->field()->text());
        QCOMPARE(f.dialog->explanation(), "Thursday, 1970-01-01 12:00:00Z");
        QCOMPARE(f.dialog->calendar()->selectedDate(), QDate(1970, 1, 1));
    }

    void aTimeIsShownInTheMiddleWithTheIndicatorOnIt()
    {
        const DialogFixture f;
        f.type("1972-12-07 05:33");
        QCOMPARE(f.dialog->explanation(), "Thursday, 1972-12-07 05:33:00Z");
        QCOMPARE(f.dialog->calendar()->selectedDate(), QDate(1972, 12, 7));
        QSignalSpy accepted(f.dialog.get(), &QDialog::accepted);
        QTest::keyClick(f.dialog->field(), Qt::Key_Return);
        QCOMPARE(accepted.count(), 1);
        QVERIFY(!f.dialog->isVisible());
        QCOMPARE(f.navigation->window().start, 92'554'380'000 - 12 * hour);
        QCOMPARE(f.widget.header()->indicatorTime(), 92'554'380'000);
    }

    void aDayIsShownFromItsStart()
    {
        const DialogFixture f;
        f.type("7 Dec 1972");
        QTest::keyClick(f.dialog->field(), Qt::Key_Return);
        QCOMPARE(f.navigation->window().start, 92'534'400'000);
    }

    void aLockedIndicatorStays()
    {
        const DialogFixture f;
        f.widget.header()->setIndicatorTime(5000);
        f.widget.header()->lockIndicator();
        f.type("1972-12-07");
        QTest::keyClick(f.dialog->field(), Qt::Key_Return);
        QCOMPARE(f.widget.header()->indicatorTime(), 5000);
    }

    void distancesCountFromTheMiddleOfTheWindow()
    {
        const DialogFixture f;
        f.type("+3d");
        QTest::keyClick(f.dialog->field(), Qt::Key_Return);
        QCOMPARE(f.navigation->window().start, 3 * day);
    }

    void theFarYearsAreReached()
    {
        const DialogFixture f;
        f.type("0001-01-01");
        QTest::keyClick(f.dialog->field(), Qt::Key_Return);
        QCOMPARE(f.navigation->window().start, Workbench::Navigation::earliest);
        GoToDialog again(f.navigation.get());
        again.field()->setText("9999-12-31");
        again.accept();
        QCOMPARE(f.navigation->window().end, Workbench::Navigation::latest + 1);
    }

    void aBadTextKeepsTheDialogOpenAndSaysWhatIsWrong()
    {
        const DialogFixture f;
        const qint64 before = f.navigation->window().start;
        f.type("1972-02-30");
        QCOMPARE(f.dialog->explanation(), "February 1972 has no day 30.");
        QVERIFY(f.isMarked());
        QTest::keyClick(f.dialog->field(), Qt::Key_Return);
        QVERIFY(f.dialog->isVisible());
        QCOMPARE(f.navigation->window().start, before);
        f.type("1972-02-29");
        QVERIFY(!f.isMarked());
        f.type(" ");
        QVERIFY(!f.isMarked());
        f.dialog->accept();
        QVERIFY(f.dialog->isVisible());
        QVERIFY(f.isMarked());
        QCOMPARE(f.dialog->explanation(), "Write a date, a time or both.");
    }

    void theCalendarSetsTheDayAndKeepsTheTime()
    {
        const DialogFixture f;
        f.type("1972-12-07 05:33:10 +02:00");
        Q_EMIT f.dialog->calendar()->clicked(QDate(1804, 5, 9));
        QCOMPARE(f.dialog->field()->text(), "1804-05-09 05:33:10 +02:00");
        f.type("now");
        Q_EMIT f.dialog->calendar()->clicked(QDate(2020, 1, 2));
        QCOMPARE(f.dialog->field()->text(), "2020-01-02");
        Q_EMIT f.dialog->calendar()->activated(QDate(2020, 1, 3));
        QVERIFY(!f.dialog->isVisible());
        QCOMPARE(f.navigation->window().start, 1'578'009'600'000);
    }

    void textsAreInTheZoneOfTheRuler()
    {
        DTG::setTimezone('B');
        const DialogFixture f;
        QCOMPARE(f.dialog->field()->text(), "1970-01-01 14:00");
        f.type("1970-01-03");
        QCOMPARE(f.dialog->explanation(), "Saturday, 1970-01-03 00:00:00B");
        QTest::keyClick(f.dialog->field(), Qt::Key_Return);
        QCOMPARE(f.navigation->window().start, 2 * day - 2 * hour);
    }

    void escapeGoesNowhere()
    {
        const DialogFixture f;
        const qint64 before = f.navigation->window().start;
        f.type("1972");
        QTest::keyClick(f.dialog->field(), Qt::Key_Escape);
        QVERIFY(!f.dialog->isVisible());
        QCOMPARE(f.navigation->window().start, before);
    }
};

QTEST_MAIN(TestGoToDialog)
#include "tst_go_to_dialog.moc"
