// What the gestures cost over a million items, the frames apart: events go to the viewport as the platform sends them,
// and nothing is painted in between. Prints the median over a number of events, or the time of the one event.

#include "gesture_model.h"

#include <VeskTimeline/item_delegate.h>
#include <VeskTimeline/timeline_header_view.h>
#include <VeskTimeline/timeline_view.h>
#include <VeskTimeline/timeline_view_drag_handler.h>
#include <VeskTimeline/timeline_view_selection_handler.h>

#include <QApplication>
#include <QDrag>
#include <QDropEvent>
#include <QElapsedTimer>
#include <QMimeData>
#include <QMouseEvent>
#include <QTest>
#include <QTimer>

#include <algorithm>
#include <functional>

using namespace VeskTimeline;

namespace {

constexpr int million = 1'000'000;
constexpr int bulk = 100'000;

double medianOf(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

void report(const char* what, double milliseconds, double target)
{
    qInfo("%-8s %-44s %9.3f ms   at most %5g ms   %s", QTest::currentDataTag(), what, milliseconds, target,
          milliseconds <= target ? "reached" : "NOT REACHED");
}

/// A view over a model of a million items, the window in the middle of the day.
struct Scene
{
    GestureModel model;
    TimelineView view;

    Scene(GestureModel::Shape shape, Zoom::Factor zoom) : model(shape, million)
    {
        view.setModel(&model);
        view.setItemDelegate(new ItemDelegate(&view));
        view.resize(1920, 1080);
        view.setRange(GestureModel::origin, GestureModel::origin + GestureModel::day);
        view.setZoomFactor(zoom);
        view.setCurrentTime(GestureModel::origin + GestureModel::day / 2);
        view.expandAll();
        view.show();
        QApplication::processEvents();
        model.setSnapEnabled(true);
        // The layout that a hover marker asks for is the frame's; the indexes are made by what first asks the tracks.
        view.header()->setHoverVisible(false);
        model.itemIdsBetween(GestureModel::origin, GestureModel::origin, true, true, true, false);
    }

    const Track& firstTrack() const { return *model.track(model.trackIds().front()); }
    /// An item of the first row that begins in the window.
    const Item& visibleItem() const
    {
        const Items& items = firstTrack().items();
        const qint64 from = view.currentTime() + view.zoomFactor() / 8;
        return **std::lower_bound(items.begin(), items.end(), from,
                                  [](const ItemPtr& item, qint64 time) { return item->startTime() < time; });
    }
    int rowY(std::size_t row) const
    {
        return view.visualRect(view.indexOfTrackRow(model.trackIds()[row], 1)).center().y();
    }

    void send(QEvent::Type type, const QPoint& pos, Qt::MouseButton button, Qt::MouseButtons buttons)
    {
        QMouseEvent event(type, pos, view.viewport()->mapToGlobal(pos), button, buttons, Qt::NoModifier);
        QCoreApplication::sendEvent(view.viewport(), &event);
    }
    double timed(QEvent::Type type, const QPoint& pos, Qt::MouseButton button, Qt::MouseButtons buttons)
    {
        return timed([&] { send(type, pos, button, buttons); });
    }
    static double timed(const std::function<void()>& action)
    {
        QElapsedTimer timer;
        timer.start();
        action();
        return static_cast<double>(timer.nsecsElapsed()) / 1e6;
    }
    double timedKey(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QKeyEvent event(QEvent::KeyPress, key, modifiers);
        return timed([&] { QCoreApplication::sendEvent(&view, &event); });
    }
    /// Selects all items of the first tracks, as many as are asked for.
    void selectBulk()
    {
        QList<int> ids;
        for (const int trackId : model.trackIds()) {
            for (const ItemPtr& item : model.track(trackId)->items()) {
                if (ids.size() < bulk)
                    ids.append(item->id());
            }
        }
        view.selectItems(ids, true);
    }
};

} // namespace

class BenchGestures : public QObject
{
    Q_OBJECT

