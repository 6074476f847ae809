// A game recorded and played back in a fresh session runs the same way: every recorded state
// hash matches, and so do the score, the wave and the lives at the end. What the recorder takes
// from the frame, and what the playback puts back, are exactly what the game reads.

#include <algorithm>
#include <cstdlib>
#include <cmath>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include "game/GameSessions.h"
#include "game/desktop/Settings.h"
#include "game/Player.h"
#include "game/ScoreCounter.h"
#include "game/replay/ReplayPlayback.h"
#include "game/replay/ReplayRecorder.h"
#include "game/replay/ReplayViewer.h"
#include "game/replay/StateHash.h"
#include "tests/support/FileChecks.h"
#include "tests/support/GameSession.h"

using namespace testing_support;
using orvel::Orvel;

namespace {

// The fight at wave 17 as the Release build recorded it.
const char* const RELEASE_REPLAY = "tests/game/replay/release-wave17.nvr";

// The input of update `i`: mouse buttons, pointer and up to two keys.
struct Input {
    uint32_t buttons;
    int x, y;
    int key, key2;
};
using Script = std::function<Input(int)>;
// Something done to a fresh session before its first update, the same way at the recording and
// at the playback.
using Prelude = std::function<void()>;

// Steering round in a slow square, both guns held now and then, the pointer circling the ship.
Input wanderAndFire(int i) {
    static const int KEYS[4] = {SDLK_d, SDLK_s, SDLK_a, SDLK_w};
    const double a = i / 40.0;
    Input in;
    in.buttons = (i / 200) % 3 == 0 ? 0 : (i / 200) % 3 == 1 ? LEFT_BUTTON : LEFT_BUTTON | RIGHT_BUTTON;
    in.x = 640 + (int)std::lround(250 * std::cos(a));
    in.y = 360 + (int)std::lround(250 * std::sin(a));
    in.key = KEYS[(i / 150) % 4];
    in.key2 = i % 500 < 100 ? KEYS[(i / 150 + 1) % 4] : -1;
    return in;
}

// Both guns at the nearest enemy, as drawn on the screen, while steering round in a square.
Input fightNearest(int i) {
    Input in = wanderAndFire(i);
    in.buttons = LEFT_BUTTON | RIGHT_BUTTON;
    const Enemy* nearest = nullptr;
    float best = 1e30f;
    for (unsigned e = 0; e < g_game->enemies.count; ++e) {
        const Enemy* enemy = g_game->enemies.data[e];
        const float dx = enemy->position.x - g_game->player->position.x;
        const float dy = enemy->position.y - g_game->player->position.y;
        if (dx * dx + dy * dy < best) best = dx * dx + dy * dy, nearest = enemy;
    }
    if (nearest) {
        const orvel::vec2 p = g_world->drawnPosition(nearest->position);
        in.x = std::min(std::max((int)std::lround(p.x), 0), 1279);
        in.y = std::min(std::max((int)std::lround(p.y), 0), 719);
    }
    return in;
}

// ms between updates: mostly 16 and 17, now and then a long frame.
uint32_t stepOf(int i) { return i % 97 == 13 ? 50 : (i % 3 == 0 ? 17 : 16); }

class ReplayDeterminismTest : public SessionTest {
protected:
    // A fresh session begun at `start` with generators seeded from `seed`.
    static void freshSession(int seed, uint32_t start) {
        GameSessions::end();
        Orvel::setFrameTime(start, start);
        GameSessions::begin(seed);
    }

    // Plays `updates` updates of a fresh session with `script`'s input, drawing every frame when
    // `draw`, and returns the recording.
    std::vector<uint8_t> record(int seed, int updates, const Script& script, const Prelude& prelude, bool draw) {
        freshSession(seed, START);
        if (prelude) prelude();
        ReplayRecorder recorder;
        recorder.begin((uint32_t)seed);
        framesWithPowerups = 0;
        uint32_t time = START;
        for (int i = 0; i < updates; ++i) {
            const Input in = script(i);
            setInput(in.buttons, in.x, in.y, in.key, in.key2);
            const uint32_t last = time;
            time += stepOf(i);
            Orvel::setFrameTime(last, time);
            recorder.beforeUpdate();
            g_game->update();
            recorder.afterUpdate(*g_game);
            if (g_game->powerups.count) ++framesWithPowerups;
            if (draw) {
                g_world->draw();
                g_hud->draw();
            }
        }
        recorder.finish(*g_game);
        return recorder.file().bytes();
    }

