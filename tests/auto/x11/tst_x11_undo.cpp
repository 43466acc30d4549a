#include "x11/pointer.h"

#include <VeskTimeline/item_delegate.h>
#include <VeskTimeline/timeline_header_view.h>
#include <VeskTimeline/timeline_view.h>
#include <VeskTimelineKit/standard_timeline_model.h>

#include <QRegularExpression>
#include <QTest>
#include <QUndoStack>

using namespace VeskTimeline;
using namespace VeskTimeline::Kit;

namespace {

constexpr int second = 1000;
constexpr int itemCount = 40;

/// A window with two tracks, the upper one with an item of 18 seconds every 22.
struct Desktop
{
    Desktop()
    {
        Document document;
        for (int i = 0; i < itemCount; ++i)
            document.track({"A"}).items.push_back({QString::number(i), i * 22 * second, 18 * second, {}});
        document.track({"B"});
        view.setModel(&model);
        view.setItemDelegate(new ItemDelegate(&view));
        model.setDocument(document);
        view.setRange(0, 3600 * second);
        view.setCurrentTime(0);
        view.setZoomFactor(Zoom::FifteenMinutes);
        view.setGeometry(100, 100, 1130, 400);
    }

    bool show()
    {
        view.show();
        return QTest::qWaitForWindowExposed(&view) && QTest::qWaitForWindowActive(&view);
    }

    QPoint pos(int seconds, int row) const
    {
        return {view.toPixel(qint64(seconds) * second), view.visualRect(model.index(row, 1)).center().y()};
    }
    QString steps() const
    {
        QStringList texts;
        for (int i = 0; i < stack.count(); ++i)
            texts.append(stack.text(i));
        return texts.join(", ");
    }
    // Of both tracks, in their order.
    QString items() const
    {
        QStringList texts;
        for (const TrackPtr& track : model.rootTrack()->tracks()) {
            for (const ItemPtr& item : track->items())
                texts.append(QString("%1:%2@%3").arg(track->text()).arg(item->id()).arg(item->startTime()));
        }
        return texts.join(' ');
    }

    TimelineView view;
    StandardTimelineModel model{&view};
    QUndoStack& stack = *model.undoStack();
};

} // namespace

/// What the mouse does, taken back, on a real display.
class TestX11Undo : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        QTest::failOnWarning(QRegularExpression(QStringLiteral(".?")));
        Pointer pointer;
        PLAY(pointer.moveAway());
    }

    void aDropOfManyItemsOnAnotherTrackIsOneStep()
    {
        Desktop desktop;
        QVERIFY(desktop.show());
        desktop.view.selectAllItems();
        const QString before = desktop.items();
        Pointer pointer;
        PLAY(pointer.drag(desktop.view.viewport(), desktop.pos(449, 0), desktop.pos(464, 1)));
        QTRY_COMPARE(desktop.model.track(2)->itemCount(), itemCount);
        QCOMPARE(desktop.steps(), QString("Move 40 items"));
        const QString after = desktop.items();

        desktop.stack.undo();
        QCOMPARE(desktop.items(), before);
        desktop.stack.redo();
        QCOMPARE(desktop.items(), after);

        // The next drop is the next step.
        PLAY(pointer.drag(desktop.view.viewport(), desktop.pos(464, 1), desktop.pos(449, 0)));
        QTRY_COMPARE(desktop.model.track(1)->itemCount(), itemCount);
        QCOMPARE(desktop.steps(), QString("Move 40 items, Move 40 items"));
    }

    void movingManyItemsAlongTheirTrackIsOneStep()
    {
        Desktop desktop;
        QVERIFY(desktop.show());
        desktop.view.selectAllItems();
        const QString before = desktop.items();
        Pointer pointer;
        PLAY(pointer.drag(desktop.view.viewport(), desktop.pos(449, 0), desktop.pos(494, 0)));
        QTRY_COMPARE(desktop.steps(), QString("Move 40 items"));
        QVERIFY(desktop.items() != before);
        desktop.stack.undo();
        QCOMPARE(desktop.items(), before);
    }

    void pullingAtAnEdgeIsOneStep()
    {
        Desktop desktop;
        QVERIFY(desktop.show());
        const QString before = desktop.items();
        const qint64 duration = desktop.model.item(20)->duration();
        Pointer pointer;
        PLAY(pointer.drag(desktop.view.viewport(), desktop.pos(458, 0) - QPoint(2, 0), desktop.pos(461, 0)));
        QTRY_COMPARE(desktop.steps(), QString("Resize item"));
        QVERIFY(desktop.model.item(20)->duration() > duration);
        desktop.stack.undo();
        QCOMPARE(desktop.model.item(20)->duration(), duration);
        QCOMPARE(desktop.items(), before);
    }
};

QTEST_MAIN(TestX11Undo)
#include "tst_x11_undo.moc"
