#include "json_record_p.h"
#include "kit_tr_p.h"
#include "lane_packer_p.h"
#include "read_progress_p.h"
#include "time_limits_p.h"
#include "trace_layout_p.h"

#include <algorithm>
#include <cmath>
#include <tuple>

namespace VeskTimeline::Kit {

namespace {

// More rows than anybody can look at; a trace that asks for them is made to fill the memory.
constexpr int mostLanes = 10'000;

/// Turns times of a trace into those of the axis.
class AxisScale
{
public:
    AxisScale(double origin, double factor) : m_origin(origin), m_factor(factor) {}

    /// Cut to whole milliseconds; nothing outside of the years that can be shown.
    std::optional<qint64> timeAt(double microseconds)
    {
        // Sums of decimal fractions of microseconds miss whole numbers by a hair.
        const double hair = 0.0005 * std::min(m_factor, 1.0);
        const double time = (microseconds - m_origin) * m_factor;
        const double whole = std::floor(time + hair);
        if (!(whole >= static_cast<double>(earliestTime) && whole <= static_cast<double>(latestTime)))
            return std::nullopt;
        m_cutTimes += time - whole > hair ? 1 : 0;
        return static_cast<qint64>(whole);
    }
    int cutTimes() const { return m_cutTimes; }

private:
    double m_origin;
    double m_factor;
    int m_cutTimes = 0;
};

/// Puts the slices of the groups into a document.
class TraceTracks
{
public:
    /// @param leftOut so many items have not even come here for want of tracks
    TraceTracks(AxisScale scale, SharedTexts& texts, ReadProgress& progress, int leftOut)
        : m_scale(scale), m_texts(texts), m_progress(progress), m_tooMany(leftOut)
    {
    }

    void add(const QStringList& path, std::vector<TraceSlice> slices);
    Document takeDocument(WarningList& warnings);

private:
    static constexpr qint64 noEnd = std::numeric_limits<qint64>::max();

    /// A slice on the axis. Most that are left out for want of tracks never become more than that.
    struct Bar
    {
        qint64 start = 0;
        qint64 end = 0; ///< or noEnd
        const TraceSlice* slice = nullptr;
    };

    std::vector<Bar> barsOf(const std::vector<TraceSlice>& slices);
    std::vector<std::vector<Bar>> lanesOf(const std::vector<Bar>& bars);
    DocumentItem itemOf(const Bar& bar);

