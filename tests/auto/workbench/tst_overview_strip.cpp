#include "navigation_fixture.h"
#include "support/input.h"

#include <hoxtools/dtg.h>

#include <QHelpEvent>
#include <QImage>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>
#include <QToolTip>

#include <numeric>
#include <workbench/overview_strip.h>

using namespace VeskTimeline;
using namespace VeskTimeline::Kit;
using Workbench::OverviewDensity;
using Workbench::OverviewStrip;
using Workbench::overviewTicks;

namespace {

constexpr qint64 second = NavigationFixture::second;
constexpr qint64 hour = NavigationFixture::hour;
constexpr qint64 day = NavigationFixture::day;
constexpr qint64 length = 2000 * day;

struct StripFixture : NavigationFixture
{
    explicit StripFixture(qint64 documentLength = length)
    {
        add("A", "first", 0, hour);
        add("A", "last", documentLength - hour, hour);
        navigation->fit();
        strip = std::make_unique<OverviewStrip>(navigation.get());
        strip->resize(1000, strip->sizeHint().height());
        strip->show();
        settle();
    }

    void press(double x) const { send(QEvent::MouseButtonPress, x, Qt::LeftButton, Qt::LeftButton); }
    void move(double x) const { send(QEvent::MouseMove, x, Qt::NoButton, Qt::LeftButton); }
    void release(double x) const { send(QEvent::MouseButtonRelease, x, Qt::LeftButton, Qt::NoButton); }
    void send(QEvent::Type type, double x, Qt::MouseButton button, Qt::MouseButtons buttons) const
    {
        Input::mouse(strip.get(), type, QPoint(int(x), 10), button, buttons);
    }
    void turnWheel(int delta, Qt::KeyboardModifiers modifiers = Qt::NoModifier) const
    {
        QWheelEvent event(QPointF(10, 10), strip->mapToGlobal(QPointF(10, 10)), QPoint(), QPoint(0, delta),
                          Qt::NoButton, modifiers, Qt::NoScrollPhase, false);
        QApplication::sendEvent(strip.get(), &event);
    }
    qint64 start() const { return navigation->window().start; }

    std::unique_ptr<OverviewStrip> strip;
};

QStringList labels(const TimeSpan& span, int width)
{
    QStringList texts;
    for (const auto& tick : overviewTicks(span, width, QFontMetrics(QApplication::font()), QLocale::c()))
        texts.append(tick.label);
    return texts;
}

qint64 at(int year, int month, int dayOfMonth)
{
    return QDateTime(QDate(year, month, dayOfMonth), QTime(0, 0), Qt::UTC).toMSecsSinceEpoch();
}

} // namespace

