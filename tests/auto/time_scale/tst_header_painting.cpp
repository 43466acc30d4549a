#include "support/view_fixture.h"

#include <QApplication>
#include <QPainter>
#include <QPolygon>
#include <QRegularExpression>
#include <QTest>

#include <cstdlib>

using namespace VeskTimeline;

namespace {

constexpr int left = ViewFixture::labelWidth;
constexpr int right = left + ViewFixture::secondsVisible - 1;

class OpenHeader : public TimelineHeaderView
{
public:
    using TimelineHeaderView::paintSection;
    using TimelineHeaderView::TimelineHeaderView;
};

QColor textColor()
{
    return QApplication::palette().color(QPalette::Text);
}

QColor baseColor()
{
    return QApplication::palette().color(QPalette::Base);
}

QImage blankImage(const QSize& size, int scale, const QColor& color = Qt::magenta)
{
    QImage image(size * scale, QImage::Format_RGB32);
    image.setDevicePixelRatio(scale);
    image.fill(color);
    return image;
}

/// Part of a picture in logical coordinates.
QImage part(const QImage& image, const QRect& rect)
{
    const int scale = static_cast<int>(image.devicePixelRatio());
    return image.copy(QRect(rect.topLeft() * scale, rect.size() * scale));
}

bool isPlain(const QImage& image, const QRect& rect, const QColor& color)
{
    QImage plain = part(image, rect);
    plain.fill(color);
    return part(image, rect) == plain;
}

/// Whether a colour lies on the way from one to another, neither being reached; so does an antialiased edge.
bool isBlend(const QColor& color, const QColor& from, const QColor& to)
{
    const auto isBetween = [](int value, int a, int b) { return std::min(a, b) <= value && value <= std::max(a, b); };
    return color != from && isBetween(color.red(), from.red(), to.red()) &&
           isBetween(color.green(), from.green(), to.green()) && isBetween(color.blue(), from.blue(), to.blue());
}

/// Rows from a first one on, first and last, in which a vertical line of one pixel at x shows; (-1, -1) for no line,
/// (-2, -2) for one with gaps. In an unscaled picture such a line covers half of either column beside the coordinate.
QPair<int, int> lineRows(const QImage& image, int x, const QColor& lineColor, int firstRow = 0)
{
    QPair<int, int> rows(-1, -1);
    for (int y = firstRow; y < image.height(); ++y) {
        const bool isLine = isBlend(image.pixelColor(x - 1, y), baseColor(), lineColor) &&
                            isBlend(image.pixelColor(x, y), baseColor(), lineColor);
        if (!isLine)
            continue;
        if (rows.first == -1)
            rows.first = y;
        else if (rows.second != y - 1)
            return {-2, -2};
        rows.second = y;
    }
    return rows;
}

/// Where a picture, laid over the background, is found inside a rectangle; a null point when it is nowhere.
QPoint find(const QImage& image, const QPixmap& wanted, const QRect& rect)
{
    QImage overBase = blankImage(wanted.size(), 1, baseColor());
    QPainter(&overBase).drawPixmap(0, 0, wanted);
    for (int y = rect.top(); y <= rect.bottom() + 1 - wanted.height(); ++y) {
        for (int x = rect.left(); x <= rect.right() + 1 - wanted.width(); ++x) {
            if (image.copy(x, y, wanted.width(), wanted.height()) == overBase)
                return {x, y};
        }
    }
    return {};
}

/// Bounds of everything in a rectangle that is not background.
QRect inkBounds(const QImage& image, const QRect& rect)
{
    QRect bounds;
    for (int y = rect.top(); y <= rect.bottom(); ++y) {
        for (int x = rect.left(); x <= rect.right(); ++x) {
            if (image.pixelColor(x, y) != baseColor())
                bounds |= QRect(x, y, 1, 1);
        }
    }
    return bounds;
}

QPen plainPen(qreal width)
{
    return {QBrush(textColor()), width, Qt::SolidLine, Qt::SquareCap, Qt::BevelJoin};
}

void paintTrackLabelPlainly(QPainter* painter, const QRect& rect, const QString& label, const QFont& font)
{
    painter->setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing);
    painter->fillRect(rect, baseColor());
    painter->setPen(plainPen(2.0));
    painter->drawLine(rect.right(), rect.top(), rect.right(), rect.center().y());
    painter->drawLine(rect.right(), rect.center().y(), rect.right(), rect.bottom());
    painter->setFont(font);
    painter->drawText(rect, Qt::AlignHCenter | Qt::AlignVCenter, label);
}

