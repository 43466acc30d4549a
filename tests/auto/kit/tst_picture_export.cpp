#include "support/file_size_limit.h"
#include "support/text_file.h"

#include <VeskTimeline/item_delegate.h>
#include <VeskTimeline/timeline_header_view.h>
#include <VeskTimeline/timeline_view.h>
#include <VeskTimelineKit/picture_export.h>
#include <VeskTimelineKit/standard_timeline_model.h>

#include <QApplication>
#include <QFile>
#include <QImage>
#include <QPdfWriter>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QXmlStreamReader>

#include <cmath>
#include <zlib.h>

using namespace VeskTimeline;
using namespace VeskTimeline::Kit;

namespace {

constexpr qint64 origin = 1'600'041'600'000; // a midnight, UTC
constexpr qint64 hour = 3'600'000;
constexpr qint64 day = 24 * hour;

struct Svg
{
    QStringList texts;
    int images = 0;
    bool isWellFormed = false;
};

Svg readSvg(const QString& fileName)
{
    Svg svg;
    QXmlStreamReader xml(contentOf(fileName));
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement)
            continue;
        if (xml.name() == u"image")
            ++svg.images;
        if (xml.name() == u"text")
            svg.texts.append(xml.readElementText().trimmed());
    }
    svg.isWellFormed = !xml.hasError();
    return svg;
}

// The content streams of the pages, in order.
QList<QByteArray> pdfPages(const QString& fileName)
{
    QList<QByteArray> pages;
    const QByteArray file = contentOf(fileName);
    for (qsizetype at = file.indexOf("stream\n"); at >= 0; at = file.indexOf("stream\n", at + 1)) {
        if (file.mid(at - 3, 3) == "end")
            continue;
        const qsizetype begin = at + 7;
        const qsizetype end = file.indexOf("endstream", begin);
        QByteArray header(4, '\0');
        const QByteArray packed = file.mid(begin, end - begin);
        uLongf size = 20'000'000;
        QByteArray text(static_cast<qsizetype>(size), '\0');
        if (uncompress(reinterpret_cast<Bytef*>(text.data()), &size, reinterpret_cast<const Bytef*>(packed.constData()),
                       static_cast<uLong>(packed.size())) != Z_OK)
            continue;
        text.truncate(static_cast<qsizetype>(size));
        // Page contents show texts and set matrices; fonts and their maps do not do both.
        if (text.contains(" Tj") && text.contains(" cm"))
            pages.append(text);
    }
    return pages;
}

} // namespace

