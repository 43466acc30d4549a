#pragma once

// Internal to the kit; not installed.

#include "undo_changes_p.h"

#include <QUndoCommand>

namespace VeskTimeline::Kit {

/// What a step does to items; Other has a text of its own.
enum class StepKind {
    Other,
    Add,
    Delete,
    Cut,
    Paste,
    Move,
    Resize,
    Rename,
    Describe,
    Attribute,
    Recolour,
    Lock,
    Unlock
};

/// One entry of the undo stack: changes that are made and taken back together.
///
/// The changes are made before the step is pushed. Steps of one gesture of the user become one as they are pushed.
class UndoStep : public QUndoCommand
{
public:
    UndoStep(ModelContents& contents, StepKind kind, const QString& text = {});

    /// Records a change that has been made.
    void add(std::unique_ptr<Change> change);
    /// For right after the last change: forgets it when it leaves its item as it was.
    void dropLastIfNothing();
    /// Counts the item in the text; the pieces of a long one are one.
    void noteItem(const Item& item);
    bool isEmpty() const { return m_changes.empty(); }
    StepKind kind() const { return m_kind; }
    /// @param gesture the same for all steps that may become one; 0 for none
    /// @param isHeld an edge is being held: only what happens to the same item belongs to it
    void setGesture(int gesture, bool isHeld);
    /// Once all changes are in.
    void updateText();

    int id() const override { return m_gesture == 0 ? -1 : 1; }
    bool mergeWith(const QUndoCommand* later) override;
    void undo() override;
    void redo() override;

private:
    bool continues(const UndoStep& later) const;
    void beginIfMany();
    void giveUp(const QString& reason);
    template <typename Body>
    void guarded(const Body& body);

    ModelContents& m_contents;
    StepKind m_kind;
    std::vector<std::unique_ptr<Change>> m_changes;
    /// Negative ones stand for long items.
    IdSet m_itemIds;
    int m_gesture = 0;
    bool m_isHeld = false;
    bool m_isDone = true;
};

} // namespace VeskTimeline::Kit
