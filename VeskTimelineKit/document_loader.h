#pragma once

#include <VeskTimelineKit/prepared_document.h>
#include <VeskTimelineKit/read_documents.h>

#include <QObject>

#include <memory>

namespace VeskTimeline::Kit {

class Worker;

/// What a loader delivers of files that were all read.
struct LoadedDocument
{
    std::shared_ptr<const Document> document; ///< see readDocuments(); with the warnings of all files
    PreparedDocument prepared;                ///< the same for StandardTimelineModel::setDocument()
    double stretch = 1.0;                     ///< what times are stretched by, if there is a file that this applies to
};

/// Reads files on a thread of its own and tells on the one it lives in, normally the GUI's, what comes of it.
///
/// Each start() is followed by any number of progressChanged() and then one of loaded(), refused() and cancelled().
/// Destroying the loader cancels and waits for the thread, which readers let go within some milliseconds; nothing is
/// emitted any more.
class VESKTIMELINEKIT_EXPORT DocumentLoader : public QObject
{
    Q_OBJECT

public:
    explicit DocumentLoader(QObject* parent = nullptr);
    ~DocumentLoader() override;

    bool isRunning() const;
    /// Only when not isRunning(). @param files see readDocuments(); at least one
    void start(const std::vector<FileToRead>& files);

public Q_SLOTS:
    /// Gives up what is under way; cancelled() is emitted at once. Does nothing when not isRunning().
    void cancel();

Q_SIGNALS:
    /// @param share of all files, from 0 to 1, never less than before. @param fileName the one that is being read
    void progressChanged(double share, const QString& fileName);
    /// @param loaded the receiver may move from `prepared`; never null
    void loaded(const std::shared_ptr<VeskTimeline::Kit::LoadedDocument>& loaded);
    /// One error for each refused file; nothing is delivered of the others.
    void refused(const QList<VeskTimeline::Kit::FileError>& refusals);
    void cancelled();

private:
    std::unique_ptr<Worker> m_worker;
};

} // namespace VeskTimeline::Kit
