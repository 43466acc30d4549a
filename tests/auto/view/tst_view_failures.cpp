#include "auto/view/recording_handlers.h"
#include "support/input.h"
#include "support/recording_logger.h"

#include <QDrag>
#include <QDragEnterEvent>
#include <QMimeData>
#include <QRegularExpression>
#include <QTest>

#include <stdexcept>

using namespace VeskTimeline;

namespace {

/// A model whose answers to the view can be made to fail.
class FailingModel : public TimelineModel
{
public:
    int newTrack(const QString& text)
    {
        return insertTrack(rootTrack()->id(), -1, std::make_unique<Track>(text))->id();
    }
    int newItem(int trackId, qint64 start, int duration)
    {
        return addItem(trackId, std::make_unique<Item>(start, duration, Qt::red, true), false);
    }

    QVariant data(const QModelIndex& index, int role) const override
    {
        if (isDataFailing)
            throw QStringLiteral("no data");
        if (unknownTrackId != -1 && index.column() == 1 && role == Qt::DisplayRole)
            return unknownTrackId;
        return TimelineModel::data(index, role);
    }
    void setItemStartTime(Track& track, Item& item, qint64 time) override
    {
        failIfAsked();
        TimelineModel::setItemStartTime(track, item, time);
    }
    void setItemDuration(Track& track, Item& item, int duration) override
    {
        failIfAsked();
        TimelineModel::setItemDuration(track, item, duration);
    }
    void removeItem(int itemId) override
    {
        failIfAsked();
        TimelineModel::removeItem(itemId);
    }
    void copyToClipboard(const QVector<int>& ids) override
    {
        failIfAsked();
        TimelineModel::copyToClipboard(ids);
    }
    bool canMoveItem(const Item& item, qint64 start) const override
    {
        failIfAsked();
        return TimelineModel::canMoveItem(item, start);
    }
    bool canDropItem(const Item& item, int trackId, qint64 start) const override
    {
        failIfAsked();
        return TimelineModel::canDropItem(item, trackId, start);
    }
    bool canResizeItem(const Item& item, qint64 start, int duration) const override
    {
        failIfAsked();
        return TimelineModel::canResizeItem(item, start, duration);
    }
    void onInsertTrack(const QModelIndex& /*index*/) override { failIfAsked(); }

    void failIfAsked() const
    {
        if (isFailing)
            throw std::runtime_error("not now");
    }

    bool isFailing = false;
    bool isDataFailing = false;
    int unknownTrackId = -1;
};

/// A view over such a model: track A with an item from second 100 to 200, B with insert button.
struct FailingFixture
{
    RecordingLogger logger;
    FailingModel model;
    TimelineView view;
    int trackA = model.newTrack(QStringLiteral("A"));
    int trackB = model.newTrack(QStringLiteral("B"));
    int itemId = model.newItem(trackA, ViewFixture::at(100), 100'000);

    FailingFixture()
    {
        model.track(trackB)->setInsertButton(true);
        view.setModel(&model);
        view.setItemDelegate(new ItemDelegate(&view));
        view.setRange(ViewFixture::origin, ViewFixture::origin + 3'600'000);
        view.setCurrentTime(ViewFixture::origin);
        view.resize(1000, 300);
        view.show();
        QCoreApplication::processEvents();
    }
    int middle(int trackId) const { return view.visualRect(view.indexOfTrackRow(trackId, 1)).center().y(); }
    QPoint onItem() const { return {view.toPixel(ViewFixture::at(150)), middle(trackA)}; }
    QPoint onEdge() const { return {view.toPixel(ViewFixture::at(200)) - 3, middle(trackA)}; }
    QPoint onInsertButton() const { return view.visualRect(view.indexOfTrackRow(trackB, 0)).topRight(); }
    QStringList errors() const { return logger.messages(Hox::Error); }
};

} // namespace

class TestViewFailures : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(".?")); }

    void whatAHandlerThrowsIsLoggedWithTheEventsSignature_data();
    void whatAHandlerThrowsIsLoggedWithTheEventsSignature();
    void somethingElseThanATextIsLoggedAsFailed();
    void dragEventsLetNothingOut();
    void aModelThatFailsDuringGesturesLetsNothingOut();
    void aModelThatFailsAtEveryQuestionLetsNothingOut();
    void aModelThatFailsWhilePaintingLetsNothingOut();
    void anUnknownTrackUnderTheMouseEndsInTheArrowSilently();
};

