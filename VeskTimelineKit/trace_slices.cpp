#include "kit_tr_p.h"
#include "quoted_text_p.h"
#include "read_progress_p.h"
#include "trace_slices_p.h"

#include <algorithm>

namespace VeskTimeline::Kit {

namespace {

QString quotedName(const TraceMark& mark)
{
    const std::string_view name = mark.payload.name();
    return quotedText(QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size())));
}

// An end may say more than the beginning, and about the same thing something else.
void addEndAttributes(QMap<QString, QString>& target, const QMap<QString, QString>& attributes)
{
    for (auto attribute = attributes.cbegin(); attribute != attributes.cend(); ++attribute) {
        const auto known = target.constFind(attribute.key());
        if (known == target.cend())
            target.insert(attribute.key(), attribute.value());
        else if (known.value() != attribute.value())
            target.insert(QStringLiteral("end.") + attribute.key(), attribute.value());
    }
}

} // namespace

void sortBySeries(std::vector<TraceMark>& marks, std::size_t seriesCount)
{
    if (std::is_sorted(marks.begin(), marks.end(),
                       [](const TraceMark& a, const TraceMark& b) { return a.series < b.series; }))
        return;
    // By counting: a sort that compares would take longer than all the rest.
    std::vector<std::size_t> next(seriesCount + 1);
    for (const TraceMark& mark : marks)
        ++next[mark.series + 1];
    for (std::size_t series = 1; series <= seriesCount; ++series)
        next[series] += next[series - 1];
    std::vector<TraceMark> sorted(marks.size());
    for (const TraceMark& mark : marks)
        sorted[next[mark.series]++] = mark;
    marks = std::move(sorted);
}

void matchTraceMarks(std::vector<TraceMark>::iterator begin, std::vector<TraceMark>::iterator end,
                     std::vector<TraceSlice>& slices, WarningList& warnings, ReadProgress& progress)
{
    const auto isEarlier = [&progress](const TraceMark& a, const TraceMark& b) {
        progress.reportSometimes(0.0);
        return a.time < b.time;
    };
    if (!std::is_sorted(begin, end, isEarlier))
        std::stable_sort(begin, end, isEarlier);

    std::vector<const TraceMark*> open;
    for (auto mark = begin; mark != end; ++mark) {
        progress.reportSometimes(0.0);
        if (mark->isBegin) {
            open.push_back(&*mark);
            continue;
        }
        if (open.empty()) {
            warnings.addMade(mark->line, [mark] {
                return Tr::tr("event %1: the end %2 without a beginning is left out")
                    .arg(mark->number)
                    .arg(quotedName(*mark));
            });
            continue;
        }
        const TraceMark& opened = *open.back();
        open.pop_back();
        if (!mark->payload.name().empty() && mark->payload.name() != opened.payload.name())
            warnings.addMade(mark->line, [mark, &opened] {
                return Tr::tr("event %1: it ends %2 under the name %3")
                    .arg(mark->number)
                    .arg(quotedName(opened), quotedName(*mark));
            });
        slices.push_back({opened.time, mark->time, opened.payload, mark->payload});
    }
    for (const TraceMark* const mark : open) {
        warnings.addMade(mark->line, [mark] {
            return Tr::tr("event %1: %2 never ends and is left open-ended").arg(mark->number).arg(quotedName(*mark));
        });
        slices.push_back({mark->time, TraceSlice::noEnd, mark->payload});
    }
}

QMap<QString, QString> attributesOf(const TraceSlice& slice, SharedTexts& texts)
{
    QMap<QString, QString> attributes = slice.payload.attributes(texts);
    if (!slice.endPayload.isNull())
        addEndAttributes(attributes, slice.endPayload.attributes(texts));
    return attributes;
}

} // namespace VeskTimeline::Kit
