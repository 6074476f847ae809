// A frame of play with the whole HUD: a real game session stepped into its first wave, the
// radar and gauges in their boxes, drawn world first, then the HUD.

#include <cstring>

#include "engine/Orvel.h"
#include "game/EnergyGauges.h"
#include "game/Game.h"
#include "game/HUDRadarBox.h"
#include "game/HUDWeaponBox.h"
#include "game/Player.h"
#include "game/Powerup.h"
#include "game/Enemy.h"
#include "game/RadarDisplay.h"
#include "game/Reticle.h"
#include "game/ScoreCounter.h"
#include "scene/Text.h"
#include "tests/support/GameSession.h"

using orvel::Orvel;
using testing_support::HudScene;

namespace {

class PlayScreenTest : public HudScene {
protected:
    void SetUp() override {
        HudScene::SetUp();
        g_rand.init(5);
        Orvel::currentTime = 1000;
        Orvel::sync = 0.016f;
        g_game = new Game();
        g_game->init();
        radar = keep(new RadarDisplay());
        g_game->radarBox->add(radar);
        gauges = keep(new EnergyGauges());
        g_game->weaponBox->add(gauges);
    }

    // Steps the game from the current time up to `until` in 16 ms frames, mouse at (mx, my).
    static void playUntil(uint32_t until, int mx, int my) {
        while (Orvel::currentTime < until) {
            Orvel::currentTime += 16;
            setMouse(mx, my);
            g_game->update();
        }
    }

    static void drawFrame() {
        glClearColor(0, 0, 0, 0);
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT);
        g_world->draw();
        g_hud->draw();
    }


    RadarDisplay* radar = nullptr;
    EnergyGauges* gauges = nullptr;
};

} // namespace

TEST_F(PlayScreenTest, TheFirstWaveShowsOnTheRadarWhileTheScoreRolls) {
    playUntil(6600, 900, 260);
    ASSERT_GT(g_game->enemies.count, 0u);
    g_game->scoreCounter->addValue(55);
    playUntil(6616, 900, 260);
    g_game->scoreCounter->addValue(55);
    playUntil(6800, 900, 260);
    drawFrame();
    Pixels p = readScreen();
    savePictureIfAsked(p, "NIGHTVECTOR_PLAY_SHOT");

    // The radar gathered every enemy of the wave.
    EXPECT_EQ(radar->blips.count, g_game->enemies.count + g_game->powerups.count);
    // Some enemy blips are lit on the dial.
    int enemyPixels = 0;
    for (int y = 480; y < 705; ++y) {
        for (int x = 1040; x < 1265; ++x) {
            uint32_t c = p.at(x, y);
            if (red(c) >= 250 && green(c) >= 66 && green(c) <= 74 && blue(c) >= 56 && blue(c) <= 64)
                ++enemyPixels;
        }
    }
    EXPECT_GT(enemyPixels, 0);
    // The counter is mid-roll: it shows less than the score.
    int shown = std::atoi(g_game->scoreCounter->text->text.getCString());
    EXPECT_EQ(g_game->scoreCounter->value, 110);
    EXPECT_LT(shown, 110);
    EXPECT_GT(shown, 0);
    // The gauges read the player's energy and hull.
    EXPECT_EQ(gauges->maxEnergy, g_game->player->maxEnergy);
    EXPECT_EQ(gauges->hull, g_game->player->hull);
    // The reticle is under the mouse.
    EXPECT_FLOAT_EQ(g_game->reticle->position.x, 900.0f);
    EXPECT_FLOAT_EQ(g_game->reticle->position.y, 260.0f);
}

TEST_F(PlayScreenTest, TheRadarPlacesEveryEnemyAndPowerupAroundTheShip) {
    g_game->player->position = orvel::vec2(100, 100);
    g_game->nextWave();
    ASSERT_GE(g_game->enemies.count, 2u);
    g_game->enemies.data[0]->position = orvel::vec2(1124, 100);
    g_game->enemies.data[1]->position = orvel::vec2(4000, 100);
    Powerup* powerup = new Powerup();
    powerup->position = orvel::vec2(100, 4000);
    g_game->powerups.push(powerup);
    radar->gather();

    ASSERT_EQ(radar->blips.count, g_game->enemies.count + 1);
    EXPECT_EQ(radar->worldSize.x, 4096.0f);
    EXPECT_FLOAT_EQ(radar->blips.data[0].dx, 1024.0f);
    EXPECT_FLOAT_EQ(radar->blips.data[0].dy, 0.0f);
    EXPECT_EQ(radar->blips.data[0].kind, RadarDisplay::BLIP_ENEMY);
    EXPECT_FLOAT_EQ(radar->blips.data[1].dx, -196.0f);
    EXPECT_FLOAT_EQ(radar->blips.data[1].dy, 0.0f);
    const RadarDisplay::Blip& last = radar->blips.data[radar->blips.count - 1];
    EXPECT_FLOAT_EQ(last.dx, 0.0f);
    EXPECT_FLOAT_EQ(last.dy, -196.0f);
    EXPECT_EQ(last.kind, RadarDisplay::BLIP_POWERUP);

    // The HUD alone: 56.5 pixels right of the dial's centre (1152, 592), 10.8 left of it, and
    // 10.8 above it.
    drawHud();
    Pixels p = readScreen();
    EXPECT_NEAR(red(p.at(1208, 592)), 255, 1);
    EXPECT_NEAR(green(p.at(1208, 592)), 70, 1);
    EXPECT_NEAR(red(p.at(1141, 592)), 255, 1);
    EXPECT_NEAR(blue(p.at(1141, 592)), 60, 1);
    EXPECT_NEAR(red(p.at(1152, 581)), 90, 1);
    EXPECT_NEAR(green(p.at(1152, 581)), 255, 1);
}
