#include "standard_timeline_model_p.h"

namespace VeskTimeline::Kit {

template <typename Body>
void StandardTimelineModel::changeDetails(StepKind kind, const QVector<int>& itemIds, const Body& body)
{
    for (const int id : itemIds)
        item(id);
    const QVector<int> separate = withoutFurtherPieces(itemIds);
    StepScope scope(*d, kind);
    std::vector<std::pair<int, ItemDetails>> changed;
    for (const int id : withAllPieces(separate)) {
        const Item& told = *item(id);
        const ItemDetails before = ModelContents::itemDetails(told);
        ItemDetails after = before;
        body(after);
        if (after == before)
            continue;
        changed.emplace_back(id, std::move(after));
        d->step->noteItem(told);
    }
    if (!changed.empty())
        d->perform(std::make_unique<ItemDetailsChange>(std::move(changed)));
}

void StandardTimelineModel::setItemsLabel(const QVector<int>& itemIds, const QString& label)
{
    changeDetails(StepKind::Rename, itemIds, [&label](ItemDetails& details) { details.label = label; });
}

void StandardTimelineModel::setItemsDescription(const QVector<int>& itemIds, const QString& description)
{
    changeDetails(StepKind::Describe, itemIds,
                  [&description](ItemDetails& details) { details.description = description; });
}

void StandardTimelineModel::setItemAttributes(int itemId, const QMap<QString, QString>& attributes)
{
    changeDetails(StepKind::Attribute, {itemId},
                  [&attributes](ItemDetails& details) { details.attributes = attributes; });
}

void StandardTimelineModel::setItemsAttribute(const QVector<int>& itemIds, const QString& name, const QString& value)
{
    changeDetails(StepKind::Attribute, itemIds, [&](ItemDetails& details) { details.attributes.insert(name, value); });
}

void StandardTimelineModel::removeItemsAttribute(const QVector<int>& itemIds, const QString& name)
{
    changeDetails(StepKind::Attribute, itemIds, [&name](ItemDetails& details) { details.attributes.remove(name); });
}

void StandardTimelineModel::renameItemsAttribute(const QVector<int>& itemIds, const QString& name,
                                                 const QString& newName)
{
    for (const int id : itemIds) {
        const QMap<QString, QString> attributes = itemAttributes(id);
        if (name != newName && attributes.contains(name) && attributes.contains(newName))
            throw QStringLiteral("renameItemsAttribute: item %1 has an attribute “%2” already").arg(id).arg(newName);
    }
    changeDetails(StepKind::Attribute, itemIds, [&](ItemDetails& details) {
        const auto found = details.attributes.find(name);
        if (found == details.attributes.end() || name == newName)
            return;
        const QString value = *found;
        details.attributes.erase(found);
        details.attributes.insert(newName, value);
    });
}

void StandardTimelineModel::setItemsColor(const QVector<int>& itemIds, const QColor& color)
{
    changeDetails(StepKind::Recolour, itemIds, [&color](ItemDetails& details) { details.color = color; });
}

void StandardTimelineModel::setItemsLocked(const QVector<int>& itemIds, bool isLocked)
{
    changeDetails(isLocked ? StepKind::Lock : StepKind::Unlock, itemIds,
                  [isLocked](ItemDetails& details) { details.isEditable = !isLocked; });
}

} // namespace VeskTimeline::Kit
