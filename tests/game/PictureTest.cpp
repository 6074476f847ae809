// Whole pictures of the game, as the frame draws them (screen clear, world, HUD, fader), held to
// the exact pixels they had when they were recorded: the intro, a fight at wave 1 and a fight at
// wave 17. Work on the renderer may make a frame cheaper, never different.
//
// The recorded pictures are fingerprints (64-bit FNV-1a of the RGBA bytes, bottom row first) of
// what Mesa's llvmpipe draws; another renderer rounds differently, so there the test is skipped.
// NIGHTVECTOR_PICTURE_DIR=<dir> writes every picture there as a PPM for a look at it.

#include <cstdlib>
#include <string>

#include "game/Main.h"
#include "game/Player.h"
#include "scene/Text.h"
#include "tests/support/GameSession.h"

using namespace testing_support;

namespace {

// The renderer the fingerprints were recorded on.
const char* const RECORDED_RENDERER = "llvmpipe (LLVM 15.0.6, 256 bits)";

const uint64_t INTRO_PICTURE = 0x41514c83815e0131ull;
const uint64_t WAVE_1_PICTURE = 0x3184ec0d8c6068f6ull;
const uint64_t WAVE_17_PICTURE = 0x7782149a2cf6b43dull;

// Frames of play before the picture: one and a half seconds of fire.
const int FIGHT_FRAMES = 90;
// Where the pointer aims, in window pixels: up and to the right of the ship.
const int AIM_X = 900, AIM_Y = 200;

uint64_t fingerprint(const std::vector<uint32_t>& pixels) {
    uint64_t h = 1469598103934665603ull;
    for (uint32_t p : pixels) {
        for (int k = 0; k < 4; ++k) {
            h ^= (p >> (8 * k)) & 0xffu;
            h *= 1099511628211ull;
        }
    }
    return h;
}

class PictureTest : public SessionTest {
protected:
    PictureTest() { reloadResources = true; }

    void SetUp() override {
        SessionTest::SetUp();
        g_world->debugDraw = false;
        g_hud->debugDraw = false;
        // As the game sets it: the world's copy replaces the screen.
        g_world->copyOverBlack = true;
        const char* renderer = (const char*)glGetString(GL_RENDERER);
        if (!renderer || std::string(renderer) != RECORDED_RENDERER)
            GTEST_SKIP() << "pictures were recorded on " << RECORDED_RENDERER << ", this is "
                         << (renderer ? renderer : "no renderer");
    }

    // One frame as the main loop draws it, over a screen painted magenta first: a pixel that the
    // frame leaves as it was would show in the fingerprint.
    static void drawFrame() {
        glClearColor(1, 0, 1, 1);
        glClear(GL_COLOR_BUFFER_BIT);
        glClearColor(0, 0, 0, 0);
        clearForFrame();
        g_world->draw();
        g_hud->draw();
        g_fader->draw();
    }

    // FIGHT_FRAMES frames of play with both weapons firing at the aim point, each drawn.
    static void fight() {
        for (int i = 0; i < FIGHT_FRAMES; ++i) {
            setInput(LEFT_BUTTON | RIGHT_BUTTON, AIM_X, AIM_Y);
            step(START + (uint32_t)(i * 1000 / 60));
            // The ship stays whole and armed, so the picture is a fight and not a wreck.
            g_game->player->hull = g_game->player->maxHull;
            g_game->player->energy = g_game->player->maxEnergy;
            drawFrame();
        }
    }

    // The fingerprint of the picture drawn now; saved as `name`.ppm when asked.
    static uint64_t picture(const char* name) {
        drawFrame();
        Pixels p = readScreen();
        if (const char* dir = std::getenv("NIGHTVECTOR_PICTURE_DIR"))
            savePicture(p, (std::string(dir) + "/" + name + ".ppm").c_str());
        return fingerprint(p.data);
    }
};

TEST_F(PictureTest, IntroScreenKeepsItsPixels) {
    g_fader->color = orvel::vec4(1, 1, 1, 1);
    g_apology = new Apology();
    const uint64_t got = picture("intro");
    for (unsigned i = 0; i < g_apology->lines.count; ++i) delete g_apology->lines.data[i];
    delete g_apology;
    g_apology = nullptr;
    EXPECT_EQ(got, INTRO_PICTURE) << std::hex << "0x" << got;
}

TEST_F(PictureTest, FightAtWaveOneKeepsItsPixels) {
    g_game->init();
    fight();
    const uint64_t got = picture("wave1");
    EXPECT_EQ(got, WAVE_1_PICTURE) << std::hex << "0x" << got;
}

TEST_F(PictureTest, FightAtWaveSeventeenKeepsItsPixels) {
    g_game->init();
    while (g_game->wave < 17) {
        clearEnemies();
        g_game->nextWave();
    }
    fight();
    const uint64_t got = picture("wave17");
    EXPECT_EQ(got, WAVE_17_PICTURE) << std::hex << "0x" << got;
}

} // namespace
