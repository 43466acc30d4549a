#pragma once

#include <VeskTimeline/item_delegate.h>
#include <VeskTimeline/timeline_header_view.h>
#include <VeskTimeline/timeline_view.h>
#include <VeskTimeline/timeline_widget.h>
#include <VeskTimelineKit/standard_timeline_model.h>

#include <QCoreApplication>

#include <memory>
#include <workbench/icons.h>
#include <workbench/navigation.h>

/// A timeline with a model and what moves through it.
struct NavigationFixture
{
    static constexpr qint64 second = 1000;
    static constexpr qint64 hour = 3600 * second;
    static constexpr qint64 day = 24 * hour;

    NavigationFixture()
    {
        widget.setModel(&model);
        widget.view()->setItemDelegate(new VeskTimeline::ItemDelegate(widget.view()));
        widget.resize(1000, 400);
        navigation = std::make_unique<Workbench::Navigation>(&widget, &model);
    }

    VeskTimeline::TimelineView* view() const { return widget.view(); }

    /// An item in the track of that path, written "A/B". @return its id
    int add(const QString& path, const QString& label, qint64 start, qint64 duration)
    {
        VeskTimeline::Kit::Document document;
        VeskTimeline::Kit::DocumentItem item;
        item.label = label;
        item.start = start;
        item.duration = duration;
        document.track(path.split('/')).items.push_back(item);
        const QVector<int> before = model.itemIds();
        model.addDocument(document);
        const QVector<int> after = model.itemIds();
        // Ids only ever grow.
        return after[before.size()];
    }

    void settle() const { QCoreApplication::processEvents(); }

    /// The widget looks for its icons when it is made.
    struct Icons
    {
        Icons() { Workbench::registerIcons(); }
    } icons;
    VeskTimeline::Kit::StandardTimelineModel model;
    VeskTimeline::TimelineWidget widget;
    std::unique_ptr<Workbench::Navigation> navigation;
};
