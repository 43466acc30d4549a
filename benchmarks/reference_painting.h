#pragma once

#include <QColor>
#include <QImage>
#include <QString>
#include <QWidget>

#include <vector>

namespace VeskTimeline {
class TimelineView;
} // namespace VeskTimeline

/// Two programs that do nothing but show the items that a view shows, written by hand and straight to the point, to
/// compare the view's frames with: what the same picture costs without anything that makes a timeline an editable one.
///
/// Both keep plain arrays, sorted by start time, know the longest item, and look only at the items of the window. Both
/// paint what the view's viewport does: the alternating backgrounds of the rows, the tracks' names, and on them the
/// bars with their outlines. What they leave out are the marks of items outside the window, which in the view lie on
/// the first and last columns of pixels, tree branches, and all that moves over the rows.
namespace ReferencePainting {

struct Bar
{
    qint64 start;
    int duration;
    QRgb color;
    bool isSelected;
};

struct Row
{
    QString name;
    std::vector<Bar> bars; ///< by start time
    int longest = 0;       ///< duration of the longest of them
};

/// What a view shows: its tracks from the top, children behind their parents, and where the columns are.
struct Content
{
    std::vector<Row> rows;
    QSize size;
    int nameWidth = 0;
    int rulerWidth = 0;
    int rowHeight = 50;

    /// As a view that has been shown has it, with its selection. The rows are those of an expanded tree.
    static Content of(const VeskTimeline::TimelineView& view);
};

/// What both programs have in common. A window of its own, of the size of the view's viewport.
class Painting : public QWidget
{
public:
    explicit Painting(Content content);

    /// Shows a window of time that begins at `start` and lasts `span`, both in milliseconds. Does not repaint.
    void setWindow(qint64 start, qint64 span);
    void setSelected(bool areAllSelected);
    /// Number of different rectangles among the bars in the window, hidden ones included, as R paints them.
    int distinctRectangles() const;

protected:
    struct Columns
    {
        int left;
        int right;
        friend bool operator==(const Columns& one, const Columns& other)
        {
            return one.left == other.left && one.right == other.right;
        }
    };

    const Content& content() const { return m_content; }
    int visibleRows() const;
    QColor background(int row) const;
    void paintNames(QPainter* painter) const;
    /// Calls `visit(const Bar&, Columns)` for the bars of the window whose columns, or look, differ from those of the
    /// next one.
    template <typename Visit>
    void visitDistinct(const Row& row, const Visit& visit) const;

private:
    Columns columnsOf(const Bar& bar) const;

    Content m_content;
    qint64 m_start = 0;
    qint64 m_span = 1;
};

/// R: a QPainter that gets just the distinct rectangles of the window, each as an outline filled over.
class Rectangles : public Painting
{
public:
    using Painting::Painting;

protected:
    void paintEvent(QPaintEvent* event) override;
};

/// S: the rows written line by line into a picture, which is then copied to the screen at once.
class ScanLines : public Painting
{
public:
    using Painting::Painting;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void writeRow(int row);

    QImage m_picture;
    std::vector<QRgb> m_edgeLine;   ///< through the outlines above and below
    std::vector<QRgb> m_secondLine; ///< where only selected bars still have an outline
    std::vector<QRgb> m_innerLine;
};

} // namespace ReferencePainting