    using Shape = GestureModel::Shape;

private Q_SLOTS:
    void hover_data() { addShapes(); }
    void hover();
    void drag_data() { addShapes(); }
    void drag();
    void resize_data() { addShapes(); }
    void resize();
    void selection_data() { addShapes(); }
    void selection();
    void bulkChanges_data() { addShapes(); }
    void bulkChanges();
    void drop_data() { addShapes(); }
    void drop();

private:
    static void rubberBand(Scene& scene);
    static void addShapes()
    {
        QTest::addColumn<Shape>("shape");
        QTest::newRow("wide") << Shape::Wide;
        QTest::newRow("deep") << Shape::Deep;
        QTest::newRow("rows") << Shape::Rows;
    }
};

Q_DECLARE_METATYPE(GestureModel::Shape)

void BenchGestures::hover()
{
    QFETCH(Shape, shape);
    Scene scene(shape, Zoom::ThirtyMinutes);
    std::vector<double> times;
    for (int x = 400; x < 1400; x += 7)
        times.push_back(scene.timed(QEvent::MouseMove, {x, scene.rowY(0)}, Qt::NoButton, Qt::NoButton));
    report("hover move with edge detection", medianOf(times), 1);
}

void BenchGestures::drag()
{
    QFETCH(Shape, shape);
    Scene scene(shape, Zoom::ThirtyMinutes);
    const Item& item = scene.visibleItem();
    const int middle = scene.view.toPixel(item.startTime() + item.duration() / 2);
    const int y = scene.rowY(0);
    scene.send(QEvent::MouseMove, {middle, y}, Qt::NoButton, Qt::NoButton);
    // On the crowded track there is an edge everywhere.
    scene.view.setCursor(Qt::ArrowCursor);
    const double press = scene.timed(QEvent::MouseButtonPress, {middle, y}, Qt::LeftButton, Qt::LeftButton);
    std::vector<double> near;
    std::vector<double> far;
    for (int i = 0; i < 100; ++i) {
        near.push_back(scene.timed(QEvent::MouseMove, {middle + i % 4, y + 12 + i % 2}, Qt::NoButton, Qt::LeftButton));
        far.push_back(scene.timed(QEvent::MouseMove, {middle + 200 + i, y}, Qt::NoButton, Qt::LeftButton));
    }
    QCOMPARE(scene.view.dragHandler()->dragItemIds().size(), 1);
    const double snap = Scene::timed([&] { scene.view.dragHandler()->deltaTime(); });
    const double release = scene.timed(QEvent::MouseButtonRelease, {middle + 299, y}, Qt::LeftButton, Qt::NoButton);
    report("press on an item", press, 1);
    report("move of a drag, within the tolerance", medianOf(near), 1);
    report("move of a drag, farther", medianOf(far), 1);
    report("offset for painting it", snap, 1);
    report("release of a drag", release, 1);
}

void BenchGestures::resize()
{
    QFETCH(Shape, shape);
    Scene scene(shape, Zoom::ThirtyMinutes);
    const Item& item = scene.visibleItem();
    const int end = scene.view.toPixel(item.startTime() + item.duration()) - 2;
    const int y = scene.rowY(0);
    scene.send(QEvent::MouseMove, {end, y}, Qt::NoButton, Qt::NoButton);
    QCOMPARE(scene.view.cursor().shape(), Qt::SizeHorCursor);
    const double press = scene.timed(QEvent::MouseButtonPress, {end, y}, Qt::LeftButton, Qt::LeftButton);
    std::vector<double> moves;
    for (int i = 0; i < 100; ++i)
        moves.push_back(scene.timed(QEvent::MouseMove, {end + i % 50, y}, Qt::NoButton, Qt::LeftButton));
    const double release = scene.timed(QEvent::MouseButtonRelease, {end, y}, Qt::LeftButton, Qt::NoButton);
    report("press on an edge", press, 1);
    report("move of a resize", medianOf(moves), 1);
    report("release of a resize", release, 1);
}

void BenchGestures::selection()
{
    QFETCH(Shape, shape);
    Scene scene(shape, Zoom::OneDay);
    report("Control+A", scene.timedKey(Qt::Key_A, Qt::ControlModifier), 20);
    QCOMPARE(scene.view.selectedItemIds().size(), million);
    std::vector<double> times;
    for (int i = 0; i < 100; ++i)
        times.push_back(Scene::timed([&] { scene.view.unselectItem(million / 2 + i * 1000); }));
    report("one of a million unselected", medianOf(times), 1);

    rubberBand(scene);
}

/// A handler that holds a rubber band as a press and a move leave it.
class HeldSelectHandler : public TimelineViewSelectHandler
{
public:
    using TimelineViewSelectHandler::TimelineViewSelectHandler;

