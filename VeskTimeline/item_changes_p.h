#pragma once

// Internal to the library; not installed.

#include "failure_log_p.h"

#include <VeskTimeline/timeline_model.h>

#include <QPointer>

#include <utility>

namespace VeskTimeline {

/// Announces to a model that so many changes of items follow, and their end, whichever way it comes.
class ItemChanges
{
public:
    /// @param logger takes what goes wrong at the end when it is an exception that ends the changes
    ItemChanges(TimelineModel& model, qsizetype count, IHoxLogger& logger) : m_logger(logger)
    {
        model.beginItemChanges(static_cast<int>(count));
        m_model = &model;
    }
    ItemChanges(const ItemChanges&) = delete;
    ItemChanges& operator=(const ItemChanges&) = delete;
    ~ItemChanges()
    {
        try {
            finish();
        } catch (...) {
            logCaughtException(m_logger, Q_FUNC_INFO);
        }
    }

    /// To be called behind the last change. @throws what TimelineModel::endItemChanges() throws
    void finish()
    {
        // The changes may have been the end of the model, too.
        if (const QPointer<TimelineModel> model = std::exchange(m_model, nullptr))
            model->endItemChanges();
    }

private:
    QPointer<TimelineModel> m_model;
    IHoxLogger& m_logger;
};

} // namespace VeskTimeline
