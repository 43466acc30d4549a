// Filling a model, changing single items of it and asking it: what every edit and every mouse move of a drag does.

#include "bench.h"
#include "workloads.h"

#include <QRandomGenerator>

#include <algorithm>
#include <numeric>

using namespace VeskTimeline;
using namespace Workload;

namespace {

constexpr int trackCount = 200;
const char* const ours = "ours_ms";

void fill(benchmark::State& state, int count, bool isRandomOrder)
{
    Scene::forget();
    std::vector<int> order(static_cast<std::size_t>(count));
    std::iota(order.begin(), order.end(), 0);
    if (isRandomOrder)
        std::shuffle(order.begin(), order.end(), QRandomGenerator(1));
    int announced = 0;
    const auto run = [&] {
        Model model(trackCount);
        QObject::connect(&model, &TimelineModel::dataChanged, [&] { ++announced; });
        for (const int number : order) {
            const qint64 start = origin + static_cast<qint64>(number) * day / count;
            model.addItem(model.trackIds()[static_cast<std::size_t>(number % trackCount)],
                          std::make_unique<Item>(start, 30'000, Qt::red, true), false);
        }
    };
    Bench::measureByTurns(state, {{ours, run}});
    if (announced % count != 0 || announced == 0)
        state.SkipWithError("an item was added without dataChanged()");
}

/// A thousand times, each of another item; the model is as before in the end.
using Change = void (*)(Model&, int id);

void change(benchmark::State& state, const Description& description, Change action)
{
    constexpr int repetitions = 1'000;
    Model& model = Scene::of(description).model;
    QRandomGenerator random(3);
    Bench::measureByTurns(state, {{ours, [&] {
                                       for (int i = 0; i < repetitions; ++i)
                                           action(model, random.bounded(description.itemCount));
                                   }}});
    state.counters["each_us"] = state.counters[ours].value * 1000 / repetitions;
}

void moveInTime(Model& model, int id)
{
    const qint64 start = std::as_const(model).item(id)->startTime();
    model.setItemStartTime(id, start + 1'000);
    model.setItemStartTime(id, start);
}

void resize(Model& model, int id)
{
    const int duration = std::as_const(model).item(id)->duration();
    model.setItemDuration(id, duration + 1'000);
    model.setItemDuration(id, duration);
}

void moveToTrack(Model& model, int id)
{
    const Item* const item = std::as_const(model).item(id);
    const int trackId = item->parentTrackId();
    const qint64 start = item->startTime();
    const int otherId = model.trackIds()[static_cast<std::size_t>(trackId) % model.trackIds().size()];
    model.moveItemToTrack(id, otherId, start);
    model.moveItemToTrack(id, trackId, start);
}

void lookUp(Model& model, int id)
{
    benchmark::DoNotOptimize(std::as_const(model).item(id)->startTime());
}

void askInterval(Model& model, int id)
{
    const Item* const item = std::as_const(model).item(id);
    benchmark::DoNotOptimize(model.isItemsBetween(item->startTime(), item->startTime() + 1, id, true, false, false));
}

// Between the items and behind them all: the answer is no, whatever is looked at for it.
void askBehindAll(Model& model, int id)
{
    const qint64 behind = origin + 2 * static_cast<qint64>(day) + id;
    benchmark::DoNotOptimize(model.isItemsBetween(behind, behind + 1, -1, true, false, true));
}

} // namespace

void Bench::registerBenchmarks()
{
    const int few = 3;
    for (const int count : itemCounts()) {
        const std::string size = "/N:" + std::to_string(count);
        add(
            "model/fill_in_order" + size, [=](benchmark::State& state) { fill(state, count, false); }, few);
        add(
            "model/fill_at_random" + size, [=](benchmark::State& state) { fill(state, count, true); }, few);
    }
    const std::pair<const char*, Change> changes[] = {
        {"set_start_time", moveInTime}, {"set_duration", resize},        {"move_to_track", moveToTrack},
        {"look_up_item", lookUp},       {"interval_query", askInterval}, {"interval_query_behind", askBehindAll}};
    for (const int count : itemCounts()) {
        for (const auto& [name, action] : changes)
            add(
                std::string("model/") + name + "/N:" + std::to_string(count),
                [count, action = action](benchmark::State& state) {
                    change(state, {Shape::Wide, count}, action);
                },
                few);
    }
}
