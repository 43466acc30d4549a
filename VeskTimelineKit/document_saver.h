#pragma once

#include <VeskTimelineKit/document.h>
#include <VeskTimelineKit/result.h>

#include <QObject>

#include <memory>

namespace VeskTimeline::Kit {

struct DocumentFormat;
class Worker;

/// Writes a document to a file on a thread of its own and tells on the one it lives in, normally the GUI's, what comes
/// of it. The file is replaced in one step, or stays as it was.
///
/// Each start() is followed by any number of progressChanged() and then one of saved(), failed() and cancelled().
/// Destroying the saver cancels and waits for the thread; nothing is emitted any more.
class VESKTIMELINEKIT_EXPORT DocumentSaver : public QObject
{
    Q_OBJECT

public:
    explicit DocumentSaver(QObject* parent = nullptr);
    ~DocumentSaver() override;

    bool isRunning() const;
    /// Only when not isRunning(). @param document not null. @param format one that can be written
    void start(const std::shared_ptr<const Document>& document, const QString& fileName, const DocumentFormat& format);

public Q_SLOTS:
    /// Gives up what is under way. cancelled() follows as soon as the thread has ended, or saved() when the file had
    /// been replaced by then; no progressChanged() any more. Does nothing when not isRunning().
    void cancel();

Q_SIGNALS:
    void progressChanged(double share);
    /// @param warnings those of the document, and what the format could not say
    void saved(const QStringList& warnings);
    void failed(const VeskTimeline::Kit::FileError& error);
    void cancelled();

private:
    std::unique_ptr<Worker> m_worker;
};

} // namespace VeskTimeline::Kit
