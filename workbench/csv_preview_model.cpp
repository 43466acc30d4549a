#include "csv_preview_model.h"

#include "icons.h"

#include <VeskTimelineKit/time_text.h>

#include <QApplication>
#include <QPalette>

#include <algorithm>

namespace Workbench {

using namespace VeskTimeline::Kit;

namespace {

// More columns than anybody looks through; each costs a cell a row.
constexpr qsizetype mostFields = 200;

// The ground of a table with a touch of amber, on light and on dark ground.
QColor refusedColor()
{
    const QColor base = QApplication::palette().color(QPalette::Base);
    const QColor amber(0xd0, 0x80, 0x00);
    const auto mixed = [](int ground, int ink) { return (ground * 3 + ink) / 4; };
    return {mixed(base.red(), amber.red()), mixed(base.green(), amber.green()), mixed(base.blue(), amber.blue())};
}

// A tool tip would take a text that looks like markup for markup.
QString plain(const QString& text)
{
    return QStringLiteral("<span>%1</span>").arg(text.toHtmlEscaped());
}

} // namespace

QString oneLine(const QString& text, qsizetype longest)
{
    QString line = text.left(longest);
    for (QChar& character : line) {
        if (character == u'\n')
            character = u'⏎';
        else if (character == u'\t')
            character = u'→';
        else if (character.category() == QChar::Other_Control)
            character = u'�';
    }
    return line.size() < text.size() ? line + u'…' : line;
}

void CsvPreviewModel::setPreview(const CsvPreview& preview)
{
    beginResetModel();
    m_preview = preview;
    qsizetype count = preview.header.size();
    for (const CsvPreviewRecord& record : preview.records)
        count = std::max(count, record.fields.size());
    m_fieldCount = static_cast<int>(std::min(count, mostFields));
    m_hiddenCount = static_cast<int>(count) - m_fieldCount;
    endResetModel();
}

bool CsvPreviewModel::isRefused(int row) const
{
    const CsvPreviewRecord& record = m_preview.records.at(row);
    // When the whole file cannot be read, nothing is wrong with the single record.
    return !record.problem.isNull() || (!record.item && m_preview.problem.isNull());
}

int CsvPreviewModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_preview.records.size());
}

int CsvPreviewModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : ReadColumnCount + m_fieldCount;
}

QVariant CsvPreviewModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid())
        return {};
    const bool isFirst = index.column() == Track;
    switch (role) {
    case Qt::DisplayRole:
        return cellText(index.row(), index.column());
    case Qt::ToolTipRole:
        return plain(toolTip(index.row(), index.column()));
    case Qt::DecorationRole:
        return isFirst && isRefused(index.row()) ? QVariant(icon(QStringLiteral("warning"))) : QVariant();
    case Qt::BackgroundRole:
        return isRefused(index.row()) ? QVariant(refusedColor()) : QVariant();
    default:
        return {};
    }
}

QString CsvPreviewModel::readText(const CsvPreviewRecord& record, int column) const
{
    if (!record.item)
        return {};
    switch (column) {
    case Track:
        return oneLine(record.trackPath.join(QStringLiteral(" › ")));
    case Label:
        return oneLine(record.item->label);
    case Start:
        return formatTime(record.item->start);
    default:
        return record.item->duration < 0 ? tr("open-ended") : formatTime(record.item->end());
    }
}

QString CsvPreviewModel::cellText(int row, int column) const
{
    const CsvPreviewRecord& record = m_preview.records.at(row);
    if (column >= ReadColumnCount)
        return oneLine(record.fields.value(column - ReadColumnCount));
    if (!isRefused(row))
        return readText(record, column);
    if (column != Track)
        return {};
    return record.problem.isEmpty() ? tr("Skipped") : oneLine(record.problem);
}

QString CsvPreviewModel::toolTip(int row, int column) const
{
    constexpr qsizetype longest = 1000;
    const CsvPreviewRecord& record = m_preview.records.at(row);
    QString text = cellText(row, column);
    if (column >= ReadColumnCount)
        text = oneLine(record.fields.value(column - ReadColumnCount), longest);
    if (!isRefused(row))
        return text;
    const QString problem = record.problem.isEmpty() ? tr("nothing is read from it") : record.problem;
    return tr("Line %1 is not imported: %2").arg(record.line).arg(oneLine(problem, longest));
}

QVariant CsvPreviewModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation == Qt::Vertical)
        return lineData(section, role);
    if (section >= ReadColumnCount) {
        const QString name = m_preview.header.value(section - ReadColumnCount);
        if (role == Qt::ToolTipRole)
            return plain(oneLine(name, 1000));
        return role == Qt::DisplayRole ? oneLine(name, 60) : QVariant();
    }
    if (role != Qt::DisplayRole)
        return {};
    const QStringList names{tr("Track"), tr("Label"), tr("Start (UTC)"), tr("End (UTC)")};
    return names.value(section);
}

QVariant CsvPreviewModel::lineData(int row, int role) const
{
    if (role == Qt::DisplayRole)
        return m_preview.records.at(row).line;
    if (role == Qt::DecorationRole && isRefused(row))
        return icon(QStringLiteral("warning"));
    return role == Qt::ToolTipRole ? plain(toolTip(row, Track)) : QVariant();
}

} // namespace Workbench
