#include <HoxLogger/ihox_logger.h>
#include <HoxLogger/log_stream_helper.h>
#include <VeskTimeline/item_delegate.h>
#include <VeskTimeline/timeline_header_view.h>
#include <VeskTimeline/timeline_model.h>
#include <VeskTimeline/timeline_view.h>
#include <VeskTimeline/timeline_widget.h>
#include <VeskWidgets/vesk_message_dialog_new.h>
#include <hoxtools/dtg.h>

#include <QApplication>
#include <QImage>

// A model of an application's own, on the bare library.
class Flights : public VeskTimeline::TimelineModel
{
public:
    Flights()
    {
        const int track = insertTrack(0, -1, std::make_unique<VeskTimeline::Track>(QStringLiteral("D-ABCD")))->id();
        addItem(track, std::make_unique<VeskTimeline::Item>(60'000, 120'000, QColor(Qt::green), true), false);
    }
};

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    Flights flights;
    VeskTimeline::TimelineWidget widget;
    widget.setModel(&flights);
    widget.view()->setItemDelegate(new VeskTimeline::ItemDelegate(widget.view()));
    widget.view()->setRange(0, 3'600'000);
    widget.setZoomFactor(VeskTimeline::Zoom::FiveMinutes);
    widget.resize(800, 300);
    widget.show();
    QApplication::processEvents();

    const QImage picture = widget.view()->viewport()->grab().toImage();
    const int y = widget.view()->visualRect(flights.index(0, 1)).center().y();
    const bool isItemShown = picture.pixelColor(widget.view()->toPixel(120'000), y) == QColor(Qt::green);
    const bool isTextRight = DTG::toStringMSec(0, DTG::Short) == QStringLiteral("01000000Z");
    return isItemShown && isTextRight ? 0 : 1;
}
