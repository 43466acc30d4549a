#pragma once

#include "file_dialogs.h"
#include "file_watch.h"

#include <VeskTimelineKit/document_loader.h>
#include <VeskTimelineKit/document_saver.h>
#include <VeskTimelineKit/document_snapshot.h>

#include <QPointer>

#include <functional>
#include <memory>

namespace VeskTimeline::Kit {
class StandardTimelineModel;
}

namespace Workbench {

/// The files behind what a model holds: opens, adds, saves and exports them, asks before anything is lost, and notices
/// when others change them.
///
/// Reading and writing happen in the background; one at a time. Nothing blocks: what has to be asked opens a dialog
/// over the window, and the work goes on with the answer. Whatever fails or is cancelled leaves model and files as they
/// were.
///
/// Save writes the native format only. A document that was read from another format, or from several files, is given a
/// name first; other formats, which may lose something, are written by exportTo().
class FileSession : public QObject
{
    Q_OBJECT

public:
    using Files = std::vector<VeskTimeline::Kit::FileToRead>;
    /// How a file is to be read; nothing: not at all.
    using ReadAnswer = std::optional<VeskTimeline::Kit::ReadOptions>;
    /// Asks the user how a file of comma-separated values is to be read, and calls `done` once, at once or later.
    using AskForReadOptions = std::function<void(const QString& fileName, const VeskTimeline::Kit::ReadOptions& options,
                                                 const std::function<void(const ReadAnswer&)>& done)>;

    /// @param model not owned, must outlive this object. @param window the parent of dialogs, and of this object
    FileSession(VeskTimeline::Kit::StandardTimelineModel* model, QWidget* window);
    ~FileSession() override;

    /// What the document was read from or saved as last; empty for a new one.
    QStringList fileNames() const;
    /// The file that Save writes; empty when it would have to ask for a name.
    QString nativeFileName() const;
    /// Whether there is anything that is in no file.
    bool isModified() const;
    /// For the window, with the place of the mark for changes.
    QString title() const;
    /// Whether files are being read or written, or the user is being asked how to read them.
    bool isBusy() const;
    /// The first file's name with its folder and another suffix; without a file a name without a folder.
    QString suggestedName(const QString& suffix) const;
    bool isSaving() const { return m_snapshot.isRunning() || m_saver.isRunning(); }

    /// Asked for each such file that is opened or added, not when one is reloaded. Empty: none is asked.
    void setAskForReadOptions(const AskForReadOptions& ask) { m_askForReadOptions = ask; }

    /// Takes a document that was read elsewhere, whatever there was before.
    /// @param stretch what its times are stretched by
    void show(const VeskTimeline::Kit::Document& document, const QStringList& fileNames,
              const VeskTimeline::Kit::DocumentFormat* format = nullptr,
              const VeskTimeline::Kit::ReadOptions& options = {}, double stretch = 1.0);
    /// Opens files instead of what there is, having asked about that.
    void open(const QStringList& fileNames);
    /// Adds files to what there is, each as a track at the top level, in one step that can be undone.
    void add(const QStringList& fileNames);
    /// Writes the document; one without a native file as a file of that name.
    void saveAs(const QString& fileName);
    /// Writes the document in another format, and says what that could not say. The document stays as modified as it
    /// was.
    void exportTo(const QString& fileName, const VeskTimeline::Kit::DocumentFormat& format);
    /// Calls `then` when what there is may go: at once, or when it has been saved or given up.
    void whenDisposable(const std::function<void()>& then);

public Q_SLOTS:
    /// An empty document, having asked about what there is.
    void startNew();
    void askForFilesToOpen();
    void askForFilesToAdd();
    void save();
    void askForNameToSave();
    void askForNameToExport();
    /// Reads the files again, having asked when there are changes.
    void reload();
    /// Stops reading or writing.
    void cancel();
    /// What there is counts as modified until it is saved, as what was recovered after a crash does.
    void setUnsaved();

Q_SIGNALS:
    /// The model holds another document. @param document never null
    void documentLoaded(const std::shared_ptr<const VeskTimeline::Kit::Document>& document,
                        const QStringList& fileNames, const VeskTimeline::Kit::ReadOptions& options);
    /// What add() has added.
    void filesAdded(const std::shared_ptr<const VeskTimeline::Kit::Document>& added);
    /// What the document says is going to be written, or asked about: who has something to add does so now.
    void contentsNeeded();
    /// The document is about to be written to a file of its own as it is now. Not for exports.
    void savingStarted();
    /// The document is in the file. Not for exports.
    void documentSaved(const QString& fileName);
    void exported(const QString& fileName);
    /// Files that were opened, added or saved.
    void filesUsed(const QStringList& fileNames);
    /// isModified() or title().
    void stateChanged();
    /// @param text what is under way, for the user
    void workStarted(const QString& text);
    void workProgressed(double share, const QString& text);
    /// However it ended; isBusy() is false.
    void workEnded();

private:
    enum class Purpose { Open, Add };

    void createLoader();
    void createSaver();
    Files filesToRead(const QStringList& fileNames) const;
    void askAboutFiles(Files files, std::size_t position, const std::function<void(Files)>& then);
    void load(Purpose purpose, Files files);
    void replaceDocument(VeskTimeline::Kit::LoadedDocument& loaded);
    void addLoaded(VeskTimeline::Kit::LoadedDocument& loaded);
    void nameTracks(Files& files) const;

    void askBeforeOverwriting(const QString& fileName, const std::function<void()>& then);
    void write(const QString& fileName, const VeskTimeline::Kit::DocumentFormat& format, bool isExport);
    void writeSnapshot(const std::shared_ptr<const VeskTimeline::Kit::Document>& document);
    void takeSaved(const QStringList& warnings);
    void giveUpSaving();
    QString questionToSave() const;
    void chooseNameToSave(const QString& suggestion);
    void askToSave(const std::function<void()>& then);

    QString stretchText() const;
    void noticeChange(const QString& fileName, bool exists);
    QString folder() const;

    VeskTimeline::Kit::StandardTimelineModel* m_model;
    QWidget* m_window;
    AskForReadOptions m_askForReadOptions;
    bool m_isAsking = false;
    Files m_files;
    double m_stretch = 1.0;
    bool m_isStretchedWhole = true; ///< all of the files, not only some
    bool m_isUnsaved = false;
    FileWatch m_watch;

    VeskTimeline::Kit::DocumentLoader m_loader;
    Purpose m_purpose = Purpose::Open;
    Files m_loading;
    FileStamps m_stampsOfLoading;
    int m_edits = 0;          ///< counted up with each change of the undo stack
    int m_editsWhenAsked = 0; ///< about what there is

    VeskTimeline::Kit::DocumentSnapshot m_snapshot;
    VeskTimeline::Kit::DocumentSaver m_saver;
    QString m_savingName;
    const VeskTimeline::Kit::DocumentFormat* m_savingFormat = nullptr;
    bool m_isExport = false;
    bool m_isMarkedClean = false; ///< ahead of the end of the writing under way
    bool m_wasClean = false;
    bool m_wasUnsaved = false;
    std::function<void()> m_afterSaving;
    QPointer<QMessageBox> m_question;
};

} // namespace Workbench
