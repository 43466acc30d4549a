#pragma once

// Internal to the kit; not installed.

#include "item_batch_p.h"
#include "model_tree_p.h"
#include "undo_gesture_p.h"
#include "undo_step_p.h"

#include <VeskTimelineKit/standard_timeline_model.h>

#include <QUndoStack>

#include <algorithm>
#include <map>

namespace VeskTimeline::Kit {

// Up to so many changes, making each at once is cheapest.
constexpr int fewItems = 50;

struct StandardTimelineModelPrivate
{
    StandardTimelineModelPrivate(StandardTimelineModel& itsModel, TimelineView* modelView)
        : model(itsModel), contents(itsModel), gesture(modelView), view(modelView)
    {
    }

    /// Makes a change and records it in the step under way.
    void perform(std::unique_ptr<Change> change)
    {
        change->swap(contents);
        record(std::move(change));
    }
    /// Records a change that has been made.
    void record(std::unique_ptr<Change> change)
    {
        step->add(std::move(change));
        step->dropLastIfNothing();
    }

    StandardTimelineModel& model;
    ModelContents contents;
    UndoGesture gesture;
    QPointer<TimelineView> view;
    QUndoStack stack;
    std::unique_ptr<UndoStep> step;
    StandardTimelineModel::OverlapPolicy overlapPolicy = StandardTimelineModel::AllowOverlaps;
    int nextWhole = 0;
    /// By track id, of tracks that have items; those of tracks that have changed since are missing.
    QHash<int, TrackExtent> extents;
    bool isUnrecorded = false;
    int batchDepth = 0;
    bool isBatching = false;
    ItemBatch batch;
};

/// What the tracks and items of a document that is added are called in the model.
struct StandardTimelineModel::NewNumbers
{
    const QHash<int, int>& trackIds; ///< by those that they have in the document alone, the root's among them
    int firstItemId;
    int firstWhole;
};

/// While it lives, changes go into one step, which the outermost scope pushes, also when an exception ends it: what has
/// been done can be undone.
class StepScope
{
public:
    StepScope(StandardTimelineModelPrivate& d, StepKind kind, const QString& text = {});
    ~StepScope();
    Q_DISABLE_COPY_MOVE(StepScope)

    /// The step may become one with others of the gesture under way.
    void joinGesture();

private:
    StandardTimelineModelPrivate& m_d;
    bool m_isOutermost;
};

/// Each id once, by the tracks that the items are on.
inline std::map<int, QVector<int>> itemsByTrack(const TimelineModel& model, const QVector<int>& itemIds)
{
    std::map<int, QVector<int>> groups;
    // In their order, in which look-ups are much faster.
    QVector<int> ascending = itemIds;
    std::sort(ascending.begin(), ascending.end());
    ascending.erase(std::unique(ascending.begin(), ascending.end()), ascending.end());
    for (const int id : std::as_const(ascending))
        groups[model.item(id)->parentTrackId()].append(id);
    return groups;
}

template <typename Body>
void StandardTimelineModel::recordItem(Item& item, const Body& body)
{
    ItemState before = d->contents.itemState(item.id());
    body();
    if (d->contents.itemState(item.id()) == before)
        return;
    d->contents.noteChanged(item, before.trackId);
    d->record(std::make_unique<ItemChange>(item.id(), std::move(before)));
}

} // namespace VeskTimeline::Kit
