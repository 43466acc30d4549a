#pragma once

#include "item_walk.h"

#include <VeskTimelineKit/document.h>

#include <QObject>
#include <QTimer>

#include <vector>

namespace Workbench {

class Navigation;

/// How many items there are at each part of a document, counted a while at a time and anew after each change of the
/// document. While it counts, it has the result of the time before.
class OverviewDensity : public QObject
{
    Q_OBJECT

public:
    /// Parts into which the span is divided; more than a screen has columns.
    static constexpr int partCount = 4096;

    explicit OverviewDensity(const Navigation* navigation, QObject* parent = nullptr);

    /// What the parts are parts of.
    const VeskTimeline::Kit::TimeSpan& span() const { return m_span; }
    /// Items in each part. One without duration, and an open-ended one at its start, counts in a single part, any
    /// other in all that it touches.
    const std::vector<int>& counts() const { return m_counts; }
    /// The largest of counts().
    int highest() const { return m_highest; }
    /// Counts for a moment if there is something to count; small documents are then done.
    void hasten();

Q_SIGNALS:
    void changed();

private:
    void schedule();
    void start();
    void work();
    void count(const VeskTimeline::Item& item);
    int partOf(qint64 time) const;
    void finish();

    const Navigation* m_navigation;
    ItemWalk m_walk;
    VeskTimeline::Kit::TimeSpan m_span;
    std::vector<int> m_counts;
    int m_highest = 0;
    VeskTimeline::Kit::TimeSpan m_countedSpan;
    /// How many more items there are in a part than in the one before.
    std::vector<int> m_differences;
    QTimer m_delay;
    QTimer m_slices;
    bool m_isStale = false;
};

} // namespace Workbench
