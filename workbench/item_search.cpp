#include "item_search.h"

#include <algorithm>
#include <utility>

namespace Workbench {

using namespace VeskTimeline::Kit;

namespace {

constexpr int sliceMilliseconds = 8;
constexpr int delayMilliseconds = 60;

} // namespace

ItemSearch::ItemSearch(const StandardTimelineModel* model, QObject* parent)
    : QObject(parent), m_model(model), m_walk(model)
{
    m_delay.setSingleShot(true);
    connect(&m_slices, &QTimer::timeout, this, &ItemSearch::work);
    connect(&m_delay, &QTimer::timeout, this, &ItemSearch::restart);
    connect(model, &StandardTimelineModel::itemsAdded, this, &ItemSearch::onModelChanged);
    connect(model, &StandardTimelineModel::itemsChanged, this, &ItemSearch::onModelChanged);
    connect(model, &StandardTimelineModel::itemsRemoved, this, &ItemSearch::onModelChanged);
    connect(model, &QAbstractItemModel::rowsInserted, this, &ItemSearch::onModelChanged);
    connect(model, &QAbstractItemModel::rowsRemoved, this, &ItemSearch::onModelChanged);
    connect(model, &QAbstractItemModel::modelReset, this, &ItemSearch::onModelChanged);
}

void ItemSearch::start(const QString& text, bool withDetails)
{
    m_text = text;
    m_withDetails = withDetails;
    m_isRepeated = false;
    m_matches.clear();
    m_delay.stop();
    restart();
}

void ItemSearch::stop()
{
    m_text.clear();
    m_matches.clear();
    m_found.clear();
    m_delay.stop();
    m_slices.stop();
}

// A search that is under way is brought to its end, so that there is one however often things change.
void ItemSearch::onModelChanged()
{
    if (m_text.isEmpty())
        return;
    m_isStale = true;
    if (!m_slices.isActive() && !m_delay.isActive())
        m_delay.start(delayMilliseconds);
}

void ItemSearch::restart()
{
    m_isStale = false;
    m_found.clear();
    if (m_text.isEmpty()) {
        m_slices.stop();
        Q_EMIT finished();
        return;
    }
    m_walk.restart();
    m_slices.start(0);
}

bool ItemSearch::isMatch(const LabelledItem& item) const
{
    if (item.piece().isPiece() && item.piece().number != 1)
        return false;
    if (item.plainLabel().contains(m_text, Qt::CaseInsensitive))
        return true;
    if (!m_withDetails)
        return false;
    if (item.description().contains(m_text, Qt::CaseInsensitive))
        return true;
    for (auto it = item.attributes().cbegin(); it != item.attributes().cend(); ++it) {
        if (it.key().contains(m_text, Qt::CaseInsensitive) || it.value().contains(m_text, Qt::CaseInsensitive))
            return true;
    }
    return false;
}

void ItemSearch::work()
{
    const auto known = static_cast<std::ptrdiff_t>(m_found.size());
    const bool isMore = m_walk.advance(sliceMilliseconds, [this](const LabelledItem& item, int row) {
        if (isMatch(item))
            m_found.push_back({item.startTime(), row, item.id()});
    });
    std::sort(m_found.begin() + known, m_found.end());
    std::inplace_merge(m_found.begin(), m_found.begin() + known, m_found.end());
    if (isMore) {
        if (!m_isRepeated)
            m_matches = m_found;
        Q_EMIT progressed();
        return;
    }
    m_slices.stop();
    m_matches = std::exchange(m_found, {});
    m_isRepeated = true;
    if (m_isStale)
        m_delay.start(delayMilliseconds);
    Q_EMIT finished();
}

} // namespace Workbench
