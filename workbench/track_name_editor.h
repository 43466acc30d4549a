#pragma once

#include <QLineEdit>
#include <QPointer>

namespace VeskTimeline {
class TimelineView;
}

namespace Workbench {

/// A line over the name of a track in which it is changed: Return and leaving the line take the name, Escape drops it.
/// It goes away by itself, also when the row does or moves.
class TrackNameEditor : public QLineEdit
{
    Q_OBJECT

public:
    TrackNameEditor(VeskTimeline::TimelineView* view, int trackId, const QString& name);

    /// Takes what is typed, as leaving the line does.
    void commit() { finish(true); }

Q_SIGNALS:
    /// Only for another name, and not for an empty one.
    void named(const QString& name);

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    void place();
    void finish(bool isTaken);

    VeskTimeline::TimelineView* m_view;
    int m_trackId;
    QString m_former;
    bool m_isFinished = false;
};

} // namespace Workbench
