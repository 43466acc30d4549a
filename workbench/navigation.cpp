#include "navigation.h"

#include <VeskTimeline/timeline_model.h>
#include <VeskTimeline/timeline_view.h>
#include <VeskTimeline/timeline_widget.h>
#include <VeskTimelineKit/standard_timeline_model.h>

#include <QDateTime>
#include <QScopedValueRollback>
#include <QScrollBar>

#include <algorithm>
#include <cstdlib>

namespace Workbench {

using namespace VeskTimeline;
using namespace VeskTimeline::Kit;

namespace {

constexpr qint64 second = 1000;
// So far from the end of the range the window may come before the range moves on: the farthest that a single turn of
// the wheel or press of a key takes it, which is less than a window.
constexpr qint64 roomToMove = 2 * qint64(Zoom::OneDay);

qint64 floorToSecond(qint64 time)
{
    const qint64 remainder = time % second;
    return time - (remainder < 0 ? remainder + second : remainder);
}

TimeSpan today()
{
    const qint64 start = QDateTime(QDateTime::currentDateTimeUtc().date(), QTime(0, 0), Qt::UTC).toMSecsSinceEpoch();
    return {start, start + Zoom::OneDay};
}

bool isSame(const TimeSpan& left, const TimeSpan& right)
{
    return left.start == right.start && left.end == right.end;
}

qint64 lengthOf(const TimeSpan& span)
{
    return span.end - span.start;
}

qint64 lengthOf(TimeStep step)
{
    switch (step) {
    case TimeStep::Minute:
        return Zoom::SixtySeconds;
    case TimeStep::Hour:
        return Zoom::SixtyMinutes;
    case TimeStep::Day:
        return Zoom::OneDay;
    }
    return 0;
}

} // namespace

Navigation::Navigation(TimelineWidget* widget, StandardTimelineModel* model, QObject* parent)
    : QObject(parent), m_widget(widget), m_model(model), m_extent(model)
{
    cutOffSlider();
    connect(view(), &TimelineView::currentTimeChanged, this, &Navigation::follow);
    connect(view(), &TimelineView::zoomChanged, this, &Navigation::follow);
    connect(view(), &TimelineView::rangeChanged, this, &Navigation::announce);
    connect(&m_extent, &DocumentExtent::changed, this, &Navigation::grow);
    fit();
}

TimelineView* Navigation::view() const
{
    return m_widget->view();
}

void Navigation::cutOffSlider()
{
    disconnect(m_widget->slider(), &QScrollBar::valueChanged, m_widget, &TimelineWidget::onSliderValueChanged);
    m_widget->slider()->hide();
}

TimeSpan Navigation::overviewSpan() const
{
    const std::optional<TimeSpan> items = m_extent.span();
    if (!items)
        return m_spanWithoutItems;
    TimeSpan span{floorToSecond(items->start), -floorToSecond(-items->end)};
    if (lengthOf(span) <= Zoom::OneDay)
        span.end = span.start + Zoom::ceil(static_cast<int>(lengthOf(span)));
    return span;
}

TimeSpan Navigation::window() const
{
    return {view()->currentTime(), view()->currentTime() + view()->zoomFactor()};
}

// The whole of what is in reach if it fits. Else the range is left alone as long as it will do: setting it has all that
// depends on it made anew.
TimeSpan Navigation::rangeAround(qint64 start) const
{
    if (lengthOf(m_reach) <= longestRange)
        return m_reach;
    const TimeSpan range{view()->startTime(), view()->endTime()};
    const qint64 end = start + view()->zoomFactor();
    const bool isWithinReach = range.start >= m_reach.start && range.end <= m_reach.end;
    const bool hasRoomBefore = start >= range.start + (range.start == m_reach.start ? 0 : roomToMove);
    const bool hasRoomBehind = end <= range.end - (range.end == m_reach.end ? 0 : roomToMove);
    if (isWithinReach && lengthOf(range) == longestRange && hasRoomBefore && hasRoomBehind)
        return range;
    const qint64 middle = start + view()->zoomFactor() / 2;
    const qint64 first = std::clamp(middle - longestRange / 2, m_reach.start, m_reach.end - longestRange);
    return {first, first + longestRange};
}

void Navigation::placeRange(qint64 start)
{
    const TimeSpan range = rangeAround(start);
    view()->setRange(range.start, range.end);
    if (view()->zoomFactor() > view()->upperZoomFactor())
        view()->setZoomFactor(view()->upperZoomFactor());
}

void Navigation::placeWindow(qint64 start)
{
    {
        const QScopedValueRollback placing(m_isPlacing, true);
        placeRange(start);
        view()->setCurrentTime(start);
    }
    announce();
}

// Whoever moved the window, there has to be range left on both sides.
void Navigation::follow()
{
    if (!m_isPlacing)
        placeWindow(view()->currentTime());
}

void Navigation::announce()
{
    if (m_isPlacing || isSame(window(), m_announcedWindow))
        return;
    m_announcedWindow = window();
    Q_EMIT windowChanged(m_announcedWindow.start, m_announcedWindow.end);
}

void Navigation::grow()
{
    // Deleting everything may be undone: reaching from a day long ago to today would leave the scroll bar useless then.
    if (documentSpan()) {
        m_spanWithoutItems = overviewSpan();
        extendReach(m_spanWithoutItems);
    }
    placeWindow(view()->currentTime());
    Q_EMIT documentSpanChanged();
}

void Navigation::extendReach(const TimeSpan& span)
{
    setReach({std::min(m_reach.start, span.start), std::max(m_reach.end, span.end)});
}

void Navigation::setReach(const TimeSpan& span)
{
    if (isSame(span, m_reach))
        return;
    m_reach = span;
    Q_EMIT reachChanged();
}

void Navigation::scrollTo(qint64 start)
{
    const qint64 last = std::max(m_reach.start, m_reach.end - view()->zoomFactor());
    placeWindow(std::clamp(start, m_reach.start, last));
}

void Navigation::scrollCentreTo(qint64 time)
{
    scrollTo(time - view()->zoomFactor() / 2);
}

void Navigation::setWindow(qint64 start, Zoom::Factor factor)
{
    {
        const QScopedValueRollback placing(m_isPlacing, true);
        view()->setZoomFactor(factor);
    }
    scrollTo(start);
}

void Navigation::zoomBy(int direction)
{
    const Zoom::Factor now = view()->zoomFactor();
    const Zoom::Factor wanted = direction > 0 ? Zoom::decrement(now) : Zoom::increment(now);
    const Zoom::Factor next = std::clamp(wanted, view()->minimumZoomFactor(), view()->upperZoomFactor());
    setWindow(view()->currentTime() + (now - next) / 2, next);
}

void Navigation::fit()
{
    const TimeSpan before = overviewSpan();
    m_spanWithoutItems = documentSpan() ? before : today();
    setReach(overviewSpan());
    {
        const QScopedValueRollback placing(m_isPlacing, true);
        placeRange(m_reach.start);
        view()->setZoomFactor(view()->upperZoomFactor());
    }
    placeWindow(m_reach.start);
    if (!isSame(before, m_reach))
        Q_EMIT documentSpanChanged();
}

void Navigation::goToTime(qint64 time)
{
    const qint64 length = view()->zoomFactor();
    const qint64 start = std::clamp(time, earliest, latest + 1 - length);
    extendReach({start, start + length});
    placeWindow(start);
}

void Navigation::centreOn(qint64 time)
{
    goToTime(std::clamp(time, earliest, latest) - view()->zoomFactor() / 2);
}

bool Navigation::goToItem(int itemId)
{
    const Item* item = nullptr;
    try {
        item = std::as_const(*m_model).item(itemId);
    } catch (const QString&) {
        return false;
    }
    const qint64 start = item->startTime();
    const qint64 length = std::max(item->duration(), 0);
    const TimeSpan shown = window();
    const bool isInside = start > shown.start && start + length < shown.end;
    const bool fillsWindow = start >= shown.start && start + length <= shown.end;
    // At the very edge an item without duration is hardly seen.
    const bool isSeen = isInside || (fillsWindow && length > 0);
    if (!isSeen && length <= lengthOf(shown))
        centreOn(start + length / 2);
    else if (!isSeen)
        goToTime(start - lengthOf(shown) / 8);
    showRowOf(item->parentTrackId());
    view()->selectItem(itemId, true);
    return true;
}

void Navigation::showRowOf(int trackId)
{
    for (const Track* above = m_model->parentOfTrackId(trackId); above->id() > 0;
         above = m_model->parentOfTrackId(above->id()))
        view()->expand(view()->indexOfTrackRow(above->id(), 0));
    view()->scrollTo(view()->indexOfTrackRow(trackId, 0));
}

void Navigation::goToFirstItem()
{
    if (const auto span = documentSpan())
        goToTime(span->start);
}

void Navigation::goToLastItem()
{
    if (const auto span = documentSpan())
        scrollCentreTo(span->end);
}

void Navigation::stepBy(TimeStep step, int direction)
{
    goToTime(view()->currentTime() + direction * lengthOf(step));
}

bool Navigation::canPage(int direction) const
{
    const auto items = documentSpan();
    if (!items)
        return false;
    // An item without duration that begins with the last instant is seen only when the window goes beyond.
    return direction > 0 ? window().end < items->end : window().start > items->start;
}

void Navigation::page(int direction)
{
    if (!canPage(direction))
        return;
    const std::optional<qint64> start = direction > 0 ? startOfNextPart() : startOfPreviousPart();
    if (start)
        scrollTo(*start);
}

namespace {

// Whether the visit went through all.
template <typename Visit>
bool visitItemsWhile(const Track& track, const Visit& visit)
{
    for (const ItemPtr& item : track.items()) {
        if (!visit(item->startTime(), item->startTime() + std::max(item->duration(), 0)))
            return false;
    }
    return std::all_of(track.tracks().begin(), track.tracks().end(),
                       [&visit](const TrackPtr& child) { return visitItemsWhile(*child, visit); });
}

} // namespace

// Years can lie between two items of a document.
std::optional<qint64> Navigation::startOfNextPart() const
{
    const TimeSpan next{window().end, window().end + view()->zoomFactor()};
    std::optional<qint64> first;
    const bool isEmpty = visitItemsWhile(*m_model->rootTrack(), [&](qint64 start, qint64 end) {
        if (start < next.end && (end > next.start || start >= next.start))
            return false;
        if (start >= next.end)
            first = std::min(start, first.value_or(start));
        return true;
    });
    return isEmpty ? first : next.start;
}

std::optional<qint64> Navigation::startOfPreviousPart() const
{
    const TimeSpan previous{window().start - view()->zoomFactor(), window().start};
    std::optional<qint64> last;
    const bool isEmpty = visitItemsWhile(*m_model->rootTrack(), [&](qint64 start, qint64 end) {
        if (start < previous.end && end >= previous.start)
            return false;
        if (end < previous.start)
            last = std::max(end, last.value_or(end));
        return true;
    });
    if (!isEmpty)
        return previous.start;
    if (!last)
        return std::nullopt;
    return *last - view()->zoomFactor() / 2;
}

std::optional<qint64> Navigation::closestToItems(qint64 time, qint64 distance) const
{
    std::optional<qint64> closest;
    qint64 least = distance;
    visitItemsWhile(*m_model->rootTrack(), [&](qint64 start, qint64 end) {
        const qint64 moment = std::clamp(time, start, end);
        if (std::abs(moment - time) <= least) {
            closest = moment;
            least = std::abs(moment - time);
        }
        return least > 0;
    });
    return closest;
}

} // namespace Workbench
