#pragma once

// Internal to the library; not installed.

#include <QtGlobal>

#include <functional>
#include <vector>

namespace VeskTimeline {

class Item;
class TimelineModel;

/// A closed interval of times or of offsets, in milliseconds; empty when it ends before it begins.
struct TimeWindow
{
    qint64 from;
    qint64 to;

    bool isEmpty() const { return to < from; }
    bool contains(qint64 time) const { return from <= time && time <= to; }
    TimeWindow shifted(qint64 offset) const { return {from + offset, to + offset}; }
};

/// Finds the few items of a model onto whose edges another can snap, without asking all others.
///
/// The model's ids say which items there are and in which order, the tracks which of them are near. Should the model
/// name more items than its tracks hold, because a subclass fills the model's cache itself, all are asked. For use
/// while the model does not change.
class SnapCandidates
{
public:
    using IdTest = std::function<bool(int id)>;
    using LostHandler = std::function<void()>;

    /// @param isLeftOut ids that are no candidates and are not looked up
    /// @param onLost called inside the catch block when the look-up of an id that the model names fails; the id is
    /// passed over unless this throws
    SnapCandidates(const TimelineModel& model, IdTest isLeftOut, LostHandler onLost);

    /// Items, of any track, that start in one window or end in the other, each once, in the order of
    /// TimelineModel::itemIds(); others may be among them.
    std::vector<const Item*> find(const TimeWindow& starts, const TimeWindow& ends) const;

private:
    bool namesMoreThanTracksHold() const;
    std::vector<const Item*> lookUpAll() const;
    bool isNamed(const Item& item) const;
    const Item* lookUp(int id) const;

    const TimelineModel& m_model;
    IdTest m_isLeftOut;
    LostHandler m_onLost;
    bool m_asksAll;
    std::vector<const Item*> m_all;
};

} // namespace VeskTimeline
