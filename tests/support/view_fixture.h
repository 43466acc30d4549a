#pragma once

#include "support/test_model.h"

#include <VeskTimeline/item_delegate.h>
#include <VeskTimeline/timeline_header_view.h>
#include <VeskTimeline/timeline_view.h>

#include <QTest>

/// A view on screen over a model, a TestModel or a subclass, with two empty tracks, A and B. The range begins at
/// `origin` and lasts one hour; the window is its first half hour, and the time column is 1800 pixels wide, so that a
/// pixel shows one second.
template <typename Model>
struct ViewFixtureOf
{
    static constexpr qint64 origin = 1'600'000'200'000;
    static constexpr int labelWidth = 200;
    static constexpr int secondsVisible = 1800;

    // The model outlives the view, as an application's does.
    Model model;
    VeskTimeline::TimelineView view;
    int trackA = model.newTrack(QStringLiteral("A"));
    int trackB = model.newTrack(QStringLiteral("B"));

    ViewFixtureOf()
    {
        model.setView(&view);
        view.setModel(&model);
        view.setItemDelegate(new VeskTimeline::ItemDelegate(&view));
        view.setRange(origin, origin + 3'600'000);
        view.setCurrentTime(origin);
        view.show();
        fitWindow();
    }

    /// Makes the ruler exactly label column and 1800 pixels wide.
    void fitWindow()
    {
        for (int i = 0; i < 3; ++i) {
            const int ruler = view.header()->width();
            view.resize(view.width() + labelWidth + secondsVisible - ruler, 400);
            QCoreApplication::processEvents();
        }
        view.header()->resizeSection(0, labelWidth);
        QCoreApplication::processEvents();
    }

    static qint64 at(int second) { return origin + static_cast<qint64>(second) * 1000; }
    /// Viewport position of a second of the window in a track's row.
    QPoint pos(int second, int trackId) const
    {
        const QRect row = view.visualRect(view.indexOfTrackRow(trackId, 1));
        return {labelWidth + second, row.center().y()};
    }
    /// Adds an item of whole seconds, counted from the start of the range.
    int addSeconds(int trackId, int start, int length, const QColor& color = Qt::red, bool isEditable = true)
    {
        return model.newItem(trackId, at(start), length * 1000, color, isEditable);
    }
};

using ViewFixture = ViewFixtureOf<TestModel>;
