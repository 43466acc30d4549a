#pragma once

#include <VeskTimeline/timeline_utils.h>

#include <QColor>
#include <QFont>
#include <QHeaderView>
#include <QPalette>
#include <QPixmap>

#include <optional>

class QTimer;

namespace VeskTimeline {

class TimelineHeaderViewMouseHandler;
class TimelineView;
class ViewAxis;

/// One mark of the ruler.
struct Tick
{
    Tick() = default;
    /// A mark that is not placed yet.
    explicit Tick(qint64 tickTime) : time(tickTime) {}
    Tick(int position, qint64 tickTime, const QString& text) : pos(position), time(tickTime), label(text) {}

    int pos = -1;     ///< x in ruler pixels; -1 when not placed
    qint64 time = -1; ///< milliseconds since the epoch
    QString label;    ///< the time in the ruler's format
};

using Ticks = QList<Tick>;

/// What a ruler shows when that is not its view's window: a stretch of time of any length, with ticks of its own.
struct RulerScale
{
    qint64 start = 0;  ///< time at the left edge of the time column, milliseconds since the epoch
    qint64 length = 1; ///< milliseconds across the time column, more than 0
    Ticks majorTicks;  ///< labelled; the ruler places these and the others
    Ticks mediumTicks;
    Ticks minorTicks;
    QPalette palette; ///< colours instead of the application's
};

/// Picture of the marker at the start of the visible range: 11 by 11 pixels, in the palette's text colour.
VESKTIMELINE_EXPORT QPixmap getMinLimitIndicator();
/// Picture of the marker at the end of the visible range.
VESKTIMELINE_EXPORT QPixmap getMaxLimitIndicator();

/// The time ruler above a TimelineView: section 0 carries the caption of the track column, section 1 the time scale.
///
/// Besides the ticks it shows an indicator that the user moves, a live indicator that a timer advances, a marker that
/// follows the mouse, and, when limits are visible, the start and end of the visible range. Times are milliseconds
/// since the epoch, positions x coordinates of the ruler; -1 stands for no time and no position.
///
/// The parent must be a TimelineView, from which the visible range is read; without one there is a warning, there are
/// no ticks, and toPixel() and toTime() answer -1. The parent cannot be changed.
class VESKTIMELINE_EXPORT TimelineHeaderView : public QHeaderView
{
    Q_OBJECT

public:
    /// Height, in pixels, of the band at the bottom of the ruler that holds the limit markers.
    static constexpr int s_limitHeight = 22;

    explicit TimelineHeaderView(QWidget* parent);
    ~TimelineHeaderView() override;

    /// Refused with a warning.
    void setParent(QWidget* parent);

    /// Background of the ruler and of texts over the rows: the application palette's base colour.
    static QColor backgroundColor();
    /// Colour of hover marker and indicator, #43B0E0.
    static QColor highlightColor();

    const Ticks& majorTicks() const { return m_majorTicks; }
    const Ticks& mediumTicks() const { return m_mediumTicks; }
    const Ticks& minorTicks() const { return m_minorTicks; }

    /// x of a time, also outside the ruler; -1 for -1. Exact within 2^30 pixels to either side, at that limit beyond.
    int toPixel(qint64 time) const;
    /// Time at an x, also outside the ruler.
    qint64 toTime(int x) const;

    /// Format of the tick labels and of the indicators' times; default DTG.
    DateTime::Format dateTimeFormat() const { return m_dateTimeFormat; }
    /// Writes the ticks' labels anew; emits nothing. Ignored while the format is not changeable.
    void setDateTimeFormat(DateTime::Format format);
    /// Default true.
    bool isDateTimeFormatChangable() const { return m_isDateTimeFormatChangable; }
    void setDateTimeFormatChangable(bool isChangable) { m_isDateTimeFormatChangable = isChangable; }

    /// Caption of section 0.
    const QString& trackLabel() const { return m_trackLabel; }
    void setTrackLabel(const QString& label);

