// One game after another in a run: a session taken down leaves nothing behind, and the next
// starts as the first game of a run does.

#include "game/GameSessions.h"

#include "game/Game.h"
#include "game/GamepadControl.h"
#include "game/Player.h"
#include "game/ScoreCounter.h"
#include "scene/ParticleSystem.h"
#include "scene/Scene2D.h"
#include "tests/support/AllocationCounter.h"
#include "tests/support/GameSession.h"

using namespace testing_support;
using orvel::vec2;

namespace {

// Frames of one played session: ten seconds at 60 a second, enough for the first wave to come
// and fight while the ship flies and fires both guns.
const int SESSION_FRAMES = 600;
const int SESSIONS = 20;

class GameSessionsTest : public SessionTest {
protected:
    // Plays SESSION_FRAMES frames from START: steering right and down, both buttons held, the
    // pointer ahead of the ship.
    static void play() {
        for (int f = 0; f < SESSION_FRAMES; ++f) {
            setInput(LEFT_BUTTON | RIGHT_BUTTON, 900, 500, f % 120 < 60 ? SDLK_d : SDLK_s, SDLK_w);
            step(START + (uint32_t)(f * 1000 / 60));
        }
    }
    // A new session at START, where play() begins.
    static void beginAtStart(int seed) {
        setTime(START);
        GameSessions::begin(seed);
    }
};

} // namespace

TEST_F(GameSessionsTest, EndTakesTheWholeSessionDownAndLeavesNoGame) {
    GameSessions::end();
    beginAtStart(99);
    play();
    ASSERT_GT(g_game->actors.count, 1u);
    GameSessions::end();
    EXPECT_EQ(g_game, nullptr);
    // A second end with no game does nothing.
    GameSessions::end();
    EXPECT_EQ(g_game, nullptr);
}

TEST_F(GameSessionsTest, TheNextSessionStartsAsTheFirstGameOfARunStarts) {
    GameSessions::end();
    beginAtStart(7);
    const unsigned freshActors = g_game->actors.count;
    const float freshEnergy = g_game->player->energy, freshHull = g_game->player->hull;
    const float freshShield = g_game->player->shield;
    play();
    g_game->scoreCounter->value = 12345;
    g_game->lives = 1;
    g_gamepad.padAims = true;
    GameSessions::end();

    beginAtStart(7);
    ASSERT_NE(g_game, nullptr);
    EXPECT_EQ(g_game->scoreCounter->value, 0u);
    EXPECT_EQ(g_game->lives, 3);
    EXPECT_EQ(g_game->wave, 0);
    EXPECT_TRUE(g_game->running);
    EXPECT_EQ(g_game->nextWaveTime, (float)(START + 5000));
    EXPECT_EQ(g_game->actors.count, freshActors);
    EXPECT_EQ(g_game->enemies.count, 0u);
    EXPECT_EQ(g_game->powerups.count, 0u);
    const Player* player = g_game->player;
    EXPECT_EQ(player->position.x, 2048.0f);
    EXPECT_EQ(player->position.y, 2048.0f);
    EXPECT_EQ(player->hull, freshHull);
    EXPECT_EQ(player->energy, freshEnergy);
    EXPECT_EQ(player->shield, freshShield);
    // The camera stands where the intro leaves it, at the screen's centre, as before the first game.
    EXPECT_EQ(g_world->camera, &g_world->defaultCamera);
    EXPECT_EQ(g_world->defaultCamera.position.x, 640.0f);
    EXPECT_EQ(g_world->defaultCamera.position.y, 360.0f);
    EXPECT_EQ(g_world->defaultCamera.zoom, 1.0f);
    EXPECT_EQ(g_world->previousCamera.position.x, 640.0f);
    EXPECT_EQ(g_world->previousCamera.position.y, 360.0f);
    EXPECT_FALSE(g_gamepad.padAims);
}

TEST_F(GameSessionsTest, TheSameSeedAndInputPlayTheSameSession) {
    GameSessions::end();
    beginAtStart(31);
    play();
    const vec2 first = g_game->player->position;
    const int firstWave = g_game->wave;
    const unsigned firstEnemies = g_game->enemies.count;
    GameSessions::end();
    beginAtStart(31);
    play();
    EXPECT_EQ(g_game->player->position.x, first.x);
    EXPECT_EQ(g_game->player->position.y, first.y);
    EXPECT_EQ(g_game->wave, firstWave);
    EXPECT_EQ(g_game->enemies.count, firstEnemies);
    EXPECT_GE(firstWave, 1);
}

TEST_F(GameSessionsTest, TwentySessionsInARowGiveTheHeapBackToTheFirstSessionsLevel) {
    GameSessions::end();
    // What the game's objects hold; the GL driver and the C library keep heaps of their own.
    size_t afterFirst = 0;
    for (int s = 0; s < SESSIONS; ++s) {
        beginAtStart(5);
        play();
        GameSessions::end();
        if (s == 0) afterFirst = liveAllocationBytes();
        ASSERT_EQ(liveAllocationBytes(), afterFirst) << "after session " << s + 1;
    }
}

TEST_F(GameSessionsTest, FramesInALaterSessionAllocateNothing) {
#if defined(__SANITIZE_ADDRESS__)
    GTEST_SKIP() << "freed blocks are not kept under AddressSanitizer";
#endif
    GameSessions::end();
    for (int s = 0; s < 3; ++s) {
        GameSessions::end();
        beginAtStart(5);
        play();
    }
    const size_t before = allocationCount();
    for (int f = 0; f < 60; ++f) {
        setInput(LEFT_BUTTON | RIGHT_BUTTON, 900, 500, SDLK_d);
        step(START + (uint32_t)((SESSION_FRAMES + f) * 1000 / 60));
    }
    EXPECT_EQ(allocationCount(), before);
}
