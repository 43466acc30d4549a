#pragma once

#include <benchmark/benchmark.h>
#include <functional>
#include <string>
#include <vector>

/// What all benchmark programs share. Each of them defines registerBenchmarks() and links bench_main, which starts it
/// without a display. The names of the benchmarks and their counters are what report.py makes its table of.
namespace Bench {

/// Registers the program's benchmarks, with add() or benchmark::RegisterBenchmark(). Called once, with a QApplication.
void registerBenchmarks();

/// Whether everything is measured, or only what takes no more than some seconds; see bench.sh.
bool isFull();

/// Numbers of items that measurements are taken with: from a thousand to a million in full, else two of them.
std::vector<int> itemCounts();

/// Calls a function after the last benchmark, as long as there is still an application: what has been kept from one
/// benchmark to the next goes then.
void atEnd(const std::function<void()>& action);

/// Milliseconds that an action takes, by the clock.
double millisecondsOf(const std::function<void()>& action);

double medianOf(std::vector<double> values);

/// One of several things that are measured by turns, so that their ratio holds on a machine with other work to do.
struct Contestant
{
    std::string name;                   ///< of the counter that gets its median, in milliseconds
    std::function<void()> action;       ///< what is measured
    std::function<void()> prepare = {}; ///< called before each, not measured; may be empty
};

/// Runs all contestants once by turns in each iteration. The first one's time is the benchmark's own; each one's median
/// becomes a counter.
void measureByTurns(benchmark::State& state, const std::vector<Contestant>& contestants);

/// Registers a benchmark whose time is set by its function, as by measureByTurns(), in milliseconds.
/// @param iterations 0 to have it repeated for as long as makes sense
template <typename Function>
void add(const std::string& name, Function function, int iterations = 0)
{
    auto* const added = benchmark::RegisterBenchmark(name.c_str(), std::move(function));
    added->UseManualTime()->Unit(benchmark::kMillisecond);
    if (iterations > 0)
        added->Iterations(iterations);
}

} // namespace Bench
