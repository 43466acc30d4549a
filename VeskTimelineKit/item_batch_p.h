#pragma once

// Internal to the kit; not installed.

#include "undo_step_p.h"

#include <QSet>
#include <QVector>

#include <map>
#include <vector>

namespace VeskTimeline::Kit {

/// What has been asked of items one by one and is going to be done for all of them at once.
struct ItemBatch
{
    StepKind kind = StepKind::Other;
    QSet<int> itemIds;
    QVector<int> removed;            ///< for StepKind::Delete
    std::vector<ItemTarget> targets; ///< for StepKind::Move
    QSet<int> trackIds;              ///< where the items are that move
    /// Items that go to another track, by the one they are on and that.
    std::map<std::pair<int, int>, QSet<int>> transfers;
};

} // namespace VeskTimeline::Kit
