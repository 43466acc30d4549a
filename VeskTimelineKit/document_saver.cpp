#include "kit_tr_p.h"
#include "worker_p.h"

#include <VeskTimelineKit/document_format.h>
#include <VeskTimelineKit/document_saver.h>

#include <new>

namespace VeskTimeline::Kit {

namespace {

WriteResult write(const Document& document, const QString& fileName, const DocumentFormat& format,
                  const WriteOptions& options)
{
    try {
        return format.write(document, fileName, options);
    } catch (const std::bad_alloc&) {
        return FileError{fileName, 0, Tr::tr("there is not enough memory to write it")};
    }
}

} // namespace

DocumentSaver::DocumentSaver(QObject* parent) : QObject(parent), m_worker(std::make_unique<Worker>())
{
}

DocumentSaver::~DocumentSaver() = default;

bool DocumentSaver::isRunning() const
{
    return m_worker->isBusy();
}

void DocumentSaver::start(const std::shared_ptr<const Document>& document, const QString& fileName,
                          const DocumentFormat& format)
{
    Q_ASSERT(document && format.write);
    m_worker->start([this, document, fileName, &format](Worker::Work& work) {
        WriteOptions options;
        options.progress = [this, &work](double share) {
            work.deliver([this, share] {
                if (!m_worker->isCancelled())
                    Q_EMIT progressChanged(share);
            });
            return !work.isCancelled();
        };
        const WriteResult result = write(*document, fileName, format, options);
        work.deliver([this, result, document] {
            const bool wasCancelled = m_worker->isCancelled();
            m_worker->finish();
            if (result)
                Q_EMIT saved(document->warnings() + result.value());
            else if (wasCancelled)
                Q_EMIT cancelled();
            else
                Q_EMIT failed(result.error());
        });
    });
}

void DocumentSaver::cancel()
{
    m_worker->cancel();
}

} // namespace VeskTimeline::Kit
