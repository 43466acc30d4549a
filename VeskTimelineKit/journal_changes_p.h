#pragma once

// Internal to the kit; not installed.

#include "id_set_p.h"
#include "journal_taking_p.h"

#include <QHash>
#include <QObject>
#include <QPointer>
#include <QSet>

#include <memory>
#include <optional>

class QModelIndex;

namespace VeskTimeline {
class Track;
}

namespace VeskTimeline::Kit {

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
    /// How many items were touched.
    int itemCount() const { return m_items.size(); }

    /// What to take down: what has become of all that was touched, or the whole model.
    enum class Extent { Touched, Everything };
    /// Begins to take down. A change of the model meanwhile makes it begin anew, with what was touched then, too.
    void beginTaking(Extent extent);
    bool isTaking() const { return m_extent.has_value(); }
    /// Whether it had to begin anew.
    bool hasBegunAnew() const { return m_hasBegunAnew; }
    /// Goes on. Only when isTaking().
    /// @param count see JournalTaking::advance()
    /// @return whether all is taken down
    bool advanceTaking(int count);
    /// What was taken down, all of it; nothing counts as touched then. Only when isTaking().
    JournalDelta finishTaking();
    void cancelTaking();

    /// Remembers again what has been taken down last, which has come to nothing.
    void putBack(const JournalDelta& delta);

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
    void onTouched();

    QPointer<StandardTimelineModel> m_model;
    IdSet m_items;
    QSet<int> m_places;  ///< tracks that have been inserted, removed or moved
    QSet<int> m_details; ///< tracks that may say something else now
    QHash<int, Known> m_known;
    std::optional<Extent> m_extent;          ///< while something is taken down
    std::unique_ptr<JournalTaking> m_taking; ///< null: it is to begin anew
    bool m_hasBegunAnew = false;
    QVector<int> m_takenItems; ///< that were touched before what was taken down last
};

} // namespace VeskTimeline::Kit