    /// Width of the indicator's triangle relative to the height of the ruler; default 0.5.
    double indicatorScalingFactor() const { return m_indicatorScalingFactor; }
    /// Factors of 0 or less are ignored.
    void setIndicatorScalingFactor(double factor);
    qint64 indicatorTime() const { return m_indicatorTime; }
    /// Snaps the time while the model's snapping is on. Emits indicatorTimeChanged() when the time changes.
    void setIndicatorTime(qint64 time);
    int indicatorPosition() const { return toPixel(m_indicatorTime); }
    void setIndicatorPosition(int x) { setIndicatorTime(toTime(x)); }
    /// Default true.
    bool isIndicatorVisible() const { return m_isIndicatorVisible; }
    /// Emits indicatorVisibilityChanged() on a change.
    void setIndicatorVisible(bool isVisible);
    /// A locked indicator cannot be moved with the mouse; default false.
    bool indicatorLocked() const { return m_isIndicatorLocked; }
    void setIndicatorLocked(bool isLocked) { m_isIndicatorLocked = isLocked; }
    void lockIndicator() { setIndicatorLocked(true); }
    void unlockIndicator() { setIndicatorLocked(false); }

    /// Default 0.5.
    double liveIndicatorScalingFactor() const { return m_liveIndicatorScalingFactor; }
    /// Factors of 0 or less are ignored.
    void setLiveIndicatorScalingFactor(double factor);
    /// Default: the application palette's link colour, also when that changes.
    QColor liveIndicatorColor() const { return m_liveIndicatorColor; }
    void setLiveIndicatorColor(const QColor& color);
    qint64 liveIndicatorTime() const { return m_liveIndicatorTime; }
    /// Snaps the time while the model's snapping is on. Emits liveIndicatorTimeChanged() when the time changes.
    void setLiveIndicatorTime(qint64 time);
    int liveIndicatorPosition() const { return toPixel(m_liveIndicatorTime); }
    void setLiveIndicatorPosition(int x) { setLiveIndicatorTime(toTime(x)); }
    /// Default false.
    bool isLiveIndicatorVisible() const { return m_isLiveIndicatorVisible; }
    /// Emits liveIndicatorVisibilityChanged() on a change.
    void setLiveIndicatorVisible(bool isVisible);
    /// Milliseconds between two steps of the live indicator, and the length of a step; default 1000.
    int liveTimerInterval() const { return m_liveTimerInterval; }
    /// Shows the live indicator and lets it advance by `interval` milliseconds every `interval` milliseconds. A running
    /// timer is restarted, with a warning.
    /// Emits liveIndicatorTimeChanged() and liveIndicatorVisibilityChanged() where these change.
    /// @param startTime a negative one stands for the left edge of the view; snapped while the model's snapping is on
    /// @param interval not above 0: refused with a critical message
    void startLiveTimer(qint64 startTime, int interval);
    /// Stops the timer, takes the live indicator's time away, without a signal for it, and hides the indicator,
    /// emitting liveIndicatorVisibilityChanged(). Does nothing when the timer is idle.
    void stopLiveTimer();

    qint64 hoverTime() const { return m_hoverTime; }
    /// While the marker is visible: a time outside the visible range becomes -1. Always emits hoverPositionChanged().
    void setHoverTime(qint64 time);
    int hoverPosition() const { return m_hoverPosition; }
    /// While the marker is visible; any position. Emits hoverPositionChanged() when position or time change.
    void setHoverPosition(int x);
    /// Default true.
    bool isHoverVisible() const { return m_isHoverVisible; }
    /// Emits hoverVisibilityChanged() on a change.
    void setHoverVisible(bool isVisible);
    /// Whether the marker's time is written beside it; default true.
    bool isHoverTimeVisible() const { return m_isHoverTimeVisible; }
    void setHoverTimeVisible(bool isVisible);
    /// Default DTG.
    DateTime::Format hoverDateTimeFormat() const { return m_hoverDateTimeFormat; }
    void setHoverDateTimeFormat(DateTime::Format format);

    /// Whether start and end of the visible range are shown; default false. The ruler is then 70 pixels high, else 50.
    bool isLimitsVisible() const { return m_isLimitsVisible; }
    void setLimitsVisible(bool isVisible);
    /// Default DTG.
    DateTime::Format limitsDateTimeFormat() const { return m_limitsDateTimeFormat; }
    void setLimitsDateTimeFormat(DateTime::Format format);

    /// Font of all texts of the ruler, for the owner to change; update() the ruler afterwards.
    QFont& font() { return m_font; }
    const QFont& font() const { return m_font; }

