#include "document_bars_p.h"
#include "item_maker_p.h"
#include "undo_contents_p.h"

namespace VeskTimeline::Kit {

std::unique_ptr<LabelledItem> ItemMaker::makeItem(const DocumentItem& source, const QColor& trackColor)
{
    auto item = std::make_unique<LabelledItem>(source.label, source.start, 0,
                                               source.color.isValid() ? source.color : trackColor, source.isEditable);
    item->setHasOwnColor(source.color.isValid());
    item->setDescription(source.description);
    item->setAttributes(source.attributes);
    return item;
}

Items ItemMaker::make(const Track& track, const std::vector<DocumentItem>& sources, QVector<int>* ids,
                      const std::function<void()>& itemIsMade)
{
    const std::vector<DocumentBar> bars = barsOf(sources, m_nextWhole);
    const QColor trackColor = ModelContents::colorOf(track);
    Items items;
    items.reserve(bars.size());
    if (ids)
        ids->resize(static_cast<qsizetype>(bars.size()));
    for (const DocumentBar& bar : bars) {
        auto item = makeItem(sources[bar.item], trackColor);
        item->_setStartTime(bar.start);
        item->_setDuration(bar.duration);
        item->setPiece(bar.piece);
        const int id = m_nextItemId++;
        item->setIds(id, track.id());
        if (ids)
            (*ids)[static_cast<qsizetype>(bar.position)] = id;
        items.push_back(std::move(item));
        if (itemIsMade)
            itemIsMade();
    }
    return items;
}

} // namespace VeskTimeline::Kit
