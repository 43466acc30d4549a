#include "start_up_load.h"

#include "load_files.h"

#include <QApplication>
#include <QEventLoop>
#include <QFileInfo>
#include <QProgressDialog>
#include <QScopeGuard>
#include <QThread>
#include <QTimer>

namespace Workbench {

using namespace VeskTimeline::Kit;

namespace {

struct Tr
{
    Q_DECLARE_TR_FUNCTIONS(StartUpLoad)
};

} // namespace

StartUpLoad::StartUpLoad(const QStringList& fileNames, const DocumentFormat* format, const ReadOptions& options)
    : m_firstName(fileNames.isEmpty() ? QString() : QFileInfo(fileNames.first()).fileName())
{
    // Qt takes the first thread that it sees for that of the application.
    QThread::currentThread();
    ReadOptions watched = options;
    watched.progress = [this](double share) {
        m_share = share;
        return !m_isCancelled;
    };
    m_read =
        std::async(std::launch::async, [fileNames, format, watched] { return loadFiles(fileNames, format, watched); });
}

StartUpLoad::~StartUpLoad()
{
    m_isCancelled = true;
    if (m_read.valid())
        m_read.wait();
}

bool StartUpLoad::isDoneWithin(std::chrono::milliseconds patience) const
{
    return m_read.wait_for(patience) == std::future_status::ready;
}

void StartUpLoad::showProgress()
{
    constexpr int steps = 1000;
    constexpr int interval = 50; // milliseconds
    constexpr int narrowest = 360;
    // What is shown afterwards must not find that the program is to end.
    const bool quits = QApplication::quitOnLastWindowClosed();
    const auto restore = qScopeGuard([quits] { QApplication::setQuitOnLastWindowClosed(quits); });
    QApplication::setQuitOnLastWindowClosed(false);
    QProgressDialog progress(Tr::tr("Reading %1…").arg(m_firstName), Tr::tr("Cancel"), 0, steps);
    progress.setObjectName(QStringLiteral("startUpProgress"));
    progress.setWindowTitle(Tr::tr("VeskTimeline Workbench"));
    progress.setMinimumWidth(narrowest);
    progress.setAutoReset(false);
    progress.setAutoClose(false);
    QEventLoop loop;
    QTimer timer;
    const auto cancel = [this] { m_isCancelled = true; };
    QObject::connect(&progress, &QProgressDialog::canceled, &loop, cancel);
    // A dialog that is not the active window takes Escape for a rejection only.
    QObject::connect(&progress, &QDialog::rejected, &loop, cancel);
    QObject::connect(&timer, &QTimer::timeout, &loop, [&] {
        progress.setValue(static_cast<int>(m_share * steps));
        if (isDoneWithin(std::chrono::milliseconds(0)))
            loop.quit();
    });
    timer.start(interval);
    progress.show();
    loop.exec();
}

ReadDocuments StartUpLoad::take()
{
    return m_read.get();
}

} // namespace Workbench
