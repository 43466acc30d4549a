#pragma once

#include <VeskTimeline/timeline_utils.h>

#include <QIcon>
#include <QList>
#include <QMetaObject>
#include <QWidget>

class IHoxLogger;
class QAbstractItemModel;
class QScrollBar;
class Ui_Timeline;

namespace VeskTimeline {

class TimelineHeaderView;
class TimelineModel;
class TimelineView;

/// A TimelineView with all that is around it: a scroll bar that pans the window in whole seconds, zoom buttons and a
/// box of zoom factors, a place for a widget of the application, and a hidden debug panel.
///
/// It adds no logic of its own: everything is forwarded to the view or the model, and the controls follow the view's
/// signals. Model and ItemDelegate come from the application: setModel() and view()->setItemDelegate(). The zoom icons
/// are "icon:pnx_zoom_in.svg" and "icon:pnx_zoom_out.svg", under a QDir search path that the application provides.
class VESKTIMELINE_EXPORT TimelineWidget : public QWidget
{
    Q_OBJECT

public:
    explicit TimelineWidget(QWidget* parent = nullptr);
    ~TimelineWidget() override;

    /// Leaves the slider out, which is as wide as the time column and so follows the widget's width: it must not hold
    /// the widget at the width it has.
    QSize minimumSizeHint() const override;

    TimelineView* view() const;
    /// The view's header; null when the view was given one that is no TimelineHeaderView.
    TimelineHeaderView* header() const;
    /// The view's model; null before setModel().
    TimelineModel* timelineModel() const;
    /// Its value is the left edge of the window in whole seconds since the epoch.
    QScrollBar* slider() const;
    /// See TimelineView::setModel().
    void setModel(QAbstractItemModel* model);

    /// The following are those of TimelineView. The slider follows, and as it counts whole seconds it cuts the window's
    /// start to them: after setCurrentTime(1500) currentTime() is 1000, with a currentTimeChanged() for each of the
    /// two.
    Zoom::Factor zoomFactor() const;
    void setZoomFactor(Zoom::Factor factor);
    Zoom::Factor minimumZoomFactor() const;
    void setMinimumZoomFactor(Zoom::Factor factor);
    Zoom::Factor maximumZoomFactor() const;
    void setMaximumZoomFactor(Zoom::Factor factor);
    qint64 startTime() const;
    void setStartTime(qint64 time);
    qint64 currentTime() const;
    void setCurrentTime(qint64 time);
    qint64 endTime() const;
    void setEndTime(qint64 time);
    int duration() const;
    void setDuration(int duration);
    bool isCursorTextVisible() const;
    void setCursorTextVisible(bool isVisible);
    void setCursorText(const QString& text);

    /// The model's snapping; false, and without effect, while there is no model.
    bool isSnapEnabled() const;
    void setSnapEnabled(bool isEnabled);
    void enableSnap() { setSnapEnabled(true); }
    void disableSnap() { setSnapEnabled(false); }

    /// Icons of the zoom buttons in place of "icon:pnx_zoom_in.svg" and "icon:pnx_zoom_out.svg".
    void setZoomInIcon(const QIcon& icon);
    void setZoomOutIcon(const QIcon& icon);

    /// The application's widget below the time axis; null for none.
    QWidget* placeholder() const;
    /// Takes ownership, and deletes the widget that was there before. Null removes it. It is shown below the track
    /// column, no wider than that leaves room beside the zoom controls.
    void setPlaceholder(QWidget* placeholder);

    /// Shows a panel with the view's range, zoom and selection, and controls for snapping, indicator and hover marker.
    void showDebugWidget();
    void hideDebugWidget();
    /// Turns the model's snapping on or off.
    void triggerSnap();

public Q_SLOTS:
    /// These keep controls and view in step; they are connected by the widget itself.
    void onSectionResized(int logicalIndex, int oldSize, int newSize);
    void onSliderValueChanged(int value);
    void onZoomChanged(VeskTimeline::Zoom::Factor factor);
    void onZoomSelected();
    void onZoomIn();
    void onZoomOut();
    void onUpdateDebugInfo();

private:
    void onUpdateZoomButtons();
    void populateZoomFactorComboBox();
    void connectControls();
    void followRange(qint64 start, qint64 end);
    void alignWithTimeColumn(int columnWidth);
    void connectDebugWidget();
    void disconnectDebugWidget();
    void updateDebugButtons();

    IHoxLogger& m_logger;
    Ui_Timeline* m_ui;
    QList<QMetaObject::Connection> m_debugConnections;
};

} // namespace VeskTimeline