void paintTicksPlainly(QPainter* painter, const QRect& rect, const TimelineHeaderView& header)
{
    painter->setClipRect(rect);
    painter->setFont(header.font());
    painter->setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing);
    painter->fillRect(rect, baseColor());
    painter->setPen(plainPen(1.0));
    const int b = header.isLimitsVisible() ? rect.bottom() - 22 : rect.bottom();
    const int h = (b - rect.top()) / 2;
    for (const Tick& tick : header.majorTicks()) {
        painter->drawText(QRect(tick.pos - 80, rect.top(), 160, h), Qt::AlignHCenter | Qt::AlignVCenter, tick.label);
        if (header.isLimitsVisible())
            painter->drawLine(tick.pos, b, tick.pos, rect.bottom());
        painter->drawLine(tick.pos, rect.top() + h, tick.pos, b);
    }
    for (const Tick& tick : header.mediumTicks())
        painter->drawLine(tick.pos, b - static_cast<int>(2 * h / 3.0), tick.pos, b);
    for (const Tick& tick : header.minorTicks())
        painter->drawLine(tick.pos, b - static_cast<int>(h / 3.0), tick.pos, b);
}

/// A view whose ruler can be painted anywhere. At first nothing but ticks is visible.
struct PaintFixture : ViewFixture
{
    OpenHeader* header = new OpenHeader(&view);

    PaintFixture()
    {
        view.setHeader(header);
        fitWindow();
    }

    /// A window of 90 minutes, which has no ticks; a pixel then shows three seconds.
    void removeTicks()
    {
        view.setDuration(7'200'000);
        view.setZoomFactor(static_cast<Zoom::Factor>(5'400'000));
        QVERIFY(header->majorTicks().isEmpty() && header->minorTicks().isEmpty());
    }
    static qint64 timeAtX(int x) { return origin + 3000 * static_cast<qint64>(x - left); }

    /// The ruler as it is on screen, at a screen's scale.
    QImage picture(int scale = 1) const
    {
        QImage image = blankImage(header->size(), scale);
        header->render(&image);
        return image;
    }
    QImage section(int logicalIndex, const QRect& rect, const QSize& size, int scale = 1) const
    {
        QImage image = blankImage(size, scale);
        QPainter painter(&image);
        header->paintSection(&painter, rect, logicalIndex);
        return image;
    }
};

} // namespace

class TestHeaderPainting : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".?"))); }

    void trackColumnIsPaintedAsThePlainFormDoes_data();
    void trackColumnIsPaintedAsThePlainFormDoes();
    void trackColumnHasABorderAtItsRight();
    void trackLabelIsInTheMiddle();
    void trackLabelIsInTheRulersFont();

    void ticksArePaintedAsThePlainFormDoes_data();
    void ticksArePaintedAsThePlainFormDoes();
    void tickLinesReachFromTheirRowsToTheBaseline();
    void limitsLiftTheBaseline();
    void linesAreSharpOnAScaledScreen();
    void labelsStayInTheirBoxes();
    void nothingIsPaintedOutsideTheSection();
    void thePainterIsLeftAsItWas_data();
    void thePainterIsLeftAsItWas();
    void otherSectionsStayEmpty();
    void withoutAViewThereIsOnlyBackground();

    void limitMarkersAreLineAndTriangle();
    void limitMarkersFollowThePalette();
    void limitMarkersAreRenewedWithThePalette();
    void limitMarkersStandInTheBottomCorners();
    void limitBoxesCoverTheTicks();
    void limitTextsStandBesideTheirMarkers();
    void limitTextsAreTheEndsOfTheWindow();

    void hoverLineRunsFromTopToBottom();
    void hoverTimeIsWrittenInABox();
    void hoverTimeDoesNotPassTheRightEdge();
    void hoverMarkerIsPaintedOnlyWhenItShows();

    void indicatorIsATriangleOverItsApex_data();
    void indicatorIsATriangleOverItsApex();
    void indicatorLineBeginsBelowTheText();
    void indicatorTimeIsWrittenInABox();
    void liveIndicatorHasItsOwnColourAndSize();
    void indicatorLiesOverTheLiveIndicator();
    void indicatorsArePaintedOnlyWhenTheyShow();
};