    AxisScale m_scale;
    SharedTexts& m_texts;
    ReadProgress& m_progress;
    Document m_document;
    int m_outside = 0;
    int m_tooMany;
};

// By start, and of the same start the longest first.
std::vector<TraceTracks::Bar> TraceTracks::barsOf(const std::vector<TraceSlice>& slices)
{
    std::vector<Bar> bars;
    bars.reserve(slices.size());
    for (const TraceSlice& slice : slices) {
        m_progress.reportSometimes(0.5);
        const bool hasEnd = slice.end != TraceSlice::noEnd;
        const std::optional<qint64> start = m_scale.timeAt(slice.start);
        const std::optional<qint64> end = hasEnd ? m_scale.timeAt(slice.end) : start;
        if (start && end)
            bars.push_back({*start, hasEnd ? *end : noEnd, &slice});
        else
            ++m_outside;
    }
    const auto isBefore = [this](const Bar& a, const Bar& b) {
        m_progress.reportSometimes(0.5);
        return std::tie(a.start, b.end) < std::tie(b.start, a.end);
    };
    if (!std::is_sorted(bars.begin(), bars.end(), isBefore))
        std::stable_sort(bars.begin(), bars.end(), isBefore);
    return bars;
}

std::vector<std::vector<TraceTracks::Bar>> TraceTracks::lanesOf(const std::vector<Bar>& bars)
{
    LanePacker packer;
    std::vector<std::vector<Bar>> lanes;
    for (const Bar& bar : bars) {
        m_progress.reportSometimes(0.5);
        const int lane = packer.place(bar.start, bar.end);
        if (lane >= mostLanes) {
            ++m_tooMany;
            continue;
        }
        lanes.resize(std::max(lanes.size(), static_cast<std::size_t>(lane) + 1));
        lanes[static_cast<std::size_t>(lane)].push_back(bar);
    }
    return lanes;
}

DocumentItem TraceTracks::itemOf(const Bar& bar)
{
    DocumentItem item;
    item.label = m_texts.shared(bar.slice->payload.name());
    item.start = bar.start;
    item.duration = bar.end == noEnd ? DocumentItem::openEnded : bar.end - bar.start;
    item.attributes = attributesOf(*bar.slice, m_texts);
    return item;
}

void TraceTracks::add(const QStringList& path, std::vector<TraceSlice> slices)
{
    // Gone when its items are made, so that the two do not add up over all tracks.
    const std::vector<TraceSlice> done = std::move(slices);
    const std::vector<std::vector<Bar>> lanes = lanesOf(barsOf(done));
    for (std::size_t depth = 0; depth < lanes.size(); ++depth) {
        const QStringList below = depth > 0 ? QStringList{Tr::tr("depth %1").arg(depth)} : QStringList();
        DocumentTrack* const track = m_document.trackWithinLimit(path + below);
        if (!track) {
            m_tooMany += static_cast<int>(lanes[depth].size());
            continue;
        }
        track->items.reserve(lanes[depth].size());
        for (const Bar& bar : lanes[depth]) {
            m_progress.reportSometimes(0.5);
            track->items.push_back(itemOf(bar));
        }
    }
}

Document TraceTracks::takeDocument(WarningList& warnings)
{
    if (m_scale.cutTimes() > 0)
        warnings.add(0, Tr::tr("times cut to whole milliseconds: %1").arg(m_scale.cutTimes()));
    if (m_outside > 0)
        warnings.add(0, Tr::tr("items left out because they are outside the years 1 to 9999: %1").arg(m_outside));
    if (m_tooMany > 0)
        warnings.add(0, Tr::tr("items left out because there would be too many tracks: %1").arg(m_tooMany));
    return std::move(m_document);
}

QString titleOf(const QString& name, const QString& id, const QString& kind)
{
    return name.isEmpty() ? QStringLiteral("%1 %2").arg(kind, id) : QStringLiteral("%1 (%2)").arg(name, id);
}

} // namespace

// Each process and each group will be a track at least.
bool TraceLayout::hasRoom() const
{
    return m_processes.size() + m_groups.size() < Document::mostTracks;
}

TraceProcess* TraceLayout::process(std::string_view id)
{
    const std::optional<std::size_t> index = processIndex(id);
    return index ? &m_processes[*index] : nullptr;
}

std::optional<std::size_t> TraceLayout::processIndex(std::string_view id)
{
    if (const std::size_t* const found = m_processIndexes.find(id))
        return *found;
    if (!hasRoom())
        return std::nullopt;
    m_processIndexes.insert(id, m_processes.size());
    m_processes.push_back({jsonText(id), {}, 0.0});
    return m_processes.size() - 1;
}

std::optional<std::size_t> TraceLayout::groupIndex(std::string_view process, TraceGroup::Kind kind, std::string_view id)
{
    const std::optional<std::size_t> owner = processIndex(process);
    if (!owner)
        return std::nullopt;
    m_groupKey.assign(reinterpret_cast<const char*>(&*owner), sizeof *owner);
    m_groupKey.append(kind == TraceGroup::Kind::Thread ? "t" : "a").append(id);
    if (const std::size_t* const found = m_groupIndexes.find(m_groupKey))
        return *found;
    if (!hasRoom())
        return std::nullopt;
    m_groupIndexes.insert(m_groupKey, m_groups.size());
    m_groups.push_back({kind, *owner, jsonText(id), {}, 0.0, {}, {}});
    return m_groups.size() - 1;
}

std::vector<TraceGroup*> TraceLayout::groupsInOrder()
{
    std::vector<TraceGroup*> groups;
    for (TraceGroup& group : m_groups)
        groups.push_back(&group);
    const auto orderOf = [this](const TraceGroup& group) {
        return std::make_tuple(m_processes[group.process].sortIndex, group.process, group.kind, group.sortIndex);
    };
    std::stable_sort(groups.begin(), groups.end(),
                     [&](const TraceGroup* a, const TraceGroup* b) { return orderOf(*a) < orderOf(*b); });
    return groups;
}

QStringList TraceLayout::pathOf(const TraceGroup& group) const
{
    const TraceProcess& process = m_processes[group.process];
    const QString title = group.kind == TraceGroup::Kind::Thread ? titleOf(group.name, group.id, Tr::tr("thread"))
                                                                 : Tr::tr("async %1").arg(group.id);
    return {titleOf(process.name, process.id, Tr::tr("process")), title};
}

// Traces may count from when the machine was started, or from 1970: stretched, that would be after the last year.
double TraceLayout::originOf(double factor) const
{
    double first = TraceSlice::noEnd;
    for (const TraceGroup& group : m_groups) {
        for (const TraceSlice& slice : group.slices)
            first = std::min(first, slice.start);
    }
    return first != TraceSlice::noEnd && first * factor > static_cast<double>(latestTime) ? std::floor(first) : 0.0;
}

Document TraceLayout::takeDocument(double factor, SharedTexts& texts, WarningList& warnings, ReadProgress& progress)
{
    const double origin = originOf(factor);
    if (origin > 0.0)
        warnings.add(0, Tr::tr("times count from the first event, which is at %1 microseconds")
                            .arg(QString::number(origin, 'f', 0)));
    TraceTracks tracks(AxisScale(origin, factor), texts, progress, m_leftOut);
    int unused = 0;
    for (TraceGroup* const group : groupsInOrder()) {
        unused += group->slices.empty() ? 1 : 0;
        tracks.add(pathOf(*group), std::move(group->slices));
    }
    if (unused > 0)
        warnings.add(0, Tr::tr("threads left out because they have no items: %1").arg(unused));
    return tracks.takeDocument(warnings);
}

} // namespace VeskTimeline::Kit