void TestViewFailures::whatAHandlerThrowsIsLoggedWithTheEventsSignature_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("signature");
    const auto add = [](const char* name, QEvent::Type type) {
        QTest::newRow(name) << static_cast<int>(type) << QStringLiteral("VeskTimeline::TimelineView::%1(").arg(name);
    };
    add("mousePressEvent", QEvent::MouseButtonPress);
    add("mouseReleaseEvent", QEvent::MouseButtonRelease);
    add("mouseDoubleClickEvent", QEvent::MouseButtonDblClick);
    add("mouseMoveEvent", QEvent::MouseMove);
    add("keyPressEvent", QEvent::KeyPress);
}

void TestViewFailures::whatAHandlerThrowsIsLoggedWithTheEventsSignature()
{
    QFETCH(int, type);
    QFETCH(QString, signature);
    FailingFixture f;
    RecordingHandlers handlers(f.view);
    handlers.calls.onCall = [] { throw QStringLiteral("the reason"); };
    if (type == QEvent::KeyPress)
        Input::key(&f.view, Qt::Key_Left);
    else
        Input::mouse(f.view.viewport(), static_cast<QEvent::Type>(type), f.onItem(), Qt::LeftButton, Qt::LeftButton);
    QCOMPARE(handlers.calls.names().size(), 1);
    QCOMPARE(f.errors().size(), 1);
    QVERIFY2(f.errors().first().contains(signature), qPrintable(f.errors().first()));
    QVERIFY2(f.errors().first().endsWith(QStringLiteral(") the reason")), qPrintable(f.errors().first()));
    QCOMPARE(f.logger.entries().back().logger, QStringLiteral("Timeline.TimelineView"));
    handlers.calls.onCall = nullptr;
}

void TestViewFailures::somethingElseThanATextIsLoggedAsFailed()
{
    FailingFixture f;
    RecordingHandlers handlers(f.view);
    handlers.calls.onCall = [] { throw 7; };
    Input::press(&f.view, f.onItem());
    QCOMPARE(f.errors().size(), 1);
    QVERIFY2(f.errors().first().endsWith(QStringLiteral(") failed")), qPrintable(f.errors().first()));
    handlers.calls.onCall = nullptr;
}

void TestViewFailures::dragEventsLetNothingOut()
{
    FailingFixture f;
    RecordingHandlers handlers(f.view);
    handlers.calls.onCall = [] { throw QStringLiteral("the reason"); };
    const QMimeData data;
    QDragEnterEvent enter(QPoint(5, 5), Qt::MoveAction, &data, Qt::LeftButton, Qt::NoModifier);
    QDragMoveEvent move(QPoint(5, 5), Qt::MoveAction, &data, Qt::LeftButton, Qt::NoModifier);
    QDragLeaveEvent leave;
    QDropEvent drop(QPointF(5, 5), Qt::MoveAction, &data, Qt::LeftButton, Qt::NoModifier);
    (f.view.*&OpenView::dragEnterEvent)(&enter);
    (f.view.*&OpenView::dragMoveEvent)(&move);
    (f.view.*&OpenView::dragLeaveEvent)(&leave);
    (f.view.*&OpenView::dropEvent)(&drop);
    QCOMPARE(handlers.calls.names(), (QStringList{"drag.enter", "drag.dragMove", "drag.leave", "drag.drop"}));
    QCOMPARE(f.errors().size(), 4);
    handlers.calls.onCall = nullptr;
}

