#include "support/input.h"
#include "support/view_fixture.h"

#include <QRandomGenerator>
#include <QRegularExpression>
#include <QTest>

using namespace VeskTimeline;

namespace {

struct HoverFixture : ViewFixture
{
    /// The cursor at an x of track A's row.
    Qt::CursorShape cursorAt(int x)
    {
        // From elsewhere, so that nothing of the last position is left.
        view.setCursor(Qt::WhatsThisCursor);
        Input::move(&view, QPoint(x, pos(0, trackA).y()));
        return view.cursor().shape();
    }
    bool isEdgeAt(int x)
    {
        const Qt::CursorShape shape = cursorAt(x);
        if (shape != Qt::SizeHorCursor && shape != Qt::ArrowCursor)
            QTest::qFail("neither the edge cursor nor the arrow", __FILE__, __LINE__);
        return shape == Qt::SizeHorCursor;
    }
    /// What the rule says of an x, with the item looked for by hand.
    bool isEdgeByTheRule(int x) const
    {
        const qint64 time = view.toTime(x);
        for (const ItemPtr& item : model.track(trackA)->items()) {
            const qint64 end = item->startTime() + item->duration();
            if (time < item->startTime() || time > end)
                continue;
            const int x1 = view.toPixel(item->startTime());
            const int x2 = view.toPixel(end);
            if (x2 - x1 <= 14)
                return false;
            return !(x1 + 5 < x && x < x2 - 5);
        }
        return false;
    }
    /// Adds an item to track A that is painted between two seconds' pixels, a little inside of them: no rounding of the
    /// mapping back to time can take an x out of it.
    void addInside(int start, int length) { model.newItem(trackA, at(start) - 300, length * 1000 + 600); }
};

} // namespace

class TestViewEdgeCursor : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(".?")); }

    void edgeCursorIsWithinFivePixelsOfAnEdge();
    void itemOfFourteenPixelsHasNoEdges();
    void itemOfFifteenPixelsHasEdgesWithAGapBetween();
    void outsideAnItemIsTheArrow();
    void openEndedItemHasNoEdges();
    void readOnlyModelShowsNoEdges();
    void readOnlyItemShowsItsEdges();
    void theRowUnderTheMouseCounts();
    void edgesFollowTheRuleAtEveryPixel_data();
    void edgesFollowTheRuleAtEveryPixel();
};

void TestViewEdgeCursor::edgeCursorIsWithinFivePixelsOfAnEdge()
{
    HoverFixture f;
    f.addInside(100, 20);
    const int x1 = ViewFixture::labelWidth + 100;
    const int x2 = x1 + 20;
    QCOMPARE(f.view.toPixel(f.model.item(0)->startTime()), x1 - 1);
    QCOMPARE(f.view.toPixel(f.model.item(0)->startTime() + f.model.item(0)->duration()), x2);
    // Painted from x1 - 1 to x2.
    for (int x = x1; x <= x1 + 4; ++x)
        QVERIFY2(f.isEdgeAt(x), qPrintable(QString::number(x)));
    for (int x = x1 + 5; x <= x2 - 6; ++x)
        QVERIFY2(!f.isEdgeAt(x), qPrintable(QString::number(x)));
    for (int x = x2 - 5; x <= x2; ++x)
        QVERIFY2(f.isEdgeAt(x), qPrintable(QString::number(x)));
    QVERIFY(!f.isEdgeAt(x1 - 1));
    QVERIFY(!f.isEdgeAt(x2 + 1));
}

void TestViewEdgeCursor::itemOfFourteenPixelsHasNoEdges()
{
    HoverFixture f;
    f.addInside(100, 13);
    const int x1 = f.view.toPixel(f.model.item(0)->startTime());
    QCOMPARE(f.view.toPixel(f.model.item(0)->startTime() + f.model.item(0)->duration()) - x1, 14);
    for (int x = x1 - 1; x <= x1 + 15; ++x)
        QVERIFY2(!f.isEdgeAt(x), qPrintable(QString::number(x)));
}

