#include "paint_counter.h"
#include "support/view_fixture.h"

#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>

using namespace VeskTimeline;

namespace {

struct SelectionFixture : ViewFixture
{
    PaintCounter paint{view.viewport()};
    QStringList emitted;

    SelectionFixture()
    {
        QObject::connect(&view, &TimelineView::selectedItemsChanged, &view,
                         [this](const QList<int>& ids) { emitted << text(ids); });
    }

    static QString text(const QList<int>& ids)
    {
        QStringList texts;
        for (const int id : ids)
            texts << QString::number(id);
        return texts.join(QLatin1Char(','));
    }
    QString selected() const { return text(view.selectedItemIds()); }
    QStringList take() { return std::exchange(emitted, {}); }
    bool isUntouched()
    {
        const bool isPainted = paint.takeIsPainted();
        return !isPainted && take().isEmpty();
    }
    /// Whether one signal came, with the selection as it is, and the rows were repainted.
    bool isAnnounced()
    {
        const bool isPainted = paint.takeIsPainted();
        return isPainted && take() == QStringList(selected());
    }
};

} // namespace

class TestViewSelection : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".?"))); }

    void nothingIsSelectedAtFirst();
    void selectedItemsKeepTheirOrder();
    void selectedItemIsNotSelectedTwice();
    void selectingWithClearAlwaysAnnounces();
    void manyAreSelectedEachOnce();
    void selectingNoneStillAnnounces();
    void selectingManyWithClearReplaces();
    void theSelectionItselfMayBeSelected();
    void unselectingAnnouncesOnlyAChange();
    void clearingAnnouncesEvenWhenNothingWasSelected();
    void allItemsAreThoseOfTheModel();
    void withoutAModelAllIsNothing();
    void idsNeedNotBeKnown();
    void selectionKnowsItsItems();
};

void TestViewSelection::nothingIsSelectedAtFirst()
{
    const TimelineView view;
    QVERIFY(view.selectedItemIds().isEmpty());
    QVERIFY(!view.hasSelectedItems());
}

void TestViewSelection::selectedItemsKeepTheirOrder()
{
    SelectionFixture f;
    f.view.selectItem(7, false);
    QVERIFY(f.isAnnounced());
    f.view.selectItem(3, false);
    QVERIFY(f.isAnnounced());
    f.view.selectItem(5, false);
    QVERIFY(f.isAnnounced());
    QCOMPARE(f.selected(), QStringLiteral("7,3,5"));
    QVERIFY(f.view.hasSelectedItems());
}

void TestViewSelection::selectedItemIsNotSelectedTwice()
{
    SelectionFixture f;
    f.view.selectItem(7, false);
    QVERIFY(f.isAnnounced());
    f.view.selectItem(7, false);
    QVERIFY(f.isUntouched());
    QCOMPARE(f.selected(), QStringLiteral("7"));
}

void TestViewSelection::selectingWithClearAlwaysAnnounces()
{
    SelectionFixture f;
    f.view.selectItems({1, 2, 3}, false);
    f.take();
    f.view.selectItem(2, true);
    QVERIFY(f.isAnnounced());
    QCOMPARE(f.selected(), QStringLiteral("2"));
    f.view.selectItem(2, true);
    QVERIFY(f.isAnnounced());
    QCOMPARE(f.selected(), QStringLiteral("2"));
}

void TestViewSelection::manyAreSelectedEachOnce()
{
    SelectionFixture f;
    f.view.selectItem(4, false);
    f.take();
    f.view.selectItems({9, 4, 8, 9, 8, 1}, false);
    QVERIFY(f.isAnnounced());
    QCOMPARE(f.selected(), QStringLiteral("4,9,8,1"));
    f.view.selectItems({9, 1}, false);
    QVERIFY(f.isAnnounced());
    QCOMPARE(f.selected(), QStringLiteral("4,9,8,1"));
}

