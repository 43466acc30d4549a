#include "kit_tr_p.h"

#include <VeskTimelineKit/labelled_item.h>
#include <VeskTimelineKit/time_text.h>

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
constexpr int arrowWidth = 8;
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

// What is seen of a translucent colour.
QColor blended(const QColor& color, const QColor& background)
{
    const auto mix = [&color](float over, float under) { return over * color.alphaF() + under * (1 - color.alphaF()); };
    return QColor::fromRgbF(mix(color.redF(), background.redF()), mix(color.greenF(), background.greenF()),
                            mix(color.blueF(), background.blueF()));
}

QPen outline(const QColor& color, bool isSelected)
{
    return {isSelected ? Item::s_highlightColor : color.darker(180), isSelected ? selectedWidth : plainWidth,
            Qt::SolidLine, Qt::SquareCap, Qt::BevelJoin};
}

QString cut(const QString& text, qsizetype longest)
{
    return text.size() <= longest ? text : text.first(longest) + QChar(0x2026);
}

// "3 d 04:05:06.007", without what is zero at the front and behind the seconds.
QString durationText(qint64 duration)
{
    constexpr qint64 second = 1000;
    constexpr qint64 day = 24 * 3600 * second;
    const qint64 days = duration / day;
    const qint64 seconds = duration % day / second;
    const qint64 milliseconds = duration % second;
    const auto twoDigits = [](qint64 number) { return QStringLiteral("%1").arg(number, 2, 10, QLatin1Char('0')); };
    QString text = QStringLiteral("%1:%2:%3")
                       .arg(twoDigits(seconds / 3600), twoDigits(seconds / 60 % 60), twoDigits(seconds % 60));
    if (days > 0)
        text.prepend(Tr::tr("%1 d ").arg(days));
    if (milliseconds > 0)
        text.append(QStringLiteral(".%1").arg(milliseconds, 3, 10, QLatin1Char('0')));
    return text;
}

QString toolTipRow(const QString& name, const QString& value)
{
    return QStringLiteral("<tr><td>%1</td><td style=\"padding-left:8px\">%2</td></tr>")
        .arg(name, value.toHtmlEscaped());
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

QString LabelledItem::label() const
{
    return m_piece.isPiece() ? QStringLiteral("%1 (%2/%3)").arg(m_label).arg(m_piece.number).arg(m_piece.count)
                             : m_label;
}

QString LabelledItem::toolTip(const QString& trackName, const TimeFormatter& formatter) const
{
    const TimeFormatter format = formatter ? formatter : formatTime;
    constexpr qsizetype longestName = 200;
    constexpr qsizetype longestDescription = 1000;
    const bool hasEnd = duration() >= 0;
    QString text = QStringLiteral("<qt><b>%1</b><table>").arg(cut(label().simplified(), longestName).toHtmlEscaped());
    text += toolTipRow(Tr::tr("Start"), format(startTime()));
    text += toolTipRow(Tr::tr("End"), hasEnd ? format(startTime() + duration()) : Tr::tr("open"));
    if (hasEnd)
        text += toolTipRow(Tr::tr("Duration"), durationText(duration()));
    text += toolTipRow(Tr::tr("Track"), cut(trackName.simplified(), longestName));
    text += QStringLiteral("</table>");
    if (!m_description.isEmpty())
        text += QStringLiteral("<p style=\"white-space:pre-wrap\">%1</p>")
                    .arg(cut(m_description, longestDescription).toHtmlEscaped());
    return text + QStringLiteral("</qt>");
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
        const bool hasArrow = duration() < 0 && bar.width() > 2 * arrowWidth;
        if (hasArrow)
            paintArrow(painter, bar);
        paintLabel(painter, option, hasArrow ? bar.adjusted(0, 0, -arrowWidth, 0) : bar);
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

void LabelledItem::paintArrow(QPainter* painter, const QRect& bar) const
{
    const int tip = bar.right() - 1;
    const int middle = bar.center().y();
    constexpr int halfHeight = 5;
    painter->setPen(Qt::NoPen);
    painter->setBrush(outline(m_color, false).color());
    painter->drawPolygon(QPolygon({QPoint(tip, middle), QPoint(tip - arrowWidth + 2, middle - halfHeight),
                                   QPoint(tip - arrowWidth + 2, middle + halfHeight)}));
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
