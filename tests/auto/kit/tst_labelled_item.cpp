#include <VeskTimelineKit/labelled_item.h>

#include <QElapsedTimer>
#include <QFontMetrics>
#include <QImage>
#include <QModelIndex>
#include <QPainter>
#include <QStyleOptionViewItem>
#include <QTest>

using namespace VeskTimeline;
using namespace VeskTimeline::Kit;

namespace {

constexpr QRect cell(0, 0, 200, 50);
const QColor orange(245, 133, 24);
const QColor navy(20, 30, 90);

// The item as a view's delegate has it painted: with its own rectangle, clipped to the cell.
QImage painted(const LabelledItem& item, const QRect& rect, bool isSelected = false, const QColor& row = Qt::white)
{
    QImage image(cell.size(), QImage::Format_RGB32);
    image.fill(row);
    QPainter painter(&image);
    painter.setClipRect(cell);
    QStyleOptionViewItem option;
    option.rect = rect;
    option.palette.setColor(QPalette::Base, row);
    item.paint(&painter, option, QModelIndex(), isSelected);
    return image;
}

QRect areaOtherThan(const QImage& image, const QColor& background, const QRect& within = cell)
{
    QRect area;
    for (int y = within.top(); y <= within.bottom(); ++y) {
        for (int x = within.left(); x <= within.right(); ++x) {
            if (image.pixelColor(x, y) != background)
                area = area.united(QRect(x, y, 1, 1));
        }
    }
    return area;
}

// How many pixels within the label's room are nearly of that colour; letters have soft edges.
int pixelsLike(const QImage& image, const QColor& color)
{
    const auto isNear = [](int a, int b) { return std::abs(a - b) < 80; };
    int count = 0;
    for (int y = 10; y < 40; ++y) {
        for (int x = 24; x < 120; ++x) {
            const QColor pixel = image.pixelColor(x, y);
            if (isNear(pixel.red(), color.red()) && isNear(pixel.green(), color.green()) &&
                isNear(pixel.blue(), color.blue()))
                ++count;
        }
    }
    return count;
}

// The greatest difference of a part of the colours.
int difference(const QColor& left, const QColor& right)
{
    return std::max({std::abs(left.red() - right.red()), std::abs(left.green() - right.green()),
                     std::abs(left.blue() - right.blue())});
}

// Rectangle of an item as ItemDelegate computes it from the pixels of start and end.
QRect barRect(int start, int end)
{
    return QRect(QPoint(std::max(start, cell.left()), 0), QPoint(std::min(end, cell.right()) - 1, cell.bottom()));
}

} // namespace

