#pragma once

#include <QDateTime>
#include <QLockFile>
#include <QStringList>

#include <memory>
#include <vector>

namespace Workbench {

/// A journal that a program has left which ended before its document was saved.
struct OrphanedJournal
{
    QString fileName;
    QStringList fileNames; ///< that the document was read from; empty for a new one
    QDateTime lastChange;
    std::unique_ptr<QLockFile> lock; ///< held: nobody else offers it meanwhile

    /// What the user knows the document by.
    QString title() const;
};

/// The lock of the one that a journal belongs to, not taken yet. It counts as long as its process is running.
std::unique_ptr<QLockFile> journalLock(const QString& fileName);

/// The journals of a folder that belong to no running program, the last changed first. Those that have nothing to
/// recover, and what is left of others, are removed along the way.
std::vector<OrphanedJournal> takeOrphans(const QString& folder);

} // namespace Workbench
