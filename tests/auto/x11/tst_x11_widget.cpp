#include "x11/desktop_view.h"
#include "x11/pointer.h"

#include <VeskTimeline/item_delegate.h>
#include <VeskTimeline/timeline_widget.h>

#include <QAbstractItemView>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QPushButton>
#include <QScrollBar>
#include <QStyleOptionSlider>
#include <QTemporaryDir>
#include <QTest>

namespace Zoom = VeskTimeline::Zoom;
using VeskTimeline::ItemDelegate;
using VeskTimeline::TimelineWidget;

namespace {

/// The composite widget over a range of one hour, of which a quarter shows.
struct DesktopWidget
{
    static constexpr qint64 origin = DesktopView::origin;

    DesktopModel model;
    TimelineWidget widget;
    int trackA = model.newTrack(QStringLiteral("A"));
    int trackB = model.newTrack(QStringLiteral("B"));

    DesktopWidget()
    {
        model.setView(widget.view());
        widget.setModel(&model);
        widget.view()->setItemDelegate(new ItemDelegate(widget.view()));
        widget.view()->setRange(origin, origin + 3'600'000);
        widget.setCurrentTime(origin);
        widget.setZoomFactor(Zoom::FifteenMinutes);
        widget.setGeometry(100, 100, 1200, 400);
    }

    bool show()
    {
        widget.show();
        return QTest::qWaitForWindowExposed(&widget) && QTest::qWaitForWindowActive(&widget);
    }

    QPushButton* zoomIn() const { return widget.findChild<QPushButton*>(QStringLiteral("pbZoomIn")); }
    QPushButton* zoomOut() const { return widget.findChild<QPushButton*>(QStringLiteral("pbZoomOut")); }
    QComboBox* zoomBox() const { return widget.findChild<QComboBox*>(QStringLiteral("cbZoom")); }

    /// Middle of the slider's handle.
    QPoint handlePos() const
    {
        const QScrollBar* const slider = widget.slider();
        QStyleOptionSlider option;
        option.initFrom(slider);
        option.subControls = QStyle::SC_All;
        option.orientation = Qt::Horizontal;
        option.state |= QStyle::State_Horizontal;
        option.minimum = slider->minimum();
        option.maximum = slider->maximum();
        option.pageStep = slider->pageStep();
        option.singleStep = slider->singleStep();
        option.sliderPosition = slider->sliderPosition();
        option.sliderValue = slider->value();
        return slider->style()
            ->subControlRect(QStyle::CC_ScrollBar, &option, QStyle::SC_ScrollBarSlider, slider)
            .center();
    }

    QPoint pos(qint64 time, int trackId) const
    {
        const TimelineWidget& composite = widget;
        const VeskTimeline::TimelineView* const view = composite.view();
        return {view->toPixel(time), view->visualRect(view->indexOfTrackRow(trackId, 1)).center().y()};
    }
};

} // namespace

/// The composite widget's controls on a real display.
class TestX11Widget : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void sliderPansTheWindow();
    void clickBesideTheHandleMovesTheWindowByItsWidth();
    void zoomButtonsZoomUntilTheyAreDisabled();
    void zoomBoxOffersTheFactors();
    void wheelInTheViewIsFollowedByTheControls();
    void itemsCanBeDraggedToAnotherTrack();

private:
    QTemporaryDir m_icons;
};

// The application's icons.
void TestX11Widget::initTestCase()
{
    QVERIFY(m_icons.isValid());
    for (const QString& name : {QStringLiteral("pnx_zoom_in.svg"), QStringLiteral("pnx_zoom_out.svg")}) {
        QFile icon(m_icons.filePath(name));
        QVERIFY(icon.open(QIODevice::WriteOnly));
        icon.write("<svg xmlns='http://www.w3.org/2000/svg' width='16' height='16'/>");
    }
    QDir::addSearchPath(QStringLiteral("icon"), m_icons.path());
}

void TestX11Widget::init()
{
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".?")));
    Pointer pointer;
    PLAY(pointer.moveAway());
}

