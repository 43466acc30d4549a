#include "bar_row_p.h"

#include <VeskTimeline/item.h>

#include <QImage>
#include <QPaintEngine>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace VeskTimeline {

namespace {

constexpr int unit = 64;
constexpr QRgb nothing = 0;
constexpr QRgb black = 0xff000000;

bool isMultiple(qreal value, qreal step)
{
    return std::abs(value) < 1e6 && value / step == std::round(value / step);
}

qint64 inUnits(qreal value)
{
    return static_cast<qint64>(std::llround(value * unit));
}

// The device pixel whose left edge is nearest to a position in units, as drawRect() has the edges of what it fills.
int nearestEdge(qint64 position)
{
    return static_cast<int>((position + unit / 2) >> 6);
}

} // namespace

bool BarRow::isSuitable(const QPainter& painter)
{
    const QPaintEngine* const engine = painter.paintEngine();
    if (!engine || engine->type() != QPaintEngine::Raster || painter.opacity() != 1.0 ||
        painter.compositionMode() != QPainter::CompositionMode_SourceOver ||
        painter.testRenderHint(QPainter::Antialiasing))
        return false;
    const QPaintDevice* const device = engine->paintDevice();
    if (!device || device->devType() != QInternal::Image)
        return false;
    const QImage::Format format = static_cast<const QImage*>(device)->format();
    if (format != QImage::Format_RGB32 && format != QImage::Format_ARGB32_Premultiplied)
        return false;
    const QTransform& transform = painter.deviceTransform();
    if (transform.type() > QTransform::TxScale || transform.m11() != transform.m22() || transform.m11() < 1.0)
        return false;
    constexpr qreal quarter = 0.25;
    const qreal step = transform.m11() == 1.0 ? 1.0 : quarter;
    return isMultiple(transform.m11(), quarter) && isMultiple(transform.dx(), step) && isMultiple(transform.dy(), step);
}

void BarRow::begin(const QRect& cell, const QPainter& painter)
{
    const QTransform& transform = painter.deviceTransform();
    m_cell = cell;
    m_scale = inUnits(transform.m11());
    m_offsetX = inUnits(transform.dx());
    m_offsetY = inUnits(transform.dy());
    m_left = nearestEdge(cell.left() * m_scale + m_offsetX);
    m_right = nearestEdge((cell.right() + 1) * m_scale + m_offsetX);
    m_top = nearestEdge(cell.top() * m_scale + m_offsetY);
    m_bottom = nearestEdge((cell.bottom() + 1) * m_scale + m_offsetY);
    m_hasSelected = false;
    m_hasPlain = false;

    const auto count = static_cast<std::size_t>(std::max(m_right - m_left, 0));
    m_nextFree.resize(count + 1);
    for (std::size_t column = 0; column <= count; ++column)
        m_nextFree[column] = static_cast<int>(column);
    m_colors.assign(count, nothing);
    m_looks.assign(count, Look::Free);
}

// A pixel belongs to the outline when its middle does; of the two edges the far one belongs to it.
BarRow::Columns BarRow::outline(int column, bool isSelected, qint64 offset) const
{
    const qint64 middle = column * m_scale + offset;
    const qint64 half = (isSelected ? 5 : 1) * m_scale / 2;
    return {static_cast<int>((middle - half + unit / 2) >> 6), static_cast<int>((middle + half - unit / 2) >> 6)};
}

BarRow::Columns BarRow::columnsOf(const Bar& bar) const
{
    return {std::max(outline(bar.left, bar.isSelected, m_offsetX).first, m_left) - m_left,
            std::min(outline(bar.right, bar.isSelected, m_offsetX).last, m_right - 1) - m_left};
}

int BarRow::firstFree(int column) const
{
    int free = column;
    while (m_nextFree[static_cast<std::size_t>(free)] != free)
        free = m_nextFree[static_cast<std::size_t>(free)];
    // Those that were passed on the way know it next time.
    while (column != free)
        column = std::exchange(m_nextFree[static_cast<std::size_t>(column)], free);
    return free;
}

bool BarRow::isHidden(const Bar& bar) const
{
    const Columns columns = columnsOf(bar);
    return columns.first > columns.last || firstFree(columns.first) > columns.last;
}

bool BarRow::hasInside(const Bar& bar) const
{
    const int begin = std::max(outline(bar.left, bar.isSelected, m_offsetX).last + 1, m_left);
    const int end = std::min(outline(bar.right, bar.isSelected, m_offsetX).first, m_right);
    return begin < end;
}

void BarRow::add(const Bar& bar, QRgb color)
{
    take(bar, color);
}

void BarRow::addOutline(const Bar& bar)
{
    take(bar, nothing);
}

