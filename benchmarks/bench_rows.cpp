// What many rows cost: 10,000 tracks, side by side and inside each other, with 100 items each in full.

#include "bench.h"
#include "workloads.h"

#include <QScrollBar>

using namespace VeskTimeline;
using namespace Workload;

namespace {

const char* const ours = "ours_ms";

/// Nested tracks are expanded, but for the one that is expanded and collapsed.
Bench::Contestant hover(Scene& scene)
{
    return {ours, [&scene, x = 400]() mutable {
                x = x < 1800 ? x + 3 : 400;
                scene.moveMouse({x, 300});
                Scene::settle();
            }};
}

Bench::Contestant scrollByRow(Scene& scene)
{
    return {ours, [&scene, row = 0]() mutable {
                scene.view.verticalScrollBar()->setValue(row = (row + 1) % 1000);
                Scene::settle();
            }};
}

Bench::Contestant scrollFar(Scene& scene)
{
    QScrollBar* const bar = scene.view.verticalScrollBar();
    return {ours, [bar, isDown = false]() mutable {
                isDown = !isDown;
                bar->setValue(isDown ? bar->maximum() : 0);
                Scene::settle();
            }};
}

Bench::Contestant expand(Scene& scene)
{
    const QModelIndex first = scene.view.indexOfTrackRow(scene.model.trackIds().front(), 0);
    return {ours, [&scene, first] { scene.view.expand(first), Scene::settle(); },
            [&scene, first] { scene.view.collapse(first), Scene::settle(); }};
}

Bench::Contestant collapse(Scene& scene)
{
    const QModelIndex first = scene.view.indexOfTrackRow(scene.model.trackIds().front(), 0);
    return {ours, [&scene, first] { scene.view.collapse(first), Scene::settle(); },
            [&scene, first] { scene.view.expand(first), Scene::settle(); }};
}

Bench::Contestant indexOfLastTrack(Scene& scene)
{
    return {ours, [&scene] { benchmark::DoNotOptimize(scene.view.indexOfTrackRow(scene.model.trackIds().back(), 1)); }};
}

using Action = Bench::Contestant (*)(Scene&);

void addRows(const std::string& name, const Description& description, Action action)
{
    Bench::add("rows/" + name + "/" + nameOf(description), [=](benchmark::State& state) {
        Scene& scene = Scene::of(description);
        scene.view.expandAll();
        scene.view.verticalScrollBar()->setValue(0);
        Scene::settle();
        Bench::measureByTurns(state, {action(scene)});
    });
}

} // namespace

void Bench::registerBenchmarks()
{
    const std::vector<int> counts = isFull() ? std::vector<int>{10'000, 100'000, 1'000'000} : std::vector<int>{100'000};
    for (const int count : counts) {
        for (const Shape shape : {Shape::Rows, Shape::Nested}) {
            addRows("hover", {shape, count}, hover);
            addRows("scroll_row", {shape, count}, scrollByRow);
            addRows("scroll_far", {shape, count}, scrollFar);
            addRows("index_of_track", {shape, count}, indexOfLastTrack);
        }
        addRows("expand", {Shape::Nested, count}, expand);
        addRows("collapse", {Shape::Nested, count}, collapse);
    }
}
