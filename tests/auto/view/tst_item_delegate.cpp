#include "auto/view/picture.h"
#include "auto/view/recording_handlers.h"
#include "support/recording_logger.h"
#include "support/stderr_capture.h"

#include <QPushButton>
#include <QRegularExpression>
#include <QTest>

#include <cmath>

using namespace VeskTimeline;

namespace {

const QColor highlight{0x43, 0xB0, 0xE0};

/// An item that keeps what it is asked to paint, and may refuse.
class ProbeItem : public Item
{
public:
    struct Call
    {
        QRect rect;
        QModelIndex index;
        bool isSelected;
        bool hasClipping;
        QRect clip;
    };

    using Item::Item;
    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index,
               bool isSelected) const override
    {
        calls.append({option.rect, index, isSelected, painter->hasClipping(), painter->clipBoundingRect().toRect()});
        if (isFailing)
            throw QStringLiteral("no paint");
    }

    mutable QList<Call> calls;
    bool isFailing = false;
};

struct DelegateFixture : ViewFixture
{
    RecordingHandlers handlers{view};

    DelegateFixture() { view.header()->setIndicatorVisible(false); }

    QImage picture() const { return Picture::of(view); }
    QModelIndex cell(int trackId) const { return view.indexOfTrackRow(trackId, 1); }
    QRect row(int trackId) const { return view.visualRect(cell(trackId)); }
    ProbeItem* addProbe(int trackId, int start, int length)
    {
        auto item = std::make_unique<ProbeItem>(at(start), length * 1000, Qt::red, true);
        ProbeItem* const probe = item.get();
        model.addItem(trackId, std::move(item), false);
        return probe;
    }
    /// Paints one cell as the tree view does, onto a picture of its own.
    QImage paintCell(const QModelIndex& index, QPainter* painter = nullptr) const
    {
        QStyleOptionViewItem option;
        option.rect = view.visualRect(index);
        if (painter) {
            view.itemDelegate()->paint(painter, option, index);
            return {};
        }
        QImage image(view.viewport()->size(), QImage::Format_RGB32);
        image.fill(Qt::white);
        QPainter own(&image);
        view.itemDelegate()->paint(&own, option, index);
        return image;
    }
};

/// Names a track that there is none of. The timeline model itself stops at an index of its own that it does not know.
struct LyingModel : QAbstractTableModel
{
    int rowCount(const QModelIndex& /*parent*/) const override { return 1; }
    int columnCount(const QModelIndex& /*parent*/) const override { return 2; }
    QVariant data(const QModelIndex& /*index*/, int /*role*/) const override { return 4711; }
};

QColor at(const QImage& image, int x, int y)
{
    return image.pixelColor(x, y);
}

} // namespace

class TestItemDelegate : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(".?")); }

    void everyRowIsFiftyPixelsHigh();
    void theViewIsTheDelegatesParent();

    void itemFillsTheRowBetweenItsTimes();
    void itemRectangleEndsOnePixelBeforeItsEnd();
    void itemPartlyLeftOfTheCellStartsAtTheCellsLeftEdge();
    void itemBeyondTheRightEdgeEndsAtTheCellsRightEdge();
    void itemWhollyOutsideLeavesAtMostItsMarkAtTheEdge_data();
    void itemWhollyOutsideLeavesAtMostItsMarkAtTheEdge();
    void nothingIsPaintedOutsideTheCell();
    void unselectedItemHasABlackOutlineOfOnePixel();
    void selectedItemHasAnOutlineOfFivePixels();
    void itemPaintLeavesThePainterAsItWas();
    void laterItemsArePaintedOverEarlierOnes();
    void itemIsAskedWithTheRowsIndexAndItsSelection();

    void copyItemsArePaintedOnTheTracksThatShowThem();
    void copyItemsArePaintedOverOwnItems();
    void unknownCopyItemIsReportedOncePerPaintAndRow();
    void copyItemThatFailsIsReportedAndTheNextIsPainted();

    void draggedItemIsAbsentFromItsRow();
    void draggedCopyItemIsAbsentToo();
    void draggedItemOfAReadOnlyModelIsPaintedInPlaceAndAsGhost();
    void ghostIsTheItemMovedByTheDrag();
    void ghostIsClippedToTheTimeColumn();
    void ghostKeepsTheSelectedLook();
    void ghostThatEndsBeforeTheWindowIsSkipped();
    void ghostThatStartsBehindTheRangeEndsThePaintingOfAllThatFollow();
    void unknownDraggedItemEndsThePaintingSilently();
    void paintingGhostsLeavesThePainterAsItWas();

    void timeCellLeavesThePainterAsItWas();
    void failingItemIsLoggedAndThePainterStaysSaved();
    void unknownTrackIsLogged();
    void nameCellLeavesThePainterAsItWas();

    void buttonsAreAtTheRightEndOfTheName();
    void buttonsOfAReadOnlyModelAreDisabled();
    void pressedButtonsLookPressed();
    void unknownTrackHasNoButtons();
    void subclassMayPaintButtonsAndGhostsOtherwise();
    void withoutAModelNothingIsPainted();
};

