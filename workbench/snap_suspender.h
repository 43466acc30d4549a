#pragma once

#include <QObject>
#include <QPointer>
#include <QWidget>

namespace VeskTimeline {
class TimelineModel;
class TimelineView;
} // namespace VeskTimeline

namespace Workbench {

/// Suspends the model's snapping while Shift is held during a gesture of the left mouse button in the view's rows, from
/// the next move of the mouse or key on until Shift or the button is let go.
class SnapSuspender : public QObject
{
    Q_OBJECT

public:
    /// @param view becomes the parent
    SnapSuspender(VeskTimeline::TimelineModel* model, VeskTimeline::TimelineView* view);

    bool isSuspending() const { return m_isSuspending; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void filterMouse(QEvent* event);
    void filterKey(QEvent* event);
    void update();

    QPointer<VeskTimeline::TimelineModel> m_model;
    QPointer<QWidget> m_viewport; ///< events still come while the view is being destroyed
    bool m_isHeld = false;
    bool m_isShift = false;
    bool m_isSuspending = false;
};

} // namespace Workbench
