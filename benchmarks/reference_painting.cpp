#include "reference_painting.h"

#include <VeskTimeline/timeline_model.h>
#include <VeskTimeline/timeline_view.h>

#include <QPainter>

#include <algorithm>

using namespace VeskTimeline;

namespace ReferencePainting {

namespace {

const QRgb highlight = Item::s_highlightColor.rgb();
constexpr QRgb black = 0xff000000;
// Half the width of a selected bar's outline, beside its middle.
constexpr int reach = 2;

void appendRows(std::vector<Row>& rows, const Track& track, const TimelineView& view)
{
    Row row{track.text(), {}, 0};
    row.bars.reserve(track.items().size());
    for (const ItemPtr& item : track.items()) {
        row.bars.push_back({item->startTime(), item->duration(), item->color().rgb(), view.isItemSelected(item->id())});
        row.longest = std::max(row.longest, item->duration());
    }
    rows.push_back(std::move(row));
    for (const TrackPtr& child : track.tracks())
        appendRows(rows, *child, view);
}

} // namespace

Content Content::of(const TimelineView& view)
{
    Content content;
    for (const TrackPtr& track : std::as_const(*view.timelineModel()).rootTrack()->tracks())
        appendRows(content.rows, *track, view);
    content.size = view.viewport()->size();
    content.nameWidth = view.header()->sectionPosition(1);
    content.rulerWidth = view.header()->width();
    return content;
}

Painting::Painting(Content content) : m_content(std::move(content))
{
    setAttribute(Qt::WA_OpaquePaintEvent);
    resize(m_content.size);
}

void Painting::setWindow(qint64 start, qint64 span)
{
    m_start = start;
    m_span = span;
}

void Painting::setSelected(bool areAllSelected)
{
    for (Row& row : m_content.rows) {
        for (Bar& bar : row.bars)
            bar.isSelected = areAllSelected;
    }
}

int Painting::visibleRows() const
{
    return std::min(static_cast<int>(m_content.rows.size()),
                    (height() + m_content.rowHeight - 1) / m_content.rowHeight);
}

QColor Painting::background(int row) const
{
    return palette().color(row % 2 == 0 ? QPalette::Base : QPalette::AlternateBase);
}

void Painting::paintNames(QPainter* painter) const
{
    constexpr int margin = 4;
    painter->setPen(palette().color(QPalette::Text));
    for (int row = 0; row < visibleRows(); ++row) {
        const QRect cell(margin, row * m_content.rowHeight, m_content.nameWidth - 2 * margin, m_content.rowHeight);
        painter->drawText(cell, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                          m_content.rows[static_cast<std::size_t>(row)].name);
    }
}

Painting::Columns Painting::columnsOf(const Bar& bar) const
{
    const double scale = static_cast<double>(m_content.rulerWidth - m_content.nameWidth) / static_cast<double>(m_span);
    const auto toPixel = [&](qint64 time) {
        return m_content.nameWidth + static_cast<int>(static_cast<double>(time - m_start) * scale);
    };
    return {std::max(toPixel(bar.start), m_content.nameWidth),
            std::min(toPixel(bar.start + bar.duration), m_content.rulerWidth - 1)};
}

template <typename Visit>
void Painting::visitDistinct(const Row& row, const Visit& visit) const
{
    const auto startsBefore = [](const Bar& bar, qint64 time) { return bar.start < time; };
    const auto first = std::lower_bound(row.bars.begin(), row.bars.end(), m_start - row.longest, startsBefore);
    const auto end = std::lower_bound(first, row.bars.end(), m_start + m_span, startsBefore);
    const Bar* waiting = nullptr;
    Columns columns{};
    for (auto bar = first; bar != end; ++bar) {
        if (bar->start + bar->duration < m_start)
            continue;
        const Columns next = columnsOf(*bar);
        if (waiting && !(columns == next && waiting->isSelected == bar->isSelected))
            visit(*waiting, columns);
        waiting = &*bar;
        columns = next;
    }
    if (waiting)
        visit(*waiting, columns);
}

int Painting::distinctRectangles() const
{
    int count = 0;
    for (int row = 0; row < visibleRows(); ++row)
        visitDistinct(m_content.rows[static_cast<std::size_t>(row)], [&count](const Bar&, Columns) { ++count; });
    return count;
}

void Rectangles::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    const int rowHeight = content().rowHeight;
    for (int row = 0; row < visibleRows(); ++row)
        painter.fillRect(0, row * rowHeight, width(), rowHeight, background(row));
    painter.fillRect(0, visibleRows() * rowHeight, width(), height(), background(0));
    paintNames(&painter);
    for (int row = 0; row < visibleRows(); ++row) {
        const int top = row * rowHeight;
        painter.setClipRect(content().nameWidth, top, content().rulerWidth - content().nameWidth, rowHeight);
        visitDistinct(content().rows[static_cast<std::size_t>(row)], [&](const Bar& bar, Columns columns) {
            const int wider = bar.isSelected ? reach : 0;
            const QRect outline = QRect(columns.left, top, columns.right - columns.left + 1, rowHeight + 1)
                                      .adjusted(-wider, -wider, wider, wider);
            const int thickness = 2 * wider + 1;
            const QRect inside = outline.adjusted(thickness, thickness, -thickness, -thickness);
            painter.fillRect(outline, QColor::fromRgb(bar.isSelected ? highlight : black));
            if (inside.isValid())
                painter.fillRect(inside, QColor::fromRgb(bar.color));
        });
    }
}

