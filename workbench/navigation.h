#pragma once

#include "document_extent.h"

#include <VeskTimeline/timeline_utils.h>
#include <VeskTimelineKit/document.h>

#include <QObject>

#include <limits>
#include <optional>

namespace VeskTimeline {
class TimelineView;
class TimelineWidget;
namespace Kit {
class StandardTimelineModel;
}
} // namespace VeskTimeline

namespace Workbench {

enum class TimeStep { Minute, Hour, Day };

/// Moves the window of a timeline through a document of any length; the one place that decides which range the view
/// has.
///
/// A view's range is an int of milliseconds, 24.8 days. Of a longer document the range is the part around the window,
/// and moves on before the window comes to its end, so that scrolling, whoever does it, never stops inside the
/// document. All times are milliseconds since the epoch.
///
/// The widget's own slider counts seconds in an int, which holds the years 1901 to 2038 only, and would push the window
/// about outside of them: it is cut off and hidden. WindowScrollBar takes its place.
class Navigation : public QObject
{
    Q_OBJECT

public:
    static constexpr qint64 longestRange = std::numeric_limits<int>::max();
    /// The years 0001 to 9999.
    static constexpr qint64 earliest = -62'135'596'800'000;
    static constexpr qint64 latest = 253'402'300'799'999;

    /// @param widget has the model already; neither is owned
    Navigation(VeskTimeline::TimelineWidget* widget, VeskTimeline::Kit::StandardTimelineModel* model,
               QObject* parent = nullptr);

    /// From the earliest start to the latest end. Nothing without items.
    std::optional<VeskTimeline::Kit::TimeSpan> documentSpan() const { return m_extent.span(); }
    /// The document in whole seconds, and when it is short with room up to the next zoom factor, so that it can be seen
    /// whole. Without items as it was with the last ones, until fit() makes it today.
    VeskTimeline::Kit::TimeSpan overviewSpan() const;
    /// How far scrolling gets: overviewSpan(), and what commands have shown beyond it since the last fit(). It does not
    /// shrink while items are edited, lest that moves the window.
    const VeskTimeline::Kit::TimeSpan& reach() const { return m_reach; }
    /// What the view shows.
    VeskTimeline::Kit::TimeSpan window() const;

    VeskTimeline::TimelineWidget* widget() const { return m_widget; }
    VeskTimeline::Kit::StandardTimelineModel* model() const { return m_model; }

    /// Lets the window begin at a time, within reach().
    void scrollTo(qint64 start);
    /// As scrollTo() with the middle of the window.
    void scrollCentreTo(qint64 time);
    /// Sets zoom and start of the window in one go, within reach().
    void setWindow(qint64 start, VeskTimeline::Zoom::Factor factor);
    /// The next smaller (direction 1) or larger (-1) zoom factor, with the middle of the window staying where it is.
    void zoomBy(int direction);
    /// The moment within an item that is closest to a time, and no farther from it than a distance.
    std::optional<qint64> closestToItems(qint64 time, qint64 distance) const;
    /// Whether page() has somewhere to go.
    bool canPage(int direction) const;

public Q_SLOTS:
    /// The start of the document at the widest zoom.
    void fit();
    /// Lets the window begin at a time, also outside the document, in the years 1 to 9999. The zoom stays.
    void goToTime(qint64 time);
    /// As goToTime() with the middle of the window.
    void centreOn(qint64 time);
    /// Selects an item and brings it into view, opening the tracks above it. The window moves only when the item is not
    /// seen whole. @return false, with nothing changed, when there is no such item
    bool goToItem(int itemId);
    /// The window begins with the first item.
    void goToFirstItem();
    /// The last item ends in the middle of the window.
    void goToLastItem();
    /// Moves the window, also out of the document. @param direction 1 for later, -1 for earlier
    void stepBy(Workbench::TimeStep step, int direction);
    /// Moves by a window's width, or, where that shows no item, on to the next one; not out of the document.
    /// @param direction 1 for later, -1 for earlier
    void page(int direction);

Q_SIGNALS:
    /// What the view shows has changed.
    void windowChanged(qint64 start, qint64 end);
    /// overviewSpan() or documentSpan() has changed.
    void documentSpanChanged();
    void reachChanged();

private:
    VeskTimeline::TimelineView* view() const;
    void cutOffSlider();
    void follow();
    void grow();
    void extendReach(const VeskTimeline::Kit::TimeSpan& span);
    void setReach(const VeskTimeline::Kit::TimeSpan& span);
    VeskTimeline::Kit::TimeSpan rangeAround(qint64 start) const;
    void placeRange(qint64 start);
    void placeWindow(qint64 start);
    void announce();
    void showRowOf(int trackId);
    std::optional<qint64> startOfNextPart() const;
    std::optional<qint64> startOfPreviousPart() const;

    VeskTimeline::TimelineWidget* m_widget;
    VeskTimeline::Kit::StandardTimelineModel* m_model;
    DocumentExtent m_extent;
    VeskTimeline::Kit::TimeSpan m_spanWithoutItems;
    VeskTimeline::Kit::TimeSpan m_reach;
    VeskTimeline::Kit::TimeSpan m_announcedWindow;
    bool m_isPlacing = false;
};

} // namespace Workbench
