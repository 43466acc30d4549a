#pragma once

// Internal to the kit; not installed.

#include "whole_file_p.h"

#include <VeskTimelineKit/document.h>
#include <VeskTimelineKit/write_options.h>

#include <QElapsedTimer>

#include <algorithm>

namespace VeskTimeline::Kit {

/// Thrown inside a writer when the user has it stopped.
struct WriteCancelled
{
};

/// Counts the items that a writer is done with and passes the share of them on, seldom enough to cost nothing.
class WriteProgress
{
public:
    /// @param options must outlive this object
    WriteProgress(const WriteOptions& options, const Document& document)
        : m_options(options), m_total(std::max(document.itemCount(), 1))
    {
        m_sinceReport.start();
    }

    /// To be called once an item. @throws WriteCancelled
    void itemIsDone()
    {
        constexpr int firstReport = 1;
        ++m_done;
        if (!m_options.progress || (m_done != firstReport && m_sinceReport.elapsed() < interval))
            return;
        m_sinceReport.restart();
        if (!m_options.progress(static_cast<double>(m_done) / m_total))
            throw WriteCancelled();
    }

private:
    static constexpr qint64 interval = 20; // milliseconds

    const WriteOptions& m_options;
    QElapsedTimer m_sinceReport;
    int m_total;
    int m_done = 0;
};

/// Has a file written, wholly or not at all.
/// @param write (QIODevice&) to the QStringList of warnings; may throw WriteCancelled, or a QString, the reason why not
template <typename Write>
WriteResult writeFile(const QString& fileName, Write write)
{
    WholeFile file(fileName);
    if (!file.open(QIODevice::WriteOnly))
        return FileError{fileName, 0, file.errorString()};
    try {
        const QStringList warnings = write(file);
        if (file.commitWhole())
            return warnings;
        return FileError{fileName, 0, file.errorString()};
    } catch (const QString& reason) {
        return FileError{fileName, 0, reason};
    } catch (const WriteCancelled&) {
        return FileError{fileName, 0, writingCancelledReason()};
    }
}

} // namespace VeskTimeline::Kit
