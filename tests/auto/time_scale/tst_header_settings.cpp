#include "member_layout.h"
#include "paint_counter.h"
#include "support/view_fixture.h"

#include <VeskTimeline/timeline_header_view_mouse_handler.h>

#include <QApplication>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

using namespace VeskTimeline;

PUBLISH_MEMBER(TimelineHeaderView, m_mouseHandler)
PUBLISH_MEMBER(TimelineHeaderView, m_timelineView)
PUBLISH_MEMBER(TimelineHeaderView, m_majorTicks)
PUBLISH_MEMBER(TimelineHeaderView, m_mediumTicks)
PUBLISH_MEMBER(TimelineHeaderView, m_minorTicks)
PUBLISH_MEMBER(TimelineHeaderView, m_dateTimeFormat)
PUBLISH_MEMBER(TimelineHeaderView, m_isDateTimeFormatChangable)
PUBLISH_MEMBER(TimelineHeaderView, m_indicatorScalingFactor)
PUBLISH_MEMBER(TimelineHeaderView, m_indicatorTime)
PUBLISH_MEMBER(TimelineHeaderView, m_isIndicatorVisible)
PUBLISH_MEMBER(TimelineHeaderView, m_isIndicatorLocked)
PUBLISH_MEMBER(TimelineHeaderView, m_liveIndicatorScalingFactor)
PUBLISH_MEMBER(TimelineHeaderView, m_liveIndicatorColor)
PUBLISH_MEMBER(TimelineHeaderView, m_liveIndicatorTime)
PUBLISH_MEMBER(TimelineHeaderView, m_isLiveIndicatorVisible)
PUBLISH_MEMBER(TimelineHeaderView, m_liveTimer)
PUBLISH_MEMBER(TimelineHeaderView, m_liveTimerInterval)
PUBLISH_MEMBER(TimelineHeaderView, m_hoverTime)
PUBLISH_MEMBER(TimelineHeaderView, m_hoverPosition)
PUBLISH_MEMBER(TimelineHeaderView, m_isHoverVisible)
PUBLISH_MEMBER(TimelineHeaderView, m_isHoverTimeVisible)
PUBLISH_MEMBER(TimelineHeaderView, m_hoverDateTimeFormat)
PUBLISH_MEMBER(TimelineHeaderView, m_isLimitsVisible)
PUBLISH_MEMBER(TimelineHeaderView, m_limitsDateTimeFormat)
PUBLISH_MEMBER(TimelineHeaderView, m_minLimitIndicator)
PUBLISH_MEMBER(TimelineHeaderView, m_maxLimitIndicator)
PUBLISH_MEMBER(TimelineHeaderView, m_trackLabel)
PUBLISH_MEMBER(TimelineHeaderView, m_font)

namespace {

/// All signals of a ruler but those of its ticks, as text, in the order in which they come.
class SignalLog
{
public:
    explicit SignalLog(const TimelineHeaderView* header)
    {
        const auto time = [this](const char* name) { return [this, name](qint64 value) { append(name, value); }; };
        const auto flag = [this](const char* name) { return [this, name](bool value) { append(name, value); }; };
        QObject::connect(header, &TimelineHeaderView::indicatorTimeChanged, &m_context, time("indicatorTime"));
        QObject::connect(header, &TimelineHeaderView::indicatorVisibilityChanged, &m_context, flag("indicatorVisible"));
        QObject::connect(header, &TimelineHeaderView::liveIndicatorTimeChanged, &m_context, time("liveTime"));
        QObject::connect(header, &TimelineHeaderView::liveIndicatorVisibilityChanged, &m_context, flag("liveVisible"));
        QObject::connect(header, &TimelineHeaderView::hoverPositionChanged, &m_context,
                         [this](int x) { append("hoverPosition", x); });
        QObject::connect(header, &TimelineHeaderView::hoverVisibilityChanged, &m_context, flag("hoverVisible"));
    }

    QStringList take() { return std::exchange(m_lines, {}); }

private:
    void append(const char* name, qint64 value) { m_lines.append(QStringLiteral("%1 %2").arg(name).arg(value)); }

    QObject m_context;
    QStringList m_lines;
};

/// A ruler on screen with everything that its setters may do under watch.
struct HeaderFixture : ViewFixture
{
    TimelineHeaderView* header = view.header();
    SignalLog log{header};
    PaintCounter rulerPaint{header->viewport()};
    PaintCounter rowsPaint{view.viewport()};

