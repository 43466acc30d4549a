#include "reference/track_tree.h"
#include "support/test_model.h"

#include <QRandomGenerator>
#include <QRegularExpression>
#include <QTest>

using namespace VeskTimeline;
using Reference::TrackTree;

namespace {

/// Brackets the operations that change rows with their signals, as an application does.
class RowModel : public TestModel
{
public:
    void removeRowOf(int trackId)
    {
        const QModelIndex index = indexOfTrack(trackId);
        beginRemoveRows(index.parent(), index.row(), index.row());
        removeTrack(trackId);
        endRemoveRows();
    }
    void resetAll()
    {
        beginResetModel();
        clear();
        endResetModel();
    }

    using TimelineModel::m_currentItemId;
    using TimelineModel::m_currentTrackId;
    using TimelineModel::m_rootTrack;
};

/// Does the same to a model and to the reference.
class Pair
{
public:
    explicit Pair(quint32 seed) : m_random(seed) { model.setSnapStep(tree.snapStep); }

    /// Says what was done.
    QString step()
    {
        switch (m_random.bounded(24)) {
        case 0:
        case 1:
        case 2:
            return insertTrack();
        case 3:
            return m_random.bounded(4) == 0 ? removeTrack() : changeSettings();
        case 4:
            return cutOrCopy();
        case 5:
            return paste();
        case 6:
            return m_random.bounded(12) == 0 ? clear() : changeSettings();
        default:
            return m_random.bounded(3) == 0 ? addItem() : changeItem();
        }
    }

    RowModel model;
    TrackTree tree;

private:
    qint64 randomTime() { return m_random.bounded(-20'000, 20'000); }
    int randomDuration() { return m_random.bounded(8) == 0 ? -1 : m_random.bounded(5000); }

    template <typename Map>
    int randomKey(const Map& map)
    {
        return std::next(map.begin(), m_random.bounded(static_cast<int>(map.size())))->first;
    }

    /// -1 without any.
    int randomItem() { return tree.items().empty() ? -1 : randomKey(tree.items()); }
    /// Not the root; -1 without any.
    int randomTrack()
    {
        const int id = randomKey(tree.tracks());
        return id != 0 ? id : tree.tracks().size() == 1 ? -1 : tree.tracks().rbegin()->first;
    }

    QString insertTrack()
    {
        const int parent = randomKey(tree.tracks());
        const int row = m_random.bounded(-1, 5);
        model.newTrack(QStringLiteral("track"), parent, row);
        tree.insertTrack(parent, row);
        return QStringLiteral("insertTrack %1 %2").arg(parent).arg(row);
    }

    QString removeTrack()
    {
        const int track = randomTrack();
        if (track < 0)
            return QStringLiteral("no track to remove");
        model.removeRowOf(track);
        tree.removeTrack(track);
        return QStringLiteral("removeTrack %1").arg(track);
    }

    QString addItem()
    {
        const int track = randomTrack();
        if (track < 0)
            return insertTrack();
        const qint64 start = randomTime();
        const int duration = randomDuration();
        model.newItem(track, start, duration);
        tree.addItem(track, start, duration);
        return QStringLiteral("addItem %1 %2 %3").arg(track).arg(start).arg(duration);
    }

    QString changeItem()
    {
        const int item = randomItem();
        if (item < 0)
            return addItem();
        const qint64 time = randomTime();
        switch (m_random.bounded(4)) {
        case 0:
            model.removeItem(item);
            tree.removeItem(item);
            return QStringLiteral("removeItem %1").arg(item);
        case 1:
            model.setItemStartTime(item, time);
            tree.setStart(item, time);
            return QStringLiteral("setItemStartTime %1 %2").arg(item).arg(time);
        case 2: {
            const int duration = randomDuration();
            model.setItemDuration(item, duration);
            tree.setDuration(item, duration);
            return QStringLiteral("setItemDuration %1 %2").arg(item).arg(duration);
        }
        default: {
            const int track = randomTrack();
            model.moveItemToTrack(item, track, time);
            tree.move(item, track, time);
            return QStringLiteral("moveItemToTrack %1 %2 %3").arg(item).arg(track).arg(time);
        }
        }
    }

    QString cutOrCopy()
    {
        QVector<int> ids;
        for (const auto& [id, item] : tree.items()) {
            if (m_random.bounded(4) == 0)
                ids.append(id);
        }
        std::shuffle(ids.begin(), ids.end(), m_random);
        tree.copy(ids);
        if (m_random.bounded(2) == 0) {
            model.copyToClipboard(ids);
            return QStringLiteral("copyToClipboard of %1").arg(ids.size());
        }
        model.cutToClipboard(ids);
        for (const int id : ids)
            tree.removeItem(id);
        return QStringLiteral("cutToClipboard of %1").arg(ids.size());
    }

    QString paste()
    {
        if (!tree.canPaste())
            return QStringLiteral("nothing to paste to");
        const qint64 time = randomTime();
        model.pasteFromClipboard(time);
        tree.paste(time);
        return QStringLiteral("pasteFromClipboard %1").arg(time);
    }