void TestHeaderPainting::trackColumnIsPaintedAsThePlainFormDoes_data()
{
    QTest::addColumn<QRect>("rect");
    QTest::addColumn<int>("scale");

    QTest::newRow("as on screen") << QRect(0, 0, 200, 50) << 1;
    QTest::newRow("elsewhere") << QRect(17, 9, 251, 70) << 1;
    QTest::newRow("scaled screen") << QRect(0, 0, 200, 50) << 2;
}

void TestHeaderPainting::trackColumnIsPaintedAsThePlainFormDoes()
{
    QFETCH(const QRect, rect);
    QFETCH(const int, scale);

    PaintFixture f;
    f.header->setTrackLabel(QStringLiteral("Tracks"));
    const QImage painted = f.section(0, rect, {300, 90}, scale);
    QImage plain = blankImage({300, 90}, scale);
    {
        QPainter painter(&plain);
        paintTrackLabelPlainly(&painter, rect, QStringLiteral("Tracks"), QFont());
    }
    QCOMPARE(painted, plain);
}

void TestHeaderPainting::trackColumnHasABorderAtItsRight()
{
    const PaintFixture f;
    const QImage image = f.picture();
    QVERIFY(isPlain(image, QRect(0, 0, 198, 50), baseColor()));
    QVERIFY(isPlain(image, QRect(198, 0, 2, 50), textColor()));
}

void TestHeaderPainting::trackLabelIsInTheMiddle()
{
    PaintFixture f;
    f.header->setTrackLabel(QStringLiteral("OOO"));
    const QRect ink = inkBounds(f.picture(), QRect(0, 0, 197, 50));
    QVERIFY(ink.isValid());
    QVERIFY(std::abs(ink.center().x() - 100) <= 2);
    QVERIFY(std::abs(ink.center().y() - 25) <= 3);
}

void TestHeaderPainting::trackLabelIsInTheRulersFont()
{
    PaintFixture f;
    f.header->setTrackLabel(QStringLiteral("OOO"));
    const QRect before = inkBounds(f.picture(), QRect(0, 0, 197, 50));
    f.header->font().setPixelSize(30);
    const QRect after = inkBounds(f.picture(), QRect(0, 0, 197, 50));
    QVERIFY(after.height() > before.height());
    QVERIFY(after.height() > 18);
}

void TestHeaderPainting::ticksArePaintedAsThePlainFormDoes_data()
{
    QTest::addColumn<int>("zoom");
    QTest::addColumn<QRect>("rect");
    QTest::addColumn<int>("scale");

    const QRect onScreen(left, 0, 1800, 50);
    QTest::newRow("half an hour") << int(Zoom::ThirtyMinutes) << onScreen << 1;
    QTest::newRow("fifteen seconds") << int(Zoom::FifteenSeconds) << onScreen << 1;
    QTest::newRow("one hour") << int(Zoom::SixtyMinutes) << onScreen << 1;
    QTest::newRow("scaled screen") << int(Zoom::ThirtyMinutes) << onScreen << 2;
    QTest::newRow("higher and elsewhere") << int(Zoom::ThirtyMinutes) << QRect(300, 7, 1000, 61) << 1;
}

void TestHeaderPainting::ticksArePaintedAsThePlainFormDoes()
{
    QFETCH(const int, zoom);
    QFETCH(const QRect, rect);
    QFETCH(const int, scale);

    PaintFixture f;
    f.view.setZoomFactor(static_cast<Zoom::Factor>(zoom));
    f.header->font().setPixelSize(17);
    QVERIFY(!f.header->minorTicks().isEmpty());
    const QImage painted = f.section(1, rect, {2000, 80}, scale);
    QImage plain = blankImage({2000, 80}, scale);
    {
        QPainter painter(&plain);
        paintTicksPlainly(&painter, rect, *f.header);
    }
    QCOMPARE(painted, plain);
}

void TestHeaderPainting::tickLinesReachFromTheirRowsToTheBaseline()
{
    PaintFixture f;
    // Every 300 s, every 100 s, every 25 s; the window begins at a major tick. A square cap adds half a row.
    const QImage image = f.picture();
    QCOMPARE(lineRows(image, left + 300, textColor(), 20), qMakePair(24 - 1, 49));
    QCOMPARE(lineRows(image, left + 100, textColor()), qMakePair(49 - 16 - 1, 49));
    QCOMPARE(lineRows(image, left + 25, textColor(), 20), qMakePair(49 - 8 - 1, 49));
    QCOMPARE(lineRows(image, left + 125, textColor()), qMakePair(49 - 8 - 1, 49));
    QCOMPARE(lineRows(image, left + 110, textColor()), qMakePair(-1, -1));
}

