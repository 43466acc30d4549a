#include "x11/desktop_view.h"

#include <VeskTimeline/item_delegate.h>

#include <QGuiApplication>
#include <QScreen>
#include <QTest>

bool DesktopModel::canDropItem(const VeskTimeline::Item& /*item*/, int trackId, qint64 /*start*/) const
{
    return !closedTracks.contains(trackId);
}

bool DesktopModel::canMoveItem(const VeskTimeline::Item& item, qint64 /*start*/) const
{
    return !heldItems.contains(item.id());
}

void DesktopModel::onInsertTrack(const QModelIndex& index)
{
    newTrack(QStringLiteral("new"), trackOfIndex(index)->id());
}

void DesktopModel::onRemoveTrack(const QModelIndex& index)
{
    beginRemoveRows(index.parent(), index.row(), index.row());
    removeTrack(trackOfIndex(index)->id());
    endRemoveRows();
}

DesktopView::DesktopView()
{
    model.setView(&view);
    view.setModel(&model);
    view.setItemDelegate(new VeskTimeline::ItemDelegate(&view));
    view.setRange(origin, origin + 3'600'000);
    view.setCurrentTime(origin);
    view.setZoomFactor(VeskTimeline::Zoom::FifteenMinutes);
    view.setGeometry(100, 100, 1130, 400);
}

bool DesktopView::show()
{
    view.show();
    if (!QTest::qWaitForWindowExposed(&view) || !QTest::qWaitForWindowActive(&view))
        return false;
    const int rulerWidth = labelWidth + secondsVisible;
    view.resize(view.width() + rulerWidth - header()->width(), view.height());
    if (!QTest::qWaitFor([&] { return header()->width() == rulerWidth; }))
        return false;
    header()->resizeSection(0, labelWidth);
    return QTest::qWaitFor([&] { return view.toPixel(at(100)) == labelWidth + 100 && isScreenUpToDate(); });
}

int DesktopView::addSeconds(int trackId, int start, int length, const QColor& color, bool isEditable)
{
    return model.newItem(trackId, at(start), length * 1000, color, isEditable);
}

QPoint DesktopView::pos(int second, int trackId) const
{
    return {labelWidth + second, view.visualRect(view.indexOfTrackRow(trackId, 1)).center().y()};
}

QPoint DesktopView::namePos(int trackId) const
{
    return view.visualRect(view.indexOfTrackRow(trackId, 0)).center();
}

QPoint DesktopView::rulerPos(int second) const
{
    return {labelWidth + second, header()->height() * 3 / 4};
}

QStringList DesktopView::items() const
{
    QStringList texts;
    appendItems(*model.rootTrack(), &texts);
    return texts;
}

void DesktopView::appendItems(const VeskTimeline::Track& track, QStringList* texts) const
{
    for (const VeskTimeline::ItemPtr& item : track.items())
        texts->append(QStringLiteral("%1:%2+%3")
                          .arg(track.text())
                          .arg(static_cast<double>(item->startTime() - origin) / 1000)
                          .arg(item->duration() / 1000.0));
    for (const VeskTimeline::TrackPtr& child : track.tracks())
        appendItems(*child, texts);
}

QImage DesktopView::rowsOnScreen() const
{
    return onScreen(rows());
}

QImage DesktopView::rulerOnScreen() const
{
    return onScreen(ruler());
}

bool DesktopView::isScreenUpToDate() const
{
    const auto isUpToDate = [](QWidget* widget) {
        return onScreen(widget) == widget->grab().toImage().convertToFormat(QImage::Format_RGB32);
    };
    return isUpToDate(rows()) && isUpToDate(ruler());
}

QImage onScreen(const QWidget* widget)
{
    const QRect area(widget->mapToGlobal(QPoint()), widget->size());
    return widget->screen()
        ->grabWindow(0, area.x(), area.y(), area.width(), area.height())
        .toImage()
        .convertToFormat(QImage::Format_RGB32);
}