    QString clear()
    {
        if (m_random.bounded(2) == 0) {
            model.clearItems();
            tree.clearItems();
            return QStringLiteral("clearItems");
        }
        model.resetAll();
        tree.clear();
        return QStringLiteral("clear");
    }

    QString changeSettings()
    {
        tree.isSnapping = m_random.bounded(2) == 0;
        tree.minimumDuration = 1000 * m_random.bounded(3);
        model.setSnapEnabled(tree.isSnapping);
        model.setMinimumDuration(tree.minimumDuration);
        const bool isCaching = m_random.bounded(2) == 0;
        model.m_itemCaching = isCaching;
        model.m_trackCaching = isCaching;
        return QStringLiteral("settings");
    }

    QRandomGenerator m_random;
};

QStringList describe(const TrackTree& tree)
{
    QStringList lines;
    for (const auto& [track, children] : tree.tracks()) {
        QString line = QStringLiteral("track %1:").arg(track);
        for (const int child : children)
            line += QStringLiteral(" %1").arg(child);
        lines.append(line);
    }
    for (const auto& [id, item] : tree.items()) {
        lines.append(QStringLiteral("item %1 on %2: %3+%4").arg(id).arg(item.track).arg(item.start).arg(item.duration));
    }
    return lines;
}

QStringList describe(const RowModel& model, const TrackTree& tree)
{
    QStringList lines;
    for (const auto& entry : tree.tracks()) {
        const Track* const track = model.track(entry.first);
        QString line = QStringLiteral("track %1:").arg(track->id());
        for (const TrackPtr& child : track->tracks())
            line += QStringLiteral(" %1").arg(child->id());
        lines.append(line);
    }
    for (const auto& [id, item] : model.m_itemCache) {
        lines.append(QStringLiteral("item %1 on %2: %3+%4")
                         .arg(id)
                         .arg(item->parentTrackId())
                         .arg(item->startTime())
                         .arg(item->duration()));
    }
    return lines;
}

/// Empty when the caches and orders of a track and its subtree are right.
QString faultOf(const RowModel& model, const Track& track)
{
    const auto cachedTrack = model.m_trackCache.find(track.id());
    if (cachedTrack == model.m_trackCache.end() || cachedTrack->second != &track)
        return QStringLiteral("track cache of %1").arg(track.id());
    qint64 before = std::numeric_limits<qint64>::min();
    for (const ItemPtr& item : track.items()) {
        const auto cachedItem = model.m_itemCache.find(item->id());
        if (cachedItem == model.m_itemCache.end() || cachedItem->second != item.get())
            return QStringLiteral("item cache of %1").arg(item->id());
        if (item->parentTrackId() != track.id())
            return QStringLiteral("parent of item %1").arg(item->id());
        if (item->startTime() < before)
            return QStringLiteral("order of track %1").arg(track.id());
        before = item->startTime();
    }
    for (const TrackPtr& child : track.tracks()) {
        if (child->parentId() != track.id())
            return QStringLiteral("parent of track %1").arg(child->id());
        const QString fault = faultOf(model, *child);
        if (!fault.isEmpty())
            return fault;
    }
    return {};
}

} // namespace

class tst_timeline_model_random : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".?"))); }

    void cachesAndOrdersFollowTheTreeThroughAnySequence_data();
    void cachesAndOrdersFollowTheTreeThroughAnySequence();
};

void tst_timeline_model_random::cachesAndOrdersFollowTheTreeThroughAnySequence_data()
{
    QTest::addColumn<quint32>("seed");
    for (quint32 seed = 1; seed <= 8; ++seed)
        QTest::addRow("seed %u", seed) << seed;
}

void tst_timeline_model_random::cachesAndOrdersFollowTheTreeThroughAnySequence()
{
    QFETCH(const quint32, seed);
    Pair pair(seed);
    QStringList steps;
    std::size_t mostItems = 0;
    for (int i = 0; i < 250; ++i) {
        steps.append(pair.step());
        const auto history = [&] { return steps.mid(steps.size() - 5).join(QStringLiteral("; ")).toUtf8(); };

        const QString fault = faultOf(pair.model, *pair.model.rootTrack());
        QVERIFY2(fault.isEmpty(), (fault.toUtf8() + " after " + history()).constData());
        const QStringList expected = describe(pair.tree);
        const QStringList actual = describe(pair.model, pair.tree);
        QVERIFY2(actual == expected, (actual.join(u'\n').toUtf8() + "\nbut expected\n" + expected.join(u'\n').toUtf8() +
                                      "\nafter " + history())
                                         .constData());
        QCOMPARE(pair.model.m_rootTrack.itemIds(true, false).size(), qsizetype(pair.tree.items().size()));
        QCOMPARE(pair.model.m_currentTrackId, pair.tree.nextTrackId());
        QCOMPARE(pair.model.m_currentItemId, pair.tree.nextItemId());
        mostItems = std::max(mostItems, pair.tree.items().size());
    }
    QVERIFY2(mostItems >= 5, "the sequence does not get anywhere");
}

QTEST_GUILESS_MAIN(tst_timeline_model_random)
#include "tst_timeline_model_random.moc"