class TestOverviewStrip : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        QTest::failOnWarning(QRegularExpression("^(?!This plugin does not support (propagateSizeHints|raise))"));
    }

    void aClickCentresTheWindowThere()
    {
        const StripFixture f;
        f.press(500);
        f.release(500);
        QCOMPARE(f.start(), length / 2 - 12 * hour);
        f.press(999);
        f.release(999);
        QCOMPARE(f.start(), length - length / 1000 - 12 * hour);
        f.press(0);
        f.release(0);
        QCOMPARE(f.start(), 0);
        f.send(QEvent::MouseButtonPress, 700, Qt::RightButton, Qt::RightButton);
        QCOMPARE(f.start(), 0);
    }

    void aDragMovesTheWindowWhileItLasts()
    {
        const StripFixture f;
        f.navigation->scrollTo(length / 2);
        f.press(502);
        QCOMPARE(f.start(), length / 2);
        f.move(552);
        QCOMPARE(f.start(), length / 2 + length / 20);
        f.move(402);
        QCOMPARE(f.start(), length / 2 - length / 10);
        f.move(-5000);
        QCOMPARE(f.start(), 0);
        f.move(402);
        f.release(402);
        f.send(QEvent::MouseMove, 100, Qt::NoButton, Qt::NoButton);
        QCOMPARE(f.start(), length / 2 - length / 10);
    }

    void inALongDocumentClicksAndDragsFindTheItemsBesideThem()
    {
        constexpr qint64 decades = 20'000 * day;
        StripFixture f(decades);
        f.add("A", "middle", decades / 2 + 7 * day, hour);
        f.settle();
        // A pixel is 20 days, and the window one.
        f.press(501);
        f.release(501);
        QCOMPARE(f.start(), decades / 2 + 7 * day + hour - 12 * hour);
        f.press(501);
        f.move(650);
        QCOMPARE(f.start() / day, decades / 2 / day + 7 + 149 * 20 - 1);
        f.move(503);
        QCOMPARE(f.start(), decades / 2 + 7 * day + hour - 12 * hour);
        f.release(503);
        // Nothing is near.
        f.press(300);
        f.release(300);
        QCOMPARE(f.start(), decades / 10 * 3 - 12 * hour);
    }

    void escapeTakesADragBack()
    {
        const StripFixture f;
        f.navigation->scrollTo(length / 2);
        f.press(501);
        f.move(800);
        QVERIFY(f.start() > length / 2);
        QTest::keyClick(f.strip.get(), Qt::Key_Escape);
        QCOMPARE(f.start(), length / 2);
        f.move(100);
        QCOMPARE(f.start(), length / 2);
    }

    void anEdgeDragZoomsAndTheOtherEdgeStays()
    {
        const StripFixture f(4 * day);
        const QRectF frame = f.strip->windowFrame();
        QCOMPARE(frame, QRectF(0, 0, 250, frame.height()));
        f.press(249);
        f.move(130);
        QCOMPARE(f.view()->zoomFactor(), Zoom::TwelveHours);
        QCOMPARE(f.start(), 0);
        f.move(900);
        f.release(900);
        QCOMPARE(f.view()->zoomFactor(), Zoom::OneDay);
        f.navigation->scrollTo(day);
        f.press(251);
        f.move(380);
        f.release(380);
        QCOMPARE(f.view()->zoomFactor(), Zoom::TwelveHours);
        QCOMPARE(f.navigation->window().end, 2 * day);
    }

    void theFrameCanAlwaysBeTakenHoldOf()
    {
        const StripFixture f;
        for (const qint64 time : {qint64(0), length / 3, length}) {
            f.navigation->scrollTo(time);
            const QRectF frame = f.strip->windowFrame();
            QVERIFY(frame.width() >= 7);
            QVERIFY(frame.left() >= 0 && frame.right() <= f.strip->width());
            QVERIFY(frame.contains(QPointF(f.strip->toPixel(f.start()) - 0.001, 5)) ||
                    frame.contains(QPointF(f.strip->toPixel(f.start()) + 0.001, 5)));
        }
    }

    void theWheelScrollsAndZooms()
    {
        const StripFixture f;
        f.turnWheel(-120);
        QCOMPARE(f.start(), 12 * hour);
        // Fine wheels come to a notch in the end.
        f.turnWheel(-60);
        QCOMPARE(f.start(), 12 * hour);
        f.turnWheel(-60);
        QCOMPARE(f.start(), day);
        f.turnWheel(120);
        QCOMPARE(f.start(), 12 * hour);
        f.turnWheel(120, Qt::ControlModifier);
        QCOMPARE(f.view()->zoomFactor(), Zoom::TwelveHours);
        QCOMPARE(f.start(), 18 * hour);
        f.turnWheel(-120, Qt::ControlModifier);
        QCOMPARE(f.view()->zoomFactor(), Zoom::OneDay);
    }

    void keysMoveTheWindow()
    {
        const StripFixture f;
        OverviewStrip* const strip = f.strip.get();
        QTest::keyClick(strip, Qt::Key_PageDown);
        QCOMPARE(f.start(), day);
        QTest::keyClick(strip, Qt::Key_Right);
        QCOMPARE(f.start(), day + day / 10);
        QTest::keyClick(strip, Qt::Key_Left);
        QCOMPARE(f.start(), day);
        QTest::keyClick(strip, Qt::Key_PageUp);
        QCOMPARE(f.start(), 0);
        QTest::keyClick(strip, Qt::Key_End);
        QCOMPARE(f.navigation->window().end, length);
        QTest::keyClick(strip, Qt::Key_Home);
        QCOMPARE(f.start(), 0);
        QTest::keyClick(strip, Qt::Key_Plus);
        QCOMPARE(f.view()->zoomFactor(), Zoom::TwelveHours);
        QTest::keyClick(strip, Qt::Key_Minus);
        QCOMPARE(f.view()->zoomFactor(), Zoom::OneDay);
    }

    void aDoubleClickFits()
    {
        const StripFixture f;
        f.view()->setZoomFactor(Zoom::TwoHours);
        f.press(600);
        f.release(600);
        f.send(QEvent::MouseButtonDblClick, 600, Qt::LeftButton, Qt::LeftButton);
        f.release(600);
        QCOMPARE(f.start(), 0);
        QCOMPARE(f.view()->zoomFactor(), Zoom::OneDay);
    }

    void timesAreInTheZoneOfTheRuler()
    {
        StripFixture f(20 * hour);
        const QImage before = f.strip->grab().toImage();
        DTG::setTimezone('C');
        f.strip->refresh();
        const QImage after = f.strip->grab().toImage();
        const QString description = f.strip->accessibleDescription();
        const QStringList texts = labels({0, 4 * hour}, 400);
        DTG::setTimezone('Z');
        QVERIFY(before != after);
        QCOMPARE(description, "Shown: 1970-01-01 03:00:00C – 1970-01-02 03:00:00C");
        QCOMPARE(texts.first(), "03:00");
    }

    void theToolTipSaysTheTimeUnderThePointer()
    {
        const StripFixture f;
        QHelpEvent help(QEvent::ToolTip, QPoint(500, 10), f.strip->mapToGlobal(QPoint(500, 10)));
        QApplication::sendEvent(f.strip.get(), &help);
        QCOMPARE(QToolTip::text(), "1972-09-27 00:00:00Z");
    }

    void assistiveToolsAreToldWhatIsShown()
    {
        const StripFixture f;
        QCOMPARE(f.strip->accessibleName(), "Overview of the document");
        QCOMPARE(f.strip->accessibleDescription(), "Shown: 1970-01-01 00:00:00Z – 1970-01-02 00:00:00Z");
        f.navigation->scrollTo(day);
        QCOMPARE(f.strip->accessibleDescription(), "Shown: 1970-01-02 00:00:00Z – 1970-01-03 00:00:00Z");
    }

    void densityCountsWhatIsWhere()
    {
        StripFixture f(4096 * second);
        // First and last item are an hour long and overlap.
        f.model.removeItems(f.model.itemIds());
        f.add("A", "start", 0, second);
        f.add("A", "point", 1000 * second, 0);
        f.add("B", "open", 1000 * second, DocumentItem::openEnded);
        f.add("B/C", "long", 2000 * second, 10 * second);
        f.add("B/C", "next", 2010 * second, 10 * second);
        f.add("A", "end", 4095 * second, second);
        const OverviewDensity& density = f.strip->density();
        // The document is seen within two hours.
        const double part = double(Zoom::TwoHours) / OverviewDensity::partCount;
        const auto at = [&](qint64 time) { return density.counts()[std::size_t(double(time) / part)]; };
        QTRY_COMPARE(std::accumulate(density.counts().begin(), density.counts().end(), 0), 1 + 2 + 7 + 7 + 2);
        QCOMPARE(density.span().end, qint64(Zoom::TwoHours));
        QCOMPARE(at(0), 1);
        QCOMPARE(at(1000 * second), 2);
        QCOMPARE(at(1002 * second), 0);
        QCOMPARE(at(2015 * second), 1);
        QCOMPARE(at(4095 * second), 1);
        QCOMPARE(density.highest(), 2);
    }

    void densityFollowsChangesAndSaysSo()
    {
        StripFixture f;
        QTRY_COMPARE(f.strip->density().highest(), 1);
        QSignalSpy changed(&f.strip->density(), &OverviewDensity::changed);
        const int id = f.add("B", "again", length / 2, hour);
        f.add("B", "and again", length / 2, hour);
        QTRY_COMPARE(f.strip->density().highest(), 2);
        f.model.retimeItem(id, length / 4, hour);
        QTRY_COMPARE(f.strip->density().highest(), 1);
        f.model.setDocument({});
        QTRY_COMPARE(f.strip->density().highest(), 0);
        QVERIFY(changed.count() >= 3);
        const auto count = changed.count();
        f.navigation->scrollTo(0);
        QTest::qWait(150);
        QCOMPARE(changed.count(), count);
    }

    void labelsFitTheLengthOfTheDocument()
    {
        QCOMPARE(labels({0, 10 * hour}, 1000).mid(0, 3), (QStringList{"1 Jan", "01:00", "02:00"}));
        QCOMPARE(labels({at(2020, 1, 1), at(2030, 1, 1)}, 1000),
                 (QStringList{"2020", "2021", "2022", "2023", "2024", "2025", "2026", "2027", "2028", "2029", "2030"}));
        QCOMPARE(labels({at(1972, 12, 7), at(1972, 12, 12)}, 500),
                 (QStringList{"7 Dec", "8 Dec", "9 Dec", "10 Dec", "11 Dec", "12 Dec"}));
        QCOMPARE(labels({at(1972, 11, 2), at(1973, 2, 2)}, 400), (QStringList{"Dec 1972", "1973", "Feb 1973"}));
        QCOMPARE(labels({at(1972, 1, 1), at(1972, 1, 31)}, 700),
                 (QStringList{"1972", "5 Jan", "10 Jan", "15 Jan", "20 Jan", "25 Jan"}));
        QCOMPARE(labels({Workbench::Navigation::earliest, Workbench::Navigation::latest}, 700).mid(0, 3),
                 (QStringList{"1", "1000", "2000"}));
        QCOMPARE(labels({0, 12 * second}, 1000).mid(1, 2), (QStringList{"00:00:01", "00:00:02"}));
        QVERIFY(labels({0, 0}, 1000).isEmpty());
        QVERIFY(labels({0, day}, 0).isEmpty());
    }

    void labelsNeverTouch_data()
    {
        QTest::addColumn<qint64>("duration");
        for (qint64 duration = 10; duration < 9000 * 365 * day; duration = duration * 7 / 3)
            QTest::newRow(qPrintable(QString::number(duration))) << duration;
    }
    void labelsNeverTouch()
    {
        QFETCH(qint64, duration);
        const QFontMetrics metrics(QApplication::font());
        const qint64 start = at(923, 2, 27) + 12345;
        for (const int width : {150, 600, 2000}) {
            const auto ticks = overviewTicks({start, start + duration}, width, metrics, QLocale::c());
            QVERIFY(ticks.size() < width);
            for (qsizetype i = 1; i < ticks.size(); ++i) {
                const double apart = double(ticks[i].time - ticks[i - 1].time) / double(duration) * width;
                QVERIFY2(apart > metrics.horizontalAdvance(ticks[i - 1].label), qPrintable(ticks[i].label));
            }
        }
    }

    void densityAndWindowAreSeenOnLightAndDark_data()
    {
        QTest::addColumn<QColor>("ground");
        QTest::addColumn<QColor>("ink");
        QTest::newRow("light") << QColor(Qt::white) << QColor(Qt::black);
        QTest::newRow("dark") << QColor(0x20, 0x20, 0x20) << QColor(0xf0, 0xf0, 0xf0);
    }
    void densityAndWindowAreSeenOnLightAndDark()
    {
        QFETCH(QColor, ground);
        QFETCH(QColor, ink);
        const StripFixture f;
        QPalette colors = f.strip->palette();
        colors.setColor(QPalette::Base, ground);
        colors.setColor(QPalette::Text, ink);
        f.strip->setPalette(colors);
        f.navigation->scrollTo(length / 2);
        QTRY_COMPARE(f.strip->density().highest(), 1);
        const QImage picture = f.strip->grab().toImage();
        const int y = f.strip->fontMetrics().height();
        const auto contrast = [&](int x) {
            const QColor color = picture.pixelColor(x, y);
            return qAbs(color.red() - ground.red()) + qAbs(color.green() - ground.green()) +
                   qAbs(color.blue() - ground.blue());
        };
        QCOMPARE(picture.pixelColor(250, y), ground);
        QVERIFY(contrast(999) > 60);
        QVERIFY(contrast(500) > 20);
    }

    void aWindowOutsideIsToldByAnArrowAtThatEnd()
    {
        const StripFixture f;
        const auto ink = [&](int x) { return f.strip->grab().toImage().pixelColor(x, 15); };
        f.navigation->goToTime(length + 100 * day);
        const QColor end = ink(992);
        f.navigation->goToTime(-100 * day);
        QCOMPARE(end, f.strip->palette().color(QPalette::Highlight));
        QCOMPARE(ink(8), end);
        QVERIFY(ink(992) != end);
        // A click brings it back.
        f.press(500);
        QCOMPARE(f.start(), length / 2 - 12 * hour);
    }
};

QTEST_MAIN(TestOverviewStrip)
#include "tst_overview_strip.moc"
