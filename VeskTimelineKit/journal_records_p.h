#pragma once

// Internal to the kit; not installed.

#include <VeskTimelineKit/document.h>
#include <VeskTimelineKit/labelled_item.h>

#include <QByteArray>
#include <QVector>

#include <simdjson.h>
#include <vector>

class QIODevice;

namespace VeskTimeline::Kit {

/// What a journal says of a track.
struct JournalTrack
{
    int id = 0;
    int parentId = -1; ///< -1: the track stays where it is
    int row = 0;       ///< among the children of its parent, when all of a change has been made
    QString name = {};
    QColor color = {}; ///< of items that have none of their own
};

/// What a journal says of an item: all of it, however little of it has changed.
struct JournalItem
{
    /// For an item that comes behind all that are there.
    static constexpr int last = -1;

    int id = 0;
    int trackId = 0;
    int position = last; ///< on its track, when all of a change has been made
    ItemPiece piece = {};
    DocumentItem content = {};
};

/// All copy items of a track.
struct JournalCopies
{
    int trackId = 0;
    QVector<int> itemIds = {};
};

/// What has become of a model between two moments.
struct JournalDelta
{
    QVector<int> removedTracks = {}; ///< with all that is below and on them and has not been moved away
    QVector<int> removedItems = {};
    std::vector<JournalTrack> tracks = {};
    std::vector<JournalItem> items = {};
    std::vector<JournalCopies> copies = {};

    bool isEmpty() const
    {
        return removedTracks.isEmpty() && removedItems.isEmpty() && tracks.empty() && items.empty() && copies.empty();
    }
};

/// What the first line of a journal says.
struct JournalHeader
{
    QStringList fileNames = {}; ///< that the document was read from
    QString base = {};          ///< name of the file, in the same folder, with the document that the changes are to
};

/// A line of a journal: a checksum, the JSON, and the line's end.
QByteArray journalLine(const QByteArray& json);
/// The next line of a file; of what is too long for a line of a journal, a part.
QByteArray readJournalLine(QIODevice& device);
/// The JSON of such a line; nothing when the line is incomplete or damaged.
std::optional<QByteArray> checkedJson(const QByteArray& line);

QByteArray trackRecord(const JournalTrack& track);
QByteArray itemRecord(const JournalItem& item);
QByteArray copiesRecord(const JournalCopies& copies);
QByteArray headerLine(const JournalHeader& header);
/// The last line of a change. @param time of the change, milliseconds since the epoch
QByteArray commitLine(qint64 time);
/// Says that the document was saved as it is then.
QByteArray savedLine();
/// The last line of a base.
QByteArray endLine();
/// The lines of a change, without commitLine().
QByteArray deltaLines(const JournalDelta& delta);

/// What a line is, as far as it is no part of a change.
enum class JournalMark { None, Commit, Saved, End };

/// Takes a line's JSON for what it is. @param time set for a commit
/// @throws QString when it is part of a change, or should be, and makes no sense
JournalMark readRecord(const simdjson::dom::element& json, JournalDelta& delta, qint64& time);
/// Nothing when the line is no header, or one of a later version.
std::optional<JournalHeader> readHeader(const simdjson::dom::element& json);

} // namespace VeskTimeline::Kit