class TestPictureExport : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        QTest::failOnWarning(QRegularExpression(".?"));
        m_dir.reset(new QTemporaryDir);
        QVERIFY(m_dir->isValid());
        m_model.reset(new StandardTimelineModel);
    }
    void cleanup() { m_model.reset(); }

    void aPictureHasThePixelsOfTheScreen_data()
    {
        QTest::addColumn<int>("factor");
        QTest::newRow("a day") << int(Zoom::OneDay);
        QTest::newRow("two hours") << int(Zoom::TwoHours);
        QTest::newRow("a quarter") << int(Zoom::FifteenMinutes);
    }
    void aPictureHasThePixelsOfTheScreen()
    {
        QFETCH(const int, factor);
        fill();
        TimelineView view;
        view.setModel(m_model.get());
        view.setItemDelegate(new ItemDelegate(&view));
        view.setUniformRowHeights(true);
        view.setPalette(QApplication::palette());
        view.expandAll();
        view.setRange(origin, origin + 2 * day);
        view.setZoomFactor(Zoom::Factor(factor));
        view.setCurrentTime(origin);
        view.header()->setDateTimeFormat(DateTime::DTGVeryShort);
        view.header()->setLimitsVisible(true);
        view.header()->setIndicatorVisible(false);
        view.header()->setHoverVisible(false);
        view.resize(1400, 500);
        view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&view));

        PictureOptions options;
        options.range = TimeSpan{origin, origin + factor};
        options.palette = QApplication::palette();
        options.dateTimeFormat = DateTime::DTGVeryShort;
        options.width = view.viewport()->width();
        const QImage picture = paint(options);
        // Both show the same names in columns of the same width.
        const int names = nameWidth(options);
        view.header()->setMinimumSectionSize(20);
        view.header()->resizeSection(0, names);
        QCoreApplication::processEvents();

        const int ruler = view.header()->height();
        const int timeWidth = options.width - names;
        const QImage shownRuler = view.header()->viewport()->grab().toImage().convertToFormat(picture.format());
        QCOMPARE(picture.copy(names, 0, timeWidth, ruler), shownRuler.copy(names, 0, timeWidth, ruler));
        const QImage shownRows = view.viewport()->grab().toImage().convertToFormat(picture.format());
        const int rows = 4 * 50;
        QCOMPARE(picture.height(), ruler + rows);
        QCOMPARE(picture.copy(names, ruler, timeWidth, rows), shownRows.copy(names, 0, timeWidth, rows));
        // Names stand where the tree puts them; its controls are left out.
        QCOMPARE(picture.copy(40, ruler + 50, 18, 50), shownRows.copy(40, 50, 18, 50));
    }

    void noSeamIsSeenWhereTilesMeet()
    {
        const int track = m_model->addTrack("A");
        m_model->addItem(track, {"long", origin, 20 * day, Qt::red});
        PictureOptions options;
        options.range = TimeSpan{origin - day, origin + 21 * day};
        options.hasLimits = false;
        options.width = 9000;
        const QImage wide = paint(options);
        QCOMPARE(wide.width(), 9000);
        const int y = 50 + 25;
        const int names = nameWidth(options);
        const double pixelsPerDay = (9000 - names) / 22.0;
        // Nothing but the fill and the label, which stands once, between the edges of the bar.
        const int left = names + static_cast<int>(pixelsPerDay) + 60;
        const int right = names + static_cast<int>(21 * pixelsPerDay) - 5;
        for (int x = left; x < right; ++x)
            QCOMPARE(wide.pixelColor(x, y), QColor(Qt::red));
        // A tick a day, each in one column of pixels.
        int ticks = 0;
        for (int x = names + 2; x < 9000; ++x) {
            if (wide.pixelColor(x, 30) != options.palette.color(QPalette::Base))
                ++ticks;
        }
        QVERIFY2(ticks >= 22 && ticks <= 23 * 24, qPrintable(QString::number(ticks)));
        QVERIFY(wide.pixelColor(names + int(pixelsPerDay * 10), 45) != options.palette.color(QPalette::Base));
    }

    void tilesPaintWhatOnePainterPaints()
    {
        // Bars of a few pixels, so that no column looks like the next.
        const int track = m_model->addTrack("A");
        for (int i = 0; i < 720; ++i)
            m_model->addItem(track, {"x", origin + i * hour / 10, hour / 20, QColor::fromHsv(i % 360, 200, 200)});
        PictureOptions options;
        options.range = TimeSpan{origin, origin + 3 * day};
        options.width = 4100;
        const QImage tiled = paint(options);
        // Another way to the same: from the preview, which is painted at once.
        const QImage whole = PictureExport::preview(*m_model, "a.png", options, QSize(5000, 5000));
        QCOMPARE(whole.size(), tiled.size());
        for (int x = 3900; x < 4100; ++x) {
            for (int y = 70; y < tiled.height(); ++y)
                QCOMPARE(tiled.pixel(x, y), whole.pixel(x, y));
        }
    }

    void theScaleMultipliesThePixels()
    {
        fill();
        PictureOptions options;
        options.scale = 2.0;
        const QImage picture = paint(options);
        QCOMPARE(picture.size(), QSize(3200, 2 * (70 + 4 * 50)));
        options.scale = 1.5;
        QCOMPARE(paint(options).size(), QSize(2400, 405));
    }

    void timePerPixelSetsTheWidth()
    {
        fill();
        PictureOptions options;
        options.range = TimeSpan{origin, origin + day};
        options.timePerPixel = 60'000;
        QCOMPARE(paint(options).width(), 1440 + nameWidth(options));
    }

    void coloursAreThoseOfThePalette()
    {
        fill();
        PictureOptions options;
        options.palette = PictureOptions::darkPalette();
        const QImage picture = paint(options);
        QCOMPARE(picture.pixelColor(1, 1), options.palette.color(QPalette::Base));
        QCOMPARE(picture.pixelColor(1599, 71), options.palette.color(QPalette::Base));
        QCOMPARE(picture.pixelColor(1599, 121), options.palette.color(QPalette::AlternateBase));
        QCOMPARE(QApplication::palette().color(QPalette::Base), QColor(Qt::white));
    }

    void anOpenEndedItemRunsToTheEdge()
    {
        const int track = m_model->addTrack("A");
        m_model->addItem(track, {"open", origin, DocumentItem::openEnded, Qt::blue});
        PictureOptions options;
        options.range = TimeSpan{origin - hour, origin + 1000 * day};
        const QImage picture = paint(options);
        QCOMPARE(picture.pixelColor(1597, 70 + 8), QColor(Qt::blue));
        // The arrow.
        QVERIFY(picture.pixelColor(1596, 70 + 24) != QColor(Qt::blue));
    }

    void theIndicatorRunsThroughTheRows()
    {
        fill();
        PictureOptions options;
        options.range = TimeSpan{origin, origin + day};
        options.indicatorTime = origin + 20 * hour;
        const QImage picture = paint(options);
        const int names = nameWidth(options);
        const int x = names + (1600 - names) * 20 / 24;
        QCOMPARE(picture.pixelColor(x, 75), TimelineHeaderView::highlightColor());
        QCOMPARE(picture.pixelColor(x, picture.height() - 1), TimelineHeaderView::highlightColor());
        options.indicatorTime.reset();
        QVERIFY(paint(options).pixelColor(x, 75) != TimelineHeaderView::highlightColor());
    }

    void onlyTheTracksAskedForAreThereWithTheirParentsAsHeadings()
    {
        const QVector<int> tracks = fill();
        PictureOptions options;
        options.trackIds = {tracks.at(2)};
        const QString file = path("a.svg");
        QVERIFY(!writePicture(*m_model, file, options));
        const Svg svg = readSvg(file);
        QVERIFY(svg.texts.contains("Ship"));
        QVERIFY(svg.texts.contains("Hold"));
        QVERIFY(svg.texts.contains("cargo"));
        QVERIFY(!svg.texts.contains("Deck"));
        QVERIFY(!svg.texts.contains("watch"));
        QVERIFY(!svg.texts.contains("voyage"));
        QVERIFY(!svg.texts.contains("Shore"));
    }

    void anSvgHoldsTextsAndNoImages()
    {
        fill();
        const QString file = path("a.svg");
        PictureOptions options;
        options.title = "One & <two>";
        options.trackLabel = "Tracks";
        QVERIFY(!writePicture(*m_model, file, options));
        const Svg svg = readSvg(file);
        QVERIFY(svg.isWellFormed);
        QCOMPARE(svg.images, 0);
        for (const char* const text :
             {"Ship", "Deck", "Hold", "Shore", "voyage", "watch", "cargo", "One & <two>", "Tracks", "1200"})
            QVERIFY2(svg.texts.contains(QLatin1String(text)), text);
        QCOMPARE(svg.texts.count("voyage"), 1);
    }

    void anSvgIsWellFormedWhateverTheNames()
    {
        const QString bad = QString("a") + QChar(1) + QChar(0x1b) + QChar(0xfffe) + QChar(0xffff) + QChar(0xd800) + "z";
        const int track = m_model->addTrack(bad);
        m_model->addItem(track, {bad, origin, hour, {}});
        const QString file = path("a.svg");
        PictureOptions options;
        options.title = bad;
        QVERIFY(!writePicture(*m_model, file, options));
        const Svg svg = readSvg(file);
        QVERIFY(svg.isWellFormed);
        QCOMPARE(svg.texts.filter(QRegularExpression("^a\uFFFD+z$")).size(), 3);
    }

    void tenYearsFitOnOnePicture()
    {
        const int track = m_model->addTrack("A");
        for (int year = 0; year < 10; ++year)
            m_model->addItem(track, {QString::number(year), origin + year * 365 * day, 200 * day, Qt::green});
        const QString file = path("a.svg");
        QVERIFY(!writePicture(*m_model, file));
        const Svg svg = readSvg(file);
        QVERIFY(svg.texts.contains("2021-01-01"));
        QVERIFY(svg.texts.contains("2029-01-01"));
        const QImage picture = paint({});
        const int names = nameWidth({});
        const TimeSpan range = *pictureRange(*m_model);
        for (int year = 0; year < 10; ++year) {
            const double share =
                double(origin + (year * 365 + 150) * day - range.start) / double(range.end - range.start);
            // The fill, or the frame of one of the pieces that such an item is shown in.
            const QColor color = picture.pixelColor(names + static_cast<int>((1600 - names) * share), 70 + 10);
            QVERIFY2(color.red() == 0 && color.green() > 0x80 && color.blue() == 0, qPrintable(color.name()));
        }
    }

    void aPdfHasNamesRulerAndNumberOnEachPage()
    {
        for (int i = 0; i < 30; ++i)
            m_model->addItem(m_model->addTrack(QStringLiteral("Track %1").arg(i)), {"x", origin, hour, Qt::red});
        const QString file = path("a.pdf");
        PictureOptions options;
        options.pages.pagesAcross = 3;
        options.title = "Title";
        const Result<PictureSize> size = PictureExport::size(*m_model, file, options);
        QVERIFY(size.isOk());
        // A4 landscape less 20 mm, at three quarters: 957 pixels less ruler and footer hold 17 rows of 50.
        QCOMPARE(size.value().pages, 2 * 3);
        QVERIFY(!writePicture(*m_model, file, options));
        const QByteArray pdf = contentOf(file);
        QVERIFY(pdf.startsWith("%PDF-"));
        QVERIFY(pdf.contains("/Count 6"));
        QVERIFY(!pdf.contains("/Subtype /Image"));
        QCOMPARE(pdfPages(file).size(), 6);
        QList<qsizetype> texts;
        for (const QByteArray& page : pdfPages(file))
            texts.append(page.count(" Tj"));
        // The names and the footer at least; on the pages below the first there are fewer rows.
        for (int page = 0; page < 3; ++page)
            QVERIFY(texts.at(page) >= 17 + 3 && texts.at(page + 3) >= 13 + 3);
    }

    void pagesCanBeChosen()
    {
        fill();
        PictureOptions options;
        options.pages.timePerPage = 6 * hour;
        options.range = TimeSpan{origin, origin + day};
        options.pages.firstPage = 2;
        options.pages.lastPage = 3;
        const QString file = path("a.pdf");
        QVERIFY(!writePicture(*m_model, file, options));
        QVERIFY(contentOf(file).contains("/Count 2"));
        options.pages.firstPage = 5;
        QCOMPARE(writePicture(*m_model, file, options)->reason, QString("there is no page 5; the last one is 4"));
    }

    void pagesOfADeviceAreItsOwn()
    {
        fill();
        const QString file = path("a.pdf");
        {
            QPdfWriter writer(file);
            writer.setResolution(PictureExport::pageResolution());
            writer.setPageSize(QPageSize(QPageSize::A3));
            PictureOptions options;
            options.pages.pagesAcross = 2;
            PictureExport pages(*m_model, writer, options);
            QCOMPARE(pages.run(), std::nullopt);
        }
        QVERIFY(contentOf(file).contains("/MediaBox [0 0 842"));
        QVERIFY(contentOf(file).contains("/Count 2"));
    }

    void whatCannotBePaintedIsRefused_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<PictureOptions>("options");
        QTest::addColumn<QString>("reason");
        PictureOptions options;
        QTest::newRow("suffix") << "a.gif" << options << "the name of a picture ends in .png, .svg or .pdf";
        options.width = 100'000;
        options.scale = 8.0;
        QTest::newRow("pixels") << "a.png" << options
                                << "the picture would be 800000 by 2160 pixels, more than the 100 million that are "
                                   "possible: choose fewer tracks or less width, or write SVG or PDF";
        options = {};
        options.width = 10;
        QTest::newRow("narrow") << "a.png" << options
                                << "the picture would be 10 pixels wide; it can be from 300 to 1000000";
        options = {};
        options.timePerPixel = 1e-9;
        QTest::newRow("wide") << "a.svg" << options
                              << "the picture would be 1000000000000000 pixels wide; it can be from 300 to 1000000";
        options = {};
        options.scale = std::nan("");
        QTest::newRow("scale") << "a.png" << options << "the scale of a picture is from 0.25 to 8, not nan";
        options = {};
        options.range = TimeSpan{5, 5};
        QTest::newRow("range") << "a.png" << options << "the range ends before it begins, or is too long";
        options = {};
        options.trackIds = {77};
        QTest::newRow("track") << "a.png" << options << "there is no track 77";
        options = {};
        options.pages.timePerPage = 1;
        QTest::newRow("pages") << "a.pdf" << options
                               << "there would be 85962240 by 1 pages, more than the 2000 that are possible: choose "
                                  "more time for each page or fewer tracks";
        options = {};
        options.pages.zoom = 9;
        QTest::newRow("zoom") << "a.pdf" << options << "the size on paper is from 0.1 to 4, not 9";
        options = {};
        options.pages.layout.setPageSize(QPageSize(QSizeF(40, 40), QPageSize::Millimeter));
        QTest::newRow("paper")
            << "a.pdf" << options
            << "a page is too small for a row of the timeline: choose a larger page or a smaller size";
    }
    void whatCannotBePaintedIsRefused()
    {
        QFETCH(const QString, file);
        QFETCH(const PictureOptions, options);
        QFETCH(const QString, reason);
        fill();
        const QString name = path(file);
        const std::optional<FileError> error = writePicture(*m_model, name, options);
        QVERIFY(error);
        QCOMPARE(error->text(), name + ": " + reason);
        QVERIFY(!QFile::exists(name));
        QVERIFY(!PictureExport::size(*m_model, name, options).isOk());
        QVERIFY(PictureExport::preview(*m_model, name, options, QSize(100, 100)).isNull());
    }

    void anEmptyModelIsRefused()
    {
        QCOMPARE(writePicture(*m_model, path("a.png"))->reason, QString("there are no items; say which range to show"));
        PictureOptions options;
        options.range = TimeSpan{0, 1000};
        QCOMPARE(writePicture(*m_model, path("a.png"), options)->reason, QString("there are no tracks"));
    }

    void aFolderThatIsNotThereIsAnErrorOfTheFile_data() { suffixes(); }
    void aFolderThatIsNotThereIsAnErrorOfTheFile()
    {
        QFETCH(const QString, suffix);
        fill();
        const QString file = path("missing/a." + suffix);
        const std::optional<FileError> error = writePicture(*m_model, file);
        QVERIFY(error);
        QCOMPARE(error->file, file);
        QCOMPARE(error->reason, QString("No such file or directory"));
    }

    void onAFullDiskTheOldFileStays_data() { suffixes(); }
    void onAFullDiskTheOldFileStays()
    {
        QFETCH(const QString, suffix);
        fill();
        const QString file = path("a." + suffix);
        writeFile(file, "old");
        std::optional<FileError> error;
        {
            const FileSizeLimit limit(1000);
            error = writePicture(*m_model, file);
        }
        QVERIFY(error);
        QCOMPARE(error->text(), file + ": File too large");
        QCOMPARE(contentOf(file), QByteArray("old"));
    }

    void cancellingKeepsTheOldFile_data() { suffixes(); }
    void cancellingKeepsTheOldFile()
    {
        QFETCH(const QString, suffix);
        fill();
        const QString file = path("a." + suffix);
        QFile old(file);
        QVERIFY(old.open(QIODevice::WriteOnly));
        old.write("old");
        old.close();
        const std::optional<FileError> error = writePicture(*m_model, file, {}, [](double) { return false; });
        QCOMPARE(error->reason, writingCancelledReason());
        QCOMPARE(contentOf(file), QByteArray("old"));
        QCOMPARE(QDir(m_dir->path()).entryList(QDir::Files).size(), 1);
    }

    void anExportInPiecesTellsProgressAndEnd_data() { suffixes(); }
    void anExportInPiecesTellsProgressAndEnd()
    {
        QFETCH(const QString, suffix);
        fill();
        const QString file = path("a." + suffix);
        PictureExport picture(*m_model, file, {});
        QSignalSpy finished(&picture, &PictureExport::finished);
        QSignalSpy progress(&picture, &PictureExport::progressChanged);
        picture.start();
        QCOMPARE(finished.size(), 0);
        QTRY_COMPARE(finished.size(), 1);
        QCOMPARE(picture.error(), std::nullopt);
        QVERIFY(QFile::exists(file));
        QVERIFY(!progress.isEmpty());
        QCOMPARE(progress.last().first().toDouble(), 1.0);
        const QByteArray inPieces = contentOf(file);
        QVERIFY(!writePicture(*m_model, file));
        if (suffix != "pdf") // which says when it was made
            QVERIFY(contentOf(file) == inPieces);
    }

    void aCancelledExportEndsOnce_data() { suffixes(); }
    void aCancelledExportEndsOnce()
    {
        QFETCH(const QString, suffix);
        fill();
        const QString file = path("a." + suffix);
        PictureExport picture(*m_model, file, {});
        QSignalSpy finished(&picture, &PictureExport::finished);
        picture.cancel();
        QCOMPARE(finished.size(), 0);
        picture.start();
        picture.cancel();
        QCOMPARE(finished.size(), 1);
        QCOMPARE(picture.error()->reason, writingCancelledReason());
        QCoreApplication::processEvents();
        picture.cancel();
        QCOMPARE(finished.size(), 1);
        QVERIFY(!QFile::exists(file));
    }

    void cancellingWhileAPictureIsWrittenKeepsTheOldFile()
    {
        fill();
        PictureOptions options;
        options.scale = 8.0; // enough to be at it for a while
        PictureExport picture(*m_model, path("a.png"), options);
        QSignalSpy finished(&picture, &PictureExport::finished);
        connect(&picture, &PictureExport::progressChanged, &picture, [&picture](double share) {
            if (share > 0.94 && share < 1.0)
                QTimer::singleShot(0, &picture, &PictureExport::cancel);
        });
        picture.start();
        QTRY_COMPARE_WITH_TIMEOUT(finished.size(), 1, 20'000);
        QCOMPARE(picture.error()->reason, writingCancelledReason());
        QVERIFY(!QFile::exists(path("a.png")));
    }

    void aChangedModelEndsAnExport()
    {
        fill();
        PictureExport picture(*m_model, path("a.svg"), {});
        QSignalSpy finished(&picture, &PictureExport::finished);
        picture.start();
        m_model->addTrack("new");
        QTRY_COMPARE(finished.size(), 1);
        QCOMPARE(picture.error()->reason, QString("the timeline was changed meanwhile"));
        QVERIFY(!QFile::exists(path("a.svg")));
    }

    void aRefusalOfAnExportInPiecesComesFromTheEventLoop()
    {
        PictureExport picture(*m_model, path("a.png"), {});
        QSignalSpy finished(&picture, &PictureExport::finished);
        picture.start();
        QCOMPARE(finished.size(), 0);
        QTRY_COMPARE(finished.size(), 1);
        QCOMPARE(picture.error()->reason, QString("there are no items; say which range to show"));
    }

    void anExportDestroyedInTheMiddleLeavesNothing()
    {
        fill();
        {
            PictureExport picture(*m_model, path("a.pdf"), {});
            picture.start();
            QCoreApplication::processEvents();
        }
        {
            PictureExport picture(*m_model, path("b.png"), {});
            picture.start();
        }
        QVERIFY(!QFile::exists(path("b.png")));
    }

    void thePictureLeavesViewsAlone()
    {
        fill();
        TimelineView view;
        view.setModel(m_model.get());
        view.setItemDelegate(new ItemDelegate(&view));
        view.setRange(origin, origin + day);
        view.selectItem(0, true);
        const int expanded = view.isExpanded(m_model->index(0, 0));
        const auto widgets = QApplication::topLevelWidgets().size();
        PictureOptions options;
        options.indicatorTime = origin;
        paint(options);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QCOMPARE(view.selectedItemIds(), QList<int>{0});
        QCOMPARE(view.isExpanded(m_model->index(0, 0)), bool(expanded));
        QCOMPARE(view.header()->indicatorTime(), qint64(-1));
        QCOMPARE(QApplication::topLevelWidgets().size(), widgets);
    }

private:
    static void suffixes()
    {
        QTest::addColumn<QString>("suffix");
        for (const char* const suffix : {"png", "svg", "pdf"})
            QTest::newRow(suffix) << QString::fromLatin1(suffix);
    }

    QString path(const QString& name) const { return m_dir->filePath(name); }

    // Ship with Deck and Hold below it, and Shore; their ids.
    QVector<int> fill()
    {
        const int ship = m_model->addTrack("Ship");
        const int deck = m_model->addTrack("Deck", ship);
        const int hold = m_model->addTrack("Hold", ship);
        const int shore = m_model->addTrack("Shore");
        m_model->addItem(ship, {"voyage", origin, 20 * hour, QColor(0x4c, 0x78, 0xa8)});
        m_model->addItem(deck, {"watch", origin + hour / 10, 4 * hour, QColor(0xf5, 0x85, 0x18)});
        m_model->addItem(deck, {"marker", origin + hour / 7, 0, Qt::red});
        m_model->addItem(hold, {"cargo", origin + hour / 9, 10 * hour, Qt::yellow});
        m_model->addItem(shore, {"open", origin + hour / 8, DocumentItem::openEnded, Qt::darkGreen});
        m_model->addItem(shore, {"early", origin - day / 25, hour / 2, Qt::magenta});
        m_model->addItem(shore, {"late", origin + 21 * hour, hour, Qt::cyan});
        return {ship, deck, hold, shore};
    }

    QImage paint(const PictureOptions& options)
    {
        const QString file = path("picture.png");
        if (const std::optional<FileError> error = writePicture(*m_model, file, options))
            qCritical("%s", qPrintable(error->text()));
        return QImage(file);
    }

    // Where the frame between names and time stands in the ruler.
    int nameWidth(PictureOptions options)
    {
        options.indicatorTime.reset();
        const QImage picture = paint(options);
        const QColor text = options.palette.color(QPalette::Text);
        int x = 70;
        while (x < picture.width() && picture.pixelColor(x, 2) != text)
            ++x;
        // The frame is two pixels wide, the last of them the column's last.
        return x + 2;
    }

    std::unique_ptr<QTemporaryDir> m_dir;
    std::unique_ptr<StandardTimelineModel> m_model;
};

QTEST_MAIN(TestPictureExport)
#include "tst_picture_export.moc"
