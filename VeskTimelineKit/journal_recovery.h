#pragma once

#include <VeskTimelineKit/document.h>
#include <VeskTimelineKit/read_options.h>
#include <VeskTimelineKit/result.h>

#include <QDateTime>
#include <QMap>
#include <QSet>

namespace VeskTimeline::Kit {

class StandardTimelineModel;

/// What can be said of a journal without reading all of it.
struct JournalInfo
{
    QStringList fileNames; ///< that the document was read from; empty for a new one, or when they cannot be read
    QDateTime lastChange;  ///< when the journal was last written
    bool isSaved = false;  ///< nothing has been changed since the document was saved
};

/// What reading a journal comes to.
struct VESKTIMELINEKIT_EXPORT RecoveredJournal
{
    Document document;
    QMap<int, QSet<int>> copyItemIds; ///< by track, with the ids that setDocument() gives
    QStringList fileNames;            ///< that the document was read from
    QDateTime lastChange;             ///< invalid when there is none
    bool isSaved = false;             ///< nothing has been changed since the document was saved
    int changeCount = 0;              ///< changes that have been read, each what was done within a moment
    QStringList problems;             ///< what could not be read, in sentences for the user

    /// Fills the model with the document and the copy items. The undo stack is empty afterwards.
    void showIn(StandardTimelineModel& model) const;
};

/// Nothing when the file cannot be opened.
VESKTIMELINEKIT_EXPORT std::optional<JournalInfo> journalInfo(const QString& fileName);

/// Puts the document together that a Journal has followed, up to the last change that is whole in the file. What is
/// damaged is left out, see RecoveredJournal::problems; an error only when nothing can be read. Can be called on any
/// thread.
VESKTIMELINEKIT_EXPORT Result<RecoveredJournal> readJournal(const QString& fileName, const ReadOptions& options = {});

/// Removes a journal and what belongs to it. @return whether nothing is left
VESKTIMELINEKIT_EXPORT bool removeJournal(const QString& fileName);

} // namespace VeskTimeline::Kit
