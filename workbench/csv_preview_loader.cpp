#include "csv_preview_loader.h"

#include <QPromise>
#include <QThreadPool>

#include <utility>

namespace Workbench {

using namespace VeskTimeline::Kit;

CsvPreviewFunction defaultCsvPreview()
{
    return [](const QString& fileName, const CsvOptions& options) { return previewCsv(fileName, options); };
}

CsvPreviewLoader::CsvPreviewLoader(const QString& fileName, CsvPreviewFunction preview, QObject* parent)
    : QObject(parent), m_fileName(fileName), m_preview(std::move(preview))
{
    connect(&m_watcher, &QFutureWatcherBase::finished, this, &CsvPreviewLoader::finish);
}

void CsvPreviewLoader::request(const CsvOptions& options)
{
    if (m_isBusy)
        m_next = options;
    else
        start(options);
}

void CsvPreviewLoader::start(const CsvOptions& options)
{
    m_isBusy = true;
    m_current = options;
    // Nothing in the task belongs to this object: it may be gone when a slow disk answers at last.
    const auto promise = std::make_shared<QPromise<Answer>>();
    m_watcher.setFuture(promise->future());
    QThreadPool::globalInstance()->start([promise, options, fileName = m_fileName, preview = m_preview] {
        promise->start();
        promise->addResult(preview(fileName, options));
        promise->finish();
    });
}

void CsvPreviewLoader::finish()
{
    if (const auto next = std::exchange(m_next, std::nullopt)) {
        start(*next);
        return;
    }
    m_isBusy = false;
    Q_EMIT loaded(m_current, m_watcher.result());
}

} // namespace Workbench
