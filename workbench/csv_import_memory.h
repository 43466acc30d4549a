#pragma once

#include <VeskTimelineKit/csv_options.h>

#include <QStringList>

#include <optional>

class QSettings;

namespace Workbench {

/// What the user chose for files of comma-separated values, kept by the names in their header and the order of these;
/// letter case and blanks do not matter. The most recently used mostKept headers are kept. Entries that cannot be
/// understood, whoever wrote them, count as not there.
class CsvImportMemory
{
public:
    static constexpr int mostKept = 100;

    struct Entry
    {
        VeskTimeline::Kit::CsvOptions options;
        bool isSilent = false; ///< apply without asking
    };

    /// @param settings outlives this; everything is in its group "csvImports"
    explicit CsvImportMemory(QSettings& settings) : m_settings(&settings) {}

    /// Nothing when no file with such a header was imported before. The options name the columns as `header` does.
    std::optional<Entry> find(const QStringList& header) const;
    /// Keeps the entry as the most recently used, and forgets the least recently used ones that are too many.
    void remember(const QStringList& header, const Entry& entry);
    /// Makes the header's entry the most recently used; nothing happens without one.
    void touch(const QStringList& header);
    void forget(const QStringList& header);
    void forgetAll();
    int count() const;

private:
    void dropOldest();

    QSettings* m_settings;
};

} // namespace Workbench
