#pragma once

#include <VeskTimeline/vesktimeline_export.h>

#include <QStyledItemDelegate>

#include <memory>

class QPushButton;

namespace VeskTimeline {

class RowPainter;
class TimelineView;

/// Paints the rows of a TimelineView: the track name with its buttons in column 0, the track's items in column 1, and,
/// over all rows, the items that are being dragged.
///
/// The look of an item is Item::paint(). The application creates one delegate for a view and passes it to
/// TimelineView::setItemDelegate().
class VESKTIMELINE_EXPORT ItemDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    /// @param view the view painted for, which becomes the Qt parent
    explicit ItemDelegate(TimelineView* view);
    ~ItemDelegate() override;

    /// Failures are logged at Error to "Timeline.TimelineView"; a copy item that the model does not
    /// know is reported on standard error and left out.
    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    /// 100 by 50 pixels for every index: all rows have the same height.
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

    /// Paints the dragged items displaced by the drag, in the order of the drag list up to one that starts behind the
    /// view's range. The view calls it when the rows are painted.
    virtual void paintDragItems(QPainter* painter) const;
    /// Paints the insert and remove buttons of a track, disabled while the model is not editable.
    virtual void paintTrackButtons(QPainter* painter, const QStyleOptionViewItem& option,
                                   const QModelIndex& index) const;

protected:
    TimelineView* m_view;
    /// Never shown: pictures of a button, up and down.
    QPushButton* m_pushButton;
    QPushButton* m_pushButtonPressed;

private:
    void paintNameCell(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const;
    void paintTimeCell(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const;
    void paintButton(QPainter* painter, QPushButton* button, const QString& text, const QRect& square) const;

    const std::unique_ptr<RowPainter> m_rowPainter;
};

} // namespace VeskTimeline
