#include <VeskTimeline/timeline_model.h>

#include <QRandomGenerator>
#include <QRegularExpression>
#include <QTest>

using namespace VeskTimeline;

namespace {

/// A model whose tracks come, go and move in every way that an application has, most of them without a signal.
class RestlessModel : public TimelineModel
{
public:
    explicit RestlessModel(quint32 seed) : m_random(seed) {}

    /// Says what was done.
    QString step()
    {
        switch (m_random.bounded(8)) {
        case 0:
            return move();
        case 1:
            return shuffle();
        case 2:
            return removeAny();
        case 3:
            if (m_random.bounded(40) > 0)
                return insertSilently();
            clear();
            return QStringLiteral("clear");
        default: {
            const QSignalBlocker blocker(m_random.bounded(4) == 0 ? this : nullptr);
            const Track& parent = randomTrack();
            insertTrack(parent.id(), m_random.bounded(parent.trackCount() + 1), std::make_unique<OwnTrack>(-1, -1));
            return QStringLiteral("insertTrack");
        }
        }
    }

    int largestId() const { return m_currentTrackId; }
    void setTrackCaching(bool isOn) { m_trackCaching = isOn; }

private:
    QString insertSilently()
    {
        Track& parent = randomTrack();
        auto added = std::make_unique<OwnTrack>(nextFreeTrackId(), parent.id());
        m_trackCache[added->id()] = added.get();
        parent.tracks().insert(parent.tracks().begin(), std::move(added));
        return QStringLiteral("insertion at the front without signal");
    }

    QString removeAny()
    {
        const int id = randomTrack().id();
        if (id == 0)
            return QStringLiteral("nothing");
        for (const int below : idsBelow(*track(id)))
            m_trackCache.erase(below);
        removeTrack(id);
        return QStringLiteral("removeTrack");
    }

    QString move()
    {
        Track& moved = randomTrack();
        Track& target = randomTrack();
        if (moved.id() == 0 || &moved == &target || moved.hasTrack(target.id(), true))
            return QStringLiteral("nothing");
        Tracks& siblings = track(moved.parentId())->tracks();
        const auto found =
            std::find_if(siblings.begin(), siblings.end(), [&](const TrackPtr& own) { return own.get() == &moved; });
        TrackPtr taken = std::move(*found);
        siblings.erase(found);
        static_cast<OwnTrack&>(moved).setParent(target.id());
        target.tracks().push_back(std::move(taken));
        return QStringLiteral("move");
    }

    QString shuffle()
    {
        Tracks& tracks = randomTrack().tracks();
        std::shuffle(tracks.begin(), tracks.end(), m_random);
        return QStringLiteral("shuffle");
    }

    /// What a subclass of Track may do to its fields.
    class OwnTrack : public Track
    {
    public:
        OwnTrack(int id, int parentId) : Track(QString())
        {
            m_id = id;
            m_parentId = parentId;
        }
        void setParent(int id) { m_parentId = id; }
    };

    static QVector<int> idsBelow(const Track& track)
    {
        QVector<int> ids;
        for (const TrackPtr& child : track.tracks()) {
            ids.append(child->id());
            ids.append(idsBelow(*child));
        }
        return ids;
    }

    Track& randomTrack()
    {
        const int entry = m_random.bounded(static_cast<int>(m_trackCache.size()));
        return *std::next(m_trackCache.begin(), entry)->second;
    }

    QRandomGenerator m_random;
};

/// Row by row from the top.
QModelIndex findIndex(const QAbstractItemModel& model, const QModelIndex& above, int trackId)
{
    for (int row = 0; row < model.rowCount(above); ++row) {
        const QModelIndex child = model.index(row, 0, above);
        const QModelIndex found = int(child.internalId()) == trackId ? child : findIndex(model, child, trackId);
        if (found.isValid())
            return found;
    }
    return {};
}

/// Empty when each row's parent is the row that it was reached from.
QString faultOf(const QAbstractItemModel& model, const QModelIndex& above)
{
    for (int row = 0; row < model.rowCount(above); ++row) {
        const QModelIndex child = model.index(row, 0, above);
        if (model.parent(child) != above)
            return QStringLiteral("parent of track %1").arg(child.internalId());
        const QString fault = faultOf(model, child);
        if (!fault.isEmpty())
            return fault;
    }
    return {};
}

} // namespace

class tst_track_places : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".?"))); }

    void rowsAreFoundHoweverTracksMove_data();
    void rowsAreFoundHoweverTracksMove();
    void idsThatNoModelGaveAreFoundInOrder();
    void rowsOfASubclassAreFound();
};

void tst_track_places::rowsAreFoundHoweverTracksMove_data()
{
    QTest::addColumn<quint32>("seed");
    for (quint32 seed = 1; seed <= 5; ++seed)
        QTest::addRow("seed %u", seed) << seed;
}

void tst_track_places::rowsAreFoundHoweverTracksMove()
{
    QFETCH(const quint32, seed);
    RestlessModel model(seed);
    QRandomGenerator random(seed + 100);
    for (int i = 0; i < 400; ++i) {
        const QString done = model.step();
        const QByteArray where = QStringLiteral("step %1, %2").arg(i).arg(done).toUtf8();
        model.setTrackCaching(random.bounded(5) > 0);
        // Some of those that are or were there, and some that were never.
        for (int j = 0; j < 8; ++j) {
            const int id = random.bounded(-2, model.largestId() + 2);
            const QModelIndex expected = id == 0 ? QModelIndex() : findIndex(model, {}, id);
            QVERIFY2(model.indexOfTrack(id) == expected, where.constData());
            const int aboveId = random.bounded(1, model.largestId() + 2);
            const QModelIndex above = findIndex(model, {}, aboveId);
            if (above.isValid() && id != 0) {
                const QModelIndex below = id == aboveId ? above : findIndex(model, above, id);
                QVERIFY2(model.indexOfTrackFromIndex(above, id) == below, where.constData());
            }
        }
        const QString fault = faultOf(model, {});
        QVERIFY2(fault.isEmpty(), (fault.toUtf8() + " after " + where).constData());
        model.setTrackCaching(true);
    }
}

void tst_track_places::idsThatNoModelGaveAreFoundInOrder()
{
    TimelineModel model;
    for (int i = 0; i < 3; ++i)
        model.rootTrack()->tracks().push_back(std::make_unique<Track>(QString()));
    QCOMPARE(model.indexOfTrack(-1), model.index(0, 0));
}

void tst_track_places::rowsOfASubclassAreFound()
{
    /// Shows its rows from the last to the first.
    class Upended : public TimelineModel
    {
    public:
        using TimelineModel::index;
        using TimelineModel::insertTrack;
        QModelIndex index(int row, int column, const QModelIndex& parent) const override
        {
            return TimelineModel::index(rowCount(parent) - 1 - row, column, parent);
        }
    };
    Upended model;
    for (int i = 0; i < 3; ++i)
        model.insertTrack(0, -1, std::make_unique<Track>(QString()));
    for (int id = 1; id <= 3; ++id)
        QCOMPARE(int(model.indexOfTrack(id).internalId()), id);
}

QTEST_GUILESS_MAIN(tst_track_places)
#include "tst_track_places.moc"