    // Plays `bytes` back in a fresh session; the frame of the first hash that differs, or -1.
    static long playBack(const std::vector<uint8_t>& bytes, const Prelude& prelude, replay::Result& result) {
        replay::Replay r;
        std::string error;
        EXPECT_TRUE(replay::read(bytes.data(), bytes.size(), r, error)) << error;
        if (r.frames.empty()) return -2;
        freshSession((int)r.header.seed, r.frames[0].time - r.frames[0].sync);
        if (prelude) prelude();
        for (size_t i = 0; i < r.frames.size(); ++i) {
            ReplayPlayback::apply(r.frames[i]);
            g_game->update();
            if (r.frames[i].hasHash && stateHash(*g_game) != r.frames[i].hash) return (long)i;
        }
        result.score = g_game->scoreCounter->value;
        result.wave = g_game->wave;
        result.lives = g_game->lives;
        EXPECT_EQ(result.score, r.result.score);
        EXPECT_EQ(result.wave, r.result.wave);
        EXPECT_EQ(result.lives, r.result.lives);
        return -1;
    }

    int framesWithPowerups = 0; // updates of the last recording after which a powerup was out
};

// Straight to wave 17: sixteen waves started and cleared before play.
void toWave17() {
    while (g_game->wave < 17) {
        while (g_game->enemies.count) delete g_game->enemies.data[0];
        g_game->nextWave();
    }
}

} // namespace

TEST_F(ReplayDeterminismTest, ThreeMinutesAtWaveOnePlayBackExactly) {
    const std::vector<uint8_t> file = record(4242, 3 * 60 * 60, wanderAndFire, nullptr, false);
    replay::Result result;
    EXPECT_EQ(playBack(file, nullptr, result), -1);
    // The recording was a game: waves came and points were scored.
    EXPECT_GE(result.wave, 2);
    EXPECT_GT(result.score, 0);
    printf("3 minutes: %zu bytes\n", file.size());
}

TEST_F(ReplayDeterminismTest, AFightAtWaveSeventeenPlaysBackExactly) {
    const std::vector<uint8_t> file = record(99, 90 * 60, fightNearest, toWave17, false);
    // Kept for the test across builds when asked: RELEASE_REPLAY names it.
    if (const char* keep = std::getenv("NIGHTVECTOR_KEEP_REPLAY"))
        writeFileContents(keep, std::string(file.begin(), file.end()));
    replay::Result result;
    EXPECT_EQ(playBack(file, toWave17, result), -1);
    EXPECT_GE(result.wave, 17);
    EXPECT_GT(result.score, 0);
    EXPECT_GT(framesWithPowerups, 0);
    // The ship died at least once.
    EXPECT_LT(result.lives, 3);
}

TEST_F(ReplayDeterminismTest, DrawnFramesDoNotChangeWhatHappens) {
    // Recorded with every frame drawn, as the game draws them; played back without drawing, as
    // a replay at a higher speed skips drawn frames.
    const std::vector<uint8_t> file = record(7, 8 * 60, fightNearest, toWave17, true);
    replay::Result result;
    EXPECT_EQ(playBack(file, toWave17, result), -1);
}

TEST_F(ReplayDeterminismTest, AGameThatRunsOtherwiseIsCaughtAtTheFirstHash) {
    const std::vector<uint8_t> file = record(4242, 300, wanderAndFire, nullptr, false);
    replay::Result result;
    // The ship a unit off where the recording had it.
    EXPECT_EQ(playBack(file, [] { g_game->player->position.x += 1.0f; }, result),
              (long)ReplayRecorder::HASH_EVERY - 1);
}

TEST_F(ReplayDeterminismTest, TheRecordedInputIsWhatTheGameReads) {
    // Both ship buttons and the middle one, W and D, the pointer far off the screen.
    setInput(LEFT_BUTTON | RIGHT_BUTTON | 1u << 2, 40000, 300, SDLK_w, SDLK_d);
    Orvel::setFrameTime(1000, 1016);
    replay::Frame f = ReplayRecorder::currentInput();
    EXPECT_EQ(f.time, 1016u);
    EXPECT_EQ(f.sync, 16u);
    EXPECT_EQ(f.keys, replay::KEY_W | replay::KEY_D);
    EXPECT_EQ(f.buttons, LEFT_BUTTON | RIGHT_BUTTON);
    EXPECT_EQ(f.mouseX, 32767);
    EXPECT_EQ(f.mouseY, 300);
    setInput(0, -7, 719, SDLK_a, SDLK_s);
    Orvel::setFrameTime(1016, 1066);
    f = ReplayRecorder::currentInput();
    EXPECT_EQ(f.sync, 50u);
    EXPECT_EQ(f.keys, replay::KEY_A | replay::KEY_S);
    EXPECT_EQ(f.buttons, 0);
    EXPECT_EQ(f.mouseX, -7);
}