    QRect ruler() const { return {0, 0, labelWidth + secondsVisible, header->height()}; }
    QRect trackColumn() const { return {0, 0, labelWidth, header->height()}; }
    QRect timeColumn() const { return {labelWidth, 0, secondsVisible, header->height()}; }
    bool hasRepaintedNothing()
    {
        const bool isRulerPainted = rulerPaint.takeIsPainted();
        return !rowsPaint.takeIsPainted() && !isRulerPainted;
    }
    /// The view answers a hover with a new layout, which repaints all. Without that only the ruler's own remains.
    void leaveTheViewOut() { QObject::disconnect(header, &TimelineHeaderView::hoverPositionChanged, &view, nullptr); }
    QRect repaintedOfRuler() { return rulerPaint.takeRegion().boundingRect(); }
};

QString hover(int x)
{
    return QStringLiteral("hoverPosition %1").arg(x);
}

} // namespace

class TestHeaderSettings : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".?"))); }

    void membersAreDeclaredInOrder();
    void defaults();
    void constructionConfiguresTheHeader();
    void coloursAreThoseOfThePalette();
    void aNewPaletteGivesNewColours();
    void aChosenColourOfTheLiveLineOutlivesThePalette();
    void withoutAViewItWarns();
    void theParentIsForGood();
    void rulerFontIsTheOwnersToChange();

    void trackLabelIsStoredAndRepainted();
    void scalingFactorsAboveZeroAreStored_data();
    void scalingFactorsAboveZeroAreStored();
    void scalingFactorsAreTwo();

    void indicatorTimeIsAnnouncedOnce();
    void indicatorTimeSnapsWhileTheModelDoes();
    void withoutAModelNothingSnaps();
    void noIndicatorTimeIsNotSnapped();
    void indicatorPositionIsATime();
    void indicatorVisibilityRepaintsTheRows();
    void lockIsAFlag();

    void liveIndicatorTimeIsAnnouncedOnce();
    void liveIndicatorTimeSnapsWhileTheModelDoes();
    void liveIndicatorPositionIsATime();
    void liveIndicatorColorIsStoredAndRepainted();
    void liveIndicatorVisibilityRepaintsRulerAndRows();

    void hoverTimeOutsideTheWindowIsNone_data();
    void hoverTimeOutsideTheWindowIsNone();
    void hoverTimeIsAnnouncedEvenWhenItIsTheSame();
    void hoverPositionIsTakenUnchecked();
    void sameHoverPositionIsAnnouncedOnlyWhenItMeansAnotherTime();
    void hiddenHoverMarkerStaysWhereItIs();
    void hoverVisibilityRepaintsTimeColumnAndRows();
    void hoverTextSettingsRepaintTimeColumnAndRows();

    void limitsChangeTheHeight();
    void heightOfTheRulerIsTakenFromTheRows();
    void limitsFormatIsStoredAndRepainted();
};

void TestHeaderSettings::membersAreDeclaredInOrder()
{
    const QList<std::ptrdiff_t> offsets{MEMBER_OFFSET(TimelineHeaderView, m_mouseHandler),
                                        MEMBER_OFFSET(TimelineHeaderView, m_timelineView),
                                        MEMBER_OFFSET(TimelineHeaderView, m_majorTicks),
                                        MEMBER_OFFSET(TimelineHeaderView, m_mediumTicks),
                                        MEMBER_OFFSET(TimelineHeaderView, m_minorTicks),
                                        MEMBER_OFFSET(TimelineHeaderView, m_dateTimeFormat),
                                        MEMBER_OFFSET(TimelineHeaderView, m_isDateTimeFormatChangable),
                                        MEMBER_OFFSET(TimelineHeaderView, m_indicatorScalingFactor),
                                        MEMBER_OFFSET(TimelineHeaderView, m_indicatorTime),
                                        MEMBER_OFFSET(TimelineHeaderView, m_isIndicatorVisible),
                                        MEMBER_OFFSET(TimelineHeaderView, m_isIndicatorLocked),
                                        MEMBER_OFFSET(TimelineHeaderView, m_liveIndicatorScalingFactor),
                                        MEMBER_OFFSET(TimelineHeaderView, m_liveIndicatorColor),
                                        MEMBER_OFFSET(TimelineHeaderView, m_liveIndicatorTime),
                                        MEMBER_OFFSET(TimelineHeaderView, m_isLiveIndicatorVisible),
                                        MEMBER_OFFSET(TimelineHeaderView, m_liveTimer),
                                        MEMBER_OFFSET(TimelineHeaderView, m_liveTimerInterval),
                                        MEMBER_OFFSET(TimelineHeaderView, m_hoverTime),
                                        MEMBER_OFFSET(TimelineHeaderView, m_hoverPosition),
                                        MEMBER_OFFSET(TimelineHeaderView, m_isHoverVisible),
                                        MEMBER_OFFSET(TimelineHeaderView, m_isHoverTimeVisible),
                                        MEMBER_OFFSET(TimelineHeaderView, m_hoverDateTimeFormat),
                                        MEMBER_OFFSET(TimelineHeaderView, m_isLimitsVisible),
                                        MEMBER_OFFSET(TimelineHeaderView, m_limitsDateTimeFormat),
                                        MEMBER_OFFSET(TimelineHeaderView, m_minLimitIndicator),
                                        MEMBER_OFFSET(TimelineHeaderView, m_maxLimitIndicator),
                                        MEMBER_OFFSET(TimelineHeaderView, m_trackLabel),
                                        MEMBER_OFFSET(TimelineHeaderView, m_font)};
    QCOMPARE(offsets.first(), static_cast<std::ptrdiff_t>(sizeof(QHeaderView)));
    for (int i = 1; i < offsets.size(); ++i)
        QVERIFY2(offsets.at(i - 1) < offsets.at(i), QByteArray::number(i).constData());
}

