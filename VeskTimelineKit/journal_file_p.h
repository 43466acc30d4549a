#pragma once

// Internal to the kit; not installed.

#include <QFile>

namespace VeskTimeline::Kit {

/// A file that is only appended to, and holds nothing but what was appended as a whole.
class JournalFile
{
public:
    /// Starts an empty file. @return whether it worked; then errorReason() is not set
    bool create(const QString& fileName);
    /// Opens a file to append to it.
    bool open(const QString& fileName);
    void close();
    /// Closes the file and removes it.
    void remove();

    bool isOpen() const { return m_file.isOpen(); }
    /// Whether the file is still where it was made: somebody may have removed it.
    bool exists() const { return QFile::exists(m_file.fileName()); }
    QString fileName() const { return m_file.fileName(); }
    /// Bytes that are surely in the file.
    qint64 size() const { return m_size; }

    /// Appends all of it, or nothing.
    bool append(const QByteArray& text);
    /// Has what was appended forced to the disk.
    bool sync();
    QString errorReason() const { return m_errorReason; }

private:
    bool fail();

    QFile m_file;
    qint64 m_size = 0;
    bool m_hasRest = false; ///< of something that could not be appended as a whole
    QString m_errorReason;
};

/// Replaces a file by another one of the same folder, in one step. @return whether it worked
bool replaceFile(const QString& fileName, const QString& by);

} // namespace VeskTimeline::Kit
