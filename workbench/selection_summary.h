#pragma once

#include <VeskTimelineKit/document.h>

#include <QColor>
#include <QList>
#include <QMap>

namespace VeskTimeline::Kit {
class StandardTimelineModel;
}

namespace Workbench {

/// What several items have in common, of one kind: a value, or that they differ.
template <typename Value>
class Common
{
public:
    void add(const Value& value)
    {
        ++m_count;
        if (m_count == 1)
            m_value = value;
        else if (!m_isMixed && !(m_value == value))
            m_isMixed = true;
    }
    void setMixed() { m_isMixed = true; }
    bool isMixed() const { return m_isMixed; }
    int count() const { return m_count; }
    /// That of the first one.
    const Value& value() const { return m_value; }

    friend bool operator==(const Common& left, const Common& right)
    {
        return left.m_isMixed == right.m_isMixed && (left.m_isMixed || left.m_value == right.m_value);
    }

private:
    Value m_value = {};
    int m_count = 0;
    bool m_isMixed = false;
};

/// What the selected items say, a long item as one.
struct SelectionSummary
{
    /// Stands for the end of an open-ended item.
    static constexpr qint64 openEnd = std::numeric_limits<qint64>::max();

    QList<int> ids; ///< of a long item, one of its pieces; none that the model does not have
    Common<QString> label;
    Common<QString> description;
    Common<qint64> start;
    Common<qint64> end;
    Common<qint64> duration;
    Common<QColor> color; ///< invalid: that of the track
    Common<QColor> shownColor;
    Common<int> trackId;
    Common<bool> isLocked;
    QMap<QString, Common<QString>> attributes; ///< mixed also where some do not have it
};

SelectionSummary summarise(const VeskTimeline::Kit::StandardTimelineModel& model, const QList<int>& itemIds);

/// Those of the ids that the model has items for.
QList<int> knownItems(const VeskTimeline::Kit::StandardTimelineModel& model, const QList<int>& itemIds);

} // namespace Workbench