class TestLabelledItem : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(".?")); }

    void theBarFillsItsTimeWithAMarginToTheRow()
    {
        const QImage image = painted(LabelledItem("", 0, 1000, orange, true), barRect(20, 120));
        QCOMPARE(areaOtherThan(image, Qt::white), QRect(20, 4, 100, 42));
        QCOMPARE(image.pixelColor(70, 25), orange);
        QCOMPARE(image.pixel(20, 25), orange.darker(180).rgb());
    }

    void aSelectedBarIsOutlinedInTheHighlightColour()
    {
        const QImage image = painted(LabelledItem("", 0, 1000, orange, true), barRect(20, 120), true);
        QCOMPARE(image.pixelColor(20, 25), Item::s_highlightColor);
        QCOMPARE(image.pixelColor(70, 25), orange);
    }

    void theLabelOfASelectedItemIsReadAsBefore()
    {
        const LabelledItem item("MMMM", 0, 1000, navy, true);
        const QRect inside(24, 8, 90, 34);
        QCOMPARE(painted(item, barRect(20, 120), true).copy(inside), painted(item, barRect(20, 120)).copy(inside));
    }

    void aSelectedMarkerIsOutlinedInTheHighlightColour()
    {
        const QImage plain = painted(LabelledItem("", 0, 0, orange, true), barRect(100, 100));
        const QImage selected = painted(LabelledItem("", 0, 0, orange, true), barRect(100, 100), true);
        QCOMPARE(selected.pixelColor(95, 25), Item::s_highlightColor);
        QCOMPARE(selected.pixelColor(105, 25), Item::s_highlightColor);
        QVERIFY(plain.pixelColor(95, 25) != Item::s_highlightColor);
    }

    void itemsOfTheColourOfTheRowAreSeenByTheirEdges_data()
    {
        QTest::addColumn<QColor>("color");
        QTest::addColumn<QColor>("row");
        const QColor dark(30, 30, 30);
        QTest::newRow("white on white") << QColor(Qt::white) << QColor(Qt::white);
        QTest::newRow("nothing on white") << QColor(Qt::transparent) << QColor(Qt::white);
        QTest::newRow("faint on white") << QColor(0, 0, 0, 10) << QColor(Qt::white);
        QTest::newRow("black on dark") << QColor(Qt::black) << dark;
        QTest::newRow("dark on dark") << dark << dark;
        QTest::newRow("nothing on dark") << QColor(Qt::transparent) << dark;
        QTest::newRow("navy on dark") << QColor(20, 20, 60) << dark;
        QTest::newRow("grey on grey") << QColor(Qt::gray) << QColor(Qt::gray);
    }
    void itemsOfTheColourOfTheRowAreSeenByTheirEdges()
    {
        QFETCH(QColor, color);
        QFETCH(QColor, row);
        constexpr int clear = 60;
        const QImage bar = painted(LabelledItem("", 0, 1000, color, true), barRect(20, 120), false, row);
        QVERIFY(difference(bar.pixelColor(20, 25), row) >= clear);
        QVERIFY(difference(bar.pixelColor(119, 25), row) >= clear);
        const QImage marker = painted(LabelledItem("", 0, 0, color, true), barRect(100, 100), false, row);
        QVERIFY(difference(marker.pixelColor(100, 6), row) >= clear);
        // Left of the line; the edges of the diamond are soft.
        int most = 0;
        for (int x = 94; x < 99; ++x)
            most = std::max(most, difference(marker.pixelColor(x, 25), row));
        QVERIFY2(most >= clear / 2, qPrintable(QString::number(most)));
    }

    void thePieceOfALongItemSaysWhichItIs()
    {
        LabelledItem piece("Ice", 0, 1000, orange, true);
        piece.setPiece({7, 2, 3});
        const LabelledItem said("Ice (2/3)", 0, 1000, orange, true);
        QCOMPARE(painted(piece, barRect(20, 180)), painted(said, barRect(20, 180)));
        // The label is shortened before that is left out.
        const int width = QFontMetrics(QFont()).horizontalAdvance("Ice aaaaaaa (2/3)");
        piece.setLabel("Ice aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa");
        const QRect end(QPoint(20 + width / 2, 5), QPoint(20 + width, 44));
        LabelledItem other = piece;
        other.setPiece({7, 3, 3});
        QVERIFY(painted(piece, barRect(20, 28 + width)).copy(end) != painted(other, barRect(20, 28 + width)).copy(end));
        piece.setLabel("");
        QCOMPARE(painted(piece, barRect(20, 180)),
                 painted(LabelledItem("(2/3)", 0, 1000, orange, true), barRect(20, 180)));
    }

    void ofAnEndlessLabelNoMoreIsLookedAtThanIsShown()
    {
        const LabelledItem endless(QString(10'000'000, 'x'), 0, 1000, orange, true);
        const LabelledItem longer(QString(1000, 'x'), 0, 1000, orange, true);
        QElapsedTimer clock;
        clock.start();
        QCOMPARE(painted(endless, barRect(20, 180)), painted(longer, barRect(20, 180)));
        QVERIFY2(clock.elapsed() < 100, qPrintable(QString::number(clock.elapsed())));
    }

    void theLabelStaysInsideTheBar()
    {
        const LabelledItem item("A label that is much longer than its bar", 0, 1000, orange, true);
        const QImage image = painted(item, barRect(20, 120));
        QCOMPARE(areaOtherThan(image, Qt::white), QRect(20, 4, 100, 42));
        const QRect text = areaOtherThan(image, orange, QRect(21, 5, 98, 40));
        QVERIFY(!text.isEmpty());
        QVERIFY2(text.left() >= 24 && text.right() <= 115,
                 qPrintable(QString("%1 to %2").arg(text.left()).arg(text.right())));
        QVERIFY(text.right() > 80);
    }

    void aLabelTooLongForItsRoomIsNotLeftOutBeforeItMustBe()
    {
        const auto hasText = [&](const QString& label, int width) {
            const QImage image = painted(LabelledItem(label, 0, 1000, orange, true), barRect(20, 20 + width));
            return !areaOtherThan(image, orange, QRect(21, 5, width - 2, 40)).isEmpty();
        };
        QVERIFY(hasText("A long label", 100));
        QVERIFY(!hasText("A long label", 20));
        QVERIFY(hasText("i", 20));
        QVERIFY(!hasText("", 100));
    }

    void theLabelIsBlackOrWhiteByTheColourOfTheBar_data()
    {
        QTest::addColumn<QColor>("bar");
        QTest::addColumn<QColor>("text");
        QTest::newRow("orange") << orange << QColor(Qt::black);
        QTest::newRow("navy") << navy << QColor(Qt::white);
        QTest::newRow("black") << QColor(Qt::black) << QColor(Qt::white);
        QTest::newRow("white") << QColor(Qt::white) << QColor(Qt::black);
        QTest::newRow("yellow") << QColor(Qt::yellow) << QColor(Qt::black);
        QTest::newRow("blue") << QColor(Qt::blue) << QColor(Qt::white);
    }
    void theLabelIsBlackOrWhiteByTheColourOfTheBar()
    {
        QFETCH(QColor, bar);
        QFETCH(QColor, text);
        QCOMPARE(LabelledItem::readableTextColor(bar), text);

        const QImage image = painted(LabelledItem("MMMMMMMM", 0, 1000, bar, true), barRect(20, 180));
        QVERIFY(pixelsLike(image, text) > 50);
        const QColor other = text == QColor(Qt::black) ? Qt::white : Qt::black;
        if (bar != other)
            QCOMPARE(pixelsLike(image, other), 0);
    }

    void theTextOnATranslucentBarIsForWhatIsSeen()
    {
        QColor faint = navy;
        faint.setAlpha(20);
        const QImage image = painted(LabelledItem("MMMMMMMM", 0, 1000, faint, true), barRect(20, 180));
        QVERIFY(pixelsLike(image, Qt::black) > 50);
    }

    void severalLinesAreShownAsOne()
    {
        QCOMPARE(painted(LabelledItem("a\n b", 0, 1000, orange, true), barRect(20, 180)),
                 painted(LabelledItem("a b", 0, 1000, orange, true), barRect(20, 180)));
    }

    void anItemWithoutDurationIsADiamondOnALine()
    {
        const QImage image = painted(LabelledItem("x", 0, 0, orange, true), barRect(100, 100));
        const QRect area = areaOtherThan(image, Qt::white);
        QCOMPARE(area.center().x(), 100);
        QVERIFY2(area.width() >= 11 && area.width() <= 13, qPrintable(QString::number(area.width())));
        QCOMPARE(area.top(), 4);
        QCOMPARE(area.bottom(), 45);
        QCOMPARE(image.pixelColor(100, 25), orange);
        QCOMPARE(image.pixelColor(100, 6), orange);
        QCOMPARE(image.pixelColor(95, 15), QColor(Qt::white));
    }

    void aBarTooNarrowToBeSeenIsWidened()
    {
        for (const int end : {100, 101, 102, 103}) {
            const QImage image = painted(LabelledItem("x", 0, 100, orange, true), barRect(100, end));
            QCOMPARE(areaOtherThan(image, Qt::white), QRect(100, 4, 3, 42));
            QCOMPARE(image.pixelColor(101, 25), orange);
        }
    }

    void whatIsLeftOfABarAtTheEdgeOfTheCellIsNoMarker()
    {
        const LabelledItem item("x", 0, 1000, orange, true);
        const LabelledItem open("x", 0, -1, orange, true);
        const auto area = [](const QImage& image) { return areaOtherThan(image, Qt::white); };
        QCOMPARE(area(painted(item, barRect(-500, 1))), QRect(0, 4, 1, 42));
        QCOMPARE(area(painted(item, barRect(-500, 2))), QRect(0, 4, 2, 42));
        QCOMPARE(area(painted(item, barRect(198, 900))), QRect(198, 4, 1, 42));
        QCOMPARE(area(painted(open, barRect(198, 197))), QRect(198, 4, 2, 42));
        // Something is to be seen of a short one that begins right there.
        QCOMPARE(area(painted(item, barRect(0, 0))), QRect(0, 4, 1, 42));
        QCOMPARE(area(painted(item, barRect(199, 900))), QRect(199, 4, 1, 42));
        // An item without duration is a marker wherever it is.
        QVERIFY(area(painted(LabelledItem("x", 0, 0, orange, true), barRect(0, 0))).width() > 3);
    }

    void nothingIsPaintedOfItemsOutsideTheCell()
    {
        const LabelledItem item("x", 0, 1000, orange, true);
        for (const QRect& rect : {barRect(-500, -20), barRect(-5, -1), barRect(201, 300), barRect(900, 1000)})
            QVERIFY(areaOtherThan(painted(item, rect), Qt::white).isEmpty());
        const LabelledItem instant("x", 0, 0, orange, true);
        for (const QRect& rect : {barRect(-1, -1), barRect(-900, -900), barRect(200, 200), barRect(900, 900)})
            QVERIFY(areaOtherThan(painted(instant, rect), Qt::white).isEmpty());
    }

    void anOpenEndedItemReachesToTheEndOfTheCell()
    {
        const LabelledItem item("", 0, -1, orange, true);
        QCOMPARE(areaOtherThan(painted(item, barRect(50, 49)), Qt::white), QRect(50, 4, 150, 42));
        QCOMPARE(areaOtherThan(painted(item, barRect(-500, -501)), Qt::white), QRect(0, 4, 200, 42));
        QVERIFY(areaOtherThan(painted(item, barRect(300, 299)), Qt::white).isEmpty());
    }

    void anOpenEndedItemShowsByAnArrowThatItGoesOn()
    {
        const LabelledItem open("", 0, -1, orange, true);
        const QImage image = painted(open, barRect(50, 49));
        QCOMPARE(image.pixel(195, 25), orange.darker(180).rgb());
        QCOMPARE(image.pixelColor(185, 25), orange);
        const QImage closed = painted(LabelledItem("", 0, 1000, orange, true), barRect(50, 200));
        QCOMPARE(closed.pixelColor(195, 25), orange);
        // It is seen on any colour.
        for (const QColor& color : {QColor(Qt::black), QColor(140, 15, 15), QColor(Qt::white), QColor(Qt::gray)}) {
            const QImage other = painted(LabelledItem("", 0, -1, color, true), barRect(50, 49));
            QVERIFY(difference(other.pixelColor(195, 25), color) > 60);
        }
        // No room for it.
        const QImage narrow = painted(open, barRect(190, 189));
        QCOMPARE(narrow.pixelColor(196, 25), orange);
    }

    void thePainterComesBackAsItWas()
    {
        QImage image(cell.size(), QImage::Format_RGB32);
        QPainter painter(&image);
        painter.setPen(QPen(Qt::magenta, 7));
        painter.setBrush(Qt::cyan);
        QStyleOptionViewItem option;
        for (const QRect& rect : {barRect(20, 120), barRect(100, 100), barRect(-50, -20)}) {
            option.rect = rect;
            LabelledItem("x", 0, 10, orange, true).paint(&painter, option, QModelIndex(), true);
            QCOMPARE(painter.pen(), QPen(Qt::magenta, 7));
            QCOMPARE(painter.brush(), QBrush(Qt::cyan));
            QVERIFY(!painter.testRenderHint(QPainter::Antialiasing));
        }
    }

    void theLabelIsKept()
    {
        LabelledItem item("x", 5, 6, orange, false);
        QCOMPARE(item.label(), "x");
        QCOMPARE(item.startTime(), 5);
        QCOMPARE(item.duration(), 6);
        QVERIFY(!item.isEditable());
        item.setLabel("y");
        QCOMPARE(item.label(), "y");
    }
};

QTEST_MAIN(TestLabelledItem)
#include "tst_labelled_item.moc"
