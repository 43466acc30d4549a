#include <VeskTimeline/timeline_header_view.h>
#include <VeskTimeline/timeline_view.h>
#include <VeskTimeline/timeline_widget.h>
#include <VeskTimelineKit/standard_timeline_model.h>

#include <QApplication>
#include <QClipboard>
#include <QDialog>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <QStatusBar>
#include <QTest>
#include <QUndoStack>

#include <workbench/elided_label.h>
#include <workbench/main_window.h>
#include <workbench/navigation.h>
#include <workbench/ruler_time.h>
#include <workbench/status_line.h>
#include <workbench/view_settings.h>
#include <workbench/warnings_button.h>

using namespace VeskTimeline;
using namespace VeskTimeline::Kit;
using Workbench::MainWindow;
using Workbench::StatusLine;

namespace {

constexpr qint64 minute = 60'000;
constexpr qint64 hour = 60 * minute;

Document sampleDocument()
{
    Document document;
    document.track({"Crew", "Left/Right"}).items = {{"a", 0, hour, {}}, {"b", 2 * hour, 90'500, {}}};
    document.track({"Crew"}).items = {{"open", 3 * hour, DocumentItem::openEnded, {}}};
    document.track({"Far"}).items = {{"last", 23 * hour, hour, {}}};
    return document;
}

/// A window with three tracks on screen.
struct Fixture
{
    Fixture()
    {
        window.showDocument(sampleDocument(), {});
        window.show();
        QCoreApplication::processEvents();
        window.navigation()->setWindow(0, Zoom::OneDay);
        QCoreApplication::processEvents();
    }

    TimelineView* view() { return window.timeline()->view(); }
    QString text(const char* name)
    {
        QCoreApplication::processEvents();
        return window.findChild<Workbench::ElidedLabel*>(name)->text();
    }
    QPoint place(const QStringList& path, qint64 time)
    {
        QModelIndex index;
        for (const QString& name : path) {
            for (int row = 0; row < window.model()->rowCount(index); ++row) {
                const QModelIndex child = window.model()->index(row, 0, index);
                if (window.model()->track(child.siblingAtColumn(1).data().toInt())->text() == name) {
                    index = child;
                    break;
                }
            }
        }
        return {view()->toPixel(time), view()->visualRect(index).center().y()};
    }

    MainWindow window;
};

} // namespace

class TestStatusLine : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        QTest::failOnWarning(QRegularExpression("^(?!This plugin does not support (propagateSizeHints|raise))"));
    }

