#include "bench.h"

#include <QApplication>
#include <QElapsedTimer>

#include <algorithm>

namespace Bench {

namespace {

bool s_isFull = false;
std::vector<std::function<void()>> s_actionsAtEnd;

} // namespace

bool isFull()
{
    return s_isFull;
}

std::vector<int> itemCounts()
{
    return s_isFull ? std::vector<int>{1'000, 10'000, 100'000, 1'000'000} : std::vector<int>{10'000, 100'000};
}

void atEnd(const std::function<void()>& action)
{
    s_actionsAtEnd.push_back(action);
}

double millisecondsOf(const std::function<void()>& action)
{
    QElapsedTimer timer;
    timer.start();
    action();
    return static_cast<double>(timer.nsecsElapsed()) / 1e6;
}

double medianOf(std::vector<double> values)
{
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

void measureByTurns(benchmark::State& state, const std::vector<Contestant>& contestants)
{
    constexpr double millisecondsPerSecond = 1000;
    std::vector<std::vector<double>> times(contestants.size());
    for ([[maybe_unused]] const auto iteration : state) {
        for (std::size_t i = 0; i < contestants.size(); ++i) {
            if (contestants[i].prepare)
                contestants[i].prepare();
            times[i].push_back(millisecondsOf(contestants[i].action));
        }
        state.SetIterationTime(times[0].back() / millisecondsPerSecond);
    }
    for (std::size_t i = 0; i < contestants.size(); ++i)
        state.counters[contestants[i].name] = medianOf(times[i]);
}

} // namespace Bench

int main(int argc, char** argv)
{
    // The same picture on every machine.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_STYLE_OVERRIDE", "Fusion");
    qputenv("QT_SCALE_FACTOR", "1");

    // Google Benchmark refuses what it does not know, so this comes out first.
    const auto newEnd =
        std::remove_if(argv + 1, argv + argc, [](const char* text) { return std::string(text) == "--full"; });
    Bench::s_isFull = newEnd != argv + argc;
    argc = static_cast<int>(newEnd - argv);

    const QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    Bench::registerBenchmarks();
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    for (const std::function<void()>& action : Bench::s_actionsAtEnd)
        action();
}
