#include "support/input.h"
#include "support/recording_logger.h"
#include "support/thrown.h"
#include "support/view_fixture.h"

#include <VeskTimeline/timeline_header_view_mouse_handler.h>
#include <VeskTimeline/timeline_view_drag_handler.h>
#include <VeskTimeline/timeline_view_resize_handler.h>
#include <VeskTimeline/timeline_view_selection_handler.h>

#include <QSignalSpy>
#include <QSortFilterProxyModel>

using namespace VeskTimeline;

/// Models, views and headers that come and go, also in the middle of a gesture.
class TestViewLifetimes : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral("^(?!This plugin does not support)"))); }

    void resizeEndsWithItsModel();
    void rubberBandEndsWithItsModel();
    void pendingClickEndsWithItsModel();
    void moveEndsWithAnotherModel();
    void modelForgetsItsViewThatHasGone();
    void hoverOverSortedProxyReadsNoIndexFromBefore();
    void nullProxyIsRefused();
    void headerWithoutViewKnowsNoPositions();
    void failureIsLoggedWithTheSignatureOfTheOperation();
};

namespace {

/// A view that is shown over a model made before the next one.
struct TwoModels
{
    std::unique_ptr<TestModel> first = std::make_unique<TestModel>();
    TestModel second;
    TimelineView view;
    int itemId = -1;

    TwoModels()
    {
        for (TestModel* model : {first.get(), &second}) {
            const int track = model->newTrack(QStringLiteral("A"));
            itemId = model->newItem(track, ViewFixture::at(100), 300'000);
        }
        show(*first);
        view.setItemDelegate(new ItemDelegate(&view));
        view.setRange(ViewFixture::origin, ViewFixture::origin + 3'600'000);
        view.resize(1200, 300);
        view.show();
        QCoreApplication::processEvents();
    }

    void show(TestModel& model)
    {
        model.setView(&view);
        view.setModel(&model);
    }

    QPoint at(qint64 time) const { return {view.toPixel(time), 25}; }
    qint64 startInSecond() const { return second.item(itemId)->startTime(); }
};

} // namespace

void TestViewLifetimes::resizeEndsWithItsModel()
{
    TwoModels f;
    const QPoint edge = f.at(ViewFixture::at(100)) + QPoint(2, 0);
    Input::move(&f.view, edge);
    Input::press(&f.view, edge);
    QVERIFY(f.view.resizeHandler()->isActive());

    QSignalSpy finished(&f.view, &TimelineView::currentItemTimeChanged);
    f.first.reset();
    QVERIFY(!f.view.resizeHandler()->isActive());
    QCOMPARE(finished.count(), 0);

    Input::release(&f.view, edge);
    f.show(f.second);
    QCoreApplication::processEvents();
    Input::move(&f.view, edge);
    Input::move(&f.view, edge + QPoint(40, 0));
    QCOMPARE(f.startInSecond(), ViewFixture::at(100));
}

void TestViewLifetimes::rubberBandEndsWithItsModel()
{
    TwoModels f;
    const QPoint empty = f.at(ViewFixture::at(800));
    Input::press(&f.view, empty);
    Input::move(&f.view, empty + QPoint(30, 10), Qt::LeftButton);
    QVERIFY(f.view.selectHandler()->isRubberBandActive());
    f.first.reset();
    QVERIFY(!f.view.selectHandler()->isRubberBandActive());
    QCOMPARE(f.view.selectHandler()->rubberBand().size(), QSize(0, 0));
}

void TestViewLifetimes::pendingClickEndsWithItsModel()
{
    TwoModels f;
    const QPoint item = f.at(ViewFixture::at(200));
    Input::press(&f.view, item);
    QVERIFY(f.view.selectHandler()->isActive());
    f.first.reset();
    f.show(f.second);
    QVERIFY(!f.view.selectHandler()->isActive());
    Input::release(&f.view, item);
    QVERIFY(!f.view.hasSelectedItems());
}

void TestViewLifetimes::moveEndsWithAnotherModel()
{
    TwoModels f;
    const QPoint item = f.at(ViewFixture::at(200));
    Input::press(&f.view, item);
    Input::move(&f.view, item + QPoint(40, 0), Qt::LeftButton);
    QVERIFY(f.view.dragHandler()->isActive());
    f.show(f.second);
    QVERIFY(!f.view.dragHandler()->isActive());
    Input::release(&f.view, item + QPoint(40, 0));
    QCOMPARE(f.startInSecond(), ViewFixture::at(100));
}

void TestViewLifetimes::modelForgetsItsViewThatHasGone()
{
    auto view = std::make_unique<TimelineView>();
    TestModel model(view.get());
    view->setModel(&model);
    QVERIFY(!model.isItemDragged(0));
    view.reset();
    QVERIFY(!model.isItemDragged(0));
}

// The proxy makes its indexes anew with each layout change of its source, which a hover move brings about. What is read
// afterwards shows under a memory checker.
void TestViewLifetimes::hoverOverSortedProxyReadsNoIndexFromBefore()
{
    TwoModels f;
    QSortFilterProxyModel proxy;
    proxy.setSourceModel(f.first.get());
    f.view.setProxyModel(&proxy);
    QCoreApplication::processEvents();
    for (int x = 0; x < 50; ++x)
        Input::move(&f.view, f.at(ViewFixture::at(100)) + QPoint(x, 0));
    QCOMPARE(f.view.cursor().shape(), Qt::ArrowCursor);
    Input::move(&f.view, f.at(ViewFixture::at(100)) + QPoint(1, 0));
    QCOMPARE(f.view.cursor().shape(), Qt::SizeHorCursor);
    f.view.setModel(f.first.get());
}

void TestViewLifetimes::nullProxyIsRefused()
{
    TimelineView view;
    COMPARE_THROWN_STRING(view.setProxyModel(nullptr), "source model cannot be cast to TimelineModel");
}

void TestViewLifetimes::headerWithoutViewKnowsNoPositions()
{
    QTest::ignoreMessage(QtWarningMsg,
                         "WARNING: main functionalities are inoperable without a TimelineView as parent.");
    TimelineHeaderView header(nullptr);
    QCOMPARE(header.toPixel(1000), -1);
    QCOMPARE(header.toTime(10), qint64{-1});
    header.setIndicatorTime(5);
    QCOMPARE(header.indicatorPosition(), -1);
    header.show();
    QCoreApplication::processEvents();
    QVERIFY(header.majorTicks().isEmpty());

    Input::click(&header, QPoint(10, 10), Qt::RightButton);
    QCOMPARE(header.dateTimeFormat(), DateTime::ISODate);
    Input::click(&header, QPoint(10, 10), Qt::LeftButton);
    QCOMPARE(header.indicatorTime(), qint64{5});
}

void TestViewLifetimes::failureIsLoggedWithTheSignatureOfTheOperation()
{
    RecordingLogger log;
    {
        ViewFixture f;
        Input::press(&f.view, f.pos(700, f.trackA));
    }
    const auto& entries = log.entries();
    const auto press = std::find_if(entries.begin(), entries.end(), [](const RecordingLogger::Entry& entry) {
        return entry.message.endsWith(QStringLiteral("lookup failed!"));
    });
    QVERIFY(press != entries.end());
    QVERIFY(press->function.contains("TimelineViewDragHandler::mousePressEvent"));
    QCOMPARE(press->message, QString::fromLatin1(press->function) + QStringLiteral(" lookup failed!"));
}

QTEST_MAIN(TestViewLifetimes)
#include "tst_view_lifetimes.moc"
