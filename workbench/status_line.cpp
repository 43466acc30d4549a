#include "status_line.h"

#include "duration_text.h"
#include "elided_label.h"
#include "navigation.h"
#include "ruler_time.h"
#include "view_settings.h"

#include <VeskTimeline/timeline_header_view.h>
#include <VeskTimeline/timeline_view.h>
#include <VeskTimeline/timeline_widget.h>
#include <VeskTimelineKit/standard_timeline_model.h>
#include <VeskTimelineKit/track_path.h>

#include <QDropEvent>
#include <QHBoxLayout>
#include <QMouseEvent>
#include <QScrollBar>

#include <algorithm>

namespace Workbench {

using namespace VeskTimeline;
using namespace VeskTimeline::Kit;

namespace {

QString spanText(qint64 start, qint64 end)
{
    return start == end ? rulerTimeText(start)
                        : QStringLiteral("%1 – %2").arg(rulerTimeText(start), rulerTimeText(end));
}

struct Total
{
    qsizetype items = 0;
    qsizetype openItems = 0;
    qint64 duration = 0;
    qint64 start = std::numeric_limits<qint64>::max();
    qint64 end = std::numeric_limits<qint64>::min();

    void add(const ItemTimes& times)
    {
        ++items;
        openItems += times.duration < 0 ? 1 : 0;
        duration += std::max<qint64>(times.duration, 0);
        start = std::min(start, times.start);
        end = std::max(end, times.end());
    }
};

} // namespace

StatusLine::StatusLine(Navigation* navigation, ViewSettings* settings, QWidget* parent)
    : QWidget(parent),
      m_timeline(navigation->widget()),
      m_view(m_timeline->view()),
      m_rows(m_view->viewport()),
      m_model(navigation->model()),
      m_navigation(navigation),
      m_settings(settings),
      m_pointer(new ElidedLabel(this)),
      m_selection(new ElidedLabel(this)),
      m_content(new ElidedLabel(this))
{
    m_pointer->setObjectName(QStringLiteral("pointerStatus"));
    m_selection->setObjectName(QStringLiteral("selectionStatus"));
    m_content->setObjectName(QStringLiteral("contentStatus"));
    // What follows the mouse must not push the others about.
    m_pointer->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    constexpr int gap = 24;
    auto* const layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(gap);
    layout->addWidget(m_pointer, 1);
    layout->addWidget(m_selection);
    layout->addWidget(m_content);
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, &StatusLine::showStale);
    follow();
    schedule(Everything);
}

void StatusLine::follow()
{
    m_view->viewport()->installEventFilter(this);
    m_timeline->header()->viewport()->installEventFilter(this);
    const auto pointer = [this] { schedule(Pointer); };
    const auto selection = [this] { schedule(Selection); };
    const auto content = [this] { schedule(Content); };
    const auto tracks = [this] { schedule(Pointer | Content); };
    const auto everything = [this] { schedule(Everything); };
    connect(m_navigation, &Navigation::windowChanged, this, pointer);
    connect(m_view->verticalScrollBar(), &QAbstractSlider::valueChanged, this, pointer);
    connect(m_view, &QTreeView::expanded, this, pointer);
    connect(m_view, &QTreeView::collapsed, this, pointer);
    connect(m_model, &QAbstractItemModel::dataChanged, this, pointer);
    connect(m_view, &TimelineView::selectedItemsChanged, this, selection);
    connect(m_model, &StandardTimelineModel::itemsChanged, this, selection);
    connect(m_model, &StandardTimelineModel::itemsAdded, this, content);
    connect(m_model, &StandardTimelineModel::itemsRemoved, this, everything);
    connect(m_model, &QAbstractItemModel::rowsInserted, this, tracks);
    connect(m_model, &QAbstractItemModel::rowsRemoved, this, everything);
    connect(m_model, &QAbstractItemModel::rowsMoved, this, tracks);
    connect(m_model, &QAbstractItemModel::modelReset, this, everything);
    connect(m_navigation, &Navigation::documentSpanChanged, this, content);
    connect(m_settings, &ViewSettings::changed, this, everything);
}

