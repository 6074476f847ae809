// Micro-benchmarks of the game's hot paths, each run through the game's own classes: the segment
// hit test of both player weapons against wave 17's swarm, a full 4096-particle system, the
// starfield and the HUD; then the peak memory of the process after the session scenarios, and of a
// run of its own that plays the busiest fight alone.
// Each reports its median and 99th percentile time per iteration and the heap allocations per
// iteration, counted around the timed call alone.

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include <sys/wait.h>
#include <unistd.h>

#include <benchmark/benchmark.h>

#include "bench/BenchSession.h"
#include "tests/support/Processes.h"
#include "engine/GL.h"
#include "engine/Orvel.h"
#include "engine/Vector.h"
#include "game/Enemy.h"
#include "game/Explosions.h"
#include "game/Game.h"
#include "game/GameSessions.h"
#include "game/Laser.h"
#include "game/Main.h"
#include "game/Plasma.h"
#include "game/Player.h"
#include "game/Resources.h"
#include "game/Starfield.h"
#include "scene/DirectScene2D.h"
#include "scene/ParticleEmitter.h"
#include "scene/ParticleSlice.h"
#include "scene/ParticleSystem.h"
#include "scene/Scene2D.h"
#include "tests/support/AllocationCounter.h"

using orvel::Orvel;
using orvel::vec2;
using orvel::vec4;

