#pragma once

// Internal to the kit; not installed.

#include "csv_names_p.h"

#include <VeskTimelineKit/csv_options.h>

#include <QList>
#include <QMap>
#include <QSet>
#include <QString>
#include <QStringList>

#include <vector>

namespace VeskTimeline::Kit {

/// What the values of a column look like.
enum class CsvContent { Empty, Number, Date, DateTime, TimeOfDay, Text };

/// The beginning of a file: its header line and some records behind it.
struct CsvSample
{
    QStringList header;
    int headerLine = 0;
    std::vector<QStringList> records;

    /// The values of a column that are not empty.
    QStringList values(qsizetype column) const;
    CsvContent content(qsizetype column) const;
};

/// Which columns make up which field.
class CsvColumns
{
public:
    /// A column that is no field.
    struct Attribute
    {
        qsizetype column = 0;
        QString name;
    };

    /// Finds the columns: those that are said, those with names of the kit's own, those with names that others use, and
    /// last those with content that fits.
    /// @return why the file cannot be read; null when it can
    QString find(const CsvSample& sample, const QMap<CsvField, QStringList>& said);

    bool has(CsvField field) const { return m_columns.contains(field); }
    /// Whether it is said that there is no column for it.
    bool isDenied(CsvField field) const { return m_denied.contains(field); }
    const QList<qsizetype>& columns(CsvField field) const;
    const std::vector<Attribute>& attributes() const { return m_attributes; }
    /// Whether all fields have the kit's own names. Such a file is taken at its word.
    bool isOwnWay() const { return m_isOwnWay; }
    /// Whether the one column of tracks holds paths.
    bool hasTrackPaths() const { return m_hasTrackPaths; }
    /// The names of the columns of each field that has any; none for a field of which it is said that it has none.
    QMap<CsvField, QStringList> names() const;
    /// What was found out and not said, for the user.
    const QStringList& guesses() const { return m_guesses; }

private:
    QString takeSaid(const QMap<CsvField, QStringList>& said);
    QString takeOwnNames(const QMap<CsvField, QStringList>& said);
    void takeSynonyms();
    void takeSynonym(CsvField field);
    void takeTimesByContent();
    void takeLabelByContent();
    void completeMoment(CsvField field);
    QString missing() const;
    void nameAttributes();
    void checkOwnWay();
    void noteGuesses(const QMap<CsvField, QStringList>& said);

    const CsvName& name(qsizetype column) const { return m_names[static_cast<std::size_t>(column)]; }
    CsvContent content(qsizetype column) const { return m_contents[static_cast<std::size_t>(column)]; }
    bool isSettled(CsvField field) const { return has(field) || isDenied(field); }
    bool hasLength() const;
    bool isUsed(qsizetype column) const;
    bool isFree(qsizetype column) const;
    qsizetype findDateFor(qsizetype column) const;
    qsizetype findTimeFor(CsvField field, qsizetype column) const;
    bool isOwnName(qsizetype column, CsvField field) const;

    CsvSample m_sample;
    // Of each column.
    std::vector<CsvName> m_names;
    std::vector<CsvContent> m_contents;
    QMap<CsvField, QList<qsizetype>> m_columns;
    QSet<CsvField> m_denied;
    std::vector<Attribute> m_attributes;
    QStringList m_guesses;
    bool m_isOwnWay = false;
    bool m_hasTrackPaths = false;
};

} // namespace VeskTimeline::Kit
