// Gentler effects from the settings: the camera shake off, and soft flashes that peak at 30 % and
// come at most three times a second; with the defaults both are as they always were.

#include <SDL/SDL_keysym.h>

#include "game/Game.h"
#include "game/Player.h"
#include "game/Powerup.h"
#include "game/desktop/ScreenFlash.h"
#include "game/desktop/Settings.h"
#include "scene/Fader.h"
#include "scene/Scene2D.h"
#include "tests/support/GameSession.h"

using namespace testing_support;

namespace {

class ScreenEffectsTest : public SessionTest {
protected:
    void SetUp() override {
        SessionTest::SetUp();
        g_game->init();
        saved = g_settings;
    }
    void TearDown() override {
        g_settings = saved;
        SessionTest::TearDown();
    }
    // The camera's place after one frame at `ms` with a shake of `magnitude` begun at START.
    orvel::vec2 cameraWithShake(float magnitude, uint32_t ms) {
        g_game->screenShake(1000.0f, magnitude);
        step(ms);
        const Camera2D* camera = g_world->camera ? g_world->camera : &g_world->defaultCamera;
        return camera->position;
    }

    Settings saved;
};

} // namespace

TEST_F(ScreenEffectsTest, WithShakeOffTheCameraStaysWhereItWouldWithoutAShake) {
    g_settings.screenShake = false;
    g_game->screenShake(1000.0f, 200.0f);
    EXPECT_EQ(g_game->shakeMagnitude, 0.0f);
    EXPECT_EQ(g_game->shakeEnd, (float)START + 1000.0f);
    step(START + 100);
    const orvel::vec2 still = (g_world->camera ? g_world->camera : &g_world->defaultCamera)->position;
    // The same frame with no shake at all.
    g_settings.screenShake = true;
    g_game->shakeEnd = 0.0f;
    step(START + 100);
    const orvel::vec2 unshaken = (g_world->camera ? g_world->camera : &g_world->defaultCamera)->position;
    EXPECT_EQ(still.x, unshaken.x);
    EXPECT_EQ(still.y, unshaken.y);
}

TEST_F(ScreenEffectsTest, WithShakeOnTheMagnitudeIsAsAsked) {
    g_game->screenShake(1000.0f, 200.0f);
    EXPECT_EQ(g_game->shakeMagnitude, 200.0f);
}

TEST_F(ScreenEffectsTest, AFullFlashCoversTheWholeScreenAndFadesAway) {
    ScreenFlash::flash(*g_fader, orvel::vec4(1, 1, 1, 1), 1000);
    EXPECT_EQ(g_fader->from, 1.0f);
    EXPECT_EQ(g_fader->to, 0.0f);
    EXPECT_EQ(g_fader->startTime, START);
    EXPECT_EQ(g_fader->endTime, START + 1000);
    EXPECT_EQ(g_fader->color.x + g_fader->color.y + g_fader->color.z, 3.0f);
}

TEST_F(ScreenEffectsTest, ASoftFlashPeaksAtThirtyPercentAndNeverGoesAbove) {
    g_settings.softFlashes = true;
    setTime(START + 5000);
    ScreenFlash::flash(*g_fader, orvel::vec4(1, 1, 1, 1), 1000);
    EXPECT_EQ(g_fader->from, 0.3f);
    EXPECT_EQ(g_fader->to, 0.0f);
    for (uint32_t t = START + 5000; t <= START + 6100; t += 50) {
        setTime(t);
        g_fader->draw();
        EXPECT_LE(g_fader->current, 0.3f) << t;
    }
}

TEST_F(ScreenEffectsTest, SoftFlashesComeAtMostThreeTimesASecond) {
    g_settings.softFlashes = true;
    setTime(START + 10000);
    ScreenFlash::flash(*g_fader, orvel::vec4(1, 1, 1, 1), 1000);
    EXPECT_EQ(g_fader->startTime, START + 10000);
    // A third of a second later, less a millisecond: left out.
    setTime(START + 10333);
    ScreenFlash::flash(*g_fader, orvel::vec4(1, 1, 1, 1), 1000);
    EXPECT_EQ(g_fader->startTime, START + 10000);
    setTime(START + 10334);
    ScreenFlash::flash(*g_fader, orvel::vec4(1, 1, 1, 1), 1000);
    EXPECT_EQ(g_fader->startTime, START + 10334);
}

TEST_F(ScreenEffectsTest, TheMegaNukeFlashesSoftlyWithSoftFlashes) {
    g_settings.softFlashes = true;
    g_settings.screenShake = false;
    setTime(START + 20000);
    Powerup* nuke = new Powerup();
    nuke->kind = Powerup::MEGA_NUKE;
    nuke->collect();
    delete nuke;
    EXPECT_EQ(g_fader->from, 0.3f);
    EXPECT_EQ(g_fader->startTime, START + 20000);
    EXPECT_EQ(g_game->shakeMagnitude, 0.0f);
}