void TestX11Widget::sliderPansTheWindow()
{
    DesktopWidget desktop;
    QVERIFY(desktop.show());
    QScrollBar* const slider = desktop.widget.slider();
    QCOMPARE(desktop.widget.currentTime(), DesktopWidget::origin);

    Pointer pointer;
    const QPoint handle = desktop.handlePos();
    PLAY(pointer.drag(slider, handle, handle + QPoint(100, 0)));
    QTRY_VERIFY(desktop.widget.currentTime() > DesktopWidget::origin + 60'000);
    QCOMPARE(desktop.widget.currentTime(), static_cast<qint64>(slider->value()) * 1000);
    // As far as it goes.
    const QPoint moved = desktop.handlePos();
    PLAY(pointer.drag(slider, moved, QPoint(slider->width() - 2, moved.y())));
    QTRY_COMPARE(desktop.widget.currentTime(), DesktopWidget::origin + 2'700'000);
}

void TestX11Widget::clickBesideTheHandleMovesTheWindowByItsWidth()
{
    DesktopWidget desktop;
    QVERIFY(desktop.show());
    QScrollBar* const slider = desktop.widget.slider();

    Pointer pointer;
    PLAY(pointer.moveTo(slider, QPoint(slider->width() - 60, slider->height() / 2)).click());
    QTRY_COMPARE(desktop.widget.currentTime(), DesktopWidget::origin + 900'000);
}

void TestX11Widget::zoomButtonsZoomUntilTheyAreDisabled()
{
    DesktopWidget desktop;
    desktop.widget.setMinimumZoomFactor(Zoom::TenMinutes);
    QVERIFY(desktop.show());

    Pointer pointer;
    QPushButton* const in = desktop.zoomIn();
    PLAY(pointer.moveTo(in).click());
    QTRY_COMPARE(desktop.widget.zoomFactor(), Zoom::TenMinutes);
    QVERIFY(!in->isEnabled());
    PLAY(pointer.click());
    QCOMPARE(desktop.widget.zoomFactor(), Zoom::TenMinutes);

    QPushButton* const out = desktop.zoomOut();
    pointer.moveTo(out);
    for (const Zoom::Factor factor : {Zoom::FifteenMinutes, Zoom::ThirtyMinutes, Zoom::SixtyMinutes}) {
        PLAY(pointer.click());
        QTRY_COMPARE(desktop.widget.zoomFactor(), factor);
    }
    QVERIFY(!out->isEnabled());
    QVERIFY(in->isEnabled());
}

void TestX11Widget::zoomBoxOffersTheFactors()
{
    DesktopWidget desktop;
    QVERIFY(desktop.show());
    QComboBox* const box = desktop.zoomBox();
    QCOMPARE(box->currentData().toInt(), static_cast<int>(Zoom::FifteenMinutes));

    Pointer pointer;
    pointer.moveTo(box).click();
    PLAY(pointer.expect("the list is open", [&] { return box->view()->isVisible(); }));
    const int row = box->findData(static_cast<int>(Zoom::FiveMinutes));
    QVERIFY(row >= 0);
    const QRect entry = box->view()->visualRect(box->model()->index(row, 0));
    PLAY(pointer.moveTo(box->view()->viewport(), entry.center()).click());
    QTRY_COMPARE(desktop.widget.zoomFactor(), Zoom::FiveMinutes);
    QCOMPARE(box->currentData().toInt(), static_cast<int>(Zoom::FiveMinutes));

    PLAY(pointer.key("Down"));
    QTRY_COMPARE(desktop.widget.zoomFactor(), Zoom::TenMinutes);
}

void TestX11Widget::wheelInTheViewIsFollowedByTheControls()
{
    DesktopWidget desktop;
    QVERIFY(desktop.show());
    QWidget* const ruler = desktop.widget.header()->viewport();

    Pointer pointer;
    PLAY(pointer.moveTo(ruler).wheel(-1));
    const int step = Zoom::majorInterval(Zoom::FifteenMinutes);
    QTRY_COMPARE(desktop.widget.currentTime(), DesktopWidget::origin + step);
    QCOMPARE(desktop.widget.slider()->value(), static_cast<int>((DesktopWidget::origin + step) / 1000));
    PLAY(pointer.keyDown("ctrl").wheel(1).keyUp("ctrl"));
    QTRY_COMPARE(desktop.widget.zoomFactor(), Zoom::TenMinutes);
    QCOMPARE(desktop.zoomBox()->currentData().toInt(), static_cast<int>(Zoom::TenMinutes));
    QCOMPARE(desktop.widget.slider()->pageStep(), 600);
}

void TestX11Widget::itemsCanBeDraggedToAnotherTrack()
{
    DesktopWidget desktop;
    const qint64 start = DesktopWidget::origin + 300'000;
    const int item = desktop.model.newItem(desktop.trackA, start, 60'000);
    QVERIFY(desktop.show());

    const QPoint from = desktop.pos(start + 30'000, desktop.trackA);
    const QPoint to(from.x(), desktop.pos(start, desktop.trackB).y());
    Pointer pointer;
    PLAY(pointer.drag(desktop.widget.view()->viewport(), from, to));
    QTRY_COMPARE(desktop.model.item(item)->parentTrackId(), desktop.trackB);
    QCOMPARE(desktop.model.item(item)->startTime(), start);
}

QTEST_MAIN(TestX11Widget)
#include "tst_x11_widget.moc"
