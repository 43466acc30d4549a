#include <VeskTimelineKit/labelled_item.h>

#include <QPainter>
#include <QStyleOptionViewItem>

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace VeskTimeline::Kit {

namespace {

// Space between a bar and the borders of its row.
constexpr int rowMargin = 4;
constexpr int labelMargin = 4;
constexpr int markerRadius = 5;
constexpr int narrowestBar = 3;
constexpr int arrowWidth = 8;
// As QColor::darker() takes it.
constexpr int edgeDarkness = 180;
constexpr qreal plainWidth = 1.0;
constexpr qreal selectedWidth = 5.0;

// Relative luminance as the web content accessibility guidelines define it, 0 to 1.
double luminance(const QColor& color)
{
    const auto linear = [](double part) {
        return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

QColor mixed(const QColor& over, const QColor& under, float share)
{
    const auto mix = [share](float first, float second) { return first * share + second * (1 - share); };
    return QColor::fromRgbF(mix(over.redF(), under.redF()), mix(over.greenF(), under.greenF()),
                            mix(over.blueF(), under.blueF()));
}

// What is seen of a colour that may be translucent.
QColor blended(const QColor& color, const QColor& background)
{
    constexpr int opaque = 255;
    return color.alpha() == opaque ? color : mixed(color, background, color.alphaF());
}

// Asked for every item that is painted, so nothing costlier than this.
bool standsOut(const QColor& color, const QColor& background)
{
    constexpr int least = 72;
    return std::max({std::abs(color.red() - background.red()), std::abs(color.green() - background.green()),
                     std::abs(color.blue() - background.blue())}) >= least;
}

// Darker than the background or, where that does not show, on the way to what is readable there.
QColor shade(const QColor& background)
{
    constexpr float share = 0.5F;
    const QColor dark = background.darker(edgeDarkness);
    return standsOut(dark, background) ? dark : mixed(LabelledItem::readableTextColor(background), background, share);
}

// Of an item's edges, so that they are seen although the item may have nearly the colour of the row.
QColor edgeColor(const QColor& seen, const QColor& row)
{
    const QColor dark = seen.darker(edgeDarkness);
    return standsOut(seen, row) || standsOut(dark, row) ? dark : shade(row);
}

QPen outline(const QColor& color, bool isSelected)
{
    return {isSelected ? Item::s_highlightColor : color, isSelected ? selectedWidth : plainWidth, Qt::SolidLine,
            Qt::SquareCap, Qt::BevelJoin};
}

// What is left of a bar at the edge of the cell says nothing about how long it is.
bool isCut(const QRect& bar, const QRectF& cell)
{
    // Views leave the last pixel of a cell free.
    constexpr int free = 1;
    return bar.left() <= cell.left() || bar.left() + bar.width() + free >= cell.right();
}

} // namespace

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

    const QColor row = option.palette.color(QPalette::Base);
    const QColor seen = blended(m_color, row);
    const QColor edge = edgeColor(seen, row);
    painter->save();
    if (bar.width() >= narrowestBar) {
        paintBar(painter, bar, edge, isSelected);
        const bool hasArrow = duration() < 0 && bar.width() > 2 * arrowWidth;
        if (hasArrow)
            paintArrow(painter, bar, seen);
        paintLabel(painter, hasArrow ? bar.adjusted(0, 0, -arrowWidth, 0) : bar, seen);
    } else if (duration() != 0) {
        bar.setWidth(isCut(bar, painter->clipBoundingRect()) ? std::max(bar.width(), 1) : narrowestBar);
        paintBar(painter, bar, edge, isSelected);
    } else {
        paintMarker(painter, bar, standsOut(seen, row) ? seen : edge, edge, isSelected);
    }
    painter->restore();
}

void LabelledItem::paintBar(QPainter* painter, const QRect& bar, const QColor& edge, bool isSelected) const
{
    painter->setPen(outline(edge, isSelected));
    painter->setBrush(m_color);
    painter->drawRect(bar.adjusted(0, 0, -1, -1));
}

void LabelledItem::paintMarker(QPainter* painter, const QRect& bar, const QColor& line, const QColor& edge,
                               bool isSelected) const
{
    painter->setPen(QPen(line, plainWidth));
    painter->drawLine(bar.topLeft(), bar.bottomLeft());
    // The line is one pixel wide; the diamond's middle is that pixel's.
    const QPointF middle(bar.left() + 0.5, bar.center().y() + 0.5);
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(outline(edge, isSelected));
    painter->setBrush(m_color);
    painter->drawPolygon(QPolygonF({middle - QPointF(markerRadius, 0), middle - QPointF(0, markerRadius),
                                    middle + QPointF(markerRadius, 0), middle + QPointF(0, markerRadius)}));
}

void LabelledItem::paintArrow(QPainter* painter, const QRect& bar, const QColor& seen)
{
    const int tip = bar.right() - 1;
    const int middle = bar.center().y();
    constexpr int halfHeight = 5;
    painter->setPen(Qt::NoPen);
    painter->setBrush(shade(seen));
    painter->drawPolygon(QPolygon({QPoint(tip, middle), QPoint(tip - arrowWidth + 2, middle - halfHeight),
                                   QPoint(tip - arrowWidth + 2, middle + halfHeight)}));
}

// Which piece it is stands behind the label, however much of that is left out.
void LabelledItem::paintLabel(QPainter* painter, const QRect& bar, const QColor& seen) const
{
    const QRect room = bar.adjusted(labelMargin, 0, -labelMargin, 0);
    if (room.width() <= 0)
        return;
    // A letter is wider than a pixel; of a label of millions no more is looked at than could be shown.
    const QString label = m_label.first(std::min<qsizetype>(m_label.size(), room.width())).simplified();
    QString piece = pieceText();
    if (label.isEmpty())
        piece = piece.trimmed();
    const QFontMetrics metrics = painter->fontMetrics();
    constexpr int fewestCharacters = 5;
    const int leastRoom = std::min(metrics.horizontalAdvance(label), fewestCharacters * metrics.averageCharWidth());
    if ((label + piece).isEmpty() || room.width() < leastRoom)
        return;
    int pieceWidth = metrics.horizontalAdvance(piece);
    if (room.width() < leastRoom + pieceWidth) {
        piece.clear();
        pieceWidth = 0;
    }
    painter->setPen(readableTextColor(seen));
    painter->drawText(room, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                      metrics.elidedText(label, Qt::ElideRight, room.width() - pieceWidth) + piece);
}

} // namespace VeskTimeline::Kit