void TestHeaderPainting::limitsLiftTheBaseline()
{
    PaintFixture f;
    f.header->setLimitsVisible(true);
    QCOMPARE(f.header->height(), 70);
    const QImage image = f.picture();
    // The baseline is in row 47; a cap reaches into the row below a line's end.
    QCOMPARE(lineRows(image, left + 400, textColor()), qMakePair(47 - 15 - 1, 47));
    QCOMPARE(lineRows(image, left + 425, textColor()), qMakePair(47 - 7 - 1, 47));
    // Only major ticks go on through the band of the limits.
    QCOMPARE(lineRows(image, left + 600, textColor(), 20), qMakePair(23 - 1, 69));
    QVERIFY(isPlain(image, QRect(left + 401, 48, 190, 22), baseColor()));
}

void TestHeaderPainting::linesAreSharpOnAScaledScreen()
{
    const PaintFixture f;
    const QImage image = f.picture(2);
    QCOMPARE(image.size(), QSize(4000, 100));
    const auto column = [&](int x, int top) { return image.copy(x, top, 1, 99 - top); };
    const auto isTextColoured = [](const QImage& pixels) {
        QImage plain = pixels;
        plain.fill(textColor());
        return pixels == plain;
    };
    const int x = 2 * (left + 100);
    const int top = 2 * (49 - 16);
    QVERIFY(isTextColoured(column(x - 1, top)));
    QVERIFY(isTextColoured(column(x, top)));
    QCOMPARE(image.pixelColor(x - 2, top + 4), baseColor());
    QCOMPARE(image.pixelColor(x + 1, top + 4), baseColor());
    QCOMPARE(image.pixelColor(x, top - 3), baseColor());
}

void TestHeaderPainting::labelsStayInTheirBoxes()
{
    const PaintFixture f;
    const QImage image = f.picture();
    const QRect box(left + 300 - 80, 0, 160, 24);
    const QRect ink = inkBounds(image, QRect(left + 151, 0, 298, 23));
    QVERIFY(ink.isValid());
    QVERIFY(box.contains(ink));
    QVERIFY(std::abs(ink.center().x() - box.center().x()) <= 3);
    QVERIFY(std::abs(ink.center().y() - box.center().y()) <= 3);
}

void TestHeaderPainting::nothingIsPaintedOutsideTheSection()
{
    PaintFixture f;
    f.header->setLimitsVisible(true);
    f.header->setIndicatorTime(f.view.currentTime());
    f.header->setHoverPosition(left);
    // The first label and the indicator hang over the left edge.
    const QRect rect(left, 10, 1700, 70);
    const QImage image = f.section(1, rect, {2000, 90});
    QVERIFY(!isPlain(image, QRect(left, 10, 10, 70), baseColor()));
    QVERIFY(isPlain(image, QRect(0, 0, left, 90), Qt::magenta));
    QVERIFY(isPlain(image, QRect(0, 0, 2000, 10), Qt::magenta));
    QVERIFY(isPlain(image, QRect(0, 80, 2000, 10), Qt::magenta));
    QVERIFY(isPlain(image, QRect(left + 1700, 0, 100, 90), Qt::magenta));
}

void TestHeaderPainting::thePainterIsLeftAsItWas_data()
{
    QTest::addColumn<int>("section");
    QTest::newRow("track column") << 0;
    QTest::newRow("time column") << 1;
}

void TestHeaderPainting::thePainterIsLeftAsItWas()
{
    QFETCH(const int, section);

    PaintFixture f;
    f.header->setLimitsVisible(true);
    f.header->setIndicatorTime(ViewFixture::at(100));
    f.header->setHoverPosition(500);
    QImage image = blankImage({2000, 70}, 1);
    QPainter painter(&image);
    const QPen pen(Qt::green, 7);
    painter.setPen(pen);
    painter.setBrush(Qt::yellow);
    const QFont font(QStringLiteral("monospace"), 33);
    painter.setFont(font);
    f.header->paintSection(&painter, QRect(left, 0, 1800, 70), section);
    QCOMPARE(painter.pen(), pen);
    QCOMPARE(painter.brush(), QBrush(Qt::yellow));
    QCOMPARE(painter.font(), font);
    QVERIFY(!painter.hasClipping());
    QVERIFY(!painter.testRenderHint(QPainter::Antialiasing));
}

