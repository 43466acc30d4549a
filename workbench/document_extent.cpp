#include "document_extent.h"

#include <VeskTimelineKit/standard_timeline_model.h>

#include <algorithm>

namespace Workbench {

using namespace VeskTimeline;
using namespace VeskTimeline::Kit;

namespace {

// Looking more ids up than this takes longer than going through the tracks.
constexpr int manyItems = 10'000;

qint64 endOf(const Item& item)
{
    return item.startTime() + std::max(item.duration(), 0);
}

bool isSame(const std::optional<TimeSpan>& left, const std::optional<TimeSpan>& right)
{
    if (!left || !right)
        return left.has_value() == right.has_value();
    return left->start == right->start && left->end == right->end;
}

} // namespace

DocumentExtent::DocumentExtent(const StandardTimelineModel* model, QObject* parent) : QObject(parent), m_model(model)
{
    m_announcement.setSingleShot(true);
    connect(&m_announcement, &QTimer::timeout, this, &DocumentExtent::announce);
    connect(model, &StandardTimelineModel::itemsAdded, this, &DocumentExtent::onAdded);
    connect(model, &StandardTimelineModel::itemsChanged, this, &DocumentExtent::onChanged);
    connect(model, &StandardTimelineModel::itemsRemoved, this, &DocumentExtent::onRemoved);
    connect(model, &QAbstractItemModel::rowsInserted, this, &DocumentExtent::invalidate);
    connect(model, &QAbstractItemModel::rowsRemoved, this, &DocumentExtent::invalidate);
    connect(model, &QAbstractItemModel::modelReset, this, &DocumentExtent::invalidate);
    m_announced = span();
}

std::optional<TimeSpan> DocumentExtent::span() const
{
    update();
    if (m_first < 0)
        return std::nullopt;
    return m_span;
}

int DocumentExtent::firstItem() const
{
    update();
    return m_first;
}

int DocumentExtent::lastItem() const
{
    update();
    return m_last;
}

void DocumentExtent::invalidate()
{
    m_isKnown = false;
    m_announcement.start(0);
}

void DocumentExtent::onAdded(const QVector<int>& ids)
{
    if (ids.size() > manyItems) {
        invalidate();
        return;
    }
    if (m_isKnown) {
        for (const int id : ids)
            include(*m_model->item(id));
    }
    m_announcement.start(0);
}

void DocumentExtent::onRemoved(const QVector<int>& ids)
{
    // The ids are ascending.
    const auto isRemoved = [&ids](int id) { return std::binary_search(ids.begin(), ids.end(), id); };
    if (isRemoved(m_first) || isRemoved(m_last))
        invalidate();
}

void DocumentExtent::onChanged(const QVector<int>& ids)
{
    const auto gaveWay = [this, &ids](int id, bool isFirst) {
        if (!std::binary_search(ids.begin(), ids.end(), id))
            return false;
        const Item& item = *m_model->item(id);
        return isFirst ? item.startTime() > m_span.start : endOf(item) < m_span.end;
    };
    if (m_isKnown && m_first >= 0 && (gaveWay(m_first, true) || gaveWay(m_last, false)))
        m_isKnown = false;
    onAdded(ids);
}

void DocumentExtent::include(const Item& item) const
{
    const qint64 end = endOf(item);
    if (m_first < 0 || item.startTime() < m_span.start) {
        m_span.start = item.startTime();
        m_first = item.id();
    }
    if (m_last < 0 || end > m_span.end) {
        m_span.end = end;
        m_last = item.id();
    }
}

namespace {

/// What `find` finds on the first track from the top where it finds one; -1 when there is none.
template <typename Find>
int findItem(const Track& track, const Find& find)
{
    int id = track.items().empty() ? -1 : find(track.items());
    for (auto child = track.tracks().begin(); id < 0 && child != track.tracks().end(); ++child)
        id = findItem(**child, find);
    return id;
}

} // namespace

void DocumentExtent::update() const
{
    if (m_isKnown)
        return;
    m_isKnown = true;
    // The model knows it of all tracks that have not been changed.
    const std::optional<TimeSpan> span = m_model->span();
    if (!span) {
        m_first = -1;
        m_last = -1;
        return;
    }
    m_span = *span;
    m_first = findItem(*m_model->rootTrack(), [start = m_span.start](const Items& items) {
        return items.front()->startTime() == start ? items.front()->id() : -1;
    });
    findLast();
}

// The one that ended last may still do; else it is as a rule one that starts last on its track.
void DocumentExtent::findLast() const
{
    const auto isLast = [end = m_span.end](const ItemPtr& item) { return endOf(*item) == end; };
    if (m_last >= 0 && m_model->hasItem(m_last) && endOf(*m_model->item(m_last)) == m_span.end)
        return;
    m_last = findItem(*m_model->rootTrack(),
                      [&isLast](const Items& items) { return isLast(items.back()) ? items.back()->id() : -1; });
    if (m_last >= 0)
        return;
    m_last = findItem(*m_model->rootTrack(), [&isLast](const Items& items) {
        const auto found = std::find_if(items.begin(), items.end(), isLast);
        return found != items.end() ? (*found)->id() : -1;
    });
}

void DocumentExtent::announce()
{
    const std::optional<TimeSpan> now = span();
    if (isSame(now, m_announced))
        return;
    m_announced = now;
    Q_EMIT changed();
}

} // namespace Workbench
