// What the gestures cost, the frames apart: events go to the viewport as the platform sends them, and nothing is
// painted in between. Each scenario is one gesture from press to release over a million items, in a quick run a tenth
// of them.

#include "bench.h"
#include "workloads.h"

#include <VeskTimeline/item_delegate.h>
#include <VeskTimeline/timeline_view_drag_handler.h>

#include <QCoreApplication>
#include <QDrag>
#include <QDropEvent>
#include <QMimeData>
#include <QMouseEvent>
#include <QTimer>

using namespace VeskTimeline;
using namespace Workload;

namespace {

// Of the platforms without a screen the one that has drag and drop; it is chosen before the application starts.
const bool s_isPlatformChosen = qputenv("QT_QPA_PLATFORM", "minimal");

int itemCount()
{
    return Bench::itemCounts().back();
}

/// How many items a change of many is about.
int bulkCount()
{
    return itemCount() / 10;
}

/// A scene that gestures may leave in any state, and what sends it the user's input.
struct GestureScene : Scene
{
    GestureScene(Shape shape, Zoom::Factor zoom) : Scene({shape, itemCount()})
    {
        setWindow(zoom);
        model.setSnapEnabled(true);
    }

    /// An item of the first track in the second half of the window; on a busy track the one that is on top there.
    const Item& visibleItem() const
    {
        constexpr qint64 second = 1'000;
        const Track* const first = std::as_const(model).track(model.trackIds().front());
        qint64 time = view.currentTime() + view.zoomFactor() / 2;
        while (!first->isItemsBetween(time, time + 1, -1, true, false, false))
            time += second;
        return *first->itemAt(time);
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
        return Bench::millisecondsOf([&] { send(type, pos, button, buttons); });
    }
    double timedKey(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QKeyEvent event(QEvent::KeyPress, key, modifiers);
        return Bench::millisecondsOf([&] { QCoreApplication::sendEvent(&view, &event); });
    }
    /// Selects all items of the first tracks, as many as are asked for.
    void selectBulk()
    {
        QList<int> ids;
        for (const int trackId : model.trackIds()) {
            for (const ItemPtr& item : std::as_const(model).track(trackId)->items()) {
                if (ids.size() < bulkCount())
                    ids.append(item->id());
            }
        }
        view.selectItems(ids, true);
    }
};

void hover(benchmark::State& state, Shape shape)
{
    GestureScene scene(shape, Zoom::ThirtyMinutes);
    scene.view.header()->setHoverVisible(false);
    std::vector<double> times;
    for (int x = 400; x < 1400; x += 7)
        times.push_back(scene.timed(QEvent::MouseMove, {x, scene.rowY(0)}, Qt::NoButton, Qt::NoButton));
    state.counters["move_ms"] = Bench::medianOf(times);
}

void drag(benchmark::State& state, Shape shape)
{
    GestureScene scene(shape, Zoom::ThirtyMinutes);
    const Item& item = scene.visibleItem();
    const int middle = scene.view.toPixel(item.startTime() + item.duration() / 2);
    const int y = scene.rowY(0);
    scene.send(QEvent::MouseMove, {middle, y}, Qt::NoButton, Qt::NoButton);
    state.counters["press_ms"] = scene.timed(QEvent::MouseButtonPress, {middle, y}, Qt::LeftButton, Qt::LeftButton);
    std::vector<double> near;
    std::vector<double> far;
    for (int i = 0; i < 100; ++i) {
        near.push_back(scene.timed(QEvent::MouseMove, {middle + i % 4, y + 12 + i % 2}, Qt::NoButton, Qt::LeftButton));
        far.push_back(scene.timed(QEvent::MouseMove, {middle + 200 + i, y}, Qt::NoButton, Qt::LeftButton));
    }
    if (scene.view.dragHandler()->dragItemIds().size() != 1)
        state.SkipWithError("the item is not dragged");
    state.counters["move_near_ms"] = Bench::medianOf(near);
    state.counters["move_far_ms"] = Bench::medianOf(far);
    state.counters["offset_ms"] =
        Bench::millisecondsOf([&] { benchmark::DoNotOptimize(scene.view.dragHandler()->deltaTime()); });
    state.counters["release_ms"] =
        scene.timed(QEvent::MouseButtonRelease, {middle + 299, y}, Qt::LeftButton, Qt::NoButton);
}

void resize(benchmark::State& state, Shape shape)
{
    GestureScene scene(shape, Zoom::ThirtyMinutes);
    const Item& item = scene.visibleItem();
    const int end = scene.view.toPixel(item.startTime() + item.duration()) - 2;
    const int y = scene.rowY(0);
    scene.send(QEvent::MouseMove, {end, y}, Qt::NoButton, Qt::NoButton);
    if (scene.view.cursor().shape() != Qt::SizeHorCursor)
        state.SkipWithError("there is no edge to resize at");
    state.counters["press_ms"] = scene.timed(QEvent::MouseButtonPress, {end, y}, Qt::LeftButton, Qt::LeftButton);
    constexpr std::size_t moveCount = 100;
    std::vector<double> moves;
    moves.reserve(moveCount);
    for (int i = 0; i < int(moveCount); ++i)
        moves.push_back(scene.timed(QEvent::MouseMove, {end + i % 50, y}, Qt::NoButton, Qt::LeftButton));
    state.counters["move_ms"] = Bench::medianOf(moves);
    state.counters["release_ms"] = scene.timed(QEvent::MouseButtonRelease, {end, y}, Qt::LeftButton, Qt::NoButton);
}

void selectAll(benchmark::State& state, Shape shape)
{
    GestureScene scene(shape, Zoom::OneDay);
    state.counters["key_ms"] = scene.timedKey(Qt::Key_A, Qt::ControlModifier);
    if (scene.view.selectedItemIds().size() != itemCount())
        state.SkipWithError("not all are selected");
}

// Over nearly a day, which in twenty of two hundred rows holds a tenth of the items. It begins in the hour before them:
// a press on an item would begin something else.
void rubberBand(benchmark::State& state, Shape shape)
{
    GestureScene scene(shape, Zoom::OneDay);
    scene.model.setEditable(false);
    constexpr int hour = 3'600'000;
    scene.view.setRange(origin - hour, origin + day);
    scene.view.setCurrentTime(origin - hour);
    Scene::settle();
    const QPoint from(scene.view.header()->sectionPosition(1) + 5, scene.rowY(0));
    const QPoint to(scene.view.viewport()->width() - 20, scene.view.viewport()->height() - 3);
    scene.send(QEvent::MouseMove, from, Qt::NoButton, Qt::NoButton);
    scene.send(QEvent::MouseButtonPress, from, Qt::LeftButton, Qt::LeftButton);
    scene.send(QEvent::MouseMove, to, Qt::NoButton, Qt::LeftButton);
    state.counters["release_ms"] = scene.timed(QEvent::MouseButtonRelease, to, Qt::LeftButton, Qt::NoButton);
    if (scene.view.selectedItemIds().isEmpty())
        state.SkipWithError("there was no rubber band");
    state.counters["items"] = static_cast<double>(scene.view.selectedItemIds().size());
}

void changeMany(benchmark::State& state, Shape shape)
{
    GestureScene scene(shape, Zoom::ThirtyMinutes);
    scene.model.setSnapEnabled(false);
    scene.selectBulk();
    state.counters["nudge_ms"] = scene.timedKey(Qt::Key_Right);
    state.counters["copy_ms"] = scene.timedKey(Qt::Key_C, Qt::ControlModifier);
    state.counters["cut_ms"] = scene.timedKey(Qt::Key_X, Qt::ControlModifier);
    state.counters["paste_ms"] = scene.timedKey(Qt::Key_V, Qt::ControlModifier);
    scene.selectBulk();
    state.counters["delete_ms"] = scene.timedKey(Qt::Key_Delete);
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

void drop(benchmark::State& state, Shape shape)
{
    GestureScene scene(shape, Zoom::ThirtyMinutes);
    scene.model.setSnapEnabled(false);
    scene.selectBulk();
    HeldDragHandler handler(&scene.view);
    scene.view.setDragHandler(&handler);
    const QModelIndex row = scene.view.indexOfTrackRow(scene.model.trackIds().front(), 1);
    const QPoint from(600, scene.rowY(0));
    const QPoint to = from + QPoint(1, scene.view.visualRect(row).height());
    handler.hold(scene.view.selectedItemIds(), row, from, scene.view.toTime(from.x()));

    // Only while the platform drags does the view take a drop for its own.
    auto* const marker = new QMimeData;
    marker->setData(Item::mimetype, {});
    auto* const drag = new QDrag(&scene.view);
    drag->setMimeData(marker);
    QTimer::singleShot(0, &scene.view, [&] {
        QDragMoveEvent move(to, Qt::MoveAction, marker, Qt::LeftButton, Qt::NoModifier);
        QDropEvent event(to, Qt::MoveAction, marker, Qt::LeftButton, Qt::NoModifier);
        const auto send = [&](QEvent* sent) {
            return Bench::millisecondsOf([&] { QCoreApplication::sendEvent(scene.view.viewport(), sent); });
        };
        state.counters["move_ms"] = send(&move);
        state.counters["drop_ms"] = send(&event);
        QDrag::cancel();
    });
    drag->exec(Qt::MoveAction);
    scene.view.setDragHandler(nullptr);
}

using Scenario = void (*)(benchmark::State&, Shape);

void addScenario(const std::string& name, Shape shape, Scenario scenario)
{
    const auto run = [=](benchmark::State& state) {
        Scene::forget();
        for ([[maybe_unused]] const auto iteration : state)
            state.SetIterationTime(Bench::millisecondsOf([&] { scenario(state, shape); }) / 1000);
    };
    Bench::add("gesture/" + name + "/" + nameOf(Description{shape, itemCount()}), run, 1);
}

} // namespace

void Bench::registerBenchmarks()
{
    for (const Shape shape : {Shape::Wide, Shape::Deep, Shape::Nested}) {
        addScenario("hover", shape, hover);
        addScenario("drag", shape, drag);
        addScenario("resize", shape, resize);
        addScenario("select_all", shape, selectAll);
        addScenario("rubber_band", shape, rubberBand);
        addScenario("change_many", shape, changeMany);
        // One track has no other to drop on.
        if (shape != Shape::Deep)
            addScenario("drop", shape, drop);
    }
}