void TestHeaderPainting::otherSectionsStayEmpty()
{
    const PaintFixture f;
    QVERIFY(isPlain(f.section(2, QRect(10, 10, 50, 50), {100, 70}), QRect(0, 0, 100, 70), Qt::magenta));
}

void TestHeaderPainting::withoutAViewThereIsOnlyBackground()
{
    QTest::ignoreMessage(QtWarningMsg,
                         "WARNING: main functionalities are inoperable without a TimelineView as parent.");
    OpenHeader orphan(nullptr);
    orphan.setLimitsVisible(true);
    orphan.setIndicatorTime(5000);
    QImage image = blankImage({100, 70}, 1);
    QPainter painter(&image);
    orphan.paintSection(&painter, QRect(0, 0, 100, 70), 1);
    painter.end();
    QVERIFY(isPlain(image, QRect(0, 0, 100, 70), baseColor()));
}

void TestHeaderPainting::limitMarkersAreLineAndTriangle()
{
    const auto plainMarker = [](int lineX, const QPolygon& triangle) {
        QPixmap marker(11, 11);
        marker.fill(Qt::transparent);
        QPainter painter(&marker);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(textColor());
        painter.setBrush(textColor());
        painter.drawLine(lineX, 0, lineX, 10);
        painter.drawPolygon(triangle);
        painter.end();
        return marker.toImage();
    };
    const QImage min = getMinLimitIndicator().toImage();
    const QImage max = getMaxLimitIndicator().toImage();
    QCOMPARE(min.size(), QSize(11, 11));
    QCOMPARE(max.size(), QSize(11, 11));
    QCOMPARE(min, plainMarker(1, QPolygon({QPoint(4, 5), QPoint(10, 0), QPoint(10, 10)})));
    QCOMPARE(max, plainMarker(10, QPolygon({QPoint(6, 5), QPoint(0, 0), QPoint(0, 10)})));

    QCOMPARE(min.pixelColor(8, 5), textColor());
    QCOMPARE(min.pixelColor(3, 1).alpha(), 0);
    QVERIFY(min.pixelColor(1, 5).alpha() > 0);
    QCOMPARE(max.pixelColor(2, 5), textColor());
    QCOMPARE(max.pixelColor(7, 1).alpha(), 0);
    QVERIFY(max.pixelColor(10, 5).alpha() > 0);
}

void TestHeaderPainting::limitMarkersFollowThePalette()
{
    const QPalette before = QApplication::palette();
    QPalette palette = before;
    palette.setColor(QPalette::Text, QColor(200, 30, 40));
    QApplication::setPalette(palette);
    const QImage marker = getMinLimitIndicator().toImage();
    QApplication::setPalette(before);
    QCOMPARE(marker.pixelColor(8, 5), QColor(200, 30, 40));
}

void TestHeaderPainting::limitMarkersAreRenewedWithThePalette()
{
    PaintFixture f;
    f.removeTicks();
    f.header->setLimitsVisible(true);
    const QPalette before = QApplication::palette();
    QPalette palette = before;
    palette.setColor(QPalette::Text, QColor(200, 30, 40));
    QApplication::setPalette(palette);
    const QImage image = f.picture();
    const QPoint start = find(image, getMinLimitIndicator(), QRect(left, 51, 20, 19));
    const QPoint end = find(image, getMaxLimitIndicator(), QRect(right - 19, 51, 20, 19));
    QApplication::setPalette(before);
    QVERIFY(!start.isNull());
    QVERIFY(!end.isNull());
}

void TestHeaderPainting::limitMarkersStandInTheBottomCorners()
{
    PaintFixture f;
    f.removeTicks();
    f.header->setLimitsVisible(true);
    const QImage image = f.picture();
    QVERIFY(!find(image, getMinLimitIndicator(), QRect(left, 51, 20, 19)).isNull());
    QVERIFY(!find(image, getMaxLimitIndicator(), QRect(right - 19, 51, 20, 19)).isNull());

    f.header->setLimitsVisible(false);
    QVERIFY(isPlain(f.picture(), QRect(left, 0, 1800, 50), baseColor()));
}