namespace {

// Iterations of every micro-benchmark: the hit tests are a few microseconds each, the draws a
// frame's worth of GL work.
const int HIT_TEST_ITERATIONS = 20000;
const int FRAME_ITERATIONS = 600;
// The particle draw is the slowest row by far on a software renderer: fewer frames, and a
// shorter warm-up, enough to fill the pool (12 frames) and settle.
const int PARTICLE_DRAW_ITERATIONS = 300;
const int PARTICLE_DRAW_WARM_UP_FRAMES = 30;
// Frames run before anything is measured, as in the session scenarios.
const int WARM_UP_FRAMES = BenchSession::WARM_UP_FRAMES;
// The world of the game: a 4096 x 4096 torus.
const float WORLD = 4096.0f;
// World units: enemies this near the ship count as in view, and this near another one as its
// neighbour, when the aim point is chosen.
const float VIEW_RADIUS = 700.0f;
const float CLUSTER_RADIUS = 250.0f;
// The particle system: its size, as the game's explosion system; an explosion a frame as
// Enemy::destroy emits it (192 particles, 500 to 1200 ms); 32 emitters as the laser's sparks when
// every beam burns an enemy (300 particles a second each, 300 to 450 ms). Together they refill
// the pool faster than any particle dies, so all 4096 are alive in every measured frame.
const unsigned PARTICLES = 4096;
const unsigned EMITTERS = 32;
const unsigned EMITTER_RATE = 300;
// Stars of the game's starfield.
const int STARS = 512;

// ms of Orvel::currentTime of frame n, 60 frames per second from BenchSession::START.
uint32_t frameTime(int n) {
    return BenchSession::START + (uint32_t)(n * 1000 / 60);
}

void setFrame(int n) {
    Orvel::currentTime = frameTime(n);
    Orvel::sync = 1.0f / 60.0f;
}

// The value below which `fraction` of the sorted samples lie (nearest rank).
double percentile(const std::vector<double>& sorted, double fraction) {
    if (sorted.empty()) return 0.0;
    size_t rank = (size_t)(fraction * (double)sorted.size() + 0.999999);
    rank = std::min(std::max(rank, (size_t)1), sorted.size());
    return sorted[rank - 1];
}

// Times each iteration of the timed call alone and counts its allocations; `between` runs
// before each timed call, untimed and uncounted. Sets the counters the table reads.
template <typename Between, typename Timed>
void measure(benchmark::State& state, Between between, Timed timed) {
    std::vector<double> ms;
    ms.reserve((size_t)state.max_iterations);
    size_t allocations = 0;
    for (auto _ : state) {
        between();
        const size_t before = testing_support::allocationCount();
        const auto start = std::chrono::steady_clock::now();
        timed();
        const auto end = std::chrono::steady_clock::now();
        allocations += testing_support::allocationCount() - before;
        const double seconds = std::chrono::duration<double>(end - start).count();
        state.SetIterationTime(seconds);
        ms.push_back(seconds * 1000.0);
    }
    std::sort(ms.begin(), ms.end());
    const double n = (double)ms.size();
    state.counters["median_ms"] = percentile(ms, 0.5);
    state.counters["p99_ms"] = percentile(ms, 0.99);
    state.counters["allocs/iter"] = n > 0 ? (double)allocations / n : 0.0;
}

bool haveWindow(benchmark::State& state) {
    if (orvel::Orvel::window) return true;
    state.SkipWithError("no window");
    return false;
}

// The enemy within VIEW_RADIUS of `ship` with the most others within CLUSTER_RADIUS of it: the
// spot the scripted pointer aims at. Null when none is in view.
const Enemy* densestInView(const vec2& ship) {
    const Enemy* best = nullptr;
    int most = -1;
    for (unsigned i = 0; i < g_game->enemies.count; ++i) {
        const Enemy* e = g_game->enemies.data[i];
        if (wrappedDelta(ship, e->position).length() >= VIEW_RADIUS) continue;
        int n = 0;
        for (unsigned j = 0; j < g_game->enemies.count; ++j) {
            if (wrappedDelta(e->position, g_game->enemies.data[j]->position).length() < CLUSTER_RADIUS) ++n;
        }
        if (n > most) {
            most = n;
            best = e;
        }
    }
    return best;
}

// ---- findHit against wave 17 ----

// The enemies of wave 17 as Game::nextWave places them (231), the ship where they are densest.
// Nothing moves between iterations, so every call tests the same segment against the same swarm:
// a plasma step ending on the densest enemy in view, or a laser beam from the ship through it.
void runFindHit(benchmark::State& state, bool isBeam) {
    if (!haveWindow(state)) return;
    BenchSession session(17);
    Player* player = g_game->player;
    const vec2 ship = player->position;
    const Enemy* target = densestInView(ship);
    if (!target) {
        state.SkipWithError("no enemy in view");
        return;
    }
    vec2 aim = wrappedDelta(ship, target->position);
    aim.normalize();
    const vec2 targetPoint = ship + wrappedDelta(ship, target->position);
    vec2 from;
    vec2 to;
    float radius;
    Weapon* weapon = isBeam ? static_cast<Weapon*>(player->laser) : static_cast<Weapon*>(player->plasma);
    if (isBeam) {
        // Laser::update's segment: the muzzle to BEAM_REACH units along the aim.
        from = ship;
        to = ship + aim * (float)Laser::BEAM_REACH;
        radius = player->laser->beamWidth;
    } else {
        // Plasma's step of one frame at 60 frames per second, ending at the enemy's centre.
        const vec2 step = aim * (player->plasma->ring.shotSpeed / 60.0f);
        from = targetPoint - step;
        to = targetPoint;
        radius = player->plasma->ring.shotRadius;
    }

    int hits = 0;
    measure(
        state, [] {},
        [&] {
            const hit_struct h = weapon->findHit(from, to, radius);
            if (h.actor) ++hits;
            benchmark::DoNotOptimize(h);
        });
    state.counters["enemies"] = (double)g_game->enemies.count;
    state.counters["hits"] = (double)hits;
}

// One step of a plasma shot: the segment a shot covers in a frame, ending in the swarm.
void FindHitPlasmaStep(benchmark::State& state) {
    state.SetLabel("findHit, plasma step");
    runFindHit(state, false);
}

// One laser beam: 1280 units from the ship through the densest enemies in view.
void FindHitLaserBeam(benchmark::State& state) {
    state.SetLabel("findHit, laser beam");
    runFindHit(state, true);
}

// ---- A full particle system ----

// A HUD-type root straight onto the window, over a 4096-unit world with its camera in the middle:
// one view rectangle, and no offscreen target whose clear and copy would be counted too.
DirectScene2D* newWorldRoot() {
    DirectScene2D* root = new DirectScene2D(-1, -1);
    root->debugDraw = false;
    root->worldWidth = WORLD;
    root->worldHeight = WORLD;
    root->defaultCamera.position = vec2(WORLD * 0.5f, WORLD * 0.5f);
    return root;
}

// The explosion system of a heavy fight: 4096 live particles on one slice in a scene, fed every
// frame by one explosion (emitted untimed before the frame, at one of 16 spots over the screen)
// and by 32 spark emitters, with the game's parameters for both.
struct ParticleScene {
    ParticleSystem system;
    ParticleSlice* slice;
    DirectScene2D* root;
    int frame;

