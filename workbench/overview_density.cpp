#include "overview_density.h"

#include "navigation.h"

#include <VeskTimelineKit/standard_timeline_model.h>

#include <algorithm>
#include <numeric>

namespace Workbench {

using namespace VeskTimeline;
using namespace VeskTimeline::Kit;

namespace {

constexpr int sliceMilliseconds = 8;
// A gesture edits at each move of the mouse.
constexpr int delayMilliseconds = 60;

} // namespace

OverviewDensity::OverviewDensity(const Navigation* navigation, QObject* parent)
    : QObject(parent), m_navigation(navigation), m_walk(navigation->model()), m_counts(partCount, 0)
{
    m_delay.setSingleShot(true);
    connect(&m_delay, &QTimer::timeout, this, &OverviewDensity::start);
    connect(&m_slices, &QTimer::timeout, this, &OverviewDensity::work);
    const StandardTimelineModel* const model = navigation->model();
    connect(model, &StandardTimelineModel::itemsAdded, this, &OverviewDensity::schedule);
    connect(model, &StandardTimelineModel::itemsChanged, this, &OverviewDensity::schedule);
    connect(model, &StandardTimelineModel::itemsRemoved, this, &OverviewDensity::schedule);
    connect(model, &QAbstractItemModel::rowsInserted, this, &OverviewDensity::schedule);
    connect(model, &QAbstractItemModel::rowsRemoved, this, &OverviewDensity::schedule);
    connect(model, &QAbstractItemModel::modelReset, this, &OverviewDensity::schedule);
    connect(navigation, &Navigation::documentSpanChanged, this, &OverviewDensity::schedule);
    m_span = navigation->overviewSpan();
    schedule();
}

// What is being counted is counted to its end first, so that there is something to see however often things change.
void OverviewDensity::schedule()
{
    m_isStale = true;
    if (!m_slices.isActive() && !m_delay.isActive())
        m_delay.start(delayMilliseconds);
}

void OverviewDensity::start()
{
    m_isStale = false;
    m_countedSpan = m_navigation->overviewSpan();
    m_differences.assign(partCount + 1, 0);
    m_walk.restart();
    m_slices.start(0);
}

void OverviewDensity::hasten()
{
    if (m_delay.isActive()) {
        m_delay.stop();
        start();
        work();
    }
}

void OverviewDensity::work()
{
    if (!m_walk.advance(sliceMilliseconds, [this](const LabelledItem& item, int /*row*/) { count(item); }))
        finish();
}

int OverviewDensity::partOf(qint64 time) const
{
    const double length = static_cast<double>(std::max<qint64>(1, m_countedSpan.end - m_countedSpan.start));
    const double share = static_cast<double>(time - m_countedSpan.start) / length;
    return static_cast<int>(std::clamp(share * partCount, 0.0, partCount - 1.0));
}

void OverviewDensity::count(const Item& item)
{
    const int first = partOf(item.startTime());
    // The last instant is not part of an item any more: where one follows on the other there is one.
    const int last = item.duration() > 0 ? partOf(item.startTime() + item.duration() - 1) : first;
    ++m_differences[static_cast<std::size_t>(first)];
    --m_differences[static_cast<std::size_t>(last) + 1];
}

void OverviewDensity::finish()
{
    m_slices.stop();
    m_span = m_countedSpan;
    std::partial_sum(m_differences.begin(), m_differences.end() - 1, m_counts.begin());
    m_highest = *std::max_element(m_counts.begin(), m_counts.end());
    if (m_isStale)
        m_delay.start(delayMilliseconds);
    Q_EMIT changed();
}

} // namespace Workbench
