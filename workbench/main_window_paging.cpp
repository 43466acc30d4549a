#include "main_window.h"

#include <VeskTimeline/timeline_view.h>
#include <VeskTimeline/timeline_widget.h>
#include <VeskTimelineKit/standard_timeline_model.h>
#include <VeskTimelineKit/time_text.h>

#include <QAction>
#include <QLabel>

#include <algorithm>
#include <optional>

namespace Workbench {

using namespace VeskTimeline;
using namespace VeskTimeline::Kit;

namespace {

// From the first to the last instant of the items in the model, which the user may have moved.
std::optional<TimeSpan> itemSpan(const StandardTimelineModel& model)
{
    std::optional<TimeSpan> span;
    for (const int id : model.itemIds()) {
        const Item* const item = model.item(id);
        const qint64 end = item->startTime() + std::max(item->duration(), 0);
        if (!span)
            span = TimeSpan{item->startTime(), end};
        span->start = std::min(span->start, item->startTime());
        span->end = std::max(span->end, end);
    }
    return span;
}

} // namespace

void MainWindow::showStretch(int index)
{
    m_stretch = index;
    const TimeSpan stretch = m_stretches.at(index);
    // Room up to the next zoom factor lets a short timeline be seen whole.
    const qint64 length = stretch.end - stretch.start;
    const qint64 shown = length <= Zoom::OneDay ? qint64(Zoom::ceil(static_cast<int>(length))) : length;
    view()->setRange(stretch.start, stretch.start + shown);
    view()->setZoomFactor(std::min(view()->zoomFactor(), view()->upperZoomFactor()));
    view()->setCurrentTime(stretch.start);
    updatePaging();
    updateStatus();
}

void MainWindow::showFromStart()
{
    showStretch(0);
    view()->setZoomFactor(view()->upperZoomFactor());
    view()->setCurrentTime(view()->startTime());
}

// Stretches without items are passed over: there can be thousands of them.
void MainWindow::pageTo(int direction)
{
    const TimeSpan shown = m_stretches.at(m_stretch);
    int target = direction > 0 ? m_stretches.count() - 1 : 0;
    for (const int id : m_model->itemIds()) {
        const Item* const item = m_model->item(id);
        const qint64 start = item->startTime();
        const qint64 end = start + std::max(item->duration(), 0);
        if (direction > 0 && (start >= shown.end || end > shown.end))
            target = std::min(target, m_stretches.indexOf(std::max(start, shown.end)));
        else if (direction < 0 && start < shown.start)
            target = std::max(target, m_stretches.indexOf(std::min(end, shown.start - 1)));
    }
    showStretch(target);
}

void MainWindow::goToTime(qint64 time)
{
    const int index = m_stretches.indexOf(time);
    if (index != m_stretch)
        showStretch(index);
    view()->setCurrentTime(time);
}

void MainWindow::goToFirstItem()
{
    if (const auto span = itemSpan(*m_model))
        goToTime(span->start);
}

void MainWindow::goToLastItem()
{
    if (const auto span = itemSpan(*m_model))
        goToTime(span->end - view()->zoomFactor() / 2);
}

void MainWindow::updatePaging()
{
    m_previousStretch->setVisible(m_stretches.count() > 1);
    m_nextStretch->setVisible(m_stretches.count() > 1);
    m_previousStretch->setEnabled(m_stretch > 0);
    m_nextStretch->setEnabled(m_stretch + 1 < m_stretches.count());
}

void MainWindow::updateStatus()
{
    const int tracks = static_cast<int>(m_model->trackCount());
    const int items = static_cast<int>(m_model->itemIds().size());
    QString content = (tracks == 1 ? tr("1 track") : tr("%1 tracks").arg(tracks)) + QStringLiteral(", ") +
                      (items == 1 ? tr("1 item") : tr("%1 items").arg(items));
    if (const auto span = itemSpan(*m_model))
        content += tr(", %1 – %2").arg(formatTime(span->start), formatTime(span->end));
    m_contentLabel->setText(content);

    const TimeSpan shown = m_stretches.at(m_stretch);
    m_stretchLabel->setVisible(m_stretches.count() > 1);
    m_stretchLabel->setText(tr("Part %1 of %2: %3 – %4")
                                .arg(m_stretch + 1)
                                .arg(m_stretches.count())
                                .arg(formatTime(shown.start), formatTime(shown.end)));
    m_warningLabel->setVisible(!m_warnings.isEmpty());
    m_warningLabel->setText(m_warnings.size() == 1 ? tr("1 warning") : tr("%1 warnings").arg(m_warnings.size()));
    m_warningLabel->setToolTip(m_warnings.join(u'\n'));
}

} // namespace Workbench
