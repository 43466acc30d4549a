#include <VeskTimeline/item_delegate.h>
#include <VeskTimeline/timeline_view.h>
#include <VeskTimelineKit/labelled_item.h>
#include <VeskTimelineKit/labelled_item_tool_tips.h>
#include <VeskTimelineKit/standard_timeline_model.h>

#include <QHelpEvent>
#include <QRegularExpression>
#include <QTest>
#include <QTextDocument>
#include <QToolTip>

using namespace VeskTimeline;
using namespace VeskTimeline::Kit;

namespace {

// What is read of the rich text.
QString plain(const QString& richText)
{
    QTextDocument document;
    document.setHtml(richText);
    return document.toPlainText();
}

LabelledItem sampleItem(int duration)
{
    return {"Landing", 1000, duration, Qt::red, true};
}

} // namespace

class TestLabelledItemToolTips : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // The offscreen platform remarks on windows that limit their size or come to the front.
    void init()
    {
        QTest::failOnWarning(QRegularExpression("^(?!This plugin does not support (propagateSizeHints|raise))"));
    }

    void theToolTipSaysAllAboutTheItem()
    {
        LabelledItem item = sampleItem(2 * 86'400'000 + 3'723'004);
        item.setDescription("Two\nlines");
        QCOMPARE(plain(item.toolTip("Moon")), "Landing\nStart\n1970-01-01T00:00:01Z\nEnd\n1970-01-03T01:02:04.004Z\n"
                                              "Duration\n2 d 01:02:03.004\nTrack\nMoon\n\nTwo\nlines");
    }

    void timesAreWrittenAsTheOwnerWants()
    {
        const auto formatter = [](qint64 time) { return QString("at %1").arg(time); };
        const QString text = plain(sampleItem(2000).toolTip("Moon", formatter));
        QVERIFY2(text.contains("Start\nat 1000\nEnd\nat 3000\n"), qPrintable(text));
    }

    void anOpenItemHasNoDuration()
    {
        const QString text = plain(sampleItem(-1).toolTip("Moon"));
        QVERIFY2(text.contains("End\nopen"), qPrintable(text));
        QVERIFY(!text.contains("Duration"));
    }

    void nothingOfTheItemIsTakenForMarkUp()
    {
        LabelledItem item("<b>1 & 2</b>", 0, 1, Qt::red, true);
        item.setDescription("<img src='x'>");
        const QString text = plain(item.toolTip("<i>T</i>"));
        QVERIFY(text.startsWith("<b>1 & 2</b>\n"));
        QVERIFY(text.contains("<i>T</i>"));
        QVERIFY(text.endsWith("<img src='x'>"));
    }

    void longTextsAreCut()
    {
        LabelledItem item(QString(5000, 'l'), 0, 1, Qt::red, true);
        item.setDescription(QString(1'000'000, 'd'));
        const QString text = item.toolTip(QString(5000, 't'));
        QVERIFY2(text.size() < 3000, qPrintable(QString::number(text.size())));
    }

    void thePieceOfALongItemSaysWhichItIs()
    {
        LabelledItem item = sampleItem(5);
        item.setPiece({7, 2, 3});
        QCOMPARE(item.label(), "Landing (2/3)");
        QCOMPARE(item.plainLabel(), "Landing");
        QVERIFY(plain(item.toolTip("Moon")).startsWith("Landing (2/3)\n"));
    }

    void aPieceSaysWhenTheWholeItemIs()
    {
        StandardTimelineModel model;
        Document document;
        document.track({"A"}).items = {{"long", -1000, 5'000'000'000, {}}};
        model.setDocument(document);
        QCOMPARE(plain(model.itemToolTip(1)),
                 "long (2/3)\nStart\n1969-12-31T23:59:59Z\nEnd\n1970-02-27T20:53:19Z\nDuration\n57 d "
                 "20:53:20\nTrack\nA\n");
    }

    void aCopyHasTheToolTipOfItsItem()
    {
        TimelineView view;
        StandardTimelineModel model(&view);
        view.setModel(&model);
        view.setItemDelegate(new ItemDelegate(&view));
        Document document;
        document.track({"A"}).items = {{"own", 60'000, 600'000, {}}};
        document.track({"A", "B"}).items = {{"copied", 60'000, 60'000, {}}};
        model.setDocument(document);
        model.setCopyItemIds(1, {1});
        view.setRange(0, 3'600'000);
        view.resize(1200, 400);
        view.show();
        const LabelledItemToolTips toolTips(&view);
        QCoreApplication::processEvents();

        const int y = view.visualRect(model.index(0, 1)).center().y();
        const QString text = plain(toolTips.textAt({view.toPixel(90'000), y}));
        QVERIFY2(text.startsWith("copied\n") && text.endsWith("Track\nB\n"), qPrintable(text));
        QVERIFY(plain(toolTips.textAt({view.toPixel(300'000), y})).startsWith("own\n"));
    }

    void theViewShowsTheToolTipOfTheItemUnderTheMouse()
    {
        TimelineView view;
        StandardTimelineModel model(&view);
        view.setModel(&model);
        view.setItemDelegate(new ItemDelegate(&view));
        Document document;
        document.track({"A"}).items = {
            {"bar", 60'000, 60'000, {}}, {"mark", 180'000, 0, {}}, {"open", 300'000, -1, {}}};
        model.setDocument(document);
        view.setRange(0, 3'600'000);
        view.resize(1200, 400);
        view.show();
        LabelledItemToolTips toolTips(&view);
        QCoreApplication::processEvents();

        const int y = view.visualRect(model.index(0, 1)).center().y();
        const auto textAt = [&](qint64 time, int offset = 0) {
            return plain(toolTips.textAt({view.toPixel(time) + offset, y})).section('\n', 0, 0);
        };
        QCOMPARE(textAt(90'000), "bar");
        QCOMPARE(textAt(150'000), "");
        QCOMPARE(textAt(180'000, 3), "mark");
        QCOMPARE(textAt(180'000, -3), "mark");
        QCOMPARE(textAt(180'000, 9), "");
        QCOMPARE(textAt(340'000), "open");
        QCOMPARE(toolTips.textAt({5, y}), "");
        QCOMPARE(model.itemToolTip(0), toolTips.textAt({view.toPixel(90'000), y}));

        const QPoint pos(view.toPixel(90'000), y);
        QHelpEvent event(QEvent::ToolTip, pos, view.viewport()->mapToGlobal(pos));
        QCoreApplication::sendEvent(view.viewport(), &event);
        QCOMPARE(QToolTip::text(), model.itemToolTip(0));

        toolTips.setTimeFormatter([](qint64 time) { return QString("at %1").arg(time); });
        QCoreApplication::sendEvent(view.viewport(), &event);
        QVERIFY2(plain(QToolTip::text()).contains("at 60000"), qPrintable(QToolTip::text()));
    }
};

QTEST_MAIN(TestLabelledItemToolTips)
#include "tst_labelled_item_tool_tips.moc"