    ParticleScene() : system(PARTICLES), slice(nullptr), root(newWorldRoot()), frame(0) {
        ParticleSystem::random.init((int)0xd34db33f);
        g_rand.init(1234);
        system.texture = Resources::proc_particle0_tex;
        slice = system.createSlice(false, false);
        root->add(slice);
        setFrame(frame);
        const vec2 centre(WORLD * 0.5f, WORLD * 0.5f);
        for (unsigned i = 0; i < EMITTERS; ++i) {
            ParticleEmitter* e = system.createEmitter(slice);
            e->colorA = vec4(0.6f, 0.2f, 0.05f, 0.0f);
            e->colorB = vec4(0.9f, 0.3f, 0.1f, 0.0f);
            e->position = vec2(centre.x - 480.0f + 30.0f * (float)i, centre.y);
            e->direction = vec2(0.0f, -1.0f);
            e->lifeMin = 300.0f;
            e->lifeMax = 450.0f;
            e->speedMin = 5.0f;
            e->speedMax = 90.0f;
            e->sizeStartMin = 35.0f;
            e->sizeStartMax = 42.0f;
            e->sizeEndMin = 5.0f;
            e->sizeEndMax = 8.0f;
            e->spread = 40.0f;
            e->radius = 4.0f;
            e->rate = EMITTER_RATE;
            e->lastEmit = Orvel::currentTime;
        }
    }
    // The slice goes first: it must not outlive the pool it draws from unlinked.
    ~ParticleScene() {
        delete root;
        delete slice;
    }
    ParticleScene(const ParticleScene&) = delete;
    ParticleScene& operator=(const ParticleScene&) = delete;

    // The next frame's clock and its explosion, with Enemy::destroy's call for an enemy of
    // radius 20.
    void nextFrame() {
        setFrame(++frame);
        const vec2 at(WORLD * 0.5f + (float)((frame % 4) * 300 - 450), WORLD * 0.5f + (float)(((frame / 4) % 4) * 160 - 240));
        emitExplosion(system, slice, ENEMY_EXPLOSION, at, 20.0f);
    }
    void update() { system.update(); }
    void draw() {
        root->draw();
        glFinish();
    }
    // Particles of the slice alive at the current clock.
    int live() const {
        int n = 0;
        for (const Particle* p = slice->head; p; p = p->next) {
            if (p->deathTime >= Orvel::currentTime) ++n;
        }
        return n;
    }
};

// Live particles over the measured frames: the mean for the table, the fewest as a check that
// the pool stayed full.
struct LiveCount {
    double sum = 0.0;
    int frames = 0;
    int fewest = -1;

