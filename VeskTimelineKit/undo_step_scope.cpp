#include "standard_timeline_model_p.h"

namespace VeskTimeline::Kit {

StepScope::StepScope(StandardTimelineModelPrivate& d, StepKind kind, const QString& text)
    : m_d(d), m_isOutermost(!d.step)
{
    if (!m_isOutermost)
        return;
    // What has been asked before comes first.
    m_d.model.performBatch();
    m_d.step = std::make_unique<UndoStep>(m_d.contents, kind, text);
}

StepScope::~StepScope()
{
    if (!m_isOutermost)
        return;
    // Also after an exception; the stack tells others of the step, who may look at the items.
    m_d.contents.settle();
    std::unique_ptr<UndoStep> step = std::move(m_d.step);
    if (!step->isEmpty()) {
        step->updateText();
        m_d.stack.push(step.release());
    }
    m_d.contents.announce();
}

void StepScope::joinGesture()
{
    if (!m_isOutermost)
        return;
    const bool isResize = m_d.step->kind() == StepKind::Resize;
    m_d.step->setGesture(m_d.gesture.join(isResize), m_d.gesture.isHeld());
}

} // namespace VeskTimeline::Kit
