#pragma once
// A game session on the test window for the weapons, the ship and the powerups: scene roots,
// fader, resources, a seeded g_rand and a fresh g_game, with clock, frame length and input set
// by hand.

#include <cstdint>

#include <gtest/gtest.h>

#include "engine/Orvel.h"
#include "engine/Random.h"
#include "game/Enemy.h"
#include "game/Friend.h"
#include "game/Game.h"
#include "game/Main.h"
#include "game/Resources.h"
#include "scene/DirectScene2D.h"
#include "scene/Fader.h"
#include "scene/Group.h"
#include "scene/ParticleSystem.h"
#include "scene/Scene2D.h"
#include "scene/Shaders.h"
#include "tests/GLFixture.h"

namespace combat_testing {

// The world of the game: a 4096 x 4096 torus.
const float WORLD = 4096.0f;
// The first frame's clock, ms.
const uint32_t START = 100000;

// SDL key symbols and mouse buttons the ship reads.
const int KEY_W = 119, KEY_S = 115, KEY_A = 97, KEY_D = 100;
const uint32_t LEFT_BUTTON = 1u << 1, RIGHT_BUTTON = 1u << 3;

// An enemy that only records the damage it takes and never dies.
struct DummyEnemy : Enemy {
    bool damage(float amount) override {
        taken += amount;
        ++hits;
        return true;
    }
    float taken = 0.0f;
    int hits = 0;
};

// A friend that records the damage it takes.
struct DummyFriend : Friend {
    bool damage(float amount) override {
        taken += amount;
        ++hits;
        return true;
    }
    float taken = 0.0f;
    int hits = 0;
};

class CombatTest : public testing_support::GLTest {
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
        orvel::Orvel::sync = 1.0f / 60.0f;
        setInput(0, 0, 0, 0);
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

    // One frame's input snapshot: up to two keys held (-1 none), mouse buttons and position.
    static void setInput(uint32_t buttons, int mouseX, int mouseY, int key = -1, int key2 = -1) {
        orvel::Orvel::GEvent* e = orvel::Orvel::events;
        for (uint32_t& w : e->keysLive) w = 0;
        if (key >= 0) e->keysLive[key / 32] |= 1u << (key % 32);
        if (key2 >= 0) e->keysLive[key2 / 32] |= 1u << (key2 % 32);
        e->buttonsLive = buttons;
        e->mouseLiveX = mouseX;
        e->mouseLiveY = mouseY;
        e->update();
    }

    // The next integer draws of g_rand return `values` in order (each below 2^31).
    static void plantInts(std::initializer_list<int> values) {
        int i = g_rand.intCursor;
        for (int v : values) g_rand.intTable[(i++) & 0xffff] = v;
    }
    // The next float draws of g_rand return `values` in order. The int cursor is moved away
    // first, since each float draw writes a complement under it.
    static void plantFloats(std::initializer_list<float> values) {
        g_rand.intCursor = 30000;
        g_rand.floatCursor = 100;
        int i = g_rand.floatCursor;
        for (float v : values) g_rand.floatTable[i++] = v;
    }

    // Gives `a` an empty group in the world as its drawable, for nodes inserted after it.
    static void placeInWorld(Actor* a) {
        a->drawable = new Group();
        g_world->add(a->drawable);
    }

    // Set by a test class that draws with the art: textures live in the window's context.
    bool reloadResources = false;

    template <typename T> static T* addEnemy(float x, float y, float radius) {
        T* e = new T();
        e->position = orvel::vec2(x, y);
        e->radius = radius;
        g_game->enemies.push(e);
        return e;
    }
};

} // namespace combat_testing