    void add(int n) {
        sum += n;
        ++frames;
        if (fewest < 0 || n < fewest) fewest = n;
    }
    void report(benchmark::State& state) const {
        state.counters["particles"] = frames > 0 ? sum / frames : 0.0;
        state.counters["fewest_particles"] = fewest;
    }
};

// ParticleSystem::update: the 32 emitters' output into the full pool, 160 particles a frame.
void ParticlesUpdate(benchmark::State& state) {
    state.SetLabel("particles update");
    if (!haveWindow(state)) return;
    ParticleScene scene;
    for (int i = 0; i < WARM_UP_FRAMES; ++i) {
        scene.nextFrame();
        scene.update();
    }
    // Nothing is drawn: with every particle alive the draw unlinks none, and the ring's
    // replacements are unlinked by emit itself.
    LiveCount live;
    measure(state, [&] { scene.nextFrame(); live.add(scene.live()); }, [&] { scene.update(); });
    live.report(state);
}

// The slice's draw of 4096 live particles through the scene walk, then glFinish.
void ParticlesDraw(benchmark::State& state) {
    state.SetLabel("particles draw");
    if (!haveWindow(state)) return;
    ParticleScene scene;
    for (int i = 0; i < PARTICLE_DRAW_WARM_UP_FRAMES; ++i) {
        scene.nextFrame();
        scene.update();
        scene.draw();
    }
    LiveCount live;
    measure(state, [&] { scene.nextFrame(); scene.update(); live.add(scene.live()); }, [&] { scene.draw(); });
    live.report(state);
}

// ---- Starfield ----

// The game's starfield of 512 stars, seeded as a session seeds it, moved a little every frame
// (untimed) and drawn alone, sky and stars, through the scene walk, then glFinish.
void StarfieldDraw(benchmark::State& state) {
    state.SetLabel("starfield draw");
    if (!haveWindow(state)) return;
    g_rand.init(1234);
    Starfield starfield(STARS);
    DirectScene2D* root = newWorldRoot();
    root->add(&starfield);
    int frame = 0;
    auto next = [&] {
        setFrame(++frame);
        starfield.move(3.0f, -2.0f);
    };
    auto draw = [&] {
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        root->draw();
        glFinish();
    };
    for (int i = 0; i < WARM_UP_FRAMES; ++i) {
        next();
        draw();
    }
    // The clear is inside the timed call: the sky covers the screen anyway.
    measure(state, next, draw);
    delete root;
}

// ---- HUD ----

// The HUD as the game builds it at wave 17: score box with the rolling score, weapon box with the
// energy and hull gauges and its counters, radar box with the working radar over 231 enemies,
// the reticle and the wave banner. The session's logic runs between the draws, untimed, so the
// score rolls and the blips move; g_hud->draw() and glFinish are timed.
void HudDraw(benchmark::State& state) {
    state.SetLabel("HUD draw");
    if (!haveWindow(state)) return;
    BenchSession session(17);
    for (int i = 0; i < WARM_UP_FRAMES; ++i) {
        session.prepareFrame();
        session.logic();
        g_hud->draw();
    }
    measure(
        state,
        [&] {
            session.prepareFrame();
            session.logic();
            glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        },
        [] {
            g_hud->draw();
            glFinish();
        });
    state.counters["enemies"] = (double)g_game->enemies.count;
}

// ---- Memory ----

// The process's peak resident memory so far: the window, the art and every session scenario
// run before this row, wave 17's included (sessions are never freed, so this is an upper bound
// for one session).
void PeakMemory(benchmark::State& state) {
    state.SetLabel("bench process peak RSS");
    for (auto _ : state) {
    }
    state.counters["peak_rss_mib"] = processes::peakResidentKib(0) / 1024.0;
}

// The peak resident memory of a frame_bench run of its own that plays only the wave-17 fight with
// kills, the music and every effect: the game in play at its busiest, with none of this process's
// other sessions. The run writes its peak to a file when it ends.
void PeakMemoryInPlay(benchmark::State& state) {
    state.SetLabel("session peak RSS in play");
    for (auto _ : state) {
    }
    char peakFile[] = "/tmp/frame_bench_peak_XXXXXX";
    const int fd = mkstemp(peakFile);
    if (fd < 0) {
        state.SkipWithError("no temporary file");
        return;
    }
    close(fd);
    const std::string setting = std::string(BenchSession::PEAK_FILE_VARIABLE) + "=" + peakFile;
    char self[] = "/proc/self/exe";
    char filter[] = "--benchmark_filter=^FullFrameSound/wave:17/";
    char* argv[] = {self, filter, nullptr};
    const pid_t pid = processes::spawnQuietly(self, argv, setting.c_str());
    int status = 0;
    const bool ended = pid > 0 && waitpid(pid, &status, 0) == pid && WIFEXITED(status) && WEXITSTATUS(status) == 0;
    double kib = -1.0;
    if (FILE* file = fopen(peakFile, "r")) {
        if (fscanf(file, "%lf", &kib) != 1) kib = -1.0;
        fclose(file);
    }
    unlink(peakFile);
    if (!ended || kib <= 0.0) {
        state.SkipWithError("the in-play run gave no peak");
        return;
    }
    state.counters["peak_rss_mib"] = kib / 1024.0;
}

void hitTests(benchmark::internal::Benchmark* b) {
    b->ArgName("wave")->Arg(17)->Iterations(HIT_TEST_ITERATIONS)->UseManualTime()->Unit(benchmark::kMicrosecond);
}

void frames(benchmark::internal::Benchmark* b) {
    b->Iterations(FRAME_ITERATIONS)->UseManualTime()->Unit(benchmark::kMillisecond);
}

// ---- Sessions in a row ----

// Resident memory of this process now, in KiB.
double residentKib() {
    long pages = 0, resident = 0;
    if (FILE* file = fopen("/proc/self/statm", "r")) {
        if (fscanf(file, "%ld %ld", &pages, &resident) != 2) resident = 0;
        fclose(file);
    }
    return (double)resident * (double)sysconf(_SC_PAGESIZE) / 1024.0;
}

// Games one after another as Return after Game Over starts them: each session taken down and a
// new one begun, played for ten seconds of both guns into the first wave, every fourth frame
// drawn whole. The resident memory after the first session, and the most it grows past that over
// the next ones: a session that left anything behind would show here.
void SessionsInARow(benchmark::State& state) {
    state.SetLabel("RSS after the 1st of 50 sessions");
    const int sessions = (int)state.range(0);
    const int framesPerSession = 600;
    double first = 0.0, growth = 0.0;
    for (auto _ : state) {
        BenchSession session(1);
        for (int s = 0; s < sessions; ++s) {
            GameSessions::end();
            GameSessions::begin(1000 + s);
            for (int f = 0; f < framesPerSession; ++f) {
                session.prepareFrame();
                if (f % 4 == 0)
                    session.fullFrame();
                else
                    session.logic();
            }
            GameSessions::end();
            const double kib = residentKib();
            if (s == 0) first = kib;
            growth = std::max(growth, kib - first);
        }
    }
    state.counters["rss_after_first_mib"] = first / 1024.0;
    state.counters["rss_growth_kib"] = growth;
}

} // namespace

// Registered in this order after the session scenarios (this file is linked after FrameBench.cpp),
// so the memory row sees the wave-17 sessions and nothing of the rows below it.
BENCHMARK(PeakMemory)->Iterations(1);
BENCHMARK(PeakMemoryInPlay)->ArgName("wave")->Arg(17)->Iterations(1);
BENCHMARK(FindHitPlasmaStep)->Apply(hitTests);
BENCHMARK(FindHitLaserBeam)->Apply(hitTests);
BENCHMARK(ParticlesUpdate)->Apply(frames);
BENCHMARK(ParticlesDraw)->Iterations(PARTICLE_DRAW_ITERATIONS)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(StarfieldDraw)->Apply(frames);
BENCHMARK(HudDraw)->ArgName("wave")->Arg(17)->Apply(frames);
// Last: it takes games down and up again, which no row above expects.
BENCHMARK(SessionsInARow)->ArgName("sessions")->Arg(50)->Iterations(1)->Unit(benchmark::kSecond);
