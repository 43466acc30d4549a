// How much of a core the live indicator takes when it moves fifty times a second.

#include "bench.h"
#include "workloads.h"

#include <QEventLoop>
#include <QTimer>

#include <ctime>

using namespace VeskTimeline;
using namespace Workload;

namespace {

double cpuMilliseconds()
{
    return static_cast<double>(std::clock()) * 1000.0 / CLOCKS_PER_SEC;
}

/// Lets the view run as in an application. The time that counts is that of the processor, on all threads.
void play(benchmark::State& state, const Description& description, Zoom::Factor zoom)
{
    constexpr int interval = 20;
    const int duration = Bench::isFull() ? 5'000 : 1'000;
    Scene& scene = Scene::of(description);
    scene.setWindow(zoom);
    TimelineHeaderView* const header = scene.view.header();
    double cpu = 0;
    double elapsed = 0;
    int steps = 0;
    const auto counter = QObject::connect(header, &TimelineHeaderView::liveIndicatorTimeChanged, [&] { ++steps; });
    for ([[maybe_unused]] const auto iteration : state) {
        header->startLiveTimer(scene.view.currentTime(), interval);
        Scene::settle();
        steps = 0;
        const double before = cpuMilliseconds();
        QEventLoop loop;
        QTimer::singleShot(duration, &loop, &QEventLoop::quit);
        const double time = Bench::millisecondsOf([&] { loop.exec(); });
        elapsed += time;
        cpu += cpuMilliseconds() - before;
        state.SetIterationTime(time / 1000);
        header->stopLiveTimer();
    }
    QObject::disconnect(counter);
    state.counters["steps_per_second"] = steps * 1000.0 / elapsed;
    state.counters["core_percent"] = 100 * cpu / elapsed;
}

} // namespace

void Bench::registerBenchmarks()
{
    for (const int count : isFull() ? itemCounts() : std::vector<int>{100'000}) {
        for (const Shape shape : {Shape::Wide, Shape::Deep}) {
            const Description description{shape, count};
            for (const Zoom::Factor zoom : {Zoom::FifteenSeconds, Zoom::ThirtyMinutes, Zoom::OneDay})
                add(
                    "live/" + Workload::nameOf(description) + "/" + Workload::nameOf(zoom),
                    [=](benchmark::State& state) { play(state, description, zoom); }, 1);
        }
    }
}
