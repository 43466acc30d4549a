#pragma once

#include <QObject>

#include <optional>

class QSettings;

namespace VeskTimeline {
class TimelineView;
}

namespace Workbench {

/// The width of the column with the tracks' names: as the names need it, until the user drags its border; from then on
/// as the user left it.
class NameColumn : public QObject
{
    Q_OBJECT

public:
    /// @param view shows a model; becomes the parent
    explicit NameColumn(VeskTimeline::TimelineView* view);

    /// For other tracks.
    void fit();

    /// What is missing or wrong changes nothing.
    void restore(const QSettings& settings);
    /// Nothing while the width is not the user's.
    void save(QSettings& settings) const;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void setWidth(int width);

    VeskTimeline::TimelineView* m_view;
    std::optional<int> m_chosen;
    bool m_isPressed = false;
};

} // namespace Workbench
