#include "autosave_orphans.h"

#include <VeskTimelineKit/journal_recovery.h>

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QSet>

#include <algorithm>

namespace Workbench {

using namespace VeskTimeline::Kit;

namespace {

/// Journals by their own files, or by what is left of them.
QSet<QString> journalsIn(const QDir& folder)
{
    const QString suffix = QStringLiteral(".journal");
    QSet<QString> names;
    for (const QString& file : folder.entryList({QStringLiteral("*.journal*")}, QDir::Files)) {
        if (!file.endsWith(QStringLiteral(".lock")))
            names.insert(folder.filePath(file.first(file.indexOf(suffix) + suffix.size())));
    }
    return names;
}

} // namespace

QString OrphanedJournal::title() const
{
    if (fileNames.isEmpty())
        return QCoreApplication::translate("Workbench::Autosave", "New timeline");
    const QString first = QFileInfo(fileNames.first()).fileName();
    return fileNames.size() == 1 ? first
                                 : QCoreApplication::translate("Workbench::Autosave", "%1 and %2 more")
                                       .arg(first)
                                       .arg(fileNames.size() - 1);
}

std::unique_ptr<QLockFile> journalLock(const QString& fileName)
{
    auto lock = std::make_unique<QLockFile>(fileName + QStringLiteral(".lock"));
    // A program may run for weeks.
    lock->setStaleLockTime(0);
    return lock;
}

std::vector<OrphanedJournal> takeOrphans(const QString& folder)
{
    std::vector<OrphanedJournal> orphans;
    for (const QString& fileName : journalsIn(QDir(folder))) {
        std::unique_ptr<QLockFile> lock = journalLock(fileName);
        if (!lock->tryLock(0))
            continue;
        const std::optional<JournalInfo> info = journalInfo(fileName);
        // A base alone is from a program that ended before its first change was written.
        const bool isUnreadable = !info && QFile::exists(fileName);
        if (isUnreadable)
            continue;
        if (!info || info->isSaved)
            removeJournal(fileName);
        else
            orphans.push_back({fileName, info->fileNames, info->lastChange, std::move(lock)});
    }
    std::sort(orphans.begin(), orphans.end(), [](const OrphanedJournal& left, const OrphanedJournal& right) {
        return std::pair(right.lastChange, right.fileName) < std::pair(left.lastChange, left.fileName);
    });
    return orphans;
}

} // namespace Workbench
