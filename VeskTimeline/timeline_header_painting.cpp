#include <VeskTimeline/timeline_header_view.h>
#include <VeskTimeline/timeline_view.h>

#include <QApplication>
#include <QPainter>
#include <QPolygon>

#include <algorithm>
#include <cmath>

namespace VeskTimeline {

namespace {

constexpr int markerSize = 11;
constexpr int markerMargin = 2;
constexpr int limitBoxHeight = 19;
constexpr int limitTextHeight = 21;
constexpr int tickLabelWidth = 160;
// The indicators' lines start below their texts.
constexpr int timeTextHeight = 19;
constexpr int timeTextPadding = 4;

QPen rulerPen(const QColor& color, qreal width)
{
    return {QBrush(color), width, Qt::SolidLine, Qt::SquareCap, Qt::BevelJoin};
}

struct LimitMarker
{
    QLine line;
    QPolygon triangle;

    void paint(QPainter* painter, const QColor& color) const
    {
        painter->setRenderHint(QPainter::Antialiasing);
        painter->setPen(color);
        painter->setBrush(color);
        painter->drawLine(line);
        painter->drawPolygon(triangle);
    }
};

LimitMarker startMarker()
{
    return {QLine(1, 0, 1, 10), QPolygon({QPoint(4, 5), QPoint(10, 0), QPoint(10, 10)})};
}

LimitMarker endMarker()
{
    return {QLine(10, 0, 10, 10), QPolygon({QPoint(6, 5), QPoint(0, 0), QPoint(0, 10)})};
}

QPixmap pictureOf(const LimitMarker& marker)
{
    QPixmap picture(markerSize, markerSize);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    marker.paint(&painter, QApplication::palette().color(QPalette::Text));
    return picture;
}

int timeTextWidth(const QFontMetrics& metrics, const QString& text)
{
    return metrics.horizontalAdvance(text) + timeTextPadding;
}

void paintAt(QPainter* painter, const QPoint& position, const LimitMarker& marker, const QColor& color)
{
    painter->save();
    painter->translate(position);
    painter->setClipRect(QRect(0, 0, markerSize, markerSize), Qt::IntersectClip);
    marker.paint(painter, color);
    painter->restore();
}

} // namespace

QPixmap getMinLimitIndicator()
{
    return pictureOf(startMarker());
}

QPixmap getMaxLimitIndicator()
{
    return pictureOf(endMarker());
}

QColor TimelineHeaderView::textColor() const
{
    return m_ownScale ? m_ownScale->palette.color(QPalette::Text) : QApplication::palette().color(QPalette::Text);
}

QColor TimelineHeaderView::fillColor() const
{
    return m_ownScale ? m_ownScale->palette.color(QPalette::Base) : backgroundColor();
}

// On the ruler's background, so that the text stays readable over ticks and labels.
void TimelineHeaderView::paintTimeText(QPainter* painter, const QRect& box, const QString& text) const
{
    painter->fillRect(box, fillColor());
    painter->drawText(box, Qt::AlignCenter, text);
}

int TimelineHeaderView::tickBaseline(const QRect& rect) const
{
    return m_isLimitsVisible ? rect.bottom() - s_limitHeight : rect.bottom();
}

void TimelineHeaderView::paintSection(QPainter* painter, const QRect& rect, int logicalIndex) const
{
    if (logicalIndex == 0)
        paintTrackLabel(painter, rect);
    else if (logicalIndex == 1)
        paintTimeScale(painter, rect);
}

void TimelineHeaderView::paintTrackLabel(QPainter* painter, const QRect& rect) const
{
    painter->save();
    painter->setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing);
    painter->fillRect(rect, fillColor());
    painter->setPen(rulerPen(textColor(), 2.0));
    const QPoint middle(rect.right(), rect.center().y());
    painter->drawLine(rect.topRight(), middle);
    painter->drawLine(middle, rect.bottomRight());
    painter->setFont(m_font);
    painter->drawText(rect, Qt::AlignCenter, m_trackLabel);
    painter->restore();
}

void TimelineHeaderView::paintTimeScale(QPainter* painter, const QRect& rect) const
{
    painter->save();
    painter->setClipRect(rect);
    painter->setFont(m_font);
    painter->setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing);
    painter->fillRect(rect, fillColor());
    paintTicks(painter, rect);
    if (m_timelineView) {
        if (m_isLimitsVisible)
            paintLimits(painter, rect);
        if (m_isHoverVisible && m_hoverPosition != -1)
            paintHover(painter, rect);
        if (m_isLiveIndicatorVisible && m_liveIndicatorTime != -1)
            paintIndicator(painter, rect, m_liveIndicatorTime, m_liveIndicatorScalingFactor, m_liveIndicatorColor);
        if (m_isIndicatorVisible && m_indicatorTime != -1)
            paintIndicator(painter, rect, m_indicatorTime, m_indicatorScalingFactor, highlightColor());
    }
    painter->restore();
}

void TimelineHeaderView::paintTicks(QPainter* painter, const QRect& rect) const
{
    const int baseline = tickBaseline(rect);
    const int bandHeight = (baseline - rect.top()) / 2;

    painter->setPen(rulerPen(textColor(), 1.0));
    for (const Tick& tick : m_majorTicks) {
        const QRect label(tick.pos - tickLabelWidth / 2, rect.top(), tickLabelWidth, bandHeight);
        painter->drawText(label, Qt::AlignCenter, tick.label);
        if (m_isLimitsVisible)
            painter->drawLine(tick.pos, baseline, tick.pos, rect.bottom());
        painter->drawLine(tick.pos, rect.top() + bandHeight, tick.pos, baseline);
    }

    const auto drawTicks = [&](const Ticks& ticks, double length) {
        const int top = baseline - static_cast<int>(length);
        for (const Tick& tick : ticks)
            painter->drawLine(tick.pos, top, tick.pos, baseline);
    };
    drawTicks(m_mediumTicks, 2 * bandHeight / 3.0);
    drawTicks(m_minorTicks, bandHeight / 3.0);
}

