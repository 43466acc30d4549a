#include "file_watch.h"

#include <QDateTime>
#include <QFileInfo>

namespace Workbench {

namespace {

// Whoever writes a file without replacing it in one step has some time to finish.
constexpr int settlingTime = 200; // milliseconds

FileStamp stampOf(const QString& fileName)
{
    const QFileInfo info(fileName);
    if (!info.exists())
        return {};
    return {true, info.size(), info.lastModified().toMSecsSinceEpoch()};
}

} // namespace

FileStamps stampsOf(const QStringList& fileNames)
{
    FileStamps stamps;
    for (const QString& fileName : fileNames) {
        const QString absolute = QFileInfo(fileName).absoluteFilePath();
        stamps.insert(absolute, stampOf(absolute));
    }
    return stamps;
}

FileWatch::FileWatch(QObject* parent) : QObject(parent)
{
    m_settling.setSingleShot(true);
    m_settling.setInterval(settlingTime);
    connect(&m_settling, &QTimer::timeout, this, &FileWatch::check);
    // The folder tells of files that are replaced or come back.
    connect(&m_watcher, &QFileSystemWatcher::fileChanged, &m_settling, qOverload<>(&QTimer::start));
    connect(&m_watcher, &QFileSystemWatcher::directoryChanged, &m_settling, qOverload<>(&QTimer::start));
}

void FileWatch::watch(const FileStamps& stamps)
{
    const QStringList before = m_watcher.files() + m_watcher.directories();
    if (!before.isEmpty())
        m_watcher.removePaths(before);
    m_known = stamps;
    m_announced.clear();
    watchPaths();
    // Something may have happened since the stamps were taken.
    if (!stamps.isEmpty())
        m_settling.start();
}

void FileWatch::watchPaths()
{
    for (auto known = m_known.cbegin(); known != m_known.cend(); ++known) {
        const QFileInfo info(known.key());
        // The watcher remarks on what is not there.
        if (info.exists() && !m_watcher.files().contains(known.key()))
            m_watcher.addPath(known.key());
        if (QFileInfo::exists(info.path()) && !m_watcher.directories().contains(info.path()))
            m_watcher.addPath(info.path());
    }
}

void FileWatch::accept(const QString& fileName)
{
    const QString absolute = QFileInfo(fileName).absoluteFilePath();
    if (!m_known.contains(absolute))
        return;
    m_known.insert(absolute, stampOf(absolute));
    m_announced.remove(absolute);
    watchPaths();
}

bool FileWatch::hasChanged(const QString& fileName) const
{
    const auto known = m_known.constFind(QFileInfo(fileName).absoluteFilePath());
    return known != m_known.cend() && !(stampOf(known.key()) == *known);
}

void FileWatch::setPaused(bool isPaused)
{
    m_isPaused = isPaused;
    if (!isPaused && !m_known.isEmpty())
        m_settling.start();
}

void FileWatch::check()
{
    if (m_isPaused)
        return;
    watchPaths();
    const QStringList fileNames = m_known.keys();
    for (const QString& fileName : fileNames) {
        const FileStamp now = stampOf(fileName);
        const FileStamp last = m_announced.value(fileName, m_known.value(fileName));
        if (now == last)
            continue;
        m_announced.insert(fileName, now);
        Q_EMIT changed(fileName, now.exists);
    }
}

} // namespace Workbench
