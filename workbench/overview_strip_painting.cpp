#include "navigation.h"
#include "overview_strip.h"

#include <VeskTimeline/timeline_header_view.h>
#include <VeskTimeline/timeline_view.h>
#include <VeskTimeline/timeline_widget.h>

#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>

namespace Workbench {

using namespace VeskTimeline;
using namespace VeskTimeline::Kit;

namespace {

QColor blend(const QColor& ground, const QColor& ink, double share)
{
    const auto mix = [share](int from, int to) { return static_cast<int>(std::lround(from + (to - from) * share)); };
    return {mix(ground.red(), ink.red()), mix(ground.green(), ink.green()), mix(ground.blue(), ink.blue())};
}

QColor translucent(QColor color, int alpha)
{
    color.setAlpha(alpha);
    return color;
}

} // namespace

void OverviewStrip::paintEvent(QPaintEvent* /*event*/)
{
    m_density.hasten();
    QPainter painter(this);
    if (m_picture.isNull() || m_picture.devicePixelRatio() != devicePixelRatioF()) {
        m_picture = QPixmap((QSizeF(size()) * devicePixelRatioF()).toSize());
        m_picture.setDevicePixelRatio(devicePixelRatioF());
        QPainter picture(&m_picture);
        picture.setFont(font());
        paintPicture(&picture);
    }
    painter.drawPixmap(0, 0, m_picture);
    paintWindow(&painter);
    paintIndicator(&painter);
    if (hasFocus()) {
        painter.setBrush(Qt::NoBrush);
        painter.setPen(translucent(palette().color(QPalette::Highlight), 160));
        painter.drawRect(rect().adjusted(0, 0, -1, -1));
    }
}

void OverviewStrip::paintPicture(QPainter* painter)
{
    const QPalette& colors = palette();
    painter->fillRect(rect(), colors.color(QPalette::Window));
    painter->fillRect(QRect(0, 0, width(), chartHeight()), colors.color(QPalette::Base));
    paintDensity(painter);
    paintTicks(painter);
    painter->setPen(blend(colors.color(QPalette::Base), colors.color(QPalette::Text), 0.3));
    painter->drawLine(0, chartHeight(), width(), chartHeight());
}

// Numbers of items differ by orders of magnitude, and one must be seen next to a thousand: so heights are logarithmic.
// Where there is one there is at least a line.
void OverviewStrip::paintDensity(QPainter* painter) const
{
    if (m_density.highest() == 0)
        return;
    const double ratio = devicePixelRatioF();
    const int columns = static_cast<int>(std::lround(width() * ratio));
    const double top = 3;
    const double room = chartHeight() - top;
    const double scale = (room - 2) / std::log1p(m_density.highest());
    const std::vector<int>& counts = m_density.counts();
    QColor color = blend(palette().color(QPalette::Base), TimelineHeaderView::highlightColor(), 0.75);
    for (int column = 0; column < columns; ++column) {
        const auto from = static_cast<std::size_t>(qint64(column) * OverviewDensity::partCount / columns);
        const auto to = static_cast<std::size_t>(qint64(column + 1) * OverviewDensity::partCount / columns);
        const auto first = counts.begin() + static_cast<std::ptrdiff_t>(from);
        const auto last = counts.begin() + static_cast<std::ptrdiff_t>(std::max(to, from + 1));
        const int highest = *std::max_element(first, last);
        if (highest == 0)
            continue;
        const double tall = 2 + scale * std::log1p(highest);
        painter->fillRect(QRectF(column / ratio, chartHeight() - tall, 1 / ratio, tall), color);
    }
}

void OverviewStrip::paintTicks(QPainter* painter) const
{
    const QColor ink = palette().color(QPalette::WindowText);
    const QColor line = translucent(ink, 60);
    const int top = chartHeight();
    for (const OverviewTick& tick : overviewTicks(m_navigation->overviewSpan(), width(), fontMetrics(), locale())) {
        const double x = std::floor(toPixel(tick.time)) + 0.5;
        painter->setPen(line);
        painter->drawLine(QPointF(x, 0), QPointF(x, height()));
        const int wide = fontMetrics().horizontalAdvance(tick.label);
        const double left = x + 3;
        // Cut labels would be read as another date.
        if (left + wide > width())
            continue;
        painter->setPen(ink);
        painter->drawText(QPointF(left, top + 1 + fontMetrics().ascent()), tick.label);
    }
}

void OverviewStrip::paintWindow(QPainter* painter) const
{
    const TimeSpan window = m_navigation->window();
    const TimeSpan span = m_navigation->overviewSpan();
    const QRectF frame = windowFrame();
    const QColor color = palette().color(QPalette::Highlight);
    painter->setRenderHint(QPainter::Antialiasing);
    if (window.end <= span.start || window.start >= span.end) {
        const bool isBefore = window.end <= span.start;
        const double tip = isBefore ? 1 : width() - 1;
        const double base = isBefore ? 11 : width() - 11;
        const double middle = chartHeight() / 2.0;
        painter->setPen(Qt::NoPen);
        painter->setBrush(color);
        painter->drawPolygon(QPolygonF({{tip, middle}, {base, middle - 8}, {base, middle + 8}}));
        return;
    }
    painter->setPen(QPen(color, 2));
    painter->setBrush(translucent(color, 60));
    painter->drawRoundedRect(frame.adjusted(1, 1, -1, -1), 2, 2);
    if (frame.width() < 28)
        return;
    // Handles.
    painter->setPen(Qt::NoPen);
    painter->setBrush(color);
    for (const double x : {frame.left(), frame.right() - 5})
        painter->drawRoundedRect(QRectF(x, frame.center().y() - 7, 5, 14), 2, 2);
}

void OverviewStrip::paintIndicator(QPainter* painter) const
{
    const TimelineHeaderView* const header = m_navigation->widget()->header();
    if (!header)
        return;
    const auto mark = [&](qint64 time, const QColor& color) {
        const double x = toPixel(time);
        if (x < 0 || x > width())
            return;
        painter->setPen(Qt::NoPen);
        painter->setBrush(color);
        painter->drawPolygon(QPolygonF({{x - 4, 0}, {x + 4, 0}, {x, 6}}));
        painter->fillRect(QRectF(x - 0.5, 0, 1, chartHeight()), color);
    };
    if (header->isIndicatorVisible())
        mark(header->indicatorTime(), palette().color(QPalette::Text));
    if (header->isLiveIndicatorVisible())
        mark(header->liveIndicatorTime(), header->liveIndicatorColor());
}

} // namespace Workbench
