#pragma once

#include <VeskTimelineKit/csv_options.h>

#include <QSet>
#include <QStringList>

#include <optional>

namespace Workbench {

/// What a column is used as: a field of an item, or, without one, an attribute.
struct CsvColumnUse
{
    std::optional<VeskTimeline::Kit::CsvField> field;

    friend bool operator==(const CsvColumnUse& left, const CsvColumnUse& right) { return left.field == right.field; }
    friend bool operator!=(const CsvColumnUse& left, const CsvColumnUse& right) { return !(left == right); }
};

/// What the user says that the columns of a file are, and what is detected where nothing is said.
///
/// A field that is said of any column consists of the columns it is said of and no others. A detected field loses the
/// columns that are said to be attributes.
class CsvColumnChoices
{
public:
    using Columns = QMap<VeskTimeline::Kit::CsvField, QStringList>;

    /// Begins anew with what is said already.
    void reset(const Columns& said);
    /// Says what a column is; nothing: what is detected.
    void choose(const QString& column, std::optional<CsvColumnUse> use);
    /// Takes the answer to a request.
    /// @param asked the columns() of the request; what is not among them was detected
    void setPreview(const QStringList& header, const Columns& asked, const Columns& answered);

    /// What to ask for. Columns that the header does not have are left out; all are in before there is a header.
    Columns columns() const;
    /// What is said of a column; nothing when nothing is.
    std::optional<CsvColumnUse> said(const QString& column) const;

private:
    void takeOut(const QString& column);
    bool isKnown(const QString& column) const { return m_header.isEmpty() || m_header.contains(column); }

    QStringList m_header;
    Columns m_said;
    QSet<QString> m_attributes;
    Columns m_detected;
};

} // namespace Workbench
