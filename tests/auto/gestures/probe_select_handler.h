#pragma once

#include "gesture_fixture.h"

#include <VeskTimeline/timeline_view_selection_handler.h>

#include <functional>

using VeskTimeline::TimelineView;
using VeskTimeline::TimelineViewSelectHandler;

/// A selection handler whose state can be seen and set, and whose rubber band can be given other contents.
class ProbeSelectHandler : public TimelineViewSelectHandler
{
public:
    using Base = TimelineViewSelectHandler;
    using Base::Base;
    using Base::m_isRubberBandActive;
    using Base::m_rubberBand;
    using Base::m_selectedItemId;

    std::function<QVector<int>()> contents;

    QVector<int> getItemsWithinRubberBand() const override
    {
        return contents ? contents() : Base::getItemsWithinRubberBand();
    }
};

struct SelectFixture : GestureFixture
{
    ProbeSelectHandler handler{&view};
    QSignalSpy selections{&view, &TimelineView::selectedItemsChanged};
    QSignalSpy activations{&view, &TimelineView::itemActivated};
    QSignalSpy menus{&view, &TimelineView::customContextMenuRequested};

    SelectFixture() { view.setSelectHandler(&handler); }
    SelectFixture(const SelectFixture&) = delete;
    SelectFixture& operator=(const SelectFixture&) = delete;
    ~SelectFixture() { view.setSelectHandler(nullptr); }

    void select(const QList<int>& ids)
    {
        view.selectItems(ids, true);
        selections.clear();
    }
};

constexpr auto pressOutsideWarning = "TimelineViewSelectHandler::mousePressEvent: index invalid";

/// Signature of one of the handler's operations, as log lines begin.
inline QString selectSignature(const QString& operation)
{
    return QStringLiteral("virtual void VeskTimeline::TimelineViewSelectHandler::") + operation;
}