    /// Owned by the header.
    TimelineHeaderViewMouseHandler* mouseHandler() const { return m_mouseHandler; }

Q_SIGNALS:
    /// The ticks were computed anew; carries the labelled ones.
    void ticksChanged(const VeskTimeline::Ticks& majorTicks);
    void indicatorTimeChanged(qint64 time);
    void indicatorVisibilityChanged(bool isVisible);
    void liveIndicatorTimeChanged(qint64 time);
    void liveIndicatorVisibilityChanged(bool isVisible);
    void hoverPositionChanged(int x);
    void hoverVisibilityChanged(bool isVisible);

protected:
    /// Shows a scale of the caller's instead of the view's window; toPixel() and toTime() follow, and with them whoever
    /// paints by them. What the view says of its window then changes nothing any more. Emits ticksChanged().
    void setOwnScale(const RulerScale& scale);

    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    bool viewportEvent(QEvent* event) override;
    /// Takes over the colours of another palette.
    void changeEvent(QEvent* event) override;
    void paintSection(QPainter* painter, const QRect& rect, int logicalIndex) const override;

private Q_SLOTS:
    void onUpdateTicks();
    void onLiveTimeout();

private:
    qint64 windowStart() const;
    qint64 windowLength() const;
    QColor textColor() const;
    QColor fillColor() const;
    void takeOverPalette();
    void placeOwnTicks();
    void updateMajorTicks();
    void updateMediumTicks();
    void updateMinorTicks();
    template <typename IsTaken>
    Ticks ticksAt(int interval, IsTaken isTaken) const;
    qint64 snapped(qint64 time) const;
    void repaintRuler();
    void repaintTimeColumn();
    void repaintView();
    void repaintLiveIndicatorInRuler(qint64 from, qint64 to);
    void repaintLiveIndicatorInRows(qint64 from, qint64 to);

    void paintTrackLabel(QPainter* painter, const QRect& rect) const;
    void paintTimeScale(QPainter* painter, const QRect& rect) const;
    void paintTicks(QPainter* painter, const QRect& rect) const;
    void paintLimits(QPainter* painter, const QRect& rect) const;
    void paintLimitMarkers(QPainter* painter, const QPoint& start, const QPoint& end) const;
    void paintTimeText(QPainter* painter, const QRect& box, const QString& text) const;
    void paintHover(QPainter* painter, const QRect& rect) const;
    void paintIndicator(QPainter* painter, const QRect& rect, qint64 time, double scalingFactor,
                        const QColor& color) const;
    /// The part of the ruler that an indicator at a time may cover.
    QRect indicatorStrip(qint64 time, double scalingFactor) const;
    int indicatorSize(double scalingFactor) const;
    bool isScaledByWholeNumber() const;
    /// The first x that repainting the time column has to include.
    int timeColumnLeft() const;
    int tickBaseline(const QRect& rect) const;

    TimelineHeaderViewMouseHandler* m_mouseHandler;
    TimelineView* m_timelineView;
    Ticks m_majorTicks;
    Ticks m_mediumTicks;
    Ticks m_minorTicks;
    DateTime::Format m_dateTimeFormat;
    bool m_isDateTimeFormatChangable;
    double m_indicatorScalingFactor;
    qint64 m_indicatorTime;
    bool m_isIndicatorVisible;
    bool m_isIndicatorLocked;
    double m_liveIndicatorScalingFactor;
    QColor m_liveIndicatorColor;
    qint64 m_liveIndicatorTime;
    bool m_isLiveIndicatorVisible;
    QTimer* m_liveTimer;
    int m_liveTimerInterval;
    qint64 m_hoverTime;
    int m_hoverPosition;
    bool m_isHoverVisible;
    bool m_isHoverTimeVisible;
    DateTime::Format m_hoverDateTimeFormat;
    bool m_isLimitsVisible;
    DateTime::Format m_limitsDateTimeFormat;
    const QPixmap m_minLimitIndicator;
    const QPixmap m_maxLimitIndicator;
    QString m_trackLabel;
    QFont m_font;
    std::optional<RulerScale> m_ownScale;
    QColor m_limitIndicatorColor; ///< that of the two pictures
    bool m_hasOwnLiveIndicatorColor = false;

    friend class TimelineHeaderViewMouseHandler;
    friend class TimelineView;
    friend class ViewAxis;
};

} // namespace VeskTimeline
