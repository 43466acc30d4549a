#include "worker_p.h"

#include <QThread>

namespace VeskTimeline::Kit {

void Worker::Work::deliver(std::function<void()> function) const
{
    // The worker waits for this thread before it goes.
    QMetaObject::invokeMethod(
        m_worker,
        [worker = m_worker, work = shared_from_this(), function = std::move(function)] {
            if (worker->m_work == work)
                function();
        },
        Qt::QueuedConnection);
}

Worker::Worker(QObject* parent) : QObject(parent)
{
}

Worker::~Worker()
{
    cancel();
    for (QThread* const thread : findChildren<QThread*>(QString(), Qt::FindDirectChildrenOnly))
        thread->wait();
}

void Worker::start(const std::function<void(Work&)>& body)
{
    Q_ASSERT(!isBusy());
    m_work = std::make_shared<Work>();
    m_work->m_worker = this;
    QThread* const thread = QThread::create([work = m_work, body] { body(*work); });
    thread->setParent(this);
    connect(thread, &QThread::finished, thread, &QObject::deleteLater);
    thread->start();
}

void Worker::cancel()
{
    if (m_work)
        m_work->m_isCancelled = true;
}

void Worker::abandon()
{
    cancel();
    m_work.reset();
}

} // namespace VeskTimeline::Kit
