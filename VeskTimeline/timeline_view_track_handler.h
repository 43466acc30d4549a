#pragma once

#include <VeskTimeline/vesktimeline_export.h>

#include <QModelIndex>

class QMouseEvent;
class QPoint;

namespace VeskTimeline {

class TimelineView;

/// Serves the track names: the insert and remove buttons at the right end of a name cell, which ItemDelegate paints,
/// the question before a track is removed, and the double click that activates a track.
///
/// What the buttons mean is the model's: TimelineModel::onInsertTrack() and TimelineModel::onRemoveTrack(). They are
/// dead while the model is not editable. No operation throws.
class VESKTIMELINE_EXPORT TimelineViewTrackHandler
{
public:
    /// @param view the view served; not owned
    explicit TimelineViewTrackHandler(TimelineView* view);
    TimelineViewTrackHandler(const TimelineViewTrackHandler&) = delete;
    TimelineViewTrackHandler& operator=(const TimelineViewTrackHandler&) = delete;
    virtual ~TimelineViewTrackHandler();

    /// Left button on a name: emits TimelineView::trackActivated() with the name as a number.
    virtual void mouseDoubleClickEvent(QMouseEvent* event);
    /// Left button: on an insert button inserts at once; on a remove button asks first. Right button: emits the view's
    /// customContextMenuRequested().
    virtual void mousePressEvent(QMouseEvent* event);
    /// Raises the buttons again.
    virtual void mouseReleaseEvent(QMouseEvent* event);

    bool isInsertButtonPressed(const QModelIndex& index) const { return index == m_pressedInsertButtonIndex; }
    bool isRemoveButtonPressed(const QModelIndex& index) const { return index == m_pressedRemoveButtonIndex; }

protected:
    TimelineView* m_view;
    /// Name cell whose button is held down; invalid for none.
    QModelIndex m_pressedInsertButtonIndex;
    QModelIndex m_pressedRemoveButtonIndex;

private:
    void pressButtonOf(const QModelIndex& index, const QPoint& pos);
    void askToRemove(const QModelIndex& index);
    void removeTrack(const QModelIndex& index);
};

} // namespace VeskTimeline
