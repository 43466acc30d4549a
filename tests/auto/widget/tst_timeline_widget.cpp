#include "auto/widget/icon_folder.h"
#include "support/recording_logger.h"
#include "support/test_model.h"

#include <VeskTimeline/item_delegate.h>
#include <VeskTimeline/timeline_header_view.h>
#include <VeskTimeline/timeline_view.h>
#include <VeskTimeline/timeline_widget.h>

#include <QComboBox>
#include <QIcon>
#include <QLabel>
#include <QLayout>
#include <QMetaMethod>
#include <QPointer>
#include <QPushButton>
#include <QRegularExpression>
#include <QScrollBar>
#include <QSignalSpy>
#include <QSpinBox>
#include <QTest>

using namespace VeskTimeline;

namespace {

/// 13 September 2020, half past twelve.
constexpr qint64 origin = 1'600'000'200'000;
constexpr int oneHour = 3'600'000;

struct WidgetFixture
{
    TestModel model;
    TimelineWidget widget;

    WidgetFixture()
    {
        model.setView(widget.view());
        model.newTrack(QStringLiteral("A"));
        widget.setModel(&model);
        widget.view()->setItemDelegate(new ItemDelegate(widget.view()));
    }
    void setRange(qint64 start, qint64 end) { widget.view()->setRange(start, end); }
    void show()
    {
        widget.resize(1100, 400);
        widget.show();
        settle();
    }
    static void settle()
    {
        for (int i = 0; i < 4; ++i)
            QCoreApplication::processEvents();
    }
    template <typename Widget>
    Widget* child(const char* name) const
    {
        return widget.findChild<Widget*>(QLatin1String(name));
    }
    QPushButton* button(const char* name) const { return child<QPushButton>(name); }
    QString text(const char* name) const
    {
        return widget.findChild<QWidget*>(QLatin1String(name))->property("text").toString();
    }
    QComboBox* box() const { return child<QComboBox>("cbZoom"); }
    QScrollBar* slider() const { return widget.slider(); }
    int zoom() const { return widget.zoomFactor(); }
    bool isSliderBelowTimeColumn() const
    {
        const TimelineHeaderView* const header = widget.header();
        const int left = header->viewport()->mapTo(&widget, QPoint(header->sectionPosition(1), 0)).x();
        return slider()->x() == left && slider()->width() == header->sectionSize(1) &&
               slider()->y() > widget.view()->geometry().bottom();
    }
    QList<int> offeredZooms() const
    {
        QList<int> zooms;
        for (int i = 0; i < box()->count(); ++i)
            zooms.append(box()->itemData(i, Qt::UserRole).toInt());
        return zooms;
    }
};

QColor colorOf(const QIcon& icon)
{
    return icon.pixmap(QSize(16, 16)).toImage().pixelColor(8, 8);
}

} // namespace

class TestTimelineWidget : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(".?")); }

    void loggerIsTakenFromTheRoot();
    void slotsComeInTheirOrder();
    void partsAreThoseOfTheView();
    void timesAndZoomAreForwardedToTheView();
    void cursorTextIsForwardedToTheView();
    void snappingIsForwardedToTheModel();
    void withoutAModelThereIsNoSnapping();
    void iconsComeFromTheApplicationsSearchPath();
    void iconsCanBeReplaced();

    void sliderCountsTheRangesWholeSeconds();
    void sliderPagesByTheWindowAndStepsByMillisecondsOfAMinorTick();
    void sliderFollowsTheCurrentTime();
    void currentTimeFollowsTheSlider();
    void zoomChangesTheSlidersEnd();
    void secondsAreCutTowardsZero();

    void zoomButtonsZoomByOneStep();
    void zoomInIsDisabledAtTheMinimum();
    void zoomOutIsDisabledAtTheUpperBound();
    void boxListsTheZoomFactorsOfTheView();
    void boxShowsTheCurrentZoomFactor();
    void selectingInTheBoxZooms();
    void selectingTheCurrentZoomFactorChangesNothing();
    void refillingTheBoxSelectsNothing();
    void oneDayLeavesNoCurrentEntryAndStays();
    void boxStaysConnectedOnceAfterRefills();

    void sectionOfTheTimeColumnSizesTheSlider();
    void sectionOfTheNamesLeavesTheSliderAlone();
    void sliderLiesExactlyBelowTheTimeColumn();
    void widgetCanBeMadeNarrow();

    void placeholderIsNullAtFirst();
    void placeholderIsShownInItsPlace();
    void samePlaceholderIsKept();
    void otherPlaceholderReplacesAndDeletesTheFirst();
    void nullRemovesThePlaceholder();
    void widePlaceholderDoesNotWidenTheWidget();

    void debugPanelShowsAndHides();
    void debugPanelTellsTimesAndZoom();
    void debugPanelFollowsTheView();
    void updateButtonRefreshesTheDebugPanel();
    void snapButtonTogglesSnappingAndIsRelabelled();
    void indicatorAndHoverButtonsToggleAndAreRelabelled();
    void spinBoxesSetTheModelsSnapping();
    void showingTheDebugPanelChangesNothingInTheModel();
    void debugPanelShownTwiceReactsOnce();
    void hiddenDebugPanelFollowsNothing();
    void debugPanelWorksWithoutAModel();