void StatusLine::schedule(int parts)
{
    m_stale |= parts;
    if (!m_timer.isActive())
        m_timer.start(0);
}

void StatusLine::showStale()
{
    const int stale = std::exchange(m_stale, 0);
    if (stale & Pointer)
        m_pointer->showText(pointerText());
    if (stale & Selection) {
        m_selection->showText(selectionText());
        m_selection->setVisible(!m_selection->text().isEmpty());
    }
    if (stale & Content)
        m_content->showText(contentText());
}

void StatusLine::setPointer(const QPoint* pos, bool isOverRuler)
{
    m_isPointed = pos != nullptr;
    m_isOverRuler = isOverRuler;
    if (pos)
        m_pos = *pos;
    schedule(Pointer);
}

bool StatusLine::eventFilter(QObject* watched, QEvent* event)
{
    const bool isRuler = watched != m_rows;
    switch (event->type()) {
    case QEvent::MouseMove: {
        const QPoint pos = static_cast<QMouseEvent*>(event)->position().toPoint();
        setPointer(&pos, isRuler);
        break;
    }
    case QEvent::DragMove: {
        const QPoint pos = static_cast<QDropEvent*>(event)->position().toPoint();
        setPointer(&pos, isRuler);
        break;
    }
    case QEvent::Leave:
    case QEvent::DragLeave:
        setPointer(nullptr, isRuler);
        break;
    default:
        break;
    }
    return QWidget::eventFilter(watched, event);
}

QString StatusLine::pointedTime() const
{
    const int left = m_timeline->header()->sectionPosition(1);
    const int width = m_view->viewport()->width() - left;
    if (m_pos.x() < left || m_pos.x() >= left + width)
        return {};
    const double millisecondsPerPixel = static_cast<double>(m_view->zoomFactor()) / width;
    return rulerTimeText(m_timeline->header()->toTime(m_pos.x()), precisionOf(millisecondsPerPixel));
}

QString StatusLine::pointedTrack() const
{
    if (m_isOverRuler || !m_model)
        return {};
    QStringList names;
    for (QModelIndex index = m_view->indexAt(m_pos); index.isValid(); index = index.parent())
        names.prepend(std::as_const(*m_model).track(index.siblingAtColumn(1).data().toInt())->text());
    return joinTrackPath(names);
}

QString StatusLine::pointerText() const
{
    if (!m_isPointed)
        return {};
    QStringList parts{pointedTime(), pointedTrack()};
    parts.removeAll(QString());
    return parts.join(QStringLiteral(", "));
}

QString StatusLine::selectionText() const
{
    if (!m_model)
        return {};
    QVector<int> known;
    for (const int id : m_view->selectedItemIds()) {
        if (m_model->hasItem(id))
            known.append(id);
    }
    if (known.isEmpty())
        return {};
    Total total;
    for (const int id : m_model->withoutFurtherPieces(known))
        total.add(m_model->itemTimes(id));
    QString text = tr("%1 selected").arg(total.items);
    if (total.openItems < total.items)
        text += (total.items == 1 ? tr(", %1") : tr(", %1 in total")).arg(formatDuration(total.duration));
    if (total.openItems > 0)
        text += total.items == 1 ? tr(", open-ended") : tr(", %1 open-ended").arg(total.openItems);
    return text + QStringLiteral(", ") + spanText(total.start, total.end);
}

QString StatusLine::contentText() const
{
    if (!m_model)
        return {};
    const int tracks = m_model->trackCount();
    const int items = m_model->documentItemCount();
    QString text = (tracks == 1 ? tr("1 track") : tr("%1 tracks").arg(tracks)) + QStringLiteral(", ") +
                   (items == 1 ? tr("1 item") : tr("%1 items").arg(items));
    if (const auto span = m_navigation->documentSpan())
        text += QStringLiteral(", ") + spanText(span->start, span->end);
    return text;
}

} // namespace Workbench
