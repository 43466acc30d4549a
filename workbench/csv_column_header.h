#pragma once

#include "csv_column_choices.h"

#include <QHeaderView>
#include <QList>

class QComboBox;

namespace Workbench {

/// The header of a table of fields, with a box under each column's name that says what the column is used as.
class CsvColumnHeader : public QHeaderView
{
    Q_OBJECT

public:
    /// @param firstField section of the first column that gets a box
    explicit CsvColumnHeader(int firstField, QWidget* parent = nullptr);

    /// @param header the columns' names; of several columns of a name only the first gets a box
    /// @param effective which columns make up each field, said or detected
    void setColumns(const QStringList& header, const CsvColumnChoices& choices,
                    const CsvColumnChoices::Columns& effective);
    /// From the left; null where a column has none.
    const QList<QComboBox*>& boxes() const { return m_boxes; }

    QSize sizeHint() const override;

Q_SIGNALS:
    /// The user chose. @param use nothing: what is detected
    void useChosen(const QString& column, std::optional<Workbench::CsvColumnUse> use);

protected:
    void updateGeometries() override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void makeBoxes(const QStringList& header);
    QComboBox* makeBox(int column, const QString& name);
    void placeBoxes();
    int boxHeight() const;

    int m_firstField;
    QStringList m_header;
    QList<QComboBox*> m_boxes;
};

} // namespace Workbench
