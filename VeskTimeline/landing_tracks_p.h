#pragma once

// Internal to the library; not installed.

#include <VeskTimeline/item.h>

#include <QAbstractItemModel>
#include <QHash>
#include <QScrollBar>
#include <QTreeView>

namespace VeskTimeline {

/// The tracks on which dragged items land. All items of a track land on the same one, so that it is looked for once,
/// until rows change or are shown elsewhere: a model may do that while the items are moved.
template <typename Find>
class LandingTracks
{
public:
    /// @param find answers with the track id for an item; 0 for none
    LandingTracks(const QTreeView* view, Find find) : m_find(std::move(find))
    {
        const QAbstractItemModel* const rows = view->model();
        const QScrollBar* const scrollBar = view->verticalScrollBar();
        forgetAt(rows, &QAbstractItemModel::rowsInserted);
        forgetAt(rows, &QAbstractItemModel::rowsRemoved);
        forgetAt(rows, &QAbstractItemModel::rowsMoved);
        forgetAt(rows, &QAbstractItemModel::layoutChanged);
        forgetAt(rows, &QAbstractItemModel::modelReset);
        forgetAt(view, &QTreeView::expanded);
        forgetAt(view, &QTreeView::collapsed);
        forgetAt(scrollBar, &QScrollBar::valueChanged);
        forgetAt(scrollBar, &QScrollBar::rangeChanged);
    }

    int operator()(const Item& item)
    {
        const int trackId = item.parentTrackId();
        if (const auto known = m_known.constFind(trackId); known != m_known.cend())
            return *known;
        return *m_known.insert(trackId, m_find(item));
    }

private:
    template <typename Sender, typename Signal>
    void forgetAt(const Sender* sender, Signal signal)
    {
        QObject::connect(sender, signal, &m_context, [this] { m_known.clear(); });
    }

    QObject m_context;
    Find m_find;
    QHash<int, int> m_known;
};

} // namespace VeskTimeline
