#include <VeskTimeline/item.h>

#include <QModelIndex>
#include <QPainter>
#include <QStyleOptionViewItem>

#include <typeinfo>

namespace VeskTimeline {

const QString Item::mimetype = QStringLiteral("application/brannovexis.timeline.item");
const QColor Item::s_highlightColor = QColor(0x43, 0xB0, 0xE0);

Item::Item(qint64 startTime, int duration, const QColor& color, bool isEditable)
    : m_color(color), m_startTime(startTime), m_duration(duration), m_isEditable(isEditable)
{
}

Item::~Item() = default;

Item::Culling Item::culling() const
{
    return typeid(*this) == typeid(Item) ? Culling::Bar : m_culling;
}

void Item::paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& /*index*/,
                 bool isSelected) const
{
    constexpr qreal selectedWidth = 5.0;
    constexpr qreal plainWidth = 1.0;

    painter->save();
    painter->setPen(QPen(isSelected ? s_highlightColor : QColor(Qt::black), isSelected ? selectedWidth : plainWidth,
                         Qt::SolidLine, Qt::SquareCap, Qt::BevelJoin));
    painter->setBrush(QBrush(m_color, Qt::SolidPattern));
    painter->drawRect(option.rect);
    painter->restore();
}

} // namespace VeskTimeline
