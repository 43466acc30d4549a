#include "kit_tr_p.h"
#include "undo_step_p.h"

#include <HoxLogger/ihox_logger.h>
#include <HoxLogger/log_stream_helper.h>

#include <algorithm>

namespace VeskTimeline::Kit {

namespace {

struct StepTexts
{
    const char* one;
    const char* many;
};

StepTexts textsOf(StepKind kind)
{
    switch (kind) {
    case StepKind::Add:
        return {QT_TRANSLATE_NOOP("VeskTimelineKit", "Add item"), QT_TRANSLATE_NOOP("VeskTimelineKit", "Add %n items")};
    case StepKind::Delete:
        return {QT_TRANSLATE_NOOP("VeskTimelineKit", "Delete item"),
                QT_TRANSLATE_NOOP("VeskTimelineKit", "Delete %n items")};
    case StepKind::Cut:
        return {QT_TRANSLATE_NOOP("VeskTimelineKit", "Cut item"), QT_TRANSLATE_NOOP("VeskTimelineKit", "Cut %n items")};
    case StepKind::Paste:
        return {QT_TRANSLATE_NOOP("VeskTimelineKit", "Paste item"),
                QT_TRANSLATE_NOOP("VeskTimelineKit", "Paste %n items")};
    case StepKind::Move:
        return {QT_TRANSLATE_NOOP("VeskTimelineKit", "Move item"),
                QT_TRANSLATE_NOOP("VeskTimelineKit", "Move %n items")};
    case StepKind::Resize:
        return {QT_TRANSLATE_NOOP("VeskTimelineKit", "Resize item"),
                QT_TRANSLATE_NOOP("VeskTimelineKit", "Resize %n items")};
    case StepKind::Rename:
        return {QT_TRANSLATE_NOOP("VeskTimelineKit", "Rename item"),
                QT_TRANSLATE_NOOP("VeskTimelineKit", "Rename %n items")};
    case StepKind::Describe:
        return {QT_TRANSLATE_NOOP("VeskTimelineKit", "Describe item"),
                QT_TRANSLATE_NOOP("VeskTimelineKit", "Describe %n items")};
    case StepKind::Attribute:
        return {QT_TRANSLATE_NOOP("VeskTimelineKit", "Change attribute of item"),
                QT_TRANSLATE_NOOP("VeskTimelineKit", "Change attribute of %n items")};
    case StepKind::Recolour:
        return {QT_TRANSLATE_NOOP("VeskTimelineKit", "Change colour of item"),
                QT_TRANSLATE_NOOP("VeskTimelineKit", "Change colour of %n items")};
    case StepKind::Lock:
        return {QT_TRANSLATE_NOOP("VeskTimelineKit", "Lock item"),
                QT_TRANSLATE_NOOP("VeskTimelineKit", "Lock %n items")};
    case StepKind::Unlock:
        return {QT_TRANSLATE_NOOP("VeskTimelineKit", "Unlock item"),
                QT_TRANSLATE_NOOP("VeskTimelineKit", "Unlock %n items")};
    case StepKind::Other:
        break;
    }
    return {"", ""};
}

} // namespace

UndoStep::UndoStep(ModelContents& contents, StepKind kind, const QString& text)
    : QUndoCommand(text), m_contents(contents), m_kind(kind)
{
}

void UndoStep::add(std::unique_ptr<Change> change)
{
    const int itemId = change->changedItem();
    if (itemId != -1) {
        m_itemIds.insert(itemId);
        // The state before the first of two changes in a row is the one to go back to.
        if (!m_changes.empty() && m_changes.back()->changedItem() == itemId)
            return;
    }
    if (!m_changes.empty() && m_changes.back()->absorb(*change))
        return;
    m_changes.push_back(std::move(change));
}

void UndoStep::noteItem(const Item& item)
{
    const auto* const labelled = dynamic_cast<const LabelledItem*>(&item);
    const bool isPiece = labelled && labelled->piece().isPiece();
    m_itemIds.insert(isPiece ? -1 - labelled->piece().whole : item.id());
}

void UndoStep::dropLastIfNothing()
{
    if (!m_changes.empty() && m_changes.back()->isNothing(m_contents))
        m_changes.pop_back();
}

void UndoStep::setGesture(int gesture, bool isHeld)
{
    m_gesture = gesture;
    m_isHeld = isHeld;
}

void UndoStep::updateText()
{
    if (m_kind == StepKind::Other)
        return;
    const StepTexts texts = textsOf(m_kind);
    const int count = m_itemIds.size();
    setText(count == 1 ? Tr::tr(texts.one) : Tr::tr(texts.many, nullptr, count));
}

bool UndoStep::continues(const UndoStep& later) const
{
    if (later.m_gesture != m_gesture)
        return false;
    const bool isSameItem = m_itemIds.size() == 1 && later.m_itemIds.ids() == m_itemIds.ids();
    // Pulling at the start of an item moves the start and keeps the end.
    if (m_kind == StepKind::Resize && later.m_kind == StepKind::Move)
        return isSameItem;
    return later.m_kind == m_kind && (isSameItem || !later.m_isHeld || m_kind != StepKind::Resize);
}

bool UndoStep::mergeWith(const QUndoCommand* later)
{
    // Only steps have this id; the one merged is about to be destroyed.
    auto& step = *const_cast<UndoStep*>(static_cast<const UndoStep*>(later));
    if (!continues(step))
        return false;
    for (std::unique_ptr<Change>& change : step.m_changes)
        add(std::move(change));
    // Behind several changes the model is no longer where the last but one has led to.
    if (step.m_changes.size() == 1)
        dropLastIfNothing();
    m_itemIds.insert(step.m_itemIds.ids());
    updateText();
    setObsolete(m_changes.empty());
    return true;
}

void UndoStep::giveUp(const QString& reason)
{
    IHoxLogger& logger =
        Hox::HoxLoggerBootstrap::getHoxRootLogger().logger(QStringLiteral("Timeline.StandardTimelineModel"));
    Hox::LogStreamHelper(logger, Hox::Error, __FILE__, __LINE__, Q_FUNC_INFO)
        << Q_FUNC_INFO << " " << text() << ": " << reason;
    setObsolete(true);
}

// Contents that were changed behind the stack's back may make a step impossible; nothing may be thrown through Qt.
template <typename Body>
void UndoStep::guarded(const Body& body)
{
    try {
        body();
    } catch (const QString& reason) {
        giveUp(reason);
    } catch (...) {
        giveUp(QStringLiteral("failed"));
    }
    m_contents.announce();
}

void UndoStep::beginIfMany()
{
    // Below, going through whole tracks for it costs more than it saves; so it does for changes of many items each.
    constexpr std::ptrdiff_t many = 50;
    const auto isOfOneItem = [](const std::unique_ptr<Change>& change) { return change->isOfOneItem(); };
    if (std::count_if(m_changes.begin(), m_changes.end(), isOfOneItem) >= many)
        m_contents.beginMany();
}

void UndoStep::undo()
{
    guarded([this] {
        beginIfMany();
        for (auto change = m_changes.rbegin(); change != m_changes.rend(); ++change)
            (*change)->swap(m_contents);
    });
    m_isDone = false;
}

void UndoStep::redo()
{
    if (m_isDone)
        return;
    guarded([this] {
        beginIfMany();
        for (const std::unique_ptr<Change>& change : m_changes)
            change->swap(m_contents);
    });
    m_isDone = true;
}

} // namespace VeskTimeline::Kit