void TestViewFailures::aModelThatFailsDuringGesturesLetsNothingOut()
{
    FailingFixture f;
    const auto failing = [&f](const auto& gesture) {
        f.model.isFailing = true;
        gesture();
        f.model.isFailing = false;
    };
    Input::press(&f.view, f.onItem());
    failing([&] { Input::move(&f.view, f.onItem() + QPoint(60, 0), Qt::LeftButton); });
    failing([&] { Input::release(&f.view, f.onItem() + QPoint(60, 0)); });
    QCOMPARE(f.model.item(f.itemId)->startTime(), ViewFixture::at(100));

    Input::move(&f.view, f.onEdge());
    QCOMPARE(f.view.cursor().shape(), Qt::SizeHorCursor);
    Input::press(&f.view, f.onEdge());
    failing([&] { Input::move(&f.view, f.onEdge() + QPoint(60, 0), Qt::LeftButton); });
    Input::release(&f.view, f.onEdge());
    QCOMPARE(f.model.item(f.itemId)->duration(), 100'000);

    f.view.selectItem(f.itemId, true);
    failing([&] { Input::key(&f.view, Qt::Key_Right); });
    failing([&] { Input::key(&f.view, Qt::Key_C, Qt::ControlModifier); });
    failing([&] { Input::key(&f.view, Qt::Key_Delete); });
    QCOMPARE(f.model.item(f.itemId)->startTime(), ViewFixture::at(100));
    QVERIFY(!f.errors().isEmpty());
}

void TestViewFailures::aModelThatFailsAtEveryQuestionLetsNothingOut()
{
    FailingFixture f;
    f.view.header()->setHoverVisible(false);
    const QList<QPoint> positions{f.onItem(), f.onEdge(), f.onInsertButton(), QPoint(50, f.middle(f.trackA))};
    f.model.isFailing = true;
    f.model.isDataFailing = true;
    for (const QPoint& pos : positions) {
        Input::click(&f.view, pos);
        Input::mouse(f.view.viewport(), QEvent::MouseButtonDblClick, pos, Qt::LeftButton, Qt::LeftButton);
        Input::click(&f.view, pos, Qt::RightButton);
        Input::move(&f.view, pos);
        Input::wheel(&f.view, pos, -120);
    }
    for (const int key : {Qt::Key_Left, Qt::Key_Escape, Qt::Key_Delete})
        Input::key(&f.view, key);
    f.model.isFailing = false;
    f.model.isDataFailing = false;
    // The view goes on as if nothing had been.
    Input::click(&f.view, f.onItem());
    QCOMPARE(f.view.selectedItemIds(), QList<int>{f.itemId});
}

void TestViewFailures::aModelThatFailsWhilePaintingLetsNothingOut()
{
    FailingFixture f;
    const QImage before = f.view.viewport()->grab().toImage();
    f.model.isDataFailing = true;
    QVERIFY(f.view.viewport()->grab().toImage() != before);
    f.model.isDataFailing = false;
    // Each name cell, and each time cell in words of its own.
    QCOMPARE(f.errors().size(), 4);
    QCOMPARE(f.errors().filter(QRegularExpression("ItemDelegate::paintNameCell\\(.*\\) const no data$")).size(), 2);
    QCOMPARE(f.errors().filter(QRegularExpression("^ItemDelegate::paint -> CATCH$")).size(), 2);
    // Nothing of Qt's painting is left half done.
    QCOMPARE(f.view.viewport()->grab().toImage(), before);
}

void TestViewFailures::anUnknownTrackUnderTheMouseEndsInTheArrowSilently()
{
    FailingFixture f;
    Input::move(&f.view, f.onEdge());
    QCOMPARE(f.view.cursor().shape(), Qt::SizeHorCursor);
    f.logger.clear();
    f.model.unknownTrackId = 4711;
    Input::move(&f.view, f.onEdge() - QPoint(1, 0));
    QCOMPARE(f.view.cursor().shape(), Qt::ArrowCursor);
    QVERIFY(f.logger.entries().empty());
    f.model.unknownTrackId = -1;
}

QTEST_MAIN(TestViewFailures)
#include "tst_view_failures.moc"
