#include "many_items.h"

#include <VeskTimeline/item_delegate.h>
#include <VeskTimeline/timeline_view.h>

#include <QTest>

/// One full repaint of a view of 20 rows, as after a step of panning.
class BenchFrames : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void pan_data();
    void pan();
};

void BenchFrames::pan_data()
{
    QTest::addColumn<int>("itemCount");
    QTest::addColumn<VeskTimeline::Zoom::Factor>("zoom");
    QTest::addColumn<bool>("isAllSelected");
    for (const int count : {1'000, 10'000, 100'000}) {
        for (const auto zoom :
             {VeskTimeline::Zoom::FifteenSeconds, VeskTimeline::Zoom::ThirtyMinutes, VeskTimeline::Zoom::OneDay}) {
            for (const bool isAllSelected : {false, true})
                QTest::addRow("%d items, %s, %s", count, qPrintable(VeskTimeline::Zoom::toShortString(zoom)),
                              isAllSelected ? "all selected" : "none selected")
                    << count << zoom << isAllSelected;
        }
    }
}

void BenchFrames::pan()
{
    QFETCH(int, itemCount);
    QFETCH(VeskTimeline::Zoom::Factor, zoom);
    QFETCH(bool, isAllSelected);

    ManyItems model(200);
    model.addItems(itemCount, false);
    VeskTimeline::TimelineView view;
    view.setModel(&model);
    view.setItemDelegate(new VeskTimeline::ItemDelegate(&view));
    view.setRange(ManyItems::origin, ManyItems::origin + ManyItems::day);
    view.setZoomFactor(zoom);
    view.resize(1920, 1080);
    view.show();
    if (isAllSelected)
        view.selectAllItems();

    qint64 time = ManyItems::origin;
    QBENCHMARK
    {
        time += zoom / 100;
        view.setCurrentTime(time);
        view.viewport()->repaint();
    }
}

QTEST_MAIN(BenchFrames)
#include "bench_frames.moc"
