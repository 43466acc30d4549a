// What the view's selection costs: asking for an item, adding one and removing one, while all others are selected.

#include "bench.h"
#include "workloads.h"

#include <QRandomGenerator>

using namespace VeskTimeline;
using namespace Workload;

namespace {

constexpr int repetitions = 100;
const char* const ours = "ours_ms";

using Action = void (*)(TimelineView&, int id);

void ask(TimelineView& view, int id)
{
    benchmark::DoNotOptimize(view.isItemSelected(id));
}

// Which of these two is measured, and which only puts things back, is said where they are registered.
void unselect(TimelineView& view, int id)
{
    view.unselectItem(id);
}

void select(TimelineView& view, int id)
{
    view.selectItem(id, false);
}

void measure(benchmark::State& state, int count, Action before, Action action, Action after)
{
    Scene& scene = Scene::of({Shape::Wide, count});
    scene.selectFirst(count);
    QRandomGenerator random(5);
    std::vector<int> ids;
    const auto forAll = [&](Action what) {
        for (const int id : ids) {
            if (what)
                what(scene.view, id);
        }
    };
    Bench::measureByTurns(state, {{ours, [&] { forAll(action); },
                                   [&] {
                                       forAll(after);
                                       ids.clear();
                                       for (int i = 0; i < repetitions; ++i)
                                           ids.push_back(random.bounded(count));
                                       forAll(before);
                                   }}});
}

} // namespace

void Bench::registerBenchmarks()
{
    for (const int count : itemCounts()) {
        const std::string size = "/N:" + std::to_string(count);
        const auto addAction = [&](const char* name, Action before, Action action, Action after) {
            add(
                std::string("selection/") + name + size,
                [=](benchmark::State& state) { measure(state, count, before, action, after); }, 10);
        };
        addAction("is_selected", nullptr, ask, nullptr);
        addAction("unselect", nullptr, unselect, select);
        addAction("select", unselect, select, nullptr);
    }
}
