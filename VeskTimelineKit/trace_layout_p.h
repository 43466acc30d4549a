#pragma once

// Internal to the kit; not installed.

#include "trace_slices_p.h"

#include <VeskTimelineKit/document.h>

#include <QHash>

#include <optional>
#include <utility>

namespace VeskTimeline::Kit {

/// The slices of a thread, or of the asynchronous events of one category in a process.
struct TraceGroup
{
    enum class Kind { Thread, Async };

    Kind kind = Kind::Thread;
    std::size_t process = 0;
    QString id; ///< the thread's id, or the category
    QString name;
    double sortIndex = 0.0;
    std::vector<TraceSlice> slices;
};

struct TraceProcess
{
    QString id;
    QString name;
    double sortIndex = 0.0;
};

/// Collects what a trace says by process and thread, and turns it into tracks: a process is one, a thread in it is one
/// with what is outermost, and below it there is one for every nesting depth.
class TraceLayout
{
public:
    /// Null for a new one where there would be too many tracks.
    TraceProcess* process(const QString& id);
    /// An index, as references do not stay valid; nothing for a new one where there would be too many tracks.
    std::optional<std::size_t> groupIndex(const QString& process, TraceGroup::Kind kind, const QString& id);
    TraceGroup& group(std::size_t index) { return m_groups[index]; }
    /// Counts an item that has no group.
    void leaveOutItem() { ++m_leftOut; }

    /// Empties the groups into a document.
    /// @param factor milliseconds of the axis for a microsecond of the trace
    /// @throws ReadCancelled
    Document takeDocument(double factor, WarningList& warnings, ReadProgress& progress);

private:
    /// By the process and the id in it.
    using GroupIndexes = QHash<std::pair<std::size_t, QString>, std::size_t>;

    bool hasRoom() const;
    std::optional<std::size_t> processIndex(const QString& id);
    std::vector<TraceGroup*> groupsInOrder();
    double originOf(double factor) const;
    QStringList pathOf(const TraceGroup& group) const;

    std::vector<TraceProcess> m_processes;
    std::vector<TraceGroup> m_groups;
    QHash<QString, std::size_t> m_processIndexes;
    GroupIndexes m_threadIndexes;
    GroupIndexes m_asyncIndexes;
    int m_leftOut = 0;
};

} // namespace VeskTimeline::Kit
