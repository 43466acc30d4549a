#include "journal_model.h"
#include "support/input.h"
#include "support/recording_logger.h"

#include <VeskTimeline/timeline_view_drag_handler.h>
#include <VeskTimeline/timeline_view_selection_handler.h>

#include <QDropEvent>
#include <QKeyEvent>
#include <QMimeData>
#include <QMouseEvent>
#include <QTest>

#include <memory>
#include <stdexcept>

using namespace VeskTimeline;

namespace {

/// Writes down announcements among the calls, too.
class AnnouncedModel : public JournalModel
{
public:
    using JournalModel::JournalModel;

    bool isBeginFailing = false;
    bool isEndFailing = false;

    void beginItemChanges(int count) override
    {
        journal.append(QStringLiteral("begin(%1)").arg(count));
        if (isBeginFailing)
            throw QStringLiteral("no begin");
        TimelineModel::beginItemChanges(count);
    }
    void endItemChanges() override
    {
        journal.append(QStringLiteral("end"));
        TimelineModel::endItemChanges();
        if (isEndFailing)
            throw QStringLiteral("no end");
    }
};

/// Holds a gesture as a press and a move leave it, and drops without a drag of Qt's.
class HeldDragHandler : public TimelineViewDragHandler
{
public:
    using TimelineViewDragHandler::TimelineViewDragHandler;

    void hold(const QVector<int>& ids, const QModelIndex& index, const QPoint& from, qint64 time)
    {
        m_dragItemIds = ids;
        m_dragStartIndex = index;
        m_dragStartPos = from;
        m_dragStartTime = time;
        m_dragPos = from;
    }
};

struct LogHolder
{
    RecordingLogger log;
};

struct Fixture : LogHolder, ViewFixtureOf<AnnouncedModel>
{
    HeldDragHandler dragHandler{&view};
    int first = addSeconds(trackA, 100, 60);
    int second = addSeconds(trackA, 200, 60);

    Fixture()
    {
        view.setDragHandler(&dragHandler);
        model.setSnapStep(1000);
        view.selectItems({first, second}, true);
        dragHandler.hold({first, second}, view.indexOfTrackRow(trackA, 1), pos(110, trackA), at(110));
        model.forgetCalls();
    }
    Fixture(const Fixture&) = delete;
    Fixture& operator=(const Fixture&) = delete;
    ~Fixture() { view.setDragHandler(nullptr); }

    void press(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QKeyEvent event(QEvent::KeyPress, key, modifiers);
        if (key == Qt::Key_Right || key == Qt::Key_Left)
            view.dragHandler()->keyPressEvent(&event);
        else
            view.selectHandler()->keyPressEvent(&event);
    }
    void release(int to)
    {
        const QPoint point = pos(to, trackA);
        QMouseEvent event(QEvent::MouseButtonRelease, point, point, Qt::LeftButton, Qt::NoButton, Qt::NoModifier);
        dragHandler.mouseReleaseEvent(&event);
    }
    QStringList errors() const
    {
        QStringList texts;
        for (const RecordingLogger::Entry& entry : log.entries()) {
            if (entry.level == Hox::Error)
                texts.append(entry.message.section(QLatin1Char(' '), -2));
        }
        return texts;
    }
};

} // namespace

class TestItemChanges : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aNudgeIsAnnouncedOnceItMayHappen();
    void aReleaseIsAnnouncedBehindTheSignal();
    void aMoveThatMayNotHappenIsNotAnnounced();
    void removalsAreAnnouncedAlsoWhenOneFails();
    void aCutIsAnnouncedBehindTheCopy();
    void aFailureInBetweenEndsTheChanges();
    void aFailureAtTheEndIsLoggedWithTheOneThatLedToIt();
    void aFailureAtTheEndIsLogged();
    void aFailureAtTheBeginningChangesNothingAndIsNotEnded();
    void aModelThatGoesInBetweenIsNotTold();
};

void TestItemChanges::aNudgeIsAnnouncedOnceItMayHappen()
{
    Fixture f;
    f.press(Qt::Key_Right);
    QCOMPARE(f.model.journal, (QStringList{"begin(2)", "item.start(0, 110000)", "track.start(0, 110000)",
                                           "item.start(1, 210000)", "track.start(1, 210000)", "end"}));
    f.model.forgetCalls();
    f.addSeconds(f.trackA, 271, 10);
    f.press(Qt::Key_Right);
    QCOMPARE(f.model.journal.count("begin(2)"), 1);
    QCOMPARE(f.model.journal.last(), "end");
    QCOMPARE(f.model.item(f.first)->startTime(), f.at(111));
}

