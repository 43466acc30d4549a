#include <VeskTimelineKit/labelled_item.h>

#include <QPainter>
#include <QStyleOptionViewItem>

#include <cmath>

namespace VeskTimeline::Kit {

namespace {

// Space between a bar and the borders of its row.
constexpr int rowMargin = 4;
constexpr int labelMargin = 4;
constexpr int markerRadius = 5;
constexpr int narrowestBar = 3;
constexpr qreal plainWidth = 1.0;
constexpr qreal selectedWidth = 3.0;

// Relative luminance as the web content accessibility guidelines define it, 0 to 1.
double luminance(const QColor& color)
{
    const auto linear = [](double part) {
        return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

// What is seen of a translucent colour.
QColor blended(const QColor& color, const QColor& background)
{
    const auto mix = [&color](float over, float under) { return over * color.alphaF() + under * (1 - color.alphaF()); };
    return QColor::fromRgbF(mix(color.redF(), background.redF()), mix(color.greenF(), background.greenF()),
                            mix(color.blueF(), background.blueF()));
}

QPen outline(const QColor& color, bool isSelected)
{
    return {isSelected ? Item::s_highlightColor : color.darker(180), isSelected ? selectedWidth : plainWidth};
}

} // namespace

LabelledItem::LabelledItem(const QString& label, qint64 startTime, int duration, const QColor& color, bool isEditable)
    : Item(startTime, duration, color, isEditable), m_label(label)
{
}

void LabelledItem::setIds(int id, int parentTrackId)
{
    m_id = id;
    m_parentTrackId = parentTrackId;
}

QColor LabelledItem::readableTextColor(const QColor& background)
{
    const double value = luminance(background);
    const double contrastWithWhite = 1.05 / (value + 0.05);
    const double contrastWithBlack = (value + 0.05) / 0.05;
    return contrastWithWhite > contrastWithBlack ? QColor(Qt::white) : QColor(Qt::black);
}

void LabelledItem::paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& /*index*/,
                         bool isSelected) const
{
    QRect bar = option.rect.adjusted(0, rowMargin, 0, -rowMargin);
    if (duration() < 0)
        bar.setRight(std::max(bar.left() - 1, static_cast<int>(painter->clipBoundingRect().right())));
    // A bar that has been cut to its cell is left with less than no width when it does not reach into the cell.
    if (bar.width() < 0)
        return;

    painter->save();
    if (bar.width() < narrowestBar) {
        paintMarker(painter, bar, isSelected);
    } else {
        paintBar(painter, bar, isSelected);
        paintLabel(painter, option, bar);
    }
    painter->restore();
}

void LabelledItem::paintBar(QPainter* painter, const QRect& bar, bool isSelected) const
{
    painter->setPen(outline(m_color, isSelected));
    painter->setBrush(m_color);
    painter->drawRect(bar.adjusted(0, 0, -1, -1));
}

void LabelledItem::paintMarker(QPainter* painter, const QRect& bar, bool isSelected) const
{
    painter->setPen(QPen(m_color, plainWidth));
    painter->drawLine(bar.topLeft(), bar.bottomLeft());
    // The line is one pixel wide; the diamond's middle is that pixel's.
    const QPointF middle(bar.left() + 0.5, bar.center().y() + 0.5);
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(outline(m_color, isSelected));
    painter->setBrush(m_color);
    painter->drawPolygon(QPolygonF({middle - QPointF(markerRadius, 0), middle - QPointF(0, markerRadius),
                                    middle + QPointF(markerRadius, 0), middle + QPointF(0, markerRadius)}));
}

void LabelledItem::paintLabel(QPainter* painter, const QStyleOptionViewItem& option, const QRect& bar) const
{
    const QRect room = bar.adjusted(labelMargin, 0, -labelMargin, 0);
    const QFontMetrics metrics = painter->fontMetrics();
    const QString label = m_label.simplified();
    constexpr int fewestCharacters = 5;
    const int leastRoom = std::min(metrics.horizontalAdvance(label), fewestCharacters * metrics.averageCharWidth());
    if (label.isEmpty() || room.width() < leastRoom)
        return;
    painter->setPen(readableTextColor(blended(m_color, option.palette.color(QPalette::Base))));
    painter->drawText(room, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                      metrics.elidedText(label, Qt::ElideRight, room.width()));
}

} // namespace VeskTimeline::Kit
