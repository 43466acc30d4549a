#pragma once

// Internal to the kit; not installed.

#include "trace_slices_p.h"

#include <VeskTimelineKit/document.h>

#include <optional>

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
    std::optional<std::uint32_t> series; ///< of a thread's beginnings and ends, if it has any
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
    TraceProcess* process(std::string_view id);
    /// An index, as references do not stay valid; nothing for a new one where there would be too many tracks.
    std::optional<std::size_t> groupIndex(std::string_view process, TraceGroup::Kind kind, std::string_view id);
    TraceGroup& group(std::size_t index) { return m_groups[index]; }
    /// Counts an item that has no group.
    void leaveOutItem() { ++m_leftOut; }

    /// Empties the groups into a document.
    /// @param factor milliseconds of the axis for a microsecond of the trace
    /// @throws ReadCancelled
    Document takeDocument(double factor, SharedTexts& texts, WarningList& warnings, ReadProgress& progress);

private:
    bool hasRoom() const;
    std::optional<std::size_t> processIndex(std::string_view id);
    std::vector<TraceGroup*> groupsInOrder();
    double originOf(double factor) const;
    QStringList pathOf(const TraceGroup& group) const;

    std::vector<TraceProcess> m_processes;
    std::vector<TraceGroup> m_groups;
    ByteTextMap<std::size_t> m_processIndexes;
    ByteTextMap<std::size_t> m_groupIndexes; // by process, kind and id
    std::string m_groupKey;
    int m_leftOut = 0;
};

} // namespace VeskTimeline::Kit
