// Frame benchmarks of a real game session: the game logic of a frame and a whole frame at
// waves 1, 9, 17, 25 and 33, each after 120 warm-up frames, with the median and 99th percentile frame
// time and the heap allocations per measured frame as counters. The sound rows play the music
// and the effects through the mixer on SDL's dummy audio driver, which mixes in real time on its
// own thread; that thread's CPU time per 16.7 ms of sound is the mixing cost of a frame.

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>
#include <vector>

#include <SDL/SDL.h>
#include <SDL/SDL_mixer.h>
#include <benchmark/benchmark.h>

#include "bench/BenchSession.h"
#include "tests/support/Processes.h"
#include "bench/TableReporter.h"
#include "engine/Orvel.h"
#include "game/Game.h"
#include "game/Main.h"
#include "game/MixerOutput.h"
#include "game/SoundEffects.h"
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

// The mixer's output as the game has it, counting the effects started through it.
class CountingOutput : public SoundOutput {
public:
    explicit CountingOutput(MixerOutput& mixer) : mixer(mixer), plays(0) {}
    uint32_t length(SoundEffect effect, int variant) const override { return mixer.length(effect, variant); }
    void play(const SoundPlay& p) override {
        ++plays;
        mixer.play(p);
    }
    void stop(int channel, int ms) override { mixer.stop(channel, ms); }
    void fadeOutAll(int ms) override { mixer.fadeOutAll(ms); }
    void pauseAll() override { mixer.pauseAll(); }
    void resumeAll() override { mixer.resumeAll(); }

    MixerOutput& mixer;
    unsigned plays;
};

// CPU time of the audio thread, read at the end of every mix: the difference between two reads
// is the work of one buffer, the mixing included.
std::atomic<long long> mixNanoseconds(0);
std::atomic<long long> mixBuffers(0);
long long lastMixRead = -1;

long long cpuNanoseconds(clockid_t clock) {
    timespec t{};
    clock_gettime(clock, &t);
    return (long long)t.tv_sec * 1000000000LL + t.tv_nsec;
}

long long threadCpuNanoseconds() { return cpuNanoseconds(CLOCK_THREAD_CPUTIME_ID); }

void readMixTime(void*, Uint8*, int) {
    const long long now = threadCpuNanoseconds();
    if (lastMixRead >= 0) {
        mixNanoseconds += now - lastMixRead;
        ++mixBuffers;
    }
    lastMixRead = now;
}

// The game's audio for the length of a scenario: the device opened as the game opens it, on SDL's
// dummy driver unless SDL_AUDIODRIVER names another, the music looping and g_sound playing the
// effects; all closed again at the end.
class SoundOn {
public:
    static const int BUFFER_FRAMES = 1024;

    SoundOn() : output(mixer), open(false) {
        // Another driver may be named, such as disk to hear the fight afterwards.
        setenv("SDL_AUDIODRIVER", "dummy", 0);
        if (SDL_InitSubSystem(SDL_INIT_AUDIO) != 0) return;
        if (Mix_OpenAudio(44100, AUDIO_S16LSB, 2, BUFFER_FRAMES) != 0) return;
        open = true;
        mixer.load("sfx");
        music = Mix_LoadMUS("sfx/music1.ogg");
        if (music) Mix_PlayMusic(music, -1);
        g_sound.setOutput(&output);
        Mix_SetPostMix(readMixTime, nullptr);
    }
    ~SoundOn() {
        g_sound.setOutput(nullptr);
        if (open) {
            Mix_SetPostMix(nullptr, nullptr);
            Mix_HaltChannel(-1);
            Mix_HaltMusic();
            if (music) Mix_FreeMusic(music);
            music = nullptr;
            Mix_CloseAudio();
        }
        SDL_QuitSubSystem(SDL_INIT_AUDIO);
    }
    // Starts counting the mixing time afresh.
    void restartMixClock() {
        SDL_LockAudio();
        mixNanoseconds = 0;
        mixBuffers = 0;
        lastMixRead = -1;
        SDL_UnlockAudio();
    }
    // The audio thread's CPU time per 1000 / 60 ms of sound, in microseconds.
    double mixMicrosecondsPerFrame() const {
        const double perBuffer = (double)mixNanoseconds / (double)mixBuffers / 1000.0;
        return perBuffer * (44100.0 / 60.0) / BUFFER_FRAMES;
    }

    MixerOutput mixer;
    CountingOutput output;
    bool open;
};