void TestViewEdgeCursor::itemOfFifteenPixelsHasEdgesWithAGapBetween()
{
    HoverFixture f;
    f.addInside(100, 14);
    const int x1 = f.view.toPixel(f.model.item(0)->startTime());
    QCOMPARE(f.view.toPixel(f.model.item(0)->startTime() + f.model.item(0)->duration()) - x1, 15);
    QList<int> arrows;
    for (int x = x1 + 1; x <= x1 + 15; ++x) {
        if (!f.isEdgeAt(x))
            arrows.append(x - x1);
    }
    QCOMPARE(arrows, (QList<int>{6, 7, 8, 9}));
}

void TestViewEdgeCursor::outsideAnItemIsTheArrow()
{
    HoverFixture f;
    f.addInside(100, 100);
    const int y = f.pos(0, f.trackA).y();
    for (const QPoint& pos : {QPoint(260, y), QPoint(450, y), QPoint(50, y), QPoint(302, 300)}) {
        f.view.setCursor(Qt::SizeHorCursor);
        Input::move(&f.view, pos);
        QCOMPARE(f.view.cursor().shape(), Qt::ArrowCursor);
    }
}

void TestViewEdgeCursor::openEndedItemHasNoEdges()
{
    HoverFixture f;
    f.model.newItem(f.trackA, f.at(100), -1);
    for (int x = 290; x < 330; ++x)
        QVERIFY(!f.isEdgeAt(x));
}

void TestViewEdgeCursor::readOnlyModelShowsNoEdges()
{
    HoverFixture f;
    f.addInside(100, 100);
    f.model.setEditable(false);
    for (int x = 295; x < 410; ++x) {
        f.view.setCursor(Qt::ArrowCursor);
        Input::move(&f.view, QPoint(x, f.pos(0, f.trackA).y()));
        QCOMPARE(f.view.cursor().shape(), Qt::ArrowCursor);
    }
}

// Whether an item may be resized is asked at the press; the cursor does not tell.
void TestViewEdgeCursor::readOnlyItemShowsItsEdges()
{
    HoverFixture f;
    f.addInside(100, 100);
    f.model.item(0)->setEditable(false);
    QVERIFY(f.isEdgeAt(302));
}

void TestViewEdgeCursor::theRowUnderTheMouseCounts()
{
    HoverFixture f;
    f.addInside(100, 100);
    QVERIFY(f.isEdgeAt(302));
    Input::move(&f.view, QPoint(302, f.pos(0, f.trackB).y()));
    QCOMPARE(f.view.cursor().shape(), Qt::ArrowCursor);
}

void TestViewEdgeCursor::edgesFollowTheRuleAtEveryPixel_data()
{
    QTest::addColumn<int>("zoom");
    for (const Zoom::Factor zoom : {Zoom::ThirtySeconds, Zoom::TenMinutes, Zoom::ThirtyMinutes, Zoom::SixtyMinutes})
        QTest::addRow("%d s", zoom / 1000) << static_cast<int>(zoom);
}

void TestViewEdgeCursor::edgesFollowTheRuleAtEveryPixel()
{
    QFETCH(int, zoom);
    HoverFixture f;
    f.view.header()->setHoverVisible(false);
    f.view.setZoomFactor(static_cast<Zoom::Factor>(zoom));
    QRandomGenerator random(static_cast<quint32>(zoom));
    const int millisecondsPerPixel = zoom / ViewFixture::secondsVisible;
    for (int i = 0; i < 60; ++i) {
        const int start = random.bounded(-zoom / 10, zoom);
        f.model.newItem(f.trackA, f.view.currentTime() + start, random.bounded(0, 60) * millisecondsPerPixel + i);
    }
    int edges = 0;
    for (int x = ViewFixture::labelWidth; x < f.view.viewport()->width(); ++x) {
        const bool isEdge = f.isEdgeAt(x);
        edges += isEdge;
        if (isEdge != f.isEdgeByTheRule(x))
            QFAIL(qPrintable(QStringLiteral("x %1").arg(x)));
    }
    QVERIFY(edges > 50);
}

QTEST_MAIN(TestViewEdgeCursor)
#include "tst_view_edge_cursor.moc"
