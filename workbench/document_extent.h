#pragma once

#include <VeskTimelineKit/document.h>

#include <QObject>
#include <QTimer>

#include <optional>

namespace VeskTimeline {
class Item;
namespace Kit {
class StandardTimelineModel;
}
} // namespace VeskTimeline

namespace Workbench {

/// From when until when the items of a model reach, kept up to date while they are edited.
///
/// An edit costs as much as the items that it is about; only when the first or the last item gives way, or thousands
/// change at once, whole tracks are looked at, and then not before somebody asks or the event loop is reached.
class DocumentExtent : public QObject
{
    Q_OBJECT

public:
    /// @param model not owned
    explicit DocumentExtent(const VeskTimeline::Kit::StandardTimelineModel* model, QObject* parent = nullptr);

    /// From the earliest start to the latest end; an open-ended item ends where it starts. Nothing without items.
    std::optional<VeskTimeline::Kit::TimeSpan> span() const;
    /// An item that starts first and one that ends last; -1 without items.
    int firstItem() const;
    int lastItem() const;

Q_SIGNALS:
    /// At most once for each turn of the event loop, and only when the span is another one.
    void changed();

private:
    void onAdded(const QVector<int>& ids);
    void onChanged(const QVector<int>& ids);
    void onRemoved(const QVector<int>& ids);
    void invalidate();
    void include(const VeskTimeline::Item& item) const;
    void update() const;
    void findLast() const;
    void announce();

    const VeskTimeline::Kit::StandardTimelineModel* m_model;
    mutable bool m_isKnown = false;
    mutable VeskTimeline::Kit::TimeSpan m_span;
    mutable int m_first = -1;
    mutable int m_last = -1;
    std::optional<VeskTimeline::Kit::TimeSpan> m_announced;
    QTimer m_announcement;
};

} // namespace Workbench