void BarRow::take(const Bar& bar, QRgb color)
{
    const Columns columns = columnsOf(bar);
    if (columns.first > columns.last)
        return;
    (bar.isSelected ? m_hasSelected : m_hasPlain) = true;
    const QRgb outlineColor = bar.isSelected ? Item::s_highlightColor.rgb() : black;
    const Look inside = bar.isSelected ? Look::Selected : Look::Plain;
    const int leftEnd = outline(bar.left, bar.isSelected, m_offsetX).last - m_left;
    const int rightBegin = outline(bar.right, bar.isSelected, m_offsetX).first - m_left;
    for (int column = firstFree(columns.first); column <= columns.last; column = firstFree(column + 1)) {
        const auto at = static_cast<std::size_t>(column);
        const bool isInside = leftEnd < column && column < rightBegin;
        if (isInside && color == nothing)
            continue;
        m_colors[at] = isInside ? color : outlineColor;
        m_looks[at] = isInside ? inside : Look::Solid;
        m_nextFree[at] = column + 1;
    }
}

// The colours of lines that the outlines of plain bars cross, those of selected ones, or none.
const std::vector<QRgb>& BarRow::lineAcross(Look outlines)
{
    if (outlines == Look::Solid)
        return m_colors;
    const QRgb selected = Item::s_highlightColor.rgb();
    const bool hasPlain = outlines == Look::Plain;
    m_line.resize(m_colors.size());
    for (std::size_t column = 0; column < m_line.size(); ++column) {
        const QRgb color = m_looks[column] == Look::Plain && hasPlain ? black : m_colors[column];
        m_line[column] = m_looks[column] == Look::Selected ? selected : color;
    }
    return m_line;
}

void BarRow::paint(QPainter* painter)
{
    if (!m_hasPlain && !m_hasSelected)
        return;
    // From here on in device pixels.
    painter->setWorldTransform(painter->deviceTransform().inverted() * painter->worldTransform());
    const auto within = [this](int line) { return std::clamp(line, m_top, m_bottom); };
    const int bottomEdge = m_cell.bottom() + 1;
    const int plainTop = within(outline(m_cell.top(), false, m_offsetY).last + 1);
    const int plainBottom = within(outline(bottomEdge, false, m_offsetY).first);
    int selectedTop = plainTop;
    int selectedBottom = plainBottom;
    if (m_hasSelected) {
        selectedTop = within(outline(m_cell.top(), true, m_offsetY).last + 1);
        selectedBottom = std::max(selectedTop, within(outline(bottomEdge, true, m_offsetY).first));
    }
    paintLines(painter, m_top, plainTop, Look::Plain);
    paintLines(painter, plainTop, selectedTop, Look::Selected);
    paintLines(painter, selectedTop, selectedBottom, Look::Solid);
    paintLines(painter, selectedBottom, plainBottom, Look::Selected);
    paintLines(painter, plainBottom, m_bottom, Look::Plain);
}

void BarRow::paintLines(QPainter* painter, int top, int bottom, Look outlines)
{
    if (top >= bottom)
        return;
    const std::vector<QRgb>& line = lineAcross(outlines);
    // Many short runs are painted quicker at once, although that looks at the gaps as well.
    constexpr int shortRun = 128;
    findRuns(line, line.size() / shortRun);
    if (m_runs.size() > line.size() / shortRun) {
        paintTexture(painter, line, top, bottom);
        return;
    }
    for (const Columns& run : m_runs)
        painter->fillRect(QRect(m_left + run.first, top, run.last - run.first + 1, bottom - top),
                          QColor::fromRgb(line[static_cast<std::size_t>(run.first)]));
}

// Gives up when there are more than `most`.
void BarRow::findRuns(const std::vector<QRgb>& line, std::size_t most)
{
    m_runs.clear();
    const auto positionOf = [&line](std::vector<QRgb>::const_iterator at) {
        return static_cast<int>(at - line.begin());
    };
    const auto isTaken = [](QRgb color) { return color != nothing; };
    auto at = std::find_if(line.begin(), line.end(), isTaken);
    while (at != line.end() && m_runs.size() <= most) {
        const auto behind = std::find_if(at, line.end(), [color = *at](QRgb other) { return other != color; });
        m_runs.push_back({positionOf(at), positionOf(behind) - 1});
        at = std::find_if(behind, line.end(), isTaken);
    }
}

// All lines are the same: the brush is one line, which the painter repeats.
void BarRow::paintTexture(QPainter* painter, const std::vector<QRgb>& line, int top, int bottom)
{
    const int first = m_runs.front().first;
    const auto begin = line.begin() + first;
    const auto end = std::find_if(line.rbegin(), line.rend(), [](QRgb color) { return color != nothing; }).base();
    const bool hasGaps = std::find(begin, end, nothing) != end;
    const int count = static_cast<int>(end - begin);
    const QImage texture(reinterpret_cast<const uchar*>(&*begin), count, 1, static_cast<int>(sizeof(QRgb)) * count,
                         hasGaps ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32);
    painter->setBrushOrigin(m_left + first, 0);
    painter->fillRect(QRect(m_left + first, top, count, bottom - top), QBrush(texture));
}

} // namespace VeskTimeline
