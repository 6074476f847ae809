#pragma once
// A game session on the test window: scene roots, fader, resources, a seeded g_rand and a fresh
// g_game, with the clock and frame length set by hand.

#include <cstdint>

#include <gtest/gtest.h>

#include "engine/Orvel.h"
#include "game/Enemy.h"
#include "game/Game.h"
#include "game/Main.h"
#include "game/Resources.h"
#include "scene/DirectScene2D.h"
#include "scene/Fader.h"
#include "scene/ParticleSystem.h"
#include "scene/Scene2D.h"
#include "scene/Shaders.h"
#include "tests/GLFixture.h"

namespace session_testing {

// The world of the game: a 4096 x 4096 torus.
const float WORLD = 4096.0f;
// The first frame's clock, ms.
const uint32_t START = 100000;
// 60 frames per second.
const float FRAME = 1.0f / 60.0f;

class SessionTest : public testing_support::GLTest {
protected:
    void SetUp() override {
        openWindow(1280, 720);
        Shaders::wasInit = false;
        if (!Resources::font_medium || reloadResources) {
            testing::internal::CaptureStdout();
            Resources::load();
            testing::internal::GetCapturedStdout();
        }
        g_world = new Scene2D(-1, -1);
        g_world->worldWidth = WORLD;
        g_world->worldHeight = WORLD;
        g_hud = new DirectScene2D(-1, -1);
        g_fader = new Fader();
        g_rand.init(1234);
        ParticleSystem::random.init((int)0xd34db33f);
        setTime(START);
        orvel::Orvel::sync = FRAME;
        g_game = new Game();
    }

    void TearDown() override {
        // The session's objects stay allocated: the scene roots unlink them, nothing draws them.
        delete g_world;
        g_world = nullptr;
        delete g_hud;
        g_hud = nullptr;
        g_game = nullptr;
        GLTest::TearDown();
    }

    static void setTime(uint32_t ms) { orvel::Orvel::currentTime = ms; }

    // One frame of game logic at time `ms`.
    static void step(uint32_t ms) {
        setTime(ms);
        g_game->update();
    }

    // Deletes every live enemy (their destructors take them off the lists).
    static void clearEnemies() {
        while (g_game->enemies.count > 0) delete g_game->enemies.data[0];
    }

    template <typename T> static int countOf() {
        int n = 0;
        for (unsigned i = 0; i < g_game->enemies.count; ++i) {
            if (dynamic_cast<T*>(g_game->enemies.data[i])) ++n;
        }
        return n;
    }

    // Set by a test class that draws with the art.
    bool reloadResources = false;
};

} // namespace session_testing
