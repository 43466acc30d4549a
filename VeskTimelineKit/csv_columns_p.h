#pragma once

// Internal to the kit; not installed.

#include <QString>
#include <QStringList>

#include <array>
#include <optional>

namespace VeskTimeline::Kit {

/// Which field of a record is what, by the header line.
class CsvColumns
{
public:
    enum Name { Track, Label, Start, End, Duration, Color, Editable, NameCount };

    /// Takes the header line's fields; letter case does not matter.
    /// @return why the header is refused; null when it is not
    QString setHeader(const QStringList& fields);

    int count() const { return m_count; }
    /// The header's names that mean nothing here.
    const QStringList& unknownNames() const { return m_unknownNames; }
    /// A record's field; nothing when the header has no such column or the record is too short for it.
    std::optional<QString> field(const QStringList& record, Name name) const;

    static QString text(Name name);

private:
    bool has(Name name) const { return m_positions[name].has_value(); }
    QString missingColumns() const;

    std::array<std::optional<qsizetype>, NameCount> m_positions;
    QStringList m_unknownNames;
    int m_count = 0;
};

} // namespace VeskTimeline::Kit
