#include "attribute_table.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QStyledItemDelegate>
#include <QTableWidget>
#include <QVBoxLayout>

#include <utility>

namespace Workbench {

namespace {

constexpr int mixedRole = Qt::UserRole;
enum Column { NameColumn, ValueColumn, ColumnCount };

/// Hands what was typed on instead of writing it to the table, which shows what the items say.
class AttributeDelegate : public QStyledItemDelegate
{
public:
    using Commit = std::function<void(int row, int column, const QString& text)>;
    AttributeDelegate(Commit commit, QObject* parent) : QStyledItemDelegate(parent), m_commit(std::move(commit)) {}

    void setEditorData(QWidget* editor, const QModelIndex& index) const override
    {
        auto* const line = qobject_cast<QLineEdit*>(editor);
        if (!line)
            return;
        const bool isMixed = index.data(mixedRole).toBool();
        line->setPlaceholderText(isMixed ? index.data().toString() : QString());
        line->setText(isMixed ? QString() : index.data().toString());
        line->selectAll();
    }
    void setModelData(QWidget* editor, QAbstractItemModel* /*model*/, const QModelIndex& index) const override
    {
        const auto* const line = qobject_cast<QLineEdit*>(editor);
        if (line && line->isModified())
            m_commit(index.row(), index.column(), line->text());
    }

private:
    Commit m_commit;
};

} // namespace

AttributeTable::AttributeTable(Edits edits, QWidget* parent)
    : QWidget(parent),
      m_edits(std::move(edits)),
      m_table(new QTableWidget(0, ColumnCount, this)),
      m_delegate(new AttributeDelegate(
          [this](int row, int column, const QString& text) { commitCell(row, column, text); }, m_table)),
      m_remove(new QPushButton(tr("Remove"), this)),
      m_error(new QLabel(this))
{
    m_table->setObjectName(QStringLiteral("attributes"));
    m_table->setHorizontalHeaderLabels({tr("Attribute"), tr("Value")});
    m_table->horizontalHeader()->setSectionResizeMode(NameColumn, QHeaderView::Interactive);
    m_table->horizontalHeader()->setStretchLastSection(true);
    m_table->verticalHeader()->hide();
    m_table->setSelectionMode(QAbstractItemView::SingleSelection);
    m_table->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed |
                             QAbstractItemView::AnyKeyPressed | QAbstractItemView::SelectedClicked);
    m_table->setTabKeyNavigation(false);
    m_table->setItemDelegate(m_delegate);
    auto* const add = new QPushButton(tr("Add"), this);
    add->setObjectName(QStringLiteral("addAttribute"));
    m_remove->setObjectName(QStringLiteral("removeAttribute"));
    m_error->setObjectName(QStringLiteral("attributesError"));
    m_error->setWordWrap(true);
    m_error->hide();

    auto* const buttons = new QHBoxLayout;
    buttons->addWidget(add);
    buttons->addWidget(m_remove);
    buttons->addStretch();
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_table);
    layout->addWidget(m_error);
    layout->addLayout(buttons);
    connect(add, &QPushButton::clicked, this, &AttributeTable::addAttribute);
    connect(m_remove, &QPushButton::clicked, this, &AttributeTable::removeAttribute);
    connect(m_table, &QTableWidget::currentCellChanged, this, &AttributeTable::updateButtons);
    updateButtons();
}

QString AttributeTable::error() const
{
    return m_error->isHidden() ? QString() : m_error->text();
}

void AttributeTable::showValues(const Values& values)
{
    if (m_values == values)
        return;
    m_values = values;
    m_hasNewRow = false;
    fill();
}

void AttributeTable::showOther(const Values& values)
{
    const bool hadNewRow = std::exchange(m_hasNewRow, false);
    m_error->hide();
    if (m_values == values && !hadNewRow)
        return;
    m_values = values;
    fill();
}

void AttributeTable::fill()
{
    const int row = m_table->currentRow();
    const int column = m_table->currentColumn();
    m_table->setRowCount(0);
    m_table->setRowCount(static_cast<int>(m_values.size()) + (m_hasNewRow ? 1 : 0));
    int next = 0;
    for (auto entry = m_values.begin(); entry != m_values.end(); ++entry, ++next) {
        auto* const name = new QTableWidgetItem(entry.key());
        name->setToolTip(entry.key());
        auto* const value = new QTableWidgetItem(entry->isMixed() ? tr("(mixed)") : entry->value());
        value->setData(mixedRole, entry->isMixed());
        if (entry->isMixed()) {
            value->setForeground(palette().placeholderText());
            QFont font = value->font();
            font.setItalic(true);
            value->setFont(font);
        } else {
            value->setToolTip(entry->value());
        }
        m_table->setItem(next, NameColumn, name);
        m_table->setItem(next, ValueColumn, value);
    }
    if (row < m_table->rowCount())
        m_table->setCurrentCell(row, column);
    updateButtons();
}

void AttributeTable::commitCell(int row, int column, const QString& text)
{
    if (row >= m_values.size()) {
        report(text.trimmed().isEmpty() ? QString() : renameTo(QString(), text.trimmed()));
        return;
    }
    const QString name = m_values.keys().at(row);
    report(column == ValueColumn ? m_edits.set(name, text) : renameTo(name, text.trimmed()));
}

// An empty name stands for the attribute that is new.
QString AttributeTable::renameTo(const QString& name, const QString& newName)
{
    if (newName == name)
        return {};
    if (newName.isEmpty())
        return tr("An attribute needs a name.");
    if (m_values.contains(newName))
        return tr("There is an attribute “%1” already.").arg(newName);
    return name.isEmpty() ? m_edits.set(newName, QString()) : m_edits.rename(name, newName);
}

void AttributeTable::leave()
{
    for (auto* const editor : m_table->viewport()->findChildren<QLineEdit*>(QString(), Qt::FindDirectChildrenOnly)) {
        Q_EMIT m_delegate->commitData(editor);
        Q_EMIT m_delegate->closeEditor(editor);
    }
    m_error->hide();
}

void AttributeTable::addAttribute()
{
    m_error->hide();
    if (!m_hasNewRow) {
        m_hasNewRow = true;
        fill();
    }
    const int row = m_table->rowCount() - 1;
    m_table->setItem(row, NameColumn, new QTableWidgetItem);
    auto* const value = new QTableWidgetItem;
    value->setFlags(value->flags() & ~Qt::ItemIsEditable);
    m_table->setItem(row, ValueColumn, value);
    m_table->setCurrentCell(row, NameColumn);
    m_table->editItem(m_table->item(row, NameColumn));
}

void AttributeTable::removeAttribute()
{
    const int row = m_table->currentRow();
    if (row < 0)
        return;
    if (row < m_values.size()) {
        report(m_edits.remove(m_values.keys().at(row)));
        return;
    }
    m_hasNewRow = false;
    fill();
}

void AttributeTable::report(const QString& refusal)
{
    m_error->setText(refusal);
    m_error->setVisible(!refusal.isEmpty());
}

void AttributeTable::updateButtons()
{
    m_remove->setEnabled(m_table->currentRow() >= 0);
}

} // namespace Workbench