void TestItemDelegate::everyRowIsFiftyPixelsHigh()
{
    DelegateFixture f;
    QStyleOptionViewItem option;
    QCOMPARE(f.view.itemDelegate()->sizeHint(option, QModelIndex()), QSize(100, 50));
    option.font.setPixelSize(90);
    option.rect = QRect(0, 0, 7, 7);
    QCOMPARE(f.view.itemDelegate()->sizeHint(option, f.cell(f.trackA)), QSize(100, 50));
    QCOMPARE(f.row(f.trackA).height(), 50);
    QCOMPARE(f.row(f.trackB).height(), 50);
}

void TestItemDelegate::theViewIsTheDelegatesParent()
{
    DelegateFixture f;
    QCOMPARE(f.view.itemDelegate()->parent(), &f.view);
}

void TestItemDelegate::itemFillsTheRowBetweenItsTimes()
{
    DelegateFixture f;
    f.addSeconds(f.trackB, 100, 50);
    const QRect row = f.row(f.trackB);
    const QImage image = f.picture();
    const QColor background = at(image, 250, row.center().y());
    for (int y = row.top() + 1; y <= row.bottom(); ++y) {
        QCOMPARE(at(image, 299, y), background);
        QCOMPARE(at(image, 300, y), QColor(Qt::black));
        for (int x = 301; x < 350; ++x)
            QCOMPARE(at(image, x, y), QColor(Qt::red));
        QCOMPARE(at(image, 350, y), QColor(Qt::black));
        QCOMPARE(at(image, 351, y), background);
    }
    for (int x = 300; x <= 350; ++x)
        QCOMPARE(at(image, x, row.top()), QColor(Qt::black));
    // The outline's lower edge lies in the first line of pixels behind the cell.
    QVERIFY(at(image, 320, row.bottom() + 1) != QColor(Qt::black));
}

void TestItemDelegate::itemRectangleEndsOnePixelBeforeItsEnd()
{
    DelegateFixture f;
    const ProbeItem* const probe = f.addProbe(f.trackA, 100, 50);
    f.paintCell(f.cell(f.trackA));
    QCOMPARE(probe->calls.size(), 1);
    const QRect row = f.row(f.trackA);
    QCOMPARE(probe->calls.first().rect, QRect(QPoint(300, row.top()), QPoint(349, row.bottom())));
}

