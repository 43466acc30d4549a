#include "kit_tr_p.h"
#include "worker_p.h"

#include <VeskTimelineKit/document_loader.h>

#include <new>

namespace VeskTimeline::Kit {

namespace {

// Of the whole; what is left is for preparing what was read.
constexpr double readingShare = 0.7;

struct Outcome
{
    std::shared_ptr<LoadedDocument> loaded; ///< null when refused or cancelled
    QList<FileError> refusals;
};

Outcome load(const std::vector<FileToRead>& files, const FilesProgress& progress)
{
    ReadDocuments read = readDocuments(
        files, [&progress](double share, const QString& fileName) { return progress(share * readingShare, fileName); });
    if (!read.refusals.isEmpty())
        return {nullptr, std::move(read.refusals)};
    const std::shared_ptr<const Document> document = shareDocument(std::move(read.document));
    const QString& lastFile = files.back().fileName;
    std::optional<PreparedDocument> prepared = PreparedDocument::prepare(
        *document, [&](double share) { return progress(readingShare + share * (1.0 - readingShare), lastFile); });
    if (!prepared)
        return {};
    return {std::make_shared<LoadedDocument>(LoadedDocument{document, std::move(*prepared), read.stretch}), {}};
}

} // namespace

DocumentLoader::DocumentLoader(QObject* parent) : QObject(parent), m_worker(std::make_unique<Worker>())
{
}

DocumentLoader::~DocumentLoader() = default;

bool DocumentLoader::isRunning() const
{
    return m_worker->isBusy();
}

void DocumentLoader::start(const std::vector<FileToRead>& files)
{
    Q_ASSERT(!files.empty());
    m_worker->start([this, files](Worker::Work& work) {
        Outcome outcome;
        try {
            outcome = load(files, [&](double share, const QString& fileName) {
                work.deliver([this, share, fileName] { Q_EMIT progressChanged(share, fileName); });
                return !work.isCancelled();
            });
        } catch (const std::bad_alloc&) {
            outcome.refusals.append({files.back().fileName, 0, Tr::tr("there is not enough memory for it")});
        }
        work.deliver([this, outcome = std::move(outcome)] {
            m_worker->finish();
            if (outcome.loaded)
                Q_EMIT loaded(outcome.loaded);
            else
                Q_EMIT refused(outcome.refusals);
        });
    });
}

void DocumentLoader::cancel()
{
    if (!isRunning())
        return;
    m_worker->abandon();
    Q_EMIT cancelled();
}

} // namespace VeskTimeline::Kit
