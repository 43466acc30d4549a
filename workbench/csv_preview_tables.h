#pragma once

#include <QSplitter>

class QTableView;

namespace Workbench {

class CsvColumnHeader;
class CsvPreviewModel;

/// Two tables of the same records side by side: the fields as they stand in the file, and what they are read as. They
/// scroll and select together.
class CsvPreviewTables : public QSplitter
{
    Q_OBJECT

public:
    explicit CsvPreviewTables(CsvPreviewModel* model, QWidget* parent = nullptr);

    CsvColumnHeader* columnHeader() const { return m_header; }
    QTableView* fields() const { return m_fields; }
    QTableView* read() const { return m_read; }

private:
    QTableView* addTable(const QString& title, const char* name);
    void arrange();
    void levelHeaders();

    CsvPreviewModel* m_model;
    QTableView* m_fields = nullptr;
    QTableView* m_read = nullptr;
    CsvColumnHeader* m_header = nullptr;
    QStringList m_shownHeader;
};

} // namespace Workbench
