#pragma once

// Internal to the kit; not installed.

#include "id_table_p.h"
#include "journal_records_p.h"

#include <VeskTimeline/item.h>

#include <map>

namespace VeskTimeline {
class Track;
}

namespace VeskTimeline::Kit {

class StandardTimelineModel;

/// Takes down what a model holds, some at a time. The model must not change until it is done.
class JournalTaking
{
public:
    JournalTaking() = default;
    virtual ~JournalTaking() = default;
    Q_DISABLE_COPY_MOVE(JournalTaking)

    /// @param count how many steps, each of well less than a microsecond or about one
    /// @return whether it is done
    virtual bool advance(int count) = 0;
    /// When done.
    JournalDelta delta() && { return std::move(m_delta); }

protected:
    JournalDelta m_delta;
};

/// What has become of some items. It looks at those that start together with one of them and at no others, unless most
/// of a track are asked for.
class TouchedItemsTaking : public JournalTaking
{
public:
    /// @param itemIds each once
    TouchedItemsTaking(const StandardTimelineModel& model, const QVector<int>& itemIds);

    bool advance(int count) override;

private:
    using StartsByTrack = std::map<int, std::vector<qint64>>;

    void findNext();
    void enterTrack();
    bool seek(const Items& items);
    void takeNext();

    const StandardTimelineModel& m_model;
    const QVector<int> m_itemIds;
    const IdTable m_wanted;
    int m_found = 0;                  ///< of the ids, so far
    StartsByTrack m_startsByTrack;    ///< of those that are there; tracks go when done
    StartsByTrack::iterator m_latest; ///< while there is one
    const Track* m_track = nullptr;   ///< null: the next one is to be entered
    bool m_looksAtAll = false;        ///< of the track's items
    std::size_t m_start = 0;          ///< of the track's starts
    std::size_t m_item = 0;           ///< of the track's items
};

/// All that a model holds, parents before children and items in their order.
class EverythingTaking : public JournalTaking
{
public:
    explicit EverythingTaking(const StandardTimelineModel& model);

    bool advance(int count) override;

private:
    void addSubtree(const Track& track, int row);

    std::vector<const Track*> m_tracks; ///< with items
    std::size_t m_track = 0;
    std::size_t m_item = 0;
};

/// Ascending.
QVector<int> sortedIds(const QSet<int>& ids);

} // namespace VeskTimeline::Kit
