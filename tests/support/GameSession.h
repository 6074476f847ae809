#pragma once
// The play screen for game-layer tests: a 1280 x 720 window with the game's art and both scene
// roots, with or without a game session, all freed again after each test.

#include <cstdint>
#include <functional>
#include <initializer_list>

#include <SDL/SDL_keysym.h>
#include <gtest/gtest.h>

#include "engine/Matrix.h"
#include "engine/Orvel.h"
#include "engine/Random.h"
#include "engine/Vector.h"
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
#include "tests/support/GLFixture.h"

namespace testing_support {

// The world of the game: a 4096 x 4096 torus.
const float WORLD = 4096.0f;
// A session's first frame, ms of Orvel::currentTime.
const uint32_t START = 100000;
// 60 frames per second.
const float FRAME = 1.0f / 60.0f;

// SDL mouse buttons the ship reads.
const uint32_t LEFT_BUTTON = 1u << 1, RIGHT_BUTTON = 1u << 3;

// An actor of kind `Base` (Enemy or Friend) that records the damage it takes and never dies.
template <typename Base> struct DamageRecorder : Base {
    bool damage(float amount) override {
        taken += amount;
        ++hits;
        return true;
    }
    float taken = 0.0f;
    int hits = 0;
};
using DummyEnemy = DamageRecorder<Enemy>;
using DummyFriend = DamageRecorder<Friend>;

// The play screen's roots: g_world (a WORLD torus) and g_hud. The tear-down deletes the
// session a test left in g_game, g_fader and both roots.
class GameSceneTest : public GLTest {
protected:
    static constexpr int SCREEN_WIDTH = 1280;
    static constexpr int SCREEN_HEIGHT = 720;

    void SetUp() override;
    void TearDown() override;

    // Deletes `object` at the tear-down, before the session; the last kept goes first.
    template <typename T> static T* keep(T* object) {
        keepDeleting([object] { delete object; });
        return object;
    }
    static void keepDeleting(std::function<void()> deletion);

    // Loads the art again for this window. Textures die with the window that made them, so tests
    // that draw with the art set it; logic tests keep the first window's (dead) textures.
    bool reloadResources = true;
};

// The roots without outlines and without a game, at time 0: for the HUD and the starfield.
class HudScene : public GameSceneTest {
protected:
    void SetUp() override;

    // Puts the mouse at (x, y) window pixels for this frame's input snapshot.
    static void setMouse(int x, int y);
    // Clears the screen and draws the HUD scene alone.
    static void drawHud();
    // A new T on the HUD with its position at (x, y); the tear-down deletes it.
    template <typename T> static T* addToHud(float x, float y) {
        T* node = keep(new T());
        node->position = orvel::vec3(x, y, 0);
        g_hud->add(node);
        return node;
    }

    static uint8_t red(uint32_t c) { return (uint8_t)(c & 0xff); }
    static uint8_t green(uint32_t c) { return (uint8_t)((c >> 8) & 0xff); }
    static uint8_t blue(uint32_t c) { return (uint8_t)((c >> 16) & 0xff); }

    // Writes `p` as a binary PPM to the file the environment variable `variable` names, if any:
    // a picture for people, not part of any check.
    static void savePictureIfAsked(const Pixels& p, const char* variable);
};

// HudScene with the world scene's screen projection and colour, as the scene root hands them to
// the starfield's draw.
class StarfieldScene : public HudScene {
protected:
    void SetUp() override;

    orvel::mat4 projection;
    SceneState state;
};

// A game session: the roots, g_fader, a seeded g_rand and ParticleSystem::random, the clock at
// START with FRAME as the frame length, no input, and a fresh g_game that has not been initialised.
class SessionTest : public GameSceneTest {
protected:
    SessionTest() { reloadResources = false; }
    void SetUp() override;

    static void setTime(uint32_t ms) { orvel::Orvel::currentTime = ms; }
    // One frame of game logic at time `ms`.
    static void step(uint32_t ms) {
        setTime(ms);
        g_game->update();
    }

    // One frame's input snapshot: up to two keys held (-1 none), mouse buttons and position.
    static void setInput(uint32_t buttons, int mouseX, int mouseY, int key = -1, int key2 = -1);

    // The next integer draws of g_rand return `values` in order (each below 2^31).
    static void plantInts(std::initializer_list<int> values);
    // The next float draws of g_rand return `values` in order. The int cursor is moved away
    // first, since each float draw writes a complement under it.
    static void plantFloats(std::initializer_list<float> values);

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
    // A new T on the enemies list (not on the actors) at (x, y) with `radius`.
    template <typename T> static T* addEnemy(float x, float y, float radius) {
        T* e = new T();
        e->position = orvel::vec2(x, y);
        e->radius = radius;
        g_game->enemies.push(e);
        return e;
    }
    // `enemy` on the enemies and actors lists with its drawable in the world, as a wave lists it.
    template <typename T> static T* listInWorld(T* enemy) {
        g_game->enemies.push(enemy);
        g_game->actors.push(enemy);
        g_world->add(enemy->drawable);
        return enemy;
    }
    // addEnemy of a DummyEnemy that has an empty group in the world as its drawable, for nodes
    // inserted after it; the tear-down deletes the group.
    static DummyEnemy* addDummyInWorld(float x, float y, float radius);
};

} // namespace testing_support
