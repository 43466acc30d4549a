#pragma once

#include <QFileSystemWatcher>
#include <QHash>
#include <QObject>
#include <QTimer>

namespace Workbench {

/// What tells one state of a file from another.
struct FileStamp
{
    bool exists = false;
    qint64 size = 0;
    qint64 modified = 0; ///< milliseconds since the epoch, UTC

    friend bool operator==(const FileStamp& left, const FileStamp& right)
    {
        return left.exists == right.exists && left.size == right.size && left.modified == right.modified;
    }
};

/// By absolute file name.
using FileStamps = QHash<QString, FileStamp>;

FileStamps stampsOf(const QStringList& fileNames);

/// Notices when files are changed, replaced or deleted by others.
class FileWatch : public QObject
{
    Q_OBJECT

public:
    explicit FileWatch(QObject* parent = nullptr);

    /// Watches these files instead of those before. @param stamps the states that are known of them
    void watch(const FileStamps& stamps);
    /// The state that a file is in now becomes the known one. Does nothing for a file that is not watched.
    void accept(const QString& fileName);
    /// Whether a file that is watched is in another state than the known one; asks the file system.
    bool hasChanged(const QString& fileName) const;
    /// While it is paused nothing is emitted; afterwards what has changed meanwhile is.
    void setPaused(bool isPaused);

Q_SIGNALS:
    /// Once for each other state that a file gets into, shortly after. @param exists whether it is still there
    void changed(const QString& fileName, bool exists);

private:
    void watchPaths();
    void check();

    QFileSystemWatcher m_watcher;
    QTimer m_settling;
    FileStamps m_known;
    FileStamps m_announced;
    bool m_isPaused = false;
};

} // namespace Workbench
