#include "ui_Timeline.h"

#include <VeskTimeline/timeline_header_view.h>
#include <VeskTimeline/timeline_model.h>
#include <VeskTimeline/timeline_view.h>
#include <VeskTimeline/timeline_widget.h>

#include <QScrollBar>

namespace VeskTimeline {

void TimelineWidget::showDebugWidget()
{
    m_ui->debugWidget->show();
    // What is shown must not be taken for an entry of the user's.
    disconnectDebugWidget();
    if (const TimelineModel* const model = timelineModel()) {
        m_ui->sbDebugSnapStep->setValue(model->snapStep());
        m_ui->sbDebugSnapTol->setValue(model->snapTolerance());
    }
    updateDebugButtons();
    connectDebugWidget();
    onUpdateDebugInfo();
}

void TimelineWidget::hideDebugWidget()
{
    disconnectDebugWidget();
    m_ui->debugWidget->hide();
}

void TimelineWidget::connectDebugWidget()
{
    const auto update = [this] { onUpdateDebugInfo(); };
    m_debugConnections = {
        connect(m_ui->pbDebugUpdate, &QPushButton::clicked, this, &TimelineWidget::onUpdateDebugInfo),
        connect(m_ui->pbDebugTriggerSnap, &QPushButton::clicked, this, &TimelineWidget::triggerSnap),
        connect(m_ui->pbDebugTriggerIndicator, &QPushButton::clicked, this,
                [this] {
                    if (header())
                        header()->setIndicatorVisible(!header()->isIndicatorVisible());
                    updateDebugButtons();
                }),
        connect(m_ui->pbDebugTriggerHover, &QPushButton::clicked, this,
                [this] {
                    if (header())
                        header()->setHoverVisible(!header()->isHoverVisible());
                    updateDebugButtons();
                }),
        connect(m_ui->sbDebugSnapStep, qOverload<int>(&QSpinBox::valueChanged), this,
                [this](int step) {
                    if (timelineModel())
                        timelineModel()->setSnapStep(step);
                }),
        connect(m_ui->sbDebugSnapTol, qOverload<int>(&QSpinBox::valueChanged), this,
                [this](int tolerance) {
                    if (timelineModel())
                        timelineModel()->setSnapTolerance(tolerance);
                }),
        connect(view(), &TimelineView::rangeChanged, this, update),
        connect(view(), &TimelineView::currentTimeChanged, this, update),
        connect(view(), &TimelineView::zoomChanged, this, update),
        connect(view(), &TimelineView::selectedItemsChanged, this, update),
    };
}

void TimelineWidget::disconnectDebugWidget()
{
    for (const QMetaObject::Connection& connection : std::as_const(m_debugConnections))
        disconnect(connection);
    m_debugConnections.clear();
}

void TimelineWidget::updateDebugButtons()
{
    m_ui->pbDebugTriggerSnap->setText(isSnapEnabled() ? tr("Disable Snap") : tr("Enable Snap"));
    const bool isIndicatorVisible = header() && header()->isIndicatorVisible();
    m_ui->pbDebugTriggerIndicator->setText(isIndicatorVisible ? tr("Disable Indicator") : tr("Enable Indicator"));
    const bool isHoverVisible = header() && header()->isHoverVisible();
    m_ui->pbDebugTriggerHover->setText(isHoverVisible ? tr("Disable Hover") : tr("Enable Hover"));
}

void TimelineWidget::triggerSnap()
{
    setSnapEnabled(!isSnapEnabled());
    updateDebugButtons();
}

void TimelineWidget::onUpdateDebugInfo()
{
    constexpr int millisecondsPerSecond = 1000;
    const auto text = [](qint64 time) { return DateTime::toString(time, DateTime::DTG); };
    m_ui->lblDebugStart->setText(text(startTime()));
    m_ui->lblDebugEnd->setText(text(endTime()));
    m_ui->lblDebugCurrent->setText(text(currentTime()));
    m_ui->lblDebugDuration->setText(QString::number(duration() / millisecondsPerSecond));
    m_ui->lblDebugSlider->setText(text(static_cast<qint64>(slider()->value()) * millisecondsPerSecond));
    m_ui->lblDebugZoom->setText(Zoom::toString(zoomFactor(), false));
    m_ui->lblDebugSelection->setText(QString::number(view()->selectedItemIds().size()));
}

} // namespace VeskTimeline
