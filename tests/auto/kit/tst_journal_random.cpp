#include "random_user.h"

#include <VeskTimelineKit/journal.h>
#include <VeskTimelineKit/journal_recovery.h>
#include <VeskTimelineKit/vtl_writer.h>

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QUndoStack>

using namespace RandomUse;
using namespace std::chrono_literals;

namespace {

void addCopies(QStringList& lines, const Model& model, const Track& track)
{
    // By what they are copies of, since ids are other ones after recovery.
    QStringList copies;
    for (const int id : track.copyItemIds()) {
        const Item* const item = model.item(id);
        const Items& siblings = model.track(item->parentTrackId())->items();
        const auto isSame = [item](const ItemPtr& other) { return other.get() == item; };
        const auto position = std::find_if(siblings.begin(), siblings.end(), isSame) - siblings.begin();
        copies.append(QString("%1/%2").arg(model.track(item->parentTrackId())->text()).arg(position));
    }
    copies.sort();
    lines.append(track.text() + ": " + copies.join(' '));
    for (const TrackPtr& child : track.tracks())
        addCopies(lines, model, *child);
}

QStringList copiesOf(const Model& model)
{
    QStringList lines;
    addCopies(lines, model, *model.rootTrack());
    return lines;
}

QByteArray textOf(const StandardTimelineModel& model)
{
    return vtlText(model.document());
}

} // namespace

class TestJournalRandom : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void whateverIsDoneCanBeRecovered_data()
    {
        QTest::addColumn<quint32>("seed");
        QTest::addColumn<bool>("hasBase");
        QTest::addColumn<bool>("isCompacted");
        QTest::addColumn<bool>("isSliced");
        for (quint32 seed = 1; seed <= 10; ++seed) {
            QTest::addRow("seed %u", seed) << seed << true << false << false;
            QTest::addRow("seed %u, from the model", seed) << seed << false << false << false;
            QTest::addRow("seed %u, made smaller", seed) << seed << true << true << false;
            QTest::addRow("seed %u, in slices", seed) << seed << true << false << true;
            QTest::addRow("seed %u, from the model, in slices", seed) << seed << false << false << true;
        }
    }
    void whateverIsDoneCanBeRecovered()
    {
        QFETCH(quint32, seed);
        QFETCH(bool, hasBase);
        QFETCH(bool, isCompacted);
        QFETCH(bool, isSliced);
        QTemporaryDir folder;
        JournalOptions options;
        options.interval = isSliced ? 0ms : 1ms;
        options.slice = isSliced ? 0ms : options.slice;
        options.compactionFloor = isCompacted ? 3000 : options.compactionFloor;
        options.compactionFactor = 1;
        const QString fileName = folder.filePath("a.journal");
        const auto base = std::make_shared<const Document>(sampleDocument());

        Model model;
        model.setDocument(*base);
        Journal journal(model, fileName, options);
        journal.start(hasBase ? base : nullptr, {"a.csv"});
        quint64 writtenRevision = 0;
        QSignalSpy written(&journal, &Journal::written);
        connect(&journal, &Journal::written, &journal, [&] { writtenRevision = journal.revision(); });
        QSignalSpy failed(&journal, &Journal::failed);
        RandomUser user(model, seed);
        int comparisons = 0;
        for (int round = 0; round < 25; ++round) {
            const quint64 before = journal.revision();
            for (int i = user.number(4); i >= 0; --i) {
                act(user, model);
                // Some of it is taken down before what follows.
                for (int turn = user.number(8); isSliced && turn > 0; --turn)
                    QCoreApplication::processEvents();
            }
            if (journal.revision() == before)
                continue;
            if (!isSliced)
                journal.flush();
            while (writtenRevision != journal.revision())
                QVERIFY(written.wait());
            compare(fileName, model);
            ++comparisons;
        }
        QVERIFY(comparisons > 12);
        QCOMPARE(failed.count(), 0);
        if (isCompacted)
            QTRY_VERIFY(!QFile::exists(fileName + ".1.base"));
        compare(fileName, model);
    }

private:
    static void act(RandomUser& user, Model& model)
    {
        const int what = user.number(8);
        if (what == 0)
            model.undoStack()->undo();
        else if (what == 1)
            model.undoStack()->redo();
        else
            user.act();
    }
    static void compare(const QString& fileName, const Model& model)
    {
        Result<RecoveredJournal> recovered = readJournal(fileName);
        // While a journal is in use it may be made smaller between a look at it and one at its base.
        if (recovered && !recovered.value().problems.isEmpty())
            recovered = readJournal(fileName);
        QVERIFY2(recovered, recovered ? "" : qPrintable(recovered.error().text()));
        QCOMPARE(recovered.value().problems, QStringList());
        QCOMPARE(vtlText(recovered.value().document), textOf(model));
        Model shown;
        recovered.value().showIn(shown);
        QCOMPARE(textOf(shown), textOf(model));
        // Siblings of one name are told apart in the document.
        if (model.document().warnings().isEmpty())
            QCOMPARE(copiesOf(shown), copiesOf(model));
        QVERIFY(!shown.undoStack()->canUndo());
    }
};

QTEST_MAIN(TestJournalRandom)
#include "tst_journal_random.moc"
