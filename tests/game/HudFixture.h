#pragma once
// A 1280 x 720 window with the game's art loaded and both scene roots, for HUD and starfield tests.

#include <cstdint>

#include "engine/Orvel.h"
#include "game/Main.h"
#include "game/Resources.h"
#include "scene/DirectScene2D.h"
#include "scene/Scene2D.h"
#include "scene/Shaders.h"
#include "tests/GLFixture.h"

namespace testing_support {

// The play screen's roots: g_world (a 4096 x 4096 torus) and g_hud, both without debug
// outlines; no game. The art is loaded again for every window, since textures die with the
// context that made them.
class HudScene : public GLTest {
protected:
    static constexpr int SCREEN_WIDTH = 1280;
    static constexpr int SCREEN_HEIGHT = 720;
    static constexpr float WORLD_SIZE = 4096.0f;

    void SetUp() override {
        openWindow(SCREEN_WIDTH, SCREEN_HEIGHT);
        Shaders::wasInit = false;
        testing::internal::CaptureStdout();
        Resources::load();
        testing::internal::GetCapturedStdout();
        g_world = new Scene2D(-1, -1);
        g_world->worldWidth = WORLD_SIZE;
        g_world->worldHeight = WORLD_SIZE;
        g_world->debugDraw = false;
        g_hud = new DirectScene2D(-1, -1);
        g_hud->debugDraw = false;
        g_game = nullptr;
        orvel::Orvel::currentTime = 0;
    }

    void TearDown() override {
        delete g_hud;
        g_hud = nullptr;
        delete g_world;
        g_world = nullptr;
        GLTest::TearDown();
    }

    // Puts the mouse at (x, y) window pixels for this frame's input snapshot.
    static void setMouse(int x, int y) {
        orvel::Orvel::events->mouseLiveX = x;
        orvel::Orvel::events->mouseLiveY = y;
        orvel::Orvel::events->update();
    }

    // Clears the screen and draws the HUD scene alone.
    static void drawHud() {
        glClearColor(0, 0, 0, 0);
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT);
        g_hud->draw();
    }

    static uint8_t red(uint32_t c) { return (uint8_t)(c & 0xff); }
    static uint8_t green(uint32_t c) { return (uint8_t)((c >> 8) & 0xff); }
    static uint8_t blue(uint32_t c) { return (uint8_t)((c >> 16) & 0xff); }
};

} // namespace testing_support