void TestHeaderSettings::defaults()
{
    TimelineView view;
    const TimelineHeaderView* const header = view.header();
    QCOMPARE(header->indicatorScalingFactor(), 0.5);
    QCOMPARE(header->indicatorTime(), qint64(-1));
    QCOMPARE(header->indicatorPosition(), -1);
    QVERIFY(header->isIndicatorVisible());
    QVERIFY(!header->indicatorLocked());
    QCOMPARE(header->liveIndicatorScalingFactor(), 0.5);
    QCOMPARE(header->liveIndicatorColor(), QApplication::palette().color(QPalette::Link));
    QCOMPARE(header->liveIndicatorTime(), qint64(-1));
    QCOMPARE(header->liveIndicatorPosition(), -1);
    QVERIFY(!header->isLiveIndicatorVisible());
    QCOMPARE(header->liveTimerInterval(), 1000);
    QCOMPARE(header->hoverTime(), qint64(-1));
    QCOMPARE(header->hoverPosition(), -1);
    QVERIFY(header->isHoverVisible());
    QVERIFY(header->isHoverTimeVisible());
    QCOMPARE(int(header->hoverDateTimeFormat()), int(DateTime::DTG));
    QVERIFY(!header->isLimitsVisible());
    QCOMPARE(int(header->limitsDateTimeFormat()), int(DateTime::DTG));
    QVERIFY(header->trackLabel().isEmpty());
    QCOMPARE(header->font(), QFont());
    QCOMPARE(TimelineHeaderView::s_limitHeight, 22);
}

void TestHeaderSettings::constructionConfiguresTheHeader()
{
    TimelineView view;
    const TimelineHeaderView* const header = view.header();
    QCOMPARE(header->orientation(), Qt::Horizontal);
    QCOMPARE(static_cast<QWidget*>(header->parentWidget()), static_cast<QWidget*>(&view));
    QVERIFY(header->stretchLastSection());
    QCOMPARE(header->minimumSectionSize(), 200);
    QCOMPARE(header->minimumHeight(), 50);
    QCOMPARE(header->maximumHeight(), 50);
    const QString color = QApplication::palette().color(QPalette::Inactive, QPalette::Highlight).name();
    QCOMPARE(header->styleSheet(), QStringLiteral("QTreeView { background-color: %1 }").arg(color));
    QVERIFY(header->mouseHandler() != nullptr);

    const QList<QTimer*> timers = header->findChildren<QTimer*>(QString(), Qt::FindDirectChildrenOnly);
    QCOMPARE(timers.size(), 1);
    QVERIFY(!timers.first()->isActive());
}