void TestItemDelegate::itemPartlyLeftOfTheCellStartsAtTheCellsLeftEdge()
{
    DelegateFixture f;
    const ProbeItem* const probe = f.addProbe(f.trackA, 100, 50);
    f.view.setCurrentTime(f.at(120));
    f.paintCell(f.cell(f.trackA));
    const QRect row = f.row(f.trackA);
    QCOMPARE(probe->calls.first().rect, QRect(QPoint(200, row.top()), QPoint(229, row.bottom())));
    f.model.newItem(f.trackB, f.at(100), 50'000);
    const QImage image = f.picture();
    const int y = f.row(f.trackB).center().y();
    QCOMPARE(at(image, 200, y), QColor(Qt::black));
    QCOMPARE(at(image, 201, y), QColor(Qt::red));
    QVERIFY(at(image, 199, y) != QColor(Qt::black));
}

void TestItemDelegate::itemBeyondTheRightEdgeEndsAtTheCellsRightEdge()
{
    DelegateFixture f;
    const ProbeItem* const probe = f.addProbe(f.trackA, 1700, 500);
    const QRect row = f.row(f.trackA);
    QCOMPARE(row.right(), 1999);
    f.paintCell(f.cell(f.trackA));
    QCOMPARE(probe->calls.first().rect, QRect(QPoint(1900, row.top()), QPoint(1998, row.bottom())));
    f.addSeconds(f.trackB, 1700, 500);
    const QImage image = f.picture();
    const int y = f.row(f.trackB).center().y();
    QCOMPARE(at(image, 1998, y), QColor(Qt::red));
    QCOMPARE(at(image, 1999, y), QColor(Qt::black));
}

void TestItemDelegate::itemWhollyOutsideLeavesAtMostItsMarkAtTheEdge_data()
{
    QTest::addColumn<qint64>("start");
    QTest::addColumn<bool>("isLeft");
    QTest::addColumn<bool>("isSelected");
    for (const bool isSelected : {false, true}) {
        const char* const look = isSelected ? "selected" : "plain";
        QTest::addRow("just before, %s", look) << ViewFixture::at(500) << true << isSelected;
        QTest::addRow("the epoch, %s", look) << qint64(0) << true << isSelected;
        QTest::addRow("just behind, %s", look) << ViewFixture::at(2800) << false << isSelected;
        QTest::addRow("the year 2200, %s", look) << qint64(7'258'118'400'000) << false << isSelected;
    }
}

// At fifteen seconds across the window most items are millions of pixels away.
void TestItemDelegate::itemWhollyOutsideLeavesAtMostItsMarkAtTheEdge()
{
    QFETCH(qint64, start);
    QFETCH(bool, isLeft);
    QFETCH(bool, isSelected);
    DelegateFixture f;
    f.view.setZoomFactor(Zoom::FifteenSeconds);
    f.view.setCurrentTime(f.at(1800));
    for (const qreal ratio : {1.0, 2.0}) {
        f.model.clearItems();
        f.view.clearSelectedItems();
        const QImage empty = Picture::of(f.view, ratio);
        const int id = f.model.newItem(f.trackA, start, 60'000);
        if (isSelected)
            f.view.selectItem(id, true);
        const QRect changed = Picture::difference(Picture::of(f.view, ratio), empty);
        const QRect row = f.row(f.trackA);
        // Half of the outline, whose middle is the edge; on the right the edge is the left side of the last pixel.
        const int widest = static_cast<int>(std::ceil(((isSelected ? 2.5 : 0.5) + (isLeft ? 0.0 : 1.0)) * ratio));
        const QRect scaled(QPointF(row.topLeft() * ratio).toPoint(), row.size() * ratio);
        const QRect strip(isLeft ? scaled.left() : scaled.right() + 1 - widest, scaled.top(), widest, scaled.height());
        QVERIFY2(strip.contains(changed), qPrintable(QDebug::toString(changed)));
    }
}

void TestItemDelegate::nothingIsPaintedOutsideTheCell()
{
    DelegateFixture f;
    const ProbeItem* const probe = f.addProbe(f.trackA, 100, 50);
    QImage image(2000, 400, QImage::Format_RGB32);
    QPainter painter(&image);
    // Replaces the clip that the painter comes with.
    painter.setClipRect(QRect(0, 0, 10, 10));
    f.paintCell(f.cell(f.trackA), &painter);
    QVERIFY(probe->calls.first().hasClipping);
    QCOMPARE(probe->calls.first().clip, f.row(f.trackA));
}

void TestItemDelegate::unselectedItemHasABlackOutlineOfOnePixel()
{
    const Item item(0, 1000, Qt::yellow, true);
    QImage image(60, 40, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    QStyleOptionViewItem option;
    option.rect = QRect(10, 10, 30, 20);
    item.paint(&painter, option, QModelIndex(), false);
    painter.end();
    for (int y = 0; y < 40; ++y) {
        for (int x = 0; x < 60; ++x) {
            // A rectangle is outlined one pixel beyond its size.
            const bool isInside = x > 10 && x < 40 && y > 10 && y < 30;
            const bool isOutline = x >= 10 && x <= 40 && y >= 10 && y <= 30 && !isInside;
            QCOMPARE(at(image, x, y), isInside ? QColor(Qt::yellow) : QColor(isOutline ? Qt::black : Qt::white));
        }
    }
}

void TestItemDelegate::selectedItemHasAnOutlineOfFivePixels()
{
    QCOMPARE(Item::s_highlightColor, highlight);
    const Item item(0, 1000, Qt::yellow, true);
    QImage image(60, 40, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    QStyleOptionViewItem option;
    option.rect = QRect(10, 10, 30, 20);
    item.paint(&painter, option, QModelIndex(), true);
    painter.end();
    QCOMPARE(Picture::difference(image,
                                 [&] {
                                     QImage white = image;
                                     white.fill(Qt::white);
                                     return white;
                                 }()),
             QRect(8, 8, 35, 25));
    // Two pixels to either side of the outline's middle, along a line through the item's centre.
    for (const int x : {8, 9, 10, 11, 12, 38, 39, 40, 41, 42})
        QCOMPARE(at(image, x, 20), highlight);
    for (const int x : {13, 25, 37})
        QCOMPARE(at(image, x, 20), QColor(Qt::yellow));
    for (const int x : {7, 43})
        QCOMPARE(at(image, x, 20), QColor(Qt::white));
    for (const int y : {8, 12, 28, 32})
        QCOMPARE(at(image, 25, y), highlight);
    for (const int y : {13, 27})
        QCOMPARE(at(image, 25, y), QColor(Qt::yellow));
    // The corners are cut off.
    for (const QPoint& corner : {QPoint(8, 8), QPoint(42, 8), QPoint(8, 32), QPoint(42, 32)})
        QCOMPARE(image.pixelColor(corner), QColor(Qt::white));
}

void TestItemDelegate::itemPaintLeavesThePainterAsItWas()
{
    const Item item(0, 1000, Qt::yellow, true);
    QImage image(60, 40, QImage::Format_RGB32);
    QPainter painter(&image);
    painter.setPen(Qt::green);
    painter.setBrush(Qt::blue);
    QStyleOptionViewItem option;
    option.rect = QRect(10, 10, 30, 20);
    item.paint(&painter, option, QModelIndex(), true);
    QCOMPARE(painter.pen(), QPen(Qt::green));
    QCOMPARE(painter.brush(), QBrush(Qt::blue));
}

void TestItemDelegate::laterItemsArePaintedOverEarlierOnes()
{
    DelegateFixture f;
    f.addSeconds(f.trackA, 110, 50, Qt::green);
    f.addSeconds(f.trackA, 100, 50, Qt::red);
    const QImage image = f.picture();
    const int y = f.row(f.trackA).center().y();
    QCOMPARE(at(image, 305, y), QColor(Qt::red));
    QCOMPARE(at(image, 330, y), QColor(Qt::green));
}

void TestItemDelegate::itemIsAskedWithTheRowsIndexAndItsSelection()
{
    DelegateFixture f;
    const ProbeItem* const probe = f.addProbe(f.trackB, 100, 50);
    f.paintCell(f.cell(f.trackB));
    QCOMPARE(probe->calls.last().index, f.cell(f.trackB));
    QVERIFY(!probe->calls.last().isSelected);
    f.view.selectItem(probe->id(), true);
    f.paintCell(f.cell(f.trackB));
    QVERIFY(probe->calls.last().isSelected);
    // A copy is asked with the row that shows it.
    f.model.track(f.trackA)->addCopyItemId(probe->id());
    f.paintCell(f.cell(f.trackA));
    QCOMPARE(probe->calls.last().index, f.cell(f.trackA));
    QVERIFY(probe->calls.last().isSelected);
}

void TestItemDelegate::copyItemsArePaintedOnTheTracksThatShowThem()
{
    DelegateFixture f;
    const int id = f.addSeconds(f.trackB, 100, 50, Qt::green);
    const int yA = f.row(f.trackA).center().y();
    QVERIFY(at(f.picture(), 320, yA) != QColor(Qt::green));
    f.model.track(f.trackA)->addCopyItemId(id);
    const QImage image = f.picture();
    QCOMPARE(at(image, 300, yA), QColor(Qt::black));
    QCOMPARE(at(image, 320, yA), QColor(Qt::green));
    QCOMPARE(at(image, 350, yA), QColor(Qt::black));
    QCOMPARE(at(image, 320, f.row(f.trackB).center().y()), QColor(Qt::green));
}

void TestItemDelegate::copyItemsArePaintedOverOwnItems()
{
    DelegateFixture f;
    const int id = f.addSeconds(f.trackB, 100, 50, Qt::green);
    f.addSeconds(f.trackA, 110, 50, Qt::red);
    f.model.track(f.trackA)->addCopyItemId(id);
    QCOMPARE(at(f.picture(), 330, f.row(f.trackA).center().y()), QColor(Qt::green));
}

void TestItemDelegate::unknownCopyItemIsReportedOncePerPaintAndRow()
{
    RecordingLogger logger;
    DelegateFixture f;
    f.model.track(f.trackA)->addCopyItemId(4711);
    f.model.track(f.trackB)->addCopyItemId(4711);
    f.addSeconds(f.trackA, 100, 50, Qt::red);
    const QByteArray line = "ItemDelegate::paint: cannot find item copy of 4711\n";
    {
        StderrCapture capture;
        f.paintCell(f.cell(f.trackA));
        QCOMPARE(capture.take(), line);
    }
    {
        StderrCapture capture;
        const QImage image = f.picture();
        QCOMPARE(capture.take(), line + line);
        QCOMPARE(at(image, 320, f.row(f.trackA).center().y()), QColor(Qt::red));
    }
    QVERIFY(logger.messages(Hox::Error).isEmpty());
}

void TestItemDelegate::copyItemThatFailsIsReportedAndTheNextIsPainted()
{
    RecordingLogger logger;
    DelegateFixture f;
    ProbeItem* const failing = f.addProbe(f.trackB, 100, 50);
    const int green = f.addSeconds(f.trackB, 200, 50, Qt::green);
    failing->isFailing = true;
    f.model.track(f.trackA)->addCopyItemIds({failing->id(), green});
    StderrCapture capture;
    const QImage image = f.paintCell(f.cell(f.trackA));
    QCOMPARE(capture.take(),
             QStringLiteral("ItemDelegate::paint: cannot find item copy of %1\n").arg(failing->id()).toUtf8());
    QCOMPARE(at(image, 420, f.row(f.trackA).center().y()), QColor(Qt::green));
    QVERIFY(logger.messages(Hox::Error).isEmpty());
}

void TestItemDelegate::draggedItemIsAbsentFromItsRow()
{
    DelegateFixture f;
    const ProbeItem* const probe = f.addProbe(f.trackA, 100, 50);
    const ProbeItem* const other = f.addProbe(f.trackA, 200, 50);
    f.handlers.drag.setDragItemIds({probe->id()});
    f.paintCell(f.cell(f.trackA));
    QCOMPARE(probe->calls.size(), 0);
    QCOMPARE(other->calls.size(), 1);
    f.view.setDragHandler(nullptr);
    f.paintCell(f.cell(f.trackA));
    QCOMPARE(probe->calls.size(), 1);
}

void TestItemDelegate::draggedCopyItemIsAbsentToo()
{
    DelegateFixture f;
    const ProbeItem* const probe = f.addProbe(f.trackA, 100, 50);
    f.model.track(f.trackB)->addCopyItemId(probe->id());
    f.handlers.drag.setDragItemIds({probe->id()});
    StderrCapture capture;
    f.paintCell(f.cell(f.trackB));
    QCOMPARE(capture.take(), QByteArray());
    QCOMPARE(probe->calls.size(), 0);
}

void TestItemDelegate::draggedItemOfAReadOnlyModelIsPaintedInPlaceAndAsGhost()
{
    DelegateFixture f;
    const int id = f.addSeconds(f.trackA, 100, 50, Qt::green);
    f.handlers.drag.setDragItemIds({id});
    f.handlers.drag.delta = QPoint(200, 0);
    const int y = f.row(f.trackA).center().y();
    QVERIFY(at(f.picture(), 320, y) != QColor(Qt::green));
    QCOMPARE(at(f.picture(), 520, y), QColor(Qt::green));
    f.model.setEditable(false);
    QCOMPARE(at(f.picture(), 320, y), QColor(Qt::green));
    QCOMPARE(at(f.picture(), 520, y), QColor(Qt::green));
}

void TestItemDelegate::ghostIsTheItemMovedByTheDrag()
{
    DelegateFixture f;
    const ProbeItem* const probe = f.addProbe(f.trackA, 100, 50);
    f.handlers.drag.setDragItemIds({probe->id()});
    f.handlers.drag.delta = QPoint(-30, 70);
    QImage image(2000, 400, QImage::Format_RGB32);
    QPainter painter(&image);
    f.view.itemDelegate()->paintDragItems(&painter);
    QCOMPARE(probe->calls.size(), 1);
    const QRect row = f.row(f.trackA);
    // One pixel less in width and height than the cell's share.
    QCOMPARE(probe->calls.first().rect, QRect(300 - 30, row.top() + 70, 350 - 300 - 1, row.bottom() - row.top()));
    QCOMPARE(probe->calls.first().index, f.cell(f.trackA));

    DelegateFixture painted;
    const int id = painted.addSeconds(painted.trackA, 100, 50, Qt::green);
    painted.handlers.drag.setDragItemIds({id});
    painted.handlers.drag.delta = QPoint(-30, 70);
    const QImage picture = painted.picture();
    QCOMPARE(at(picture, 270, row.top() + 80), QColor(Qt::black));
    QCOMPARE(at(picture, 271, row.top() + 80), QColor(Qt::green));
    QCOMPARE(at(picture, 318, row.top() + 80), QColor(Qt::green));
    QCOMPARE(at(picture, 319, row.top() + 80), QColor(Qt::black));
    QCOMPARE(at(picture, 300, row.top() + 70), QColor(Qt::black));
    QCOMPARE(at(picture, 300, row.bottom() + 70), QColor(Qt::black));
    QCOMPARE(at(picture, 300, row.bottom() + 69), QColor(Qt::green));
}

void TestItemDelegate::ghostIsClippedToTheTimeColumn()
{
    DelegateFixture f;
    const ProbeItem* const probe = f.addProbe(f.trackA, 0, 50);
    f.handlers.drag.setDragItemIds({probe->id()});
    f.handlers.drag.delta = QPoint(-30, 0);
    QImage image(4000, 1000, QImage::Format_RGB32);
    QPainter painter(&image);
    painter.setClipRect(QRect(0, 0, 10, 10));
    f.view.itemDelegate()->paintDragItems(&painter);
    QVERIFY(probe->calls.first().hasClipping);
    QCOMPARE(probe->calls.first().clip,
             QRect(QPoint(200, 0), QPoint(f.view.geometry().right(), f.view.geometry().bottom())));

    const int id = f.addSeconds(f.trackB, 0, 50, Qt::green);
    f.handlers.drag.setDragItemIds({id});
    const int y = f.row(f.trackB).center().y();
    QVERIFY(at(f.picture(), 199, y) != QColor(Qt::green));
    QCOMPARE(at(f.picture(), 200, y), QColor(Qt::green));
}

void TestItemDelegate::ghostKeepsTheSelectedLook()
{
    DelegateFixture f;
    const ProbeItem* const selected = f.addProbe(f.trackA, 100, 50);
    const ProbeItem* const other = f.addProbe(f.trackA, 200, 50);
    f.view.selectItem(selected->id(), true);
    f.handlers.drag.setDragItemIds({selected->id(), other->id()});
    QImage image(2000, 400, QImage::Format_RGB32);
    QPainter painter(&image);
    f.view.itemDelegate()->paintDragItems(&painter);
    QVERIFY(selected->calls.last().isSelected);
    QVERIFY(!other->calls.last().isSelected);
}

void TestItemDelegate::ghostThatEndsBeforeTheWindowIsSkipped()
{
    DelegateFixture f;
    const ProbeItem* const before = f.addProbe(f.trackA, 500, 99);
    const ProbeItem* const touching = f.addProbe(f.trackA, 500, 100);
    const ProbeItem* const behind = f.addProbe(f.trackA, 2500, 100);
    f.handlers.drag.setDragItemIds({before->id(), touching->id(), behind->id()});
    f.view.setCurrentTime(f.at(600));
    QImage image(2000, 400, QImage::Format_RGB32);
    QPainter painter(&image);
    f.view.itemDelegate()->paintDragItems(&painter);
    QCOMPARE(before->calls.size(), 0);
    QCOMPARE(touching->calls.size(), 1);
    // The end of the window ends nothing.
    QCOMPARE(behind->calls.size(), 1);
}

void TestItemDelegate::ghostThatStartsBehindTheRangeEndsThePaintingOfAllThatFollow()
{
    DelegateFixture f;
    const ProbeItem* const first = f.addProbe(f.trackA, 100, 50);
    const ProbeItem* const atTheEnd = f.addProbe(f.trackA, 3600, 50);
    const ProbeItem* const behindTheEnd = f.addProbe(f.trackA, 3601, 50);
    const ProbeItem* const last = f.addProbe(f.trackA, 200, 50);
    f.handlers.drag.setDragItemIds({first->id(), atTheEnd->id(), behindTheEnd->id(), last->id()});
    QImage image(2000, 400, QImage::Format_RGB32);
    QPainter painter(&image);
    f.view.itemDelegate()->paintDragItems(&painter);
    QCOMPARE(first->calls.size(), 1);
    QCOMPARE(atTheEnd->calls.size(), 1);
    QCOMPARE(behindTheEnd->calls.size(), 0);
    QCOMPARE(last->calls.size(), 0);
}

void TestItemDelegate::unknownDraggedItemEndsThePaintingSilently()
{
    RecordingLogger logger;
    DelegateFixture f;
    const ProbeItem* const first = f.addProbe(f.trackA, 100, 50);
    const ProbeItem* const last = f.addProbe(f.trackA, 200, 50);
    f.handlers.drag.setDragItemIds({first->id(), 4711, last->id()});
    QImage image(2000, 400, QImage::Format_RGB32);
    QPainter painter(&image);
    painter.setClipRect(QRect(0, 0, 10, 10));
    StderrCapture capture;
    f.view.itemDelegate()->paintDragItems(&painter);
    QCOMPARE(capture.take(), QByteArray());
    QCOMPARE(first->calls.size(), 1);
    QCOMPARE(last->calls.size(), 0);
    QCOMPARE(painter.clipBoundingRect(), QRectF(0, 0, 10, 10));
    QVERIFY(logger.messages(Hox::Error).isEmpty());
}

void TestItemDelegate::paintingGhostsLeavesThePainterAsItWas()
{
    DelegateFixture f;
    f.handlers.drag.setDragItemIds({f.addSeconds(f.trackA, 100, 50), f.addSeconds(f.trackA, 4000, 50)});
    QImage image(2000, 400, QImage::Format_RGB32);
    QPainter painter(&image);
    painter.setPen(Qt::green);
    f.view.itemDelegate()->paintDragItems(&painter);
    QVERIFY(!painter.hasClipping());
    QCOMPARE(painter.pen(), QPen(Qt::green));
}

void TestItemDelegate::timeCellLeavesThePainterAsItWas()
{
    DelegateFixture f;
    f.addSeconds(f.trackA, 100, 50);
    QImage image(2000, 400, QImage::Format_RGB32);
    QPainter painter(&image);
    painter.setPen(Qt::green);
    painter.setClipRect(QRect(0, 0, 10, 10));
    f.paintCell(f.cell(f.trackA), &painter);
    QCOMPARE(painter.clipBoundingRect(), QRectF(0, 0, 10, 10));
    QCOMPARE(painter.pen(), QPen(Qt::green));
}

void TestItemDelegate::failingItemIsLoggedAndThePainterStaysSaved()
{
    RecordingLogger logger;
    DelegateFixture f;
    ProbeItem* const failing = f.addProbe(f.trackA, 100, 50);
    const ProbeItem* const later = f.addProbe(f.trackA, 200, 50);
    failing->isFailing = true;
    QImage image(2000, 400, QImage::Format_RGB32);
    QPainter painter(&image);
    f.paintCell(f.cell(f.trackA), &painter);
    QCOMPARE(later->calls.size(), 0);
    QCOMPARE(logger.entries().size(), std::size_t(1));
    QCOMPARE(logger.entries().back().logger, QStringLiteral("Timeline.TimelineView"));
    QCOMPARE(logger.messages(Hox::Error), QStringList("ItemDelegate::paint -> CATCH"));
    QCOMPARE(painter.clipBoundingRect().toRect(), f.row(f.trackA));
    painter.restore();
    QVERIFY(!painter.hasClipping());
}

void TestItemDelegate::unknownTrackIsLogged()
{
    RecordingLogger logger;
    DelegateFixture f;
    logger.clear();
    QImage image(2000, 400, QImage::Format_RGB32);
    QPainter painter(&image);
    QStyleOptionViewItem option;
    option.rect = f.row(f.trackA);
    const LyingModel lying;
    f.view.itemDelegate()->paint(&painter, option, lying.index(0, 1));
    QCOMPARE(logger.messages(Hox::Error), QStringList("ItemDelegate::paint -> CATCH"));
    QVERIFY(!painter.hasClipping());
}

void TestItemDelegate::nameCellLeavesThePainterAsItWas()
{
    DelegateFixture f;
    f.model.track(f.trackA)->setInsertButton(true);
    QImage image(2000, 400, QImage::Format_RGB32);
    QPainter painter(&image);
    painter.setPen(Qt::green);
    painter.setClipRect(QRect(0, 0, 10, 10));
    f.paintCell(f.view.indexOfTrackRow(f.trackA, 0), &painter);
    QCOMPARE(painter.clipBoundingRect(), QRectF(0, 0, 10, 10));
    QCOMPARE(painter.pen(), QPen(Qt::green));
}

namespace {

QImage pictureOfButton(const QString& text, int size, bool isEnabled, bool isDown)
{
    QPushButton button;
    button.setGeometry(0, 0, size, size);
    button.setText(text);
    button.setEnabled(isEnabled);
    button.setDown(isDown);
    // Painted as the view does it: on a fine screen the picture has more pixels than it takes.
    QImage image(size, size, QImage::Format_RGB32);
    QPainter(&image).drawPixmap(0, 0, button.grab());
    return image;
}

} // namespace

void TestItemDelegate::buttonsAreAtTheRightEndOfTheName()
{
    DelegateFixture f;
    const QImage bare = f.picture();
    f.model.track(f.trackA)->setInsertButton(true);
    f.model.track(f.trackB)->setRemoveButton(true);
    const QImage image = f.picture();
    const int topA = f.row(f.trackA).top();
    const int topB = f.row(f.trackB).top();
    COMPARE_PICTURES(image.copy(174, topA, 25, 25), pictureOfButton("+", 25, true, false));
    // The centre of a row of 50 pixels is its 25th line, counted from 0.
    COMPARE_PICTURES(image.copy(174, topB + 24, 25, 25), pictureOfButton("-", 25, true, false));
    QCOMPARE(Picture::difference(image, bare), QRect(174, topA, 25, topB + 24 + 25 - topA));

    f.model.track(f.trackA)->setRemoveButton(true);
    COMPARE_PICTURES(f.picture().copy(174, topA + 24, 25, 25), pictureOfButton("-", 25, true, false));
}

void TestItemDelegate::buttonsOfAReadOnlyModelAreDisabled()
{
    DelegateFixture f;
    f.model.track(f.trackA)->setInsertButton(true);
    f.model.track(f.trackB)->setRemoveButton(true);
    f.model.setEditable(false);
    const QImage image = f.picture();
    COMPARE_PICTURES(image.copy(174, f.row(f.trackA).top(), 25, 25), pictureOfButton("+", 25, false, false));
    COMPARE_PICTURES(image.copy(174, f.row(f.trackB).top() + 24, 25, 25), pictureOfButton("-", 25, false, false));
    QVERIFY(pictureOfButton("+", 25, false, false) != pictureOfButton("+", 25, true, false));
}

void TestItemDelegate::pressedButtonsLookPressed()
{
    class PressedHandler : public TimelineViewTrackHandler
    {
    public:
        using TimelineViewTrackHandler::m_pressedInsertButtonIndex;
        using TimelineViewTrackHandler::m_pressedRemoveButtonIndex;
        using TimelineViewTrackHandler::TimelineViewTrackHandler;
    };
    DelegateFixture f;
    PressedHandler handler(&f.view);
    f.view.setTrackHandler(&handler);
    for (const int id : {f.trackA, f.trackB}) {
        f.model.track(id)->setInsertButton(true);
        f.model.track(id)->setRemoveButton(true);
    }
    const auto looksPressed = [&f](int trackId, const QString& text) {
        const QPoint topLeft(174, f.row(trackId).top() + (text == QLatin1String("-") ? 24 : 0));
        // The other button overlaps this one by a line.
        const QRect lines = text == QLatin1String("-") ? QRect(0, 0, 25, 25) : QRect(0, 0, 25, 24);
        const QImage shown = f.picture().copy(lines.translated(topLeft));
        if (shown != pictureOfButton(text, 25, true, true).copy(lines))
            return shown == pictureOfButton(text, 25, true, false).copy(lines) ? "no" : "neither";
        return "yes";
    };
    QCOMPARE(looksPressed(f.trackA, "+"), "no");
    handler.m_pressedInsertButtonIndex = f.view.indexOfTrackRow(f.trackA, 0);
    handler.m_pressedRemoveButtonIndex = f.view.indexOfTrackRow(f.trackB, 0);
    QCOMPARE(looksPressed(f.trackA, "+"), "yes");
    QCOMPARE(looksPressed(f.trackA, "-"), "no");
    QCOMPARE(looksPressed(f.trackB, "+"), "no");
    QCOMPARE(looksPressed(f.trackB, "-"), "yes");
    // Qt raises a button that is disabled; it must be down again when the model is editable again.
    f.model.setEditable(false);
    f.picture();
    f.model.setEditable(true);
    QCOMPARE(looksPressed(f.trackB, "-"), "yes");
    f.view.setTrackHandler(nullptr);
    QCOMPARE(looksPressed(f.trackA, "+"), "no");
}

void TestItemDelegate::unknownTrackHasNoButtons()
{
    RecordingLogger logger;
    DelegateFixture f;
    QImage image(200, 60, QImage::Format_RGB32);
    image.fill(Qt::white);
    const QImage before = image;
    QPainter painter(&image);
    QStyleOptionViewItem option;
    option.rect = QRect(0, 0, 200, 50);
    const LyingModel lying;
    f.view.itemDelegate()->paintTrackButtons(&painter, option, lying.index(0, 0));
    painter.end();
    QCOMPARE(image, before);
    QVERIFY(logger.entries().empty());
}

void TestItemDelegate::subclassMayPaintButtonsAndGhostsOtherwise()
{
    class OtherDelegate : public ItemDelegate
    {
    public:
        using ItemDelegate::ItemDelegate;
        void paintDragItems(QPainter*) const override { ++ghosts; }
        void paintTrackButtons(QPainter*, const QStyleOptionViewItem& option, const QModelIndex& index) const override
        {
            buttons.append({option.rect, index});
        }
        mutable int ghosts = 0;
        mutable QList<QPair<QRect, QModelIndex>> buttons;
    };
    DelegateFixture f;
    OtherDelegate other(&f.view);
    f.view.setItemDelegate(&other);
    f.picture();
    QCOMPARE(other.ghosts, 1);
    QCOMPARE(other.buttons.size(), 2);
    const QModelIndex name = f.view.indexOfTrackRow(f.trackB, 0);
    QCOMPARE(other.buttons.last(), qMakePair(f.view.visualRect(name), name));
}

void TestItemDelegate::withoutAModelNothingIsPainted()
{
    TimelineView view;
    view.setItemDelegate(new ItemDelegate(&view));
    QVERIFY(!view.viewport()->grab().isNull());
    QImage image(200, 60, QImage::Format_RGB32);
    QPainter painter(&image);
    view.itemDelegate()->paintDragItems(&painter);
    QVERIFY(!painter.hasClipping());
}

QTEST_MAIN(TestItemDelegate)
#include "tst_item_delegate.moc"