TEST_F(ReplayDeterminismTest, PlaybackPutsBackTheClockAndTheInputAsTheUpdateFoundThem) {
    replay::Frame f;
    f.time = 2000;
    f.sync = 33;
    f.keys = replay::KEY_A | replay::KEY_S;
    f.buttons = RIGHT_BUTTON;
    f.mouseX = -5;
    f.mouseY = 800;
    setInput(LEFT_BUTTON, 10, 20, SDLK_w, SDLK_p);
    ReplayPlayback::apply(f);
    EXPECT_EQ(Orvel::currentTime, 2000u);
    EXPECT_EQ(Orvel::lastTime, 1967u);
    // As Orvel's own update computes them from the same two times.
    EXPECT_EQ(Orvel::sync, 0.001f * 33.0f);
    EXPECT_EQ(Orvel::sync16, 2162);
    EXPECT_TRUE(Orvel::keyDown(SDLK_a));
    EXPECT_TRUE(Orvel::keyDown(SDLK_s));
    EXPECT_FALSE(Orvel::keyDown(SDLK_w));
    EXPECT_FALSE(Orvel::keyDown(SDLK_p));
    EXPECT_TRUE(Orvel::mouseDown(3));
    EXPECT_FALSE(Orvel::mouseDown(1));
    EXPECT_EQ(Orvel::mouseX(), -5);
    EXPECT_EQ(Orvel::mouseY(), 800);
    // The frame before is the previous one.
    EXPECT_TRUE(Orvel::keyReleased(SDLK_w));
    EXPECT_TRUE(Orvel::keyPressed(SDLK_a));
    EXPECT_EQ(Orvel::events->mousePrevX, 10);
    EXPECT_EQ(Orvel::events->buttonsPrev, LEFT_BUTTON);
}

namespace {

replay::Replay readReplay(const std::vector<uint8_t>& bytes) {
    replay::Replay r;
    std::string error;
    EXPECT_TRUE(replay::read(bytes.data(), bytes.size(), r, error)) << error;
    return r;
}

} // namespace

TEST_F(ReplayDeterminismTest, TheViewerStepsOneTwoOrFourUpdatesAFrameAndSpacePauses) {
    const replay::Replay r = readReplay(record(11, 200, wanderAndFire, nullptr, false));
    ReplayViewer viewer(r);
    viewer.start();
    setInput(0, 0, 0);
    viewer.update();
    EXPECT_EQ(viewer.framesPlayed(), 1u);
    setInput(0, 0, 0, SDLK_2);
    viewer.update();
    EXPECT_EQ(viewer.framesPlayed(), 3u);
    EXPECT_EQ(viewer.speed(), 2);
    setInput(0, 0, 0);
    viewer.update();
    EXPECT_EQ(viewer.framesPlayed(), 5u);
    setInput(0, 0, 0, SDLK_4);
    viewer.update();
    EXPECT_EQ(viewer.framesPlayed(), 9u);
    setInput(0, 0, 0, SDLK_1);
    viewer.update();
    EXPECT_EQ(viewer.framesPlayed(), 10u);
    setInput(0, 0, 0, SDLK_SPACE);
    viewer.update();
    EXPECT_TRUE(viewer.paused());
    setInput(0, 0, 0);
    viewer.update();
    viewer.update();
    EXPECT_EQ(viewer.framesPlayed(), 10u);
    // The picture stands at the last update's time.
    EXPECT_EQ(Orvel::currentTime, r.frames[9].time);
    setInput(0, 0, 0, SDLK_SPACE);
    viewer.update();
    EXPECT_FALSE(viewer.paused());
    EXPECT_EQ(viewer.framesPlayed(), 11u);
}

