#pragma once

// Internal to the kit; not installed.

#include <VeskTimeline/timeline_view.h>
#include <VeskTimelineKit/picture_options.h>

#include <QFontMetrics>

namespace VeskTimeline::Kit {

class PictureRuler;

/// A view that is never shown: it paints a timeline's ruler and rows, with its delegate, onto whatever painter.
///
/// Rows are those of the tracks that the options ask for, counted from 0 from top to bottom. It paints whatever the
/// model holds by then; whoever paints in several goes watches the model.
class PictureView : public TimelineView
{
    Q_OBJECT

public:
    /// @param model must outlive this object
    PictureView(TimelineModel& model, const PictureOptions& options);
    ~PictureView() override;

    int rowCount() const { return m_rowCount; }
    int rowHeight() const { return m_rowHeight; }
    int rulerHeight() const;
    /// Of the column with the names, all of them if they are not too long, for a picture of that width.
    int nameWidth(int pictureWidth) const;

    /// Shows a range across a picture of that width; to be called before anything is painted.
    void layOut(const TimeSpan& range, int width);

    /// Paints the ruler at the origin.
    void paintRuler(QPainter& painter) const;
    void paintRulerColumn(QPainter& painter, int column) const;
    /// Paints one row, its top left at the origin, one column of it or, with -1, all of it.
    void paintRow(QPainter& painter, int row, int column = -1) const;
    QRect columnRect(int column) const;

protected:
    void drawBranches(QPainter* painter, const QRect& rect, const QModelIndex& index) const override;

private:
    int showTracks(const QSet<int>& trackIds, const QModelIndex& parent, int level);
    void paintIndicatorLine(QPainter& painter) const;

    const PictureOptions m_options;
    PictureRuler* m_ruler = nullptr;
    int m_rowCount = 0;
    int m_rowHeight = 0;
    int m_widestName = 0;
    int m_width = 0;
};

} // namespace VeskTimeline::Kit