private:
    const IconFolder m_icons;
};

void TestTimelineWidget::loggerIsTakenFromTheRoot()
{
    class NameLogger : public RecordingLogger
    {
    public:
        IHoxLogger& logger(const QString& name) override
        {
            names.append(name);
            return RecordingLogger::logger(name);
        }
        QStringList names;
    } logger;
    const TimelineWidget widget;
    QCOMPARE(logger.names.count(QStringLiteral("Timeline.TimelineWidget")), 1);
}

void TestTimelineWidget::slotsComeInTheirOrder()
{
    const QMetaObject& meta = TimelineWidget::staticMetaObject;
    QStringList names;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        QCOMPARE(meta.method(i).methodType(), QMetaMethod::Slot);
        names.append(QString::fromLatin1(meta.method(i).methodSignature()));
    }
    QCOMPARE(names, (QStringList{"onSectionResized(int,int,int)", "onSliderValueChanged(int)",
                                 "onZoomChanged(VeskTimeline::Zoom::Factor)", "onZoomSelected()", "onZoomIn()",
                                 "onZoomOut()", "onUpdateDebugInfo()"}));
}

void TestTimelineWidget::partsAreThoseOfTheView()
{
    TimelineWidget empty;
    QVERIFY(!empty.timelineModel());
    QCOMPARE(empty.header(), empty.view()->header());
    WidgetFixture f;
    QCOMPARE(f.widget.timelineModel(), &f.model);
    QCOMPARE(f.widget.view()->model(), &f.model);
}

