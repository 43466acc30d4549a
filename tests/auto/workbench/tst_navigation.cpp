#include "navigation_fixture.h"

#include <QRandomGenerator>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>
#include <QUndoStack>

#include <limits>
#include <workbench/window_scroll_bar.h>

using namespace VeskTimeline;
using namespace VeskTimeline::Kit;
using Workbench::Navigation;
using Workbench::TimeStep;
using Workbench::WindowScrollBar;

namespace {

constexpr qint64 hour = NavigationFixture::hour;
constexpr qint64 day = NavigationFixture::day;
constexpr qint64 tenYears = 3653 * day;

void turnWheelOver(TimelineHeaderView* header, int notches)
{
    const QPoint pos(header->sectionPosition(1) + 50, 10);
    QWheelEvent event(pos, header->viewport()->mapToGlobal(pos), QPoint(), QPoint(0, notches * 120), Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(header->viewport(), &event);
}

} // namespace

class TestNavigation : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression("^(?!This plugin does not support propagateSizeHints)")); }

    void anEmptyDocumentShowsToday()
    {
        const NavigationFixture f;
        QVERIFY(!f.navigation->documentSpan());
        QCOMPARE(f.view()->startTime() % day, 0);
        QCOMPARE(f.view()->duration(), int(day));
        QVERIFY(!f.navigation->canPage(1));
        QVERIFY(!f.navigation->canPage(-1));
        f.navigation->goToFirstItem();
        f.navigation->goToLastItem();
        f.navigation->page(1);
        QCOMPARE(f.navigation->window().start, f.view()->startTime());
    }

    void aShortDocumentIsSeenWhole()
    {
        NavigationFixture f;
        f.add("A", "x", 500, 10'000'000);
        f.navigation->fit();
        QCOMPARE(f.navigation->documentSpan()->start, 500);
        QCOMPARE(f.navigation->documentSpan()->end, 10'000'500);
        QCOMPARE(f.navigation->window().start, 0);
        QCOMPARE(f.navigation->window().end, qint64(Zoom::FourHours));
        QCOMPARE(f.view()->startTime(), 0);
        QCOMPARE(f.view()->endTime(), qint64(Zoom::FourHours));
    }

    void aDocumentWithinTheLongestRangeIsTheRange()
    {
        NavigationFixture f;
        f.add("A", "x", 0, std::numeric_limits<int>::max() / 1000 * 1000);
        f.navigation->fit();
        QCOMPARE(f.view()->startTime(), 0);
        QCOMPARE(f.view()->endTime(), 2'147'483'000);
        f.navigation->scrollTo(12 * day);
        QCOMPARE(f.view()->startTime(), 0);
        QCOMPARE(f.view()->currentTime(), 12 * day);
    }

    void everyPlaceOfTenYearsIsReached()
    {
        NavigationFixture f;
        f.add("A", "first", 0, hour);
        f.add("A", "last", tenYears - hour, hour);
        f.navigation->fit();
        QCOMPARE(f.navigation->reach().end, tenYears);
        QRandomGenerator random(7);
        for (int i = 0; i < 500; ++i) {
            const qint64 wanted = random.bounded(tenYears - day);
            f.navigation->scrollTo(wanted);
            QCOMPARE(f.navigation->window().start, wanted);
            QCOMPARE(f.view()->zoomFactor(), Zoom::OneDay);
            QVERIFY(f.view()->startTime() >= 0 && f.view()->startTime() <= wanted);
            QVERIFY(f.view()->endTime() <= tenYears && f.view()->endTime() >= wanted + day);
        }
        f.navigation->scrollTo(std::numeric_limits<int>::min());
        QCOMPARE(f.navigation->window().start, 0);
        f.navigation->scrollTo(2 * tenYears);
        QCOMPARE(f.navigation->window().end, tenYears);
    }

    void theWheelGoesOnWhereTheRangeEnds()
    {
        NavigationFixture f;
        f.add("A", "first", 0, hour);
        f.add("A", "last", tenYears - hour, hour);
        f.navigation->fit();
        f.widget.show();
        const int step = Zoom::majorInterval(Zoom::OneDay);
        for (int i = 1; i <= 600; ++i) {
            turnWheelOver(f.widget.header(), -1);
            QCOMPARE(f.view()->currentTime(), qint64(i) * step);
        }
        QVERIFY(f.view()->currentTime() > Navigation::longestRange);
        for (int i = 599; i >= 0; --i) {
            turnWheelOver(f.widget.header(), 1);
            QCOMPARE(f.view()->currentTime(), qint64(i) * step);
        }
    }

    void theRangeIsLeftAloneWhileItWillDo()
    {
        NavigationFixture f;
        f.add("A", "first", 0, hour);
        f.add("A", "last", tenYears - hour, hour);
        f.navigation->fit();
        f.navigation->scrollTo(tenYears / 2);
        QSignalSpy range(f.view(), &TimelineView::rangeChanged);
        f.navigation->scrollTo(tenYears / 2 + 5 * day);
        f.navigation->scrollTo(tenYears / 2 - 5 * day);
        QCOMPARE(range.count(), 0);
        f.navigation->scrollTo(tenYears / 2 + 15 * day);
        QCOMPARE(range.count(), 1);
    }

    void timesThatTheSliderCannotCountArePannedThrough_data()
    {
        QTest::addColumn<qint64>("start");
        QTest::newRow("year 1") << Navigation::earliest;
        QTest::newRow("1800") << qint64(-5'364'662'400'000);
        QTest::newRow("2100") << qint64(4'102'444'800'000);
        QTest::newRow("end of year 9999") << Navigation::latest - 30 * day;
    }
    void timesThatTheSliderCannotCountArePannedThrough()
    {
        QFETCH(qint64, start);
        NavigationFixture f;
        f.add("A", "first", start, hour);
        f.add("A", "last", start + 29 * day, hour);
        f.navigation->fit();
        const qint64 origin = f.navigation->reach().start;
        QCOMPARE(f.view()->currentTime(), origin);
        // A direct write too, as the header's wheel does it, keeps its milliseconds.
        f.view()->setCurrentTime(origin + 3 * day + 1);
        QCOMPARE(f.view()->currentTime(), origin + 3 * day + 1);
        f.navigation->goToLastItem();
        QVERIFY(f.navigation->window().end >= start + 29 * day + hour);
    }

    void goToTimeKeepsTheZoomAndLeavesTheDocument()
    {
        NavigationFixture f;
        f.add("A", "x", 0, 2 * day);
        f.navigation->fit();
        f.view()->setZoomFactor(Zoom::TwoHours);
        f.navigation->goToTime(tenYears);
        QCOMPARE(f.navigation->window().start, tenYears);
        QCOMPARE(f.view()->zoomFactor(), Zoom::TwoHours);
        QCOMPARE(f.navigation->reach().start, 0);
        QCOMPARE(f.navigation->reach().end, tenYears + Zoom::TwoHours);
        f.navigation->centreOn(-tenYears);
        QCOMPARE(f.navigation->window().start, -tenYears - hour);
        f.navigation->fit();
        QCOMPARE(f.navigation->reach().start, 0);
        QCOMPARE(f.navigation->reach().end, 2 * day);
    }

    void theYears1To9999AreTheLimits()
    {
        NavigationFixture f;
        f.navigation->goToTime(std::numeric_limits<qint64>::min());
        QCOMPARE(f.navigation->window().start, Navigation::earliest);
        f.navigation->centreOn(std::numeric_limits<qint64>::max());
        QCOMPARE(f.navigation->window().end, Navigation::latest + 1);
    }

    void stepsMoveByTheirLength()
    {
        NavigationFixture f;
        f.add("A", "x", 0, 30 * day);
        f.navigation->fit();
        f.navigation->stepBy(TimeStep::Day, 1);
        QCOMPARE(f.navigation->window().start, day);
        f.navigation->stepBy(TimeStep::Hour, 1);
        QCOMPARE(f.navigation->window().start, day + hour);
        f.navigation->stepBy(TimeStep::Minute, -1);
        QCOMPARE(f.navigation->window().start, day + hour - 60'000);
        f.navigation->goToTime(0);
        f.navigation->stepBy(TimeStep::Day, -1);
        QCOMPARE(f.navigation->window().start, -day);
    }

    void zoomKeepsTheMiddle()
    {
        NavigationFixture f;
        f.add("A", "x", 0, 30 * day);
        f.navigation->fit();
        f.navigation->scrollTo(10 * day);
        f.navigation->zoomBy(1);
        QCOMPARE(f.view()->zoomFactor(), Zoom::TwelveHours);
        QCOMPARE(f.navigation->window().start, 10 * day + 6 * hour);
        f.navigation->zoomBy(-1);
        QCOMPARE(f.view()->zoomFactor(), Zoom::OneDay);
        QCOMPARE(f.navigation->window().start, 10 * day);
        f.navigation->zoomBy(-1);
        QCOMPARE(f.navigation->window().start, 10 * day);
    }

    void partsWithoutItemsArePassedOver()
    {
        NavigationFixture f;
        f.add("A", "first", 0, hour);
        f.add("B", "over", 2 * day - hour, 2 * hour);
        f.add("A", "point", 100 * day, 0);
        f.navigation->fit();
        QVERIFY(!f.navigation->canPage(-1));
        f.navigation->page(1);
        QCOMPARE(f.navigation->window().start, day);
        f.navigation->page(1);
        QCOMPARE(f.navigation->window().start, 2 * day);
        f.navigation->page(1);
        // The end of what is in reach.
        QCOMPARE(f.navigation->window().end, 100 * day);
        QVERIFY(!f.navigation->canPage(1));
        QVERIFY(f.navigation->canPage(-1));
        f.navigation->page(-1);
        QCOMPARE(f.navigation->window().start, 2 * day + hour - 12 * hour);
        f.navigation->page(-1);
        QCOMPARE(f.navigation->window().start, 0);
        f.navigation->page(-1);
        QCOMPARE(f.navigation->window().start, 0);
    }

    void firstAndLastItemAreShown()
    {
        NavigationFixture f;
        f.add("A", "first", 0, hour);
        f.add("A", "last", tenYears, hour);
        f.navigation->fit();
        f.navigation->goToLastItem();
        QCOMPARE(f.navigation->window().end, tenYears + hour);
        f.navigation->goToFirstItem();
        QCOMPARE(f.navigation->window().start, 0);
    }

    void anItemIsSelectedAndBroughtIntoView()
    {
        NavigationFixture f;
        for (int i = 0; i < 40; ++i)
            f.add(QStringLiteral("Track %1").arg(i), "x", 0, hour);
        const int id = f.add("Outer/Inner", "deep", tenYears, hour);
        const int wide = f.add("Outer/Inner", "wide", 50 * day, 5 * day);
        f.widget.show();
        f.navigation->fit();
        const int inner = std::as_const(f.model).item(id)->parentTrackId();
        const QModelIndex outerRow = f.view()->indexOfTrackRow(f.model.parentOfTrackId(inner)->id(), 0);
        QVERIFY(!f.view()->isExpanded(outerRow));

        QVERIFY(f.navigation->goToItem(id));
        QCOMPARE(f.view()->selectedItemIds(), QList<int>{id});
        QVERIFY(f.view()->isExpanded(outerRow));
        const QRect row = f.view()->visualRect(f.view()->indexOfTrackRow(inner, 0));
        QVERIFY(f.view()->viewport()->rect().contains(row.center()));
        QCOMPARE(f.navigation->window().start, tenYears + hour / 2 - 12 * hour);

        // What is seen already does not move the window.
        f.navigation->scrollTo(f.navigation->window().start + 2 * hour);
        const qint64 before = f.navigation->window().start;
        QVERIFY(f.navigation->goToItem(id));
        QCOMPARE(f.navigation->window().start, before);

        // Of one that is longer than the window the start is shown.
        QVERIFY(f.navigation->goToItem(wide));
        QCOMPARE(f.navigation->window().start, 50 * day - 3 * hour);

        QVERIFY(!f.navigation->goToItem(9999));
        QCOMPARE(f.view()->selectedItemIds(), QList<int>{wide});
    }

    void theDocumentSpanFollowsEveryEdit()
    {
        NavigationFixture f;
        QSignalSpy changed(f.navigation.get(), &Navigation::documentSpanChanged);
        const auto span = [&f] {
            const auto now = f.navigation->documentSpan();
            return now ? QStringLiteral("%1-%2").arg(now->start).arg(now->end) : QStringLiteral("none");
        };
        const int first = f.add("A", "first", 1000, 1000);
        QCOMPARE(span(), "1000-2000");
        const int last = f.add("A", "last", 5000, 5000);
        f.add("B", "open", 3000, DocumentItem::openEnded);
        QCOMPARE(span(), "1000-10000");
        QCOMPARE(changed.count(), 0);
        f.settle();
        QCOMPARE(changed.count(), 1);

        f.model.setItemLabel(last, "renamed");
        f.settle();
        QCOMPARE(changed.count(), 1);
        f.model.retimeItem(last, 5000, 9000);
        QCOMPARE(span(), "1000-14000");
        f.model.retimeItem(last, 500, 1000);
        QCOMPARE(span(), "500-3000");
        f.settle();
        QCOMPARE(changed.count(), 2);
        f.model.removeItems({last});
        QCOMPARE(span(), "1000-3000");
        f.model.undoStack()->undo();
        QCOMPARE(span(), "500-3000");
        f.settle();
        QCOMPARE(changed.count(), 2);
        f.model.removeTrack(std::as_const(f.model).item(first)->parentTrackId());
        QCOMPARE(span(), "3000-3000");
        f.model.undoStack()->undo();
        QCOMPARE(span(), "500-3000");
        f.model.setDocument({});
        QCOMPARE(span(), "none");
        f.settle();
        QCOMPARE(changed.count(), 3);
    }

    void theDocumentSpanIsThatOfAllItemsAfterRandomEdits()
    {
        NavigationFixture f;
        QRandomGenerator random(3);
        QVector<int> ids;
        for (int i = 0; i < 30; ++i)
            ids.append(f.add("A", "x", random.bounded(1'000'000), random.bounded(1000)));
        for (int i = 0; i < 400; ++i) {
            const int id = ids[random.bounded(int(ids.size()))];
            f.model.retimeItem(id, random.bounded(1'000'000), random.bounded(100'000));
            qint64 start = std::numeric_limits<qint64>::max();
            qint64 end = std::numeric_limits<qint64>::min();
            for (const int each : f.model.itemIds()) {
                const Item* const item = std::as_const(f.model).item(each);
                start = std::min(start, item->startTime());
                end = std::max(end, item->startTime() + item->duration());
            }
            QCOMPARE(f.navigation->documentSpan()->start, start);
            QCOMPARE(f.navigation->documentSpan()->end, end);
        }
    }

    void removingItemsDoesNotMoveTheWindow()
    {
        NavigationFixture f;
        f.add("A", "first", 0, hour);
        const int last = f.add("A", "last", tenYears, hour);
        f.navigation->fit();
        f.settle();
        f.navigation->goToItem(last);
        const qint64 before = f.navigation->window().start;
        f.model.removeItems({last});
        f.settle();
        QCOMPARE(f.navigation->window().start, before);
        f.navigation->fit();
        QCOMPARE(f.navigation->reach().end, hour);
    }

    void anItemBeyondTheEndComesIntoReach()
    {
        NavigationFixture f;
        f.add("A", "first", 0, hour);
        f.navigation->fit();
        f.settle();
        QSignalSpy reach(f.navigation.get(), &Navigation::reachChanged);
        f.add("A", "later", tenYears, hour);
        f.settle();
        QCOMPARE(reach.count(), 1);
        QCOMPARE(f.navigation->window().start, 0);
        f.navigation->scrollTo(tenYears);
        QCOMPARE(f.navigation->window().end, tenYears + hour);
    }

    void deletingEverythingAndUndoingItLeavesTheReach()
    {
        NavigationFixture f;
        f.add("A", "x", 0, 10 * day);
        f.navigation->fit();
        f.settle();
        QSignalSpy reach(f.navigation.get(), &Navigation::reachChanged);
        f.model.removeItems(f.model.itemIds());
        f.settle();
        QVERIFY(!f.navigation->documentSpan());
        QCOMPARE(f.navigation->overviewSpan().start, 0);
        QCOMPARE(f.navigation->overviewSpan().end, 10 * day);
        f.model.undoStack()->undo();
        f.settle();
        QCOMPARE(f.navigation->documentSpan()->end, 10 * day);
        QCOMPARE(f.navigation->reach().end, 10 * day);
        QCOMPARE(reach.count(), 0);
    }

    void fitLeavesTheSpanOfItemsThatAreGone()
    {
        NavigationFixture f;
        f.add("A", "x", 0, 10 * day);
        f.navigation->fit();
        f.model.removeItems(f.model.itemIds());
        f.settle();
        QSignalSpy span(f.navigation.get(), &Navigation::documentSpanChanged);
        f.navigation->fit();
        QVERIFY(f.navigation->overviewSpan().start > 10 * day);
        QCOMPARE(f.navigation->window().start, f.navigation->overviewSpan().start);
        QCOMPARE(span.count(), 1);
        f.navigation->fit();
        QCOMPARE(span.count(), 1);
    }

    void theWindowIsAnnouncedWhenItChangesAndOnlyThen()
    {
        NavigationFixture f;
        f.add("A", "x", 0, tenYears);
        f.navigation->fit();
        QSignalSpy window(f.navigation.get(), &Navigation::windowChanged);
        f.navigation->scrollTo(tenYears / 2);
        QCOMPARE(window.count(), 1);
        QCOMPARE(window.last(), (QVariantList{tenYears / 2, tenYears / 2 + day}));
        f.navigation->scrollTo(tenYears / 2);
        QCOMPARE(window.count(), 1);
        f.view()->setZoomFactor(Zoom::TwoHours);
        QCOMPARE(window.count(), 2);
        QCOMPARE(window.last(), (QVariantList{tenYears / 2, tenYears / 2 + 2 * hour}));
        f.view()->setCurrentTime(tenYears / 2 + hour);
        QCOMPARE(window.count(), 3);
        f.navigation->fit();
        QCOMPARE(window.count(), 4);
    }

    void theScrollBarTakesTheSlidersPlace()
    {
        NavigationFixture f;
        f.add("A", "x", 0, tenYears);
        f.navigation->fit();
        WindowScrollBar* const bar = WindowScrollBar::replaceSlider(f.navigation.get());
        f.widget.show();
        QVERIFY(bar->isVisible());
        QVERIFY(!f.widget.slider()->isVisible());
        const int column = f.widget.header()->sectionPosition(1);
        f.settle();
        QVERIFY(qAbs(bar->x() - column) <= f.view()->frameWidth() + 1);
        QCOMPARE(bar->width(), f.widget.header()->sectionSize(1));
        f.widget.resize(1300, 400);
        f.settle();
        QCOMPARE(bar->width(), f.widget.header()->sectionSize(1));

        bar->triggerAction(QAbstractSlider::SliderSingleStepAdd);
        QCOMPARE(f.navigation->window().start, qint64(Zoom::majorInterval(Zoom::OneDay)));
        bar->triggerAction(QAbstractSlider::SliderSingleStepSub);
        bar->triggerAction(QAbstractSlider::SliderSingleStepSub);
        QCOMPARE(f.navigation->window().start, 0);
        QCOMPARE(bar->value(), 0);
        bar->triggerAction(QAbstractSlider::SliderPageStepAdd);
        QCOMPARE(f.navigation->window().start, day);
        bar->triggerAction(QAbstractSlider::SliderToMaximum);
        QCOMPARE(f.navigation->window().end, tenYears);
        f.navigation->scrollTo(tenYears / 4);
        QVERIFY(qAbs(double(bar->value()) / bar->maximum() - 0.25) < 0.001);
        bar->setSliderPosition(bar->maximum() / 2);
        QVERIFY(qAbs(f.navigation->window().start - (tenYears - day) / 2) < 1000);
    }

    void theScrollBarMovesByTheSmallestStepsThroughAllYears()
    {
        NavigationFixture f;
        f.add("A", "x", Navigation::earliest, 0);
        f.add("A", "y", Navigation::latest, 0);
        f.navigation->fit();
        WindowScrollBar bar(f.navigation.get());
        f.view()->setZoomFactor(Zoom::FifteenSeconds);
        f.navigation->scrollTo(1000);
        bar.triggerAction(QAbstractSlider::SliderPageStepAdd);
        QCOMPARE(f.navigation->window().start, 16'000);
        bar.triggerAction(QAbstractSlider::SliderSingleStepSub);
        QCOMPARE(f.navigation->window().start, qint64(16'000 - Zoom::majorInterval(Zoom::FifteenSeconds)));
        bar.triggerAction(QAbstractSlider::SliderToMaximum);
        QCOMPARE(f.navigation->window().end, f.navigation->reach().end);
    }
};

QTEST_MAIN(TestNavigation)
#include "tst_navigation.moc"