void TimelineHeaderView::paintLimits(QPainter* painter, const QRect& rect) const
{
    const qint64 start = windowStart();
    const QString startText = DateTime::toString(start, m_limitsDateTimeFormat);
    const QString endText = DateTime::toString(start + windowLength(), m_limitsDateTimeFormat);
    const QFontMetrics metrics = painter->fontMetrics();
    constexpr int textOffset = markerMargin + markerSize + markerMargin;
    const int startWidth = metrics.horizontalAdvance(startText) + textOffset + markerMargin;
    const int endWidth = metrics.horizontalAdvance(endText) + textOffset + markerMargin;

    const int boxTop = rect.bottom() - limitBoxHeight + 1;
    painter->fillRect(rect.left(), boxTop, startWidth, limitBoxHeight, fillColor());
    painter->fillRect(rect.right() + 1 - endWidth, boxTop, endWidth, limitBoxHeight, fillColor());

    const int markerTop = boxTop + (limitBoxHeight - markerSize) / 2;
    paintLimitMarkers(painter, QPoint(rect.left() + markerMargin, markerTop),
                      QPoint(rect.right() + 1 - markerMargin - markerSize, markerTop));

    const int textTop = boxTop - (limitTextHeight - limitBoxHeight) / 2;
    painter->drawText(QRect(rect.left() + textOffset, textTop, startWidth - textOffset, limitTextHeight),
                      Qt::AlignLeft | Qt::AlignVCenter, startText);
    painter->drawText(QRect(rect.right() + 1 - endWidth, textTop, endWidth - textOffset, limitTextHeight),
                      Qt::AlignRight | Qt::AlignVCenter, endText);
}

void TimelineHeaderView::paintLimitMarkers(QPainter* painter, const QPoint& start, const QPoint& end) const
{
    if (!m_ownScale) {
        // The pictures are from before the palette changed, if it did.
        const bool areCurrent = m_limitIndicatorColor == textColor();
        painter->drawPixmap(start, areCurrent ? m_minLimitIndicator : getMinLimitIndicator());
        painter->drawPixmap(end, areCurrent ? m_maxLimitIndicator : getMaxLimitIndicator());
        return;
    }
    // Colours of its own, and shapes that stay shapes on paper.
    paintAt(painter, start, startMarker(), textColor());
    paintAt(painter, end, endMarker(), textColor());
}

void TimelineHeaderView::paintHover(QPainter* painter, const QRect& rect) const
{
    painter->setPen(highlightColor());
    painter->drawLine(m_hoverPosition, rect.top(), m_hoverPosition, rect.bottom());
    if (!m_isHoverTimeVisible)
        return;

    const QString text = DateTime::toString(m_hoverTime, m_hoverDateTimeFormat);
    const int width = timeTextWidth(painter->fontMetrics(), text);
    const int left = std::min(m_hoverPosition - width / 2, rect.right() + 1 - width);
    painter->setPen(textColor());
    paintTimeText(painter, QRect(left, rect.top(), width, timeTextHeight), text);
}

int TimelineHeaderView::indicatorSize(double scalingFactor) const
{
    const int rulerHeight = m_isLimitsVisible ? height() - s_limitHeight : height();
    return static_cast<int>(rulerHeight * scalingFactor);
}

QRect TimelineHeaderView::indicatorStrip(qint64 time, double scalingFactor) const
{
    if (time == -1)
        return {};
    // Antialiased edges and the text's own overhang.
    constexpr int margin = 4;
    const QFontMetrics metrics(m_font.resolve(viewport()->font()), viewport());
    const int textWidth = timeTextWidth(metrics, DateTime::toString(time, m_dateTimeFormat));
    const int half = std::max(indicatorSize(scalingFactor), textWidth) / 2 + margin;
    const int position = toPixel(time);
    const int left = std::max(position - half, timeColumnLeft());
    const int right = std::min(position + half, viewport()->width() - 1);
    if (right < left)
        return {};
    return {QPoint(left, 0), QPoint(right, viewport()->height() - 1)};
}

void TimelineHeaderView::paintIndicator(QPainter* painter, const QRect& rect, qint64 time, double scalingFactor,
                                        const QColor& color) const
{
    // Height of an equilateral triangle over its base.
    constexpr double triangleRatio = 0.866;

    const int position = toPixel(time);
    const int size = indicatorSize(scalingFactor);
    const double top = rect.bottom() - triangleRatio * size;

    painter->setPen(color);
    painter->setBrush(color);
    painter->drawPolygon(QPolygonF(
        {QPointF(position, rect.bottom()), QPointF(position - size / 2.0, top), QPointF(position + size / 2.0, top)}));
    painter->drawLine(position, rect.top() + timeTextHeight, position, rect.bottom());

    const QString text = DateTime::toString(time, m_dateTimeFormat);
    const int width = timeTextWidth(painter->fontMetrics(), text);
    painter->setPen(textColor());
    paintTimeText(painter, QRect(position - width / 2, rect.top(), width, timeTextHeight), text);
}

} // namespace VeskTimeline