void ScanLines::paintEvent(QPaintEvent* /*event*/)
{
    if (m_picture.size() != size())
        m_picture = QImage(size(), QImage::Format_RGB32);
    for (int row = 0; row < visibleRows(); ++row)
        writeRow(row);
    const int bottom = visibleRows() * content().rowHeight;
    for (int y = bottom; y < height(); ++y) {
        auto* const line = reinterpret_cast<QRgb*>(m_picture.scanLine(y));
        std::fill(line, line + width(), background(0).rgb());
    }
    QPainter painter(this);
    painter.drawImage(0, 0, m_picture);
    paintNames(&painter);
}

void ScanLines::writeRow(int row)
{
    const auto count = static_cast<std::size_t>(width());
    for (std::vector<QRgb>* const line : {&m_edgeLine, &m_secondLine, &m_innerLine})
        line->assign(count, background(row).rgb());
    const int first = content().nameWidth;
    const int last = std::min(content().rulerWidth, width()) - 1;
    const auto fill = [&](std::vector<QRgb>& line, int left, int right, QRgb color) {
        left = std::max(left, first);
        right = std::min(right, last);
        if (left <= right)
            std::fill(line.begin() + left, line.begin() + right + 1, color);
    };
    visitDistinct(content().rows[static_cast<std::size_t>(row)], [&](const Bar& bar, Columns columns) {
        const int wider = bar.isSelected ? reach : 0;
        const QRgb outline = bar.isSelected ? highlight : black;
        fill(m_edgeLine, columns.left - wider, columns.right + wider, outline);
        for (std::vector<QRgb>* const line : {&m_secondLine, &m_innerLine}) {
            fill(*line, columns.left - wider, columns.right + wider, outline);
            if (line == &m_innerLine || !bar.isSelected)
                fill(*line, columns.left + wider + 1, columns.right - wider - 1, bar.color);
        }
    });
    const int top = row * content().rowHeight;
    const int bottom = std::min(top + content().rowHeight, height());
    for (int y = top; y < bottom; ++y) {
        const int below = top + content().rowHeight - y;
        const std::vector<QRgb>& line = y == top                             ? m_edgeLine
                                        : y <= top + reach || below <= reach ? m_secondLine
                                                                             : m_innerLine;
        std::copy(line.begin(), line.end(), reinterpret_cast<QRgb*>(m_picture.scanLine(y)));
    }
}

} // namespace ReferencePainting
