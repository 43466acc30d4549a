#pragma once

// Internal to the kit; not installed.

#include <QObject>

#include <atomic>
#include <functional>
#include <memory>

namespace VeskTimeline::Kit {

/// Does one piece of work at a time on a thread of its own.
///
/// Destroying it has the work cancelled and waits for its end; nothing is delivered then.
class Worker : public QObject
{
    Q_OBJECT

public:
    /// What the work can ask and tell while it is done.
    class Work : public std::enable_shared_from_this<Work>
    {
    public:
        bool isCancelled() const { return m_isCancelled; }
        /// Has a function run on the worker's thread, unless the worker is gone or has turned to other work by then.
        void deliver(std::function<void()> function) const;

    private:
        friend class Worker;

        Worker* m_worker = nullptr;
        std::atomic<bool> m_isCancelled = false;
    };

    explicit Worker(QObject* parent = nullptr);
    ~Worker() override;

    bool isBusy() const { return m_work != nullptr; }
    /// Only when not isBusy(). The work is over when it calls finish() by way of deliver().
    void start(const std::function<void(Work&)>& body);
    void finish() { m_work.reset(); }
    /// Tells the work to stop. It is still busy.
    void cancel();
    /// Tells the work to stop and takes nothing more from it; the worker is free.
    void abandon();
    bool isCancelled() const { return m_work && m_work->isCancelled(); }

private:
    std::shared_ptr<Work> m_work;
};

} // namespace VeskTimeline::Kit
