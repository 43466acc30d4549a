#pragma once

#include <VeskTimelineKit/document.h>
#include <VeskTimelineKit/vesktimelinekit_export.h>

#include <QObject>

#include <chrono>
#include <memory>

namespace VeskTimeline::Kit {

class StandardTimelineModel;
struct JournalDelta;
struct JournalPrivate;

/// How often a journal is written, and when it is made smaller. The defaults are for use; tests are in a hurry.
struct JournalOptions
{
    std::chrono::milliseconds interval{500};       ///< from a change to its writing, also while changes go on
    std::chrono::milliseconds retryInterval{5000}; ///< after a failure
    qint64 compactionFloor = 16 * 1024 * 1024; ///< bytes; a journal is not made smaller before it is longer than that
    int compactionFactor = 4;                  ///< and than its base, that many times
    std::chrono::milliseconds slice{
        10}; ///< for how long the event loop may be held up at a time; 0: as short as can be
    std::chrono::milliseconds patience{700}; ///< with changes that follow each other faster than they can be taken down
};

/// Writes every change of a model to a file while it is made, so that after a crash readJournal() brings it back.
///
/// Nothing is written before the first change. Then the document as it was before, the base, goes into a file beside
/// the journal, and each change is appended to the journal within interval of its start, as much as has changed, and is
/// forced to the disk. All writing happens in a thread of its own, without regard to the size of the document. What is
/// to be written is taken down on the thread of the model, in slices from the event loop; what is changed meanwhile
/// goes into the same change. Only when the changes leave no time for that, it is taken down in one go.
///
/// When writing fails, as on a full disk, failed() is emitted once, the changes are kept in mind, and writing is tried
/// again every retryInterval until it works, which resumed() tells.
///
/// The file belongs to this journal alone. It stays when the journal is destroyed without drop(). For use on the GUI
/// thread; not supported: models whose contents are changed without the signals of StandardTimelineModel. After a
/// reset of the model that start() does not follow, the next change is written with all that there is then.
class VESKTIMELINEKIT_EXPORT Journal : public QObject
{
    Q_OBJECT

public:
    /// @param model must outlive the journal, or never change again
    /// @param fileName its folder is made when it is missing
    Journal(StandardTimelineModel& model, const QString& fileName, const JournalOptions& options = {},
            QObject* parent = nullptr);
    ~Journal() override;

    QString fileName() const;

    /// Forgets, and removes, what was written before; from now on changes are written.
    /// @param base the very document that StandardTimelineModel::setDocument() was given, with no change made since:
    /// the ids of tracks and items follow from it. Null: the whole model is taken, in slices, at the first change
    /// @param fileNames that the document was read from, for whoever recovers it
    /// @param isModified write at once, without waiting for a change: what is shown is in no file
    void start(std::shared_ptr<const Document> base, const QStringList& fileNames, bool isModified = false);
    /// The document belongs to other files from now on, as after it was saved under another name.
    void setFileNames(const QStringList& fileNames);
    /// Counts changes, so that what was saved can be named. It grows with each change and never means two states.
    quint64 revision() const;
    /// The document of a revision is in a file now: unless there has been another change since, there is nothing to
    /// recover until the next one.
    void markSaved(quint64 revision);
    /// Has what is waiting written now, and takes it down in one go.
    void flush();
    /// Removes all that was written and stops until start() is called.
    void drop();

Q_SIGNALS:
    /// All changes so far, and what they are changes to, are on the disk.
    void written();
    /// @param reason a sentence, translated
    void failed(const QString& reason);
    void resumed();

private:
    void onTouched();
    void onReset();
    void onAppended(int generation);
    void onRejected(int generation, const QString& reason);
    void onBaseWritten(int generation);
    void onLost(int generation);
    void fail(bool& isFailing, const QString& reason);
    void succeed(bool& isFailing);
    void begin(JournalDelta&& everything);
    void schedule();
    bool beginTaking();
    void takeDown();
    void takeDownSlice();
    void append();
    void finishWrite();

    std::unique_ptr<JournalPrivate> d;
};

} // namespace VeskTimeline::Kit
