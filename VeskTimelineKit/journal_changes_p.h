#pragma once

// Internal to the kit; not installed.

#include "id_set_p.h"
#include "journal_records_p.h"

#include <QHash>
#include <QObject>
#include <QPointer>
#include <QSet>

class QModelIndex;

namespace VeskTimeline {
class Track;
}

namespace VeskTimeline::Kit {

class IdTable;
class StandardTimelineModel;

/// Remembers what has been changed in a model, by its signals, and says on request what has become of it. It costs as
/// much as has changed, however large the model is.
///
/// What is between two requests comes out as one change: only ids are kept, not the ways there.
class JournalChanges : public QObject
{
    Q_OBJECT

public:
    explicit JournalChanges(StandardTimelineModel& model, QObject* parent = nullptr);

    /// Forgets what has been changed; the model as it is now is what later changes are to.
    void restart();
    bool isEmpty() const;
    /// What has become of all that was touched, which is forgotten then.
    JournalDelta take();
    /// Remembers again what a delta is about, which has come to nothing.
    void putBack(const JournalDelta& delta);
    /// The whole model, parents before children and items in their order.
    JournalDelta everything() const;

Q_SIGNALS:
    void touched();
    /// The model has been reset; what was remembered is forgotten.
    void modelReset();

private:
    /// What has been written about a track.
    struct Known
    {
        QString name;
        QColor color;
        QSet<int> copies;
        bool isTold = true; ///< false: it has to be written whatever it is
    };

    void connectModel();
    void touchItems(const QVector<int>& itemIds);
    void touchRows(const QModelIndex& parent, int first, int last, bool withSubtree);
    void touchSubtree(const Track& track);
    void rememberSubtree(const Track& track);
    const Track* existing(int trackId) const;
    static Known detailsOf(const Track& track);
    JournalTrack placed(const Track& track) const;
    void takeTracks(JournalDelta& delta);
    void takeItems(JournalDelta& delta);
    static void addTrackItems(const Track& track, std::vector<qint64> starts, const IdTable& wanted,
                              JournalDelta& delta);
    void addSubtree(const Track& track, int row, JournalDelta& delta) const;

    QPointer<StandardTimelineModel> m_model;
    IdSet m_items;
    QSet<int> m_places;  ///< tracks that have been inserted, removed or moved
    QSet<int> m_details; ///< tracks that may say something else now
    QHash<int, Known> m_known;
};

} // namespace VeskTimeline::Kit
