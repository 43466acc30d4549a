#pragma once

#include "item_walk.h"

#include <QObject>
#include <QString>
#include <QTimer>

#include <vector>

namespace Workbench {

/// An item that a search found. Ordered by time, at the same time from the top track down.
struct Match
{
    qint64 start = 0; ///< milliseconds since the epoch
    int row = 0;      ///< of the track, over the whole tree
    int id = -1;

    friend bool operator<(const Match& left, const Match& right)
    {
        if (left.start != right.start)
            return left.start < right.start;
        return left.row != right.row ? left.row < right.row : left.id < right.id;
    }
};

/// Finds the items that say something, a while at a time, and again after each change of the model.
///
/// Of an item that is shown in pieces the first one is found.
class ItemSearch : public QObject
{
    Q_OBJECT

public:
    /// @param model not owned
    explicit ItemSearch(const VeskTimeline::Kit::StandardTimelineModel* model, QObject* parent = nullptr);

    /// Begins a search; the matches of the one before are gone. An empty text finds nothing.
    /// @param withDetails also descriptions, names and values of attributes
    void start(const QString& text, bool withDetails);
    void stop();

    const QString& text() const { return m_text; }
    bool isRunning() const { return m_slices.isActive() || m_delay.isActive(); }
    /// What has been found so far, in order.
    const std::vector<Match>& matches() const { return m_matches; }

Q_SIGNALS:
    /// There are more matches.
    void progressed();
    /// All items have been looked at. After a change of the model it comes again.
    void finished();

private:
    void onModelChanged();
    void restart();
    void work();
    bool isMatch(const VeskTimeline::Kit::LabelledItem& item) const;

    const VeskTimeline::Kit::StandardTimelineModel* m_model;
    ItemWalk m_walk;
    QString m_text;
    bool m_withDetails = false;
    std::vector<Match> m_matches;
    /// While a search is repeated, the matches of the one before stay until there are all of the new one.
    std::vector<Match> m_found;
    bool m_isRepeated = false;
    bool m_isStale = false;
    QTimer m_slices;
    QTimer m_delay;
};

} // namespace Workbench
