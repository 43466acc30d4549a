#pragma once

#include <VeskTimelineKit/vesktimelinekit_export.h>

#include <QColor>
#include <QHash>
#include <QMap>
#include <QString>
#include <QStringList>

#include <limits>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace VeskTimeline::Kit {

/// One item of a document, in no model yet.
struct DocumentItem
{
    /// Duration of an item that has a start and no end.
    static constexpr int openEnded = -1;
    /// The longest duration that one bar of a timeline can have. A model shows a longer item in pieces.
    static constexpr qint64 longestBar = std::numeric_limits<int>::max();

    QString label;
    qint64 start = 0;       ///< milliseconds since the epoch, UTC
    qint64 duration = 0;    ///< milliseconds; openEnded for none
    QColor color;           ///< invalid: whoever shows the item chooses
    bool isEditable = true; ///< whether the user may move or resize the item
    QString description = {};
    QMap<QString, QString> attributes = {}; ///< free, by name; never interpreted by the kit

    /// The start of an open-ended item.
    qint64 end() const { return start + (duration > 0 ? duration : 0); }
};

/// One track of a document.
struct DocumentTrack
{
    QStringList path; ///< the names from the top level down to this track; never empty
    std::vector<DocumentItem> items;
    QColor color = {}; ///< of items that have none; invalid: whoever shows the track chooses
};

/// From the earliest start to the latest end; milliseconds since the epoch.
struct TimeSpan
{
    qint64 start = 0;
    qint64 end = 0;
};

/// What a file says: tracks and their items, as plain values that can be passed between threads.
///
/// Every track is listed, also one that only has tracks below it, parents before their children and otherwise in the
/// order in which they were named first. A path is there once.
class VESKTIMELINEKIT_EXPORT Document
{
public:
    /// Readers make no more tracks than that of a file that is not in the native format, and say what they leave out:
    /// more rows than anybody looks through, and a short text can name a great many.
    static constexpr std::size_t mostTracks = 100'000;

    const std::vector<DocumentTrack>& tracks() const { return m_tracks; }
    int itemCount() const;
    /// Nothing when there is no item.
    std::optional<TimeSpan> span() const;

    /// The track of that path, made with all its parents when it is not there yet. Valid until the next call.
    /// @param path at least one name
    DocumentTrack& track(const QStringList& path);
    /// As track(), but nothing is made, and null is returned, where there would be more than mostTracks tracks.
    DocumentTrack* trackWithinLimit(const QStringList& path);
    /// @param position in tracks()
    DocumentTrack& trackAt(std::size_t position) { return m_tracks[position]; }
    bool hasTrack(const QStringList& path) const { return find(path).levels == path.size(); }

    /// What a reader noticed and went on, in sentences for the user.
    const QStringList& warnings() const { return m_warnings; }
    void addWarning(const QString& text) { m_warnings.append(text); }
    /// A sentence for each item that is longer than one bar; of the first 100, and then how many more there are.
    QStringList longItemWarnings() const;

    /// Adds the tracks, items and warnings of another document; tracks of the same path become one, which keeps its
    /// colour if it has one.
    void merge(const Document& other);
    /// Puts the tracks of another document below a top-level track of that name, which is made, and adds its warnings.
    /// @param name of a track that is not there yet
    void addBelow(const QString& name, Document&& other);

private:
    /// The part of a path that is there.
    struct Found
    {
        qsizetype levels = 0;
        int position = -1; ///< of the lowest of them in m_tracks; -1 for none
    };

    Found find(const QStringList& path) const;
    DocumentTrack& complete(const QStringList& path, Found found);

    std::vector<DocumentTrack> m_tracks;
    // By the position of the track above and the name. Whole paths as keys would be hashed once for each level.
    QHash<std::pair<int, QString>, int> m_positions;
    QStringList m_warnings;
};

/// A document that several can hold, and whose destruction, when the last lets go, holds none of them up.
VESKTIMELINEKIT_EXPORT std::shared_ptr<const Document> shareDocument(Document&& document);

} // namespace VeskTimeline::Kit
