#include "support/input.h"

#include <VeskTimeline/item_delegate.h>
#include <VeskTimeline/timeline_view.h>
#include <VeskTimelineKit/labelled_item.h>
#include <VeskTimelineKit/standard_timeline_model.h>
#include <VeskWidgets/vesk_message_dialog_new.h>

#include <QAbstractItemModelTester>
#include <QPushButton>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>

#include <functional>

using namespace VeskTimeline;
using namespace VeskTimeline::Kit;

namespace {

// The offscreen platform remarks on every window that limits its size.
const QRegularExpression unexpectedWarning("^(?!This plugin does not support propagateSizeHints)");

/// Lets the tests see the caches.
class Model : public StandardTimelineModel
{
public:
    explicit Model(TimelineView* view = nullptr) : StandardTimelineModel(view)
    {
        new QAbstractItemModelTester(this, QAbstractItemModelTester::FailureReportingMode::QtTest, this);
    }

    using StandardTimelineModel::m_clipboard;
    using StandardTimelineModel::m_itemCache;
    using StandardTimelineModel::m_trackCache;
};

DocumentItem item(const QString& label, qint64 start, int duration, const QColor& color = {}, bool isEditable = true)
{
    return {label, start, duration, color, isEditable};
}

// A (late 2000+10, early 1000+10), A > B (inner 5+5), C (c 7+0)
Document sampleDocument()
{
    Document document;
    document.track({"A"}).items = {item("late", 2000, 10), item("early", 1000, 10, Qt::red, false)};
    document.track({"A", "B"}).items = {item("inner", 5, 5)};
    document.track({"C"}).items = {item("c", 7, 0)};
    return document;
}

// Names in row order, indented by their level.
QStringList rows(const QAbstractItemModel& model, const QModelIndex& parent = {}, int level = 0)
{
    QStringList texts;
    for (int row = 0; row < model.rowCount(parent); ++row) {
        const QModelIndex index = model.index(row, 0, parent);
        texts.append(QString(level, '-') + index.data().toString());
        texts.append(rows(model, index, level + 1));
    }
    return texts;
}

QString textOf(const Document& document)
{
    QString text;
    for (const DocumentTrack& track : document.tracks()) {
        text += QString("%1 %2\n").arg(track.path.join('/'), track.color.name());
        for (const DocumentItem& entry : track.items) {
            text += QString("  '%1' %2+%3 %4 %5 '%6'")
                        .arg(entry.label)
                        .arg(entry.start)
                        .arg(entry.duration)
                        .arg(entry.color.isValid() ? entry.color.name() : "none")
                        .arg(entry.isEditable)
                        .arg(entry.description);
            for (auto attribute = entry.attributes.begin(); attribute != entry.attributes.end(); ++attribute)
                text += QString(" %1=%2").arg(attribute.key(), attribute.value());
            text += '\n';
        }
    }
    return text;
}

QString thrownBy(const std::function<void()>& body)
{
    try {
        body();
    } catch (const QString& text) {
        return text;
    }
    return "nothing thrown";
}

} // namespace