TEST_F(ReplayDeterminismTest, ThePlayersInputDoesNotReachTheShipAndIsThereAfterwards) {
    const replay::Replay r = readReplay(record(12, 300, wanderAndFire, nullptr, false));
    ReplayViewer viewer(r);
    viewer.start();
    while (!viewer.finished()) {
        // The player steers left with both guns held, the pointer in a corner.
        setInput(LEFT_BUTTON | RIGHT_BUTTON, 0, 0, SDLK_a, SDLK_w);
        viewer.update();
        EXPECT_TRUE(Orvel::keyDown(SDLK_a));
        EXPECT_EQ(Orvel::mouseX(), 0);
    }
    EXPECT_EQ(viewer.divergence(), -1);
    EXPECT_EQ(viewer.framesPlayed(), 300u);
    EXPECT_EQ(g_game->scoreCounter->value, r.result.score);
    EXPECT_EQ(g_game->lives, r.result.lives);
}

TEST_F(ReplayDeterminismTest, TheLabelGivesTheTimeIntoTheReplay) {
    const replay::Replay r = readReplay(record(13, 4000, wanderAndFire, nullptr, false));
    ReplayViewer viewer(r);
    viewer.start();
    EXPECT_EQ(viewer.label(), "Replay  0:00");
    setInput(0, 0, 0, SDLK_4);
    while (!viewer.finished()) viewer.update();
    const uint32_t ms = r.frames.back().time - r.frames.front().time;
    char expected[32];
    snprintf(expected, sizeof expected, "Replay  %u:%02u", ms / 60000, ms / 1000 % 60);
    EXPECT_EQ(viewer.label(), expected);
    // 3,999 steps: 42 of 50 ms, 1,319 of 17 and 2,638 of 16, 66,731 ms in all.
    EXPECT_EQ(viewer.label(), "Replay  1:06");
}

TEST_F(ReplayDeterminismTest, AHashThatDiffersStopsThePlaybackWithOneLine) {
    replay::Replay r = readReplay(record(14, 200, wanderAndFire, nullptr, false));
    r.frames[119].hash ^= 1;
    ReplayViewer viewer(r);
    viewer.start();
    testing::internal::CaptureStderr();
    setInput(0, 0, 0);
    while (!viewer.finished()) viewer.update();
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "Replay diverged at frame 119\n");
    EXPECT_EQ(viewer.divergence(), 119);
    EXPECT_EQ(viewer.framesPlayed(), 120u);
}

TEST_F(ReplayDeterminismTest, AFightRecordedByTheReleaseBuildPlaysBackExactlyInThisOne) {
    // RELEASE_REPLAY is the fight above as the Release build (-O3) recorded it; the sanitizer
    // build (-O1) and the test build play it here. Recorded again whenever the game's rules
    // change, as any replay of an older game then departs from it.
    const std::string bytes = fileContents(RELEASE_REPLAY);
    ASSERT_FALSE(bytes.empty());
    replay::Result result;
    EXPECT_EQ(playBack(std::vector<uint8_t>(bytes.begin(), bytes.end()), toWave17, result), -1);
    EXPECT_GE(result.wave, 17);
}

TEST_F(ReplayDeterminismTest, FastForwardPlaysTheRestAtOnceAndLeavesThePlayersKeys) {
    const replay::Replay r = readReplay(record(15, 500, wanderAndFire, nullptr, false));
    ReplayViewer viewer(r);
    viewer.start();
    setInput(0, 0, 0);
    viewer.update();
    // Escape held by the player while the rest runs undrawn.
    setInput(0, 5, 6, SDLK_ESCAPE);
    viewer.fastForward();
    EXPECT_TRUE(viewer.finished());
    EXPECT_EQ(viewer.framesPlayed(), 500u);
    EXPECT_EQ(viewer.divergence(), -1);
    EXPECT_EQ(g_game->scoreCounter->value, r.result.score);
    EXPECT_TRUE(Orvel::keyPressed(SDLK_ESCAPE));
    EXPECT_FALSE(Orvel::keyDown(SDLK_d));
    EXPECT_EQ(Orvel::mouseX(), 5);
}

TEST_F(ReplayDeterminismTest, TheViewersOwnShakeAndFlashesHoldWhateverTheRecordings) {
    replay::Replay r = readReplay(record(16, 120, wanderAndFire, nullptr, false));
    r.header.screenShake = false;
    r.header.softFlashes = true;
    const Settings before = g_settings;
    g_settings.screenShake = true;
    g_settings.softFlashes = false;
    ReplayViewer viewer(r);
    viewer.start();
    setInput(0, 0, 0);
    while (!viewer.finished()) viewer.update();
    EXPECT_TRUE(g_settings.screenShake);
    EXPECT_FALSE(g_settings.softFlashes);
    EXPECT_EQ(viewer.divergence(), -1);
    g_settings = before;
}