    void thePrecisionIsThatOfAPixel()
    {
        using Workbench::precisionOf;
        using Workbench::rulerTimeText;
        using Workbench::TimePrecision;
        QCOMPARE(precisionOf(60'000), TimePrecision::Minutes);
        QCOMPARE(precisionOf(59'999), TimePrecision::Seconds);
        QCOMPARE(precisionOf(1000), TimePrecision::Seconds);
        QCOMPARE(precisionOf(999), TimePrecision::Milliseconds);
        QCOMPARE(rulerTimeText(61'005, TimePrecision::Minutes), "1970-01-01 00:01Z");
        QCOMPARE(rulerTimeText(61'005, TimePrecision::Seconds), "1970-01-01 00:01:01Z");
        QCOMPARE(rulerTimeText(61'005, TimePrecision::Milliseconds), "1970-01-01 00:01:01.005Z");
        QCOMPARE(rulerTimeText(-1, TimePrecision::Milliseconds), "1969-12-31 23:59:59.999Z");
        QCOMPARE(rulerTimeText(61'000), "1970-01-01 00:01:01Z");
        QCOMPARE(rulerTimeText(61'005), "1970-01-01 00:01:01.005Z");
    }

    void thePointerIsToldAsFineAsTheZoomIs()
    {
        Fixture f;
        const auto expected = [&f](const QPoint& pos) { return f.window.timeline()->header()->toTime(pos.x()); };
        QPoint pos = f.place({"Crew", "Left/Right"}, hour + minute);
        QTest::mouseMove(f.view()->viewport(), pos);
        QTRY_COMPARE(f.text("pointerStatus"),
                     Workbench::rulerTimeText(expected(pos), Workbench::TimePrecision::Minutes) +
                         ", Crew/Left\\/Right");
        f.window.navigation()->setWindow(0, Zoom::FifteenSeconds);
        QCOMPARE(f.text("pointerStatus"),
                 Workbench::rulerTimeText(expected(pos), Workbench::TimePrecision::Milliseconds) +
                     ", Crew/Left\\/Right");
    }

    void overTheRulerThereIsATimeAndOverTheNamesATrack()
    {
        Fixture f;
        QTest::mouseMove(f.view()->viewport(), QPoint(20, f.place({"Far"}, 0).y()));
        QTRY_COMPARE(f.text("pointerStatus"), "Far");
        const int x = f.place({"Far"}, 5 * hour).x();
        QTest::mouseMove(f.window.timeline()->header()->viewport(), QPoint(x, 10));
        QTRY_VERIFY(QRegularExpression("^1970-01-01 0[45]:[0-9]{2}Z$").match(f.text("pointerStatus")).hasMatch());
        QTest::mouseMove(f.view()->viewport(), QPoint(x, f.view()->viewport()->height() - 2));
        QTRY_VERIFY(!f.text("pointerStatus").contains("Far"));
        QEvent leave(QEvent::Leave);
        QCoreApplication::sendEvent(f.view()->viewport(), &leave);
        QCOMPARE(f.text("pointerStatus"), "");
    }

    void timesAreInTheZoneOfTheRuler()
    {
        Fixture f;
        f.view()->selectItem(0, true);
        f.window.viewSettings()->setZone('B');
        const QString selection = f.text("selectionStatus");
        const QString content = f.text("contentStatus");
        f.window.viewSettings()->setZone('Z');
        QCOMPARE(selection, "1 selected, open-ended, 1970-01-01 05:00:00B");
        QVERIFY2(content.endsWith(", 1970-01-01 02:00:00B – 1970-01-02 02:00:00B"), qPrintable(content));
    }

    void theSelectionIsSummedUp_data()
    {
        QTest::addColumn<QStringList>("labels");
        QTest::addColumn<QString>("expected");
        QTest::newRow("none") << QStringList() << "";
        QTest::newRow("one") << QStringList{"b"}
                             << "1 selected, 0:01:30.5, 1970-01-01 02:00:00Z – 1970-01-01 02:01:30.500Z";
        QTest::newRow("two") << QStringList{"a", "b"}
                             << "2 selected, 1:01:30.5 in total, 1970-01-01 00:00:00Z – 1970-01-01 02:01:30.500Z";
        QTest::newRow("open") << QStringList{"open"} << "1 selected, open-ended, 1970-01-01 03:00:00Z";
        QTest::newRow("open and another")
            << QStringList{"a", "open"}
            << "2 selected, 1:00:00 in total, 1 open-ended, 1970-01-01 00:00:00Z – 1970-01-01 03:00:00Z";
    }
    void theSelectionIsSummedUp()
    {
        QFETCH(QStringList, labels);
        QFETCH(QString, expected);
        Fixture f;
        QList<int> ids;
        for (const int id : f.window.model()->itemIds()) {
            if (labels.contains(f.window.model()->itemLabel(id)))
                ids.append(id);
        }
        QCOMPARE(ids.size(), labels.size());
        f.view()->selectItems(ids, true);
        QCOMPARE(f.text("selectionStatus"), expected);
        QCOMPARE(f.window.findChild<Workbench::ElidedLabel*>("selectionStatus")->isVisible(), !expected.isEmpty());
    }

    void aLongItemCountsOnceAndWhole()
    {
        Fixture f;
        constexpr qint64 long60Days = 60 * 24 * hour;
        const int id = f.window.model()->addItem(1, {"long", 0, long60Days, {}});
        f.view()->selectItems({id, id + 1}, true);
        QCOMPARE(f.text("selectionStatus"), "1 selected, 60d 0:00:00, 1970-01-01 00:00:00Z – 1970-03-02 00:00:00Z");
    }

    void editsAndUndoAreFollowed()
    {
        Fixture f;
        QCOMPARE(f.text("contentStatus"), "3 tracks, 4 items, 1970-01-01 00:00:00Z – 1970-01-02 00:00:00Z");
        const int id = f.window.model()->addItem(1, {"new", -hour, minute, {}});
        f.view()->selectItem(id, true);
        QCOMPARE(f.text("contentStatus"), "3 tracks, 5 items, 1969-12-31 23:00:00Z – 1970-01-02 00:00:00Z");
        f.window.model()->retimeItem(id, -hour, 2 * minute);
        QVERIFY(f.text("selectionStatus").startsWith("1 selected, 0:02:00, "));
        f.window.model()->undoStack()->setIndex(0);
        QCOMPARE(f.text("contentStatus"), "3 tracks, 4 items, 1970-01-01 00:00:00Z – 1970-01-02 00:00:00Z");
        QCOMPARE(f.text("selectionStatus"), "");
        f.window.model()->addTrack("X");
        QVERIFY(f.text("contentStatus").startsWith("4 tracks, 4 items, "));
    }

    void aTextWithoutRoomIsCutAndTheWindowMayBeNarrow()
    {
        Workbench::ElidedLabel label;
        label.showText("line\n" + QString(300, 'x'));
        QVERIFY(!label.text().contains('\n'));
        QVERIFY(label.sizeHint().width() > 1000);
        QCOMPARE(label.minimumSizeHint().width(), 0);
        label.resize(60, 20);
        const QImage cut = label.grab().toImage();
        label.showText("line " + QString(200, 'x'));
        QCOMPARE(label.grab().toImage(), cut);
        label.showText("line");
        QVERIFY(label.grab().toImage() != cut);
    }

    void warningsAreListedAndCopied()
    {
        MainWindow window;
        window.show();
        auto* const button = window.findChild<Workbench::WarningsButton*>();
        QVERIFY(!button->isVisible());
        Document document = sampleDocument();
        document.addWarning("a.csv:1: first");
        document.addWarning("a.csv:2: second");
        window.showDocument(document, {});
        QVERIFY(button->isVisible());
        QCOMPARE(button->text(), "2 warnings");
        QTest::mouseClick(button, Qt::LeftButton);
        auto* const dialog = window.findChild<QDialog*>("warningsDialog");
        QVERIFY(dialog && dialog->isVisible() && !dialog->isModal());
        QCOMPARE(dialog->windowTitle(), "2 warnings");
        QCOMPARE(dialog->findChild<QPlainTextEdit*>()->toPlainText(), "a.csv:1: first\na.csv:2: second");
        QTest::mouseClick(dialog->findChild<QPushButton*>("copyWarnings"), Qt::LeftButton);
        QCOMPARE(QApplication::clipboard()->text(), "a.csv:1: first\na.csv:2: second");
        QTest::mouseClick(button, Qt::LeftButton);
        QCOMPARE(window.findChildren<QDialog*>("warningsDialog").size(), 1);

        Document other;
        other.addWarning("b.csv:7: third");
        window.showDocument(other, {});
        QCOMPARE(button->text(), "1 warning");
        QCOMPARE(dialog->findChild<QPlainTextEdit*>()->toPlainText(), "b.csv:7: third");
        window.showDocument(Document(), {});
        QVERIFY(!button->isVisible());
        QTRY_VERIFY(!window.findChild<QDialog*>("warningsDialog"));
    }
};

QTEST_MAIN(TestStatusLine)
#include "tst_status_line.moc"
