#pragma once

// Internal to the kit; not installed.

#include "document_bars_p.h"
#include "journal_records_p.h"

#include <QHash>

#include <memory>

namespace VeskTimeline::Kit {

/// What the changes of a journal are changes to: a document that a model was filled with, or else, when that is null,
/// all that a model held.
struct JournalBase
{
    std::shared_ptr<const Document> document = {};
    JournalDelta everything = {};
};

/// The lines of a base, some at a time.
class JournalBaseLines
{
public:
    explicit JournalBaseLines(std::shared_ptr<const JournalBase> base);

    bool isDone() const { return m_isDone; }
    /// The next lines, as many as take a few milliseconds. Only when not isDone().
    QByteArray next();

private:
    bool addNextOfDocument(QByteArray& lines);
    bool addNextOfEverything(QByteArray& lines);
    void enterTrack(QByteArray& lines);

    std::shared_ptr<const JournalBase> m_base;
    bool m_isDone = false;

    std::size_t m_track = 0; ///< the next one, of the document or of everything
    std::size_t m_item = 0;  ///< of everything
    std::size_t m_copies = 0;
    std::vector<DocumentBar> m_bars; ///< of the track before
    std::size_t m_bar = 0;
    int m_nextItemId = 0;
    int m_nextWhole = 0;
    QHash<QStringList, int> m_trackIds{{QStringList(), 0}};
    QHash<int, int> m_childCounts;
};

} // namespace VeskTimeline::Kit
