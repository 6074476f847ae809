// The play screen's HUD as the game lays it out: the three boxes in their corners, the score
// counter in its box, the reticle under the mouse, the radar and gauges inside their boxes; and
// a whole frame of play with the starfield behind.

#include "engine/Orvel.h"
#include "game/EnergyGauges.h"
#include "game/Game.h"
#include "game/HUDRadarBox.h"
#include "game/HUDScoreBox.h"
#include "game/HUDWeaponBox.h"
#include "game/Player.h"
#include "game/RadarDisplay.h"
#include "game/Reticle.h"
#include "game/ScoreCounter.h"
#include "scene/Text.h"
#include "tests/support/GameSession.h"

using orvel::Orvel;
using testing_support::HudScene;

namespace {

// The HUD built as the game builds it, without a game.
class HudLayoutTest : public HudScene {
protected:
    static bool isBlack(uint32_t c) { return (c & 0xffffffu) == 0; }

    void SetUp() override {
        HudScene::SetUp();
        scoreBox = new HUD_ScoreBox();
        scoreBox->setHotSpot(TopLeft);
        scoreBox->position = orvel::vec3(100, 30, 0);
        weaponBox = new HUD_WeaponBox();
        weaponBox->position = orvel::vec3(100, 720 - 50, 0);
        radarBox = new HUD_RadarBox();
        radarBox->position = orvel::vec3(1280 - 130, 720 - 130, 0);
        g_hud->add(scoreBox);
        g_hud->add(weaponBox);
        g_hud->add(radarBox);
        reticle = new Reticle();
        g_hud->add(reticle);
        g_hud->add(scoreBox->counter->drawable);
        scoreBox->counter->position = orvel::vec2(15, 12);
    }
    void TearDown() override {
        delete reticle;
        delete radarBox;
        delete weaponBox;
        delete scoreBox;
        HudScene::TearDown();
    }

    HUD_ScoreBox* scoreBox = nullptr;
    HUD_WeaponBox* weaponBox = nullptr;
    HUD_RadarBox* radarBox = nullptr;
    Reticle* reticle = nullptr;
};

} // namespace

TEST_F(HudLayoutTest, TheBoxesFrameTheirCornersAndTheMiddleStaysClear) {
    setMouse(900, 100);
    reticle->update();
    drawHud();
    Pixels p = readScreen();
    // Score frame: 400 x 120 art at half size centred on (100, 30): x 0..200, y 0..60.
    EXPECT_FALSE(isBlack(p.at(100, 30)));
    EXPECT_FALSE(isBlack(p.at(190, 50)));
    EXPECT_TRUE(isBlack(p.at(100, 65)));
    EXPECT_TRUE(isBlack(p.at(205, 30)));
    // Weapon frame: 400 x 200 at half size centred on (100, 670): x 0..200, y 620..720.
    EXPECT_FALSE(isBlack(p.at(100, 710)));
    EXPECT_FALSE(isBlack(p.at(10, 715)));
    EXPECT_TRUE(isBlack(p.at(100, 612)));
    EXPECT_TRUE(isBlack(p.at(205, 700)));
    // Radar frame: 520 x 520 at half size centred on (1150, 590): x 1020..1280, y 460..720.
    EXPECT_FALSE(isBlack(p.at(1152, 592)));
    EXPECT_FALSE(isBlack(p.at(1275, 715)));
    EXPECT_TRUE(isBlack(p.at(1015, 700)));
    EXPECT_TRUE(isBlack(p.at(1150, 452)));
    // The middle of the screen away from the reticle.
    EXPECT_TRUE(isBlack(p.at(640, 360)));
    EXPECT_TRUE(isBlack(p.at(400, 500)));
}

TEST_F(HudLayoutTest, TheReticleSitsUnderTheMouse) {
    setMouse(640, 360);
    reticle->update();
    drawHud();
    Pixels p = readScreen();
    // The cross is 38 pixels across, centred on the mouse: something lit within, nothing past it.
    int lit = 0;
    for (int y = 341; y < 379; ++y) {
        for (int x = 621; x < 659; ++x)
            lit += isBlack(p.at(x, y)) ? 0 : 1;
    }
    EXPECT_GT(lit, 50);
    for (int d = 22; d < 40; ++d) {
        EXPECT_TRUE(isBlack(p.at(640 + d, 360)));
        EXPECT_TRUE(isBlack(p.at(640 - d, 360)));
        EXPECT_TRUE(isBlack(p.at(640, 360 + d)));
        EXPECT_TRUE(isBlack(p.at(640, 360 - d)));
    }
}

TEST_F(HudLayoutTest, TheScoreCounterRollsInsideTheScoreBox) {
    setMouse(900, 300);
    reticle->update();
    Orvel::currentTime = 50000;
    scoreBox->counter->addValue(4321);
    Orvel::currentTime = 50250;
    scoreBox->counter->update();
    // 4321 * sin(pi / 4) = 3055.4.
    EXPECT_STREQ(scoreBox->counter->text->text.getCString(), "3055");
    drawHud();
    Pixels before = readScreen();
    // The digits sit from (15, 12) rightwards, 15 pixels high, over the frame.
    Orvel::currentTime = 50600;
    scoreBox->counter->update();
    EXPECT_STREQ(scoreBox->counter->text->text.getCString(), "4321");
    drawHud();
    Pixels after = readScreen();
    int changed = 0;
    for (int y = 12; y < 27; ++y) {
        for (int x = 15; x < 100; ++x)
            changed += before.at(x, y) != after.at(x, y) ? 1 : 0;
    }
    EXPECT_GT(changed, 0);
    for (int y = 30; y < 60; ++y) {
        for (int x = 0; x < 200; ++x)
            ASSERT_EQ(before.at(x, y), after.at(x, y)) << x << "," << y;
    }
}

TEST_F(HudLayoutTest, TheRadarAndGaugesShowInsideTheirBoxes) {
    RadarDisplay* radar = new RadarDisplay();
    radar->followsGame = false;
    radar->centre = orvel::vec2(2000, 2000);
    radar->addBlip(orvel::vec2(2000 + 1024, 2000), RadarDisplay::BLIP_ENEMY);
    radarBox->add(radar);
    EnergyGauges* gauges = new EnergyGauges();
    gauges->followsGame = false;
    gauges->energy = 350;
    gauges->maxEnergy = 350;
    gauges->hull = 125;
    gauges->maxHull = 100;
    weaponBox->add(gauges);
    setMouse(640, 300);
    reticle->update();
    drawHud();
    Pixels p = readScreen();
    savePictureIfAsked(p, "NIGHTVECTOR_HUD_SHOT");
    uint32_t blip = p.at(1208, 592);
    EXPECT_NEAR(red(blip), 255, 1);
    EXPECT_NEAR(green(blip), 70, 1);
    uint32_t energy = p.at(39 - 19, 668);
    EXPECT_NEAR(red(energy), 255, 2);
    EXPECT_NEAR(green(energy), 200, 2);
    uint32_t hull = p.at(98 + 19, 668);
    EXPECT_NEAR(green(hull), 96, 2);
    EXPECT_NEAR(blue(hull), 120, 2);
    delete gauges;
    delete radar;
}
