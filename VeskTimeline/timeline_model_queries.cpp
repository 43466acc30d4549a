#include "track_items_p.h"

#include <VeskTimeline/timeline_model.h>

#include <algorithm>

namespace VeskTimeline {

namespace {

bool isOwnItemBetween(const Track& track, const ItemInterval& interval, const std::function<bool(int)>& isIgnored,
                      bool recursive)
{
    if (isAnyOwnItemBetween(track, interval, isIgnored))
        return true;
    return recursive && std::any_of(track.tracks().begin(), track.tracks().end(), [&](const TrackPtr& child) {
               return isOwnItemBetween(*child, interval, isIgnored, true);
           });
}

} // namespace

QVector<int> TimelineModel::itemIdsBetween(qint64 start, qint64 end, bool strict, bool complete, bool recursive,
                                           bool sorted) const
{
    return m_rootTrack.itemIdsBetween(start, end, strict, complete, recursive, sorted);
}

QVector<int> TimelineModel::copyItemIdsBetween(qint64 start, qint64 end, bool strict, bool complete, bool sorted) const
{
    return m_rootTrack.copyItemIdsBetween(start, end, strict, complete, true, sorted);
}

bool TimelineModel::isItemsBetween(qint64 start, qint64 end, const QVector<int>& ignoreIds, bool strict, bool complete,
                                   bool recursive) const
{
    return m_rootTrack.isItemsBetween(start, end, ignoreIds, strict, complete, recursive);
}

bool TimelineModel::isItemsBetween(qint64 start, qint64 end, int ignoreId, bool strict, bool complete,
                                   bool recursive) const
{
    return m_rootTrack.isItemsBetween(start, end, ignoreId, strict, complete, recursive);
}

void TimelineModel::sortByStartTime(QVector<int>& ids) const
{
    std::stable_sort(ids.begin(), ids.end(), [this](int left, int right) {
        try {
            return item(left)->startTime() < item(right)->startTime();
        } catch (...) {
            return false;
        }
    });
}

QVector<int> TimelineModel::_itemIdsBetween(Track& t, qint64 start, qint64 end, bool strict, bool complete,
                                            bool recursive, bool sorted, qint64 minimumDuration) const
{
    QVector<int> ids;
    appendOwnIdsBetween(ids, t, {start, end, strict, complete, minimumDuration});
    if (recursive) {
        for (const TrackPtr& child : std::as_const(t).tracks())
            ids.append(_itemIdsBetween(*child, start, end, strict, complete, true, false, minimumDuration));
    }
    ids.squeeze();
    if (sorted)
        sortByStartTime(ids);
    return ids;
}

QVector<int> TimelineModel::_copyItemIdsBetween(Track& t, qint64 start, qint64 end, bool strict, bool complete,
                                                bool recursive, bool sorted, qint64 minimumDuration) const
{
    QVector<int> ids;
    for (const int id : t.copyItemIds()) {
        if (Track::isItemBetween(*item(id), start, end, strict, complete, minimumDuration))
            ids.append(id);
    }
    if (recursive) {
        for (const TrackPtr& child : std::as_const(t).tracks())
            ids.append(_copyItemIdsBetween(*child, start, end, strict, complete, true, false, minimumDuration));
    }
    ids.erase(std::unique(ids.begin(), ids.end()), ids.end());
    ids.squeeze();
    if (sorted)
        sortByStartTime(ids);
    return ids;
}

bool TimelineModel::_isItemsBetween(const Track& t, qint64 start, qint64 end, const QVector<int>& ignoreIds,
                                    bool strict, bool complete, bool recursive, qint64 minimumDuration) const
{
    return isOwnItemBetween(t, {start, end, strict, complete, minimumDuration}, isOneOf(ignoreIds), recursive);
}

bool TimelineModel::_isItemsBetween(const Track& t, qint64 start, qint64 end, int ignoreId, bool strict, bool complete,
                                    bool recursive, qint64 minimumDuration) const
{
    return _isItemsBetween(t, start, end, QVector<int>{ignoreId}, strict, complete, recursive, minimumDuration);
}

} // namespace VeskTimeline