void TestTimelineWidget::timesAndZoomAreForwardedToTheView()
{
    WidgetFixture f;
    TimelineView* const view = f.widget.view();
    f.widget.setDuration(oneHour);
    QCOMPARE(view->duration(), oneHour);
    f.widget.setStartTime(origin);
    QCOMPARE(view->startTime(), origin);
    f.widget.setEndTime(origin + 2 * oneHour);
    QCOMPARE(view->endTime(), origin + 2 * oneHour);
    f.widget.setCurrentTime(origin + 60'000);
    QCOMPARE(view->currentTime(), origin + 60'000);
    f.widget.setZoomFactor(Zoom::TenMinutes);
    QCOMPARE(int(view->zoomFactor()), int(Zoom::TenMinutes));
    f.widget.setMinimumZoomFactor(Zoom::SixtySeconds);
    QCOMPARE(int(view->minimumZoomFactor()), int(Zoom::SixtySeconds));
    f.widget.setMaximumZoomFactor(Zoom::SixtyMinutes);
    QCOMPARE(int(view->maximumZoomFactor()), int(Zoom::SixtyMinutes));

    QCOMPARE(f.widget.duration(), 2 * oneHour);
    QCOMPARE(f.widget.startTime(), origin);
    QCOMPARE(f.widget.endTime(), origin + 2 * oneHour);
    QCOMPARE(f.widget.currentTime(), origin + 60'000);
    QCOMPARE(int(f.widget.zoomFactor()), int(Zoom::TenMinutes));
    QCOMPARE(int(f.widget.minimumZoomFactor()), int(Zoom::SixtySeconds));
    QCOMPARE(int(f.widget.maximumZoomFactor()), int(Zoom::SixtyMinutes));
}

void TestTimelineWidget::cursorTextIsForwardedToTheView()
{
    WidgetFixture f;
    f.setRange(origin, origin + oneHour);
    f.show();
    QVERIFY(!f.widget.isCursorTextVisible());
    f.widget.setCursorTextVisible(true);
    QVERIFY(f.widget.view()->isCursorTextVisible());
    QVERIFY(f.widget.isCursorTextVisible());
    f.widget.header()->setHoverPosition(600);
    const QImage without = f.widget.view()->viewport()->grab().toImage();
    f.widget.setCursorText(QStringLiteral("a text"));
    QVERIFY(f.widget.view()->viewport()->grab().toImage() != without);
    f.widget.setCursorText(QString());
    QCOMPARE(f.widget.view()->viewport()->grab().toImage(), without);
}

void TestTimelineWidget::snappingIsForwardedToTheModel()
{
    WidgetFixture f;
    QVERIFY(!f.widget.isSnapEnabled());
    f.widget.setSnapEnabled(true);
    QVERIFY(f.model.isSnapEnabled());
    QVERIFY(f.widget.isSnapEnabled());
    f.widget.disableSnap();
    QVERIFY(!f.model.isSnapEnabled());
    f.widget.enableSnap();
    QVERIFY(f.model.isSnapEnabled());
    f.widget.triggerSnap();
    QVERIFY(!f.model.isSnapEnabled());
}

void TestTimelineWidget::withoutAModelThereIsNoSnapping()
{
    TimelineWidget widget;
    widget.enableSnap();
    widget.triggerSnap();
    QVERIFY(!widget.isSnapEnabled());
}

void TestTimelineWidget::iconsComeFromTheApplicationsSearchPath()
{
    WidgetFixture f;
    QCOMPARE(colorOf(f.button("pbZoomIn")->icon()), QColor(Qt::red));
    QCOMPARE(colorOf(f.button("pbZoomOut")->icon()), QColor(Qt::blue));
}

void TestTimelineWidget::iconsCanBeReplaced()
{
    WidgetFixture f;
    QPixmap pixmap(16, 16);
    pixmap.fill(Qt::green);
    f.widget.setZoomInIcon(QIcon(pixmap));
    QCOMPARE(colorOf(f.button("pbZoomIn")->icon()), QColor(Qt::green));
    QCOMPARE(colorOf(f.button("pbZoomOut")->icon()), QColor(Qt::blue));
    pixmap.fill(Qt::yellow);
    f.widget.setZoomOutIcon(QIcon(pixmap));
    QCOMPARE(colorOf(f.button("pbZoomIn")->icon()), QColor(Qt::green));
    QCOMPARE(colorOf(f.button("pbZoomOut")->icon()), QColor(Qt::yellow));
}

void TestTimelineWidget::sliderCountsTheRangesWholeSeconds()
{
    WidgetFixture f;
    f.widget.setZoomFactor(Zoom::FifteenMinutes);
    f.setRange(0, oneHour);
    QCOMPARE(f.slider()->minimum(), 0);
    QCOMPARE(f.slider()->maximum(), 2700);
    QCOMPARE(f.slider()->pageStep(), 900);
    f.setRange(origin, origin + 2 * oneHour);
    QCOMPARE(f.slider()->minimum(), 1'600'000'200);
    QCOMPARE(f.slider()->maximum(), 1'600'000'200 + 7200 - 900);
}

void TestTimelineWidget::sliderPagesByTheWindowAndStepsByMillisecondsOfAMinorTick()
{
    WidgetFixture f;
    QCOMPARE(f.slider()->pageStep(), 1800);
    QCOMPARE(f.slider()->singleStep(), Zoom::minorInterval(Zoom::ThirtyMinutes));
    f.setRange(0, oneHour);
    f.widget.setZoomFactor(Zoom::TenMinutes);
    QCOMPARE(f.slider()->pageStep(), 600);
    QCOMPARE(f.slider()->singleStep(), Zoom::minorInterval(Zoom::TenMinutes));
}

void TestTimelineWidget::sliderFollowsTheCurrentTime()
{
    WidgetFixture f;
    f.setRange(origin, origin + oneHour);
    QSignalSpy timeSpy(f.widget.view(), &TimelineView::currentTimeChanged);
    f.widget.setCurrentTime(origin + 600'000);
    QCOMPARE(f.slider()->value(), 1'600'000'800);
    QCOMPARE(timeSpy.count(), 1);
}

void TestTimelineWidget::currentTimeFollowsTheSlider()
{
    WidgetFixture f;
    f.setRange(origin, origin + oneHour);
    f.slider()->setValue(1'600'000'260);
    QCOMPARE(f.widget.currentTime(), origin + 60'000);
    f.slider()->setValue(f.slider()->maximum());
    QCOMPARE(f.widget.currentTime(), origin + oneHour - Zoom::ThirtyMinutes);
    f.widget.onSliderValueChanged(1'600'000'210);
    QCOMPARE(f.widget.currentTime(), origin + 10'000);
}

void TestTimelineWidget::zoomChangesTheSlidersEnd()
{
    WidgetFixture f;
    f.setRange(0, oneHour);
    QCOMPARE(f.slider()->maximum(), 1800);
    f.widget.setZoomFactor(Zoom::FiveMinutes);
    QCOMPARE(f.slider()->maximum(), 3300);
    QCOMPARE(f.slider()->minimum(), 0);
}

void TestTimelineWidget::secondsAreCutTowardsZero()
{
    WidgetFixture f;
    f.setRange(1999, 1999 + oneHour + 1500);
    QCOMPARE(f.slider()->minimum(), 1);
    QCOMPARE(f.slider()->maximum(), (1999 + oneHour + 1500 - 1'800'000) / 1000);
    f.widget.setCurrentTime(5999);
    QCOMPARE(f.slider()->value(), 5);
}

void TestTimelineWidget::zoomButtonsZoomByOneStep()
{
    WidgetFixture f;
    f.setRange(0, 4 * oneHour);
    f.button("pbZoomIn")->click();
    QCOMPARE(f.zoom(), int(Zoom::FifteenMinutes));
    f.button("pbZoomOut")->click();
    f.button("pbZoomOut")->click();
    QCOMPARE(f.zoom(), int(Zoom::SixtyMinutes));
    f.widget.onZoomIn();
    QCOMPARE(f.zoom(), int(Zoom::ThirtyMinutes));
    f.widget.onZoomOut();
    QCOMPARE(f.zoom(), int(Zoom::SixtyMinutes));
}

void TestTimelineWidget::zoomInIsDisabledAtTheMinimum()
{
    WidgetFixture f;
    f.setRange(0, oneHour);
    f.widget.setZoomFactor(Zoom::ThirtySeconds);
    QVERIFY(f.button("pbZoomIn")->isEnabled());
    f.button("pbZoomIn")->click();
    QVERIFY(!f.button("pbZoomIn")->isEnabled());
    QVERIFY(f.button("pbZoomOut")->isEnabled());
    f.widget.setMinimumZoomFactor(Zoom::TenMinutes);
    QCOMPARE(f.zoom(), int(Zoom::TenMinutes));
    QVERIFY(!f.button("pbZoomIn")->isEnabled());
}

void TestTimelineWidget::zoomOutIsDisabledAtTheUpperBound()
{
    WidgetFixture f;
    f.setRange(0, oneHour);
    QVERIFY(f.button("pbZoomOut")->isEnabled());
    f.button("pbZoomOut")->click();
    QCOMPARE(f.zoom(), int(Zoom::SixtyMinutes));
    QVERIFY(!f.button("pbZoomOut")->isEnabled());
    QVERIFY(f.button("pbZoomIn")->isEnabled());
    // A longer range gives room again.
    f.setRange(0, 2 * oneHour);
    QVERIFY(f.button("pbZoomOut")->isEnabled());
}

void TestTimelineWidget::boxListsTheZoomFactorsOfTheView()
{
    WidgetFixture f;
    f.widget.setMinimumZoomFactor(Zoom::FiveMinutes);
    f.setRange(0, oneHour);
    QCOMPARE(f.offeredZooms(), (QList<int>{Zoom::FiveMinutes, Zoom::TenMinutes, Zoom::FifteenMinutes,
                                           Zoom::ThirtyMinutes, Zoom::SixtyMinutes}));
    QCOMPARE(f.box()->itemText(0), QStringLiteral("5 Minutes"));
    QCOMPARE(f.box()->itemText(4), Zoom::toString(Zoom::SixtyMinutes, false));
    TimelineWidget fresh;
    QCOMPARE(fresh.findChild<QComboBox*>(QStringLiteral("cbZoom"))->count(), 14);
}

void TestTimelineWidget::boxShowsTheCurrentZoomFactor()
{
    WidgetFixture f;
    QCOMPARE(f.box()->currentData().toInt(), int(Zoom::ThirtyMinutes));
    f.setRange(0, oneHour);
    QCOMPARE(f.box()->currentData().toInt(), int(Zoom::ThirtyMinutes));
    f.widget.setZoomFactor(Zoom::TenMinutes);
    QCOMPARE(f.box()->currentData().toInt(), int(Zoom::TenMinutes));
    QCOMPARE(f.box()->currentText(), QStringLiteral("10 Minutes"));
}

void TestTimelineWidget::selectingInTheBoxZooms()
{
    WidgetFixture f;
    f.setRange(0, oneHour);
    QSignalSpy zoomSpy(f.widget.view(), &TimelineView::zoomChanged);
    f.box()->setCurrentIndex(f.box()->findData(int(Zoom::FiveMinutes)));
    QCOMPARE(f.zoom(), int(Zoom::FiveMinutes));
    QCOMPARE(zoomSpy.count(), 1);
    QCOMPARE(f.box()->currentData().toInt(), int(Zoom::FiveMinutes));
}

void TestTimelineWidget::selectingTheCurrentZoomFactorChangesNothing()
{
    WidgetFixture f;
    f.setRange(0, oneHour);
    QSignalSpy zoomSpy(f.widget.view(), &TimelineView::zoomChanged);
    f.box()->setCurrentIndex(f.box()->currentIndex());
    f.widget.onZoomSelected();
    QCOMPARE(zoomSpy.count(), 0);
    QCOMPARE(f.zoom(), int(Zoom::ThirtyMinutes));
}

void TestTimelineWidget::refillingTheBoxSelectsNothing()
{
    WidgetFixture f;
    QSignalSpy zoomSpy(f.widget.view(), &TimelineView::zoomChanged);
    f.setRange(0, oneHour);
    f.setRange(0, 20 * oneHour);
    f.setRange(0, oneHour);
    QCOMPARE(zoomSpy.count(), 0);
    QCOMPARE(f.zoom(), int(Zoom::ThirtyMinutes));
}

void TestTimelineWidget::oneDayLeavesNoCurrentEntryAndStays()
{
    WidgetFixture f;
    f.setRange(origin, origin + Zoom::OneDay);
    f.widget.setZoomFactor(Zoom::OneDay);
    QCOMPARE(f.box()->currentIndex(), -1);
    QVERIFY(!f.offeredZooms().contains(int(Zoom::OneDay)));
    QCOMPARE(f.zoom(), int(Zoom::OneDay));
    f.widget.onZoomSelected();
    QCOMPARE(f.zoom(), int(Zoom::OneDay));
    // Refilled by a change of the range, too.
    f.setRange(origin, origin + Zoom::OneDay + oneHour);
    QCOMPARE(f.box()->currentIndex(), -1);
    QCOMPARE(f.zoom(), int(Zoom::OneDay));
    f.button("pbZoomIn")->click();
    QCOMPARE(f.zoom(), int(Zoom::TwelveHours));
    QCOMPARE(f.box()->currentData().toInt(), int(Zoom::TwelveHours));
    f.widget.setZoomFactor(Zoom::OneDay);
    f.box()->setCurrentIndex(0);
    QCOMPARE(f.zoom(), int(Zoom::FifteenSeconds));
}

void TestTimelineWidget::boxStaysConnectedOnceAfterRefills()
{
    WidgetFixture f;
    for (int hours = 1; hours < 5; ++hours)
        f.setRange(0, hours * oneHour);
    QSignalSpy indexSpy(f.box(), &QComboBox::currentIndexChanged);
    QSignalSpy zoomSpy(f.widget.view(), &TimelineView::zoomChanged);
    f.box()->setCurrentIndex(0);
    QCOMPARE(f.zoom(), int(Zoom::FifteenSeconds));
    QCOMPARE(zoomSpy.count(), 1);
    QVERIFY(indexSpy.count() >= 1);
}

void TestTimelineWidget::sectionOfTheTimeColumnSizesTheSlider()
{
    WidgetFixture f;
    f.show();
    const int scrollBarWidth = f.widget.view()->verticalScrollBar()->width();
    f.widget.onSectionResized(1, 0, 321);
    QCOMPARE(f.slider()->minimumSize(), QSize(321, scrollBarWidth));
    QCOMPARE(f.slider()->maximumSize(), QSize(321, scrollBarWidth));
}

void TestTimelineWidget::sectionOfTheNamesLeavesTheSliderAlone()
{
    WidgetFixture f;
    f.show();
    const QSize size = f.slider()->minimumSize();
    f.widget.onSectionResized(0, 0, 321);
    f.widget.onSectionResized(2, 0, 321);
    QCOMPARE(f.slider()->minimumSize(), size);
    QCOMPARE(f.slider()->maximumSize(), size);
}

void TestTimelineWidget::sliderLiesExactlyBelowTheTimeColumn()
{
    WidgetFixture f;
    f.setRange(origin, origin + oneHour);
    f.show();
    QVERIFY(f.isSliderBelowTimeColumn());
    f.widget.header()->resizeSection(0, 350);
    f.settle();
    QVERIFY(f.isSliderBelowTimeColumn());
    f.widget.resize(1400, 500);
    f.settle();
    QVERIFY(f.isSliderBelowTimeColumn());
    f.widget.resize(700, 500);
    f.settle();
    QVERIFY(f.isSliderBelowTimeColumn());
    f.widget.setPlaceholder(new QLabel(QStringLiteral("a placeholder")));
    f.settle();
    QVERIFY(f.isSliderBelowTimeColumn());
    f.widget.showDebugWidget();
    f.settle();
    QVERIFY(f.isSliderBelowTimeColumn());
}

void TestTimelineWidget::widgetCanBeMadeNarrow()
{
    WidgetFixture f;
    f.show();
    QVERIFY(f.widget.minimumSizeHint().width() < 300);
    f.widget.resize(1900, 400);
    f.settle();
    f.widget.resize(600, 400);
    f.settle();
    QCOMPARE(f.widget.width(), 600);
    f.widget.showDebugWidget();
    f.settle();
    QCOMPARE(f.widget.width(), 600);
}

void TestTimelineWidget::placeholderIsNullAtFirst()
{
    const TimelineWidget widget;
    QVERIFY(!widget.placeholder());
}

void TestTimelineWidget::placeholderIsShownInItsPlace()
{
    WidgetFixture f;
    f.show();
    auto* const label = new QLabel(QStringLiteral("a placeholder"));
    f.widget.setPlaceholder(label);
    f.settle();
    QCOMPARE(f.widget.placeholder(), label);
    QCOMPARE(label->parentWidget(), f.child<QWidget>("wPlaceholder"));
    QVERIFY(label->isVisible());
    QVERIFY(label->mapTo(&f.widget, QPoint()).y() > f.slider()->geometry().bottom());
}

void TestTimelineWidget::samePlaceholderIsKept()
{
    WidgetFixture f;
    const QPointer<QLabel> label(new QLabel);
    f.widget.setPlaceholder(label);
    f.widget.setPlaceholder(label);
    QVERIFY(label);
    QCOMPARE(f.widget.placeholder(), label.data());
}

void TestTimelineWidget::otherPlaceholderReplacesAndDeletesTheFirst()
{
    WidgetFixture f;
    const QPointer<QLabel> first(new QLabel);
    const QPointer<QLabel> second(new QLabel);
    f.widget.setPlaceholder(first);
    f.widget.setPlaceholder(second);
    QVERIFY(!first);
    QCOMPARE(f.widget.placeholder(), second.data());
    QCOMPARE(f.child<QWidget>("wPlaceholder")->layout()->count(), 1);
}

void TestTimelineWidget::nullRemovesThePlaceholder()
{
    WidgetFixture f;
    const QPointer<QLabel> label(new QLabel);
    f.widget.setPlaceholder(label);
    f.widget.setPlaceholder(nullptr);
    QVERIFY(!label);
    QVERIFY(!f.widget.placeholder());
    QVERIFY(f.child<QWidget>("wPlaceholder")->isHidden());
    f.widget.setPlaceholder(nullptr);
    QVERIFY(!f.widget.placeholder());
}

// The slider is as wide as the time column; a row that did not fit below the view would make both grow for ever.
void TestTimelineWidget::widePlaceholderDoesNotWidenTheWidget()
{
    WidgetFixture f;
    f.show();
    auto* const wide = new QWidget;
    wide->setMinimumSize(600, 20);
    f.widget.setPlaceholder(wide);
    f.settle();
    f.settle();
    QCOMPARE(f.widget.width(), 1100);
    QVERIFY(f.isSliderBelowTimeColumn());
    QVERIFY(f.child<QWidget>("wPlaceholder")->geometry().right() < f.slider()->geometry().left());
}

void TestTimelineWidget::debugPanelShowsAndHides()
{
    WidgetFixture f;
    f.show();
    f.widget.showDebugWidget();
    QVERIFY(f.child<QWidget>("debugWidget")->isVisible());
    f.widget.hideDebugWidget();
    QVERIFY(f.child<QWidget>("debugWidget")->isHidden());
}

void TestTimelineWidget::debugPanelTellsTimesAndZoom()
{
    WidgetFixture f;
    f.setRange(origin, origin + oneHour);
    f.widget.setCurrentTime(origin + 600'000);
    f.model.setSnapStep(250);
    f.model.setSnapTolerance(750);
    f.widget.view()->selectItems({3, 4}, true);
    f.widget.showDebugWidget();
    QCOMPARE(f.text("lblDebugStart"), QStringLiteral("13123000Z SEP 20"));
    QCOMPARE(f.text("lblDebugEnd"), QStringLiteral("13133000Z SEP 20"));
    QCOMPARE(f.text("lblDebugCurrent"), QStringLiteral("13124000Z SEP 20"));
    QCOMPARE(f.text("lblDebugDuration"), QStringLiteral("3600"));
    QCOMPARE(f.text("lblDebugSlider"), QStringLiteral("13124000Z SEP 20"));
    QCOMPARE(f.text("lblDebugZoom"), QStringLiteral("30 Minutes"));
    QCOMPARE(f.text("lblDebugSelection"), QStringLiteral("2"));
    QCOMPARE(f.child<QSpinBox>("sbDebugSnapStep")->value(), 250);
    QCOMPARE(f.child<QSpinBox>("sbDebugSnapTol")->value(), 750);
}

void TestTimelineWidget::debugPanelFollowsTheView()
{
    WidgetFixture f;
    f.widget.showDebugWidget();
    f.setRange(origin, origin + oneHour);
    QCOMPARE(f.text("lblDebugStart"), QStringLiteral("13123000Z SEP 20"));
    f.widget.setCurrentTime(origin + 600'000);
    QCOMPARE(f.text("lblDebugCurrent"), QStringLiteral("13124000Z SEP 20"));
    QCOMPARE(f.text("lblDebugSlider"), QStringLiteral("13124000Z SEP 20"));
    f.widget.setZoomFactor(Zoom::TenMinutes);
    QCOMPARE(f.text("lblDebugZoom"), QStringLiteral("10 Minutes"));
    f.widget.view()->selectItem(3, true);
    QCOMPARE(f.text("lblDebugSelection"), QStringLiteral("1"));
}

void TestTimelineWidget::updateButtonRefreshesTheDebugPanel()
{
    WidgetFixture f;
    f.setRange(origin, origin + oneHour);
    f.widget.showDebugWidget();
    f.child<QLabel>("lblDebugStart")->setText(QStringLiteral("outdated"));
    f.button("pbDebugUpdate")->click();
    QCOMPARE(f.text("lblDebugStart"), QStringLiteral("13123000Z SEP 20"));
}

void TestTimelineWidget::snapButtonTogglesSnappingAndIsRelabelled()
{
    WidgetFixture f;
    f.widget.enableSnap();
    f.widget.showDebugWidget();
    QCOMPARE(f.text("pbDebugTriggerSnap"), QStringLiteral("Disable Snap"));
    f.button("pbDebugTriggerSnap")->click();
    QVERIFY(!f.model.isSnapEnabled());
    QCOMPARE(f.text("pbDebugTriggerSnap"), QStringLiteral("Enable Snap"));
    f.button("pbDebugTriggerSnap")->click();
    QVERIFY(f.model.isSnapEnabled());
    QCOMPARE(f.text("pbDebugTriggerSnap"), QStringLiteral("Disable Snap"));
}

void TestTimelineWidget::indicatorAndHoverButtonsToggleAndAreRelabelled()
{
    WidgetFixture f;
    f.widget.header()->setHoverVisible(false);
    f.widget.showDebugWidget();
    QCOMPARE(f.text("pbDebugTriggerIndicator"), QStringLiteral("Disable Indicator"));
    QCOMPARE(f.text("pbDebugTriggerHover"), QStringLiteral("Enable Hover"));
    f.button("pbDebugTriggerIndicator")->click();
    QVERIFY(!f.widget.header()->isIndicatorVisible());
    QCOMPARE(f.text("pbDebugTriggerIndicator"), QStringLiteral("Enable Indicator"));
    QCOMPARE(f.text("pbDebugTriggerHover"), QStringLiteral("Enable Hover"));
    f.button("pbDebugTriggerHover")->click();
    QVERIFY(f.widget.header()->isHoverVisible());
    QCOMPARE(f.text("pbDebugTriggerHover"), QStringLiteral("Disable Hover"));
}

void TestTimelineWidget::spinBoxesSetTheModelsSnapping()
{
    WidgetFixture f;
    f.widget.showDebugWidget();
    f.child<QSpinBox>("sbDebugSnapStep")->setValue(700);
    f.child<QSpinBox>("sbDebugSnapTol")->setValue(800);
    QCOMPARE(f.model.snapStep(), 700);
    QCOMPARE(f.model.snapTolerance(), 800);
}

// More than the boxes can show.
void TestTimelineWidget::showingTheDebugPanelChangesNothingInTheModel()
{
    WidgetFixture f;
    f.widget.showDebugWidget();
    f.model.setSnapStep(70'000);
    f.model.setSnapTolerance(80'000);
    f.widget.showDebugWidget();
    QCOMPARE(f.model.snapStep(), 70'000);
    QCOMPARE(f.model.snapTolerance(), 80'000);
}

void TestTimelineWidget::debugPanelShownTwiceReactsOnce()
{
    WidgetFixture f;
    f.widget.showDebugWidget();
    f.widget.showDebugWidget();
    f.button("pbDebugTriggerSnap")->click();
    QVERIFY(f.model.isSnapEnabled());
    f.button("pbDebugTriggerIndicator")->click();
    QVERIFY(!f.widget.header()->isIndicatorVisible());
    f.button("pbDebugTriggerHover")->click();
    QVERIFY(!f.widget.header()->isHoverVisible());
}

void TestTimelineWidget::hiddenDebugPanelFollowsNothing()
{
    WidgetFixture f;
    f.widget.showDebugWidget();
    f.widget.hideDebugWidget();
    const QString start = f.text("lblDebugStart");
    f.setRange(origin, origin + oneHour);
    QCOMPARE(f.text("lblDebugStart"), start);
    f.widget.showDebugWidget();
    QCOMPARE(f.text("lblDebugStart"), QStringLiteral("13123000Z SEP 20"));
}

void TestTimelineWidget::debugPanelWorksWithoutAModel()
{
    TimelineWidget widget;
    widget.showDebugWidget();
    widget.findChild<QPushButton*>(QStringLiteral("pbDebugTriggerSnap"))->click();
    widget.findChild<QSpinBox*>(QStringLiteral("sbDebugSnapStep"))->setValue(700);
    QCOMPARE(widget.findChild<QPushButton*>(QStringLiteral("pbDebugTriggerSnap"))->text(),
             QStringLiteral("Enable Snap"));
}

QTEST_MAIN(TestTimelineWidget)
#include "tst_timeline_widget.moc"