    void hold(const QRect& band)
    {
        m_rubberBand = band;
        m_isRubberBandActive = true;
    }
};

void BenchGestures::rubberBand(Scene& scene)
{
    scene.view.setCurrentTime(GestureModel::origin);
    HeldSelectHandler handler(&scene.view);
    scene.view.setSelectHandler(&handler);
    const int left = scene.view.header()->sectionPosition(1);
    const int right = scene.view.toPixel(GestureModel::origin + GestureModel::day);
    const bool isCrowded = scene.model.trackIds().size() == 1;
    handler.hold(QRect(left, 2, (right - left) / (isCrowded ? 10 : 1), scene.view.viewport()->height() - 4));
    scene.model.setEditable(false);
    const QPoint to = handler.rubberBand().bottomRight();
    const double time = scene.timed(QEvent::MouseButtonRelease, to, Qt::LeftButton, Qt::NoButton);
    const QByteArray what = QByteArrayLiteral("rubber band over ") +
                            QByteArray::number(static_cast<int>(scene.view.selectedItemIds().size())) +
                            QByteArrayLiteral(" items");
    report(what.constData(), time, 20);
    scene.view.setSelectHandler(nullptr);
}

void BenchGestures::bulkChanges()
{
    QFETCH(Shape, shape);
    Scene scene(shape, Zoom::ThirtyMinutes);
    scene.model.setSnapEnabled(false);
    scene.selectBulk();
    report("press on one of 100,000 selected items", Scene::timed([&] {
               const int middle = scene.view.toPixel(scene.visibleItem().startTime() + 9000);
               scene.send(QEvent::MouseButtonPress, {middle, scene.rowY(0)}, Qt::LeftButton, Qt::LeftButton);
               scene.send(QEvent::MouseButtonRelease, {middle, scene.rowY(0)}, Qt::LeftButton, Qt::NoButton);
           }),
           300);
    scene.selectBulk();
    report("nudge of 100,000", scene.timedKey(Qt::Key_Right), 300);
    report("copy of 100,000", scene.timedKey(Qt::Key_C, Qt::ControlModifier), 300);
    report("cut of 100,000", scene.timedKey(Qt::Key_X, Qt::ControlModifier), 300);
    report("paste of 100,000", scene.timedKey(Qt::Key_V, Qt::ControlModifier), 300);
    scene.selectBulk();
    report("delete of 100,000", scene.timedKey(Qt::Key_Delete), 300);
}

/// A handler that holds a gesture as a press and a move leave it.
class HeldDragHandler : public TimelineViewDragHandler
{
public:
    using TimelineViewDragHandler::TimelineViewDragHandler;

    void hold(const QVector<int>& ids, const QModelIndex& index, const QPoint& pos, qint64 time)
    {
        m_dragItemIds = ids;
        m_dragStartIndex = index;
        m_dragStartPos = pos;
        m_dragStartTime = time;
        m_dragPos = pos;
    }
};

void BenchGestures::drop()
{
    QFETCH(Shape, shape);
    if (shape == Shape::Deep)
        QSKIP("there is no other track");
    Scene scene(shape, Zoom::ThirtyMinutes);
    scene.model.setSnapEnabled(false);
    scene.selectBulk();
    // The row below the last of them makes room; the others do by moving, too.
    const Track& last = *scene.model.track(scene.model.item(scene.view.selectedItemIds().last())->parentTrackId());
    for (const int id : scene.model.track(last.id() + 1)->itemIds(false, false))
        scene.model.removeItem(id);
    HeldDragHandler handler(&scene.view);
    scene.view.setDragHandler(&handler);
    const QPoint from(600, scene.rowY(0));
    const QPoint to = from + QPoint(1, scene.view.visualRect(scene.view.indexOfTrackRow(2, 1)).height());
    handler.hold(scene.view.selectedItemIds(), scene.view.indexOfTrackRow(scene.model.trackIds().front(), 1), from,
                 scene.view.toTime(from.x()));

    auto* const drag = new QDrag(&scene.view);
    auto* const marker = new QMimeData;
    marker->setData(Item::mimetype, {});
    drag->setMimeData(marker);
    double moving = 0;
    double dropping = 0;
    QTimer::singleShot(0, &scene.view, [&] {
        QDragMoveEvent move(to, Qt::MoveAction, marker, Qt::LeftButton, Qt::NoModifier);
        moving = Scene::timed([&] { handler.dragMoveEvent(&move); });
        QDropEvent event(to, Qt::MoveAction, marker, Qt::LeftButton, Qt::NoModifier);
        dropping = Scene::timed([&] { handler.dropEvent(&event); });
        QDrag::cancel();
    });
    drag->exec(Qt::MoveAction);
    scene.view.setDragHandler(nullptr);
    QVERIFY(scene.model.track(last.id() + 1)->hasItems());
    report("drag move of 100,000 over another track", moving, 300);
    report("drop of 100,000", dropping, 300);
}

int main(int argc, char** argv)
{
    // Of the platforms without a screen the one that has drag and drop.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "minimal");
    QApplication application(argc, argv);
    BenchGestures benchmark;
    return QTest::qExec(&benchmark, argc, argv);
}

#include "bench_gestures.moc"
