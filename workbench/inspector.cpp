#include "inspector.h"

#include "attribute_table.h"
#include "color_menu.h"
#include "duration_text.h"
#include "edit_field.h"
#include "track_box.h"

#include <VeskTimeline/timeline_view.h>
#include <VeskTimeline/timeline_view_drag_handler.h>
#include <VeskTimelineKit/standard_timeline_model.h>
#include <VeskTimelineKit/time_text.h>

#include <QCheckBox>
#include <QEvent>
#include <QLabel>
#include <QTimer>
#include <QToolButton>

namespace Workbench {

using namespace VeskTimeline;
using namespace VeskTimeline::Kit;

Inspector::~Inspector()
{
    // Fields commit what is in them when they lose the focus, which is also what happens as they go.
    m_model.clear();
    delete m_form;
}

void Inspector::follow()
{
    m_refreshTimer->setSingleShot(true);
    m_dragTimer->setSingleShot(true);
    connect(m_refreshTimer, &QTimer::timeout, this, &Inspector::refresh);
    connect(m_dragTimer, &QTimer::timeout, this, &Inspector::followDrag);
    connect(m_view, &TimelineView::selectedItemsChanged, this, &Inspector::scheduleRefresh);
    connect(m_model, &StandardTimelineModel::itemsChanged, this, &Inspector::scheduleRefresh);
    connect(m_model, &StandardTimelineModel::itemsRemoved, this, &Inspector::scheduleRefresh);
    connect(m_model, &StandardTimelineModel::itemsAdded, this, &Inspector::scheduleRefresh);
    connect(m_model, &QAbstractItemModel::dataChanged, this, &Inspector::scheduleTracks);
    connect(m_model, &QAbstractItemModel::rowsInserted, this, &Inspector::scheduleTracks);
    connect(m_model, &QAbstractItemModel::rowsRemoved, this, &Inspector::scheduleTracks);
    connect(m_model, &QAbstractItemModel::rowsMoved, this, &Inspector::scheduleTracks);
    connect(m_model, &QAbstractItemModel::modelReset, this, &Inspector::scheduleTracks);
    m_view->viewport()->installEventFilter(this);
}

// The mouse and single edits of many items come in floods; what they lead to is shown once they have passed.
void Inspector::scheduleRefresh()
{
    if (!m_refreshTimer->isActive())
        m_refreshTimer->start(0);
}

void Inspector::scheduleTracks()
{
    m_areTracksStale = true;
    scheduleRefresh();
}

void Inspector::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    scheduleRefresh();
}

bool Inspector::eventFilter(QObject* watched, QEvent* event)
{
    switch (event->type()) {
    case QEvent::MouseMove:
    case QEvent::MouseButtonRelease:
    case QEvent::DragMove:
    case QEvent::DragLeave:
    case QEvent::Drop:
        if (!m_dragTimer->isActive())
            m_dragTimer->start(0);
        break;
    default:
        break;
    }
    return QWidget::eventFilter(watched, event);
}

// A drag is in the model only when it is over. All items move by the same, so the items need not be looked at.
void Inspector::followDrag()
{
    const TimelineViewDragHandler* const drag = m_view ? m_view->dragHandler() : nullptr;
    const bool isDragged = isVisible() && drag && drag->isActive() && !m_summary.ids.isEmpty() &&
                           drag->dragItemIds() == m_view->selectedItemIds();
    if (!isDragged && !m_showsDrag)
        return;
    m_showsDrag = isDragged;
    qint64 offset = 0;
    try {
        offset = isDragged ? drag->deltaTime() : 0;
    } catch (const QString&) {
        // An item has gone meanwhile, and the drag ends.
        m_showsDrag = false;
    }
    showTimes(offset);
}

void Inspector::leaveFields()
{
    for (EditField* const field : {m_label, m_start, m_end, m_duration, m_description}) {
        field->leave();
        field->clearError();
    }
    m_attributes->leave();
}

void Inspector::refresh()
{
    if (!isVisible() || !m_model || !m_view)
        return;
    SelectionSummary summary = summarise(*m_model, m_view->selectedItemIds());
    const bool isOther = summary.ids != m_summary.ids;
    if (isOther) {
        leaveFields();
        // What was typed may have been for these items, too.
        summary = summarise(*m_model, m_view->selectedItemIds());
        m_refreshTimer->stop();
    }
    m_summary = std::move(summary);
    showSummary(isOther);
}

void Inspector::showSummary(bool isOther)
{
    const auto count = static_cast<int>(m_summary.ids.size());
    m_form->setVisible(count > 0);
    m_title->setText(count == 0   ? tr("No item is selected.")
                     : count == 1 ? tr("1 item")
                                  : tr("%1 items").arg(locale().toString(count)));
    if (count == 0) {
        m_showsDrag = false;
        m_attributes->showOther({});
        return;
    }
    if (m_areTracksStale)
        showTracks();
    m_label->showValue(m_summary.label.value(), m_summary.label.isMixed());
    m_description->showValue(m_summary.description.value(), m_summary.description.isMixed());
    showTimes(0);
    followDrag();
    showColor();
    const bool isMixedTrack = m_summary.trackId.isMixed();
    m_track->setCurrentIndex(isMixedTrack ? -1 : m_track->findData(m_summary.trackId.value()));
    m_locked->setTristate(m_summary.isLocked.isMixed());
    m_locked->setCheckState(m_summary.isLocked.isMixed() ? Qt::PartiallyChecked
                            : m_summary.isLocked.value() ? Qt::Checked
                                                         : Qt::Unchecked);
    if (isOther)
        m_attributes->showOther(m_summary.attributes);
    else
        m_attributes->showValues(m_summary.attributes);
}

void Inspector::showTimes(qint64 offset)
{
    const bool isOpen = m_summary.end.value() == SelectionSummary::openEnd;
    m_start->showValue(formatTime(m_summary.start.value() + offset), m_summary.start.isMixed());
    m_end->showValue(isOpen ? formatDuration(DocumentItem::openEnded) : formatTime(m_summary.end.value() + offset),
                     m_summary.end.isMixed());
    m_duration->showValue(formatDuration(m_summary.duration.value()), m_summary.duration.isMixed());
}

void Inspector::showColor()
{
    const bool isMixed = m_summary.color.isMixed();
    const QColor own = m_summary.color.value();
    m_color->setIcon(
        ColorMenu::swatch(isMixed || m_summary.shownColor.isMixed() ? QColor() : m_summary.shownColor.value()));
    m_color->setText(isMixed ? tr("(mixed)") : own.isValid() ? own.name().toUpper() : tr("of the track"));
    m_colorMenu->setCurrent(isMixed ? QColor() : m_summary.shownColor.value());
}

void Inspector::showTracks()
{
    m_areTracksStale = false;
    m_track->clear();
    addTracksBelow(*std::as_const(*m_model).rootTrack(), 0);
}

void Inspector::addTracksBelow(const Track& parent, int level)
{
    constexpr int indent = 3;
    for (const TrackPtr& track : parent.tracks()) {
        m_track->addItem(QString(indent * level, QChar::Nbsp) + track->text().simplified(), track->id());
        addTracksBelow(*track, level + 1);
    }
}

void Inspector::editLabel()
{
    refresh();
    m_label->startEditing();
}

} // namespace Workbench