void TestHeaderPainting::limitBoxesCoverTheTicks()
{
    PaintFixture f;
    f.header->setLimitsVisible(true);
    // Without texts a box ends just beside its marker.
    f.header->setLimitsDateTimeFormat(static_cast<DateTime::Format>(99));

    f.view.setCurrentTime(ViewFixture::at(300 - 14));
    QImage image = f.picture();
    QVERIFY(isPlain(image, QRect(left + 13, 51, 2, 19), baseColor()));
    QVERIFY(!isPlain(image, QRect(left + 13, 50, 2, 1), baseColor()));

    f.view.setCurrentTime(ViewFixture::at(300 + 14));
    QCOMPARE(f.header->majorTicks().last().pos, right + 1 - 14);
    image = f.picture();
    QVERIFY(isPlain(image, QRect(right + 1 - 15, 51, 2, 19), baseColor()));
    QVERIFY(!isPlain(image, QRect(right + 1 - 15, 50, 2, 1), baseColor()));
    // Between the boxes the ticks go on to the bottom.
    QVERIFY(!isPlain(image, QRect(right + 1 - 15 - 300, 51, 2, 19), baseColor()));
}

void TestHeaderPainting::limitTextsStandBesideTheirMarkers()
{
    PaintFixture f;
    f.removeTicks();
    f.header->setLimitsVisible(true);
    f.header->setLimitsDateTimeFormat(DateTime::Standard);
    const QImage image = f.picture();
    const int width = QFontMetrics(f.header->font()).horizontalAdvance(QStringLiteral("13.09.2020 12:30:00"));

    const QRect start = inkBounds(image, QRect(left + 14, 49, 800, 21));
    QVERIFY(start.left() <= left + 20);
    QVERIFY(std::abs(start.width() - width) <= 6);
    const QRect end = inkBounds(image, QRect(right - 800, 49, 800 - 13, 21));
    QVERIFY(end.right() >= right - 20);
    QVERIFY(std::abs(end.width() - width) <= 6);
    QVERIFY(isPlain(image, QRect(start.right() + 1, 48, end.left() - start.right() - 1, 22), baseColor()));
}

void TestHeaderPainting::limitTextsAreTheEndsOfTheWindow()
{
    PaintFixture f;
    f.removeTicks();
    f.header->setLimitsVisible(true);
    f.header->setLimitsDateTimeFormat(DateTime::Standard);
    const QRect startBox(left, 48, 300, 22);
    const QRect endBox(right - 299, 48, 300, 22);
    const QImage before = f.picture();

    // 13:59:59 becomes 14:00:00, and 14:00:00 becomes 14:00:01.
    f.view.setCurrentTime(f.view.currentTime() + 1000);
    const QImage later = f.picture();
    QVERIFY(part(before, startBox) != part(later, startBox));
    QVERIFY(part(before, endBox) != part(later, endBox));

    // Another zoom moves the end alone.
    f.view.setZoomFactor(static_cast<Zoom::Factor>(5'401'000));
    const QImage wider = f.picture();
    QCOMPARE(part(wider, startBox), part(later, startBox));
    QVERIFY(part(wider, endBox) != part(later, endBox));

    // Back where it began, with the format of the ticks alone changed.
    f.header->setDateTimeFormat(DateTime::ISODate);
    QCOMPARE(part(f.picture(), startBox), part(wider, startBox));
}

void TestHeaderPainting::hoverLineRunsFromTopToBottom()
{
    PaintFixture f;
    f.removeTicks();
    f.header->setHoverTimeVisible(false);
    f.header->setHoverPosition(700);
    QImage image = f.picture();
    QCOMPARE(lineRows(image, 700, TimelineHeaderView::highlightColor()), qMakePair(0, 49));
    QVERIFY(isPlain(image, QRect(left, 0, 699 - left, 50), baseColor()));
    QVERIFY(isPlain(image, QRect(701, 0, right - 700, 50), baseColor()));

    image = f.picture(2);
    QVERIFY(isPlain(image.copy(1399, 1, 2, 98), QRect(0, 0, 1, 49), TimelineHeaderView::highlightColor()));

    f.header->setLimitsVisible(true);
    QCOMPARE(lineRows(f.picture(), 700, TimelineHeaderView::highlightColor()), qMakePair(0, 69));
}