namespace {

// One change no game could have made to what `r` holds; the file written from it checks whole.
void oddContents(replay::Replay& r, std::mt19937& rng) {
    if (r.frames.empty()) return;
    replay::Frame& f = r.frames[rng() % r.frames.size()];
    const size_t at = (size_t)(&f - r.frames.data());
    switch (rng() % 10) {
    case 0: f.keys = (uint8_t)rng(); break;
    case 1: f.buttons = (uint8_t)rng(); break;
    case 2:
        f.mouseX = (int16_t)rng();
        f.mouseY = (int16_t)rng();
        break;
    case 3: {
        // A stall from one frame on, up to the longest step a file may hold.
        static const uint32_t STALLS[] = {1, 250, 60000, replay::MAX_STEP_MS - 17};
        const uint32_t stall = STALLS[rng() % 4];
        f.sync += stall;
        for (size_t i = at; i < r.frames.size(); ++i) r.frames[i].time += stall;
        break;
    }
    case 4: f.time -= 1 + rng() % 100; break; // a clock that runs back, or a step that disagrees
    case 5: f.sync = rng() % 200; break;       // a step that disagrees with the clock
    case 6:
        f.hasHash = !f.hasHash;
        f.hash = ((uint64_t)rng() << 32) | rng();
        break;
    case 7: r.header.seed = rng(); break;
    case 8: r.frames.resize(at); break;
    default:
        r.header.screenWidth = (uint16_t)rng();
        r.header.screenHeight = (uint16_t)rng();
        break;
    }
}

} // namespace

TEST_F(ReplayDeterminismTest, FilesThatCheckWholeButHoldOddContentsPlayToTheirEndOrStopAtADivergence) {
    const replay::Replay base = readReplay(record(21, 600, wanderAndFire, nullptr, false));
    std::mt19937 rng(20261125);
    int whole = 0, diverged = 0, refused = 0;
    for (int round = 0; round < 1000; ++round) {
        replay::Replay r = base;
        for (int changes = 1 + (int)(rng() % 3); changes > 0; --changes) oddContents(r, rng);
        const std::vector<uint8_t> bytes = replay::write(r);
        replay::Replay back;
        std::string error;
        if (!replay::read(bytes.data(), bytes.size(), back, error)) {
            EXPECT_EQ(error.rfind("damaged (", 0), 0u) << error;
            ++refused;
            continue;
        }
        testing::internal::CaptureStderr();
        ReplayViewer viewer(back);
        viewer.start();
        setInput(0, 640, 360);
        viewer.fastForward();
        const std::string said = testing::internal::GetCapturedStderr();
        if (viewer.divergence() >= 0) {
            EXPECT_EQ(said, "Replay diverged at frame " + std::to_string(viewer.divergence()) + "\n");
            EXPECT_EQ(viewer.framesPlayed(), (size_t)viewer.divergence() + 1);
            ++diverged;
        } else {
            EXPECT_EQ(said, "");
            EXPECT_EQ(viewer.framesPlayed(), back.frames.size());
            ++whole;
        }
    }
    printf("%d played whole, %d diverged, %d refused\n", whole, diverged, refused);
    // Every kind of outcome came up, or a check above checked nothing.
    EXPECT_GT(whole, 0);
    EXPECT_GT(diverged, 0);
    EXPECT_GT(refused, 0);
}

TEST_F(ReplayDeterminismTest, DrawingNeverChangesTheCamerasZoomEvenAtTheLongestLead) {
    // The draw repairs a zoom at or below 0.01 in the camera itself, which an update would then
    // read; the lead the ship can build keeps the zoom far above that.
    freshSession(5, START);
    uint32_t time = START;
    float least = 1.0f;
    for (int i = 0; i < 600; ++i) {
        setInput(0, 1279, 360, SDLK_d);
        Orvel::setFrameTime(time, time + 16);
        time += 16;
        g_game->update();
        const Camera2D& camera = g_world->camera ? *g_world->camera : g_world->defaultCamera;
        const float before = camera.zoom;
        g_world->draw();
        EXPECT_EQ(camera.zoom, before) << "update " << i;
        least = std::min(least, before);
    }
    // At top speed the lead is 350 units, of the 707 that would zoom out by a fifth.
    EXPECT_NEAR(least, 1.0f - Player::MAX_SPEED / orvel::vec2(500.0f, 500.0f).length() * 0.2f, 1e-5f);
}
