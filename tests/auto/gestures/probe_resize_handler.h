#pragma once

#include "gesture_fixture.h"

#include <VeskTimeline/timeline_view_resize_handler.h>

#include <optional>

using VeskTimeline::TimelineViewResizeHandler;

/// A resize handler whose state can be seen and set, and whose operations can be watched and replaced.
class ProbeResizeHandler : public TimelineViewResizeHandler
{
public:
    using Base = TimelineViewResizeHandler;
    using Base::Base;
    using Base::m_currentItemId;
    using Base::m_currentTrackId;
    using Base::m_resizePos;

    std::optional<qint64> fixedLocalTime;
    std::optional<qint64> fixedGlobalTime;
    int releases = 0;
    /// Whether any event given to the release operation ends the resize.
    bool endsWithAnyEvent = false;

    qint64 localSnapTime(int x) const override { return fixedLocalTime ? *fixedLocalTime : Base::localSnapTime(x); }
    qint64 globalSnapTime(int x) const override { return fixedGlobalTime ? *fixedGlobalTime : Base::globalSnapTime(x); }
    void mouseReleaseEvent(QMouseEvent* event) override
    {
        ++releases;
        QMouseEvent left = releaseAt(event->position().toPoint());
        Base::mouseReleaseEvent(endsWithAnyEvent ? &left : event);
    }

    void hold(ResizePosition edge, int trackId, int itemId)
    {
        m_resizePos = edge;
        m_currentTrackId = trackId;
        m_currentItemId = itemId;
    }
    bool isIdle() const { return m_currentTrackId == -1 && m_currentItemId == -1 && m_resizePos == eNone; }
};

struct ResizeFixture : GestureFixture
{
    ProbeResizeHandler handler{&view};

    ResizeFixture() { view.setResizeHandler(&handler); }
    ResizeFixture(const ResizeFixture&) = delete;
    ResizeFixture& operator=(const ResizeFixture&) = delete;
    ~ResizeFixture() { view.setResizeHandler(nullptr); }
};

/// Signature of one of the handler's operations, given as "type ::operation", as log lines begin.
inline QString resizeSignature(const QString& operation)
{
    return QStringLiteral("virtual %1")
        .arg(operation)
        .replace(QStringLiteral("::"), QStringLiteral("VeskTimeline::TimelineViewResizeHandler::"));
}