// Plays the session at wave state.range(0): warm-up, then one measured frame per iteration.
// Only the frame itself is timed; the script's input and the counting stay outside. With
// `sound`, the music and the effects play as in the game.
void runScenario(benchmark::State& state, void (BenchSession::*frameOf)(), bool explosive = false,
                 bool sound = false, BenchSession::Hidden hidden = BenchSession::HIDE_NOTHING) {
    if (!orvel::Orvel::window) {
        state.SkipWithError("no window");
        return;
    }
    SoundOn* audio = sound ? new SoundOn() : nullptr;
    if (audio && !audio->open) {
        delete audio;
        state.SkipWithError("no audio device");
        return;
    }
    // A profile row's argument names what it hides; it plays wave 17.
    BenchSession session(hidden == BenchSession::HIDE_NOTHING ? (int)state.range(0) : 17, explosive);
    session.hidden = hidden;
    for (int i = 0; i < BenchSession::WARM_UP_FRAMES; ++i) {
        session.prepareFrame();
        (session.*frameOf)();
    }

    std::vector<double> ms;
    ms.reserve((size_t)state.max_iterations);
    size_t allocations = 0;
    double particles = 0.0, onScreen = 0.0;
    if (audio) {
        audio->output.plays = 0;
        audio->restartMixClock();
    }
    const long long cpuAtStart = cpuNanoseconds(CLOCK_PROCESS_CPUTIME_ID);
    const auto wallAtStart = std::chrono::steady_clock::now();
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
        onScreen += session.enemiesOnScreen();
    }
    const double cpuSeconds = (double)(cpuNanoseconds(CLOCK_PROCESS_CPUTIME_ID) - cpuAtStart) * 1e-9;
    const double wallSeconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - wallAtStart).count();

    std::sort(ms.begin(), ms.end());
    const double frames = (double)ms.size();
    state.counters["median_ms"] = percentile(ms, 0.5);
    state.counters["p99_ms"] = percentile(ms, 0.99);
    state.counters["allocs/frame"] = frames > 0 ? (double)allocations / frames : 0.0;
    state.counters["enemies"] = (double)g_game->enemies.count;
    state.counters["particles"] = frames > 0 ? particles / frames : 0.0;
    state.counters["on_screen"] = frames > 0 ? onScreen / frames : 0.0;
    // Cores kept busy while the frames ran back to back: every thread of the process, the
    // renderer's and the audio thread's included.
    if (wallSeconds > 0.0) state.counters["cpu_cores"] = cpuSeconds / wallSeconds;
    if (audio) {
        state.counters["plays/frame"] = frames > 0 ? (double)audio->output.plays / frames : 0.0;
        // A logic-only run ends before the device has mixed a buffer.
        if (mixBuffers > 0) state.counters["mix_us/frame"] = audio->mixMicrosecondsPerFrame();
        delete audio;
    }
}

// Game::update alone.
void Logic(benchmark::State& state) {
    runScenario(state, &BenchSession::logic);
}

// Game::update with every frame recorded for the replay, as the game records it.
void LogicRecording(benchmark::State& state) {
    runScenario(state, &BenchSession::recordedLogic);
}

// Clear, world, HUD, fader, swap, logic and glFinish.
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

// The explosive wave-17 fight with the music and every effect playing: the game's side of the
// sound in the frame time, the mixer's in mix_us/frame.
void LogicSound(benchmark::State& state) {
    runScenario(state, &BenchSession::logic, true, true);
}

void FullFrameSound(benchmark::State& state) {
    runScenario(state, &BenchSession::fullFrame, true, true);
}

// The whole wave-17 frame with one kind of draw left out (BenchSession::Hidden): the frame's
// cost less this row's is what that kind costs.
void FullFrameWithout(benchmark::State& state) {
    const BenchSession::Hidden hidden = (BenchSession::Hidden)state.range(0);
    state.SetLabel(std::string("FullFrame w/o ") + BenchSession::hiddenName(hidden));
    runScenario(state, &BenchSession::fullFrame, false, false, hidden);
}

void hiddenKinds(benchmark::internal::Benchmark* b) {
    b->ArgName("hiding");
    for (int kind = BenchSession::HIDE_SKY_AND_STARS; kind < BenchSession::HIDDEN_KINDS; ++kind) b->Arg(kind);
    b->Iterations(MEASURED_FRAMES)->UseManualTime()->Unit(benchmark::kMillisecond);
}

void waves(benchmark::internal::Benchmark* b) {
    // 25 and 33: past wave 17, where a strong player goes, the cost must follow the enemies on
    // the screen.
    b->ArgName("wave")->Arg(1)->Arg(9)->Arg(17)->Arg(25)->Arg(33);
    b->Iterations(MEASURED_FRAMES)->UseManualTime()->Unit(benchmark::kMillisecond);
}

} // namespace

BENCHMARK(Logic)->Apply(waves);
BENCHMARK(LogicRecording)->ArgName("wave")->Arg(17)->Iterations(MEASURED_FRAMES)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(FullFrame)->Apply(waves);
BENCHMARK(FullFrameWithout)->Apply(hiddenKinds);
// Fewer measured frames: a kill every third frame would empty the swarm within 700 frames.
BENCHMARK(LogicExplosions)->ArgName("wave")->Arg(17)->Iterations(EXPLOSIVE_FRAMES)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(FullFrameExplosions)->ArgName("wave")->Arg(17)->Iterations(EXPLOSIVE_FRAMES)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(LogicSound)->ArgName("wave")->Arg(17)->Iterations(EXPLOSIVE_FRAMES)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(FullFrameSound)->ArgName("wave")->Arg(17)->Iterations(EXPLOSIVE_FRAMES)->UseManualTime()->Unit(benchmark::kMillisecond);

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    // The heap as the game has it.
    shareOneHeap();
    BenchSession::openWindow();
    // The table goes to the console; --benchmark_out still writes any of the library's formats.
    TableReporter table;
    benchmark::RunSpecifiedBenchmarks(&table);
    benchmark::Shutdown();
    // A run started for the in-play memory row leaves its peak behind for the row to read.
    if (const char* path = getenv(BenchSession::PEAK_FILE_VARIABLE)) {
        if (FILE* file = fopen(path, "w")) {
            fprintf(file, "%.0f\n", processes::peakResidentKib(0));
            fclose(file);
        }
    }
    if (orvel::Orvel::window) orvel::Orvel::quit();
    return 0;
}
