#include "picture_ticks_p.h"
#include "picture_view_p.h"

#include <VeskTimeline/item_delegate.h>
#include <VeskTimeline/timeline_header_view.h>
#include <VeskTimeline/timeline_model.h>
#include <VeskTimeline/timeline_view_drag_handler.h>
#include <VeskTimeline/timeline_view_resize_handler.h>
#include <VeskTimeline/timeline_view_selection_handler.h>
#include <VeskTimeline/timeline_view_track_handler.h>

#include <QPainter>

#include <algorithm>

namespace VeskTimeline::Kit {

namespace {

constexpr int leastSectionSize = 20;

/// Leaves out what is there to be pressed.
class PictureDelegate : public ItemDelegate
{
public:
    using ItemDelegate::ItemDelegate;

    void paintTrackButtons(QPainter* /*painter*/, const QStyleOptionViewItem& /*option*/,
                           const QModelIndex& /*index*/) const override
    {
    }

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override
    {
        ItemDelegate::initStyleOption(option, index);
        option->state.setFlag(QStyle::State_HasFocus, false);
    }
};

} // namespace

/// The ruler of a PictureView.
class PictureRuler : public TimelineHeaderView
{
public:
    explicit PictureRuler(TimelineView* view) : TimelineHeaderView(view)
    {
        setMinimumSectionSize(leastSectionSize);
        setHoverVisible(false);
        setIndicatorVisible(false);
    }

    using TimelineHeaderView::setOwnScale;

    void paintColumn(QPainter& painter, int column, const QRect& rect) const { paintSection(&painter, rect, column); }
};

PictureView::PictureView(TimelineModel& model, const PictureOptions& options) : m_options(options)
{
    // Nobody will ever press anything.
    delete dragHandler();
    delete resizeHandler();
    delete selectHandler();
    delete trackHandler();
    setDragHandler(nullptr);
    setResizeHandler(nullptr);
    setSelectHandler(nullptr);
    setTrackHandler(nullptr);

    m_ruler = new PictureRuler(this);
    setHeader(m_ruler);
    setFrameShape(QFrame::NoFrame);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setUniformRowHeights(true);
    setPalette(options.palette);
    setModel(&model);
    setItemDelegate(options.makeDelegate ? options.makeDelegate(this) : new PictureDelegate(this));

    m_ruler->setTrackLabel(options.trackLabel);
    m_ruler->setLimitsVisible(options.hasLimits);
    expandAll();
    m_rowCount = showTracks(QSet<int>(options.trackIds.begin(), options.trackIds.end()), {}, 1);
    m_widestName = std::max(m_widestName, m_ruler->fontMetrics().horizontalAdvance(options.trackLabel));
    m_rowHeight = std::max(itemDelegate()->sizeHint(QStyleOptionViewItem(), QModelIndex()).height(), 1);
}

PictureView::~PictureView() = default;

int PictureView::rulerHeight() const
{
    return m_ruler->height();
}

int PictureView::nameWidth(int pictureWidth) const
{
    constexpr int margin = 16;
    constexpr int narrowest = 80;
    constexpr int mostShare = 3;
    return std::clamp(m_widestName + margin, narrowest, std::max(narrowest, pictureWidth / mostShare));
}

// Hides the other tracks. Returns how many rows remain below the parent.
int PictureView::showTracks(const QSet<int>& trackIds, const QModelIndex& parent, int level)
{
    const QAbstractItemModel& rows = *model();
    int count = 0;
    for (int row = 0; row < rows.rowCount(parent); ++row) {
        const QModelIndex index = rows.index(row, 0, parent);
        const int below = showTracks(trackIds, index, level + 1);
        const bool isWanted = trackIds.isEmpty() || trackIds.contains(index.data(Qt::UserRole).toInt());
        if (!isWanted && below == 0) {
            setRowHidden(row, parent, true);
            continue;
        }
        // A heading has no items of its own.
        if (!isWanted)
            setFirstColumnSpanned(row, parent, true);
        const int width = fontMetrics().horizontalAdvance(index.data().toString()) + level * indentation();
        m_widestName = std::max(m_widestName, width);
        count += 1 + below;
    }
    return count;
}

void PictureView::layOut(const TimeSpan& range, int width)
{
    if (width != m_width) {
        m_width = width;
        resize(width, rulerHeight() + m_rowHeight);
        // What has not been shown has sizes only when it is painted.
        grab(QRect(0, 0, 1, 1));
        m_ruler->resizeSection(0, nameWidth(width));
        doItemsLayout();
    }
    const int timeWidth = std::max(columnRect(1).width(), 1);
    RulerScale scale = pictureScale(range, timeWidth, QFontMetrics(m_ruler->font()), m_options.dateTimeFormat);
    scale.palette = m_options.palette;
    m_ruler->setOwnScale(scale);
    m_ruler->setIndicatorVisible(m_options.indicatorTime.has_value());
    if (m_options.indicatorTime)
        m_ruler->setIndicatorTime(*m_options.indicatorTime);
}

QRect PictureView::columnRect(int column) const
{
    return {m_ruler->sectionPosition(column), 0, m_ruler->sectionSize(column), m_rowHeight};
}

void PictureView::paintRuler(QPainter& painter) const
{
    paintRulerColumn(painter, 0);
    paintRulerColumn(painter, 1);
}

void PictureView::paintRulerColumn(QPainter& painter, int column) const
{
    QRect rect = columnRect(column);
    rect.setHeight(rulerHeight());
    painter.save();
    m_ruler->paintColumn(painter, column, rect);
    painter.restore();
}

void PictureView::paintRow(QPainter& painter, int row, int column) const
{
    QRect area(0, row * m_rowHeight, m_width, m_rowHeight);
    if (column >= 0) {
        area.setLeft(columnRect(column).left());
        area.setWidth(columnRect(column).width());
    }
    painter.save();
    painter.translate(0, -area.top());
    painter.fillRect(area, m_options.palette.color(QPalette::Base));
    painter.setFont(viewport()->font());
    painter.setPen(m_options.palette.color(QPalette::Text));
    drawTree(&painter, QRegion(area));
    painter.restore();
    if (column != 0)
        paintIndicatorLine(painter);
}

void PictureView::paintIndicatorLine(QPainter& painter) const
{
    if (!m_options.indicatorTime)
        return;
    const int x = m_ruler->indicatorPosition();
    const QRect column = columnRect(1);
    if (x < column.left() || x > column.right())
        return;
    painter.save();
    painter.setPen(TimelineHeaderView::highlightColor());
    painter.drawLine(x, 0, x, m_rowHeight - 1);
    painter.restore();
}

// The style has pictures for this, which are rough on paper.
void PictureView::drawBranches(QPainter* painter, const QRect& rect, const QModelIndex& index) const
{
    const int children = model()->rowCount(index);
    if (children == 0)
        return;
    bool isOpen = false;
    for (int row = 0; row < children && !isOpen; ++row)
        isOpen = !isRowHidden(row, index);

    constexpr double radius = 4.0;
    const QPointF middle(rect.right() + 1 - indentation() / 2.0, rect.center().y() + 0.5);
    QPolygonF arrow({QPointF(-radius, -radius / 2), QPointF(radius, -radius / 2), QPointF(0, radius / 2)});
    if (!isOpen)
        arrow = QPolygonF({QPointF(-radius / 2, -radius), QPointF(radius / 2, 0), QPointF(-radius / 2, radius)});
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(Qt::NoPen);
    painter->setBrush(m_options.palette.color(QPalette::Text));
    painter->drawPolygon(arrow.translated(middle));
    painter->restore();
}

} // namespace VeskTimeline::Kit
