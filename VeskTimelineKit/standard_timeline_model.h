#pragma once

#include <VeskTimeline/timeline_model.h>
#include <VeskTimelineKit/document.h>
#include <VeskTimelineKit/vesktimelinekit_export.h>

namespace VeskTimeline::Kit {

class LabelledItem;

/// A timeline model that is ready for use: filled from a Document, with labelled items, and with rows that can be
/// inserted and removed by their buttons.
///
/// All items are LabelledItems. Items without a colour of their own get one by their track. For use on the GUI thread
/// only.
class VESKTIMELINEKIT_EXPORT StandardTimelineModel : public TimelineModel
{
    Q_OBJECT

public:
    /// For the parameters see TimelineModel.
    explicit StandardTimelineModel(TimelineView* view = nullptr, QObject* parent = nullptr);
    ~StandardTimelineModel() override;

    /// Replaces all tracks and items, in one model reset; ids start again. Times are taken as they are, whether
    /// snapping is on or not. Every track gets both buttons. The clipboard, which is for the tracks that were, is
    /// emptied.
    void setDocument(const Document& document);

    /// All tracks of the tree, without the root.
    int trackCount() const;

    /// The text of an item. @throws QString when the item is unknown
    QString itemLabel(int itemId) const;
    /// Emits dataChanged() for the item's row. @throws QString when the item is unknown
    void setItemLabel(int itemId, const QString& label);

    /// Destroys a track with its subtree and all their items, emitting the row-removal signals. Not for the root.
    /// @throws QString when the track is unknown
    void removeTrack(int trackId) override;
    /// See TimelineModel; the copies keep their labels.
    void copyToClipboard(const QVector<int>& itemIds) override;

    /// The colour of items that have none, by the position of their track, from 0. The colours repeat.
    static QColor trackColor(int position);

public Q_SLOTS:
    /// Inserts an empty track with both buttons right below the row, under the same parent, with a name that none of
    /// its siblings has. Does nothing for an invalid index.
    void onInsertTrack(const QModelIndex& index) override;
    /// Removes the row's track, see removeTrack(). Does nothing for an invalid index.
    void onRemoveTrack(const QModelIndex& index) override;

private:
    void addTracks(const Document& document);
    void addItems(Track& track, const std::vector<DocumentItem>& items, const QColor& defaultColor);
    void forgetSubtree(const Track& track);
    static QString newTrackName(const Track& parent);
};

} // namespace VeskTimeline::Kit
