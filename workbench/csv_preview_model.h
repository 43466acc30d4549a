#pragma once

#include <VeskTimelineKit/csv_preview.h>

#include <QAbstractTableModel>

namespace Workbench {

/// The records of a preview as rows: first what each is read as, then its fields as they stand in the file. A record
/// that cannot be read says so in all its cells, with an icon, a colour and a tool tip.
class CsvPreviewModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    /// The columns before the fields.
    enum Column { Track, Label, Start, End, ReadColumnCount };

    using QAbstractTableModel::QAbstractTableModel;

    void setPreview(const VeskTimeline::Kit::CsvPreview& preview);
    const VeskTimeline::Kit::CsvPreview& preview() const { return m_preview; }
    /// Of so many of the file's columns there is none here, as there are too many.
    int hiddenColumns() const { return m_hiddenCount; }
    /// Whether nothing comes of the record of that row.
    bool isRefused(int row) const;

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

private:
    QString readText(const VeskTimeline::Kit::CsvPreviewRecord& record, int column) const;
    QString cellText(int row, int column) const;
    QString toolTip(int row, int column) const;
    QVariant lineData(int row, int role) const;

    VeskTimeline::Kit::CsvPreview m_preview;
    int m_fieldCount = 0;
    int m_hiddenCount = 0;
};

/// A text from a file fit for one line of a cell: line breaks and other control characters visible as symbols, and no
/// longer than can be of use.
QString oneLine(const QString& text, qsizetype longest = 200);

} // namespace Workbench