class TestStandardTimelineModel : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(unexpectedWarning); }

    void aDocumentIsTakenInOneReset()
    {
        Model model;
        QSignalSpy resets(&model, &QAbstractItemModel::modelReset);
        QSignalSpy insertions(&model, &QAbstractItemModel::rowsInserted);
        QSignalSpy changes(&model, &QAbstractItemModel::dataChanged);
        model.setDocument(sampleDocument());
        QCOMPARE(resets.count(), 1);
        QCOMPARE(insertions.count(), 0);
        QCOMPARE(changes.count(), 0);
        QCOMPARE(rows(model), (QStringList{"A", "-B", "C"}));
        QCOMPARE(model.trackCount(), 3);
    }

    void itemsAreInTheOrderOfTheirStartsUnderNewIds()
    {
        Model model;
        model.setDocument(sampleDocument());
        QCOMPARE(model.itemIds(), (QVector<int>{0, 1, 2, 3}));
        QStringList labels;
        for (const int id : model.itemIds())
            labels.append(model.itemLabel(id));
        QCOMPARE(labels, (QStringList{"early", "late", "inner", "c"}));
        QCOMPARE(model.track(1)->items().front().get(), model.item(0));
        QCOMPARE(model.item(0)->parentTrackId(), 1);
        QCOMPARE(model.item(2)->parentTrackId(), 2);
        QCOMPARE(model.track(2)->parentId(), 1);
        QCOMPARE(model.item(0)->startTime(), 1000);
        QCOMPARE(model.item(0)->duration(), 10);
        QCOMPARE(model.item(0)->color(), QColor(Qt::red));
        QVERIFY(!model.item(0)->isEditable());
        QVERIFY(model.item(1)->isEditable());
    }

    void itemsThatStartTogetherKeepTheirOrder()
    {
        Document document;
        for (int i = 0; i < 50; ++i)
            document.track({"A"}).items.push_back(item(QString::number(i), i % 2, 1));
        Model model;
        model.setDocument(document);
        for (int i = 0; i < 25; ++i) {
            QCOMPARE(model.itemLabel(i), QString::number(2 * i));
            QCOMPARE(model.itemLabel(25 + i), QString::number(2 * i + 1));
        }
    }

    void itemsWithoutColourTakeTheColourOfTheirTrack()
    {
        Model model;
        model.setDocument(sampleDocument());
        QCOMPARE(model.item(1)->color(), StandardTimelineModel::trackColor(0));
        QCOMPARE(model.item(2)->color(), StandardTimelineModel::trackColor(1));
        QCOMPARE(model.item(3)->color(), StandardTimelineModel::trackColor(2));
        QVERIFY(StandardTimelineModel::trackColor(0) != StandardTimelineModel::trackColor(1));
        QVERIFY(StandardTimelineModel::trackColor(1000).isValid());
    }

    void timesAreNotCutWhileSnappingIsOn()
    {
        Document document;
        document.track({"A"}).items = {item("x", 1234, 567), item("open", 2345, DocumentItem::openEnded)};
        Model model;
        model.setSnapEnabled(true);
        model.setDocument(document);
        QCOMPARE(model.item(0)->startTime(), 1234);
        QCOMPARE(model.item(0)->duration(), 567);
        QCOMPARE(model.item(1)->duration(), -1);
    }

    void anotherDocumentReplacesTheFirst()
    {
        Model model;
        model.setDocument(sampleDocument());
        model.copyToClipboard({0});
        Document other;
        other.track({"X"}).items = {item("x", 1, 1)};
        model.setDocument(other);
        QCOMPARE(rows(model), QStringList{"X"});
        QCOMPARE(model.itemIds(), QVector<int>{0});
        QCOMPARE(model.track(1)->text(), "X");
        QCOMPARE(model.m_trackCache.size(), std::size_t(2));
        QVERIFY(model.isClipboardEmpty());
    }

    void everyTrackHasBothButtons()
    {
        Model model;
        model.setDocument(sampleDocument());
        for (const int id : {1, 2, 3}) {
            QVERIFY(model.track(id)->hasInsertButton());
            QVERIFY(model.track(id)->hasRemoveButton());
        }
    }

    void insertingPutsAnEmptyTrackBelowTheRow()
    {
        Model model;
        model.setDocument(sampleDocument());
        QSignalSpy insertions(&model, &QAbstractItemModel::rowsInserted);
        model.onInsertTrack(model.index(0, 0));
        QCOMPARE(rows(model), (QStringList{"A", "-B", "New track", "C"}));
        QCOMPARE(insertions.count(), 1);
        QCOMPARE(insertions.at(0).at(0).toModelIndex(), QModelIndex());
        QCOMPARE(insertions.at(0).at(1).toInt(), 1);

        model.onInsertTrack(model.index(0, 1));
        model.onInsertTrack(model.index(0, 0, model.index(0, 0)));
        QCOMPARE(rows(model), (QStringList{"A", "-B", "-New track", "New track 2", "New track", "C"}));
        QCOMPARE(insertions.at(2).at(0).toModelIndex(), model.index(0, 0));

        const Track* const added = model.track(4);
        QCOMPARE(added->text(), "New track");
        QVERIFY(added->hasInsertButton());
        QVERIFY(added->hasRemoveButton());
        QVERIFY(!added->hasItems());
    }

    void removingTakesTheSubtreeAndForgetsItsIds()
    {
        Model model;
        model.setDocument(sampleDocument());
        model.rootTrack()->addCopyItemIds({0, 2, 3});
        QSignalSpy aboutToRemove(&model, &QAbstractItemModel::rowsAboutToBeRemoved);
        QSignalSpy removals(&model, &QAbstractItemModel::rowsRemoved);
        model.onRemoveTrack(model.index(0, 1));
        QCOMPARE(rows(model), QStringList{"C"});
        QCOMPARE(aboutToRemove.count(), 1);
        QCOMPARE(removals.count(), 1);
        QCOMPARE(removals.at(0).at(0).toModelIndex(), QModelIndex());
        QCOMPARE(removals.at(0).at(1).toInt(), 0);
        QCOMPARE(removals.at(0).at(2).toInt(), 0);
        QCOMPARE(model.itemIds(), QVector<int>{3});
        QCOMPARE(model.rootTrack()->copyItemIds(), QSet<int>{3});
        QCOMPARE(model.trackCount(), 1);
        QCOMPARE(thrownBy([&] { model.track(2); }), "Model: track with id 2 not found in cache");
    }

    void removingAnInnerTrackLeavesItsParent()
    {
        Model model;
        model.setDocument(sampleDocument());
        QSignalSpy removals(&model, &QAbstractItemModel::rowsRemoved);
        model.removeTrack(2);
        QCOMPARE(rows(model), (QStringList{"A", "C"}));
        QCOMPARE(removals.at(0).at(0).toModelIndex(), model.index(0, 0));
        QCOMPARE(model.itemIds(), (QVector<int>{0, 1, 3}));
    }

    void removingAnUnknownTrackThrowsAndTellsNobody()
    {
        Model model;
        model.setDocument(sampleDocument());
        QSignalSpy aboutToRemove(&model, &QAbstractItemModel::rowsAboutToBeRemoved);
        QCOMPARE(thrownBy([&] { model.removeTrack(99); }), "Model: track with id 99 not found in cache");
        QCOMPARE(aboutToRemove.count(), 0);
        QCOMPARE(rows(model), (QStringList{"A", "-B", "C"}));
    }

    void buttonsOfNoRowDoNothing()
    {
        Model model;
        model.setDocument(sampleDocument());
        QSignalSpy insertions(&model, &QAbstractItemModel::rowsAboutToBeInserted);
        QSignalSpy removals(&model, &QAbstractItemModel::rowsAboutToBeRemoved);
        model.onInsertTrack({});
        model.onRemoveTrack({});
        QCOMPARE(insertions.count(), 0);
        QCOMPARE(removals.count(), 0);
    }

    void copiesKeepTheirLabels()
    {
        Model model;
        model.setDocument(sampleDocument());
        model.copyToClipboard({1, 0});
        model.pasteFromClipboard(5000);
        QCOMPARE(model.itemIds().size(), 6);
        QCOMPARE(model.itemLabel(4), "late");
        QCOMPARE(model.item(4)->startTime(), 6000);
        QCOMPARE(model.item(4)->color(), StandardTimelineModel::trackColor(0));
        QCOMPARE(model.itemLabel(5), "early");
        QCOMPARE(model.item(5)->startTime(), 5000);
        QCOMPARE(model.item(5)->parentTrackId(), 1);
        QVERIFY(model.item(5)->isEditable());
    }

    void cutItemsComeBackWithTheirLabels()
    {
        Model model;
        model.setDocument(sampleDocument());
        model.cutToClipboard({2});
        QCOMPARE(model.itemIds(), (QVector<int>{0, 1, 3}));
        model.pasteFromClipboard(5);
        QCOMPARE(model.itemLabel(4), "inner");
        QCOMPARE(model.item(4)->parentTrackId(), 2);
    }

    void copyingAnUnknownItemThrows()
    {
        Model model;
        model.setDocument(sampleDocument());
        QCOMPARE(thrownBy([&] { model.copyToClipboard({0, 77}); }), "Model: item with id 77 not found in cache");
    }

    void aNewLabelIsAnnouncedOnce()
    {
        Model model;
        model.setDocument(sampleDocument());
        QSignalSpy changes(&model, &QAbstractItemModel::dataChanged);
        model.setItemLabel(2, "other");
        QCOMPARE(model.itemLabel(2), "other");
        QCOMPARE(changes.count(), 1);
        const QModelIndex row = model.index(0, 0, model.index(0, 0));
        QCOMPARE(changes.at(0).at(0).toModelIndex(), row);
        QCOMPARE(changes.at(0).at(1).toModelIndex(), row.siblingAtColumn(1));
        model.setItemLabel(2, "other");
        QCOMPARE(changes.count(), 1);
        QCOMPARE(thrownBy([&] { model.setItemLabel(9, "x"); }), "Model: item with id 9 not found in cache");
        QCOMPARE(thrownBy([&] { model.itemLabel(9); }), "Model: const item with id 9 not found in cache");
    }

    void theDocumentComesBackAsItWasGiven()
    {
        Document document;
        document.track({"A", "B"}).items = {{"x", -5, 7, Qt::red, false, "text", {{"key", "value"}}},
                                            {"y", 3, DocumentItem::openEnded, {}},
                                            {"z", 3, 0, {}}};
        document.track({"A", "Empty"});
        document.track({"C"}).color = Qt::blue;
        Model model;
        model.setDocument(document);
        const Document back = model.document();
        QCOMPARE(textOf(back), textOf(document));
        QVERIFY(back.warnings().isEmpty());
    }

    void anItemLongerThanABarIsShownInPiecesAndComesBackWhole()
    {
        constexpr qint64 longest = 2'147'483'647;
        Document document;
        document.track({"A"}).items = {{"ice", -1000, 2 * longest + 1, Qt::red, true, "cold", {{"k", "v"}}},
                                       {"short", 10, 5, {}},
                                       {"fits", 20, longest, {}}};
        QCOMPARE(document.itemCount(), 3);
        QCOMPARE(document.longItemWarnings().size(), 1);
        Model model;
        QCOMPARE(model.documentItemCount(), 0);
        model.setDocument(document);
        QCOMPARE(model.itemCount(), 5);
        QCOMPARE(model.documentItemCount(), 3);
        QStringList labels;
        qint64 end = -1000;
        for (const int id : model.itemIds()) {
            labels.append(model.itemLabel(id));
            if (!model.itemLabel(id).startsWith("ice"))
                continue;
            QCOMPARE(model.item(id)->startTime(), end);
            QVERIFY(model.item(id)->duration() > 0);
            QCOMPARE(model.itemDescription(id), "cold");
            end += model.item(id)->duration();
        }
        QCOMPARE(labels, (QStringList{"ice (1/3)", "short", "fits", "ice (2/3)", "ice (3/3)"}));
        QCOMPARE(end, -1000 + 2 * longest + 1);
        QCOMPARE(textOf(model.document()), textOf(document));
    }

    void anItemIsGivenAsADocumentHasIt()
    {
        const DocumentItem sources[] = {{"own", 5, 7, Qt::red, false, "text", {{"key", "value"}}},
                                        {"plain", 5, DocumentItem::openEnded, {}},
                                        {"long", 5, 5'000'000'000, {}}};
        Model model;
        model.addTrack("A");
        for (const DocumentItem& source : sources) {
            for (const int id : model.addItems(1, {source})) {
                Document document;
                document.track({"A"}).items = {model.documentItem(id)};
                Document expected;
                expected.track({"A"}).items = {source};
                QCOMPARE(textOf(document), textOf(expected));
            }
        }
        QVERIFY_EXCEPTION_THROWN(model.documentItem(99), QString);
    }

    void whatAPieceSaysIsChangedForAll()
    {
        Document document;
        document.track({"A"}).items = {{"ice", 0, 3'000'000'000, {}}};
        Model model;
        model.setDocument(document);
        model.setItemLabel(1, "snow");
        model.setItemDescription(0, "text");
        model.setItemColor(1, Qt::red);
        model.setItemLocked(0, true);
        QCOMPARE(model.itemLabel(0), "snow (1/2)");
        document.track({"A"}).items = {{"snow", 0, 3'000'000'000, Qt::red, false, "text"}};
        QCOMPARE(textOf(model.document()), textOf(document));

        model.retimeItem(1, 500, 7'000'000'000);
        document.track({"A"}).items = {{"snow", 500, 7'000'000'000, Qt::red, false, "text"}};
        QCOMPARE(textOf(model.document()), textOf(document));
        QCOMPARE(model.itemIds(), (QVector<int>{2, 3, 4, 5}));
        model.retimeItem(5, 500, 7);
        document.track({"A"}).items = {{"snow", 500, 7, Qt::red, false, "text"}};
        QCOMPARE(textOf(model.document()), textOf(document));
        QCOMPARE(model.itemLabel(6), "snow");
    }

    void piecesThatNoLongerMeetAreItemsOfTheirOwn()
    {
        Document document;
        document.track({"A"}).items = {{"ice", 0, 7'000'000'000, {}}};
        Model model;
        model.setDocument(document);
        const qint64 piece = model.item(0)->duration();
        model.removeItem(1);
        document.track({"A"}).items = {{"ice", 0, piece, {}}, {"ice", 2 * piece, 7'000'000'000 - 2 * piece, {}}};
        QCOMPARE(textOf(model.document()), textOf(document));
        QVERIFY(!model.canMoveItem(*model.item(0), 5));
        QVERIFY(!model.canDropItem(*model.item(0), 1, 5));
        QVERIFY(!model.canResizeItem(*model.item(0), 0, 5));
    }

    void copiedPiecesAreAnItemOfTheirOwn()
    {
        Document document;
        document.track({"A"}).items = {{"ice", 0, 3'000'000'000, {}}};
        Model model;
        model.setDocument(document);
        model.setSnapEnabled(true);
        model.copyToClipboard({0, 1});
        model.pasteFromClipboard(1000);
        document.track({"A"}).items.push_back({"ice", 1000, 3'000'000'000, {}});
        QCOMPARE(textOf(model.document()), textOf(document));
    }

    void siblingsOfOneNameAreKeptApart()
    {
        Model model;
        model.setDocument(sampleDocument());
        model.renameTrack(3, "A");
        const Document document = model.document();
        QCOMPARE(document.tracks().back().path, QStringList{"A (2)"});
        QCOMPARE(document.itemCount(), 4);
        QCOMPARE(document.warnings(), QStringList{"There are several tracks “A” side by side: one is now “A (2)”"});
    }

    void anotherDocumentCanBeAdded()
    {
        Model model;
        model.setDocument(sampleDocument());
        Document other;
        other.track({"A", "B"}).items = {item("more", 1, 1)};
        other.track({"D"}).items = {item("d", 1, 1)};
        model.addDocument(other);
        Document both = sampleDocument();
        both.merge(other);
        Model expected;
        expected.setDocument(both);
        QCOMPARE(textOf(model.document()), textOf(expected.document()));
    }

    void overlapsAreRefusedByThePolicyOnly()
    {
        Model model;
        model.setDocument(sampleDocument());
        const Item& early = *model.item(0);
        const Item& inner = *model.item(2);
        QVERIFY(model.canMoveItem(early, 1995) && model.canResizeItem(early, 1000, 1001));
        QVERIFY(model.canDropItem(inner, 1, 1000));
        model.setOverlapPolicy(Model::RefuseOverlaps);
        QCOMPARE(model.overlapPolicy(), Model::RefuseOverlaps);
        QVERIFY(!model.canMoveItem(early, 1991));
        QVERIFY(model.canMoveItem(early, 1990));
        QVERIFY(model.canMoveItem(early, 1005));
        QVERIFY(!model.canResizeItem(early, 1000, 1001));
        QVERIFY(model.canResizeItem(early, 1000, 1000));
        QVERIFY(!model.canDropItem(inner, 1, 1009));
        QVERIFY(model.canDropItem(inner, 1, 1010));

        model.copyToClipboard({0});
        QCOMPARE(thrownBy([&] { model.pasteFromClipboard(995); }),
                 "pasteFromClipboard: items would overlap on track 1");
        QCOMPARE(model.itemIds().size(), 4);
        QVERIFY(!model.isClipboardEmpty());
        model.pasteFromClipboard(990);
        QCOMPARE(model.itemIds().size(), 5);
    }

    void selectedItemsMoveAlongButAreNotResizedAlong()
    {
        TimelineView view;
        Model model(&view);
        view.setModel(&model);
        model.setDocument(sampleDocument());
        model.setOverlapPolicy(Model::RefuseOverlaps);
        const Item& early = *model.item(0);
        QVERIFY(!model.canMoveItem(early, 1995));
        view.selectItems({0, 1}, true);
        QVERIFY(model.canMoveItem(early, 1995));
        QVERIFY(!model.canResizeItem(early, 1000, 1001));
        QVERIFY(model.canResizeItem(early, 1000, 1000));
        // One that is not selected moves alone.
        view.selectItems({1}, true);
        QVERIFY(!model.canMoveItem(early, 1995));
    }

    void aDurationBelowTheMinimumIsRefused()
    {
        Model model;
        model.setDocument(sampleDocument());
        model.setMinimumDuration(5);
        QVERIFY(!model.canResizeItem(*model.item(0), 1000, 4));
        QVERIFY(model.canResizeItem(*model.item(0), 1000, 5));
        QVERIFY(!model.canResizeItem(*model.item(0), 1000, -2'000'000'000));
    }

    void theButtonsOfAViewInsertAndRemove()
    {
        TimelineView view;
        Model model(&view);
        view.setModel(&model);
        view.setItemDelegate(new ItemDelegate(&view));
        model.setDocument(sampleDocument());
        view.setRange(0, 3600000);
        view.resize(800, 400);
        view.show();
        QCoreApplication::processEvents();

        const QRect insertCell = view.visualRect(model.index(1, 0));
        Input::click(&view, {insertCell.right() - 10, insertCell.top() + 5});
        QCOMPARE(rows(model), (QStringList{"A", "-B", "C", "New track"}));

        const QRect removeCell = view.visualRect(model.index(0, 0));
        Input::click(&view, {removeCell.right() - 10, removeCell.bottom() - 5});
        auto* const question = view.findChild<VeskWidgets::VeskMessageDialogNew*>();
        QVERIFY(question);
        QCOMPARE(rows(model).size(), 4);
        question->button(QMessageBox::Yes)->click();
        QCOMPARE(rows(model), (QStringList{"C", "New track"}));
    }
};

QTEST_MAIN(TestStandardTimelineModel)
#include "tst_standard_timeline_model.moc"
