#include "csv_preview_tables.h"

#include "csv_column_header.h"
#include "csv_preview_model.h"

#include <QLabel>
#include <QScrollBar>
#include <QTableView>
#include <QVBoxLayout>

namespace Workbench {

CsvPreviewTables::CsvPreviewTables(CsvPreviewModel* model, QWidget* parent)
    : QSplitter(Qt::Horizontal, parent), m_model(model)
{
    m_fields = addTable(tr("In the &file:"), "csvFields");
    m_read = addTable(tr("&Read as:"), "csvRead");
    m_header = new CsvColumnHeader(CsvPreviewModel::ReadColumnCount, m_fields);
    m_header->setObjectName(QStringLiteral("csvColumnHeader"));
    m_fields->setHorizontalHeader(m_header);
    m_fields->setModel(model);
    m_read->setModel(model);
    m_read->setSelectionModel(m_fields->selectionModel());
    m_read->verticalHeader()->hide();
    setChildrenCollapsible(false);
    setStretchFactor(0, 1);
    setStretchFactor(1, 0);
    setSizes({500, fontMetrics().averageCharWidth() * 75});

    connect(m_fields->verticalScrollBar(), &QScrollBar::valueChanged, m_read->verticalScrollBar(),
            &QScrollBar::setValue);
    connect(m_read->verticalScrollBar(), &QScrollBar::valueChanged, m_fields->verticalScrollBar(),
            &QScrollBar::setValue);
    connect(model, &QAbstractItemModel::modelReset, this, &CsvPreviewTables::arrange);
    arrange();
}

QTableView* CsvPreviewTables::addTable(const QString& title, const char* name)
{
    auto* const side = new QWidget(this);
    auto* const column = new QVBoxLayout(side);
    column->setContentsMargins(0, 0, 0, 0);
    auto* const label = new QLabel(title, side);
    auto* const table = new QTableView(side);
    table->setObjectName(QString::fromLatin1(name));
    table->setAccessibleName(QString(title).remove(u'&').remove(u':'));
    table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    table->setSelectionBehavior(QAbstractItemView::SelectRows);
    table->setTabKeyNavigation(false);
    table->setWordWrap(false);
    table->setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    // The same at both sides, whether or not there is something to scroll to: their rows must stay level.
    table->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    table->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    table->verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 8);
    label->setBuddy(table);
    column->addWidget(label);
    column->addWidget(table);
    addWidget(side);
    return table;
}

void CsvPreviewTables::arrange()
{
    const int count = m_model->columnCount();
    for (int column = 0; column < count; ++column) {
        const bool isRead = column < CsvPreviewModel::ReadColumnCount;
        m_fields->setColumnHidden(column, isRead);
        m_read->setColumnHidden(column, !isRead);
    }
    m_read->clearSpans();
    for (int row = 0; row < m_model->rowCount(); ++row) {
        if (m_model->isRefused(row))
            m_read->setSpan(row, 0, 1, CsvPreviewModel::ReadColumnCount);
    }
    // Widths that the user set stay as long as the columns are the same.
    if (m_shownHeader == m_model->preview().header && count > CsvPreviewModel::ReadColumnCount)
        return;
    m_shownHeader = m_model->preview().header;
    const int unit = fontMetrics().averageCharWidth();
    for (int column = CsvPreviewModel::ReadColumnCount; column < count; ++column)
        m_fields->setColumnWidth(column, unit * 26);
    for (const int column : {CsvPreviewModel::Track, CsvPreviewModel::Label})
        m_read->setColumnWidth(column, unit * 16);
    for (const int column : {CsvPreviewModel::Start, CsvPreviewModel::End})
        m_read->setColumnWidth(column, unit * 25);
    levelHeaders();
}

void CsvPreviewTables::levelHeaders()
{
    m_read->horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignTop);
    m_read->horizontalHeader()->setFixedHeight(m_header->sizeHint().height());
    m_header->setFixedHeight(m_header->sizeHint().height());
}

} // namespace Workbench
