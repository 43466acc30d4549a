#pragma once

// Internal to the library; not installed.

#include <QColor>
#include <QRect>
#include <QTransform>

#include <vector>

class QPainter;

namespace VeskTimeline {

/// A plain item's bar in a row: columns of logical pixels.
struct Bar
{
    int left;
    int right; ///< where the outline on the right lies, so that a bar without width has both in one column
    bool isSelected;
};

/// The bars of one row as they look in the end, without painting those that later ones cover.
///
/// All bars of a row are as high as the row, which cuts off their lower edge. So what is seen in a column of device
/// pixels is, from top to bottom, the one bar that is painted there last. The bars are handed over in the opposite
/// order, the last one first: each takes the columns that are still free, and one that finds none free is hidden. What
/// comes out is painted in runs of equal columns, so that its cost is that of the row's width and not of the bars.
///
/// The columns are exactly those that QPainter::drawRect() fills with Item::paint()'s pens without anti-aliasing. That
/// is known for painters that isSuitable().
class BarRow
{
public:
    /// Whether the painter puts pixels where this class does: a picture of 32 bits, a scale in whole quarters, nothing
    /// that mixes or softens.
    static bool isSuitable(const QPainter& painter);

    /// Begins a row, with all columns free. @param painter suitable
    void begin(const QRect& cell, const QPainter& painter);
    /// Whether nothing of the bar would be seen, being covered by those added before. True also for one that lies
    /// outside the row.
    bool isHidden(const Bar& bar) const;
    /// Whether any column in the row shows the colour of the bar.
    bool hasInside(const Bar& bar) const;
    /// Takes the columns of a bar in an opaque colour.
    void add(const Bar& bar, QRgb color);
    /// Takes the columns of the outline only. paint() paints a row right whose other bars have no inside.
    void addOutline(const Bar& bar);
    /// Paints what has been added. The painter's state is not kept.
    void paint(QPainter* painter);

private:
    enum class Look : quint8 { Free, Solid, Plain, Selected };

    struct Columns
    {
        int first;
        int last;
    };

    Columns outline(int column, bool isSelected, qint64 offset) const;
    Columns columnsOf(const Bar& bar) const;
    int firstFree(int column) const;
    void take(const Bar& bar, QRgb color);
    const std::vector<QRgb>& lineAcross(Look outlines);
    void paintLines(QPainter* painter, int top, int bottom, Look outlines);
    void findRuns(const std::vector<QRgb>& line, std::size_t most);
    void paintTexture(QPainter* painter, const std::vector<QRgb>& line, int top, int bottom);

    QRect m_cell;
    /// In sixty-fourths of device pixels, in which whole quarters of a scale have no rounding.
    qint64 m_scale = 0;
    qint64 m_offsetX = 0;
    qint64 m_offsetY = 0;
    /// The cell in device pixels, the far edges excluded.
    int m_left = 0;
    int m_right = 0;
    int m_top = 0;
    int m_bottom = 0;
    bool m_hasSelected = false;
    bool m_hasPlain = false;
    /// For each column itself, when it is free, or one further right that may be.
    mutable std::vector<int> m_nextFree;
    std::vector<QRgb> m_colors;
    std::vector<Look> m_looks;
    std::vector<QRgb> m_line;
    std::vector<Columns> m_runs;
};

} // namespace VeskTimeline
