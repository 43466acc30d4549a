#include "csv_item_reader_p.h"
#include "kit_tr_p.h"
#include "quoted_text_p.h"
#include "read_file_p.h"
#include "read_progress_p.h"

#include <VeskTimelineKit/csv_reader.h>
#include <VeskTimelineKit/warnings.h>

#include <algorithm>
#include <limits>
#include <utility>

namespace VeskTimeline::Kit {

namespace {

// How many items begin before all those in front of them have ended. One without a length takes a millisecond: two of
// the same time hide each other.
int countOverlapping(const DocumentTrack& track, ReadProgress& progress)
{
    std::vector<std::pair<qint64, qint64>> spans;
    spans.reserve(track.items.size());
    for (const DocumentItem& item : track.items)
        spans.emplace_back(item.start, item.duration == DocumentItem::openEnded ? std::numeric_limits<qint64>::max()
                                                                                : std::max(item.end(), item.start + 1));
    const auto isBefore = [&progress](const auto& left, const auto& right) {
        progress.reportSometimes(1.0);
        return left < right;
    };
    if (!std::is_sorted(spans.begin(), spans.end(), isBefore))
        std::sort(spans.begin(), spans.end(), isBefore);
    int count = 0;
    qint64 lastEnd = std::numeric_limits<qint64>::min();
    for (const auto& [start, end] : spans) {
        count += start < lastEnd ? 1 : 0;
        lastEnd = std::max(lastEnd, end);
    }
    return count;
}

/// Reads the records of a file by its plan.
class CsvDocumentReader
{
public:
    CsvDocumentReader(CsvSource& source, const QString& fileName, const ReadOptions& options, ReadProgress& progress)
        : m_source(source),
          m_fileName(fileName),
          m_progress(progress),
          m_plan(makeCsvPlan(source, options.csv)),
          m_warnings(fileName),
          m_ofRecords(fileName)
    {
    }

    Result<Document> read()
    {
        if (!m_plan.problem.isNull())
            return FileError{m_fileName, m_plan.problemLine, m_plan.problem};
        for (const QString& guess : m_plan.guesses)
            m_warnings.add(0, guess);
        const QString defaultTrack = csvDefaultTrack(m_fileName);
        if (!m_plan.columns.has(CsvField::Track) && !m_plan.columns.isDenied(CsvField::Track))
            m_warnings.add(
                0,
                Tr::tr("there is no column for tracks: all items are in the track %1").arg(quotedText(defaultTrack)));
        CsvItemReader items(m_plan, defaultTrack);
        CsvRecordReader records = csvRecords(m_source, m_plan);
        try {
            if (std::optional<FileError> error = readRecords(records, items))
                return *error;
        } catch (const QString& reason) {
            return FileError{m_fileName, records.recordLine(), reason};
        }
        m_hasEncodingError = records.hasEncodingError();
        if (!records.errorReason().isNull())
            return FileError{m_fileName, records.errorLine(), records.errorReason()};
        return takeDocument(items);
    }

    /// Whether the file was taken for UTF-8 because it begins so, and then turned out to be none.
    bool isOtherEncoding(const ReadOptions& options) const
    {
        return m_hasEncodingError && !options.csv.encoding && m_plan.code.encoding == CsvEncoding::Utf8 &&
               m_plan.code.markSize == 0 && !m_plan.isOwnWay();
    }

private:
    std::optional<FileError> readRecords(CsvRecordReader& records, CsvItemReader& items)
    {
        for (int skipped = m_plan.hasDelimiterLine ? 2 : 1; skipped > 0; --skipped)
            records.next();
        while (records.next()) {
            m_progress.reportSometimes([this] { return m_source.share(); });
            try {
                readRecord(records, items);
            } catch (const CsvItemReader::LeftOut& leftOut) {
                leaveOut(records.recordLine(), leftOut.reason);
            } catch (const QString& reason) {
                if (m_plan.isOwnWay())
                    return FileError{m_fileName, records.recordLine(), reason};
                leaveOut(records.recordLine(), reason);
            }
        }
        return m_itemCount == 0 ? m_firstFault : std::nullopt;
    }

