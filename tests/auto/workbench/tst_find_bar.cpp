#include "navigation_fixture.h"

#include <QCheckBox>
#include <QLineEdit>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>
#include <QToolButton>
#include <QUndoStack>

#include <workbench/find_bar.h>

using namespace VeskTimeline;
using namespace VeskTimeline::Kit;
using Workbench::FindBar;
using Workbench::ItemSearch;

namespace {

constexpr qint64 hour = NavigationFixture::hour;
constexpr qint64 day = NavigationFixture::day;

struct FindFixture : NavigationFixture
{
    FindFixture()
    {
        // In another order than that of time.
        burnC = add("Top/Inner", "Third BURN", 300 * day, hour);
        burnA = add("Top", "first burn", 0, hour);
        other = add("Top", "sleep", hour, hour);
        burnB = add("Low", "second Burn", 200 * day, 0);
        burnB2 = add("Lower", "burn at the same time", 200 * day, hour);
        navigation->fit();
        bar = std::make_unique<FindBar>(navigation.get());
        widget.show();
    }

    void type(const QString& text) const
    {
        bar->field()->selectAll();
        QTest::keyClicks(bar->field(), text);
        wait();
    }
    void wait() const { QTRY_VERIFY(!bar->search().isRunning()); }
    void pressReturn(Qt::KeyboardModifiers modifiers = Qt::NoModifier) const
    {
        QTest::keyClick(bar->field(), Qt::Key_Return, modifiers);
    }
    int selected() const { return view()->selectedItemIds().value(0, -1); }
    bool isMarked() const
    {
        return bar->field()->palette().color(QPalette::Base) != bar->palette().color(QPalette::Base);
    }

    int burnA = -1;
    int burnB = -1;
    int burnB2 = -1;
    int burnC = -1;
    int other = -1;
    std::unique_ptr<FindBar> bar;
};

} // namespace

