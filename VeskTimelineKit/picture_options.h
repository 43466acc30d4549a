#pragma once

#include <VeskTimeline/timeline_utils.h>
#include <VeskTimelineKit/document.h>
#include <VeskTimelineKit/vesktimelinekit_export.h>

#include <QPageLayout>
#include <QPalette>
#include <QVector>

#include <functional>
#include <optional>

namespace VeskTimeline {
class ItemDelegate;
class TimelineView;
} // namespace VeskTimeline

namespace VeskTimeline::Kit {

/// How a picture is spread over pages.
struct VESKTIMELINEKIT_EXPORT PicturePages
{
    /// A4, landscape, with margins of 10 mm.
    QPageLayout layout = defaultLayout();
    double zoom = 0.75;     ///< size on paper, where 1 makes 96 pixels of the screen an inch; 0.1 to 4
    int pagesAcross = 1;    ///< the range is spread over so many pages side by side
    qint64 timePerPage = 0; ///< above 0, instead of pagesAcross: milliseconds that a page shows

    int firstPage = 1; ///< pages before this one are left out
    int lastPage = 0;  ///< above 0: pages behind this one are left out

    static QPageLayout defaultLayout();
};

/// What a picture shows, and how large.
struct VESKTIMELINEKIT_EXPORT PictureOptions
{
    /// Narrowest and widest picture, in pixels.
    static constexpr int leastWidth = 300;
    static constexpr int mostWidth = 1'000'000;

    /// Without: from the first to the last item, and a little more at both ends.
    std::optional<TimeSpan> range;
    /// The tracks to show. Tracks above one of them are there as headings, without their items. Empty: all.
    QVector<int> trackIds;

    /// Of the whole picture in pixels, names included. Not for pages.
    int width = 1600;
    /// Above 0, instead of `width`: milliseconds for each pixel.
    double timePerPixel = 0.0;
    /// PNG: pixels of the picture for each pixel of the screen, in both directions; 0.25 to 8.
    double scale = 1.0;

    QPalette palette = lightPalette();
    /// Of the ruler. Without: times of day, where there is room between them for no more than a date, dates.
    std::optional<DateTime::Format> dateTimeFormat;
    /// Whether start and end of the range stand below the ticks.
    bool hasLimits = true;
    /// Without: no indicator.
    std::optional<qint64> indicatorTime;
    QString trackLabel; ///< over the names
    QString title;      ///< above the picture, or at the foot of each page

    PicturePages pages;

    /// Makes the delegate that paints the rows of a view, which then owns it. Empty: an ItemDelegate that leaves out
    /// the buttons, which would do nothing on a picture.
    std::function<ItemDelegate*(TimelineView*)> makeDelegate;

    static QPalette lightPalette();
    static QPalette darkPalette();
};

} // namespace VeskTimeline::Kit
