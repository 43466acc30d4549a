#pragma once

#include "selection_summary.h"

#include <QWidget>

#include <functional>

class QLabel;
class QAbstractItemDelegate;
class QPushButton;
class QTableWidget;

namespace Workbench {

/// The attributes of the selected items, by name, to be changed, renamed, added and removed.
class AttributeTable : public QWidget
{
    Q_OBJECT

public:
    using Values = QMap<QString, Common<QString>>;
    /// @return why it is refused; empty when it was done
    struct Edits
    {
        std::function<QString(const QString& name, const QString& value)> set;
        std::function<QString(const QString& name, const QString& newName)> rename;
        std::function<QString(const QString& name)> remove;
    };

    explicit AttributeTable(Edits edits, QWidget* parent = nullptr);

    void showValues(const Values& values);
    /// Also forgets a new attribute that has no name yet, and what was refused.
    void showOther(const Values& values);
    /// Takes what is being typed, and drops it when it is refused.
    void leave();
    QTableWidget* table() const { return m_table; }
    QString error() const;

private:
    void fill();
    void commitCell(int row, int column, const QString& text);
    QString renameTo(const QString& name, const QString& newName);
    void addAttribute();
    void removeAttribute();
    void report(const QString& refusal);
    void updateButtons();

    Edits m_edits;
    Values m_values;
    QTableWidget* m_table;
    QAbstractItemDelegate* m_delegate;
    QPushButton* m_remove;
    QLabel* m_error;
    bool m_hasNewRow = false;
};

} // namespace Workbench
