// Frame benchmarks of a real game session: the game logic of a frame and a whole frame at
// waves 1, 9 and 17, each after 120 warm-up frames, with the median and 99th percentile frame
// time and the heap allocations per measured frame as counters.

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <vector>

#include <benchmark/benchmark.h>

#include "bench/BenchSession.h"
#include "bench/TableReporter.h"
#include "engine/Orvel.h"
#include "game/Game.h"
#include "game/Main.h"
#include "tests/support/AllocationCounter.h"

namespace {

// Measured frames of each scenario: ten seconds of play.
const int MEASURED_FRAMES = 600;
// Measured frames of the explosive scenarios: five seconds, 140 kills with the warm-up.
const int EXPLOSIVE_FRAMES = 300;

// The value below which `fraction` of the sorted samples lie (nearest rank).
double percentile(const std::vector<double>& sorted, double fraction) {
    if (sorted.empty()) return 0.0;
    size_t rank = (size_t)(fraction * (double)sorted.size() + 0.999999);
    rank = std::min(std::max(rank, (size_t)1), sorted.size());
    return sorted[rank - 1];
}

// Plays the session at wave state.range(0): warm-up, then one measured frame per iteration.
// Only the frame itself is timed; the script's input and the counting stay outside.
void runScenario(benchmark::State& state, void (BenchSession::*frameOf)(), bool explosive = false) {
    if (!orvel::Orvel::window) {
        state.SkipWithError("no window");
        return;
    }
    BenchSession session((int)state.range(0), explosive);
    for (int i = 0; i < BenchSession::WARM_UP_FRAMES; ++i) {
        session.prepareFrame();
        (session.*frameOf)();
    }

    std::vector<double> ms;
    ms.reserve((size_t)state.max_iterations);
    size_t allocations = 0;
    double particles = 0.0;
    for (auto _ : state) {
        session.prepareFrame();
        const size_t before = testing_support::allocationCount();
        const auto start = std::chrono::steady_clock::now();
        (session.*frameOf)();
        const auto end = std::chrono::steady_clock::now();
        allocations += testing_support::allocationCount() - before;
        const double seconds = std::chrono::duration<double>(end - start).count();
        state.SetIterationTime(seconds);
        ms.push_back(seconds * 1000.0);
        particles += session.liveExplosionParticles();
    }

    std::sort(ms.begin(), ms.end());
    const double frames = (double)ms.size();
    state.counters["median_ms"] = percentile(ms, 0.5);
    state.counters["p99_ms"] = percentile(ms, 0.99);
    state.counters["allocs/frame"] = frames > 0 ? (double)allocations / frames : 0.0;
    state.counters["enemies"] = (double)g_game->enemies.count;
    state.counters["particles"] = frames > 0 ? particles / frames : 0.0;
}

// Game::update alone.
void Logic(benchmark::State& state) {
    runScenario(state, &BenchSession::logic);
}

// Clear, world, HUD, fader, logic and glFinish.
void FullFrame(benchmark::State& state) {
    runScenario(state, &BenchSession::fullFrame);
}

// The same at wave 17 with an enemy near the ship killed every third frame: the explosion pool
// near full.
void LogicExplosions(benchmark::State& state) {
    runScenario(state, &BenchSession::logic, true);
}

void FullFrameExplosions(benchmark::State& state) {
    runScenario(state, &BenchSession::fullFrame, true);
}

void waves(benchmark::internal::Benchmark* b) {
    b->ArgName("wave")->Arg(1)->Arg(9)->Arg(17);
    b->Iterations(MEASURED_FRAMES)->UseManualTime()->Unit(benchmark::kMillisecond);
}

} // namespace

BENCHMARK(Logic)->Apply(waves);
BENCHMARK(FullFrame)->Apply(waves);
// Fewer measured frames: a kill every third frame would empty the swarm within 700 frames.
BENCHMARK(LogicExplosions)->ArgName("wave")->Arg(17)->Iterations(EXPLOSIVE_FRAMES)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(FullFrameExplosions)->ArgName("wave")->Arg(17)->Iterations(EXPLOSIVE_FRAMES)->UseManualTime()->Unit(benchmark::kMillisecond);

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    BenchSession::openWindow();
    // The table goes to the console; --benchmark_out still writes any of the library's formats.
    TableReporter table;
    benchmark::RunSpecifiedBenchmarks(&table);
    benchmark::Shutdown();
    if (orvel::Orvel::window) orvel::Orvel::quit();
    return 0;
}
