#include "kit_tr_p.h"
#include "quoted_text_p.h"
#include "read_progress_p.h"
#include "trace_slices_p.h"

#include <algorithm>

namespace VeskTimeline::Kit {

namespace {

// An end may say more than the beginning, and about the same thing something else.
void addEndAttributes(TraceSlice& slice, const QMap<QString, QString>& attributes)
{
    for (auto attribute = attributes.cbegin(); attribute != attributes.cend(); ++attribute) {
        const auto known = slice.attributes.constFind(attribute.key());
        if (known == slice.attributes.cend())
            slice.attributes.insert(attribute.key(), attribute.value());
        else if (known.value() != attribute.value())
            slice.attributes.insert(QStringLiteral("end.") + attribute.key(), attribute.value());
    }
}

TraceSlice openSlice(TraceMark& begin)
{
    return {begin.time, TraceSlice::noEnd, std::move(begin.name), std::move(begin.attributes)};
}

} // namespace

std::vector<TraceSlice> matchTraceMarks(std::vector<TraceMark> marks, WarningList& warnings, ReadProgress& progress)
{
    std::stable_sort(marks.begin(), marks.end(), [&progress](const TraceMark& a, const TraceMark& b) {
        progress.reportSometimes(0.0);
        return a.time < b.time;
    });

    std::vector<TraceSlice> slices;
    std::vector<TraceMark*> open;
    for (TraceMark& mark : marks) {
        progress.reportSometimes(0.0);
        if (mark.isBegin) {
            open.push_back(&mark);
            continue;
        }
        if (open.empty()) {
            warnings.add(mark.line, Tr::tr("event %1: the end %2 without a beginning is left out")
                                        .arg(mark.number)
                                        .arg(quotedText(mark.name)));
            continue;
        }
        TraceMark& begin = *open.back();
        open.pop_back();
        if (!mark.name.isEmpty() && mark.name != begin.name)
            warnings.add(mark.line, Tr::tr("event %1: it ends %2 under the name %3")
                                        .arg(mark.number)
                                        .arg(quotedText(begin.name), quotedText(mark.name)));
        slices.push_back(openSlice(begin));
        slices.back().end = mark.time;
        addEndAttributes(slices.back(), mark.attributes);
    }
    for (TraceMark* const mark : open) {
        warnings.add(
            mark->line,
            Tr::tr("event %1: %2 never ends and is left open-ended").arg(mark->number).arg(quotedText(mark->name)));
        slices.push_back(openSlice(*mark));
    }
    return slices;
}

} // namespace VeskTimeline::Kit
