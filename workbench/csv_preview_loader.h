#pragma once

#include <VeskTimelineKit/csv_preview.h>

#include <QFutureWatcher>
#include <QObject>

#include <functional>
#include <memory>
#include <optional>

namespace Workbench {

/// Reads the beginning of a file as it would be imported; may be called on any thread.
using CsvPreviewFunction = std::function<VeskTimeline::Kit::Result<VeskTimeline::Kit::CsvPreview>(
    const QString& fileName, const VeskTimeline::Kit::CsvOptions& options)>;

/// The kit's.
CsvPreviewFunction defaultCsvPreview();

/// Makes previews of one file on a thread of its own, so that a slow disk does not hold up the window. One at a time:
/// of what is asked for meanwhile only the newest is read, and of what comes only the answer to the newest is told.
class CsvPreviewLoader : public QObject
{
    Q_OBJECT

public:
    using Answer = VeskTimeline::Kit::Result<VeskTimeline::Kit::CsvPreview>;

    CsvPreviewLoader(const QString& fileName, CsvPreviewFunction preview, QObject* parent = nullptr);

    void request(const VeskTimeline::Kit::CsvOptions& options);
    bool isBusy() const { return m_isBusy; }

Q_SIGNALS:
    /// @param options of the request
    void loaded(const VeskTimeline::Kit::CsvOptions& options, const Workbench::CsvPreviewLoader::Answer& answer);

private:
    void start(const VeskTimeline::Kit::CsvOptions& options);
    void finish();

    QString m_fileName;
    CsvPreviewFunction m_preview;
    QFutureWatcher<Answer> m_watcher;
    VeskTimeline::Kit::CsvOptions m_current;
    std::optional<VeskTimeline::Kit::CsvOptions> m_next;
    bool m_isBusy = false;
};

} // namespace Workbench
