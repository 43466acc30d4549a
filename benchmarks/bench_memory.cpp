// How many bytes an item takes in the model, all that the library keeps to find it included.

#include "bench.h"
#include "workloads.h"

#include <malloc.h>

using namespace VeskTimeline;
using namespace Workload;

namespace {

double bytesInUse()
{
    const struct mallinfo2 info = mallinfo2();
    return static_cast<double>(info.uordblks + info.hblkhd);
}

void measure(benchmark::State& state, const Description& description)
{
    constexpr double mebibyte = 1024 * 1024;
    Scene::forget();
    for ([[maybe_unused]] const auto iteration : state) {
        const double before = bytesInUse();
        std::unique_ptr<Model> model;
        state.SetIterationTime(Bench::millisecondsOf([&] { model = std::make_unique<Model>(description); }) / 1000);
        // What is made at the first question belongs to the model.
        const qint64 noon = origin + day / 2;
        benchmark::DoNotOptimize(model->isItemsBetween(noon, noon + 1, -1, true, false, true));
        benchmark::DoNotOptimize(model->item(0)->startTime());
        const double bytes = bytesInUse() - before;
        state.counters["bytes_per_item"] = bytes / description.itemCount;
        state.counters["MiB"] = bytes / mebibyte;
    }
}

} // namespace

void Bench::registerBenchmarks()
{
    for (const int count : itemCounts()) {
        for (const Shape shape : {Shape::Wide, Shape::Deep, Shape::Rows}) {
            const Description description{shape, count};
            add(
                "memory/" + nameOf(description), [=](benchmark::State& state) { measure(state, description); }, 1);
        }
    }
}
