#pragma once

#include <QAction>
#include <QKeySequence>
#include <QObject>
#include <QPointer>
#include <QString>

namespace VeskTimeline {
class TimelineView;
namespace Kit {
class StandardTimelineModel;
} // namespace Kit
} // namespace VeskTimeline

namespace Workbench {

/// What commands on the contents of a view have in common.
///
/// Their shortcuts hold while the view, or what is in it, has the keyboard, so that text fields elsewhere keep theirs.
class ViewCommands : public QObject
{
    Q_OBJECT

public:
    /// @param model not owned, must outlive the view
    ViewCommands(VeskTimeline::Kit::StandardTimelineModel* model, VeskTimeline::TimelineView* view, QObject* parent);

Q_SIGNALS:
    /// Why a command has not been carried out.
    void refused(const QString& reason);

protected:
    VeskTimeline::Kit::StandardTimelineModel* model() const { return m_model; }
    /// Null once it has been destroyed.
    VeskTimeline::TimelineView* view() const;

    /// @param name as an object. @return one that belongs to this object, for any menu
    QAction* addAction(const char* name, const QString& text, const QKeySequence& shortcut);
    template <typename Commands>
    QAction* addAction(const char* name, const QString& text, const QKeySequence& shortcut, void (Commands::*slot)())
    {
        QAction* const action = addAction(name, text, shortcut);
        connect(action, &QAction::triggered, static_cast<Commands*>(this), slot);
        return action;
    }

    /// Changes the model by calling `body`, after any gesture that is under way; what is thrown is told by refused().
    template <typename Body>
    void attempt(const Body& body)
    {
        startAttempt();
        try {
            body();
        } catch (const QString& reason) {
            Q_EMIT refused(reason);
        }
        endAttempt();
    }

    /// Called at the end of each attempt, whatever became of it.
    virtual void afterAttempt() {}

private:
    void startAttempt();
    void endAttempt();

    VeskTimeline::Kit::StandardTimelineModel* m_model;
    QPointer<VeskTimeline::TimelineView> m_view;
};

} // namespace Workbench