void TestHeaderPainting::hoverTimeIsWrittenInABox()
{
    PaintFixture f;
    f.removeTicks();
    f.header->setHoverDateTimeFormat(DateTime::Standard);
    f.header->setHoverPosition(700);
    const QImage image = f.picture();
    const int width = QFontMetrics(f.header->font()).horizontalAdvance(QStringLiteral("13.09.2020 12:55:00"));
    const QRect ink = inkBounds(image, QRect(left, 0, 1800, 18));
    QVERIFY(std::abs(ink.width() - width) <= 6);
    QVERIFY(std::abs(ink.center().x() - 700) <= 3);
    // The box covers the line; its text is in the text colour.
    QCOMPARE(lineRows(image, 700, TimelineHeaderView::highlightColor()).second, 49);
    QVERIFY(lineRows(image, 700, TimelineHeaderView::highlightColor()).first > 16);

    f.header->setHoverPosition(703);
    QVERIFY(part(f.picture(), QRect(ink.translated(3, 0))) != part(image, ink));
    f.header->setHoverPosition(700);
    QCOMPARE(f.picture(), image);
    f.header->setHoverDateTimeFormat(DateTime::DTGVeryShort);
    QVERIFY(inkBounds(f.picture(), QRect(left, 0, 1800, 18)).width() < ink.width() / 2);
}

void TestHeaderPainting::hoverTimeDoesNotPassTheRightEdge()
{
    PaintFixture f;
    f.removeTicks();
    f.header->setHoverDateTimeFormat(DateTime::Standard);
    f.header->setHoverPosition(right - 3);
    const int width = QFontMetrics(f.header->font()).horizontalAdvance(QStringLiteral("13.09.2020 13:59:48"));
    const QRect ink = inkBounds(f.picture(), QRect(left, 0, 1800, 16));
    QVERIFY(ink.right() <= right);
    QVERIFY(ink.right() >= right - 8);
    QVERIFY(std::abs(ink.width() - width) <= 6);
}

void TestHeaderPainting::hoverMarkerIsPaintedOnlyWhenItShows()
{
    PaintFixture f;
    f.removeTicks();
    const QRect column(left, 0, 1800, 50);
    f.header->setHoverPosition(700);
    QVERIFY(!isPlain(f.picture(), column, baseColor()));
    f.header->setHoverPosition(-1);
    QVERIFY(isPlain(f.picture(), column, baseColor()));
    f.header->setHoverPosition(700);
    f.header->setHoverVisible(false);
    QVERIFY(isPlain(f.picture(), column, baseColor()));
}

void TestHeaderPainting::indicatorIsATriangleOverItsApex_data()
{
    QTest::addColumn<double>("factor");
    QTest::addColumn<bool>("limits");
    QTest::addColumn<int>("size");

    QTest::newRow("default") << 0.5 << false << 25;
    QTest::newRow("truncated") << 0.399 << false << 19;
    QTest::newRow("large") << 0.6 << false << 30;
    QTest::newRow("the limits' band does not count") << 0.5 << true << 24;
    QTest::newRow("truncated above the limits") << 0.79 << true << 37;
}

void TestHeaderPainting::indicatorIsATriangleOverItsApex()
{
    QFETCH(const double, factor);
    QFETCH(const bool, limits);
    QFETCH(const int, size);

    PaintFixture f;
    f.removeTicks();
    f.header->setLimitsVisible(limits);
    f.header->setIndicatorScalingFactor(factor);
    f.header->setIndicatorTime(PaintFixture::timeAtX(700));
    constexpr int scale = 4;
    const QImage image = f.picture(scale);
    const QColor color = TimelineHeaderView::highlightColor();
    const auto at = [&](double x, double y) {
        return image.pixelColor(static_cast<int>(x * scale), static_cast<int>(y * scale));
    };

    const double bottom = limits ? 69 : 49;
    const double height = 0.866 * size;
    for (double share = 0.15; share < 0.96; share += 0.1) {
        const double y = bottom - share * height;
        const double half = share * size / 2.0;
        // The pen adds half a pixel along the slope, so a whole one across.
        QCOMPARE(at(700 - half + 0.5, y), color);
        QCOMPARE(at(700 + half - 0.5, y), color);
        QCOMPARE(at(700 - half - 1.5, y), baseColor());
        QCOMPARE(at(700 + half + 1.5, y), baseColor());
    }
    QCOMPARE(at(700 - size / 4.0, bottom - height + 0.3), color);
    QCOMPARE(at(700 - size / 4.0, bottom - height - 1.2), baseColor());
    QCOMPARE(at(702.5, bottom + 0.7), baseColor());
}