void TestHeaderSettings::coloursAreThoseOfThePalette()
{
    QCOMPARE(TimelineHeaderView::backgroundColor(), QApplication::palette().color(QPalette::Base));
    QCOMPARE(TimelineHeaderView::highlightColor(), QColor(67, 176, 224));

    const QPalette before = QApplication::palette();
    QPalette dark = before;
    dark.setColor(QPalette::Base, QColor(1, 2, 3));
    dark.setColor(QPalette::Link, QColor(4, 5, 6));
    QApplication::setPalette(dark);
    const TimelineView view;
    const QColor background = TimelineHeaderView::backgroundColor();
    QApplication::setPalette(before);
    QCOMPARE(background, QColor(1, 2, 3));
    QCOMPARE(view.header()->liveIndicatorColor(), QColor(4, 5, 6));
}

void TestHeaderSettings::aNewPaletteGivesNewColours()
{
    const QPalette before = QApplication::palette();
    TimelineView view;
    const auto* const header = view.header();
    view.show();
    QPalette other = before;
    other.setColor(QPalette::Link, QColor(4, 5, 6));
    other.setColor(QPalette::Inactive, QPalette::Highlight, QColor(7, 8, 9));
    QApplication::setPalette(other);
    QCoreApplication::processEvents();
    const QColor line = header->liveIndicatorColor();
    const QString sheet = header->styleSheet();
    QApplication::setPalette(before);
    QCoreApplication::processEvents();
    QCOMPARE(line, QColor(4, 5, 6));
    QCOMPARE(sheet, QString("QTreeView { background-color: #070809 }"));
    QCOMPARE(header->liveIndicatorColor(), before.color(QPalette::Link));
}

void TestHeaderSettings::aChosenColourOfTheLiveLineOutlivesThePalette()
{
    const QPalette before = QApplication::palette();
    TimelineView view;
    view.show();
    // Also the very colour that it has.
    view.header()->setLiveIndicatorColor(before.color(QPalette::Link));
    QPalette other = before;
    other.setColor(QPalette::Link, QColor(4, 5, 6));
    QApplication::setPalette(other);
    QCoreApplication::processEvents();
    const QColor line = view.header()->liveIndicatorColor();
    QApplication::setPalette(before);
    QCoreApplication::processEvents();
    QCOMPARE(line, before.color(QPalette::Link));
}

