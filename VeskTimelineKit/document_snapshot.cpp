#include "document_of_tracks_p.h"

#include <VeskTimelineKit/document_snapshot.h>
#include <VeskTimelineKit/standard_timeline_model.h>

#include <QElapsedTimer>

namespace VeskTimeline::Kit {

DocumentSnapshot::DocumentSnapshot(StandardTimelineModel* model, QObject* parent) : QObject(parent), m_model(model)
{
    connect(&m_timer, &QTimer::timeout, this, &DocumentSnapshot::advance);
    connect(model, &QAbstractItemModel::rowsInserted, this, &DocumentSnapshot::startAnew);
    connect(model, &QAbstractItemModel::rowsAboutToBeRemoved, this, &DocumentSnapshot::startAnew);
    connect(model, &QAbstractItemModel::rowsMoved, this, &DocumentSnapshot::startAnew);
    connect(model, &QAbstractItemModel::dataChanged, this, &DocumentSnapshot::startAnew);
    connect(model, &QAbstractItemModel::modelReset, this, &DocumentSnapshot::startAnew);
    connect(model, &StandardTimelineModel::itemsAdded, this, &DocumentSnapshot::startAnew);
    connect(model, &StandardTimelineModel::itemsRemoved, this, &DocumentSnapshot::startAnew);
    connect(model, &StandardTimelineModel::itemsChanged, this, &DocumentSnapshot::startAnew);
    connect(model, &QObject::destroyed, this, [this] {
        m_timer.stop();
        m_builder.reset();
    });
}

DocumentSnapshot::~DocumentSnapshot() = default;

void DocumentSnapshot::start()
{
    Q_ASSERT(!isRunning());
    m_builder = std::make_unique<DocumentBuilder>(*m_model->rootTrack());
    m_timer.start(0);
}

void DocumentSnapshot::startAnew()
{
    if (isRunning())
        m_builder = std::make_unique<DocumentBuilder>(*m_model->rootTrack());
}

void DocumentSnapshot::advance()
{
    constexpr int step = 500;
    QElapsedTimer time;
    time.start();
    bool isDone = false;
    do {
        isDone = m_builder->advance(step);
    } while (!isDone && time.elapsed() < m_slice);
    if (!isDone)
        return;
    m_timer.stop();
    const std::unique_ptr<DocumentBuilder> builder = std::move(m_builder);
    Q_EMIT taken(shareDocument(std::move(*builder).document()));
}

void DocumentSnapshot::cancel()
{
    if (!isRunning())
        return;
    m_timer.stop();
    m_builder.reset();
    Q_EMIT cancelled();
}

} // namespace VeskTimeline::Kit
