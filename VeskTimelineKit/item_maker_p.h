#pragma once

// Internal to the kit; not installed.

#include <VeskTimeline/item.h>
#include <VeskTimelineKit/document.h>

#include <QVector>

#include <functional>
#include <memory>

namespace VeskTimeline {
class Track;
}

namespace VeskTimeline::Kit {

class LabelledItem;

/// Makes the items that a model holds of those of a document. Touches no model, so that it can be done on any thread.
class ItemMaker
{
public:
    /// @param nextItemId the id for the next item; counted up
    /// @param nextWhole counted up for each item that comes in pieces
    ItemMaker(int& nextItemId, int& nextWhole) : m_nextItemId(nextItemId), m_nextWhole(nextWhole) {}

    /// Items sorted by start time, with ids in that order.
    /// @param ids if not null, gets the ids in the order of the sources
    /// @param itemIsMade called after each, unless it is empty; may throw
    Items make(const Track& track, const std::vector<DocumentItem>& sources, QVector<int>* ids = nullptr,
               const std::function<void()>& itemIsMade = {});

private:
    static std::unique_ptr<LabelledItem> makeItem(const DocumentItem& source, const QColor& trackColor);

    int& m_nextItemId;
    int& m_nextWhole;
};

} // namespace VeskTimeline::Kit