class TestFindBar : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression("^(?!This plugin does not support propagateSizeHints)")); }

    void itIsHiddenUntilItIsOpened()
    {
        FindFixture f;
        QVERIFY(!f.bar->isVisible());
        f.bar->open();
        QVERIFY(f.bar->isVisible());
        QCOMPARE(f.bar->countText(), QString());
        QTest::keyClick(f.bar->field(), Qt::Key_Escape);
        QVERIFY(!f.bar->isVisible());
    }

    void typingGoesToTheFirstMatch()
    {
        FindFixture f;
        f.bar->open();
        f.type("BuRn");
        QCOMPARE(f.bar->countText(), "1 of 4");
        QCOMPARE(f.selected(), f.burnA);
        QVERIFY(!f.isMarked());
        f.type("second");
        QCOMPARE(f.bar->countText(), "1 of 1");
        QCOMPARE(f.selected(), f.burnB);
        QVERIFY(f.navigation->window().start < 200 * day && f.navigation->window().end > 200 * day);
    }

    void nextAndPreviousGoByTimeAndThenByTrackAndRoundTheEnds()
    {
        FindFixture f;
        f.bar->open();
        f.type("burn");
        for (const int expected : {f.burnB, f.burnB2, f.burnC}) {
            f.pressReturn();
            QCOMPARE(f.selected(), expected);
            QCOMPARE(f.bar->note(), QString());
        }
        QCOMPARE(f.bar->countText(), "4 of 4");
        f.pressReturn();
        QCOMPARE(f.selected(), f.burnA);
        QCOMPARE(f.bar->note(), "Went on from the start");
        f.pressReturn(Qt::ShiftModifier);
        QCOMPARE(f.selected(), f.burnC);
        QCOMPARE(f.bar->note(), "Went on from the end");
        f.pressReturn(Qt::ShiftModifier);
        QCOMPARE(f.selected(), f.burnB2);
        QCOMPARE(f.bar->note(), QString());
        QTest::mouseClick(f.bar->findChild<QToolButton*>("findNextButton"), Qt::LeftButton);
        QCOMPARE(f.selected(), f.burnC);
        QTest::mouseClick(f.bar->findChild<QToolButton*>("findPreviousButton"), Qt::LeftButton);
        QCOMPARE(f.selected(), f.burnB2);
    }

    void theTracksAboveAMatchAreOpened()
    {
        FindFixture f;
        f.bar->open();
        f.type("third");
        const int top = f.model.parentOfTrackId(std::as_const(f.model).item(f.burnC)->parentTrackId())->id();
        QVERIFY(f.view()->isExpanded(f.view()->indexOfTrackRow(top, 0)));
    }

    void theSearchStartsAtTheWindowOrTheSelection()
    {
        FindFixture f;
        f.navigation->scrollTo(250 * day);
        f.bar->open();
        f.type("burn");
        QCOMPARE(f.selected(), f.burnC);
        f.bar->close();
        f.view()->selectItem(f.burnB2, true);
        f.bar->findNext();
        f.wait();
        QCOMPARE(f.selected(), f.burnC);
        // Another match is clicked.
        f.view()->selectItem(f.burnA, true);
        f.bar->findNext();
        QCOMPARE(f.selected(), f.burnB);
        // And something else.
        f.view()->selectItem(f.other, true);
        f.bar->findPrevious();
        QCOMPARE(f.selected(), f.burnA);
    }

    void findNextOpensTheBarWhenThereIsNothingToLookFor()
    {
        FindFixture f;
        f.bar->findNext();
        QVERIFY(f.bar->isVisible());
        QCOMPARE(f.selected(), -1);
    }

    void noMatchIsMarkedAndSaid()
    {
        FindFixture f;
        f.view()->selectItem(f.other, true);
        f.bar->open();
        f.type("nothing like it");
        QCOMPARE(f.bar->countText(), "No match");
        QVERIFY(f.isMarked());
        QCOMPARE(f.selected(), f.other);
        f.pressReturn();
        QCOMPARE(f.selected(), f.other);
        f.bar->field()->clear();
        QCOMPARE(f.bar->countText(), QString());
        QVERIFY(!f.isMarked());
    }

    void descriptionsAndAttributesCountWhenAskedFor()
    {
        FindFixture f;
        f.model.setItemDescription(f.other, "dreams of Rovers");
        f.model.setItemAttributes(f.burnB, {{"engine", "SPS"}});
        f.bar->open();
        f.type("rover");
        QCOMPARE(f.bar->countText(), "No match");
        f.bar->detailsBox()->click();
        f.wait();
        QCOMPARE(f.bar->countText(), "1 of 1");
        QCOMPARE(f.selected(), f.other);
        f.type("sps");
        QCOMPARE(f.selected(), f.burnB);
        f.type("Engine");
        QCOMPARE(f.bar->countText(), "1 of 1");
    }

    void editsAreFollowed()
    {
        FindFixture f;
        f.bar->open();
        f.type("burn");
        f.pressReturn();
        QCOMPARE(f.bar->countText(), "2 of 4");
        // What was gone to moves behind all others, and stays what one goes on from.
        f.model.retimeItem(f.burnB, 400 * day, hour);
        QTRY_COMPARE(f.bar->countText(), "4 of 4");
        f.pressReturn();
        QCOMPARE(f.selected(), f.burnA);
        f.model.setItemLabel(f.other, "a burn too");
        QTRY_COMPARE(f.bar->countText(), "1 of 5");
        f.model.removeItems({f.burnA});
        QTRY_COMPARE(f.bar->countText(), "4 matches");
        f.pressReturn();
        QCOMPARE(f.selected(), f.other);
        f.model.undoStack()->undo();
        QTRY_COMPARE(f.bar->countText(), "2 of 5");
        f.model.setDocument({});
        QTRY_COMPARE(f.bar->countText(), "No match");
        f.pressReturn();
    }

    void aMatchThatIsGoneBeforeTheSearchSaysSoIsLeftOut()
    {
        FindFixture f;
        f.bar->open();
        f.type("burn");
        f.model.removeItems({f.burnB});
        // Before the event loop is reached.
        f.pressReturn();
        QVERIFY(f.selected() != f.burnB);
        f.wait();
        f.pressReturn();
        QVERIFY(f.selected() != f.burnB);
        QVERIFY(f.selected() >= 0);
    }

    void ofAnItemInPiecesTheFirstIsFound()
    {
        FindFixture f;
        const int piece = f.add("Long", "voyage", 0, 100 * day);
        f.bar->open();
        f.type("voyage");
        QCOMPARE(f.bar->countText(), "1 of 1");
        QCOMPARE(f.selected(), piece);
    }

    void escapeClosesTheBarFromEachOfItsControls()
    {
        FindFixture f;
        f.bar->open();
        QTest::keyClick(f.bar->detailsBox(), Qt::Key_Escape);
        QVERIFY(!f.bar->isVisible());
        f.bar->open();
        QTest::mouseClick(f.bar->findChild<QToolButton*>("closeFindBarButton"), Qt::LeftButton);
        QVERIFY(!f.bar->isVisible());
    }

    void anotherDocumentIsSearchedFromItsStart()
    {
        FindFixture f;
        f.bar->open();
        f.type("burn");
        f.pressReturn();
        QCOMPARE(f.bar->countText(), "2 of 4");
        Document other;
        for (int i = 0; i < 3; ++i)
            other.track({"X"}).items.push_back({QStringLiteral("burn %1").arg(i), i * day, hour, {}, true});
        f.view()->clearSelectedItems();
        f.model.setDocument(other);
        QTRY_COMPARE(f.bar->countText(), "3 matches");
    }

    void aClosedBarDoesNotSearch()
    {
        FindFixture f;
        f.bar->open();
        f.type("burn");
        f.bar->close();
        QSignalSpy finished(&f.bar->search(), &ItemSearch::finished);
        f.model.setItemLabel(f.other, "burn");
        QTest::qWait(150);
        QCOMPARE(finished.count(), 0);
    }
};

QTEST_MAIN(TestFindBar)
#include "tst_find_bar.moc"
