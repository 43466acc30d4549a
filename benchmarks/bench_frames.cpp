// What a frame costs: one change of what is shown, and the painting that follows from it.

#include "bench.h"
#include "reference_painting.h"
#include "workloads.h"

#include <QScrollBar>

using namespace VeskTimeline;
using namespace Workload;

namespace {

enum class Selection { None, One, All };

std::string nameOf(Selection selection)
{
    const char* const names[] = {"selected:none", "selected:one", "selected:all"};
    return names[static_cast<int>(selection)];
}

void select(Scene& scene, Selection selection)
{
    if (selection == Selection::One)
        scene.selectFirst(1);
    else if (selection == Selection::All)
        scene.selectFirst(scene.description.itemCount);
}

/// R and S with what a scene shows.
class References
{
public:
    static References& of(const Scene& scene)
    {
        std::unique_ptr<References>& kept = References::kept();
        if (!kept || !(kept->m_description == scene.description)) {
            kept.reset();
            kept = std::make_unique<References>(scene);
        }
        return *kept;
    }

    explicit References(const Scene& scene)
        : m_description(scene.description),
          m_r(ReferencePainting::Content::of(scene.view)),
          m_s(ReferencePainting::Content::of(scene.view))
    {
        m_r.show();
        m_s.show();
        Scene::settle();
    }

    static std::unique_ptr<References>& kept()
    {
        static std::unique_ptr<References> references;
        return references;
    }

    void show(qint64 start, qint64 span)
    {
        m_r.setWindow(start, span);
        m_s.setWindow(start, span);
    }
    void setSelected(bool areAllSelected)
    {
        m_r.setSelected(areAllSelected);
        m_s.setSelected(areAllSelected);
    }
    int rectangles() const { return m_r.distinctRectangles(); }
    void paintR() { m_r.repaint(); }
    void paintS() { m_s.repaint(); }

private:
    Description m_description;
    ReferencePainting::Rectangles m_r;
    ReferencePainting::ScanLines m_s;
};

/// A frame of a scene by turns with R's and S's frame of the same window.
/// @param change what the frame follows from; called with the number of the frame, and not timed with R and S
void measureFrames(benchmark::State& state, Scene& scene, bool areAllSelected, const std::function<void(int)>& change)
{
    int number = 0;
    const auto frame = [&] {
        change(++number);
        scene.paint();
    };
    // Nobody compares items that paint themselves with rectangles.
    if (scene.description.kind == Kind::OwnPaint) {
        Bench::measureByTurns(state, {{"ours_ms", frame}});
        return;
    }
    References& references = References::of(scene);
    references.setSelected(areAllSelected);
    const auto follow = [&] { references.show(scene.view.currentTime(), scene.view.zoomFactor()); };
    Bench::measureByTurns(
        state,
        {{"ours_ms", frame}, {"R_ms", [&] { references.paintR(); }, follow}, {"S_ms", [&] { references.paintS(); }}});
    state.counters["rectangles"] = references.rectangles();
}

// All go to and fro, so that the frames show the same as far as it goes.
void measurePan(benchmark::State& state, const Description& description, Zoom::Factor zoom, Selection selection)
{
    Scene& scene = Scene::of(description);
    scene.setWindow(zoom);
    // A window that fills the range cannot move in it.
    scene.view.setRange(origin, origin + 2 * static_cast<qint64>(day));
    select(scene, selection);
    const qint64 start = scene.view.currentTime();
    const qint64 step = zoom / 100;
    measureFrames(state, scene, selection == Selection::All,
                  [&](int number) { scene.view.setCurrentTime(start + number % 2 * step); });
    scene.view.setRange(origin, origin + day);
}

using Gesture = void (*)(Scene&, int number);

void zoomStep(Scene& scene, int number)
{
    scene.view.setZoomFactor(number % 2 == 0 ? Zoom::ThirtyMinutes : Zoom::increment(Zoom::ThirtyMinutes));
}

void hoverMove(Scene& scene, int number)
{
    constexpr int left = 400;
    constexpr int positions = 1'400;
    scene.moveMouse({left + 3 * number % positions, 300});
}

void scrollStep(Scene& scene, int number)
{
    scene.view.verticalScrollBar()->setValue(number % 2);
}

void selectionChange(Scene& scene, int number)
{
    scene.view.selectItem(number % scene.description.itemCount, true);
}

void addPans(const Description& description)
{
    for (const Selection selection : {Selection::None, Selection::One, Selection::All}) {
        for (const Zoom::Factor zoom : {Zoom::FifteenSeconds, Zoom::ThirtyMinutes, Zoom::OneDay}) {
            const std::string name =
                "frame/pan/" + Workload::nameOf(description) + "/" + Workload::nameOf(zoom) + "/" + nameOf(selection);
            Bench::add(name, [=](benchmark::State& state) { measurePan(state, description, zoom, selection); });
        }
    }
}

void addGestures(const Description& description)
{
    const std::pair<const char*, Gesture> gestures[] = {
        {"zoom", zoomStep}, {"hover", hoverMove}, {"scroll", scrollStep}, {"select", selectionChange}};
    for (const auto& [name, gesture] : gestures) {
        Bench::add(std::string("frame/") + name + "/" + Workload::nameOf(description),
                   [description, gesture = gesture](benchmark::State& state) {
                       Scene& scene = Scene::of(description);
                       measureFrames(state, scene, false, [&](int number) { gesture(scene, number); });
                       scene.view.verticalScrollBar()->setValue(0);
                   });
    }
}

} // namespace

void Bench::registerBenchmarks()
{
    const int million = 1'000'000;
    atEnd([] { References::kept().reset(); });
    for (const int count : itemCounts()) {
        for (const Shape shape : {Shape::Wide, Shape::Deep, Shape::Outside})
            addPans({shape, count});
        addGestures({Shape::Wide, count});
    }
    if (!isFull())
        return;
    for (const int count : itemCounts()) {
        addPans({Shape::Wide, count, Kind::OwnPaint});
        addPans({Shape::Deep, count, Kind::OwnPaint});
    }
    for (const Shape shape : {Shape::Rows, Shape::Nested}) {
        addPans({shape, million});
        addGestures({shape, million});
    }
}