void TestHeaderPainting::indicatorLineBeginsBelowTheText()
{
    PaintFixture f;
    f.removeTicks();
    f.header->setDateTimeFormat(static_cast<DateTime::Format>(99));
    f.header->setIndicatorTime(PaintFixture::timeAtX(700));
    const QImage image = f.picture(2);
    const QColor color = TimelineHeaderView::highlightColor();
    QVERIFY(isPlain(image, QRect(690, 0, 20, 18), baseColor()));
    QVERIFY(isPlain(image.copy(1399, 38, 2, 20), QRect(0, 0, 1, 10), color));
    QCOMPARE(image.pixelColor(1397, 40), baseColor());
    QCOMPARE(image.pixelColor(1402, 40), baseColor());
    QVERIFY(isPlain(image.copy(1399, 58, 2, 38), QRect(0, 0, 1, 19), color));
}

void TestHeaderPainting::indicatorTimeIsWrittenInABox()
{
    PaintFixture f;
    f.header->setDateTimeFormat(DateTime::Standard);
    const int x = left + 300;
    f.header->setIndicatorTime(ViewFixture::at(300));
    const QImage withTick = f.picture();
    const int width = QFontMetrics(f.header->font()).horizontalAdvance(QStringLiteral("13.09.2020 12:35:00"));

    PaintFixture bare;
    bare.removeTicks();
    bare.header->setDateTimeFormat(DateTime::Standard);
    bare.header->setIndicatorTime(ViewFixture::at(300));
    const int bareX = bare.header->indicatorPosition();
    const QRect ink = inkBounds(bare.picture(), QRect(left, 0, 1800, 18));
    QVERIFY(std::abs(ink.width() - width) <= 6);
    QVERIFY(std::abs(ink.center().x() - bareX) <= 3);
    QVERIFY(ink.height() > 4);

    // The tick's label, the same text, is covered by the box: only the indicator's own text is seen.
    const QRect box(ink.translated(x - bareX, 0));
    QCOMPARE(part(withTick, box), part(bare.picture(), ink));
}

void TestHeaderPainting::liveIndicatorHasItsOwnColourAndSize()
{
    PaintFixture f;
    f.removeTicks();
    f.header->setLiveIndicatorColor(QColor(10, 200, 30));
    f.header->setLiveIndicatorScalingFactor(0.9);
    f.header->setLiveIndicatorTime(PaintFixture::timeAtX(900));
    f.header->setLiveIndicatorVisible(true);
    const QImage image = f.picture();
    QCOMPARE(image.pixelColor(900, 45), QColor(10, 200, 30));
    QCOMPARE(image.pixelColor(900 - 15, 20), QColor(10, 200, 30));
    QCOMPARE(image.pixelColor(900 + 14, 20), QColor(10, 200, 30));
}

void TestHeaderPainting::indicatorLiesOverTheLiveIndicator()
{
    PaintFixture f;
    f.removeTicks();
    f.header->setLiveIndicatorColor(QColor(10, 200, 30));
    f.header->setLiveIndicatorTime(PaintFixture::timeAtX(900));
    f.header->setLiveIndicatorVisible(true);
    QCOMPARE(f.picture().pixelColor(900, 40), QColor(10, 200, 30));
    f.header->setIndicatorTime(PaintFixture::timeAtX(900));
    QCOMPARE(f.picture().pixelColor(900, 40), TimelineHeaderView::highlightColor());
}

void TestHeaderPainting::indicatorsArePaintedOnlyWhenTheyShow()
{
    PaintFixture f;
    f.removeTicks();
    const QRect column(left, 0, 1800, 50);
    QVERIFY(isPlain(f.picture(), column, baseColor()));
    f.header->setLiveIndicatorVisible(true);
    QVERIFY(isPlain(f.picture(), column, baseColor()));
    f.header->setLiveIndicatorVisible(false);
    f.header->setLiveIndicatorTime(PaintFixture::timeAtX(900));
    QVERIFY(isPlain(f.picture(), column, baseColor()));
    f.header->setLiveIndicatorVisible(true);
    QVERIFY(!isPlain(f.picture(), column, baseColor()));

    f.header->setLiveIndicatorVisible(false);
    f.header->setIndicatorTime(PaintFixture::timeAtX(900));
    QVERIFY(!isPlain(f.picture(), column, baseColor()));
    f.header->setIndicatorVisible(false);
    QVERIFY(isPlain(f.picture(), column, baseColor()));
}

QTEST_MAIN(TestHeaderPainting)
#include "tst_header_painting.moc"
