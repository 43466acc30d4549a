#pragma once

// Internal to the kit; not installed.

#include "csv_plan_p.h"
#include "csv_time_p.h"

#include <VeskTimelineKit/document.h>

#include <array>
#include <optional>

namespace VeskTimeline::Kit {

/// Makes items of records.
///
/// Operations that take a record apart throw the reason, a QString, when it is bad. A file in the kit's own way is
/// refused then; of others the record is left out.
class CsvItemReader
{
public:
    /// What a record says. Without an item it names a track that has none.
    struct Entry
    {
        QStringList path;
        std::optional<DocumentItem> item;
        QStringList remarks = {}; ///< about what was adapted, for the user
    };

    /// Thrown for a record that is left out whatever the file is.
    struct LeftOut
    {
        QString reason;
    };

    /// @param plan must outlive this object; @param defaultTrack of files that have no column for tracks
    CsvItemReader(const CsvPlan& plan, const QString& defaultTrack);

    /// Nothing for a record of empty fields. @throws QString, LeftOut
    std::optional<Entry> read(const QStringList& record);

    int cutTimes() const { return m_cutTimes; }
    const CsvTimeReader::Counts& timeCounts() const { return m_times.counts(); }

private:
    const QString* text(const QStringList& record, CsvField field);
    const QString& required(const QStringList& record, CsvField field);
    const QString& optional(const QStringList& record, CsvField field);
    const QList<qsizetype>& columns(CsvField field) const { return m_fields[static_cast<std::size_t>(field)].columns; }
    QStringList readPath(const QStringList& record);
    QStringList readOwnPath(const QString& text);
    CsvTime checked(const std::optional<CsvTime>& time, CsvField field, const QString& text);
    QString badTime(CsvField field, const QString& text) const;
    qint64 readDuration(const QStringList& record, qint64 start);
    void readColor(const QStringList& record, Entry& entry);
    void readEditable(const QStringList& record, Entry& entry);
    void readAttributes(const QStringList& record, DocumentItem& item) const;
    bool namesTrackOnly(const QStringList& record) const;

    /// What the plan says of a field, where it is at hand for each record.
    struct Field
    {
        QList<qsizetype> columns; ///< none: the file has not got it
        QString joined;           ///< of the last record, when there are several
    };
    static constexpr std::size_t fieldCount = static_cast<std::size_t>(CsvField::Description) + 1;

    const CsvPlan& m_plan;
    std::array<Field, fieldCount> m_fields;
    QString m_defaultTrack;
    CsvTimeReader m_times;
    // Of the record before: records of a track mostly stand together.
    QString m_lastPathText;
    QStringList m_lastPath;
    int m_cutTimes = 0;
};

/// The track of files that have no column for tracks: as the file is called, without its suffixes.
QString csvDefaultTrack(const QString& fileName);

} // namespace VeskTimeline::Kit