void TestViewSelection::selectingNoneStillAnnounces()
{
    SelectionFixture f;
    f.view.selectItems({}, false);
    QVERIFY(f.isAnnounced());
    f.view.selectItem(1, false);
    f.take();
    f.view.selectItems({}, true);
    QVERIFY(f.isAnnounced());
    QVERIFY(!f.view.hasSelectedItems());
}

void TestViewSelection::selectingManyWithClearReplaces()
{
    SelectionFixture f;
    f.view.selectItems({1, 2, 3}, true);
    f.view.selectItems({3, 5, 3}, true);
    QCOMPARE(f.take(), QStringList({QStringLiteral("1,2,3"), QStringLiteral("3,5")}));
    QCOMPARE(f.selected(), QStringLiteral("3,5"));
}

void TestViewSelection::theSelectionItselfMayBeSelected()
{
    SelectionFixture f;
    f.view.selectItems({1, 2, 3}, true);
    f.view.selectItems(f.view.selectedItemIds(), true);
    QCOMPARE(f.selected(), QStringLiteral("1,2,3"));
}

void TestViewSelection::unselectingAnnouncesOnlyAChange()
{
    SelectionFixture f;
    f.view.selectItems({1, 2, 3}, true);
    f.take();
    f.paint.takeRegion();
    f.view.unselectItem(2);
    QVERIFY(f.isAnnounced());
    QCOMPARE(f.selected(), QStringLiteral("1,3"));
    f.view.unselectItem(2);
    QVERIFY(f.isUntouched());
    // It may come again, as the last.
    f.view.selectItem(2, false);
    QCOMPARE(f.selected(), QStringLiteral("1,3,2"));
}

void TestViewSelection::clearingAnnouncesEvenWhenNothingWasSelected()
{
    SelectionFixture f;
    f.view.clearSelectedItems();
    QVERIFY(f.isAnnounced());
    f.view.selectItem(1, false);
    f.take();
    f.view.clearSelectedItems();
    QVERIFY(f.isAnnounced());
    QVERIFY(!f.view.hasSelectedItems());
}

void TestViewSelection::allItemsAreThoseOfTheModel()
{
    SelectionFixture f;
    const int b = f.addSeconds(f.trackB, 10, 5);
    const int a = f.addSeconds(f.trackA, 100, 5);
    const int early = f.addSeconds(f.trackA, 5, 5);
    f.view.selectItems({early, 77}, false);
    f.take();
    f.view.selectAllItems();
    QVERIFY(f.isAnnounced());
    QCOMPARE(f.view.selectedItemIds(), QList<int>(f.model.itemIds()));
    QCOMPARE(f.view.selectedItemIds(), QList<int>({b, a, early}));
    f.view.selectAllItems();
    QVERIFY(f.isAnnounced());
}

void TestViewSelection::withoutAModelAllIsNothing()
{
    TimelineView view;
    view.selectItem(5, false);
    QSignalSpy spy(&view, &TimelineView::selectedItemsChanged);
    view.selectAllItems();
    QVERIFY(spy.isEmpty());
    QCOMPARE(view.selectedItemIds(), QList<int>({5}));
}

void TestViewSelection::idsNeedNotBeKnown()
{
    SelectionFixture f;
    f.view.selectItem(-1, false);
    f.view.selectItem(4711, false);
    QCOMPARE(f.selected(), QStringLiteral("-1,4711"));
}

void TestViewSelection::selectionKnowsItsItems()
{
    SelectionFixture f;
    f.view.selectItems({1, 2}, true);
    QVERIFY(f.view.isItemSelected(1) && f.view.isItemSelected(2) && !f.view.isItemSelected(3));
    f.view.unselectItem(1);
    QVERIFY(!f.view.isItemSelected(1));
    f.view.selectItem(3, true);
    QVERIFY(!f.view.isItemSelected(2) && f.view.isItemSelected(3));
    f.view.clearSelectedItems();
    QVERIFY(!f.view.isItemSelected(3));
}

QTEST_MAIN(TestViewSelection)
#include "tst_view_selection.moc"
