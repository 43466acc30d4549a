#pragma once

// Internal to the kit; not installed.

#include <QtGlobal>
#include <queue>

#include <functional>
#include <utility>
#include <vector>

namespace VeskTimeline::Kit {

/// Puts intervals on lanes so that none of a lane overlap, on as few lanes as that takes. Of intervals that are nested
/// in each other the outer one comes to lie above the inner ones.
///
/// The end is not part of an interval, but one without length keeps its place for a millisecond: two markers of the
/// same time would hide each other.
class LanePacker
{
public:
    /// @param start never before that of the call before; of the same start the longest first
    /// @return the lane, from 0
    int place(qint64 start, qint64 end)
    {
        while (!m_busy.empty() && m_busy.top().first <= start) {
            m_free.push(m_busy.top().second);
            m_busy.pop();
        }
        if (m_free.empty())
            m_free.push(m_count++);
        const int lane = m_free.top();
        m_free.pop();
        m_busy.push({end > start ? end : start + 1, lane});
        return lane;
    }

private:
    template <typename Value>
    using LeastFirst = std::priority_queue<Value, std::vector<Value>, std::greater<Value>>;

    LeastFirst<std::pair<qint64, int>> m_busy; // with the ends
    LeastFirst<int> m_free;
    int m_count = 0;
};

} // namespace VeskTimeline::Kit
