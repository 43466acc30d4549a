#include "failure_log_p.h"
#include "ordered_ids_p.h"

#include <VeskTimeline/item_delegate.h>
#include <VeskTimeline/timeline_model.h>
#include <VeskTimeline/timeline_view.h>
#include <VeskTimeline/timeline_view_drag_handler.h>
#include <VeskTimeline/timeline_view_resize_handler.h>
#include <VeskTimeline/timeline_view_selection_handler.h>
#include <VeskTimeline/timeline_view_track_handler.h>

#include <QAbstractProxyModel>
#include <QDebug>
#include <QPointer>

#include <algorithm>
#include <vector>

namespace VeskTimeline {

namespace {

// The handlers outlive their view: whoever replaced one may still hold it. This keeps them known for the life of the
// process, so that memory checkers can tell them from a leak.
template <typename Handler>
Handler* keptForever(Handler* handler)
{
    static auto* const kept = new std::vector<Handler*>;
    kept->push_back(handler);
    return handler;
}

template <typename Object>
void forget(Object*& pointer, const QObject* gone)
{
    if (static_cast<const QObject*>(pointer) == gone)
        pointer = nullptr;
}

TimelineModel* timelineModelBehind(QAbstractItemModel* model)
{
    if (auto* const direct = qobject_cast<TimelineModel*>(model))
        return direct;
    const auto* const proxy = qobject_cast<QAbstractProxyModel*>(model);
    return proxy ? qobject_cast<TimelineModel*>(proxy->sourceModel()) : nullptr;
}

} // namespace

TimelineView::TimelineView(QWidget* parent)
    : QTreeView(parent),
      m_logger(Hox::HoxLoggerBootstrap::getHoxRootLogger().logger(QStringLiteral("Timeline.TimelineView"))),
      m_header(new TimelineHeaderView(this)),
      m_timelineModel(nullptr),
      m_model(nullptr),
      m_proxyModel(nullptr),
      m_delegate(nullptr),
      m_dragHandler(keptForever(new TimelineViewDragHandler(this))),
      m_resizeHandler(keptForever(new TimelineViewResizeHandler(this))),
      m_selectHandler(keptForever(new TimelineViewSelectHandler(this))),
      m_trackHandler(keptForever(new TimelineViewTrackHandler(this))),
      m_zoomFactor(Zoom::ThirtyMinutes),
      m_upperZoomFactor(Zoom::OneDay),
      m_minZoomFactor(Zoom::FifteenSeconds),
      m_maxZoomFactor(Zoom::OneDay),
      m_startTime(-1),
      m_currentTime(-1),
      m_duration(-1),
      m_isCursorTextVisible(false),
      m_selectedItemIds(std::make_unique<OrderedIds>())
{
    setAlternatingRowColors(true);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setSelectionBehavior(QAbstractItemView::SelectItems);
    setSelectionMode(QAbstractItemView::NoSelection);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    setHeader(m_header);
    setAcceptDrops(true);
}

TimelineView::~TimelineView()
{
    if (m_timelineModel && m_timelineModel->m_view == this)
        m_timelineModel->m_view = nullptr;
    for (const QMetaObject::Connection& connection : std::as_const(m_lifetimeConnections))
        disconnect(connection);
}

void TimelineView::forgetWhenDestroyed(QObject* object)
{
    m_lifetimeConnections.append(connect(object, &QObject::destroyed, this, [this](QObject* gone) {
        // The object is past its own destructors: its address is all that may be used.
        const bool isTimelineModel = static_cast<QObject*>(m_timelineModel) == gone;
        forget(m_timelineModel, gone);
        forget(m_model, gone);
        forget(m_proxyModel, gone);
        forget(m_delegate, gone);
        // Last: whoever is told asks the view for its model.
        if (isTimelineModel)
            leaveTimelineModel();
    }));
}

// The ids of one model mean nothing, or something else, in the next: so gestures end with the model they began on.
void TimelineView::leaveTimelineModel()
{
    if (m_dragHandler)
        m_dragHandler->clear();
    if (m_resizeHandler)
        m_resizeHandler->clear();
    if (m_selectHandler)
        m_selectHandler->clear();
    if (hasSelectedItems())
        clearSelectedItems();
}

void TimelineView::setModel(QAbstractItemModel* model)
{
    // A proxy over the same model keeps the selection.
    if (m_timelineModel && m_timelineModel != timelineModelBehind(model))
        leaveTimelineModel();
    m_model = model;
    QTreeView::setModel(model);
    setMouseTracking(true);
    if (model)
        forgetWhenDestroyed(model);

    m_timelineModel = qobject_cast<TimelineModel*>(model);
    if (m_timelineModel)
        return;
    m_proxyModel = qobject_cast<QAbstractProxyModel*>(model);
    if (m_proxyModel)
        m_timelineModel = qobject_cast<TimelineModel*>(m_proxyModel->sourceModel());
    if (m_timelineModel) {
        forgetWhenDestroyed(m_timelineModel);
        return;
    }
    qWarning("TimelineSelectHandler:c_tor: model is not a QAbstractItemModel!");
    // In every build type: going on would only crash later and elsewhere.
    qt_assert("m_timelineModel != nullptr", __FILE__, __LINE__);
}

void TimelineView::setProxyModel(QAbstractProxyModel* proxy)
{
    auto* const source = proxy ? qobject_cast<TimelineModel*>(proxy->sourceModel()) : nullptr;
    if (!source)
        throw QStringLiteral("source model cannot be cast to TimelineModel");
    m_model = source;
    m_proxyModel = proxy;
    forgetWhenDestroyed(source);
    forgetWhenDestroyed(proxy);
    QTreeView::setModel(m_proxyModel);
}

void TimelineView::setHeader(QHeaderView* header)
{
    const QPointer<QHeaderView> installed = QTreeView::header();
    try {
        m_header = qobject_cast<TimelineHeaderView*>(header);
        if (header && header != installed) {
            // The tree view deletes a header of its own when it gets another; one with another parent is left to us.
            QTreeView::setHeader(header);
            delete installed;
            connectHeader();
        }
        if (!m_header) {
            VESK_LOG(m_logger, Hox::Error) << "header view should be of type TimelineHeaderView";
        }
    } catch (...) {
        VESK_LOG(m_logger, Hox::Error) << "header view should be of type TimelineHeaderView";
    }
}

void TimelineView::connectHeader()
{
    if (!m_header)
        return;
    const auto repaint = [this] { viewport()->update(); };
    connect(m_header, &TimelineHeaderView::indicatorTimeChanged, this, repaint);
    connect(m_header, &TimelineHeaderView::indicatorVisibilityChanged, this, repaint);
    connect(m_header, &TimelineHeaderView::hoverPositionChanged, this, [this] {
        if (!m_model)
            return;
        // A layout change has to be announced, or whoever watches the model takes it for broken.
        Q_EMIT m_model->layoutAboutToBeChanged();
        Q_EMIT m_model->layoutChanged();
    });
    connect(m_header, &TimelineHeaderView::hoverVisibilityChanged, this, repaint);
}

void TimelineView::setItemDelegate(QAbstractItemDelegate* delegate)
{
    m_delegate = static_cast<ItemDelegate*>(delegate);
    try {
        QAbstractItemView::setItemDelegate(delegate);
        if (delegate)
            forgetWhenDestroyed(delegate);
    } catch (...) {
        VESK_LOG(m_logger, Hox::Error) << "item delegate for TimelineView must be derived from ItemDelegate";
    }
}

QModelIndex TimelineView::indexOfTrackRow(int trackId, int column) const
{
    if (!m_timelineModel)
        return {};
    const QModelIndex row = m_timelineModel->indexOfTrack(trackId);
    const QModelIndex cell = m_timelineModel->index(row.row(), column, row.parent());
    const auto* const proxy = qobject_cast<const QAbstractProxyModel*>(QTreeView::model());
    return proxy && proxy->sourceModel() == m_timelineModel ? proxy->mapFromSource(cell) : cell;
}

void TimelineView::setZoomFactor(Zoom::Factor factor)
{
    if (factor == m_zoomFactor)
        return;
    // Should the bounds cross, the lower one wins.
    const Zoom::Factor clamped = std::max(std::min(factor, m_upperZoomFactor), m_minZoomFactor);
    if (clamped == m_zoomFactor)
        return;

    m_zoomFactor = clamped;
    Q_EMIT zoomChanged(clamped);
    if (m_currentTime + m_zoomFactor <= endTime())
        viewport()->update();
    else
        setCurrentTime(endTime() - m_zoomFactor);
}

void TimelineView::setMinimumZoomFactor(Zoom::Factor factor)
{
    if (factor == m_minZoomFactor)
        return;
    m_minZoomFactor = factor;
    if (m_zoomFactor < factor)
        setZoomFactor(factor);
}

void TimelineView::setMaximumZoomFactor(Zoom::Factor factor)
{
    if (factor == m_maxZoomFactor)
        return;
    m_maxZoomFactor = factor;
    m_upperZoomFactor = std::min(m_upperZoomFactor, factor);
    if (m_zoomFactor > factor)
        setZoomFactor(factor);
}

void TimelineView::setStartTime(qint64 time)
{
    if (time == m_startTime || time < 0)
        return;
    m_startTime = time;
    if (m_currentTime < m_startTime)
        setCurrentTime(m_startTime);
    if (m_duration > 0 && m_currentTime > endTime() - m_zoomFactor)
        setCurrentTime(std::max(endTime() - m_zoomFactor, m_startTime));
    Q_EMIT rangeChanged(m_startTime, endTime());
}

void TimelineView::setCurrentTime(qint64 time)
{
    if (time == m_currentTime)
        return;
    time = std::max(time, m_startTime);
    if (m_duration > 0 && time > endTime() - m_zoomFactor)
        time = std::max(endTime() - m_zoomFactor, m_startTime);
    if (time == m_currentTime)
        return;
    m_currentTime = time;
    Q_EMIT currentTimeChanged(time);
    viewport()->update();
}

void TimelineView::setDuration(int duration)
{
    if (duration == m_duration)
        return;
    m_duration = std::max<int>(duration, m_minZoomFactor);
    Q_EMIT rangeChanged(m_startTime, endTime());
    m_upperZoomFactor = std::min(Zoom::floor(m_duration), m_maxZoomFactor);
    if (m_duration < m_zoomFactor)
        setZoomFactor(m_upperZoomFactor);
    if (m_currentTime > endTime())
        setCurrentTime(endTime() - m_zoomFactor);
    viewport()->update();
}

void TimelineView::setEndTime(qint64 time)
{
    if (time == endTime())
        return;
    time = std::max(time, m_startTime + m_minZoomFactor);
    setDuration(static_cast<int>(time - m_startTime));
}

void TimelineView::setRange(qint64 start, qint64 end)
{
    if (start == m_startTime && end - start == m_duration)
        return;
    m_startTime = std::min(start, end);
    const qint64 length = std::max(start, end) - m_startTime;
    m_duration = static_cast<int>(std::max<qint64>(length, m_minZoomFactor));
    moveWindowIntoRange();
    m_upperZoomFactor = std::min(Zoom::floor(m_duration), m_maxZoomFactor);
    Q_EMIT rangeChanged(m_startTime, endTime());
    viewport()->update();
}

void TimelineView::moveWindowIntoRange()
{
    m_currentTime = std::max(m_currentTime, m_startTime);
    if (m_duration > 0 && m_currentTime > endTime() - m_zoomFactor)
        m_currentTime = std::max(endTime() - m_zoomFactor, m_startTime);
}

void TimelineView::setCursorTextVisible(bool isVisible)
{
    m_isCursorTextVisible = isVisible;
    viewport()->update();
}

void TimelineView::setCursorText(const QString& text)
{
    m_cursorText = text;
    viewport()->update();
}

int TimelineView::toPixel(qint64 time) const
{
    return m_header ? m_header->toPixel(time) : -1;
}

qint64 TimelineView::toTime(int x) const
{
    return m_header ? m_header->toTime(x) : -1;
}

qint64 TimelineView::toDuration(int px) const
{
    if (!m_header)
        return -1;
    const int left = m_header->sectionPosition(1);
    const int width = geometry().width() - left;
    if (width == 0)
        return 0;
    return static_cast<qint64>(static_cast<double>(m_zoomFactor) * (static_cast<double>(px - left) / width));
}

int TimelineView::fromDuration(qint64 d) const
{
    if (!m_header)
        return -1;
    if (m_zoomFactor == 0)
        return 0;
    const auto windows = static_cast<unsigned>((d - m_startTime) / m_zoomFactor);
    const auto width = static_cast<unsigned>(geometry().width() - m_header->sectionPosition(1));
    return static_cast<int>(windows * width);
}

bool TimelineView::isCursorWithinRangeX(int x) const
{
    return m_header && x > m_header->sectionPosition(1) && x < geometry().right();
}

bool TimelineView::isCursorWithinRangeY(int y) const
{
    return y > 0 && y < geometry().bottom();
}

bool TimelineView::isCursorWithinRange(const QPoint& pos) const
{
    return isCursorWithinRangeX(pos.x()) && isCursorWithinRangeY(pos.y());
}

} // namespace VeskTimeline
