#pragma once

#include <VeskTimeline/timeline_utils.h>

#include <QObject>
#include <QTimer>

#include <optional>

class QSettings;

namespace VeskTimeline {
class TimelineWidget;
}

namespace Workbench {

/// How the user wants the timeline to look and to behave: what the menu entries for snapping, live mode and ruler set.
/// Each setter takes effect at once and emits changed() when the value is another.
class ViewSettings : public QObject
{
    Q_OBJECT

public:
    using Format = VeskTimeline::DateTime::Format;

    /// Applies the defaults. @param timeline has a model; becomes the parent
    explicit ViewSettings(VeskTimeline::TimelineWidget* timeline);

    bool isSnapEnabled() const;
    void setSnapEnabled(bool isEnabled);
    /// Milliseconds, 0 for no grid; negative ones are ignored. Default 500.
    int snapStep() const;
    void setSnapStep(int step);
    /// Milliseconds within which an edge is pulled onto another; negative ones are ignored. Default 1000.
    int snapTolerance() const;
    void setSnapTolerance(int tolerance);

    /// Whether a line shows the wall clock's time; default off.
    bool isLive() const { return m_clock.isActive(); }
    void setLive(bool isLive);
    /// Whether the view moves along, as long as the present is in its range; default off.
    bool followsLive() const { return m_followsLive; }
    void setFollowsLive(bool follows);

    /// Nothing: by zoom, hours and minutes, with seconds where the ticks need them. The default.
    std::optional<Format> rulerFormat() const { return m_rulerFormat; }
    void setRulerFormat(std::optional<Format> format);
    /// Letter of the zone of date-time groups, see DTG; others are ignored. It is that of the whole process.
    char zone() const;
    void setZone(char zone);
    /// All letters, from UTC-12 to UTC+12.
    static QString zones();
    /// "Z (UTC)", "A (UTC+1)".
    static QString zoneText(char zone);

    bool areLimitsVisible() const;
    void setLimitsVisible(bool isVisible);
    bool isIndicatorVisible() const;
    void setIndicatorVisible(bool isVisible);
    bool isHoverVisible() const;
    void setHoverVisible(bool isVisible);

    /// Values that are missing or wrong are left as they are.
    void restore(const QSettings& settings);
    void save(QSettings& settings) const;

public Q_SLOTS:
    /// To be called when the zoom factor changes.
    void updateRulerFormat();

Q_SIGNALS:
    void changed();

private:
    void showNow();
    void repaint();

    VeskTimeline::TimelineWidget* m_timeline;
    QTimer m_clock;
    bool m_followsLive = false;
    std::optional<Format> m_rulerFormat;
};

} // namespace Workbench