    void readRecord(const CsvRecordReader& records, CsvItemReader& items)
    {
        std::optional<CsvItemReader::Entry> entry = items.read(records.fields());
        if (!entry)
            return;
        for (const QString& remark : std::as_const(entry->remarks))
            m_ofRecords.add(records.recordLine(), remark);
        DocumentTrack* const track = trackOf(entry->path);
        if (!track)
            ++m_beyondTracks;
        if (!track || !entry->item)
            return;
        ++m_itemCount;
        track->items.push_back(std::move(*entry->item));
    }

    // Null where there would be too many tracks. Records of a track mostly stand together.
    DocumentTrack* trackOf(const QStringList& path)
    {
        if (!m_lastTrack || path != m_lastPath) {
            m_lastTrack = m_document.trackWithinLimit(path);
            m_lastPath = path;
        }
        return m_lastTrack;
    }

    // A file of which nothing can be read is not what it was taken for.
    void leaveOut(int line, const QString& reason)
    {
        if (!m_firstFault && !m_plan.isOwnWay())
            m_firstFault = FileError{m_fileName, line, reason};
        m_ofRecords.add(line, Tr::tr("the record is left out: %1").arg(reason));
    }

    Document takeDocument(const CsvItemReader& items)
    {
        WarningList counts(m_fileName);
        const auto addCount = [&counts](const QString& text, int count) {
            if (count > 0)
                counts.add(0, text.arg(count));
        };
        addCount(Tr::tr("times cut to whole milliseconds: %1"), items.cutTimes());
        addCount(Tr::tr("times that the clocks left out when they were put forward, moved by as much: %1"),
                 items.timeCounts().leftOut);
        addCount(Tr::tr("times that the clocks showed twice, the first taken: %1"), items.timeCounts().twice);
        addCount(Tr::tr("records left out because there would be too many tracks: %1"), m_beyondTracks);
        int overlapping = 0;
        for (const DocumentTrack& track : m_document.tracks())
            overlapping += countOverlapping(track, m_progress);
        addCount(Tr::tr("items that overlap others of their track, and may hide them: %1"), overlapping);
        m_warnings.addTo(m_document);
        m_ofRecords.addTo(m_document);
        counts.addTo(m_document);
        return std::move(m_document);
    }

    CsvSource& m_source;
    QString m_fileName;
    ReadProgress& m_progress;
    CsvPlan m_plan;
    WarningList m_warnings;  // of the file as a whole
    WarningList m_ofRecords; // apart: a great many of them must hide no others
    Document m_document;
    QStringList m_lastPath;
    DocumentTrack* m_lastTrack = nullptr; // of that path; good as long as no other is made
    std::optional<FileError> m_firstFault;
    qint64 m_itemCount = 0;
    int m_beyondTracks = 0;
    bool m_hasEncodingError = false;
};

} // namespace

Result<Document> readCsv(QIODevice& device, const QString& fileName, const ReadOptions& options)
{
    ReadProgress progress(options);
    try {
        progress.report(0.0);
        CsvSource source(device);
        CsvDocumentReader reader(source, fileName, options, progress);
        Result<Document> result = reader.read();
        if (!reader.isOtherEncoding(options) || !source.restart())
            return result;
        ReadOptions others = options;
        others.csv.encoding = CsvEncoding::Windows1252;
        result = CsvDocumentReader(source, fileName, others, progress).read();
        if (result)
            result.value().addWarning(FileError{fileName, 0, Tr::tr("the text is taken for Windows-1252")}.text());
        return result;
    } catch (const QString& reason) {
        return FileError{fileName, 0, reason};
    } catch (const ReadCancelled&) {
        return FileError{fileName, 0, cancelledReason()};
    }
}

Result<Document> readCsv(const QString& fileName, const ReadOptions& options)
{
    return readFile(fileName, [&](QIODevice& device) { return readCsv(device, fileName, options); });
}

} // namespace VeskTimeline::Kit
