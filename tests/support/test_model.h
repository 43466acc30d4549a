#pragma once

#include <VeskTimeline/timeline_model.h>

#include <QAbstractItemModelTester>

/// A model that lets tests in: tracks and items by one call each, the operations for subclasses public. Qt's model
/// tester watches it for as long as it lives; what it finds fails the test.
class TestModel : public VeskTimeline::TimelineModel
{
public:
    explicit TestModel(VeskTimeline::TimelineView* view = nullptr) : TimelineModel(view)
    {
        new QAbstractItemModelTester(this, QAbstractItemModelTester::FailureReportingMode::QtTest, this);
    }

    void setView(VeskTimeline::TimelineView* view) { m_view = view; }

    int newTrack(const QString& text, int parentTrackId = 0, int row = -1)
    {
        return insertTrack(parentTrackId, row, std::make_unique<VeskTimeline::Track>(text))->id();
    }

    int newItem(int trackId, qint64 startTime, int duration, const QColor& color = Qt::red, bool isEditable = true)
    {
        return addItem(trackId, std::make_unique<VeskTimeline::Item>(startTime, duration, color, isEditable), false);
    }

    /// "start+duration" of each of a track's items, in order.
    QStringList times(int trackId) const
    {
        QStringList texts;
        for (const VeskTimeline::ItemPtr& item : track(trackId)->items())
            texts.append(QStringLiteral("%1+%2").arg(item->startTime()).arg(item->duration()));
        return texts;
    }

    using TimelineModel::_copyItemIdsBetween;
    using TimelineModel::_isItemsBetween;
    using TimelineModel::_itemIdsBetween;
    using TimelineModel::addItem;
    using TimelineModel::clearItems;
    using TimelineModel::indexOf;
    using TimelineModel::insertTrack;
    using TimelineModel::m_clipboard;
    using TimelineModel::m_itemCache;
    using TimelineModel::m_itemCaching;
    using TimelineModel::m_trackCache;
    using TimelineModel::m_trackCaching;
    using TimelineModel::nextFreeItemId;
    using TimelineModel::nextFreeTrackId;
    using TimelineModel::rowOfTrackId;
    using TimelineModel::trackOfIndex;
};
