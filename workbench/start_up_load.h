#pragma once

#include <VeskTimelineKit/read_documents.h>

#include <QStringList>

#include <atomic>
#include <chrono>
#include <future>

namespace Workbench {

/// Reads the files that the program is started with on a thread of its own, so that what takes long can be seen and
/// cancelled before there is a window, and what is refused soon needs no display.
class StartUpLoad
{
public:
    /// Begins at once, in the thread that will have the application. For the parameters see loadFiles().
    StartUpLoad(const QStringList& fileNames, const VeskTimeline::Kit::DocumentFormat* format,
                const VeskTimeline::Kit::ReadOptions& options);
    /// Cancels.
    ~StartUpLoad();
    Q_DISABLE_COPY_MOVE(StartUpLoad)

    bool isDoneWithin(std::chrono::milliseconds patience) const;
    /// Shows how far it is, until it is done or the user cancels it. Needs a QApplication.
    void showProgress();
    bool isCancelled() const { return m_isCancelled; }
    /// Waits for what is read, once; what was cancelled is refused.
    VeskTimeline::Kit::ReadDocuments take();

private:
    QString m_firstName;
    std::atomic<double> m_share = 0.0;
    std::atomic<bool> m_isCancelled = false;
    std::future<VeskTimeline::Kit::ReadDocuments> m_read;
};

} // namespace Workbench
