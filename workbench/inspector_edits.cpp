#include "attribute_table.h"
#include "color_menu.h"
#include "duration_text.h"
#include "edit_field.h"
#include "inspector.h"
#include "track_box.h"

#include <VeskTimeline/timeline_view.h>
#include <VeskTimelineKit/standard_timeline_model.h>

#include <QCheckBox>
#include <QFormLayout>
#include <QLabel>
#include <QScrollArea>
#include <QTimer>
#include <QToolButton>
#include <QVBoxLayout>

namespace Workbench {

using namespace VeskTimeline;
using namespace VeskTimeline::Kit;

Inspector::Inspector(StandardTimelineModel* model, TimelineView* view, QWidget* parent)
    : QWidget(parent),
      m_model(model),
      m_view(view),
      m_refreshTimer(new QTimer(this)),
      m_dragTimer(new QTimer(this)),
      m_title(new QLabel(this)),
      m_form(new QWidget)
{
    setObjectName(QStringLiteral("inspectorContent"));
    m_title->setObjectName(QStringLiteral("inspectorTitle"));
    createFields();
    createAttributes();
    auto* const scroller = new QScrollArea(this);
    scroller->setFrameShape(QFrame::NoFrame);
    scroller->setWidgetResizable(true);
    scroller->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    auto* const content = new QWidget;
    auto* const contentLayout = new QVBoxLayout(content);
    contentLayout->addWidget(m_title);
    contentLayout->addWidget(m_form, 1);
    contentLayout->addStretch();
    scroller->setWidget(content);
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(scroller);
    follow();
    showSummary(true);
}

void Inspector::createFields()
{
    const auto setLabel = [this](const QString& text) {
        return edit([&] { m_model->setItemsLabel(m_summary.ids, text); });
    };
    const auto setDescription = [this](const QString& text) {
        return edit([&] { m_model->setItemsDescription(m_summary.ids, text); });
    };
    m_label = new EditField(QStringLiteral("label"), EditField::OneLine, setLabel);
    m_start = new EditField(QStringLiteral("start"), EditField::OneLine,
                            [this](const QString& text) { return setStart(text); });
    m_end =
        new EditField(QStringLiteral("end"), EditField::OneLine, [this](const QString& text) { return setEnd(text); });
    m_duration = new EditField(QStringLiteral("duration"), EditField::OneLine,
                               [this](const QString& text) { return setDuration(text); });
    m_description = new EditField(QStringLiteral("description"), EditField::SeveralLines, setDescription);
    createColorButton();
    m_track = new TrackBox;
    m_track->setObjectName(QStringLiteral("track"));
    m_track->setPlaceholderText(tr("(mixed)"));
    m_track->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    connect(m_track, &TrackBox::activated, this, &Inspector::setTrack);
    m_locked = new QCheckBox(tr("L&ocked"));
    m_locked->setObjectName(QStringLiteral("locked"));
    m_locked->setToolTip(tr("The mouse does not move or resize locked items"));
    connect(m_locked, &QCheckBox::clicked, this, &Inspector::setLocked);

    const QString timeHelp = tr("In UTC, or with a zone: 1972-12-07T05:33:00Z, 2015-03-02 08:15-10:00");
    m_start->setToolTip(timeHelp + u'\n' + tr("The duration stays."));
    m_end->setToolTip(timeHelp + u'\n' + tr("The start stays. “open” for none."));
    m_duration->setToolTip(tr("1d 2:03:04.5, 90s, 1h 30min, or “open” for no end"));

    auto* const form = new QFormLayout(m_form);
    form->setContentsMargins(0, 0, 0, 0);
    form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    form->addRow(tr("Label"), m_label);
    form->addRow(tr("Start"), m_start);
    form->addRow(tr("End"), m_end);
    form->addRow(tr("Duration"), m_duration);
    form->addRow(tr("Track"), m_track);
    form->addRow(tr("Colour"), m_color);
    form->addRow(QString(), m_locked);
    form->addRow(tr("Description"), m_description);
}

void Inspector::createColorButton()
{
    m_color = new QToolButton;
    m_color->setObjectName(QStringLiteral("color"));
    m_color->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    m_color->setPopupMode(QToolButton::InstantPopup);
    m_colorMenu = new ColorMenu(QString(), tr("Colour of the &track"), m_color);
    m_color->setMenu(m_colorMenu);
    connect(m_colorMenu, &ColorMenu::colorChosen, this,
            [this](const QColor& color) { edit([&] { m_model->setItemsColor(m_summary.ids, color); }); });
}

void Inspector::createAttributes()
{
    AttributeTable::Edits edits;
    edits.set = [this](const QString& name, const QString& value) {
        return edit([&] { m_model->setItemsAttribute(m_summary.ids, name, value); });
    };
    edits.rename = [this](const QString& name, const QString& newName) {
        return edit([&] { m_model->renameItemsAttribute(m_summary.ids, name, newName); });
    };
    edits.remove = [this](const QString& name) {
        return edit([&] { m_model->removeItemsAttribute(m_summary.ids, name); });
    };
    m_attributes = new AttributeTable(std::move(edits));
    static_cast<QFormLayout*>(m_form->layout())->addRow(m_attributes);
}

// Items may have gone since the last refresh.
template <typename Body>
QString Inspector::edit(const Body& body)
{
    if (!m_model)
        return {};
    m_summary.ids = knownItems(*m_model, m_summary.ids);
    if (m_summary.ids.isEmpty())
        return {};
    m_model->finishGesture();
    try {
        body();
    } catch (const QString& reason) {
        return reason;
    }
    scheduleRefresh();
    return {};
}

// `change` turns the times of one item into its new ones, or returns why it cannot.
template <typename Change>
QString Inspector::retime(const Change& change)
{
    QString refusal;
    const QString failure = edit([&] {
        QVector<ItemTimes> times;
        times.reserve(m_summary.ids.size());
        for (const int id : std::as_const(m_summary.ids)) {
            ItemTimes one = m_model->itemTimes(id);
            refusal = change(one);
            if (refusal.isEmpty() && !(isWithinCalendar(one.start) && isWithinCalendar(one.end())))
                refusal = tr("Items must lie in the years 1 to 9999.");
            if (!refusal.isEmpty())
                return;
            times.append(one);
        }
        const QList<int> selected = m_view->selectedItemIds();
        const QVector<int> ids = m_model->retimeItems(times);
        // A long item is under other ids now.
        if (knownItems(*m_model, selected).size() == selected.size())
            return;
        m_summary.ids = m_model->withoutFurtherPieces(ids);
        m_view->selectItems(ids, true);
    });
    return refusal.isEmpty() ? failure : refusal;
}

QString Inspector::setStart(const QString& text)
{
    const std::optional<qint64> start = parseUtcTime(text);
    if (!start)
        return tr("“%1” is no time such as 1972-12-07T05:33:00Z in the years 1 to 9999.").arg(text);
    return retime([&](ItemTimes& times) {
        times.start = *start;
        return QString();
    });
}

QString Inspector::setEnd(const QString& text)
{
    if (parseDuration(text) == DocumentItem::openEnded)
        return setDuration(text);
    const std::optional<qint64> end = parseUtcTime(text);
    if (!end)
        return tr("“%1” is no time such as 1972-12-07T05:33:00Z in the years 1 to 9999.").arg(text);
    return retime([&](ItemTimes& times) {
        times.duration = *end - times.start;
        return times.duration < 0 ? tr("The end is before the start.") : QString();
    });
}

QString Inspector::setDuration(const QString& text)
{
    const std::optional<qint64> duration = parseDuration(text);
    if (!duration)
        return tr("“%1” is no duration such as 1d 2:03:04.5, 90s or open.").arg(text);
    return retime([&](ItemTimes& times) {
        times.duration = *duration;
        return QString();
    });
}

void Inspector::setTrack(int row)
{
    const int trackId = m_track->itemData(row).toInt();
    edit([&] { m_model->moveItemsToTrack(m_summary.ids, trackId); });
}

void Inspector::setLocked()
{
    const bool isLocked = m_locked->checkState() != Qt::Unchecked;
    edit([&] { m_model->setItemsLocked(m_summary.ids, isLocked); });
}

} // namespace Workbench