void TestItemChanges::aReleaseIsAnnouncedBehindTheSignal()
{
    Fixture f;
    connect(&f.view, &TimelineView::currentItemTimeChanged, &f.view, [&] { f.model.journal.append("signal"); });
    f.release(130);
    QCOMPARE(f.model.journal, (QStringList{"signal", "begin(2)", "item.start(0, 120000)", "track.start(0, 120000)",
                                           "item.start(1, 220000)", "track.start(1, 220000)", "end"}));
}

void TestItemChanges::aMoveThatMayNotHappenIsNotAnnounced()
{
    Fixture f;
    f.model.canMove = [](const Item&, qint64) { return false; };
    f.press(Qt::Key_Right);
    f.release(130);
    f.view.clearSelectedItems();
    f.press(Qt::Key_Delete);
    f.press(Qt::Key_X, Qt::ControlModifier);
    QCOMPARE(f.model.journal, QStringList());
}

void TestItemChanges::removalsAreAnnouncedAlsoWhenOneFails()
{
    Fixture f;
    f.view.selectItems({f.first, 99, f.second}, true);
    f.press(Qt::Key_Delete);
    QCOMPARE(f.model.journal, (QStringList{"begin(3)", "remove(0)", "remove(99)", "remove(1)", "end"}));
    QVERIFY(f.model.m_itemCache.empty());
    QVERIFY(!f.view.hasSelectedItems());
}

void TestItemChanges::aCutIsAnnouncedBehindTheCopy()
{
    Fixture f;
    f.press(Qt::Key_X, Qt::ControlModifier);
    QCOMPARE(f.model.journal, (QStringList{"cut(0, 1)", "copy(0, 1)", "begin(2)", "remove(0)", "remove(1)", "end"}));
}

void TestItemChanges::aFailureInBetweenEndsTheChanges()
{
    Fixture f;
    f.model.failAt("item.start(1", Failure::Text);
    f.press(Qt::Key_Right);
    QCOMPARE(f.model.journal, (QStringList{"begin(2)", "item.start(0, 110000)", "track.start(0, 110000)",
                                           "item.start(1, 210000)", "end"}));
    QCOMPARE(f.errors().size(), 1);
    QVERIFY(f.errors().first().endsWith("veto"));
    f.model.failAt("remove(1", Failure::Standard);
    f.model.forgetCalls();
    QVERIFY_EXCEPTION_THROWN(f.model.cutToClipboard({f.first, f.second}), std::runtime_error);
    QCOMPARE(f.model.journal.last(), "end");
}

void TestItemChanges::aFailureAtTheEndIsLoggedWithTheOneThatLedToIt()
{
    Fixture f;
    f.model.failAt("item.start(1", Failure::Text);
    f.model.isEndFailing = true;
    f.press(Qt::Key_Right);
    QCOMPARE(f.model.journal.count("end"), 1);
    QCOMPARE(f.errors().size(), 2);
    QVERIFY(f.errors().first().endsWith("no end"));
    QVERIFY(f.errors().last().endsWith("veto"));
}

void TestItemChanges::aFailureAtTheEndIsLogged()
{
    Fixture f;
    f.model.isEndFailing = true;
    f.press(Qt::Key_Right);
    f.release(130);
    f.press(Qt::Key_Delete);
    QCOMPARE(f.model.journal.count("end"), 3);
    QCOMPARE(f.errors(), QStringList(3, "no end"));
    // The selection does not keep ids of items that have gone.
    QVERIFY(!f.view.hasSelectedItems());
}

void TestItemChanges::aFailureAtTheBeginningChangesNothingAndIsNotEnded()
{
    Fixture f;
    f.model.isBeginFailing = true;
    f.press(Qt::Key_Right);
    f.release(130);
    f.press(Qt::Key_Delete);
    QCOMPARE(f.model.journal, QStringList(3, "begin(2)"));
    QCOMPARE(f.errors(), QStringList(3, "no begin"));
    QCOMPARE(f.model.item(f.first)->startTime(), f.at(100));
}

void TestItemChanges::aModelThatGoesInBetweenIsNotTold()
{
    /// Goes when it is asked to remove an item.
    struct Leaving : AnnouncedModel
    {
        std::unique_ptr<Leaving>* owner = nullptr;
        void removeItem(int /*itemId*/) override { owner->reset(); }
    };
    TimelineView view;
    auto model = std::make_unique<Leaving>();
    model->owner = &model;
    view.setModel(model.get());
    view.selectItem(0, true);
    QKeyEvent event(QEvent::KeyPress, Qt::Key_Delete, Qt::NoModifier);
    view.selectHandler()->keyPressEvent(&event);
    QVERIFY(!model);
    QVERIFY(!view.hasSelectedItems());
}

QTEST_MAIN(TestItemChanges)
#include "tst_item_changes.moc"
