#include "csv_column_header.h"

#include "csv_preview_model.h"

#include <QComboBox>
#include <QEvent>
#include <QTableView>

#include <algorithm>
#include <array>

namespace Workbench {

using namespace VeskTimeline::Kit;

namespace {

constexpr int margin = 2;

// The entries after "Detected", in order; the last is an attribute.
constexpr std::array<std::optional<CsvField>, 9> uses{CsvField::Track,    CsvField::Label,       CsvField::Start,
                                                      CsvField::End,      CsvField::Duration,    CsvField::Color,
                                                      CsvField::Editable, CsvField::Description, std::nullopt};

QString nameOf(std::optional<CsvField> field)
{
    if (!field)
        return CsvColumnHeader::tr("Attribute");
    switch (*field) {
    case CsvField::Track:
        return CsvColumnHeader::tr("Track");
    case CsvField::Label:
        return CsvColumnHeader::tr("Label");
    case CsvField::Start:
        return CsvColumnHeader::tr("Start");
    case CsvField::End:
        return CsvColumnHeader::tr("End");
    case CsvField::Duration:
        return CsvColumnHeader::tr("Duration");
    case CsvField::Color:
        return CsvColumnHeader::tr("Colour");
    case CsvField::Editable:
        return CsvColumnHeader::tr("Editable");
    case CsvField::Description:
        return CsvColumnHeader::tr("Description");
    }
    return {};
}

std::optional<CsvField> fieldOf(const CsvColumnChoices::Columns& columns, const QString& name)
{
    for (auto names = columns.begin(); names != columns.end(); ++names) {
        if (names->contains(name))
            return names.key();
    }
    return {};
}

// "Track", or "Track 2 of 3" where there are several.
QString textOf(const CsvColumnChoices::Columns& columns, const QString& name)
{
    const auto field = fieldOf(columns, name);
    const QStringList parts = field ? columns.value(*field) : QStringList();
    if (parts.size() < 2)
        return nameOf(field);
    return CsvColumnHeader::tr("%1 %2 of %3").arg(nameOf(field)).arg(parts.indexOf(name) + 1).arg(parts.size());
}

int indexOf(const std::optional<CsvColumnUse>& use)
{
    if (!use)
        return 0;
    return 1 + static_cast<int>(std::find(uses.begin(), uses.end(), use->field) - uses.begin());
}

std::optional<CsvColumnUse> useAt(int index)
{
    if (index <= 0)
        return {};
    return CsvColumnUse{uses.at(static_cast<std::size_t>(index - 1))};
}

} // namespace

CsvColumnHeader::CsvColumnHeader(int firstField, QWidget* parent)
    : QHeaderView(Qt::Horizontal, parent), m_firstField(firstField)
{
    setSectionsClickable(false);
    setDefaultAlignment(Qt::AlignLeft | Qt::AlignTop);
    connect(this, &QHeaderView::sectionResized, this, &CsvColumnHeader::placeBoxes);
}

void CsvColumnHeader::setColumns(const QStringList& header, const CsvColumnChoices& choices,
                                 const CsvColumnChoices::Columns& effective)
{
    // Boxes that are in use stay: the one that was just changed has the focus.
    if (header != m_header || m_boxes.size() != std::min<qsizetype>(header.size(), count() - m_firstField))
        makeBoxes(header);
    for (qsizetype column = 0; column < m_boxes.size(); ++column) {
        QComboBox* const box = m_boxes.at(column);
        if (!box)
            continue;
        const QString& name = header.at(column);
        const auto said = choices.said(name);
        box->setItemText(0, said ? tr("Detect") : tr("Detected: %1").arg(textOf(effective, name)));
        for (int i = 1; i < box->count(); ++i)
            box->setItemText(i, said && i == indexOf(said) ? textOf(effective, name) : nameOf(useAt(i)->field));
        box->setCurrentIndex(indexOf(said));
    }
    placeBoxes();
}

void CsvColumnHeader::makeBoxes(const QStringList& header)
{
    qDeleteAll(m_boxes);
    m_boxes.clear();
    m_header = header;
    const auto shown = std::min<qsizetype>(header.size(), count() - m_firstField);
    for (int column = 0; column < shown; ++column) {
        const QString& name = header.at(column);
        m_boxes.append(header.indexOf(name) < column ? nullptr : makeBox(column, name));
    }
}

QComboBox* CsvColumnHeader::makeBox(int column, const QString& name)
{
    auto* const box = new QComboBox(viewport());
    box->setObjectName(QStringLiteral("columnUse%1").arg(column));
    box->setAccessibleName(tr("Use of column %1").arg(oneLine(name, 60)));
    box->addItem(tr("Detect"));
    for (const auto& field : uses)
        box->addItem(nameOf(field));
    box->setToolTip(tr("What the column is used as. Several columns of tracks are the levels of a path from the top; "
                       "several of another field are joined, as a date and a time of day."));
    box->setMinimumContentsLength(8);
    box->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    box->installEventFilter(this);
    connect(box, &QComboBox::activated, this, [this, name](int index) { Q_EMIT useChosen(name, useAt(index)); });
    box->show();
    return box;
}

int CsvColumnHeader::boxHeight() const
{
    const auto box = std::find_if(m_boxes.begin(), m_boxes.end(), [](const QComboBox* one) { return one; });
    return box == m_boxes.end() ? fontMetrics().height() + 8 : (*box)->sizeHint().height();
}

QSize CsvColumnHeader::sizeHint() const
{
    return {QHeaderView::sizeHint().width(), fontMetrics().height() + 8 + boxHeight() + 2 * margin};
}

void CsvColumnHeader::updateGeometries()
{
    QHeaderView::updateGeometries();
    placeBoxes();
}

void CsvColumnHeader::placeBoxes()
{
    for (int column = 0; column < m_boxes.size(); ++column) {
        const int section = column + m_firstField;
        if (m_boxes.at(column) && section < count())
            m_boxes.at(column)->setGeometry(sectionViewportPosition(section) + margin,
                                            viewport()->height() - boxHeight() - margin,
                                            sectionSize(section) - 2 * margin, boxHeight());
    }
}

bool CsvColumnHeader::eventFilter(QObject* watched, QEvent* event)
{
    // The wheel over a box scrolls the table; it must not change what nobody looked at.
    if (event->type() == QEvent::Wheel)
        return true;
    if (event->type() == QEvent::FocusIn) {
        auto* const table = qobject_cast<QTableView*>(parentWidget());
        const auto column = static_cast<int>(m_boxes.indexOf(static_cast<QComboBox*>(watched)));
        if (table && column >= 0)
            table->scrollTo(table->model()->index(0, column + m_firstField));
    }
    return QHeaderView::eventFilter(watched, event);
}

} // namespace Workbench