void TestHeaderSettings::withoutAViewItWarns()
{
    const char* const text = "WARNING: main functionalities are inoperable without a TimelineView as parent.";
    QTest::ignoreMessage(QtWarningMsg, text);
    TimelineHeaderView orphan(nullptr);
    QWidget other;
    QTest::ignoreMessage(QtWarningMsg, text);
    TimelineHeaderView astray(&other);

    // The settings that need no window work all the same.
    SignalLog log(&orphan);
    orphan.setIndicatorTime(12'345);
    orphan.setIndicatorVisible(false);
    orphan.setLiveIndicatorVisible(true);
    orphan.setHoverVisible(false);
    orphan.setLimitsVisible(true);
    QCOMPARE(log.take(), QStringList({QStringLiteral("indicatorTime 12345"), QStringLiteral("indicatorVisible 0"),
                                      QStringLiteral("liveVisible 1"), QStringLiteral("hoverVisible 0")}));
    QCOMPARE(orphan.minimumHeight(), 70);
}

void TestHeaderSettings::theParentIsForGood()
{
    TimelineView view;
    QWidget other;
    QTest::ignoreMessage(QtWarningMsg, "WARNING: setting parent after construction is not allowed.");
    view.header()->setParent(&other);
    QCOMPARE(static_cast<QWidget*>(view.header()->parentWidget()), static_cast<QWidget*>(&view));
}

void TestHeaderSettings::rulerFontIsTheOwnersToChange()
{
    TimelineView view;
    const QFont widgetFont = view.header()->QWidget::font();
    view.header()->font().setPointSize(23);
    QCOMPARE(view.header()->font().pointSize(), 23);
    QCOMPARE(std::as_const(*view.header()).font().pointSize(), 23);
    QCOMPARE(view.header()->QWidget::font(), widgetFont);
}

void TestHeaderSettings::trackLabelIsStoredAndRepainted()
{
    HeaderFixture f;
    f.header->setTrackLabel(QStringLiteral("Tracks"));
    QCOMPARE(f.header->trackLabel(), QStringLiteral("Tracks"));
    QCOMPARE(f.repaintedOfRuler(), f.trackColumn());
    f.rowsPaint.takeRegion();
    f.header->setTrackLabel(QStringLiteral("Tracks"));
    QVERIFY(f.hasRepaintedNothing());
    QVERIFY(f.log.take().isEmpty());
}

void TestHeaderSettings::scalingFactorsAboveZeroAreStored_data()
{
    QTest::addColumn<double>("factor");
    QTest::addColumn<double>("stored");

    QTest::newRow("small") << 0.001 << 0.001;
    QTest::newRow("large") << 3.5 << 3.5;
    QTest::newRow("zero") << 0.0 << 0.5;
    QTest::newRow("negative") << -1.0 << 0.5;
    QTest::newRow("unchanged") << 0.5 << 0.5;
}

void TestHeaderSettings::scalingFactorsAboveZeroAreStored()
{
    QFETCH(const double, factor);
    QFETCH(const double, stored);
    const bool isChanged = stored != 0.5;

    HeaderFixture f;
    f.header->setIndicatorScalingFactor(factor);
    QCOMPARE(f.header->indicatorScalingFactor(), stored);
    QCOMPARE(f.repaintedOfRuler(), isChanged ? f.ruler() : QRect());
    f.header->setLiveIndicatorScalingFactor(factor);
    QCOMPARE(f.header->liveIndicatorScalingFactor(), stored);
    QCOMPARE(f.repaintedOfRuler(), isChanged ? f.ruler() : QRect());
    QVERIFY(f.log.take().isEmpty());
}

void TestHeaderSettings::scalingFactorsAreTwo()
{
    TimelineView view;
    view.header()->setIndicatorScalingFactor(0.25);
    QCOMPARE(view.header()->liveIndicatorScalingFactor(), 0.5);
    view.header()->setLiveIndicatorScalingFactor(0.75);
    QCOMPARE(view.header()->indicatorScalingFactor(), 0.25);
}

void TestHeaderSettings::indicatorTimeIsAnnouncedOnce()
{
    HeaderFixture f;
    f.header->setIndicatorTime(ViewFixture::at(100) + 7);
    QCOMPARE(f.header->indicatorTime(), ViewFixture::at(100) + 7);
    QCOMPARE(f.header->indicatorPosition(), ViewFixture::labelWidth + 100);
    QCOMPARE(f.log.take(), QStringList(QStringLiteral("indicatorTime %1").arg(ViewFixture::at(100) + 7)));
    QCOMPARE(f.repaintedOfRuler(), f.ruler());
    f.rowsPaint.takeRegion();

    f.header->setIndicatorTime(ViewFixture::at(100) + 7);
    QVERIFY(f.log.take().isEmpty());
    QVERIFY(f.hasRepaintedNothing());

    f.header->setIndicatorTime(-1);
    QCOMPARE(f.log.take(), QStringList(QStringLiteral("indicatorTime -1")));
}

void TestHeaderSettings::indicatorTimeSnapsWhileTheModelDoes()
{
    HeaderFixture f;
    f.model.setSnapEnabled(true);
    f.model.setSnapStep(2000);
    f.header->setIndicatorTime(ViewFixture::at(101) + 999);
    QCOMPARE(f.header->indicatorTime(), ViewFixture::at(100));
    QCOMPARE(f.log.take(), QStringList(QStringLiteral("indicatorTime %1").arg(ViewFixture::at(100))));

    // Compared after snapping.
    f.header->setIndicatorTime(ViewFixture::at(100) + 1);
    QVERIFY(f.log.take().isEmpty());

    f.model.setSnapEnabled(false);
    f.header->setIndicatorTime(ViewFixture::at(100) + 1);
    QCOMPARE(f.header->indicatorTime(), ViewFixture::at(100) + 1);
}

void TestHeaderSettings::withoutAModelNothingSnaps()
{
    TimelineView view;
    view.header()->setIndicatorTime(12'345);
    QCOMPARE(view.header()->indicatorTime(), qint64(12'345));
    view.header()->setLiveIndicatorTime(54'321);
    QCOMPARE(view.header()->liveIndicatorTime(), qint64(54'321));
}

void TestHeaderSettings::noIndicatorTimeIsNotSnapped()
{
    HeaderFixture f;
    f.model.setSnapEnabled(true);
    f.header->setIndicatorTime(ViewFixture::at(3));
    f.header->setLiveIndicatorTime(ViewFixture::at(3));
    f.header->setIndicatorTime(-1);
    f.header->setLiveIndicatorTime(-1);
    QCOMPARE(f.header->indicatorTime(), qint64(-1));
    QCOMPARE(f.header->liveIndicatorTime(), qint64(-1));
}

void TestHeaderSettings::indicatorPositionIsATime()
{
    HeaderFixture f;
    f.header->setIndicatorPosition(ViewFixture::labelWidth + 250);
    QCOMPARE(f.header->indicatorTime(), ViewFixture::at(250));
    QCOMPARE(f.log.take(), QStringList(QStringLiteral("indicatorTime %1").arg(ViewFixture::at(250))));
    f.view.setCurrentTime(ViewFixture::at(50));
    QCOMPARE(f.header->indicatorPosition(), ViewFixture::labelWidth + 200);
    QCOMPARE(f.header->indicatorTime(), ViewFixture::at(250));
}

void TestHeaderSettings::indicatorVisibilityRepaintsTheRows()
{
    HeaderFixture f;
    for (const bool isVisible : {false, true}) {
        f.header->setIndicatorVisible(isVisible);
        QCOMPARE(f.header->isIndicatorVisible(), isVisible);
        QCOMPARE(f.log.take(), QStringList(QStringLiteral("indicatorVisible %1").arg(isVisible)));
        QCOMPARE(f.rowsPaint.takeRegion().boundingRect(), f.view.viewport()->rect());
        f.rulerPaint.takeRegion();
        f.header->setIndicatorVisible(isVisible);
        QVERIFY(f.log.take().isEmpty());
        QVERIFY(f.hasRepaintedNothing());
    }
}

void TestHeaderSettings::lockIsAFlag()
{
    HeaderFixture f;
    f.header->setIndicatorLocked(true);
    QVERIFY(f.header->indicatorLocked());
    f.header->unlockIndicator();
    QVERIFY(!f.header->indicatorLocked());
    f.header->lockIndicator();
    QVERIFY(f.header->indicatorLocked());
    // Locked against the mouse, not against the program.
    f.header->setIndicatorTime(ViewFixture::at(1));
    QCOMPARE(f.header->indicatorTime(), ViewFixture::at(1));
    f.header->setIndicatorLocked(false);
    QVERIFY(!f.header->indicatorLocked());
    QCOMPARE(f.log.take().size(), 1);
}

void TestHeaderSettings::liveIndicatorTimeIsAnnouncedOnce()
{
    HeaderFixture f;
    f.header->setLiveIndicatorTime(ViewFixture::at(100) + 7);
    QCOMPARE(f.header->liveIndicatorTime(), ViewFixture::at(100) + 7);
    QCOMPARE(f.header->liveIndicatorPosition(), ViewFixture::labelWidth + 100);
    QCOMPARE(f.log.take(), QStringList(QStringLiteral("liveTime %1").arg(ViewFixture::at(100) + 7)));
    QCOMPARE(f.repaintedOfRuler(), f.ruler());
    // The line runs through the rows.
    QVERIFY(f.rowsPaint.takeIsPainted());

    f.header->setLiveIndicatorTime(ViewFixture::at(100) + 7);
    QVERIFY(f.log.take().isEmpty());
    QVERIFY(f.hasRepaintedNothing());
}

void TestHeaderSettings::liveIndicatorTimeSnapsWhileTheModelDoes()
{
    HeaderFixture f;
    f.model.setSnapEnabled(true);
    f.header->setLiveIndicatorTime(ViewFixture::at(100) + 999);
    QCOMPARE(f.header->liveIndicatorTime(), ViewFixture::at(100) + 500);
    f.header->setLiveIndicatorTime(ViewFixture::at(100) + 501);
    QCOMPARE(f.log.take(), QStringList(QStringLiteral("liveTime %1").arg(ViewFixture::at(100) + 500)));
}

void TestHeaderSettings::liveIndicatorPositionIsATime()
{
    HeaderFixture f;
    f.header->setLiveIndicatorPosition(ViewFixture::labelWidth + 250);
    QCOMPARE(f.header->liveIndicatorTime(), ViewFixture::at(250));
    QCOMPARE(f.header->liveIndicatorPosition(), ViewFixture::labelWidth + 250);
    QCOMPARE(f.header->indicatorTime(), qint64(-1));
}

void TestHeaderSettings::liveIndicatorColorIsStoredAndRepainted()
{
    HeaderFixture f;
    f.header->setLiveIndicatorColor(Qt::green);
    QCOMPARE(f.header->liveIndicatorColor(), QColor(Qt::green));
    QCOMPARE(f.repaintedOfRuler(), f.ruler());
    f.rowsPaint.takeRegion();
    f.header->setLiveIndicatorColor(Qt::green);
    QVERIFY(f.hasRepaintedNothing());
    QVERIFY(f.log.take().isEmpty());
}

void TestHeaderSettings::liveIndicatorVisibilityRepaintsRulerAndRows()
{
    HeaderFixture f;
    for (const bool isVisible : {true, false}) {
        f.header->setLiveIndicatorVisible(isVisible);
        QCOMPARE(f.header->isLiveIndicatorVisible(), isVisible);
        QCOMPARE(f.log.take(), QStringList(QStringLiteral("liveVisible %1").arg(isVisible)));
        QCOMPARE(f.repaintedOfRuler(), f.ruler());
        QCOMPARE(f.rowsPaint.takeRegion().boundingRect(), f.view.viewport()->rect());
        f.header->setLiveIndicatorVisible(isVisible);
        QVERIFY(f.log.take().isEmpty());
        QVERIFY(f.hasRepaintedNothing());
    }
}

void TestHeaderSettings::hoverTimeOutsideTheWindowIsNone_data()
{
    QTest::addColumn<qint64>("time");
    QTest::addColumn<qint64>("stored");
    QTest::addColumn<int>("position");

    const qint64 left = ViewFixture::origin;
    const qint64 right = ViewFixture::origin + 1'800'000;
    QTest::newRow("left edge") << left << left << 200;
    QTest::newRow("inside") << left + 100'400 << left + 100'400 << 300;
    QTest::newRow("right edge") << right << right << 2000;
    QTest::newRow("before") << left - 1 << qint64(-1) << -1;
    QTest::newRow("after") << right + 1 << qint64(-1) << -1;
    QTest::newRow("none") << qint64(-1) << qint64(-1) << -1;
}

void TestHeaderSettings::hoverTimeOutsideTheWindowIsNone()
{
    QFETCH(const qint64, time);
    QFETCH(const qint64, stored);
    QFETCH(const int, position);

    HeaderFixture f;
    f.leaveTheViewOut();
    f.header->setHoverTime(time);
    QCOMPARE(f.header->hoverTime(), stored);
    QCOMPARE(f.header->hoverPosition(), position);
    QCOMPARE(f.log.take(), QStringList(hover(position)));
    QCOMPARE(f.repaintedOfRuler(), f.timeColumn());
}

void TestHeaderSettings::hoverTimeIsAnnouncedEvenWhenItIsTheSame()
{
    HeaderFixture f;
    f.header->setHoverTime(ViewFixture::at(30));
    f.header->setHoverTime(ViewFixture::at(30));
    f.header->setHoverTime(-1);
    f.header->setHoverTime(-1);
    QCOMPARE(f.log.take(), QStringList({hover(230), hover(230), hover(-1), hover(-1)}));
}

void TestHeaderSettings::hoverPositionIsTakenUnchecked()
{
    HeaderFixture f;
    f.leaveTheViewOut();
    f.header->setHoverPosition(300);
    QCOMPARE(f.header->hoverPosition(), 300);
    QCOMPARE(f.header->hoverTime(), ViewFixture::at(100));
    QCOMPARE(f.repaintedOfRuler(), f.timeColumn());

    f.header->setHoverPosition(-1);
    QCOMPARE(f.header->hoverPosition(), -1);
    QCOMPARE(f.header->hoverTime(), ViewFixture::at(-201));
    f.header->setHoverPosition(5000);
    QCOMPARE(f.header->hoverPosition(), 5000);
    QCOMPARE(f.header->hoverTime(), ViewFixture::at(4800));
    QCOMPARE(f.log.take(), QStringList({hover(300), hover(-1), hover(5000)}));
}

void TestHeaderSettings::sameHoverPositionIsAnnouncedOnlyWhenItMeansAnotherTime()
{
    HeaderFixture f;
    f.header->setHoverPosition(300);
    f.log.take();
    f.rulerPaint.takeRegion();
    f.rowsPaint.takeRegion();
    f.header->setHoverPosition(300);
    QVERIFY(f.log.take().isEmpty());
    QVERIFY(f.hasRepaintedNothing());

    // The wheel scrolls under a mouse that rests.
    f.view.setCurrentTime(ViewFixture::at(60));
    f.log.take();
    f.header->setHoverPosition(300);
    QCOMPARE(f.header->hoverTime(), ViewFixture::at(160));
    QCOMPARE(f.log.take(), QStringList(hover(300)));
}

void TestHeaderSettings::hiddenHoverMarkerStaysWhereItIs()
{
    HeaderFixture f;
    f.header->setHoverPosition(300);
    f.header->setHoverVisible(false);
    f.log.take();
    f.rulerPaint.takeRegion();
    f.rowsPaint.takeRegion();

    f.header->setHoverTime(ViewFixture::at(5));
    f.header->setHoverPosition(444);
    QCOMPARE(f.header->hoverPosition(), 300);
    QCOMPARE(f.header->hoverTime(), ViewFixture::at(100));
    QVERIFY(f.log.take().isEmpty());
    QVERIFY(f.hasRepaintedNothing());
}

void TestHeaderSettings::hoverVisibilityRepaintsTimeColumnAndRows()
{
    HeaderFixture f;
    for (const bool isVisible : {false, true}) {
        f.header->setHoverVisible(isVisible);
        QCOMPARE(f.header->isHoverVisible(), isVisible);
        QCOMPARE(f.log.take(), QStringList(QStringLiteral("hoverVisible %1").arg(isVisible)));
        QCOMPARE(f.repaintedOfRuler(), f.timeColumn());
        QCOMPARE(f.rowsPaint.takeRegion().boundingRect(), f.view.viewport()->rect());
        f.header->setHoverVisible(isVisible);
        QVERIFY(f.log.take().isEmpty());
        QVERIFY(f.hasRepaintedNothing());
    }
}

void TestHeaderSettings::hoverTextSettingsRepaintTimeColumnAndRows()
{
    HeaderFixture f;
    f.header->setHoverTimeVisible(false);
    QVERIFY(!f.header->isHoverTimeVisible());
    QCOMPARE(f.repaintedOfRuler(), f.timeColumn());
    QCOMPARE(f.rowsPaint.takeRegion().boundingRect(), f.view.viewport()->rect());
    f.header->setHoverTimeVisible(false);
    QVERIFY(f.hasRepaintedNothing());

    f.header->setHoverDateTimeFormat(DateTime::Standard);
    QCOMPARE(int(f.header->hoverDateTimeFormat()), int(DateTime::Standard));
    QCOMPARE(f.repaintedOfRuler(), f.timeColumn());
    QCOMPARE(f.rowsPaint.takeRegion().boundingRect(), f.view.viewport()->rect());
    f.header->setHoverDateTimeFormat(DateTime::Standard);
    QVERIFY(f.hasRepaintedNothing());

    QVERIFY(f.log.take().isEmpty());
    QCOMPARE(int(f.header->dateTimeFormat()), int(DateTime::DTG));
}

void TestHeaderSettings::limitsChangeTheHeight()
{
    HeaderFixture f;
    QCOMPARE(f.header->height(), 50);
    f.header->setLimitsVisible(true);
    QVERIFY(f.header->isLimitsVisible());
    QCOMPARE(f.header->height(), 70);
    QCOMPARE(f.repaintedOfRuler(), f.ruler());
    f.rowsPaint.takeRegion();
    f.header->setLimitsVisible(true);
    QVERIFY(f.hasRepaintedNothing());
    f.header->setLimitsVisible(false);
    QVERIFY(!f.header->isLimitsVisible());
    QCOMPARE(f.header->height(), 50);
    QVERIFY(f.log.take().isEmpty());
}

void TestHeaderSettings::heightOfTheRulerIsTakenFromTheRows()
{
    HeaderFixture f;
    const int top = f.view.viewport()->geometry().top();
    QCOMPARE(top, f.header->geometry().bottom() + 1);
    f.header->setLimitsVisible(true);
    QTRY_COMPARE(f.view.viewport()->geometry().top(), top + 20);
    QCOMPARE(f.view.viewport()->geometry().top(), f.header->geometry().bottom() + 1);
    f.header->setLimitsVisible(false);
    QTRY_COMPARE(f.view.viewport()->geometry().top(), top);
}

void TestHeaderSettings::limitsFormatIsStoredAndRepainted()
{
    HeaderFixture f;
    f.header->setLimitsDateTimeFormat(DateTime::ISODate);
    QCOMPARE(int(f.header->limitsDateTimeFormat()), int(DateTime::ISODate));
    QVERIFY(f.rulerPaint.takeIsPainted());
    f.header->setLimitsDateTimeFormat(DateTime::ISODate);
    QVERIFY(f.hasRepaintedNothing());
    QVERIFY(f.log.take().isEmpty());
}

QTEST_MAIN(TestHeaderSettings)
#include "tst_header_settings.moc"
