#pragma once
// A game session for the benchmarks: a seeded game brought to a wave and played by a script at
// 60 frames per second, the ship over the densest part of the swarm.

#include <cstdint>

#include "engine/Vector.h"
#include "game/replay/ReplayRecorder.h"

class Enemy;

// The shortest offset from a to b on the game's wrapping world.
orvel::vec2 wrappedDelta(const orvel::vec2& a, const orvel::vec2& b);

// One session at a time: it sets the globals g_world, g_hud, g_fader and g_game. The window
// must be open and the art loaded first (openWindow).
class BenchSession {
public:
    // Frames the scenarios run before anything is measured.
    static const int WARM_UP_FRAMES = 120;
    // The first frame's clock, ms of Orvel::currentTime.
    static const uint32_t START = 100000;
    // Names the file to which a frame_bench run writes its peak resident memory in KiB when it
    // ends: the in-play memory row reads it from a run of its own.
    static constexpr const char* PEAK_FILE_VARIABLE = "FRAME_BENCH_PEAK_FILE";

    // Opens the 1280x720 window, windowed and without vertical sync, and loads the art.
    // Once per process.
    static void openWindow();

    // Fresh scene roots, fader and game, g_rand and the particle random seeded, the game at
    // wave `wave` with that wave's enemies alone, the ship moved to where they are densest.
    // With `explosive`, the script also kills the enemy nearest the ship every third frame
    // (through Enemy::damage, as a weapon would), which keeps the explosion pool near full.
    explicit BenchSession(int wave, bool explosive = false);
    // Unlinks the scene roots. The session's objects stay allocated: nothing draws them again.
    ~BenchSession();
    BenchSession(const BenchSession&) = delete;
    BenchSession& operator=(const BenchSession&) = delete;

    // Clock and input of the next frame: the ship's hull and energy refilled so it lives and
    // both weapons fire, both mouse buttons held, the pointer on the densest enemies in view.
    void prepareFrame();
    // The game logic of one frame.
    void logic();
    // The same with the frame recorded for the replay, as the game records every update.
    void recordedLogic();
    // One whole frame as the main loop runs it: clear, world, HUD, fader, the buffer swap,
    // logic, then glFinish so the drawing is done when the call returns.
    void fullFrame();

    // Explosion particles alive at the current clock.
    int liveExplosionParticles() const;
    // Enemies whose centre lies on the screen, as the world's camera now draws them.
    int enemiesOnScreen() const;

    // What a profile run leaves undrawn, hidden anew before every frame (nodes come and go), so
    // that the cost of each kind of draw is the whole frame's less the frame without it.
    enum Hidden {
        HIDE_NOTHING,
        HIDE_SKY_AND_STARS,
        HIDE_ENEMY_BODIES,
        HIDE_ENEMY_GLOWS,
        HIDE_ENEMY_SHOTS,
        HIDE_PLAYER,
        HIDE_PLASMA,
        HIDE_LASER,
        HIDE_PARTICLES,
        HIDE_FLOATING_TEXT,
        HIDE_HUD_BOXES,
        HIDE_RADAR,
        HIDE_GAUGES,
        HIDE_SCORE_AND_RETICLE,
        HIDDEN_KINDS
    };
    static const char* hiddenName(Hidden kind);
    Hidden hidden = HIDE_NOTHING;

    // Hides the nodes of `hidden`.
    void hideKind();

    ReplayRecorder recorder; // recording since the session was built
    int frame;      // frames prepared so far
    bool explosive; // kills an enemy every KILL_INTERVAL frames
    // Frames between the script's kills in an explosive session: 20 explosions a second of
    // 192 particles that live 1 to 1.2 s fill most of the 4096-particle pool.
    static const int KILL_INTERVAL = 3;

private:
    // The enemy within a screen of the ship with the most others near it; null when none.
    Enemy* densestEnemyInView() const;
    // The enemy nearest the ship; null when none is left.
    Enemy* nearestEnemy() const;
};
