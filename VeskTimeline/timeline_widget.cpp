#include "ui_Timeline.h"

#include <HoxLogger/ihox_logger.h>
#include <VeskTimeline/timeline_header_view.h>
#include <VeskTimeline/timeline_model.h>
#include <VeskTimeline/timeline_view.h>
#include <VeskTimeline/timeline_widget.h>

#include <QHeaderView>
#include <QScrollBar>
#include <QVBoxLayout>

#include <algorithm>

namespace VeskTimeline {

namespace {

constexpr int millisecondsPerSecond = 1000;
/// The last one of the form's grid.
constexpr int sliderColumn = 6;

} // namespace

TimelineWidget::TimelineWidget(QWidget* parent)
    : QWidget(parent),
      m_logger(Hox::HoxLoggerBootstrap::getHoxRootLogger().logger(QStringLiteral("Timeline.TimelineWidget"))),
      m_ui(new Ui_Timeline)
{
    m_ui->setupUi(this);
    m_ui->debugWidget->hide();
    m_ui->wPlaceholder->hide();
    auto* const placeholderLayout = new QVBoxLayout(m_ui->wPlaceholder);
    placeholderLayout->setContentsMargins(0, 0, 0, 0);

    for (QWidget* control : {static_cast<QWidget*>(m_ui->pbZoomIn), static_cast<QWidget*>(m_ui->pbZoomOut),
                             static_cast<QWidget*>(m_ui->cbZoom)})
        control->setProperty("const", true);
    connectControls();
    onZoomChanged(view()->zoomFactor());
}

TimelineWidget::~TimelineWidget()
{
    disconnectDebugWidget();
    delete m_ui;
}

void TimelineWidget::connectControls()
{
    connect(m_ui->cbZoom, qOverload<int>(&QComboBox::currentIndexChanged), this, &TimelineWidget::onZoomSelected);
    setZoomInIcon(QIcon(QStringLiteral("icon:pnx_zoom_in.svg")));
    connect(m_ui->pbZoomIn, &QPushButton::clicked, this, &TimelineWidget::onZoomIn);
    setZoomOutIcon(QIcon(QStringLiteral("icon:pnx_zoom_out.svg")));
    connect(m_ui->pbZoomOut, &QPushButton::clicked, this, &TimelineWidget::onZoomOut);
    connect(view(), &TimelineView::rangeChanged, this, &TimelineWidget::followRange);
    connect(view(), &TimelineView::currentTimeChanged, this,
            [this](qint64 time) { slider()->setValue(static_cast<int>(time / millisecondsPerSecond)); });
    connect(view(), &TimelineView::zoomChanged, this, &TimelineWidget::onZoomChanged);
    connect(header(), &QHeaderView::sectionResized, this, &TimelineWidget::onSectionResized);
    connect(slider(), &QScrollBar::valueChanged, this, &TimelineWidget::onSliderValueChanged);
}

QSize TimelineWidget::minimumSizeHint() const
{
    const QSize hint = QWidget::minimumSizeHint();
    return {hint.width() - m_ui->gridLayout->columnMinimumWidth(sliderColumn), hint.height()};
}

TimelineView* TimelineWidget::view() const
{
    return m_ui->view;
}

TimelineHeaderView* TimelineWidget::header() const
{
    return view()->header();
}

TimelineModel* TimelineWidget::timelineModel() const
{
    return view()->timelineModel();
}

QScrollBar* TimelineWidget::slider() const
{
    return m_ui->slider;
}

void TimelineWidget::setModel(QAbstractItemModel* model)
{
    view()->setModel(model);
}

Zoom::Factor TimelineWidget::zoomFactor() const
{
    return view()->zoomFactor();
}

void TimelineWidget::setZoomFactor(Zoom::Factor factor)
{
    view()->setZoomFactor(factor);
}

Zoom::Factor TimelineWidget::minimumZoomFactor() const
{
    return view()->minimumZoomFactor();
}

void TimelineWidget::setMinimumZoomFactor(Zoom::Factor factor)
{
    view()->setMinimumZoomFactor(factor);
}

Zoom::Factor TimelineWidget::maximumZoomFactor() const
{
    return view()->maximumZoomFactor();
}

void TimelineWidget::setMaximumZoomFactor(Zoom::Factor factor)
{
    view()->setMaximumZoomFactor(factor);
}

qint64 TimelineWidget::startTime() const
{
    return view()->startTime();
}

void TimelineWidget::setStartTime(qint64 time)
{
    view()->setStartTime(time);
}

qint64 TimelineWidget::currentTime() const
{
    return view()->currentTime();
}

void TimelineWidget::setCurrentTime(qint64 time)
{
    view()->setCurrentTime(time);
}

qint64 TimelineWidget::endTime() const
{
    return view()->endTime();
}

void TimelineWidget::setEndTime(qint64 time)
{
    view()->setEndTime(time);
}

int TimelineWidget::duration() const
{
    return view()->duration();
}

void TimelineWidget::setDuration(int duration)
{
    view()->setDuration(duration);
}

bool TimelineWidget::isCursorTextVisible() const
{
    return view()->isCursorTextVisible();
}

void TimelineWidget::setCursorTextVisible(bool isVisible)
{
    view()->setCursorTextVisible(isVisible);
}

void TimelineWidget::setCursorText(const QString& text)
{
    view()->setCursorText(text);
}

bool TimelineWidget::isSnapEnabled() const
{
    return timelineModel() && timelineModel()->isSnapEnabled();
}

void TimelineWidget::setSnapEnabled(bool isEnabled)
{
    if (timelineModel())
        timelineModel()->setSnapEnabled(isEnabled);
}

void TimelineWidget::setZoomInIcon(const QIcon& icon)
{
    m_ui->pbZoomIn->setIcon(icon);
}

void TimelineWidget::setZoomOutIcon(const QIcon& icon)
{
    m_ui->pbZoomOut->setIcon(icon);
}

QWidget* TimelineWidget::placeholder() const
{
    const QLayoutItem* const first = m_ui->wPlaceholder->layout()->itemAt(0);
    return first ? first->widget() : nullptr;
}

void TimelineWidget::setPlaceholder(QWidget* placeholder)
{
    QWidget* const current = this->placeholder();
    if (placeholder == current)
        return;
    QLayout* const layout = m_ui->wPlaceholder->layout();
    // Out of the current one first, should it be a part of that.
    if (placeholder)
        placeholder->setParent(m_ui->wPlaceholder);
    if (current) {
        layout->removeWidget(current);
        delete current;
    }
    if (placeholder)
        layout->addWidget(placeholder);
    m_ui->wPlaceholder->setVisible(placeholder != nullptr);
}

void TimelineWidget::followRange(qint64 start, qint64 end)
{
    slider()->setRange(static_cast<int>(start / millisecondsPerSecond),
                       static_cast<int>((end - view()->zoomFactor()) / millisecondsPerSecond));
    onUpdateZoomButtons();
}

void TimelineWidget::onSectionResized(int logicalIndex, int /*oldSize*/, int newSize)
{
    if (logicalIndex != 1)
        return;
    slider()->setFixedSize(newSize, view()->verticalScrollBar()->width());
    alignWithTimeColumn(newSize);
}

// Keeps the slider below the time column, which ends where the view's scroll bar begins, and the placeholder out of its
// way: that gets no more than the room which the controls leave below the names.
void TimelineWidget::alignWithTimeColumn(int columnWidth)
{
    QGridLayout* const grid = m_ui->gridLayout;
    const int scrollBarWidth = view()->verticalScrollBar()->sizeHint().width() + view()->frameWidth();
    grid->setColumnMinimumWidth(sliderColumn, columnWidth + scrollBarWidth);

    const int controlsWidth =
        m_ui->pbZoomIn->minimumWidth() + m_ui->pbZoomOut->minimumWidth() + m_ui->cbZoom->minimumWidth();
    const int spacing = grid->horizontalSpacing() * sliderColumn;
    const int nameWidth = header() ? header()->sectionSize(0) : 0;
    m_ui->wPlaceholder->setMaximumWidth(std::max(0, nameWidth - controlsWidth - spacing));
}

void TimelineWidget::onSliderValueChanged(int value)
{
    setCurrentTime(static_cast<qint64>(value) * millisecondsPerSecond);
}

void TimelineWidget::onZoomChanged(Zoom::Factor factor)
{
    slider()->setMaximum(static_cast<int>((view()->endTime() - view()->zoomFactor()) / millisecondsPerSecond));
    slider()->setPageStep(factor / millisecondsPerSecond);
    // Milliseconds on a slider of seconds: an arrow is meant to move much further than one of the smallest ticks.
    slider()->setSingleStep(Zoom::minorInterval(factor));
    onUpdateZoomButtons();
    if (m_ui->cbZoom->currentData(Qt::UserRole).toInt() != factor)
        m_ui->cbZoom->setCurrentIndex(
            m_ui->cbZoom->findData(static_cast<int>(factor), Qt::UserRole, Qt::MatchExactly | Qt::MatchCaseSensitive));
}

void TimelineWidget::onUpdateZoomButtons()
{
    m_ui->pbZoomIn->setEnabled(zoomFactor() > minimumZoomFactor());
    m_ui->pbZoomOut->setEnabled(zoomFactor() < view()->upperZoomFactor());
    populateZoomFactorComboBox();
}

void TimelineWidget::populateZoomFactorComboBox()
{
    QComboBox* const box = m_ui->cbZoom;
    const auto indexChanged = qOverload<int>(&QComboBox::currentIndexChanged);
    disconnect(box, indexChanged, this, &TimelineWidget::onZoomSelected);
    box->clear();
    const QList<Zoom::Factor> factors = Zoom::availableZoomFactors(minimumZoomFactor(), view()->upperZoomFactor());
    for (const Zoom::Factor factor : factors)
        box->addItem(Zoom::toString(factor, false), static_cast<int>(factor));
    // No entry is current while the zoom factor is one that the box does not offer.
    box->setCurrentIndex(
        box->findData(static_cast<int>(zoomFactor()), Qt::UserRole, Qt::MatchExactly | Qt::MatchCaseSensitive));
    connect(box, indexChanged, this, &TimelineWidget::onZoomSelected);
}

void TimelineWidget::onZoomSelected()
{
    if (m_ui->cbZoom->currentIndex() < 0)
        return;
    const int factor = m_ui->cbZoom->currentData(Qt::UserRole).toInt();
    if (factor != zoomFactor())
        setZoomFactor(static_cast<Zoom::Factor>(factor));
}

void TimelineWidget::onZoomIn()
{
    setZoomFactor(Zoom::decrement(zoomFactor()));
}

void TimelineWidget::onZoomOut()
{
    setZoomFactor(Zoom::increment(zoomFactor()));
}

} // namespace VeskTimeline
